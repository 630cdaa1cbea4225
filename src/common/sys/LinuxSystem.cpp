// Real answers on Linux, in Solaris shapes. What Linux has no equivalent for
// (the PROM device) fails as it would on a Solaris machine without it.
#if defined(__linux__)

#include <fcntl.h>
#include <scsi/sg.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>

#include "common/sys/KstatChain.h"
#include "common/sys/LinuxAnswers.h"
#include "common/sys/LinuxDisks.h"
#include "common/sys/LinuxHostId.h"
#include "common/sys/PosixSystem.h"
#include "common/sys/SeamNote.h"
#include "common/sys/SolarisCommands.h"

namespace sys {
namespace {

// The first line of a small file, without its line end; empty when unreadable.
std::string firstLine(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    if (!in || !std::getline(in, line)) return std::string();
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == ' ')) line.pop_back();
    return line;
}

// sysinfo(2)'s contract: copy at most count-1 bytes and a NUL, return the
// length needed with its NUL.
long copyOut(const std::string& value, char* buf, long count)
{
    if (buf && count > 0) {
        const size_t n = value.size() < static_cast<size_t>(count - 1) ? value.size() : static_cast<size_t>(count - 1);
        std::memcpy(buf, value.data(), n);
        buf[n] = '\0';
    }
    return static_cast<long>(value.size()) + 1;
}

// One "cpuN" line of /proc/stat as Solaris tick counters.
struct CpuTicks {
    int cpu;
    cpu_stat_t stat;
};

std::vector<CpuTicks> readProcStat()
{
    std::vector<CpuTicks> cpus;
    std::ifstream in("/proc/stat");
    std::string line;
    while (std::getline(in, line)) {
        if (line.compare(0, 3, "cpu") != 0 || line.size() < 4 || line[3] < '0' || line[3] > '9') continue;
        std::istringstream fields(line.substr(3));
        int cpu = -1;
        unsigned long long user = 0, nice = 0, system = 0, idle = 0, iowait = 0, irq = 0, softirq = 0;
        fields >> cpu >> user >> nice >> system >> idle >> iowait >> irq >> softirq;
        if (cpu < 0) continue;
        CpuTicks t{};
        t.cpu = cpu;
        // USER_HZ ticks, cut to 32 bits as the Solaris record's counters are.
        t.stat.cpu_sysinfo.cpu[CPU_IDLE] = static_cast<uint_t>(idle);
        t.stat.cpu_sysinfo.cpu[CPU_USER] = static_cast<uint_t>(user + nice);
        t.stat.cpu_sysinfo.cpu[CPU_KERNEL] = static_cast<uint_t>(system + irq + softirq);
        t.stat.cpu_sysinfo.cpu[CPU_WAIT] = static_cast<uint_t>(iowait);
        cpus.push_back(t);
    }
    return cpus;
}

// The handle kstat_open gives out: a "cpu_stat" record per processor, then
// "unix:0:system_misc" with the boot time; and the records' data.
struct LinuxKstatChain {
    kstat_ctl_t ctl;  // first: callers hold a pointer to it
    std::vector<kstat_t> records;
    std::vector<cpu_stat_t> data;
    kstat_named_t bootTime{};
};

