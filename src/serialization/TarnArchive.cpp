// TarnArchive: the archive tree node, its token lookups and its non-recursive destruction.
#include "tarn/serialization/TarnArchive.h"

#include "serialization/TarnParsedTokens.h"
#include "serialization/TarnTokenText.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

TarnArchive::TarnArchive() : parent(nullptr), parsedTokens(nullptr) {}

TarnArchive::~TarnArchive() {
    // Take the subtree apart with a work list instead of letting each child's destructor destroy
    // its own children: a tree of any depth is released in constant stack. Every node reaches
    // `delete` with no children left, so its destructor does not descend.
    std::vector<TarnArchive *> pending(children.begin(), children.end());
    children.std::vector<TarnArchive *>::clear();
    while (!pending.empty()) {
        TarnArchive *node = pending.back();
        pending.pop_back();
        pending.insert(pending.end(), node->children.begin(), node->children.end());
        node->children.std::vector<TarnArchive *>::clear();
        delete node;
    }
    releaseParsedTokens();
}

void TarnArchive::releaseParsedTokens() {
    if (parsedTokens != inlineTokens) {
        delete[] parsedTokens;
    }
    parsedTokens = nullptr;
}

void TarnArchive::setParsedTokens(const tarn::parsed::Span *spans, std::size_t count) {
    const std::size_t size = tarn::parsed::blockSize(spans, count);
    unsigned char *block = size <= kInlineTokenBytes ? inlineTokens : new unsigned char[size];
    tarn::parsed::writeBlock(block, spans, count);
    releaseParsedTokens();
    parsedTokens = block;
}

TarnArchive &TarnArchive::getParent() {
    // A root has no parent to refer to; it answers with itself rather than a null reference.
    return parent != nullptr ? *parent : *this;
}

bool TarnArchive::isRoot() const {
    return parent == nullptr;
}

void TarnArchive::setParent(TarnArchive *newParent) {
    parent = newParent;
}

TarnVector<TarnArchive> &TarnArchive::getChildren() {
    return children;
}

TarnArchive &TarnArchive::addChild() {
    TarnArchive &child = children.add();
    child.parent = this;
    return child;
}

void TarnArchive::addToken(const char *tokenName, const TarnToken &token) {
    moveParsedTokens();
    // try_emplace leaves the map as it was when the name is present: the first value stays.
    tokens.try_emplace(TarnString(tokenName), token);
}

TarnString &TarnArchive::getName() {
    return name;
}

void TarnArchive::setName(const TarnString &newName) {
    name = newName;
}

void TarnArchive::setName(const char *newName) {
    name = newName;
}

TarnTokenMap &TarnArchive::getTokens() {
    moveParsedTokens();
    return tokens;
}

void TarnArchive::moveParsedTokens() {
    if (parsedTokens == nullptr || tarn::parsed::isMoved(parsedTokens)) {
        return;
    }
    // In block order with try_emplace, so that a repeated name keeps its first value. Should an
    // insertion throw, the block stays unmoved and a later call inserts the rest.
    const std::size_t count = tarn::parsed::count(parsedTokens);
    for (std::size_t index = 0; index < count; ++index) {
        TarnToken token;
        token.setValue(tarn::parsed::valueAt(parsedTokens, index));
        tokens.try_emplace(TarnString(std::string(tarn::parsed::nameAt(parsedTokens, index))),
                           std::move(token));
    }
    tarn::parsed::markMoved(parsedTokens);
}

const char *TarnArchive::findParsedText(const char *tokenName) const {
    if (parsedTokens == nullptr || tarn::parsed::isMoved(parsedTokens)) {
        return nullptr;
    }
    return tarn::parsed::find(parsedTokens, tokenName);
}

const TarnToken *TarnArchive::findToken(const char *tokenName) const {
    const auto found = tokens.find(std::string_view(tokenName));
    return found != tokens.end() ? &found->second : nullptr;
}

// A compact token is read by the reading rules of TarnToken: a pointer or an int in place, the
// doubles through a token holding the text.

const char *TarnArchive::getTokenText(const char *tokenName) {
    if (const char *text = findParsedText(tokenName)) {
        return text;
    }
    const TarnToken *token = findToken(tokenName);
    return token != nullptr ? token->getValue() : "";
}

TarnSerializable *TarnArchive::getTokenPointer(const char *tokenName) {
    if (const char *text = findParsedText(tokenName)) {
        return tarn::readTokenPointer(text, std::strlen(text));
    }
    const TarnToken *token = findToken(tokenName);
    return token != nullptr ? token->getPointerValue() : nullptr;
}

int TarnArchive::getTokenInt(const char *tokenName) {
    if (const char *text = findParsedText(tokenName)) {
        return tarn::readTokenInt(text, std::strlen(text));
    }
    const TarnToken *token = findToken(tokenName);
    return token != nullptr ? token->getIntValue() : 0;
}

void TarnArchive::getTokenDoubles(const char *tokenName, double *values, unsigned int count) {
    if (const char *text = findParsedText(tokenName)) {
        TarnToken token;
        token.setValue(text);
        token.getDoubles(values, count);
        return;
    }
    if (const TarnToken *token = findToken(tokenName)) {
        token->getDoubles(values, count);
    }
}

void TarnArchive::addIntToken(const char *tokenName, int value) {
    moveParsedTokens();
    TarnToken token;
    token.setValue(value);
    tokens.try_emplace(TarnString(tokenName), std::move(token));
}

void TarnArchive::addDoublesToken(const char *tokenName, const double *values, unsigned int count) {
    moveParsedTokens();
    TarnToken token;
    token.setValue(values, count);
    tokens.try_emplace(TarnString(tokenName), std::move(token));
}
