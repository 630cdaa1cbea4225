
#include <string>

#include "common/sys/System.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "common/util/ApiGuard.h"
#include "invscan/com/probeVT.h"

namespace probes {
VtExecInfo* g_cpuid = nullptr;
}

VtExecInfo* getCpuidVT()
{
    return api::guarded<VtExecInfo*>("./../../../src/invscan/com/cpuidVT", "getCpuidVT()", nullptr, [&]() -> VtExecInfo* {
        static const char* const kSource = "./../../../src/invscan/com/cpuidVT";
        const int hLog = getCcLogHw();
        if (!probes::g_cpuid) {
            const std::string dir = NimCfg::getKey("common_trace_path").narrow();
            const std::string logPath = dir + "/" + "traceNIM_cpuid.log";
            // Debug mode only with a writable log: an unread stderr pipe could block the probe.
            sys::Dir* d = dir.empty() ? nullptr : sys::current().opendir(dir.c_str());
            VtExecInfo* info;
            if (d) {
                sys::current().closedir(d);
                info = vtExecCommand("cpuid", "-d", logPath.c_str());
            } else {
                info = vtExecCommand("cpuid", nullptr, nullptr);
            }
            if (info) {
                probes::g_cpuid = info;
                CcLogWrapper::traceMAX(hLog, __LINE__, kSource, "getCpuidVT()", "[I] VT command executed, rc=%d",
                                       info->result);
            } else {
                CcLogWrapper::traceMIN(hLog, __LINE__, kSource, "getCpuidVT()", "[E] %s", "Could not execute VT command!");
            }
        }
        return probes::g_cpuid;
    });
}

bool vtResultUsable(VtExecInfo* info, const char* source, const char* function)
{
    if (!info) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, source, function, "[E] %s", "Cannot execute VT command");
        return false;
    }
    if (info->result != 0 || !info->root) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, source, function, "[E] VT command returned %d data=%p",
                               info->result, static_cast<void*>(info->root));
        return false;
    }
    return true;
}
