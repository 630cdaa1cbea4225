#include "support/Machine.h"
#include "support/Firmware.h"
#include "support/TempDir.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <map>
#include <sstream>

namespace testsupport {

namespace {
const std::map<std::string, int> kSysconfNames = {
    {"PAGESIZE", _SC_PAGESIZE},
    {"PHYS_PAGES", _SC_PHYS_PAGES},
    {"AVPHYS_PAGES", _SC_AVPHYS_PAGES},
    {"NPROCESSORS_CONF", _SC_NPROCESSORS_CONF},
    {"NPROCESSORS_ONLN", _SC_NPROCESSORS_ONLN},
};
const std::map<std::string, int> kSysinfoNames = {
    {"SYSNAME", SI_SYSNAME},         {"HOSTNAME", SI_HOSTNAME}, {"RELEASE", SI_RELEASE},
    {"VERSION", SI_VERSION},         {"MACHINE", SI_MACHINE},   {"ARCHITECTURE", SI_ARCHITECTURE},
    {"HW_SERIAL", SI_HW_SERIAL},     {"HW_PROVIDER", SI_HW_PROVIDER},
    {"PLATFORM", SI_PLATFORM},       {"ISALIST", SI_ISALIST},
};

const std::map<std::string, int> kErrnoNames = {
    {"EOVERFLOW", EOVERFLOW}, {"ENOSYS", ENOSYS}, {"EFAULT", EFAULT}, {"ENOMEM", ENOMEM}, {"EIO", EIO}};

// The command the output lines (">") and "exit" that follow belong to.
FakeSystem::Command* g_current = nullptr;
std::vector<std::pair<std::string, std::string>> g_promProperties;

bool readLine(const std::string& text, FakeSystem& os)
{
    std::istringstream in(text);
    std::string facility, name;
    in >> facility;
    if (facility == ">" || text == ">") {
        if (!g_current) return false;
        g_current->output += (text.size() > 2 ? text.substr(2) : std::string()) + "\n";
        return true;
    }
    if (facility == "shell" || facility == "run") {
        std::string command;
        std::getline(in >> std::ws, command);
        g_current = &(facility == "shell" ? os.shells : os.commands)[command];
        return !command.empty();
    }
    if (facility == "exit") return g_current && static_cast<bool>(in >> g_current->status);
    if (facility == "start-fails") return g_current && (g_current->fails = true);
    g_current = nullptr;
    if (facility == "pid") {
        return static_cast<bool>(in >> os.pid);
    } else if (facility == "pset") {
        for (processorid_t cpu; in >> cpu;) os.psetCpus.push_back(cpu);
    } else if (facility == "pset-fails") {
        return static_cast<bool>(in >> os.psetFailsOnCall);
    } else if (facility == "library") {
        std::string path, word;
        if (!(in >> path)) return false;
        FakeSystem::Library& library = os.libraries[path];
        if (in >> word && word != "missing") return false;
        for (std::string symbol; in >> symbol;) library.missing.push_back(symbol);
    } else if (facility == "v12n") {
        // "v12n name TEXT", "v12n kz-zonename TEXT", or one of its faults.
        std::string what, value;
        std::getline(in >> what >> std::ws, value);
        FakeSystem::V12n& v = os.v12n;
        const std::map<std::string, bool*> faults = {
            {"env-fails", &v.envFails}, {"name-fails", &v.nameFails}, {"kz-fails", &v.kzFails}};
        if (what == "name" || what == "kz-zonename")
            (what == "name" ? v.name : v.kzZoneName) = value;
        else if (faults.count(what))
            *faults.at(what) = true;
        else
            return false;
    } else if (facility == "smbios-system") {
        // Manufacturer|Product|Version|Serial: a firmware table with that type 1.
        std::string fields;
        std::getline(in >> std::ws, fields);
        std::vector<std::string> values;
        std::istringstream split(fields);
        for (std::string value; std::getline(split, value, '|');) values.push_back(value);
        const std::string table = smbiosSystem(values) + smbiosStructure(127, std::string(4, '\0'), {});
        installFirmware(os, smbiosEntryPoint(static_cast<uint16_t>(table.size()), 0xE1000, 2), table, 0xE1000);
    } else if (facility == "prom-property") {
        std::string value;
        std::getline(in >> name >> std::ws, value);
        g_promProperties.emplace_back(name, value);
        installProm(os, g_promProperties);
    } else if (facility == "pool-fails") {
        std::string function;
        if (!(in >> function)) return false;
        os.pools.failing.push_back(function);
    } else if (facility == "pool") {
        FakeSystem::PoolResource r;
        if (!(in >> name >> r.type >> r.name >> r.size)) return false;
        os.pools.byName[name].push_back(r);
    } else if (facility == "sysconf") {
        long value;
        if (!(in >> name >> value) || !kSysconfNames.count(name)) return false;
        os.sysconfValues[kSysconfNames.at(name)] = value;
    } else if (facility == "sysinfo") {
        if (!(in >> name) || !kSysinfoNames.count(name)) return false;
        std::string value;
        std::getline(in >> std::ws, value);
        os.sysinfoValues[kSysinfoNames.at(name)] = value;
    } else if (facility == "hostid") {
        // Written unsigned; a 32-bit long holds the high ones as negatives, as Solaris does.
        unsigned long value;
        if (!(in >> value)) return false;
        os.hostid = static_cast<long>(value);
    } else if (facility == "swap-count") {
        return static_cast<bool>(in >> os.swapCount);
    } else if (facility == "swap-list") {
        // What SC_LIST returns instead of the devices, and the errno with -1.
        std::string error;
        if (!(in >> os.swapListResult)) return false;
        if (in >> error) {
            if (!kErrnoNames.count(error)) return false;
            os.swapListErrno = kErrnoNames.at(error);
        }
    } else if (facility == "swap") {
        FakeSystem::SwapDevice d;
        if (!(in >> d.path >> d.pages >> d.freePages)) return false;
        os.swapDevices.push_back(d);
    } else if (facility == "anoninfo") {
        unsigned long max, free, resv;
        if (!(in >> max >> free >> resv)) return false;
        os.ainfo = {max, free, resv};
    } else if (facility == "anoninfo-fails") {
        os.ainfoFails = true;
    } else if (facility == "kstat-fails") {
        os.kstatOpenFails = true;
    } else if (facility == "cpu_stat") {
        int instance;
        uint_t idle, user, kernel, wait;
        if (!(in >> instance >> idle >> user >> kernel >> wait)) return false;
        os.addCpuStat(instance, idle, user, kernel, wait);
        // Quirks of the record: "size N", "named", "unreadable".
        for (std::string quirk; in >> quirk;) {
            FakeSystem::Kstat& k = os.kstats.back();
            if (quirk == "size" && in >> k.dataSize) continue;
            if (quirk == "named")
                k.type = KSTAT_TYPE_NAMED;
            else if (quirk == "unreadable")
                k.readFails = true;
            else
                return false;
        }
    } else if (facility == "loadavg") {
        return static_cast<bool>(in >> os.loadavg[0] >> os.loadavg[1] >> os.loadavg[2]);
    } else if (facility == "loadavg-fails") {
        os.loadavgFails = true;
    } else if (facility == "online") {
        processorid_t cpu;
        std::string state;
        if (!(in >> cpu >> state)) return false;
        const std::map<std::string, int> states = {
            {"on", P_ONLINE}, {"off", P_OFFLINE}, {"noint", P_NOINTR}, {"faulted", P_FAULTED}, {"fails", -1}};
        if (!states.count(state)) return false;
        os.processorStates[cpu] = states.at(state);
    } else {
        return false;
    }
    return true;
}
}  // namespace

bool loadMachine(const std::string& dir, FakeSystem& os, std::string& error)
{
    std::ifstream in(dir + "/machine.txt");
    if (!in) {
        error = dir + "/machine.txt cannot be read";
        return false;
    }
    std::string line;
    g_current = nullptr;
    g_promProperties.clear();
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.rfind(">", 0) == 0) {  // command output keeps its blanks and '#'
            if (!readLine(line, os)) return (error = "machine.txt line " + std::to_string(number) + ": " + line), false;
            continue;
        }
        const auto first = line.find_first_not_of(" \t");
        if (first == std::string::npos || line[first] == '#') continue;
        if (!readLine(line, os)) {
            error = "machine.txt line " + std::to_string(number) + ": " + line;
            return false;
        }
    }
    return true;
}

std::string machineDir(const std::string& name) { return std::string(INVSCAN_SOURCE_DIR) + "/tests/machines/" + name; }

std::vector<std::string> machineNames()
{
    std::vector<std::string> names;
    DIR* d = opendir((std::string(INVSCAN_SOURCE_DIR) + "/tests/machines").c_str());
    if (!d) return names;
    while (dirent* e = readdir(d)) {
        const std::string name = e->d_name;
        if (name[0] != '.' && access((machineDir(name) + "/machine.txt").c_str(), R_OK) == 0) names.push_back(name);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace testsupport
