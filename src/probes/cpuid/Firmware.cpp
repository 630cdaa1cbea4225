#include "probes/cpuid/Firmware.h"

#include <cstdio>
#include <cstring>

#include "common/util/smbios.h"

namespace cpuid {

namespace {

unsigned at8(const std::string& s, size_t i) { return i < s.size() ? static_cast<unsigned char>(s[i]) : 0; }
unsigned at16(const std::string& s, size_t i) { return at8(s, i) | (at8(s, i + 1) << 8); }

// One structure as the library's walk hands it over, read within its
// formatted length.
struct Structure {
    const unsigned char* bytes;
    const char* strings;
    size_t length;
    unsigned byte(size_t offset) const { return offset < length ? bytes[offset] : 0; }
    unsigned word(size_t offset) const { return offset + 1 < length ? bytes[offset] | (bytes[offset + 1] << 8) : 0; }
    std::string text(size_t offset) const
    {
        std::string s = getString_SMBIOS(strings, static_cast<int>(byte(offset)));
        const size_t last = s.find_last_not_of(' ');  // firmware pads with blanks
        return last == std::string::npos ? std::string() : s.substr(0, last + 1);
    }
};

std::string uuidText(const Structure& s, int major, int minor)
{
    if (s.length < 0x18) return std::string();
    unsigned char b[16];
    bool allFF = true, allZero = true;
    for (int i = 0; i < 16; ++i) {
        b[i] = static_cast<unsigned char>(s.byte(8 + static_cast<size_t>(i)));
        allFF &= b[i] == 0xFF;
        allZero &= b[i] == 0;
    }
    if (allFF || allZero) return std::string();  // not settable, or not present
    // From 2.6 on, the first three fields are little-endian.
    const bool little = major > 2 || (major == 2 && minor >= 6);
    char text[40];
    if (little)
        std::snprintf(text, sizeof text, "%02x%02x%02x%02x-%02x%02x-%02x%02x-", b[3], b[2], b[1], b[0], b[5], b[4],
                      b[7], b[6]);
    else
        std::snprintf(text, sizeof text, "%02x%02x%02x%02x-%02x%02x-%02x%02x-", b[0], b[1], b[2], b[3], b[4], b[5],
                      b[6], b[7]);
    std::string out = text;
    std::snprintf(text, sizeof text, "%02x%02x-%02x%02x%02x%02x%02x%02x", b[8], b[9], b[10], b[11], b[12], b[13],
                  b[14], b[15]);
    return out + text;
}

void takeProcessor(Firmware& f, const Structure& s)
{
    if (s.byte(0x05) != 3) return;  // not a central processor
    const unsigned status = s.byte(0x18);
    if (!(status & 0x40)) return;   // an empty socket
    const bool enabled = (status & 0x07) == 1;
    // 2.5 counts in single bytes; 3.0 widens them when the byte says 0xFF.
    unsigned cores = s.byte(0x23), coresEnabled = s.byte(0x24), threads = s.byte(0x25);
    if (cores == 0xFF && s.length > 0x2B) cores = s.word(0x2A);
    if (coresEnabled == 0xFF && s.length > 0x2D) coresEnabled = s.word(0x2C);
    if (threads == 0xFF && s.length > 0x2F) threads = s.word(0x2E);
    f.hasProcessors = true;
    ++f.totalPackages;
    f.totalCores += static_cast<int>(cores);
    f.totalThreads += static_cast<int>(threads);
    if (enabled) {
        ++f.activePackages;
        f.activeCores += static_cast<int>(coresEnabled);
        f.activeThreads += static_cast<int>(threads);
    }
}

bool contains(const std::string& text, const char* part) { return text.find(part) != std::string::npos; }

int takeStructure(const unsigned char* bytes, const char* strings, void* context)
{
    Firmware& f = *static_cast<Firmware*>(context);
    const Structure s{bytes, strings, bytes[1]};
    switch (bytes[0]) {
    case 1:
        f.manufacturer = s.text(4);
        f.productName = s.text(5);
        f.version = s.text(6);
        f.serialNumber = s.text(7);
        f.uuid = uuidText(s, f.major, f.minor);
        break;
    case 2:
        if (f.hasBoard) break;  // the first board is the one the system sits on
        f.hasBoard = true;
        f.boardManufacturer = s.text(4);
        f.boardProduct = s.text(5);
        f.boardVersion = s.text(6);
        f.boardSerial = s.text(7);
        break;
    case 4: takeProcessor(f, s); break;
    case 127: return 1;  // the end of the table
    }
    return 0;
}

}  // namespace

Firmware parseFirmware(const std::string& entry, const std::string& table)
{
    Firmware f;
    size_t count = 0xFFFF;
    if (entry.compare(0, 5, "_SM3_") == 0 && entry.size() >= 0x18) {
        f.major = static_cast<int>(at8(entry, 7));
        f.minor = static_cast<int>(at8(entry, 8));
    } else if (entry.compare(0, 4, "_SM_") == 0 && entry.size() >= 0x1E) {
        f.major = static_cast<int>(at8(entry, 6));
        f.minor = static_cast<int>(at8(entry, 7));
        count = at16(entry, 0x1C);
    } else {
        return f;
    }
    f.present = true;
    // The library's walk, over a table of any version: its bounds are the table's.
    SMBIOS_Locator locator{};
    locator.tableLength = static_cast<int>(table.size() < 0x7FFFFFFF ? table.size() : 0x7FFFFFFF);
    locator.structureCount = static_cast<int>(count);
    locator.table = reinterpret_cast<unsigned char*>(const_cast<char*>(table.data()));
    scan_SMBIOS(&locator, takeStructure, &f);
    return f;
}

std::string virtualizationFromFirmware(const Firmware& f)
{
    if (contains(f.manufacturer, "VMware") || contains(f.productName, "VMware")) return "VMware";
    if (f.manufacturer == "Microsoft Corporation" && f.productName == "Virtual Machine") return "MSVS";
    if (contains(f.productName, "Integrity Virtual Machine") || contains(f.productName, "HPVM")) return "HPVM";
    if (contains(f.manufacturer, "IBM") && contains(f.productName, "KVM")) return "KVM_PPC";
    return std::string();
}

std::string brandFromFirmware(const Firmware& f)
{
    if (contains(f.manufacturer, "VMware") || contains(f.productName, "VMware")) return "VMware";
    if (f.manufacturer == "Microsoft Corporation" && f.productName == "Virtual Machine") return "Virtual Server";
    if (contains(f.productName, "VirtualBox")) return "VirtualBox";
    if (f.manufacturer == "QEMU" || contains(f.productName, "KVM")) return "KVM";
    if (f.manufacturer == "Xen" || contains(f.productName, "HVM domU")) return "Xen";
    return std::string();
}

}  // namespace cpuid
