#pragma once
// "Memory": physical memory from the system configuration values, swap from
// the swap control interface, virtual memory as their sum; one row.
#include "invscan/com/KorGroup.h"

class MemoryGroup : public KorGroup {
public:
    MemoryGroup();
    KorTable* getTable() override;
};
