#include "cpuidprobe/DumpReader.h"

#include "support/TempDir.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <map>
#include <sstream>

namespace cpuidtest {

std::vector<cpuid::CpuDump> readDumpText(const std::string& text)
{
    std::vector<cpuid::CpuDump> cpus;
    bool inCpu = false;
    std::map<uint32_t, uint32_t> seen;  // leaf -> lines so far (AIDA64 subleaf order)
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        size_t lead = line.find_first_not_of(" \t");
        std::string body = lead == std::string::npos ? "" : line.substr(lead);

        if (body.compare(0, 7, "------[") == 0) {
            // MSR sections also name a logical CPU; only register sections count.
            inCpu = body.find("Logical CPU #") != std::string::npos &&
                    body.find("MSR") == std::string::npos;
            if (inCpu) {
                cpus.emplace_back();
                seen.clear();
            }
            continue;
        }
        unsigned cpuNo = 0;
        if (std::sscanf(body.c_str(), "CPU %u:", &cpuNo) == 1 && body.back() == ':') {
            cpus.emplace_back();
            inCpu = true;
            continue;
        }
        if (!inCpu) continue;

        cpuid::Regs r;
        uint32_t leaf = 0;
        uint32_t sub = 0;
        if (std::sscanf(body.c_str(), "CPUID %8" SCNx32 ": %8" SCNx32 "-%8" SCNx32 "-%8" SCNx32 "-%8" SCNx32,
                        &leaf, &r.eax, &r.ebx, &r.ecx, &r.edx) == 5) {
            size_t sl = body.find("[SL ");
            if (sl == std::string::npos || std::sscanf(body.c_str() + sl, "[SL %" SCNx32 "]", &sub) != 1)
                sub = seen[leaf];
            ++seen[leaf];
            cpus.back().set(leaf, sub, r);
        } else if (std::sscanf(body.c_str(),
                               "0x%" SCNx32 " 0x%" SCNx32 ": eax=0x%" SCNx32 " ebx=0x%" SCNx32
                               " ecx=0x%" SCNx32 " edx=0x%" SCNx32,
                               &leaf, &sub, &r.eax, &r.ebx, &r.ecx, &r.edx) == 6) {
            cpus.back().set(leaf, sub, r);
        }
    }
    return cpus;
}

std::vector<cpuid::CpuDump> readDumpFile(const std::string& path)
{
    return readDumpText(testsupport::readFile(path));
}

}  // namespace cpuidtest
