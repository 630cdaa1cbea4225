#pragma once
// "VirtualMachineGuest": one row on a virtual machine guest (its UUID and
// hypervisor), no table on a physical machine or when the probe failed.
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class INVSCAN_API VirtualMachineGuestGroup : public KorGroup {
public:
    VirtualMachineGuestGroup();
    KorTable* getTable() override;
};
