#include "invscan/solaris/network/NetworkFacts.h"

#include <arpa/inet.h>
#include <fcntl.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "framework/String.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/ScanScoped.h"
#include "invscan/solaris/system/SystemFacts.h"

namespace network {
namespace {

const char* const kSource = "./../../../src/invscan/solaris/NetworkFacts";
const char* const kFunction = "gatherNetwork()";
#define NET_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

unsigned char uc(char c) { return static_cast<unsigned char>(c); }

std::vector<std::string> words(const std::string& line)
{
    std::vector<std::string> out;
    std::istringstream in(line);
    for (std::string w; in >> w;) out.push_back(w);
    return out;
}

// The fields of a parseable dladm line: ':' separates, "\:" is a colon
// inside a field (addresses).
std::vector<std::string> parseableFields(const std::string& line)
{
    std::vector<std::string> out(1);
    for (size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '\\' && i + 1 < line.size()) {
            out.back() += line[++i];
        } else if (line[i] == ':') {
            out.emplace_back();
        } else {
            out.back() += line[i];
        }
    }
    return out;
}

bool isHex(const std::string& text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return std::isxdigit(uc(c)); });
}

int bitsOfMask(std::string hex)
{
    if (hex.compare(0, 2, "0x") == 0) hex = hex.substr(2);
    if (!isHex(hex) || hex.size() > 8) return -1;
    unsigned long mask = std::strtoul(hex.c_str(), nullptr, 16);
    int bits = 0;
    while (mask & 0x80000000UL) {
        ++bits;
        mask = (mask << 1) & 0xFFFFFFFFUL;
    }
    return bits;
}

Link* findLink(std::vector<Link>& links, const std::string& name)
{
    for (Link& l : links)
        if (l.name == name) return &l;
    return nullptr;
}

bool parseAddress(const std::string& text, bool ipv6, unsigned char (&bytes)[16])
{
    std::memset(bytes, 0, sizeof bytes);
    return inet_pton(ipv6 ? AF_INET6 : AF_INET, text.c_str(), bytes) == 1;
}

}  // namespace

bool Interface::has(const char* flag) const { return std::find(flags.begin(), flags.end(), flag) != flags.end(); }

std::string Interface::physical() const { return name.substr(0, name.find(':')); }

std::vector<Interface> parseIfconfig(const std::vector<std::string>& lines)
{
    std::vector<Interface> out;
    bool inBlock = false;
    for (const std::string& line : lines) {
        if (line.empty()) continue;
        if (!std::isspace(uc(line[0]))) {
            // "name: flags=HEX<WORD,...> mtu N": anything else (a shell prompt
            // pasted into a capture) ends the block.
            const size_t at = line.find(": flags=");
            inBlock = at != std::string::npos && at > 0 && line.find(' ') > at;
            if (!inBlock) continue;
            Interface i;
            i.name = line.substr(0, at);
            const size_t open = line.find('<', at), close = line.find('>', at);
            if (open != std::string::npos && close != std::string::npos && close > open) {
                std::string flag;
                std::istringstream in(line.substr(open + 1, close - open - 1));
                while (std::getline(in, flag, ','))
                    if (!flag.empty()) i.flags.push_back(flag);
            }
            i.ipv6 = i.has("IPv6");
            out.push_back(i);
            continue;
        }
        if (!inBlock) continue;
        Interface& i = out.back();
        const std::vector<std::string> w = words(line);
        if (w.size() < 2) continue;
        // A heading has one address: the first line that gives one.
        const bool addressed = !i.address.empty();
        if (w[0] == "inet" && w[1] != "tunnel" && !addressed) {
            i.address = w[1];
            for (size_t k = 2; k + 1 < w.size(); ++k)
                if (w[k] == "netmask") i.prefix = bitsOfMask(w[k + 1]);
        } else if (w[0] == "inet6" && w[1] != "tunnel" && !addressed) {
            const size_t slash = w[1].find('/');
            i.address = w[1].substr(0, slash);
            if (slash != std::string::npos) i.prefix = std::atoi(w[1].c_str() + slash + 1);
            i.ipv6 = true;
        } else if (w[0] == "ether") {
            i.mac = macText(w[1]);
        } else if (w[0] == "zone") {
            i.zone = w[1];
        }
    }
    return out;
}

std::vector<Route> parseDefaultRoutes(const std::vector<std::string>& lines)
{
    std::vector<Route> out;
    bool ipv6 = false;
    for (const std::string& line : lines) {
        if (line.compare(0, 15, "Routing Table: ") == 0) {
            ipv6 = line.find("IPv6") != std::string::npos;
            continue;
        }
        const std::vector<std::string> w = words(line);
        // destination gateway flags ref use [interface]: a long IPv6 gateway
        // shifts the columns, so they are counted, not measured.
        if (w.size() < 5 || (w[0] != "default" && w[0] != "0.0.0.0" && w[0] != "::/0")) continue;
        Route r;
        r.ipv6 = ipv6;
        r.gateway = w[1];
        if (w.size() >= 6) r.interface = w[5];
        out.push_back(r);
    }
    return out;
}

