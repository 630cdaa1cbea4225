#include "common/replay/MachineFile.h"
#include "common/replay/SimulatedDisks.h"
#include "common/replay/SimulatedFirmware.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <cerrno>
#include <fstream>
#include <map>
#include <sstream>
#include <streambuf>

#include "common/sys/PosixSystem.h"
#include "common/vartree/vtexec.h"

namespace replay {

const std::map<std::string, int>& sysconfNames()
{
    static const std::map<std::string, int> names = {
        {"PAGESIZE", _SC_PAGESIZE},
        {"PHYS_PAGES", _SC_PHYS_PAGES},
        {"AVPHYS_PAGES", _SC_AVPHYS_PAGES},
        {"NPROCESSORS_CONF", _SC_NPROCESSORS_CONF},
        {"NPROCESSORS_ONLN", _SC_NPROCESSORS_ONLN},
    };
    return names;
}

const std::map<std::string, int>& sysinfoNames()
{
    static const std::map<std::string, int> names = {
        {"SYSNAME", SI_SYSNAME},         {"HOSTNAME", SI_HOSTNAME}, {"RELEASE", SI_RELEASE},
        {"VERSION", SI_VERSION},         {"MACHINE", SI_MACHINE},   {"ARCHITECTURE", SI_ARCHITECTURE},
        {"HW_SERIAL", SI_HW_SERIAL},     {"HW_PROVIDER", SI_HW_PROVIDER},
        {"PLATFORM", SI_PLATFORM},       {"ISALIST", SI_ISALIST},
    };
    return names;
}

std::string nameOf(const std::map<std::string, int>& names, int value)
{
    for (const auto& n : names)
        if (n.second == value) return n.first;
    return std::to_string(value);
}

namespace {
// errno values by the names the files use; any other is written as its number.
const std::map<std::string, int> kErrnoNames = {
    {"EPERM", EPERM},   {"ENOENT", ENOENT}, {"EIO", EIO},         {"ENXIO", ENXIO},     {"EBADF", EBADF},
    {"ENOMEM", ENOMEM}, {"EACCES", EACCES}, {"EFAULT", EFAULT},   {"EBUSY", EBUSY},     {"ENODEV", ENODEV},
    {"EINVAL", EINVAL}, {"ENOTTY", ENOTTY}, {"ENOSYS", ENOSYS},   {"EOVERFLOW", EOVERFLOW},
    {"ENOTSUP", ENOTSUP}, {"ETIMEDOUT", ETIMEDOUT}, {"ECHILD", ECHILD}, {"EAGAIN", EAGAIN}};

int errnoNumber(const std::string& name)
{
    auto it = kErrnoNames.find(name);
    if (it != kErrnoNames.end()) return it->second;
    char* end = nullptr;
    const long n = std::strtol(name.c_str(), &end, 10);
    return !name.empty() && *end == '\0' && n > 0 ? static_cast<int>(n) : -1;
}
}  // namespace

std::string errnoName(int error) { return nameOf(kErrnoNames, error); }

std::string toHex(const std::string& bytes)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        out.push_back(digits[c >> 4]);
        out.push_back(digits[c & 0x0F]);
    }
    return out;
}

bool fromHex(const std::string& text, std::string& bytes)
{
    bytes.clear();
    if (text.size() % 2) return false;
    for (size_t i = 0; i < text.size(); i += 2) {
        int value = 0;
        for (size_t j = i; j < i + 2; ++j) {
            const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(text[j])));
            if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
            value = value * 16 + (std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : c - 'a' + 10);
        }
        bytes.push_back(static_cast<char>(value));
    }
    return true;
}

