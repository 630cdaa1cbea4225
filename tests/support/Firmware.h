#pragma once
// Firmware of a simulated machine: an SMBIOS table in the memory device's
// physical memory, and an OpenBoot PROM whose root node has properties.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/FakeSystem.h"

namespace testsupport {

// A 2.x entry point ("_SM_", then "_DMI_" 16 bytes on), checksums right.
std::string smbiosEntryPoint(uint16_t tableLength, uint32_t tableAddress, uint16_t count, int major = 2, int minor = 7);
// One structure: its formatted bytes (type and length are set here) and its strings.
std::string smbiosStructure(uint8_t type, std::string formatted, const std::vector<std::string>& strings);
// A type 1 structure whose manufacturer, product, version and serial are
// these (an empty one gets string number 0).
std::string smbiosSystem(const std::vector<std::string>& fields);
// The memory device: `entry` at the start of the BIOS area, `table` at `address`.
void installFirmware(FakeSystem& os, const std::string& entry, const std::string& table, uint32_t address);
// A firmware capture of ../shared/fixtures/smbios in any of its five layouts,
// as the firmware would have it: the entry point, the table, and where the
// table lies (a made-up 2.x entry point for layouts that keep none).
struct FirmwareCapture {
    std::string entry, table;
    uint32_t address = 0;
};
FirmwareCapture readCapture(const std::string& dir, const std::string& prefix, const std::string& layout);

// A PROM device whose root node has these properties, in this order.
void installProm(FakeSystem& os, const std::vector<std::pair<std::string, std::string>>& properties);

}  // namespace testsupport
