#include "common/replay/Recorder.h"

#include <sys/mman.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "common/replay/MachineFile.h"
#include "common/replay/Sanitizer.h"
#include "common/replay/SimulatedSystem.h"
#include "common/sys/Portable.h"
#include "common/sys/PosixSystem.h"

extern char** environ;

namespace replay {

namespace {

// A text as ">" lines, and the mark for a last line without its newline.
void writeLines(std::ostream& out, const std::string& text)
{
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out << "> " << line << "\n";
    if (!text.empty() && text.back() != '\n') out << "no-final-newline\n";
}

// The rule at the end of a compiled zone file of format 2 or later
// ("CET-1CEST,M3.5.0,M10.5.0/3"); empty when the file is not one.
std::string zoneFileRule(const std::string& path)
{
    std::string data;
    bool cut = false;
    if (!sys::readRegularFile(path.c_str(), data, 1 << 20, &cut) || cut) return "";  // zone files are a few KiB
    if (data.size() < 8 || data.compare(0, 4, "TZif") != 0 || data[4] < '2' || data.back() != '\n') return "";
    const size_t start = data.rfind('\n', data.size() - 2);
    if (start == std::string::npos) return "";
    const std::string rule = data.substr(start + 1, data.size() - start - 2);
    for (char c : rule)
        if (c < ' ' || c > '~') return "";
    return rule;
}

// The time zone the scan ran in, as a rule a replay needs no zone files
// for: TZ when it is a rule already, else the rule of the zone file it names
// (this host's /etc/localtime without TZ); else TZ as it is. `named` gets
// what TZ said when that was no rule.
std::string zoneRule(std::string& named)
{
    const char* tz = std::getenv("TZ");
    std::string name = tz ? tz : "";
    if (!name.empty() && name[0] == ':') name.erase(0, 1);
    const bool isFile = name.empty() || name.find('/') != std::string::npos ||
                        name.find_first_of("0123456789") == std::string::npos;
    if (!isFile) return name;
    named = tz ? tz : "unset, /etc/localtime";
    std::vector<std::string> paths;
    if (name.empty()) paths.push_back("/etc/localtime");
    else if (name[0] == '/') paths.push_back(name);
    else {
        if (const char* dir = std::getenv("TZDIR")) paths.push_back(std::string(dir) + "/" + name);
        paths.push_back("/usr/share/zoneinfo/" + name);
        paths.push_back("/usr/share/lib/zoneinfo/" + name);
    }
    for (const std::string& path : paths) {
        const std::string rule = zoneFileRule(path);
        if (!rule.empty()) return rule;
    }
    return tz ? tz : "";
}

std::string numberText(double value)
{
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.17g", value);
    return buffer;
}

// The leading bytes of an answer, less the zeros at its end (the reader
// zero-fills), but never empty: an empty answer is a failed one.
std::string trimmed(const char* data, size_t length)
{
    while (length > 1 && data[length - 1] == '\0') --length;
    return std::string(data, length);
}

// What a text is worth keeping as: sanitised when a sanitizer is given.
std::string clean(Sanitizer* s, const std::string& text) { return s ? s->text(text) : text; }

// The answers of a call made several times: the last ones left out when they
// repeat the one before, as the reader repeats the last.
template <typename T>
size_t keptAnswers(const std::vector<T>& answers)
{
    size_t n = answers.size();
    while (n > 1 && answers[n - 1] == answers[n - 2]) --n;
    return n;
}

}  // namespace

Recorder::Recorder(sys::System& real, VtProbeTap* probes) : m_real(real), m_inner(probes) {}

bool Recorder::replay(const std::string& command, std::string& output, int& status)
{
    if (!m_inner || !m_inner->replay(command, output, status)) return false;
    record(command, output, status);
    return true;
}

Recorder::~Recorder()
{
    for (auto& stream : m_streams) std::fclose(stream.first);
}

long Recorder::sysinfo(int command, char* buf, long count)
{
    // Asked with the room it needs, so the whole answer is kept.
    std::vector<char> whole(4096);
    const long n = m_real.sysinfo(command, whole.data(), static_cast<long>(whole.size()));
    const int error = errno;
    if (n < 0) {
        fail("sysinfo " + nameOf(sysinfoNames(), command), error);
    } else if (!m_sysinfo.count(command)) {
        m_sysinfo[command] = std::string(whole.data());
    }
    if (n >= 0 && buf && count > 0) {
        std::snprintf(buf, static_cast<size_t>(count), "%s", whole.data());
    }
    errno = error;
    return n < 0 ? n : static_cast<long>(std::strlen(whole.data())) + 1;
}

long Recorder::gethostid()
{
    m_hostid = m_real.gethostid();
    m_hasHostid = true;
    return m_hostid;
}

pid_t Recorder::getpid()
{
    m_pid = m_real.getpid();
    m_hasPid = true;
    return m_pid;
}

long Recorder::sysconf(int name)
{
    const long value = m_real.sysconf(name);
    const int error = errno;
    if (value < 0 && error)
        fail("sysconf " + nameOf(sysconfNames(), name), error);
    else
        m_sysconf[name].push_back(value);
    errno = error;
    return value;
}

int Recorder::swapctl(int cmd, void* arg)
{
    const int result = m_real.swapctl(cmd, arg);
    const int error = errno;
    if (m_swapAsked.insert(cmd).second) {
        if (cmd == SC_GETNSWP) {
            m_swap.push_back("swap-count " + std::to_string(result));
        } else if (cmd == SC_LIST) {
            const auto* table = static_cast<const swaptbl_t*>(arg);
            if (result < 0) {
                m_swap.push_back("swap-list -1 " + errnoName(error));
            } else {
                for (int i = 0; i < result && i < table->swt_n; ++i) {
                    const swapent& e = table->swt_ent[i];
                    m_swap.push_back(std::string("swap ") + (e.ste_path ? e.ste_path : "-") + " " +
                                     std::to_string(e.ste_pages) + " " + std::to_string(e.ste_free));
                }
            }
        } else if (cmd == SC_AINFO) {
            const auto* a = static_cast<const anoninfo*>(arg);
            m_swap.push_back(result < 0 ? std::string("anoninfo-fails")
                                        : "anoninfo " + std::to_string(a->ani_max) + " " + std::to_string(a->ani_free) +
                                              " " + std::to_string(a->ani_resv));
        }
    }
    errno = error;
    return result;
}

time_t Recorder::time()
{
    const time_t now = m_real.time();
    m_times.push_back(now);
    return now;
}

void Recorder::setutxent()
{
    ++m_utmpxPasses;
    m_real.setutxent();
}

struct utmpx* Recorder::getutxent()
{
    struct utmpx* u = m_real.getutxent();
    // The first reading is kept whole: every later one reads the same file.
    if (u && m_utmpxPasses <= 1) {
        const long seconds = static_cast<long>(u->ut_tv.tv_sec);
        if (u->ut_type == BOOT_TIME) {
            m_utmpx.push_back("utmpx boot " + std::to_string(seconds));
        } else if (u->ut_type == RUN_LVL) {
            const char* line = u->ut_line;
            const size_t n = sys::boundedLength(line, sizeof u->ut_line);
            if (n > 10) m_utmpx.push_back("utmpx run-level " + std::string(1, line[10]) + " " + std::to_string(seconds));
        }
    }
    return u;
}

kstat_ctl_t* Recorder::kstat_open()
{
    kstat_ctl_t* kc = m_real.kstat_open();
    if (!kc) {
        m_kstatFails = true;
        return kc;
    }
    // Each opening sees its own chain: the processors' counters as they were then.
    m_snapshots.emplace_back();
    for (kstat_t* k = kc->kc_chain; k; k = k->ks_next) {
        int instance;
        char tail;
        if (std::strcmp(k->ks_module, "cpu_stat") != 0 ||
            std::sscanf(k->ks_name, "cpu_stat%d%c", &instance, &tail) != 1 || instance != k->ks_instance)
            continue;
        CpuStat s;
        s.instance = k->ks_instance;
        s.size = k->ks_data_size;
        s.named = k->ks_type == KSTAT_TYPE_NAMED;
        m_snapshots.back().push_back(s);
    }
    m_openChains[kc] = m_snapshots.size() - 1;
    return kc;
}

kid_t Recorder::kstat_read(kstat_ctl_t* kc, kstat_t* ksp, void* buf)
{
    const kid_t result = m_real.kstat_read(kc, ksp, buf);
    if (!ksp) return result;
    const int error = errno;
    if (std::strcmp(ksp->ks_module, "unix") == 0 && std::strcmp(ksp->ks_name, "system_misc") == 0 && result != -1 &&
        ksp->ks_data) {
        const auto* named = static_cast<const kstat_named_t*>(ksp->ks_data);
        for (uint_t i = 0; i < ksp->ks_ndata; ++i)
            if (std::strcmp(named[i].name, "boot_time") == 0)
                m_bootTime = named[i].data_type == KSTAT_DATA_UINT64  ? static_cast<long long>(named[i].value.ui64)
                             : named[i].data_type == KSTAT_DATA_INT32 ? named[i].value.i32
                                                                      : named[i].value.ui32;
    }
    auto chain = m_openChains.find(kc);
    if (chain != m_openChains.end() && std::strcmp(ksp->ks_module, "cpu_stat") == 0) {
        for (CpuStat& s : m_snapshots[chain->second]) {
            if (s.instance != ksp->ks_instance) continue;
            if (result == -1) {
                s.unreadable = true;
            } else if (!s.named && ksp->ks_data_size >= sizeof(cpu_stat_t)) {
                const void* data = buf ? buf : ksp->ks_data;
                if (data) {
                    cpu_stat_t stat;
                    std::memcpy(&stat, data, sizeof stat);
                    s.ticks = {stat.cpu_sysinfo.cpu[CPU_IDLE], stat.cpu_sysinfo.cpu[CPU_USER],
                               stat.cpu_sysinfo.cpu[CPU_KERNEL], stat.cpu_sysinfo.cpu[CPU_WAIT]};
                }
            }
        }
    }
    errno = error;
    return result;
}

int Recorder::getloadavg(double* loadavg, int nelem)
{
    const int n = m_real.getloadavg(loadavg, nelem);
    if (n < 0) {
        m_loadFails = true;
    } else {
        std::array<double, 3> values{};
        for (int i = 0; i < n && i < 3; ++i) values[static_cast<size_t>(i)] = loadavg[i];
        m_loads.push_back(values);
    }
    return n;
}

int Recorder::pset_info(psetid_t pset, int* type, uint_t* numcpus, processorid_t* cpulist)
{
    const int result = m_real.pset_info(pset, type, numcpus, cpulist);
    const int error = errno;
    // The list call settles it: the count call alone gives numbered processors.
    if (!m_psetAsked || (cpulist && m_pset.rfind("pset-fails", 0) != 0)) {
        if (result < 0) {
            m_pset = cpulist ? "pset-fails 2" : "pset-fails 1";
        } else {
            m_pset = "pset";
            for (uint_t i = 0; numcpus && i < *numcpus; ++i)
                m_pset += " " + std::to_string(cpulist ? cpulist[i] : static_cast<processorid_t>(i));
        }
        m_psetAsked = true;
    }
    errno = error;
    return result;
}

int Recorder::p_online(processorid_t cpu, int flag)
{
    const int state = m_real.p_online(cpu, flag);
    const int error = errno;
    if (!m_online.count(cpu)) {
        m_online[cpu] = state == P_ONLINE    ? "on"
                        : state == P_OFFLINE ? "off"
                        : state == P_NOINTR  ? "noint"
                        : state == P_FAULTED ? "faulted"
                                             : "fails";
    }
    errno = error;
    return state;
}

sys::Dir* Recorder::opendir(const char* path)
{
    sys::Dir* dir = m_real.opendir(path);
    const std::string p = path ? path : "";
    if (!dir) {
        fail("opendir " + p, errno);
    } else if (!m_directories.count(p)) {
        m_directories[p];
        m_listing[dir] = p;
    }
    return dir;
}

const char* Recorder::readdir(sys::Dir* dir)
{
    const char* name = m_real.readdir(dir);
    auto it = m_listing.find(dir);
    if (name && it != m_listing.end()) m_directories[it->second].push_back(name);
    return name;
}

int Recorder::closedir(sys::Dir* dir)
{
    m_listing.erase(dir);
    return m_real.closedir(dir);
}

Recorder::Device& Recorder::deviceOf(int fd)
{
    const std::string& path = m_open[fd].path;
    return m_devices[path];
}

int Recorder::open(const char* path, int flags) { return opened(path, m_real.open(path, flags)); }
int Recorder::openRegular(const char* path) { return opened(path, m_real.openRegular(path)); }

int Recorder::opened(const char* path, int fd)
{
    const std::string p = path ? path : "";
    if (fd < 0) {
        fail("open " + p, errno);
        return fd;
    }
    if (!m_devices.count(p)) m_deviceOrder.push_back(p);
    Device& d = m_devices[p];
    d.opened = true;
    m_open[fd] = OpenFile{p, 0};
    return fd;
}

int Recorder::close(int fd)
{
    m_open.erase(fd);
    return m_real.close(fd);
}

ssize_t Recorder::read(int fd, void* buf, size_t count)
{
    const ssize_t n = m_real.read(fd, buf, count);
    auto it = m_open.find(fd);
    if (n > 0 && it != m_open.end()) {
        Device& d = deviceOf(fd);
        const std::string bytes(static_cast<const char*>(buf), static_cast<size_t>(n));
        if (d.isFile && it->second.offset == static_cast<long long>(d.fileText.size()))
            d.fileText += bytes;
        else if (!d.isFile)
            d.memory[static_cast<unsigned long long>(it->second.offset)] = bytes;
        it->second.offset += n;
    }
    return n;
}

long long Recorder::lseek(int fd, long long offset, int whence)
{
    const long long at = m_real.lseek(fd, offset, whence);
    auto it = m_open.find(fd);
    if (it != m_open.end() && at >= 0) {
        it->second.offset = at;
        deviceOf(fd).isFile = false;
    }
    return at;
}

void* Recorder::mmap(size_t length, int fd, long long offset)
{
    void* map = m_real.mmap(length, fd, offset);
    if (m_open.count(fd)) {
        Device& d = deviceOf(fd);
        d.isFile = false;
        if (map == MAP_FAILED)
            d.mapFails = true;
        else
            d.memory[static_cast<unsigned long long>(offset)] = std::string(static_cast<const char*>(map), length);
    }
    return map;
}

int Recorder::ioctl(int fd, int request, void* arg)
{
    const int result = m_real.ioctl(fd, request, arg);
    const int error = errno;
    if (!m_open.count(fd) || !arg) return result;
    Device& d = deviceOf(fd);
    d.isFile = false;
    auto key = [&d](const std::string& name, const std::string& value) {
        for (const std::string& k : d.diskKeys)
            if (k.rfind(name + "=", 0) == 0) return;
        d.diskKeys.push_back(name + "=" + value);
    };
    auto joined = [](const std::vector<std::string>& values) {
        std::string out;
        for (const std::string& v : values) out += (out.empty() ? "" : ",") + v;
        return out;
    };
    switch (request) {
    case DKIOCINFO: {
        if (result < 0) {
            d.failing.insert("DKIOCINFO");
            break;
        }
        const auto* c = static_cast<const dk_cinfo*>(arg);
        key("ctl", std::string(c->dki_cname, sys::boundedLength(c->dki_cname, DK_DEVLEN)) + "," + std::to_string(c->dki_ctype) +
                       "," + std::to_string(c->dki_cnum) + "," + std::to_string(c->dki_unit) + "," +
                       std::string(c->dki_dname, sys::boundedLength(c->dki_dname, DK_DEVLEN)));
        break;
    }
    case DKIOCGGEOM: {
        if (result < 0) {
            d.failing.insert("DKIOCGGEOM");
            break;
        }
        const auto* g = static_cast<const dk_geom*>(arg);
        key("geom", std::to_string(g->dkg_ncyl) + "," + std::to_string(g->dkg_nhead) + "," + std::to_string(g->dkg_nsect));
        break;
    }
    case DKIOCGVTOC: {
        if (result < 0) {
            d.failing.insert("DKIOCGVTOC");
            break;
        }
        const auto* v = static_cast<const vtoc*>(arg);
        std::vector<std::string> tags, sizes;
        for (int i = 0; i < v->v_nparts && i < V_NUMPAR; ++i) {
            tags.push_back(std::to_string(v->v_part[i].p_tag));
            sizes.push_back(std::to_string(static_cast<uint32_t>(v->v_part[i].p_size)));
        }
        key("sectorsz", std::to_string(v->v_sectorsz));
        key("tags", joined(tags));
        key("sizes", joined(sizes));
        std::string label(v->v_asciilabel, sys::boundedLength(v->v_asciilabel, LEN_DKL_ASCII));
        std::replace(label.begin(), label.end(), '"', '\'');
        key("label", "\"" + label + "\"");
        break;
    }
    case USCSICMD: {
        const auto* block = static_cast<const uscsi_cmd*>(arg);
        if (!block->uscsi_cdb || !block->uscsi_cdblen) break;
        const std::string cdb(block->uscsi_cdb, block->uscsi_cdblen);
        const bool ok = result >= 0 && block->uscsi_status == 0 && block->uscsi_bufaddr;
        if (!d.scsi.count(cdb)) d.scsi[cdb] = ok ? trimmed(block->uscsi_bufaddr, block->uscsi_buflen) : std::string();
        break;
    }
    case OPROMGETPROP: {
        const auto* p = static_cast<const openpromio*>(arg);
        if (result >= 0 && p->oprom_size > 0) {
            // The name went in and the value came back in the same buffer:
            // the name is the one the last OPROMNXTPROP gave.
            if (!d.promProperties.empty() && d.promProperties.back().second.empty())
                d.promProperties.back().second = std::string(p->oprom_array, sys::boundedLength(p->oprom_array, p->oprom_size));
        }
        break;
    }
    case OPROMNXTPROP: {
        const auto* p = static_cast<const openpromio*>(arg);
        if (result >= 0 && p->oprom_size > 0 && p->oprom_array[0]) d.promProperties.emplace_back(p->oprom_array, "");
        break;
    }
    default: break;
    }
    errno = error;
    return result;
}

int Recorder::statvfs64(const char* path, struct statvfs64* buf)
{
    const int result = m_real.statvfs64(path, buf);
    const std::string p = path ? path : "";
    if (result < 0) {
        fail("statvfs " + p, errno);
    } else if (buf && !m_fileSystems.count(p)) {
        m_fileSystems[p] = std::to_string(buf->f_frsize) + " " + std::to_string(buf->f_blocks) + " " +
                           std::to_string(buf->f_bfree) + " " + std::to_string(buf->f_bavail) + " " +
                           std::to_string(buf->f_bsize);
    }
    return result;
}

void* Recorder::dlopen(const char* path, int mode)
{
    void* handle = m_real.dlopen(path, mode);
    if (!handle) {
        fail(std::string("dlopen ") + (path ? path : ""), ENOENT);
    } else {
        m_libraries.insert(path ? path : "");
        m_libraryAnswers.handles[handle] = path ? path : "";
    }
    return handle;
}

FILE* Recorder::popen(const char* command, const char* mode)
{
    const std::string text = command ? command : "";
    FILE* real = m_real.popen(command, mode);
    if (!m_shells.count(text)) m_shellOrder.push_back(text);
    Output& out = m_shells[text];
    if (!real) {
        out.startFails = true;
        return nullptr;
    }
    // Read to the end here and hand the scan a copy: what it reads is what is kept.
    std::string all;
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, real)) > 0;) all.append(buffer, n);
    const int status = m_real.pclose(real);
    out.text = all;
    out.status = status >= 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    FILE* copy = std::tmpfile();
    if (!copy) return nullptr;
    std::fwrite(all.data(), 1, all.size(), copy);
    std::rewind(copy);
    m_streams[copy] = status;
    return copy;
}