namespace {
// What a capture may claim of processors: no machine has more, and a
// capture claiming millions (a corrupt or hostile one) must be refused, not
// grown into gigabytes by the groups that list them.
constexpr size_t kMaxProcessors = 65536;

bool believableProcessor(long id) { return id >= 0 && static_cast<size_t>(id) < kMaxProcessors; }

// The command the output lines (">") and "exit" that follow belong to, and
// the text those lines go to (a command's output or a file's contents).
SimulatedSystem::Command* g_current = nullptr;
std::string* g_text = nullptr;
bool g_probeAnswer = false;  // g_text is what a probe printed
std::vector<std::string>* g_entries = nullptr;  // after "dir": its entries
int g_snapshot = 0;                              // after "kstat-snapshot": its number
std::vector<std::pair<std::string, std::string>> g_promProperties;
std::map<std::string, SimulatedDisk> g_disks;

// "key=value" words; a value in double quotes may hold blanks.
std::map<std::string, std::string> keyValues(std::istream& in)
{
    std::map<std::string, std::string> out;
    std::string rest, word;
    std::getline(in, rest);
    for (size_t i = 0; i < rest.size();) {
        if (rest[i] == ' ') {
            ++i;
            continue;
        }
        const size_t equals = rest.find('=', i);
        if (equals == std::string::npos) break;
        const std::string key = rest.substr(i, equals - i);
        size_t end;
        if (equals + 1 < rest.size() && rest[equals + 1] == '"') {
            end = rest.find('"', equals + 2);
            out[key] = rest.substr(equals + 2, end - equals - 2);
            i = end == std::string::npos ? rest.size() : end + 1;
        } else {
            end = rest.find(' ', equals);
            out[key] = rest.substr(equals + 1, end == std::string::npos ? std::string::npos : end - equals - 1);
            i = end == std::string::npos ? rest.size() : end;
        }
    }
    return out;
}

std::vector<std::string> fields(const std::string& text, char separator)
{
    std::vector<std::string> out;
    std::istringstream split(text);
    for (std::string f; std::getline(split, f, separator);) out.push_back(f);
    return out;
}

unsigned long number(const std::vector<std::string>& f, size_t i)
{
    return i < f.size() ? std::stoul(f[i], nullptr, 0) : 0;
}

// "disk NAME key=value...": what one physical disk answers (see README.md).
bool readDisk(const std::string& name, std::istream& in)
{
    SimulatedDisk d;
    for (const auto& kv : keyValues(in)) {
        const std::vector<std::string> f = fields(kv.second, kv.first == "inquiry" ? '|' : ',');
        if (kv.first == "ctl") {
            std::snprintf(d.controller.dki_cname, DK_DEVLEN, "%s", f.empty() ? "" : f[0].c_str());
            std::snprintf(d.controller.dki_dname, DK_DEVLEN, "%s", f.size() > 4 ? f[4].c_str() : "sd");
            d.controller.dki_ctype = static_cast<ushort_t>(number(f, 1));
            d.controller.dki_cnum = static_cast<ushort_t>(number(f, 2));
            d.controller.dki_unit = static_cast<uint_t>(number(f, 3));
        } else if (kv.first == "geom") {
            d.geometry.dkg_ncyl = static_cast<unsigned short>(number(f, 0));
            d.geometry.dkg_nhead = static_cast<unsigned short>(number(f, 1));
            d.geometry.dkg_nsect = static_cast<unsigned short>(number(f, 2));
        } else if (kv.first == "sectorsz") {
            d.label.v_sectorsz = static_cast<ushort_t>(number(f, 0));
        } else if (kv.first == "tags") {
            d.label.v_nparts = static_cast<ushort_t>(f.size());
            for (size_t i = 0; i < f.size() && i < V_NUMPAR; ++i) d.label.v_part[i].p_tag = static_cast<ushort_t>(number(f, i));
        } else if (kv.first == "sizes") {
            for (size_t i = 0; i < f.size() && i < V_NUMPAR; ++i) d.label.v_part[i].p_size = static_cast<int32_t>(number(f, i));
        } else if (kv.first == "label") {
            std::snprintf(d.label.v_asciilabel, LEN_DKL_ASCII, "%s", kv.second.c_str());
        } else if (kv.first == "inquiry") {
            if (f.size() != 5) return false;
            d.inquiry = scsiInquiry(static_cast<unsigned char>(number(f, 0)), f[1], f[2], f[3], f[4]);
        } else if (kv.first == "capacity") {
            d.capacity = bigEndian(number(f, 0), 4) + bigEndian(number(f, 1), 4);
        } else if (kv.first == "format") {
            d.formatPage = modeSense(formatPage(static_cast<unsigned>(number(f, 0)), static_cast<unsigned>(number(f, 1))));
        } else if (kv.first == "geometry") {
            d.geometryPage = modeSense(rigidGeometryPage(static_cast<unsigned>(number(f, 0)), static_cast<unsigned>(number(f, 1))));
        } else if (kv.first == "fails") {
            d.failing = kv.second;
        } else {
            return false;
        }
    }
    g_disks[name] = d;
    return true;
}

// "PATH [DISK | open-fails ERRNO]": what a device path answers as.
bool readDevice(const std::string& path, std::istream& in, SimulatedSystem& os)
{
    std::string what, error;
    if (!(in >> what)) return (os.devices[path].openErrno = ENXIO), true;  // nothing answers there
    if (what == "open-fails") {
        if (!(in >> error) || errnoNumber(error) < 0) return false;
        os.devices[path].openErrno = errnoNumber(error);
        return true;
    }
    if (!g_disks.count(what)) return false;
    installDisk(os, path, g_disks.at(what));
    return true;
}

// "rdsk ENTRY [DISK | open-fails ERRNO]": the next raw-disk directory entry.
bool readRawDiskEntry(std::istream& in, SimulatedSystem& os)
{
    std::string entry;
    if (!(in >> entry)) return false;
    os.directories["/dev/rdsk"].push_back(entry);
    return readDevice("/dev/rdsk/" + entry, in, os);
}

// "scsi DISK CDB ANSWER|fails": a disk's answer to one exact command, in hexadecimal.
bool readScsi(std::istream& in)
{
    std::string disk, hex, answer, cdb, bytes;
    if (!(in >> disk >> hex >> answer) || !g_disks.count(disk) || !fromHex(hex, cdb)) return false;
    if (answer != "fails" && !fromHex(answer, bytes)) return false;
    g_disks[disk].commands[cdb] = bytes;
    return true;
}

using LineReader = bool (*)(std::istringstream& in, SimulatedSystem& os);

// What each kind of line (its first word) says of the machine; the lines that
// continue a command's answer are read before these.
const std::map<std::string, LineReader>& lineReaders()
{
    static const std::map<std::string, LineReader> readers = {
        {"hwconfig",
         [](std::istringstream& in, SimulatedSystem& os) {
             os.hasHardwareConfig = true;
             g_text = &os.hardwareConfig;
             return true;
         }},
        {"dir",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             std::getline(in >> std::ws, name);
             g_entries = &os.directories[name];
             return !name.empty();
         }},
        {"device",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             return in >> name && readDevice(name, in, os);
         }},
        {"scsi",
         [](std::istringstream& in, SimulatedSystem& os) {
             return readScsi(in);
         }},
        {"memory",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             // "memory PATH ADDRESS HEX": bytes a memory device holds from ADDRESS on.
             std::string address, hex, bytes;
             if (!(in >> name >> address >> hex) || !fromHex(hex, bytes)) return false;
             os.devices[name].memory[std::strtoull(address.c_str(), nullptr, 0)] = bytes;
             return true;
         }},
        {"fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             // "fails FACILITY KEY... ERRNO": a call the machine failed.
             std::vector<std::string> words;
             for (std::string w; in >> w;) words.push_back(w);
             if (words.size() < 2 || errnoNumber(words.back()) < 0) return false;
             std::string key = words[0];
             for (size_t i = 1; i + 1 < words.size(); ++i) key += " " + words[i];
             if (words[0] == "mmap" && words.size() == 3) os.devices[words[1]].mapFails = true;
             os.failures[key] = errnoNumber(words.back());
             return true;
         }},
        {"kstat-snapshot",
         [](std::istringstream& in, SimulatedSystem& os) {
             g_snapshot = ++os.kstatSnapshots;
             return true;
         }},
        {"file",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             if (!(in >> name)) return false;
             g_text = &os.files[name];
             return true;
         }},
        {"time",
         [](std::istringstream& in, SimulatedSystem& os) {
             // Every line an answer of its own, in order; the first is also the clock's value until then.
             time_t seconds;
             if (!(in >> seconds)) return false;
             if (os.laterTimes.empty()) os.now = seconds;
             os.laterTimes.push_back(seconds);
             return true;
         }},
        {"statvfs",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             // "statvfs MOUNTPOINT FRSIZE BLOCKS FREE AVAIL": what statvfs64 says of it.
             struct statvfs64 fs{};
             unsigned long long frsize, blocks, bfree, bavail;
             if (!(in >> name >> frsize >> blocks >> bfree >> bavail)) return false;
             fs.f_bsize = fs.f_frsize = static_cast<unsigned long>(frsize);
             unsigned long long bsize;  // when it is not the fragment size
             if (in >> bsize) fs.f_bsize = static_cast<unsigned long>(bsize);
             fs.f_blocks = blocks;
             fs.f_bfree = bfree;
             fs.f_bavail = bavail;
             os.fileSystems[name] = fs;
             return true;
         }},
        {"boot-time",
         [](std::istringstream& in, SimulatedSystem& os) {
             long long seconds;
             if (!(in >> seconds)) return false;
             os.addBootTime(seconds);
             return true;
         }},
        {"utmpx",
         [](std::istringstream& in, SimulatedSystem& os) {
             // "utmpx boot SECONDS" or "utmpx run-level C SECONDS", as init writes them.
             struct utmpx record{};
             std::string kind, level;
             long seconds;
             if (!(in >> kind)) return false;
             if (kind == "boot") {
                 record.ut_type = BOOT_TIME;
                 std::snprintf(record.ut_line, sizeof record.ut_line, "%s", "system boot");
             } else if (kind == "run-level" && in >> level) {
                 record.ut_type = RUN_LVL;
                 std::snprintf(record.ut_line, sizeof record.ut_line, "run-level %s", level.c_str());
             } else {
                 return false;
             }
             if (!(in >> seconds)) return false;
             record.ut_tv.tv_sec = static_cast<decltype(record.ut_tv.tv_sec)>(seconds);
             os.utmpxRecords.push_back(record);
             return true;
         }},
        {"env",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             // Kept for useMachineEnvironment: reading a machine changes nothing
             // of the process.
             std::string value;
             std::getline(in >> name >> std::ws, value);
             os.environment[name] = value;
             return !name.empty();
         }},
        {"disk",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             return in >> name && readDisk(name, in);
         }},
        {"rdsk",
         [](std::istringstream& in, SimulatedSystem& os) {
             return readRawDiskEntry(in, os);
         }},
        {"pid",
         [](std::istringstream& in, SimulatedSystem& os) {
             return static_cast<bool>(in >> os.pid);
         }},
        {"pset",
         [](std::istringstream& in, SimulatedSystem& os) {
             for (processorid_t cpu; in >> cpu;)
                 if (!believableProcessor(cpu) || os.psetCpus.size() >= kMaxProcessors) return false;
                 else os.psetCpus.push_back(cpu);
             return true;
         }},
        {"pset-fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             return static_cast<bool>(in >> os.psetFailsOnCall);
         }},
        {"library",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string path, word;
             if (!(in >> path)) return false;
             SimulatedSystem::Library& library = os.libraries[path];
             if (in >> word && word != "missing") return false;
             for (std::string symbol; in >> symbol;) library.missing.push_back(symbol);
             return true;
         }},
        {"v12n",
         [](std::istringstream& in, SimulatedSystem& os) {
             // "v12n name TEXT", "v12n kz-zonename TEXT", or one of its faults.
             std::string what, value;
             std::getline(in >> what >> std::ws, value);
             SimulatedSystem::V12n& v = os.v12n;
             const std::map<std::string, bool*> faults = {
                 {"env-fails", &v.envFails}, {"name-fails", &v.nameFails}, {"kz-fails", &v.kzFails}};
             if (what == "name" || what == "kz-zonename")
                 (what == "name" ? v.name : v.kzZoneName) = value;
             else if (faults.count(what))
                 *faults.at(what) = true;
             else
                 return false;
             return true;
         }},
        {"smbios-system",
         [](std::istringstream& in, SimulatedSystem& os) {
             // Manufacturer|Product|Version|Serial: a firmware table with that type 1.
             std::string fields;
             std::getline(in >> std::ws, fields);
             std::vector<std::string> values;
             std::istringstream split(fields);
             for (std::string value; std::getline(split, value, '|');) values.push_back(value);
             const std::string table = smbiosSystem(values) + smbiosStructure(127, std::string(4, '\0'), {});
             installFirmware(os, smbiosEntryPoint(static_cast<uint16_t>(table.size()), 0xE1000, 2), table, 0xE1000);
             return true;
         }},
        {"prom-property",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             std::string value;
             std::getline(in >> name >> std::ws, value);
             g_promProperties.emplace_back(name, value);
             installProm(os, g_promProperties);
             return true;
         }},
        {"pool-fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string function;
             if (!(in >> function)) return false;
             os.pools.failing.push_back(function);
             return true;
         }},
        {"pool",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             SimulatedSystem::PoolResource r;
             if (!(in >> name >> r.type >> r.name >> r.size)) return false;
             os.pools.byName[name].push_back(r);
             return true;
         }},
        {"sysconf",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             long value;
             if (!(in >> name >> value) || !sysconfNames().count(name)) return false;
             const int which = sysconfNames().at(name);
             if (!os.sysconfValues.count(which)) os.sysconfValues[which] = value;
             os.laterSysconf[which].push_back(value);
             return true;
         }},
        {"sysinfo",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::string name;
             if (!(in >> name) || !sysinfoNames().count(name)) return false;
             std::string value;
             std::getline(in >> std::ws, value);
             os.sysinfoValues[sysinfoNames().at(name)] = value;
             return true;
         }},
        {"hostid",
         [](std::istringstream& in, SimulatedSystem& os) {
             // Written unsigned; a 32-bit long holds the high ones as negatives, as Solaris does.
             unsigned long value;
             if (!(in >> value)) return false;
             os.hostid = static_cast<long>(value);
             return true;
         }},
        {"swap-count",
         [](std::istringstream& in, SimulatedSystem& os) {
             return static_cast<bool>(in >> os.swapCount);
         }},
        {"swap-list",
         [](std::istringstream& in, SimulatedSystem& os) {
             // What SC_LIST returns instead of the devices, and the errno with -1.
             std::string error;
             if (!(in >> os.swapListResult)) return false;
             if (in >> error) {
                 if (errnoNumber(error) < 0) return false;
                 os.swapListErrno = errnoNumber(error);
             }
             return true;
         }},
        {"swap",
         [](std::istringstream& in, SimulatedSystem& os) {
             SimulatedSystem::SwapDevice d;
             if (!(in >> d.path >> d.pages >> d.freePages)) return false;
             os.swapDevices.push_back(d);
             return true;
         }},
        {"anoninfo",
         [](std::istringstream& in, SimulatedSystem& os) {
             unsigned long max, free, resv;
             if (!(in >> max >> free >> resv)) return false;
             os.ainfo = {max, free, resv};
             return true;
         }},
        {"anoninfo-fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             os.ainfoFails = true;
             return true;
         }},
        {"kstat-fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             os.kstatOpenFails = true;
             return true;
         }},
        {"cpu_stat",
         [](std::istringstream& in, SimulatedSystem& os) {
             int instance;
             uint_t idle, user, kernel, wait;
             if (!(in >> instance >> idle >> user >> kernel >> wait) || !believableProcessor(instance)) return false;
             os.addCpuStat(instance, idle, user, kernel, wait);
             os.kstats.back().snapshot = g_snapshot;
             // Quirks of the record: "size N", "named", "unreadable".
             for (std::string quirk; in >> quirk;) {
                 SimulatedSystem::Kstat& k = os.kstats.back();
                 if (quirk == "size" && in >> k.dataSize) continue;
                 if (quirk == "named")
                     k.type = KSTAT_TYPE_NAMED;
                 else if (quirk == "unreadable")
                     k.readFails = true;
                 else
                     return false;
             }
             return true;
         }},
        {"loadavg",
         [](std::istringstream& in, SimulatedSystem& os) {
             std::array<double, 3> load;
             if (!(in >> load[0] >> load[1] >> load[2])) return false;
             if (os.laterLoadavg.empty()) std::copy(load.begin(), load.end(), os.loadavg);
             os.laterLoadavg.push_back(load);
             return true;
         }},
        {"loadavg-fails",
         [](std::istringstream& in, SimulatedSystem& os) {
             os.loadavgFails = true;
             return true;
         }},
        {"online",
         [](std::istringstream& in, SimulatedSystem& os) {
             processorid_t cpu;
             std::string state;
             if (!(in >> cpu >> state) || !believableProcessor(cpu)) return false;
             const std::map<std::string, int> states = {
                 {"on", P_ONLINE}, {"off", P_OFFLINE}, {"noint", P_NOINTR}, {"faulted", P_FAULTED}, {"fails", -1}};
             if (!states.count(state)) return false;
             os.processorStates[cpu] = states.at(state);
             return true;
         }},
    };
    return readers;
}

