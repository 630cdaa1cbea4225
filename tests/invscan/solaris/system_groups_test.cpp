// The system description groups: their readers over real captures, and
// their tables on this machine against what its own tools say. The tables
// of simulated Solaris machines are in tests/machines.
#include <gtest/gtest.h>
#include <dirent.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>
#include <sstream>

#include "common/replay/MachineFile.h"
#include "common/replay/Recorder.h"
#include "common/sys/System.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/system/KeyboardGroup.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "invscan/solaris/system/SystemGroups.h"
#include "support/FakeSystem.h"
#include "support/Fixtures.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

std::vector<std::string> listFolder(const std::string& path)
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(path.c_str())) {
        while (const dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.') names.push_back(entry->d_name);
        closedir(dir);
    }
    return names;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(SystemDescription, ReleaseBannersGiveVersionAndMaintenanceLevel)
{
    struct Case {
        const char* banner;
        const char* release;
        const char* version;
        long major, minor, level;
    };
    const Case cases[] = {
        {"  Oracle Solaris 10 8/11 s10x_u10wos_17b X86\n  Assembled 23 August 2011\n", "5.10", "Generic_147148-26", 10, 0, 10},
        {"Oracle Solaris 11.4 X86", "5.11", "11.4.42.111.0", 11, 4, 42},
        {"Oracle Solaris 11.3 X86", "5.11", "11.3", 11, 3, -1},
        // The distributions' own numbers, not the kernel's 5.11.
        {"OmniOS v11 r151026", "5.11", "omnios-r151026", 151026, 0, -1},
        {"  OpenIndiana Development oi_151.1.8 X86 (powered by illumos)", "5.11", "illumos-cf2fa55", 151, 1, -1},
        {"Open Storage Appliance 4.0.3-FP2", "5.11", "NexentaOS_4:cd604cd066", 4, 0, -1},
        {"NexentaStor 4.0.3-FP2", "5.11", "NexentaOS_4:cd604cd066", 4, 0, -1},
        {"SmartOS 20160330T234717Z x86_64", "5.11", "joyent_20160330T234717Z", 20160330, 0, -1},
        {"SmartOS x86_64\nSee joyent_20141002T182809Z for assembly date and time.", "5.11", "", 20141002, 0, -1},
        // No version word in the banner: the kernel release stands in.
        {"SmartOS x86_64\nCopyright 2010-2013 Joyent, Inc.", "5.11", "joyent_20141002T182809Z", 5, 11, -1},
        {"OpenIndiana Development oi_ X86\nCopyright 2011 r2", "5.11", "", 5, 11, -1},
        {"", "6.1.0-18-amd64", "#1 SMP", 6, 1, -1},
        {"", "", "", -1, -1, -1},
    };
    for (const Case& c : cases) {
        OperatingSystemFacts facts;
        facts.banner = releaseBannerLines(c.banner);
        facts.release = c.release;
        facts.version = c.version;
        const OsVersion v = osVersion(facts);
        EXPECT_EQ(v.major, c.major) << c.banner;
        EXPECT_EQ(v.minor, c.minor) << c.banner;
        EXPECT_EQ(maintenanceLevel(facts), c.level) << c.banner;
    }
    EXPECT_EQ(osType("SunOS", "5.10"), OS_TYPE_SOLARIS);
    EXPECT_EQ(osType("SunOS", "4.1.4"), OS_TYPE_SUNOS);
    EXPECT_EQ(osType("Linux", "6.1.0"), OS_TYPE_LINUX);
    EXPECT_EQ(osType("", ""), OS_TYPE_UNKNOWN);
}

TEST(SystemDescription, RealReleaseFilesOfManySystems)
{
    REQUIRE_FIXTURES(dir, "solaris-system");
    // Every release banner of the captures, by the end of its file name: the
    // version the system's own users call it.
    struct Case {
        const char* file;
        long major, minor, level;
    } const cases[] = {
        {"release_sample1", 10, 0, 7},                       // Solaris 10 5/09 s10s_u7wos_08
        {"release_sample2", 9, 0, -1},                       // Solaris 9 s9_41e
        {"release_sample3", 9, 0, -1},                       // Solaris 9 s9_50
        {"release_sample4", 8, 0, 7},                        // Solaris 8 2/02 s28s_u7wos_08a
        {"release_sample5", 9, 0, 8},                        // Solaris 9 9/05 s9s_u8wos_05
        {"release_sample6", 10, 0, -1},                      // Solaris 10 3/05 s10_74L2a
        {"release_sample7", 10, 0, 11},                      // Oracle Solaris 10 1/13 s10s_u11wos_24a
        {"release_sample8", 10, 0, 10},                      // Oracle Solaris 10 8/11 s10s_u10wos_17b
        {"release_openindiana-151", 151, 1, -1},             // OpenIndiana Development oi_151.1.9
        {"opensolaris_release-1", 2009, 6, -1},              // OpenSolaris 2009.06 snv_111b
        {"nexenta_3__etc_release.txt", 3, 1, -1},            // Open Storage Appliance v3.1.6
        {"nexenta_4__etc_release.txt", 4, 0, -1},            // Open Storage Appliance 4.0.3-FP2
        {"omnios__etc_release.txt", 151012, 0, -1},          // OmniOS v11 r151012
        {"openindiana__etc_release.txt", 151, 1, -1},        // OpenIndiana Development oi_151.1.9
        {"smartos_global_zone__etc_release.txt", 20160330, 0, -1},
        {"smartos_zone__etc_release.txt", 20141002, 0, -1},  // "See joyent_20141002T182809Z ..."
        {"solaris_10__etc_release.txt", 10, 0, 11},          // Oracle Solaris 10 1/13 s10x_u11wos_24a
        {"solaris_11.3__etc_release.txt", 11, 3, -1},
        {"solaris_11.4__etc_release.txt", 11, 4, -1},
        {"solaris_11__etc_release.txt", 11, 0, -1},          // Oracle Solaris 11 11/11
        {"omnios-r151026__etc_release.txt", 151026, 0, -1},
        {"openindiana-hipster-2020.04__etc_release.txt", 2020, 4, -1},
        {"openindiana-oi_151.1.8__etc_release.txt", 151, 1, -1},
    };
    std::vector<std::string> files;
    for (const std::string& name : listFolder(dir))
        if (name.find("release") != std::string::npos) files.push_back(name);
    EXPECT_EQ(files.size(), sizeof cases / sizeof cases[0]) << "a banner without its case, or a case without its file";
    for (const std::string& file : files) {
        const Case* c = nullptr;
        for (const Case& k : cases)
            if (file.size() >= std::strlen(k.file) && file.compare(file.size() - std::strlen(k.file), std::string::npos, k.file) == 0)
                c = &k;
        if (!c) {
            ADD_FAILURE() << "no case for " << file;
            continue;
        }
        OperatingSystemFacts facts;
        facts.banner = releaseBannerLines(captureText(dir + "/" + file));
        facts.release = "5.11";  // never the answer: every banner names its own
        ASSERT_FALSE(facts.banner.empty()) << file;
        const OsVersion v = osVersion(facts);
        EXPECT_EQ(v.major, c->major) << file;
        EXPECT_EQ(v.minor, c->minor) << file;
        EXPECT_EQ(maintenanceLevel(facts), c->level) << file;
    }
}

TEST(SystemDescription, SettingsFilesAndInstallDates)
{
    const auto settings = systemfacts::parseSettings(
        "# comment\n  TZ = US/Pacific \nexport LANG=\"de_DE.UTF-8\"\nLC_MESSAGES='C'\nnot a setting\n=x\nTZ=UTC\n");
    EXPECT_EQ(settings.at("TZ"), "UTC");  // the last setting wins
    EXPECT_EQ(settings.at("LANG"), "de_DE.UTF-8");
    EXPECT_EQ(settings.at("LC_MESSAGES"), "C");
    EXPECT_EQ(settings.size(), 3u);

    EXPECT_EQ(systemfacts::languageOf("en_US.ISO8859-1"), "en");
    EXPECT_EQ(systemfacts::languageOf("fr@euro"), "fr");
    EXPECT_EQ(systemfacts::languageOf("C"), "C");

    ScopedEnv utc("TZ", "UTC");
    tzset();
    EXPECT_EQ(parseInstallDate("PKG=SUNWcsr\nINSTDATE=Nov 30 2018 12:44\n"), 1543581840);
    for (const char* bad : {"INSTDATE=Smarch 30 2018 12:44", "INSTDATE=Nov 30 2018", "INSTDATE=Nov 31 2018 25:00", "PKG=x"})
        EXPECT_EQ(parseInstallDate(bad), -1) << bad;
}

TEST(SystemDescription, Solaris11AsksTheServiceLocaleOncePerProcess)
{
    FakeSystem os;
    ScopedSystem scope(os);
    os.sysinfoValues[SI_RELEASE] = "5.11";
    os.files["/etc/default/init"] = "TZ=UTC\n";
    const std::string svcprop = "svcprop -p environment/LANG svc:/system/environment:init";
    os.commands[svcprop].output = "ja_JP.UTF-8\n";
    ScopedEnv noLang("LANG", "");
    ScopedEnv noAll("LC_ALL", "");
    // The operating system and the regional group both want it.
    EXPECT_EQ(systemfacts::readLocales(os).system, "ja_JP.UTF-8");
    EXPECT_EQ(systemfacts::readLocales(os).user, "ja_JP.UTF-8");
    EXPECT_EQ(os.runs[svcprop], 1);
}

TEST(SystemDescription, RealDefaultsFiles)
{
    REQUIRE_FIXTURES(dir, "solaris-system");
    const auto sol8 =
        systemfacts::parseSettings(captureText(dir + "/danielewood_misc__Solaris-md__etc_default_init.sol8-TZ-US-Pacific.txt"));
    EXPECT_EQ(sol8.at("TZ"), "US/Pacific");
    EXPECT_EQ(sol8.at("LANG"), "C");
    EXPECT_EQ(sol8.count("LC_MESSAGES"), 0u);  // commented out
    const auto french = systemfacts::parseSettings(
        captureText(dir + "/deimosfr_mytechnotebook__changing-locales__etc_default_init.fr_FR-snippet.HAND-EDITED.txt"));
    EXPECT_EQ(french.at("LC_MESSAGES"), "fr");
    EXPECT_EQ(french.count("LANG"), 0u);
}

TEST(SystemDescription, KbdOutputAndTheDefaultsFile)
{
    KeyboardFacts facts;
    EXPECT_FALSE(parseKbdOutput({"kbd: Cannot open /dev/kbd", ""}, facts));
    EXPECT_TRUE(facts.type.empty());
    ASSERT_TRUE(parseKbdOutput({"type=6", "layout=33 (0x21)", "delay(ms)=500", "rate(ms)=40"}, facts));
    EXPECT_EQ(facts.subType, "6");
    EXPECT_EQ(facts.layout, "33");
    EXPECT_EQ(facts.delayMs, 500);
    EXPECT_EQ(facts.rateMs, 40);
    // What kbd told stands; the defaults file fills the rest.
    applyKeyboardDefaults({{"LAYOUT", "German"}, {"REPEAT_DELAY", "250"}}, facts);
    EXPECT_EQ(facts.layout, "33");
    EXPECT_EQ(facts.delayMs, 500);
    KeyboardFacts bare;
    applyKeyboardDefaults({{"LAYOUT", "German"}, {"REPEAT_DELAY", "250"}, {"REPEAT_RATE", "junk"}}, bare);
    EXPECT_EQ(bare.layout, "German");
    EXPECT_EQ(bare.delayMs, 250);
    EXPECT_EQ(bare.rateMs, -1);
}

TEST(SystemDescription, RealKbdOutput)
{
    REQUIRE_FIXTURES(dir, "solaris-system");
    KeyboardFacts usb;
    ASSERT_TRUE(parseKbdOutput(
        linesOf(captureText(dir + "/index-11933608560__FreeRDP-keyboard_sun-comment__kbd_-t_-l.USB-layout3.txt")), usb));
    EXPECT_EQ(usb.type, "USB keyboard");
    EXPECT_EQ(usb.layout, "3");
    EXPECT_EQ(usb.rateMs, 40);
    KeyboardFacts layoutOnly;
    ASSERT_TRUE(parseKbdOutput(
        linesOf(captureText(dir + "/index-544477853__FreeRDP-keyboard_sun-comment__kbd_-l.layout33.txt")), layoutOnly));
    EXPECT_TRUE(layoutOnly.type.empty());
    EXPECT_EQ(layoutOnly.layout, "33");
}

TEST(SystemDescription, PromNodesAndTheIdDatabase)
{
    const auto functions = parsePromNodes({"Node 0x1", "  name: 'pci'", "  Node 0x2", "    vendor-id:  00008086",
                                           "    device-id:  00001237", "    revision-id:  00000002",
                                           "    subsystem-vendor-id:  00001af4", "  Node 0x3", "    device-id:  0000ffff",
                                           "  Node 0x4", "    vendor-id:  000015ad", "    device-id:  00000405",
                                           "    model:  'SVGA'"});
    ASSERT_EQ(functions.size(), 2u);  // node 3 has no vendor
    EXPECT_EQ(functions[0].vendor, 0x8086);  // not the subsystem's vendor
    EXPECT_EQ(functions[0].device, 0x1237);
    EXPECT_EQ(functions[0].revision, 2);
    EXPECT_EQ(functions[1].model, "SVGA");
    EXPECT_EQ(functions[1].revision, -1);

    PciNames names;
    long vendor = -1;
    const std::vector<std::string> database = {"# comment", "8086  Intel Corporation", "\t1237  440FX [Natoma]",
                                               "\t\t8086 1237  a subsystem, not a device", "\t7190  not wanted",
                                               "1af4  Red Hat, Inc.", "C 00  Unclassified device", "15ad  VMware"};
    size_t read = 0;
    for (const std::string& line : database) {
        ++read;
        if (!readPciIdsLine(line, functions, vendor, names)) break;
    }
    EXPECT_EQ(read, database.size() - 1);  // stops at the class list
    EXPECT_EQ(names.vendors.size(), 1u);   // Red Hat is not wanted, VMware comes too late
    EXPECT_EQ(pciName(functions[0], names), "Intel Corporation 440FX [Natoma]");
    EXPECT_EQ(pciName(functions[1], names), "SVGA");  // the node's model before bare ids
    PciFunction unknown;
    unknown.vendor = 0x8086;
    unknown.device = 0xabcd;
    EXPECT_EQ(pciName(unknown, names), "Intel Corporation Device abcd");
    unknown.vendor = 0x1234;
    EXPECT_EQ(pciName(unknown, names), "Vendor 1234 Device abcd");
}

// A capture keeps only the database lines the scan took names from, and its
// replay names every device alike. A device line that reads the same under
// another vendor stays too: dropping it could drop the one that named.
TEST(SystemDescription, ACaptureKeepsOnlyThePciIdLinesLookedUp)
{
    std::vector<PciFunction> functions(3);
    functions[0].vendor = 0x8086, functions[0].device = 0x1237;
    functions[1].vendor = 0x1af4, functions[1].device = 0x1041;
    functions[2].vendor = 0x15ad, functions[2].device = 0x0405;  // in no database line
    FakeSystem machine;
    machine.files["/usr/share/hwdata/pci.ids"] =
        "# a comment\n0e11  Compaq\n\t1237  440FX [Natoma]\n8086  Intel Corporation\n\t1237  440FX [Natoma]\n"
        "\t\t8086 1237  a subsystem\n\t7190  not wanted\n10de  NVIDIA\n\t0020  not wanted\n"
        "1af4  Red Hat, Inc.\n\t1041  Virtio network device\nC 00  Unclassified device\n15ad  VMware\n";
    PciNames live;
    std::ostringstream capture;
    {
        replay::Recorder recorder(machine, nullptr);
        ASSERT_TRUE(lookUpPciNames(recorder, functions, live));
        recorder.write(capture, nullptr);
    }
    EXPECT_EQ(pciName(functions[0], live), "Intel Corporation 440FX [Natoma]");
    const std::string text = capture.str();
    const size_t at = text.find("file /usr/share/hwdata/pci.ids\n");
    ASSERT_NE(at, std::string::npos) << text;
    EXPECT_EQ(text.substr(at, text.find("\n\n", at) - at + 1),
              "file /usr/share/hwdata/pci.ids\n> \t1237  440FX [Natoma]\n> 8086  Intel Corporation\n"
              "> \t1237  440FX [Natoma]\n> 1af4  Red Hat, Inc.\n> \t1041  Virtio network device\n");
    EXPECT_NE(text.find("only the 5 lines the scan looked up, of the 13 it read"), std::string::npos) << text;

    FakeSystem replayed;
    std::istringstream in(text + "end-of-capture\n");
    std::string error;
    ASSERT_TRUE(replay::readMachine(in, "capture", true, replayed, error)) << error;
    PciNames again;
    ASSERT_TRUE(lookUpPciNames(replayed, functions, again));
    EXPECT_EQ(again.vendors, live.vendors);
    EXPECT_EQ(again.devices, live.devices);
}

TEST(SystemDescription, RealPromTree)
{
    REQUIRE_FIXTURES(dir, "solaris-devices");
    const std::string text = captureText(dir + "/glpi-project_glpi-agent__resources_solaris_prtconf_sparc2");
    size_t vendorLines = 0;
    for (const std::string& line : linesOf(text))
        if (systemfacts::trimmed(line).rfind("vendor-id:", 0) == 0) ++vendorLines;
    const auto functions = parsePromNodes(linesOf(text));
    EXPECT_EQ(functions.size(), vendorLines);
    ASSERT_FALSE(functions.empty());
    bool lsi = false;
    for (const PciFunction& f : functions) lsi |= f.vendor == 0x1000 && f.device == 0x30 && f.revision == 8 && f.model == "LSI,1030";
    EXPECT_TRUE(lsi);
}

// ---- this machine, compared with its own tools

std::string osReleaseName()
{
    std::ifstream in("/etc/os-release");
    for (std::string line; std::getline(in, line);)
        if (line.rfind("PRETTY_NAME=", 0) == 0) {
            std::string value = line.substr(12);
            if (value.size() >= 2 && value.front() == '"') value = value.substr(1, value.size() - 2);
            return value;
        }
    return std::string();
}

long long procBootTime()
{
    std::ifstream in("/proc/stat");
    for (std::string line; std::getline(in, line);)
        if (line.rfind("btime ", 0) == 0) return std::atoll(line.c_str() + 6);
    return -1;
}

TEST(ThisMachine, OperatingSystemUnixParamsAndRegional)
{
    struct utsname u;
    ASSERT_EQ(uname(&u), 0);
    if (std::string(u.sysname) != "Linux") GTEST_SKIP() << "compared with Linux's own files";
    sys::System& os = sys::platform();
    OperatingSystemFacts facts;
    ASSERT_TRUE(gatherOperatingSystemFacts(os, nullptr, facts));
    EXPECT_EQ(facts.sysname, u.sysname);
    EXPECT_EQ(facts.release, u.release);
    EXPECT_EQ(facts.version, u.version);
    const std::string pretty = osReleaseName();
    if (!pretty.empty()) {
        ASSERT_FALSE(facts.banner.empty());
        EXPECT_EQ(facts.banner.front(), pretty);
    }
    // With login records the boot record; without them the kernel's figure.
    const long long btime = procBootTime();
    ASSERT_GT(facts.bootTime, 0);
    if (btime > 0) {
        EXPECT_LE(std::llabs(facts.bootTime - btime), 60);
    }

    const UnixSystemFacts params = gatherUnixSystemFacts(os);
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    EXPECT_EQ(params.hostname, host);
    EXPECT_EQ(params.bootTime, facts.bootTime);

    // What `date +%z` prints, in seconds.
    const RegionalFacts regional = gatherRegionalFacts(os);
    const time_t now = std::time(nullptr);
    struct tm local;
    ASSERT_NE(localtime_r(&now, &local), nullptr);
    EXPECT_EQ(regional.offsetEast, local.tm_gmtoff);
    EXPECT_EQ(regional.summerTimeNow, local.tm_isdst > 0);
}

TEST(ThisMachine, PciDevicesAreTheKernelsFunctions)
{
    DIR* bus = opendir("/sys/bus/pci/devices");
    if (!bus) GTEST_SKIP() << "no PCI bus visible";
    size_t kernel = 0;
    while (dirent* e = readdir(bus)) kernel += e->d_name[0] != '.';
    closedir(bus);
    std::vector<std::string> lines;
    ASSERT_EQ(sys::platform().runCommand({"prtconf", "-pv"}, 10, lines), 0);
    EXPECT_EQ(parsePromNodes(lines).size(), kernel);
    PCIDeviceGroup group;
    std::unique_ptr<KorTable> table(group.getTable());
    if (kernel == 0) {
        EXPECT_EQ(table, nullptr);
        return;
    }
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(readTable(*table).size(), kernel);
    EXPECT_TRUE(catalogueProblems(*table).empty());
}

}  // namespace
