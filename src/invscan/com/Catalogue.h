#pragma once
// The schema catalogue: every group's id, name, attributes, keys and
// enumerations, compiled in as read-only data. Look-ups are linear scans over
// small arrays ended by sentinels.
#include <cstdint>

#include "framework/String.h"
#include "invscan/com/Export.h"
#include "invscan/com/KorTypes.h"

constexpr uint32_t KOR_END = 0xFFFFFFFFu;  // sentinel id / value

struct korEnumDef {
    uint32_t value;
    const char* text;
};

struct korAttribDef {
    uint32_t id;
    const char* name;
    uint32_t type;       // KorAttribType
    uint32_t maxLength;  // characters, for strings; 0 for numbers and times
    const korEnumDef* enumDef;
};

struct korGroupDef {
    uint32_t id;
    const char* name;
    const korAttribDef* attribs;
    const uint32_t* keys;
    uint32_t numKeys;
    uint32_t version;
    uint32_t debugMask;
};

// The records are 32-bit words on the target.
static_assert(sizeof(void*) != 4 || sizeof(korGroupDef) == 28, "korGroupDef is seven words");
static_assert(sizeof(void*) != 4 || sizeof(korAttribDef) == 20, "korAttribDef is five words");
static_assert(sizeof(void*) != 4 || sizeof(korEnumDef) == 8, "korEnumDef is two words");

INVSCAN_API extern const korGroupDef GROUPS_DEF[];

// Attribute tables of the groups.
INVSCAN_API extern const korAttribDef COMPONENTID_ATTRS_DEF[], PROCESSOR_ATTRS_DEF[], MEMORY_ATTRS_DEF[],
    OPER_SYS_ATTRS_DEF[], STORAGE_ATTRS_DEF[], IP_ADDR_ATTRS_DEF[], IPV6_ADDR_ATTRS_DEF[],
    KEYBOARD_ATTRS_DEF[], REGIONAL_ATTRS_DEF[], UNIX_PAR_ATTRS_DEF[], SCAN_INFO_ATTRS_DEF[],
    PART_ATTRS_DEF[], NET_ADPTR_ATTRS_DEF[], PCI_DEVICE_ATTRS_DEF[], PHYS_PROC_ATTRS_DEF[],
    LPAR_ATTRS_DEF[], VIRTUAL_MACHINE_GUEST_ATTRS_DEF[], CPU_METER_ATTRS_DEF[],
    CPU_UNIX_METER_ATTRS_DEF[], VIRTUAL_MACHINE_ATTRS_DEF[], PART2STOR_ATTRS_DEF[],
    SAN_ADAPTER_ATTRS_DEF[];

INVSCAN_API extern const uint32_t PROCESSOR_KEYS_DEF[], STORAGE_KEYS_DEF[], IP_ADDRESS_KEYS_DEF[],
    IPV6_ADDRESS_KEYS_DEF[], PARTITION_KEYS_DEF[], NETWORK_ADAPTER_KEYS_DEF[], PCI_DEVICE_KEYS_DEF[],
    PHYS_PROC_KEYS_DEF[], VIRTUAL_MACHINE_KEYS_DEF[], PART2STOR_KEYS_DEF[], SAN_ADAPTER_KEYS_DEF[];

// Categories no group of this library produces: kept as schema data only.
INVSCAN_API extern const korAttribDef LDOMS_ATTRS_DEF[], CPU_WIN_METER_ATTRS_DEF[], SCREEN_SAVER_INFO_ATTRS_DEF[],
    USER_ACCOUNT_INFO_ATTRS_DEF[], SERVICE_INFO_ATTRS_DEF[], MONITOR_ATTRS_DEF[], MODEM_ATTRS_DEF[],
    USB_DEVICE_ATTRS_DEF[], INSTALLED_PATCH_ATTRS_DEF[], VRX_CLUSTER_NODE_ATTRS_DEF[],
    VRX_CLUSTER_ATTRS_DEF[], WIN_CLUSTER_NODE_ATTRS_DEF[], WIN_CLUSTER_ATTRS_DEF[],
    INSTALLED_PKGS_ATTRS_DEF[], SMBIOS_ATTRS_DEF[], PARALLEL_PORT_ATTRS_DEF[], SERIAL_PORT_ATTRS_DEF[],
    LAST_USER_ATTRS_DEF[], PC_PAR_ATTRS_DEF[], ENCLOSURE_ATTRS_DEF[], PRINTER_ATTRS_DEF[],
    VIDEO_ATTRS_DEF[], IPX_ADDR_ATTRS_DEF[], LOG_DRIVE_ATTRS_DEF[], POINT_DEV_ATTRS_DEF[],
    DSK_PART_ATTRS_DEF[], OPER_SYS_CSIDL_ATTRS_DEF[], MEMORY_MODULES_ATTRS_DEF[];

