#pragma once
// The Solaris system files and commands that describe a machine, answered on
// Linux from Linux's own sources, so the groups read one shape everywhere.
// `root` prefixes every Linux path read ("" on a live machine; a test tree
// otherwise).
#if defined(__linux__)

#include <string>
#include <vector>

namespace sys {
namespace linuxanswers {

// "/etc/release" (the release banner, from os-release), "/etc/mnttab" (the
// mount table, from /proc/self/mounts), "/etc/default/init"
// (TZ and the locale settings of the system), "/etc/default/kbd" (the
// console's layout). False for any other path, or when Linux has nothing to say.
bool answerFile(const std::string& path, const std::string& root, std::string& text);

// "prtconf -pv" (a PROM node per PCI function, from sysfs) and "kbd -t -l"
// (the first keyboard the kernel knows and the configured layout; exit
// status 1 and no output without one, as kbd without a keyboard). False for
// any other command.
bool answerRun(const std::vector<std::string>& argv, const std::string& root, std::vector<std::string>& lines,
               int& status);

// The shell commands that ask which zone the process runs in: "zonename
// 2>/dev/null" (no output and status 127, as a shell without the program;
// a zonename on the PATH is never run) and "LANG=C; ps -o zone|zoneid -p PID ... |
// sed '2q;d' ..." (no output: Linux's ps has no zone column). Linux has no
// zones, and asking a shell, ps and sed to say so costs four processes.
// False for any other command.
bool answerShell(const std::string& command, std::string& output, int& status);

// A file's first line without its line end and trailing blanks; empty when unreadable.
std::string firstLine(const std::string& path);

// The kernel's boot time (/proc/stat "btime"), or -1.
long long bootTime(const std::string& root);

}  // namespace linuxanswers
}  // namespace sys

#endif  // __linux__
