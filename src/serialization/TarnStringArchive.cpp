// TarnStringArchive: the section parser, the string writer and the text inspections.
#include "tarn/serialization/TarnStringArchive.h"

#include "serialization/TarnParsedTokens.h"
#include "serialization/TarnRestoreSequence.h"
#include "serialization/TarnSectionWalk.h"
#include "tarn/serialization/TarnSerializable.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::size_t kInitialTokenBufferLength = 100;

// The length of the text that starts at `text`, up to its first NUL or `limit` bytes.
std::size_t boundedLength(const char *text, std::size_t limit) {
    const void *nul = std::memchr(text, '\0', limit);
    return nul != nullptr ? static_cast<std::size_t>(static_cast<const char *>(nul) - text) : limit;
}

// Splits the `length` bytes of one token's text into name and value. The first "=" ends the name,
// unless it stands at index 0: then it splits nothing, the name is the whole text and the value
// the text behind the "=". A text without "=" is a name with an empty value. Name and value end
// at a NUL byte, as texts do; `mayHoldNul` false says that the token holds none.
tarn::parsed::Span splitToken(const char *token, std::size_t length, bool mayHoldNul) {
    const void *found = std::memchr(token, '=', length);
    const std::size_t equals =
        found != nullptr ? static_cast<std::size_t>(static_cast<const char *>(found) - token) : length;
    const std::size_t nameEnd = equals >= 1 ? equals : length;
    const std::size_t valueStart = equals < length ? equals + 1 : length;
    if (!mayHoldNul) {
        return tarn::parsed::Span{token, nameEnd, token + valueStart, length - valueStart};
    }
    return tarn::parsed::Span{token, boundedLength(token, nameEnd), token + valueStart,
                              boundedLength(token + valueStart, length - valueStart)};
}

// True for the three bytes that carry the structure of the text.
bool isStructural(char byte) {
    return byte == '{' || byte == '}' || byte == ';';
}

#if defined(__SSE2__)
// Skips the 16-byte blocks from `position` that hold no structural byte: three compares and one
// mask test per block. SSE2 is part of every x86-64 processor.
std::int64_t skipPlainBlocks(const char *bytes, std::int64_t position, std::int64_t length) {
    const __m128i open = _mm_set1_epi8('{');
    const __m128i close = _mm_set1_epi8('}');
    const __m128i end = _mm_set1_epi8(';');
    const auto hits = [&](std::int64_t at) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + at));
        return _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, open), _mm_cmpeq_epi8(block, close)),
                            _mm_cmpeq_epi8(block, end));
    };
    // Four blocks per step while the text is long: one mask test for 64 bytes.
    while (length - position >= 64) {
        const __m128i any = _mm_or_si128(_mm_or_si128(hits(position), hits(position + 16)),
                                         _mm_or_si128(hits(position + 32), hits(position + 48)));
        if (_mm_movemask_epi8(any) != 0) {
            break;
        }
        position += 64;
    }
    while (length - position >= 16 && _mm_movemask_epi8(hits(position)) == 0) {
        position += 16;
    }
    return position;
}
#else
// Eight bytes at a time, as one unsigned word.
using Word = std::uint64_t;
constexpr Word kOnes = ~Word(0) / 0xFF; // 0x0101...01
constexpr Word kHighs = kOnes * 0x80;   // 0x8080...80

// True when some byte of `word` is zero: the borrow of a zero byte sets its high bit, and a byte
// whose own high bit is set is masked out; a zero byte is never missed.
bool hasZeroByte(Word word) {
    return ((word - kOnes) & ~word & kHighs) != 0;
}

// Skips the words from `position` that hold no structural byte, eight bytes at a time.
std::int64_t skipPlainBlocks(const char *bytes, std::int64_t position, std::int64_t length) {
    while (length - position >= static_cast<std::int64_t>(sizeof(Word))) {
        Word word;
        std::memcpy(&word, bytes + position, sizeof word);
        if (hasZeroByte(word ^ (kOnes * '{')) || hasZeroByte(word ^ (kOnes * '}')) ||
            hasZeroByte(word ^ (kOnes * ';'))) {
            break;
        }
        position += static_cast<std::int64_t>(sizeof(Word));
    }
    return position;
}
#endif

// Returns the position of the first structural byte at or after `position`, or `length`. Blocks
// without one are skipped whole; a block that holds one is looked at byte by byte. A long token
// text (the values of a large block of numbers) is passed over at many bytes per step.
std::int64_t findStructural(const char *bytes, std::int64_t position, std::int64_t length) {
    position = skipPlainBlocks(bytes, position, length);
    while (position < length && !isStructural(bytes[position])) {
        ++position;
    }
    return position;
}

