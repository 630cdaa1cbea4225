#pragma once
// Facts of the running system that several description groups share
// (operating system, regional settings, UNIX parameters, scan information),
// each read through the OS seam, and the pure readers of their texts.
#include <map>
#include <string>

namespace sys {
class System;
}

namespace systemfacts {

// sysinfo(2) text of `command`; empty when the system does not answer.
std::string sysinfoText(sys::System& os, int command);

// The last boot: the login records' boot record, else the kernel's
// "unix:0:system_misc" boot_time; -1 when neither tells.
long long bootTime(sys::System& os);
// The level of the last run-level record ('S' reads as 1), or -1.
int runLevel(sys::System& os);

// KEY=VALUE lines as /etc/default files hold them: '#' comments, blanks
// around, quotes and a leading "export " taken off; the last setting wins.
std::map<std::string, std::string> parseSettings(const std::string& text);
// The settings of a file through the seam; empty when it cannot be read.
std::map<std::string, std::string> readSettings(sys::System& os, const char* path);

// The locales of the machine and of this process.
struct Locales {
    std::string system;    // the system default (LC_ALL, else LANG), "C" when unset
    std::string messages;  // the system default for messages
    std::string user;      // this process's (LC_ALL, else LANG), the system's when unset
};
Locales readLocales(sys::System& os);
// "en" of "en_US.UTF-8"; "C" and "POSIX" stay as they are.
std::string languageOf(const std::string& locale);

// The text without blanks (and line ends) at either end.
std::string trimmed(const std::string& text);

}  // namespace systemfacts
