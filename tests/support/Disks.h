#pragma once
// Simulated disks under the names the tests know them by.
#include "common/replay/SimulatedDisks.h"
#include "support/FakeSystem.h"

namespace testsupport {

using FakeDisk = replay::SimulatedDisk;
using replay::bigEndian;
using replay::formatPage;
using replay::installDisk;
using replay::modeSense;
using replay::rigidGeometryPage;
using replay::scsiInquiry;

}  // namespace testsupport