bool readLine(const std::string& text, SimulatedSystem& os)
{
    std::istringstream in(text);
    std::string facility;
    in >> facility;
    if (facility == ">" || text == ">") {
        const std::string line = text.size() > 2 ? text.substr(2) : std::string();
        if (g_entries) return g_entries->push_back(line), true;
        if (!g_text) return false;
        // A probe that printed more would have been killed, so no capture holds it.
        if (g_probeAnswer && g_text->size() + line.size() + 1 > VT_MAX_OUTPUT_BYTES) return false;
        *g_text += line + "\n";
        return true;
    }
    if (facility == "no-final-newline") {
        if (!g_text || g_text->empty() || g_text->back() != '\n') return false;
        g_text->pop_back();
        return true;
    }
    if (facility == "shell" || facility == "run" || facility == "probe") {
        std::string command;
        std::getline(in >> std::ws, command);
        g_current = &(facility == "shell" ? os.shells : facility == "run" ? os.commands : os.probes)[command];
        g_text = &g_current->output;
        g_probeAnswer = facility == "probe";
        g_entries = nullptr;
        return !command.empty();
    }
    if (facility == "exit") return g_current && static_cast<bool>(in >> g_current->status);
    if (facility == "start-fails") return g_current && (g_current->fails = true);
    g_current = nullptr;
    g_text = nullptr;
    g_probeAnswer = false;
    g_entries = nullptr;
    const auto reader = lineReaders().find(facility);
    return reader != lineReaders().end() && reader->second(in, os);
}
}  // namespace

