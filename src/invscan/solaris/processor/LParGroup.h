#pragma once
// "Lpar": how much processor capacity the machine (node), this zone (the
// partition) and its resource pool own, in packages and in cores, from the
// cpuid probe, the zone reader, the SMBIOS table and sysinfo. One row.
#include <string>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"
#include "invscan/solaris/virtualization/Zone.h"

class KorTable;
struct VtExecInfo;

class INVSCAN_API LParGroup : public KorGroup {
public:
    LParGroup();
    KorTable* getTable() override;
};

// What the probe says of the processors, summed over its chips.
struct LparChips {
    int activePackages = -1, totalPackages = -1, activeCores = -1, totalCores = -1, onlineProcessors = -1;
    int biosTotalProcessors = -1, biosTotalCores = -1, biosTotalPackages = -1, biosActiveCores = -1,
        biosActivePackages = -1;
    float sumPackageCap = 0, sumCoreCap = 0, sumPoolPackageCap = 0, sumPoolCoreCap = 0;
    bool allChipsRead = false;
    bool vmware = false;  // the hypervisor leaf says VMware
};

// The probe's tree into chip facts (tracing each chip); false when the probe
// result is unusable.
bool gatherLparChips(VtExecInfo* probe, LparChips& chips);

// The zone's view, as the capacity arithmetic needs it.
struct LparZone {
    bool inside = false, global = false, kernel = false, inPool = false;
    Zone::ZoneInfo info;
};

// The row: the capacities by the zone case, the SMBIOS limit, the VMware
// rule and the serial; the reduced eight-attribute row when a chip was missing.
void shapeLparRow(const LparChips& chips, const LparZone& zone, const std::string& smbiosSerial, KorTable& table);
