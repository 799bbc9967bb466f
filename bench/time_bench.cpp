// Reading the clocks, beside the C library's call and the arithmetic by hand.
#include <benchmark/benchmark.h>
#include <qxcore/time.h>
#include <time.h>

namespace {

void QXPreciseTimestamp(benchmark::State& state) {
    uint64_t now;
    for (auto _ : state) {
        QXTimeGetPreciseTimestamp(&now);
        benchmark::DoNotOptimize(now);
    }
}

void RealTimeByHand(benchmark::State& state) {
    timespec now;
    for (auto _ : state) {
        clock_gettime(CLOCK_REALTIME, &now);
        benchmark::DoNotOptimize(now.tv_sec * 1'000'000'000 + now.tv_nsec);
    }
}

void QXPerformanceCount(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(QXPerfGetCount());
    }
}

void MonotonicByHand(benchmark::State& state) {
    timespec now;
    for (auto _ : state) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        benchmark::DoNotOptimize(now.tv_sec * 1'000'000'000 + now.tv_nsec);
    }
}

BENCHMARK(RealTimeByHand);
BENCHMARK(QXPreciseTimestamp);
BENCHMARK(MonotonicByHand);
BENCHMARK(QXPerformanceCount);

}  // namespace
