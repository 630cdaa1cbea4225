// Decoding rules that the captures alone do not pin down.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "cpuidprobe/DumpReader.h"
#include "probes/cpuid/Collect.h"
#include "probes/cpuid/Decoder.h"
#include "support/Fixtures.h"

namespace {

using cpuid::CpuDump;
using cpuid::Regs;

TEST(CpuidSignature, DecodesFamilyModelSteppingTheStandardWay)
{
    struct Case {
        uint32_t eax, family, model, stepping;
    } const cases[] = {
        {0x00000673, 6, 7, 3},      // no extended fields at all
        {0x00000F43, 15, 4, 3},     // family 0xF with extended family 0
        {0x00020FB1, 15, 43, 1},    // family 0xF uses the extended model
        {0x00100F42, 16, 4, 2},     // extended family added only to 0xF
        {0x00A60F12, 25, 97, 2},
        {0x00090672, 6, 151, 2},    // family 6 uses the extended model
        {0x000F0543, 5, 4, 3},      // family 5 ignores the extended model
        {0x0FFF0FFF, 15 + 255, 0xFF, 15},  // every field at its widest
    };
    for (const Case& c : cases) {
        uint32_t family = 0, model = 0, stepping = 0;
        cpuid::decodeSignature(c.eax, family, model, stepping);
        EXPECT_EQ(family, c.family) << std::hex << c.eax;
        EXPECT_EQ(model, c.model) << std::hex << c.eax;
        EXPECT_EQ(stepping, c.stepping) << std::hex << c.eax;
    }
}

// An Intel processor with leaf 0xB answers beyond its maximum leaf: what the
// hardware returns there is the highest leaf's data, not topology.
TEST(CpuidTopology, IgnoresLeavesAboveTheReportedMaximum)
{
    auto make = [](uint32_t apic, bool honest) {
        CpuDump d;
        d.set(0, 0, {honest ? 0xBu : 0x5u, 0x756E6547, 0x6C65746E, 0x49656E69});
        d.set(1, 0, {0x000306F2, (apic << 24) | (2u << 16), 0, 1u << 28});
        d.set(4, 0, {(0u << 26) | 0x121, 0, 0, 0});
        // Leaf 0xB: no SMT (shift 0), core shift 4.
        d.set(0xB, 0, {0, 1, 0x100, apic});
        d.set(0xB, 1, {4, 8, 0x201, apic});
        return d;
    };
    // Two logical processors, APIC ids 0 and 1: by leaf 0xB two cores.
    cpuid::Decoded withB = cpuid::decode({make(0, true), make(1, true)});
    ASSERT_EQ(withB.packages.size(), 1u);
    EXPECT_EQ(withB.packages[0].cores, 2);
    EXPECT_EQ(withB.packages[0].threadsPerCore, 1);

    // Max leaf 5: the legacy fields say one core with two addressable ids.
    cpuid::Decoded legacy = cpuid::decode({make(0, false), make(1, false)});
    ASSERT_EQ(legacy.packages.size(), 1u);
    EXPECT_EQ(legacy.packages[0].cores, 1);
    EXPECT_EQ(legacy.packages[0].threadsPerCore, 2);
}

TEST(CpuidTopology, ProcessorsThatAnsweredNothingAreLeftOut)
{
    CpuDump one;
    one.set(0, 0, {1, 0x68747541, 0x444D4163, 0x69746E65});  // AuthenticAMD, max leaf 1
    one.set(1, 0, {0x00020FF0, 0, 0, 0});
    cpuid::Decoded d = cpuid::decode({CpuDump{}, one, CpuDump{}});
    EXPECT_EQ(d.logicalCount, 1);
    ASSERT_EQ(d.packages.size(), 1u);
    EXPECT_EQ(d.packages[0].processors, std::vector<size_t>{1});
    EXPECT_EQ(d.packages[0].vendor, "AuthenticAMD");
    EXPECT_EQ(d.packages[0].brand, "");  // no extended leaves
    EXPECT_FALSE(d.hypervisor);

    cpuid::Decoded none = cpuid::decode({});
    EXPECT_EQ(none.logicalCount, 0);
    EXPECT_TRUE(none.packages.empty());
}

// A processor (or hypervisor) that reports absurd maxima must not make the
// collector loop for ever.
TEST(CpuidCollect, StaysWithinBoundsWhateverTheMaximaSay)
{
    int calls = 0;
    CpuDump d = cpuid::collect([&calls](uint32_t leaf, uint32_t) {
        ++calls;
        // Every leaf claims everything: maximal leaves, endless subleaf lists,
        // a hypervisor with a huge range.
        (void)leaf;
        return Regs{0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu};
    });
    EXPECT_LT(calls, 1000);
    EXPECT_FALSE(d.empty());
    EXPECT_EQ(d.maxExtended(), 0u);  // 0xFFFFFFFF is no extended maximum
}

// What the probe asks and what it writes in its debug log are enough to
// decode the machine again: collecting from a capture and reading the raw
// log back gives the same answer as the capture itself.
TEST(CpuidCollect, CollectedAndLoggedRegistersDecodeLikeTheCapture)
{
    REQUIRE_FIXTURES(dir, "cpuid");
    const char* files[] = {
        "InstLatx64__GenuineIntel0000F24_P4_Northwood_CPUID.txt",
        "InstLatx64__GenuineIntel0010676_Harpertown_CPUID.txt",
        "InstLatx64__GenuineIntel0090672_AlderLake_01_LC_BC_CPUID.txt",
        "InstLatx64__AuthenticAMD0600F12_Interlagos_CPUID.txt",
        "InstLatx64__AuthenticAMD0800F12_K17_Zen_CPUID4.txt",
        "lkml-kvm-20210527-YK9jOdCPUGQF4t0D__kvm-guest-i7-8650U-smp1_cpuid-r.txt",
    };
    for (const char* file : files) {
        SCOPED_TRACE(file);
        std::vector<CpuDump> captured = cpuidtest::readDumpFile(dir + "/" + file);
        ASSERT_FALSE(captured.empty());
        std::string log;
        for (size_t i = 0; i < captured.size(); ++i) {
            const CpuDump& source = captured[i];
            CpuDump asked = cpuid::collect([&source](uint32_t leaf, uint32_t sub) { return source.get(leaf, sub); });
            log += cpuid::rawText(asked, static_cast<int>(i));
        }
        cpuid::Decoded expected = cpuid::decode(captured);
        cpuid::Decoded again = cpuid::decode(cpuidtest::readDumpText(log));
        ASSERT_EQ(again.packages.size(), expected.packages.size());
        EXPECT_EQ(again.logicalCount, expected.logicalCount);
        EXPECT_EQ(again.hypervisorVendor, expected.hypervisorVendor);
        EXPECT_EQ(again.hypervisorInterface, expected.hypervisorInterface);
        for (size_t p = 0; p < expected.packages.size(); ++p) {
            const cpuid::Package& a = again.packages[p];
            const cpuid::Package& e = expected.packages[p];
            EXPECT_EQ(a.cores, e.cores);
            EXPECT_EQ(a.threadsPerCore, e.threadsPerCore);
            EXPECT_EQ(a.brand, e.brand);
            EXPECT_EQ(a.signature, e.signature);
            EXPECT_EQ(a.features, e.features);
            EXPECT_EQ(a.l2KB, e.l2KB);
            EXPECT_EQ(a.l3KB, e.l3KB);
        }
    }
}

}  // namespace
