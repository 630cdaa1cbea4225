#pragma once
// The Solaris structures and constants the scanner's OS calls use. On Solaris
// they come from the system headers; elsewhere this header declares them with
// the Solaris i386 layout, so the group code reads the same on every build.
//
// Not declared here on purpose: Solaris `sysinfo()` and `struct sysinfo`
// (glibc has its own of both), `idtype_t` and `pset_bind` (glibc's
// <sys/wait.h> clashes), and `daddr_t` (glibc's differs in type). The
// `sysconf` names are the platform's own (_SC_PAGESIZE, _SC_PHYS_PAGES,
// _SC_AVPHYS_PAGES from <unistd.h>): their numbers differ, their meaning not.
#include <cstddef>
#include <cstdint>

#if defined(__sun)

#include <kstat.h>
#include <sys/dkio.h>
#include <sys/openpromio.h>
#include <sys/processor.h>
#include <sys/pset.h>
#include <sys/scsi/impl/uscsi.h>
#include <sys/swap.h>
#include <sys/systeminfo.h>
#include <sys/sysinfo.h>
#include <sys/types.h>
#include <sys/vtoc.h>

#else
#include "common/sys/SolarisDeclarations.h"
#endif  // !__sun

// Sizes on the target ABI: a wrong one shifts every field after it.
#if defined(__i386__)
static_assert(sizeof(struct swapent) == 24, "swapent");
static_assert(sizeof(swaptbl_t) == 28, "swaptbl_t");
static_assert(sizeof(struct anoninfo) == 12, "anoninfo");
static_assert(sizeof(kstat_t) == 152, "kstat_t");
static_assert(offsetof(kstat_t, ks_data) == 116, "kstat_t.ks_data");
static_assert(offsetof(kstat_t, ks_data_size) == 124, "kstat_t.ks_data_size");
static_assert(sizeof(kstat_ctl_t) == 12, "kstat_ctl_t");
static_assert(sizeof(kstat_named_t) == 48, "kstat_named_t");
static_assert(sizeof(cpu_stat_t) == 380, "cpu_stat_t");
static_assert(sizeof(struct uscsi_cmd) == 36, "uscsi_cmd");
static_assert(sizeof(struct dk_cinfo) == 68, "dk_cinfo");
static_assert(sizeof(struct dk_geom) == 42, "dk_geom");
static_assert(sizeof(struct vtoc) == 456, "vtoc");
static_assert(offsetof(struct vtoc, v_part) == 72, "vtoc.v_part");
#endif
// Whatever the ABI, a cpu_stat record is all 32-bit words.
static_assert(sizeof(cpu_stat_t) == 380, "cpu_stat_t");
