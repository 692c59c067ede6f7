// Internal: the one processor check behind every subsystem that has kernels per instruction set.
#pragma once

// A 32-bit caller may hand over a stack aligned to 4 bytes only (Windows): kernel entry points
// realign it, so that their vector spills are aligned.
#if defined(__i386__) && (defined(__GNUC__) || defined(__clang__))
#define TARN_KERNEL_ENTRY __attribute__((force_align_arg_pointer))
#else
#define TARN_KERNEL_ENTRY
#endif

// True where the build has the x86 vector kernels (GCC or Clang on x86).
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
#define TARN_X86_KERNELS 1
#else
#define TARN_X86_KERNELS 0
#endif

namespace tarn {

/// The kernel paths, narrowest first: plain C++, then the x86 instruction sets.
enum class KernelPath { portable, sse2, avx2, avx512 };

/// True when this build has the path's kernels and this processor (and its operating system) runs
/// them. The portable path always runs.
bool processorRuns(KernelPath path);

/// The widest path that this build and processor run, within the limit of `limitKernelPath`.
/// Checked once; afterwards one relaxed atomic read.
KernelPath kernelPath();

/// Makes `kernelPath` give no path wider than `widest`, so that tests and benchmarks can run each
/// path through the callers; `KernelPath::avx512` lifts the limit. Not meant to change while
/// kernels run on other threads.
void limitKernelPath(KernelPath widest);

} // namespace tarn
