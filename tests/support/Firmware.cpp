#include "support/Firmware.h"

#include "support/TempDir.h"

namespace testsupport {

FirmwareCapture readCapture(const std::string& dir, const std::string& prefix, const std::string& layout)
{
    const std::string base = dir + "/" + prefix;
    FirmwareCapture c;
    auto address = [](const std::string& entry) {
        const size_t at = entry.compare(0, 5, "_SM3_") == 0 ? 0x10 : 0x18;  // 64-bit: its low half
        uint32_t a = 0;
        for (int i = 3; i >= 0; --i) a = (a << 8) | static_cast<unsigned char>(entry.at(at + static_cast<size_t>(i)));
        return a;
    };
    auto made = [&c](const std::string& table, int major, int minor) {
        c.table = table;
        c.address = 0xE1000;
        c.entry = smbiosEntryPoint(static_cast<uint16_t>(table.size()), c.address, 0xFFFF, major, minor);
    };
    if (layout == "dump-bin") {  // entry point first, the table at 0x20, which the entry point says
        const std::string d = readFile(base + ".dump-bin");
        c.entry = d.substr(0, d.compare(0, 5, "_SM3_") == 0 ? 0x18 : 0x1F);
        c.table = d.substr(0x20);
        c.address = address(c.entry);
    } else if (layout == "sysfs") {
        const std::string sep = prefix.rfind("fwupd", 0) == 0 ? "__" : ".";
        c.entry = readFile(base + sep + "smbios_entry_point");
        c.table = readFile(base + sep + "DMI");
        c.address = address(c.entry);
    } else if (layout == "raw-table") {
        made(readFile(base + ".raw-table"), 2, 7);
    } else if (layout == "windows-rsmb") {  // an 8-byte header: method, major, minor, revision, length
        const std::string d = readFile(base + ".windows-rsmb.dat");
        made(d.substr(8), d.at(1), d.at(2));
    } else {  // a memory image from 0xE0000
        const std::string d = readFile(base + ".smbios-mem-e0000.dat");
        c.entry = d.substr(0, 0x1F);
        c.address = address(c.entry);
        c.table = d.substr(c.address - 0xE0000);
    }
    return c;
}

}  // namespace testsupport
