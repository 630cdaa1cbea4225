#pragma once
// "VirtualMachine": one row per zone hosted by this global (or kernel) zone.
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"
#include "invscan/solaris/virtualization/Zone.h"

class INVSCAN_API VirtualMachineGroup : public KorGroup {
public:
    VirtualMachineGroup();
    KorTable* getTable() override;
};

// Seven attributes per child zone; Number is the zone's place in the list.
void shapeVirtualMachineRows(const std::vector<Zone::ZoneInfo>& zones, KorTable& table);
