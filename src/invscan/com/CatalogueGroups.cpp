// The attribute and key tables of the groups this library produces, and the
// group table itself.
#include "invscan/com/CatalogueDefs.h"
#include "invscan/com/CatalogueIds.h"

// Counters of mainframe processor classes: part of the shared schema, never
// filled here.
#define MAINFRAME_CPU_COUNTERS(first)                                                                   \
    KFLOAT(first, "Cpu Total"), KFLOAT(first + 1, "Cpu Configured"), KFLOAT(first + 2, "Cpu Standby"), \
        KFLOAT(first + 3, "Cpu Reserved"), KFLOAT(first + 4, "Cpu Dedicated"),                         \
        KFLOAT(first + 5, "Cpu Shared"), KFLOAT(first + 6, "Ifl Total"),                               \
        KFLOAT(first + 7, "Ifl Dedicated"), KFLOAT(first + 8, "Ifl Shared"),                           \
        KFLOAT(first + 9, "Ifl Threads"), KFLOAT(first + 10, "Ziip Total"),                            \
        KFLOAT(first + 11, "Ziip Dedicated"), KFLOAT(first + 12, "Ziip Shared"),                       \
        KFLOAT(first + 13, "Ziip Threads"), KFLOAT(first + 14, "Zaap Total"),                          \
        KFLOAT(first + 15, "Zaap Dedicated"), KFLOAT(first + 16, "Zaap Shared"),                       \
        KFLOAT(first + 17, "Zaap Threads")

const korAttribDef COMPONENTID_ATTRS_DEF[] = {
    KSTR(CID_MANUFACTURER, "Manufacturer", 64), KSTR(CID_PRODUCT, "Product", 128), KSTR(3, "Version", 64),
    KSTR(CID_SERIAL_NUMBER, "Serial Number", 64), KSTR(5, "Installation", 64), KSTR(6, "Verify", 64),
    KSTR(CID_TYPE, "Type", 32), KSTR(8, "Model Class", 64), KSTR(9, "UUID", 64), KSTR(10, "Plant", 64),
    KSTR(11, "Sequence Code", 64), KSTR(12, "Model", 64), KSTR(CID_HW_SERIAL, "HW Serial", 128),
    KSTR(CID_PLATFORM, "Platform", 128), MAINFRAME_CPU_COUNTERS(15), KATTR_END};

const korAttribDef PROCESSOR_ATTRS_DEF[] = {
    KULONG(PROC_INDEX, "Index"), KSTR(PROC_ID, "ID", 32), KSTR(PROC_FAMILY, "Family", 32),
    KULONG(PROC_MAX_CLOCK, "MaxClockSpeed"), KULONG(PROC_CURRENT_CLOCK, "CurrentClockSpeed"),
    KULONG(PROC_EXTERNAL_CLOCK, "ExternalClockSpeed"), KSTR(PROC_MANUFACTURER, "Manufacturer", 128),
    KSTR(PROC_SERIAL_NUMBER, "Serial Number", 64), KSTR_ENUM(9, "Interface", 32, PROCESSOR_INTERFACE_ENUM_DEF),
    KULONG(PROC_CHIP_FAMILY, "Chip Family"), KULONG(PROC_CHIP_MODEL, "Chip Model"),
    KULONG(PROC_CHIP_STEPPING, "Chip Stepping"), KULONG(13, "Chip Features"),
    KSTR(14, "Floating Point Unit Present", 1), KSTR(15, "Virtual Mode Extensions", 1),
    KSTR(16, "Debug Extension Present", 1), KSTR(17, "Page Size Extensions", 1), KSTR(18, "Time Stamp Counter", 1),
    KSTR(19, "Model Specific Registers", 1), KSTR(20, "Physical Address Extensions", 1),
    KSTR(21, "Machine Check Exceptions", 1), KSTR(22, "CMPXCHG8B Instruction Support", 1),
    KSTR(23, "On chip APIC", 1), KSTR(24, "Fast System Call", 1), KSTR(25, "Memory Type Range Registers", 1),
    KSTR(26, "Page Global Enable", 1), KSTR(27, "Machine Check Architecture", 1),
    KSTR(28, "Conditional Move Instruction", 1), KSTR(29, "Page Attribute Table", 1),
    KSTR(30, "36-bit Page Size Extension", 1), KSTR(31, "Process Serial Number Enabled", 1),
    KSTR(32, "MMX(tm) Techonlogy", 1),  // spelled so: hosts match the name
    KSTR(33, "Fast Floating Point Save/Restore", 1), KSTR(34, "Streaming SIMD Extensions", 1),
    KSTR(35, "AMD 3DNow!(tm) Technology", 1), KULONG(36, "Board"), KULONG(37, "CPU Number"), KULONG(38, "Module"),
    KSTR(39, "Ecache MB", 16), KSTR(40, "CPU Impl", 16), KSTR(41, "CPU Mask", 16),
    KSTR(PROC_CPU_ENABLED, "CPU Enabled", 1), KULONG(43, "Physical Package Count"),
    KULONG(44, "CorePerPackage Count"), KULONG(45, "LogicalProcPerCore Count"), KATTR_END};

