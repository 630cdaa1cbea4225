// The SMBIOS reader over real firmware tables (../shared/fixtures/smbios,
// truth in its README) and over built ones for the rules the captures do not
// reach.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "common/util/smbios.h"
#include "framework/utils.h"
#include "support/Firmware.h"
#include "support/Fixtures.h"
#include "support/TempDir.h"

namespace {

using testsupport::FakeSystem;

void loadCapture(FakeSystem& os, const std::string& dir, const std::string& prefix, const std::string& layout)
{
    const testsupport::FirmwareCapture c = testsupport::readCapture(dir, prefix, layout);
    testsupport::installFirmware(os, c.entry, c.table, c.address);
}

struct Outputs {
    int result = -1;
    std::string manufacturer, product, type, version, serial;
};

Outputs systemInfo()
{
    Outputs o;
    char *m = nullptr, *p = nullptr, *t = nullptr, *v = nullptr, *s = nullptr;
    o.result = SMBIOS_GetSystemInfo(&m, &p, &t, &v, &s);
    // Firmware pads some strings with blanks; the truth, as dmidecode shows
    // it, does not (and the group's attributes are trimmed too).
    for (auto pair : {std::make_pair(m, &o.manufacturer), std::make_pair(p, &o.product), std::make_pair(t, &o.type),
                      std::make_pair(v, &o.version), std::make_pair(s, &o.serial)}) {
        *pair.second = utils::trimBoth(std::string(pair.first ? pair.first : ""));
        std::free(pair.first);
    }
    return o;
}

TEST(SmbiosCaptures, EveryMachineGivesItsSystemInformation)
{
    REQUIRE_FIXTURES(dir, "smbios");
    struct Case {
        const char *prefix, *layout, *manufacturer, *product, *version, *serial;
    } const cases[] = {
        {"u-root_smbios__VMWare", "dump-bin", "VMware, Inc.", "VMware Virtual Platform", "None",
         "VMware-56 4d e2 c3 c3 c0 e1 e2-46 22 55 4d c5 eb 6b a1"},
        {"fwupd__tables", "sysfs", "LENOVO", "20ARS19C0C", "ThinkPad T440s", "PF01VVCA"},
        {"u-root_smbios__Lenovo-ThinkPad-W510", "dump-bin", "LENOVO", "431924G", "ThinkPad W510", "R86W27P"},
        {"u-root_smbios__Asus-UX307LA", "dump-bin", "ASUSTeK COMPUTER INC.", "UX305LA", "1.0", "FCN0CJ03468352B"},
        {"u-root_smbios__Gigabyte-GA-MA74GMT-S2", "dump-bin", "Gigabyte Technology Co., Ltd.", "GA-MA74GMT-S2", "", ""},
        {"u-root_smbios__MSI-MS-7816", "dump-bin", "MSI", "MS-7816", "1.0", "To be filled by O.E.M."},
        {"u-root_smbios__SuperMicro-X9DBL", "dump-bin", "Thomas-Krenn.AG", "X9DBL-3F/X9DBL-iF", "0123456789",
         "9000116105"},
        {"u-root_smbios__Synology-RS3614xsp", "dump-bin", "Synology", "RS3614xs+", "1.0", "To be filled by O.E.M."},
        {"u-root_smbios__Toshiba-Satellite-Pro-L70", "dump-bin", "TOSHIBA", "SATELLITE PRO L70-A", "PSKNFE-00300FCE",
         "XD198915C"},
        {"siderolabs_go-smbios__ASRock-Single-Ryzen", "raw-table", "To Be Filled By O.E.M.",
         "To Be Filled By O.E.M.", "To Be Filled By O.E.M.", "To Be Filled By O.E.M."},
        {"siderolabs_go-smbios__Beelink-EQ12", "raw-table", "AZW", "EQ", "Default string", "BN1004GH10075"},
        {"siderolabs_go-smbios__SuperMicro-Dual-Xeon", "raw-table", "Supermicro", "SYS-1027R-WRF", "0123456789",
         "E09626824801435"},
        {"jrgerber_smbios-lib__jeffgerlap_3_2_0", "windows-rsmb", "Microsoft Corporation", "Surface Laptop 3",
         "124I:00044T:000M:0400000B:07", "023078193757"},
        // dmidecode's "Not Specified" is string number 0: an empty string here.
        {"dell_libsmbios__PE2600", "e0000", "Dell Computer Corporation", "PowerEdge 2600", "", "8T64121"},
        {"dell_libsmbios__PE8450", "e0000", "Dell Computer Corporation", "Dell PowerEdge 8450",
         "01234567890123456789012345678901", "87654321"},
        {"dell_libsmbios__precisiont7600", "sysfs", "Dell Inc.", "Precision T7600", "01", ""},
        // Only a 64-bit SMBIOS 3 entry point: not looked for, on purpose.
        {"u-root_smbios__GigaByte-X399", "dump-bin", nullptr, nullptr, nullptr, nullptr},
        {"u-root_smbios__smbios_table", "dump-bin", nullptr, nullptr, nullptr, nullptr},
        {"dell_libsmbios__xps9365", "sysfs", nullptr, nullptr, nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.prefix);
        FakeSystem os;
        loadCapture(os, dir, c.prefix, c.layout);
        testsupport::ScopedSystem scope(os);
        const Outputs o = systemInfo();
        EXPECT_EQ(o.result, c.manufacturer ? 0 : -1);
        if (!c.manufacturer) continue;
        EXPECT_EQ(o.manufacturer, c.manufacturer);
        EXPECT_EQ(o.product, c.product);
        EXPECT_EQ(o.version, c.version);
        EXPECT_EQ(o.serial, c.serial);
        EXPECT_EQ(o.type, c.version);  // no "Zyx" machine here: the version stands for the type
        EXPECT_EQ(os.openDescriptors(), 0);
    }

    // The VMware guest's table is walked whole: 620 structures.
    FakeSystem os;
    loadCapture(os, dir, "u-root_smbios__VMWare", "dump-bin");
    testsupport::ScopedSystem scope(os);
    SMBIOS_Locator locator;
    ASSERT_EQ(find_SMBIOS(&locator), 0);
    EXPECT_EQ(locator.smbiosMajor, 2);
    EXPECT_EQ(locator.smbiosMinor, 7);
    int count = 0;
    scan_SMBIOS(&locator, [](const unsigned char*, const char*, void* n) { return ++*static_cast<int*>(n), 0; }, &count);
    EXPECT_EQ(count, 620);
    free_SMBIOS(&locator);
}

// One firmware table built from these structures; the reader's outputs.
Outputs builtMachine(const std::string& table, bool mapFails = false)
{
    FakeSystem os;
    testsupport::installFirmware(os, testsupport::smbiosEntryPoint(static_cast<uint16_t>(table.size()), 0xE1000, 9),
                                 table, 0xE1000);
    os.devices["/dev/xsvc"].mapFails = mapFails;
    testsupport::ScopedSystem scope(os);
    return systemInfo();
}

TEST(SmbiosRules, StringsStructuresAndMachineTypes)
{
    using testsupport::smbiosSystem;
    const std::string end = testsupport::smbiosStructure(127, std::string(4, '\0'), {});
    struct Case {
        const char* what;
        std::string table;
        const char *manufacturer, *product, *type, *serial;
    } const cases[] = {
        {"string number 0", smbiosSystem({"Acme", "Box", "", ""}) + end, "Acme", "Box", "", ""},
        {"the second type 1 wins", smbiosSystem({"First", "A", "1", "S1"}) + smbiosSystem({"Second", "B", "2", "S2"}) + end,
         "Second", "B", "2", "S2"},
        {"-[1234ABC]- from Zyx", smbiosSystem({"Zyx", "eServer -[1234ABC]-", "v", "s"}) + end, "Zyx",
         "eServer -[1234ABC]-", "1234", "s"},
        {"six characters: the bracket rule of exactly Zyx", smbiosSystem({"Zyx", "eServer -[1234AB]-", "v", "s"}) + end,
         "Zyx", "eServer -[1234AB]-", "1234", "s"},
        {"seven characters, no bracket", smbiosSystem({"Zyx", "8852AC1", "v", "s"}) + end, "Zyx", "8852AC1", "8852", "s"},
        {"a truncated last structure is not read", smbiosSystem({"Kept", "K", "", ""}) + smbiosSystem({"Cut", "C", "", ""}).substr(0, 32),
         "Kept", "K", "", ""},
    };
    for (const Case& c : cases) {
        for (bool mapFails : {false, true}) {  // mapped, or sought and read
            const Outputs o = builtMachine(c.table, mapFails);
            ASSERT_EQ(o.result, 0) << c.what;
            EXPECT_EQ(o.manufacturer, c.manufacturer) << c.what;
            EXPECT_EQ(o.product, c.product) << c.what;
            EXPECT_EQ(o.type, c.type) << c.what;
            EXPECT_EQ(o.serial, c.serial) << c.what;
        }
    }
    EXPECT_STREQ(getString_SMBIOS("a\0b\0", 3), "");  // past the last string
    char out[8] = "x";
    EXPECT_EQ(getTypeFromProd_Vantor("Zyx", "no brackets", out), 0);
    EXPECT_STREQ(out, "x");  // untouched
    EXPECT_STREQ(getTypeFromProd("[abc", out), "");  // too little after the bracket

    FakeSystem none;  // no memory device at all
    testsupport::ScopedSystem scope(none);
    EXPECT_EQ(systemInfo().result, -1);
}

}  // namespace
