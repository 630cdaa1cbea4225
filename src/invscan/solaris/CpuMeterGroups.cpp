#include "invscan/solaris/CpuMeterGroups.h"

#include <cstdio>
#include <cstring>

#include "common/sys/System.h"
#include "framework/Trace.h"
#include "invscan/com/GroupRegistry.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/CpuMeterGroup";
const char* const kFunction = "getTable()";
#define METER_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)
}  // namespace

CpuMeterGroup::CpuMeterGroup() : KorGroup(46, 1) {}

KorTable* CpuMeterGroup::getTable()
{
    const std::string name = getGroupName().narrow();
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
    sys::System& os = sys::current();
    unsigned long long idle = 0, user = 0, wait = 0, kernel = 0, total = 0;

    kstat_ctl_t* kc = os.kstat_open();
    if (!kc) {
        METER_TRACE(traceMIN, "hardware %s", "Failed to open kstat interface");
        return nullptr;
    }
    METER_TRACE(traceMID, "hardware %s", "Kstat interface opened succesfully");

    char module[] = "cpu_stat";
    cpu_stat_t stat;
    int processors = 0;
    for (kstat_t* k = kc->kc_chain; k; k = k->ks_next) {
        if (std::strcmp(k->ks_module, module) == 0 && os.kstat_read(kc, k, nullptr) != -1) ++processors;
    }
    METER_TRACE(traceMID, "hardware Kstat returned %d processors", processors);

    for (int i = 0; i < processors; ++i) {
        char statName[KSTAT_STRLEN];
        std::snprintf(statName, sizeof statName, "cpu_stat%d", i);
        // Instance 0 on purpose: only processor 0's record is ever found, and
        // hosts expect its counters divided by the processor count.
        kstat_t* k = os.kstat_lookup(kc, module, 0, statName);
        if (!k || k->ks_type != KSTAT_TYPE_RAW || k->ks_data_size != sizeof(cpu_stat_t) ||
            os.kstat_read(kc, k, &stat) == -1)
            continue;
        METER_TRACE(traceMID, "hardware succesfully opened statistics for %d processor", i);
        idle = stat.cpu_sysinfo.cpu[CPU_IDLE];
        user = stat.cpu_sysinfo.cpu[CPU_USER];
        kernel = stat.cpu_sysinfo.cpu[CPU_KERNEL];
        wait = stat.cpu_sysinfo.cpu[CPU_WAIT];
        total += idle + user + kernel + wait;
    }
    os.kstat_close(kc);

    // No processor counted: zeros rather than a division by zero.
    const unsigned long long n = processors > 0 ? static_cast<unsigned long long>(processors) : 0;
    auto per = [n](unsigned long long v) { return n ? v / n : 0ull; };
    auto* table = new KorTable(getGroupId(), getGroupVersion());
    auto* row = new KorTableRow;
    row->addAttrib(new KorTableAttrib(1, per(idle)));
    row->addAttrib(new KorTableAttrib(2, per(user)));
    row->addAttrib(new KorTableAttrib(3, per(wait)));
    row->addAttrib(new KorTableAttrib(4, per(kernel)));
    row->addAttrib(new KorTableAttrib(5, per(total)));
    table->addRow(row);
    METER_TRACE(traceMAX, "hardware idle=%llu user=%llu wait=%llu sys=%llu uptime=%llu", per(idle), per(user),
                per(wait), per(kernel), per(total));
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
    return table;
}

UnixCpuMeterGroup::UnixCpuMeterGroup() : KorGroup(47, 1) {}

KorTable* UnixCpuMeterGroup::getTable()
{
    const std::string name = getGroupName().narrow();
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
    auto* row = new KorTableRow;
    double values[3] = {0, 0, 0};
    if (sys::current().getloadavg(values, 3) == -1) {
        METER_TRACE(traceMAX, "hardware %s", "Failed to obtain load averages");
        delete row;
        return nullptr;
    }
    METER_TRACE(traceMAX, "hardware loadAvg1=%.6f, loadAvg5=%.6f, loadAvg15=%.6f", values[0], values[1], values[2]);
    auto* table = new KorTable(getGroupId(), getGroupVersion());
    row->addAttrib(new KorTableAttrib(1, static_cast<float>(values[0])));
    row->addAttrib(new KorTableAttrib(2, static_cast<float>(values[1])));
    row->addAttrib(new KorTableAttrib(3, static_cast<float>(values[2])));
    table->addRow(row);
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name.c_str());
    return table;
}

INVSCAN_REGISTER_GROUP(46, CpuMeterGroup);
INVSCAN_REGISTER_GROUP(47, UnixCpuMeterGroup);
