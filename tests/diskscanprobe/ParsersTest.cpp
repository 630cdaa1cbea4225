// The probe's readers over real captures of Solaris machines.
#include <gtest/gtest.h>

#include "probes/diskscan/Parsers.h"
#include "support/Fixtures.h"

namespace {

using namespace diskscan;
using testsupport::captureText;

std::string joined(const std::vector<std::string>& items)
{
    std::string out;
    for (const std::string& s : items) out += (out.empty() ? "" : " ") + s;
    return out;
}

TEST(DiskscanParsers, FcinfoPortsFromRealCaptures)
{
    REQUIRE_FIXTURES(dir, "fcinfo-psrinfo-df");
    const std::vector<HbaPort> two =
        parseFcinfoHbaPort(captureText(dir + "/glpi-project_glpi-agent__resources_solaris_fcinfo_hba-port_sample-1"));
    ASSERT_EQ(two.size(), 2u);
    const HbaPort& p = two[1];
    EXPECT_EQ(p.id, "c1");
    EXPECT_EQ(p.wwpn, "210100e08bb4b4a3");
    EXPECT_EQ(p.wwnn, "200100e08bb4b4a3");
    EXPECT_EQ(p.vendor, "QLogic Corp.");
    EXPECT_EQ(p.model, "QLE2462");
    EXPECT_EQ(p.serial, "RFC0708N52628");
    EXPECT_EQ(p.type, "L-port");
    EXPECT_EQ(p.state, "online");
    EXPECT_EQ(p.speed, "4Gb");  // the current speed, not the supported ones
    EXPECT_EQ(p.description, "QLE2462 FW:05.03.02 DVR:qlc 20100301-3.00");

    const std::vector<HbaPort> old =
        parseFcinfoHbaPort(captureText(dir + "/glpi-project_glpi-agent__resources_solaris_fcinfo_hba-port_sample-2"));
    ASSERT_FALSE(old.empty());
    EXPECT_EQ(old[0].serial, "");  // "not available"
    EXPECT_EQ(old[0].model, "2200");
}

TEST(DiskscanParsers, MountTablesInBothSolarisForms)
{
    REQUIRE_FIXTURES(dir, "fcinfo-psrinfo-df");
    const std::vector<Mount> v = parseSolarisMounts(captureText(dir + "/glpi-project_glpi-agent__resources_solaris_mount_oi-2021.10"));
    ASSERT_FALSE(v.empty());
    EXPECT_EQ(v[0].special, "rpool/ROOT/openindiana");
    EXPECT_EQ(v[0].mountPoint, "/");
    EXPECT_EQ(v[0].type, "zfs");

    const std::vector<Mount> tabs = parseSolarisMounts("/dev/dsk/c0t0d0s0\t/\tufs\trw,intr,largefiles\t1101394423\n"
                                                       "/proc\t/proc\tproc\trw\t1101394423\n");
    ASSERT_EQ(tabs.size(), 2u);
    EXPECT_EQ(tabs[0].special, "/dev/dsk/c0t0d0s0");
    EXPECT_EQ(tabs[1].type, "proc");
}

TEST(DiskscanParsers, PoolsGiveTheDevicesThatHoldTheirData)
{
    REQUIRE_FIXTURES(dir, "solaris-storage");
    auto mirror = parseZpoolStatus(captureText(dir + "/index-21677060352__sol10-T5220-zfsroot__zpool_status.mirror-2-disks.txt"));
    EXPECT_EQ(joined(mirror["rootpool"]), "c1t0d0s0 c1t1d0s0");
    // Two pools; the log mirror holds data, the cache devices do not.
    auto two = parseZpoolStatus(captureText(
        dir + "/index-269068615__smartos__zpool_status.2-pools-mirror+raidz2x2-log-mirror-cache.WHITESPACE-EDITED.txt"));
    EXPECT_EQ(two["fastssd"].size(), 4u);
    EXPECT_EQ(two["zones"].size(), 18u);
    EXPECT_EQ(two["zones"].back(), "c0t55CD2E404B636939d0p0");
}

TEST(DiskscanParsers, MetadevicesDownToTheirSlices)
{
    REQUIRE_FIXTURES(dir, "solaris-storage");
    auto md = parseMetastat(captureText(dir + "/opensvc_opensvc__devtree-sunos__metastat_-p.txt") +
                            "d20 -r c1t0d0s3 /dev/dsk/c1t1d0s3 -k -i 32b\nhsp001 c2t0d0s0\n");
    EXPECT_EQ(joined(md["d11"]), "d2 d3");  // the pass number is no part
    EXPECT_EQ(joined(md["d2"]), "c3t0d0s1");
    EXPECT_EQ(joined(md["d20"]), "c1t0d0s3 c1t1d0s3");
    EXPECT_EQ(md.count("hsp001"), 0u);
}

TEST(DiskscanParsers, MountInfoUndoesEscapes)
{
    const std::vector<Mount> m = parseMountInfo(
        "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
        "40 27 8:17 / /mnt/my\\040disk rw shared:1 - xfs /dev/sdb1 rw\n"
        "22 27 0:21 / /proc rw - proc proc rw\n"
        "garbage\n");
    ASSERT_EQ(m.size(), 3u);
    EXPECT_EQ(m[0].major, 254);
    EXPECT_EQ(m[1].mountPoint, "/mnt/my disk");  // past an optional field
    EXPECT_EQ(m[1].special, "/dev/sdb1");
    EXPECT_EQ(m[1].minor, 17);
    EXPECT_EQ(m[2].type, "proc");
}

}  // namespace