Resolver parseResolver(const std::string& text)
{
    Resolver r;
    std::string search;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        const std::vector<std::string> w = words(line.substr(0, line.find_first_of("#;")));
        if (w.size() < 2) continue;
        if (w[0] == "nameserver")
            r.nameservers.push_back(w[1]);
        else if (w[0] == "domain")
            r.domain = w[1];
        else if (w[0] == "search" && search.empty())
            search = w[1];
    }
    if (r.domain.empty()) r.domain = search;
    return r;
}

std::string Link::driver() const
{
    if (aggregation) return "aggr";
    size_t end = device.size();
    while (end > 0 && std::isdigit(uc(device[end - 1]))) --end;
    return device.substr(0, end);
}

int Link::instance() const
{
    const std::string d = driver();
    if (aggregation || d.size() == device.size()) return -1;
    return std::atoi(device.c_str() + d.size());
}

std::vector<Link> parsePhysicalLinks(const std::vector<std::string>& lines)
{
    std::vector<Link> out;
    for (const std::string& line : lines) {
        const std::vector<std::string> f = parseableFields(line);
        if (f.size() < 3 || f[0].empty()) continue;
        Link l;
        l.name = f[0];
        l.media = f[1];
        l.device = f[2];
        out.push_back(l);
    }
    return out;
}

void readFactoryAddresses(const std::vector<std::string>& lines, std::vector<Link>& links)
{
    // By name, the first link of each: one look-up a line, not a search.
    std::map<std::string, Link*> byName;
    for (Link& l : links) byName.emplace(l.name, &l);
    for (const std::string& line : lines) {
        const std::vector<std::string> f = parseableFields(line);
        if (f.size() < 3 || f[1] != "primary") continue;
        const auto it = byName.find(f[0]);
        if (it != byName.end()) it->second->factoryMac = macText(f[2]);
    }
}

void readAggregations(const std::vector<std::string>& lines, std::vector<Link>& links)
{
    for (const std::string& line : lines) {
        const std::vector<std::string> f = parseableFields(line);
        if (f.size() < 3 || f[1] != "aggr" || f[0].empty()) continue;
        Link l;
        l.name = f[0];
        l.aggregation = true;
        l.members = words(f[2]);
        links.push_back(l);
    }
}

std::vector<Link> parseSolaris10Devices(const std::vector<std::string>& lines)
{
    std::vector<Link> out;
    for (const std::string& line : lines) {
        const std::vector<std::string> w = words(line);
        if (w.size() < 2 || w[1] != "link:") continue;
        Link l;
        l.name = l.device = w[0];
        out.push_back(l);
    }
    return out;
}

void readSolaris10Aggregations(const std::vector<std::string>& lines, std::vector<Link>& links)
{
    Link* aggregation = nullptr;
    for (const std::string& line : lines) {
        const std::vector<std::string> w = words(line);
        if (w.size() >= 2 && w[0] == "key:") {
            Link l;
            l.name = "aggr" + w[1];
            l.aggregation = true;
            for (size_t k = 2; k + 1 < w.size(); ++k)
                if (w[k] == "address:") l.currentMac = macText(w[k + 1]);
            links.push_back(l);
            aggregation = &links.back();
        } else if (aggregation && w.size() >= 2 && w[0] != "device" && w[1].find(':') != std::string::npos) {
            aggregation->members.push_back(w[0]);
            Link* member = findLink(links, w[0]);
            if (member && member->currentMac.empty()) member->currentMac = macText(w[1]);
        }
    }
}

std::map<std::string, std::string> parseModuleVersions(const std::vector<std::string>& lines)
{
    std::map<std::string, std::string> out;
    for (const std::string& line : lines) {
        // " Id Loadaddr Size Info Rev Module Name": the name and "(description)" follow five columns.
        const size_t open = line.find('('), close = line.rfind(')');
        const std::vector<std::string> w = words(line.substr(0, open));
        if (open == std::string::npos || close == std::string::npos || close < open || w.size() < 6) continue;
        const std::vector<std::string> description = words(line.substr(open + 1, close - open - 1));
        if (description.empty()) continue;
        const std::string& last = description.back();
        const size_t digit = last[0] == 'v' || last[0] == 'V' ? 1 : 0;
        if (description.size() >= 2 && last.size() > digit && std::isdigit(uc(last[digit])))
            out[w[5]] = last;
    }
    return out;
}

