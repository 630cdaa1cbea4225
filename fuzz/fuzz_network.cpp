// The network readers ("ifconfig -a", "netstat -rn", /etc/resolv.conf, the
// dladm forms of Solaris 10 and 11, "modinfo", /etc/path_to_inst) over any
// text, reached as a scan reaches them: the network facts are gathered
// through a simulated machine that answers with the input (the links are
// put together from several answers there), then the three network tables
// are shaped from them.
#include <clocale>
#include <cstddef>
#include <cstdint>

#include "FuzzedAnswers.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/NetworkFacts.h"
#include "invscan/solaris/NetworkGroups.h"
#include "invscan/solaris/PCIDeviceGroup.h"

namespace {

using fuzzed::Answer;

const std::vector<Answer>& answers()
{
    static const std::vector<Answer> list = {
        {Answer::Run, "ifconfig -a"},
        {Answer::Run, "netstat -rn"},
        {Answer::File, "/etc/resolv.conf"},
        {Answer::Run, "dladm show-phys -p -o link,media,device"},
        {Answer::Run, "dladm show-phys -m -p -o link,slot,address"},
        {Answer::Run, "dladm show-link -p -o link,class,over"},
        {Answer::Run, "dladm show-dev"},
        {Answer::Run, "dladm show-aggr"},
        {Answer::Run, "modinfo"},
        {Answer::File, "/etc/path_to_inst"},
        {Answer::Sysinfo, "", SI_HOSTNAME},
    };
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Texts are cut on character boundaries in the locale hosts mostly run in.
    std::setlocale(LC_ALL, "C.UTF-8");
    return 0;
}

// The high bit of the first byte: a Solaris 10 machine (dladm show-dev and
// show-aggr), else Solaris 11 (show-phys and show-link).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzed::Machine m = fuzzed::answering(data, size, answers());
    m.os->sysinfoValues[SI_RELEASE] = m.highBit ? "5.10" : "5.11";
    // The driver modules the adapter rows name.
    m.os->files["/kernel/drv/amd64/e1000g"] = "";
    m.os->files["/kernel/drv/ixgbe"] = "";
    const network::NetworkFacts facts = network::gatherNetwork(*m.os);
    for (const network::Interface& i : facts.interfaces) {
        (void)facts.permanentMac(i);
        (void)facts.gatewayOf(i);
        (void)network::ipv4Mask(i.prefix);
    }
    PciNames names;
    names.vendors[0x8086] = "Intel Corporation";
    names.devices[{0x8086, 0x100f}] = "82545EM Gigabit Ethernet Controller (Copper)";
    KorTable adapters(NETWORK_ADAPTER_GROUP, 1), ipv4(IP_ADDRESS_GROUP, 1), ipv6(IPV6_ADDRESS_GROUP, 1);
    shapeAdapterRows(facts, names, adapters);
    shapeIpv4Rows(facts, ipv4);
    shapeIpv6Rows(facts, ipv6);
    return 0;
}
