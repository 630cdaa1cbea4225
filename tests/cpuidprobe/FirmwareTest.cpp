// The probe's firmware facts from the real captures, against what dmidecode
// decoded from the same bytes (../shared/fixtures/smbios): the system, the
// base board, and the processor sockets, SMBIOS 3 tables included.
#include <gtest/gtest.h>

#include <sstream>

#include "probes/cpuid/Firmware.h"
#include "support/Firmware.h"
#include "support/Fixtures.h"
#include "support/TempDir.h"

namespace {

// dmidecode's decoding: the values of the last type 1, the first type 2,
// and the type 4 counts. Its "Not Specified" (string number 0) reads "".
struct Decoded {
    std::map<std::string, std::string> system, board;
    cpuid::Firmware counts;
};

Decoded readDmidecode(const std::string& text)
{
    Decoded d;
    std::istringstream in(text);
    int type = -1, boards = 0;
    std::map<std::string, std::string> section;
    auto close = [&]() {
        if (type == 1) d.system = section;
        if (type == 2 && boards++ == 0) d.board = section;
        if (type == 4 && section["Type"] == "Central Processor" && section["Status"].rfind("Populated", 0) == 0) {
            const bool enabled = section["Status"] == "Populated, Enabled";
            const int cores = std::atoi(section["Core Count"].c_str()), threads = std::atoi(section["Thread Count"].c_str());
            d.counts.totalPackages += 1;
            d.counts.totalCores += cores;
            d.counts.totalThreads += threads;
            d.counts.activePackages += enabled;
            d.counts.activeCores += enabled ? std::atoi(section["Core Enabled"].c_str()) : 0;
            d.counts.activeThreads += enabled ? threads : 0;
        }
        section.clear();
    };
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("Handle 0x", 0) == 0) {
            close();
            const size_t at = line.find("DMI type ");
            type = at == std::string::npos ? -1 : std::atoi(line.c_str() + at + 9);
        } else if (line.size() > 1 && line[0] == '\t' && line[1] != '\t') {
            const size_t colon = line.find(": ");
            if (colon == std::string::npos) continue;
            std::string value = line.substr(colon + 2);
            value.erase(value.find_last_not_of(' ') + 1);
            if (value == "Not Specified" || value == "Not Settable" || value == "Not Present") value.clear();
            section[line.substr(1, colon - 1)] = value;
        }
    }
    close();
    return d;
}

TEST(ProbeFirmware, EveryCaptureAgreesWithDmidecode)
{
    REQUIRE_FIXTURES(dir, "smbios");
    const std::pair<const char*, const char*> captures[] = {
        {"u-root_smbios__VMWare", "dump-bin"},
        {"fwupd__tables", "sysfs"},
        {"u-root_smbios__Lenovo-ThinkPad-W510", "dump-bin"},
        {"u-root_smbios__Asus-UX307LA", "dump-bin"},
        {"u-root_smbios__Gigabyte-GA-MA74GMT-S2", "dump-bin"},
        {"u-root_smbios__MSI-MS-7816", "dump-bin"},
        {"u-root_smbios__SuperMicro-X9DBL", "dump-bin"},
        {"u-root_smbios__Synology-RS3614xsp", "dump-bin"},
        {"u-root_smbios__Toshiba-Satellite-Pro-L70", "dump-bin"},
        {"siderolabs_go-smbios__ASRock-Single-Ryzen", "raw-table"},
        {"siderolabs_go-smbios__Beelink-EQ12", "raw-table"},
        {"siderolabs_go-smbios__SuperMicro-Dual-Xeon", "raw-table"},
        {"jrgerber_smbios-lib__jeffgerlap_3_2_0", "windows-rsmb"},
        {"dell_libsmbios__PE2600", "e0000"},
        {"dell_libsmbios__PE8450", "e0000"},
        {"dell_libsmbios__precisiont7600", "sysfs"},
        {"u-root_smbios__GigaByte-X399", "dump-bin"},  // SMBIOS 3 entry points: the probe reads them
        {"u-root_smbios__smbios_table", "dump-bin"},
        {"dell_libsmbios__xps9365", "sysfs"},
    };
    for (const auto& c : captures) {
        SCOPED_TRACE(c.first);
        const testsupport::FirmwareCapture bytes = testsupport::readCapture(dir, c.first, c.second);
        const cpuid::Firmware f = cpuid::parseFirmware(bytes.entry, bytes.table);
        std::string text = testsupport::readFile(dir + "/" + c.first + ".dmidecode.txt");
        if (text.empty()) text = testsupport::readFile(dir + "/" + c.first + ".dmidecode-3.4-LOCAL.txt");
        ASSERT_FALSE(text.empty());
        Decoded truth = readDmidecode(text);
        ASSERT_TRUE(f.present);
        EXPECT_EQ(f.manufacturer, truth.system["Manufacturer"]);
        EXPECT_EQ(f.productName, truth.system["Product Name"]);
        EXPECT_EQ(f.version, truth.system["Version"]);
        EXPECT_EQ(f.serialNumber, truth.system["Serial Number"]);
        // A table of version 2.5 or older that dmidecode could not date ("raw") keeps its bytes' order.
        if (std::string(c.second) != "raw-table" && std::string(c.second) != "windows-rsmb") {
            EXPECT_EQ(f.uuid, truth.system["UUID"]);
        }
        EXPECT_EQ(f.hasBoard, !truth.board.empty());
        EXPECT_EQ(f.boardManufacturer, truth.board["Manufacturer"]);
        EXPECT_EQ(f.boardProduct, truth.board["Product Name"]);
        EXPECT_EQ(f.boardVersion, truth.board["Version"]);
        EXPECT_EQ(f.boardSerial, truth.board["Serial Number"]);
        EXPECT_EQ(f.totalPackages, truth.counts.totalPackages);
        EXPECT_EQ(f.activePackages, truth.counts.activePackages);
        EXPECT_EQ(f.totalCores, truth.counts.totalCores);
        EXPECT_EQ(f.activeCores, truth.counts.activeCores);
        EXPECT_EQ(f.totalThreads, truth.counts.totalThreads);
        EXPECT_EQ(f.activeThreads, truth.counts.activeThreads);
    }
}

TEST(ProbeFirmware, VerdictsFromTheFirmwareStrings)
{
    struct Case {
        const char *manufacturer, *product, *virtualization, *brand;
    } const cases[] = {
        {"VMware, Inc.", "VMware Virtual Platform", "VMware", "VMware"},
        {"Microsoft Corporation", "Virtual Machine", "MSVS", "Virtual Server"},
        {"QEMU", "Standard PC (i440FX + PIIX, 1996)", "", "KVM"},
        {"innotek GmbH", "VirtualBox", "", "VirtualBox"},
        {"Xen", "HVM domU", "", "Xen"},
        {"Dell Inc.", "PowerEdge R640", "", ""},
    };
    for (const Case& c : cases) {
        cpuid::Firmware f;
        f.manufacturer = c.manufacturer;
        f.productName = c.product;
        EXPECT_EQ(cpuid::virtualizationFromFirmware(f), c.virtualization) << c.product;
        EXPECT_EQ(cpuid::brandFromFirmware(f), c.brand) << c.product;
    }
    EXPECT_FALSE(cpuid::parseFirmware("no entry point", "").present);
}

}  // namespace
