#pragma once
// The host id on Linux from local facts only. glibc's gethostid() reads
// "/etc/hostid" and, where it is absent, resolves the host name and takes its
// address: a scan then waits on DNS (5 s a time-out) for a number Solaris
// keeps in the kernel. Here: "/etc/hostid" where it holds one (glibc's
// binary form, 4 bytes in native order), else the first 8 hexadecimal digits
// of "/etc/machine-id" (systemd's, or D-Bus's "/var/lib/dbus/machine-id"),
// else the last 4 bytes of the first non-loopback interface's MAC address by
// name order, else 0. No name is resolved and no socket opened.
#if defined(__linux__)

#include <stdint.h>

#include <string>

namespace sys {

// The host id, and in `source` where it came from ("/etc/hostid",
// "/etc/machine-id", "/var/lib/dbus/machine-id", "MAC of eth0", "none").
// `root` prefixes every path ("" on a live machine).
uint32_t localHostId(const std::string& root, std::string& source);

}  // namespace sys

#endif  // __linux__
