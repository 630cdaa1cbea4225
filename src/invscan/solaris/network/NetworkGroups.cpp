#include "invscan/solaris/network/NetworkGroups.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <map>
#include <set>

#include "common/sys/System.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/md5.h"
#include "invscan/solaris/network/NetworkFacts.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

using network::Interface;
using network::Link;
using network::NetworkFacts;

namespace {

const char* const kSource = "./../../../src/invscan/solaris/NetworkGroups";
const char* const kFunction = "getTable()";
#define NETG_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

std::string joined(const std::vector<std::string>& items, const char* separator)
{
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : separator) + item;
    return out;
}

// The domain the resolver names, else the one the host name carries.
std::string domainOf(const NetworkFacts& facts)
{
    if (!facts.resolver.domain.empty()) return facts.resolver.domain;
    const size_t dot = facts.hostname.find('.');
    return dot == std::string::npos ? std::string() : facts.hostname.substr(dot + 1);
}

std::string nameserver(const NetworkFacts& facts, size_t n)
{
    return n < facts.resolver.nameservers.size() ? facts.resolver.nameservers[n] : std::string();
}

// An address of this system that a row shows: configured, not loopback, not
// a non-global zone's (that zone's own scan shows it).
bool shown(const Interface& i, bool ipv6)
{
    if (i.ipv6 != ipv6 || i.address.empty() || i.has("LOOPBACK") || !i.zone.empty()) return false;
    return ipv6 ? !network::networkOf(i.address, 128, true).empty() && i.address != "::" && i.address != "::1"
                : i.address != "0.0.0.0" && i.address.compare(0, 4, "127.") != 0;
}

// What an address row asks of the other interfaces and the links, by
// physical interface, gathered in one pass: asking each row's question of
// every interface made a table quadratic in its addresses (4,000 took 5 s).
struct ByPhysical {
    std::map<std::string, const Link*> link;  // the first link of the name
    std::map<std::string, std::string> mac;   // the first "ether" line of its interfaces
    // its IPv6 address for an IPv4 row: the first global one, else the first link-local one
    std::map<std::string, std::string> ipv6Global, ipv6LinkLocal;

    explicit ByPhysical(const NetworkFacts& facts)
    {
        for (const Link& l : facts.links) link.emplace(l.name, &l);
        for (const Interface& i : facts.interfaces) {
            const std::string physical = i.physical();
            if (!i.mac.empty()) mac.emplace(physical, i.mac);
            if (shown(i, true))
                (ipv6Scope(i.address) != "Link-Local" ? ipv6Global : ipv6LinkLocal).emplace(physical, i.address);
        }
    }

    static std::string find(const std::map<std::string, std::string>& in, const std::string& key)
    {
        const auto it = in.find(key);
        return it == in.end() ? std::string() : it->second;
    }

    std::string ipv6Beside(const Interface& v4) const
    {
        const std::string physical = v4.physical();
        const std::string global = find(ipv6Global, physical);
        return global.empty() ? find(ipv6LinkLocal, physical) : global;
    }

    // NetworkFacts::permanentMac without its searches: the link's factory
    // address, else the one in use, else an interface's of that name.
    std::string permanentMac(const Interface& i) const
    {
        const std::string physical = i.physical();
        const auto it = link.find(physical);
        if (it != link.end() && !it->second->factoryMac.empty()) return it->second->factoryMac;
        if (it != link.end() && !it->second->currentMac.empty()) return it->second->currentMac;
        return find(mac, physical);
    }
};

std::string ipv6Subnet(const Interface& i)
{
    const std::string network = network::networkOf(i.address, i.prefix, true);
    if (network.empty()) return std::string();
    const std::string cidr = network + "/" + std::to_string(i.prefix);
    return cidr.size() <= 40 ? cidr : "/" + std::to_string(i.prefix);
}

