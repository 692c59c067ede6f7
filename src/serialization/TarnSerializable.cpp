// TarnSerializable: the base steps of store and restore, clone, get, and the restore sequence.
#include "tarn/serialization/TarnSerializable.h"

#include "serialization/TarnRestoreSequence.h"

TarnHandleManager TarnSerializable::handleManager;
int TarnSerializable::restoreCount = 0;

namespace tarn {

HandleTableGuard::~HandleTableGuard() {
    table.reset();
}

void runRestoreSequence(TarnSerializable &object, TarnArchive &root) {
    const HandleTableGuard guard(TarnSerializable::handleManager);
    object.serializeRestore(root);
    object.reconnectPointers();
    object.resetPointers();
}

} // namespace tarn

TarnSerializable::TarnSerializable() : modified(false), oldPointer(this), parent(nullptr) {}

TarnSerializable::TarnSerializable(const TarnSerializable &other)
    : TarnObject(other), modified(other.modified), oldPointer(other.oldPointer), parent(other.parent) {}

TarnSerializable &TarnSerializable::operator=(const TarnSerializable &other) {
    modified = other.modified;
    oldPointer = other.oldPointer;
    parent = other.parent;
    return *this;
}

TarnSerializable::~TarnSerializable() = default;

void TarnSerializable::serializeStore(TarnArchive &archive) {
    modified = false;
    archive.setName(TarnString(getClassName()));
    TarnToken token;
    token.setPointerValue(oldPointer);
    archive.addToken("this", token);
    token.setPointerValue(parent);
    archive.addToken("parent", token);
}

void TarnSerializable::serializeRestore(TarnArchive &archive) {
    ++restoreCount;
    modified = false;
    oldPointer = archive.getTokenPointer("this");
    parent = archive.getTokenPointer("parent");
    handleManager.registerPointers(oldPointer, this);
}

void TarnSerializable::reconnectPointers() {
    parent = handleManager.getNewPointer(parent);
}

void TarnSerializable::resetPointers() {
    oldPointer = this;
}

void TarnSerializable::setModified() {
    modified = true;
}

TarnSerializable *TarnSerializable::getBasePointer() {
    return this;
}

TarnSerializable *TarnSerializable::getOldPointer() {
    return oldPointer;
}

void TarnSerializable::setParent(TarnSerializable &newParent) {
    parent = &newParent;
}

TarnSerializable &TarnSerializable::getParent() {
    // Without a parent there is no object to refer to; the object answers with itself rather than
    // a null reference.
    return parent != nullptr ? *parent : *this;
}

bool TarnSerializable::hasParent() const {
    return parent != nullptr;
}

void TarnSerializable::clone(TarnSerializable &source) {
    if (getClassName() != source.getClassName()) {
        return;
    }
    TarnArchive node;
    source.serializeStore(node);
    tarn::runRestoreSequence(*this, node);
}

TarnString TarnSerializable::get(const char *tokenName) {
    TarnArchive node;
    serializeStore(node);
    return TarnString(node.getTokenText(tokenName));
}