// Makes the token buffer take `length` bytes and the NUL, losing its contents. The new bytes are
// not cleared: the parser writes what it keeps there, and a large buffer costs no page until then.
void reserveTokenBuffer(char *&buffer, std::size_t &bufferLength, std::size_t length) {
    char *larger = new char[length + 1];
    larger[0] = '\0';
    delete[] buffer;
    buffer = larger;
    bufferLength = length;
}

// Puts a NUL at `at` for its own lifetime, then the byte that stood there.
class TerminatedAt {
public:
    explicit TerminatedAt(char *place) : at(place), saved(*place) { *at = '\0'; }
    TerminatedAt(const TerminatedAt &) = delete;
    TerminatedAt &operator=(const TerminatedAt &) = delete;
    ~TerminatedAt() { *at = saved; }

private:
    char *at;
    char saved;
};

// Adds `token`, whose bytes lie in `text` and end at `tokenEnd` (its ";"), to the map of `section`.
// The name ends at its first NUL; the value is read in place up to its first NUL: the ";" stands in for the
// NUL while the token copies the value, and is put back even if the copy throws. A repeated name keeps its
// first value.
void addTokenInPlace(TarnArchive &section, TarnString &text, std::size_t tokenEnd,
                     const tarn::parsed::Span &token) {
    const TerminatedAt terminated(text.data() + tokenEnd);
    TarnToken value;
    value.setValue(token.value);
    const std::size_t nameLength = boundedLength(token.name, token.nameLength);
    section.getTokens().try_emplace(TarnString(std::string(token.name, nameLength)), std::move(value));
}

} // namespace

// A run of a few short tokens into a node without tokens becomes one compact block when the run
// ends; any other run goes token by token into the node's map.
struct TarnStringArchive::TokenRun {
    std::vector<tarn::parsed::Span> spans;
    bool intoMap = false;
};

TarnStringArchive::TarnStringArchive()
    : position(0), lastDelimiter(-1), sectionDepth(0), firstSection(true),
      tokenBuffer(new char[kInitialTokenBufferLength + 1]()), tokenBufferLength(kInitialTokenBufferLength) {}

TarnStringArchive::~TarnStringArchive() {
    delete[] tokenBuffer;
}

TarnString &TarnStringArchive::getText() {
    return text;
}

void TarnStringArchive::setText(const TarnString &newText) {
    text = newText;
}

bool TarnStringArchive::serializeStore(TarnSerializable &object) {
    text.clear();
    object.serializeStore(*this);
    appendSection(*this);
    return true;
}

bool TarnStringArchive::serializeRestore(TarnSerializable &object, const TarnString &newText) {
    text = newText;
    return serializeRestore(object);
}

bool TarnStringArchive::serializeRestore(TarnSerializable &object) {
    parseSection(*this);
    tarn::runRestoreSequence(object, *this);
    return true;
}

void TarnStringArchive::growTokenBuffer(std::size_t length) {
    char *larger = new char[length + 1]();
    delete[] tokenBuffer;
    tokenBuffer = larger;
    tokenBufferLength = length;
}

void TarnStringArchive::verifyTokenStringLength(int length) {
    if (length > 0 && static_cast<std::size_t>(length) > tokenBufferLength) {
        growTokenBuffer(static_cast<std::size_t>(length));
    }
}

void TarnStringArchive::addParsedToken(TarnArchive &section, TokenRun &run, std::size_t length) {
    // A token longer than a name and a value of a block together never fits one: it goes to the
    // map without being taken apart twice.
    if (!run.intoMap && length <= 2 * tarn::parsed::kMaxSpanBytes + 1 &&
        run.spans.size() < tarn::parsed::kMaxSpans && section.parsedTokens == nullptr &&
        section.tokens.empty()) {
        const char *start = text.data() + lastDelimiter + 1;
        const tarn::parsed::Span token =
            splitToken(start, length, std::memchr(start, '\0', length) != nullptr);
        if (tarn::parsed::fitsBlock(token)) {
            run.spans.push_back(token);
            return;
        }
    }
    if (!run.intoMap) {
        // The run no longer fits a block: what it holds so far goes into the map first, in order.
        section.moveParsedTokens();
        for (const tarn::parsed::Span &earlier : run.spans) {
            TarnToken value;
            value.setValue(std::string(earlier.value, earlier.valueLength).c_str());
            section.tokens.try_emplace(TarnString(std::string(earlier.name, earlier.nameLength)),
                                       std::move(value));
        }
        run.spans.clear();
        run.intoMap = true;
    }
    const char *start = text.data() + lastDelimiter + 1;
    addTokenInPlace(section, text, static_cast<std::size_t>(lastDelimiter + 1) + length,
                    splitToken(start, length, false));
}

