// The command line's renderers over hand-built tables.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

// The renderers belong to the program, not a library: compile them in.
#include "tools/invscan/Output.cpp"

namespace {

// A Storage table (group 5): "Index" 1, "ID" 2, "Type" 3 (enumerated), plus
// values the catalogue does not describe.
KorTable* storageTable()
{
    auto* table = new KorTable(5, 1);
    auto* row = new KorTableRow;
    row->addAttrib(new KorTableAttrib(1, 7ul));
    row->addAttrib(new KorTableAttrib(2, "  disk-0  "));
    row->addAttrib(new KorTableAttrib(3, 30ul));
    row->addAttrib(new KorTableAttrib(3, 68ul));  // no text for 68: a gap in the enumeration
    row->addAttrib(nullptr);
    row->addAttrib(new KorTableAttrib(99, 1.5));
    row->addAttrib(new KorTableAttrib(98, static_cast<long long>(-4)));
    row->addAttrib(new KorTableAttrib(97, L"wide \u00e9"));
    const unsigned char bytes[] = {0xDE, 0xAD};
    row->addAttrib(new KorTableAttrib(96, bytes, 2u));
    table->addRow(row);
    auto* second = new KorTableRow;
    second->addAttrib(new KorTableAttrib(1, 8ul));
    table->addRow(second);
    return table;
}

TEST(Render, TextShowsCatalogueNamesEnumerationTextsAndOneBlockPerRow)
{
    KorTable* table = storageTable();
    const std::string text = cli::renderText(*table);
    EXPECT_EQ(text.rfind("Storage (group 5, version 1): 2 rows, scanned ", 0), 0u) << text;
    EXPECT_NE(text.find("\n  [1]\n"), std::string::npos);
    EXPECT_NE(text.find("\n  [2]\n"), std::string::npos);
    EXPECT_NE(text.find("Index"), std::string::npos);
    EXPECT_NE(text.find(" : disk-0\n"), std::string::npos);
    EXPECT_NE(text.find(" : 30 (Hard Disk)\n"), std::string::npos);
    EXPECT_NE(text.find(" : 68\n"), std::string::npos);
    EXPECT_NE(text.find("attribute 0x00000063"), std::string::npos);
    EXPECT_NE(text.find(" : 1.5\n"), std::string::npos);
    EXPECT_NE(text.find(" : -4\n"), std::string::npos);
    EXPECT_NE(text.find(" : wide \xC3\xA9\n"), std::string::npos);
    EXPECT_NE(text.find(" : DEAD\n"), std::string::npos);
    // Rendering walks the table but leaves it ready for the next reader.
    EXPECT_NE(table->getNext(), nullptr);
    delete table;
}

// Control characters of a value are written out as JSON writes them: C0,
// DEL, and the C1 block a UTF-8 terminal obeys (U+009B is CSI); the rest of
// the text, non-ASCII letters included, stays as it is.
TEST(Render, TextWritesControlCharactersOut)
{
    const std::pair<std::string, std::string> cases[] = {
        {"eth0", "eth0"},
        {"a\nb\tc\rd", "a\\nb\\tc\\rd"},
        {"\x1b]0;title\x07\x1b[2J", "\\u001b]0;title\\u0007\\u001b[2J"},
        {std::string("nul\0in", 6), "nul\\u0000in"},
        {"del\x7f \xc2\x9b" "31m \xc2\x85", "del\\u007f \\u009b31m \\u0085"},
        {"caf\xc3\xa9 \xc2\xa0 \\n", "caf\xc3\xa9 \xc2\xa0 \\n"},  // letters, NBSP, a backslash: kept
        {"cut \xc2", "cut \xc2"},
    };
    for (const auto& c : cases) EXPECT_EQ(cli::escapeControls(c.first), c.second) << c.first;

    auto* table = new KorTable(5, 1);
    auto* row = new KorTableRow;
    row->addAttrib(new KorTableAttrib(2, L"disk\x1b[2J\u009b" L"31m\nend"));
    table->addRow(row);
    const std::string text = cli::renderText(*table);
    delete table;
    EXPECT_NE(text.find(" : disk\\u001b[2J\\u009b31m\\nend\n"), std::string::npos) << text;
}

TEST(Render, JsonKeepsTypesAndKeysStable)
{
    KorTable* table = storageTable();
    const nlohmann::ordered_json doc = cli::renderJson(*table);
    delete table;
    EXPECT_EQ(doc["id"], 5);
    EXPECT_EQ(doc["name"], "Storage");
    ASSERT_EQ(doc["rows"].size(), 2u);
    const auto& row = doc["rows"][0];
    EXPECT_EQ(row["Index"], 7);
    EXPECT_EQ(row["ID"], "disk-0");
    // "Type" appears twice in the row: both values are kept, in order.
    ASSERT_TRUE(row["Type"].is_array());
    EXPECT_EQ(row["Type"][0], (nlohmann::ordered_json{{"value", 30}, {"text", "Hard Disk"}}));
    EXPECT_EQ(row["Type"][1], 68);
    EXPECT_EQ(row["attribute 0x00000063"], 1.5);
    EXPECT_EQ(row["attribute 0x00000062"], -4);
    EXPECT_EQ(row["attribute 0x00000061"], "wide \xC3\xA9");
    EXPECT_EQ(row["attribute 0x00000060"], "DEAD");
    EXPECT_EQ(doc["rows"][1], (nlohmann::ordered_json{{"Index", 8}}));
    // Keys keep the row's order, not the alphabet's.
    std::vector<std::string> keys;
    for (const auto& item : row.items()) keys.push_back(item.key());
    EXPECT_EQ(keys.front(), "Index");
    EXPECT_EQ(keys.at(1), "ID");
}

}  // namespace
