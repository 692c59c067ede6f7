// TarnINIFile: the profile accessors, typed reads and writes of one key over the in-memory model.
#include "tarn/config/TarnINIFile.h"

#include "config/TarnNumberScan.h"

namespace {

// Formats one value into a new text.
template <class T>
TarnString textOf(const char *formatText, T value) {
    TarnString text;
    text.format(formatText, value);
    return text;
}

const char *boolText(bool value) {
    return value ? "true" : "false";
}

} // namespace

// ---- The two accessors that all others use ------------------------------------------------------

void TarnINIFile::getPrivateProfileString(const char *section, const char *key, const char *defaultValue,
                                          TarnString &out) {
    // A null default is the empty text. A null name cannot be looked up: the read then gives the
    // default and leaves the model alone.
    const char *const fallback = defaultValue != nullptr ? defaultValue : "";
    if (section == nullptr || key == nullptr) {
        out = fallback;
        return;
    }
    TarnINISection &keys = try_emplace(TarnString(section)).first->second;
    auto entry = keys.try_emplace(TarnString(key));
    if (entry.second) {
        entry.first->second.setValue(fallback);
        out = fallback;
    } else {
        out = entry.first->second.getStringValue();
    }
}

void TarnINIFile::writePrivateProfileString(const char *section, const char *key, const char *value) {
    if (section == nullptr || key == nullptr) {
        return;
    }
    TarnINISection &keys = try_emplace(TarnString(section)).first->second;
    keys[TarnString(key)].setValue(value);
}

// ---- Typed reads: the default goes through its text form, the result through a scan ------------

void TarnINIFile::getPrivateProfileFloat(const char *section, const char *key, float defaultValue,
                                         float &out) {
    TarnString text;
    getPrivateProfileString(section, key,
                            textOf(floatString.c_str(), static_cast<double>(defaultValue)).c_str(), text);
    tarn::config::scanFloat(text, out);
}

void TarnINIFile::getPrivateProfileDouble(const char *section, const char *key, double defaultValue,
                                          double &out) {
    TarnString text;
    getPrivateProfileString(section, key, textOf(doubleString.c_str(), defaultValue).c_str(), text);
    tarn::config::scanDouble(text, out);
}

void TarnINIFile::getPrivateProfileUInt(const char *section, const char *key, unsigned int defaultValue,
                                        unsigned int &out) {
    TarnString text;
    getPrivateProfileString(section, key, textOf("%u", defaultValue).c_str(), text);
    tarn::config::scanUInt(text, out);
}

void TarnINIFile::getPrivateProfileInt(const char *section, const char *key, int defaultValue, int &out) {
    TarnString text;
    getPrivateProfileString(section, key, textOf("%d", defaultValue).c_str(), text);
    tarn::config::scanInt(text, out);
}

void TarnINIFile::getPrivateProfileHex(const char *section, const char *key, int defaultValue, int &out) {
    TarnString text;
    getPrivateProfileString(section, key, textOf("%x", static_cast<unsigned int>(defaultValue)).c_str(),
                            text);
    bool converted = false;
    const unsigned int bits = text.toUIntBase16(&converted);
    if (converted) {
        out = static_cast<int>(bits);
    }
}

void TarnINIFile::getPrivateProfileBool(const char *section, const char *key, bool defaultValue, bool &out) {
    TarnString text;
    getPrivateProfileString(section, key, boolText(defaultValue), text);
    // Trimmed and folded on the local copy only: the model keeps its text.
    text.trimRight();
    text.trimLeft();
    text.toLower();
    out = !text.empty() && text[0U] == 't';
}

void TarnINIFile::getPrivateProfileBOOL(const char *section, const char *key, bool defaultValue, int &out) {
    bool flag = false;
    getPrivateProfileBool(section, key, defaultValue, flag);
    out = flag ? 1 : 0;
}

// ---- Typed writes: the value's text form --------------------------------------------------------

void TarnINIFile::writePrivateProfileFloat(const char *section, const char *key, float value) {
    writePrivateProfileString(section, key, textOf(floatString.c_str(), static_cast<double>(value)).c_str());
}

void TarnINIFile::writePrivateProfileDouble(const char *section, const char *key, double value) {
    writePrivateProfileString(section, key, textOf(doubleString.c_str(), value).c_str());
}

void TarnINIFile::writePrivateProfileExp(const char *section, const char *key, double value) {
    writePrivateProfileString(section, key, textOf(expString.c_str(), value).c_str());
}

void TarnINIFile::writePrivateProfileExpG(const char *section, const char *key, double value) {
    writePrivateProfileString(section, key, textOf(expGString.c_str(), value).c_str());
}

void TarnINIFile::writePrivateProfileInt(const char *section, const char *key, int value) {
    writePrivateProfileString(section, key, textOf("%d", value).c_str());
}

void TarnINIFile::writePrivateProfileHex(const char *section, const char *key, int value) {
    // The 32 bits of the value: a negative number as its two's complement.
    writePrivateProfileString(section, key, textOf("%x", static_cast<unsigned int>(value)).c_str());
}

void TarnINIFile::writePrivateProfileBool(const char *section, const char *key, bool value) {
    writePrivateProfileString(section, key, boolText(value));
}

void TarnINIFile::writePrivateProfileBOOL(const char *section, const char *key, int value) {
    writePrivateProfileBool(section, key, value != 0);
}

// ---- The TarnString overloads pass the section's text on -----------------------------------------

void TarnINIFile::getPrivateProfileString(TarnString &section, const char *key, const char *defaultValue,
                                          TarnString &out) {
    getPrivateProfileString(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileFloat(TarnString &section, const char *key, float defaultValue,
                                         float &out) {
    getPrivateProfileFloat(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileDouble(TarnString &section, const char *key, double defaultValue,
                                          double &out) {
    getPrivateProfileDouble(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileUInt(TarnString &section, const char *key, unsigned int defaultValue,
                                        unsigned int &out) {
    getPrivateProfileUInt(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileInt(TarnString &section, const char *key, int defaultValue, int &out) {
    getPrivateProfileInt(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileHex(TarnString &section, const char *key, int defaultValue, int &out) {
    getPrivateProfileHex(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileBool(TarnString &section, const char *key, bool defaultValue, bool &out) {
    getPrivateProfileBool(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::getPrivateProfileBOOL(TarnString &section, const char *key, bool defaultValue, int &out) {
    getPrivateProfileBOOL(section.c_str(), key, defaultValue, out);
}

void TarnINIFile::writePrivateProfileString(TarnString &section, const char *key, const char *value) {
    writePrivateProfileString(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileFloat(TarnString &section, const char *key, float value) {
    writePrivateProfileFloat(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileDouble(TarnString &section, const char *key, double value) {
    writePrivateProfileDouble(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileExp(TarnString &section, const char *key, double value) {
    writePrivateProfileExp(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileExpG(TarnString &section, const char *key, double value) {
    writePrivateProfileExpG(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileInt(TarnString &section, const char *key, int value) {
    writePrivateProfileInt(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileHex(TarnString &section, const char *key, int value) {
    writePrivateProfileHex(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileBool(TarnString &section, const char *key, bool value) {
    writePrivateProfileBool(section.c_str(), key, value);
}

void TarnINIFile::writePrivateProfileBOOL(TarnString &section, const char *key, int value) {
    writePrivateProfileBOOL(section.c_str(), key, value);
}
