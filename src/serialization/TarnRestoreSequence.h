// The four calls that every restore runs on the root object once its tree is ready.
#pragma once

class TarnArchive;
class TarnSerializable;

namespace tarn {

/// Restores `object` from `root`, reconnects every stored pointer to the new objects, gives
/// every object its own address back as identity, and empties the shared handle table. Used by
/// the string and file archives and by clone.
void runRestoreSequence(TarnSerializable &object, TarnArchive &root);

} // namespace tarn
