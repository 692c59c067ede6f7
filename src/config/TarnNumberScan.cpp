// The configuration's number reads: the library's number reader with saturating results.
#include "config/TarnNumberScan.h"

#include "foundation/TarnNumberReader.h"

#include <climits>
#include <cstdint>

namespace tarn {
namespace config {

namespace nr = tarn::numberreader;

namespace {

const char *textEnd(const std::string &text) {
    return text.data() + text.size();
}

template <class T>
bool scanReal(nr::RealRead<T> read, T &out) {
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    out = read.value;
    return true;
}

} // namespace

bool scanInt(const std::string &text, int &out) {
    const nr::IntegerRead read = nr::readDecimal(text.data(), textEnd(text));
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    const std::uint64_t limit = read.negative ? 0x80000000ULL : static_cast<std::uint64_t>(INT_MAX);
    if (read.status == nr::ReadStatus::outOfRange || read.magnitude >= limit) {
        out = read.negative ? INT_MIN : INT_MAX;
    } else {
        const auto value = static_cast<int>(read.magnitude);
        out = read.negative ? -value : value;
    }
    return true;
}

bool scanUInt(const std::string &text, unsigned int &out) {
    const nr::IntegerRead read = nr::readDecimal(text.data(), textEnd(text));
    if (read.status == nr::ReadStatus::noNumber) {
        return false;
    }
    if (read.status == nr::ReadStatus::outOfRange || read.magnitude > 0xFFFFFFFFULL) {
        out = 0xFFFFFFFFU;
    } else {
        const auto value = static_cast<std::uint32_t>(read.magnitude);
        out = read.negative ? static_cast<std::uint32_t>(0U - value) : value;
    }
    return true;
}

bool scanDouble(const std::string &text, double &out) {
    return scanReal(nr::readDouble(text.data(), textEnd(text)), out);
}

bool scanFloat(const std::string &text, float &out) {
    return scanReal(nr::readFloat(text.data(), textEnd(text)), out);
}

} // namespace config
} // namespace tarn
