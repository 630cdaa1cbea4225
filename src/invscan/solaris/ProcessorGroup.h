#pragma once
// "Processor": one row per core, from the cpuid probe's tree. The same unit
// holds the small PROM device-tree walkers the identity group uses.
#include "common/sys/SolarisTypes.h"
#include "invscan/com/KorGroup.h"

class ProcessorGroup : public KorGroup {
public:
    ProcessorGroup();
    KorTable* getTable() override;
};

// A PROM request buffer with room for `size` data bytes, zero-filled, its
// size field set to `size`; release it with opp_free.
openpromio* opp_zalloc(unsigned int size);
void opp_free(openpromio* p);

// The sibling and the first child of PROM node `node` on the open PROM
// device `fd` (0: none); -1 when the request fails.
int peer(int node, int fd);
int child(int node, int fd);
