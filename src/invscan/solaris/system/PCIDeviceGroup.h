#pragma once
// "PCI Device": one row per PCI function of the PROM device tree ("prtconf
// -pv"), named from the PCI id database the system ships.
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;

class INVSCAN_API PCIDeviceGroup : public KorGroup {
public:
    PCIDeviceGroup();
    KorTable* getTable() override;
};

// One node of the tree that carries a vendor and a device id.
struct PciFunction {
    long vendor = -1, device = -1, revision = -1;
    std::string model;  // the node's own 'model', when it has one
};

// The nodes of "prtconf -pv" output ("Node 0x..." headings, "name:  value"
// properties; hexadecimal words or quoted texts) that are PCI functions, in
// the order printed.
std::vector<PciFunction> parsePromNodes(const std::vector<std::string>& lines);

// The vendor and device names of the functions wanted, from a pci.ids file.
struct PciNames {
    std::map<long, std::string> vendors;
    std::map<std::pair<long, long>, std::string> devices;
};
// Reads the first database found that the system ships; false without one.
bool lookUpPciNames(sys::System& os, const std::vector<PciFunction>& functions, PciNames& names);
// One database line into `names` when it names a wanted vendor or device;
// `vendor` carries the vendor of the device lines that follow. False at the
// end of the device list (the class list follows).
bool readPciIdsLine(const std::string& line, const std::vector<PciFunction>& wanted, long& vendor, PciNames& names);
// "Intel Corporation 440FX - 82441FX PMC [Natoma]"; the node's model or the
// bare ids when the database does not know the device.
std::string pciName(const PciFunction& f, const PciNames& names);

void shapePciRows(const std::vector<PciFunction>& functions, const PciNames& names, KorTable& table);
