// The fault matrix: a simulated machine with one thing broken, scanned as a
// host scans. Each case names the fault, the group it hits, the result that
// group must give and the trace line that must say why; every case also
// scans without a crash, a leak of memory, descriptor, pipe, library or
// kernel statistics handle, and with each probe run at most once.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "support/Machine.h"
#include "support/MachineScan.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

struct Fault {
    const char* name;
    const char* machine;  // the folder under tests/machines it starts from
    // Edits of its machine.txt, in order: "-PREFIX" drops every entry whose
    // line starts so (with its "> " lines), "+LINES" adds lines, "s/RE/TEXT/"
    // rewrites each line (RE holds no '/'; a line feed in TEXT adds a line
    // after the one rewritten).
    std::vector<std::string> edits;
    const char* group;
    // "no table", "rows N", or a line the group's table must hold.
    std::string result;
    std::string trace;
    // What a probe prints instead ("NAME" alone: the probe is missing),
    // and the configuration file instead of the machine's.
    const char* probe = nullptr;
    const char* config = nullptr;
};

void PrintTo(const Fault& fault, std::ostream* out) { *out << fault.name; }

bool continues(const std::string& line)
{
    return line.rfind("> ", 0) == 0 || line == ">" || line.rfind("exit ", 0) == 0 || line == "start-fails" ||
           line == "no-final-newline";
}

std::string editMachine(const std::string& text, const std::vector<std::string>& edits)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    for (const std::string& edit : edits) {
        if (edit[0] == '+') {
            std::istringstream added(edit.substr(1));
            for (std::string line; std::getline(added, line);) lines.push_back(line);
        } else if (edit[0] == '-') {
            std::vector<std::string> kept;
            bool dropping = false;
            for (const std::string& line : lines) {
                if (!(dropping && continues(line))) dropping = line.rfind(edit.substr(1), 0) == 0;
                if (!dropping) kept.push_back(line);
            }
            lines.swap(kept);
        } else {
            const size_t middle = edit.find('/', 2);
            const std::regex pattern(edit.substr(2, middle - 2));
            const std::string with = edit.substr(middle + 1, edit.size() - middle - 2);
            for (std::string& line : lines) line = std::regex_replace(line, pattern, with);
        }
    }
    std::string out;
    for (const std::string& line : lines) out += line + "\n";
    return out;
}

// The base machine, with the fault put in when `broken`; its trace.txt the
// one line wanted.
void makeMachine(const Fault& fault, bool broken, const TempDir& dir)
{
    const std::string base = machineDir(fault.machine);
    const std::string machine = readFile(base + "/machine.txt");
    dir.write("machine.txt", broken ? editMachine(machine, fault.edits) : machine);
    dir.write("trace.txt", fault.trace + "\n");
    const std::string probe = broken && fault.probe ? fault.probe : "";
    const std::string replaced = probe.substr(0, probe.find('='));
    for (const std::string name : {"cpuid", "diskscan"}) {
        const std::string output = readFile(base + "/probes/" + name);
        if (name != replaced && !output.empty()) dir.write("probes/" + name, output);
    }
    if (probe.find('=') != std::string::npos) dir.write("probes/" + replaced, probe.substr(probe.find('=') + 1));
    const std::string config = broken && fault.config ? fault.config : readFile(base + "/config/NimHWConfig.xml");
    if (config[0] == '@') {  // a link to what follows
        dir.write("config/.keep", "");
        EXPECT_EQ(symlink(config.c_str() + 1, (dir.path() + "/config/NimHWConfig.xml").c_str()), 0);
    } else if (!config.empty()) {
        dir.write("config/NimHWConfig.xml", config);
    }
}

size_t rowCount(const std::string& section)
{
    static const std::regex rowMark(R"(^\[\d+\]$)", std::regex::multiline);
    return static_cast<size_t>(std::distance(std::sregex_iterator(section.begin(), section.end(), rowMark), {}));
}

// A line of the section, leading blanks aside.
bool holdsLine(const std::string& section, const std::string& wanted)
{
    std::istringstream in(section);
    for (std::string line; std::getline(in, line);) {
        const size_t start = line.find_first_not_of(' ');
        if (start != std::string::npos && line.compare(start, std::string::npos, wanted) == 0) return true;
    }
    return false;
}

