#pragma once
// Firmware captures of ../shared/fixtures/smbios, and the simulated machine's
// firmware builders under their test names.
#include "common/replay/SimulatedFirmware.h"
#include "support/FakeSystem.h"

namespace testsupport {

using replay::installFirmware;
using replay::installProm;
using replay::smbiosEntryPoint;
using replay::smbiosStructure;
using replay::smbiosSystem;

// A firmware capture of ../shared/fixtures/smbios in any of its five layouts,
// as the firmware would have it: the entry point, the table, and where the
// table lies (a made-up 2.x entry point for layouts that keep none).
struct FirmwareCapture {
    std::string entry, table;
    uint32_t address = 0;
};
FirmwareCapture readCapture(const std::string& dir, const std::string& prefix, const std::string& layout);

}  // namespace testsupport
