// The entry routine of the Windows DLL.
#include <windows.h>

/// Answers every call of the loader (process and thread attach and detach) with success and does
/// nothing else: whatever the library keeps per process lives in ordinary static objects, which
/// the runtime constructs before this routine runs and destroys after the last detach.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    (void)module;
    (void)reason;
    (void)reserved;
    return 1;
}
