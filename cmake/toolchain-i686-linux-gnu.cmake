# The 32-bit (ILP32) Linux build on an x86-64 Debian machine: the host's gcc and g++ with -m32
# (package g++-multilib). Doubles stay in SSE2 registers, as on every other build, so that results
# are the same bits. Set as a cross build, so that GoogleTest is compiled from Debian's sources
# with the same flags, as for the Windows builds; the programs run natively.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)

set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-m32")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-m32")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-m32")
