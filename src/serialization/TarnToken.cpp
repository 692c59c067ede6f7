// TarnToken: the text forms of values and their reading back.
#include "tarn/serialization/TarnToken.h"

#include "foundation/TarnAsciiBytes.h"
#include "foundation/TarnNumberReader.h"
#include "serialization/TarnNumberText.h"
#include "serialization/TarnTokenText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace nt = tarn::numbertext;

namespace {

// The bytes of the text as a range, for the readers.
const char *textEnd(const TarnString &text) {
    return text.data() + text.size();
}

// The leading integer of the text as a 32-bit pattern, 0 when there is none.
std::uint32_t leadingInt32(const TarnString &text) {
    std::uint32_t value = 0;
    nt::readInt32(text.data(), textEnd(text), value);
    return value;
}

// The first blank in [first, last), or last.
const char *findBlank(const char *first, const char *last) {
    const void *blank = std::memchr(first, ' ', static_cast<std::size_t>(last - first));
    return blank != nullptr ? static_cast<const char *>(blank) : last;
}

// Calls `read(first, last)` for each piece of [first, last) between blanks, in order, until
// `count` pieces have been handed over. Only the blank separates; runs of blanks count once.
template <class Reader>
void forEachPiece(const char *first, const char *last, unsigned int count, Reader read) {
    unsigned int index = 0;
    while (index < count) {
        while (first != last && *first == ' ') {
            ++first;
        }
        if (first == last) {
            return;
        }
        const char *pieceEnd = findBlank(first, last);
        read(index, first, pieceEnd);
        ++index;
        first = pieceEnd;
    }
}

// Reads the piece at `first` (a non-blank byte) into `value` where it starts with a number, and
// returns the piece's end. A number never holds a blank, so where the piece starts with no white
// space to skip, reading over the rest of the text stops where reading the piece alone would: the
// piece's end is then found from the number's end, usually the blank right behind it, without a
// search.
const char *readDoublePiece(const char *first, const char *last, double &value) {
    if (tarn::isAsciiSpace(*first)) {
        const char *pieceEnd = findBlank(first, last);
        nt::readDouble(first, pieceEnd, value);
        return pieceEnd;
    }
    const tarn::numberreader::RealRead<double> read = tarn::numberreader::readDouble(first, last);
    if (read.status == tarn::numberreader::ReadStatus::noNumber) {
        return findBlank(first, last);
    }
    value = read.value;
    return read.end != last && *read.end == ' ' ? read.end : findBlank(read.end, last);
}

// Reads the pieces of [first, last) between blanks into values[0] to values[count - 1], in order,
// as forEachPiece with nt::readDouble would.
void readDoubleList(const char *first, const char *last, double *values, unsigned int count) {
    for (unsigned int index = 0; index < count; ++index) {
        while (first != last && *first == ' ') {
            ++first;
        }
        if (first == last) {
            return;
        }
        first = readDoublePiece(first, last, values[index]);
    }
}

// Makes `text` the list form of `count` doubles: each by "%.18e" and a blank. The values are
// formatted into a small buffer that stays in the nearest cache and appended a chunk at a time to
// the string, reserved once for the longest form: no byte of the string is written twice, and no
// size computation can overflow on a 32-bit build (a list too long for memory fails in the
// string's own append).
void writeDoubleList(TarnString &text, const double *values, unsigned int count) {
    constexpr std::size_t perValue = nt::kMaxScientificLength + 1;
    constexpr unsigned int chunkValues = 256;
    text.clear();
    if (count <= text.max_size() / perValue) {
        text.reserve(static_cast<std::size_t>(count) * perValue);
    }
    char chunk[chunkValues * perValue];
    for (unsigned int first = 0; first < count; first += std::min(chunkValues, count - first)) {
        const unsigned int last = first + std::min(chunkValues, count - first);
        char *out = chunk;
        for (unsigned int i = first; i < last; ++i) {
            out = nt::writeScientific(out, values[i], 18);
            *out++ = ' ';
        }
        text.append(chunk, static_cast<std::size_t>(out - chunk));
    }
}

} // namespace

