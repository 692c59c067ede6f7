// Benchmarks of the concurrency classes: semaphore units without contention, thread start to end.
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

namespace {

// One unit taken without waiting and given back: the cost of the semaphore's fast path.
void BM_SemaphoreTryAcquireRelease(benchmark::State &state) {
    TarnSemaphore semaphore(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(semaphore.tryAcquire(1));
        semaphore.release(1);
    }
}
BENCHMARK(BM_SemaphoreTryAcquireRelease);

// A thread that returns at once.
class EmptyThread : public TarnThread {
public:
    void run() override {}
};

// One start and the wait for its end: the cost of a restart, thread creation included.
void BM_ThreadStartAndWait(benchmark::State &state) {
    EmptyThread thread;
    for (auto _ : state) {
        thread.start(TarnThread::Normal);
        benchmark::DoNotOptimize(thread.wait(0xFFFFFFFFul));
    }
}
BENCHMARK(BM_ThreadStartAndWait)->UseRealTime();

} // namespace
