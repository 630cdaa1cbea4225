// The network commands and files the Linux seam answers, read back by the
// scanner's own Solaris readers.
#if defined(__linux__)
#include <gtest/gtest.h>
#include <net/if.h>
#include <unistd.h>

#include "common/sys/LinuxNetwork.h"
#include "invscan/solaris/network/NetworkFacts.h"
#include "support/TempDir.h"

namespace {

using namespace sys::linuxnetwork;
using testsupport::TempDir;

std::vector<std::string> run(const std::vector<std::string>& argv, const std::string& root)
{
    std::vector<std::string> lines;
    int status = -1;
    EXPECT_TRUE(answerRun(argv, root, lines, status));
    EXPECT_EQ(status, 0);
    return lines;
}

TEST(LinuxNetwork, IfconfigReadsBackAsTheKernelSaid)
{
    KernelLink eth{"eth0", 4, IFF_UP | IFF_BROADCAST | IFF_RUNNING | IFF_MULTICAST, 1400, "02:fc:00:00:00:01"};
    KernelLink lo{"lo", 1, IFF_UP | IFF_LOOPBACK | IFF_RUNNING, 65536, ""};
    const std::vector<KernelAddress> addresses = {
        {1, false, "127.0.0.1", "", 8, false},
        {4, false, "192.0.2.2", "192.0.2.255", 24, true},  // leased
        {4, false, "198.51.100.7", "", 32, false},
        {4, true, "fe80::fc:ff:fe00:1", "", 64, false},
    };
    const std::vector<network::Interface> read = network::parseIfconfig(ifconfigLines({lo, eth}, addresses));
    ASSERT_EQ(read.size(), 4u);
    EXPECT_EQ(read[0].name, "lo");
    EXPECT_TRUE(read[0].has("LOOPBACK"));
    EXPECT_EQ(read[1].name, "eth0");
    EXPECT_EQ(read[1].address, "192.0.2.2");
    EXPECT_EQ(read[1].prefix, 24);
    EXPECT_TRUE(read[1].has("DHCP"));
    EXPECT_EQ(read[1].mac, "02:fc:00:00:00:01");
    EXPECT_EQ(read[2].name, "eth0:1");  // a second address: a logical interface
    EXPECT_EQ(read[2].prefix, 32);
    EXPECT_FALSE(read[2].has("DHCP"));
    EXPECT_EQ(read[3].name, "eth0");
    EXPECT_TRUE(read[3].ipv6);
    EXPECT_EQ(read[3].address, "fe80::fc:ff:fe00:1");
    EXPECT_EQ(read[3].prefix, 64);
}

TEST(LinuxNetwork, RoutesLinksAndDevicesFromATree)
{
    TempDir root;
    // This machine's tables: the IPv4 default route, then IPv6's beside a reject route on lo.
    root.write("proc/net/route",
               "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
               "eth0\t00000000\t010200C0\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
               "eth0\t000200C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n");
    root.write("proc/net/ipv6_route",
               "fd000000000000000000000000000000 40 00000000000000000000000000000000 00 "
               "00000000000000000000000000000000 00000100 00000001 00000000 00000001     eth0\n"
               "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
               "fd000000000000000000000000000001 00000400 00000002 00000000 00000003     eth0\n"
               "00000000000000000000000000000000 00 00000000000000000000000000000000 00 "
               "00000000000000000000000000000000 ffffffff 00000001 00000000 00200200       lo\n");
    const std::vector<network::Route> routes = network::parseDefaultRoutes(run({"netstat", "-rn"}, root.path()));
    ASSERT_EQ(routes.size(), 2u);
    EXPECT_EQ(routes[0].gateway, "192.0.2.1");
    EXPECT_EQ(routes[0].interface, "eth0");
    EXPECT_TRUE(routes[1].ipv6);
    EXPECT_EQ(routes[1].gateway, "fd00::1");

    // eth0 and eth1 on one driver, a bond over eth1, a virtual link without a device.
    const std::string pci = "sys/devices/pci0000:00/0000:00:03.0";
    root.write(pci + "/vendor", "0x1af4\n");
    root.write(pci + "/device", "0x1041\n");
    root.write(pci + "/virtio2/x", "");
    root.write("sys/devices/pci0000:00/0000:00:04.1/vendor", "0x8086\n");
    root.write("sys/devices/pci0000:00/0000:00:04.1/device", "0x10c9\n");
    root.write("sys/bus/virtio/drivers/virtio_net/x", "");
    root.write("sys/bus/pci/drivers/igb/x", "");
    const std::string net = root.path() + "/sys/class/net/";
    for (const char* link : {"eth0", "eth1", "bond0", "ifb0"}) root.write(std::string("sys/class/net/") + link + "/type", "1\n");
    root.write("sys/class/net/eth0/address", "02:fc:00:00:00:01\n");
    root.write("sys/class/net/eth1/address", "00:1b:21:3c:4d:51\n");
    root.write("sys/class/net/bond0/bonding/slaves", "eth1\n");
    ASSERT_EQ(symlink((root.path() + "/" + pci + "/virtio2").c_str(), (net + "eth0/device").c_str()), 0);
    ASSERT_EQ(symlink((root.path() + "/sys/bus/virtio/drivers/virtio_net").c_str(), (root.path() + "/" + pci + "/virtio2/driver").c_str()), 0);
    ASSERT_EQ(symlink((root.path() + "/sys/devices/pci0000:00/0000:00:04.1").c_str(), (net + "eth1/device").c_str()), 0);
    ASSERT_EQ(symlink((root.path() + "/sys/bus/pci/drivers/igb").c_str(),
                      (root.path() + "/sys/devices/pci0000:00/0000:00:04.1/driver").c_str()), 0);

    std::vector<network::Link> links =
        network::parsePhysicalLinks(run({"dladm", "show-phys", "-p", "-o", "link,media,device"}, root.path()));
    network::readFactoryAddresses(run({"dladm", "show-phys", "-m", "-p", "-o", "link,slot,address"}, root.path()),
                                  links);
    network::readAggregations(run({"dladm", "show-link", "-p", "-o", "link,class,over"}, root.path()), links);
    ASSERT_EQ(links.size(), 3u);
    EXPECT_EQ(links[0].device, "virtio_net0");
    EXPECT_EQ(links[0].factoryMac, "02:fc:00:00:00:01");
    EXPECT_EQ(links[1].device, "igb0");
    EXPECT_EQ(links[2].name, "bond0");
    EXPECT_EQ(links[2].members, std::vector<std::string>{"eth1"});

    std::string text;
    ASSERT_TRUE(answerFile("/etc/path_to_inst", root.path(), text));
    EXPECT_EQ(network::parsePciNodes(text), (std::map<std::string, std::pair<long, long>>{
                                                {"virtio_net0", {0x1af4, 0x1041}}, {"igb0", {0x8086, 0x10c9}}}));
    EXPECT_NE(text.find("\"/pci@0,0/pci8086,10c9@4,1\" 0 \"igb\""), std::string::npos);
    EXPECT_FALSE(answerFile("/etc/hosts", root.path(), text));
}

}  // namespace

#endif  // __linux__
