#pragma once
// The Solaris network commands and files the network groups read, answered on
// Linux: "ifconfig -a" (from the kernel's interface and address lists over
// netlink), "netstat -rn" (/proc/net/route, /proc/net/ipv6_route), dladm's
// link lists (sysfs), "modinfo" (the drivers' versions) and
// "/etc/path_to_inst" (each link's PCI function). `root` prefixes the Linux
// files read; the kernel's own lists are asked only on a live machine ("").
#if defined(__linux__)

#include <string>
#include <vector>

namespace sys {
namespace linuxnetwork {

// One interface of the kernel, and one of its addresses.
struct KernelLink {
    std::string name;
    int index = 0;
    unsigned int flags = 0;  // the kernel's IFF_ flags
    int mtu = 0;
    std::string mac;  // "02:fc:00:00:00:01"; empty without one
};
struct KernelAddress {
    int index = 0;  // the link's
    bool ipv6 = false;
    std::string address, broadcast;
    int prefix = 0;
    bool dynamic = false;  // leased: it has a lifetime (DHCP, autoconfiguration)
};

// "ifconfig -a" as Solaris prints it: the IPv4 headings, then the IPv6 ones;
// a link's second and later addresses of a family are logical interfaces
// "name:1", "name:2". Links without an address of a family have no heading.
std::vector<std::string> ifconfigLines(const std::vector<KernelLink>& links,
                                       const std::vector<KernelAddress>& addresses);

// The answers; false for a command or file this file does not answer.
bool answerRun(const std::vector<std::string>& argv, const std::string& root, std::vector<std::string>& lines,
               int& status);
bool answerFile(const std::string& path, const std::string& root, std::string& text);

}  // namespace linuxnetwork
}  // namespace sys

#endif  // __linux__
