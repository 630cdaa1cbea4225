#include "invscan/solaris/system/PCIDeviceGroup.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <set>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

using systemfacts::trimmed;

namespace {

const char* const kSource = "./../../../src/invscan/solaris/PCIDeviceGroup";
const char* const kFunction = "getTable()";
#define PCI_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

// Where systems keep the PCI id database: Solaris 11 and most Linux, Debian,
// older systems.
const char* const kDatabases[] = {"/usr/share/hwdata/pci.ids", "/usr/share/misc/pci.ids", "/usr/share/pci.ids"};

long hexWord(const std::string& text)
{
    if (text.empty()) return -1;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 16);
    return end && *end == '\0' && value >= 0 ? value : -1;
}

std::string unquoted(const std::string& text)
{
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'') return text.substr(1, text.size() - 2);
    return text;
}

bool wantedVendor(const std::vector<PciFunction>& wanted, long vendor)
{
    for (const PciFunction& f : wanted)
        if (f.vendor == vendor) return true;
    return false;
}

bool wantedDevice(const std::vector<PciFunction>& wanted, long vendor, long device)
{
    for (const PciFunction& f : wanted)
        if (f.vendor == vendor && f.device == device) return true;
    return false;
}

// The 4-digit id that starts "8086  Intel Corporation", or -1.
long leadingId(const std::string& text, size_t at)
{
    if (text.size() < at + 7 || text[at + 4] != ' ') return -1;
    long id = -1;
    const char* end = text.data() + at + 4;
    const auto read = std::from_chars(text.data() + at, end, id, 16);
    return read.ec == std::errc() && read.ptr == end && id >= 0 ? id : -1;
}

}  // namespace

std::vector<PciFunction> parsePromNodes(const std::vector<std::string>& lines)
{
    std::vector<PciFunction> out;
    PciFunction node;
    auto finish = [&] {
        if (node.vendor >= 0 && node.device >= 0) out.push_back(node);
        node = PciFunction();
    };
    for (const std::string& raw : lines) {
        const std::string line = trimmed(raw);
        if (line.compare(0, 7, "Node 0x") == 0) {
            finish();
            continue;
        }
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        const std::string key = line.substr(0, colon), value = trimmed(line.substr(colon + 1));
        if (key == "vendor-id")
            node.vendor = hexWord(value);
        else if (key == "device-id")
            node.device = hexWord(value);
        else if (key == "revision-id")
            node.revision = hexWord(value);
        else if (key == "model")
            node.model = unquoted(value);
    }
    finish();
    return out;
}

bool readPciIdsLine(const std::string& line, const std::vector<PciFunction>& wanted, long& vendor, PciNames& names)
{
    if (line.empty() || line[0] == '#') return true;
    if (line[0] == 'C' && line.size() > 1 && line[1] == ' ') return false;  // the class list: no more devices
    // Most of the file is of vendors and devices nobody asked for: only a
    // wanted one's name is cut out.
    if (line[0] != '\t') {
        const long id = leadingId(line, 0);
        const std::string name = id >= 0 && wantedVendor(wanted, id) ? trimmed(line.substr(5)) : "";
        vendor = name.empty() ? -1 : id;
        if (vendor >= 0) names.vendors[vendor] = name;
    } else if (vendor >= 0 && line.size() > 1 && line[1] != '\t') {
        const long id = leadingId(line, 1);
        const std::string name = id >= 0 && wantedDevice(wanted, vendor, id) ? trimmed(line.substr(6)) : "";
        if (!name.empty()) names.devices[{vendor, id}] = name;
    }
    return true;
}

bool lookUpPciNames(sys::System& os, const std::vector<PciFunction>& functions, PciNames& names)
{
    std::set<std::pair<long, long>> wanted;
    for (const PciFunction& f : functions) wanted.insert({f.vendor, f.device});
    for (const char* path : kDatabases) {
        long vendor = -1;
        // The lines a name came from, in file order: the vendors' and their
        // devices'. Whoever records the scan keeps only these.
        std::vector<std::string> used;
        // The database is long (over a megabyte): stop once every device is named.
        if (util::forEachSystemFileLine(os, path, [&](const std::string& line) {
                const size_t devices = names.devices.size();
                const bool going = readPciIdsLine(line, functions, vendor, names);
                const bool vendorLine = !line.empty() && line[0] != '\t' && line[0] != '#';
                if ((going && vendorLine && vendor >= 0) || names.devices.size() != devices) used.push_back(line);
                return going && names.devices.size() < wanted.size();
            })) {
            PCI_TRACE(traceMAX, "hardware %s %s", "PCI names from", path);
            os.linesUsed(path, used);
            return true;
        }
    }
    PCI_TRACE(traceMID, "hardware %s", "no PCI id database: devices named by their ids");
    return false;
}

std::string pciName(const PciFunction& f, const PciNames& names)
{
    char ids[48];
    auto vendor = names.vendors.find(f.vendor);
    auto device = names.devices.find({f.vendor, f.device});
    if (vendor != names.vendors.end() && device != names.devices.end()) return vendor->second + " " + device->second;
    if (!f.model.empty()) return f.model;
    if (vendor != names.vendors.end()) {
        std::snprintf(ids, sizeof ids, " Device %04lx", f.device);
        return vendor->second + ids;
    }
    std::snprintf(ids, sizeof ids, "Vendor %04lx Device %04lx", f.vendor, f.device);
    return ids;
}

void shapePciRows(const std::vector<PciFunction>& functions, const PciNames& names, KorTable& table)
{
    unsigned int index = 0;
    for (const PciFunction& f : functions) {
        RowBuilder row(PCI_DEVICE_GROUP, RowBuilder::Undecodable::Shown);
        row.number(PCI_INDEX, ++index);
        row.text(PCI_NAME, pciName(f, names));
        if (f.revision >= 0) {
            char revision[8];
            std::snprintf(revision, sizeof revision, "%02lx", f.revision & 0xFF);
            row.text(PCI_REVISION, revision);
        }
        row.addTo(table);
    }
}

PCIDeviceGroup::PCIDeviceGroup() : KorGroup(PCI_DEVICE_GROUP, 1) {}

KorTable* PCIDeviceGroup::getTable()
{
    return api::guardedTable("PCIDeviceGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PCIDeviceGroup");
        ZPopen prtconf(sys::solaris::argv(sys::solaris::Id::Prtconf));
        if (prtconf.run() != 0) {
            PCI_TRACE(traceMIN, "hardware %s %d", "ERROR! prtconf -pv failed, status", prtconf.exitStatus());
            return nullptr;
        }
        const std::vector<PciFunction> functions = parsePromNodes(prtconf.lines());
        if (functions.empty()) {
            PCI_TRACE(traceMIN, "hardware %s", "ERROR! no PCI functions in the device tree");
            return nullptr;
        }
        PciNames names;
        lookUpPciNames(sys::current(), functions, names);
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapePciRows(functions, names, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PCIDeviceGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(PCI_DEVICE_GROUP, PCIDeviceGroup);
