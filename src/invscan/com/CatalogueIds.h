#pragma once
// Names for the catalogue's group and attribute ids, so group code reads
// `PROC_CPU_ENABLED` rather than 42. The catalogue tables use the same names,
// so each id is written once. A group adds its attribute names here when it
// is built.

enum KorGroupId : unsigned long {
    COMPONENT_ID_GROUP = 1,
    PROCESSOR_GROUP = 2,
    MEMORY_GROUP = 3,
    OPERATING_SYSTEM_GROUP = 4,
    STORAGE_GROUP = 5,
    IP_ADDRESS_GROUP = 6,
    NETWORK_ADAPTER_GROUP = 7,
    KEYBOARD_GROUP = 10,
    REGIONAL_GROUP = 15,
    UNIX_SYSTEM_PARAMS_GROUP = 19,
    SCAN_INFO_GROUP = 20,
    PARTITION_GROUP = 27,
    PCI_DEVICE_GROUP = 29,
    LPAR_GROUP = 34,
    PHYSICAL_PROCESSOR_GROUP = 44,
    CPU_METER_GROUP = 46,
    UNIX_CPU_METER_GROUP = 47,
    VIRTUAL_MACHINE_GROUP = 49,
    VIRTUAL_MACHINE_GUEST_GROUP = 50,
    IPV6_ADDRESS_GROUP = 51,
    PARTITION_TO_STORAGE_GROUP = 53,
    SAN_ADAPTER_GROUP = 54,
};

// "Processor": the attributes the group fills.
enum ProcessorAttrib : unsigned long {
    PROC_INDEX = 1,
    PROC_ID = 2,
    PROC_FAMILY = 3,
    PROC_MAX_CLOCK = 4,
    PROC_CURRENT_CLOCK = 5,
    PROC_EXTERNAL_CLOCK = 6,
    PROC_MANUFACTURER = 7,
    PROC_SERIAL_NUMBER = 8,
    PROC_CHIP_FAMILY = 10,
    PROC_CHIP_MODEL = 11,
    PROC_CHIP_STEPPING = 12,
    PROC_CPU_ENABLED = 42,
};

enum MemoryAttrib : unsigned long {
    MEM_TOTAL_PHYSICAL = 1,
    MEM_FREE_PHYSICAL = 2,
    MEM_TOTAL_VIRTUAL = 3,
    MEM_FREE_VIRTUAL = 4,
    MEM_TOTAL_PAGE = 5,
    MEM_FREE_PAGE = 6,
    MEM_PAGE_SIZE = 7,
    MEM_MAX_MEMORY_MB = 8,
    MEM_NUM_SLOTS = 9,
};

enum CpuMeterAttrib : unsigned long {
    METER_IDLE_TIME = 1,
    METER_USER_TIME = 2,
    METER_WAIT_TIME = 3,
    METER_SYS_TIME = 4,
    METER_SYSTEM_UP_TIME = 5,
};

enum UnixCpuMeterAttrib : unsigned long {
    METER_LOAD_AVG_1 = 1,
    METER_LOAD_AVG_5 = 2,
    METER_LOAD_AVG_15 = 3,
};

// "VirtualMachine": the attributes the zone rows fill, in the order they are added.
enum VirtualMachineAttrib : unsigned long {
    VM_NAME = 1,
    VM_NUMBER = 2,
    VM_ID = 3,
    VM_SHARED_POOL_ID = 34,
    VM_SHARED_POOL_CAPACITY = 35,
    VM_TYPE = 13,
    VM_MOUNT_POINT = 14,
};

// "ComponentID": the attributes the identity row fills, in the order they are added.
enum ComponentIdAttrib : unsigned long {
    CID_MANUFACTURER = 1,
    CID_PRODUCT = 2,
    CID_SERIAL_NUMBER = 4,
    CID_TYPE = 7,
    CID_HW_SERIAL = 13,
    CID_PLATFORM = 14,
};

// "VirtualMachineGuest": what a guest's row carries.
enum VirtualMachineGuestAttrib : unsigned long {
    GUEST_UUID = 1,
    GUEST_HYPERVISOR_TYPE = 9,
};

// "Lpar": the capacity row, in the order its attributes are added.
enum LparAttrib : unsigned long {
    LPAR_ID = 2,
    LPAR_SHARED_POOL_ID = 3,
    LPAR_NODE_CAPACITY = 4,
    LPAR_NODE_CAPACITY_CORES = 8,
    LPAR_CAPACITY = 5,
    LPAR_CAPACITY_CORES = 9,
    LPAR_POOL_CAPACITY = 6,
    LPAR_POOL_CAPACITY_CORES = 10,
    LPAR_PROCESSOR_SET_NAME = 33,
    LPAR_TYPE = 32,
    LPAR_ONLINE_VP_COUNT = 11,
    LPAR_ONLINE_PROCESSOR_COUNT = 24,
    LPAR_ONLINE_CORE_COUNT = 25,
    LPAR_ONLINE_PACKAGE_COUNT = 26,
    LPAR_SERIAL_NUMBER = 7,
    LPAR_NODE_TOTAL_PROCESSORS = 29,
    LPAR_NODE_TOTAL_CORES = 30,
    LPAR_NODE_TOTAL_PACKAGES = 31,
};

