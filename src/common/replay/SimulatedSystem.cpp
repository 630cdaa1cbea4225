#include "common/replay/SimulatedSystem.h"

#include "common/replay/MachineFile.h"
#include "common/sys/KstatChain.h"
#include "common/sys/Portable.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sstream>

extern char** environ;

namespace replay {

namespace {

// A call that fails as the real one does: its result, errno set.
template <typename T>
T failWith(int error, T result)
{
    errno = error;
    return result;
}

struct FakeChain {
    kstat_ctl_t ctl;  // first: callers hold a pointer to it
    std::vector<kstat_t> records;
};

long copyOut(const std::string& value, char* buf, long count)
{
    if (buf && count > 0) {
        const size_t n = std::min(value.size(), static_cast<size_t>(count - 1));
        std::memcpy(buf, value.data(), n);
        buf[n] = '\0';
    }
    return static_cast<long>(value.size()) + 1;
}

}  // namespace

template <typename T>
T SimulatedSystem::missing(const std::string& key, int error, T result)
{
    auto known = failures.find(key);
    if (known != failures.end()) return failWith(known->second, result);
    if (m_unanswered.insert(key).second) unanswered.push_back(key);
    return failWith(error, result);
}

time_t SimulatedSystem::time()
{
    if (!laterTimes.empty()) {
        now = laterTimes.front();
        laterTimes.pop_front();
    }
    return now;
}

void SimulatedSystem::addCpuStat(int instance, uint_t idle, uint_t user, uint_t kernel, uint_t wait)
{
    Kstat k;
    k.module = "cpu_stat";
    k.instance = instance;
    k.name = "cpu_stat" + std::to_string(instance);
    k.data.cpu_sysinfo.cpu[CPU_IDLE] = idle;
    k.data.cpu_sysinfo.cpu[CPU_USER] = user;
    k.data.cpu_sysinfo.cpu[CPU_KERNEL] = kernel;
    k.data.cpu_sysinfo.cpu[CPU_WAIT] = wait;
    kstats.push_back(k);
}

void SimulatedSystem::addBootTime(long long seconds)
{
    Kstat k;
    k.module = "unix";
    k.instance = 0;
    k.name = "system_misc";
    k.type = KSTAT_TYPE_NAMED;
    kstat_named_t n{};
    std::snprintf(n.name, sizeof n.name, "%s", "boot_time");
    n.data_type = KSTAT_DATA_UINT32;  // a 32-bit kernel's `long`
    n.value.ui32 = static_cast<uint32_t>(seconds);
    k.named.push_back(n);
    k.dataSize = sizeof n;
    kstats.push_back(k);
}

void SimulatedSystem::tzset(sys::TimeZone& zone)
{
    sys::platform().tzset(zone);
    if (!zone.daylight) return;
    // The summer offset of the machine's year, not of this host's clock's:
    // the local time of a summer noon less its UTC time.
    struct tm today;
    if (!::localtime_r(&now, &today)) return;
    for (int month = 0; month < 12; ++month) {
        struct tm probe{};
        probe.tm_year = today.tm_year;
        probe.tm_mon = month;
        probe.tm_mday = 15;
        probe.tm_hour = 12;
        probe.tm_isdst = -1;
        const time_t when = std::mktime(&probe);
        struct tm local, utc;
        if (when == static_cast<time_t>(-1) || !::localtime_r(&when, &local) || local.tm_isdst <= 0 ||
            !::gmtime_r(&when, &utc))
            continue;
        long days = local.tm_yday - utc.tm_yday;
        if (local.tm_year != utc.tm_year) days = local.tm_year > utc.tm_year ? 1 : -1;
        const long east = days * 86400 + (local.tm_hour - utc.tm_hour) * 3600L + (local.tm_min - utc.tm_min) * 60L +
                          (local.tm_sec - utc.tm_sec);
        zone.altzone = -east;
        return;
    }
}

bool scanReadsVariable(const std::string& name)
{
    return name == "TZ" || name == "LANG" || name == "LANGUAGE" || name.compare(0, 3, "LC_") == 0 ||
           name == "CHECK_ULTRIUM_TAPE_RUNNING";
}

void useMachineEnvironment(const SimulatedSystem& os)
{
    std::vector<std::string> hosts;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (scanReadsVariable(name)) hosts.push_back(name);
    }
    for (const std::string& name : hosts) unsetenv(name.c_str());
    for (const auto& v : os.environment) setenv(v.first.c_str(), v.second.c_str(), 1);
    // Without TZ a Solaris process keeps GMT; this host's /etc/localtime
    // must not stand in.
    if (!os.environment.count("TZ")) setenv("TZ", "UTC0", 1);
    ::tzset();
    std::setlocale(LC_CTYPE, "C");
    if (std::setlocale(LC_CTYPE, "")) return;
    std::string locale;
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        auto it = os.environment.find(name);
        if (it != os.environment.end() && !it->second.empty()) {
            locale = it->second;
            break;
        }
    }
    std::string lower;
    for (char c : locale) lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (lower.find("utf-8") != std::string::npos || lower.find("utf8") != std::string::npos)
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

