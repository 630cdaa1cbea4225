#pragma once
// A machine kept as text: what its system calls answer, one facility a line
// (the format of tests/machines/README.md), read into a simulated system.
#include <string>

#include "common/replay/SimulatedSystem.h"

namespace replay {

// Fills `os` from the machine's "machine.txt" in `dir`; false with `error`
// naming the line it could not read.
bool loadMachine(const std::string& dir, SimulatedSystem& os, std::string& error);

}  // namespace replay