int Recorder::pclose(FILE* stream)
{
    auto it = m_streams.find(stream);
    if (it == m_streams.end()) return m_real.pclose(stream);
    const int status = it->second;
    std::fclose(stream);
    m_streams.erase(it);
    return status;
}

int Recorder::runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines)
{
    const int status = m_real.runCommand(argv, timeoutSeconds, lines);
    const int error = errno;
    std::string joined;
    for (const std::string& a : argv) joined += (joined.empty() ? "" : " ") + a;
    if (!m_commands.count(joined)) {
        m_commandOrder.push_back(joined);
        Output& out = m_commands[joined];
        out.startFails = status < 0;
        out.status = status;
        for (const std::string& line : lines) out.text += line + "\n";
    }
    errno = error;
    return status;
}

void Recorder::linesUsed(const char* path, const std::vector<std::string>& lines)
{
    if (path) m_usedLines[path].insert(lines.begin(), lines.end());
}

void Recorder::record(const std::string& command, const std::string& output, int status)
{
    Output& out = m_probes[command];
    out.text = output;
    out.status = status;
}

// The environment variables the scan reads, and the hardware configuration.
void Recorder::writeEnvironment(std::ostream& out, Sanitizer* s) const
{
    // What the scan reads from its environment: the time zone, the locale,
    // and the switch of the tape-backup check. A replay takes these and
    // nothing of its own host's: what is not here was not set.
    std::map<std::string, std::string> environment;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string text = *entry;
        const size_t equals = text.find('=');
        if (equals != std::string::npos && text.compare(0, equals, "TZ") != 0 &&
            scanReadsVariable(text.substr(0, equals)))
            environment[text.substr(0, equals)] = text.substr(equals + 1);
    }
    std::string zoneName;
    const std::string zone = zoneRule(zoneName);
    if (!zoneName.empty() && zone != zoneName) out << "# TZ " << zoneName << ", kept as its zone file's rule\n";
    if (!zone.empty()) out << "env TZ " << zone << "\n";
    for (const auto& v : environment) out << "env " << v.first << " " << v.second << "\n";
    if (m_hasHardwareConfig) {
        out << "hwconfig\n";
        writeLines(out, m_hardwareConfig);
    }
}

