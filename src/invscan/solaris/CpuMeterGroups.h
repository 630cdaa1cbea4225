#pragma once
// "CpuMeter": processor tick counters from the kernel statistics;
// "UnixCpuMeter": the load averages. One row each.
#include "invscan/com/KorGroup.h"

class CpuMeterGroup : public KorGroup {
public:
    CpuMeterGroup();
    KorTable* getTable() override;
};

class UnixCpuMeterGroup : public KorGroup {
public:
    UnixCpuMeterGroup();
    KorTable* getTable() override;
};
