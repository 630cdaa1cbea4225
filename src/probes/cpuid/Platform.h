#pragma once
// The gathering step: what the operating system and each online logical
// processor say. Implemented once per platform (platform_*.cpp).
#include <cstdio>
#include <string>
#include <vector>

#include "probes/cpuid/Decoder.h"

namespace cpuid {

struct LogicalProcessor {
    int osId = -1;  // the operating system's processor number
    CpuDump dump;   // asked while bound to that processor
    int clockMHz = 0;
};

struct Machine {
    std::vector<LogicalProcessor> processors;  // those we could run on
    int onlineCount = 0;                       // online by the OS's count
    std::string osArch;                        // e.g. "x86_64", "i386"
    std::string osKernelMode;                  // "64-bit" or "32-bit"
};

// Fills `machine`. False, with a reason in `error`, when nothing could be
// read. Details go to `debug` when it is not null.
bool gatherMachine(Machine& machine, std::string& error, FILE* debug);

}  // namespace cpuid
