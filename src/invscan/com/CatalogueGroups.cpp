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
    KULONG(PROC_CHIP_STEPPING, "Chip Stepping"),
    KULONG(13, "Chip Features"), KSTR(14, "Floating Point Unit Present", 1),
    KSTR(15, "Virtual Mode Extensions", 1), KSTR(16, "Debug Extension Present", 1),
    KSTR(17, "Page Size Extensions", 1), KSTR(18, "Time Stamp Counter", 1),
    KSTR(19, "Model Specific Registers", 1), KSTR(20, "Physical Address Extensions", 1),
    KSTR(21, "Machine Check Exceptions", 1), KSTR(22, "CMPXCHG8B Instruction Support", 1),
    KSTR(23, "On chip APIC", 1), KSTR(24, "Fast System Call", 1), KSTR(25, "Memory Type Range Registers", 1),
    KSTR(26, "Page Global Enable", 1), KSTR(27, "Machine Check Architecture", 1),
    KSTR(28, "Conditional Move Instruction", 1), KSTR(29, "Page Attribute Table", 1),
    KSTR(30, "36-bit Page Size Extension", 1), KSTR(31, "Process Serial Number Enabled", 1),
    KSTR(32, "MMX(tm) Techonlogy", 1),  // spelled so: hosts match the name
    KSTR(33, "Fast Floating Point Save/Restore", 1), KSTR(34, "Streaming SIMD Extensions", 1),
    KSTR(35, "AMD 3DNow!(tm) Technology", 1), KULONG(36, "Board"), KULONG(37, "CPU Number"),
    KULONG(38, "Module"), KSTR(39, "Ecache MB", 16), KSTR(40, "CPU Impl", 16), KSTR(41, "CPU Mask", 16),
    KSTR(PROC_CPU_ENABLED, "CPU Enabled", 1), KULONG(43, "Physical Package Count"), KULONG(44, "CorePerPackage Count"),
    KULONG(45, "LogicalProcPerCore Count"), KATTR_END};

const korAttribDef MEMORY_ATTRS_DEF[] = {
    KULONG(MEM_TOTAL_PHYSICAL, "Total Physical"), KULONG(MEM_FREE_PHYSICAL, "Free Physical"),
    KULONG(MEM_TOTAL_VIRTUAL, "Total Virtual"), KULONG(MEM_FREE_VIRTUAL, "Free Virtual"),
    KULONG(MEM_TOTAL_PAGE, "Total Page"), KULONG(MEM_FREE_PAGE, "Free Page"), KULONG(MEM_PAGE_SIZE, "Page Size"),
    KULONG(MEM_MAX_MEMORY_MB, "Max Memory MB"), KULONG(MEM_NUM_SLOTS, "Num Slots Supported"), KATTR_END};

const korAttribDef OPER_SYS_ATTRS_DEF[] = {
    KSTR(1, "Name", 128), KULONG_ENUM(2, "Type", OS_TYPE_ENUM_DEF), KULONG(3, "Major Version"),
    KULONG(4, "Minor Version"), KSTR(5, "Sub Version", 64), KTIME(6, "Install Date"),
    KSTR(7, "Registered Organization", 255), KSTR(8, "Registered Owner", 255), KSTR(9, "Product ID", 64),
    KSTR(10, "OS Arch", 24), KSTR(11, "OS Kernel Mode", 24), KSTR(12, "Description String", 255),
    KSTR(13, "OS Language Version", 64), KSTR(14, "OS Locale ID", 64), KSTR(15, "OS Messages Locale", 64),
    KTIME(16, "Last Boot Up Time"), KSTR(17, "Current User Locale ID", 64), KSTR(18, "OS Name", 64),
    KSTR(19, "OS Version", 64), KULONG(20, "ServicePack Version Major"),
    KULONG(21, "ServicePack Version Minor"), KULONG(22, "Maintenance Level"), KATTR_END};

const korAttribDef STORAGE_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "ID", 32), KULONG_ENUM(3, "Type", STORAGE_TYPE_ENUM_DEF),
    KSTR(4, "Model", 255), KSTR(5, "Manufacturer", 128), KSTR(6, "Serial Number", 64), KULONG(7, "Cylinders"),
    KULONG(8, "Sectors"), KULONG(9, "Heads"), KULONG(10, "Total Size"),
    KULONG_ENUM(11, "Security Enabled", STORAGE_SECURITY_ENABLED_ENUM_DEF), KSTR(12, "Device", 50),
    KSTR(13, "Is SAN Disk", 1), KSTR(14, "WWNN", 50), KSTR(15, "WWPN", 50), KSTR(16, "SAN Adapter", 50),
    KATTR_END};

