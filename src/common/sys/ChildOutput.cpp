#include "common/sys/ChildOutput.h"

#include "common/sys/Spawn.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace sys {

namespace {
std::atomic<long long> g_latestEnd{-1};

long long earlier(long long deadline)
{
    const long long latest = g_latestEnd;
    if (latest < 0) return deadline;
    return deadline < 0 || latest < deadline ? latest : deadline;
}
}  // namespace

void setLatestEnd(long long deadlineMs) { g_latestEnd = deadlineMs; }

ChildOutput::ChildOutput(pid_t pid, int out, int err, long long deadlineMs, size_t limit, bool own)
    : m_pid(pid), m_out(out), m_err(err), m_deadline(earlier(deadlineMs)), m_limit(limit), m_own(own)
{
}

ChildOutput::~ChildOutput()
{
    int status;
    finish(&status);
}

void ChildOutput::stopReading(int& fd)
{
    if (m_own)
        closeFd(fd);
    else
        fd = -1;
}

long ChildOutput::read(char* buffer, size_t length)
{
    for (;;) {
        if (overflowed() || m_timedOut || m_out < 0) return 0;
        int wait = -1;
        if (m_deadline >= 0) {
            const long long left = m_deadline - monotonicMillis();
            if (left <= 0) {
                m_timedOut = true;
                return 0;
            }
            wait = static_cast<int>(left > 60000 ? 60000 : left);
        }
        struct pollfd p[2] = {{m_out, POLLIN, 0}, {m_err, POLLIN, 0}};
        const int r = poll(p, m_err >= 0 ? 2 : 1, wait);
        if (r < 0 && errno != EINTR) return -1;
        if (r <= 0) continue;
        if (m_err >= 0 && p[1].revents) {
            char sink[4096];
            const ssize_t n = ::read(m_err, sink, sizeof sink);
            if (n == 0 || (n < 0 && errno != EINTR && errno != EAGAIN)) stopReading(m_err);
        }
        if (p[0].revents) {
            const ssize_t n = ::read(m_out, buffer, length);
            if (n < 0 && (errno == EINTR || errno == EAGAIN)) continue;
            if (n > 0) m_total += static_cast<size_t>(n);
            return static_cast<long>(n);
        }
    }
}

ChildOutput::End ChildOutput::finish(int* status)
{
    if (!m_finished) {
        m_finished = true;
        stopReading(m_out);
        stopReading(m_err);
        Child child = Child::Running;
        // A child that closed its output may still run: the deadline holds for it too.
        if (!m_timedOut && !overflowed() && m_pid > 0) child = reapBy(m_pid, &m_status, m_deadline);
        if (m_pid <= 0) {
            m_end = End::Gone;
        } else if (child == Child::Running) {
            m_end = overflowed() ? End::Overflowed : End::TimedOut;
            if (m_end == End::TimedOut) m_timedOut = true;
            killGroup(m_pid);
            if (reap(m_pid, &m_status) != Child::Exited) m_status = 0;
        } else {
            m_end = child == Child::Exited ? End::Exited : End::Gone;
        }
    }
    *status = m_status;
    return m_end;
}

}  // namespace sys
