// The SCSI query layer against a fake device answering USCSICMD from bytes.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "framework/Trace.h"
#include "invscan/solaris/storage/scsiscan.h"
#include "support/Disks.h"

namespace {

using namespace testsupport;
using Bytes = std::string;

// Answers: INQUIRY, READ CAPACITY, page 3, page 4; empty: the command fails.
struct Device {
    Bytes inquiry, capacity, format = Bytes(), geometry = Bytes();
};

Bytes inquiry(unsigned char type, const char* vendor, const char* product, const char* revision, const char* serial)
{
    return scsiInquiry(type, vendor, product, revision, serial);
}
Bytes be(unsigned long long v, int n) { return bigEndian(v, n); }

void install(FakeSystem& os, const Device& d)
{
    FakeDisk disk;
    disk.inquiry = d.inquiry;
    disk.capacity = d.capacity;
    disk.formatPage = d.format;
    disk.geometryPage = d.geometry;
    installDisk(os, "/dev/rdsk/c0t0d0s2", disk);
}

struct Result {
    int returned;
    SCSIinfo info;
    ~Result()
    {
        for (char* s : {info.devName, info.vendor, info.product, info.serial, info.revision}) std::free(s);
    }
};

void scan(const Device& d, Result& r)
{
    FakeSystem os;
    install(os, d);
    ScopedSystem scope(os);
    char path[] = "/dev/rdsk/c0t0d0s2";
    r.returned = SCSIscan(path, &r.info);
    EXPECT_EQ(os.openDescriptors(), 0);
}

const Bytes kPage3 = formatPage(63, 512);
const Bytes kPage4 = rigidGeometryPage(0x012345, 0x10);

TEST(ScsiScan, ADiskIsReadWholeAndTheResultIsInverted)
{
    trace::Capture capture;
    Result r{};
    scan({inquiry(0, "SEAGATE", "ST318404LC", "0003", "3BT1X5FZ"), be(2097151, 4) + be(2048, 4), modeSense(kPage3),
          modeSense(kPage4)},
         r);
    EXPECT_EQ(r.returned, -1);  // the inquiry succeeded
    EXPECT_STREQ(r.info.devName, "/dev/rdsk/c0t0d0s2");
    EXPECT_STREQ(r.info.vendor, "SEAGATE");
    EXPECT_STREQ(r.info.product, "ST318404LC");
    EXPECT_STREQ(r.info.revision, "0003");
    EXPECT_STREQ(r.info.serial, "3BT1X5FZ");
    EXPECT_EQ(r.info.dtype, 0);
    EXPECT_EQ(r.info.sizeMB, 4095u);  // 2048-byte blocks: the true size, one block short
    EXPECT_EQ(r.info.bytesPerSector, 512u);  // page 3 replaces READ CAPACITY's 2048
    EXPECT_EQ(r.info.sectors, 63u);
    EXPECT_EQ(r.info.heads, 16u);
    EXPECT_EQ(r.info.cylinders, 0x012345u);
    EXPECT_EQ(r.info.fd, 0);
    EXPECT_TRUE(capture.contains("SCSI INQUIRY: vendor=< SEAGATE  > product=< ST318404LC       >"));
}

TEST(ScsiScan, DecodersOverTheEdges)
{
    struct Case {
        const char* what;
        Device device;
        const char *vendor, *serial;
        unsigned long size;
        const char* trace;
    } const cases[] = {
        {"512-byte blocks: one block short of 1 GiB", {inquiry(0, "IBM", "DISK", "1", "ABC123"), be(2097151, 4) + be(512, 4)},
         "IBM", "ABC123", 1023, ": Size in MB: <"},
        {"a short serial is dropped", {inquiry(0, "IBM", "DISK", "1", "AB12"), be(0, 8)}, "IBM", nullptr, 0,
         "> too short.  Ignored."},
        {"a blank first vendor byte: no vendor", {inquiry(0, " HITACHI", "DISK", "1", ""), be(100, 4) + be(0, 4)},
         nullptr, nullptr, 0, "Dtype (0=direct access drive, 5=cdrom): 0"},
        {"a CD/DVD gets no capacity", {inquiry(5, "TOSHIBA", "DVD-ROM", "1", "X"), be(2097151, 4) + be(512, 4)},
         "TOSHIBA", nullptr, 0, "Dtype (0=direct access drive, 5=cdrom): 5"},
        {"no inquiry: nothing", {Bytes(), be(2097151, 4) + be(512, 4)}, nullptr, nullptr, 0,
         "ScsiQueryInquiry returned error."},
        {"a page claiming more than its area", {inquiry(0, "A", "B", "C", ""), be(0, 8),
          modeSense(Bytes("\x03\xC8", 2) + Bytes(250, '\x7F')), modeSense(Bytes("\x04\xC8", 2) + Bytes(250, '\x01'))},
         "A", nullptr, 0, "SCSI GEOMETRY: #tracks=< 1 >"},
    };
    for (const Case& c : cases) {
        trace::Capture capture;
        Result r{};
        scan(c.device, r);
        EXPECT_EQ(r.returned, c.device.inquiry.empty() ? 0 : -1) << c.what;
        EXPECT_STREQ(r.info.vendor, c.vendor) << c.what;
        EXPECT_STREQ(r.info.serial, c.serial) << c.what;
        EXPECT_EQ(r.info.sizeMB, c.size) << c.what;
        EXPECT_TRUE(capture.contains(c.trace)) << c.what;
    }
}

TEST(ScsiScan, BadPathsAndCleanStrings)
{
    trace::Capture capture;
    FakeSystem os;
    ScopedSystem scope(os);
    SCSIinfo info{};
    info.sizeMB = 77;
    char empty[] = "";
    EXPECT_EQ(SCSIscan(empty, &info), -1);
    EXPECT_TRUE(capture.contains("bad char path name passed into scsiscan.Return= -1"));
    char absent[] = "/dev/rdsk/c9t9d9s2";
    EXPECT_EQ(SCSIscan(absent, &info), -1);
    EXPECT_EQ(info.sizeMB, 77u);  // untouched
    unsigned char inquiry[6] = {0x12, 0, 0, 0, 0x30, 0}, answer[SCSI_DATA_SIZE];
    ScsiCmd_t bad{nullptr, 6, "x", 0, nullptr, answer}, noBuffer{inquiry, 6, "x", 0, nullptr, nullptr};
    EXPECT_EQ(ScsiCmd(&bad), -1);
    EXPECT_EQ(ScsiCmd(&noBuffer), -1);

    struct Case {
        const char* text;
        int mode;
        const char* expected;
    } const cases[] = {
        {"  ST3  18\t\tLC  ", 0, "ST3 18 LC"}, {"AB12\x01XY  ", 3, "AB12"}, {"AB\x01" "CD", 0, "ABCD"}, {"   ", 0, ""},
    };
    for (const Case& c : cases) {
        char* s = CleanString(c.text, static_cast<int>(std::strlen(c.text)), c.mode);
        EXPECT_STREQ(s, c.expected) << c.text;
        std::free(s);
    }
    EXPECT_EQ(CleanString("x", 0, 0), nullptr);
    EXPECT_EQ(CleanString(nullptr, 4, 0), nullptr);
}

}  // namespace
