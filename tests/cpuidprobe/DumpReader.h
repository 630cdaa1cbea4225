#pragma once
// Reads captured CPUID dumps into per-processor register sets: AIDA64 text
// ("CPUID xxxxxxxx: EAX-EBX-ECX-EDX" under "Logical CPU #n" sections) and
// `cpuid -r` raw output ("CPU n:" then "0xleaf 0xsub: eax=... ebx=...").
#include <string>
#include <vector>

#include "probes/cpuid/Decoder.h"

namespace cpuidtest {

std::vector<cpuid::CpuDump> readDumpText(const std::string& text);
// Empty when the file cannot be read.
std::vector<cpuid::CpuDump> readDumpFile(const std::string& path);

}  // namespace cpuidtest
