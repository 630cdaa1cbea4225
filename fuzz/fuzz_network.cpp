// The network readers over any text: "ifconfig -a", "netstat -rn",
// /etc/resolv.conf, the dladm forms of Solaris 11 (show-phys, show-phys -m,
// show-link) and Solaris 10 (show-dev, show-aggr), "modinfo" and
// /etc/path_to_inst; the three network tables are shaped from what they
// read. One selector gathers the facts whole on a simulated machine
// answering with the texts: the links are put together from several
// answers there, inside the gathering.
#include <cstddef>
#include <cstdint>

#include "FuzzedAnswers.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/network/NetworkFacts.h"
#include "invscan/solaris/network/NetworkGroups.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"

using fuzzed::lines;

// Selectors (the first byte modulo 8), and the texts each reads:
//   0 ifconfig -a, netstat -rn, resolv.conf   1 netstat -rn, ifconfig -a
//   2 resolv.conf, ifconfig -a                3 show-phys, show-phys -m, show-link, ifconfig -a
//   4 show-dev, show-aggr, ifconfig -a        5 modinfo, show-dev
//   6 path_to_inst, show-dev
//   7 the whole gathering: ifconfig -a, netstat -rn, resolv.conf, show-phys,
//     show-phys -m, show-link, show-dev, show-aggr, modinfo, path_to_inst,
//     the host name; the first byte's high bit makes the machine Solaris 10.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const std::vector<std::string> text = fuzzed::parts(data, size, 11);
    network::NetworkFacts facts;
    switch (data[0] % 8) {
    case 0:
        facts.interfaces = network::parseIfconfig(lines(text[0]));
        facts.defaultRoutes = network::parseDefaultRoutes(lines(text[1]));
        facts.resolver = network::parseResolver(text[2]);
        break;
    case 1:
        facts.defaultRoutes = network::parseDefaultRoutes(lines(text[0]));
        facts.interfaces = network::parseIfconfig(lines(text[1]));
        break;
    case 2:
        facts.resolver = network::parseResolver(text[0]);
        facts.interfaces = network::parseIfconfig(lines(text[1]));
        break;
    case 3:
        facts.links = network::parsePhysicalLinks(lines(text[0]));
        network::readFactoryAddresses(lines(text[1]), facts.links);
        network::readAggregations(lines(text[2]), facts.links);
        facts.interfaces = network::parseIfconfig(lines(text[3]));
        break;
    case 4:
        facts.links = network::parseSolaris10Devices(lines(text[0]));
        network::readSolaris10Aggregations(lines(text[1]), facts.links);
        facts.interfaces = network::parseIfconfig(lines(text[2]));
        break;
    case 5:
        facts.driverVersions = network::parseModuleVersions(lines(text[0]));
        facts.links = network::parseSolaris10Devices(lines(text[1]));
        break;
    case 6:
        facts.pciIds = network::parsePciNodes(text[0]);
        facts.links = network::parseSolaris10Devices(lines(text[1]));
        break;
    default: {
        fuzzed::AfterInput after;
        fuzzed::QuietSystem& os = fuzzed::QuietSystem::fresh();
        const char* const commands[] = {"ifconfig -a", "netstat -rn", nullptr,
                                        "dladm show-phys -p -o link,media,device",
                                        "dladm show-phys -m -p -o link,slot,address",
                                        "dladm show-link -p -o link,class,over", "dladm show-dev", "dladm show-aggr",
                                        "modinfo"};
        for (size_t i = 0; i < 9; ++i)
            if (commands[i]) os.commands[commands[i]].output = text[i];
        os.files["/etc/resolv.conf"] = text[2];
        os.files["/etc/path_to_inst"] = text[9];
        os.files["/kernel/drv/amd64/e1000g"] = "";
        os.sysinfoValues[SI_HOSTNAME] = text[10].substr(0, 256);
        os.sysinfoValues[SI_RELEASE] = (data[0] & 0x80) ? "5.10" : "5.11";
        facts = network::gatherNetwork(os);
        break;
    }
    }
    for (const network::Interface& i : facts.interfaces) (void)network::ipv4Mask(i.prefix);
    PciNames names;
    names.vendors[0x8086] = "Intel Corporation";
    names.devices[{0x8086, 0x100f}] = "82545EM Gigabit Ethernet Controller (Copper)";
    KorTable adapters(NETWORK_ADAPTER_GROUP, 1), ipv4(IP_ADDRESS_GROUP, 1), ipv6(IPV6_ADDRESS_GROUP, 1);
    shapeAdapterRows(facts, names, adapters);
    shapeIpv4Rows(facts, ipv4);
    shapeIpv6Rows(facts, ipv6);
    return 0;
}
