#pragma once
// The simulated system under the name the tests know it by.
#include "common/replay/SimulatedSystem.h"

namespace testsupport {

using FakeSystem = replay::SimulatedSystem;
using replay::fakeLibraryFunction;
using replay::ScopedSystem;

}  // namespace testsupport
