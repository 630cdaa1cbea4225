// Attribute and key tables of categories that no group of this library
// produces. They belong to the schema shared with other scanners and are
// kept as data only.
#include "invscan/com/CatalogueDefs.h"

const korAttribDef LDOMS_ATTRS_DEF[] = {
    KSTR(1, "Name", 64), KSTR(2, "UUID", 48), KSTR(3, "State", 32), KSTR(4, "Flags", 32),
    KULONG(5, "VCpu Count"), KULONG(6, "Memory MB"), KSTR(7, "Control Domain", 64),
    KSTR(8, "Hostname", 255), KSTR(9, "Serial Number", 64), KATTR_END};
const korAttribDef CPU_WIN_METER_ATTRS_DEF[] = {
    KULONG(1, "IdleTime"), KULONG(2, "UserTime"), KULONG(3, "KernelTime"), KULONG(4, "InterruptTime"),
    KULONG(5, "DpcTime"), KULONG(6, "SystemUpTime"), KATTR_END};
const korAttribDef SCREEN_SAVER_INFO_ATTRS_DEF[] = {
    KSTR(1, "User Name", 128), KSTR(2, "Screen Saver", 255), KSTR(3, "Secure", 1), KULONG(4, "Timeout"),
    KATTR_END};
const korAttribDef USER_ACCOUNT_INFO_ATTRS_DEF[] = {
    KSTR(1, "Domain", 128), KSTR(2, "Name", 128), KSTR(3, "Full Name", 255), KSTR(4, "Description", 255),
    KSTR(5, "SID", 128), KSTR(6, "Disabled", 1), KSTR(7, "Locked Out", 1), KSTR(8, "Password Required", 1),
    KTIME(9, "Last Logon"), KATTR_END};
const korAttribDef SERVICE_INFO_ATTRS_DEF[] = {
    KSTR(1, "Name", 255), KSTR(2, "Display Name", 255), KSTR(3, "Description", 500), KSTR(4, "Path", 500),
    KSTR(5, "Start Mode", 32), KSTR(6, "State", 32), KSTR(7, "Start Name", 255), KSTR(8, "Service Type", 64),
    KULONG(9, "Process ID"), KSTR(10, "Accept Stop", 1), KATTR_END};
const korAttribDef MONITOR_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Name", 255), KSTR(3, "Manufacturer", 128), KSTR(4, "Model", 128),
    KSTR(5, "Serial Number", 64), KULONG(6, "Manufacture Year"), KULONG(7, "Manufacture Week"),
    KULONG(8, "Horizontal Size"), KULONG(9, "Vertical Size"), KULONG(10, "Horizontal Resolution"),
    KULONG(11, "Vertical Resolution"), KULONG(12, "Refresh Rate"), KULONG(13, "Bits Per Pixel"),
    KULONG_ENUM(14, "Status", MONITOR_STATUS_ENUMS_DEF), KSTR(15, "Device ID", 255),
    KSTR(16, "EDID Version", 16), KSTR(17, "Display Type", 64), KATTR_END};
const korAttribDef MODEM_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Name", 255), KULONG_ENUM(3, "Device Type", MODEM_DEVTYPE_ENUMS_DEF),
    KSTR(4, "Manufacturer", 128), KSTR(5, "Model", 128), KSTR(6, "Attached To", 64),
    KULONG(7, "Max Baud Rate"), KSTR(8, "Provider", 128), KSTR(9, "Country", 64), KSTR(10, "Dial Type", 32),
    KSTR(11, "Driver Date", 32), KSTR(12, "Device ID", 255), KATTR_END};
const korAttribDef USB_DEVICE_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Device ID", 255), KSTR(3, "Name", 255), KSTR(4, "Manufacturer", 128),
    KSTR(5, "Product", 128), KSTR(6, "Serial Number", 64), KULONG(7, "Vendor ID"), KULONG(8, "Product ID"),
    KULONG_ENUM(9, "Class", USB_DEVICE_CLASS_ENUM_DEF), KULONG(10, "Sub Class"), KULONG(11, "Protocol"),
    KSTR(12, "USB Version", 16), KSTR(13, "Device Version", 16), KULONG_ENUM(14, "Is Hub", USB_DEVICE_IS_HUB_ENUM_DEF),
    KULONG(15, "Number of Ports"), KSTR(16, "Parent", 255), KULONG(17, "Max Power"), KATTR_END};