// sysinfo, the host id, the process id, sysconf figures and swap.
void Recorder::writeIdentity(std::ostream& out, Sanitizer* s) const
{
    out << "\n# identity and memory\n";
    for (const auto& v : m_sysinfo) {
        const std::string name = nameOf(sysinfoNames(), v.first);
        std::string value = v.second;
        if (s && v.first == SI_HW_SERIAL) value = std::to_string(s->hostid(std::strtoul(value.c_str(), nullptr, 10)));
        if (s && v.first != SI_HW_SERIAL) value = s->text(value);
        out << "sysinfo " << name << " " << value << "\n";
    }
    if (m_hasHostid) {
        const unsigned long id = static_cast<unsigned long>(m_hostid) & 0xFFFFFFFFul;
        out << "hostid " << (s ? s->hostid(id) : id) << "\n";
    }
    if (m_hasPid) out << "pid " << m_pid << "\n";
    for (const auto& v : m_sysconf)
        for (size_t i = 0; i < keptAnswers(v.second); ++i)
            out << "sysconf " << nameOf(sysconfNames(), v.first) << " " << v.second[i] << "\n";
    for (const std::string& line : m_swap) out << clean(s, line) << "\n";
}

// The clock, the login records, load averages, processor sets and states, kernel statistics.
void Recorder::writeProcessors(std::ostream& out, Sanitizer* s) const
{
    out << "\n# time, load and processors\n";
    for (size_t i = 0; i < keptAnswers(m_times); ++i) out << "time " << static_cast<long long>(m_times[i]) << "\n";
    for (const std::string& line : m_utmpx) out << line << "\n";
    if (m_bootTime >= 0) out << "boot-time " << m_bootTime << "\n";
    if (m_loadFails) out << "loadavg-fails\n";
    for (size_t i = 0; i < keptAnswers(m_loads); ++i)
        out << "loadavg " << numberText(m_loads[i][0]) << " " << numberText(m_loads[i][1]) << " "
            << numberText(m_loads[i][2]) << "\n";
    if (!m_pset.empty()) out << m_pset << "\n";
    for (const auto& p : m_online) out << "online " << p.first << " " << p.second << "\n";
    if (m_kstatFails) out << "kstat-fails\n";
    for (const auto& snapshot : m_snapshots) {
        out << "kstat-snapshot\n";
        for (const CpuStat& c : snapshot) {
            out << "cpu_stat " << c.instance << " " << c.ticks[0] << " " << c.ticks[1] << " " << c.ticks[2] << " "
                << c.ticks[3];
            if (c.size != sizeof(cpu_stat_t)) out << " size " << c.size;
            if (c.named) out << " named";
            if (c.unreadable) out << " unreadable";
            out << "\n";
        }
    }
}