const korAttribDef IP_ADDR_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Address", 40),
    KSTR(9, "DHCP Enabled", 1),  // third by design although its id is 9
    KSTR(3, "Hostname", 64), KSTR(4, "Domain", 64), KSTR(5, "Subnet", 40), KSTR(6, "Gateway", 40),
    KSTR(7, "Primary DNS", 40), KSTR(8, "Secondary DNS", 40), KSTR(10, "Permanent Mac Address", 64),
    KSTR(11, "IPV6Address", 64), KATTR_END};

const korAttribDef IPV6_ADDR_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Address", 40), KSTR(3, "Hostname", 64), KSTR(4, "Domain", 64),
    KSTR(5, "Subnet", 40), KSTR(6, "Gateway", 40), KSTR(7, "Primary DNS", 40), KSTR(8, "Secondary DNS", 40),
    KSTR(9, "Permanent Mac Address", 64), KSTR(10, "Scope", 24), KSTR(11, "Adapter Name", 128), KATTR_END};

const korAttribDef KEYBOARD_ATTRS_DEF[] = {
    KSTR(1, "Type", 255), KSTR(2, "Sub Type", 64), KSTR(3, "Code Page", 64),
    KULONG(4, "Number of Function Keys"), KULONG(5, "Characters per Second"), KULONG(6, "Repeat Delay"),
    KATTR_END};

const korAttribDef REGIONAL_ATTRS_DEF[] = {
    KSTR(1, "Local", 32), KULONG(2, "Time Zone Seconds"),
    KULONG_ENUM(3, "Time Zone Plus Minus", REGIONAL_TZ_PLUS_MINUS),
    KULONG_ENUM(4, "Daylight", REGIONAL_TZ_DAYLIGHT), KSTR(5, "Time Zone Name", 64),
    KSTR(6, "Time Zone Daylight Name", 64), KATTR_END};

const korAttribDef UNIX_PAR_ATTRS_DEF[] = {KTIME(1, "Boot Time"), KULONG(2, "Run Level"),
                                           KSTR(3, "Hostname", 255), KSTR(4, "Computer Alias", 32), KATTR_END};

const korAttribDef SCAN_INFO_ATTRS_DEF[] = {
    KSTR(1, "Manufacturer", 64), KULONG(2, "Major Version"), KULONG(3, "Minor Version"),
    KULONG(7, "Maintenance Version"), KULONG(9, "Patch Level"), KTIME(4, "Scan Date"), KSTR(5, "Build", 64),
    KULONG(6, "Uptime"), KULONG(8, "MobilityFlag"), KATTR_END};

const korAttribDef PART_ATTRS_DEF[] = {
    KULONG(1, "Index"), KULONG_ENUM(2, "Type", PART_TYPE_ENUM_DEF),
    KULONG_ENUM(3, "Media Type", PART_MEDIA_TYPE_ENUM_DEF), KSTR(4, "Device Name", 64),
    KULL(5, "Physical Size"), KULONG_ENUM(6, "FS Type", FILE_SYSTEM_TYPE_ENUM_DEF),
    KSTR(7, "FS Access Point", 255), KSTR(8, "FS Mount Point", 255), KULL(9, "FS Total Size"),
    KULL(10, "FS Free Size"), KSTR(11, "Server Hostname", 255), KSTR(12, "Server Path", 255), KATTR_END};

const korAttribDef NET_ADPTR_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "ID", 32), KSTR(3, "Permanent Address", 64), KSTR(4, "Current Address", 64),
    KULONG_ENUM(5, "Type", ADAPTER_TYPE_ENUM_DEF), KSTR(6, "Model", 255), KSTR(7, "Manufacturer", 128),
    KTIME(8, "Install Date"), KSTR(9, "Connector Type", 128), KSTR(10, "Physical Type", 64),
    KSTR(11, "EtherChannel devices", 128), KSTR(12, "Driver Path", 255), KSTR(13, "Driver Version", 255),
    KSTR(14, "Driver Name", 255), KSTR(15, "Driver Manufacturer", 255), KATTR_END};

