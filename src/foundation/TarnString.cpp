// TarnString: identity, assignment, comparison, substrings, splitting, trimming and case.
#include "tarn/foundation/TarnString.h"

#include "foundation/TarnAsciiBytes.h"
#include "platform/TarnPlatform.h"

#include <cstdint>

TarnString::~TarnString() = default;

TarnString &TarnString::operator=(const std::string &text) {
    std::string::operator=(text);
    return *this;
}

TarnString &TarnString::operator=(const char *text) {
    std::string::operator=(text);
    return *this;
}

TarnString &TarnString::operator=(char character) {
    std::string::assign(1, character);
    return *this;
}

bool TarnString::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnString");
}

std::string TarnString::getClassName() const {
    return "TarnString";
}

int TarnString::compare(const char *text) const {
    if (text == nullptr) {
        return 1;
    }
    const auto *mine = reinterpret_cast<const unsigned char *>(c_str());
    const auto *theirs = reinterpret_cast<const unsigned char *>(text);
    while (*mine != 0 && *mine == *theirs) {
        ++mine;
        ++theirs;
    }
    if (*mine == *theirs) {
        return 0;
    }
    return *mine < *theirs ? -1 : 1;
}

int TarnString::compareNoCase(const char *text) const {
    if (text == nullptr) {
        return 1;
    }
    return tarn::platform::compareNoCase(c_str(), text);
}

TarnString TarnString::left(unsigned int n) const {
    if (n == 0 || n > length()) {
        return TarnString();
    }
    return TarnString(substr(0, n));
}

TarnString TarnString::right(unsigned int n) const {
    if (n == 0 || n > length()) {
        return TarnString();
    }
    return TarnString(substr(length() - n, n));
}

TarnString TarnString::mid(unsigned int first, unsigned int count) const {
    const std::uint32_t end = static_cast<std::uint32_t>(first) + static_cast<std::uint32_t>(count);
    if (count == 0 || first >= length() || end < first || end > length()) {
        return TarnString();
    }
    return TarnString(substr(first, count));
}

void TarnString::split(const char *delimiters, TarnVector<TarnString> &parts) const {
    split(TarnString(delimiters), parts);
}

void TarnString::split(const TarnString &delimiters, TarnVector<TarnString> &parts) const {
    const std::string &set = delimiters;
    size_type position = find_first_not_of(set);
    while (position != npos) {
        size_type end = find_first_of(set, position);
        if (end == npos) {
            end = length();
        }
        parts.add() = substr(position, end - position);
        position = find_first_not_of(set, end + 1);
    }
}

TarnString &TarnString::trim() {
    trimRight();
    return trimLeft();
}

TarnString &TarnString::trimLeft() {
    size_type first = 0;
    while (first < length() && tarn::isAsciiSpace(std::string::operator[](first))) {
        ++first;
    }
    erase(0, first);
    return *this;
}

TarnString &TarnString::trimRight() {
    size_type end = length();
    while (end > 0 && tarn::isAsciiSpace(std::string::operator[](end - 1))) {
        --end;
    }
    erase(end);
    return *this;
}

void TarnString::toUpper() {
    for (char &byte : static_cast<std::string &>(*this)) {
        byte = tarn::toAsciiUpper(byte);
    }
}

void TarnString::toLower() {
    for (char &byte : static_cast<std::string &>(*this)) {
        byte = tarn::toAsciiLower(byte);
    }
}
