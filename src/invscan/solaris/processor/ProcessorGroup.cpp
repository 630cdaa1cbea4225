#include "invscan/solaris/processor/ProcessorGroup.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/sys/System.h"
#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/md5.h"
#include "invscan/com/probeVT.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/ProcessorGroup";
const char* const kFunction = "getTable()";
#define PROC_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

// Not filled by anything: hosts get an empty serial number.
char g_serialNumber[64];

}  // namespace

// The historical format ended in an incomplete "%l" that printed nothing
// there; handing it to printf here would be undefined, so the text simply
// stops after the stepping and the ids stay stable.
std::string processorIdText(const ProcessorPackage& p)
{
    char text[512];
    std::snprintf(text, sizeof text, "%s%s%i%i%i%i%i%i%i%i", p.manufacturer.c_str(), "i386", 0, p.clockMHz,
                  p.clockMHz, 0, 0, p.family, p.model, p.stepping);
    return text;
}

VtNode* cpuidProcessorTable(VtExecInfo* info, const char* source, int& packages)
{
    packages = 0;
    if (!vtResultUsable(info, source, kFunction)) return nullptr;
    VtNode* processors = vtGetNode(info, "ProcessorTable", 0);
    if (!processors) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, source, kFunction, "ERROR: %s", "missing ProcessorTable");
        return nullptr;
    }
    packages = processors->getValue(nullptr, "TotalPackageCount", -1);
    if (packages < 1) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, source, kFunction, "[E] Invalid physical package count %d",
                               packages);
        return nullptr;
    }
    return processors;
}

bool gatherProcessorFacts(VtExecInfo* info, ProcessorFacts& facts)
{
    facts = ProcessorFacts();
    int packages = 0;
    VtNode* processors = cpuidProcessorTable(info, kSource, packages);
    if (!processors) return false;
    long rows = 0;
    for (int p = 0; p < packages; ++p) {
        VtNode* proc = processors->getChild("Processor", p);
        PROC_TRACE(traceMAX, "CPUID proc %d = %p", p, static_cast<void*>(proc));
        if (!proc) {
            // All or nothing: a table missing a package would understate the machine.
            PROC_TRACE(traceMIN, "[E] Failed to read proc #%d from CPUID data", p);
            return false;
        }
        ProcessorPackage package;
        package.cores = proc->getValue(nullptr, "TotalCoreCount", -1);
        if (package.cores < 1) package.cores = proc->getValue("CPUID", "CorePerPackageCount", 1);
        rows += package.cores > 0 ? package.cores : 0;
        if (rows > kMaxProcessorCores) {
            // A broken probe, not a machine: no flood of rows.
            PROC_TRACE(traceMIN, "[E] Invalid core count %d for proc #%d", package.cores, p);
            return false;
        }
        package.threadsPerCore = proc->getValue(nullptr, "ProcsPerCore", -1);
        if (package.threadsPerCore < 1) package.threadsPerCore = proc->getValue("CPUID", "HtPerCoreCount", 1);
        package.manufacturer = proc->getValue(nullptr, "Manufacturer", "");
        package.family = proc->getValue("CPUID", "Family", 0);
        package.model = proc->getValue("CPUID", "Model", 0);
        package.stepping = proc->getValue("CPUID", "Stepping", 0);
        package.clockMHz = proc->getValue(nullptr, "CpuClockMHz", 0);
        facts.packages.push_back(package);
    }
    return true;
}

void shapeProcessorRows(const ProcessorFacts& facts, KorTable& table)
{
    unsigned int index = 0;
    for (const ProcessorPackage& p : facts.packages) {
        char* id = md5_checksum(processorIdText(p).c_str());
        const auto clock = static_cast<unsigned int>(p.clockMHz);
        for (int c = 0; c < p.cores; ++c) {
            RowBuilder row(PROCESSOR_GROUP);
            row.number(PROC_INDEX, ++index);
            row.text(PROC_ID, id);
            row.text(PROC_FAMILY, "i386");
            row.number(PROC_MAX_CLOCK, clock);
            row.number(PROC_CURRENT_CLOCK, clock);
            row.number(PROC_EXTERNAL_CLOCK, 0u);
            row.text(PROC_MANUFACTURER, p.manufacturer);
            row.text(PROC_SERIAL_NUMBER, g_serialNumber);
            row.number(PROC_CHIP_FAMILY, p.family);
            row.number(PROC_CHIP_MODEL, p.model);
            row.number(PROC_CHIP_STEPPING, p.stepping);
            // "H" for hyper-threading in the enabled flag: what hosts read there.
            if (p.threadsPerCore > 1) row.text(PROC_CPU_ENABLED, "H");
            row.addTo(table);
        }
        std::free(id);
    }
}

ProcessorGroup::ProcessorGroup() : KorGroup(PROCESSOR_GROUP, 1) {}

KorTable* ProcessorGroup::getTable()
{
    return api::guardedTable("ProcessorGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "ProcessorGroup Group");
        ProcessorFacts facts;
        if (!gatherProcessorFacts(getCpuidVT(), facts)) return nullptr;
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeProcessorRows(facts, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "Processor Group");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(PROCESSOR_GROUP, ProcessorGroup);

// ---- PROM device tree ---------------------------------------------------------------

openpromio* opp_zalloc(unsigned int size)
{
    void* block = std::calloc(1, static_cast<size_t>(size) + 8);
    auto* p = static_cast<openpromio*>(block);
    if (p) p->oprom_size = size;
    return p;
}

void opp_free(openpromio* p)
{
    if (p) std::free(p);
}

namespace {
// One OPROMNEXT or OPROMCHILD step: the node found, or -1 with errno set. The
// buffer is freed on failure too, so a failing walk loses no memory.
int promStep(int request, int node, int fd)
{
    openpromio* p = opp_zalloc(sizeof(int));
    if (!p) return -1;
    p->oprom_node = node;
    int result = -1;
    if (sys::current().ioctl(fd, request, p) >= 0) result = p->oprom_node;
    const int saved = errno;
    opp_free(p);
    errno = saved;
    return result;
}
}  // namespace

int peer(int node, int fd)
{
    const int log = getCcLogHw();
    CcLogWrapper::traceMidEntry(log, __LINE__, kSource, "peer()", "hardware %s %08X %s %d", "node", node, "fd", fd);
    const int next = promStep(OPROMNEXT, node, fd);
    if (next == -1)
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, "peer()", "hardware %s %s %s", "peer", "failed",
                                   std::strerror(errno));
    else
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, "peer()", "hardware %s %08X", "peer", next);
    return next;
}

int child(int node, int fd)
{
    const int log = getCcLogHw();
    CcLogWrapper::traceMidEntry(log, __LINE__, kSource, "child()", "hardware %s %04X %s %d", "node", node, "fd", fd);
    const int first = promStep(OPROMCHILD, node, fd);
    if (first == -1)
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, "child()", "hardware %s %s %s", "child", "failed",
                                   std::strerror(errno));
    else
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, "child()", "hardware %s %04X", "child", first);
    return first;
}
