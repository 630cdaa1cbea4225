#pragma once
// A capture of a real machine: every call of the scan passes through to the
// machine's own system and its answer is kept, so that the scan can be run
// again anywhere from the file `write` makes (a machine file, see
// MachineFile.h). Probe runs are kept through the probe tap.
#include <sys/types.h>

#include <array>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "common/sys/System.h"
#include "common/vartree/vtexec.h"

namespace replay {

class Sanitizer;

class Recorder : public sys::System, public VtProbeTap {
public:
    // `probes`: where probe output comes from when not from running them (a
    // replay being captured again); null: they run.
    explicit Recorder(sys::System& real, VtProbeTap* probes = nullptr);
    ~Recorder() override;

    // The hardware configuration file the scan loaded: not a system call,
    // but it shapes the tables.
    void keepHardwareConfig(const std::string& text) { m_hardwareConfig = text; m_hasHardwareConfig = true; }

    // The capture; `sanitizer` (may be null) takes identities out.
    void write(std::ostream& out, Sanitizer* sanitizer) const;

    long sysinfo(int command, char* buf, long count) override;
    long gethostid() override;
    pid_t getpid() override;
    long sysconf(int name) override;
    int swapctl(int cmd, void* arg) override;
    time_t time() override;
    void tzset(sys::TimeZone& zone) override { m_real.tzset(zone); }
    struct tm* localtime_r(const time_t* clock, struct tm* result) override { return m_real.localtime_r(clock, result); }
    void setutxent() override;
    struct utmpx* getutxent() override;
    void endutxent() override { m_real.endutxent(); }
    kstat_ctl_t* kstat_open() override;
    int kstat_close(kstat_ctl_t* kc) override { return m_real.kstat_close(kc); }
    kstat_t* kstat_lookup(kstat_ctl_t* kc, char* module, int instance, char* name) override
    {
        return m_real.kstat_lookup(kc, module, instance, name);
    }
    kid_t kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf) override;
    kid_t kstat_chain_update(kstat_ctl_t* kc) override { return m_real.kstat_chain_update(kc); }
    int getloadavg(double* loadavg, int nelem) override;
    int pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist) override;
    int p_online(processorid_t cpu, int flag) override;
    sys::Dir* opendir(const char* path) override;
    const char* readdir(sys::Dir* dir) override;
    int closedir(sys::Dir* dir) override;
    int open(const char* path, int flags) override;
    int openRegular(const char* path) override;
    int close(int fd) override;
    int ioctl(int fd, int request, void* arg) override;
    ssize_t read(int fd, void* buf, size_t count) override;
    long long lseek(int fd, long long offset, int whence) override;
    void* mmap(size_t length, int fd, long long offset) override;
    int munmap(void* addr, size_t length) override { return m_real.munmap(addr, length); }
    int statvfs64(const char* path, struct statvfs64* buf) override;
    void linesUsed(const char* path, const std::vector<std::string>& lines) override;
    void* dlopen(const char* path, int mode) override;
    // The zone reader's libraries answer through recording stand-ins.
    void* dlsym(void* handle, const char* symbol) override;
    int dlclose(void* handle) override { return m_real.dlclose(handle); }
    FILE* popen(const char* command, const char* mode) override;
    int pclose(FILE* stream) override;
    int runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines) override;

    bool replay(const std::string& command, std::string& output, int& status) override;
    void record(const std::string& command, const std::string& output, int status) override;

private:
    struct Output {
        std::string text;
        int status = 0;
        bool startFails = false;
    };
    // What a device or file answered.
    struct Device {
        bool opened = false;
        bool isFile = true;  // read from its start, neither seeked nor mapped nor controlled
        std::string fileText;
        std::map<unsigned long long, std::string> memory;
        bool mapFails = false;
        std::vector<std::string> diskKeys;  // "ctl=...", in the order first answered
        std::set<std::string> failing;      // disk controls that failed
        std::map<std::string, std::string> scsi;  // command block -> answer ("" failed)
        std::vector<std::pair<std::string, std::string>> promProperties;
    };
    struct OpenFile {
        std::string path;
        long long offset = 0;
    };
    struct CpuStat {
        int instance = 0;
        std::array<uint_t, 4> ticks{};  // idle, user, kernel, wait
        size_t size = 0;
        bool named = false, unreadable = false;
    };

