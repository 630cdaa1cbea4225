#pragma once
// The gathering step: what the operating system and each online logical
// processor say. Implemented once per platform (platform_*.cpp).
#include <cstdio>
#include <string>
#include <vector>

#include "probes/cpuid/Decoder.h"
#include "probes/cpuid/Firmware.h"

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
    Firmware firmware;                         // what the SMBIOS tables say, when there are any
};

// Fills `machine`. False, with a reason in `error`, when nothing could be
// read. Details go to `debug` when it is not null.
bool gatherMachine(Machine& machine, std::string& error, FILE* debug);

// The firmware's SMBIOS entry point and structure table (2.x or 3.x); false
// when the machine shows none, which is no error.
bool readFirmwareTables(std::string& entryPoint, std::string& table);

}  // namespace cpuid
