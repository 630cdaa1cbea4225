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