const korAttribDef PCI_DEVICE_ATTRS_DEF[] = {KULONG(1, "Index"), KSTR(2, "Name", 180), KSTR(3, "Revision", 4),
                                             KATTR_END};

const korAttribDef PHYS_PROC_ATTRS_DEF[] = {
    KSTR(1, "Id", 64), KSTR(4, "Manufacturer", 64), KSTR(5, "Family", 64), KSTR(6, "Type", 64),
    KULONG(2, "Core Per Package Count"), KULONG(3, "Logical Proc Per Core"), KULONG(7, "CpuFreq"),
    KULONG(8, "L2 Cache Size"), KULONG(9, "L3 Cache Size"), KSTR(10, "Brandname", 128),
    KSTR(11, "Signature", 128), KSTR(12, "Is64BitSupported", 1), KULONG(13, "Active Processor Count"),
    KULONG(14, "Active Core Count"), KATTR_END};

// Table order is display order; there is deliberately no attribute 1.
const korAttribDef LPAR_ATTRS_DEF[] = {
    KSTR(2, "Lpar ID", 32), KSTR(3, "SharedPool ID", 16), KFLOAT(4, "Node Capacity"),
    KFLOAT(8, "Node Capacity In Cores"), KFLOAT(5, "Lpar Capacity"), KFLOAT(9, "Lpar Capacity In Cores"),
    KFLOAT(6, "SharedPool Capacity"), KFLOAT(10, "SharedPool Capacity In Cores"),
    KFLOAT(12, "Physical SharedPool Capacity"), KFLOAT(13, "Physical SharedPool Capacity In Cores"),
    KFLOAT(11, "Lpar Online VP Count"), KFLOAT(24, "Lpar Online Processor Count"),
    KFLOAT(25, "Lpar Online Core Count"), KFLOAT(26, "Lpar Online Package Count"),
    KSTR(7, "Serial Number", 64), KSTR(14, "Lpar Is Shared Type", 1), KSTR(15, "Lpar Is Capped", 1),
    KFLOAT(16, "Lpar Entitlement"), KFLOAT(17, "Lpar Min VP Count"), KFLOAT(18, "Lpar Max VP Count"),
    KFLOAT(19, "Lpar Min Capacity"), KFLOAT(20, "Lpar Max Capacity"), KFLOAT(21, "Lpar Idle Capacity Weight"),
    KSTR(22, "Smt Is Enabled", 1), KFLOAT(23, "Node Active Processors Count"),
    KFLOAT(27, "Node Active Core Count"), KFLOAT(28, "Node Active Package Count"),
    KFLOAT(29, "Node Total Processors Count"), KFLOAT(30, "Node Total Core Count"),
    KFLOAT(31, "Node Total Package Count"), KSTR(32, "Lpar Type", 100), KSTR(33, "Processor Set Name", 32),
    KSTR(34, "Processor Feature Code", 32), KFLOAT(35, "Processor Core Count"), KSTR(36, "LdomIsPresent", 1),
    KSTR(37, "LdomIsControl", 1), KFLOAT(38, "SubProcessor Mode"), MAINFRAME_CPU_COUNTERS(39),
    KFLOAT(57, "Ifl Capacity Cap"), KFLOAT(58, "Ifl Capacity Cap In Cores"), KSTR(59, "LparGroupName", 64),
    KFLOAT(60, "LparGroupCpCapacity"), KFLOAT(61, "LparGroupIflCapacity"), KFLOAT(62, "LparGroupZiipCapacity"),
    KATTR_END};

const korAttribDef VIRTUAL_MACHINE_GUEST_ATTRS_DEF[] = {
    KSTR(GUEST_UUID, "UUID", 48), KSTR(2, "DynamicID", 16), KSTR(3, "MaxEntitlement", 16), KSTR(4, "CpuPercentage", 16),
    KFLOAT(5, "CapacityInCores"), KSTR(6, "RsetID", 50), KULONG(7, "RsetCpuCount"), KSTR(8, "RsetCpuList", 500),
    KSTR(GUEST_HYPERVISOR_TYPE, "HypervisorType", 50), KATTR_END};