unsigned long adapterType(const Link& l)
{
    if (l.media == "Ethernet") return ADAPTER_ETHERNET;
    if (!l.media.empty()) return ADAPTER_OTHER;
    // Solaris 10 does not name the medium: a 6-byte address is Ethernet's.
    const std::string mac = l.currentMac.empty() ? l.factoryMac : l.currentMac;
    return mac.size() == 17 ? ADAPTER_ETHERNET : ADAPTER_UNKNOWN;
}

template <typename Shape>
KorTable* table(KorGroup& group, const char* name, Shape shape)
{
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", name);
    std::unique_ptr<KorTable> table;
    try {
        const std::shared_ptr<const NetworkFacts> facts = network::scanNetwork(sys::current());
        table = std::make_unique<KorTable>(group.getGroupId(), group.getGroupVersion());
        shape(*facts, *table);
    } catch (const std::exception& e) {
        NETG_TRACE(traceMIN, "hardware ERROR! %s %s", name, e.what());
        return nullptr;
    }
    if (table->getRowCount() == 0) {
        NETG_TRACE(traceMID, "hardware %s %s", name, "has no rows");
        return nullptr;
    }
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s %lu %s", name,
                               table->getRowCount(), "rows");
    return table.release();
}

}  // namespace

std::string ipv6Scope(const std::string& address)
{
    const long first = std::strtol(address.substr(0, address.find(':')).c_str(), nullptr, 16);
    if ((first & 0xFFC0) == 0xFE80) return "Link-Local";
    if ((first & 0xFFC0) == 0xFEC0) return "Site-Local";
    if ((first & 0xFE00) == 0xFC00) return "Unique Local";
    return "Global";
}

void shapeAdapterRows(const NetworkFacts& facts, const PciNames& names, KorTable& table)
{
    unsigned int index = 0;
    for (const Link& l : facts.links) {
        const std::string permanent = l.factoryMac.empty() ? l.currentMac : l.factoryMac;
        const std::string current = l.currentMac.empty() ? l.factoryMac : l.currentMac;
        // The address a link is born with, and its driver: neither moves when
        // addresses are configured, nor across reboots.
        const std::string idText = (permanent.empty() ? l.name : permanent) + l.driver();
        char* id = md5_checksum(idText.c_str());
        RowBuilder row(NETWORK_ADAPTER_GROUP, RowBuilder::Undecodable::Shown);
        row.number(NET_INDEX, ++index);
        if (id) row.text(NET_ID, id);
        std::free(id);
        row.textIfAny(NET_PERMANENT_ADDRESS, permanent);
        row.textIfAny(NET_CURRENT_ADDRESS, current);
        row.number(NET_TYPE, adapterType(l));
        auto ids = facts.pciIds.find(l.device);
        if (ids != facts.pciIds.end()) {
            auto device = names.devices.find(ids->second);
            auto vendor = names.vendors.find(ids->second.first);
            if (device != names.devices.end()) row.textIfAny(NET_MODEL, device->second);
            if (vendor != names.vendors.end()) row.textIfAny(NET_MANUFACTURER, vendor->second);
        }
        row.textIfAny(NET_PHYSICAL_TYPE, l.media);
        row.textIfAny(NET_ETHERCHANNEL_DEVICES, joined(l.members, ", "));
        auto path = facts.driverPaths.find(l.driver());
        if (path != facts.driverPaths.end()) row.textIfAny(NET_DRIVER_PATH, path->second);
        auto version = facts.driverVersions.find(l.driver());
        if (version != facts.driverVersions.end()) row.textIfAny(NET_DRIVER_VERSION, version->second);
        row.textIfAny(NET_DRIVER_NAME, l.driver());
        row.addTo(table);
    }
}

