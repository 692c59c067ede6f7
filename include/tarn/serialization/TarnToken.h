/// \file
/// TarnToken: one value of an archive, held as text, with typed setters and getters.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

class TarnSerializable;

/// One value of an archive held as text. Every setter turns its value into the fixed text form
/// of its type ("%.18e" for a double, "%.8e" for a float, "%d" for the integers, upper-case
/// hexadecimal for a pointer, a blank behind every element of a list); every getter reads the
/// text back, whatever setter wrote it: there is no type tag, the caller decides the type.
/// Numbers are formatted and read without the C locale's influence and give the same digits as
/// the printf formats named above. A token is a plain value (copyable, movable) and has no locks:
/// one thread at a time. Nothing fails: text that is not a number reads as 0 or leaves the
/// destination alone, as each getter says.
class TARN_API TarnToken {
public:
    /// Makes a token with empty text.
    TarnToken();
    /// Copies the text of `other`.
    TarnToken(const TarnToken &other);
    /// Takes over the text of `other`, which is left empty.
    TarnToken(TarnToken &&other) noexcept;
    /// Replaces the text by a copy of the text of `other`.
    TarnToken &operator=(const TarnToken &other);
    /// Replaces the text by the text of `other`, which is left empty.
    TarnToken &operator=(TarnToken &&other) noexcept;
    /// Releases the text.
    ~TarnToken();

    /// Makes the text a copy of `value`; a null pointer leaves the old text. The text is stored
    /// as it is: the archive formats do not escape "{", "}" and ";", so a text that holds one of
    /// them is cut there, without a report, when the archive is read back (keep such bytes out,
    /// or encode them first). A file archive also drops bytes outside 0x20 to 0x7E on reading.
    void setValue(const char *value);
    /// Makes the text "true" or "false".
    void setValue(bool value);
    /// Makes the text `value` by "%.18e" (19 significant digits), the same on every platform.
    /// Infinities give "inf" and "-inf"; a NaN gives "nan" or "-nan" by its sign, whatever the
    /// platform's printf writes for it. All read back as the same value (a NaN keeps its sign, not
    /// its payload).
    void setValue(double value);
    /// Makes the text `value`, widened to double, by "%.8e" (9 significant digits).
    void setValue(float value);
    /// Makes the text `value` by "%d".
    void setValue(int value);
    /// Makes the text the low 32 bits of `value` read as a signed 32-bit int, by "%d":
    /// 4294967295 gives "-1".
    void setValue(unsigned long value);
    /// Makes the text `value` by "%d".
    void setValue(unsigned short value);
    /// Makes the text `value` by "%d": decimal digits, not a character.
    void setValue(unsigned char value);
    /// Makes the text the `count` values of `values` in order, each by "%.18e" and a blank (the
    /// last one too). A count of 0 gives empty text; `values` may then be null.
    void setValue(const double *values, unsigned int count);
    /// Makes the text all elements of `values` in index order, as the form above.
    void setValue(const TarnArray<double> &values);
    /// Makes the text the address `value` as upper-case hexadecimal, zero-padded to two digits
    /// per byte of a pointer, without prefix: a null pointer gives all zeros.
    void setPointerValue(const TarnSerializable *value);

    /// Returns the text, NUL-terminated; the pointer is good until the token next changes.
    const char *getValue() const;
    /// Returns true only when the text is exactly "true".
    bool getBoolValue() const;
    /// Returns the leading decimal number of the text as atof reads it (white space, a sign,
    /// hexadecimal floating text, inf and nan included), in the C locale; 0.0 when there is none.
    /// A number beyond the range of double gives an infinity, one below it a zero.
    double getDoubleValue() const;
    /// Returns getDoubleValue() narrowed once to float.
    float getFloatValue() const;
    /// Returns the leading decimal integer as "%d" reads it; 0 when the text begins with none.
    /// Digits beyond 32 bits wrap: the result is the number modulo 2^32 as a signed int.
    int getIntValue() const;
    /// Returns the leading integer as "%lu" reads it, taken as a 32-bit pattern, so that "-1"
    /// gives 4294967295; 0 when the text begins with no number.
    unsigned long getULongValue() const;
    /// Returns the low 16 bits of getIntValue().
    unsigned short getUShortValue() const;
    /// Returns the low 8 bits of the leading integer as atoi reads it; 0 when there is none.
    char getCharValue() const;
    /// Returns the same 8 bits as getCharValue(), read as unsigned.
    unsigned char getUCharValue() const;
    /// Returns the address written in the text: any number of hexadecimal digits, with or
    /// without a 0x or 0X prefix, after optional white space; digits beyond the width of a
    /// pointer wrap. Null when the text holds no such number. The address is not followed.
    TarnSerializable *getPointerValue() const;
    /// Reads the blank-separated numbers of the text into `values[0]` to `values[count - 1]`. A run
    /// of blanks is one separator; only the blank separates. A piece that is not a number leaves
    /// its element as it was and still uses up its index; elements behind the last piece keep
    /// their values, pieces behind `count` are ignored. Nothing is resized.
    void getDoubles(double *values, unsigned int count) const;
    /// The same, with `count` taken as the array's current size.
    void getDoubles(TarnArray<double> &values) const;
    /// The same with integers read as "%d" reads them, `count` taken as the array's size.
    void getInts(TarnArray<int> &values) const;

private:
    TarnString text; ///< The whole state: the value as text.
};