const korAttribDef CPU_METER_ATTRS_DEF[] = {
    KULONG(METER_IDLE_TIME, "IdleTime"), KULONG(METER_USER_TIME, "UserTime"), KULONG(METER_WAIT_TIME, "WaitTime"),
    KULONG(METER_SYS_TIME, "SysTime"), KULONG(METER_SYSTEM_UP_TIME, "SystemUpTime"), KATTR_END};

const korAttribDef CPU_UNIX_METER_ATTRS_DEF[] = {KFLOAT(METER_LOAD_AVG_1, "LoadAvg1"),
                                                 KFLOAT(METER_LOAD_AVG_5, "LoadAvg5"),
                                                 KFLOAT(METER_LOAD_AVG_15, "LoadAvg15"), KATTR_END};

const korAttribDef VIRTUAL_MACHINE_ATTRS_DEF[] = {
    KSTR(VM_NAME, "Name", 128), KULONG(VM_NUMBER, "Number"), KSTR(VM_ID, "VirtualMachineID", 48),
    KSTR(4, "OSType", 24),
    KULONG(5, "VirtualCPUs"), KFLOAT(6, "Entitlement"), KFLOAT(7, "MaxEntitlement"),
    KULONG(8, "ReservedMemoryMB"), KULONG(9, "TotalMemoryMB"), KSTR(10, "State", 16), KSTR(11, "Startup", 16),
    KSTR(12, "CpuPercentage", 16), KSTR(VM_TYPE, "Type", 16), KSTR(VM_MOUNT_POINT, "MountPoint", 16),
    KFLOAT(15, "CpusConfigured"), KFLOAT(16, "CpuTotal"), KFLOAT(17, "CpuStandby"), KFLOAT(18, "CpuReserved"),
    KFLOAT(19, "CpuDedicated"), KFLOAT(20, "CpuShared"), KFLOAT(21, "IflTotal"), KFLOAT(22, "IflDedicated"),
    KFLOAT(23, "IflShared"), KFLOAT(24, "ZiipTotal"), KFLOAT(25, "ZiipDedicated"), KFLOAT(26, "ZiipShared"),
    KFLOAT(27, "CpCapacityCap"), KFLOAT(28, "IflCapacityCap"), KFLOAT(29, "ZiipCapacityCap"),
    KFLOAT(30, "CpCapacityCapInCores"),
    KFLOAT(53, "ZiipCapacityCapInCores"),  // stands here by design, out of id order
    KSTR(31, "VirtualLayerID", 48), KULONG(32, "IflDispatchType"), KULONG(33, "CpDispatchType"),
    KSTR(VM_SHARED_POOL_ID, "SharedPool ID", 128),
    KFLOAT(VM_SHARED_POOL_CAPACITY, "SharedPool Capacity In Cores"), KFLOAT(36, "IflThreads"),
    KFLOAT(37, "ZiipThreads"), KFLOAT(38, "CpThreads"), KFLOAT(39, "IflCapacityCapInCores"),
    KFLOAT(40, "CpWeight"), KFLOAT(41, "IflWeight"), KFLOAT(42, "ZiipWeight"), KFLOAT(43, "CpLimit"),
    KFLOAT(44, "IflLimit"), KFLOAT(45, "ZiipLimit"), KFLOAT(46, "ZiipDispatchType"),
    KFLOAT(47, "Cluster Name"), KFLOAT(48, "Control Program ID"),  // typed so deliberately
    KFLOAT(49, "CoreTotal"), KFLOAT(50, "CoreDedicated"), KFLOAT(51, "CoreShared"), KFLOAT(52, "CpMaxWeight"),
    KATTR_END};

const korAttribDef PART2STOR_ATTRS_DEF[] = {KULONG(1, "Index"), KSTR(2, "PartitionAccessPoint", 255),
                                            KSTR(3, "StorageDevice", 50), KATTR_END};

const korAttribDef SAN_ADAPTER_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Id", 100), KSTR(3, "Description", 500), KSTR(4, "WWNN", 50),
    KSTR(5, "WWPN", 50), KSTR(6, "Manufacturer", 100), KSTR(7, "Model", 100), KSTR(8, "SerialNumber", 100),
    KSTR(9, "State", 50), KSTR(10, "Speed", 50), KATTR_END};

