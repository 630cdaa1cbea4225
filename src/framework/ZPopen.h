#pragma once
// The command runner: one program with its arguments, no shell, its standard
// output as lines and its exit status. A run is bounded by the configuration
// key "hwscanner.timeout": 1 to 86400 seconds, 600 when absent or invalid
// (the same rule as the scanner's own probe time-out).
#include <string>
#include <vector>

#include "framework/String.h"

class ZPopen {
public:
    explicit ZPopen(const String& program, const std::vector<String>& args = {});
    // The program and its arguments as one vector (the Solaris command
    // table's form); an empty vector runs nothing and fails.
    explicit ZPopen(const std::vector<std::string>& argv);

    // Runs the program to its end; the exit status, or -1 when it could not
    // start, was killed by a signal or outlived the time-out.
    int run();

    int exitStatus() const { return m_status; }
    bool timedOut() const { return m_timedOut; }
    const std::vector<std::string>& lines() const { return m_lines; }  // UTF-8, without line ends

private:
    std::vector<std::string> m_argv;
    std::vector<std::string> m_lines;
    int m_status = -1;
    bool m_timedOut = false;
};
