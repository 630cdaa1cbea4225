#include "invscan/solaris/virtualization/VirtualMachineGroup.h"

#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "common/util/ApiGuard.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/VirtualMachineGroup";
const char* const kFunction = "getTable()";
#define VM_TRACE(...) CcLogWrapper::traceMAX(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)
}  // namespace

void shapeVirtualMachineRows(const std::vector<Zone::ZoneInfo>& zones, KorTable& table)
{
    unsigned int number = 0;
    for (const Zone::ZoneInfo& z : zones) {
        const int n = static_cast<int>(number);
        RowBuilder row(VIRTUAL_MACHINE_GROUP);
        VM_TRACE("hardware Virtual Machine %d, Name = %s ", n, z.name.c_str());
        row.text(VM_NAME, z.name);
        VM_TRACE("hardware Virtual Machine %d, Number = [%d] ", n, n);
        row.number(VM_NUMBER, number);
        VM_TRACE("hardware Virtual Machine %d, ID = %s ", n, z.hostid.c_str());
        row.text(VM_ID, z.hostid);
        VM_TRACE("hardware Virtual Machine %d, shared pool ID (name) = %s ", n, z.sharedPoolName.c_str());
        row.text(VM_SHARED_POOL_ID, z.sharedPoolName);
        VM_TRACE("hardware Virtual Machine %d, shared pool capacity = %f ", n, static_cast<double>(z.sharedPoolCapacity));
        row.real(VM_SHARED_POOL_CAPACITY, z.sharedPoolCapacity);
        VM_TRACE("hardware Virtual Machine %d, zone type = %s ", n, z.typeDisplayed.c_str());
        row.text(VM_TYPE, z.typeDisplayed);
        VM_TRACE("hardware Virtual Machine %d, MountPoint = %s ", n, z.path.c_str());
        row.text(VM_MOUNT_POINT, z.path);
        row.addTo(table);
        ++number;
    }
}

VirtualMachineGroup::VirtualMachineGroup() : KorGroup(VIRTUAL_MACHINE_GROUP, 1) {}

KorTable* VirtualMachineGroup::getTable()
{
    return api::guardedTable("VirtualMachineGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "VirtualMachineGroup");
        const std::shared_ptr<const Zone> scanned = scanZone();
        const Zone& zone = *scanned;
        KorTable* table = nullptr;
        if (!zone.isInsideZone())
            VM_TRACE("hardware %s", "no table: this machine has no zones");
        else if (zone.getChildZonesInfo().empty())
            VM_TRACE("hardware %s", "no table: no zone other than this one is configured here");
        else {
            table = new KorTable(getGroupId(), getGroupVersion());
            shapeVirtualMachineRows(zone.getChildZonesInfo(), *table);
        }
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "VirtualMachineGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(VIRTUAL_MACHINE_GROUP, VirtualMachineGroup);