// The system's own words for an I/O error differ between systems.
const std::string kEIO = std::strerror(EIO);

// clang-format off
const char* const kDisks = "sol10-x86-disks-and-dvd";
const char* const kSan = "sol10-san-multipath";
const char* const kZones = "sol11-global-with-zones";
const char* const kServer = "xeon-2socket-ht";
const char* const kDesk = "sol10-x86-workstation";

// The zone's facts when its type could not be read.
const char* const kZoneTypeUnread =
    "id 0, hostid 305419896, name 'global', type 'Zone' ('Zone'), capacity 3, pool capacity 2";

const Fault kFaults[] = {
    // Disks: a device that cannot be opened is no disk; only a drive that
    // fails without an I/O error may be a CD/DVD drive iostat names.
    {"DiskOpenDenied", kDisks, {R"(s/^rdsk (c0t0d0\S+) root$/rdsk $1 open-fails EACCES/)"}, "Storage", "rows 2",
     "hardware open of device /dev/rdsk/c0t0d0s0 failed : Permission denied"},
    {"DiskOpenIOError", kDisks, {R"(s/^rdsk (c0t0d0\S+) root$/rdsk $1 open-fails EIO/)"}, "Storage", "rows 2",
     "hardware strerr= " + kEIO},
    {"DiskOpenNoDevice", kDisks, {R"(s/^rdsk (c0t0d0\S+) root$/rdsk $1 open-fails ENXIO/)"}, "Storage", "rows 2",
     "hardware open of device /dev/rdsk/c0t0d0s0 failed : No such device or address"},
    {"DiskInfoIoctlFails", kDisks, {R"(s/^(disk root .*)$/$1 fails=DKIOCINFO/)"}, "Storage", "rows 2",
     "hardware ioctl DKIOCINFO of device /dev/rdsk/c0t0d0s0 failed : " + kEIO},
    {"DiskGeometryIoctlFails", kDisks, {R"(s/^(disk root .*)$/$1 fails=DKIOCGGEOM/)"}, "Storage", "rows 2",
     "hardware ioctl DKIOCGGEOM/DKIOCGVTOC of device /dev/rdsk/c0t0d0s0 failed : " + kEIO},
    {"DiskLabelIoctlFails", kDisks, {R"(s/^(disk root .*)$/$1 fails=DKIOCGVTOC/)"}, "Storage", "rows 2",
     "hardware ioctl DKIOCGGEOM/DKIOCGVTOC of device /dev/rdsk/c0t0d0s0 failed : " + kEIO},
    {"ScsiInquiryFails", kDisks, {R"(s/^(disk root .*) inquiry="[^"]*"(.*)$/$1$2/)"}, "Storage", "Model = SUN146G",
     "hardware /dev/rdsk/c0t0d0s0 : SCSI command 0x 12 failed: e= 5 " + kEIO},
    {"ScsiInquiryShort", kDisks, {"s/^(disk root .*)$/$1\nscsi root 120000003000 0000/"}, "Storage", "Model = SUN146G",
     "hardware /dev/rdsk/c0t0d0s0 SCSI INQUIRY: vendor=<  > product=<  >"},
    {"ScsiInquiryGarbage", kDisks, {"s/^(disk root .*)$/$1\nscsi root 120000003000 " + std::string(96, 'f') + "/"},
     "Storage", "Model = SUN146G", "hardware /dev/rdsk/c0t0d0s0 Dtype (0=direct access drive, 5=cdrom): 255"},
    {"ScsiCapacityFails", kDisks, {R"(s/^(disk root .*) capacity=\S+(.*)$/$1$2/)"}, "Storage",
     "Model = ST914602SSUN146G", "hardware /dev/rdsk/c0t0d0s0 : SCSI command 0x 25 failed: e= 5 " + kEIO},
    {"IostatMissing", kDisks, {"-shell /usr/bin/iostat"}, "Storage", "rows 2",
     "hardware iostat failed - no CD-ROMs will be reported"},
    {"IostatFails", kDisks,
     {"-shell /usr/bin/iostat", "+shell /usr/bin/iostat -En\nstart-fails", "+shell iostat -En\nstart-fails"}, "Storage",
     "rows 2", "hardware iostat failed - no CD-ROMs will be reported"},
    {"RawDiskFolderUnreadable", kDisks, {"-rdsk ", "+fails opendir /dev/rdsk EACCES"}, "Storage", "no table",
     "hardware Can't open dierctory /dev/rdsk"},
    {"FloppyListingFails", kDisks, {"-shell ls -la /dev/ | grep disk", "+shell ls -la /dev/ | grep disk\nexit 1"},
     "Storage", "rows 2", "hardware no floppy"},

    // The disk-scan probe: the groups built from its tree stay empty.
    {"DiskscanMissing", kSan, {}, "PartitionToStorage", "rows 0", "ERROR! diskscan command failed with error=-1",
     "diskscan"},
    {"DiskscanGarbage", kSan, {}, "SAN Adapter", "rows 0", "ERROR! diskscan command failed with error=-1",
     "diskscan=\x7f" "ELF\x02\x01\x01 not a dump at all\n"},
    {"DiskscanTruncatedDump", kSan, {}, "PartitionToStorage", "rows 0", "ERROR! Failed to get root node",
     "diskscan=1.0 0 OK\n(ScsiInfo\n   (DiskTable\n      (Disk\n         Id:s=/dev/rdsk/c0"},
    {"DiskscanWithoutRoot", kSan, {}, "SAN Adapter", "rows 0", "ERROR! Failed to get root node",
     "diskscan=1.0 0 OK\n(Other\n   x:i=1\n)\n"},
    {"DiskscanWithoutHbaTable", kSan, {}, "SAN Adapter", "rows 0", "ERROR! Failed to get hba table",
     "diskscan=1.0 0 OK\n(ScsiInfo\n   (PartitionTable\n   )\n)\n"},
    {"DiskscanWithoutPartitionTable", kSan, {}, "PartitionToStorage", "rows 0", "ERROR! Failed to get partition table",
     "diskscan=1.0 0 OK\n(ScsiInfo\n   (HbaTable\n   )\n)\n"},
    {"DiskscanWithoutDiskTable", kSan, {}, "Storage", "rows 5", "ERROR! Failed to get disk table",
     "diskscan=1.0 0 OK\n(ScsiInfo\n   (HbaTable\n   )\n)\n"},

    // Zones, pools and the virtualization library: the facts stay unknown.
    {"ZoneadmFails", kZones, {"-run zoneadm", "+run zoneadm list -c -p\nexit 1"}, "VirtualMachine", "no table",
     "hardware zoneadm status 1 lines 0"},
    {"ZoneadmGarbled", kZones, {"-run zoneadm", "+run zoneadm list -c -p\n> no-colons-here\n> ::::\n> 7:odd"},
     "VirtualMachine", "rows 3", "could not match zone state in '7:odd'"},
    {"ZonecfgFails", kZones, {"-run zonecfg -z kz1 info hostid", "+run zonecfg -z kz1 info hostid\nexit 1"},
     "VirtualMachine", "VirtualMachineID = -1", "failed to convert hex hostid '' to decimal"},
    {"ZonecfgHostidNotHex", kZones, {"s/hostid: 0x2e7d2173/hostid: 0xZZ/"}, "VirtualMachine", "VirtualMachineID = -1",
     "failed to convert hex hostid '0xZZ' to decimal"},
    {"PoolbindFails", kZones, {"-run poolbind", "+run poolbind -q 4242\nexit 1"}, "Lpar", "SharedPool ID = ",
     "hardware poolbind status 1 lines 0"},
    {"ZoneCommandsMissing", kZones, {"-shell zonename", "-shell LANG=C"}, "VirtualMachine", "no table",
     "zones NOT detected (insideZone = false)"},
    {"V12nLibraryMissing", kZones, {"-library libv12n.so.1"}, "Zone", kZoneTypeUnread,
     "Failed to load libv12n.so.1 library, no v12n info available"},
    {"V12nFunctionMissing", kZones, {"s/^library libv12n.so.1$/library libv12n.so.1 missing v12n_get_current_env/"},
     "Zone", kZoneTypeUnread, "ERROR! Couldn't find 'v12n_get_current_env' function in libv12n.so.1"},
    {"V12nEnvironmentFails", kZones, {"+v12n env-fails"}, "Zone", kZoneTypeUnread,
     "v12n_get_current_env() function failed with errno="},
    {"V12nNameFails", kZones, {"+v12n name-fails"}, "Zone", kZoneTypeUnread,
     "v12n_get_env_prop() function getting V12N_PROP_NAME failed with errno="},
    {"V12nKernelZoneNameFails", "sol11-kernel-zone", {"+v12n kz-fails"}, "Zone",
     "id 0, hostid 779952499, name 'global', type 'Zone' ('Zone'), capacity -1, pool capacity -1",
     "v12n_get_env_prop() function getting V12N_PROP_KZ_ZONENAME failed with errno="},
    {"PoolLibraryMissing", kZones, {"-library libpool.so"}, "Lpar", "Processor Set Name = ",
     "Failed to load libpool.so library, no pool info available"},
    {"PoolFunctionMissing", kZones, {"s/^library libpool.so$/library libpool.so missing pool_get_pool/"}, "Lpar",
     "Processor Set Name = ", "ERROR! Couldn't find 'pool_get_pool' function in libpool.so"},
    {"PoolLookupFails", kZones, {"+pool-fails pool_get_pool"}, "Lpar", "Processor Set Name = ",
     "ERROR! 'pool_get_pool' failed, pool error:"},
    {"ProcessorSetFails", kZones, {"+pset-fails 1"}, "Zone",
     "id 0, hostid 305419896, name 'global', type 'vmware' ('Zone'), capacity 0, pool capacity 2",
     "pset_info call 1 failed with errno:"},
    {"ProcessorStatusFails", kZones, {"s/^online 1 on$/online 1 fails/"}, "Zone",
     "id 0, hostid 305419896, name 'global', type 'vmware' ('Zone'), capacity -1, pool capacity 2",
     "p_online call failed with errno: 22, reseting lpar capacity to 0"},

    // The firmware's SMBIOS table: the identity falls back to sysinfo.
    {"SmbiosChecksumWrong", kZones,
     {"+memory /dev/xsvc 0xF0000 5f534d5f791f020700000000000000005f444d495fe2400000100e00020027"}, "ComponentID",
     "Manufacturer = Oracle Corporation", "hardware Unable to READ the SMBIOS INFO"},
    {"SmbiosTableTruncated", kZones,
     {"+memory /dev/xsvc 0xF0000 5f534d5f7a1f020700000000000000005f444d495fe0400000100e00030027",
      "+memory /dev/xsvc 0xE1000 01ff010001020304" + std::string(112, '4')},
     "ComponentID", "Manufacturer = Oracle Corporation", "hardware Manufacter=<>"},

    // Memory and processor statistics.
    {"SwapListFails", kServer, {"+swap-list -1 EFAULT"}, "Memory", "Total Virtual = 134217728",
     "hardware swapctl failed : Bad address"},
    {"NoSwapConfigured", kServer, {"+swap-list 0"}, "Memory", "Total Virtual = 134217728",
     "hardware swapctl failed : No swap configured"},
    {"SwapCountAndAnonymousMemoryFail", kServer, {"-swap", "+swap-count 0", "+anoninfo-fails"}, "Memory",
     "Total Virtual = 134217728", "hardware swapctl(SC_AINFO) failed :"},
    {"KernelStatisticsUnavailable", kServer, {"+kstat-fails"}, "CpuMeter", "no table",
     "hardware Failed to open kstat interface"},
    {"KernelStatisticUnreadable", kServer, {R"(s/^(cpu_stat 5 .*)$/$1 unreadable/)"}, "CpuMeter", "IdleTime = 290322",
     "hardware Kstat returned 31 processors"},
    {"LoadAverageFails", kServer, {"-loadavg", "+loadavg-fails"}, "UnixCpuMeter", "no table",
     "hardware Failed to obtain load averages"},

    // Commands the system groups run.
    {"KeyboardCommandFails", kDesk, {"-run kbd -t -l", "+run kbd -t -l\nexit 1"}, "Keyboard", "no table",
     "hardware ERROR! kbd -t -l failed, status 1"},
    {"DeviceTreeCommandFails", kDesk, {"-run prtconf -pv", "+run prtconf -pv\nstart-fails"}, "PCI Device", "no table",
     "hardware ERROR! prtconf -pv failed, status"},
    {"DeviceTreeWithoutPci", kDesk, {"-run prtconf -pv", "+run prtconf -pv\n> Node 0x000001\n>     name:  'i86pc'"},
     "PCI Device", "no table", "hardware ERROR! no PCI functions in the device tree"},
    {"MountTableUnreadable", "sol10-mounts", {"-file /etc/mnttab", "+fails open /etc/mnttab EACCES"}, "Partition",
     "no table", "hardware ERROR! cannot read /etc/mnttab"},
    {"FileSystemSizeFails", "sol10-mounts", {"-statvfs /u01 "}, "Partition", "rows 7",
     "hardware statvfs failed: /u01 No such file or directory"},
    {"NetworkCommandFails", "sol10-ipmp-zones", {"-run ifconfig -a", "+run ifconfig -a\nexit 2"}, "Network Adapter",
     "rows 7", "hardware ERROR! ifconfig -a failed, status 2"},

    // A resolver's file over 64 KiB: its first 64 KiB still name the servers.
    {"ResolverOver64KiB", "sol11-aggr-ipmp",
     {"s/^(> nameserver 2001:db8::53)$/$1" + [] {
          std::string padding;
          while (padding.size() <= (80 << 10)) padding += "\n> # " + std::string(120, '=');
          return padding;
      }() + "/"},
     "IP Address", "Primary DNS = 10.20.0.53", "hardware /etc/resolv.conf is over 64 KiB: its first 64 KiB read"},

    // The hardware configuration file: the scan goes on without it.
    {"ConfigurationMalformed", kServer, {}, "Memory", "rows 1", "hardware ERROR! Failed to parse the xmlfile", nullptr,
     "<NimHWConfig><Hardware site=\"lab\"><Group Name=\"Memory\""},
    {"ConfigurationIsADevice", kServer, {}, "Memory", "rows 1", "hardware ERROR! Failed to open file", nullptr,
     "@/dev/zero"},
    {"ConfigurationAbsurdValues", kServer, {}, "Memory", "rows 1", "hardware ERROR! cpuThreshold -40", nullptr,
     "<NimHWConfig><Settings cpuThreshold=\"-40\" priority=\"99999999999999999999\"/></NimHWConfig>"},
};
// clang-format on

class FaultMatrix : public ::testing::TestWithParam<Fault> {};

TEST_P(FaultMatrix, GivesTheNeutralResultAndSaysWhy)
{
    const Fault& fault = GetParam();
    // Without the fault the machine does not say so: the case tests something.
    {
        TempDir whole;
        makeMachine(fault, false, whole);
        std::string scan;
        ASSERT_TRUE(scanMachineInChild(whole.path(), scan)) << scan;
        EXPECT_NE(scan.find("TRACE MISSING: "), std::string::npos) << "traced without the fault: " << fault.trace;
    }
    TempDir dir;
    makeMachine(fault, true, dir);
    std::string scan;
    ASSERT_TRUE(scanMachineInChild(dir.path(), scan)) << scan;
    const std::string section = groupSection(scan, fault.group);
    ASSERT_FALSE(section.empty()) << "no group " << fault.group << " in\n" << scan;
    const std::string& result = fault.result;
    if (result == "no table")
        EXPECT_EQ(section, "no table\n");
    else if (result.rfind("rows ", 0) == 0)
        EXPECT_EQ(rowCount(section), std::stoul(result.substr(5))) << section;
    else
        EXPECT_TRUE(holdsLine(section, result)) << result << " not in\n" << section;
    // What must never happen, whatever the fault.
    for (const char* problem : {"TRACE MISSING", "LEAK:", "PROBE RUN", "COMMAND RUN", "UNTRACED SCAN DIFFERS", "CATALOGUE:"})
        EXPECT_EQ(scan.find(problem), std::string::npos) << scan.substr(scan.find(problem));
}

INSTANTIATE_TEST_SUITE_P(Cases, FaultMatrix, ::testing::ValuesIn(kFaults),
                         [](const ::testing::TestParamInfo<Fault>& c) { return std::string(c.param.name); });

}  // namespace
