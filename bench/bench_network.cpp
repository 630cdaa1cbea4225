// The IP Address group on a simulated host with many addressed links: each
// link plumbed with an IPv4 and a link-local IPv6 address and its "ether"
// line, listed by dladm. Run with 1,000 and 4,000 links: the time a link
// should barely grow (it was quadratic: every row searched every interface).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/network/NetworkGroups.h"
#include "support/FakeSystem.h"

namespace {

using namespace testsupport;

void buildHost(FakeSystem& os, int links)
{
    os.sysinfoValues[SI_RELEASE] = "5.11";
    os.sysinfoValues[SI_HOSTNAME] = "many-links";
    std::string ifconfig = "lo0: flags=2001000849<UP,LOOPBACK,RUNNING,MULTICAST,IPv4,VIRTUAL> mtu 8232 index 1\n"
                           "\tinet 127.0.0.1 netmask ff000000\n";
    std::string phys, macs;
    for (int n = 0; n < links; ++n) {
        char block[512];
        const unsigned a = static_cast<unsigned>(n) >> 8 & 0xff, b = static_cast<unsigned>(n) & 0xff;
        std::snprintf(block, sizeof block,
                      "net%d: flags=1000843<UP,BROADCAST,RUNNING,MULTICAST,IPv4> mtu 1500 index %d\n"
                      "\tinet 10.%u.%u.1 netmask ffffff00 broadcast 10.%u.%u.255\n"
                      "\tether 0:14:4f:0:%x:%x\n",
                      n, n + 2, a, b, a, b, a, b);
        ifconfig += block;
        phys += "net" + std::to_string(n) + ":Ethernet:e1000g" + std::to_string(n) + "\n";
        std::snprintf(block, sizeof block, "net%d:primary:0\\:14\\:4f\\:0\\:%x\\:%x\n", n, a, b);
        macs += block;
    }
    for (int n = 0; n < links; ++n) {
        char block[256];
        std::snprintf(block, sizeof block,
                      "net%d: flags=20002000841<UP,RUNNING,MULTICAST,IPv6> mtu 1500 index %d\n"
                      "\tinet6 fe80::214:4fff:fe00:%x/10\n",
                      n, n + 2, static_cast<unsigned>(n));
        ifconfig += block;
    }
    os.commands["ifconfig -a"].output = ifconfig;
    os.commands["dladm show-phys -p -o link,media,device"].output = phys;
    os.commands["dladm show-phys -m -p -o link,slot,address"].output = macs;
    os.commands["dladm show-link -p -o link,class,over"].output = "";
    os.commands["netstat -rn"].output = "default 10.0.0.254 UG 1 10 net0\n";
    os.files["/etc/resolv.conf"] = "domain example.com\nnameserver 10.0.0.53\n";
}

void IpAddressTable(benchmark::State& state)
{
    FakeSystem os;
    buildHost(os, static_cast<int>(state.range(0)));
    ScopedSystem scope(os);
    long rows = 0;
    for (auto _ : state) {
        IpAddressGroup group;
        std::unique_ptr<KorTable> table(group.getTable());
        rows = table ? static_cast<long>(table->getRowCount()) : 0;
        runScanEndHooks();  // the next table gathers the facts anew, as a new scan does
    }
    if (rows != state.range(0)) state.SkipWithError(("rows: " + std::to_string(rows)).c_str());
    state.counters["per link"] = benchmark::Counter(static_cast<double>(state.range(0)),
                                                    benchmark::Counter::kIsIterationInvariantRate |
                                                        benchmark::Counter::kInvert);
}
BENCHMARK(IpAddressTable)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
