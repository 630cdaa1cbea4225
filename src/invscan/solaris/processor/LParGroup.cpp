#include "invscan/solaris/processor/LParGroup.h"

#include <cstdlib>

#include "common/sys/System.h"
#include "common/util/smbios.h"
#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "framework/utils.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/probeVT.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/LParGroup";
const char* const kFunction = "getTable()";
#define LPAR_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

// A heap string from the SMBIOS reader, trimmed (a trailing carriage return too) and freed.
std::string takeTrimmed(char* text)
{
    std::string out = utils::trimBoth(std::string(text ? text : ""));
    std::free(text);
    return out;
}

// Reads one chip; false (traced) when it is missing or inconsistent.
bool readChip(VtNode* table, int c, LparChips& chips, int& sumTotalCores)
{
    VtNode* chip = table->getChild("Processor", c);
    LPAR_TRACE(traceMAX, "CPUID CHIP%d=%p", c, static_cast<void*>(chip));
    if (!chip) {
        LPAR_TRACE(traceMIN, "[E] CHIP#%d failed to get CPUID info", c);
        return false;
    }
    const int totalProcs = chip->getValue(nullptr, "TotalProcCount", -1);
    const int totalPoolProcs = chip->getValue(nullptr, "TotalPoolProcCount", -1);
    const int activeProcs = chip->getValue(nullptr, "ActiveProcCount", -1);
    const int totalCores = chip->getValue(nullptr, "TotalCoreCount", -1);
    const int totalPoolCores = chip->getValue(nullptr, "TotalPoolCoreCount", -1);
    const int activeCores = chip->getValue(nullptr, "ActiveCoreCount", -1);
    int procsPerCore = chip->getValue(nullptr, "ProcsPerCore", -1);
    LPAR_TRACE(traceMAX,
               "CHIP#%d total procs=%d total pool procs=%d active procs=%d total cores=%d total pool cores=%d "
               "active cores=%d procs per core=%d",
               c, totalProcs, totalPoolProcs, activeProcs, totalCores, totalPoolCores, activeCores, procsPerCore);
    if (totalProcs > 0 && procsPerCore < 1 && totalCores > 0) {
        procsPerCore = totalProcs / totalCores;  // informational only
        LPAR_TRACE(traceMAX, "calculated procsPerCore=%d", procsPerCore);
    }
    if (activeProcs < 0 || activeCores < 0) {
        LPAR_TRACE(traceMIN, "[E] CHIP#%d incorrect CPUID info", c);
        return false;
    }
    if (totalCores > 0) sumTotalCores += totalCores;
    const float packageCap = activeCores > 0 && activeCores < totalCores
                                 ? static_cast<float>(activeCores) / static_cast<float>(totalCores)
                                 : 1.0f;
    const float coreCap = activeCores > 0 ? static_cast<float>(activeCores) : 0.0f;
    const float poolPackageCap = totalPoolProcs > 0 ? static_cast<float>(totalPoolProcs) : 0.0f;
    const float poolCoreCap = totalPoolCores > 0 ? static_cast<float>(totalPoolCores) : 0.0f;
    LPAR_TRACE(traceMAX, "CHIP#%d pkg cap=%f core cap=%f pool pkg cap=%f pool core cap=%f", c,
               static_cast<double>(packageCap), static_cast<double>(coreCap), static_cast<double>(poolPackageCap),
               static_cast<double>(poolCoreCap));
    chips.sumPackageCap += packageCap;
    chips.sumCoreCap += coreCap;
    chips.sumPoolPackageCap += poolPackageCap;
    chips.sumPoolCoreCap += poolCoreCap;
    return true;
}

}  // namespace

