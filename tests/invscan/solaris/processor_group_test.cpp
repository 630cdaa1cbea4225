// The Processor group over scripted cpuid probes, and the PROM walkers over
// a fake PROM device.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "invscan/com/md5.h"
#include "invscan/com/probeVT.h"
#include "invscan/solaris/ProcessorGroup.h"
#include "support/FakeSystem.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using Rows = std::vector<std::map<unsigned long, testsupport::Cell>>;

// One package of the dump: `extra` holds its own value lines.
std::string package(const std::string& extra, const std::string& cpuid = "Family:i=6\nModel:i=63\nStepping:i=2\n")
{
    return "(Processor\nManufacturer:s=GenuineIntel\nCpuClockMHz:i=2400\n" + extra + "(CPUID\n" + cpuid + ")\n)\n";
}

class ProcessorGroupTest : public ::testing::Test {
protected:
    ProcessorGroupTest() : m_env("NIM_HOMEDIR", m_home.path().c_str()) {}
    void SetUp() override { probes::resetCacheForTests(); }
    void TearDown() override { probes::resetCacheForTests(); }

    // A cpuid probe printing `header` and then `dump`; the group's table, or
    // null (an empty Rows with `isNull` set).
    std::unique_ptr<KorTable> scan(const std::string& dump, const std::string& header = "1.0 0 ok")
    {
        probes::resetCacheForTests();
        m_home.write("dump.txt", dump);
        m_home.script("bin/cpuid", "echo '" + header + "'\ncat '" + m_home.path() + "/dump.txt'\n");
        ProcessorGroup group;
        return std::unique_ptr<KorTable>(group.getTable());
    }
    Rows rows(const std::string& dump)
    {
        auto table = scan(dump);
        EXPECT_NE(table, nullptr);
        return table ? testsupport::readTable(*table) : Rows();
    }

    testsupport::TempDir m_home;
    testsupport::ScopedEnv m_env;
};

std::string md5Of(const std::string& text)
{
    char* sum = md5_checksum(text.c_str());
    std::string out = sum ? sum : "";
    std::free(sum);
    return out;
}

TEST_F(ProcessorGroupTest, IdenticalPackagesGiveOneRowPerCoreWithOneId)
{
    const std::string four = package("TotalCoreCount:i=4\n");
    const Rows r = rows("(ProcessorTable\nTotalPackageCount:i=2\n" + four + four + ")\n");
    ASSERT_EQ(r.size(), 8u);
    // manufacturer, "i386", then 0, clock, clock, 0, 0, family, model, stepping
    const std::string id = md5Of("GenuineInteli386024002400006632");
    for (size_t i = 0; i < r.size(); ++i) {
        EXPECT_EQ(r[i].at(1).number, i + 1);
        EXPECT_EQ(r[i].at(2).text, id);
        EXPECT_EQ(r[i].at(3).text, "i386");
        EXPECT_EQ(r[i].at(4).number, 2400u);
        EXPECT_EQ(r[i].at(5).number, 2400u);
        EXPECT_EQ(r[i].at(6).number, 0u);
        EXPECT_EQ(r[i].at(7).text, "GenuineIntel");
        EXPECT_EQ(r[i].at(8).text, "");
        EXPECT_EQ(r[i].at(10).number, 6u);
        EXPECT_EQ(r[i].at(11).number, 63u);
        EXPECT_EQ(r[i].at(12).number, 2u);
        EXPECT_EQ(r[i].count(9) + r[i].count(42), 0u);
        EXPECT_EQ(r[i].size(), 11u);
    }
}