void buildChain(LinuxKstatChain& chain)
{
    const std::vector<CpuTicks> cpus = readProcStat();
    chain.records.assign(cpus.size() + 1, kstat_t{});
    chain.data.assign(cpus.size(), cpu_stat_t{});
    for (size_t i = 0; i < chain.records.size(); ++i)
        chain.records[i].ks_next = i + 1 < chain.records.size() ? &chain.records[i + 1] : nullptr;
    for (size_t i = 0; i < cpus.size(); ++i) {
        kstat_t& k = chain.records[i];
        k.ks_kid = static_cast<kid_t>(i + 1);
        std::snprintf(k.ks_module, sizeof k.ks_module, "%s", "cpu_stat");
        k.ks_instance = cpus[i].cpu;
        std::snprintf(k.ks_name, sizeof k.ks_name, "cpu_stat%d", cpus[i].cpu);
        std::snprintf(k.ks_class, sizeof k.ks_class, "%s", "misc");
        k.ks_type = KSTAT_TYPE_RAW;
        k.ks_ndata = 1;
        k.ks_data_size = sizeof(cpu_stat_t);
    }
    kstat_t& misc = chain.records.back();
    misc.ks_kid = static_cast<kid_t>(chain.records.size());
    std::snprintf(misc.ks_module, sizeof misc.ks_module, "%s", "unix");
    std::snprintf(misc.ks_name, sizeof misc.ks_name, "%s", "system_misc");
    std::snprintf(misc.ks_class, sizeof misc.ks_class, "%s", "misc");
    misc.ks_type = KSTAT_TYPE_NAMED;
    misc.ks_ndata = 1;
    misc.ks_data_size = sizeof(kstat_named_t);
    chain.ctl.kc_chain = &chain.records[0];
    chain.ctl.kc_chain_id = 1;
    chain.ctl.kc_kd = -1;
}

// A firmware table file, empty when it is no regular file or is larger than
// any table (a 32-bit entry point addresses at most 64 KiB; SMBIOS 3 tables
// run to a few hundred).
std::string firmwareFile(const char* path)
{
    std::string text;
    bool cut = false;
    if (!readRegularFile(path, text, 1 << 20, &cut) || cut) text.clear();
    return text;
}

// The Solaris memory device, as far as the SMBIOS reader needs it: a sparse
// image of physical memory holding the firmware's entry point in the BIOS
// area and, for a 32-bit entry point, its table at the address it gives.
// -1 (ENOENT, as on a machine without the device) when Linux shows no tables.
int openFirmwareMemory()
{
    const std::string entry = firmwareFile("/sys/firmware/dmi/tables/smbios_entry_point");
    const std::string table = firmwareFile("/sys/firmware/dmi/tables/DMI");
    if (entry.empty() || table.empty() || entry.size() > 0x100) {
        errno = ENOENT;
        return -1;
    }
    const int fd = memfd_create("xsvc", MFD_CLOEXEC);
    if (fd < 0) return -1;
    uint32_t address = 0;
    if (entry.compare(0, 4, "_SM_") == 0 && entry.size() >= 0x1C)
        std::memcpy(&address, entry.data() + 0x18, 4);  // the "_DMI_" part's table address, little-endian
    const long long end = address ? static_cast<long long>(address) + static_cast<long long>(table.size()) : 0;
    const bool ok = ftruncate(fd, static_cast<off_t>(end > 0x100000 ? end : 0x100000)) == 0 &&
                    pwrite(fd, entry.data(), entry.size(), 0xF0000) == static_cast<ssize_t>(entry.size()) &&
                    (!address || pwrite(fd, table.data(), table.size(), static_cast<off_t>(address)) ==
                                     static_cast<ssize_t>(table.size()));
    if (!ok) {
        const int saved = errno;
        ::close(fd);
        errno = saved;
        return -1;
    }
    return fd;
}

const char* const kRawDiskDir = solaris::path(solaris::Id::RawDiskDir);

// What a machine without a Solaris-only program or file says: the seam never
// runs or reads a Linux namesake in its place.
void refuse(const char* what, const std::string& name)
{
    note((std::string("Solaris ") + what + " '" + name + "' not answered on Linux: taken as missing").c_str());
}

std::string joined(const std::vector<std::string>& argv)
{
    std::string out;
    for (const std::string& word : argv) out += (out.empty() ? "" : " ") + word;
    return out;
}

// The raw-disk directory: Linux's whole disks and optical drives.
class RawDiskDir : public Dir {
public:
    std::vector<std::string> entries;
    size_t next = 0;
};

// An open raw disk: the device itself when it opens, otherwise its sysfs
// folder, whose facts then answer every request.
struct OpenDisk {
    linuxdisks::Disk disk;
    bool device;
};

