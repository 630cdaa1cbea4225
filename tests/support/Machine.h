#pragma once
// The simulated machines of tests/machines (see its README.md).
#include <string>
#include <vector>

#include "common/replay/MachineFile.h"
#include "support/FakeSystem.h"

namespace testsupport {

using replay::loadMachine;

// The folders under tests/machines, sorted.
std::vector<std::string> machineNames();
std::string machineDir(const std::string& name);

}  // namespace testsupport
