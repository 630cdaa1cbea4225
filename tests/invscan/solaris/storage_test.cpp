// The Storage group's readers over real "iostat -En" captures and over the
// odd lines real process lists hold. Whole machines are in tests/machines.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "invscan/com/CatalogueIds.h"
#include "common/sys/System.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/storage/StorageGroup.h"
#include "support/Fixtures.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

// The rows of the devices, read back by attribute name.
std::vector<NamedRow> rowsOf(const std::vector<StorageDevice>& devices)
{
    StorageFacts facts;
    facts.devices = devices;
    KorTable table(STORAGE_GROUP, 1);
    shapeStorageRows(facts, table);
    return readNamedRows(table);
}

// The CD/DVD rows the reader makes of a capture, offering it every device
// the capture names: "device vendor|model|serial" a row.
std::string cdRowsOf(const std::string& output)
{
    std::istringstream lines(output);
    std::string line, out;
    StorageScan scan(sys::current());
    std::vector<StorageDevice> drives;
    std::vector<std::string> names;
    while (std::getline(lines, line)) {
        if (line.find("Soft Errors:") == std::string::npos) continue;
        const std::string name = line.substr(0, line.find(' ')) + "s2";
        StorageDevice drive;
        if (scan.reportCDROMs(name, output, drive)) {
            drives.push_back(drive);
            names.push_back(name);
        }
    }
    const std::vector<NamedRow> rows = rowsOf(drives);
    for (size_t i = 0; i < rows.size(); ++i) {
        NamedRow r = rows[i];
        EXPECT_EQ(r["Index"], std::to_string(i + 1));
        EXPECT_EQ(r["Type"], std::to_string(STORAGE_TYPE_CDROM));
        out += names[i] + " " + r["Manufacturer"] + "|" + r["Model"] + "|" + r["Serial Number"] + "\n";
    }
    return out;
}

TEST(Storage, RealIostatCapturesGiveTheDrivesWithoutAMedium)
{
    REQUIRE_FIXTURES(dir, "iostat");
    const std::string prefix = dir + "/glpi-project_glpi-agent__resources_solaris_iostat_";
    struct Case {
        const char* file;
        const char* rows;
    } const cases[] = {
        // A VirtualBox guest: the disk has a size, the CD-ROM none.
        {"oi-2021.10", "c5t1d0s2 VBOX|CD-ROM|\n"},
        // Decimal commas in the sizes: LUNs with sizes are no drives.
        {"oi151", ""},
        // A WWN-named LUN and an instance name: neither is a short name.
        {"sample1", ""},
        {"sample2", ""},
        // The DVD drive only: the remote console's virtual drives print their
        // size on the vendor line, and the line after it has none.
        {"sample3-wrong-vendor-product", "c0t0d0s2 Optiarc|DVD-ROM DDU810A|\n"},
    };
    for (const Case& c : cases) EXPECT_EQ(cdRowsOf(readFile(prefix + c.file)), c.rows) << c.file;
}

TEST(Storage, TheIostatReaderTakesOnlyItsOwnDevice)
{
    const std::string output =
        "c0t0d10         Soft Errors: 0 Hard Errors: 0 Transport Errors: 0\n"
        "Vendor: WRONG    Product: DRIVE            Revision: 1.0  Serial No: X\n"
        "Size: 0.00GB <0 bytes>\n"
        "c0t0d1          Soft Errors: 0 Hard Errors: 0 Transport Errors: 0\n"
        "Vendor: PLEXTOR  Product: DVDR   PX-810SA  Revision: 1.00 Serial No: 7A1B2C3D\n"
        "Size: 0.00GB <-1 bytes>\n"
        "c0t0d2          Soft Errors: 0 Hard Errors: 0 Transport Errors: 0\n"
        "Vendor: TEAC     Product: DV-28S-W\n"
        "Media Error: 0 Device Not Ready: 0\n"
        "Size: 0.00GB <0 bytes>\n"
        "c0t0d4          Soft Errors: 0 Hard Errors: 0 Transport Errors: 0\n"
        "Vendor: Intel(R) Product: RMM2 VDrive 1 Revision: 0.01 Serial No:  Size: 0.00GB <0 bytes>\n"
        "Media Error: 0 Device Not Ready: 0 No Device: 0 Recoverable: 0\n";
    StorageScan scan(sys::current());
    StorageDevice drive;
    // Only the last name is a drive; the others leave the index alone.
    for (const char* name : {"c0t0d2s0", "c0t0d4s0", "c0t0d3s0", "c0t0d1", "c0t0d1s0"}) {
        // The line after the vendor line must carry the size, even when the
        // vendor line has one of its own; a name too short for a slice is none.
        EXPECT_EQ(scan.reportCDROMs(name, output, drive), std::string(name) == "c0t0d1s0") << name;
    }
    NamedRow r = rowsOf({drive}).at(0);
    EXPECT_EQ(r["Index"], "1");
    EXPECT_EQ(r["Model"], "DVDR   PX-810SA");  // up to "Revision: ", inner blanks kept
    EXPECT_EQ(r["Manufacturer"], "PLEXTOR");
    EXPECT_EQ(r["Serial Number"], "7A1B2C3D");
    EXPECT_EQ(r["Device"], "");  // only disks name their path
}

TEST(Storage, ExactMatchAndThePreviousDisks)
{
    struct Case {
        const char* line;
        const char* name;
        int expected;
    } const cases[] = {
        {"root 977 412 0 10:02:11 ? 0:01 /usr/sbin/nsrstage\n", "nsrstage", 1},
        {"root 977 412 0 10:02:11 ? 0:01 /usr/sbin/save -s backup01\n", "save", 0},
        {"root 977 412 0 10:02:11 ? 0:01 /usr/sbin/save", "save", 1},  // no line end: the text's end
        {"/usr/lib/saved/save\n", "save", 0},  // the first occurrence decides
        {"recover\n", "save", 0},
    };
    for (const Case& c : cases) {
        std::string line = c.line, name = c.name;
        EXPECT_EQ(getExactMatch(&line[0], &name[0]), c.expected) << c.line;
    }

    StorageScan scan(sys::current()), next(sys::current());
    const std::string none, md5a = "0123abcd", md5b = "0123", serial = "AB123456";
    EXPECT_EQ(scan.addPreviousDisks(none, none), 0);
    EXPECT_EQ(scan.addPreviousDisks(md5a, serial), 1);
    EXPECT_EQ(scan.addPreviousDisks(md5b, serial), 0);     // the serial is the key
    EXPECT_EQ(scan.foundPreviousDisks(none, "AB1234"), 1);  // a prefix counts as found
    EXPECT_EQ(scan.foundPreviousDisks(none, "AB1234567"), 0);
    EXPECT_EQ(scan.foundPreviousDisks(md5a, none), 0);  // keyed by serial, not by digest
    EXPECT_EQ(scan.addPreviousDisks(md5a, none), 1);
    EXPECT_EQ(scan.foundPreviousDisks(md5b, none), 1);
    EXPECT_EQ(scan.addPreviousDisks(none, "X|Y"), 1);  // a bar inside a key: the text itself is searched
    EXPECT_EQ(scan.foundPreviousDisks(none, "Y"), 1);
    // Each scan starts with none reported.
    EXPECT_EQ(next.foundPreviousDisks(none, serial), 0);
    EXPECT_EQ(next.addPreviousDisks(md5a, serial), 1);
}

}  // namespace
