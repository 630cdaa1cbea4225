#include "invscan/solaris/ProcessorGroup.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/sys/System.h"
#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/md5.h"
#include "invscan/com/probeVT.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/ProcessorGroup";

constexpr int kMaxCoresPerPackage = 65536;

// Not filled by anything: hosts get an empty serial number.
char g_serialNumber[64];

// The identifier's text. The historical format ended in an incomplete "%l"
// that printed nothing there; handing it to printf here would be undefined,
// so the text simply stops after the stepping and the ids stay stable.
std::string idText(const char* manufacturer, int clock, int family, int model, int stepping)
{
    char text[512];
    std::snprintf(text, sizeof text, "%s%s%i%i%i%i%i%i%i%i", manufacturer, "i386", 0, clock, clock, 0, 0, family,
                  model, stepping);
    return text;
}

}  // namespace

ProcessorGroup::ProcessorGroup() : KorGroup(2, 1) {}

KorTable* ProcessorGroup::getTable()
{
    const char* fn = "getTable()";
    const int log = getCcLogHw();
    CcLogWrapper::traceMidEntry(log, __LINE__, kSource, fn, "hardware %s", "ProcessorGroup Group");

    VtExecInfo* info = getCpuidVT();
    if (!info) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "[E] %s", "Cannot execute VT command");
        return nullptr;
    }
    if (info->result != 0 || !info->root) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "[E] VT command returned %d data=%p", info->result,
                               static_cast<void*>(info->root));
        return nullptr;
    }
    VtNode* processors = vtGetNode(info, "ProcessorTable", 0);
    if (!processors) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "ERROR: %s", "missing ProcessorTable");
        return nullptr;
    }
    const int packages = processors->getValue(nullptr, "TotalPackageCount", -1);
    if (packages < 1) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "[E] Invalid physical package count %d", packages);
        return nullptr;
    }

    auto* table = new KorTable(getGroupId(), getGroupVersion());
    unsigned int index = 0;
    for (int p = 0; p < packages; ++p) {
        VtNode* proc = processors->getChild("Processor", p);
        CcLogWrapper::traceMAX(log, __LINE__, kSource, fn, "CPUID proc %d = %p", p, static_cast<void*>(proc));
        if (!proc) {
            // All or nothing: a table missing a package would understate the machine.
            CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "[E] Failed to read proc #%d from CPUID data", p);
            delete table;
            return nullptr;
        }
        int cores = proc->getValue(nullptr, "TotalCoreCount", -1);
        if (cores < 1) cores = proc->getValue("CPUID", "CorePerPackageCount", 1);
        if (cores > kMaxCoresPerPackage) {
            // A count no package has: a broken probe, not a machine.
            CcLogWrapper::traceMIN(log, __LINE__, kSource, fn, "[E] Invalid core count %d for proc #%d", cores, p);
            delete table;
            return nullptr;
        }
        int threadsPerCore = proc->getValue(nullptr, "ProcsPerCore", -1);
        if (threadsPerCore < 1) threadsPerCore = proc->getValue("CPUID", "HtPerCoreCount", 1);

        const char* manufacturer = proc->getValue(nullptr, "Manufacturer", "");
        const int family = proc->getValue("CPUID", "Family", 0);
        const int model = proc->getValue("CPUID", "Model", 0);
        const int stepping = proc->getValue("CPUID", "Stepping", 0);
        const int clock = proc->getValue(nullptr, "CpuClockMHz", 0);

        char* id = md5_checksum(idText(manufacturer, clock, family, model, stepping).c_str());
        for (int c = 0; c < cores; ++c) {
            auto* row = new KorTableRow;
            row->addAttrib(new KorTableAttrib(1, ++index));
            row->addAttrib(new KorTableAttrib(2, id ? id : ""));
            row->addAttrib(new KorTableAttrib(3, "i386"));
            row->addAttrib(new KorTableAttrib(4, static_cast<unsigned int>(clock)));
            row->addAttrib(new KorTableAttrib(5, static_cast<unsigned int>(clock)));
            row->addAttrib(new KorTableAttrib(6, 0u));
            row->addAttrib(new KorTableAttrib(7, manufacturer));
            row->addAttrib(new KorTableAttrib(8, g_serialNumber));
            row->addAttrib(new KorTableAttrib(10, static_cast<unsigned int>(family)));
            row->addAttrib(new KorTableAttrib(11, static_cast<unsigned int>(model)));
            row->addAttrib(new KorTableAttrib(12, static_cast<unsigned int>(stepping)));
            // "H" for hyper-threading in the enabled flag: what hosts read there.
            if (threadsPerCore > 1) row->addAttrib(new KorTableAttrib(42, "H"));
            table->addRow(row);
        }
        std::free(id);
    }
    CcLogWrapper::traceMidExit(log, __LINE__, kSource, fn, "hardware %s", "Processor Group");
    return table;
}

INVSCAN_REGISTER_GROUP(2, ProcessorGroup);

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