struct utmpx* SimulatedSystem::getutxent()
{
    if (m_nextUtmpx >= utmpxRecords.size()) return nullptr;
    m_utmpx = utmpxRecords[m_nextUtmpx++];
    return &m_utmpx;
}

long SimulatedSystem::sysinfo(int command, char* buf, long count)
{
    auto it = sysinfoValues.find(command);
    if (it == sysinfoValues.end()) return missing("sysinfo " + nameOf(sysinfoNames(), command), EINVAL, -1L);
    return copyOut(it->second, buf, count);
}

long SimulatedSystem::sysconf(int name)
{
    auto later = laterSysconf.find(name);
    if (later != laterSysconf.end() && !later->second.empty()) {
        sysconfValues[name] = later->second.front();
        later->second.pop_front();
    }
    auto it = sysconfValues.find(name);
    if (it == sysconfValues.end()) return missing("sysconf " + nameOf(sysconfNames(), name), EINVAL, -1L);
    return it->second;
}

int SimulatedSystem::swapctl(int cmd, void* arg)
{
    switch (cmd) {
    case SC_GETNSWP:
        if (swapCount < 0) errno = swapCountErrno;
        return swapCount;
    case SC_LIST: {
        auto* table = static_cast<swaptbl_t*>(arg);
        if (swapListResult != -2) {
            if (swapListResult < 0) errno = swapListErrno;
            return swapListResult;
        }
        if (table->swt_n < static_cast<int>(swapDevices.size())) return failWith(ENOMEM, -1);
        for (size_t i = 0; i < swapDevices.size(); ++i) {
            swapent& e = table->swt_ent[i];
            std::snprintf(e.ste_path, 1024, "%s", swapDevices[i].path.c_str());
            e.ste_pages = swapDevices[i].pages;
            e.ste_free = swapDevices[i].freePages;
        }
        return static_cast<int>(swapDevices.size());
    }
    case SC_AINFO:
        if (ainfoFails) return failWith(ainfoErrno, -1);
        *static_cast<anoninfo*>(arg) = ainfo;
        return 0;
    default: errno = EINVAL; return -1;
    }
}

kstat_ctl_t* SimulatedSystem::kstat_open()
{
    if (kstatOpenFails) return failWith(EACCES, nullptr);
    auto* chain = new FakeChain{};
    const int snapshot = std::min(++m_kstatOpens, kstatSnapshots);
    std::vector<size_t> shown;
    for (size_t i = 0; i < kstats.size(); ++i)
        if (kstats[i].snapshot == 0 || kstats[i].snapshot == snapshot) shown.push_back(i);
    chain->records.assign(shown.size(), kstat_t{});
    for (size_t n = 0; n < shown.size(); ++n) {
        const size_t i = shown[n];
        kstat_t& k = chain->records[n];
        k.ks_next = n + 1 < shown.size() ? &chain->records[n + 1] : nullptr;
        k.ks_kid = static_cast<kid_t>(i);  // the index of its Kstat
        std::snprintf(k.ks_module, sizeof k.ks_module, "%s", kstats[i].module.c_str());
        k.ks_instance = kstats[i].instance;
        std::snprintf(k.ks_name, sizeof k.ks_name, "%s", kstats[i].name.c_str());
        k.ks_type = static_cast<uchar_t>(kstats[i].type);
        k.ks_data_size = kstats[i].dataSize;
    }
    chain->ctl.kc_chain = chain->records.empty() ? nullptr : chain->records.data();
    chain->ctl.kc_chain_id = 1;
    ++m_openKstat;
    return &chain->ctl;
}

int SimulatedSystem::kstat_close(kstat_ctl_t* kc)
{
    if (!kc) return -1;
    delete reinterpret_cast<FakeChain*>(kc);
    --m_openKstat;
    return 0;
}

kstat_t* SimulatedSystem::kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name)
{
    return sys::lookupInChain(kc, module, instance, name);
}

