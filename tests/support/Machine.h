#pragma once
// Simulated machines kept as data (tests/machines/NAME/): what the machine's
// system calls answer, what its probes print, its hardware configuration, and
// the tables a scan of it must give. See tests/machines/README.md.
#include <string>
#include <vector>

#include "support/FakeSystem.h"

namespace testsupport {

// Fills `os` from the machine's "machine.txt"; false with `error` naming the
// line it could not read.
bool loadMachine(const std::string& dir, FakeSystem& os, std::string& error);

// The folders under tests/machines, sorted.
std::vector<std::string> machineNames();
std::string machineDir(const std::string& name);

}  // namespace testsupport
