#pragma once
// Where a scan's time went: each probe and command the scanner ran, with its
// wall time and exit status, in the order they ended. A host takes the list
// after a scan (the command line's --timing); nothing in the scanner reads it.
#include <chrono>
#include <string>
#include <vector>

namespace runlog {

struct Run {
    std::string what;  // the program and its arguments, or the shell command line
    double seconds = 0;
    int status = -1;  // the exit status; -1 when it could not run, was killed or timed out
};

// Keeps the last 1000 runs: a host that never takes them stays bounded.
void record(const std::string& what, double seconds, int status);
// The runs recorded since the last take, oldest first.
std::vector<Run> take();

// The exit status a pclose result encodes, or -1 (killed, not run).
int exitStatus(int waitStatus);

// Times its scope and records it when the scope ends, with the status last set.
class Timed {
public:
    explicit Timed(std::string what) : m_what(std::move(what)), m_start(std::chrono::steady_clock::now()) {}
    ~Timed();
    Timed(const Timed&) = delete;
    Timed& operator=(const Timed&) = delete;
    void setStatus(int status) { m_status = status; }

private:
    std::string m_what;
    std::chrono::steady_clock::time_point m_start;
    int m_status = -1;
};

}  // namespace runlog