// "Storage": one row a disk, CD/DVD drive, floppy or PCMCIA device, in the
// order the attributes are added ("Security Enabled", 11, is never set).
enum StorageAttrib : unsigned long {
    STOR_INDEX = 1,
    STOR_ID = 2,
    STOR_TYPE = 3,
    STOR_MODEL = 4,
    STOR_MANUFACTURER = 5,
    STOR_SERIAL_NUMBER = 6,
    STOR_CYLINDERS = 7,
    STOR_SECTORS = 8,
    STOR_HEADS = 9,
    STOR_TOTAL_SIZE = 10,
    STOR_DEVICE = 12,
    STOR_IS_SAN_DISK = 13,
    STOR_WWNN = 14,
    STOR_WWPN = 15,
    STOR_SAN_ADAPTER = 16,
};

// "Storage" row types: values of the catalogue's storage type list.
enum StorageType : unsigned long {
    STORAGE_TYPE_UNKNOWN = 1,
    STORAGE_TYPE_CDROM = 17,
    STORAGE_TYPE_FLOPPY = 29,
    STORAGE_TYPE_HARD_DISK = 30,
    STORAGE_TYPE_MEMORY_CARD = 31,
};

// "PartitionToStorage": one row a partition and a disk that holds it.
enum PartitionToStorageAttrib : unsigned long {
    P2S_INDEX = 1,
    P2S_PARTITION_ACCESS_POINT = 2,
    P2S_STORAGE_DEVICE = 3,
};

// "SAN Adapter": one row a host bus adapter port.
enum SanAdapterAttrib : unsigned long {
    SAN_INDEX = 1,
    SAN_ID = 2,
    SAN_DESCRIPTION = 3,
    SAN_WWNN = 4,
    SAN_WWPN = 5,
    SAN_MANUFACTURER = 6,
    SAN_MODEL = 7,
    SAN_SERIAL_NUMBER = 8,
    SAN_STATE = 9,
    SAN_SPEED = 10,
};

// "Operating System": one row; attributes 7 to 9 and 20 to 21 are never set.
enum OperatingSystemAttrib : unsigned long {
    OS_NAME = 1,
    OS_TYPE = 2,
    OS_MAJOR_VERSION = 3,
    OS_MINOR_VERSION = 4,
    OS_SUB_VERSION = 5,
    OS_INSTALL_DATE = 6,
    OS_ARCH = 10,
    OS_KERNEL_MODE = 11,
    OS_DESCRIPTION = 12,
    OS_LANGUAGE_VERSION = 13,
    OS_LOCALE_ID = 14,
    OS_MESSAGES_LOCALE = 15,
    OS_LAST_BOOT_UP_TIME = 16,
    OS_CURRENT_USER_LOCALE_ID = 17,
    OS_OS_NAME = 18,
    OS_OS_VERSION = 19,
    OS_MAINTENANCE_LEVEL = 22,
};

// "Operating System" types: values of the catalogue's operating-system list.
enum OsType : unsigned long {
    OS_TYPE_UNKNOWN = 1,
    OS_TYPE_OTHER = 2,
    OS_TYPE_SOLARIS = 30,
    OS_TYPE_SUNOS = 31,
    OS_TYPE_LINUX = 37,
};

enum RegionalAttrib : unsigned long {
    REG_LOCAL = 1,
    REG_TZ_SECONDS = 2,
    REG_TZ_PLUS_MINUS = 3,
    REG_DAYLIGHT = 4,
    REG_TZ_NAME = 5,
    REG_TZ_DAYLIGHT_NAME = 6,
};
enum RegionalValue : unsigned long { REG_PLUS = 1, REG_MINUS = 2, REG_DAYLIGHT_TRUE = 1, REG_DAYLIGHT_FALSE = 2 };

enum UnixSystemParamsAttrib : unsigned long {
    UNIX_BOOT_TIME = 1,
    UNIX_RUN_LEVEL = 2,
    UNIX_HOSTNAME = 3,
    UNIX_COMPUTER_ALIAS = 4,
};

enum ScanInfoAttrib : unsigned long {
    SCAN_MANUFACTURER = 1,
    SCAN_MAJOR_VERSION = 2,
    SCAN_MINOR_VERSION = 3,
    SCAN_DATE = 4,
    SCAN_BUILD = 5,
    SCAN_UPTIME = 6,
    SCAN_MAINTENANCE_VERSION = 7,
    SCAN_MOBILITY_FLAG = 8,
    SCAN_PATCH_LEVEL = 9,
};

