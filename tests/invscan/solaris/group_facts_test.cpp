// What the simulated machines do not reach: the groups' gathering steps over
// failures a table of cases shows best, and the PROM walkers over a fake PROM.
// Whole scans of machines are in tests/machines.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/solaris/CpuMeterGroups.h"
#include "invscan/solaris/MemoryGroup.h"
#include "invscan/solaris/ProcessorGroup.h"
#include "support/FakeSystem.h"

namespace {

using testsupport::FakeSystem;
using testsupport::ScopedSystem;

TEST(ProcessorFacts, AnyFaultGivesNothingAndOneTraceLine)
{
    const std::string two = "(Processor\nTotalCoreCount:i=2\n)\n";
    struct Case {
        std::string output, trace;
    } cases[] = {
        {"1.0 0 ok\n(ProcessorTable\nTotalPackageCount:i=2\n" + two + ")\n", "[E] Failed to read proc #1 from CPUID data"},
        {"1.0 0 ok\n(ProcessorTable\n" + two + ")\n", "[E] Invalid physical package count -1"},
        {"1.0 0 ok\n(Other\n)\n", "ERROR: missing ProcessorTable"},
        {"1.0 0 ok\n)\n", "[E] VT command returned 0 data="},
        {"garbage\n", "[E] VT command returned -1 data="},
        {"1.0 0 ok\n(ProcessorTable\nTotalPackageCount:i=1\n(Processor\nTotalCoreCount:i=2000000000\n)\n)\n",
         "[E] Invalid core count 2000000000 for proc #0"},
    };
    FakeSystem os;  // no processor count: the fixed bound holds
    ScopedSystem scope(os);
    trace::Capture capture;
    for (const Case& c : cases) {
        capture.clear();
        VtIStream_Memory stream(c.output);
        std::unique_ptr<VtExecInfo> info(vtParseProgramOutput(&stream));
        ProcessorFacts facts;
        EXPECT_FALSE(gatherProcessorFacts(info.get(), facts)) << c.trace;
        EXPECT_TRUE(capture.contains(c.trace)) << c.trace;
    }
    ProcessorFacts facts;
    EXPECT_FALSE(gatherProcessorFacts(nullptr, facts));
    EXPECT_TRUE(capture.contains("[E] Cannot execute VT command"));
}

TEST(MemoryFacts, SwapListFaultsLeaveSwapAtZero)
{
    struct Case {
        const char* what;
        int count, listResult, listErrno;
        std::string trace;
        trace::Level level;
    } cases[] = {
        {"listed nothing", 1, 0, 0, "swapctl failed : No swap configured", trace::Level::Min},
        {"list failed", 1, -1, EOVERFLOW, "swapctl failed : " + std::string(std::strerror(EOVERFLOW)), trace::Level::Mid},
        // count + 1 would wrap, and 24 x count on 32 bits: refused before any allocation
        {"absurd count", 2147483647, -2, 0, "swapctl failed : " + std::string(std::strerror(EOVERFLOW)),
         trace::Level::Mid},
    };
    for (const Case& c : cases) {
        FakeSystem os;
        os.swapCount = c.count;
        os.swapListResult = c.listResult;
        os.swapListErrno = c.listErrno;
        os.swapDevices = {{"/dev/dsk/c0t0d0s1", 1024, 1024}};
        trace::Capture capture;
        const MemoryFacts facts = gatherMemoryFacts(os);
        EXPECT_EQ(facts.swapTotalKB + facts.swapFreeKB, 0) << c.what;
        bool found = false;
        for (const auto& r : capture.records()) found |= r.level == c.level && r.text.find(c.trace) != std::string::npos;
        EXPECT_TRUE(found) << c.what;
    }
}

TEST(CpuTicks, ProcessorZeroRecordsOfTheRightShapeOnly)
{
    // Each case: how to spoil the two records of processors 0 and 1, and
    // the processors counted and processor 0's idle ticks that remain.
    struct Case {
        const char* what;
        void (*spoil)(FakeSystem&);
        int processors;
        unsigned long long idle, total;
    } cases[] = {
        {"sound", [](FakeSystem&) {}, 2, 100, 135},
        {"a layout without the leading lock words", [](FakeSystem& os) { os.kstats[0].dataSize = 372; }, 2, 0, 0},
        {"named, not raw", [](FakeSystem& os) { os.kstats[0].type = KSTAT_TYPE_NAMED; }, 2, 0, 0},
        {"unreadable record is no processor", [](FakeSystem& os) { os.kstats[1].readFails = true; }, 1, 100, 135},
    };
    for (const Case& c : cases) {
        FakeSystem os;
        os.addCpuStat(0, 100, 20, 10, 5);
        os.addCpuStat(1, 9000, 9000, 9000, 9000);  // never looked up: only instance 0 is
        c.spoil(os);
        CpuTicks ticks;
        ASSERT_TRUE(gatherCpuTicks(os, ticks)) << c.what;
        EXPECT_EQ(ticks.processors, c.processors) << c.what;
        EXPECT_EQ(ticks.idle, c.idle) << c.what;
        EXPECT_EQ(ticks.total, c.total) << c.what;
        EXPECT_EQ(os.openKstatHandles(), 0) << c.what;
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
