#if defined(__linux__)

#include "common/sys/LinuxNetwork.h"

#include "common/sys/LinuxAnswers.h"
#include "common/sys/SolarisCommands.h"

#include <arpa/inet.h>
#include <dirent.h>
#include <linux/ethtool.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>

namespace sys {
namespace linuxnetwork {
using linuxanswers::firstLine;

namespace {

std::vector<std::string> entries(const std::string& path)
{
    std::vector<std::string> out;
    if (DIR* dir = opendir(path.c_str())) {
        while (const dirent* e = readdir(dir))
            if (e->d_name[0] != '.') out.push_back(e->d_name);
        closedir(dir);
    }
    std::sort(out.begin(), out.end());
    return out;
}

std::string linkTarget(const std::string& path)
{
    char target[PATH_MAX];
    const ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
    return n > 0 ? std::string(target, static_cast<size_t>(n)) : std::string();
}

std::string baseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// "2:fc:0:0:0:1": Solaris prints each byte without its leading zero.
std::string solarisMac(const std::string& mac)
{
    std::string out;
    std::istringstream in(mac);
    for (std::string part; std::getline(in, part, ':');) {
        if (!out.empty()) out += ':';
        out += part.size() == 2 && part[0] == '0' ? part.substr(1) : part;
    }
    return out;
}

// The flags of a Solaris heading, from the kernel's: (Solaris bit, Linux bit, word).
struct FlagWord {
    unsigned long long solaris;
    unsigned int linux;
    const char* word;
};
const FlagWord kFlags[] = {{0x1, IFF_UP, "UP"},
                           {0x2, IFF_BROADCAST, "BROADCAST"},
                           {0x8, IFF_LOOPBACK, "LOOPBACK"},
                           {0x10, IFF_POINTOPOINT, "POINTOPOINT"},
                           {0x40, IFF_RUNNING, "RUNNING"},
                           {0x80, IFF_NOARP, "NOARP"},
                           {0x100, IFF_PROMISC, "PROMISC"},
                           {0x800, IFF_MULTICAST, "MULTICAST"}};

std::string heading(const std::string& name, const KernelLink& link, const KernelAddress& a)
{
    unsigned long long bits = 0;
    std::string words;
    auto add = [&](unsigned long long bit, const char* word) {
        bits |= bit;
        words += (words.empty() ? "" : ",") + std::string(word);
    };
    for (const FlagWord& f : kFlags)
        if (link.flags & f.linux) add(f.solaris, f.word);
    if (a.dynamic) add(a.ipv6 ? 0x80000 : 0x4000, a.ipv6 ? "ADDRCONF" : "DHCP");
    add(a.ipv6 ? 0x2000000 : 0x1000000, a.ipv6 ? "IPv6" : "IPv4");
    char text[512];
    std::snprintf(text, sizeof text, "%s: flags=%llx<%s> mtu %d index %d", name.c_str(), bits, words.c_str(), link.mtu,
                  link.index);
    return text;
}

std::string hexMask(int prefix)
{
    const unsigned long mask = prefix <= 0 ? 0 : (0xFFFFFFFFUL << (32 - std::min(prefix, 32))) & 0xFFFFFFFFUL;
    char text[16];
    std::snprintf(text, sizeof text, "%08lx", mask);
    return text;
}

// ---- the kernel's lists, over netlink ----

bool dump(int type, const std::function<void(const nlmsghdr*)>& each)
{
    const int fd = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (fd < 0) return false;
    timeval wait{2, 0};
    setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    struct {
        nlmsghdr header;
        rtgenmsg body;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = static_cast<unsigned short>(type);
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.header.nlmsg_seq = 1;
    request.body.rtgen_family = AF_UNSPEC;
    bool ok = send(fd, &request, sizeof request, 0) == static_cast<ssize_t>(sizeof request);
    std::vector<char> buffer(32768);
    for (bool done = !ok; !done;) {
        const ssize_t n = recv(fd, buffer.data(), buffer.size(), 0);
        if (n <= 0) {
            ok = false;
            break;
        }
        // The walk of NLMSG_OK and NLMSG_NEXT, without their mix of signed
        // and unsigned lengths.
        const size_t got = static_cast<size_t>(n);
        for (size_t at = 0; at + sizeof(nlmsghdr) <= got;) {
            const auto* h = reinterpret_cast<const nlmsghdr*>(buffer.data() + at);
            if (h->nlmsg_len < sizeof(nlmsghdr) || h->nlmsg_len > got - at) break;
            at += NLMSG_ALIGN(static_cast<size_t>(h->nlmsg_len));
            if (h->nlmsg_type == NLMSG_DONE) {
                done = true;
                break;
            }
            if (h->nlmsg_type == NLMSG_ERROR) {
                ok = false;
                done = true;
                break;
            }
            each(h);
        }
    }
    close(fd);
    return ok;
}

std::string macOf(const unsigned char* bytes, size_t length)
{
    std::string out;
    char part[4];
    for (size_t i = 0; i < length; ++i) {
        std::snprintf(part, sizeof part, i ? ":%02x" : "%02x", bytes[i]);
        out += part;
    }
    return out;
}

bool kernelInterfaces(std::vector<KernelLink>& links, std::vector<KernelAddress>& addresses)
{
    const bool linksRead = dump(RTM_GETLINK, [&](const nlmsghdr* h) {
        if (h->nlmsg_type != RTM_NEWLINK) return;
        const auto* info = static_cast<const ifinfomsg*>(NLMSG_DATA(h));
        KernelLink l;
        l.index = info->ifi_index;
        l.flags = info->ifi_flags;
        int length = static_cast<int>(IFLA_PAYLOAD(h));
        for (const rtattr* a = IFLA_RTA(info); RTA_OK(a, length); a = RTA_NEXT(a, length)) {
            if (a->rta_type == IFLA_IFNAME)
                l.name = static_cast<const char*>(RTA_DATA(a));
            else if (a->rta_type == IFLA_MTU && RTA_PAYLOAD(a) >= sizeof(int))
                std::memcpy(&l.mtu, RTA_DATA(a), sizeof(int));
            else if (a->rta_type == IFLA_ADDRESS && info->ifi_type != ARPHRD_LOOPBACK)
                l.mac = macOf(static_cast<const unsigned char*>(RTA_DATA(a)), RTA_PAYLOAD(a));
        }
        links.push_back(l);
    });
    const bool addressesRead = dump(RTM_GETADDR, [&](const nlmsghdr* h) {
        if (h->nlmsg_type != RTM_NEWADDR) return;
        const auto* info = static_cast<const ifaddrmsg*>(NLMSG_DATA(h));
        if (info->ifa_family != AF_INET && info->ifa_family != AF_INET6) return;
        KernelAddress a;
        a.index = static_cast<int>(info->ifa_index);
        a.ipv6 = info->ifa_family == AF_INET6;
        a.prefix = info->ifa_prefixlen;
        unsigned int flags = info->ifa_flags;
        char text[INET6_ADDRSTRLEN];
        int length = static_cast<int>(IFA_PAYLOAD(h));
        for (const rtattr* at = IFA_RTA(info); RTA_OK(at, length); at = RTA_NEXT(at, length)) {
            // IPv4's own address is IFA_LOCAL (IFA_ADDRESS is the peer's on a point-to-point link).
            if ((at->rta_type == (a.ipv6 ? IFA_ADDRESS : IFA_LOCAL)) &&
                inet_ntop(info->ifa_family, RTA_DATA(at), text, sizeof text))
                a.address = text;
            else if (at->rta_type == IFA_BROADCAST && inet_ntop(info->ifa_family, RTA_DATA(at), text, sizeof text))
                a.broadcast = text;
            else if (at->rta_type == IFA_FLAGS && RTA_PAYLOAD(at) >= sizeof flags)
                std::memcpy(&flags, RTA_DATA(at), sizeof flags);
        }
        a.dynamic = !(flags & IFA_F_PERMANENT);
        if (!a.address.empty()) addresses.push_back(a);
    });
    return linksRead && addressesRead;
}

// ---- the physical links, from sysfs and the drivers ----

struct PhysicalLink {
    std::string name, driver, media, mac, permanentMac, version, pciPath;
    int instance = 0;
    long vendor = -1, device = -1;
};

bool ethtool(const std::string& name, void* request)
{
    const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) return false;
    ifreq ifr{};
    std::strncpy(ifr.ifr_name, name.c_str(), IFNAMSIZ - 1);
    ifr.ifr_data = static_cast<char*>(request);
    const bool ok = ioctl(fd, SIOCETHTOOL, &ifr) == 0;
    close(fd);
    return ok;
}

// The PCI function a link's device sits on: the deepest "0000:00:03.0" folder of its path.
void findPciFunction(const std::string& root, const std::string& name, PhysicalLink& l)
{
    char resolved[PATH_MAX];
    if (!realpath((root + "/sys/class/net/" + name + "/device").c_str(), resolved)) return;
    for (std::string path = resolved; path.size() > root.size() + 1; path = path.substr(0, path.rfind('/'))) {
        const std::string node = baseName(path);
        unsigned int domain, bus, slot, function;
        char extra;
        if (std::sscanf(node.c_str(), "%x:%x:%x.%x%c", &domain, &bus, &slot, &function, &extra) != 4) continue;
        l.vendor = std::strtol(firstLine(path + "/vendor").c_str(), nullptr, 16);
        l.device = std::strtol(firstLine(path + "/device").c_str(), nullptr, 16);
        char text[64];
        std::snprintf(text, sizeof text, function ? "/pci@0,0/pci%lx,%lx@%x,%x" : "/pci@0,0/pci%lx,%lx@%x", l.vendor,
                      l.device, slot, function);
        l.pciPath = text;
        return;
    }
}

std::vector<PhysicalLink> physicalLinks(const std::string& root)
{
    std::vector<PhysicalLink> out;
    std::map<std::string, int> instances;
    const std::string net = root + "/sys/class/net/";
    for (const std::string& name : entries(net)) {
        const std::string driverLink = linkTarget(net + name + "/device/driver");
        if (driverLink.empty()) continue;  // virtual: no device under it
        PhysicalLink l;
        l.name = name;
        l.driver = baseName(driverLink);
        l.instance = instances[l.driver]++;
        const std::string type = firstLine(net + name + "/type");
        const bool wireless = access((net + name + "/wireless").c_str(), F_OK) == 0 ||
                              access((net + name + "/phy80211").c_str(), F_OK) == 0;
        l.media = type == "1" ? (wireless ? "WiFi" : "Ethernet") : type == "32" ? "Infiniband" : "Unknown";
        l.mac = l.permanentMac = firstLine(net + name + "/address");
        l.version = firstLine(root + "/sys/module/" + l.driver + "/version");
        if (root.empty()) {
            // The drivers tell the factory address and their own version.
            alignas(ethtool_perm_addr) unsigned char buffer[sizeof(ethtool_perm_addr) + 32] = {};
            auto* permanent = reinterpret_cast<ethtool_perm_addr*>(buffer);
            permanent->cmd = ETHTOOL_GPERMADDR;
            permanent->size = 32;
            if (ethtool(name, permanent) && permanent->size > 0 && permanent->size <= 32) {
                const std::string mac = macOf(buffer + sizeof(ethtool_perm_addr), permanent->size);
                if (mac.find_first_not_of("0:") != std::string::npos) l.permanentMac = mac;
            }
            ethtool_drvinfo info{};
            info.cmd = ETHTOOL_GDRVINFO;
            if (ethtool(name, &info) && info.version[0]) l.version = std::string(info.version, strnlen(info.version, sizeof info.version));
        }
        findPciFunction(root, name, l);
        out.push_back(l);
    }
    return out;
}

// ---- the routing table ----

std::string ipv4Of(const std::string& hex)
{
    // /proc/net/route prints each address as the host-order word of its network-order bytes.
    const unsigned long word = std::strtoul(hex.c_str(), nullptr, 16);
    char text[16];
    std::snprintf(text, sizeof text, "%lu.%lu.%lu.%lu", word & 0xFF, (word >> 8) & 0xFF, (word >> 16) & 0xFF,
                  (word >> 24) & 0xFF);
    return text;
}

std::string ipv6Of(const std::string& hex)
{
    unsigned char bytes[16] = {};
    for (size_t i = 0; i < 16 && 2 * i + 1 < hex.size(); ++i)
        bytes[i] = static_cast<unsigned char>(std::strtoul(hex.substr(2 * i, 2).c_str(), nullptr, 16));
    char text[INET6_ADDRSTRLEN];
    return inet_ntop(AF_INET6, bytes, text, sizeof text) ? text : "::";
}

std::string routeFlags(unsigned long flags)
{
    return std::string("U") + (flags & 0x2 ? "G" : "") + (flags & 0x4 ? "H" : "");
}

std::vector<std::string> netstatLines(const std::string& root)
{
    char row[256];
    std::vector<std::string> out = {"", "Routing Table: IPv4",
                                    "  Destination           Gateway           Flags  Ref     Use     Interface",
                                    "-------------------- -------------------- ----- ----- ---------- ---------"};
    std::ifstream v4(root + "/proc/net/route");
    std::string line;
    std::getline(v4, line);  // the heading
    while (std::getline(v4, line)) {
        std::istringstream in(line);
        std::string iface, destination, gateway, flags, refs, use, metric, mask;
        if (!(in >> iface >> destination >> gateway >> flags >> refs >> use >> metric >> mask)) continue;
        const unsigned long bits = std::strtoul(flags.c_str(), nullptr, 16);
        if (!(bits & 0x1)) continue;
        const bool isDefault = std::strtoul(destination.c_str(), nullptr, 16) == 0 &&
                               std::strtoul(mask.c_str(), nullptr, 16) == 0;
        std::snprintf(row, sizeof row, "%-20s %-20s %-5s %5s %10s %s", isDefault ? "default" : ipv4Of(destination).c_str(),
                      ipv4Of(gateway).c_str(), routeFlags(bits).c_str(), refs.c_str(), use.c_str(), iface.c_str());
        out.push_back(row);
    }
    out.insert(out.end(), {"", "Routing Table: IPv6",
                           "  Destination/Mask            Gateway                   Flags Ref   Use    If   ",
                           "--------------------------- --------------------------- ----- --- ------- -----"});
    std::ifstream v6(root + "/proc/net/ipv6_route");
    while (std::getline(v6, line)) {
        std::istringstream in(line);
        std::string destination, length, source, sourceLength, next, metric, refs, use, flags, iface;
        if (!(in >> destination >> length >> source >> sourceLength >> next >> metric >> refs >> use >> flags >> iface))
            continue;
        const unsigned long bits = std::strtoul(flags.c_str(), nullptr, 16);
        if (!(bits & 0x1) || (bits & 0x200)) continue;  // down, or a reject route
        const unsigned long prefix = std::strtoul(length.c_str(), nullptr, 16);
        const std::string target =
            prefix == 0 ? std::string("default") : ipv6Of(destination) + "/" + std::to_string(prefix);
        std::snprintf(row, sizeof row, "%-27s %-27s %-5s %3lu %7lu %s", target.c_str(), ipv6Of(next).c_str(),
                      routeFlags(bits).c_str(), std::strtoul(refs.c_str(), nullptr, 16),
                      std::strtoul(use.c_str(), nullptr, 16), iface.c_str());
        out.push_back(row);
    }
    return out;
}

// Parseable dladm output escapes the colons inside a field.
std::string escaped(const std::string& text)
{
    std::string out;
    for (char c : text) out += c == ':' ? std::string("\\:") : std::string(1, c);
    return out;
}

}  // namespace

std::vector<std::string> ifconfigLines(const std::vector<KernelLink>& links, const std::vector<KernelAddress>& addresses)
{
    std::vector<std::string> out;
    for (bool ipv6 : {false, true}) {
        for (const KernelLink& link : links) {
            int logical = 0;
            for (const KernelAddress& a : addresses) {
                if (a.index != link.index || a.ipv6 != ipv6) continue;
                const std::string name = logical ? link.name + ":" + std::to_string(logical) : link.name;
                out.push_back(heading(name, link, a));
                if (ipv6) {
                    out.push_back("\tinet6 " + a.address + "/" + std::to_string(a.prefix));
                } else {
                    std::string line = "\tinet " + a.address + " netmask " + hexMask(a.prefix);
                    if (!a.broadcast.empty()) line += " broadcast " + a.broadcast;
                    out.push_back(line);
                }
                if (logical++ == 0 && !link.mac.empty() && !(link.flags & IFF_LOOPBACK))
                    out.push_back("\tether " + solarisMac(link.mac));
            }
        }
    }
    return out;
}

bool answerRun(const std::vector<std::string>& argv, const std::string& root, std::vector<std::string>& lines,
               int& status)
{
    lines.clear();
    status = 0;
    const solaris::Entry* command = solaris::findRun(argv);
    if (!command) return false;
    if (command->id == solaris::Id::Ifconfig) {
        std::vector<KernelLink> links;
        std::vector<KernelAddress> addresses;
        if (!root.empty() || !kernelInterfaces(links, addresses)) {
            status = 1;
            return true;
        }
        lines = ifconfigLines(links, addresses);
        return true;
    }
    if (command->id == solaris::Id::Netstat) {
        lines = netstatLines(root);
        return true;
    }
    if (command->id == solaris::Id::DladmPhysical) {
        for (const PhysicalLink& l : physicalLinks(root))
            lines.push_back(l.name + ":" + l.media + ":" + l.driver + std::to_string(l.instance));
        return true;
    }
    if (command->id == solaris::Id::DladmFactoryAddresses) {
        for (const PhysicalLink& l : physicalLinks(root))
            if (!l.permanentMac.empty()) lines.push_back(l.name + ":primary:" + escaped(solarisMac(l.permanentMac)));
        return true;
    }
    if (command->id == solaris::Id::DladmLinks) {
        const std::string net = root + "/sys/class/net/";
        for (const PhysicalLink& l : physicalLinks(root)) lines.push_back(l.name + ":phys:");
        for (const std::string& name : entries(net)) {
            const std::string slaves = firstLine(net + name + "/bonding/slaves");
            if (access((net + name + "/bonding").c_str(), F_OK) == 0) lines.push_back(name + ":aggr:" + slaves);
        }
        return true;
    }
    if (command->id == solaris::Id::Modinfo) {
        lines.push_back(" Id Loadaddr   Size Info Rev Module Name");
        std::set<std::string> drivers;
        int id = 0;
        for (const PhysicalLink& l : physicalLinks(root)) {
            if (!drivers.insert(l.driver).second) continue;
            char row[256];
            std::snprintf(row, sizeof row, "%3d %8x %6x %3d %3d  %s (%s%s%s)", ++id, 0, 0, 0, 1, l.driver.c_str(),
                          l.driver.c_str(), l.version.empty() ? "" : " ", l.version.c_str());
            lines.push_back(row);
        }
        return true;
    }
    return false;
}

bool answerFile(const std::string& path, const std::string& root, std::string& text)
{
    const solaris::Entry* e = solaris::findFile(path);
    if (!e || e->id != solaris::Id::PathToInst) return false;
    text = "#\n#\tCaution! This file contains critical kernel state\n#\n";
    for (const PhysicalLink& l : physicalLinks(root))
        if (!l.pciPath.empty()) text += "\"" + l.pciPath + "\" " + std::to_string(l.instance) + " \"" + l.driver + "\"\n";
    return true;
}

}  // namespace linuxnetwork
}  // namespace sys

#endif  // __linux__
