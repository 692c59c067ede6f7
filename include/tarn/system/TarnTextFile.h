/// \file
/// TarnTextFile: a file stream with line-oriented reading and writing.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"

#include <fstream>

/// A standard file stream, opened at construction, with `readLine` and `writeLine` on top; all of
/// the stream's own members stay available (close, state, seek). The mode is a combination of
/// READ, WRITE and APPEND; the file opens in the platform's text mode, without sharing
/// restrictions. A line ends at the line feed only. One thread at a time. Failures show in the
/// stream's state only: the constructor reports nothing, writeLine always returns true, and
/// readLine on a stream that cannot read behaves as at the end of input.
class TARN_API TarnTextFile : public std::fstream {
public:
    /// Open for input (1).
    static const int READ;
    /// Open for output (2); alone, an existing file is cut to length 0.
    static const int WRITE;
    /// Open for output at the end of the file (8).
    static const int APPEND;

    /// Opens `fileName` (not null) with `mode`, a bitwise or of READ, WRITE and APPEND; other bits
    /// are ignored. A file that does not open leaves the stream failed.
    TarnTextFile(const char *fileName, int mode);
    /// Closes the file.
    ~TarnTextFile() override;

    /// Reads the bytes up to the next line feed into `line`, without the line feed. Returns true
    /// when a line end was met or bytes were read; false, with `line` empty, when the read starts
    /// at the end of input or the stream cannot read.
    bool readLine(TarnString &line);
    /// Writes all `length()` bytes of `line` and a line feed. Returns true in every case.
    bool writeLine(const TarnString &line);
    /// Writes the text `line` (not null) up to its NUL and a line feed. Returns true.
    bool writeLine(const char *line);
    /// Returns the mode passed to the constructor.
    int getMode() const;

protected:
    int mode; ///< The mode passed to the constructor.
};
