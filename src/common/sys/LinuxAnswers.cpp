#if defined(__linux__)

#include "common/sys/LinuxAnswers.h"
#include "common/sys/LinuxNetwork.h"
#include "common/sys/SolarisCommands.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace sys {
namespace linuxanswers {
namespace {

// KEY=VALUE lines of a shell-style settings file, quotes taken off; later
// lines win. Empty when the file cannot be read.
std::map<std::string, std::string> settings(const std::string& path)
{
    std::map<std::string, std::string> out;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) {
        const size_t start = line.find_first_not_of(" \t");
        if (start == std::string::npos || line[start] == '#') continue;
        const size_t equals = line.find('=', start);
        if (equals == std::string::npos) continue;
        std::string value = line.substr(equals + 1);
        while (!value.empty() && (value.back() == '\r' || value.back() == ' ')) value.pop_back();
        if (value.size() >= 2 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0])
            value = value.substr(1, value.size() - 2);
        out[line.substr(start, equals - start)] = value;
    }
    return out;
}

// The zone's name: /etc/timezone, else where /etc/localtime points under zoneinfo.
std::string timeZoneName(const std::string& root)
{
    std::string name = firstLine(root + "/etc/timezone");
    if (!name.empty()) return name;
    char target[512];
    const ssize_t n = readlink((root + "/etc/localtime").c_str(), target, sizeof target - 1);
    if (n <= 0) return std::string();
    const std::string link(target, static_cast<size_t>(n));
    const size_t at = link.find("zoneinfo/");
    return at == std::string::npos ? std::string() : link.substr(at + 9);
}

std::vector<std::string> sortedEntries(const std::string& dir)
{
    std::vector<std::string> names;
    if (DIR* d = opendir(dir.c_str())) {
        while (dirent* e = readdir(d))
            if (e->d_name[0] != '.') names.push_back(e->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// A sysfs hexadecimal figure ("0x8086"), or -1.
long hexFile(const std::string& path)
{
    const std::string text = firstLine(path);
    if (text.empty()) return -1;
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 16);
    return end && *end == '\0' ? value : -1;
}

std::string propertyLine(const char* name, long value)
{
    char line[64];
    std::snprintf(line, sizeof line, "        %s:  %08lx", name, value);
    return line;
}

void prtconf(const std::string& root, std::vector<std::string>& lines)
{
    lines.push_back("System Configuration:  Linux  i86pc");
    const std::string bus = root + "/sys/bus/pci/devices/";
    unsigned node = 1;
    for (const std::string& address : sortedEntries(bus)) {
        const std::string dir = bus + address + "/";
        const long vendor = hexFile(dir + "vendor"), device = hexFile(dir + "device");
        if (vendor < 0 || device < 0) continue;
        char heading[48];
        std::snprintf(heading, sizeof heading, "    Node 0x%06x", node++);
        lines.push_back(heading);
        lines.push_back(propertyLine("vendor-id", vendor));
        lines.push_back(propertyLine("device-id", device));
        const struct {
            const char* file;
            const char* property;
        } optional[] = {{"revision", "revision-id"},
                        {"class", "class-code"},
                        {"subsystem_vendor", "subsystem-vendor-id"},
                        {"subsystem_device", "subsystem-id"}};
        for (const auto& o : optional) {
            const long value = hexFile(dir + o.file);
            if (value >= 0) lines.push_back(propertyLine(o.property, value));
        }
        char name[64];
        std::snprintf(name, sizeof name, "        name:  'pci%lx,%lx'", vendor, device);
        lines.push_back(name);
        lines.push_back("");
    }
}

// The first input device with key events, auto-repeat and a keyboard handler.
std::string keyboardName(const std::string& root)
{
    std::ifstream in(root + "/proc/bus/input/devices");
    std::string line, name, handlers;
    unsigned long events = 0;
    auto isKeyboard = [&] {
        return !name.empty() && (events & 0x2) && (events & (1UL << 20)) &&
               (" " + handlers + " ").find(" kbd ") != std::string::npos;
    };
    while (std::getline(in, line)) {
        if (line.empty()) {
            if (isKeyboard()) return name;
            name.clear();
            handlers.clear();
            events = 0;
        } else if (line.rfind("N: Name=", 0) == 0) {
            name = line.substr(8);
            if (name.size() >= 2 && name.front() == '"' && name.back() == '"') name = name.substr(1, name.size() - 2);
        } else if (line.rfind("H: Handlers=", 0) == 0) {
            handlers = line.substr(12);
        } else if (line.rfind("B: EV=", 0) == 0) {
            events = std::strtoul(line.c_str() + 6, nullptr, 16);
        }
    }
    return isKeyboard() ? name : std::string();
}

// /proc/mounts escapes blanks, tabs, line ends and backslashes as \ooo.
// Tabs and line ends stay escaped: they separate the mount table's fields.
std::string unescapeMountField(const std::string& field)
{
    std::string out;
    for (size_t i = 0; i < field.size(); ++i) {
        const bool octal = field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '3' &&
                           field[i + 2] >= '0' && field[i + 2] <= '7' && field[i + 3] >= '0' && field[i + 3] <= '7';
        const char c = octal ? static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + (field[i + 3] - '0')) : 0;
        if (octal && c != '\t' && c != '\n') {
            out += c;
            i += 3;
        } else {
            out += field[i];
        }
    }
    return out;
}

// Solaris's mount table: special, mount point, type, options and the time
// of mounting, tab-separated, from /proc/self/mounts (which knows no time).
std::string mountTable(const std::string& root)
{
    std::ifstream in(root + "/proc/self/mounts");
    if (!in) return std::string();
    std::ostringstream out;
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string special, mountPoint, type, options;
        if (!(fields >> special >> mountPoint >> type >> options)) continue;
        out << unescapeMountField(special) << '\t' << unescapeMountField(mountPoint) << '\t' << type << '\t'
            << options << "\t0\n";
    }
    return out.str();
}

}  // namespace

