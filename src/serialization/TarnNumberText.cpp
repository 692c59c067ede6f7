// Exact number formatting by std::to_chars; reading through the library's one number reader.
#include "serialization/TarnNumberText.h"

#include "foundation/TarnNumberReader.h"
#include "serialization/TarnScientificDigits.h"

#include <charconv>

namespace tarn {
namespace numbertext {

namespace nr = tarn::numberreader;

char *writeScientific(char *out, double value, int precision) {
    // Moderate values take the exact 128-bit path; every other value the general formatter.
    char *const end = writeScientificFast(out, value, precision);
    if (end != nullptr) {
        return end;
    }
    return std::to_chars(out, out + kMaxScientificLength, value, std::chars_format::scientific, precision)
        .ptr;
}

char *writeInt(char *out, std::int32_t value) {
    return std::to_chars(out, out + 11, value).ptr;
}

char *writePointer(char *out, std::uintptr_t value) {
    static const char digits[] = "0123456789ABCDEF";
    for (std::size_t i = kPointerDigits; i > 0; --i) {
        out[i - 1] = digits[value & 0xF];
        value >>= 4;
    }
    return out + kPointerDigits;
}

bool readDouble(const char *first, const char *last, double &value) {
    const nr::RealRead<double> read = nr::readDouble(first, last);
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    value = read.value;
    return true;
}

bool readInt32(const char *first, const char *last, std::uint32_t &value) {
    // "%d" of the archive: the low 32 bits, a minus sign negating modulo 2^32.
    const nr::IntegerRead read = nr::readDecimal(first, last);
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    const auto low = static_cast<std::uint32_t>(read.magnitude);
    value = read.negative ? 0u - low : low;
    return true;
}

bool readPointer(const char *first, const char *last, std::uintptr_t &value) {
    // No sign; the address is taken modulo 2 to the power of the pointer width.
    const nr::IntegerRead read = nr::readHexadecimal(first, last, false);
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    value = static_cast<std::uintptr_t>(read.magnitude);
    return true;
}

} // namespace numbertext
} // namespace tarn
