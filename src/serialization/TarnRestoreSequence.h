// The four calls that every restore runs on the root object once its tree is ready.
#pragma once

class TarnArchive;
class TarnHandleManager;
class TarnSerializable;

namespace tarn {

/// Empties a handle table when it goes out of scope, however the scope is left. A restore holds
/// one for the shared table, so that a step that throws (an allocation failure, or anything a
/// class's own restore step lets pass) cannot leave pairs behind: the next restore would
/// otherwise reconnect its stored pointers to objects of the failed one, which may be gone.
class HandleTableGuard {
public:
    /// Guards `table`, which must outlive the guard.
    explicit HandleTableGuard(TarnHandleManager &table) : table(table) {}
    HandleTableGuard(const HandleTableGuard &) = delete;
    HandleTableGuard &operator=(const HandleTableGuard &) = delete;
    /// Empties the table; never throws.
    ~HandleTableGuard();

private:
    TarnHandleManager &table;
};

/// Restores `object` from `root`, reconnects every stored pointer to the new objects, gives
/// every object its own address back as identity, and empties the shared handle table. Used by
/// the string and file archives and by clone. When a step throws, the table is emptied before
/// the exception leaves; `object` is then as far restored as the step got, its stored links
/// still old addresses that must not be followed, and it may be restored again or destroyed.
void runRestoreSequence(TarnSerializable &object, TarnArchive &root);

} // namespace tarn
