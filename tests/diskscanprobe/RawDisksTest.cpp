// The probe names each disk by the path the Storage group reports for it.
#include <gtest/gtest.h>

#include "probes/diskscan/RawDisks.h"
#include "support/Disks.h"

namespace {

using namespace testsupport;

TEST(DiskscanRawDisks, TheStorageGroupsChoiceOfPath)
{
    FakeSystem os;
    FakeDisk rootSliceFirst;
    rootSliceFirst.label.v_nparts = 8;
    rootSliceFirst.label.v_part[0].p_tag = V_ROOT;
    rootSliceFirst.label.v_part[2].p_tag = V_BACKUP;
    // c0t0d0: s0 is a root slice, its other one-digit slices are passed
    // over, p0 names it. c10t0d0: two-digit, every slice looked at. c1t0d0
    // answers nothing.
    for (const char* e : {"c0t0d0s0", "c0t0d0s1", "c0t0d0s2", "c0t0d0p0", "c10t0d0s0", "c10t0d0s1", "c10t0d0s2",
                          "c1t0d0s2"}) {
        os.directories["/dev/rdsk"].push_back(e);
        if (e[1] != '1' || e[2] == '0') installDisk(os, std::string("/dev/rdsk/") + e, rootSliceFirst);
    }
    const auto paths = diskscan::reportedDiskPaths(os);
    ASSERT_EQ(paths.size(), 2u);
    EXPECT_EQ(paths.at("c0t0d0"), "/dev/rdsk/c0t0d0p0");
    EXPECT_EQ(paths.at("c10t0d0"), "/dev/rdsk/c10t0d0s2");
    EXPECT_EQ(os.openDescriptors(), 0);
    EXPECT_EQ(os.openDirectories(), 0);
    EXPECT_EQ(diskscan::diskOf("c8t60060E80141A420000011A420000300Bd0s2"), "c8t60060E80141A420000011A420000300Bd0");
}

}  // namespace
