# Cross build for 32-bit Windows with Debian's mingw-w64 (posix thread model) compilers.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(TARN_TOOLCHAIN_PREFIX i686-w64-mingw32)
set(TARN_WINE_LOADER wine)
include(${CMAKE_CURRENT_LIST_DIR}/TarnMingwToolchain.cmake)
