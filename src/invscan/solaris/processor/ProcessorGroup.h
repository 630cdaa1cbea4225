#pragma once
// "Processor": one row per core, from the cpuid probe's tree. The same unit
// holds the small PROM device-tree walkers the identity group uses.
#include "common/sys/SolarisTypes.h"
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

#include <string>
#include <vector>

class KorTable;
struct VtExecInfo;

class INVSCAN_API ProcessorGroup : public KorGroup {
public:
    ProcessorGroup();
    KorTable* getTable() override;
};

// What the cpuid tree says of one physical package.
struct ProcessorPackage {
    std::string manufacturer;
    int clockMHz = 0;
    int family = 0, model = 0, stepping = 0;
    int cores = 1;
    int threadsPerCore = 1;
};

struct ProcessorFacts {
    std::vector<ProcessorPackage> packages;  // in package order
};

struct VtNode;
// The probe's "ProcessorTable" and its package count (at least 1), or null
// after the trace line of what was wrong, in the name of `source`.
VtNode* cpuidProcessorTable(VtExecInfo* info, const char* source, int& packages);

// More cores than this no machine has: a probe claiming them is broken. It
// is a fixed ceiling, never the scanning host's count: a zone bound to a
// processor set, a replayed capture of a bigger machine or a scripted probe
// all show more cores than the process may count.
constexpr long kMaxProcessorCores = 65536;

// Reads the probe's tree, all or nothing: false (with its trace line) when
// the probe failed, a package is missing, or the packages claim more than
// kMaxProcessorCores cores.
bool gatherProcessorFacts(VtExecInfo* info, ProcessorFacts& facts);
// The text a package's ID digests: the same package gives the same text on
// every scan.
std::string processorIdText(const ProcessorPackage& p);
// One row per core, Index counting across packages, one ID per package.
void shapeProcessorRows(const ProcessorFacts& facts, KorTable& table);

// A PROM request buffer with room for `size` data bytes, zero-filled, its
// size field set to `size`; release it with opp_free.
openpromio* opp_zalloc(unsigned int size);
void opp_free(openpromio* p);

// The sibling and the first child of PROM node `node` on the open PROM
// device `fd` (0: none); -1 when the request fails.
int peer(int node, int fd);
int child(int node, int fd);