void shapeIpv4Rows(const NetworkFacts& facts, KorTable& table)
{
    unsigned int index = 0;
    std::set<std::string> seen;  // the address is the table's key
    const ByPhysical others(facts);
    for (const Interface& i : facts.interfaces) {
        if (!shown(i, false) || !seen.insert(i.address).second) continue;
        RowBuilder row(IP_ADDRESS_GROUP, RowBuilder::Undecodable::Shown);
        row.number(IP_INDEX, ++index);
        row.textIfAny(IP_ADDRESS, i.address);
        row.text(IP_DHCP_ENABLED, i.has("DHCP") ? "Y" : "N");
        row.textIfAny(IP_HOSTNAME, facts.hostname);
        row.textIfAny(IP_DOMAIN, domainOf(facts));
        row.textIfAny(IP_SUBNET, network::ipv4Mask(i.prefix));
        row.textIfAny(IP_GATEWAY, facts.gatewayOf(i));
        row.textIfAny(IP_PRIMARY_DNS, nameserver(facts, 0));
        row.textIfAny(IP_SECONDARY_DNS, nameserver(facts, 1));
        row.textIfAny(IP_PERMANENT_MAC, others.permanentMac(i));
        row.textIfAny(IP_IPV6_ADDRESS, others.ipv6Beside(i));
        row.addTo(table);
    }
}

void shapeIpv6Rows(const NetworkFacts& facts, KorTable& table)
{
    unsigned int index = 0;
    std::set<std::string> seen;
    const ByPhysical others(facts);
    for (const Interface& i : facts.interfaces) {
        if (!shown(i, true) || !seen.insert(i.address).second) continue;
        RowBuilder row(IPV6_ADDRESS_GROUP, RowBuilder::Undecodable::Shown);
        row.number(IPV6_INDEX, ++index);
        row.textIfAny(IPV6_ADDRESS, i.address);
        row.textIfAny(IPV6_HOSTNAME, facts.hostname);
        row.textIfAny(IPV6_DOMAIN, domainOf(facts));
        row.textIfAny(IPV6_SUBNET, ipv6Subnet(i));
        row.textIfAny(IPV6_GATEWAY, facts.gatewayOf(i));
        row.textIfAny(IPV6_PRIMARY_DNS, nameserver(facts, 0));
        row.textIfAny(IPV6_SECONDARY_DNS, nameserver(facts, 1));
        row.textIfAny(IPV6_PERMANENT_MAC, others.permanentMac(i));
        row.textIfAny(IPV6_SCOPE, ipv6Scope(i.address));
        row.textIfAny(IPV6_ADAPTER_NAME, i.name);
        row.addTo(table);
    }
}

NetworkAdapterGroup::NetworkAdapterGroup() : KorGroup(NETWORK_ADAPTER_GROUP, 1) {}

KorTable* NetworkAdapterGroup::getTable()
{
    return api::guardedTable("NetworkAdapterGroup::getTable()", [&]() -> KorTable* {
        return table(*this, "NetworkAdapterGroup", [](const NetworkFacts& facts, KorTable& t) {
            std::vector<PciFunction> functions;
            for (const auto& ids : facts.pciIds) {
                PciFunction f;
                f.vendor = ids.second.first;
                f.device = ids.second.second;
                functions.push_back(f);
            }
            PciNames names;
            if (!functions.empty()) lookUpPciNames(sys::current(), functions, names);
            shapeAdapterRows(facts, names, t);
        });
    });
}

IpAddressGroup::IpAddressGroup() : KorGroup(IP_ADDRESS_GROUP, 1) {}

KorTable* IpAddressGroup::getTable()
{
    return api::guardedTable("IpAddressGroup::getTable()", [&]() -> KorTable* {
        return table(*this, "IpAddressGroup", shapeIpv4Rows);
    });
}

Ipv6AddressGroup::Ipv6AddressGroup() : KorGroup(IPV6_ADDRESS_GROUP, 1) {}

KorTable* Ipv6AddressGroup::getTable()
{
    return api::guardedTable("Ipv6AddressGroup::getTable()", [&]() -> KorTable* {
        return table(*this, "Ipv6AddressGroup", shapeIpv6Rows);
    });
}

INVSCAN_REGISTER_GROUP(NETWORK_ADAPTER_GROUP, NetworkAdapterGroup);
INVSCAN_REGISTER_GROUP(IP_ADDRESS_GROUP, IpAddressGroup);
INVSCAN_REGISTER_GROUP(IPV6_ADDRESS_GROUP, Ipv6AddressGroup);