const uint32_t PROCESSOR_KEYS_DEF[] = {1, 2};
const uint32_t STORAGE_KEYS_DEF[] = {1, 2};
const uint32_t IP_ADDRESS_KEYS_DEF[] = {2};
const uint32_t IPV6_ADDRESS_KEYS_DEF[] = {2};
const uint32_t PARTITION_KEYS_DEF[] = {1, 7, 8};
const uint32_t NETWORK_ADAPTER_KEYS_DEF[] = {2};
const uint32_t PCI_DEVICE_KEYS_DEF[] = {1, 2};
const uint32_t PHYS_PROC_KEYS_DEF[] = {1};
const uint32_t VIRTUAL_MACHINE_KEYS_DEF[] = {3};
const uint32_t PART2STOR_KEYS_DEF[] = {1};
const uint32_t SAN_ADAPTER_KEYS_DEF[] = {1, 2};

#define KGROUP(id, name, attrs, keys) {id, name, attrs, keys, sizeof(keys) / sizeof(uint32_t), 1, 0}
#define KGROUP_NOKEYS(id, name, attrs) {id, name, attrs, nullptr, 0, 1, 0}

const korGroupDef GROUPS_DEF[] = {
    KGROUP_NOKEYS(COMPONENT_ID_GROUP, "ComponentID", COMPONENTID_ATTRS_DEF),
    KGROUP(PROCESSOR_GROUP, "Processor", PROCESSOR_ATTRS_DEF, PROCESSOR_KEYS_DEF),
    KGROUP_NOKEYS(MEMORY_GROUP, "Memory", MEMORY_ATTRS_DEF),
    KGROUP_NOKEYS(4, "Operating System", OPER_SYS_ATTRS_DEF),
    KGROUP(5, "Storage", STORAGE_ATTRS_DEF, STORAGE_KEYS_DEF),
    KGROUP(6, "IP Address", IP_ADDR_ATTRS_DEF, IP_ADDRESS_KEYS_DEF),
    KGROUP(51, "IPv6 Address", IPV6_ADDR_ATTRS_DEF, IPV6_ADDRESS_KEYS_DEF),
    KGROUP_NOKEYS(10, "Keyboard", KEYBOARD_ATTRS_DEF),
    KGROUP_NOKEYS(15, "Regional", REGIONAL_ATTRS_DEF),
    KGROUP_NOKEYS(19, "UNIX System Params", UNIX_PAR_ATTRS_DEF),
    KGROUP_NOKEYS(20, "Scan Info", SCAN_INFO_ATTRS_DEF),
    KGROUP(27, "Partition", PART_ATTRS_DEF, PARTITION_KEYS_DEF),
    KGROUP(7, "Network Adapter", NET_ADPTR_ATTRS_DEF, NETWORK_ADAPTER_KEYS_DEF),
    KGROUP(29, "PCI Device", PCI_DEVICE_ATTRS_DEF, PCI_DEVICE_KEYS_DEF),
    KGROUP(44, "PhysicalProcessor", PHYS_PROC_ATTRS_DEF, PHYS_PROC_KEYS_DEF),
    KGROUP_NOKEYS(LPAR_GROUP, "Lpar", LPAR_ATTRS_DEF),
    KGROUP_NOKEYS(VIRTUAL_MACHINE_GUEST_GROUP, "VirtualMachineGuest", VIRTUAL_MACHINE_GUEST_ATTRS_DEF),
    KGROUP_NOKEYS(CPU_METER_GROUP, "CpuMeter", CPU_METER_ATTRS_DEF),
    KGROUP_NOKEYS(UNIX_CPU_METER_GROUP, "UnixCpuMeter", CPU_UNIX_METER_ATTRS_DEF),
    KGROUP(VIRTUAL_MACHINE_GROUP, "VirtualMachine", VIRTUAL_MACHINE_ATTRS_DEF, VIRTUAL_MACHINE_KEYS_DEF),
    KGROUP(53, "PartitionToStorage", PART2STOR_ATTRS_DEF, PART2STOR_KEYS_DEF),
    KGROUP(54, "SAN Adapter", SAN_ADAPTER_ATTRS_DEF, SAN_ADAPTER_KEYS_DEF),
    {KOR_END, nullptr, nullptr, nullptr, 0, 0, 0},
};