// Folders, files (the PCI id database cut to the lines used), firmware, disks, PROM properties and file systems.
void Recorder::writeDevices(std::ostream& out, Sanitizer* s) const
{
    out << "\n# files, directories and devices\n";
    for (const auto& d : m_directories) {
        out << "dir " << clean(s, d.first) << "\n";
        for (const std::string& entry : d.second) out << "> " << clean(s, entry) << "\n";
    }
    std::vector<std::pair<std::string, std::string>> prom;
    for (const std::string& path : m_deviceOrder) {
        const Device& d = m_devices.at(path);
        const std::string shown = clean(s, path);
        if (d.isFile) {
            auto used = m_usedLines.find(path);
            if (used == m_usedLines.end()) {
                out << "file " << shown << "\n";
                writeLines(out, clean(s, d.fileText));
                continue;
            }
            // Of a large database only what the scan looked up: a replay
            // names the same devices from these lines.
            std::istringstream lines(d.fileText);
            std::string kept;
            size_t read = 0, shownLines = 0;
            for (std::string line; std::getline(lines, line); ++read) {
                if (!line.empty() && line.back() == '\r') line.pop_back();
                if (used->second.count(line)) kept += line + "\n", ++shownLines;
            }
            out << "# " << shown << ": only the " << shownLines << " lines the scan looked up, of the " << read
                << " it read\n";
            out << "file " << shown << "\n";
            writeLines(out, clean(s, kept));
            continue;
        }
        if (!d.promProperties.empty()) {
            prom = d.promProperties;
            continue;
        }
        if (!d.memory.empty() || d.mapFails) {
            // Firmware: the SMBIOS table's place is in its entry point.
            unsigned long long tableAddress = 0;
            size_t tableLength = 0;
            for (const auto& run : d.memory) {
                const size_t at = run.second.find("_SM_");
                const size_t at3 = run.second.find("_SM3_");
                if (at != std::string::npos && at + 0x1C <= run.second.size()) {
                    const auto* e = reinterpret_cast<const unsigned char*>(run.second.data() + at);
                    tableLength = static_cast<size_t>(e[0x16] | (e[0x17] << 8));
                    tableAddress = static_cast<unsigned long long>(e[0x18] | (e[0x19] << 8) | (e[0x1A] << 16)) |
                                   (static_cast<unsigned long long>(e[0x1B]) << 24);
                } else if (at3 != std::string::npos && at3 + 0x18 <= run.second.size()) {
                    const auto* e = reinterpret_cast<const unsigned char*>(run.second.data() + at3);
                    tableLength = static_cast<size_t>(e[0x0C] | (e[0x0D] << 8) | (e[0x0E] << 16));
                    for (int i = 7; i >= 0; --i) tableAddress = (tableAddress << 8) | e[0x10 + i];
                }
            }
            if (d.mapFails) out << "fails mmap " << shown << " ENODEV\n";
            for (const auto& run : d.memory) {
                const std::string bytes = s ? s->firmware(run.second, run.first, tableAddress, tableLength) : run.second;
                // Runs of zeros are left out: the reader zero-fills.
                for (size_t at = 0; at < bytes.size();) {
                    const size_t start = bytes.find_first_not_of('\0', at);
                    if (start == std::string::npos) break;
                    size_t end = start;
                    for (size_t zeros = 0; end < bytes.size() && zeros < 64; ++end) zeros = bytes[end] ? 0 : zeros + 1;
                    while (end > start && bytes[end - 1] == '\0') --end;
                    char address[32];
                    std::snprintf(address, sizeof address, "0x%llx", run.first + start);
                    out << "memory " << shown << " " << address << " " << toHex(bytes.substr(start, end - start))
                        << "\n";
                    at = end;
                }
            }
            continue;
        }
        // A disk: its controls' answers, then the path that answers as it.
        std::string name = shown.substr(shown.rfind('/') + 1);
        out << "disk " << name;
        for (const std::string& k : d.diskKeys) out << " " << k;
        if (!d.failing.empty()) {
            std::string failing;
            for (const std::string& f : d.failing) failing += (failing.empty() ? "" : ",") + f;
            out << " fails=" << failing;
        }
        out << "\n";
        for (const auto& c : d.scsi)
            out << "scsi " << name << " " << toHex(c.first) << " "
                << (c.second.empty() ? "fails" : toHex(s ? s->scsiAnswer(c.first, c.second) : c.second)) << "\n";
        out << "device " << shown << " " << name << "\n";
    }
    for (const auto& p : prom) out << "prom-property " << p.first << " " << clean(s, p.second) << "\n";
    for (const auto& f : m_fileSystems) out << "statvfs " << f.first << " " << f.second << "\n";
}

