# The part of the two mingw-w64 toolchain files that does not depend on the target processor.
# Expects TARN_TOOLCHAIN_PREFIX (the target triple) and TARN_WINE_LOADER (wine or wine64).

# The -posix compilers: the default win32 thread model has no std::thread or std::mutex.
set(CMAKE_C_COMPILER ${TARN_TOOLCHAIN_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARN_TOOLCHAIN_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TARN_TOOLCHAIN_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TARN_TOOLCHAIN_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Programs of the build (tests, the tour) run under Wine, headless and quiet, in a Wine prefix of
# their own inside the build tree, so that nothing outside the build tree is touched. Debian keeps
# wine64 outside PATH, in /usr/lib/wine. tarn-wine-run tries a start again that Wine itself failed
# (nothing printed). A caller may set CMAKE_CROSSCOMPILING_EMULATOR itself.
if(NOT DEFINED CMAKE_CROSSCOMPILING_EMULATOR)
    find_program(TARN_WINE NAMES ${TARN_WINE_LOADER} PATHS /usr/lib/wine NO_CACHE)
    if(NOT TARN_WINE)
        set(TARN_WINE ${TARN_WINE_LOADER})
    endif()
    set(CMAKE_CROSSCOMPILING_EMULATOR
        env -u DISPLAY -u WAYLAND_DISPLAY WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
        WINEPREFIX=${CMAKE_BINARY_DIR}/.wine ${CMAKE_CURRENT_LIST_DIR}/tarn-wine-run ${TARN_WINE})
endif()
