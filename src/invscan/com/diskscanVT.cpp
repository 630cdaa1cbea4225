#include "framework/Trace.h"
#include "common/util/ApiGuard.h"
#include "invscan/com/probeVT.h"

namespace probes {
extern VtExecInfo* g_cpuid;
VtExecInfo* g_diskscan = nullptr;

}  // namespace probes

VtExecInfo* getDiskScanVT()
{
    return api::guarded<VtExecInfo*>("./../../../src/invscan/com/diskscanVT", "getDiskScanVT()", nullptr, [&]() -> VtExecInfo* {
        static const char* const kSource = "./../../../src/invscan/com/diskscanVT";
        const int hLog = getCcLogHw();
        if (!probes::g_diskscan) {
            VtExecInfo* info = vtExecCommand("diskscan", nullptr, nullptr);
            if (info) {
                probes::g_diskscan = info;
                CcLogWrapper::traceMAX(hLog, __LINE__, kSource, "getDiskScanVT()", "[I] VT command executed, rc=%d",
                                       info->result);
            } else {
                CcLogWrapper::traceMIN(hLog, __LINE__, kSource, "getDiskScanVT()", "[E] %s",
                                       "Could not execute VT command!");
            }
        }
        return probes::g_diskscan;
    });
}
