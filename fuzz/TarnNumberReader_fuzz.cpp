// Fuzz target: the library's number reader on arbitrary bytes, against the C library's strtod,
// strtof and strtoull over a NUL-terminated copy, where the two grammars agree.
#include "FuzzChecks.h"
#include "foundation/TarnNumberReader.h"

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

namespace nr = tarn::numberreader;
using fuzzcheck::check;
using fuzzcheck::sameDouble;

// The reader is given exactly the input's bytes, in a buffer of that length, so that a read past
// the end is an AddressSanitizer finding; the C library gets the bytes up to the first NUL.
struct Input {
    std::vector<char> bytes;
    std::string text;
    const char *first() const { return bytes.data(); }
    const char *last() const { return bytes.data() + bytes.size(); }
    // The reader's end, as an offset comparable with the C library's end in `text`.
    std::size_t offset(const char *end) const { return static_cast<std::size_t>(end - first()); }
};

// The C library's end as an offset; a conversion that found nothing leaves it at the start.
std::size_t offsetIn(const std::string &text, const char *end) {
    return static_cast<std::size_t>(end - text.c_str());
}

void checkReals(const Input &input) {
    const nr::RealRead<double> read = nr::readDouble(input.first(), input.last());
    char *end = nullptr;
    const double expected = std::strtod(input.text.c_str(), &end);
    check(read.status != nr::ReadStatus::noNumber || offsetIn(input.text, end) == 0);
    check(read.status == nr::ReadStatus::noNumber || input.offset(read.end) == offsetIn(input.text, end));
    check(sameDouble(read.status == nr::ReadStatus::noNumber ? 0.0 : read.value, expected));

    const nr::RealRead<float> single = nr::readFloat(input.first(), input.last());
    const float expectedSingle = std::strtof(input.text.c_str(), nullptr);
    const float value = single.status == nr::ReadStatus::noNumber ? 0.0f : single.value;
    check(sameDouble(static_cast<double>(value), static_cast<double>(expectedSingle)));
    check(single.status == read.status || single.status == nr::ReadStatus::outOfRange ||
          read.status == nr::ReadStatus::outOfRange);
}

// strtoull gives the magnitude negated modulo 2^64 for a minus sign, and ULLONG_MAX with ERANGE
// beyond 64 bits.
void checkInteger(const Input &input, const nr::IntegerRead &read, int base) {
    char *end = nullptr;
    errno = 0;
    const unsigned long long expected = std::strtoull(input.text.c_str(), &end, base);
    if (read.status == nr::ReadStatus::noNumber) {
        check(offsetIn(input.text, end) == 0 && read.end == input.first());
        return;
    }
    check(input.offset(read.end) == offsetIn(input.text, end));
    if (read.status == nr::ReadStatus::outOfRange) {
        check(errno == ERANGE && expected == ULLONG_MAX);
    } else {
        check(errno == 0);
        check(expected == (read.negative ? 0ull - read.magnitude : read.magnitude));
    }
}

void checkIntegers(const Input &input) {
    checkInteger(input, nr::readDecimal(input.first(), input.last()), 10);
    const nr::IntegerRead hex = nr::readHexadecimal(input.first(), input.last(), true);
    checkInteger(input, hex, 16);
    // Without a sign the same read, or nothing where the number starts with a sign.
    const nr::IntegerRead unsignedHex = nr::readHexadecimal(input.first(), input.last(), false);
    check(unsignedHex.status == nr::ReadStatus::noNumber ||
          (unsignedHex.magnitude == hex.magnitude && unsignedHex.end == hex.end && !unsignedHex.negative));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input;
    input.bytes.assign(reinterpret_cast<const char *>(data), reinterpret_cast<const char *>(data) + size);
    const void *nul = std::memchr(data, 0, size);
    const std::size_t textLength =
        nul != nullptr ? static_cast<std::size_t>(static_cast<const std::uint8_t *>(nul) - data) : size;
    input.text.assign(reinterpret_cast<const char *>(data), textLength);
    // A NUL byte ends every number, so the reader over all bytes and the C library up to the
    // first NUL see the same number.
    checkReals(input);
    checkIntegers(input);
    return 0;
}
