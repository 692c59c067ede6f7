/// \file
/// TarnSystem: static services over the operating system, and the clamp unity.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

/// Static operations for what callers want from the operating system: debug output, the
/// processor count, a directory listing, creating a directory, copying a file and a scratch-file
/// name; and the clamp `unity`. The class keeps no state and stays abstract (it does not answer
/// the identity questions of TarnObject), so all use goes through the static operations, from
/// any thread. Nothing raises of its own: `cp` answers false, the others report nothing.
class TARN_API TarnSystem : public TarnObject {
public:
    /// Constructs nothing: the class holds no data.
    ///@{
    TarnSystem() = default;
    TarnSystem(const TarnSystem &other) = default;
    ///@}
    /// Releases nothing.
    ~TarnSystem() override;

    /// Changes nothing and returns this object.
    TarnSystem &operator=(const TarnSystem &) { return *this; }

    /// Sends `text` to the debug text channel as one write, with nothing added (no line end).
    ///@{
    static void out(const TarnString &text);
    static void out(const char *text);
    ///@}

    /// Sends every later write of `out` and of the matrices' `dump` to `handler`, one call per
    /// write with the whole text and `context`; a null handler restores the platform's own
    /// channel (standard error on POSIX, the debugger's output on Windows). Any thread may call it.
    static void setDebugHandler(void (*handler)(const char *text, void *context), void *context);

    /// Returns the number of processors the system reports; at least 1.
    static int getNumberOfSystemProcessors();

    /// Returns `value` limited to the range -1 to 1; a NaN comes back unchanged.
    static double unity(double value);

    /// Replaces the contents of `files` by the bare names of the files in `directory` (not null),
    /// in the order the system delivers them. Directories, the dot entries among them, are left
    /// out and not entered. The directory text is used unchanged with "\*.*" appended. A search
    /// that fails leaves `files` empty, as an empty directory does.
    static void dir(TarnVector<TarnString> &files, const char *directory);

    /// Creates the one directory `path` (not null). An existing directory or a missing parent
    /// passes without notice; nothing is reported.
    static void mkdir(const char *path);

    /// Copies the file `source` to `target` (neither null) through one buffer of the whole size.
    /// The target is opened, and so created or emptied, before the source is looked at; the
    /// source must open for reading and writing. Returns false for any failure, leaving the
    /// target as far as it got, and also, without opening anything, when the two texts are equal.
    /// A file too large for memory fails with the standard exception for lack of memory, every
    /// stream closed.
    static bool cp(const char *source, const char *target);

    /// Replaces the text of `name` by "scratch-" followed by the current local time in the
    /// 24-character form "Thu Nov 19 02-05-14 2026" (colons become hyphens). Unique to the
    /// second only, and not checked against the file system. When the clock cannot be read the
    /// text becomes "scratch-" alone.
    static void uniqueFilename(TarnString &name);
};