std::string firstLine(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
    return line;
}

bool answerFile(const std::string& path, const std::string& root, std::string& text)
{
    const solaris::Entry* e = solaris::findFile(path);
    if (!e) return false;
    std::ostringstream out;
    if (e->id == solaris::Id::Release) {
        auto release = settings(root + "/etc/os-release");
        if (release.empty()) release = settings(root + "/usr/lib/os-release");
        std::string banner = release["PRETTY_NAME"];
        if (banner.empty()) banner = release["NAME"] + (release["VERSION"].empty() ? "" : " " + release["VERSION"]);
        if (banner.empty()) return false;
        out << "  " << banner << "\n";
    } else if (e->id == solaris::Id::InitDefaults) {
        const std::string zone = timeZoneName(root);
        if (!zone.empty()) out << "TZ=" << zone << "\n";
        auto locale = settings(root + "/etc/default/locale");
        if (locale.empty()) locale = settings(root + "/etc/locale.conf");
        for (const auto& kv : locale)
            if (kv.first == "LANG" || kv.first.rfind("LC_", 0) == 0) out << kv.first << "=" << kv.second << "\n";
    } else if (e->id == solaris::Id::MountTable) {
        const std::string table = mountTable(root);
        if (table.empty()) return false;
        out << table;
    } else if (e->id == solaris::Id::KbdDefaults) {
        const std::string layout = settings(root + "/etc/default/keyboard")["XKBLAYOUT"];
        if (layout.empty()) return false;
        out << "LAYOUT=" << layout << "\n";
    } else {
        return linuxnetwork::answerFile(path, root, text);
    }
    text = out.str();
    return true;
}

bool answerShell(const std::string& command, std::string& output, int& status)
{
    output.clear();
    const solaris::Entry* e = solaris::findShell(command);
    if (!e) return false;
    switch (e->id) {
    case solaris::Id::Zonename: status = 127; return true;
    case solaris::Id::ProcessZone:
    case solaris::Id::ProcessZoneId: status = 0; return true;
    default: return false;
    }
}

bool answerRun(const std::vector<std::string>& argv, const std::string& root, std::vector<std::string>& lines,
               int& status)
{
    lines.clear();
    status = 0;
    const solaris::Entry* e = solaris::findRun(argv);
    if (!e) return false;
    if (e->id == solaris::Id::Prtconf) {
        prtconf(root, lines);
        return true;
    }
    if (e->id == solaris::Id::Kbd) {
        const std::string name = keyboardName(root);
        if (name.empty()) {
            status = 1;
            return true;
        }
        lines.push_back(name);
        const std::string layout = settings(root + "/etc/default/keyboard")["XKBLAYOUT"];
        if (!layout.empty()) lines.push_back("layout=" + layout);
        return true;
    }
    return linuxnetwork::answerRun(argv, root, lines, status);
}

long long bootTime(const std::string& root)
{
    std::ifstream in(root + "/proc/stat");
    for (std::string line; std::getline(in, line);)
        if (line.rfind("btime ", 0) == 0) return std::atoll(line.c_str() + 6);
    return -1;
}

}  // namespace linuxanswers
}  // namespace sys

#endif  // __linux__
