// The CPU throttle holds a busy loop near its percentage. Measured loosely:
// the machine is shared, so only bounds that a working throttle always meets
// and a broken one misses are asserted.
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>

#include "framework/CpuThreshold.h"

namespace {

double cpuNow() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

// Burns about `seconds` of CPU.
void burn(double seconds)
{
    const double until = cpuNow() + seconds;
    volatile unsigned long sink = 0;
    while (cpuNow() < until)
        for (int i = 0; i < 10000; ++i) sink = sink + static_cast<unsigned long>(i);
}

struct Measured {
    double cpu;
    double wall;
};

Measured busyScan(int threshold, int steps)
{
    CpuThreshold::Initialize(threshold);
    const auto start = std::chrono::steady_clock::now();
    const double cpuStart = cpuNow();
    for (int i = 0; i < steps; ++i) {
        burn(0.03);
        CpuThreshold::doIteration();
    }
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return {cpuNow() - cpuStart, wall};
}

class Throttle : public ::testing::Test {
protected:
    void TearDown() override { CpuThreshold::Initialize(0); }
};

TEST_F(Throttle, HoldsABusyLoopNearItsPercentage)
{
    const Measured run = busyScan(25, 25);
    const double share = run.cpu / run.wall;
    RecordProperty("cpu_share_percent", static_cast<int>(share * 100 + 0.5));
    // Unthrottled, the loop would use close to 100 %.
    EXPECT_LT(share, 0.25 + 0.12) << "cpu " << run.cpu << " s over " << run.wall << " s";
    EXPECT_GT(CpuThreshold::totalSleepSeconds(), run.cpu);
}

TEST_F(Throttle, ZeroAndOutOfRangeValuesSwitchItOff)
{
    for (int threshold : {0, -5, 100, 250}) {
        SCOPED_TRACE(threshold);
        busyScan(threshold, 3);
        EXPECT_FALSE(CpuThreshold::isEnabled());
        EXPECT_EQ(CpuThreshold::totalSleepSeconds(), 0.0);
    }
}

}  // namespace
