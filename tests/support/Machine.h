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

// The machine of `dir` as this process's system for a scope: the seam's
// answers, the probes' answers and the hardware configuration folder are
// its own. error() says why it did not load; nothing is in use then.
class MachineInUse {
public:
    explicit MachineInUse(const std::string& dir);
    ~MachineInUse();
    MachineInUse(const MachineInUse&) = delete;
    MachineInUse& operator=(const MachineInUse&) = delete;

    const std::string& error() const { return m_error; }
    FakeSystem& system() { return m_machine; }

private:
    FakeSystem m_machine;
    std::string m_error;
};

}  // namespace testsupport
