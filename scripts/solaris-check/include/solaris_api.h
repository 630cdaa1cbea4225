#pragma once
// What the Solaris sources see of the system when scripts/solaris-check.sh
// type-checks them on Linux: our own structure declarations (the ones the
// Linux build uses) and the Solaris prototypes of the calls they make. Not a
// Solaris header: enough to catch a wrong type, name or argument, no more.
#include <sys/types.h>

#include "common/sys/SolarisDeclarations.h"

#ifdef __cplusplus
extern "C" {
#endif

// <sys/systeminfo.h>
enum { SI_ARCHITECTURE_32 = 516, SI_ARCHITECTURE_64 = 517, SI_ARCHITECTURE_K = 518, SI_ARCHITECTURE_NATIVE = 519 };
int sysinfo(int command, char* buf, long count);

// <time.h>: Solaris keeps the summer-time offset beside glibc's three
extern long altzone;

// <sys/swap.h>
int swapctl(int cmd, void* arg);

// <kstat.h>
kstat_ctl_t* kstat_open(void);
int kstat_close(kstat_ctl_t* kc);
kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name);
kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf);
kid_t kstat_chain_update(kstat_ctl_t* kc);
void* kstat_data_lookup(kstat_t* ksp, char* name);

// <sys/pset.h>, <sys/processor.h> (processor_bind: see sys/procset.h)
int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist);
int p_online(processorid_t cpu, int flag);

// <unistd.h>: sysconf names Solaris has and glibc lacks
#define _SC_NPROCESSORS_MAX 516
#define _SC_CPUID_MAX 517

// getloadavg(3C) is in <sys/loadavg.h> on Solaris; glibc's <stdlib.h> has the same.

#ifdef __cplusplus
}
#endif
