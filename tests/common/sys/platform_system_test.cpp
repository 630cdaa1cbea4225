// The platform's own implementation of the OS seam gives real answers on
// this machine: compared with what procfs says directly.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

#include "common/sys/System.h"
#include "invscan/solaris/system/MemoryGroup.h"
#include "support/TempDir.h"

namespace {

// A "Name:  value kB" figure of /proc/meminfo; -1 when absent.
long long meminfo(const std::string& name)
{
    std::ifstream in("/proc/meminfo");
    std::string key;
    long long value;
    std::string unit;
    while (in >> key >> value) {
        std::getline(in, unit);
        if (key == name + ":") return value;
    }
    return -1;
}

bool haveProcfs() { return meminfo("MemTotal") > 0; }

TEST(PlatformSystem, MemoryFactsAgreeWithProcMeminfo)
{
    if (!haveProcfs()) GTEST_SKIP() << "no /proc/meminfo";
    const long long freeBefore = meminfo("MemFree");
    const MemoryFacts facts = gatherMemoryFacts(sys::platform());
    const long long freeAfter = meminfo("MemFree");
    const long long kbPerPage = facts.pageSize / 1024;
    EXPECT_EQ(facts.pageSize, sysconf(_SC_PAGESIZE));
    EXPECT_EQ(facts.physPages * kbPerPage, meminfo("MemTotal"));
    EXPECT_EQ(facts.swapTotalKB, meminfo("SwapTotal"));
    // Free memory moves while we look: it must lie near both readings.
    const long long slack = 64 * 1024;
    EXPECT_GE(facts.freePages * kbPerPage, std::min(freeBefore, freeAfter) - slack);
    EXPECT_LE(facts.freePages * kbPerPage, std::max(freeBefore, freeAfter) + slack);
}

TEST(PlatformSystem, SwapInSolarisShapes)
{
    if (!haveProcfs()) GTEST_SKIP() << "no /proc/meminfo";
    sys::System& os = sys::platform();
    const int devices = os.swapctl(SC_GETNSWP, nullptr);
    ASSERT_GE(devices, 0);

    const int slots = devices + 1;
    std::vector<char> buffer(sizeof(swaptbl_t) + sizeof(swapent) * static_cast<size_t>(slots));
    auto* table = reinterpret_cast<swaptbl_t*>(buffer.data());
    std::vector<char> paths(static_cast<size_t>(slots) * 1024);
    table->swt_n = slots;
    for (int i = 0; i < slots; ++i) table->swt_ent[i].ste_path = &paths[static_cast<size_t>(i) * 1024];
    ASSERT_EQ(os.swapctl(SC_LIST, table), devices);
    long long pages = 0;
    for (int i = 0; i < devices; ++i) pages += table->swt_ent[i].ste_pages;
    EXPECT_EQ(pages * (sysconf(_SC_PAGESIZE) / 1024), meminfo("SwapTotal"));

    anoninfo info{};
    ASSERT_EQ(os.swapctl(SC_AINFO, &info), 0);
    EXPECT_EQ(static_cast<long long>(info.ani_max) * (sysconf(_SC_PAGESIZE) / 1024), meminfo("SwapTotal"));
    EXPECT_EQ(info.ani_resv, info.ani_max - info.ani_free);

    if (devices > 0) {  // a table too small for the devices
        table->swt_n = devices - 1;
        errno = 0;
        EXPECT_EQ(os.swapctl(SC_LIST, table), -1);
        EXPECT_EQ(errno, ENOMEM);
    }
}

TEST(PlatformSystem, CpuStatRecordsOnePerProcessor)
{
    std::ifstream stat("/proc/stat");
    if (!stat) GTEST_SKIP() << "no /proc/stat";
    int cpus = 0;
    for (std::string line; std::getline(stat, line);)
        if (line.size() > 3 && line.compare(0, 3, "cpu") == 0 && std::isdigit(static_cast<unsigned char>(line[3]))) ++cpus;

    sys::System& os = sys::platform();
    kstat_ctl_t* kc = os.kstat_open();
    ASSERT_NE(kc, nullptr);
    int records = 0;
    for (kstat_t* k = kc->kc_chain; k; k = k->ks_next) {
        if (std::strcmp(k->ks_module, "unix") == 0) continue;  // system_misc, below
        EXPECT_STREQ(k->ks_module, "cpu_stat");
        EXPECT_EQ(k->ks_type, KSTAT_TYPE_RAW);
        EXPECT_EQ(k->ks_data_size, 380u);
        ++records;
    }
    EXPECT_EQ(records, cpus);

    char module[] = "cpu_stat", name[] = "cpu_stat0", missing[] = "cpu_stat99999";
    kstat_t* first = os.kstat_lookup(kc, module, 0, name);
    ASSERT_NE(first, nullptr);
    cpu_stat_t data{};
    ASSERT_NE(os.kstat_read(kc, first, &data), -1);
    EXPECT_GT(data.cpu_sysinfo.cpu[CPU_IDLE] + data.cpu_sysinfo.cpu[CPU_USER] + data.cpu_sysinfo.cpu[CPU_KERNEL], 0u);
    EXPECT_EQ(os.kstat_lookup(kc, module, -1, missing), nullptr);
    EXPECT_EQ(errno, ENOENT);
    // The kernel's boot time, as the system description groups read it.
    char unix[] = "unix", misc[] = "system_misc";
    kstat_t* system = os.kstat_lookup(kc, unix, 0, misc);
    ASSERT_NE(system, nullptr);
    ASSERT_NE(os.kstat_read(kc, system, nullptr), -1);
    ASSERT_EQ(system->ks_ndata, 1u);
    const auto* boot = static_cast<const kstat_named_t*>(system->ks_data);
    EXPECT_STREQ(boot->name, "boot_time");
    long long btime = -1;
    std::ifstream procStat("/proc/stat");
    for (std::string line; std::getline(procStat, line);)
        if (line.rfind("btime ", 0) == 0) btime = std::atoll(line.c_str() + 6);
    EXPECT_EQ(sizeof(long) == 8 ? static_cast<long long>(boot->value.ui64) : boot->value.ui32, btime);
    EXPECT_EQ(os.kstat_lookup(kc, module, -1, missing), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(os.kstat_chain_update(kc), 0);
    EXPECT_EQ(os.kstat_close(kc), 0);

    double load[3] = {-1, -1, -1};
    EXPECT_EQ(os.getloadavg(load, 3), 3);
    EXPECT_GE(load[0], 0.0);
}

TEST(PlatformSystem, IdentityAndProcessors)
{
    sys::System& os = sys::platform();
    char serial[257];
    ASSERT_GT(os.sysinfo(SI_HW_SERIAL, serial, sizeof serial), 1);
    // The seam's own host id, which never asks the resolver; where the
    // machine keeps "/etc/hostid", the one glibc reads from it too.
    const unsigned long id = std::strtoul(serial, nullptr, 10);
    EXPECT_EQ(id, static_cast<unsigned long>(static_cast<uint32_t>(os.gethostid())));
    if (access("/etc/hostid", R_OK) == 0) {
        EXPECT_EQ(id, static_cast<unsigned long>(static_cast<uint32_t>(gethostid())));
    }
    // Cut to count - 1 characters, but the length needed is still told.
    char small[3];
    const long needed = os.sysinfo(SI_HW_SERIAL, small, sizeof small);
    EXPECT_EQ(needed, static_cast<long>(std::strlen(serial)) + 1);
    EXPECT_EQ(std::string(small), std::string(serial).substr(0, 2));
    EXPECT_EQ(os.sysinfo(12345, serial, sizeof serial), -1);
    EXPECT_EQ(errno, EINVAL);

    uint_t count = 1;
    processorid_t list[1] = {-1};
    int type = 0;
    ASSERT_EQ(os.pset_info(PS_MYID, &type, &count, list), 0);
    EXPECT_GE(count, 1u);  // the whole count even when the list holds one
    EXPECT_LE(static_cast<long>(count), sysconf(_SC_NPROCESSORS_CONF));
    EXPECT_EQ(type, PS_NONE);
    EXPECT_EQ(os.p_online(list[0], P_STATUS), P_ONLINE);
    EXPECT_EQ(os.p_online(1 << 20, P_STATUS), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST(PlatformSystem, SolarisDevicesAnswerFromLinux)
{
    sys::System& os = sys::platform();
    // The memory device exists exactly when Linux shows the firmware tables.
    const int xsvc = os.open("/dev/xsvc", 0);
    EXPECT_EQ(xsvc >= 0, access("/sys/firmware/dmi/tables/DMI", R_OK) == 0);
    if (xsvc >= 0) os.close(xsvc);
    const int fd = os.open("/dev/null", 0);
    ASSERT_GE(fd, 0);
    dk_cinfo info{};
    EXPECT_EQ(os.ioctl(fd, DKIOCINFO, &info), -1);
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(os.close(fd), 0);
}

TEST(PlatformSystem, RunCommandLinesStatusAndLimits)
{
    sys::System& os = sys::platform();
    std::vector<std::string> lines;
    EXPECT_EQ(os.runCommand({"sh", "-c", "printf 'a b\\n\\nlast'; exit 3"}, 0, lines), 3);
    EXPECT_EQ(lines, (std::vector<std::string>{"a b", "", "last"}));

    // Arguments are passed as they are: no shell sees them.
    EXPECT_EQ(os.runCommand({"printf", "%s|", "$HOME", "a;b"}, 0, lines), 0);
    EXPECT_EQ(lines, (std::vector<std::string>{"$HOME|a;b|"}));

    // A child inherits its three standard descriptors and nothing else, not
    // even one the host left open across exec (ls shows its own listing's).
    const int leaked = dup(0);
    ASSERT_GE(leaked, 3);
    EXPECT_EQ(os.runCommand({"ls", "/proc/self/fd"}, 0, lines), 0);
    EXPECT_EQ(lines, (std::vector<std::string>{"0", "1", "2", "3"}));
    close(leaked);

    errno = 0;
    EXPECT_EQ(os.runCommand({"/nonexistent/program"}, 0, lines), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(lines.empty());

    // Time-outs: one that keeps printing, one that closed its output first.
    for (const char* script : {"while :; do echo x; sleep 0.05; done", "exec >&-; sleep 30"}) {
        errno = 0;
        EXPECT_EQ(os.runCommand({"sh", "-c", script}, 1, lines), -1) << script;
        EXPECT_EQ(errno, ETIMEDOUT) << script;
    }
    EXPECT_FALSE(testsupport::hasZombieChild());

    // popen runs through the shell, and like every child in the C locale.
    testsupport::ScopedEnv japanese("LC_ALL", "ja_JP.UTF-8");
    FILE* shell = os.popen("echo $LC_ALL; exit 2", "r");
    ASSERT_NE(shell, nullptr);
    char line[16] = {};
    EXPECT_NE(std::fgets(line, sizeof line, shell), nullptr);
    EXPECT_STREQ(line, "C\n");
    EXPECT_EQ(os.pclose(shell), 2 << 8);
    EXPECT_EQ(os.pclose(shell), -1);  // not ours any more
    EXPECT_FALSE(testsupport::hasZombieChild());
}

}  // namespace
