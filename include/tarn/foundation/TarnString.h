/// \file
/// The library's text type: a standard string of bytes that is also a TarnObject.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnVector.h"

#include <cstdarg>
#include <string>

/// A standard string of 8-bit bytes with the operations the library needs on text: exact and
/// case-blind comparison, numeric reads, printf-style formatting, splitting, trimming, substrings
/// and case changes. No character set is assumed; case and white space go byte by byte as in the
/// C locale, whatever locale the application selected. Requests outside the text give the empty
/// string, never a clipped one. No synchronisation: one thread at a time.
///
/// Note that `a == b` on two TarnString objects is the identity comparison of TarnObject; compare
/// texts with `compare`, or through `std::string`.
class TARN_API TarnString : public TarnObject, public std::string {
public:
    /// Constructs an empty text.
    TarnString() = default;
    /// Constructs a copy of a text (a `text` pointer must not be null).
    ///@{
    TarnString(const char *text) : std::string(text) {}
    TarnString(const TarnString &other) = default;
    TarnString(TarnString &&other) noexcept = default;
    TarnString(const std::string &text) : std::string(text) {}
    TarnString(std::string &&text) noexcept : std::string(std::move(text)) {}
    ///@}
    /// Releases the text.
    ~TarnString() override;

    /// Replaces the text by a copy of another one (a `text` pointer must not be null).
    ///@{
    TarnString &operator=(const TarnString &other) = default;
    TarnString &operator=(TarnString &&other) noexcept = default;
    TarnString &operator=(const std::string &text);
    TarnString &operator=(const char *text);
    ///@}
    /// Makes the text that single character.
    TarnString &operator=(char character);

    using TarnObject::isa;
    /// Returns true for "TarnString" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnString".
    std::string getClassName() const override;

    /// Returns true when the text is empty.
    bool isempty() const { return empty(); }

    /// Returns the byte at `index`; the index may equal the length and then gives the NUL byte.
    ///@{
    char &operator[](unsigned int index) { return std::string::operator[](index); }
    char operator[](unsigned int index) const { return std::string::operator[](index); }
    ///@}

    /// Compares byte by byte as unsigned values: exactly -1, 0 or 1. A null `text` gives 1.
    ///@{
    int compare(const char *text) const;
    int compare(const TarnString &other) const { return compare(other.c_str()); }
    ///@}
    /// Compares with letters folded to lower case; only the sign counts. A null `text` gives 1.
    ///@{
    int compareNoCase(const char *text) const;
    int compareNoCase(const TarnString &other) const { return compareNoCase(other.c_str()); }
    ///@}

    /// Read one value from the start of the text as a standard stream would (leading white space
    /// skipped, decimal only, the rest ignored). A text that holds no such value gives 0 (false);
    /// an integer out of range gives the nearest limit. `operator bool` accepts only 0 and 1 and
    /// gives false for anything else.
    ///@{
    operator int() const;
    operator float() const;
    operator double() const;
    operator bool() const;
    ///@}

    /// Reads a hexadecimal number (leading white space, a sign and a 0x prefix allowed). Stores
    /// whether a value was found through `ok` when it is not null; gives 0 when none was. A number
    /// beyond 32 bits gives 0xFFFFFFFF; a minus sign negates modulo 2^32.
    unsigned int toUIntBase16(bool *ok) const;

    /// Returns the first `n` bytes; the empty string when n is 0 or above the length.
    TarnString left(unsigned int n) const;
    /// Returns the last `n` bytes; the empty string when n is 0 or above the length.
    TarnString right(unsigned int n) const;
    /// Returns `count` bytes from index `first`; the empty string when count is 0, first is at or
    /// behind the end, or first + count (in 32-bit arithmetic, wrap included) passes the end.
    TarnString mid(unsigned int first, unsigned int count) const;

    /// Appends to `parts` each run of bytes between delimiters; every byte of `delimiters` is one
    /// delimiter. Empty runs produce nothing; elements already in `parts` stay in front.
    ///@{
    void split(const TarnString &delimiters, TarnVector<TarnString> &parts) const;
    void split(const char *delimiters, TarnVector<TarnString> &parts) const;
    ///@}

    /// Remove blank and the control bytes 9 to 13 from both ends, the front or the back; each
    /// returns this object.
    ///@{
    TarnString &trim();
    TarnString &trimLeft();
    TarnString &trimRight();
    ///@}

    /// Change a-z to A-Z (`toUpper`) or A-Z to a-z (`toLower`), in place; every other byte stays.
    ///@{
    void toUpper();
    void toLower();
    ///@}

    /// Replace the whole text by printf-style output. Up to 160 characters are formatted without
    /// a heap buffer; longer output is formatted in doubling heap buffers and cut at 1,310,720
    /// characters. An argument may point into this text. An output error leaves the text empty.
    ///@{
    TarnString &format(const char *formatText, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 2, 3)))
#endif
        ;
    TarnString &vformat(const char *formatText, va_list arguments);
    ///@}
};
