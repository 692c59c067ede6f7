/// \file
/// TarnStringArchive: an object graph stored to a text in memory and restored from one.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/serialization/TarnArchive.h"

#include <cstddef>
#include <cstdint>

class TarnSerializable;

/// The root node of an archive tree that also turns the tree into text and back. The text form is
/// a section's name, "{", its tokens as name "=" text ";", its child sections and "}", all
/// adjacent; nothing is escaped. The section parser reads any text in one pass without recursion,
/// so nesting depth is bounded by memory only, and never reads outside the text; malformed text
/// gives whatever tree it describes. An archive serves one store or one restore: the parser's
/// state is never reset. It owns its tree, its text and its token buffer. One thread at a time;
/// a restore uses the shared handle table (one restore per process at a time). Nothing reports
/// failure: store and restore return true.
class TARN_API TarnStringArchive : public TarnArchive {
public:
    /// Makes an empty archive with a token buffer of 100 bytes (plus the NUL).
    TarnStringArchive();
    TarnStringArchive(const TarnStringArchive &) = delete;
    TarnStringArchive &operator=(const TarnStringArchive &) = delete;
    /// Releases the token buffer, the text and the tree.
    ~TarnStringArchive();

    /// Stores `object` into this archive and makes the text from the tree. Returns true.
    bool serializeStore(TarnSerializable &object);
    /// Copies `text` into the archive, parses it and restores `object` from the tree, reconnecting
    /// every stored pointer. Returns true.
    bool serializeRestore(TarnSerializable &object, const TarnString &text);
    /// The same, from the text the archive holds.
    bool serializeRestore(TarnSerializable &object);
    /// Returns the bytes of the text in front of its first "{": empty when there is no "{" or the
    /// text begins with one. Reads the text, not the tree.
    TarnString getClassName();
    /// Appends to `tokens` the texts name "=" value of the first section's tokens, read from the
    /// text without building a tree. Meant for a section without children. A text without "{" or
    /// without "}" leaves `tokens` as it was.
    void getSimpleTokens(TarnVector<TarnString> &tokens);
    /// Makes the token buffer take at least `length` bytes (plus the NUL): a larger length
    /// replaces the buffer by `length` + 1 zero bytes; otherwise nothing changes. A negative
    /// length changes nothing.
    void verifyTokenStringLength(int length);

    /// Returns the archive's text: what the parser reads, and what serializeStore produced.
    TarnString &getText();
    /// Replaces the archive's text; the parser's position is not reset.
    void setText(const TarnString &text);

protected:
    /// Parses `text` from `position` into `section`, which the first "{" names; every later
    /// section becomes a child of the section open at its "{".
    void parseSection(TarnArchive &section);
    /// Appends the text form of `section` and its subtree to `text`.
    void appendSection(TarnArchive &section);

    /// Grows the token buffer to take `length` bytes plus the NUL, losing its contents.
    void growTokenBuffer(std::size_t length);

    TarnString text;               ///< The text the parser reads and the string writer makes.
    std::int64_t position;         ///< Index in `text` of the next byte to look at
    std::int64_t lastDelimiter;    ///< Index of the last "{", "}" or ";" acted on; -1 before any
    std::int64_t sectionDepth;     ///< Sections open: the parser's nesting, the file writer's indentation
    bool firstSection;             ///< True until the parser has met its first "{"
    char *tokenBuffer;             ///< Scratch space for one token's text, owned
    std::size_t tokenBufferLength; ///< The longest text tokenBuffer takes, without the NUL

private:
    /// The tokens of the open section that the parser has met since its last "{" or "}".
    struct TokenRun;
    /// Adds the token of `length` bytes behind lastDelimiter to the run of `section`'s tokens.
    void addParsedToken(TarnArchive &section, TokenRun &run, std::size_t length);
    /// Copies the `length` bytes of `text` at `start` into the token buffer, with a NUL behind.
    void bufferToken(std::int64_t start, std::size_t length);
    /// Gives `section` the tokens of the run that has ended and starts a new run.
    static void endTokenRun(TarnArchive &section, TokenRun &run);
};
