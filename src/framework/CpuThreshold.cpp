#include "framework/CpuThreshold.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "framework/Trace.h"

namespace {

double processCpuSeconds();

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void sleepSeconds(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

const CpuThreshold::Clock realClock = {steadySeconds, processCpuSeconds, sleepSeconds};

struct State {
    int threshold = 0;
    int niceApplied = 0;
    const CpuThreshold::Clock* clock = &realClock;
    double markWall = steadySeconds();
    double markCpu = 0;
    double lastCpu = 0;
    double lastWall = 0;
    double lastSleep = 0;
    double totalSleep = 0;
};

State& state()
{
    static State s;
    return s;
}

double seconds(const timeval& tv)
{
    return static_cast<double>(tv.tv_sec) + static_cast<double>(tv.tv_usec) / 1e6;
}

// User and system time of this process and of its children already waited
// for: the probes the scan runs are part of its load.
double processCpuSeconds()
{
    double total = 0;
    rusage usage{};
    if (getrusage(RUSAGE_SELF, &usage) == 0) total += seconds(usage.ru_utime) + seconds(usage.ru_stime);
    usage = rusage{};
    if (getrusage(RUSAGE_CHILDREN, &usage) == 0) total += seconds(usage.ru_utime) + seconds(usage.ru_stime);
    return total;
}

void mark(State& s)
{
    s.markWall = s.clock->wallSeconds();
    s.markCpu = s.clock->cpuSeconds();
}

}  // namespace

void CpuThreshold::Initialize(int cpuThreshold, int priority)
{
    State& s = state();
    s.threshold = (cpuThreshold > 0 && cpuThreshold < 100) ? cpuThreshold : 0;
    s.lastCpu = s.lastWall = s.lastSleep = s.totalSleep = 0;
    if (priority > s.niceApplied) {
        const int step = priority > 19 ? 19 - s.niceApplied : priority - s.niceApplied;
        errno = 0;
        if (step > 0 && (nice(step) != -1 || errno == 0)) s.niceApplied += step;
    }
    Trace(Tracer::getInstance(Tracer::FRAMEWORK), "CpuThreshold::Initialize")
        << "cpuThreshold=" << s.threshold << " nice=" << s.niceApplied;
    mark(s);
}

void CpuThreshold::doIteration()
{
    State& s = state();
    const double now = s.clock->wallSeconds();
    const double cpu = s.clock->cpuSeconds();
    s.lastWall = now - s.markWall;
    s.lastCpu = cpu - s.markCpu;
    s.lastSleep = sleepFor(s.threshold, s.lastCpu, s.lastWall);
    if (s.lastSleep > 0) {
        s.clock->sleep(s.lastSleep);
        s.totalSleep += s.lastSleep;
    }
    mark(s);
}

double CpuThreshold::sleepFor(int threshold, double cpuSeconds, double wallSeconds)
{
    if (threshold <= 0 || threshold >= 100 || wallSeconds <= 0 || cpuSeconds <= 0) return 0;
    // cpu / (wall + sleep) == share
    double sleep = cpuSeconds / (threshold / 100.0) - wallSeconds;
    if (sleep > MAX_SLEEP_MS / 1000.0) sleep = MAX_SLEEP_MS / 1000.0;
    return sleep > 0.001 ? sleep : 0;
}

void CpuThreshold::setClock(const Clock* clock)
{
    state().clock = clock ? clock : &realClock;
    mark(state());
}

int CpuThreshold::getThreshold() { return state().threshold; }
bool CpuThreshold::isEnabled() { return state().threshold > 0; }
double CpuThreshold::lastCpuSeconds() { return state().lastCpu; }
double CpuThreshold::lastWallSeconds() { return state().lastWall; }
double CpuThreshold::lastSleepSeconds() { return state().lastSleep; }
double CpuThreshold::totalSleepSeconds() { return state().totalSleep; }
