// Fuzz target: every typed getter of TarnToken on arbitrary text, against the C library's reading
// and against the token's own setters.
#include "FuzzChecks.h"

#include <tarn/tarn.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using fuzzcheck::check;
using fuzzcheck::sameDouble;

// The number strtol reads when the text's integer has at most nine digits, so that it fits.
bool smallInteger(const char *text, long &value) {
    const char *p = text;
    while (*p == ' ' || (*p >= '\t' && *p <= '\r')) {
        ++p;
    }
    if (*p == '+' || *p == '-') {
        ++p;
    }
    std::size_t digits = 0;
    while (p[digits] >= '0' && p[digits] <= '9') {
        ++digits;
    }
    if (digits == 0 || digits > 9) {
        return false;
    }
    value = std::strtol(text, nullptr, 10);
    return true;
}

void checkNumbers(const TarnToken &token, const char *text) {
    // Reads as strtod does in the C locale, and 0 where no number starts the text.
    const double number = token.getDoubleValue();
    check(sameDouble(number, std::strtod(text, nullptr)));
    check(sameDouble(static_cast<double>(token.getFloatValue()),
                     static_cast<double>(static_cast<float>(number))));

    // The integer getters are views of one 32-bit pattern.
    const int integer = token.getIntValue();
    const auto pattern = static_cast<std::uint32_t>(integer);
    check(token.getULongValue() == pattern);
    check(token.getUShortValue() == (pattern & 0xFFFFu));
    check(token.getUCharValue() == (pattern & 0xFFu));
    check(static_cast<unsigned char>(token.getCharValue()) == (pattern & 0xFFu));
    long reference = 0;
    check(!smallInteger(text, reference) || integer == static_cast<int>(reference));
    check(token.getBoolValue() == (std::strcmp(text, "true") == 0));
    static_cast<void>(token.getPointerValue());
}

// Each element the list reader set is strtod's reading of the piece at its index, the pieces
// being the runs between blanks; a piece without a number leaves its element alone.
void checkPiecesAsStrtod(const char *text, const double *values, unsigned int count) {
    std::string rest = text;
    unsigned int index = 0;
    for (std::size_t at = rest.find_first_not_of(' '); at != std::string::npos && index < count; ++index) {
        const std::size_t end = std::min(rest.find(' ', at), rest.size());
        const std::string piece = rest.substr(at, end - at);
        char *stop = nullptr;
        const double expected = std::strtod(piece.c_str(), &stop);
        check(stop == piece.c_str() ? values[index] == -7.25 : sameDouble(values[index], expected));
        at = rest.find_first_not_of(' ', end);
    }
}

void checkLists(const TarnToken &token, unsigned int count) {
    // The list readers set at most `count` elements and never touch one beyond.
    double values[9];
    for (double &value : values) {
        value = -7.25;
    }
    token.getDoubles(values, count);
    for (unsigned int i = count; i < 9; ++i) {
        check(values[i] == -7.25);
    }
    TarnArray<double> doubles(count, -7.25);
    token.getDoubles(doubles);
    for (unsigned int i = 0; i < count; ++i) {
        check(sameDouble(doubles[i], values[i]));
    }
    TarnArray<int> ints(count, 3);
    token.getInts(ints);
    checkPiecesAsStrtod(token.getValue(), values, count);

    // A list that the token wrote reads back exactly.
    TarnToken copy;
    copy.setValue(values, count);
    double again[9];
    copy.getDoubles(again, count);
    for (unsigned int i = 0; i < count; ++i) {
        check(sameDouble(again[i], values[i]));
    }
}

void checkRoundTrips(const TarnToken &token) {
    // What a setter writes, the matching getter reads back unchanged.
    TarnToken copy;
    copy.setValue(token.getDoubleValue());
    check(sameDouble(copy.getDoubleValue(), token.getDoubleValue()));
    copy.setValue(token.getFloatValue());
    check(sameDouble(static_cast<double>(copy.getFloatValue()), static_cast<double>(token.getFloatValue())));
    copy.setValue(token.getIntValue());
    check(copy.getIntValue() == token.getIntValue());
    copy.setValue(token.getULongValue());
    check(copy.getULongValue() == token.getULongValue());
    copy.setValue(token.getUShortValue());
    check(copy.getUShortValue() == token.getUShortValue());
    copy.setValue(token.getUCharValue());
    check(copy.getUCharValue() == token.getUCharValue());
    copy.setValue(token.getBoolValue());
    check(copy.getBoolValue() == token.getBoolValue());
    copy.setPointerValue(token.getPointerValue());
    check(copy.getPointerValue() == token.getPointerValue());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    // The first byte picks the list length, the rest is the token's text up to its first NUL.
    const unsigned int count = size > 0 ? data[0] % 10u : 0u;
    const std::string text = size > 0 ? std::string(reinterpret_cast<const char *>(data) + 1, size - 1) : "";
    TarnToken token;
    token.setValue(text.c_str());
    check(std::strcmp(token.getValue(), text.c_str()) == 0);
    checkNumbers(token, text.c_str());
    checkLists(token, count);
    checkRoundTrips(token);
    return 0;
}