const korAttribDef MEMORY_ATTRS_DEF[] = {
    KULONG(MEM_TOTAL_PHYSICAL, "Total Physical"), KULONG(MEM_FREE_PHYSICAL, "Free Physical"),
    KULONG(MEM_TOTAL_VIRTUAL, "Total Virtual"), KULONG(MEM_FREE_VIRTUAL, "Free Virtual"),
    KULONG(MEM_TOTAL_PAGE, "Total Page"), KULONG(MEM_FREE_PAGE, "Free Page"), KULONG(MEM_PAGE_SIZE, "Page Size"),
    KULONG(MEM_MAX_MEMORY_MB, "Max Memory MB"), KULONG(MEM_NUM_SLOTS, "Num Slots Supported"), KATTR_END};

const korAttribDef OPER_SYS_ATTRS_DEF[] = {
    KSTR(OS_NAME, "Name", 128), KULONG_ENUM(OS_TYPE, "Type", OS_TYPE_ENUM_DEF),
    KULONG(OS_MAJOR_VERSION, "Major Version"), KULONG(OS_MINOR_VERSION, "Minor Version"),
    KSTR(OS_SUB_VERSION, "Sub Version", 64), KTIME(OS_INSTALL_DATE, "Install Date"),
    KSTR(7, "Registered Organization", 255), KSTR(8, "Registered Owner", 255), KSTR(9, "Product ID", 64),
    KSTR(OS_ARCH, "OS Arch", 24), KSTR(OS_KERNEL_MODE, "OS Kernel Mode", 24),
    KSTR(OS_DESCRIPTION, "Description String", 255), KSTR(OS_LANGUAGE_VERSION, "OS Language Version", 64),
    KSTR(OS_LOCALE_ID, "OS Locale ID", 64), KSTR(OS_MESSAGES_LOCALE, "OS Messages Locale", 64),
    KTIME(OS_LAST_BOOT_UP_TIME, "Last Boot Up Time"), KSTR(OS_CURRENT_USER_LOCALE_ID, "Current User Locale ID", 64),
    KSTR(OS_OS_NAME, "OS Name", 64), KSTR(OS_OS_VERSION, "OS Version", 64), KULONG(20, "ServicePack Version Major"),
    KULONG(21, "ServicePack Version Minor"), KULONG(OS_MAINTENANCE_LEVEL, "Maintenance Level"), KATTR_END};

const korAttribDef STORAGE_ATTRS_DEF[] = {
    KULONG(STOR_INDEX, "Index"), KSTR(STOR_ID, "ID", 32), KULONG_ENUM(STOR_TYPE, "Type", STORAGE_TYPE_ENUM_DEF),
    KSTR(STOR_MODEL, "Model", 255), KSTR(STOR_MANUFACTURER, "Manufacturer", 128),
    KSTR(STOR_SERIAL_NUMBER, "Serial Number", 64), KULONG(STOR_CYLINDERS, "Cylinders"),
    KULONG(STOR_SECTORS, "Sectors"), KULONG(STOR_HEADS, "Heads"), KULONG(STOR_TOTAL_SIZE, "Total Size"),
    KULONG_ENUM(11, "Security Enabled", STORAGE_SECURITY_ENABLED_ENUM_DEF), KSTR(STOR_DEVICE, "Device", 50),
    KSTR(STOR_IS_SAN_DISK, "Is SAN Disk", 1), KSTR(STOR_WWNN, "WWNN", 50), KSTR(STOR_WWPN, "WWPN", 50),
    KSTR(STOR_SAN_ADAPTER, "SAN Adapter", 50), KATTR_END};

