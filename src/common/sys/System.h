#pragma once
// The operating-system facilities the scanner uses, and nothing else. Each
// keeps the Solaris call's shape, constants and structures, so group code
// reads like the calls it makes; failures set errno as the real call would.
//
// Implementations: Solaris (plain forwarding), Linux (real answers from
// procfs, sysfs and glibc; what Linux lacks fails as on a Solaris machine
// without it), and the fake in tests/support.
#include <fcntl.h>
#include <sys/statvfs.h>
#include <sys/types.h>
#include <utmpx.h>

#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "common/sys/SolarisTypes.h"

namespace sys {

// An open directory listing; opaque to callers.
class Dir {
public:
    virtual ~Dir() = default;
};

// What tzset(3C) leaves in its globals: seconds west of UTC in standard and
// in summer time (`timezone`, `altzone`), whether the zone has summer time
// (`daylight`), and the two names (`tzname`).
struct TimeZone {
    long timezone = 0;
    long altzone = 0;
    int daylight = 0;
    std::string standardName;
    std::string summerName;
};

class System {
public:
    virtual ~System() = default;

    // ---- identity and memory
    // Solaris sysinfo(2): the length needed with its NUL, or -1.
    virtual long sysinfo(int command, char* buf, long count) = 0;
    virtual long gethostid() = 0;
    virtual pid_t getpid() = 0;  // appears in commands the scanner runs
    virtual long sysconf(int name) = 0;
    virtual int swapctl(int cmd, void* arg) = 0;

    // ---- time, the time zone and the login records (utmpx)
    virtual time_t time() = 0;
    virtual void tzset(TimeZone& zone) = 0;
    virtual struct tm* localtime_r(const time_t* clock, struct tm* result) = 0;
    virtual void setutxent() = 0;
    // The next record, or null at the end; valid until the next call. A
    // run-level record holds "run-level N" in ut_line, as Solaris writes it.
    virtual struct utmpx* getutxent() = 0;
    virtual void endutxent() = 0;

    // ---- processor statistics
    virtual kstat_ctl_t* kstat_open() = 0;
    virtual int kstat_close(kstat_ctl_t* kc) = 0;
    // Writable names on purpose: older libkstat takes `char*`.
    virtual kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name) = 0;
    virtual kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf) = 0;
    virtual kid_t kstat_chain_update(kstat_ctl_t* kc) = 0;
    virtual int getloadavg(double* loadavg, int nelem) = 0;
    virtual int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist) = 0;
    virtual int p_online(processorid_t cpu, int flag) = 0;

    // ---- files and devices: small system files, the raw-disk directory, disk, SCSI and PROM controls,
    // physical memory through the memory device
    virtual Dir* opendir(const char* path) = 0;
    virtual const char* readdir(Dir* dir) = 0;  // the next entry's name; null at the end
    virtual int closedir(Dir* dir) = 0;
    virtual int open(const char* path, int flags) = 0;
    // A file to read, opened only when it is a regular file (checked on the
    // open descriptor, the open never waiting on a FIFO's writer): a FIFO, a
    // device or a socket gives -1 with EINVAL, a folder EISDIR. Simulated
    // files are text in memory, so the default is a plain open.
    virtual int openRegular(const char* path) { return open(path, O_RDONLY); }
    virtual int close(int fd) = 0;
    virtual int ioctl(int fd, int request, void* arg) = 0;
    virtual ssize_t read(int fd, void* buf, size_t count) = 0;
    virtual long long lseek(int fd, long long offset, int whence) = 0;
    // Shared, read-only; MAP_FAILED on failure. The offset is 64-bit (mmap64).
    virtual void* mmap(size_t length, int fd, long long offset) = 0;
    virtual int munmap(void* addr, size_t length) = 0;
    // A mounted file system's sizes; the 64-bit form, so a 32-bit build
    // sees file systems beyond 2^32 blocks.
    virtual int statvfs64(const char* path, struct statvfs64* buf) = 0;
    // A reader that looked a few lines up in a large file (the PCI id
    // database) names them after reading it: a recorder keeps only those.
    // Answers nothing and changes nothing.
    virtual void linesUsed(const char* /*path*/, const std::vector<std::string>& /*lines*/) {}

    // ---- run-time libraries
    virtual void* dlopen(const char* path, int mode) = 0;
    virtual void* dlsym(void* handle, const char* symbol) = 0;
    virtual int dlclose(void* handle) = 0;

    // ---- commands
    virtual FILE* popen(const char* command, const char* mode) = 0;
    virtual int pclose(FILE* stream) = 0;
    // Runs argv[0] (looked up on PATH) with argv, no shell, standard output
    // split into `lines`. The exit status; -1 when it could not run, was
    // killed, or outlived `timeoutSeconds` (errno ETIMEDOUT; 0: no limit).
    virtual int runCommand(const std::vector<std::string>& argv, int timeoutSeconds,
                           std::vector<std::string>& lines) = 0;
};

// The process-wide instance: the platform's own unless a test or a replay
// has swapped in another.
System& current();
// Makes `replacement` current (not owned); null restores the platform's own.
void setCurrent(System* replacement);

// The platform's own implementation.
System& platform();

}  // namespace sys
