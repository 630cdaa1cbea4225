#pragma once
// One row of a group's table, built against the catalogue. Every text is cut
// here, and only here, to its attribute's length (in bytes, on a character
// boundary), and every number is stored in its attribute's type, so that no
// group re-types a length or picks a type by overload. The attributes that
// leave the catalogue on purpose are named in CatalogueChanges.cpp
// (UNBOUNDED_ATTRS_DEF, WIDER_ATTRS_DEF), for the schema to read too.
#include <cstdint>
#include <string>

#include "invscan/com/KorTable.h"

class RowBuilder {
public:
    // What becomes of a text the locale cannot decode: the data model stores
    // it empty; the groups of our own design show each such byte as '?'
    // instead, so that a name written in another encoding is not lost.
    enum class Undecodable { Empty, Shown };
    explicit RowBuilder(unsigned long groupId, Undecodable undecodable = Undecodable::Empty);
    ~RowBuilder();
    RowBuilder(const RowBuilder&) = delete;
    RowBuilder& operator=(const RowBuilder&) = delete;

    // Trimmed and cut; an empty text is still a cell.
    RowBuilder& text(uint32_t id, const std::string& value);
    RowBuilder& text(uint32_t id, const char* value);  // null is empty
    // No cell at all for an empty text.
    RowBuilder& textIfAny(uint32_t id, const std::string& value);
    // In the attribute's integer type: a 32-bit one keeps the low 32 bits.
    RowBuilder& number(uint32_t id, unsigned long long value);
    // A date-time: seconds since the epoch.
    RowBuilder& when(uint32_t id, long long secondsSinceEpoch);
    // A float: the catalogue has no other real.
    RowBuilder& real(uint32_t id, double value);

    // Hands the row over; the builder then starts another.
    KorTableRow* release();
    // Appends the row to `table`.
    void addTo(KorTable& table);

private:
    // Owns `attrib` until the row does, should the row fail to take it.
    void add(KorTableAttrib* attrib);

    const korGroupDef* m_group;
    Undecodable m_undecodable;
    KorTableRow* m_row = nullptr;
};

namespace rowrules {
// `text` cut to `max` bytes without splitting a character of the current
// locale; max 0 leaves it whole, and so is a text the locale cannot decode
// anywhere, even past `max` (the data model stores it empty whatever its length).
std::string cut(const std::string& text, size_t max);
// Each byte the locale cannot decode shown as '?'.
std::string decodable(const std::string& text);
// The length a text of this attribute is cut to: the catalogue's, or 0 for
// an attribute deliberately left longer.
uint32_t lengthOf(const korGroupDef* group, uint32_t attribId);
// The type an attribute carries: the catalogue's, or the one it carries
// on purpose instead.
uint32_t typeOf(const korGroupDef* group, uint32_t attribId);
}  // namespace rowrules