enum KeyboardAttrib : unsigned long {
    KBD_TYPE = 1,
    KBD_SUB_TYPE = 2,
    KBD_CODE_PAGE = 3,
    KBD_FUNCTION_KEYS = 4,
    KBD_CHARACTERS_PER_SECOND = 5,
    KBD_REPEAT_DELAY = 6,
};

// "IP Address": one row a configured IPv4 address.
enum IpAddressAttrib : unsigned long {
    IP_INDEX = 1,
    IP_ADDRESS = 2,
    IP_HOSTNAME = 3,
    IP_DOMAIN = 4,
    IP_SUBNET = 5,
    IP_GATEWAY = 6,
    IP_PRIMARY_DNS = 7,
    IP_SECONDARY_DNS = 8,
    IP_DHCP_ENABLED = 9,
    IP_PERMANENT_MAC = 10,
    IP_IPV6_ADDRESS = 11,
};

// "IPv6 Address": one row a configured IPv6 address.
enum Ipv6AddressAttrib : unsigned long {
    IPV6_INDEX = 1,
    IPV6_ADDRESS = 2,
    IPV6_HOSTNAME = 3,
    IPV6_DOMAIN = 4,
    IPV6_SUBNET = 5,
    IPV6_GATEWAY = 6,
    IPV6_PRIMARY_DNS = 7,
    IPV6_SECONDARY_DNS = 8,
    IPV6_PERMANENT_MAC = 9,
    IPV6_SCOPE = 10,
    IPV6_ADAPTER_NAME = 11,
};

// "Network Adapter": one row a data link.
enum NetworkAdapterAttrib : unsigned long {
    NET_INDEX = 1,
    NET_ID = 2,
    NET_PERMANENT_ADDRESS = 3,
    NET_CURRENT_ADDRESS = 4,
    NET_TYPE = 5,
    NET_MODEL = 6,
    NET_MANUFACTURER = 7,
    NET_INSTALL_DATE = 8,
    NET_CONNECTOR_TYPE = 9,
    NET_PHYSICAL_TYPE = 10,
    NET_ETHERCHANNEL_DEVICES = 11,
    NET_DRIVER_PATH = 12,
    NET_DRIVER_VERSION = 13,
    NET_DRIVER_NAME = 14,
    NET_DRIVER_MANUFACTURER = 15,
};
enum AdapterType : unsigned long {
    ADAPTER_UNKNOWN = 1,
    ADAPTER_OTHER = 2,
    ADAPTER_ETHERNET = 3,
    ADAPTER_LOOPBACK = 19,
};

enum PciDeviceAttrib : unsigned long {
    PCI_INDEX = 1,
    PCI_NAME = 2,
    PCI_REVISION = 3,
};

enum PhysicalProcessorAttrib : unsigned long {
    PHYS_ID = 1,
    PHYS_CORES_PER_PACKAGE = 2,
    PHYS_LOGICAL_PER_CORE = 3,
    PHYS_MANUFACTURER = 4,
    PHYS_FAMILY = 5,
    PHYS_TYPE = 6,
    PHYS_CPU_FREQ = 7,
    PHYS_L2_CACHE = 8,
    PHYS_L3_CACHE = 9,
    PHYS_BRANDNAME = 10,
    PHYS_SIGNATURE = 11,
    PHYS_IS_64BIT = 12,
    PHYS_ACTIVE_PROCESSORS = 13,
    PHYS_ACTIVE_CORES = 14,
};

// "Partition": one row a mounted file system.
enum PartitionAttrib : unsigned long {
    PART_INDEX = 1,
    PART_TYPE = 2,
    PART_MEDIA_TYPE = 3,
    PART_DEVICE_NAME = 4,
    PART_PHYSICAL_SIZE = 5,
    PART_FS_TYPE = 6,
    PART_FS_ACCESS_POINT = 7,
    PART_FS_MOUNT_POINT = 8,
    PART_FS_TOTAL_SIZE = 9,
    PART_FS_FREE_SIZE = 10,
    PART_SERVER_HOSTNAME = 11,
    PART_SERVER_PATH = 12,
};
enum PartitionType : unsigned long {
    PART_TYPE_UNKNOWN = 0,
    PART_TYPE_LOGICAL_DRIVE = 1,
    PART_TYPE_REMOTE_DRIVE = 2,
    PART_TYPE_LOGICAL_VOLUME = 3,
};
enum PartitionMediaType : unsigned long {
    PART_MEDIA_UNKNOWN = 0,
    PART_MEDIA_REMOVABLE = 2,
    PART_MEDIA_LOCAL_DISK = 3,
    PART_MEDIA_REMOTE = 4,
    PART_MEDIA_CDROM = 5,
    PART_MEDIA_RAM_DISK = 6,
};