// A command's whole output as a stream that can be read and closed.
FILE* streamOver(const std::string& text)
{
    const int fd = memfd_create("answer", MFD_CLOEXEC);
    if (fd < 0) return nullptr;
    FILE* f = nullptr;
    if (write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size()) && lseek(fd, 0, SEEK_SET) == 0)
        f = fdopen(fd, "r");
    if (!f) ::close(fd);
    return f;
}

// A SCSI command through the kernel's pass-through; false with errno set.
bool passThrough(int fd, uscsi_cmd& cmd)
{
    unsigned char sense[32];
    sg_io_hdr_t io{};
    io.interface_id = 'S';
    io.dxfer_direction = SG_DXFER_FROM_DEV;
    io.cmd_len = cmd.uscsi_cdblen;
    io.mx_sb_len = sizeof sense;
    io.dxfer_len = static_cast<unsigned>(cmd.uscsi_buflen);
    io.dxferp = cmd.uscsi_bufaddr;
    io.cmdp = reinterpret_cast<unsigned char*>(cmd.uscsi_cdb);
    io.sbp = sense;
    io.timeout = static_cast<unsigned>(cmd.uscsi_timeout > 0 ? cmd.uscsi_timeout : 20) * 1000;
    if (::ioctl(fd, SG_IO, &io) < 0) return false;
    cmd.uscsi_status = static_cast<short>(io.status);
    cmd.uscsi_resid = static_cast<size_t>(io.resid);
    if (io.status != 0 || io.host_status != 0 || (io.driver_status & ~SG_INFO_OK_MASK & 0xF) != 0) {
        if (cmd.uscsi_status == 0) cmd.uscsi_status = 2;
        errno = EIO;
        return false;
    }
    return true;
}

// The host id from local facts, with a note of which.
uint32_t hostId()
{
    std::string source;
    const uint32_t id = localHostId("", source);
    note(("host id " + std::to_string(id) + " from " + source).c_str());
    return id;
}

class LinuxSystem : public PosixSystem {
public:
    // Never glibc's gethostid(): it resolves the host name when "/etc/hostid"
    // is absent, and a scan must not wait on the network.
    long gethostid() override { return static_cast<long>(static_cast<int32_t>(hostId())); }

    int open(const char* path, int flags) override
    {
        if (path && std::strcmp(path, solaris::path(solaris::Id::MemoryDevice)) == 0) return openFirmwareMemory();
        int fd = -1;
        if (path && answeredFile(path, fd)) return fd;
        if (path && std::strncmp(path, kRawDiskDir, std::strlen(kRawDiskDir)) == 0 &&
            path[std::strlen(kRawDiskDir)] == '/')
            return openDisk(path + std::strlen(kRawDiskDir) + 1, flags);
        return PosixSystem::open(path, flags);
    }

    int openRegular(const char* path) override
    {
        int fd = -1;
        if (path && answeredFile(path, fd)) return fd;
        return PosixSystem::openRegular(path);
    }

    int close(int fd) override
    {
        {
            std::lock_guard<std::mutex> hold(m_lock);
            m_disks.erase(fd);
        }
        return PosixSystem::close(fd);
    }

    Dir* opendir(const char* path) override
    {
        if (!path || std::strcmp(path, kRawDiskDir) != 0) return PosixSystem::opendir(path);
        auto* dir = new RawDiskDir;
        for (const linuxdisks::Disk& d : linuxdisks::listDisks()) dir->entries.push_back(d.entry);
        return dir;
    }

    const char* readdir(Dir* dir) override
    {
        auto* listed = dynamic_cast<RawDiskDir*>(dir);
        if (!listed) return PosixSystem::readdir(dir);
        return listed->next < listed->entries.size() ? listed->entries[listed->next++].c_str() : nullptr;
    }

