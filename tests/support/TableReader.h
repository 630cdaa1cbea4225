#pragma once
// Reads a table back as a host would see it: every attribute in row order,
// repeated and null ones included, through the library's own block decoder.
#include <map>
#include <string>
#include <vector>

#include "invscan/com/KorValue.h"

class KorTable;

namespace testsupport {

// A null attribute, or one whose block does not decode, has type 0.
using Row = std::vector<KorValue>;

// The table is walked from its start and left reset.
std::vector<Row> readTable(KorTable& table);

// The library's text of the value (korValueText), reals with %.9g;
// "(unreadable)" for a value that did not decode.
std::string valueText(const KorValue& value);

// One row as "attribute name -> value text", names from the catalogue (an
// id it does not name reads "attribute N"); a repeated id keeps its last value.
using NamedRow = std::map<std::string, std::string>;
// The table is walked from its start and left reset.
std::vector<NamedRow> readNamedRows(KorTable& table);

// The table as plain text: its group name, then "[n]" and one
// "Name = value" line per attribute for each row. Machine files hold this.
std::string tableText(KorTable& table);

// How many groups the catalogue has: tests count, never assume, them.
size_t catalogueGroupCount();

// What in the table disagrees with the catalogue: an attribute that is null
// or unreadable, an id the group does not have, a type other than the
// catalogue's, a string longer than its length, an id twice in one row.
// Empty when the table is sound.
std::vector<std::string> catalogueProblems(KorTable& table);

}  // namespace testsupport