TarnToken::TarnToken() = default;
TarnToken::TarnToken(const TarnToken &other) = default;
TarnToken::TarnToken(TarnToken &&other) noexcept = default;
TarnToken &TarnToken::operator=(const TarnToken &other) = default;
TarnToken &TarnToken::operator=(TarnToken &&other) noexcept = default;
TarnToken::~TarnToken() = default;

void TarnToken::setValue(const char *value) {
    if (value != nullptr) {
        text = value;
    }
}

void TarnToken::setValue(bool value) {
    text = value ? "true" : "false";
}

void TarnToken::setValue(double value) {
    char buffer[nt::kMaxScientificLength];
    text.assign(buffer, nt::writeScientific(buffer, value, 18));
}

void TarnToken::setValue(float value) {
    char buffer[nt::kMaxScientificLength];
    text.assign(buffer, nt::writeScientific(buffer, static_cast<double>(value), 8));
}

void TarnToken::setValue(int value) {
    char buffer[12];
    text.assign(buffer, nt::writeInt(buffer, value));
}

void TarnToken::setValue(unsigned long value) {
    // The archive's integers are 32 bits wide on every platform: the low 32 bits, as signed.
    const auto pattern = static_cast<std::uint32_t>(value);
    setValue(static_cast<int>(static_cast<std::int32_t>(pattern)));
}

void TarnToken::setValue(unsigned short value) {
    setValue(static_cast<int>(value));
}

void TarnToken::setValue(unsigned char value) {
    setValue(static_cast<int>(value));
}

void TarnToken::setValue(const double *values, unsigned int count) {
    writeDoubleList(text, values, count);
}

void TarnToken::setValue(const TarnArray<double> &values) {
    writeDoubleList(text, values.data(), static_cast<unsigned int>(values.size()));
}

void TarnToken::setPointerValue(const TarnSerializable *value) {
    char buffer[nt::kPointerDigits];
    text.assign(buffer, nt::writePointer(buffer, reinterpret_cast<std::uintptr_t>(value)));
}

const char *TarnToken::getValue() const {
    return text.c_str();
}

bool TarnToken::getBoolValue() const {
    return static_cast<const std::string &>(text) == "true";
}

double TarnToken::getDoubleValue() const {
    double value = 0.0;
    nt::readDouble(text.data(), textEnd(text), value);
    return value;
}

float TarnToken::getFloatValue() const {
    return static_cast<float>(getDoubleValue());
}

int tarn::readTokenInt(const char *first, std::size_t length) {
    std::uint32_t value = 0;
    nt::readInt32(first, first + length, value);
    return static_cast<int>(static_cast<std::int32_t>(value));
}

int TarnToken::getIntValue() const {
    return tarn::readTokenInt(text.data(), text.size());
}

unsigned long TarnToken::getULongValue() const {
    return static_cast<unsigned long>(leadingInt32(text));
}

unsigned short TarnToken::getUShortValue() const {
    return static_cast<unsigned short>(leadingInt32(text) & 0xFFFFu);
}

char TarnToken::getCharValue() const {
    return static_cast<char>(static_cast<signed char>(static_cast<std::int8_t>(leadingInt32(text) & 0xFFu)));
}

unsigned char TarnToken::getUCharValue() const {
    return static_cast<unsigned char>(leadingInt32(text) & 0xFFu);
}

TarnSerializable *tarn::readTokenPointer(const char *first, std::size_t length) {
    std::uintptr_t address = 0;
    nt::readPointer(first, first + length, address);
    return reinterpret_cast<TarnSerializable *>(address);
}

TarnSerializable *TarnToken::getPointerValue() const {
    return tarn::readTokenPointer(text.data(), text.size());
}

void TarnToken::getDoubles(double *values, unsigned int count) const {
    readDoubleList(text.data(), textEnd(text), values, count);
}

void TarnToken::getDoubles(TarnArray<double> &values) const {
    getDoubles(values.data(), static_cast<unsigned int>(values.size()));
}

void TarnToken::getInts(TarnArray<int> &values) const {
    int *const elements = values.data();
    forEachPiece(text.data(), textEnd(text), static_cast<unsigned int>(values.size()),
                 [elements](unsigned int index, const char *first, const char *last) {
                     std::uint32_t value = 0;
                     if (nt::readInt32(first, last, value)) {
                         elements[index] = static_cast<int>(static_cast<std::int32_t>(value));
                     }
                 });
}