    FILE* popen(const char* command, const char* mode) override
    {
        std::string output;
        int status = 0;
        if (!command || !mode) return PosixSystem::popen(command, mode);
        const std::string program = solaris::solarisOnlyProgramIn(command);
        if (mode[0] != 'r') {
            if (program.empty()) return PosixSystem::popen(command, mode);
            refuse("command", command);
            errno = ENOENT;
            return nullptr;
        }
        if (linuxdisks::answerCommand(command, "/sys", output)) {
            status = output.empty() ? 1 : 0;  // grep finding nothing exits 1
        } else if (!linuxanswers::answerShell(command, output, status)) {
            if (program.empty()) return PosixSystem::popen(command, mode);
            refuse("command", command);
            output.clear();
            status = 127;  // as the shell says of a program it cannot find
        }
        FILE* stream = streamOver(output);
        if (stream) {
            std::lock_guard<std::mutex> hold(m_lock);
            m_answered[stream] = status;
        }
        return stream;
    }

    int runCommand(const std::vector<std::string>& argv, int timeoutSeconds,
                   std::vector<std::string>& lines) override
    {
        int status = 0;
        if (linuxanswers::answerRun(argv, "", lines, status)) return status;
        if (!argv.empty() && solaris::solarisOnly(argv[0])) {
            refuse("command", joined(argv));
            lines.clear();
            errno = ENOENT;  // as the command runner says of a program it cannot find
            return -1;
        }
        return PosixSystem::runCommand(argv, timeoutSeconds, lines);
    }

    // glibc keeps no altzone: the summer offset is found in this year's months.
    void tzset(TimeZone& zone) override
    {
        ::tzset();
        zone.timezone = ::timezone;
        zone.daylight = ::daylight;
        zone.altzone = ::daylight ? ::timezone - 3600 : ::timezone;
        zone.standardName = ::tzname[0] ? ::tzname[0] : "";
        zone.summerName = ::tzname[1] ? ::tzname[1] : "";
        const time_t now = ::time(nullptr);
        struct tm t;
        if (!::localtime_r(&now, &t)) return;
        for (int month = 0; month < 12 && ::daylight; ++month) {
            struct tm probe{};
            probe.tm_year = t.tm_year;
            probe.tm_mon = month;
            probe.tm_mday = 15;
            probe.tm_hour = 12;
            probe.tm_isdst = -1;
            const time_t when = mktime(&probe);
            struct tm local;
            if (when != static_cast<time_t>(-1) && ::localtime_r(&when, &local) && local.tm_isdst > 0) {
                zone.altzone = -local.tm_gmtoff;
                break;
            }
        }
    }

    // glibc's run-level record holds the level in ut_pid; Solaris's in ut_line.
    struct utmpx* getutxent() override
    {
        struct utmpx* record = ::getutxent();
        if (!record) return nullptr;
        m_record = *record;
        if (m_record.ut_type == RUN_LVL)
            std::snprintf(m_record.ut_line, sizeof m_record.ut_line, "run-level %c", static_cast<char>(m_record.ut_pid % 256));
        return &m_record;
    }

    int pclose(FILE* stream) override
    {
        int status = 0;
        {
            std::lock_guard<std::mutex> hold(m_lock);
            auto it = m_answered.find(stream);
            if (it == m_answered.end()) return PosixSystem::pclose(stream);
            status = it->second;
            m_answered.erase(it);
        }
        std::fclose(stream);
        return status << 8;  // as wait(2) encodes an exit status
    }

    long sysinfo(int command, char* buf, long count) override
    {
        struct utsname u;
        if (uname(&u) != 0) return -1;
        switch (command) {
        case SI_SYSNAME: return copyOut(u.sysname, buf, count);
        case SI_HOSTNAME: return copyOut(u.nodename, buf, count);
        case SI_RELEASE: return copyOut(u.release, buf, count);
        case SI_VERSION: return copyOut(u.version, buf, count);
        case SI_MACHINE:
        case SI_ARCHITECTURE: return copyOut(u.machine, buf, count);
        case SI_HW_SERIAL: {
            // The host id as an unsigned decimal, as the Solaris kernel keeps it.
            char id[HW_HOSTID_LEN + 1];
            std::snprintf(id, sizeof id, "%lu", static_cast<unsigned long>(hostId()));
            return copyOut(id, buf, count);
        }
        case SI_HW_PROVIDER: {
            const std::string vendor = firstLine("/sys/class/dmi/id/sys_vendor");
            return copyOut(vendor.empty() ? std::string(u.sysname) : vendor, buf, count);
        }
        case SI_PLATFORM: {
            const std::string product = firstLine("/sys/class/dmi/id/product_name");
            return copyOut(product.empty() ? std::string(u.machine) : product, buf, count);
        }
        default: errno = EINVAL; return -1;
        }
    }

