#pragma once
// Reads a table's attribute blocks back into plain values, so group tests can
// compare what a host would see.
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class KorTable;

namespace testsupport {

struct Cell {
    unsigned long type = 0;
    unsigned long long number = 0;  // integer types and date-times
    double real = 0;                // float and double
    std::string text;               // strings, as UTF-8
};

// One map per row, attribute id to its value, in row order. The table is
// walked from its start and left reset.
std::vector<std::map<unsigned long, Cell>> readTable(KorTable& table);

}  // namespace testsupport
