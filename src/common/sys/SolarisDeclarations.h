#pragma once
// Our own declarations of the Solaris structures and constants, in the Solaris
// i386 layout, for builds on other systems (see SolarisTypes.h). The Solaris
// check (scripts/solaris-check.sh) compiles the Solaris sources against them.
#include <cstddef>
#include <cstdint>

typedef unsigned int uint_t;
typedef unsigned short ushort_t;
typedef unsigned char uchar_t;
typedef unsigned long ulong_t;
typedef char* caddr_t;
typedef long long hrtime_t;
typedef unsigned long long diskaddr_t;
typedef unsigned long pgcnt_t;
typedef int kid_t;
typedef int processorid_t;
typedef int psetid_t;

// ---- sysinfo(2) commands, gethostid(3C) -------------------------------------
enum {
    SI_SYSNAME = 1,
    SI_HOSTNAME = 2,
    SI_RELEASE = 3,
    SI_VERSION = 4,
    SI_MACHINE = 5,
    SI_ARCHITECTURE = 6,
    SI_HW_SERIAL = 7,
    SI_HW_PROVIDER = 8,
    SI_SRPC_DOMAIN = 9,
    SI_PLATFORM = 513,
    SI_ISALIST = 514,
};
#define HW_INVALID_HOSTID 0xFFFFFFFF
#define HW_HOSTID_LEN 11

// ---- swapctl(2) ---------------------------------------------------------------
enum { SC_ADD = 1, SC_LIST = 2, SC_REMOVE = 3, SC_GETNSWP = 4, SC_AINFO = 5 };
enum { ST_INDEL = 0x01, ST_DOINGDEL = 0x02 };

// Start and length are 32-bit on Solaris i386 whatever _FILE_OFFSET_BITS says.
struct swapent {
    char* ste_path;  // the caller's buffer; the call copies the path into it
    int32_t ste_start;   // 512-byte blocks
    int32_t ste_length;  // 512-byte blocks
    long ste_pages;      // pages
    long ste_free;       // pages
    int ste_flags;
};
typedef struct swaptable {
    int swt_n;
    struct swapent swt_ent[1];
} swaptbl_t;
typedef struct swapres {
    char* sr_name;
    int32_t sr_start;
    int32_t sr_length;
} swapres_t;
struct anoninfo {  // pages
    pgcnt_t ani_max;
    pgcnt_t ani_free;
    pgcnt_t ani_resv;
};

// ---- kstat ----------------------------------------------------------------------
#define KSTAT_STRLEN 31
enum { KSTAT_TYPE_RAW = 0, KSTAT_TYPE_NAMED = 1, KSTAT_TYPE_INTR = 2, KSTAT_TYPE_IO = 3, KSTAT_TYPE_TIMER = 4 };
enum {
    KSTAT_DATA_CHAR = 0,
    KSTAT_DATA_INT32 = 1,
    KSTAT_DATA_UINT32 = 2,
    KSTAT_DATA_INT64 = 3,
    KSTAT_DATA_UINT64 = 4,
    KSTAT_DATA_STRING = 9,
};

typedef struct kstat {
    hrtime_t ks_crtime;
    struct kstat* ks_next;
    kid_t ks_kid;
    char ks_module[KSTAT_STRLEN];
    uchar_t ks_resv;
    int ks_instance;
    char ks_name[KSTAT_STRLEN];
    uchar_t ks_type;
    char ks_class[KSTAT_STRLEN];
    uchar_t ks_flags;
    void* ks_data;
    uint_t ks_ndata;
    size_t ks_data_size;
    hrtime_t ks_snaptime;
    int (*ks_update)(struct kstat*, int);  // kernel only
    void* ks_private;                       // kernel only
    int (*ks_snapshot)(struct kstat*, void*, int);
    void* ks_lock;
} kstat_t;

typedef struct kstat_ctl {
    kid_t kc_chain_id;
    kstat_t* kc_chain;
    int kc_kd;
} kstat_ctl_t;

typedef struct kstat_named {
    char name[KSTAT_STRLEN];
    uchar_t data_type;
    union {
        char c[16];
        int32_t i32;
        uint32_t ui32;
        int64_t i64;
        uint64_t ui64;
    } value;
} kstat_named_t;

// The per-CPU "cpu_stat" raw record.
enum { CPU_IDLE = 0, CPU_USER = 1, CPU_KERNEL = 2, CPU_WAIT = 3, CPU_STATES = 4 };
enum { W_IO = 0, W_SWAP = 1, W_PIO = 2, W_STATES = 3 };

typedef struct cpu_sysinfo {
    uint_t cpu[CPU_STATES];  // ticks: idle, user, kernel, wait (always 0 today)
    uint_t wait[W_STATES];
    uint_t counters[52];  // bread ... win_suo_cnt; the scanner reads none of them
} cpu_sysinfo_t;
typedef struct cpu_syswait {
    int iowait;
    int swap;
    int physio;
} cpu_syswait_t;
typedef struct cpu_vminfo {
    uint_t counters[31];  // pgrec ... fsfree
} cpu_vminfo_t;
typedef struct cpu_stat {
    uint_t __cpu_stat_lock[2];  // keeps the 32-bit layout: without it all shifts by 8
    cpu_sysinfo_t cpu_sysinfo;
    cpu_syswait_t cpu_syswait;
    cpu_vminfo_t cpu_vminfo;
} cpu_stat_t;

// ---- processor sets and processor state -------------------------------------------
#define PS_NONE -1
#define PS_QUERY -2
#define PS_MYID -3
#define PS_SOFT -4
#define PS_HARD -5
#define PS_QUERY_TYPE -6
#define PS_SYSTEM 1
#define PS_PRIVATE 2
#define P_OFFLINE 0x0001
#define P_ONLINE 0x0002
#define P_STATUS 0x0003
#define P_FAULTED 0x0004
#define P_POWEROFF 0x0005
#define P_NOINTR 0x0006
#define P_SPARE 0x0007
#define P_FORCED 0x10000000

