// TarnINIToken: identity, typed reads of the value's text and the setters that make the text.
#include "tarn/config/TarnINIToken.h"

#include "config/TarnNumberScan.h"

#include <locale>
#include <sstream>

TarnINIToken::~TarnINIToken() = default;

bool TarnINIToken::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnINIToken");
}

std::string TarnINIToken::getClassName() const {
    return "TarnINIToken";
}

bool TarnINIToken::getBoolValue() {
    return !value.empty() && (value[0] == 't' || value[0] == 'T');
}

double TarnINIToken::getDoubleValue() {
    double result = 0.0;
    tarn::config::scanDouble(value, result);
    return result;
}

int TarnINIToken::getIntValue() {
    int result = 0;
    tarn::config::scanInt(value, result);
    return result;
}

std::string TarnINIToken::getStringValue() {
    return value;
}

void TarnINIToken::setValue(bool flag) {
    value = flag ? "true" : "false";
}

void TarnINIToken::setValue(double number) {
    // A default stream, but in the classic locale whatever the application made global: no
    // digit grouping, "." as the decimal point.
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    value = stream.str();
}

void TarnINIToken::setValue(int number) {
    value = std::to_string(number);
}

void TarnINIToken::setValue(const char *text) {
    // A null text is taken as the empty text rather than read.
    if (text == nullptr) {
        value.clear();
    } else {
        value = text;
    }
}

void TarnINIToken::setValue(const std::string &text) {
    value = text;
}