bool readMachine(std::istream& in, const std::string& name, bool needVersion, SimulatedSystem& os, std::string& error)
{
    g_current = nullptr;
    g_text = nullptr;
    g_probeAnswer = false;
    g_entries = nullptr;
    g_snapshot = 0;
    g_promProperties.clear();
    g_disks.clear();
    bool first = true, ended = false;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const auto start = line.find_first_not_of(" \t");
        // Command output keeps its blanks and '#'.
        if (line.rfind(">", 0) != 0 && (start == std::string::npos || line[start] == '#')) continue;
        const std::string where = name + " line " + std::to_string(number) + ": ";
        if (first && line.rfind(kFormatWord, 0) == 0) {
            first = false;
            const int version = std::atoi(line.c_str() + std::strlen(kFormatWord));
            if (version < 1) return (error = where + "no format version"), false;
            if (version > kFormatVersion)
                return (error = where + "format " + std::to_string(version) + " is newer than this program reads (" +
                                std::to_string(kFormatVersion) + ")"),
                       false;
            continue;
        }
        if (first && needVersion)
            return (error = name + " is not a machine capture: its first line is not \"" + kFormatWord + " N\""), false;
        first = false;
        if (line == kEndWord) {
            ended = true;
            continue;
        }
        if (ended) return (error = where + "follows the end of the capture"), false;
        bool read = false;
        try {
            read = readLine(line, os);
        } catch (const std::exception&) {  // a number out of range
        }
        if (!read) return (error = where + line.substr(0, 200)), false;
    }
    if (first && needVersion) return (error = name + " is empty"), false;
    if (needVersion && !ended) return (error = name + " is cut short: its last line is not \"" + kEndWord + "\""), false;
    return true;
}

