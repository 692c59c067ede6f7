/// \file
/// TarnArchive: one node of an archive tree, with its named tokens and its owned child nodes.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/serialization/TarnToken.h"

#include <cstddef>
#include <map>
#include <string_view>

class TarnSerializable;
namespace tarn {
namespace parsed {
struct Span;
}
} // namespace tarn

/// Orders token names by the bytes of the standard string, as unsigned values: a name that is a
/// prefix of another comes first, upper-case letters before lower-case ones. Transparent, so that
/// a lookup by a text needs no temporary string.
struct TarnTokenNameLess {
    /// Marks the comparison as usable with any text type, for lookups without a temporary.
    using is_transparent = void;
    /// Returns true when `left` sorts before `right`.
    bool operator()(std::string_view left, std::string_view right) const { return left < right; }
};

/// The tokens of one archive node by name, in ascending name order; names are unique.
class TarnTokenMap : public std::map<TarnString, TarnToken, TarnTokenNameLess> {
public:
    using std::map<TarnString, TarnToken, TarnTokenNameLess>::map;
};

/// One section of a stored object graph: a name, tokens by name, and child sections in the order
/// in which they were added. A node owns its children and through them its whole subtree; the
/// parent link does not own. The caller owns the root, usually on its stack; children are made on
/// the heap by `addChild` or by a parser. Destroying a tree of any depth takes constant stack.
/// Nodes are not copied. No locks: a tree belongs to one thread at a time. Nothing here fails: a
/// duplicate token name is dropped, a missing token reads as the empty text, null or 0.
class TARN_API TarnArchive {
public:
    /// Makes a root node: no parent, no children, no tokens, empty name.
    TarnArchive();
    TarnArchive(const TarnArchive &) = delete;
    TarnArchive &operator=(const TarnArchive &) = delete;
    /// Releases the name, the tokens and the whole subtree.
    ~TarnArchive();

    /// Returns the node that holds this one as a child. At a root, which has none, it returns
    /// this node itself; `isRoot` tells the two apart.
    TarnArchive &getParent();
    /// Returns true when this node has no parent.
    bool isRoot() const;
    /// Stores the link unchanged; it checks nothing and touches neither node's children.
    void setParent(TarnArchive *parent);
    /// Returns the child nodes themselves, in the order in which they were added.
    TarnVector<TarnArchive> &getChildren();
    /// Appends a new empty node with this node as its parent and returns it.
    TarnArchive &addChild();
    /// Adds a copy of `token` under a copy of `name` (not null). A name that is already there keeps
    /// its first value: the new one is dropped silently.
    void addToken(const char *name, const TarnToken &token);
    /// Returns the name itself, for reading or writing.
    TarnString &getName();
    /// Copies `name` into the node's name.
    void setName(const TarnString &name);
    /// Copies the text `name` (not null) into the node's name.
    void setName(const char *name);
    /// Returns the token map itself.
    TarnTokenMap &getTokens();

    /// Returns the text of this node's token `name`, or the empty text when there is none. The
    /// pointer is good until that token changes.
    const char *getTokenText(const char *name);
    /// Returns the address in this node's token `name` (see TarnToken::getPointerValue), or null
    /// when there is none.
    TarnSerializable *getTokenPointer(const char *name);
    /// Returns this node's token `name` read by TarnToken::getIntValue, or 0 when there is none.
    int getTokenInt(const char *name);
    /// Reads this node's token `name` by TarnToken::getDoubles into `values`; when there is no such
    /// token, `values` stays untouched.
    void getTokenDoubles(const char *name, double *values, unsigned int count);
    /// Adds a token `name` holding `value` by "%d"; see addToken.
    void addIntToken(const char *name, int value);
    /// Adds a token `name` holding `count` values by "%.18e", a blank behind each; see addToken.
    void addDoublesToken(const char *name, const double *values, unsigned int count);

protected:
    TarnArchive *parent;              ///< The node holding this one as a child; null at a root. Not owned.
    TarnVector<TarnArchive> children; ///< The child sections in the order they were added; owned.
    /// The section's tokens by name. A node that a parser filled may hold a few short tokens in a
    /// compact form instead, until getTokens or an adder first runs on it: read through getTokens
    /// or the lookups, which see both.
    TarnTokenMap tokens;
    TarnString name; ///< The section's name; for a stored object its class name.

private:
    friend class TarnStringArchive;

    /// Returns the token of this name in `tokens`, or null.
    const TarnToken *findToken(const char *tokenName) const;
    /// Returns the text of the token of this name while the node holds its tokens in compact
    /// form, or null.
    const char *findParsedText(const char *tokenName) const;
    /// Gives the node the compact form of `count` tokens; the node must have none yet.
    void setParsedTokens(const tarn::parsed::Span *spans, std::size_t count);
    /// Releases the compact tokens, if they have a block of their own.
    void releaseParsedTokens();
    /// Moves the compact tokens into `tokens`, in order, once. The compact block stays until the
    /// node is destroyed, so that texts that lookups handed out stay readable.
    void moveParsedTokens();

    /// Room for the compact tokens of a typical stored object inside the node itself.
    static constexpr std::size_t kInlineTokenBytes = 96;

    /// Tokens that a parser found, in compact form: in `inlineTokens` or in an owned block of
    /// their own when they do not fit there; null when there are none.
    unsigned char *parsedTokens;
    unsigned char inlineTokens[kInlineTokenBytes]; ///< The compact tokens when they fit.
};
