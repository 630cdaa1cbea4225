// How near the CPU throttle holds a busy loop to its percentage on this
// machine: the share of one processor the loop got, against the setting.
// A timing figure, so it lives here and not in the tests (on a loaded
// machine the scheduler, not the throttle, decides the share).
#include <benchmark/benchmark.h>

#include <chrono>
#include <ctime>

#include "framework/CpuThreshold.h"

namespace {

double cpuNow() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void burn(double seconds)
{
    const double until = cpuNow() + seconds;
    volatile unsigned long sink = 0;
    while (cpuNow() < until)
        for (int i = 0; i < 10000; ++i) sink = sink + static_cast<unsigned long>(i);
}

// 25 steps of 30 ms of work, each followed by a throttle step.
void BM_ThrottledBusyLoop(benchmark::State& state)
{
    const int threshold = static_cast<int>(state.range(0));
    double cpu = 0, wall = 0;
    for (auto _ : state) {
        CpuThreshold::Initialize(threshold);
        const auto start = std::chrono::steady_clock::now();
        const double cpuStart = cpuNow();
        for (int i = 0; i < 25; ++i) {
            burn(0.03);
            CpuThreshold::doIteration();
        }
        wall += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        cpu += cpuNow() - cpuStart;
    }
    CpuThreshold::Initialize(0);
    state.counters["share_percent"] = wall > 0 ? 100 * cpu / wall : 0;
    state.counters["setting_percent"] = threshold;
}
BENCHMARK(BM_ThrottledBusyLoop)->Arg(25)->Arg(50)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
