// The Linux gathering step over sysfs trees built for the test: a Fibre
// Channel host with two ports and four LUNs seen through both, an md mirror
// and an LVM volume on two disks each.
#include <gtest/gtest.h>
#include <unistd.h>

#include "probes/diskscan/platform_linux.h"
#include "support/Fixtures.h"
#include "support/TempDir.h"

namespace {

using namespace diskscan;
using testsupport::TempDir;

class Sysfs {
public:
    const TempDir& t;
    void link(const std::string& from, const std::string& to) const
    {
        t.write(from.substr(0, from.rfind('/')) + "/.keep", "");  // the folder, hidden from listings
        ASSERT_EQ(symlink((t.path() + "/" + to).c_str(), (t.path() + "/" + from).c_str()), 0) << from;
    }
    // Disk `name` at SCSI address host:0:target:lun.
    void disk(const std::string& name, int host, int target, int lun) const
    {
        const std::string device = "devices/" + std::to_string(host) + ":0:" + std::to_string(target) + ":" +
                                   std::to_string(lun);
        t.write(device + "/type", "0\n");
        t.write("block/" + name + "/size", "2097152\n");
        link("block/" + name + "/device", device);
    }
    void fcPort(int host, const std::string& wwpn) const
    {
        const std::string dir = "class/fc_host/host" + std::to_string(host);
        t.write(dir + "/port_name", "0x" + wwpn + "\n");
        t.write(dir + "/node_name", "0x20000024ff000001\n");
        t.write(dir + "/port_state", "Online\n");
        t.write(dir + "/speed", "8 Gbit\n");
        t.write(dir + "/symbolic_name", "QLE2562 FW:v8.07.00 DVR:v10.02.00.200-k\n");
        const std::string target = "class/fc_transport/target" + std::to_string(host) + ":0:0";
        t.write(target + "/port_name", "0x500a09819" + std::to_string(host) + "000001\n");
        t.write(target + "/node_name", "0x500a098000000001\n");
    }
};

std::string describe(const Scan& s)
{
    std::string out;
    for (const DiskFact& d : s.disks)
        out += d.id + (d.san ? " san " + d.wwpn + " via " + d.hbaId + " " + d.hbaWwpn : "") + "\n";
    for (const PartitionFact& p : s.partitions) {
        out += p.name + " (" + p.mount + " " + p.type + "):";
        for (const std::string& id : p.disks) out += " " + id;
        out += "\n";
    }
    for (const HbaPort& h : s.hbas) out += h.id + " " + h.model + " " + h.wwpn + " " + h.state + " " + h.speed + "\n";
    return out;
}

TEST(DiskscanLinux, FibreChannelLunsMirrorsAndVolumes)
{
    TempDir t;
    const Sysfs fs{t};
    const char* fcDisks[] = {"sda", "sdb", "sdc", "sdd", "sde", "sdf", "sdg", "sdh"};
    for (int i = 0; i < 8; ++i) fs.disk(fcDisks[i], i < 4 ? 2 : 3, 0, i % 4);
    fs.fcPort(2, "21000024ff000002");
    fs.fcPort(3, "21000024ff000003");
    for (const char* d : {"sdi", "sdj", "sdk", "sdl"}) fs.disk(d, 0, d[2] - 'i', 0);
    t.write("block/sdi/sdi1/partition", "1\n");
    t.write("block/sdj/sdj1/partition", "1\n");
    t.write("block/md0/size", "2097152\n");
    fs.link("block/md0/slaves/sdi1", "block/sdi/sdi1");
    fs.link("block/md0/slaves/sdj1", "block/sdj/sdj1");
    t.write("block/dm-0/size", "4194304\n");
    fs.link("block/dm-0/slaves/sdk", "block/sdk");
    fs.link("block/dm-0/slaves/sdl", "block/sdl");
    t.write("block/zram0/size", "0\n");
    fs.link("dev/block/9:0", "block/md0");
    fs.link("dev/block/253:0", "block/dm-0");
    fs.link("dev/block/252:0", "block/zram0");
    fs.link("dev/block/8:0", "block/sda");

    Scan scan;
    gatherLinux(t.path(),
                "27 1 9:0 / / rw - ext4 /dev/md0 rw\n"
                "30 27 253:0 / /var rw - xfs /dev/mapper/vg-var rw\n"
                "31 27 252:0 / /srv rw - ext4 /dev/zram0 rw\n"
                "32 27 8:0 / /san rw - ext4 /dev/sda rw\n"
                "22 27 0:21 / /proc rw - proc proc rw\n",
                scan, nullptr);
    EXPECT_EQ(describe(scan),
              "/dev/rdsk/sda san 0x500a098192000001 via host2 0x21000024ff000002\n"
              "/dev/rdsk/sdb san 0x500a098192000001 via host2 0x21000024ff000002\n"
              "/dev/rdsk/sdc san 0x500a098192000001 via host2 0x21000024ff000002\n"
              "/dev/rdsk/sdd san 0x500a098192000001 via host2 0x21000024ff000002\n"
              "/dev/rdsk/sde san 0x500a098193000001 via host3 0x21000024ff000003\n"
              "/dev/rdsk/sdf san 0x500a098193000001 via host3 0x21000024ff000003\n"
              "/dev/rdsk/sdg san 0x500a098193000001 via host3 0x21000024ff000003\n"
              "/dev/rdsk/sdh san 0x500a098193000001 via host3 0x21000024ff000003\n"
              "/dev/rdsk/sdi\n/dev/rdsk/sdj\n/dev/rdsk/sdk\n/dev/rdsk/sdl\n"
              "/ (/dev/md0 ext4): /dev/rdsk/sdi /dev/rdsk/sdj\n"
              "/var (/dev/mapper/vg-var xfs): /dev/rdsk/sdk /dev/rdsk/sdl\n"
              "/srv (/dev/zram0 ext4):\n"
              "/san (/dev/sda ext4): /dev/rdsk/sda\n"
              "host2 QLE2562 0x21000024ff000002 Online 8 Gbit\n"
              "host3 QLE2562 0x21000024ff000003 Online 8 Gbit\n");
}

TEST(DiskscanLinux, RealFibreChannelHostAttributes)
{
    REQUIRE_FIXTURES(dir, "linux-fc");
    TempDir t;
    t.write("class/placeholder", "");
    ASSERT_EQ(symlink((dir + "/prometheus_procfs__testdata-fixtures-ttar__sys_class_fc_host").c_str(),
                      (t.path() + "/class/fc_host").c_str()),
              0);
    Scan scan;
    gatherLinux(t.path(), "", scan, nullptr);
    ASSERT_EQ(scan.hbas.size(), 2u);
    EXPECT_EQ(scan.hbas[0].wwpn, "0x1000e0071bce95f2");
    EXPECT_EQ(scan.hbas[0].speed, "16 Gbit");
    EXPECT_EQ(scan.hbas[0].model, "Emulex");
    EXPECT_EQ(scan.hbas[1].state, "Online");
    EXPECT_EQ(scan.hbas[1].wwpn, "");  // a host without the file
}

}  // namespace
