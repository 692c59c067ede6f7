// TarnString: printf-style formatting, numeric reads and the hexadecimal read.
#include "tarn/foundation/TarnString.h"

#include "foundation/TarnNumberReader.h"
#include "platform/TarnPlatform.h"

#include <cstdint>
#include <locale>
#include <sstream>
#include <vector>

namespace {

constexpr std::size_t kLocalFormatCapacity = 160;
// Doubling stops at the first capacity that is not below this: the last one tried is 1,310,720.
constexpr std::size_t kFormatGrowthLimit = 1048576;

// Formats with a fresh copy of the argument list, so that every attempt reads it from its start.
int formatAttempt(char *buffer, std::size_t capacity, const char *formatText, va_list arguments,
                  std::size_t *needed) {
    va_list copy;
    va_copy(copy, arguments);
    const int written = tarn::platform::formatBounded(buffer, capacity, formatText, copy, needed);
    va_end(copy);
    return written;
}

// Extracts one T from the text with a classic-locale stream; a failed read gives T().
template <class T>
T readWithStream(const std::string &text) {
    std::stringstream stream;
    stream.imbue(std::locale::classic());
    stream << text;
    T value = T();
    stream >> value;
    return value;
}

} // namespace

TarnString &TarnString::format(const char *formatText, ...) {
    va_list arguments;
    va_start(arguments, formatText);
    vformat(formatText, arguments);
    va_end(arguments);
    return *this;
}

TarnString &TarnString::vformat(const char *formatText, va_list arguments) {
    // The old text stays until the output is complete: an argument may point into it.
    char local[kLocalFormatCapacity + 1];
    std::size_t needed = 0;
    int written = formatAttempt(local, kLocalFormatCapacity, formatText, arguments, &needed);
    if (written >= 0) {
        assign(local, static_cast<std::size_t>(written));
        return *this;
    }
    std::vector<char> heap;
    std::size_t capacity = kLocalFormatCapacity;
    while (written == tarn::platform::kFormatDidNotFit && capacity < kFormatGrowthLimit) {
        capacity *= 2;
        // Where the platform told the full length, the capacities that cannot hold it are
        // passed over without formatting: the capacity reached is the same as by trying each.
        if (capacity < needed && capacity < kFormatGrowthLimit) {
            continue;
        }
        heap.assign(capacity + 1, '\0');
        written = formatAttempt(heap.data(), capacity, formatText, arguments, &needed);
    }
    if (written == tarn::platform::kFormatError) {
        clear();
    } else {
        // Either the whole output or, past the last capacity, its first `capacity` characters.
        assign(heap.data());
    }
    return *this;
}

TarnString::operator int() const {
    return readWithStream<int>(*this);
}

TarnString::operator float() const {
    return readWithStream<float>(*this);
}

TarnString::operator double() const {
    return readWithStream<double>(*this);
}

TarnString::operator bool() const {
    // Read as an integer: only 0 and 1 are truth values, anything else reads as false.
    std::stringstream stream;
    stream.imbue(std::locale::classic());
    stream << static_cast<const std::string &>(*this);
    long value = 0;
    stream >> value;
    return !stream.fail() && value == 1;
}

unsigned int TarnString::toUIntBase16(bool *ok) const {
    // The grammar of "%x": white space, a sign, an optional 0x or 0X, then hexadecimal digits. A
    // number beyond 32 bits has a defined result, 0xFFFFFFFF, whatever its sign.
    namespace nr = tarn::numberreader;
    const nr::IntegerRead read = nr::readHexadecimal(data(), data() + size(), true);
    const bool converted = read.status != nr::ReadStatus::noNumber;
    if (ok != nullptr) {
        *ok = converted;
    }
    if (!converted) {
        return 0;
    }
    if (read.status == nr::ReadStatus::outOfRange || read.magnitude > 0xFFFFFFFFu) {
        return 0xFFFFFFFFu;
    }
    const auto result = static_cast<std::uint32_t>(read.magnitude);
    return read.negative ? static_cast<unsigned int>(0u - result) : result;
}
