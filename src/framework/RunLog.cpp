#include "framework/RunLog.h"

#include <sys/wait.h>

#include <deque>
#include <exception>
#include <mutex>

namespace runlog {
namespace {

const size_t kKept = 1000;

struct Log {
    std::mutex lock;
    std::deque<Run> runs;
};

Log& log()
{
    static Log l;
    return l;
}

}  // namespace

void record(const std::string& what, double seconds, int status)
{
    try {
        Log& l = log();
        std::lock_guard<std::mutex> hold(l.lock);
        l.runs.push_back({what, seconds, status});
        if (l.runs.size() > kKept) l.runs.pop_front();
    } catch (const std::exception&) {
        // Out of memory: the run goes unrecorded; the scan goes on.
    }
}

std::vector<Run> take()
{
    Log& l = log();
    std::lock_guard<std::mutex> hold(l.lock);
    std::vector<Run> out(l.runs.begin(), l.runs.end());
    l.runs.clear();
    return out;
}

int exitStatus(int waitStatus) { return waitStatus != -1 && WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : -1; }

Timed::~Timed()
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - m_start;
    record(m_what, elapsed.count(), m_status);
}

}  // namespace runlog
