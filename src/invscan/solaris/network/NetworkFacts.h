#pragma once
// What the network groups read, gathered once a scan through the OS seam:
// the configured interfaces and their addresses ("ifconfig -a"), the default
// routes ("netstat -rn"), the resolver's settings (/etc/resolv.conf), the
// data links and their drivers (dladm, modinfo, /etc/path_to_inst). Each text
// has a pure reader below.
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sys {
class System;
}

namespace network {

// One logical interface of "ifconfig -a": a heading line per interface and
// address family ("e1000g0:1: flags=1004843<UP,...,DHCP,IPv4> mtu 1500"),
// its facts indented below. Solaris gives each address an interface of its own.
struct Interface {
    std::string name;                // "e1000g0:1"
    std::vector<std::string> flags;  // "UP", "DHCP", "IPv6", ...
    bool ipv6 = false;
    std::string address;  // as printed; empty without an address line
    int prefix = -1;      // from the netmask or the "/N" suffix
    std::string mac;      // the "ether" line, written as macText does
    std::string zone;     // the "zone" line: the address is that zone's

    bool has(const char* flag) const;
    std::string physical() const;  // the name before its ':'
};
std::vector<Interface> parseIfconfig(const std::vector<std::string>& lines);

// A default route of "netstat -rn"; `interface` is empty when the table
// leaves its column blank.
struct Route {
    bool ipv6 = false;
    std::string gateway, interface;
};
std::vector<Route> parseDefaultRoutes(const std::vector<std::string>& lines);

// /etc/resolv.conf: the domain ("domain", else the first "search" word) and
// the name servers in the order the resolver asks them.
struct Resolver {
    std::string domain;
    std::vector<std::string> nameservers;
};
Resolver parseResolver(const std::string& text);

// A data link: a physical one (with its device, the driver and instance
// "e1000g0") or an aggregation of other links.
struct Link {
    std::string name;     // "net0", "e1000g0", "aggr1"
    std::string device;   // "e1000g0"; empty for an aggregation
    std::string media;    // "Ethernet"; empty when not told
    std::string factoryMac, currentMac;
    std::vector<std::string> members;  // an aggregation's links
    bool aggregation = false;

    std::string driver() const;  // the device without its instance number; "aggr"
    int instance() const;        // the device's instance number, or -1
};
// "dladm show-phys -p -o link,media,device" (Solaris 11 and later).
std::vector<Link> parsePhysicalLinks(const std::vector<std::string>& lines);
// "dladm show-phys -m -p -o link,slot,address": the primary slot's address
// is the link's factory address.
void readFactoryAddresses(const std::vector<std::string>& lines, std::vector<Link>& links);
// "dladm show-link -p -o link,class,over": the aggregations and their links.
void readAggregations(const std::vector<std::string>& lines, std::vector<Link>& links);
// "dladm show-dev" (Solaris 10): a physical link per device.
std::vector<Link> parseSolaris10Devices(const std::vector<std::string>& lines);
// "dladm show-aggr" (Solaris 10): "key: N" blocks, each aggregation "aggrN"
// with its address and its devices' addresses.
void readSolaris10Aggregations(const std::vector<std::string>& lines, std::vector<Link>& links);

// "modinfo": each module's version, the last word of its description when it
// reads as one ("e1000g (Intel PRO/1000 Ethernet 5.3.16)" gives 5.3.16).
std::map<std::string, std::string> parseModuleVersions(const std::vector<std::string>& lines);

// /etc/path_to_inst ("/pci@0,0/pci8086,100f@3" 0 "e1000g"): the PCI ids the
// device node's name carries, by device ("e1000g0"). A node named by its
// subsystem ids gives those: the card's maker rather than the chip's.
std::map<std::string, std::pair<long, long>> parsePciNodes(const std::string& text);

// "08:00:27:0d:6f:8e" of "8:0:27:d:6f:8e" (Solaris leaves out leading
// zeros); other texts as they are.
std::string macText(const std::string& printed);
// The network of `address` with `prefix` bits: "10.0.2.0", "fe80::"; empty
// when the address does not parse.
std::string networkOf(const std::string& address, int prefix, bool ipv6);
// "255.255.255.0" of 24.
std::string ipv4Mask(int prefix);
// Whether `address` lies in address/prefix of `within`.
bool sameNetwork(const std::string& address, const Interface& within);

struct NetworkFacts {
    std::string hostname;
    std::vector<Interface> interfaces;
    std::vector<Route> defaultRoutes;
    bool resolverRead = false;
    Resolver resolver;
    std::vector<Link> links;
    std::map<std::string, std::string> driverVersions;          // by driver
    std::map<std::string, std::pair<long, long>> pciIds;        // by device
    std::map<std::string, std::string> driverPaths;             // by driver

    // The link an interface is plumbed on, or null (an IPMP or tunnel interface).
    const Link* linkOf(const Interface& i) const;
    // The permanent address of an interface's link, else its own "ether".
    std::string permanentMac(const Interface& i) const;
    // The gateway of the default route through the interface, if any.
    std::string gatewayOf(const Interface& i) const;
};

NetworkFacts gatherNetwork(sys::System& os);
// The facts of this scan: gathered on the first call, shared by the three
// network groups, dropped when the scan ends (and, for hosts that never say
// so, a minute after).
std::shared_ptr<const NetworkFacts> scanNetwork(sys::System& os);
void forgetNetwork();

}  // namespace network