const korAttribDef IP_ADDR_ATTRS_DEF[] = {
    KULONG(IP_INDEX, "Index"), KSTR(IP_ADDRESS, "Address", 40),
    KSTR(IP_DHCP_ENABLED, "DHCP Enabled", 1),  // third on purpose although its id is 9
    KSTR(IP_HOSTNAME, "Hostname", 64), KSTR(IP_DOMAIN, "Domain", 64), KSTR(IP_SUBNET, "Subnet", 40),
    KSTR(IP_GATEWAY, "Gateway", 40), KSTR(IP_PRIMARY_DNS, "Primary DNS", 40),
    KSTR(IP_SECONDARY_DNS, "Secondary DNS", 40), KSTR(IP_PERMANENT_MAC, "Permanent Mac Address", 64),
    KSTR(IP_IPV6_ADDRESS, "IPV6Address", 64), KATTR_END};

const korAttribDef IPV6_ADDR_ATTRS_DEF[] = {
    KULONG(IPV6_INDEX, "Index"), KSTR(IPV6_ADDRESS, "Address", 40), KSTR(IPV6_HOSTNAME, "Hostname", 64),
    KSTR(IPV6_DOMAIN, "Domain", 64), KSTR(IPV6_SUBNET, "Subnet", 40), KSTR(IPV6_GATEWAY, "Gateway", 40),
    KSTR(IPV6_PRIMARY_DNS, "Primary DNS", 40), KSTR(IPV6_SECONDARY_DNS, "Secondary DNS", 40),
    KSTR(IPV6_PERMANENT_MAC, "Permanent Mac Address", 64), KSTR(IPV6_SCOPE, "Scope", 24),
    KSTR(IPV6_ADAPTER_NAME, "Adapter Name", 128), KATTR_END};

const korAttribDef KEYBOARD_ATTRS_DEF[] = {
    KSTR(KBD_TYPE, "Type", 255), KSTR(KBD_SUB_TYPE, "Sub Type", 64), KSTR(KBD_CODE_PAGE, "Code Page", 64),
    KULONG(KBD_FUNCTION_KEYS, "Number of Function Keys"), KULONG(KBD_CHARACTERS_PER_SECOND, "Characters per Second"),
    KULONG(KBD_REPEAT_DELAY, "Repeat Delay"), KATTR_END};

const korAttribDef REGIONAL_ATTRS_DEF[] = {
    KSTR(REG_LOCAL, "Local", 32), KULONG(REG_TZ_SECONDS, "Time Zone Seconds"),
    KULONG_ENUM(REG_TZ_PLUS_MINUS, "Time Zone Plus Minus", REGIONAL_TZ_PLUS_MINUS),
    KULONG_ENUM(REG_DAYLIGHT, "Daylight", REGIONAL_TZ_DAYLIGHT), KSTR(REG_TZ_NAME, "Time Zone Name", 64),
    KSTR(REG_TZ_DAYLIGHT_NAME, "Time Zone Daylight Name", 64), KATTR_END};

const korAttribDef UNIX_PAR_ATTRS_DEF[] = {
    KTIME(UNIX_BOOT_TIME, "Boot Time"), KULONG(UNIX_RUN_LEVEL, "Run Level"), KSTR(UNIX_HOSTNAME, "Hostname", 255),
    KSTR(UNIX_COMPUTER_ALIAS, "Computer Alias", 32), KATTR_END};

const korAttribDef SCAN_INFO_ATTRS_DEF[] = {
    KSTR(SCAN_MANUFACTURER, "Manufacturer", 64), KULONG(SCAN_MAJOR_VERSION, "Major Version"),
    KULONG(SCAN_MINOR_VERSION, "Minor Version"), KULONG(SCAN_MAINTENANCE_VERSION, "Maintenance Version"),
    KULONG(SCAN_PATCH_LEVEL, "Patch Level"), KTIME(SCAN_DATE, "Scan Date"), KSTR(SCAN_BUILD, "Build", 64),
    KULONG(SCAN_UPTIME, "Uptime"), KULONG(SCAN_MOBILITY_FLAG, "MobilityFlag"), KATTR_END};

