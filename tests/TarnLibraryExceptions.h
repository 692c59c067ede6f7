// Test helper: skips a test whose exception has to pass out of the library where none can.
#pragma once

#include <gtest/gtest.h>

/// Skips the calling test on 32-bit MinGW builds. There each module (the library's DLL, the test
/// program) carries its own copy of the DWARF unwinder and runtime, and an exception thrown inside
/// the DLL cannot unwind into the program: the process ends in std::terminate instead. 64-bit
/// Windows unwinds through the system and is not affected.
#if defined(__MINGW32__) && defined(__i386__)
#define TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER()                                               \
    GTEST_SKIP() << "an exception cannot leave the DLL of a 32-bit MinGW build"
#else
#define TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER() static_cast<void>(0)
#endif