kid_t SimulatedSystem::kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf)
{
    if (!kc || !ksp) return failWith(EINVAL, -1);
    const Kstat& k = kstats.at(static_cast<size_t>(ksp->ks_kid));
    if (k.readFails) return failWith(EIO, -1);
    if (!k.named.empty()) {
        ksp->ks_data = const_cast<kstat_named_t*>(k.named.data());
        ksp->ks_ndata = static_cast<uint_t>(k.named.size());
        if (buf) std::memcpy(buf, k.named.data(), k.named.size() * sizeof(kstat_named_t));
        return kc->kc_chain_id;
    }
    ksp->ks_data = const_cast<cpu_stat_t*>(&k.data);
    // Like libkstat: the record's own size is copied, whatever it is.
    if (buf) std::memcpy(buf, &k.data, std::min(k.dataSize, sizeof k.data));
    return kc->kc_chain_id;
}

int SimulatedSystem::getloadavg(double* values, int nelem)
{
    if (!laterLoadavg.empty()) {
        std::copy(laterLoadavg.front().begin(), laterLoadavg.front().end(), loadavg);
        laterLoadavg.pop_front();
    }
    if (loadavgFails) return -1;
    for (int i = 0; i < nelem && i < 3; ++i) values[i] = loadavg[i];
    return nelem < 3 ? nelem : 3;
}

int SimulatedSystem::pset_info(psetid_t, int* type, uint_t* numcpus, processorid_t* cpulist)
{
    if (psetFailsOnCall == (cpulist ? 2 : 1)) return failWith(EINVAL, -1);
    const uint_t room = numcpus ? *numcpus : 0;
    for (uint_t i = 0; cpulist && i < room && i < psetCpus.size(); ++i) cpulist[i] = psetCpus[i];
    if (numcpus) *numcpus = static_cast<uint_t>(psetCpus.size());
    if (type) *type = PS_NONE;
    return 0;
}

int SimulatedSystem::p_online(processorid_t cpu, int)
{
    auto it = processorStates.find(cpu);
    if (it == processorStates.end()) return missing("p_online " + std::to_string(cpu), EINVAL, -1);
    if (it->second == -1) return failWith(EINVAL, -1);
    return it->second;
}

namespace {
struct FakeDir : sys::Dir {
    std::vector<std::string> entries;
    size_t next = 0;
};
}  // namespace

sys::Dir* SimulatedSystem::opendir(const char* path)
{
    auto it = directories.find(path ? path : "");
    if (it == directories.end()) return missing<sys::Dir*>(std::string("opendir ") + (path ? path : ""), ENOENT, nullptr);
    auto* dir = new FakeDir;
    dir->entries = it->second;
    ++m_openDirs;
    return dir;
}

const char* SimulatedSystem::readdir(sys::Dir* dir)
{
    auto* d = static_cast<FakeDir*>(dir);
    return d && d->next < d->entries.size() ? d->entries[d->next++].c_str() : nullptr;
}

int SimulatedSystem::closedir(sys::Dir* dir)
{
    if (!dir) return failWith(EBADF, -1);
    delete dir;
    --m_openDirs;
    return 0;
}

int SimulatedSystem::open(const char* path, int)
{
    if (path && files.count(path)) {
        const int fd = m_nextFd++;
        m_open[fd] = OpenDevice{path, 0, true};
        return fd;
    }
    auto it = devices.find(path ? path : "");
    if (it == devices.end()) return missing(std::string("open ") + (path ? path : ""), ENOENT, -1);
    if (it->second.openErrno) return failWith(it->second.openErrno, -1);
    const int fd = m_nextFd++;
    m_open[fd] = OpenDevice{it->first, 0};
    return fd;
}

int SimulatedSystem::close(int fd)
{
    if (m_open.erase(fd) == 0) return failWith(EBADF, -1);
    return 0;
}

int SimulatedSystem::ioctl(int fd, int request, void* arg)
{
    auto it = m_open.find(fd);
    if (it == m_open.end()) return failWith(EBADF, -1);
    const Device& device = devices[it->second.path];
    if (!device.ioctl) return failWith(ENOTTY, -1);
    return device.ioctl(request, arg);
}

void SimulatedSystem::copyMemory(const Device& device, long long from, char* out, size_t length) const
{
    std::memset(out, 0, length);
    for (const auto& run : device.memory) {
        const long long start = std::max(from, static_cast<long long>(run.first));
        const long long end = std::min(from + static_cast<long long>(length),
                                       static_cast<long long>(run.first + run.second.size()));
        if (start < end)
            std::memcpy(out + (start - from), run.second.data() + (start - static_cast<long long>(run.first)),
                        static_cast<size_t>(end - start));
    }
}

ssize_t SimulatedSystem::read(int fd, void* buf, size_t count)
{
    auto it = m_open.find(fd);
    if (it == m_open.end()) return failWith(EBADF, -1);
    if (it->second.file) {
        const std::string& text = files[it->second.path];
        const size_t at = std::min(static_cast<size_t>(it->second.offset), text.size());
        const size_t n = std::min(count, text.size() - at);
        std::memcpy(buf, text.data() + at, n);
        it->second.offset += static_cast<long long>(n);
        return static_cast<ssize_t>(n);
    }
    copyMemory(devices[it->second.path], it->second.offset, static_cast<char*>(buf), count);
    it->second.offset += static_cast<long long>(count);
    return static_cast<ssize_t>(count);
}