const korAttribDef PART_ATTRS_DEF[] = {
    KULONG(PART_INDEX, "Index"), KULONG_ENUM(PART_TYPE, "Type", PART_TYPE_ENUM_DEF),
    KULONG_ENUM(PART_MEDIA_TYPE, "Media Type", PART_MEDIA_TYPE_ENUM_DEF), KSTR(PART_DEVICE_NAME, "Device Name", 64),
    KULL(PART_PHYSICAL_SIZE, "Physical Size"), KULONG_ENUM(PART_FS_TYPE, "FS Type", FILE_SYSTEM_TYPE_ENUM_DEF),
    KSTR(PART_FS_ACCESS_POINT, "FS Access Point", 255), KSTR(PART_FS_MOUNT_POINT, "FS Mount Point", 255),
    KULL(PART_FS_TOTAL_SIZE, "FS Total Size"), KULL(PART_FS_FREE_SIZE, "FS Free Size"),
    KSTR(PART_SERVER_HOSTNAME, "Server Hostname", 255), KSTR(PART_SERVER_PATH, "Server Path", 255), KATTR_END};

const korAttribDef NET_ADPTR_ATTRS_DEF[] = {
    KULONG(NET_INDEX, "Index"), KSTR(NET_ID, "ID", 32), KSTR(NET_PERMANENT_ADDRESS, "Permanent Address", 64),
    KSTR(NET_CURRENT_ADDRESS, "Current Address", 64), KULONG_ENUM(NET_TYPE, "Type", ADAPTER_TYPE_ENUM_DEF),
    KSTR(NET_MODEL, "Model", 255), KSTR(NET_MANUFACTURER, "Manufacturer", 128),
    KTIME(NET_INSTALL_DATE, "Install Date"), KSTR(NET_CONNECTOR_TYPE, "Connector Type", 128),
    KSTR(NET_PHYSICAL_TYPE, "Physical Type", 64), KSTR(NET_ETHERCHANNEL_DEVICES, "EtherChannel devices", 128),
    KSTR(NET_DRIVER_PATH, "Driver Path", 255), KSTR(NET_DRIVER_VERSION, "Driver Version", 255),
    KSTR(NET_DRIVER_NAME, "Driver Name", 255), KSTR(NET_DRIVER_MANUFACTURER, "Driver Manufacturer", 255), KATTR_END};

const korAttribDef PCI_DEVICE_ATTRS_DEF[] = {
    KULONG(PCI_INDEX, "Index"), KSTR(PCI_NAME, "Name", 180), KSTR(PCI_REVISION, "Revision", 4), KATTR_END};

const korAttribDef PHYS_PROC_ATTRS_DEF[] = {
    KSTR(PHYS_ID, "Id", 64), KSTR(PHYS_MANUFACTURER, "Manufacturer", 64), KSTR(PHYS_FAMILY, "Family", 64),
    KSTR(PHYS_TYPE, "Type", 64), KULONG(PHYS_CORES_PER_PACKAGE, "Core Per Package Count"),
    KULONG(PHYS_LOGICAL_PER_CORE, "Logical Proc Per Core"), KULONG(PHYS_CPU_FREQ, "CpuFreq"),
    KULONG(PHYS_L2_CACHE, "L2 Cache Size"), KULONG(PHYS_L3_CACHE, "L3 Cache Size"),
    KSTR(PHYS_BRANDNAME, "Brandname", 128), KSTR(PHYS_SIGNATURE, "Signature", 128),
    KSTR(PHYS_IS_64BIT, "Is64BitSupported", 1), KULONG(PHYS_ACTIVE_PROCESSORS, "Active Processor Count"),
    KULONG(PHYS_ACTIVE_CORES, "Active Core Count"), KATTR_END};

