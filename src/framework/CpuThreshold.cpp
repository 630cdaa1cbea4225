#include "framework/CpuThreshold.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "framework/Trace.h"

namespace {

struct State {
    int threshold = 0;
    int niceApplied = 0;
    std::chrono::steady_clock::time_point markWall = std::chrono::steady_clock::now();
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
    s.markWall = std::chrono::steady_clock::now();
    s.markCpu = processCpuSeconds();
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
    const auto now = std::chrono::steady_clock::now();
    const double cpu = processCpuSeconds();
    s.lastWall = std::chrono::duration<double>(now - s.markWall).count();
    s.lastCpu = cpu - s.markCpu;
    s.lastSleep = 0;
    if (s.threshold > 0 && s.lastWall > 0 && s.lastCpu > 0) {
        const double share = s.threshold / 100.0;
        // cpu / (wall + sleep) == share
        double sleep = s.lastCpu / share - s.lastWall;
        if (sleep > MAX_SLEEP_MS / 1000.0) sleep = MAX_SLEEP_MS / 1000.0;
        if (sleep > 0.001) {
            std::this_thread::sleep_for(std::chrono::duration<double>(sleep));
            s.lastSleep = sleep;
            s.totalSleep += sleep;
        }
    }
    mark(s);
}

int CpuThreshold::getThreshold() { return state().threshold; }
bool CpuThreshold::isEnabled() { return state().threshold > 0; }
double CpuThreshold::lastCpuSeconds() { return state().lastCpu; }
double CpuThreshold::lastWallSeconds() { return state().lastWall; }
double CpuThreshold::lastSleepSeconds() { return state().lastSleep; }
double CpuThreshold::totalSleepSeconds() { return state().totalSleep; }