long long SimulatedSystem::lseek(int fd, long long offset, int whence)
{
    auto it = m_open.find(fd);
    if (it == m_open.end() || whence != SEEK_SET) return failWith(EINVAL, -1LL);
    return it->second.offset = offset;
}

// A private copy: a caller writing into the mapping would be caught by ASan.
void* SimulatedSystem::mmap(size_t length, int fd, long long offset)
{
    auto it = m_open.find(fd);
    if (it == m_open.end()) return failWith(EBADF, MAP_FAILED);
    const Device& device = devices[it->second.path];
    if (device.mapFails) return failWith(ENODEV, MAP_FAILED);
    auto* copy = new char[length ? length : 1];
    copyMemory(device, offset, copy, length);
    return copy;
}

int SimulatedSystem::munmap(void* addr, size_t)
{
    delete[] static_cast<char*>(addr);
    return 0;
}
int SimulatedSystem::statvfs64(const char* path, struct statvfs64* buf)
{
    auto it = fileSystems.find(path ? path : "");
    if (it == fileSystems.end() || !buf) return missing(std::string("statvfs ") + (path ? path : ""), ENOENT, -1);
    *buf = it->second;
    return 0;
}

SimulatedSystem::~SimulatedSystem()
{
    for (auto& stream : m_streams) std::fclose(stream.first);
}

bool SimulatedSystem::Pools::fails(const char* function) const
{
    return std::find(failing.begin(), failing.end(), function) != failing.end();
}

// A handle is the address of the library's entry.
void* SimulatedSystem::dlopen(const char* path, int)
{
    auto it = libraries.find(path ? path : "");
    if (it == libraries.end()) return missing<void*>(std::string("dlopen ") + (path ? path : ""), ENOENT, nullptr);
    ++m_openLibraries;
    return &it->second;
}

void* SimulatedSystem::dlsym(void* handle, const char* symbol)
{
    const auto* library = static_cast<const Library*>(handle);
    if (!library || !symbol ||
        std::find(library->missing.begin(), library->missing.end(), symbol) != library->missing.end())
        return nullptr;
    return fakeLibraryFunction(symbol, this);
}

int SimulatedSystem::dlclose(void* handle)
{
    if (!handle) return -1;
    --m_openLibraries;
    return 0;
}

FILE* SimulatedSystem::popen(const char* command, const char* mode)
{
    ++runs[std::string("shell ") + (command ? command : "")];
    auto it = shells.find(command ? command : "");
    if (it == shells.end()) return missing<FILE*>(std::string("shell ") + (command ? command : ""), ENOENT, nullptr);
    if (it->second.fails || !mode || mode[0] != 'r') return failWith(ENOENT, nullptr);
    // A real stream over the output in memory (fgets and fclose work on
    // it): a temporary file would cost the disk a write at every command.
    const std::string& output = it->second.output;
    std::unique_ptr<char[]> text(new char[output.size() + 1]);
    std::memcpy(text.get(), output.data(), output.size());
    FILE* f = sys::memoryStream(text.get(), output.size());
    if (!f) return nullptr;
    m_streams[f] = Stream{it->second.status, std::move(text)};
    return f;
}

int SimulatedSystem::pclose(FILE* stream)
{
    auto it = m_streams.find(stream);
    if (it == m_streams.end()) return failWith(ECHILD, -1);
    const int status = it->second.status;
    std::fclose(stream);
    m_streams.erase(it);
    return status << 8;  // as wait(2) encodes an exit status
}

int SimulatedSystem::runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines)
{
    lines.clear();
    lastTimeout = timeoutSeconds;
    std::string joined;
    for (const std::string& a : argv) joined += (joined.empty() ? "" : " ") + a;
    ++runs[joined];
    auto it = commands.find(joined);
    if (it == commands.end()) return missing("run " + joined, ENOENT, -1);
    if (it->second.fails) return failWith(ENOENT, -1);
    std::istringstream in(it->second.output);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    return it->second.status;
}

bool SimulatedSystem::replay(const std::string& command, std::string& output, int& status)
{
    output.clear();
    status = -1;
    ++probeRuns[command];
    auto it = probes.find(command);
    if (it == probes.end()) return missing("probe " + command, ENOENT, true);
    if (!it->second.fails) {
        output = it->second.output;
        status = it->second.status;
    }
    return true;
}

}  // namespace replay