// Table order is display order; there is deliberately no attribute 1.
const korAttribDef LPAR_ATTRS_DEF[] = {
    KSTR(LPAR_ID, "Lpar ID", 32), KSTR(LPAR_SHARED_POOL_ID, "SharedPool ID", 16),
    KFLOAT(LPAR_NODE_CAPACITY, "Node Capacity"), KFLOAT(LPAR_NODE_CAPACITY_CORES, "Node Capacity In Cores"),
    KFLOAT(LPAR_CAPACITY, "Lpar Capacity"), KFLOAT(LPAR_CAPACITY_CORES, "Lpar Capacity In Cores"),
    KFLOAT(LPAR_POOL_CAPACITY, "SharedPool Capacity"),
    KFLOAT(LPAR_POOL_CAPACITY_CORES, "SharedPool Capacity In Cores"), KFLOAT(12, "Physical SharedPool Capacity"),
    KFLOAT(13, "Physical SharedPool Capacity In Cores"), KFLOAT(LPAR_ONLINE_VP_COUNT, "Lpar Online VP Count"),
    KFLOAT(LPAR_ONLINE_PROCESSOR_COUNT, "Lpar Online Processor Count"),
    KFLOAT(LPAR_ONLINE_CORE_COUNT, "Lpar Online Core Count"),
    KFLOAT(LPAR_ONLINE_PACKAGE_COUNT, "Lpar Online Package Count"), KSTR(LPAR_SERIAL_NUMBER, "Serial Number", 64),
    KSTR(14, "Lpar Is Shared Type", 1), KSTR(15, "Lpar Is Capped", 1), KFLOAT(16, "Lpar Entitlement"),
    KFLOAT(17, "Lpar Min VP Count"), KFLOAT(18, "Lpar Max VP Count"), KFLOAT(19, "Lpar Min Capacity"),
    KFLOAT(20, "Lpar Max Capacity"), KFLOAT(21, "Lpar Idle Capacity Weight"), KSTR(22, "Smt Is Enabled", 1),
    KFLOAT(23, "Node Active Processors Count"), KFLOAT(27, "Node Active Core Count"),
    KFLOAT(28, "Node Active Package Count"), KFLOAT(LPAR_NODE_TOTAL_PROCESSORS, "Node Total Processors Count"),
    KFLOAT(LPAR_NODE_TOTAL_CORES, "Node Total Core Count"),
    KFLOAT(LPAR_NODE_TOTAL_PACKAGES, "Node Total Package Count"), KSTR(LPAR_TYPE, "Lpar Type", 100),
    KSTR(LPAR_PROCESSOR_SET_NAME, "Processor Set Name", 32), KSTR(34, "Processor Feature Code", 32),
    KFLOAT(35, "Processor Core Count"), KSTR(36, "LdomIsPresent", 1), KSTR(37, "LdomIsControl", 1),
    KFLOAT(38, "SubProcessor Mode"), MAINFRAME_CPU_COUNTERS(39), KFLOAT(57, "Ifl Capacity Cap"),
    KFLOAT(58, "Ifl Capacity Cap In Cores"), KSTR(59, "LparGroupName", 64), KFLOAT(60, "LparGroupCpCapacity"),
    KFLOAT(61, "LparGroupIflCapacity"), KFLOAT(62, "LparGroupZiipCapacity"), KATTR_END};

const korAttribDef VIRTUAL_MACHINE_GUEST_ATTRS_DEF[] = {
    KSTR(GUEST_UUID, "UUID", 48), KSTR(2, "DynamicID", 16), KSTR(3, "MaxEntitlement", 16),
    KSTR(4, "CpuPercentage", 16), KFLOAT(5, "CapacityInCores"), KSTR(6, "RsetID", 50), KULONG(7, "RsetCpuCount"),
    KSTR(8, "RsetCpuList", 500), KSTR(GUEST_HYPERVISOR_TYPE, "HypervisorType", 50), KATTR_END};

const korAttribDef CPU_METER_ATTRS_DEF[] = {
    KULONG(METER_IDLE_TIME, "IdleTime"), KULONG(METER_USER_TIME, "UserTime"), KULONG(METER_WAIT_TIME, "WaitTime"),
    KULONG(METER_SYS_TIME, "SysTime"), KULONG(METER_SYSTEM_UP_TIME, "SystemUpTime"), KATTR_END};

const korAttribDef CPU_UNIX_METER_ATTRS_DEF[] = {
    KFLOAT(METER_LOAD_AVG_1, "LoadAvg1"), KFLOAT(METER_LOAD_AVG_5, "LoadAvg5"),
    KFLOAT(METER_LOAD_AVG_15, "LoadAvg15"), KATTR_END};