    int swapctl(int cmd, void* arg) override
    {
        switch (cmd) {
        case SC_GETNSWP: return static_cast<int>(readSwaps().size());
        case SC_LIST: {
            auto* table = static_cast<swaptbl_t*>(arg);
            if (!table) {
                errno = EFAULT;
                return -1;
            }
            const std::vector<Swap> swaps = readSwaps();
            if (table->swt_n < static_cast<int>(swaps.size())) {
                errno = ENOMEM;
                return -1;
            }
            const long pageKB = ::sysconf(_SC_PAGESIZE) / 1024;
            for (size_t i = 0; i < swaps.size(); ++i) {
                swapent& e = table->swt_ent[i];
                if (e.ste_path) std::snprintf(e.ste_path, 1024, "%s", swaps[i].path.c_str());
                e.ste_start = 0;
                e.ste_length = static_cast<int32_t>(swaps[i].sizeKB * 2);
                e.ste_pages = static_cast<long>(swaps[i].sizeKB / pageKB);
                e.ste_free = static_cast<long>((swaps[i].sizeKB - swaps[i].usedKB) / pageKB);
                e.ste_flags = 0;
            }
            return static_cast<int>(swaps.size());
        }
        case SC_AINFO: {
            auto* info = static_cast<anoninfo*>(arg);
            struct ::sysinfo si;
            if (!info || ::sysinfo(&si) != 0) {
                errno = EFAULT;
                return -1;
            }
            const unsigned long long page = static_cast<unsigned long long>(::sysconf(_SC_PAGESIZE));
            const unsigned long long total = static_cast<unsigned long long>(si.totalswap) * si.mem_unit / page;
            const unsigned long long free = static_cast<unsigned long long>(si.freeswap) * si.mem_unit / page;
            info->ani_max = static_cast<pgcnt_t>(total);
            info->ani_free = static_cast<pgcnt_t>(free);
            info->ani_resv = static_cast<pgcnt_t>(total - free);
            return 0;
        }
        default: errno = ENOSYS; return -1;  // adding and removing swap is not ours to do
        }
    }

    kstat_ctl_t* kstat_open() override
    {
        auto* chain = new LinuxKstatChain;
        buildChain(*chain);
        return &chain->ctl;
    }

    int kstat_close(kstat_ctl_t* kc) override
    {
        delete reinterpret_cast<LinuxKstatChain*>(kc);
        return 0;
    }

    kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name) override
    {
        return lookupInChain(kc, module, instance, name);
    }

    kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf) override
    {
        auto* chain = reinterpret_cast<LinuxKstatChain*>(kc);
        if (!chain || !ksp) {
            errno = EINVAL;
            return -1;
        }
        // A fresh snapshot of this processor's ticks.
        // Only records of this chain can be read.
        const auto at = reinterpret_cast<uintptr_t>(ksp), first = reinterpret_cast<uintptr_t>(chain->records.data());
        if (at < first || at >= first + chain->records.size() * sizeof(kstat_t)) {
            errno = EINVAL;
            return -1;
        }
        const size_t i = (at - first) / sizeof(kstat_t);
        if (i == chain->records.size() - 1) return readSystemMisc(*chain, ksp, buf);
        for (const CpuTicks& t : readProcStat()) {
            if (t.cpu != ksp->ks_instance) continue;
            chain->data[i] = t.stat;
            ksp->ks_data = &chain->data[i];
            if (buf) std::memcpy(buf, &chain->data[i], sizeof(cpu_stat_t));
            return kc->kc_chain_id;
        }
        errno = ENXIO;  // the processor went away
        return -1;
    }

    kid_t kstat_chain_update(kstat_ctl_t* kc) override
    {
        auto* chain = reinterpret_cast<LinuxKstatChain*>(kc);
        if (!chain) {
            errno = EINVAL;
            return -1;
        }
        if (readProcStat().size() + 1 == chain->records.size()) return 0;
        const kid_t id = chain->ctl.kc_chain_id + 1;
        buildChain(*chain);
        chain->ctl.kc_chain_id = id;
        return id;
    }

    int getloadavg(double* loadavg, int nelem) override { return ::getloadavg(loadavg, nelem); }

    // The processors this process may run on stand in for its processor set.
    int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist) override
    {
        if (pset != PS_MYID && pset != PS_NONE) {
            errno = EINVAL;
            return -1;
        }
        // Sized from the configured processors, so large machines are not cut at 1024.
        const long configured = ::sysconf(_SC_NPROCESSORS_CONF);
        const int possible = configured > CPU_SETSIZE ? static_cast<int>(configured) : CPU_SETSIZE;
        cpu_set_t* mask = CPU_ALLOC(possible);
        if (!mask) return -1;
        const size_t size = CPU_ALLOC_SIZE(possible);
        CPU_ZERO_S(size, mask);
        if (sched_getaffinity(0, size, mask) != 0) {
            const int saved = errno;
            CPU_FREE(mask);
            errno = saved;
            return -1;
        }
        const uint_t capacity = numcpus ? *numcpus : 0;
        uint_t n = 0;
        for (int cpu = 0; cpu < possible; ++cpu) {
            if (!CPU_ISSET_S(cpu, size, mask)) continue;
            if (cpulist && n < capacity) cpulist[n] = cpu;
            ++n;
        }
        CPU_FREE(mask);
        if (type) *type = PS_NONE;
        if (numcpus) *numcpus = n;
        return 0;
    }

    int p_online(processorid_t cpu, int flag) override
    {
        if (cpu < 0) {
            errno = EINVAL;
            return -1;
        }
        const std::string dir = "/sys/devices/system/cpu/cpu" + std::to_string(cpu);
        if (access(dir.c_str(), F_OK) != 0) {
            errno = EINVAL;
            return -1;
        }
        if (flag != P_STATUS) {
            errno = EPERM;  // changing a processor's state is not a scanner's business
            return -1;
        }
        // No "online" file (usual for cpu0) means it cannot go off-line.
        const std::string online = firstLine(dir + "/online");
        return online == "0" ? P_OFFLINE : P_ONLINE;
    }

    // Disk and SCSI requests on an open raw disk; the PROM's and any other
    // Solaris request mean nothing to a Linux driver.
    int ioctl(int fd, int request, void* arg) override
    {
        OpenDisk open;
        {
            std::lock_guard<std::mutex> hold(m_lock);
            auto it = m_disks.find(fd);
            if (it == m_disks.end() || !arg) {
                errno = ENOTTY;
                return -1;
            }
            open = it->second;
        }
        const linuxdisks::Disk& d = open.disk;
        switch (request) {
        case DKIOCINFO: linuxdisks::controllerInfo(d, *static_cast<dk_cinfo*>(arg)); return 0;
        case DKIOCGGEOM: linuxdisks::geometry(d, *static_cast<dk_geom*>(arg)); return 0;
        case DKIOCGVTOC: linuxdisks::label(d, *static_cast<vtoc*>(arg)); return 0;
        case USCSICMD: {
            auto& cmd = *static_cast<uscsi_cmd*>(arg);
            if (open.device) {
                if (passThrough(fd, cmd)) return 0;
                if (errno != ENOTTY && errno != EINVAL && errno != ENOSYS) return -1;
            }
            return linuxdisks::emulateScsi(d, cmd) ? 0 : -1;  // a device without SCSI: its facts answer
        }
        default: errno = ENOTTY; return -1;
        }
    }

