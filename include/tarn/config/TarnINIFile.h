/// \file
/// TarnINIFile: a configuration file held in memory, its loading, saving and typed accessors.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/config/TarnINIToken.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"

#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

/// The keys of one section, ascending by bytes compared as unsigned values.
using TarnINISection = std::map<TarnString, TarnINIToken>;
/// The sections of a configuration file by name, ascending by bytes compared as unsigned values.
using TarnINISectionMap = std::map<TarnString, TarnINISection>;

/// A configuration file held in memory: named sections, keys within a section, one text value per
/// key. Callers walk sections and keys through the public map base (in byte order) and read and
/// write values through the profile accessors, which work on the model only; `read` loads a file,
/// replacing the model, and `write` saves it sorted. The object is made by `newTarnINIFile` and
/// released by `dispose`; it owns its model and the bytes of the last load. No lock: one thread at
/// a time, and that includes the profile reads, which add a missing key with its default. Nothing
/// throws for bad content: any bytes load, and failures are reported by `read` and `write` as
/// false.
class TARN_API TarnINIFile : public TarnObject, public TarnINISectionMap {
public:
    /// Not copyable: the object owns its loaded bytes and may hold an open file.
    ///@{
    TarnINIFile(const TarnINIFile &) = delete;
    TarnINIFile &operator=(const TarnINIFile &) = delete;
    ///@}

    using TarnObject::isa;
    /// Returns true for "TarnINIFile" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnINIFile".
    std::string getClassName() const override;

    /// Destroys this object through its virtual destructor; the pointer is invalid afterwards.
    void dispose();

    /// Loads the file `fileName` (null: the stored name) into the model, replacing it. A non-null
    /// name is stored even when the load fails. Returns false, with the model unchanged, when no
    /// name is known, the file does not open, its size cannot be told or exceeds 4 GiB - 1 bytes,
    /// its bytes do not fit in memory, or fewer bytes arrive than its size said (the file then stays open
    /// until the next `read`, `write` or the destructor). Any content at all loads: the result is then true.
    bool read(const char *fileName);
    /// Saves the model to `fileName` (null: the stored name): sections and keys in byte order,
    /// "[name]" and "key=value" lines with the platform's line end, an empty line after every
    /// section. A non-null name is stored even on failure. Returns false when no name is known or
    /// the file cannot be created or truncated; errors while writing are not looked at.
    bool write(const char *fileName);

    /// Returns the format text of float values, "%.6f".
    const TarnString &getFloatString() const { return floatString; }
    /// Returns the format text of double values, "%.15f".
    const TarnString &getDoubleString() const { return doubleString; }
    /// Returns the format text of the exponent form, "%.15e".
    const TarnString &getExpString() const { return expString; }
    /// Returns the format text of the general form, "%.15g".
    const TarnString &getExpGString() const { return expGString; }

    // ---- Profile reads ------------------------------------------------------------------------
    // Each read takes a section, a key, a default and the output. A missing key (in a section that
    // is added when missing) is added with the default's text form, so the next `write` stores
    // it; the output is then converted from that text, never set from the default directly. The
    // number reads skip leading white space, convert the longest valid prefix in the C locale and
    // leave `out` untouched when the text starts with no number. A null section or key changes
    // nothing and reads the default's text form. Each kind comes in two overloads: the TarnString one
    // passes the section's text to the const char* one.

    /// Reads the text of `key`; a missing key is stored with `defaultValue` (null: the empty text).
    ///@{
    void getPrivateProfileString(const char *section, const char *key, const char *defaultValue,
                                 TarnString &out);
    void getPrivateProfileString(TarnString &section, const char *key, const char *defaultValue,
                                 TarnString &out);
    ///@}

    /// Reads a float ("%f" scan); the default's text is "%.6f" of the value widened to double. A
    /// number beyond float's range gives an infinity, one too close to zero gives 0.
    ///@{
    void getPrivateProfileFloat(const char *section, const char *key, float defaultValue, float &out);
    void getPrivateProfileFloat(TarnString &section, const char *key, float defaultValue, float &out);
    ///@}

    /// Reads a double ("%lf" scan); the default's text is "%.15f". A number beyond double's range
    /// gives an infinity, one too close to zero gives 0.
    ///@{
    void getPrivateProfileDouble(const char *section, const char *key, double defaultValue, double &out);
    void getPrivateProfileDouble(TarnString &section, const char *key, double defaultValue, double &out);
    ///@}

    /// Reads an unsigned decimal ("%u" scan, default's text "%u"). A minus sign negates modulo
    /// 2^32; a number beyond 32 bits gives 0xFFFFFFFF.
    ///@{
    void getPrivateProfileUInt(const char *section, const char *key, unsigned int defaultValue,
                               unsigned int &out);
    void getPrivateProfileUInt(TarnString &section, const char *key, unsigned int defaultValue,
                               unsigned int &out);
    ///@}

