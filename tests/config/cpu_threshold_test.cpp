// The CPU throttle's arithmetic and its steps, on a clock the test drives:
// nothing here depends on how a busy machine shares its processors. How near
// a real busy loop stays to its percentage is measured in bench/.
#include <gtest/gtest.h>

#include <vector>

#include "framework/CpuThreshold.h"

namespace {

// A clock that moves only when the test says, and a sleep that is recorded
// (and moves the wall clock) instead of taken.
struct FakeClock {
    static double wall, cpu;
    static std::vector<double> sleeps;
    static double wallSeconds() { return wall; }
    static double cpuSeconds() { return cpu; }
    static void sleep(double seconds)
    {
        sleeps.push_back(seconds);
        wall += seconds;
    }
};
double FakeClock::wall = 1000, FakeClock::cpu = 5;
std::vector<double> FakeClock::sleeps;

const CpuThreshold::Clock fake = {FakeClock::wallSeconds, FakeClock::cpuSeconds, FakeClock::sleep};

class Throttle : public ::testing::Test {
protected:
    void SetUp() override
    {
        FakeClock::sleeps.clear();
        CpuThreshold::setClock(&fake);
    }
    void TearDown() override
    {
        CpuThreshold::Initialize(0);
        CpuThreshold::setClock(nullptr);
    }
    // One step of `cpu` seconds of work over `wall` seconds.
    static void step(double cpu, double wall)
    {
        FakeClock::cpu += cpu;
        FakeClock::wall += wall;
        CpuThreshold::doIteration();
    }
};

TEST_F(Throttle, SleepsWhatBringsEachStepDownToItsPercentage)
{
    const struct {
        int threshold;
        double cpu, wall, sleep;
    } cases[] = {
        {25, 0.3, 0.4, 0.8},       // 0.3 / (0.4 + 0.8) is a quarter
        {50, 1.0, 1.0, 1.0},       // a whole processor, halved
        {25, 0.1, 0.4, 0},         // exactly at the percentage
        {25, 0.05, 0.4, 0},        // under it
        {99, 1.0, 1.0, 0.010101},  // a hundredth over, still a sleep
        {90, 0.9005, 1.0, 0},      // a sleep under a millisecond is not worth taking
        {1, 400, 1.0, 30},         // capped
        {0, 1.0, 1.0, 0},          // off
        {25, 0.3, 0, 0},           // no time passed: nothing to say
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.threshold << "% " << c.cpu << " s cpu over " << c.wall << " s");
        EXPECT_NEAR(CpuThreshold::sleepFor(c.threshold, c.cpu, c.wall), c.sleep, 1e-6);
        CpuThreshold::Initialize(c.threshold);
        FakeClock::sleeps.clear();
        step(c.cpu, c.wall);
        EXPECT_NEAR(CpuThreshold::lastSleepSeconds(), c.sleep, 1e-6);
        EXPECT_EQ(FakeClock::sleeps.size(), c.sleep > 0 ? 1u : 0u) << "a step sleeps when, and only when, it must";
        if (!FakeClock::sleeps.empty()) {
            EXPECT_NEAR(FakeClock::sleeps[0], c.sleep, 1e-6);
        }
    }
}

TEST_F(Throttle, EachStepMeasuresFromTheEndOfTheLastOnesSleep)
{
    CpuThreshold::Initialize(25);
    step(0.3, 0.4);  // sleeps 0.8
    // Had the window started before that sleep, 0.3 s of cpu over 1.6 s
    // would be under the percentage and this step would not sleep.
    step(0.3, 0.4);
    EXPECT_NEAR(CpuThreshold::lastCpuSeconds(), 0.3, 1e-9);
    EXPECT_NEAR(CpuThreshold::lastWallSeconds(), 0.4, 1e-9);
    EXPECT_NEAR(CpuThreshold::totalSleepSeconds(), 1.6, 1e-6);
    step(0.0, 2.0);  // an idle step
    EXPECT_EQ(CpuThreshold::lastSleepSeconds(), 0.0);
    EXPECT_NEAR(CpuThreshold::totalSleepSeconds(), 1.6, 1e-6);

    // Initialize starts a fresh window and a fresh total: work done before it
    // is not the new setting's to pay for.
    FakeClock::cpu += 10;
    CpuThreshold::Initialize(25);
    EXPECT_EQ(CpuThreshold::totalSleepSeconds(), 0.0);
    step(0.1, 0.4);
    EXPECT_EQ(CpuThreshold::lastSleepSeconds(), 0.0);
}

TEST_F(Throttle, ZeroAndOutOfRangeValuesSwitchItOff)
{
    for (int threshold : {0, -5, 100, 250}) {
        SCOPED_TRACE(threshold);
        CpuThreshold::Initialize(threshold);
        step(1.0, 1.0);
        EXPECT_FALSE(CpuThreshold::isEnabled());
        EXPECT_EQ(CpuThreshold::totalSleepSeconds(), 0.0);
        EXPECT_TRUE(FakeClock::sleeps.empty());
    }
}

// The real clock: a step after burnt CPU measures it. Only the direction is
// asserted (the process used some CPU); how much the scheduler gave is not.
TEST(ThrottleRealClock, MeasuresThisProcessesCpu)
{
    CpuThreshold::setClock(nullptr);
    CpuThreshold::Initialize(0);
    volatile unsigned long sink = 0;
    for (unsigned long i = 0; i < 50000000UL; ++i) sink = sink + i;
    CpuThreshold::doIteration();
    EXPECT_GT(CpuThreshold::lastCpuSeconds(), 0.0);
    EXPECT_GT(CpuThreshold::lastWallSeconds(), 0.0);
    EXPECT_EQ(CpuThreshold::lastSleepSeconds(), 0.0);  // off: never sleeps
}

}  // namespace
