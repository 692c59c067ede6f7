// The export macro that marks the library's public classes, functions and data.
#pragma once

// TARN_API marks what the shared library exports. The library builds with hidden visibility, so
// anything public that lacks the macro fails to link on every platform, not only on Windows.
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
