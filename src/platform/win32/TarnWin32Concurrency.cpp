// Win32 implementation of the semaphores, threads and sleep of the platform seam.
#include "platform/TarnPlatform.h"
#include "platform/TarnReferenceCount.h"

#include <atomic>
#include <new>

#include <windows.h>

namespace tarn {
namespace platform {

// A system semaphore handle with the number of handles (copies) that still refer to it; the
// last one closes it.
struct SemaphoreObject {
    HANDLE handle = nullptr;
    std::atomic<long> references{1};
};

// A system thread handle with the number of references to it; the last one closes it, which
// does not affect the thread.
struct ThreadObject {
    HANDLE handle = nullptr;
    std::atomic<long> references{1};
};

namespace {

// What the trampoline needs to call the entry. It belongs to the new thread, which deletes it.
struct StartBlock {
    ThreadEntry entry;
    void *argument;
};

// The system's entry of every thread, with the system's calling convention; it calls the
// library's entry, whose result becomes the exit code.
DWORD WINAPI threadTrampoline(LPVOID parameter) {
    const StartBlock block = *static_cast<StartBlock *>(parameter);
    delete static_cast<StartBlock *>(parameter);
    return static_cast<DWORD>(block.entry(block.argument));
}

// Turns a wait result into the seam's answer: only WAIT_OBJECT_0 means the object was signalled.
bool signalled(HANDLE handle, std::uint32_t timeoutMs) {
    return WaitForSingleObject(handle, static_cast<DWORD>(timeoutMs)) == WAIT_OBJECT_0;
}

} // namespace

SemaphoreObject *createSemaphore(int count) {
    if (count < 1) {
        return nullptr;
    }
    auto *semaphore = new (std::nothrow) SemaphoreObject;
    if (semaphore == nullptr) {
        return nullptr;
    }
    semaphore->handle = CreateSemaphoreA(nullptr, count, count, nullptr);
    if (semaphore->handle == nullptr) {
        delete semaphore;
        return nullptr;
    }
    return semaphore;
}

SemaphoreObject *shareSemaphore(SemaphoreObject *semaphore) {
    return addReference(semaphore);
}

void dropSemaphore(SemaphoreObject *semaphore) {
    if (dropReference(semaphore)) {
        CloseHandle(semaphore->handle);
        delete semaphore;
    }
}

bool waitSemaphore(SemaphoreObject *semaphore, std::uint32_t timeoutMs) {
    return semaphore != nullptr && signalled(semaphore->handle, timeoutMs);
}

bool releaseSemaphore(SemaphoreObject *semaphore, int n) {
    if (semaphore == nullptr || n < 1) {
        return false;
    }
    return ReleaseSemaphore(semaphore->handle, static_cast<LONG>(n), nullptr) != FALSE;
}

ThreadObject *createSuspendedThread(ThreadEntry entry, void *argument) {
    // Both records are made before the thread, so that a thread never exists without them.
    auto *thread = new (std::nothrow) ThreadObject;
    auto *block = new (std::nothrow) StartBlock{entry, argument};
    if (thread == nullptr || block == nullptr) {
        delete thread;
        delete block;
        return nullptr;
    }
    thread->handle = CreateThread(nullptr, 0, threadTrampoline, block, CREATE_SUSPENDED, nullptr);
    if (thread->handle == nullptr) {
        delete block;
        delete thread;
        return nullptr;
    }
    return thread;
}

ThreadObject *shareThread(ThreadObject *thread) {
    return addReference(thread);
}

void closeThread(ThreadObject *thread) {
    if (dropReference(thread)) {
        CloseHandle(thread->handle);
        delete thread;
    }
}

bool setThreadPriority(ThreadObject *thread, int level) {
    return thread != nullptr && SetThreadPriority(thread->handle, level) != FALSE;
}

bool resumeThread(ThreadObject *thread) {
    return thread != nullptr && ResumeThread(thread->handle) != static_cast<DWORD>(-1);
}

bool getThreadExitCode(ThreadObject *thread, std::uint32_t *code) {
    DWORD exitCode = 0;
    if (thread == nullptr || code == nullptr || GetExitCodeThread(thread->handle, &exitCode) == FALSE) {
        return false;
    }
    *code = static_cast<std::uint32_t>(exitCode);
    return true;
}

bool waitThread(ThreadObject *thread, std::uint32_t timeoutMs) {
    return thread != nullptr && signalled(thread->handle, timeoutMs);
}

void sleepMilliseconds(std::uint32_t milliseconds) {
    Sleep(static_cast<DWORD>(milliseconds));
}

} // namespace platform
} // namespace tarn
