#include "invscan/com/CatalogueChanges.h"

#include "invscan/com/Catalogue.h"
#include "invscan/com/CatalogueIds.h"

const korAttribRef VOLATILE_ATTRS_DEF[] = {
    {MEMORY_GROUP, MEM_FREE_PHYSICAL},
    {MEMORY_GROUP, MEM_FREE_VIRTUAL},
    {MEMORY_GROUP, MEM_FREE_PAGE},
    {OPERATING_SYSTEM_GROUP, OS_LAST_BOOT_UP_TIME},
    {UNIX_SYSTEM_PARAMS_GROUP, UNIX_BOOT_TIME},
    {SCAN_INFO_GROUP, SCAN_DATE},
    {SCAN_INFO_GROUP, SCAN_UPTIME},
    {PARTITION_GROUP, PART_FS_FREE_SIZE},
    {CPU_METER_GROUP, METER_IDLE_TIME},
    {CPU_METER_GROUP, METER_USER_TIME},
    {CPU_METER_GROUP, METER_WAIT_TIME},
    {CPU_METER_GROUP, METER_SYS_TIME},
    {CPU_METER_GROUP, METER_SYSTEM_UP_TIME},
    {UNIX_CPU_METER_GROUP, METER_LOAD_AVG_1},
    {UNIX_CPU_METER_GROUP, METER_LOAD_AVG_5},
    {UNIX_CPU_METER_GROUP, METER_LOAD_AVG_15},
    {KOR_END, 0},
};

const korAttribRef IDENTITY_ATTRS_DEF[] = {
    {LPAR_GROUP, LPAR_ID},
    {VIRTUAL_MACHINE_GUEST_GROUP, GUEST_UUID},
    {KOR_END, 0},
};

const korAttribRef MACHINE_ATTRS_DEF[] = {
    {COMPONENT_ID_GROUP, CID_SERIAL_NUMBER},
    {COMPONENT_ID_GROUP, CID_HW_SERIAL},
    {UNIX_SYSTEM_PARAMS_GROUP, UNIX_HOSTNAME},
    {KOR_END, 0},
};

// A zone's path, which runs past 16 characters on most machines.
const korAttribRef UNBOUNDED_ATTRS_DEF[] = {
    {VIRTUAL_MACHINE_GROUP, VM_MOUNT_POINT},
    {KOR_END, 0},
};

// The tick counters are 64-bit, as the group's hosts read them: a 32-bit
// counter of a long-running machine wraps.
const korAttribTypeRef WIDER_ATTRS_DEF[] = {
    {CPU_METER_GROUP, METER_IDLE_TIME, KOR_ULONGLONG},
    {CPU_METER_GROUP, METER_USER_TIME, KOR_ULONGLONG},
    {CPU_METER_GROUP, METER_WAIT_TIME, KOR_ULONGLONG},
    {CPU_METER_GROUP, METER_SYS_TIME, KOR_ULONGLONG},
    {CPU_METER_GROUP, METER_SYSTEM_UP_TIME, KOR_ULONGLONG},
    {KOR_END, 0, 0},
};

namespace {
bool listed(const korAttribRef* list, unsigned long groupId, unsigned long attribId)
{
    for (const korAttribRef* a = list; a->groupId != KOR_END; ++a)
        if (a->groupId == groupId && a->attribId == attribId) return true;
    return false;
}
}  // namespace

bool isVolatileAttrib(unsigned long groupId, unsigned long attribId)
{
    return listed(VOLATILE_ATTRS_DEF, groupId, attribId);
}

bool isUnboundedAttrib(unsigned long groupId, unsigned long attribId)
{
    return listed(UNBOUNDED_ATTRS_DEF, groupId, attribId);
}

uint32_t getCarriedType(unsigned long groupId, unsigned long attribId, uint32_t catalogued)
{
    for (const korAttribTypeRef* a = WIDER_ATTRS_DEF; a->groupId != KOR_END; ++a)
        if (a->groupId == groupId && a->attribId == attribId) return a->type;
    return catalogued;
}

unsigned long getIdentityAttribId(unsigned long groupId)
{
    for (const korAttribRef* a = IDENTITY_ATTRS_DEF; a->groupId != KOR_END; ++a)
        if (a->groupId == groupId) return a->attribId;
    return 0;
}