namespace {

// A capture or a machine's file: a regular file only (a FIFO or a device
// would block or never end), read whole within `limit`.
bool readWhole(const std::string& path, size_t limit, std::string& text, std::string& error)
{
    bool cut = false;
    if (!sys::readRegularFile(path.c_str(), text, limit, &cut))
        return (error = path + (errno == EINVAL ? std::string(" is not a regular file")
                                                : " cannot be read: " + std::string(std::strerror(errno)))),
               false;
    if (cut) return (error = path + " is larger than " + std::to_string(limit >> 20) + " MiB"), false;
    return true;
}

// Reads `text` in place as a stream, without a copy.
class TextBuffer : public std::streambuf {
public:
    explicit TextBuffer(std::string& text) { setg(&text[0], &text[0], &text[0] + text.size()); }
};

bool readMachineText(std::string& text, const std::string& name, bool needVersion, SimulatedSystem& os,
                     std::string& error)
{
    TextBuffer buffer(text);
    std::istream in(&buffer);
    return readMachine(in, name, needVersion, os, error);
}

}  // namespace

bool loadMachine(const std::string& dir, SimulatedSystem& os, std::string& error)
{
    std::string text;
    if (!readWhole(dir + "/machine.txt", kMaxCaptureBytes, text, error)) return false;
    if (!readMachineText(text, "machine.txt", false, os, error)) return false;
    // What its probes print, each from a file of its own.
    for (const char* probe : {"cpuid", "diskscan"}) {
        const std::string path = dir + "/probes/" + probe;
        struct stat st;
        if (::lstat(path.c_str(), &st) != 0 && errno == ENOENT) continue;
        if (!readWhole(path, VT_MAX_OUTPUT_BYTES, text, error)) return false;
        os.probes[probe].output = text;
    }
    return true;
}

bool loadReplay(const std::string& path, SimulatedSystem& os, std::string& error)
{
    struct stat st;
    if (::stat(path.c_str(), &st) != 0) return (error = path + ": " + std::strerror(errno)), false;
    if (S_ISDIR(st.st_mode)) return loadMachine(path, os, error);
    std::string text;
    return readWhole(path, kMaxCaptureBytes, text, error) && readMachineText(text, path, true, os, error);
}

}  // namespace replay
