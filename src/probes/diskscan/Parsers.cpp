#include "probes/diskscan/Parsers.h"

#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace diskscan {
namespace {

std::vector<std::string> words(const std::string& line)
{
    std::istringstream in(line);
    std::vector<std::string> out;
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

// mountinfo writes blank, tab, newline and backslash as \ooo.
std::string unescape(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        const bool octal = text[i] == '\\' && i + 3 < text.size() &&
                           text.substr(i + 1, 3).find_first_not_of("01234567") == std::string::npos;
        if (octal) {
            out.push_back(static_cast<char>(std::strtol(text.substr(i + 1, 3).c_str(), nullptr, 8)));
            i += 3;
        } else {
            out.push_back(text[i]);
        }
    }
    return out;
}

std::string trim(const std::string& text)
{
    const size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool isVdevGroup(const std::string& name)
{
    for (const char* kind : {"mirror", "raidz", "draid", "replacing", "spare-"})
        if (name.compare(0, std::string(kind).size(), kind) == 0) return true;
    return false;
}

}  // namespace

std::vector<Mount> parseMountInfo(const std::string& text)
{
    std::vector<Mount> mounts;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> w = words(line);
        size_t dash = 6;
        while (dash < w.size() && w[dash] != "-") ++dash;
        if (w.size() < 5 || dash + 2 >= w.size()) continue;
        Mount m;
        if (std::sscanf(w[2].c_str(), "%d:%d", &m.major, &m.minor) != 2) m.major = m.minor = -1;
        m.mountPoint = unescape(w[4]);
        m.type = w[dash + 1];
        m.special = unescape(w[dash + 2]);
        mounts.push_back(m);
    }
    return mounts;
}

std::vector<Mount> parseSolarisMounts(const std::string& text)
{
    std::vector<Mount> mounts;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        Mount m;
        if (line.find('\t') != std::string::npos) {
            std::istringstream fields(line);
            std::getline(fields, m.special, '\t');
            std::getline(fields, m.mountPoint, '\t');
            std::getline(fields, m.type, '\t');
        } else {
            const std::vector<std::string> w = words(line);  // special on point type fstype ...
            if (w.size() < 5 || w[1] != "on" || w[3] != "type") continue;
            m.special = w[0];
            m.mountPoint = w[2];
            m.type = w[4];
        }
        if (!m.special.empty() && !m.mountPoint.empty()) mounts.push_back(m);
    }
    return mounts;
}

std::vector<HbaPort> parseFcinfoHbaPort(const std::string& text)
{
    std::vector<HbaPort> ports;
    std::string firmware, driver, driverVersion;
    auto finish = [&]() {
        if (ports.empty()) return;
        HbaPort& p = ports.back();
        p.description = p.model + (firmware.empty() ? "" : " FW:" + firmware) +
                        (driver.empty() ? "" : " DVR:" + driver + (driverVersion.empty() ? "" : " " + driverVersion));
        firmware.clear(), driver.clear(), driverVersion.clear();
    };
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        const std::string key = trim(line.substr(0, colon)), value = trim(line.substr(colon + 1));
        if (key == "HBA Port WWN") {
            finish();
            ports.emplace_back();
            ports.back().wwpn = value;
            continue;
        }
        if (ports.empty()) continue;
        HbaPort& p = ports.back();
        if (key == "OS Device Name") {
            p.id = value.substr(value.rfind('/') + 1);
        } else if (key == "Manufacturer") {
            p.vendor = value;
        } else if (key == "Model") {
            p.model = value;
        } else if (key == "Serial Number") {
            p.serial = value == "not available" ? "" : value;
        } else if (key == "Type") {
            p.type = value;
        } else if (key == "State") {
            p.state = value;
        } else if (key == "Current Speed") {
            p.speed = value;
        } else if (key == "Node WWN") {
            p.wwnn = value;
        } else if (key == "Firmware Version") {
            firmware = value;
        } else if (key == "Driver Name") {
            driver = value;
        } else if (key == "Driver Version") {
            driverVersion = value;
        }
    }
    finish();
    return ports;
}

std::map<std::string, std::vector<std::string>> parseZpoolStatus(const std::string& text)
{
    std::map<std::string, std::vector<std::string>> pools;
    std::string pool;
    bool inConfig = false, holdsData = true;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> w = words(line);
        if (w.size() >= 2 && w[0] == "pool:") {
            pool = w[1];
            inConfig = false;
            continue;
        }
        if (w.size() == 1 && w[0] == "config:") {
            inConfig = true;
            holdsData = true;
            continue;
        }
        if (!inConfig || w.empty() || w[0] == "NAME") continue;
        if (w[0] == "errors:") {
            inConfig = false;
        } else if (w[0] == pool || isVdevGroup(w[0])) {
            continue;
        } else if (w[0] == "logs" || w[0] == "cache" || w[0] == "spares" || w[0] == "special" || w[0] == "dedup") {
            holdsData = w[0] != "cache" && w[0] != "spares";
        } else if (holdsData && !pool.empty()) {
            pools[pool].push_back(w[0]);
        }
    }
    return pools;
}

std::map<std::string, std::vector<std::string>> parseMetastat(const std::string& text)
{
    auto isMetadevice = [](const std::string& w) {
        return w.size() > 1 && w[0] == 'd' && w.find_first_not_of("0123456789", 1) == std::string::npos;
    };
    auto isSlice = [](const std::string& w) {
        return (w.size() > 1 && w[0] == 'c' && w[1] >= '0' && w[1] <= '9') || w.compare(0, 9, "/dev/dsk/") == 0;
    };
    std::map<std::string, std::vector<std::string>> parts;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> w = words(line);
        if (w.size() < 2 || !isMetadevice(w[0])) continue;  // hot spare pools and comments
        for (size_t i = 1; i < w.size(); ++i) {
            if (!isMetadevice(w[i]) && !isSlice(w[i])) continue;  // options, their values, pass numbers
            parts[w[0]].push_back(w[i].compare(0, 9, "/dev/dsk/") == 0 ? w[i].substr(9) : w[i]);
        }
    }
    return parts;
}

}  // namespace diskscan
