#include "invscan/solaris/virtualization/VirtualMachineGuestGroup.h"

#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/VirtualMachineInfo.h"
#include "common/util/ApiGuard.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/VirtualMachineGuestGroup";
const char* const kFunction = "getTable()";
}  // namespace

VirtualMachineGuestGroup::VirtualMachineGuestGroup() : KorGroup(VIRTUAL_MACHINE_GUEST_GROUP, 1) {}

KorTable* VirtualMachineGuestGroup::getTable()
{
    return api::guardedTable("VirtualMachineGuestGroup::getTable()", [&]() -> KorTable* {
        const int log = getCcLogHw();
        CcLogWrapper::traceMidEntry(log, __LINE__, kSource, kFunction, "hardware %s", "VirtualMachineGuestGroup");
        VirtualMachineInfo info;
        KorTable* table = nullptr;
        if (getVirtualMachineInfo(info) && info.isVirtualMachine) {
            const char* type = VirtualMachineInfo::virtualizationNames[info.virtualizationType];
            table = new KorTable(getGroupId(), getGroupVersion());
            RowBuilder row(VIRTUAL_MACHINE_GUEST_GROUP);
            CcLogWrapper::traceMAX(log, __LINE__, kSource, kFunction, "hardware UUID = %s ", info.uuid.c_str());
            row.text(GUEST_UUID, info.uuid);
            CcLogWrapper::traceMAX(log, __LINE__, kSource, kFunction, "hardware Hypervisor type = %s ", type);
            row.text(GUEST_HYPERVISOR_TYPE, type);
            row.addTo(*table);
        }
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, kFunction, "hardware %s", "VirtualMachineGuestGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(VIRTUAL_MACHINE_GUEST_GROUP, VirtualMachineGuestGroup);
