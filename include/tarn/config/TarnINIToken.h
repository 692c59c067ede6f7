/// \file
/// TarnINIToken: the text value of one key of a configuration file.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"

#include <string>

class TarnINIFile;

/// The value of one key of a `TarnINIFile`, always held as text whatever it was set from; the
/// typed reads convert the text on each call and never change it. A token belongs to the section
/// map that holds it. Nothing here fails: text that holds no number reads as 0. One thread at a
/// time.
class TARN_API TarnINIToken : public TarnObject {
public:
    /// Constructs a token with the empty text.
    TarnINIToken() = default;
    /// Constructs a token with the text of `other`.
    ///@{
    TarnINIToken(const TarnINIToken &other) = default;
    TarnINIToken(TarnINIToken &&other) noexcept = default;
    ///@}
    /// Releases the text.
    ~TarnINIToken() override;

    /// Replaces the text by that of `other`.
    ///@{
    TarnINIToken &operator=(const TarnINIToken &other) = default;
    TarnINIToken &operator=(TarnINIToken &&other) noexcept = default;
    ///@}

    using TarnObject::isa;
    /// Returns true for "TarnINIToken" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnINIToken".
    std::string getClassName() const override;

    /// Returns true when the first byte of the value is "t" or "T"; any other first byte or an
    /// empty value gives false. Nothing is trimmed.
    bool getBoolValue();
    /// Reads the number at the start of the value as the standard text-to-double conversion does
    /// in the C locale (white space, sign, decimal or 0x form, inf, nan); 0.0 when there is none.
    /// A number too large gives an infinity, one too close to zero gives 0.
    double getDoubleValue();
    /// Reads the decimal integer at the start of the value (white space and a sign allowed); 0
    /// when there is none. A number out of range gives the nearest limit of int.
    int getIntValue();
    /// Returns a copy of the value's text.
    std::string getStringValue();

    /// Makes the value "true" or "false", as `flag` says.
    void setValue(bool flag);
    /// Makes the value the text a default stream in the C locale prints for `number`: six
    /// significant digits, general form ("0.1", "1e+20", "inf").
    void setValue(double number);
    /// Makes the value the decimal text of `number`.
    void setValue(int number);
    /// Makes the value the given text; a null `text` makes it empty.
    void setValue(const char *text);
    /// Makes the value the given text.
    void setValue(const std::string &text);

private:
    friend class TarnINIFile;

    std::string value;
};
