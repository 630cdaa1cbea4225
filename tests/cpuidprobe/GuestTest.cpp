// Real guests, as the scanner will see them: the probe's tree built from a
// captured CPUID dump and (where there is one) a captured SMBIOS table, read
// back, and decided.
#include <gtest/gtest.h>

#include <memory>

#include "common/vartree/vtexec.h"
#include "cpuidprobe/DumpReader.h"
#include "invscan/com/VirtualMachineInfo.h"
#include "probes/cpuid/Shape.h"
#include "support/Firmware.h"
#include "support/Fixtures.h"
#include "support/StreamCapture.h"

namespace {

std::string guestType(const std::string& cpuidDir, const char* dump, const cpuid::Firmware& firmware)
{
    cpuid::Machine m;
    for (const cpuid::CpuDump& d : cpuidtest::readDumpFile(cpuidDir + "/" + dump)) m.processors.push_back({0, d, 2000});
    m.onlineCount = static_cast<int>(m.processors.size());
    m.firmware = firmware;
    std::vector<cpuid::CpuDump> dumps;
    for (const auto& lp : m.processors) dumps.push_back(lp.dump);
    std::unique_ptr<VtNode> root(cpuid::buildTree(m, cpuid::decode(dumps)));
    testsupport::StreamCapture out(stdout);
    vtDumpResponse(0, "OK");
    cpuid::printTree(root.get());
    std::fflush(stdout);
    VtIStream_Memory in(out.text());
    std::unique_ptr<VtExecInfo> probe(vtParseProgramOutput(&in));
    VirtualMachineInfoRetriever retriever;
    VirtualMachineInfo info;
    if (!retriever.retrieveFrom(probe.get(), info)) return "no decision";
    return std::string(VirtualMachineInfo::virtualizationNames[info.virtualizationType]) +
           (info.isVirtualMachine ? "" : " (not a guest)");
}

TEST(RealGuests, DecidedFromCapturedProcessorsAndFirmware)
{
    REQUIRE_FIXTURES(cpuidDir, "cpuid");
    REQUIRE_FIXTURES(smbiosDir, "smbios");
    auto table = [&](const char* prefix, const char* layout) {
        const testsupport::FirmwareCapture c = testsupport::readCapture(smbiosDir, prefix, layout);
        return cpuid::parseFirmware(c.entry, c.table);
    };
    const char* const kvm = "lkml-kvm-20210527-YK9jOdCPUGQF4t0D__kvm-guest-i7-8650U-smp1_cpuid-r.txt";
    const char* const hyperV = "InstLatx64__AuthenticAMD0800F12_K17_Zen_CPUID4.txt";  // "Microsoft Hv"
    cpuid::Firmware virtualMachine;
    virtualMachine.present = true;
    virtualMachine.manufacturer = "Microsoft Corporation";
    virtualMachine.productName = "Virtual Machine";
    EXPECT_EQ(guestType(cpuidDir, kvm, cpuid::Firmware()), "KVM");  // no firmware tables, like this VM
    EXPECT_EQ(guestType(cpuidDir, hyperV, virtualMachine), "Hyper-V");
    EXPECT_EQ(guestType(cpuidDir, hyperV, table("jrgerber_smbios-lib__jeffgerlap_3_2_0", "windows-rsmb")),
              "Unknown (not a guest)");  // a Surface laptop: Microsoft's firmware, no "Virtual" product
    // VMware's firmware under Hyper-V's leaf: nested, decided by the product name.
    EXPECT_EQ(guestType(cpuidDir, hyperV, table("u-root_smbios__VMWare", "dump-bin")), "VMware");
}

}  // namespace
