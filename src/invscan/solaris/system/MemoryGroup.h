#pragma once
// "Memory": physical memory from the system configuration values, swap from
// the swap control interface, virtual memory as their sum; one row.
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;

class INVSCAN_API MemoryGroup : public KorGroup {
public:
    MemoryGroup();
    KorTable* getTable() override;
};

// -1 where the system could not give a figure.
struct MemoryFacts {
    long pageSize = -1;
    long physPages = -1;
    long freePages = -1;
    long long swapTotalKB = 0;  // the devices' sum, or the anonymous-memory figures
    long long swapFreeKB = 0;
};

MemoryFacts gatherMemoryFacts(sys::System& os);
// One row in KB and pages; a figure that could not be had is 0.
void shapeMemoryRow(const MemoryFacts& facts, KorTable& table);
