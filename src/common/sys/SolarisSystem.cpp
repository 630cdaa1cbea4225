// Solaris: each call forwards to the system's own.
#if defined(__sun)

#include <stdlib.h>
#include <time.h>
#include <sys/loadavg.h>
#include <unistd.h>

#include "common/sys/PosixSystem.h"

// libc exports it on every release, but <time.h> declares it only outside
// the X/Open mode that C++ compilers always select on Solaris.
extern "C" long altzone;

namespace sys {
namespace {

class SolarisSystem : public PosixSystem {
public:
    long sysinfo(int command, char* buf, long count) override { return ::sysinfo(command, buf, count); }
    int swapctl(int cmd, void* arg) override { return ::swapctl(cmd, arg); }

    kstat_ctl_t* kstat_open() override { return ::kstat_open(); }
    int kstat_close(kstat_ctl_t* kc) override { return ::kstat_close(kc); }
    kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name) override
    {
        return ::kstat_lookup(kc, module, instance, name);
    }
    kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf) override { return ::kstat_read(kc, ksp, buf); }
    kid_t kstat_chain_update(kstat_ctl_t* kc) override { return ::kstat_chain_update(kc); }
    int getloadavg(double* loadavg, int nelem) override { return ::getloadavg(loadavg, nelem); }
    int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist) override
    {
        return ::pset_info(pset, type, numcpus, cpulist);
    }
    int p_online(processorid_t cpu, int flag) override { return ::p_online(cpu, flag); }

    void tzset(TimeZone& zone) override
    {
        ::tzset();
        zone.timezone = ::timezone;
        zone.altzone = ::altzone;
        zone.daylight = ::daylight;
        zone.standardName = ::tzname[0] ? ::tzname[0] : "";
        zone.summerName = ::tzname[1] ? ::tzname[1] : "";
    }
};

}  // namespace

System& platform()
{
    static SolarisSystem instance;
    return instance;
}

}  // namespace sys

#endif  // __sun
