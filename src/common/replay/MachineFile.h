#pragma once
// A machine kept as text: what its system calls answer, one facility a line
// (the format of tests/machines/README.md), read into a simulated system. A
// capture of a real machine is one such file, its first line the format's
// word and version; a simulated machine is a folder: "machine.txt", and what
// its probes print under "probes/".
#include <cstddef>
#include <iosfwd>
#include <map>
#include <string>

#include "common/replay/SimulatedSystem.h"

namespace replay {

constexpr const char* kFormatWord = "invscan-machine";
constexpr int kFormatVersion = 1;
// A capture's last line: without it the file was cut short.
constexpr const char* kEndWord = "end-of-capture";
// No capture is larger (two probe answers at their 16 MiB bound, the rest).
constexpr size_t kMaxCaptureBytes = 128u << 20;

// Reads lines into `os`; false with `error` naming the line it could not
// read. `needVersion` (a capture): the first line must be the format line,
// and the last the end line.
bool readMachine(std::istream& in, const std::string& name, bool needVersion, SimulatedSystem& os, std::string& error);
// A simulated machine's folder.
bool loadMachine(const std::string& dir, SimulatedSystem& os, std::string& error);
// A capture file, or a simulated machine's folder.
bool loadReplay(const std::string& path, SimulatedSystem& os, std::string& error);

// The names the file gives sysinfo and sysconf commands, and errno values.
const std::map<std::string, int>& sysinfoNames();
const std::map<std::string, int>& sysconfNames();
std::string nameOf(const std::map<std::string, int>& names, int value);  // the number when unnamed
std::string errnoName(int error);

// Bytes as lower-case hexadecimal, and back (false on an odd length or a non-digit).
std::string toHex(const std::string& bytes);
bool fromHex(const std::string& text, std::string& bytes);

}  // namespace replay
