#pragma once
// A started child's standard output, read until the child ends it, a
// deadline passes or a byte bound is reached, with its standard error (when
// we hold it) drained so it can never block on it; then the child ended:
// waited for until the deadline, killed with its group if it runs on or broke
// a bound, and reaped. The probe runner and the command runner read their
// children this one way.
#include <sys/types.h>

#include <cstddef>

namespace sys {

// A moment (monotonicMillis()) past which no child read here runs, whatever
// its own bound: a host's deadline for the whole scan, to the millisecond.
// -1, the default: none.
void setLatestEnd(long long deadlineMs);

class ChildOutput {
public:
    // Reads the descriptors `out` and `err` (-1: none), and closes them in
    // finish() when `own`; a caller that keeps them closes them itself before
    // finish(). `deadlineMs` of monotonicMillis(), -1 for none (the latest
    // end above, when set, is the earlier of the two); `limit`
    // bytes of output at most.
    ChildOutput(pid_t pid, int out, int err, long long deadlineMs, size_t limit, bool own = true);
    ~ChildOutput();  // ends the child as finish() does
    ChildOutput(const ChildOutput&) = delete;
    ChildOutput& operator=(const ChildOutput&) = delete;

    // Up to `length` bytes of output: 0 at its end, at the deadline or past
    // the bound; -1 on a read error.
    long read(char* buffer, size_t length);
    bool timedOut() const { return m_timedOut; }
    bool overflowed() const { return m_total > m_limit; }

    enum class End {
        Exited,      // ended by itself; its raw status taken
        TimedOut,    // ran past the deadline: killed
        Overflowed,  // printed past the bound: killed
        Gone         // ended, its status taken by the host (SIGCHLD ignored, a reaper)
    };
    // Closes our ends first, so a child still writing gets SIGPIPE instead of
    // blocking, then ends it as above. The raw status in `*status` for
    // Exited and for a killed child that we reaped. Once; later calls repeat
    // the first answer.
    End finish(int* status);

private:
    void stopReading(int& fd);

    pid_t m_pid;
    int m_out, m_err;
    long long m_deadline;
    size_t m_limit, m_total = 0;
    bool m_own, m_timedOut = false, m_finished = false;
    End m_end = End::Gone;
    int m_status = 0;
};

}  // namespace sys
