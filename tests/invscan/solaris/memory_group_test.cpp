// The Memory group against a fake system: each swap path, the failure
// branches with their trace lines, and large page counts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <memory>

#include "framework/Trace.h"
#include "invscan/solaris/MemoryGroup.h"
#include "support/FakeSystem.h"
#include "support/TableReader.h"

using testsupport::FakeSystem;

namespace {

class MemoryGroupTest : public ::testing::Test {
protected:
    MemoryGroupTest() : m_scope(m_os)
    {
        m_os.sysconfValues = {{_SC_PAGESIZE, 4096}, {_SC_PHYS_PAGES, 262144}, {_SC_AVPHYS_PAGES, 65536}};
    }

    // Attribute id to value of the one row.
    std::map<unsigned long, unsigned long long> scan()
    {
        MemoryGroup group;
        std::unique_ptr<KorTable> table(group.getTable());
        EXPECT_NE(table, nullptr);
        if (!table) return {};
        EXPECT_EQ(table->getGroupId(), 3u);
        EXPECT_EQ(table->getGroupVersion(), 1u);
        const auto rows = testsupport::readTable(*table);
        EXPECT_EQ(rows.size(), 1u);
        std::map<unsigned long, unsigned long long> values;
        for (const auto& cell : rows.at(0)) {
            EXPECT_EQ(cell.second.type, static_cast<unsigned long>(KOR_ULONG)) << cell.first;
            values[cell.first] = cell.second.number;
        }
        return values;
    }

    FakeSystem m_os;
    testsupport::ScopedSystem m_scope;
    trace::Capture m_trace{trace::Level::Max};
};

TEST_F(MemoryGroupTest, NoSwapDevicesTakesTheAnonymousMemoryFigures)
{
    m_os.swapCount = 0;
    m_os.ainfo = {1000, 250, 100};  // pages
    const auto v = scan();
    const std::map<unsigned long, unsigned long long> expected = {
        {1, 1048576}, {2, 262144}, {3, 1048576 + 4000}, {4, 262144 + 1000}, {5, 262144}, {6, 65536}, {7, 4096}};
    EXPECT_EQ(v, expected);  // 8 and 9 are never filled
    EXPECT_TRUE(m_trace.contains("swapctl(SC_LIST) failed("));
    EXPECT_TRUE(m_trace.contains("trying swapctl(SC_AINFO)"));
    EXPECT_TRUE(m_trace.contains("totalSwapspace : 4000"));
    EXPECT_TRUE(m_trace.contains("freeSwapspace : 1000"));
}

TEST_F(MemoryGroupTest, FailedAnonymousMemoryCallLeavesSwapAtZero)
{
    m_os.swapCount = -1;
    m_os.swapCountErrno = ENOSYS;
    m_os.ainfoFails = true;
    m_os.ainfoErrno = EFAULT;
    const auto v = scan();
    EXPECT_EQ(v.at(3), v.at(1));
    EXPECT_EQ(v.at(4), v.at(2));
    EXPECT_TRUE(m_trace.contains("swapctl(SC_AINFO) failed : " + std::string(std::strerror(EFAULT))));
}

TEST_F(MemoryGroupTest, SeveralSwapDevicesAreSummed)
{
    m_os.swapCount = 2;
    m_os.swapDevices = {{"/dev/zvol/dsk/rpool/swap", 262144, 131072}, {"/export/swapfile", 1024, 1024}};
    const auto v = scan();
    EXPECT_EQ(v.at(3), 1048576u + 1048576u + 4096u);
    EXPECT_EQ(v.at(4), 262144u + 524288u + 4096u);
    // One entry more than reported, deliberately.
    EXPECT_TRUE(m_trace.contains("swapctl(SC_GETNSWP) returns  3"));
    EXPECT_TRUE(m_trace.contains("Swap device: /export/swapfile"));
    EXPECT_TRUE(m_trace.contains(": 1073741824"));
    EXPECT_TRUE(m_trace.contains("Total Swap Space 1052672"));
}

TEST_F(MemoryGroupTest, SwapListFailuresLeaveSwapAtZero)
{
    m_os.swapCount = 1;
    m_os.swapListResult = 0;
    auto v = scan();
    EXPECT_EQ(v.at(3), v.at(1));
    bool minimum = false;
    for (const auto& r : m_trace.records())
        minimum |= r.level == trace::Level::Min && r.text.find("swapctl failed : No swap configured") != std::string::npos;
    EXPECT_TRUE(minimum);

    m_trace.clear();
    m_os.swapListResult = -1;
    m_os.swapListErrno = EOVERFLOW;
    v = scan();
    EXPECT_EQ(v.at(4), v.at(2));
    EXPECT_TRUE(m_trace.contains("swapctl failed : " + std::string(std::strerror(EOVERFLOW))));
}

TEST_F(MemoryGroupTest, AnAbsurdDeviceCountIsRefusedBeforeAnyAllocation)
{
    m_os.swapCount = 2147483647;  // count + 1 would wrap, and 24 * count on 32 bits
    const auto v = scan();
    EXPECT_EQ(v.at(3), v.at(1));
    EXPECT_TRUE(m_trace.contains("swapctl failed : " + std::string(std::strerror(EOVERFLOW))));
}

TEST_F(MemoryGroupTest, PageProductsPastThirtyTwoBitsStayExact)
{
    // 24 GiB of 4 KiB pages: the byte count needs 35 bits.
    m_os.sysconfValues = {{_SC_PAGESIZE, 4096}, {_SC_PHYS_PAGES, 6291456}, {_SC_AVPHYS_PAGES, 5242880}};
    m_os.swapCount = 1;
    m_os.swapDevices = {{"/dev/dsk/c0t0d0s1", 2097152, 2097152}};  // 8 GiB
    const auto v = scan();
    EXPECT_EQ(v.at(1), 25165824u);
    EXPECT_EQ(v.at(2), 20971520u);
    EXPECT_EQ(v.at(3), 25165824u + 8388608u);
}

TEST_F(MemoryGroupTest, UnavailableFiguresBecomeZero)
{
    m_os.sysconfValues.clear();
    m_os.swapCount = 0;
    m_os.ainfoFails = true;
    const auto v = scan();
    for (unsigned long id = 1; id <= 7; ++id) EXPECT_EQ(v.at(id), 0u) << id;
}

}  // namespace