const korAttribDef VIRTUAL_MACHINE_ATTRS_DEF[] = {
    KSTR(VM_NAME, "Name", 128), KULONG(VM_NUMBER, "Number"), KSTR(VM_ID, "VirtualMachineID", 48),
    KSTR(4, "OSType", 24), KULONG(5, "VirtualCPUs"), KFLOAT(6, "Entitlement"), KFLOAT(7, "MaxEntitlement"),
    KULONG(8, "ReservedMemoryMB"), KULONG(9, "TotalMemoryMB"), KSTR(10, "State", 16), KSTR(11, "Startup", 16),
    KSTR(12, "CpuPercentage", 16), KSTR(VM_TYPE, "Type", 16), KSTR(VM_MOUNT_POINT, "MountPoint", 16),
    KFLOAT(15, "CpusConfigured"), KFLOAT(16, "CpuTotal"), KFLOAT(17, "CpuStandby"), KFLOAT(18, "CpuReserved"),
    KFLOAT(19, "CpuDedicated"), KFLOAT(20, "CpuShared"), KFLOAT(21, "IflTotal"), KFLOAT(22, "IflDedicated"),
    KFLOAT(23, "IflShared"), KFLOAT(24, "ZiipTotal"), KFLOAT(25, "ZiipDedicated"), KFLOAT(26, "ZiipShared"),
    KFLOAT(27, "CpCapacityCap"), KFLOAT(28, "IflCapacityCap"), KFLOAT(29, "ZiipCapacityCap"),
    KFLOAT(30, "CpCapacityCapInCores"),
    KFLOAT(53, "ZiipCapacityCapInCores"),  // stands here on purpose, out of id order
    KSTR(31, "VirtualLayerID", 48), KULONG(32, "IflDispatchType"), KULONG(33, "CpDispatchType"),
    KSTR(VM_SHARED_POOL_ID, "SharedPool ID", 128), KFLOAT(VM_SHARED_POOL_CAPACITY, "SharedPool Capacity In Cores"),
    KFLOAT(36, "IflThreads"), KFLOAT(37, "ZiipThreads"), KFLOAT(38, "CpThreads"), KFLOAT(39, "IflCapacityCapInCores"),
    KFLOAT(40, "CpWeight"), KFLOAT(41, "IflWeight"), KFLOAT(42, "ZiipWeight"), KFLOAT(43, "CpLimit"),
    KFLOAT(44, "IflLimit"), KFLOAT(45, "ZiipLimit"), KFLOAT(46, "ZiipDispatchType"),
    KFLOAT(47, "Cluster Name"), KFLOAT(48, "Control Program ID"),  // typed so deliberately
    KFLOAT(49, "CoreTotal"), KFLOAT(50, "CoreDedicated"), KFLOAT(51, "CoreShared"), KFLOAT(52, "CpMaxWeight"),
    KATTR_END};

const korAttribDef PART2STOR_ATTRS_DEF[] = {
    KULONG(P2S_INDEX, "Index"), KSTR(P2S_PARTITION_ACCESS_POINT, "PartitionAccessPoint", 255),
    KSTR(P2S_STORAGE_DEVICE, "StorageDevice", 50), KATTR_END};

const korAttribDef SAN_ADAPTER_ATTRS_DEF[] = {
    KULONG(SAN_INDEX, "Index"), KSTR(SAN_ID, "Id", 100), KSTR(SAN_DESCRIPTION, "Description", 500),
    KSTR(SAN_WWNN, "WWNN", 50), KSTR(SAN_WWPN, "WWPN", 50), KSTR(SAN_MANUFACTURER, "Manufacturer", 100),
    KSTR(SAN_MODEL, "Model", 100), KSTR(SAN_SERIAL_NUMBER, "SerialNumber", 100), KSTR(SAN_STATE, "State", 50),
    KSTR(SAN_SPEED, "Speed", 50), KATTR_END};

const uint32_t PROCESSOR_KEYS_DEF[] = {PROC_INDEX, PROC_ID};
const uint32_t STORAGE_KEYS_DEF[] = {STOR_INDEX, STOR_ID};
const uint32_t IP_ADDRESS_KEYS_DEF[] = {IP_ADDRESS};
const uint32_t IPV6_ADDRESS_KEYS_DEF[] = {IPV6_ADDRESS};
const uint32_t PARTITION_KEYS_DEF[] = {PART_INDEX, PART_FS_ACCESS_POINT, PART_FS_MOUNT_POINT};
const uint32_t NETWORK_ADAPTER_KEYS_DEF[] = {NET_ID};
const uint32_t PCI_DEVICE_KEYS_DEF[] = {PCI_INDEX, PCI_NAME};
const uint32_t PHYS_PROC_KEYS_DEF[] = {PHYS_ID};
const uint32_t VIRTUAL_MACHINE_KEYS_DEF[] = {VM_ID};
const uint32_t PART2STOR_KEYS_DEF[] = {P2S_INDEX};
const uint32_t SAN_ADAPTER_KEYS_DEF[] = {SAN_INDEX, SAN_ID};

