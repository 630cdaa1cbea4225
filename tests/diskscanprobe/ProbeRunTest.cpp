// The built probe on this machine: every disk the kernel lists, and the
// root file system tied to the disk under it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>

#include "common/sys/LinuxDisks.h"
#include "common/vartree/vtexec.h"
#include "probes/diskscan/Parsers.h"

namespace {

std::string probePath()
{
    const char* dir = std::getenv("INVSCAN_BIN_DIR");
    return std::string(dir && *dir ? dir : INVSCAN_BIN_DIR) + "/diskscan";
}

TEST(DiskscanProbe, ThisMachinesDisksAndRootFileSystem)
{
    std::unique_ptr<VtExecInfo> info(vtExecProgram(probePath().c_str(), nullptr, nullptr));
    ASSERT_TRUE(info);
    const VtNode* scsi = info->root ? info->root->getChild("ScsiInfo", 0) : nullptr;
    ASSERT_TRUE(scsi) << "result " << info->result;
    EXPECT_EQ(info->result, 0);

    std::set<std::string> ids;
    const VtNode* table = scsi->getChild("DiskTable", 0);
    for (const VtNode* d = table ? table->children : nullptr; d; d = d->next) ids.insert(d->getValue(nullptr, "Id", ""));
    std::set<std::string> expected;
    for (const sys::linuxdisks::Disk& d : sys::linuxdisks::listDisks()) expected.insert("/dev/rdsk/" + d.entry);
    EXPECT_EQ(ids, expected);

    std::ifstream in("/proc/self/mountinfo");
    std::ostringstream text;
    text << in.rdbuf();
    for (const diskscan::Mount& m : diskscan::parseMountInfo(text.str())) {
        const std::string sysDir = "/sys/dev/block/" + std::to_string(m.major) + ":" + std::to_string(m.minor);
        if (m.mountPoint != "/" || m.major <= 0 || access(sysDir.c_str(), F_OK) != 0) continue;
        const VtNode* partitions = scsi->getChild("PartitionTable", 0);
        const VtNode* root = nullptr;
        for (const VtNode* p = partitions ? partitions->children : nullptr; p; p = p->next)
            if (std::string(p->getValue(nullptr, "Name", "")) == "/") root = p;
        ASSERT_TRUE(root) << "no partition for /";
        const VtNode* disk = root->getChild("Disk", 0);
        ASSERT_TRUE(disk) << "/ is on " << m.special << " but on no disk";
        EXPECT_EQ(ids.count(disk->getValue(nullptr, "Id", "")), 1u);
    }
}

}  // namespace
