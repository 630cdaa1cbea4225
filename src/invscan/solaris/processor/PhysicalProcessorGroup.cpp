#include "invscan/solaris/processor/PhysicalProcessorGroup.h"

#include <unistd.h>

#include <cstdlib>

#include "common/sys/System.h"
#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/md5.h"
#include "invscan/com/probeVT.h"
#include "invscan/solaris/processor/ProcessorGroup.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/PhysicalProcessorGroup";
const char* const kFunction = "getTable()";
#define PHYS_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

// A package can hold no more than this; more is a broken probe.
constexpr int kMaxPackages = 4096;

unsigned int count(int value) { return static_cast<unsigned int>(value > 0 ? value : 0); }

}  // namespace

bool gatherPhysicalPackages(VtExecInfo* info, std::vector<PhysicalPackage>& packages)
{
    packages.clear();
    int total = 0;
    VtNode* table = cpuidProcessorTable(info, kSource, total);
    if (!table) return false;
    if (total > kMaxPackages) {
        PHYS_TRACE(traceMIN, "[E] Invalid physical package count %d", total);
        return false;
    }
    long cores = 0;
    for (int p = 0; p < total; ++p) {
        VtNode* proc = table->getChild("Processor", p);
        if (!proc) {
            PHYS_TRACE(traceMIN, "[E] Failed to read proc #%d from CPUID data", p);
            packages.clear();
            return false;
        }
        PhysicalPackage pkg;
        pkg.manufacturer = proc->getValue(nullptr, "Manufacturer", "");
        pkg.family = proc->getValue(nullptr, "Family", "");
        pkg.type = proc->getValue(nullptr, "Type", "");
        pkg.brand = proc->getValue(nullptr, "BrandName", "");
        pkg.signature = proc->getValue(nullptr, "Signature", "");
        pkg.is64bit = proc->getValue(nullptr, "Is64bit", "");
        pkg.coresPerPackage = proc->getValue(nullptr, "TotalCoreCount", -1);
        if (pkg.coresPerPackage < 1) pkg.coresPerPackage = proc->getValue("CPUID", "CorePerPackageCount", 1);
        cores += pkg.coresPerPackage > 0 ? pkg.coresPerPackage : 0;
        if (cores > kMaxProcessorCores) {
            PHYS_TRACE(traceMIN, "[E] Invalid core count %d for proc #%d", pkg.coresPerPackage, p);
            packages.clear();
            return false;
        }
        pkg.threadsPerCore = proc->getValue(nullptr, "ProcsPerCore", -1);
        if (pkg.threadsPerCore < 1) pkg.threadsPerCore = proc->getValue("CPUID", "HtPerCoreCount", 1);
        pkg.clockMHz = proc->getValue(nullptr, "CpuClockMHz", 0);
        pkg.l2KB = proc->getValue(nullptr, "L2CacheSizeKB", 0);
        pkg.l3KB = proc->getValue(nullptr, "L3CacheSizeKB", 0);
        pkg.activeProcessors = proc->getValue(nullptr, "ActiveProcCount", -1);
        pkg.activeCores = proc->getValue(nullptr, "ActiveCoreCount", -1);
        // The Processor rows' ID text, then the package's place: identical
        // packages still get an Id each, and it is stable across scans.
        ProcessorPackage same;
        same.manufacturer = pkg.manufacturer;
        same.clockMHz = pkg.clockMHz;
        same.family = proc->getValue("CPUID", "Family", 0);
        same.model = proc->getValue("CPUID", "Model", 0);
        same.stepping = proc->getValue("CPUID", "Stepping", 0);
        pkg.id = processorIdText(same) + "#" + std::to_string(p);
        packages.push_back(pkg);
    }
    return true;
}

void shapePhysicalProcessorRows(const std::vector<PhysicalPackage>& packages, KorTable& table)
{
    for (const PhysicalPackage& p : packages) {
        RowBuilder row(PHYSICAL_PROCESSOR_GROUP, RowBuilder::Undecodable::Shown);
        char* id = md5_checksum(p.id.c_str());
        row.text(PHYS_ID, id);
        std::free(id);
        // A text the probe did not give is left out rather than shown empty.
        row.textIfAny(PHYS_MANUFACTURER, p.manufacturer);
        row.textIfAny(PHYS_FAMILY, p.family);
        row.textIfAny(PHYS_TYPE, p.type);
        row.number(PHYS_CORES_PER_PACKAGE, count(p.coresPerPackage));
        row.number(PHYS_LOGICAL_PER_CORE, count(p.threadsPerCore));
        row.number(PHYS_CPU_FREQ, count(p.clockMHz));
        row.number(PHYS_L2_CACHE, count(p.l2KB));
        row.number(PHYS_L3_CACHE, count(p.l3KB));
        row.textIfAny(PHYS_BRANDNAME, p.brand);
        row.textIfAny(PHYS_SIGNATURE, p.signature);
        if (!p.is64bit.empty()) row.text(PHYS_IS_64BIT, p.is64bit == "Yes" ? "Y" : "N");
        if (p.activeProcessors >= 0) row.number(PHYS_ACTIVE_PROCESSORS, count(p.activeProcessors));
        if (p.activeCores >= 0) row.number(PHYS_ACTIVE_CORES, count(p.activeCores));
        row.addTo(table);
    }
}

PhysicalProcessorGroup::PhysicalProcessorGroup() : KorGroup(PHYSICAL_PROCESSOR_GROUP, 1) {}

KorTable* PhysicalProcessorGroup::getTable()
{
    return api::guardedTable("PhysicalProcessorGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PhysicalProcessorGroup");
        std::vector<PhysicalPackage> packages;
        if (!gatherPhysicalPackages(getCpuidVT(), packages)) return nullptr;
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapePhysicalProcessorRows(packages, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PhysicalProcessorGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(PHYSICAL_PROCESSOR_GROUP, PhysicalProcessorGroup);