#define KGROUP(id, name, attrs, keys) {id, name, attrs, keys, sizeof(keys) / sizeof(uint32_t), 1, 0}
#define KGROUP_NOKEYS(id, name, attrs) {id, name, attrs, nullptr, 0, 1, 0}

const korGroupDef GROUPS_DEF[] = {
    KGROUP_NOKEYS(COMPONENT_ID_GROUP, "ComponentID", COMPONENTID_ATTRS_DEF),
    KGROUP(PROCESSOR_GROUP, "Processor", PROCESSOR_ATTRS_DEF, PROCESSOR_KEYS_DEF),
    KGROUP_NOKEYS(MEMORY_GROUP, "Memory", MEMORY_ATTRS_DEF),
    KGROUP_NOKEYS(OPERATING_SYSTEM_GROUP, "Operating System", OPER_SYS_ATTRS_DEF),
    KGROUP(STORAGE_GROUP, "Storage", STORAGE_ATTRS_DEF, STORAGE_KEYS_DEF),
    KGROUP(IP_ADDRESS_GROUP, "IP Address", IP_ADDR_ATTRS_DEF, IP_ADDRESS_KEYS_DEF),
    KGROUP(IPV6_ADDRESS_GROUP, "IPv6 Address", IPV6_ADDR_ATTRS_DEF, IPV6_ADDRESS_KEYS_DEF),
    KGROUP_NOKEYS(KEYBOARD_GROUP, "Keyboard", KEYBOARD_ATTRS_DEF),
    KGROUP_NOKEYS(REGIONAL_GROUP, "Regional", REGIONAL_ATTRS_DEF),
    KGROUP_NOKEYS(UNIX_SYSTEM_PARAMS_GROUP, "UNIX System Params", UNIX_PAR_ATTRS_DEF),
    KGROUP_NOKEYS(SCAN_INFO_GROUP, "Scan Info", SCAN_INFO_ATTRS_DEF),
    KGROUP(PARTITION_GROUP, "Partition", PART_ATTRS_DEF, PARTITION_KEYS_DEF),
    KGROUP(NETWORK_ADAPTER_GROUP, "Network Adapter", NET_ADPTR_ATTRS_DEF, NETWORK_ADAPTER_KEYS_DEF),
    KGROUP(PCI_DEVICE_GROUP, "PCI Device", PCI_DEVICE_ATTRS_DEF, PCI_DEVICE_KEYS_DEF),
    KGROUP(PHYSICAL_PROCESSOR_GROUP, "PhysicalProcessor", PHYS_PROC_ATTRS_DEF, PHYS_PROC_KEYS_DEF),
    KGROUP_NOKEYS(LPAR_GROUP, "Lpar", LPAR_ATTRS_DEF),
    KGROUP_NOKEYS(VIRTUAL_MACHINE_GUEST_GROUP, "VirtualMachineGuest", VIRTUAL_MACHINE_GUEST_ATTRS_DEF),
    KGROUP_NOKEYS(CPU_METER_GROUP, "CpuMeter", CPU_METER_ATTRS_DEF),
    KGROUP_NOKEYS(UNIX_CPU_METER_GROUP, "UnixCpuMeter", CPU_UNIX_METER_ATTRS_DEF),
    KGROUP(VIRTUAL_MACHINE_GROUP, "VirtualMachine", VIRTUAL_MACHINE_ATTRS_DEF, VIRTUAL_MACHINE_KEYS_DEF),
    KGROUP(PARTITION_TO_STORAGE_GROUP, "PartitionToStorage", PART2STOR_ATTRS_DEF, PART2STOR_KEYS_DEF),
    KGROUP(SAN_ADAPTER_GROUP, "SAN Adapter", SAN_ADAPTER_ATTRS_DEF, SAN_ADAPTER_KEYS_DEF),
    {KOR_END, nullptr, nullptr, nullptr, 0, 0, 0},
};
