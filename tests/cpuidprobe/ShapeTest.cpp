// The tree the probe prints, as the scanner's groups read it.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <memory>

#include "common/vartree/vtexec.h"
#include "cpuidprobe/DumpReader.h"
#include "probes/cpuid/Shape.h"
#include "support/Fixtures.h"
#include "support/StreamCapture.h"

namespace {

cpuid::Machine machineFrom(const std::string& dir, const std::string& file, int clockMHz)
{
    cpuid::Machine m;
    std::vector<cpuid::CpuDump> dumps = cpuidtest::readDumpFile(dir + "/" + file);
    for (size_t i = 0; i < dumps.size(); ++i) {
        cpuid::LogicalProcessor lp;
        lp.osId = static_cast<int>(i);
        lp.dump = dumps[i];
        lp.clockMHz = clockMHz;
        m.processors.push_back(lp);
    }
    m.onlineCount = static_cast<int>(dumps.size());
    return m;
}

cpuid::Decoded decodeMachine(const cpuid::Machine& m)
{
    std::vector<cpuid::CpuDump> dumps;
    for (const cpuid::LogicalProcessor& lp : m.processors) dumps.push_back(lp.dump);
    return cpuid::decode(dumps);
}

// A single-core Pentium 4 with Hyper-Threading: two logical processors on
// one core, 64-bit, 2 MB L2 from leaf 4.
TEST(CpuidTree, PrintsThePrescottCaptureExactly)
{
    REQUIRE_FIXTURES(dir, "cpuid");
    cpuid::Machine m = machineFrom(dir, "InstLatx64__GenuineIntel0000F43_P4_Prescott_CPUID.txt", 3200);
    m.osArch = "amd64";
    m.osKernelMode = "64-bit";
    std::unique_ptr<VtNode> root(cpuid::buildTree(m, decodeMachine(m)));

    testsupport::StreamCapture out(stdout);
    cpuid::printTree(root.get());
    EXPECT_EQ(out.text(),
              "(ProcessorTable\n"
              "   TotalPackageCount:i=1\n"
              "   ActivePackageCount:i=1\n"
              "   TotalCoreCount:i=1\n"
              "   ActiveCoreCount:i=1\n"
              "   OnlineProcessorCount:i=2\n"
              "   ActiveProcessorCount:i=2\n"
              "   OSSystemArch:s=amd64\n"
              "   OSKernelMode:s=64-bit\n"
              "   (Processor\n"
              "      Manufacturer:s=GenuineIntel\n"
              "      BrandName:s=Intel(R) Pentium(R) 4 CPU 3.20GHz\n"
              "      Family:s=Pentium\n"
              "      Type:s=Original OEM Processor\n"
              "      Signature:s=00000F43\n"
              "      Is64bit:s=Yes\n"
              "      IEM64T:s=Yes\n"
              "      CpuClockMHz:i=3200\n"
              "      TotalCoreCount:i=1\n"
              "      ActiveCoreCount:i=1\n"
              "      TotalPoolCoreCount:i=1\n"
              "      TotalProcCount:i=2\n"
              "      ActiveProcCount:i=2\n"
              "      TotalPoolProcCount:i=2\n"
              "      ProcsPerCore:i=2\n"
              "      L2CacheSizeKB:i=2048\n"
              "      L3CacheSizeKB:i=0\n"
              "      Features:s=fpu vme de pse tsc msr pae mce cx8 apic sep mtrr pge mca cmov pat pse36 "
              "clflush ds acpi mmx fxsr sse sse2 ss ht tm pbe sse3 dtes64 monitor ds_cpl est cx16 xtpr nx lm\n"
              "      (CPUID\n"
              "         CorePerPackageCount:i=1\n"
              "         HtPerCoreCount:i=2\n"
              "         Family:i=15\n"
              "         Model:i=4\n"
              "         Stepping:i=3\n"
              "         BrandId:i=0\n"
              "         ExtBrand:i=0\n"
              "      )\n"
              "   )\n"
              ")\n"
              // No firmware tables: the system is there, empty, and no host.
              "(System\n   Manufacturer:s=\n   ProductName:s=\n   Version:s=\n   SerialNumber:s=\n   UUID:s=\n)\n");
}

// Read back the way the scanner reads a probe: header, then the dump.
std::unique_ptr<VtExecInfo> readBack(const VtNode* root)
{
    testsupport::StreamCapture out(stdout);
    vtDumpResponse(0, "OK");
    cpuid::printTree(root);
    std::fflush(stdout);
    VtIStream_Memory stream(out.text());
    return std::unique_ptr<VtExecInfo>(vtParseProgramOutput(&stream));
}

TEST(CpuidTree, ReadsBackPerPackageAndWithTheHypervisorWhenAnnounced)
{
    REQUIRE_FIXTURES(dir, "cpuid");
    struct Case {
        const char* file;
        int packages;
        int coresEach;
        int procsPerCore;
        const char* hypervisor;  // null: no "Hypervisor" node
        const char* interface;   // null: no "Interface" value
    } const cases[] = {
        {"InstLatx64__GenuineIntel00306F2_HaswellEP_CPUID.txt", 2, 18, 2, nullptr, nullptr},
        {"InstLatx64__GenuineIntel0090672_AlderLake_01_LC_BC_CPUID.txt", 1, 16, 2, nullptr, nullptr},
        {"InstLatx64__AuthenticAMD0800F12_K17_Zen_CPUID4.txt", 1, 24, 2, "Microsoft Hv", "Hv#1"},
        // KVM's leaf 0x40000001 holds feature bits, not a name.
        {"lkml-kvm-20210527-YK9jOdCPUGQF4t0D__kvm-guest-i7-8650U-smp1_cpuid-r.txt", 1, 1, 1, "KVMKVMKVM", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        cpuid::Machine m = machineFrom(dir, c.file, 2000);
        std::unique_ptr<VtNode> root(cpuid::buildTree(m, decodeMachine(m)));
        std::unique_ptr<VtExecInfo> info = readBack(root.get());
        ASSERT_TRUE(info && info->root);
        EXPECT_EQ(info->result, 0);
        EXPECT_EQ(vtGetValue(info.get(), "ProcessorTable", "TotalPackageCount", -1), c.packages);
        EXPECT_EQ(vtGetValue(info.get(), "ProcessorTable", "TotalCoreCount", -1), c.packages * c.coresEach);
        const VtNode* table = vtGetNode(info.get(), "ProcessorTable", 0);
        ASSERT_NE(table, nullptr);
        for (int p = 0; p < c.packages; ++p) {
            const VtNode* proc = table->getChild("Processor", p);
            ASSERT_NE(proc, nullptr) << "package " << p;
            EXPECT_EQ(proc->getValue(nullptr, "TotalCoreCount", -1), c.coresEach);
            EXPECT_EQ(proc->getValue(nullptr, "ProcsPerCore", -1), c.procsPerCore);
            EXPECT_EQ(proc->getValue("CPUID", "CorePerPackageCount", -1), c.coresEach);
            EXPECT_EQ(proc->getValue("CPUID", "HtPerCoreCount", -1), c.procsPerCore);
            EXPECT_EQ(proc->getValue(nullptr, "CpuClockMHz", -1), 2000);
        }
        EXPECT_EQ(table->getChild("Processor", c.packages), nullptr);
        const VtNode* hv = vtGetNode(info.get(), "Hypervisor", 0);
        if (!c.hypervisor) {
            EXPECT_EQ(hv, nullptr);
            continue;
        }
        ASSERT_NE(hv, nullptr);
        EXPECT_STREQ(vtGetValue(info.get(), "Hypervisor", "Vendor", "absent"), c.hypervisor);
        EXPECT_STREQ(vtGetValue(info.get(), "Hypervisor", "Interface", "absent"), c.interface ? c.interface : "absent");
    }
}

TEST(CpuidTree, FamilyNameComesFromTheBrandWords)
{
    struct Case {
        const char* brand;
        const char* family;
    } const cases[] = {
        {"Intel(R) Xeon(R) CPU E5-2699 v3 @ 2.30GHz", "Xeon"},
        {"12th Gen Intel(R) Core(TM) i9-12900K", "Core"},
        {"AMD Ryzen 7 1800X Eight-Core Processor", "Ryzen"},  // not "Core"
        {"AMD FX(tm)-8350 Eight-Core Processor", "FX"},
        {"Quad-Core AMD Opteron(tm) Processor 2378", "Opteron"},
        {"Genuine Intel(R) CPU 3.46GHz", "Unknown"},
        {"", "Unknown"},
        {"Intel(R) Corelike", "Unknown"},  // whole words only
    };
    for (const Case& c : cases) EXPECT_EQ(cpuid::familyName(c.brand), c.family) << c.brand;
}

// A brand string with control bytes must not break the line format.
TEST(CpuidTree, StringValuesStayOnOneLine)
{
    cpuid::CpuDump d;
    d.set(0, 0, {1, 0x756E6547, 0x6C65746E, 0x49656E69});
    d.set(1, 0, {0x00000673, 0, 0, 0});
    d.set(0x80000000u, 0, {0x80000004u, 0, 0, 0});
    d.set(0x80000002u, 0, {0x0A0D4241, 0x00000043, 0, 0});  // "AB\r\nC"
    cpuid::Machine m;
    m.processors.push_back({0, d, 0});
    m.onlineCount = 1;
    std::unique_ptr<VtNode> root(cpuid::buildTree(m, cpuid::decode({d})));
    std::unique_ptr<VtExecInfo> info = readBack(root.get());
    ASSERT_TRUE(info && info->root);
    const VtNode* table = vtGetNode(info.get(), "ProcessorTable", 0);
    ASSERT_NE(table, nullptr);
    EXPECT_STREQ(table->getValue("Processor", "BrandName", "absent"), "AB??C");
}

}  // namespace
