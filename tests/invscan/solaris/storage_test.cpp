// The Storage group's readers over real "iostat -En" captures and over the
// odd lines real process lists hold. Whole machines are in tests/machines.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/StorageGroup.h"
#include "support/Fixtures.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

// The CD/DVD rows the reader makes of a capture, offering it every device
// the capture names: "device vendor|model|serial" a row.
std::string cdRowsOf(const std::string& output)
{
    std::istringstream lines(output);
    std::string line, out;
    int index = 0;
    KorTable table(STORAGE_GROUP, 1);
    std::vector<std::string> names;
    while (std::getline(lines, line)) {
        if (line.find("Soft Errors:") == std::string::npos) continue;
        std::string name = line.substr(0, line.find(' ')) + "s2";
        if (KorTableRow* row = reportCDROMs(&name[0], &index, output)) {
            table.addRow(row);
            names.push_back(name);
        }
    }
    const std::vector<Row> rows = readTable(table);
    for (size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(valueText(rows[i][0]), std::to_string(i + 1));
        EXPECT_EQ(valueText(rows[i][2]), "17");
        out += names[i] + " " + valueText(rows[i][4]) + "|" + valueText(rows[i][3]) + "|" + valueText(rows[i][5]) + "\n";
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
    int index = 4;
    char drive[] = "c0t0d1s0", late[] = "c0t0d2s0", absent[] = "c0t0d3s0", longName[] = "c0t0d1",
         sizeOnVendorLine[] = "c0t0d4s0";
    std::unique_ptr<KorTableRow> row(reportCDROMs(drive, &index, output));
    ASSERT_TRUE(row);
    EXPECT_EQ(index, 5);
    KorTable table(STORAGE_GROUP, 1);
    table.addRow(row.release());
    const Row r = readTable(table).at(0);
    EXPECT_EQ(valueText(r[0]), "5");
    EXPECT_EQ(valueText(r[3]), "DVDR   PX-810SA");  // up to "Revision: ", inner blanks kept
    EXPECT_EQ(valueText(r[4]), "PLEXTOR");
    EXPECT_EQ(valueText(r[5]), "7A1B2C3D");
    // The line after the vendor line must carry the size, even when the
    // vendor line has one of its own.
    EXPECT_EQ(reportCDROMs(late, &index, output), nullptr);
    EXPECT_EQ(reportCDROMs(sizeOnVendorLine, &index, output), nullptr);
    EXPECT_EQ(reportCDROMs(absent, &index, output), nullptr);
    EXPECT_EQ(reportCDROMs(longName, &index, output), nullptr);  // too short to be a slice name
    EXPECT_EQ(index, 5);
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

    clearPreviousDisks();
    char none[] = "", md5a[] = "0123abcd", md5b[] = "0123", serial[] = "AB123456", shorter[] = "AB1234",
         longer[] = "AB1234567", bar[] = "X|Y", y[] = "Y";
    EXPECT_EQ(addPreviousDisks(none, none), 0);
    EXPECT_EQ(addPreviousDisks(md5a, serial), 1);
    EXPECT_EQ(addPreviousDisks(md5b, serial), 0);    // the serial is the key
    EXPECT_EQ(foundPreviousDisks(none, shorter), 1);  // a prefix counts as found
    EXPECT_EQ(foundPreviousDisks(none, longer), 0);
    EXPECT_EQ(foundPreviousDisks(md5a, none), 0);     // keyed by serial, not by digest
    EXPECT_EQ(addPreviousDisks(md5a, none), 1);
    EXPECT_EQ(foundPreviousDisks(md5b, none), 1);
    EXPECT_EQ(addPreviousDisks(none, bar), 1);        // a bar inside a key: the text itself is searched
    EXPECT_EQ(foundPreviousDisks(none, y), 1);
    clearPreviousDisks();
    EXPECT_EQ(foundPreviousDisks(none, serial), 0);
}

}  // namespace
