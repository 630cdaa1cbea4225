#pragma once
// The simulated machines of tests/machines (see its README.md).
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/replay/MachineFile.h"
#include "support/FakeSystem.h"

namespace testsupport {

using replay::loadMachine;

// The folders under tests/machines, sorted.
std::vector<std::string> machineNames();
std::string machineDir(const std::string& name);
// A machine's name as a test name: "sol10-mounts" gives "sol10_mounts".
std::string machineTestName(const ::testing::TestParamInfo<std::string>& param);

}  // namespace testsupport
