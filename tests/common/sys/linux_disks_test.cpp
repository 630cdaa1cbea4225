// Linux's disks in Solaris shapes: over a sysfs tree built for the test, and
// over this machine's own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <memory>
#include <sstream>

#include "common/sys/LinuxDisks.h"
#include "common/sys/System.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/storage/StorageGroup.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;
using sys::linuxdisks::Disk;

// A sysfs tree: a virtio disk, a SATA disk with a serial page, a DVD drive
// without a disc, a floppy, and what is no disk (a loop device, a hidden
// NVMe path, a partition).
void buildSysfs(const TempDir& t)
{
    const std::string& root = t.path();
    auto link = [&root](const std::string& from, const std::string& to) {
        ASSERT_EQ(symlink(to.c_str(), (root + "/" + from).c_str()), 0) << from;
    };
    t.write("devices/pci0/virtio1/uevent", "");
    t.write("drivers/virtio_blk/uevent", "");
    link("devices/pci0/virtio1/driver", root + "/drivers/virtio_blk");
    t.write("devices/pci0/virtio1/vendor", "0x1af4\n");
    t.write("block/vda/serial", "QM00001");
    t.write("block/vda/dev", "254:0\n");
    t.write("block/vda/size", "536870912\n");
    t.write("block/vda/queue/logical_block_size", "512\n");
    t.write("block/vda/vda1/size", "2048\n");
    link("block/vda/device", root + "/devices/pci0/virtio1");

    // A SCSI device HOST:0:0:0 under an ahci host, as block/NAME.
    auto scsi = [&](const std::string& name, int host, const std::string& facts, const std::string& sectors) {
        const std::string device = "devices/ata/" + std::to_string(host) + ":0:0:0";
        std::istringstream lines(facts);  // "file=value" lines
        for (std::string line; std::getline(lines, line);)
            t.write(device + "/" + line.substr(0, line.find('=')), line.substr(line.find('=') + 1) + "\n");
        t.write("class/scsi_host/host" + std::to_string(host) + "/proc_name", "ahci\n");
        t.write("block/" + name + "/size", sectors + "\n");
        link("block/" + name + "/device", root + "/" + device);
    };
    scsi("sda", 0, "vendor=ATA     \nmodel=Samsung SSD 860 \nrev=4B6Q\ntype=0", "1953525168");
    t.write("devices/ata/0:0:0:0/vpd_pg80", std::string("\0\x80\0\x0fS3Z9NB0K123456A", 19));
    scsi("sr0", 1, "vendor=HL-DT-ST\nmodel=DVD+-RW GHB0N   \nrev=A101\ntype=5", "0");

    t.write("devices/platform/floppy.0/uevent", "");
    t.write("block/fd0/size", "2880\n");
    link("block/fd0/device", root + "/devices/platform/floppy.0");

    t.write("block/loop0/size", "0\n");
    t.write("devices/nvme/nvme0/uevent", "");
    t.write("block/nvme0c0n1/hidden", "1\n");
    link("block/nvme0c0n1/device", root + "/devices/nvme/nvme0");
}

TEST(LinuxDisks, WholeDisksAndDrivesFromSysfs)
{
    TempDir t;
    buildSysfs(t);
    const std::vector<Disk> disks = sys::linuxdisks::listDisks(t.path());
    std::string listing;
    for (const Disk& d : disks)
        listing += d.entry + " " + d.driver + " " + d.vendor + "|" + d.model + "|" + d.revision + "|" + d.serial + " " +
                   std::to_string(d.bytes) + "\n";
    EXPECT_EQ(listing,
              "sda ahci ATA|Samsung SSD 860|4B6Q|S3Z9NB0K123456A 1000204886016\n"
              "c1t0d0s2 ahci HL-DT-ST|DVD+-RW GHB0N|A101| 0\n"
              "vda virtio_blk |||QM00001 274877906944\n");

    // An open finds its disk alone; a drive by its Solaris name; never a partition.
    Disk found;
    EXPECT_TRUE(sys::linuxdisks::findDisk("vda", found, t.path()));
    EXPECT_TRUE(sys::linuxdisks::findDisk("c1t0d0s2", found, t.path()));
    EXPECT_EQ(found.kernelName, "sr0");
    for (const char* absent : {"sr0", "vda1", "loop0", "../block/vda", ""})
        EXPECT_FALSE(sys::linuxdisks::findDisk(absent, found, t.path())) << absent;

    // The controls: a directly attached disk is a hard disk's controller;
    // READ CAPACITY gives the last block; a drive without a disc has none.
    const Disk& vda = disks.at(2);
    dk_cinfo info;
    sys::linuxdisks::controllerInfo(vda, info);
    EXPECT_EQ(info.dki_ctype, DKC_DIRECT);
    EXPECT_EQ(info.dki_cnum, 254);  // the driver's major number: every virtio disk on one controller
    EXPECT_STREQ(info.dki_cname, "virtio_blk");
    vtoc v;
    sys::linuxdisks::label(vda, v);
    EXPECT_EQ(v.v_part[2].p_tag, V_BACKUP);
    EXPECT_STREQ(v.v_asciilabel, "DEFAULT cyl 33418 alt 0 hd 255 sec 63");

    unsigned char cdb[10] = {0x25}, data[64] = {};
    uscsi_cmd cmd{};
    cmd.uscsi_cdb = reinterpret_cast<caddr_t>(cdb);
    cmd.uscsi_cdblen = 10;
    cmd.uscsi_bufaddr = reinterpret_cast<caddr_t>(data);
    cmd.uscsi_buflen = sizeof data;
    ASSERT_TRUE(sys::linuxdisks::emulateScsi(vda, cmd));
    EXPECT_EQ(std::memcmp(data, "\x1f\xff\xff\xff\0\0\x02\0", 8), 0);
    EXPECT_FALSE(sys::linuxdisks::emulateScsi(disks.at(1), cmd));
    unsigned char inquiry[6] = {0x12, 0, 0, 0, 0x30, 0};
    cmd.uscsi_cdb = reinterpret_cast<caddr_t>(inquiry);
    cmd.uscsi_cdblen = 6;
    ASSERT_TRUE(sys::linuxdisks::emulateScsi(disks.at(0), cmd));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data), 48),
              std::string("\0\0\x05\x02\x5b\0\0\0", 8) + "ATA     Samsung SSD 860 4B6QS3Z9NB0K1234");
    EXPECT_EQ(cmd.uscsi_resid, sizeof data - 48);
}

