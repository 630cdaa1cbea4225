#pragma once
// Firmware of a simulated machine: an SMBIOS table in the memory device's
// physical memory, and an OpenBoot PROM whose root node has properties.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "common/replay/SimulatedSystem.h"

namespace replay {

// A 2.x entry point ("_SM_", then "_DMI_" 16 bytes on), checksums right.
std::string smbiosEntryPoint(uint16_t tableLength, uint32_t tableAddress, uint16_t count, int major = 2, int minor = 7);
// One structure: its formatted bytes (type and length are set here) and its strings.
std::string smbiosStructure(uint8_t type, std::string formatted, const std::vector<std::string>& strings);
// A type 1 structure whose manufacturer, product, version and serial are
// these (an empty one gets string number 0).
std::string smbiosSystem(const std::vector<std::string>& fields);
// The memory device: `entry` at the start of the BIOS area, `table` at `address`.
void installFirmware(SimulatedSystem& os, const std::string& entry, const std::string& table, uint32_t address);
// A PROM device whose root node has these properties, in this order.
void installProm(SimulatedSystem& os, const std::vector<std::pair<std::string, std::string>>& properties);

}  // namespace replay