std::map<std::string, std::pair<long, long>> parsePciNodes(const std::string& text)
{
    std::map<std::string, std::pair<long, long>> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        // "/pci@0,0/pci15ad,790@11/pci8086,100f@0" 2 "e1000g"
        const std::vector<std::string> w = words(line);
        if (w.size() < 3 || w[0].size() < 3 || w[0].front() != '"' || w[2].size() < 3) continue;
        const std::string path = w[0].substr(1, w[0].size() - 2);
        const std::string driver = w[2].substr(1, w[2].size() - 2);
        std::string node = path.substr(path.rfind('/') + 1);
        node = node.substr(0, node.find('@'));
        const size_t digits = node.compare(0, 5, "pciex") == 0 ? 5 : node.compare(0, 3, "pci") == 0 ? 3 : 0;
        const size_t comma = node.find(',');
        if (digits == 0 || comma == std::string::npos) continue;
        const std::string vendor = node.substr(digits, comma - digits), device = node.substr(comma + 1);
        if (!isHex(vendor) || !isHex(device) || vendor.size() > 4 || device.size() > 4) continue;
        out[driver + w[1]] = {std::strtol(vendor.c_str(), nullptr, 16), std::strtol(device.c_str(), nullptr, 16)};
    }
    return out;
}

std::string macText(const std::string& printed)
{
    std::string out;
    std::istringstream in(printed);
    int parts = 0;
    for (std::string part; std::getline(in, part, ':'); ++parts) {
        if (part.empty() || part.size() > 2 || !isHex(part)) return printed;
        if (!out.empty()) out += ':';
        if (part.size() == 1) out += '0';
        for (char c : part) out += static_cast<char>(std::tolower(uc(c)));
    }
    return parts >= 6 ? out : printed;
}

std::string networkOf(const std::string& address, int prefix, bool ipv6)
{
    unsigned char bytes[16];
    const int size = ipv6 ? 16 : 4;
    if (prefix < 0 || prefix > size * 8 || !parseAddress(address, ipv6, bytes)) return std::string();
    for (int bit = prefix; bit < size * 8; ++bit) bytes[bit / 8] &= static_cast<unsigned char>(~(0x80 >> (bit % 8)));
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(ipv6 ? AF_INET6 : AF_INET, bytes, text, sizeof text) ? text : std::string();
}

std::string ipv4Mask(int prefix)
{
    if (prefix < 0 || prefix > 32) return std::string();
    const unsigned long mask = prefix == 0 ? 0 : (0xFFFFFFFFUL << (32 - prefix)) & 0xFFFFFFFFUL;
    char text[16];
    std::snprintf(text, sizeof text, "%lu.%lu.%lu.%lu", mask >> 24, (mask >> 16) & 0xFF, (mask >> 8) & 0xFF,
                  mask & 0xFF);
    return text;
}

bool sameNetwork(const std::string& address, const Interface& within)
{
    const std::string network = networkOf(within.address, within.prefix, within.ipv6);
    return !network.empty() && networkOf(address, within.prefix, within.ipv6) == network;
}

const Link* NetworkFacts::linkOf(const Interface& i) const
{
    const std::string name = i.physical();
    for (const Link& l : links)
        if (l.name == name) return &l;
    return nullptr;
}

std::string NetworkFacts::permanentMac(const Interface& i) const
{
    const Link* link = linkOf(i);
    if (link && !link->factoryMac.empty()) return link->factoryMac;
    if (link && !link->currentMac.empty()) return link->currentMac;
    // An IPv6 heading or a logical interface may lack the "ether" line its
    // physical interface's IPv4 heading has.
    for (const Interface& other : interfaces)
        if (other.physical() == i.physical() && !other.mac.empty()) return other.mac;
    return std::string();
}

std::string NetworkFacts::gatewayOf(const Interface& i) const
{
    for (const Route& r : defaultRoutes)
        if (r.ipv6 == i.ipv6 && !r.interface.empty() && r.interface.substr(0, r.interface.find(':')) == i.physical())
            return r.gateway;
    // A default route without its interface goes through the one whose
    // network holds the gateway.
    for (const Route& r : defaultRoutes)
        if (r.ipv6 == i.ipv6 && r.interface.empty() && sameNetwork(r.gateway, i)) return r.gateway;
    return std::string();
}