INVSCAN_API extern const uint32_t LDOMS_KEYS_DEF[], VIRTUAL_MACHINE_GUEST_KEYS_DEF[], SCREEN_SAVER_INFO_KEYS_DEF[],
    SERVICE_INFO_KEYS_DEF[], MEMORY_MODULES_KEYS_DEF[], IPX_ADDR_KEYS_DEF[], DISK_PARTITION_KEYS_DEF[],
    LOGICAL_DRIVE_KEYS_DEF[], WIN_CLUSTER_NODE_KEYS_DEF[], WIN_CLUSTER_KEYS_DEF[],
    VRX_CLUSTER_NODE_KEYS_DEF[], VRX_CLUSTER_KEYS_DEF[], USER_ACCOUNT_INFO_KEYS_DEF[], MONITOR_KEYS_DEF[],
    INSTALLED_PATCH_KEYS_DEF[], MODEM_KEYS_DEF[], POINT_DEV_KEYS_DEF[], PRINTER_KEYS_DEF[],
    VIDEO_KEYS_DEF[], USB_DEVICE_KEYS_DEF[];

// Enumerations.
INVSCAN_API extern const korEnumDef REGIONAL_TZ_PLUS_MINUS[], REGIONAL_TZ_DAYLIGHT[],
    STORAGE_SECURITY_ENABLED_ENUM_DEF[], PART_TYPE_ENUM_DEF[], PART_MEDIA_TYPE_ENUM_DEF[],
    PROCESSOR_INTERFACE_ENUM_DEF[], ADAPTER_TYPE_ENUM_DEF[], OS_TYPE_ENUM_DEF[], STORAGE_TYPE_ENUM_DEF[],
    FILE_SYSTEM_TYPE_ENUM_DEF[], PROCESSOR_FAMILY_ENUM_DEF[], MONITOR_STATUS_ENUMS_DEF[],
    MODEM_DEVTYPE_ENUMS_DEF[], USB_DEVICE_IS_HUB_ENUM_DEF[], USB_DEVICE_CLASS_ENUM_DEF[],
    POINTING_DEVICE_TYPE_ENUM_DEF[], HWSEC_POP_ENUM_DEF[], KOR_ATTRIB_SMBIOS_ENCLOSURE_TYPE_ENUM_DEF[];

// "Unknown" when the id is not catalogued.
INVSCAN_API const char* getGroupNameFromId(unsigned long groupId);
// 0 when no name matches (case-sensitive, whole name).
INVSCAN_API unsigned long getGroupIdFromName(const String& name);
INVSCAN_API unsigned long getDebugMaskFromName(const char* name);
INVSCAN_API const korGroupDef* getGroupDefinitionFromId(unsigned long groupId);
INVSCAN_API const char* getAttribNameFromId(const korGroupDef* group, unsigned long attribId);
INVSCAN_API const korAttribDef* getAttribDefinitionFromId(const korGroupDef* group, unsigned long attribId);
INVSCAN_API const char* getEnumAsciiValue(const korGroupDef* group, unsigned long attribId, unsigned long value);

// The same id look-ups over another definition array (tables may carry one).
INVSCAN_API const char* getGroupNameFromId(const korGroupDef* defs, unsigned long groupId);
INVSCAN_API const korGroupDef* getGroupDefinitionFromId(const korGroupDef* defs, unsigned long groupId);
