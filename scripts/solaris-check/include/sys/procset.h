#pragma once
// Apart from solaris_api.h: Solaris idtype_t clashes with glibc's
// <sys/wait.h>, so only sources that bind processors see it.
#include "solaris_api.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum {
    P_PID, P_PPID, P_PGID, P_SID, P_CID, P_UID, P_GID, P_ALL, P_LWPID, P_TASKID,
    P_PROJID, P_POOLID, P_ZONEID, P_CTID, P_CPUID, P_PSETID
} idtype_t;
#define P_MYID (-1)
#define PBIND_NONE (-1)
int processor_bind(idtype_t idtype, id_t id, processorid_t processorid, processorid_t* obind);

#ifdef __cplusplus
}
#endif
