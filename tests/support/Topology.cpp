#include "support/Topology.h"

#include <sched.h>

#include <fstream>
#include <string>

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#endif

namespace testsupport {

bool kernelAgreesWithCpuid()
{
#if defined(__i386__) || defined(__x86_64__)
    // The initial APIC id of the processor we run on, read twice: by CPUID
    // leaf 1 and from the kernel's list. Pinned, so both speak of one processor.
    cpu_set_t saved, one;
    if (sched_getaffinity(0, sizeof saved, &saved) != 0) return true;
    const int cpu = sched_getcpu();
    if (cpu < 0) return true;
    CPU_ZERO(&one);
    CPU_SET(cpu, &one);
    if (sched_setaffinity(0, sizeof one, &one) != 0) return true;
    unsigned eax, ebx, ecx, edx;
    const bool read = __get_cpuid(1, &eax, &ebx, &ecx, &edx);
    sched_setaffinity(0, sizeof saved, &saved);
    if (!read) return true;
    std::ifstream in("/proc/cpuinfo");
    int current = -1;
    for (std::string line; std::getline(in, line);) {
        const auto colon = line.find(':');
        if (colon == std::string::npos) continue;
        const std::string key = line.substr(0, line.find_last_not_of(" \t", colon - 1) + 1);
        if (key == "processor") current = std::stoi(line.substr(colon + 1));
        if (key == "initial apicid" && current == cpu) return std::stoul(line.substr(colon + 1)) == (ebx >> 24);
    }
#endif
    return true;
}

}  // namespace testsupport
