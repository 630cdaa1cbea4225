// The CPU meter groups against a fake system: the deliberate arithmetic over
// processor 0's record, skipped records, and the load averages.
#include <gtest/gtest.h>

#include <memory>

#include "framework/Trace.h"
#include "invscan/solaris/CpuMeterGroups.h"
#include "support/FakeSystem.h"
#include "support/TableReader.h"

using testsupport::FakeSystem;

namespace {

std::vector<unsigned long long> meter(FakeSystem& os)
{
    testsupport::ScopedSystem scope(os);
    CpuMeterGroup group;
    std::unique_ptr<KorTable> table(group.getTable());
    EXPECT_EQ(os.openKstatHandles(), 0);
    if (!table) return {};
    const auto rows = testsupport::readTable(*table);
    std::vector<unsigned long long> values;
    for (const auto& cell : rows.at(0)) {
        EXPECT_EQ(cell.second.type, static_cast<unsigned long>(KOR_ULONGLONG));
        values.push_back(cell.second.number);
    }
    return values;
}

TEST(CpuMeter, ProcessorZeroDividedByTheProcessorCount)
{
    FakeSystem one;
    one.addCpuStat(0, 100, 20, 10, 5);
    EXPECT_EQ(meter(one), (std::vector<unsigned long long>{100, 20, 5, 10, 135}));

    // Four processors: only instance 0's record is ever looked up, once per
    // processor, and its counters are stored, not added.
    FakeSystem four;
    four.addCpuStat(0, 400, 40, 80, 0);
    four.addCpuStat(1, 9000, 9000, 9000, 9000);
    four.addCpuStat(2, 9000, 9000, 9000, 9000);
    four.addCpuStat(3, 9000, 9000, 9000, 9000);
    EXPECT_EQ(meter(four), (std::vector<unsigned long long>{100, 10, 0, 20, 130}));
}

TEST(CpuMeter, RecordsOfTheWrongShapeAreSkipped)
{
    FakeSystem os;
    os.addCpuStat(0, 100, 20, 10, 5);
    os.addCpuStat(1, 100, 20, 10, 5);
    os.kstats[0].dataSize = 372;  // a layout without the leading lock words
    EXPECT_EQ(meter(os), (std::vector<unsigned long long>{0, 0, 0, 0, 0}));

    os.kstats[0].dataSize = sizeof(cpu_stat_t);
    os.kstats[0].type = KSTAT_TYPE_NAMED;
    EXPECT_EQ(meter(os), (std::vector<unsigned long long>{0, 0, 0, 0, 0}));

    // A record that cannot be read is not counted as a processor.
    os.kstats[0].type = KSTAT_TYPE_RAW;
    os.kstats[1].readFails = true;
    EXPECT_EQ(meter(os), (std::vector<unsigned long long>{100, 20, 5, 10, 135}));
}

TEST(CpuMeter, NoProcessorsGiveZerosAndNoKstatGivesNoTable)
{
    FakeSystem none;
    trace::Capture capture;
    EXPECT_EQ(meter(none), (std::vector<unsigned long long>{0, 0, 0, 0, 0}));
    EXPECT_TRUE(capture.contains("Kstat returned 0 processors"));

    FakeSystem closed;
    closed.kstatOpenFails = true;
    capture.clear();
    testsupport::ScopedSystem scope(closed);
    CpuMeterGroup group;
    EXPECT_EQ(group.getTable(), nullptr);
    EXPECT_TRUE(capture.contains("Failed to open kstat interface"));
}

TEST(UnixCpuMeter, LoadAveragesAsFloatsOrNoTable)
{
    FakeSystem os;
    os.loadavg[0] = 0.5;
    os.loadavg[1] = 0.25;
    os.loadavg[2] = 0.125;
    testsupport::ScopedSystem scope(os);
    trace::Capture capture;
    UnixCpuMeterGroup group;
    std::unique_ptr<KorTable> table(group.getTable());
    ASSERT_NE(table, nullptr);
    const auto rows = testsupport::readTable(*table);
    ASSERT_EQ(rows.size(), 1u);
    const double expected[] = {0.5, 0.25, 0.125};
    for (unsigned long id = 1; id <= 3; ++id) {
        EXPECT_EQ(rows[0].at(id).type, static_cast<unsigned long>(KOR_FLOAT));
        EXPECT_EQ(rows[0].at(id).real, expected[id - 1]);
    }
    EXPECT_TRUE(capture.contains("loadAvg1=0.500000, loadAvg5=0.250000, loadAvg15=0.125000"));

    os.loadavgFails = true;
    EXPECT_EQ(group.getTable(), nullptr);
    EXPECT_TRUE(capture.contains("Failed to obtain load averages"));
}

}  // namespace