private:
    int openDisk(const char* entry, int flags)
    {
        OpenDisk open{linuxdisks::Disk(), true};
        if (!linuxdisks::findDisk(entry, open.disk)) {
            errno = ENOENT;
            return -1;
        }
        // A drive without a medium opens only for control, as on Solaris.
        if (open.disk.optical && open.disk.bytes == 0 && !(flags & (O_NONBLOCK | O_NDELAY))) {
            errno = ENXIO;
            return -1;
        }
        int fd = ::open(("/dev/" + open.disk.kernelName).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (fd < 0) {
            open.device = false;  // refused (not root, or a locked-down VM): sysfs still knows the disk
            fd = ::open(("/sys/block/" + open.disk.kernelName).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (fd < 0) return -1;
        }
        std::lock_guard<std::mutex> hold(m_lock);
        m_disks[fd] = open;
        return fd;
    }

    static kid_t readSystemMisc(LinuxKstatChain& chain, kstat_t* ksp, void* buf)
    {
        const long long boot = linuxanswers::bootTime("");
        if (boot < 0) {
            errno = EIO;
            return -1;
        }
        kstat_named_t& n = chain.bootTime;
        std::snprintf(n.name, sizeof n.name, "%s", "boot_time");
        // A native `long`, as the Solaris kernel keeps it.
        if (sizeof(long) == 8) {
            n.data_type = KSTAT_DATA_UINT64;
            n.value.ui64 = static_cast<uint64_t>(boot);
        } else {
            n.data_type = KSTAT_DATA_UINT32;
            n.value.ui32 = static_cast<uint32_t>(boot);
        }
        ksp->ks_data = &n;
        ksp->ks_ndata = 1;
        if (buf) std::memcpy(buf, &n, sizeof n);
        return chain.ctl.kc_chain_id;
    }

    // A Solaris file of the table: its answer, or ENOENT when Linux has
    // nothing to say or no such file (never a Linux file of that name).
    // False for any other path, and for the files Linux has as they are.
    static bool answeredFile(const char* path, int& fd)
    {
        std::string answer;
        if (linuxanswers::answerFile(path, "", answer)) {
            fd = openOver(answer);
            return true;
        }
        const solaris::Entry* e = solaris::findFile(path);
        if (!e || e->onLinux == solaris::OnLinux::Native || e->id == solaris::Id::RawDiskDir ||
            e->id == solaris::Id::MemoryDevice)
            return false;
        refuse("file", path);
        errno = ENOENT;
        fd = -1;
        return true;
    }

    // A read-only descriptor over an answered file's text.
    static int openOver(const std::string& text)
    {
        const int fd = memfd_create("answer", MFD_CLOEXEC);
        if (fd < 0) return -1;
        if (::write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size()) || ::lseek(fd, 0, SEEK_SET) != 0) {
            const int saved = errno;
            ::close(fd);
            errno = saved;
            return -1;
        }
        return fd;
    }

    struct utmpx m_record{};
    std::mutex m_lock;
    std::map<int, OpenDisk> m_disks;
    std::map<FILE*, int> m_answered;  // streams of answered commands -> their exit status

    struct Swap {
        std::string path;
        unsigned long long sizeKB;
        unsigned long long usedKB;
    };

    static std::vector<Swap> readSwaps()
    {
        std::vector<Swap> swaps;
        std::ifstream in("/proc/swaps");
        std::string line;
        std::getline(in, line);  // the heading
        while (std::getline(in, line)) {
            std::istringstream fields(line);
            Swap s{};
            std::string type;
            if (fields >> s.path >> type >> s.sizeKB >> s.usedKB) swaps.push_back(s);
        }
        return swaps;
    }
};

}  // namespace

System& platform()
{
    static LinuxSystem instance;
    return instance;
}

}  // namespace sys

#endif  // __linux__