TEST(LinuxDisks, CommandsAnsweredAsSolarisWouldAndReadByTheStorageReaders)
{
    TempDir t;
    buildSysfs(t);
    std::string iostat, floppy, pcmcia;
    ASSERT_TRUE(sys::linuxdisks::answerCommand("/usr/bin/iostat -En", t.path(), iostat));
    ASSERT_TRUE(sys::linuxdisks::answerCommand("ls -la /dev/ | grep disk", t.path(), floppy));
    ASSERT_TRUE(sys::linuxdisks::answerCommand("ls -la /dev/| grep pcmcia", t.path(), pcmcia));
    EXPECT_FALSE(sys::linuxdisks::answerCommand("ls -la /dev/", t.path(), pcmcia));
    EXPECT_EQ(floppy, "diskette -> /dev/fd0\n");
    EXPECT_EQ(pcmcia, "");
    EXPECT_NE(iostat.find("Size: 1000.20GB <1000204886016 bytes>\n"), std::string::npos) << iostat;

    // The DVD drive is a CD/DVD row; the disks are not.
    StorageScan scan(sys::current());
    StorageFacts facts;
    facts.devices.resize(1);
    ASSERT_TRUE(scan.reportCDROMs("c1t0d0s2", iostat, facts.devices[0]));
    KorTable table(5, 1);
    shapeStorageRows(facts, table);
    NamedRow r = readNamedRows(table).at(0);
    EXPECT_EQ(r["Model"], "DVD+-RW GHB0N");
    EXPECT_EQ(r["Manufacturer"], "HL-DT-ST");
    StorageDevice disk;
    EXPECT_FALSE(scan.reportCDROMs("sda", iostat, disk));
}

// Every disk this machine's kernel lists with a device behind it is one
// row, under its own name, with the size the kernel gives it.
TEST(LinuxDisks, ThisMachinesDisksAreEachReportedOnce)
{
    std::map<std::string, unsigned long long> expected;  // device -> MB
    for (const Disk& d : sys::linuxdisks::listDisks())
        if (!d.optical) expected["/dev/rdsk/" + d.entry] = d.bytes >> 20;
    StorageGroup group;
    std::unique_ptr<KorTable> table(group.getTable());
    if (expected.empty()) {
        EXPECT_EQ(table, nullptr);
        return;
    }
    ASSERT_TRUE(table);
    const bool floppyDrive = access("/sys/block/fd0", F_OK) == 0;
    for (const Row& r : readTable(*table)) {
        const std::string type = valueText(r[2]), device = valueText(r[10]);
        if (type == "29") {
            EXPECT_TRUE(floppyDrive) << "a floppy row on a machine without a floppy drive";
        }
        if (type != "30" && type != "1") continue;
        ASSERT_EQ(expected.count(device), 1u) << device << " reported twice, or not a disk";
        // READ CAPACITY's last block, in single precision: the size or one MB short.
        const unsigned long long size = std::stoull(valueText(r[9]));
        EXPECT_TRUE(size == expected[device] || size + 1 == expected[device]) << device << " " << size;
        expected.erase(device);
    }
    EXPECT_TRUE(expected.empty()) << expected.size() << " disks not reported, the first " << expected.begin()->first;
}

}  // namespace
