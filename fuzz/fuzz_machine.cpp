// A simulated machine's file (machine.txt: no format line, no end line)
// read, then scanned by the groups whose readers take its answers: the
// network facts and tables, Operating System, Keyboard, PCI Device and
// Partition. fuzz_capture stops at reading; this one also walks what the
// reader built.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include "FuzzedAnswers.h"
#include "common/replay/MachineFile.h"
#include "common/replay/SimulatedSystem.h"
#include "framework/RunLog.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/system/KeyboardGroup.h"
#include "invscan/solaris/network/NetworkFacts.h"
#include "invscan/solaris/network/NetworkGroups.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"
#include "invscan/solaris/storage/PartitionGroup.h"
#include "invscan/solaris/system/SystemGroups.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    replay::SimulatedSystem os;
    std::string error;
    if (!replay::readMachine(in, "fuzz", false, os, error)) {
        if (error.empty()) __builtin_trap();  // refused without a reason
        return 0;
    }
    replay::ScopedSystem scoped(os);
    const network::NetworkFacts facts = network::gatherNetwork(os);
    PciNames names;
    KorTable adapters(NETWORK_ADAPTER_GROUP, 1), ipv4(IP_ADDRESS_GROUP, 1), ipv6(IPV6_ADDRESS_GROUP, 1);
    shapeAdapterRows(facts, names, adapters);
    shapeIpv4Rows(facts, ipv4);
    shapeIpv6Rows(facts, ipv6);
    OperatingSystemFacts system;
    if (gatherOperatingSystemFacts(os, nullptr, system)) {
        KorTable table(OPERATING_SYSTEM_GROUP, 1);
        shapeOperatingSystemRow(system, table);
    }
    std::unique_ptr<KorTable> keyboard(KeyboardGroup().getTable());
    std::unique_ptr<KorTable> pci(PCIDeviceGroup().getTable());
    std::unique_ptr<KorTable> partitions(PartitionGroup().getTable());
    (void)runlog::take();  // as a host takes it after each scan
    return 0;
}
