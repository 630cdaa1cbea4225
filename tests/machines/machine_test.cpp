// Scans every simulated machine under tests/machines through the factory, as
// a host does, and compares each section with the machine's "expected.txt",
// or, for a section it does not list, with the default ("defaults.txt", else
// "no table"). The defaults are checked once, on a machine that answers nothing.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "support/Machine.h"
#include "support/MachineScan.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

// INVSCAN_WRITE_MACHINES=1 writes `text` to `path` when it differs (a file
// whose sections all stay is left alone): read what changed before committing it.
bool writeWanted(const std::string& path, const std::string& text)
{
    if (!std::getenv("INVSCAN_WRITE_MACHINES") || readFile(path) == text) return false;
    std::ofstream(path) << text;
    return true;
}

// Each section the scan gives is the wanted one, and the expectation names no
// section the scan lacks.
void expectSections(const Sections& got, const Sections& listed,
                    const std::function<std::string(const std::string&)>& wanted, const std::string& what)
{
    for (const auto& section : got) EXPECT_EQ(section.second, wanted(section.first)) << what << ", " << section.first;
    for (const auto& section : listed)
        EXPECT_NE(sectionOf(got, section.first), nullptr) << what << " expects " << section.first << ": no such section";
}

TEST(Defaults, AreWhatAMachineThatAnswersNothingGives)
{
    TempDir empty;
    std::ofstream(empty.path() + "/machine.txt") << "# nothing\n";
    std::string result;
    ASSERT_TRUE(scanMachineInChild(empty.path(), result)) << result;
    const Sections got = sectionsOf(result);
    ASSERT_EQ(sectionOf(got, "Problems"), nullptr) << result;
    if (writeWanted(defaultsFile(), sectionsText(got, [](const std::string&) { return std::string("no table\n"); })))
        GTEST_SKIP() << "wrote " << defaultsFile();
    expectSections(got, sectionsOf(readFile(defaultsFile())), defaultSection, "a machine that answers nothing");
}

class Machine : public ::testing::TestWithParam<std::string> {};

TEST_P(Machine, ScanGivesTheExpectedTables)
{
    const std::string dir = machineDir(GetParam());
    std::string result;
    ASSERT_TRUE(scanMachineInChild(dir, result)) << result;
    const Sections got = sectionsOf(result);
    ASSERT_EQ(sectionOf(got, "Problems"), nullptr) << "machine " << GetParam() << ":\n" << result;
    // The file lists the sections that differ from the defaults.
    if (writeWanted(dir + "/expected.txt", sectionsText(got, defaultSection)))
        GTEST_SKIP() << "wrote " << dir << "/expected.txt";
    const Sections listed = sectionsOf(readFile(dir + "/expected.txt"));
    expectSections(got, listed, [&dir](const std::string& name) { return expectedSection(dir, name); },
                   "machine " + GetParam());
    for (const auto& section : listed)
        EXPECT_NE(section.second, defaultSection(section.first))
            << "machine " << GetParam() << " lists " << section.first << " with its default result: leave it out";
}

// Test names may not hold '-': machine folders do.
INSTANTIATE_TEST_SUITE_P(All, Machine, ::testing::ValuesIn(machineNames()), machineTestName);

}  // namespace
