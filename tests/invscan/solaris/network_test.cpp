// The network groups: the readers of ifconfig, netstat, dladm, modinfo,
// path_to_inst and resolv.conf over real captures and the cases captures
// lack; the adapter identifier; one set of command runs per scan.
#include <gtest/gtest.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <memory>
#include <sstream>

#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/network/NetworkFacts.h"
#include "invscan/solaris/network/NetworkGroups.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"
#include "support/Fixtures.h"
#include "support/Machine.h"
#include "support/TableReader.h"
#include "support/TempDir.h"
#include "common/sys/System.h"

using namespace network;

namespace {

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// Each row of the table as the named attributes' values, blank-separated, "-" for one left out.
std::vector<std::string> rows(KorTable& table, const std::vector<std::string>& names)
{
    std::vector<std::string> out;
    std::map<std::string, std::string> row;
    auto finish = [&] {
        if (row.empty()) return;
        std::string text;
        for (const std::string& n : names) text += (text.empty() ? "" : " ") + (row.count(n) ? row[n] : "-");
        out.push_back(text);
        row.clear();
    };
    for (const std::string& line : lines(testsupport::tableText(table))) {
        if (line.rfind("[", 0) == 0) finish();
        const size_t equals = line.find(" = ");
        if (equals != std::string::npos) row[line.substr(2, equals - 2)] = line.substr(equals + 3);
    }
    finish();
    return out;
}

NetworkFacts withInterfaces(const std::string& ifconfig)
{
    NetworkFacts facts;
    facts.interfaces = parseIfconfig(lines(ifconfig));
    return facts;
}

std::vector<std::string> ipv4Rows(const NetworkFacts& facts, const std::vector<std::string>& names)
{
    KorTable table(IP_ADDRESS_GROUP, 1);
    shapeIpv4Rows(facts, table);
    return rows(table, names);
}

std::vector<std::string> ipv6Rows(const NetworkFacts& facts, const std::vector<std::string>& names)
{
    KorTable table(IPV6_ADDRESS_GROUP, 1);
    shapeIpv6Rows(facts, table);
    return rows(table, names);
}

using Rows = std::vector<std::string>;

TEST(NetworkCaptures, IfconfigOutputsGiveTheConfiguredAddresses)
{
    REQUIRE_FIXTURES(dir, "solaris-network");
    const Rows v4Names = {"Address", "Subnet", "DHCP Enabled", "Permanent Mac Address"};
    const Rows v6Names = {"Address", "Subnet", "Scope", "Adapter Name"};
    struct Case {
        const char* file;
        Rows v4, v6;
    } cases[] = {
        // An aggregation among plain links; masks of /23, /25 and /27.
        {"glpi-project_glpi-agent__resources_generic_ifconfig_solaris-10",
         {"130.79.0.1 255.255.254.0 N 00:15:17:7a:60:31", "130.79.0.2 255.255.255.128 N 00:15:17:7a:60:30",
          "130.79.0.3 255.255.255.128 N 00:15:17:7a:60:32", "192.168.19.1 255.255.255.0 N 00:15:17:7a:60:33",
          "130.79.255.1 255.255.255.224 N 00:15:17:8a:48:30", "192.168.20.1 255.255.255.0 N 00:15:17:6a:44:4c"},
         {}},
        // Shared-IP zones' addresses (and loopback ones) are the zones' own.
        {"opensvc_opensvc__check-eth-sunos__ifconfig_-a.sol10-global-zone-aggr-bnx.txt",
         {"172.31.4.195 255.255.255.0 N 00:15:17:bb:85:58", "172.31.195.195 255.255.255.0 N 00:15:17:bb:85:59",
          "55.16.201.195 255.255.252.0 N 00:24:e8:35:9d:dd"},
         {}},
        // IPMP: logical interfaces take their link's address; the standby's 0.0.0.0 is no address.
        {"deimosfr_mytechnotebook__ipmp-configuration__ifconfig_-a.sol10-ipmp-active-standby.txt",
         {"192.168.0.72 255.255.255.0 N 00:1e:68:49:ae:98", "192.168.0.73 255.255.255.0 N 00:1e:68:49:ae:98",
          "192.168.0.74 255.255.255.0 N 00:1e:68:49:ae:98"},
         {}},
        // Shell prompts pasted between repeated blocks; a byte of one digit.
        {"puppetlabs_facter__spec_fixtures_unit_util_ip_solaris-DIR_ifconfig_all_with_multiple_interfaces",
         {"10.16.77.145 255.255.255.0 Y 00:50:56:9b:08:05"},
         {}},
        // A logical interface down with no address; not root, so no "ether".
        {"frsw3nr__sol1-x86-sol10-vmware__ifconfig_-a.txt", {"192.168.10.3 255.255.255.0 N -"}, {}},
        // TAB indentation, DHCP, IPv6 link-local and autoconfigured.
        {"glpi-project_glpi-agent__resources_generic_ifconfig_oi-2021.10",
         {"192.168.1.97 255.255.255.0 Y -"},
         {"fe80::a00:27ff:fefc:fb04 fe80::/10 Link-Local e1000g0",
          "2a01:e0a:35c:740:a00:27ff:fefc:fb04 2a01:e0a:35c:740::/64 Global e1000g0:1"}},
    };
    for (const Case& c : cases) {
        const NetworkFacts facts = withInterfaces(testsupport::captureText(dir + "/" + c.file));
        EXPECT_EQ(ipv4Rows(facts, v4Names), c.v4) << c.file;
        EXPECT_EQ(ipv6Rows(facts, v6Names), c.v6) << c.file;
    }
    // IPMP interface, tunnels ("inet tunnel src" is no address, "a --> b" is
    // a's), a VNI, an IPv6 line in an IPv4 heading (an edited composite).
    const NetworkFacts composite = withInterfaces(
        testsupport::captureText(dir + "/chef_ohai__solaris2-network-spec__ifconfig_-a.COMPOSITE-ipmp-tunnels-vni.txt"));
    EXPECT_EQ(ipv4Rows(composite, {"Address"}), (Rows{"10.10.130.103", "72.2.115.28", "10.2.115.28", "37.153.96.148",
                                                     "10.16.125.36", "172.17.128.208", "10.0.0.208"}));
    EXPECT_EQ(ipv6Rows(composite, {"Address"}),
              (Rows{"fe80::6d92:5539", "2::45", "fe80::203:baff:fe17:4be0", "fe80::203:baff:fe17:4444"}));
}

TEST(NetworkCaptures, RoutesLinksAndResolver)
{
    REQUIRE_FIXTURES(dir, "solaris-network");
    auto routes = [&](const char* file) {
        std::string out;
        for (const Route& r : parseDefaultRoutes(lines(testsupport::captureText(dir + "/" + file))))
            out += std::string(r.ipv6 ? "v6 " : "v4 ") + r.gateway + " [" + r.interface + "] ";
        return out;
    };
    // A blank interface column; an IPv6 gateway wider than its column.
    EXPECT_EQ(routes("puppetlabs_facter__spec_fixtures_netstat_open_solaris_10"),
              "v4 192.168.2.1 [] v6 fe80::214:22ff:fe0a:1c46 [hme0] ");
    EXPECT_EQ(routes("puppetlabs_facter__spec_fixtures_netstat_open_solaris_b132"),
              "v4 202.78.241.102 [] v6 fe80::20d:edff:fe9d:782e [bge0] ");
    EXPECT_EQ(routes("index-30391285964__omnios-2013__netstat_-rn.txt"), "v4 192.168.5.1 [] ");
    EXPECT_EQ(routes("chef_ohai__solaris2-network-spec__netstat_-rn.txt"), "v4 10.13.37.1 [e1000g0] ");

    std::vector<Link> links = parseSolaris10Devices(
        lines(testsupport::captureText(dir + "/deimosfr_mytechnotebook__configure-network__dladm_show-dev.sol10.txt")));
    ASSERT_EQ(links.size(), 5u);
    EXPECT_EQ(links[4].device, "clprivnet0");
    EXPECT_EQ(links[4].driver(), "clprivnet");

    links = {Link(), Link()};
    links[0].name = links[0].device = "e1000g0";
    links[1].name = links[1].device = "bnx0";
    readSolaris10Aggregations(
        lines(testsupport::captureText(dir + "/opensvc_opensvc__check-lag-sunos__dladm_show-aggr.sol10.txt")), links);
    ASSERT_EQ(links.size(), 3u);
    EXPECT_EQ(links[2].name, "aggr1");
    EXPECT_EQ(links[2].currentMac, "00:15:17:bb:82:d2");
    EXPECT_EQ(links[2].members, (std::vector<std::string>{"e1000g0", "bnx0"}));
    EXPECT_EQ(links[1].currentMac, "00:24:e8:35:61:3b");

    // Solaris 11's parseable lines, among prompts and other commands' answers.
    links.clear();
    readAggregations(
        lines(testsupport::captureText(dir + "/opensvc_opensvc__check-eth-sunos__ndd_kstat-link_dladm-p.snippets.txt")),
        links);
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(links[0].name, "aggr0");
    EXPECT_EQ(links[0].members, (std::vector<std::string>{"net0", "net2"}));

    const Resolver r = parseResolver(
        testsupport::captureText(dir + "/frsw3nr__sol1-x86-sol10-vmware__grep_nameserver_etc_resolv.conf.txt"));
    EXPECT_EQ(r.nameservers, (std::vector<std::string>{"192.168.10.254"}));
    EXPECT_EQ(r.domain, "");
}

TEST(Network, ReadersOfWhatCapturesLack)
{
    const Resolver r = parseResolver(
        "; a comment\nsearch a.example b.example\ndomain c.example # set by hand\nnameserver 10.0.0.1\n"
        "nameserver\t2001:db8::1\nnameserver 10.0.0.3\noptions ndots:2\n");
    EXPECT_EQ(r.domain, "c.example");  // "domain" over "search", wherever it stands
    EXPECT_EQ(r.nameservers, (std::vector<std::string>{"10.0.0.1", "2001:db8::1", "10.0.0.3"}));
    EXPECT_EQ(parseResolver("search a.example b.example\n").domain, "a.example");

    std::vector<Link> links = parsePhysicalLinks({"net0:Ethernet:ixgbe0", "net1:Infiniband:ibp12", "", "bad"});
    readFactoryAddresses({"net0:primary:0\\:14\\:4f\\:f8\\:0\\:c0", "net0:1:2\\:8\\:20\\:0\\:0\\:1"}, links);
    ASSERT_EQ(links.size(), 2u);
    EXPECT_EQ(links[0].factoryMac, "00:14:4f:f8:00:c0");  // the primary slot, not a VNIC's
    EXPECT_EQ(links[1].driver(), "ibp");
    EXPECT_EQ(links[1].instance(), 12);

    const auto versions = parseModuleVersions({" Id Loadaddr   Size Info Rev Module Name",
                                               "161 f7ab0000  4ed68 263   1  e1000g (Intel PRO/1000 Ethernet 5.3.24)",
                                               "162 f7ac0000   5f10 264   1  aggr (Link Aggregation Driver)",
                                               "163 f7ad0000   5f10 265   1  nge (nVidia Gigabit Driver v1.21)"});
    EXPECT_EQ(versions, (std::map<std::string, std::string>{{"e1000g", "5.3.24"}, {"nge", "v1.21"}}));

    const auto ids = parsePciNodes("#\n\"/pci@0,0/pci15ad,790@11/pci8086,100f@1\" 2 \"e1000g\"\n"
                                   "\"/pci@0,0/pciex8086,10c9@1,1\" 0 \"igb\"\n\"/pseudo/aggr@0\" 0 \"aggr\"\n"
                                   "\"/pci@0,0/pcizz,1@2\" 0 \"bad\"\n");
    EXPECT_EQ(ids, (std::map<std::string, std::pair<long, long>>{{"e1000g2", {0x8086, 0x100f}},
                                                                {"igb0", {0x8086, 0x10c9}}}));

    EXPECT_EQ(macText("8:0:20:D1:6d:79"), "08:00:20:d1:6d:79");
    EXPECT_EQ(macText("0:0:0:0:0:0:0:0:0:0:0:0:0:0:0:0:fe:80:0:0"),
              "00:00:00:00:00:00:00:00:00:00:00:00:00:00:00:00:fe:80:00:00");  // an IPoIB address
    EXPECT_EQ(macText("not:a:mac"), "not:a:mac");
    EXPECT_EQ(ipv4Mask(0), "0.0.0.0");
    EXPECT_EQ(ipv4Mask(23), "255.255.254.0");
    EXPECT_EQ(ipv4Mask(32), "255.255.255.255");
    EXPECT_EQ(networkOf("2001:db8:50::21b:21ff:fe3c:4d50", 64, true), "2001:db8:50::");
    EXPECT_EQ(networkOf("10.1.2.3", 33, false), "");
    EXPECT_EQ(ipv6Scope("fe80::1"), "Link-Local");
    EXPECT_EQ(ipv6Scope("febf::1"), "Link-Local");
    EXPECT_EQ(ipv6Scope("fec0::1"), "Site-Local");
    EXPECT_EQ(ipv6Scope("fd00::2"), "Unique Local");
    EXPECT_EQ(ipv6Scope("2::45"), "Global");
}

TEST(Network, GatewayAndAddressOfEachRow)
{
    NetworkFacts facts = withInterfaces(
        "e1000g0: flags=1000843<UP,BROADCAST,RUNNING,MULTICAST,IPv4> mtu 1500 index 2\n"
        "\tinet 10.0.0.5 netmask ffffff00 broadcast 10.0.0.255\n"
        "\tether 0:14:4f:1:2:3\n"
        "e1000g0:1: flags=1000843<UP,BROADCAST,RUNNING,MULTICAST,IPv4> mtu 1500 index 2\n"
        "\tinet 10.0.0.5 netmask ffffff00 broadcast 10.0.0.255\n"  // twice: the table's key
        "e1000g1: flags=1000843<UP,BROADCAST,RUNNING,MULTICAST,IPv4> mtu 1500 index 3\n"
        "\tinet 172.16.0.9 netmask ffff0000 broadcast 172.16.255.255\n"
        "e1000g0: flags=2000841<UP,RUNNING,MULTICAST,IPv6> mtu 1500 index 2\n"
        "\tinet6 fe80::214:4fff:fe01:203/10\n"
        "e1000g0:1: flags=2080841<UP,RUNNING,MULTICAST,ADDRCONF,IPv6> mtu 1500 index 2\n"
        "\tinet6 2001:db8:ffff:ffff:ffff:ffff:ffff:fffe/128\n");
    // The blank interface column goes by the gateway's network; named ones by the name before ':'.
    facts.defaultRoutes = {{false, "172.16.0.1", ""}, {true, "fe80::1", "e1000g0:1"}};
    facts.resolver.nameservers = {"10.0.0.53"};
    facts.hostname = "h1.site.example";
    EXPECT_EQ(ipv4Rows(facts, {"Address", "Gateway", "Domain", "Primary DNS", "Secondary DNS", "Permanent Mac Address",
                               "IPV6Address"}),
              (Rows{"10.0.0.5 - site.example 10.0.0.53 - 00:14:4f:01:02:03 2001:db8:ffff:ffff:ffff:ffff:ffff:fffe",
                    "172.16.0.9 172.16.0.1 site.example 10.0.0.53 - - -"}));
    // A /128 network does not fit the subnet's 40 characters: its length alone.
    EXPECT_EQ(ipv6Rows(facts, {"Address", "Subnet", "Gateway", "Permanent Mac Address"}),
              (Rows{"fe80::214:4fff:fe01:203 fe80::/10 fe80::1 00:14:4f:01:02:03",
                    "2001:db8:ffff:ffff:ffff:ffff:ffff:fffe /128 fe80::1 00:14:4f:01:02:03"}));
}

TEST(Network, AdapterIdKeepsToTheFactoryAddressAndDriver)
{
    NetworkFacts facts;
    facts.links = parsePhysicalLinks({"net0:Ethernet:e1000g0", "net1:Ethernet:e1000g1"});
    readFactoryAddresses({"net0:primary:0\\:14\\:4f\\:9a\\:0\\:4"}, facts.links);
    auto ids = [](NetworkFacts& f) {
        KorTable table(NETWORK_ADAPTER_GROUP, 1);
        shapeAdapterRows(f, PciNames(), table);
        return rows(table, {"ID"});
    };
    const Rows first = ids(facts);
    ASSERT_EQ(first.size(), 2u);
    EXPECT_NE(first[0], first[1]);  // no address: the link's name makes it unique
    // A scan later: addresses configured, the address in use set by hand.
    facts.interfaces = parseIfconfig({"net0: flags=1000843<UP,BROADCAST,RUNNING,MULTICAST,IPv4> mtu 1500 index 2",
                                      "\tinet 10.9.9.9 netmask ff000000", "\tether 2:8:20:aa:bb:cc"});
    facts.links[0].currentMac = "02:08:20:aa:bb:cc";
    EXPECT_EQ(ids(facts), first);
    // Another driver at the same address is another adapter.
    facts.links[0].device = "igb0";
    EXPECT_NE(ids(facts)[0], first[0]);
}

// The three groups of one scan share one run of each command; the next scan runs them anew.
TEST(Network, AScanRunsEachCommandOnce)
{
    testsupport::FakeSystem os;
    std::string error;
    ASSERT_TRUE(testsupport::loadMachine(testsupport::machineDir("sol11-aggr-ipmp"), os, error)) << error;
    testsupport::ScopedSystem scope(os);
    GroupFactory* factory = GroupFactory::getInstance();
    for (int scan = 1; scan <= 2; ++scan) {
        for (unsigned long id : {NETWORK_ADAPTER_GROUP, IP_ADDRESS_GROUP, IPV6_ADDRESS_GROUP}) {
            std::unique_ptr<KorGroup> group(factory->getKORGroup(id));
            ASSERT_TRUE(group);
            std::unique_ptr<KorTable> table(group->getTable());
            EXPECT_TRUE(table) << id;
        }
        factory->endScan();
        for (const char* command : {"ifconfig -a", "netstat -rn", "dladm show-phys -p -o link,media,device", "modinfo"})
            EXPECT_EQ(os.runs[command], scan) << command;
    }
}

}  // namespace

