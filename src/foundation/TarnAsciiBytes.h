// Byte classification of the C locale, independent of the locale the application selected.
#pragma once

namespace tarn {

/// True for blank and the control bytes 9 to 13, the white space of the C locale.
inline bool isAsciiSpace(char byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

/// True for the decimal digits 0-9.
inline bool isAsciiDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// True for 0-9, A-F and a-f.
inline bool isAsciiHexDigit(char byte) {
    return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
}

/// The value 0 to 15 of a hexadecimal digit byte.
inline unsigned hexDigitValue(char byte) {
    if (byte >= '0' && byte <= '9') {
        return static_cast<unsigned>(byte - '0');
    }
    return static_cast<unsigned>((byte | 0x20) - 'a' + 10);
}

/// A-Z to a-z; every other byte as it is.
inline char toAsciiLower(char byte) {
    return (byte >= 'A' && byte <= 'Z') ? static_cast<char>(byte + 32) : byte;
}

/// a-z to A-Z; every other byte as it is.
inline char toAsciiUpper(char byte) {
    return (byte >= 'a' && byte <= 'z') ? static_cast<char>(byte - 32) : byte;
}

} // namespace tarn
