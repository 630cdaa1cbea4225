#pragma once
// Rendering of scanned tables for the command line: readable text, and JSON.
// The diagnostic form is the library's own KorTable::toString().
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "invscan/com/KorTable.h"
#include "invscan/com/KorValue.h"

namespace cli {

// Display name of an attribute of the table's group, or "attribute 0x%08X".
std::string attributeName(const KorTable& table, uint32_t attribId);
// Enumeration text of an integer value, or null when the attribute has none.
const char* enumText(const KorTable& table, const KorValue& value);

// "Name : value" lines, one block per row.
std::string renderText(KorTable& table);
// {"id", "name", "version", "timestamp", "rows": [{name: value, ...}]}
nlohmann::ordered_json renderJson(KorTable& table);

// Seconds since the epoch in local time, as 2024-01-31 23:59:58.
std::string localTime(long seconds);

}  // namespace cli