void TarnStringArchive::bufferToken(std::int64_t start, std::size_t length) {
    std::memcpy(tokenBuffer, text.data() + start, length);
    tokenBuffer[length] = '\0';
}

void TarnStringArchive::endTokenRun(TarnArchive &section, TokenRun &run) {
    if (!run.spans.empty()) {
        section.setParsedTokens(run.spans.data(), run.spans.size());
        run.spans.clear();
    }
    run.intoMap = false;
}

void TarnStringArchive::parseSection(TarnArchive &section) {
    // One pass over the text with an explicit stack of open sections in place of one call per
    // level: the top of `open` is the section that the recursive reading would be filling, so
    // the tree and its order are the same and the depth is bounded by memory only. A "{" opens a
    // section (the first one names `section` itself and makes no child), a ";" ends a token of the
    // open section, a "}" closes it; when the last open section closes, the parse ends and the
    // rest of the text is ignored. Text that ends inside a section simply ends the parse.
    std::vector<TarnArchive *> open{&section};
    TokenRun run;
    std::int64_t lastToken = -1; // start of the last token's text
    std::size_t lastTokenLength = 0;
    const char *const bytes = text.data();
    const auto length = static_cast<std::int64_t>(text.size());
    while (position < length && !open.empty()) {
        const char byte = bytes[position];
        if (byte == '{') {
            endTokenRun(*open.back(), run);
            ++sectionDepth;
            const char *nameStart = bytes + lastDelimiter + 1;
            const auto nameLength = static_cast<std::size_t>(position - lastDelimiter - 1);
            lastDelimiter = position++;
            TarnArchive *target = open.back();
            if (firstSection) {
                firstSection = false;
            } else {
                target = &target->addChild();
            }
            target->getName().assign(nameStart, nameLength);
            open.push_back(target);
        } else if (byte == '}') {
            endTokenRun(*open.back(), run);
            --sectionDepth;
            lastDelimiter = position++;
            open.pop_back();
        } else if (byte == ';') {
            const auto tokenLength = static_cast<std::size_t>(position - lastDelimiter - 1);
            if (tokenLength > tokenBufferLength) {
                reserveTokenBuffer(tokenBuffer, tokenBufferLength, tokenLength);
            }
            addParsedToken(*open.back(), run, tokenLength);
            lastToken = lastDelimiter + 1;
            lastTokenLength = tokenLength;
            lastDelimiter = position++;
        } else {
            // Any other byte belongs to a name or a token text: skip the whole run at once.
            position = findStructural(bytes, position + 1, length);
        }
    }
    if (!open.empty()) {
        endTokenRun(*open.back(), run);
    }
    // The token buffer ends up holding the last token's text, as if every token had passed
    // through it; only tokens that go into a map need the copy on the way.
    if (lastToken >= 0) {
        bufferToken(lastToken, lastTokenLength);
    }
}

void TarnStringArchive::appendSection(TarnArchive &section) {
    text.reserve(text.size() + tarn::sectionTextLength(section));
    tarn::walkSections(
        section,
        [this](TarnArchive &node) {
            text += node.getName();
            text += '{';
            for (auto &entry : node.getTokens()) {
                tarn::appendTokenText(text, entry.first, entry.second);
            }
        },
        [this](TarnArchive &) { text += '}'; });
}

TarnString TarnStringArchive::getClassName() {
    const std::size_t brace = text.find('{');
    if (brace == std::string::npos) {
        return TarnString();
    }
    return TarnString(text.substr(0, brace));
}

void TarnStringArchive::getSimpleTokens(TarnVector<TarnString> &tokens) {
    const TarnString copy(text);
    const std::size_t open = copy.find('{');
    if (open == std::string::npos) {
        return;
    }
    const std::size_t close = copy.find('}');
    if (close == std::string::npos) {
        return;
    }
    // Drop the "}" and the ";" in front of it, then the name and the "{"; left and right give
    // the empty text when a count is out of range, and so does a "}" in front of the "{".
    const std::int64_t keep = static_cast<std::int64_t>(close) - 1;
    if (keep <= 0) {
        return;
    }
    const TarnString front = copy.left(static_cast<unsigned int>(keep));
    const std::int64_t tail = static_cast<std::int64_t>(front.length()) - static_cast<std::int64_t>(open) - 1;
    if (tail <= 0) {
        return;
    }
    front.right(static_cast<unsigned int>(tail)).split(";", tokens);
}
