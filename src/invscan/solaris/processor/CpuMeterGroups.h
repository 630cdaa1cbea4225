#pragma once
// "CpuMeter": processor tick counters from the kernel statistics;
// "UnixCpuMeter": the load averages. One row each.
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class INVSCAN_API CpuMeterGroup : public KorGroup {
public:
    CpuMeterGroup();
    KorTable* getTable() override;
};

class INVSCAN_API UnixCpuMeterGroup : public KorGroup {
public:
    UnixCpuMeterGroup();
    KorTable* getTable() override;
};

namespace sys {
class System;
}

// Processor 0's tick counters (see gatherCpuTicks) and how many "cpu_stat"
// records the chain holds.
struct CpuTicks {
    int processors = 0;
    unsigned long long idle = 0, user = 0, wait = 0, kernel = 0;
    unsigned long long total = 0;  // idle + user + kernel + wait, once per processor
};

// False (traced) when the statistics cannot be opened.
bool gatherCpuTicks(sys::System& os, CpuTicks& ticks);
// The counters divided by the processor count; zeros without processors.
void shapeCpuMeterRow(const CpuTicks& ticks, KorTable& table);
void shapeLoadRow(const double loads[3], KorTable& table);
