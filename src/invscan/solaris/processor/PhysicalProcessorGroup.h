#pragma once
// "PhysicalProcessor": one row per processor package, from the cpuid probe's
// tree.
#include <string>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class KorTable;
struct VtExecInfo;

class INVSCAN_API PhysicalProcessorGroup : public KorGroup {
public:
    PhysicalProcessorGroup();
    KorTable* getTable() override;
};

struct PhysicalPackage {
    std::string id;  // the Processor rows' ID text of this package, and its place
    std::string manufacturer, family, type, brand, signature, is64bit;
    int coresPerPackage = 1, threadsPerCore = 1;
    int clockMHz = 0, l2KB = 0, l3KB = 0;
    int activeProcessors = -1, activeCores = -1;
};

// All or nothing, as the Processor group: false (traced) when the probe
// failed, a package it counts is missing, or the packages claim more than
// kMaxProcessorCores cores (never the scanning host's count).
bool gatherPhysicalPackages(VtExecInfo* info, std::vector<PhysicalPackage>& packages);
void shapePhysicalProcessorRows(const std::vector<PhysicalPackage>& packages, KorTable& table);