namespace {

using sys::solaris::Id;

bool run(sys::solaris::Id id, std::vector<std::string>& lines)
{
    ZPopen command{sys::solaris::argv(id)};
    if (command.run() != 0) {
        NET_TRACE(traceMIN, "hardware ERROR! %s failed, status %d", sys::solaris::entry(id).text, command.exitStatus());
        return false;
    }
    lines = command.lines();
    return true;
}

// Solaris 10 and older have dladm's first form (show-dev, show-aggr).
bool firstDladm(const std::string& release)
{
    return release.compare(0, 2, "5.") == 0 && std::atoi(release.c_str() + 2) <= 10;
}

std::vector<Link> gatherLinks(const std::string& release, const std::vector<Interface>& interfaces)
{
    std::vector<Link> links;
    std::vector<std::string> lines;
    if (firstDladm(release)) {
        if (run(Id::DladmDevices, lines)) links = parseSolaris10Devices(lines);
        if (run(Id::DladmAggregations, lines)) readSolaris10Aggregations(lines, links);
    } else {
        if (run(Id::DladmPhysical, lines))
            links = parsePhysicalLinks(lines);
        if (!links.empty() &&
            run(Id::DladmFactoryAddresses, lines))
            readFactoryAddresses(lines, links);
        if (run(Id::DladmLinks, lines))
            readAggregations(lines, links);
    }
    // The address in use is the plumbed interface's "ether" line (the first
    // of its name), found by name rather than searched for each link.
    std::map<std::string, const std::string*> plumbedMac;
    for (const Interface& i : interfaces)
        if (!i.mac.empty()) plumbedMac.emplace(i.physical(), &i.mac);
    for (Link& l : links) {
        const auto it = plumbedMac.find(l.name);
        if (it != plumbedMac.end()) l.currentMac = *it->second;
    }
    for (Link& l : links) {
        if (!l.aggregation) continue;
        // An aggregation's factory address is its first member's, as dladm picks it by default.
        if (l.currentMac.empty() && !l.members.empty())
            if (const Link* first = findLink(links, l.members.front()))
                l.currentMac = first->factoryMac.empty() ? first->currentMac : first->factoryMac;
        if (l.media.empty()) l.media = "Ethernet";
    }
    return links;
}

// The module file the kernel loaded the driver from: 64-bit modules first.
std::string driverPath(sys::System& os, const std::string& driver)
{
    const std::string paths[] = {"/kernel/drv/amd64/", "/kernel/drv/sparcv9/", "/kernel/drv/", "/usr/kernel/drv/amd64/",
                                 "/usr/kernel/drv/sparcv9/", "/usr/kernel/drv/"};
    for (const std::string& folder : paths) {
        const std::string path = folder + driver;
        const int fd = os.openRegular(path.c_str());  // a module is a file; a FIFO there would block an open
        if (fd < 0) continue;
        os.close(fd);
        return path;
    }
    return std::string();
}

}  // namespace

NetworkFacts gatherNetwork(sys::System& os)
{
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "network");
    NetworkFacts facts;
    facts.hostname = systemfacts::sysinfoText(os, SI_HOSTNAME);
    std::vector<std::string> lines;
    if (run(Id::Ifconfig, lines)) facts.interfaces = parseIfconfig(lines);
    if (run(Id::Netstat, lines)) facts.defaultRoutes = parseDefaultRoutes(lines);
    std::string text;
    // The resolver itself reads no further than its first lines: a longer
    // file still names the domain and servers.
    bool resolverCut = false;
    facts.resolverRead = util::readSystemFileHead(os, sys::solaris::path(Id::ResolverConf), text, 64 << 10, &resolverCut);
    if (resolverCut) NET_TRACE(traceMID, "hardware %s", "/etc/resolv.conf is over 64 KiB: its first 64 KiB read");
    if (facts.resolverRead)
        facts.resolver = parseResolver(text);
    else
        NET_TRACE(traceMID, "hardware %s", "no /etc/resolv.conf: no domain or name servers");
    facts.links = gatherLinks(systemfacts::sysinfoText(os, SI_RELEASE), facts.interfaces);

    bool physical = false;
    for (const Link& l : facts.links) physical = physical || !l.aggregation;
    if (physical) {
        if (run(Id::Modinfo, lines)) facts.driverVersions = parseModuleVersions(lines);
        if (util::readSystemFile(os, sys::solaris::path(Id::PathToInst), text, 4 << 20)) facts.pciIds = parsePciNodes(text);
        for (const Link& l : facts.links)
            if (!facts.driverPaths.count(l.driver()))
                facts.driverPaths[l.driver()] = driverPath(os, l.driver());
    }
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %zu %s, %zu %s",
                               facts.interfaces.size(), "interfaces", facts.links.size(), "links");
    return facts;
}

namespace {
ScanScoped<NetworkFacts>& cache()
{
    static ScanScoped<NetworkFacts> c;
    return c;
}
}  // namespace

std::shared_ptr<const NetworkFacts> scanNetwork(sys::System& os)
{
    return cache().get(os, [&os] { return std::make_shared<const NetworkFacts>(gatherNetwork(os)); });
}

void forgetNetwork() { cache().forget(); }

INVSCAN_AT_SCAN_END(forgetNetwork);

}  // namespace network
