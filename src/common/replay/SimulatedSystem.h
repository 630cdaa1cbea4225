#pragma once
// A simulated operating system: every facility of sys::System answers from
// data a test or a machine file sets up, and what is not set up fails the way
// a machine without it would (EINVAL, ENOENT). Install it for a scope with
// ScopedSystem.
#include <array>
#include <cerrno>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/sys/System.h"
#include "common/vartree/vtexec.h"

namespace replay {

// Also the probe tap of a replay: probes print what `probes` holds and are
// never run.
class SimulatedSystem : public sys::System, public VtProbeTap {
public:
    // identity and memory
    std::map<int, std::string> sysinfoValues;  // absent: -1, EINVAL
    long hostid = -1;
    std::map<int, long> sysconfValues;  // absent: -1, EINVAL
    // Answers that change from call to call (free memory, the clock, the
    // load): each call takes the next and keeps it as the value from then on.
    std::map<int, std::deque<long>> laterSysconf;
    std::deque<time_t> laterTimes;
    std::deque<std::array<double, 3>> laterLoadavg;

    struct SwapDevice {
        std::string path;
        long pages;
        long freePages;
    };
    int swapCount = 0;         // what SC_GETNSWP says
    int swapCountErrno = 0;    // with a count below 0
    std::vector<SwapDevice> swapDevices;  // what SC_LIST fills in
    int swapListResult = -2;   // -2: the number filled; otherwise returned as is
    int swapListErrno = 0;
    bool ainfoFails = false;
    int ainfoErrno = EINVAL;
    anoninfo ainfo = {0, 0, 0};

    // processor statistics
    struct Kstat {
        std::string module;
        int instance;
        std::string name;
        int type = KSTAT_TYPE_RAW;
        size_t dataSize = sizeof(cpu_stat_t);
        cpu_stat_t data{};
        std::vector<kstat_named_t> named;  // a named record's values, when it has any
        bool readFails = false;
        int snapshot = 0;  // 0: in every chain; N: in the chain of the Nth kstat_open and of later ones
    };
    bool kstatOpenFails = false;
    std::vector<Kstat> kstats;
    // A "cpu_stat" record for processor `instance` with these tick counters.
    void addCpuStat(int instance, uint_t idle, uint_t user, uint_t kernel, uint_t wait);
    int openKstatHandles() const { return m_openKstat; }
    int kstatSnapshots = 0;  // the last snapshot any record belongs to

    // "unix:0:system_misc" with the named value "boot_time".
    void addBootTime(long long seconds);

    // time and login records; the time zone is the process's own TZ, which
    // useMachineEnvironment sets from `environment`
    time_t now = 1700000000;  // 2023-11-14 22:13:20 UTC
    std::vector<struct utmpx> utmpxRecords;

    // small files by path: what reading them gives
    std::map<std::string, std::string> files;
    // mounted file systems' sizes by mount point; absent: ENOENT
    std::map<std::string, struct statvfs64> fileSystems;

    bool loadavgFails = false;
    double loadavg[3] = {0, 0, 0};

    // The processor set of the process (pset_info(PS_MYID)); the call that
    // fails (1 or 2), 0 for none. States by processor; absent or -1: the
    // call fails with EINVAL.
    std::vector<processorid_t> psetCpus;
    int psetFailsOnCall = 0;
    std::map<processorid_t, int> processorStates;

    // Directories by path: their entries in the order readdir gives them.
    std::map<std::string, std::vector<std::string>> directories;
    int openDirectories() const { return m_openDirs; }

    // devices that can be opened and controlled, read and mapped
    struct Device {
        int openErrno = 0;  // non-zero: open fails with it
        std::function<int(int request, void* arg)> ioctl;  // empty: ENOTTY
        // What read and mmap see: byte runs by their address (the memory
        // device's physical memory); zeros elsewhere.
        std::map<unsigned long long, std::string> memory;
        bool mapFails = false;  // mmap fails: readers fall back to seek and read
    };
    std::map<std::string, Device> devices;
    int openDescriptors() const { return static_cast<int>(m_open.size()); }

    // commands run through runCommand, by their arguments joined with blanks,
    // and through the shell (popen), by their text
    struct Command {
        std::string output;
        int status = 0;
        bool fails = false;  // the start fails
    };
    std::map<std::string, Command> commands;
    std::map<std::string, Command> shells;
    int lastTimeout = -1;  // what the last runCommand was given
    std::map<std::string, int> runs;  // how often each command ran: runCommand's line, "shell " and popen's text
    pid_t pid = 4242;
    int openStreams() const { return static_cast<int>(m_streams.size()); }

    // Run-time libraries by the path dlopen is given: they answer with the
    // fake libv12n and libpool below (tests/support/FakeLibraries.cpp), less
    // the functions named missing.
    struct Library {
        std::vector<std::string> missing;
    };
    std::map<std::string, Library> libraries;

    // Calls the machine is known to fail, by facility and key ("open
    // /etc/release", "sysinfo PLATFORM"), with their errno. Any other call
    // the data does not answer is listed in `unanswered`, once, in order.
    std::map<std::string, int> failures;
    std::vector<std::string> unanswered;

