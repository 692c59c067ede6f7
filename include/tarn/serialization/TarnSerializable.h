/// \file
/// TarnSerializable: the base of every object that stores itself into an archive tree.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/serialization/TarnArchive.h"
#include "tarn/serialization/TarnHandleManager.h"

/// The base of everything that can be stored. A store walks the graph: each object writes its
/// identity ("this"), its parent link ("parent") and its own tokens into a node, and contained
/// objects into child nodes. A restore makes new objects, registers each stored address with the
/// shared `handleManager`, then lets every object translate its stored pointers to the new
/// addresses (`reconnectPointers`) and take its own address back as identity (`resetPointers`).
/// A derived class overrides the four steps as far as it has state, calling the base step first,
/// and forwards `reconnectPointers` and `resetPointers` to its contained objects. The parent link
/// does not own. `handleManager` and `restoreCount` are process-wide without a lock: one restore or
/// clone at a time per process. Nothing reports failure: missing tokens read as null.
class TARN_API TarnSerializable : public TarnObject {
public:
    /// Makes an unmodified object whose identity is its own address, without parent.
    TarnSerializable();
    /// Copies all three fields, the other object's identity included: the copy writes the other
    /// object's address as "this" until its resetPointers runs.
    TarnSerializable(const TarnSerializable &other);
    /// Copies all three fields of `other`, as the copy constructor does.
    TarnSerializable &operator=(const TarnSerializable &other);
    /// Releases nothing: the links do not own.
    ~TarnSerializable() override;

    using TarnObject::isa;

    /// The base step of a store: clears the modified mark, names `archive` after getClassName(),
    /// and adds the tokens "this" (the identity) and "parent" (the parent link, zeros for null).
    virtual void serializeStore(TarnArchive &archive);
    /// The base step of a restore: adds 1 to restoreCount, clears the modified mark, reads "this"
    /// and "parent" as stored addresses (null when missing) and registers the pair of the stored
    /// identity and this object with handleManager. `parent` must not be followed until
    /// reconnectPointers has run.
    virtual void serializeRestore(TarnArchive &archive);
    /// Replaces the stored parent address by the new object registered for it, or null.
    virtual void reconnectPointers();
    /// Makes this object's own address its identity again.
    virtual void resetPointers();
    /// Returns whether the object changed since it was last stored or restored; each concrete
    /// class answers for itself.
    virtual bool isModified() = 0;

    /// Sets the modified mark.
    void setModified();
    /// Returns this object's address as a TarnSerializable pointer: the address all stored
    /// identities and the handle table use.
    TarnSerializable *getBasePointer();
    /// Returns the identity this object writes as "this": its own address outside a restore, the
    /// stored address during one.
    TarnSerializable *getOldPointer();
    /// Makes `parent` this object's parent link; the link does not own.
    void setParent(TarnSerializable &parent);
    /// Returns the parent object. Without a parent it returns this object itself; `hasParent`
    /// tells the two apart.
    TarnSerializable &getParent();
    /// Returns true when the parent link is not null.
    bool hasParent() const;
    /// Makes this object a copy of `source` through an archive tree, no text involved, when both
    /// answer the same class name; otherwise changes nothing. A parent link that leads outside
    /// `source`'s stored graph becomes null.
    void clone(TarnSerializable &source);
    /// Returns the text of the token `name` of this object's stored form (a whole store, which
    /// clears the modified mark), or the empty text when the object stores no such token.
    TarnString get(const char *name);

    /// The table of old and new addresses that all restores of the process share.
    static TarnHandleManager handleManager;
    /// The number of restore base steps since the last successful TarnFileArchive::readFile.
    static int restoreCount;

protected:
    bool modified;                ///< Set by setModified, cleared by every store and restore.
    TarnSerializable *oldPointer; ///< The identity written as "this": the own address outside a restore.
    TarnSerializable *parent;     ///< The owning object or null; a stored address during a restore.
};