// ---- user SCSI commands -------------------------------------------------------
struct uscsi_cmd {
    int uscsi_flags;
    short uscsi_status;
    short uscsi_timeout;  // seconds
    caddr_t uscsi_cdb;
    caddr_t uscsi_bufaddr;
    size_t uscsi_buflen;
    size_t uscsi_resid;
    uchar_t uscsi_cdblen;
    uchar_t uscsi_rqlen;
    uchar_t uscsi_rqstatus;
    uchar_t uscsi_rqresid;
    caddr_t uscsi_rqbuf;
    ulong_t uscsi_path_instance;  // a reserved pointer on old releases: zero it, never name it
};
#define USCSIIOC (0x04 << 8)
#define USCSICMD (USCSIIOC | 201)
#define USCSI_WRITE 0x00000
#define USCSI_SILENT 0x00001
#define USCSI_DIAGNOSE 0x00002
#define USCSI_ISOLATE 0x00004
#define USCSI_READ 0x00008
#define USCSI_RESET 0x04000
#define USCSI_RESET_ALL 0x08000
#define USCSI_RQENABLE 0x10000

// ---- disk controls ----------------------------------------------------------------
#define DKIOC (0x04 << 8)
#define DKIOCGGEOM (DKIOC | 1)
#define DKIOCINFO (DKIOC | 3)
#define DKIOCGVTOC (DKIOC | 11)
#define DKIOCGMEDIAINFO (DKIOC | 42)
#define DK_DEVLEN 16

struct dk_cinfo {
    char dki_cname[DK_DEVLEN];
    ushort_t dki_ctype;
    ushort_t dki_flags;
    ushort_t dki_cnum;
    uint_t dki_addr;
    uint_t dki_space;
    uint_t dki_prio;
    uint_t dki_vec;
    char dki_dname[DK_DEVLEN];
    uint_t dki_unit;
    uint_t dki_slave;
    ushort_t dki_partition;
    ushort_t dki_maxtransfer;
};
enum {
    DKC_UNKNOWN = 0,
    DKC_CDROM = 1,
    DKC_NCRFLOPPY = 10,
    DKC_SMSFLOPPY = 12,
    DKC_SCSI_CCS = 13,
    DKC_INTEL82072 = 14,
    DKC_MD = 16,
    DKC_INTEL82077 = 19,
    DKC_DIRECT = 20,
    DKC_PCMCIA_MEM = 21,
    DKC_PCMCIA_ATA = 22,
    DKC_VBD = 23,
    DKC_BLKDEV = 24,
};

struct dk_geom {
    unsigned short dkg_ncyl;
    unsigned short dkg_acyl;
    unsigned short dkg_bcyl;
    unsigned short dkg_nhead;
    unsigned short dkg_obs1;
    unsigned short dkg_nsect;
    unsigned short dkg_intrlv;
    unsigned short dkg_obs2;
    unsigned short dkg_obs3;
    unsigned short dkg_apc;
    unsigned short dkg_rpm;
    unsigned short dkg_pcyl;
    unsigned short dkg_write_reinstruct;
    unsigned short dkg_read_reinstruct;
    unsigned short dkg_extra[7];
};

// x86 labels have 16 slices.
#define NDKMAP 16
#define V_NUMPAR 16
#define LEN_DKL_ASCII 128
#define LEN_DKL_VVOL 8
#define VTOC_SANE 0x600DDEEE
#define V_VERSION 1
enum {
    V_UNASSIGNED = 0x00,
    V_BOOT = 0x01,
    V_ROOT = 0x02,
    V_SWAP = 0x03,
    V_USR = 0x04,
    V_BACKUP = 0x05,
    V_STAND = 0x06,
    V_VAR = 0x07,
    V_HOME = 0x08,
    V_ALTSCTR = 0x09,
    V_CACHE = 0x0a,
    V_RESERVED = 0x0b,
    V_SYSTEM = 0x0c,
    V_UNKNOWN = 0xff,
};
enum { V_UNMNT = 0x01, V_RONLY = 0x10 };

struct partition {
    ushort_t p_tag;
    ushort_t p_flag;
    int32_t p_start;  // sectors
    int32_t p_size;   // sectors
};
struct vtoc {
    uint32_t v_bootinfo[3];
    uint32_t v_sanity;
    uint32_t v_version;
    char v_volume[LEN_DKL_VVOL];
    ushort_t v_sectorsz;
    ushort_t v_nparts;
    uint32_t v_reserved[10];
    struct partition v_part[V_NUMPAR];
    int32_t timestamp[V_NUMPAR];
    char v_asciilabel[LEN_DKL_ASCII];
};

// ---- the OpenBoot PROM device ------------------------------------------------------
struct openpromio {
    uint_t oprom_size;  // capacity in, length out
    union {
        char b[1];
        int i;
    } opio_u;
};
#define oprom_array opio_u.b
#define oprom_node opio_u.i
#define oprom_len opio_u.i
#define OPROMMAXPARAM 32768
#define OIOC ('O' << 8)
#define OPROMGETOPT (OIOC | 1)
#define OPROMNXTOPT (OIOC | 3)
#define OPROMNEXT (OIOC | 5)
#define OPROMCHILD (OIOC | 6)
#define OPROMGETPROP (OIOC | 7)
#define OPROMNXTPROP (OIOC | 8)
#define OPROMGETPROPLEN (OIOC | 17)
#define OPROMSETNODEID (OIOC | 19)

