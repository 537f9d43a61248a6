// Entering and leaving a critical section nobody else wants, beside the standard
// library's recursive mutex doing the same. Goal: at most 1.2 times the mutex's time.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"
#include "ovra/ovThread.h"

#include <benchmark/benchmark.h>

#include <mutex>

static void BM_CriticalSection_EnterLeave(benchmark::State& state) {
    ovCriticalSection section(ovFrustrumChooser(nullptr).synch_operations());
    for (auto _ : state) {
        section.enter();
        section.leave();
    }
}
BENCHMARK(BM_CriticalSection_EnterLeave);

static void BM_CriticalSectionLocker(benchmark::State& state) {
    ovCriticalSection section(ovFrustrumChooser(nullptr).synch_operations());
    for (auto _ : state) {
        ovCriticalSectionLocker locker(&section);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_CriticalSectionLocker);

static void BM_RecursiveMutex_LockUnlock(benchmark::State& state) {
    std::recursive_mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
}
BENCHMARK(BM_RecursiveMutex_LockUnlock);

static void BM_RecursiveMutex_LockGuard(benchmark::State& state) {
    std::recursive_mutex mutex;
    for (auto _ : state) {
        std::lock_guard<std::recursive_mutex> guard(mutex);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RecursiveMutex_LockGuard);

BENCHMARK_MAIN();
