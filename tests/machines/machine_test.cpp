// Scans every simulated machine under tests/machines through the factory, as
// a host does, and compares the tables with the machine's "expected.txt".
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "support/Machine.h"
#include "support/MachineScan.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

class Machine : public ::testing::TestWithParam<std::string> {};

TEST_P(Machine, ScanGivesTheExpectedTables)
{
    const std::string dir = machineDir(GetParam());
    std::string result;
    ASSERT_TRUE(scanMachineInChild(dir, result)) << result;
    // INVSCAN_WRITE_MACHINES=1 writes the tables of a new machine as its
    // expected ones: read them through before committing them.
    if (std::getenv("INVSCAN_WRITE_MACHINES")) {
        std::ofstream(dir + "/expected.txt") << result;
        GTEST_SKIP() << "wrote " << dir << "/expected.txt";
    }
    EXPECT_EQ(result, readFile(dir + "/expected.txt")) << "machine " << GetParam();
}

// Test names may not hold '-': machine folders do.
INSTANTIATE_TEST_SUITE_P(All, Machine, ::testing::ValuesIn(machineNames()), machineTestName);

}  // namespace
