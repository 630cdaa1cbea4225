// Captures come from other machines, by mail: any bytes must read or be
// refused with a reason.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "common/replay/MachineFile.h"
#include "common/replay/SimulatedSystem.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    replay::SimulatedSystem os;
    std::string error;
    if (!replay::readMachine(in, "fuzz", true, os, error) && error.empty()) __builtin_trap();
    return 0;
}