#if defined(__linux__)
namespace {

nlohmann::json ipJson(const char* command)
{
    std::unique_ptr<FILE, int (*)(FILE*)> out(popen(command, "r"), pclose);
    std::string text;
    char buffer[4096];
    while (out && std::fgets(buffer, sizeof buffer, out.get())) text += buffer;
    return nlohmann::json::parse(text, nullptr, false);
}

// What `ip` says of this machine's addresses, routes and links, against the tables.
TEST(ThisMachine, AddressesAndAdaptersAreWhatIpSays)
{
    const nlohmann::json links = ipJson("ip -j addr 2>/dev/null"), routes = ipJson("ip -j route 2>/dev/null");
    const nlohmann::json routes6 = ipJson("ip -j -6 route 2>/dev/null");
    if (!links.is_array() || !routes.is_array()) GTEST_SKIP() << "no ip command";
    forgetNetwork();
    const NetworkFacts facts = gatherNetwork(sys::platform());

    std::map<std::string, std::string> gateway;  // "4 eth0" -> its default gateway
    for (const auto* table : {&routes, &routes6})
        for (const auto& r : table->is_array() ? *table : nlohmann::json::array())
            if (r.value("dst", "") == "default" && r.contains("gateway"))
                gateway[std::string(table == &routes ? "4 " : "6 ") + r.value("dev", "")] = r.value("gateway", "");
    Rows v4, v6, macs;
    for (const auto& link : links) {
        if (link.value("link_type", "") == "loopback") continue;
        const std::string name = link.value("ifname", ""), mac = link.value("permaddr", link.value("address", ""));
        if (access(("/sys/class/net/" + name + "/device").c_str(), F_OK) == 0) macs.push_back(mac);
        for (const auto& a : link.value("addr_info", nlohmann::json::array())) {
            const bool ipv6 = a.value("family", "") == "inet6";
            const std::string address = a.value("local", "");
            const int prefix = a.value("prefixlen", -1);
            const std::string via = gateway.count((ipv6 ? "6 " : "4 ") + name) ? gateway[(ipv6 ? "6 " : "4 ") + name] : "-";
            if (ipv6)
                v6.push_back(address + " " + networkOf(address, prefix, true) + "/" + std::to_string(prefix) + " " + via +
                             " " + mac);
            else
                v4.push_back(address + " " + ipv4Mask(prefix) + " " + via + " " + (a.value("dynamic", false) ? "Y" : "N") +
                             " " + mac);
        }
    }
    EXPECT_EQ(ipv4Rows(facts, {"Address", "Subnet", "Gateway", "DHCP Enabled", "Permanent Mac Address"}), v4);
    EXPECT_EQ(ipv6Rows(facts, {"Address", "Subnet", "Gateway", "Permanent Mac Address"}), v6);
    KorTable adapters(NETWORK_ADAPTER_GROUP, 1);
    shapeAdapterRows(facts, PciNames(), adapters);
    EXPECT_EQ(rows(adapters, {"Permanent Address"}), macs);

    // The resolver's first two servers stand on every row.
    if (testsupport::readFile("/etc/resolv.conf").find("nameserver") != std::string::npos && !v4.empty()) {
        const Resolver r = parseResolver(testsupport::readFile("/etc/resolv.conf"));
        EXPECT_EQ(ipv4Rows(facts, {"Primary DNS"}).front(), r.nameservers.front());
    }
}

}  // namespace
#endif  // __linux__
