/// \file
/// TarnCrypt: the RC4 stream cipher and the XTEA block cipher on caller-owned buffers.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"

#include <cstdint>
#include <string>

/// Static cipher routines: RC4 (key stream and data combined with it) and XTEA (one 64-bit block,
/// or a buffer of blocks in electronic codebook mode). NOT SECURE FOR NEW DESIGNS: RC4 has known
/// biases in its key stream, and XTEA in codebook mode maps equal blocks to equal blocks and has
/// no integrity check. Both are here to read and write data of existing systems; new designs want
/// an authenticated cipher. Keys, data and cycle counts all come from the caller; the library
/// keeps no key and no state between calls, so any number of threads may call the routines at
/// once on different buffers. The class itself is abstract and is never instantiated. XTEA words
/// are 32 bits on every build. Failure: `xteaBlock` answers false; the rest write nothing when
/// an argument is unusable (see each routine).
class TARN_API TarnCrypt : public TarnObject {
public:
    /// Constructs nothing: the class holds no data (derived classes only, it is abstract).
    TarnCrypt() = default;
    /// Copies nothing: the class holds no data.
    TarnCrypt(const TarnCrypt &) : TarnObject() {}
    /// Releases nothing.
    ~TarnCrypt() override;

    /// Changes nothing and returns this object.
    TarnCrypt &operator=(const TarnCrypt &) { return *this; }

    /// The identity slots of TarnObject, restated and still pure: TarnCrypt fills neither, so the
    /// class stays abstract and a call through them answers for the derived class. Restating them
    /// keeps them visible beside the two operations below instead of hidden by them.
    ///@{
    bool isa(const std::string &name) const override = 0;
    std::string getClassName() const override = 0;
    ///@}

    // These two are deliberately neither virtual nor const: they do not fill TarnObject's pure
    // identity slots and answer only to a direct call on a TarnCrypt that is not const.
    /// Returns true when `name` is "TarnCrypt", byte for byte.
    bool isa(const std::string &name);
    /// Returns a new string holding "TarnCrypt".
    std::string getClassName();

    /// Writes `streamLength` bytes of RC4 key stream for `key` to `stream`, always from the start
    /// of the stream (no bytes are dropped). Only the first 256 bytes of a longer key count; a
    /// shorter key is repeated. Nothing is written when `streamLength` < 1, `keyLength` < 1, or
    /// `key` or `stream` is null.
    static void rc4(const unsigned char *key, int keyLength, int streamLength, unsigned char *stream);

    /// Writes `dataLength` bytes of `data` exclusive-or the RC4 key stream of `key` to `output`;
    /// the same call deciphers. `output` may be `data` or overlap it in any way: the result is as
    /// if `data` had been copied first. Nothing is written when `dataLength` < 1, `keyLength` < 1
    /// or a pointer is null. Allocates nothing and cannot fail.
    static void rc4Encrypt(const unsigned char *key, int keyLength, const unsigned char *data, int dataLength,
                           unsigned char *output);

    /// Enciphers the two 32-bit words at `input` into the two words at `output` with XTEA,
    /// `rounds` full cycles (32 is the usual count) and the four-word `key`. `output` may equal
    /// or overlap `input`. With `rounds` 0 the words are copied. Nothing is written when a
    /// pointer is null.
    static void xteaEncipher(unsigned int rounds, const std::uint32_t *input, std::uint32_t *output,
                             const std::uint32_t *key);

    /// Deciphers the two 32-bit words at `input` into `output`; `rounds` and `key` must be those
    /// used to encipher. Same overlap and null rules as `xteaEncipher`.
    static void xteaDecipher(unsigned int rounds, const std::uint32_t *input, std::uint32_t *output,
                             const std::uint32_t *key);

    /// Enciphers (`encipher` true) or deciphers `length` bytes of `input` into `output`, 8 bytes
    /// at a time, each block on its own (codebook mode, no padding). A block's bytes are read as
    /// two words in the machine's byte order. `output` may equal or overlap `input`: the result
    /// is as if `input` had been copied first. Returns false, writing nothing, when `length` is
    /// no multiple of 8, or when `length` > 0 and a pointer is null; true otherwise (0 bytes
    /// included).
    static bool xteaBlock(unsigned int rounds, const unsigned char *input, unsigned int length,
                          unsigned char *output, const std::uint32_t *key, bool encipher);
};
