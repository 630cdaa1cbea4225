#pragma once
// Rendering of scanned tables for the command line: readable text, and JSON.
// The diagnostic form is the library's own KorTable::toString().
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "invscan/com/KorTable.h"

namespace cli {

// One attribute's value block, decoded.
struct DecodedValue {
    uint32_t id = 0;
    uint32_t type = 0;
    bool isNumber = false;      // integer types 1-4, 10, 11
    bool isSigned = false;      // 11
    bool isReal = false;        // 5, 6
    unsigned long long unsignedValue = 0;
    long long signedValue = 0;
    double realValue = 0;
    std::string text;           // strings (UTF-8), date-time, octets in hexadecimal
};

// Reads a value block as KorTableAttrib lays it out; false when it is too
// short for its own header or its type's value.
bool decodeBlock(const unsigned char* block, DecodedValue& out);

// Display name of an attribute of the table's group, or "attribute 0x%08X".
std::string attributeName(const KorTable& table, uint32_t attribId);
// Enumeration text of an integer value, or null when the attribute has none.
const char* enumText(const KorTable& table, const DecodedValue& value);

// "Name : value" lines, one block per row.
std::string renderText(KorTable& table);
// {"id", "name", "version", "timestamp", "rows": [{name: value, ...}]}
nlohmann::json renderJson(KorTable& table);

// Seconds since the epoch in local time, as 2024-01-31 23:59:58.
std::string localTime(long seconds);

}  // namespace cli
