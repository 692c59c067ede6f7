/// \file
/// TarnFileName: a text that holds a backslash path, takes it apart and asks the file system.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"

#include <cstdint>

/// A file path held as a TarnString, taken apart into directory, name and extension and put back
/// together with a changed part. The backslash is the only separator on every platform; the
/// extension mark is the last dot that no backslash follows. The parts are worked out from the
/// text at each call and nothing is cached; only the query operations touch the file system, and
/// they hand it the whole text. The class answers to its identity as "TarnString". No locks: one
/// thread at a time. Nothing raises: queries answer false, or a value with every bit set.
class TARN_API TarnFileName : public TarnString {
public:
    /// Selectors of getFileTime; any other value selects the creation time.
    enum FileTimeSelector {
        kCreationTime = 1, ///< The creation time.
        kAccessTime = 2,   ///< The last access time.
        kWriteTime = 3     ///< The last write time.
    };

    /// Constructs an empty name.
    TarnFileName() = default;
    /// Takes the text over unchanged (a `text` pointer must not be null).
    ///@{
    TarnFileName(const char *text) : TarnString(text) {}
    TarnFileName(const TarnString &text) : TarnString(text) {}
    TarnFileName(const TarnFileName &other) = default;
    ///@}
    /// Releases the text.
    ~TarnFileName() override;

    /// Copies the text of `other`.
    TarnFileName &operator=(const TarnFileName &other) = default;

    /// Returns the directory part: the bytes in front of the last backslash. Without a backslash,
    /// a drive prefix "X:" when the second byte is a colon, else the empty string.
    TarnString getPath() const;
    /// Returns the name without directory and extension; the empty string when the name starts
    /// with its only dot or the text ends in a backslash.
    TarnString getFileName() const;
    /// Returns the extension without its dot: the bytes behind the last dot, or the empty string
    /// when there is no dot or a backslash follows the last one.
    TarnString getFileExt() const;
    /// Returns name and extension with the dot between them: the bytes behind the last
    /// backslash, or the whole text without one.
    TarnString getFullFileName() const;

    /// Replaces the directory part by `path` (not null). Name and extension follow with a
    /// backslash in front unless `path` ends in one, and a dot between them even when the
    /// extension is empty; with an empty name the text becomes `path` alone. An empty `path`
    /// counts as not ending in a backslash, so that the text then starts with one.
    ///@{
    void setPath(const char *path);
    void setPath(const TarnString &path) { setPath(path.c_str()); }
    ///@}
    /// Replaces the name by `name` (not null). The text becomes path, backslash, `name`, dot and
    /// extension, with the backslash and the dot written also beside empty parts.
    ///@{
    void setFileName(const char *name);
    void setFileName(const TarnString &name) { setFileName(name.c_str()); }
    ///@}
    /// Replaces the extension by `extension` (not null), taken as it is: a leading dot in it
    /// stays. The text becomes path, backslash, name, dot and `extension`.
    ///@{
    void setFileExt(const char *extension);
    void setFileExt(const TarnString &extension) { setFileExt(extension.c_str()); }
    ///@}
    /// Replaces name and extension together by `fullName` (not null): the text becomes path,
    /// backslash and `fullName`.
    ///@{
    void setFullFileName(const char *fullName);
    void setFullFileName(const TarnString &fullName) { setFullFileName(fullName.c_str()); }
    ///@}

    /// Returns true when the file opens for reading, with no sharing restriction; false for a
    /// file that is missing or does not open, and for a directory.
    bool exists() const;
    /// Returns true only when the attribute word of the path is exactly 16: a plain directory.
    /// A directory with any further attribute, and a path that names nothing, give false.
    bool isDirectory() const;
    /// Returns the low 32 bits of the file's size in bytes, or 0xFFFFFFFF (every bit set) when the
    /// file does not open for inspection; a file whose low 32 bits are all set gives the same.
    unsigned int getSize() const;
    /// Returns one time of the file in 100-ns ticks since 1601-01-01 UTC: `selector` 1 the
    /// creation, 2 the last access, 3 the last write, any other value the creation. Returns
    /// 0xFFFFFFFFFFFFFFFF (every bit set) when the file does not open or its times cannot be read.
    std::uint64_t getFileTime(int selector) const;
    /// Returns the creation time: getFileTime with 1.
    std::uint64_t getCreateTime() const { return getFileTime(kCreationTime); }
    /// Returns the last access time: getFileTime with 2.
    std::uint64_t getAccessTime() const { return getFileTime(kAccessTime); }
    /// Returns the last write time: getFileTime with 3.
    std::uint64_t getWriteTime() const { return getFileTime(kWriteTime); }

    /// Steps the decimal number at the end of the name by one, zero-padded to its old width and
    /// wider only when it carries over (file009 to file010, file999 to file1000); a name without
    /// one gains "1". The new name then goes to setFileName as a text pointer, so a NUL byte
    /// inside the name ends it there ("x\0y9" becomes "x"). An empty name leaves the text unchanged.
    void increment();
};