bool gatherLparChips(VtExecInfo* info, LparChips& chips)
{
    chips = LparChips();
    if (!vtResultUsable(info, kSource, kFunction)) return false;
    auto value = [info](const char* name) { return vtGetValue(info, "ProcessorTable", name, -1); };
    chips.activePackages = value("ActivePackageCount");
    chips.totalPackages = value("TotalPackageCount");
    chips.activeCores = value("ActiveCoreCount");
    chips.totalCores = value("TotalCoreCount");
    chips.onlineProcessors = value("OnlineProcessorCount");
    if (chips.onlineProcessors < 1) chips.onlineProcessors = value("ActiveProcessorCount");
    LPAR_TRACE(traceMAX, "CPUID numActivePackages=%d numTotalPackages=%d numActiveCores=%d numTotalCores=%d",
               chips.activePackages, chips.totalPackages, chips.activeCores, chips.totalCores);

    int read = 0, sumTotalCores = 0;
    if (VtNode* table = vtGetNode(info, "ProcessorTable", 0)) {
        while (read < chips.totalPackages && readChip(table, read, chips, sumTotalCores)) ++read;
    } else {
        LPAR_TRACE(traceMIN, "[E] %s", "Failed to get ProcessorTable");
    }
    chips.allChipsRead = read >= chips.totalPackages;
    chips.biosTotalProcessors = value("BiosTotalProcessorCount");
    chips.biosTotalCores = value("BiosTotalCoreCount");
    chips.biosTotalPackages = value("BiosTotalPackageCount");
    value("BiosActiveProcessorCount");  // read and not used
    chips.biosActiveCores = value("BiosActiveCoreCount");
    chips.biosActivePackages = value("BiosActivePackageCount");
    if (chips.totalCores < sumTotalCores) chips.totalCores = sumTotalCores;
    LPAR_TRACE(traceMAX, "BIOS totals: processors=%d cores=%d packages=%d active cores=%d active packages=%d",
               chips.biosTotalProcessors, chips.biosTotalCores, chips.biosTotalPackages, chips.biosActiveCores,
               chips.biosActivePackages);
    const std::string vendor = vtGetValue(info, "Hypervisor", "Vendor", "");
    chips.vmware = vendor == "VMwareVMware" || vendor == "VMware";
    return true;
}

void shapeLparRow(const LparChips& chips, const LparZone& zone, const std::string& smbiosSerial, KorTable& table)
{
    RowBuilder row(LPAR_GROUP);
    std::string serial;
    if (!chips.allChipsRead) {
        LPAR_TRACE(traceMIN, "%s", "ERROR! Part of LparGroup will not be filled in because of incorrect CPUID data");
    } else {
        float nodeCap = -1, nodeCapCores = -1, lparCap = -1, lparCapCores = -1, poolCap = -1, poolCapCores = -1;
        const float totalPackages = static_cast<float>(chips.totalPackages);
        const float totalCores = static_cast<float>(chips.totalCores);
        if (zone.inside) {
            serial = zone.info.hostid;
            if (zone.kernel) LPAR_TRACE(traceMAX, "%s", "LPAR is a kernel zone (type: Kernel-Zone)");
        }
        if (!zone.inside) {
            nodeCap = totalPackages;
            nodeCapCores = totalCores;
        } else if (!zone.global) {
            if (chips.sumPackageCap > 0) lparCap = chips.sumPackageCap;
            if (chips.sumCoreCap > 0) lparCapCores = chips.sumCoreCap;
            if (!zone.inPool) {
                LPAR_TRACE(traceMAX, "%s", "pools not active, assume node capacity is same as zone's");
                if (totalPackages > 0) nodeCap = totalPackages;
                if (totalCores > 0) nodeCapCores = totalCores;
            }
        } else {  // a global zone, or a kernel zone, which owns its zones too
            nodeCap = totalPackages;
            nodeCapCores = totalCores;
            lparCap = chips.sumPackageCap;
            lparCapCores = chips.sumCoreCap;
        }
        if (zone.inside && zone.inPool) {
            if (lparCap < 0) lparCap = chips.sumPoolPackageCap;
            if (lparCapCores < 0) lparCapCores = chips.sumPoolCoreCap;
            poolCap = lparCap;
            poolCapCores = lparCapCores;
        }
        // The firmware's count limits the node: only a smaller positive one.
        if (chips.biosActivePackages > 0 && static_cast<float>(chips.biosActivePackages) < nodeCap) {
            LPAR_TRACE(traceMAX, "Updating nodeCapacity from %d to %d per SMBIOS", static_cast<int>(nodeCap),
                       chips.biosActivePackages);
            nodeCap = static_cast<float>(chips.biosActivePackages);
        }
        if (chips.biosActiveCores > 0 && static_cast<float>(chips.biosActiveCores) < nodeCapCores) {
            LPAR_TRACE(traceMAX, "Updating nodeCapacityInCores from %d to %d per SMBIOS",
                       static_cast<int>(nodeCapCores), chips.biosActiveCores);
            nodeCapCores = static_cast<float>(chips.biosActiveCores);
        }
        if (chips.vmware) {
            nodeCap = nodeCapCores = -1;
            LPAR_TRACE(traceMAX, "%s",
                       "VMWare virtualization on Solaris x86 detected. NodeCapacity and NodeCapacityInCores unknown "
                       "and set to -1.");
        }
        if ((serial.empty() || serial == "0") && !smbiosSerial.empty()) serial = smbiosSerial;
        row.text(LPAR_ID, zone.info.name);
        row.text(LPAR_SHARED_POOL_ID, zone.info.sharedPoolName);
        row.real(LPAR_NODE_CAPACITY, nodeCap);
        row.real(LPAR_NODE_CAPACITY_CORES, nodeCapCores);
        row.real(LPAR_CAPACITY, lparCap);
        row.real(LPAR_CAPACITY_CORES, lparCapCores);
        row.real(LPAR_POOL_CAPACITY, poolCap);
        row.real(LPAR_POOL_CAPACITY_CORES, poolCapCores);
        row.text(LPAR_PROCESSOR_SET_NAME, zone.info.poolResourceName);
        row.text(LPAR_TYPE, zone.info.typeDisplayed);
    }
    auto count = [](int n) { return static_cast<float>(n); };
    row.real(LPAR_ONLINE_VP_COUNT, count(chips.onlineProcessors));
    row.real(LPAR_ONLINE_PROCESSOR_COUNT, count(chips.onlineProcessors));
    row.real(LPAR_ONLINE_CORE_COUNT, count(chips.activeCores));
    row.real(LPAR_ONLINE_PACKAGE_COUNT, count(chips.activePackages));
    row.text(LPAR_SERIAL_NUMBER, serial);
    row.real(LPAR_NODE_TOTAL_PROCESSORS, count(chips.biosTotalProcessors));
    row.real(LPAR_NODE_TOTAL_CORES, count(chips.biosTotalCores));
    row.real(LPAR_NODE_TOTAL_PACKAGES, count(chips.biosTotalPackages));
    row.addTo(table);
}

