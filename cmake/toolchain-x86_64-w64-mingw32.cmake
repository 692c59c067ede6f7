# Cross build for 64-bit Windows with Debian's mingw-w64 (posix thread model) compilers.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(TARN_TOOLCHAIN_PREFIX x86_64-w64-mingw32)
set(TARN_WINE_LOADER wine64)
include(${CMAKE_CURRENT_LIST_DIR}/TarnMingwToolchain.cmake)
