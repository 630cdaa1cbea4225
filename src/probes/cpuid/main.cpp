// The "cpuid" probe: the response header, then the processor tree as a
// node dump on standard output. "-d" writes the raw registers and the
// placement of every logical processor to standard error.
#include <cstdio>
#include <string>

#include "common/vartree/vtexec.h"
#include "probes/cpuid/Collect.h"
#include "probes/cpuid/Decoder.h"
#include "probes/cpuid/Platform.h"
#include "probes/cpuid/Shape.h"

namespace {

// 2 (bad usage) and 3 (internal error) are answered by vtProbeMain.
enum { RESULT_OK = 0, RESULT_NO_CPUID = 1 };

void writeDebug(FILE* debug, const cpuid::Machine& machine, const cpuid::Decoded& decoded)
{
    std::fprintf(debug, "online processors: %d, read: %zu, os: %s %s\n", machine.onlineCount,
                 machine.processors.size(), machine.osArch.c_str(), machine.osKernelMode.c_str());
    for (size_t i = 0; i < machine.processors.size(); ++i) {
        const cpuid::LogicalProcessor& lp = machine.processors[i];
        const cpuid::Placement& p = decoded.placements[i];
        std::fprintf(debug, "cpu %d: apic 0x%x package %u core %u thread %u clock %d MHz\n", lp.osId,
                     static_cast<unsigned>(p.apicId), static_cast<unsigned>(p.package),
                     static_cast<unsigned>(p.core), static_cast<unsigned>(p.thread), lp.clockMHz);
    }
    for (const cpuid::Package& pkg : decoded.packages)
        std::fprintf(debug, "package %u: %d cores, %d logical, up to %d per core, \"%s\"\n",
                     static_cast<unsigned>(pkg.id), pkg.cores, pkg.logicalCount, pkg.threadsPerCore,
                     pkg.brand.c_str());
    for (const cpuid::LogicalProcessor& lp : machine.processors)
        std::fputs(cpuid::rawText(lp.dump, lp.osId).c_str(), debug);
    std::fflush(debug);
}

int run(FILE* debug)
{
    cpuid::Machine machine;
    std::string error;
    if (!cpuid::gatherMachine(machine, error, debug)) {
        if (debug) std::fprintf(debug, "cpuid: %s\n", error.c_str());
        vtDumpResponse(RESULT_NO_CPUID, error.c_str());
        return 1;
    }
    // Firmware facts are a bonus: a machine without tables is no error.
    std::string entryPoint, table;
    if (cpuid::readFirmwareTables(entryPoint, table)) machine.firmware = cpuid::parseFirmware(entryPoint, table);
    std::vector<cpuid::CpuDump> dumps;
    dumps.reserve(machine.processors.size());
    for (const cpuid::LogicalProcessor& lp : machine.processors) dumps.push_back(lp.dump);
    cpuid::Decoded decoded = cpuid::decode(dumps);
    if (debug) writeDebug(debug, machine, decoded);
    if (decoded.packages.empty()) {
        vtDumpResponse(RESULT_NO_CPUID, "no processor answered CPUID");
        return 1;
    }
    VtNode* root = cpuid::buildTree(machine, decoded);
    vtDumpResponse(RESULT_OK, "OK");
    cpuid::printTree(root);
    delete root;
    return 0;
}

}  // namespace

int main(int argc, char** argv) { return vtProbeMain(argc, argv, "cpuid", run); }