// The run-time libraries and what libv12n and libpool answered.
void Recorder::writeLibraries(std::ostream& out, Sanitizer* s) const
{
    const LibraryAnswers& l = m_libraryAnswers;
    for (const std::string& library : m_libraries) {
        out << "library " << library;
        auto missing = l.missing.find(library);
        if (missing != l.missing.end()) {
            out << " missing";
            for (const std::string& symbol : missing->second) out << " " << symbol;
        }
        out << "\n";
    }
    if (l.envFails) out << "v12n env-fails\n";
    if (l.nameFails) out << "v12n name-fails\n";
    if (l.kzFails) out << "v12n kz-fails\n";
    if (!l.name.empty()) out << "v12n name " << clean(s, l.name) << "\n";
    if (!l.kzZoneName.empty()) out << "v12n kz-zonename " << clean(s, l.kzZoneName) << "\n";
    for (const std::string& function : l.poolFailing) out << "pool-fails " << function << "\n";
    for (const auto& pool : l.byPool)
        for (const PoolResource& r : pool.second)
            out << "pool " << pool.first << " " << (r.type.empty() ? "-" : r.type) << " "
                << (r.name.empty() ? "-" : r.name) << " " << r.size << "\n";
}

// Shell lines, commands and probes, each with its output and status.
void Recorder::writeCommands(std::ostream& out, Sanitizer* s) const
{
    out << "\n# commands\n";
    auto commands = [&out, s](const char* kind, const std::vector<std::string>& order,
                              const std::map<std::string, Output>& outputs) {
        for (const std::string& command : order) {
            const Output& o = outputs.at(command);
            out << kind << " " << clean(s, command) << "\n";
            if (o.startFails) {
                out << "start-fails\n";
                continue;
            }
            writeLines(out, clean(s, o.text));
            if (o.status != 0) out << "exit " << o.status << "\n";
        }
    };
    commands("shell", m_shellOrder, m_shells);
    commands("run", m_commandOrder, m_commands);
    for (const auto& p : m_probes) {
        out << "probe " << p.first << "\n";
        writeLines(out, clean(s, p.second.text));
        if (p.second.status != 0) out << "exit " << p.second.status << "\n";
    }
}

// The calls the machine failed, with their errno.
void Recorder::writeFailures(std::ostream& out, Sanitizer* s) const
{
    if (!m_failures.empty()) out << "\n# calls the machine failed\n";
    for (const auto& f : m_failures) out << "fails " << clean(s, f.first) << " " << errnoName(f.second) << "\n";
}

void Recorder::write(std::ostream& out, Sanitizer* s) const
{
    out << kFormatWord << " " << kFormatVersion << "\n";
    out << "# what a machine answered to one scan" << (s ? " (sanitized)" : "") << "\n";
    writeEnvironment(out, s);
    writeIdentity(out, s);
    writeProcessors(out, s);
    writeDevices(out, s);
    writeLibraries(out, s);
    writeCommands(out, s);
    writeFailures(out, s);
    out << kEndWord << "\n";
}

}  // namespace replay