public:
    // What the virtualization and resource-pool libraries answered
    // (RecordedLibraries.cpp fills it).
    struct PoolResource {
        std::string type, name;
        unsigned long long size = 0;
    };
    struct LibraryAnswers {
        std::map<void*, std::string> handles;                 // -> path
        std::map<std::string, std::set<std::string>> missing;  // path -> symbols not found
        bool envFails = false, nameFails = false, kzFails = false;
        std::string name, kzZoneName;
        std::set<std::string> poolFailing;
        std::map<const void*, std::string> pools;  // pool -> its name
        std::map<const void*, std::pair<std::string, size_t>> resources;  // resource or element -> pool, index
        std::map<const void*, std::pair<const void*, std::string>> values;  // value -> element, property
        std::map<std::string, std::vector<PoolResource>> byPool;
    };
    LibraryAnswers& libraries() { return m_libraryAnswers; }

private:
    // The capture's parts, in the order write() puts them.
    void writeEnvironment(std::ostream& out, Sanitizer* s) const;
    void writeIdentity(std::ostream& out, Sanitizer* s) const;
    void writeProcessors(std::ostream& out, Sanitizer* s) const;
    void writeDevices(std::ostream& out, Sanitizer* s) const;
    void writeLibraries(std::ostream& out, Sanitizer* s) const;
    void writeCommands(std::ostream& out, Sanitizer* s) const;
    void writeFailures(std::ostream& out, Sanitizer* s) const;

    void fail(const std::string& key, int error) { m_failures.emplace(key, error); }
    Device& deviceOf(int fd);
    int opened(const char* path, int fd);  // notes an open of `path` (fd, or -1 with errno)
    // Files of which the scan used only these lines (the PCI id database):
    // the capture keeps just them.
    std::map<std::string, std::set<std::string>> m_usedLines;

    sys::System& m_real;
    VtProbeTap* m_inner;  // where replayed probe output comes from
    std::map<std::string, int> m_failures;  // "open /x" -> errno
    std::map<int, std::string> m_sysinfo;
    bool m_hasHostid = false, m_hasPid = false;
    long m_hostid = 0;
    pid_t m_pid = 0;
    std::map<int, std::vector<long>> m_sysconf;
    std::vector<time_t> m_times;
    std::vector<std::array<double, 3>> m_loads;
    bool m_loadFails = false;
    std::vector<std::string> m_swap;  // machine-file lines
    std::set<int> m_swapAsked;
    int m_utmpxPasses = 0;
    std::vector<std::string> m_utmpx;
    bool m_kstatFails = false;
    std::vector<std::vector<CpuStat>> m_snapshots;
    std::map<kstat_ctl_t*, size_t> m_openChains;  // chain -> its snapshot
    long long m_bootTime = -1;
    std::string m_pset;
    bool m_psetAsked = false;
    std::map<processorid_t, std::string> m_online;
    std::map<std::string, std::vector<std::string>> m_directories;
    std::map<sys::Dir*, std::string> m_listing;  // open listings not yet recorded whole
    std::map<std::string, Device> m_devices;
    std::vector<std::string> m_deviceOrder;
    std::map<int, OpenFile> m_open;
    std::map<std::string, std::string> m_fileSystems;
    std::set<std::string> m_libraries;
    LibraryAnswers m_libraryAnswers;
    std::string m_hardwareConfig;
    bool m_hasHardwareConfig = false;
    std::map<std::string, Output> m_shells, m_commands, m_probes;
    std::vector<std::string> m_shellOrder, m_commandOrder;
    std::map<FILE*, int> m_streams;  // stream -> the status its pclose gives
};

}  // namespace replay
