#include "invscan/solaris/processor/CpuMeterGroups.h"

#include <cstdio>
#include <cstring>

#include "common/sys/System.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "common/util/ApiGuard.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/CpuMeterGroup";
const char* const kFunction = "getTable()";
#define METER_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)
}  // namespace

bool gatherCpuTicks(sys::System& os, CpuTicks& ticks)
{
    ticks = CpuTicks();
    kstat_ctl_t* kc = os.kstat_open();
    if (!kc) {
        METER_TRACE(traceMIN, "hardware %s", "Failed to open kstat interface");
        return false;
    }
    METER_TRACE(traceMID, "hardware %s", "Kstat interface opened succesfully");

    char module[] = "cpu_stat";
    for (kstat_t* k = kc->kc_chain; k; k = k->ks_next) {
        if (std::strcmp(k->ks_module, module) == 0 && os.kstat_read(kc, k, nullptr) != -1) ++ticks.processors;
    }
    METER_TRACE(traceMID, "hardware Kstat returned %d processors", ticks.processors);

    cpu_stat_t stat;
    for (int i = 0; i < ticks.processors; ++i) {
        char statName[KSTAT_STRLEN];
        std::snprintf(statName, sizeof statName, "cpu_stat%d", i);
        // Instance 0 on purpose: only processor 0's record is ever found, and
        // hosts expect its counters divided by the processor count.
        kstat_t* k = os.kstat_lookup(kc, module, 0, statName);
        if (!k || k->ks_type != KSTAT_TYPE_RAW || k->ks_data_size != sizeof(cpu_stat_t) ||
            os.kstat_read(kc, k, &stat) == -1)
            continue;
        METER_TRACE(traceMID, "hardware succesfully opened statistics for %d processor", i);
        ticks.idle = stat.cpu_sysinfo.cpu[CPU_IDLE];
        ticks.user = stat.cpu_sysinfo.cpu[CPU_USER];
        ticks.kernel = stat.cpu_sysinfo.cpu[CPU_KERNEL];
        ticks.wait = stat.cpu_sysinfo.cpu[CPU_WAIT];
        ticks.total += ticks.idle + ticks.user + ticks.kernel + ticks.wait;
    }
    os.kstat_close(kc);
    return true;
}

void shapeCpuMeterRow(const CpuTicks& ticks, KorTable& table)
{
    // No processor counted: zeros rather than a division by zero.
    const auto n = static_cast<unsigned long long>(ticks.processors > 0 ? ticks.processors : 0);
    auto per = [n](unsigned long long v) { return n ? v / n : 0ull; };
    RowBuilder row(CPU_METER_GROUP);
    row.number(METER_IDLE_TIME, per(ticks.idle));
    row.number(METER_USER_TIME, per(ticks.user));
    row.number(METER_WAIT_TIME, per(ticks.wait));
    row.number(METER_SYS_TIME, per(ticks.kernel));
    row.number(METER_SYSTEM_UP_TIME, per(ticks.total));
    row.addTo(table);
    METER_TRACE(traceMAX, "hardware idle=%llu user=%llu wait=%llu sys=%llu uptime=%llu", per(ticks.idle),
                per(ticks.user), per(ticks.wait), per(ticks.kernel), per(ticks.total));
}

void shapeLoadRow(const double loads[3], KorTable& table)
{
    RowBuilder row(table.getGroupId());
    row.real(METER_LOAD_AVG_1, loads[0]);
    row.real(METER_LOAD_AVG_5, loads[1]);
    row.real(METER_LOAD_AVG_15, loads[2]);
    row.addTo(table);
}

CpuMeterGroup::CpuMeterGroup() : KorGroup(CPU_METER_GROUP, 1) {}

KorTable* CpuMeterGroup::getTable()
{
    return api::guardedTable("CpuMeterGroup::getTable()", [&]() -> KorTable* {
        const std::string name = getGroupName().narrow();
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
        CpuTicks ticks;
        if (!gatherCpuTicks(sys::current(), ticks)) return nullptr;
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeCpuMeterRow(ticks, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
        return table;
    });
}

UnixCpuMeterGroup::UnixCpuMeterGroup() : KorGroup(UNIX_CPU_METER_GROUP, 1) {}

KorTable* UnixCpuMeterGroup::getTable()
{
    return api::guardedTable("UnixCpuMeterGroup::getTable()", [&]() -> KorTable* {
        const std::string name = getGroupName().narrow();
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
        double loads[3] = {0, 0, 0};
        if (sys::current().getloadavg(loads, 3) == -1) {
            METER_TRACE(traceMAX, "hardware %s", "Failed to obtain load averages");
            return nullptr;
        }
        METER_TRACE(traceMAX, "hardware loadAvg1=%.6f, loadAvg5=%.6f, loadAvg15=%.6f", loads[0], loads[1], loads[2]);
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeLoadRow(loads, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
        return table;
    });
}

INVSCAN_REGISTER_GROUP(CPU_METER_GROUP, CpuMeterGroup);
INVSCAN_REGISTER_GROUP(UNIX_CPU_METER_GROUP, UnixCpuMeterGroup);