LParGroup::LParGroup() : KorGroup(LPAR_GROUP, 1) {}

KorTable* LParGroup::getTable()
{
    return api::guardedTable("LParGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "LParGroup");
        std::string smbiosSerial;
        char *manufacturer = nullptr, *product = nullptr, *type = nullptr, *version = nullptr, *serial = nullptr;
        if (SMBIOS_GetSystemInfo(&manufacturer, &product, &type, &version, &serial) == -1) {
            LPAR_TRACE(traceMAX, "hardware %s", "Unable to READ the SMBIOS INFO");
            char buffer[1024];
            smbiosSerial = sys::current().sysinfo(SI_HW_SERIAL, buffer, sizeof buffer) == -1 ? "" : buffer;
            LPAR_TRACE(traceMAX, "getting serial number from sysinfo SI_HW_SERIAL: '%s'", smbiosSerial.c_str());
        } else {
            const std::string m = takeTrimmed(manufacturer), p = takeTrimmed(product), v = takeTrimmed(version);
            smbiosSerial = takeTrimmed(serial);
            const std::string t = takeTrimmed(type);
            LPAR_TRACE(traceMAX, "hardware Manufacter=<%s>", m.c_str());  // spelled so, as hosts grep it
            LPAR_TRACE(traceMAX, "hardware Product=<%s>", p.c_str());
            LPAR_TRACE(traceMAX, "hardware Version=<%s>", v.c_str());
            LPAR_TRACE(traceMAX, "hardware SerialNumber=<%s>", smbiosSerial.c_str());
            LPAR_TRACE(traceMAX, "hardware Type=<%s>", t.c_str());
        }
        LparChips chips;
        if (!gatherLparChips(getCpuidVT(), chips)) return nullptr;
        LparZone zone;
        if (chips.allChipsRead) {  // the zone is read only for a row that reports it
            const std::shared_ptr<const Zone> z = scanZone();
            zone.inside = z->isInsideZone();
            zone.global = z->isGlobalZone();
            zone.kernel = z->isKernelZone();
            zone.inPool = z->isInsidePool();
            zone.info = z->getZoneInfo();
        }
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeLparRow(chips, zone, smbiosSerial, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "LParGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(LPAR_GROUP, LParGroup);