    /// Reads a signed decimal ("%d" scan, default's text "%d"). A number out of range gives the
    /// nearest limit of int.
    ///@{
    void getPrivateProfileInt(const char *section, const char *key, int defaultValue, int &out);
    void getPrivateProfileInt(TarnString &section, const char *key, int defaultValue, int &out);
    ///@}

    /// Reads a hexadecimal number ("%x" scan: sign and 0x allowed, default's text "%x") as its 32
    /// bits; a number beyond 32 bits gives 0xFFFFFFFF, that is -1.
    ///@{
    void getPrivateProfileHex(const char *section, const char *key, int defaultValue, int &out);
    void getPrivateProfileHex(TarnString &section, const char *key, int defaultValue, int &out);
    ///@}

    /// Reads a truth value: true exactly when the text, trimmed and in lower case, starts with
    /// "t". Always writes `out`; the default's text is "true" or "false".
    ///@{
    void getPrivateProfileBool(const char *section, const char *key, bool defaultValue, bool &out);
    void getPrivateProfileBool(TarnString &section, const char *key, bool defaultValue, bool &out);
    ///@}

    /// Reads a truth value as `getPrivateProfileBool` does and gives 1 or 0.
    ///@{
    void getPrivateProfileBOOL(const char *section, const char *key, bool defaultValue, int &out);
    void getPrivateProfileBOOL(TarnString &section, const char *key, bool defaultValue, int &out);
    ///@}

    // ---- Profile writes -----------------------------------------------------------------------
    // Each write stores the value's text under the key, adding the section and the key when
    // missing; a present key keeps its place and only its text changes. A null section or key
    // changes nothing. The TarnString overload passes the section's text to the const char* one.

    /// Stores `value` unchanged (null: the empty text).
    ///@{
    void writePrivateProfileString(const char *section, const char *key, const char *value);
    void writePrivateProfileString(TarnString &section, const char *key, const char *value);
    ///@}

    /// Stores "%.6f" of the value widened to double.
    ///@{
    void writePrivateProfileFloat(const char *section, const char *key, float value);
    void writePrivateProfileFloat(TarnString &section, const char *key, float value);
    ///@}

    /// Stores "%.15f": fixed point with 15 decimals.
    ///@{
    void writePrivateProfileDouble(const char *section, const char *key, double value);
    void writePrivateProfileDouble(TarnString &section, const char *key, double value);
    ///@}

    /// Stores "%.15e": exponent form with 15 decimals.
    ///@{
    void writePrivateProfileExp(const char *section, const char *key, double value);
    void writePrivateProfileExp(TarnString &section, const char *key, double value);
    ///@}

    /// Stores "%.15g": general form with 15 significant digits.
    ///@{
    void writePrivateProfileExpG(const char *section, const char *key, double value);
    void writePrivateProfileExpG(TarnString &section, const char *key, double value);
    ///@}

    /// Stores "%d": signed decimal.
    ///@{
    void writePrivateProfileInt(const char *section, const char *key, int value);
    void writePrivateProfileInt(TarnString &section, const char *key, int value);
    ///@}

    /// Stores "%x": lower-case hexadecimal without prefix, a negative value as its 32-bit two's
    /// complement (-1 gives "ffffffff").
    ///@{
    void writePrivateProfileHex(const char *section, const char *key, int value);
    void writePrivateProfileHex(TarnString &section, const char *key, int value);
    ///@}

    /// Stores "true" or "false".
    ///@{
    void writePrivateProfileBool(const char *section, const char *key, bool value);
    void writePrivateProfileBool(TarnString &section, const char *key, bool value);
    ///@}

    /// Stores "true" for any non-zero value, else "false".
    ///@{
    void writePrivateProfileBOOL(const char *section, const char *key, int value);
    void writePrivateProfileBOOL(TarnString &section, const char *key, int value);
    ///@}

protected:
    /// Makes an empty model; a non-null `name` becomes the stored file name.
    explicit TarnINIFile(const char *name);
    /// Releases the loaded bytes and closes a file left open by a short read.
    ~TarnINIFile() override;

private:
    friend TarnINIFile *newTarnINIFile(const char *fileName);

    /// Scans the loaded bytes into the (cleared) model: the definition of the file format.
    void parse();
    /// Opens the stored file and reads all of it into `buffer`; false on any failure.
    bool loadBytes();
    /// Closes `file` when it is open.
    void closeFile();

    TarnString floatString;
    TarnString doubleString;
    TarnString expString;
    TarnString expGString;
    std::unique_ptr<char[]> buffer;
    std::uint32_t bufferSize = 0;
    std::FILE *file = nullptr;
    TarnString fileName;
};

/// Creates a configuration object with an empty model, owned by the caller until `dispose`. A
/// non-null `fileName` becomes the stored file name; null leaves it empty. Does not touch the disk.
TARN_API TarnINIFile *newTarnINIFile(const char *fileName);
