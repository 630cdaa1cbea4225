// The Partition group's reading of mount tables: a real Solaris one, and
// this machine's against df.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/solaris/storage/PartitionGroup.h"
#include "support/Fixtures.h"

namespace {

using namespace testsupport;

std::set<std::string> shownMountPoints(const std::vector<MountEntry>& mounts)
{
    std::set<std::string> shown;
    for (const MountEntry& m : mounts)
        if (classifyMount(m).shown) shown.insert(m.mountPoint);
    return shown;
}

TEST(Partition, MountTableLinesAndWhatIsShown)
{
    const auto mounts = parseMountTable(
        "/dev/dsk/c0t0d0s0\t/\tufs\trw,logging\t1098604644\nshort\tline\n\n"
        "swap\t/tmp\ttmpfs\txattr\t1\nswap\t/var/run\ttmpfs\txattr\t1\n"
        "filer:/vol/a b\t/mnt/a b\tnfs\trw,hard\t1\n//me@nas/share\t/smb\tsmbfs\trw\t1\n"
        "-hosts\t/net\tautofs\tignore\t1\nsys-01:vold\t/vol\tnfs\tignore,noquota\t1\n"
        "/dev/mapper/vg-root\t/srv\text4\trw\t1\nrpool/ROOT\t/zroot\tzfs\trw\t1\n"
        "/dev/sr0\t/media/cd\tiso9660\tro\t1\n");
    ASSERT_EQ(mounts.size(), 10u);  // "short line" has no type
    EXPECT_EQ(mounts[3].special, "filer:/vol/a b");  // fields may hold blanks
    EXPECT_EQ(shownMountPoints(mounts),
              (std::set<std::string>{"/", "/tmp", "/mnt/a b", "/smb", "/srv", "/zroot", "/media/cd"}));

    const struct {
        size_t entry;
        unsigned long partType, mediaType;
        int fsType;
    } kinds[] = {{0, PART_TYPE_LOGICAL_DRIVE, PART_MEDIA_LOCAL_DISK, 0xBF},
                 {1, PART_TYPE_LOGICAL_DRIVE, PART_MEDIA_RAM_DISK, -1},
                 {3, PART_TYPE_REMOTE_DRIVE, PART_MEDIA_REMOTE, -1},
                 {7, PART_TYPE_LOGICAL_VOLUME, PART_MEDIA_LOCAL_DISK, 0x83},
                 {8, PART_TYPE_LOGICAL_VOLUME, PART_MEDIA_LOCAL_DISK, 0xBF},
                 {9, PART_TYPE_LOGICAL_DRIVE, PART_MEDIA_CDROM, -1}};
    for (const auto& k : kinds) {
        const FileSystemKind kind = classifyMount(mounts[k.entry]);
        EXPECT_EQ(kind.partType, k.partType) << mounts[k.entry].mountPoint;
        EXPECT_EQ(kind.mediaType, k.mediaType) << mounts[k.entry].mountPoint;
        EXPECT_EQ(kind.fsTypeId, k.fsType) << mounts[k.entry].mountPoint;
    }

    // Remote sizes are never asked (a dead server would hold the scan); the
    // server comes from either spelling.
    const auto rows = gatherPartitions(sys::current(), {mounts[3], mounts[4]});
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].server, "filer");
    EXPECT_EQ(rows[0].serverPath, "/vol/a b");
    EXPECT_FALSE(rows[0].sized);
    EXPECT_EQ(rows[1].server, "nas");
    EXPECT_EQ(rows[1].serverPath, "/share");
}

TEST(Partition, RealSolarisMountTable)
{
    REQUIRE_FIXTURES(dir, "solaris-storage");
    // The capture's tabs became runs of blanks on the way; no field holds one.
    const std::string text = std::regex_replace(
        captureText(dir + "/deimosfr_mytechnotebook__disk-management__etc_mnttab.sol10-2004.WHITESPACE-NORMALISED.txt"),
        std::regex(" +"), "\t");
    EXPECT_EQ(shownMountPoints(parseMountTable(text)),
              (std::set<std::string>{"/", "/usr", "/var", "/tmp", "/export/home"}));
}

// Compared with what df says of this machine. df is the witness: when it
// cannot say (no df, or a mount table without "/", as in a plain chroot),
// there is nothing to compare with and the test says so.
TEST(ThisMachine, PartitionSizesAreDfs)
{
    std::string table;
    if (!util::readSystemFile(sys::platform(), "/etc/mnttab", table, 16 << 20))
        GTEST_SKIP() << "this machine cannot say: no mount table";
    std::map<std::string, std::string> df;  // mount point -> size
    std::unique_ptr<FILE, int (*)(FILE*)> out(popen("df -B1 --output=target,size,avail 2>/dev/null", "r"), pclose);
    char line[4096];
    while (out && std::fgets(line, sizeof line, out.get())) {
        std::istringstream fields(line);
        std::string target, size, avail;
        if (fields >> target >> size >> avail) df[target] = size;
    }
    if (df.size() <= 1) GTEST_SKIP() << "this machine cannot say: no df, or df printed no file system";
    if (!df.count("/"))
        GTEST_SKIP() << "this machine cannot say: its mount table lists no \"/\" (a chroot?), so neither df nor "
                        "the group sees the root file system";
    const auto rows = gatherPartitions(sys::platform(), parseMountTable(table));
    bool root = false;
    for (const PartitionRow& r : rows) {
        root |= r.mount.mountPoint == "/";
        if (!r.sized || !df.count(r.mount.mountPoint)) continue;
        EXPECT_EQ(std::to_string(r.totalBytes), df[r.mount.mountPoint]) << r.mount.mountPoint;
    }
    EXPECT_TRUE(root) << "df shows \"/\", the group does not";
}

}  // namespace
