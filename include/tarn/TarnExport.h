/// \file
/// The export macro that marks the library's public classes, functions and data.
#pragma once

// Every public header includes this one first, so an older language standard stops here, with
// a message that says what to change, before the first C++17 construct fails obscurely.
// MSVC keeps __cplusplus at 199711L unless /Zc:__cplusplus is given; _MSVC_LANG is exact there.
#if defined(_MSVC_LANG)
#if _MSVC_LANG < 201703L
#error "Tarn needs C++17 or later: compile with /std:c++17"
#endif
#elif !defined(__cplusplus) || __cplusplus < 201703L
#error "Tarn needs C++17 or later: compile with -std=c++17"
#endif

/// \def TARN_API
/// Marks what the shared library exports: every public class, free function and static data
/// member carries it. The library builds with hidden visibility, so anything public that lacks
/// the macro fails to link on every platform, not only on Windows. In a static build TARN_STATIC,
/// which the CMake package and tarn.pc then define, makes it empty.
#if defined(TARN_STATIC)
#define TARN_API
#elif defined(_WIN32) || defined(__CYGWIN__)
#if defined(TARN_EXPORTS)
#define TARN_API __declspec(dllexport)
#else
#define TARN_API __declspec(dllimport)
#endif
#else
#define TARN_API __attribute__((visibility("default")))
#endif
