// Every real CPUID capture decoded and compared with what is known about the
// machine it came from (maker's published core and thread counts, sockets).
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

#include "cpuidprobe/DumpReader.h"
#include "probes/cpuid/Decoder.h"
#include "support/Fixtures.h"

namespace {

struct Truth {
    const char* file;
    const char* vendor;
    uint32_t signature;
    uint32_t family, model, stepping;
    const char* brand;
    int coresPerPackage;
    int threadsPerCore;  // hybrid parts: the most on any core
    int packages;
    int logical;
    const char* hypervisor;  // "" when leaf 1 ECX bit 31 is clear
};

// clang-format off
const Truth kTruth[] = {
    {"InstLatx64__GenuineIntel0000673_P3_Katmai_CPUID.txt", "GenuineIntel", 0x673, 6, 7, 3, "", 1, 1, 1, 1, ""},
    {"InstLatx64__GenuineIntel0000F24_P4_Northwood_CPUID.txt", "GenuineIntel", 0xF24, 15, 2, 4, "Intel(R) Pentium(R) 4 CPU 1.60GHz", 1, 1, 1, 1, ""},
    {"InstLatx64__GenuineIntel0000F43_P4_Prescott_CPUID.txt", "GenuineIntel", 0xF43, 15, 4, 3, "Intel(R) Pentium(R) 4 CPU 3.20GHz", 1, 2, 1, 2, ""},
    {"InstLatx64__GenuineIntel0000F62_P4_Presler_CPUID.txt", "GenuineIntel", 0xF62, 15, 6, 2, "Genuine Intel(R) CPU 3.46GHz", 2, 2, 1, 4, ""},
    {"InstLatx64__GenuineIntel0000F4A_P4_Irwindale_CPUID.txt", "GenuineIntel", 0xF4A, 15, 4, 10, "Intel(R) Xeon(TM) CPU 3.40GHz", 1, 2, 2, 4, ""},
    {"InstLatx64__GenuineIntel0010676_Yorkfield_CPUID.txt", "GenuineIntel", 0x10676, 6, 23, 6, "Intel(R) Core(TM)2 Extreme CPU X9650 @ 3.00GHz", 4, 1, 1, 4, ""},
    {"InstLatx64__GenuineIntel0010676_Harpertown_CPUID.txt", "GenuineIntel", 0x10676, 6, 23, 6, "Intel(R) Xeon(R) CPU E5462 @ 2.80GHz", 4, 1, 2, 8, ""},
    {"InstLatx64__GenuineIntel00106C2_DiamondvilleDC_CPUID.txt", "GenuineIntel", 0x106C2, 6, 28, 2, "Intel(R) Atom(TM) CPU 330 @ 1.60GHz", 2, 2, 1, 4, ""},
    {"InstLatx64__GenuineIntel00106E5_Lynnfield_CPUID.txt", "GenuineIntel", 0x106E5, 6, 30, 5, "Intel(R) Core(TM) i7 CPU 860 @ 2.80GHz", 4, 2, 1, 8, ""},
    {"InstLatx64__GenuineIntel00206A7_SandyBridge2_CPUID.txt", "GenuineIntel", 0x206A7, 6, 42, 7, "Intel(R) Core(TM) i7-2600 CPU @ 3.40GHz", 4, 2, 1, 8, ""},
    {"InstLatx64__GenuineIntel00306F2_HaswellEP_CPUID.txt", "GenuineIntel", 0x306F2, 6, 63, 2, "Intel(R) Xeon(R) CPU E5-2699 v3 @ 2.30GHz", 18, 2, 2, 72, ""},
    {"InstLatx64__GenuineIntel0090672_AlderLake_01_LC_BC_CPUID.txt", "GenuineIntel", 0x90672, 6, 151, 2, "12th Gen Intel(R) Core(TM) i9-12900K", 16, 2, 1, 24, ""},
    {"InstLatx64__GenuineIntel00A06A4_MeteorLake_10_CPUID.txt", "GenuineIntel", 0xA06A4, 6, 170, 4, "Intel(R) Core(TM) Ultra 7 155H", 16, 2, 1, 22, ""},
    {"InstLatx64__GenuineIntel00B06D1_LunarLake_04_CPUID.txt", "GenuineIntel", 0xB06D1, 6, 189, 1, "Intel(R) Core(TM) Ultra 9 288V", 8, 1, 1, 8, ""},
    {"InstLatx64__GenuineIntel00C0662_ArrowLake_08_CPUID.txt", "GenuineIntel", 0xC0662, 6, 198, 2, "Intel(R) Core(TM) Ultra 7 265K", 20, 1, 1, 20, ""},
    {"InstLatx64__AuthenticAMD0020FF0_K8_Venice_CPUID.txt", "AuthenticAMD", 0x20FF0, 15, 47, 0, "AMD Athlon(tm) 64 Processor 3200+", 1, 1, 1, 1, ""},
    {"InstLatx64__AuthenticAMD0020FB1_K8_Manchester_CPUID.txt", "AuthenticAMD", 0x20FB1, 15, 43, 1, "AMD Athlon(tm) 64 X2 Dual Core Processor 3800+", 2, 1, 1, 2, ""},
    {"InstLatx64__AuthenticAMD0100F42_K10_Shanghai_CPUID.txt", "AuthenticAMD", 0x100F42, 16, 4, 2, "Quad-Core AMD Opteron(tm) Processor 2378", 4, 1, 2, 8, ""},
    {"InstLatx64__AuthenticAMD0600F20_K15_Vishera_CPUID.txt", "AuthenticAMD", 0x600F20, 21, 2, 0, "AMD FX(tm)-8350 Eight-Core Processor", 8, 1, 1, 8, ""},
    {"InstLatx64__AuthenticAMD0600F12_Interlagos_CPUID.txt", "AuthenticAMD", 0x600F12, 21, 1, 2, "AMD Opteron(TM) Processor 6274", 16, 1, 2, 32, ""},
    {"InstLatx64__AuthenticAMD0800F11_K17_Zen_CPUID4.txt", "AuthenticAMD", 0x800F11, 23, 1, 1, "AMD Ryzen 7 1800X Eight-Core Processor", 8, 2, 1, 16, ""},
    {"InstLatx64__AuthenticAMD0800F12_K17_Zen_CPUID4.txt", "AuthenticAMD", 0x800F12, 23, 1, 2, "AMD EPYC 7401P 24-Core Processor", 24, 2, 1, 48, "Microsoft Hv"},
    {"InstLatx64__AuthenticAMD0A60F12_K19_Raphael_04_CPUID.txt", "AuthenticAMD", 0xA60F12, 25, 97, 2, "AMD Ryzen 9 7950X 16-Core Processor", 16, 2, 1, 32, ""},
    {"lkml-kvm-20210527-YK9jOdCPUGQF4t0D__kvm-guest-i7-8650U-smp1_cpuid-r.txt", "GenuineIntel", 0x806EA, 6, 142, 10, "Intel(R) Core(TM) i7-8650U CPU @ 1.90GHz", 1, 1, 1, 1, "KVMKVMKVM"},
};
// clang-format on

TEST(CpuidFixtures, EveryCaptureDecodesToItsKnownTopologyAndIdentity)
{
    REQUIRE_FIXTURES(dir, "cpuid");

    for (const Truth& t : kTruth) {
        SCOPED_TRACE(t.file);
        std::vector<cpuid::CpuDump> cpus = cpuidtest::readDumpFile(dir + "/" + t.file);
        ASSERT_EQ(static_cast<int>(cpus.size()), t.logical) << "sections read from the capture";

        cpuid::Decoded d = cpuid::decode(cpus);
        EXPECT_EQ(d.logicalCount, t.logical);
        ASSERT_EQ(static_cast<int>(d.packages.size()), t.packages);
        int logicalSum = 0;
        for (const cpuid::Package& p : d.packages) {
            EXPECT_EQ(p.vendor, t.vendor);
            EXPECT_EQ(p.signature, t.signature);
            EXPECT_EQ(p.family, t.family);
            EXPECT_EQ(p.model, t.model);
            EXPECT_EQ(p.stepping, t.stepping);
            EXPECT_EQ(p.brand, t.brand);
            EXPECT_EQ(p.cores, t.coresPerPackage);
            EXPECT_EQ(p.threadsPerCore, t.threadsPerCore);
            logicalSum += p.logicalCount;
        }
        EXPECT_EQ(logicalSum, t.logical);
        EXPECT_EQ(d.hypervisor, *t.hypervisor != '\0');
        EXPECT_EQ(d.hypervisorVendor, t.hypervisor);
    }
}

}  // namespace
