/// \file
/// TarnFileArchive: an object graph stored to an indented text file and restored from one.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/serialization/TarnStringArchive.h"

class TarnSerializable;
class TarnTextFile;

/// The root node of an archive tree that writes the tree to a text file, one line per section
/// head, brace and token, indented by one tab per level, and reads such a file back: the reader
/// keeps only the bytes 0x20 to 0x7E, so line ends (LF, CR LF, CR) and tabs are layout only, and
/// then parses the rest as the string form. A file is read with one read into one buffer. The
/// archive owns the text file of its last write. One thread at a time; one restore per process at
/// a time. Only a file that does not open for reading reports failure (false); a failed write
/// shows in the text file's stream state alone.
class TARN_API TarnFileArchive : public TarnStringArchive {
public:
    /// Makes an empty archive without a text file.
    TarnFileArchive();
    TarnFileArchive(const TarnFileArchive &) = delete;
    TarnFileArchive &operator=(const TarnFileArchive &) = delete;
    /// Deletes the text file of the last write, then the archive.
    ~TarnFileArchive();

    /// Stores `object` into this archive, then writes the tree to `fileName`. Returns true, even
    /// when the file could not be written.
    bool serializeStore(const char *fileName, TarnSerializable &object);
    /// Reads `fileName`, parses it and restores `object`, reconnecting every stored pointer.
    /// Returns false, with the object and the handle table untouched, when the file does not
    /// open; true otherwise, whatever the text holds.
    bool serializeRestore(TarnSerializable &object, const char *fileName);
    /// Loads `fileName` into the text, keeping only the bytes 0x20 to 0x7E, and sets
    /// TarnSerializable::restoreCount to 0. Returns false, changing nothing, when the file does
    /// not open or reports a size that no string can hold.
    bool readFile(const char *fileName);
    /// Writes the tree below this archive to `fileName`, cutting an existing file. Returns true.
    bool writeFile(const char *fileName);
    /// Writes `section` and its subtree to the open text file, indented by the current section
    /// depth. Does nothing when no file has been opened.
    void writeSection(TarnArchive &section);

protected:
    TarnTextFile *textFile; ///< The file of the last writeFile, owned; null before the first.
};
