// Solaris: processors by p_online, binding with processor_bind, the clock
// from the cpu_info kstat (libkstat opened at run time, so the probe needs
// no extra link line).
#if defined(__sun)

#include <dlfcn.h>
#include <fcntl.h>
#include <kstat.h>
#include <sys/processor.h>
#include <sys/procset.h>
#include <sys/systeminfo.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "probes/cpuid/Collect.h"
#include "probes/cpuid/Platform.h"

namespace cpuid {

namespace {

// The cpu_info:<id>:clock_MHz statistics, through libkstat.
class KstatClock {
public:
    KstatClock()
    {
        m_lib = dlopen("libkstat.so.1", RTLD_LAZY);
        if (!m_lib) return;
        m_open = reinterpret_cast<OpenFn>(dlsym(m_lib, "kstat_open"));
        m_lookup = reinterpret_cast<LookupFn>(dlsym(m_lib, "kstat_lookup"));
        m_read = reinterpret_cast<ReadFn>(dlsym(m_lib, "kstat_read"));
        m_dataLookup = reinterpret_cast<DataLookupFn>(dlsym(m_lib, "kstat_data_lookup"));
        m_close = reinterpret_cast<CloseFn>(dlsym(m_lib, "kstat_close"));
        if (m_open && m_lookup && m_read && m_dataLookup && m_close) m_kc = m_open();
    }
    ~KstatClock()
    {
        if (m_kc) m_close(m_kc);
        if (m_lib) dlclose(m_lib);
    }
    KstatClock(const KstatClock&) = delete;
    KstatClock& operator=(const KstatClock&) = delete;

    int mhz(int cpu)
    {
        if (!m_kc) return 0;
        char module[] = "cpu_info";
        kstat_t* ksp = m_lookup(m_kc, module, cpu, nullptr);
        if (!ksp || m_read(m_kc, ksp, nullptr) == -1) return 0;
        char name[] = "clock_MHz";
        auto* kn = static_cast<kstat_named_t*>(m_dataLookup(ksp, name));
        if (!kn) return 0;
        switch (kn->data_type) {
        case KSTAT_DATA_INT32: return static_cast<int>(kn->value.i32);
        case KSTAT_DATA_UINT32: return static_cast<int>(kn->value.ui32);
        case KSTAT_DATA_INT64: return static_cast<int>(kn->value.i64);
        case KSTAT_DATA_UINT64: return static_cast<int>(kn->value.ui64);
        default: return 0;
        }
    }

private:
    using OpenFn = kstat_ctl_t* (*)();
    using LookupFn = kstat_t* (*)(kstat_ctl_t*, char*, int, char*);
    using ReadFn = kid_t (*)(kstat_ctl_t*, kstat_t*, void*);
    using DataLookupFn = void* (*)(kstat_t*, char*);
    using CloseFn = int (*)(kstat_ctl_t*);

    void* m_lib = nullptr;
    kstat_ctl_t* m_kc = nullptr;
    OpenFn m_open = nullptr;
    LookupFn m_lookup = nullptr;
    ReadFn m_read = nullptr;
    DataLookupFn m_dataLookup = nullptr;
    CloseFn m_close = nullptr;
};

}  // namespace

bool gatherMachine(Machine& machine, std::string& error, FILE* debug)
{
    if (!haveInstruction()) {
        error = "this processor has no CPUID instruction";
        return false;
    }
    long maxId = sysconf(_SC_CPUID_MAX);
    if (maxId < 0) maxId = sysconf(_SC_NPROCESSORS_CONF) - 1;
    for (long id = 0; id <= maxId; ++id) {
        int status = p_online(static_cast<processorid_t>(id), P_STATUS);
        if (status == -1) continue;  // no such processor, or not ours to see
        if (status != P_ONLINE && status != P_NOINTR) {
            if (debug) std::fprintf(debug, "cpu %ld: not online (status %d)\n", id, status);
            continue;
        }
        ++machine.onlineCount;
        if (processor_bind(P_LWPID, P_MYID, static_cast<processorid_t>(id), nullptr) != 0) {
            // Outside our processor set: not ours to run on.
            if (debug) std::fprintf(debug, "cpu %ld: cannot bind (%s), left out\n", id, std::strerror(errno));
            continue;
        }
        LogicalProcessor lp;
        lp.osId = static_cast<int>(id);
        lp.dump = collect(instruction);
        machine.processors.push_back(std::move(lp));
    }
    processor_bind(P_LWPID, P_MYID, PBIND_NONE, nullptr);

    if (machine.processors.empty()) {
        if (debug) std::fprintf(debug, "no processor could be bound; reading the current one only\n");
        LogicalProcessor lp;
        lp.osId = -1;
        lp.dump = collect(instruction);
        machine.processors.push_back(std::move(lp));
    }

    KstatClock clock;
    for (LogicalProcessor& lp : machine.processors)
        if (lp.osId >= 0) lp.clockMHz = clock.mhz(lp.osId);

    char arch[64] = "";
    if (sysinfo(SI_ARCHITECTURE_K, arch, sizeof arch) > 0) {
        machine.osArch = arch;
        machine.osKernelMode = machine.osArch == "amd64" ? "64-bit" : "32-bit";
    }
    return true;
}

namespace {
// `length` bytes of physical memory at `address`, through the memory device.
bool readPhysical(int fd, unsigned long long address, size_t length, std::string& out)
{
    out.assign(length, '\0');
    size_t got = 0;
    while (got < length) {
        const ssize_t n = pread(fd, &out[got], length - got, static_cast<off_t>(address + got));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        got += static_cast<size_t>(n);
    }
    return true;
}
}  // namespace

// The entry point in the BIOS area (a 3.x one preferred), then its table.
bool readFirmwareTables(std::string& entryPoint, std::string& table)
{
    const int fd = open("/dev/xsvc", O_RDONLY);
    if (fd < 0) return false;
    std::string area;
    bool found = false;
    if (readPhysical(fd, 0xF0000, 0x10000, area)) {
        for (size_t at = 0; at + 0x20 <= area.size() && !found; at += 16) {
            unsigned long long address = 0;
            size_t length = 0;
            if (area.compare(at, 5, "_SM3_") == 0) {
                entryPoint = area.substr(at, 0x18);
                length = static_cast<unsigned char>(area[at + 0x0C]) | (static_cast<unsigned char>(area[at + 0x0D]) << 8) |
                         (static_cast<size_t>(static_cast<unsigned char>(area[at + 0x0E])) << 16);
                for (int i = 7; i >= 0; --i) address = (address << 8) | static_cast<unsigned char>(area[at + 0x10 + static_cast<size_t>(i)]);
            } else if (area.compare(at, 4, "_SM_") == 0) {
                entryPoint = area.substr(at, 0x1F);
                length = static_cast<unsigned char>(area[at + 0x16]) | (static_cast<unsigned char>(area[at + 0x17]) << 8);
                for (int i = 3; i >= 0; --i) address = (address << 8) | static_cast<unsigned char>(area[at + 0x18 + static_cast<size_t>(i)]);
            } else {
                continue;
            }
            found = length > 0 && readPhysical(fd, address, length, table);
        }
    }
    close(fd);
    return found;
}

}  // namespace cpuid

#endif
