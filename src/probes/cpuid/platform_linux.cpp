// Linux: online processors from sysfs, binding with sched_setaffinity, the
// clock from cpufreq or /proc/cpuinfo.
#if defined(__linux__)

#include <sched.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <new>
#include <sstream>

#include "probes/cpuid/Collect.h"
#include "probes/cpuid/Platform.h"

namespace cpuid {

namespace {

// Room for the affinity masks; the kernel refuses masks shorter than its own.
constexpr int kMaskCpus = 8192;

std::string readFirstLine(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

// "0-3,5,8-9" -> 0 1 2 3 5 8 9. Malformed pieces are skipped.
std::vector<int> parseCpuList(const std::string& text)
{
    std::vector<int> ids;
    std::stringstream in(text);
    std::string piece;
    while (std::getline(in, piece, ',')) {
        char* end = nullptr;
        long first = std::strtol(piece.c_str(), &end, 10);
        if (end == piece.c_str() || first < 0) continue;
        long last = first;
        if (*end == '-') {
            const char* from = end + 1;
            last = std::strtol(from, &end, 10);
            if (end == from || last < first) continue;
        }
        for (long id = first; id <= last && id < kMaskCpus; ++id) ids.push_back(static_cast<int>(id));
    }
    return ids;
}

// "cpu MHz" per "processor" entry of /proc/cpuinfo.
std::map<int, int> clocksFromCpuinfo()
{
    std::map<int, int> clocks;
    std::ifstream in("/proc/cpuinfo");
    std::string line;
    int current = -1;
    while (std::getline(in, line)) {
        size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string key = line.substr(0, line.find_last_not_of(" \t", colon - 1) + 1);
        const char* value = line.c_str() + colon + 1;
        if (key == "processor") {
            current = std::atoi(value);
        } else if (key == "cpu MHz" && current >= 0) {
            // The probe never leaves the C locale, so the decimal point is ".".
            double mhz = std::strtod(value, nullptr);
            // Rounded to the nearest MHz (a clock is never negative; the
            // probe links no maths library).
            clocks[current] = mhz > 0 && mhz < 1e9 ? static_cast<int>(mhz + 0.5) : 0;
        }
    }
    return clocks;
}

int clockFromCpufreq(int cpu)
{
    std::string khz = readFirstLine("/sys/devices/system/cpu/cpu" + std::to_string(cpu) +
                                    "/cpufreq/cpuinfo_max_freq");
    long value = std::atol(khz.c_str());
    return value > 0 ? static_cast<int>((value + 500) / 1000) : 0;
}

struct CpuMask {
    CpuMask() : set(CPU_ALLOC(kMaskCpus)), size(CPU_ALLOC_SIZE(kMaskCpus))
    {
        if (!set) throw std::bad_alloc();
        CPU_ZERO_S(size, set);
    }
    ~CpuMask() { CPU_FREE(set); }
    CpuMask(const CpuMask&) = delete;
    CpuMask& operator=(const CpuMask&) = delete;
    cpu_set_t* set;
    size_t size;
};

}  // namespace

bool gatherMachine(Machine& machine, std::string& error, FILE* debug)
{
    if (!haveInstruction()) {
        error = "this processor has no CPUID instruction";
        return false;
    }
    std::vector<int> online = parseCpuList(readFirstLine("/sys/devices/system/cpu/online"));
    if (online.empty()) {
        long n = sysconf(_SC_NPROCESSORS_ONLN);
        for (long id = 0; id < n && id < kMaskCpus; ++id) online.push_back(static_cast<int>(id));
    }
    machine.onlineCount = static_cast<int>(online.size());

    CpuMask saved;
    bool restore = sched_getaffinity(0, saved.size, saved.set) == 0;
    for (int id : online) {
        CpuMask one;
        CPU_SET_S(static_cast<size_t>(id), one.size, one.set);
        if (sched_setaffinity(0, one.size, one.set) != 0) {
            if (debug) std::fprintf(debug, "cpu %d: cannot bind (%s), left out\n", id, std::strerror(errno));
            continue;
        }
        LogicalProcessor lp;
        lp.osId = id;
        lp.dump = collect(instruction);
        machine.processors.push_back(std::move(lp));
    }
    if (restore) sched_setaffinity(0, saved.size, saved.set);

    if (machine.processors.empty()) {
        // No binding allowed at all: one processor's view is better than none.
        if (debug) std::fprintf(debug, "no processor could be bound; reading the current one only\n");
        LogicalProcessor lp;
        lp.osId = sched_getcpu();
        lp.dump = collect(instruction);
        machine.processors.push_back(std::move(lp));
    }

    std::map<int, int> cpuinfo;
    for (LogicalProcessor& lp : machine.processors) {
        lp.clockMHz = lp.osId >= 0 ? clockFromCpufreq(lp.osId) : 0;
        if (lp.clockMHz == 0) {
            if (cpuinfo.empty()) cpuinfo = clocksFromCpuinfo();
            auto it = cpuinfo.find(lp.osId);
            if (it != cpuinfo.end()) lp.clockMHz = it->second;
        }
    }

    struct utsname uts {};
    if (uname(&uts) == 0) {
        machine.osArch = uts.machine;
        machine.osKernelMode = machine.osArch == "x86_64" ? "64-bit" : "32-bit";
    }
    return true;
}

bool readFirmwareTables(std::string& entryPoint, std::string& table)
{
    auto whole = [](const char* path, std::string& out) {
        std::ifstream in(path, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        out = text.str();
        return in.good() || in.eof() ? !out.empty() : false;
    };
    return whole("/sys/firmware/dmi/tables/smbios_entry_point", entryPoint) &&
           whole("/sys/firmware/dmi/tables/DMI", table);
}

}  // namespace cpuid

#endif