const korAttribDef INSTALLED_PATCH_ATTRS_DEF[] = {
    KSTR(1, "Patch ID", 64), KSTR(2, "Revision", 32), KSTR(3, "Description", 500), KTIME(4, "Install Date"),
    KSTR(5, "Installed By", 128), KSTR(6, "Obsoletes", 500), KSTR(7, "Requires", 500), KSTR(8, "Packages", 500),
    KATTR_END};
const korAttribDef VRX_CLUSTER_NODE_ATTRS_DEF[] = {KSTR(1, "Node Name", 128), KSTR(2, "Cluster Name", 128),
                                                   KSTR(3, "State", 32), KULONG(4, "Node ID"), KATTR_END};
const korAttribDef VRX_CLUSTER_ATTRS_DEF[] = {KSTR(1, "Cluster Name", 128), KULONG(2, "Node Count"), KATTR_END};
const korAttribDef WIN_CLUSTER_NODE_ATTRS_DEF[] = {
    KSTR(1, "Node Name", 128), KSTR(2, "Cluster Name", 128), KSTR(3, "State", 32), KULONG(4, "Node ID"),
    KSTR(5, "Description", 255), KATTR_END};
const korAttribDef WIN_CLUSTER_ATTRS_DEF[] = {
    KSTR(1, "Cluster Name", 128), KSTR(2, "Description", 255), KSTR(3, "Quorum Type", 64),
    KSTR(4, "Quorum Path", 255), KULONG(5, "Node Count"), KATTR_END};
const korAttribDef INSTALLED_PKGS_ATTRS_DEF[] = {
    KSTR(1, "Name", 255), KSTR(2, "Version", 64), KSTR(3, "Vendor", 128), KTIME(4, "Install Date"),
    KSTR(5, "Category", 64), KSTR(6, "Description", 500), KATTR_END};
const korAttribDef SMBIOS_ATTRS_DEF[] = {
    KSTR(1, "BIOS Vendor", 64), KSTR(2, "BIOS Version", 64), KSTR(3, "BIOS Release Date", 32),
    KSTR(4, "System Manufacturer", 64), KSTR(5, "System Product", 64), KSTR(6, "System Version", 64),
    KSTR(7, "System Serial Number", 64), KSTR(8, "System UUID", 48), KSTR(9, "System SKU", 64),
    KSTR(10, "System Family", 64), KSTR(11, "Board Manufacturer", 64), KSTR(12, "Board Product", 64),
    KSTR(13, "Board Version", 64), KSTR(14, "Board Serial Number", 64), KSTR(15, "Board Asset Tag", 64),
    KSTR(16, "Chassis Manufacturer", 64),
    KULONG_ENUM(17, "Chassis Type", KOR_ATTRIB_SMBIOS_ENCLOSURE_TYPE_ENUM_DEF), KSTR(18, "Chassis Version", 64),
    KSTR(19, "Chassis Serial Number", 64), KSTR(20, "Chassis Asset Tag", 64), KSTR(21, "SMBIOS Version", 16),
    KULONG_ENUM(22, "Power On Password", HWSEC_POP_ENUM_DEF), KULONG_ENUM(23, "Administrator Password", HWSEC_POP_ENUM_DEF),
    KATTR_END};
const korAttribDef PARALLEL_PORT_ATTRS_DEF[] = {KSTR(1, "Name", 64), KSTR(2, "Address", 32), KATTR_END};
const korAttribDef SERIAL_PORT_ATTRS_DEF[] = {KSTR(1, "Name", 64), KSTR(2, "Address", 32), KATTR_END};
const korAttribDef LAST_USER_ATTRS_DEF[] = {KSTR(1, "User Name", 128), KSTR(2, "Domain", 128),
                                            KTIME(3, "Logon Time"), KSTR(4, "Terminal", 64), KATTR_END};
const korAttribDef PC_PAR_ATTRS_DEF[] = {
    KSTR(1, "Computer Name", 255), KSTR(2, "Domain", 128), KSTR(3, "Workgroup", 128), KTIME(4, "Boot Time"),
    KSTR(5, "Description", 255), KATTR_END};
const korAttribDef ENCLOSURE_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Manufacturer", 64),
    KULONG_ENUM(3, "Type", KOR_ATTRIB_SMBIOS_ENCLOSURE_TYPE_ENUM_DEF), KSTR(4, "Version", 64),
    KSTR(5, "Serial Number", 64), KSTR(6, "Asset Tag", 64), KSTR(7, "Lock Present", 1), KULONG(8, "Height"),
    KULONG(9, "Power Cords"), KSTR(10, "SKU", 64), KATTR_END};
