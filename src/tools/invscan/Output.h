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

// Text with its control characters (C0, DEL and, in UTF-8, C1) written as
// JSON writes them (\n, \t, \u001b), so a hostile value cannot drive the
// terminal. The one form of text output and error messages.
std::string escapeControls(const std::string& text);

// One aligned line per row: the group, the row's number and the values that
// tell the row apart (its catalogue keys, then its first few other values),
// for a view of the whole machine on one screen.
std::string renderShort(KorTable& table);
// A line in the same columns for a group that gave no rows, saying why.
std::string shortNote(const std::string& group, const std::string& note);

// Seconds since the epoch in local time, as 2024-01-31 23:59:58.
std::string localTime(long seconds);

}  // namespace cli
