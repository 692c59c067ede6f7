// The processor check: which kernel paths this build and processor run, and the path limit.
#include "foundation/TarnProcessor.h"

#include <atomic>

namespace tarn {
namespace {

// The widest path that this build and processor run, found once.
KernelPath widestRunnable() {
#if TARN_X86_KERNELS
    // The compiler's check also asks the operating system whether it saves the wider registers.
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx2")) {
        return KernelPath::avx512;
    }
    if (__builtin_cpu_supports("avx2")) {
        return KernelPath::avx2;
    }
    if (__builtin_cpu_supports("sse2")) {
        return KernelPath::sse2;
    }
#endif
    return KernelPath::portable;
}

KernelPath runnable() {
    static const KernelPath widest = widestRunnable();
    return widest;
}

std::atomic<int> limit{static_cast<int>(KernelPath::avx512)};

} // namespace

bool processorRuns(KernelPath path) {
    return static_cast<int>(path) <= static_cast<int>(runnable());
}

KernelPath kernelPath() {
    const int allowed = limit.load(std::memory_order_relaxed);
    const int widest = static_cast<int>(runnable());
    return static_cast<KernelPath>(allowed < widest ? allowed : widest);
}

void limitKernelPath(KernelPath widest) {
    limit.store(static_cast<int>(widest), std::memory_order_relaxed);
}

} // namespace tarn