TEST_F(ProcessorGroupTest, CoreCountFallbacksAndTheHyperThreadingFlag)
{
    // No TotalCoreCount: the CPUID core count, else one core.
    Rows r = rows("(ProcessorTable\nTotalPackageCount:i=1\n" +
                  package("", "Family:i=15\nCorePerPackageCount:i=2\nHtPerCoreCount:i=2\n") + ")\n");
    ASSERT_EQ(r.size(), 2u);
    for (const auto& row : r) EXPECT_EQ(row.at(42).text, "H");

    r = rows("(ProcessorTable\nTotalPackageCount:i=1\n" + package("ProcsPerCore:i=1\n", "HtPerCoreCount:i=2\n") + ")\n");
    ASSERT_EQ(r.size(), 1u);  // ProcsPerCore wins over the CPUID figure
    EXPECT_EQ(r[0].count(42), 0u);
    EXPECT_EQ(r[0].at(10).number, 0u);  // absent CPUID values read as 0

    r = rows("(ProcessorTable\nTotalPackageCount:i=1\n" + package("TotalCoreCount:i=0\nProcsPerCore:i=2\n") + ")\n");
    ASSERT_EQ(r.size(), 1u);
    EXPECT_EQ(r[0].at(42).text, "H");

    // A second package counts on from the first.
    r = rows("(ProcessorTable\nTotalPackageCount:i=2\n" + package("TotalCoreCount:i=1\n") +
             package("TotalCoreCount:i=2\n", "Family:i=6\nModel:i=85\nStepping:i=4\n") + ")\n");
    ASSERT_EQ(r.size(), 3u);
    EXPECT_EQ(r[2].at(1).number, 3u);
    EXPECT_NE(r[0].at(2).text, r[1].at(2).text);
    EXPECT_EQ(r[1].at(2).text, md5Of("GenuineInteli386024002400006854"));
}

TEST_F(ProcessorGroupTest, AnyFailureGivesNoTableAndOneTraceLine)
{
    trace::Capture capture;
    const std::string one = package("TotalCoreCount:i=2\n");
    struct Case {
        std::string dump, header, trace;
    };
    const Case cases[] = {
        {"(ProcessorTable\nTotalPackageCount:i=2\n" + one + ")\n", "1.0 0 ok", "[E] Failed to read proc #1 from CPUID data"},
        {"(ProcessorTable\n" + one + ")\n", "1.0 0 ok", "[E] Invalid physical package count -1"},
        {"(Other\n)\n", "1.0 0 ok", "ERROR: missing ProcessorTable"},
        {"(ProcessorTable\nTotalPackageCount:i=1\n" + one + ")\n", "1.0 3 no access", "[E] VT command returned 3 data="},
        {"", "garbage", "[E] VT command returned -1 data="},
        {"(ProcessorTable\nTotalPackageCount:i=1\n" + package("TotalCoreCount:i=2000000000\n") + ")\n", "1.0 0 ok",
         "[E] Invalid core count 2000000000 for proc #0"},
    };
    for (const Case& c : cases) {
        capture.clear();
        EXPECT_EQ(scan(c.dump, c.header), nullptr) << c.trace;
        EXPECT_TRUE(capture.contains(c.trace)) << c.trace;
    }
}

// A PROM of three nodes: root 1 with children 2 and 3.
int promIoctl(int request, void* arg)
{
    auto* p = static_cast<openpromio*>(arg);
    if (p->oprom_size < sizeof(int)) {
        errno = EINVAL;
        return -1;
    }
    const int node = p->oprom_node;
    if (request == OPROMNEXT) {
        p->oprom_node = node == 0 ? 1 : node == 2 ? 3 : 0;
        return 0;
    }
    if (request == OPROMCHILD) {
        p->oprom_node = node == 1 ? 2 : 0;
        return 0;
    }
    errno = EINVAL;
    return -1;
}

TEST(PromWalk, PeerAndChildOverTheDevice)
{
    testsupport::FakeSystem os;
    os.devices["/dev/openprom"].ioctl = promIoctl;
    testsupport::ScopedSystem scope(os);
    const int fd = os.open("/dev/openprom", 0);
    ASSERT_GE(fd, 0);
    const int root = peer(0, fd);
    EXPECT_EQ(root, 1);
    EXPECT_EQ(child(root, fd), 2);
    EXPECT_EQ(peer(2, fd), 3);
    EXPECT_EQ(peer(3, fd), 0);
    EXPECT_EQ(child(3, fd), 0);

    trace::Capture capture;
    EXPECT_EQ(peer(1, 12345), -1);  // not an open descriptor
    EXPECT_EQ(child(1, 12345), -1);
    EXPECT_TRUE(capture.contains("child failed " + std::string(std::strerror(EBADF))));
    EXPECT_TRUE(capture.contains("node 00000001 fd 12345"));
    os.close(fd);
}

TEST(PromWalk, RequestBuffers)
{
    openpromio* p = opp_zalloc(16);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->oprom_size, 16u);
    const auto* bytes = reinterpret_cast<const unsigned char*>(p->oprom_array);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(bytes[i], 0) << i;
    opp_free(p);
    opp_free(nullptr);
}

}  // namespace
