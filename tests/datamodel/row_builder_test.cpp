#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "support/TableReader.h"

namespace {

// The one value of a row built with `build`, read back as a host reads it.
template <typename Build>
KorValue cellOf(uint32_t group, Build build)
{
    KorTable table(group, 1);
    RowBuilder row(group);
    build(row);
    row.addTo(table);
    const auto rows = testsupport::readTable(table);
    return rows.size() == 1 && rows[0].size() == 1 ? rows[0][0] : KorValue{};
}

struct LocaleGuard {
    ~LocaleGuard() { std::setlocale(LC_CTYPE, "C"); }
};

TEST(RowBuilder, CutsOnCharacterBoundariesAndShowsUndecodableBytesWhereAsked)
{
    LocaleGuard guard;
    struct Case {
        const char* locale;
        std::string text;
        size_t max;
        std::string cut, shown;  // rowrules::cut(text, max), and of decodable(text)
    };
    // "é" is two bytes in UTF-8; EUC-JP bytes do not decode there, and in
    // the C locale no high byte does: such a text is left whole for the data
    // model to store empty, unless its bytes are shown.
    const Case cases[] = {
        {"C.UTF-8", "caf\xc3\xa9", 4, "caf", "caf"},
        {"C.UTF-8", "caf\xc3\xa9", 5, "caf\xc3\xa9", "caf\xc3\xa9"},
        {"C.UTF-8", "abcdef", 0, "abcdef", "abcdef"},
        {"C.UTF-8", "/export/\xc6\xfc\xcb\xdc", 10, "/export/\xc6\xfc\xcb\xdc", "/export/??"},
        {"C", "caf\xc3\xa9", 255, "caf\xc3\xa9", "caf??"},
        {"C", "cafe\xc3\xa9", 3, "cafe\xc3\xa9", "caf"},  // undecodable past the cut is still undecodable
        {"C", "abc", 3, "abc", "abc"},
    };
    for (const Case& c : cases) {
        ASSERT_NE(std::setlocale(LC_CTYPE, c.locale), nullptr) << c.locale;
        EXPECT_EQ(rowrules::cut(c.text, c.max), c.cut) << c.locale << " " << c.text;
        EXPECT_EQ(rowrules::cut(rowrules::decodable(c.text), c.max), c.shown) << c.locale << " " << c.text;
    }

    // The designed groups keep the data model's rule; ours show the bytes.
    std::setlocale(LC_CTYPE, "C");
    auto stored = [](RowBuilder::Undecodable undecodable) {
        KorTable table(KEYBOARD_GROUP, 1);
        RowBuilder row(KEYBOARD_GROUP, undecodable);
        row.text(KBD_TYPE, "caf\xc3\xa9");
        row.addTo(table);
        return testsupport::readTable(table).at(0).at(0).text;
    };
    EXPECT_EQ(stored(RowBuilder::Undecodable::Empty), L"");
    EXPECT_EQ(stored(RowBuilder::Undecodable::Shown), L"caf??");
}

// Every text attribute of every group is cut to the catalogue's length,
// after its blanks are trimmed; only the named departures stay longer.
TEST(RowBuilder, EveryTextIsCutToItsCatalogueLength)
{
    int texts = 0;
    for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g)
        for (const korAttribDef* a = g->attribs; a && a->id != KOR_END; ++a) {
            if (a->type != KOR_STRING || a->maxLength == 0) continue;
            ++texts;
            const std::string longer = "  " + std::string(a->maxLength + 7, 'x');
            const KorValue v = cellOf(g->id, [&](RowBuilder& row) { row.text(a->id, longer); });
            const bool uncut = g->id == VIRTUAL_MACHINE_GROUP && a->id == VM_MOUNT_POINT;
            EXPECT_EQ(v.text.size(), uncut ? a->maxLength + 7 : a->maxLength) << g->name << "." << a->name;
        }
    EXPECT_GT(texts, 100);

    EXPECT_EQ(cellOf(KEYBOARD_GROUP, [](RowBuilder& row) { row.textIfAny(KBD_TYPE, ""); }).type, 0u);
    EXPECT_EQ(cellOf(KEYBOARD_GROUP, [](RowBuilder& row) { row.text(KBD_TYPE, nullptr); }).type, KOR_STRING);
}

// A number is stored in its attribute's type whatever C++ type it came in:
// a 32-bit attribute keeps the low 32 bits, and CpuMeter's tick counters
// stay 64-bit on purpose.
TEST(RowBuilder, NumbersTakeTheirAttributesType)
{
    const unsigned long long wide = 0x100000005ull;
    int numbers = 0;
    for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g)
        for (const korAttribDef* a = g->attribs; a && a->id != KOR_END; ++a) {
            if (a->type != KOR_UCHAR && a->type != KOR_USHORT && a->type != KOR_ULONG && a->type != KOR_ULONGLONG)
                continue;
            ++numbers;
            const KorValue v = cellOf(g->id, [&](RowBuilder& row) { row.number(a->id, wide); });
            const bool ticks = g->id == CPU_METER_GROUP && a->id >= METER_IDLE_TIME && a->id <= METER_SYSTEM_UP_TIME;
            const uint32_t type = ticks ? KOR_ULONGLONG : a->type;
            EXPECT_EQ(v.type, type) << g->name << "." << a->name;
            EXPECT_EQ(v.number, type == KOR_ULONGLONG ? wide : 5u) << g->name << "." << a->name;
        }
    EXPECT_GT(numbers, 50);

    const KorValue load = cellOf(UNIX_CPU_METER_GROUP, [](RowBuilder& row) { row.real(METER_LOAD_AVG_1, 0.25); });
    EXPECT_EQ(load.type, KOR_FLOAT);
    EXPECT_EQ(load.real, 0.25);
}

}  // namespace
