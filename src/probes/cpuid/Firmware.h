#pragma once
// What the firmware's SMBIOS tables tell the probe: the system (type 1), the
// board it runs on (type 2), and the processor sockets (type 4). Unlike the
// library's reader, the probe reads SMBIOS 3 tables too. Pure: bytes in,
// facts out; each platform file finds the bytes.
#include <string>

namespace cpuid {

struct Firmware {
    bool present = false;  // an entry point and its table were understood
    int major = 0, minor = 0;
    // type 1; the UUID in its standard (lower-case) text form, byte order as 2.6 and later say
    std::string manufacturer, productName, version, serialNumber, uuid;
    // type 2, the base board: what the firmware tells of the host or board
    bool hasBoard = false;
    std::string boardManufacturer, boardProduct, boardVersion, boardSerial;
    // type 4, central processors: populated sockets, and the enabled ones
    bool hasProcessors = false;
    int totalPackages = 0, activePackages = 0;
    int totalCores = 0, activeCores = 0;
    int totalThreads = 0, activeThreads = 0;
};

// From a 2.x ("_SM_") or 3.x ("_SM3_") entry point and the structure table.
Firmware parseFirmware(const std::string& entryPoint, const std::string& table);

// The hypervisor the firmware strings name, in the spelling the scanner
// compares ("VMware", "MSVS", "HPVM", "KVM_PPC"), or "".
std::string virtualizationFromFirmware(const Firmware& firmware);
// The hypervisor product the firmware names ("VMware", "Virtual Server",
// "VirtualBox", "KVM", "Xen"), or "".
std::string brandFromFirmware(const Firmware& firmware);

}  // namespace cpuid