    // What the probe programs print, by name: not a system call, but a
    // machine's answer all the same.
    std::map<std::string, Command> probes;
    std::map<std::string, int> probeRuns;  // how often each was asked for
    // The environment variables of the scan, as the machine had them ("env"
    // lines): a name absent here was not set there. useMachineEnvironment
    // makes them the process's.
    std::map<std::string, std::string> environment;
    // The hardware configuration file a capture holds.
    std::string hardwareConfig;
    bool hasHardwareConfig = false;
    int openLibraries() const { return m_openLibraries; }

    struct V12n {
        std::string name;        // V12N_PROP_NAME
        std::string kzZoneName;  // V12N_PROP_KZ_ZONENAME
        bool envFails = false, nameFails = false, kzFails = false;
    } v12n;
    struct PoolResource {
        std::string type, name;
        unsigned long long size = 0;
    };
    struct Pools {
        std::string location = "/dev/poolctl";
        std::vector<std::string> failing;  // functions that fail when called
        std::map<std::string, std::vector<PoolResource>> byName;
        bool fails(const char* function) const;
    } pools;

    ~SimulatedSystem() override;

    long sysinfo(int command, char* buf, long count) override;
    long gethostid() override { return hostid; }
    pid_t getpid() override { return pid; }
    long sysconf(int name) override;
    time_t time() override;
    void tzset(sys::TimeZone& zone) override;
    struct tm* localtime_r(const time_t* clock, struct tm* result) override { return ::localtime_r(clock, result); }
    void setutxent() override { m_nextUtmpx = 0; }
    struct utmpx* getutxent() override;
    void endutxent() override { m_nextUtmpx = 0; }
    int swapctl(int cmd, void* arg) override;
    kstat_ctl_t* kstat_open() override;
    int kstat_close(kstat_ctl_t* kc) override;
    kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name) override;
    kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf) override;
    kid_t kstat_chain_update(kstat_ctl_t*) override { return 0; }
    int getloadavg(double* values, int nelem) override;
    int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist) override;
    int p_online(processorid_t cpu, int flag) override;
    sys::Dir* opendir(const char* path) override;
    const char* readdir(sys::Dir* dir) override;
    int closedir(sys::Dir* dir) override;
    int open(const char* path, int flags) override;
    int close(int fd) override;
    int ioctl(int fd, int request, void* arg) override;
    ssize_t read(int fd, void* buf, size_t count) override;
    long long lseek(int fd, long long offset, int whence) override;
    void* mmap(size_t length, int fd, long long offset) override;
    int munmap(void* addr, size_t length) override;
    int statvfs64(const char* path, struct statvfs64* buf) override;
    void* dlopen(const char* path, int mode) override;
    void* dlsym(void* handle, const char* symbol) override;
    int dlclose(void* handle) override;
    FILE* popen(const char* command, const char* mode) override;
    int pclose(FILE* stream) override;
    int runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines) override;
    bool replay(const std::string& command, std::string& output, int& status) override;
    void record(const std::string&, const std::string&, int) override {}

private:
    struct OpenDevice {
        std::string path;
        long long offset = 0;
        bool file = false;  // one of `files`
    };
    size_t m_nextUtmpx = 0;
    struct utmpx m_utmpx{};
    std::map<int, OpenDevice> m_open;
    void copyMemory(const Device& device, long long from, char* out, size_t length) const;
    // Fails an unanswered call: with the machine's own errno when it is a
    // known failure, otherwise with `error`, noting it as unanswered.
    template <typename T>
    T missing(const std::string& key, int error, T result);
    std::set<std::string> m_unanswered;
    int m_kstatOpens = 0;
    int m_nextFd = 1000;
    int m_openKstat = 0;
    int m_openDirs = 0;
    int m_openLibraries = 0;
    struct Stream {
        int status;                  // what pclose reports
        std::unique_ptr<char[]> text;  // what the stream reads, kept while it is open
    };
    std::map<FILE*, Stream> m_streams;
};

// The fake libv12n or libpool function of that name, or null; it answers
// from `owner` (null: the current system).
void* fakeLibraryFunction(const char* symbol, SimulatedSystem* owner = nullptr);

// Whether the scan reads this environment variable: the time zone, the
// locale's (LANG, LANGUAGE, LC_*) and the tape-backup switch. A capture
// records these, a replay sets them.
bool scanReadsVariable(const std::string& name);

// The process takes the machine's environment for all the scan reads of it:
// every such variable of this host is removed, the machine's are set (a
// machine without TZ is on UTC), and the time zone and the character locale
// are taken anew from them (a locale this host lacks: "C.UTF-8" for a UTF-8
// one, else "C"). Nothing of the replaying host's environment stays.
void useMachineEnvironment(const SimulatedSystem& os);

// Makes `fake` the current system for a scope.
class ScopedSystem {
public:
    explicit ScopedSystem(sys::System& fake) { sys::setCurrent(&fake); }
    ~ScopedSystem() { sys::setCurrent(nullptr); }
    ScopedSystem(const ScopedSystem&) = delete;
    ScopedSystem& operator=(const ScopedSystem&) = delete;
};

}  // namespace replay