const korAttribDef PRINTER_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Name", 255), KSTR(3, "Driver", 255), KSTR(4, "Port", 128),
    KSTR(5, "Server", 255), KSTR(6, "Share Name", 128), KSTR(7, "Location", 255), KSTR(8, "Comment", 255),
    KSTR(9, "Default", 1), KSTR(10, "Network", 1), KULONG(11, "Horizontal Resolution"),
    KULONG(12, "Vertical Resolution"), KATTR_END};
const korAttribDef VIDEO_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Name", 255), KSTR(3, "Chipset", 128), KSTR(4, "Manufacturer", 128),
    KULONG(5, "Memory KB"), KULONG(6, "Horizontal Resolution"), KULONG(7, "Vertical Resolution"),
    KULONG(8, "Bits Per Pixel"), KULONG(9, "Refresh Rate"), KSTR(10, "Driver Version", 64),
    KSTR(11, "DAC Type", 64), KSTR(12, "Device ID", 255), KATTR_END};
const korAttribDef IPX_ADDR_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Address", 40), KSTR(3, "Network Number", 16), KSTR(4, "Node", 16),
    KSTR(5, "Frame Type", 32), KSTR(6, "Adapter Name", 128), KATTR_END};
const korAttribDef LOG_DRIVE_ATTRS_DEF[] = {
    KSTR(1, "Drive", 16), KSTR(2, "Volume Name", 128), KSTR(3, "File System", 32), KULL(4, "Total Size"),
    KULL(5, "Free Size"), KSTR(6, "Serial Number", 32), KATTR_END};
const korAttribDef POINT_DEV_ATTRS_DEF[] = {
    KULONG(1, "Index"), KSTR(2, "Name", 255), KULONG_ENUM(3, "Type", POINTING_DEVICE_TYPE_ENUM_DEF),
    KSTR(4, "Manufacturer", 128), KULONG(5, "Number of Buttons"), KSTR(6, "Interface", 64),
    KSTR(7, "Handedness", 32), KSTR(8, "Device ID", 255), KATTR_END};
const korAttribDef DSK_PART_ATTRS_DEF[] = {
    KULONG(1, "Index"), KULONG(2, "Disk Index"), KSTR(3, "Type", 64), KULL(4, "Size"), KULL(5, "Offset"),
    KSTR(6, "Bootable", 1), KATTR_END};
const korAttribDef OPER_SYS_CSIDL_ATTRS_DEF[] = {
    KSTR(1, "Desktop", 255), KSTR(2, "Programs", 255), KSTR(3, "Personal", 255), KSTR(4, "Startup", 255),
    KSTR(5, "Windows", 255), KSTR(6, "System", 255), KSTR(7, "Program Files", 255), KATTR_END};
const korAttribDef MEMORY_MODULES_ATTRS_DEF[] = {
    KSTR(1, "Slot", 64), KULONG(2, "Size MB"), KSTR(3, "Type", 32), KULONG(4, "Speed MHz"),
    KSTR(5, "Manufacturer", 64), KSTR(6, "Serial Number", 64), KATTR_END};

const uint32_t LDOMS_KEYS_DEF[] = {1};
const uint32_t VIRTUAL_MACHINE_GUEST_KEYS_DEF[] = {1};
const uint32_t SCREEN_SAVER_INFO_KEYS_DEF[] = {1};
const uint32_t SERVICE_INFO_KEYS_DEF[] = {1};
const uint32_t MEMORY_MODULES_KEYS_DEF[] = {1};
const uint32_t IPX_ADDR_KEYS_DEF[] = {1};
const uint32_t DISK_PARTITION_KEYS_DEF[] = {1};
const uint32_t LOGICAL_DRIVE_KEYS_DEF[] = {1};
const uint32_t WIN_CLUSTER_NODE_KEYS_DEF[] = {1};
const uint32_t WIN_CLUSTER_KEYS_DEF[] = {1};
const uint32_t VRX_CLUSTER_NODE_KEYS_DEF[] = {1};
const uint32_t VRX_CLUSTER_KEYS_DEF[] = {1};
const uint32_t USER_ACCOUNT_INFO_KEYS_DEF[] = {1, 2};
const uint32_t MONITOR_KEYS_DEF[] = {1, 2};
const uint32_t INSTALLED_PATCH_KEYS_DEF[] = {1, 2};
const uint32_t MODEM_KEYS_DEF[] = {1, 2};
const uint32_t POINT_DEV_KEYS_DEF[] = {1, 2};
const uint32_t PRINTER_KEYS_DEF[] = {1, 2};
const uint32_t VIDEO_KEYS_DEF[] = {1, 2};
const uint32_t USB_DEVICE_KEYS_DEF[] = {1, 2};
