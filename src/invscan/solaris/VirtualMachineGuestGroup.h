#pragma once
// "VirtualMachineGuest": one row on a virtual machine guest (its UUID and
// hypervisor), no table on a physical machine or when the probe failed.
#include "invscan/com/KorGroup.h"

class VirtualMachineGuestGroup : public KorGroup {
public:
    VirtualMachineGuestGroup();
    KorTable* getTable() override;
};
