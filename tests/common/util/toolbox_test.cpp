// The Toolbox helpers, their deliberate oddities included.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "common/util/Toolbox.h"
#include "support/FakeSystem.h"

namespace {

TEST(Toolbox, CompareVersions)
{
    struct Case {
        const char *a, *b;
        int expected;
    } const cases[] = {
        {"5.11", "5.11", 0}, {"5.10", "5.11", -1}, {"5.11", "5.10", 1}, {"2.1.3", "2.1.2", 1},
        {"1.100", "2.0", 0},  // minor parts are not bounded: so it was built
        {"x1", "1", -1},      {"0.0", "0.0", -1},  // unparsable or all zero never equal
        {nullptr, "1", -1},   {"", "1", -1},      {"0x10", "16", 0},  // base 0, as strtol reads it
    };
    for (const Case& c : cases) EXPECT_EQ(Toolbox::compareVersions(c.a, c.b), c.expected) << c.a << " " << c.b;
}

TEST(Toolbox, TrimTokensAndReplace)
{
    EXPECT_EQ(Toolbox::trim("   "), "");
    EXPECT_EQ(Toolbox::trim(" a b "), "a b");
    EXPECT_EQ(Toolbox::trim(nullptr), "");

    int pos = 0;
    const char* text = "  ab\tcd";
    EXPECT_EQ(Toolbox::get_token(text, pos), "ab");
    EXPECT_EQ(pos, 4);
    EXPECT_EQ(Toolbox::get_token(text, pos), "cd");
    EXPECT_EQ(Toolbox::get_token(text, pos), "");
    EXPECT_EQ(pos, 7);  // stays at the end
    pos = -1;
    EXPECT_EQ(Toolbox::get_token(text, pos), "");
    EXPECT_EQ(pos, -1);

    EXPECT_EQ(Toolbox::replace("a--b--", "--", nullptr), "ab");
    EXPECT_EQ(Toolbox::replace("a--b", "", "x"), "a--b");
    EXPECT_EQ(Toolbox::replace("aaa", "aa", "b"), "ba");  // left to right, no overlap
    EXPECT_EQ(Toolbox::stricmp("SunOS", "sunos"), 0);
    EXPECT_LT(Toolbox::stricmp("a", "B"), 0);
    const char* hay = "Hello World";
    EXPECT_EQ(Toolbox::strcasestr(hay, "WORLD"), hay + 6);
    EXPECT_EQ(Toolbox::strcasestr(hay, ""), nullptr);
    EXPECT_EQ(Toolbox::strcasestr("ab", "abc"), nullptr);

    long l = 7;
    EXPECT_TRUE(Toolbox::str2long(" 0x1F", l, 0));
    EXPECT_EQ(l, 31);
    EXPECT_FALSE(Toolbox::str2long("zz", l, 10));
    EXPECT_EQ(l, 31);  // untouched
    unsigned long u = 0;
    EXPECT_TRUE(Toolbox::str2ulong("42abc", u, 10));
    EXPECT_EQ(u, 42u);
    EXPECT_FALSE(Toolbox::str2ulong(nullptr, u, 10));
}

TEST(Toolbox, MatchCapturesAndSaysWhereItStopped)
{
    std::map<std::string, std::string> v;
    EXPECT_TRUE(Toolbox::match("zone foo running", "ZONE %name %state", v));
    EXPECT_EQ(v, (std::map<std::string, std::string>{
                     {"name", "foo"}, {"state", "running"}, {"matched", "zone foo running"}, {"rest", ""}}));
    v.clear();
    EXPECT_FALSE(Toolbox::match("zone foo", "zone %name %state", v));  // the text ran out
    v.clear();
    EXPECT_FALSE(Toolbox::match("zone foo running now", "zone %name %state", v));
    EXPECT_EQ(v["rest"], " now");
    v.clear();
    EXPECT_TRUE(Toolbox::match("a x y", "a %w %w", v));
    EXPECT_EQ(v["w"], "x y");  // a name used twice collects both
    EXPECT_FALSE(Toolbox::match(nullptr, "a", v));
}

TEST(Toolbox, StrtokKeepsOneTextAndGivesEmptyFields)
{
    std::string f;
    std::vector<std::string> fields;
    for (const char* t = "a::b"; Toolbox::strtok(t, ':', f); t = nullptr) fields.push_back(f);
    EXPECT_EQ(fields, (std::vector<std::string>{"a", "", "b"}));
    EXPECT_FALSE(Toolbox::strtok(nullptr, ':', f));
    ASSERT_TRUE(Toolbox::strtok("x:y", ':', f));
    ASSERT_TRUE(Toolbox::strtok(nullptr, '\0', f));
    EXPECT_EQ(f, "x:y");  // the whole text from its start, not from the position
    EXPECT_FALSE(Toolbox::strtok(nullptr, ':', f));
}

TEST(Toolbox, StreamTokensShareOneBufferAndCarryAPartialToken)
{
    FILE* first = std::tmpfile();
    std::fputs("  one two\n", first);
    std::fputs(std::string(120, 'x').append(" ok tail").c_str(), first);
    std::rewind(first);
    EXPECT_STREQ(Toolbox::get_token(first), "one");
    EXPECT_STREQ(Toolbox::get_token(first), "two");
    EXPECT_EQ(Toolbox::get_token(first), nullptr);  // 120 characters: lost
    // What was left of the long token (past 99 and the one that overflowed)
    // is read as a token of its own.
    EXPECT_STREQ(Toolbox::get_token(first), std::string(20, 'x').c_str());
    EXPECT_STREQ(Toolbox::get_token(first), "ok");
    EXPECT_EQ(Toolbox::get_token(first), nullptr);  // "tail" at end of file stays in the buffer
    std::fclose(first);
    FILE* second = std::tmpfile();
    std::fputs("s next", second);
    std::rewind(second);
    EXPECT_STREQ(Toolbox::get_token(second), "tails");  // carried into the next stream, on purpose
    std::fclose(second);
}

TEST(Toolbox, CommandsZoneNameAndId)
{
    testsupport::FakeSystem os;
    os.shells["printf two lines"] = {"first\nsecond\n", 0, false};
    os.shells["true"] = {"", 0, false};
    os.shells["LANG=C; ps -o zone -p 4242 2>/dev/null | sed '2q;d' 2>/dev/null"] = {"  web1 \n", 0, false};
    os.shells["LANG=C; ps -o zoneid -p 4242 2>/dev/null | sed '2q;d' 2>/dev/null"] = {" ZONEID\n", 0, false};
    testsupport::ScopedSystem scope(os);
    std::string out = "before";
    EXPECT_TRUE(Toolbox::getCmdValue("printf two lines", out));
    EXPECT_EQ(out, "first\n");  // the first line, its end kept
    out = "before";
    EXPECT_FALSE(Toolbox::getCmdValue("true", out));
    EXPECT_FALSE(Toolbox::getCmdValue("absent", out));
    EXPECT_EQ(out, "before");

    EXPECT_TRUE(Toolbox::getZoneName(out));  // zonename is missing: ps answers
    EXPECT_EQ(out, "web1");
    long id = 9;
    EXPECT_TRUE(Toolbox::getZoneId(id));  // a line came, though no number: so it was built
    EXPECT_EQ(id, 9);
    // Any line is an answer, "-" and a blank one too; only two silent
    // commands mean no zones, and leave the name alone.
    os.shells["LANG=C; ps -o zone -p 4242 2>/dev/null | sed '2q;d' 2>/dev/null"].output = "-\n";
    EXPECT_TRUE(Toolbox::getZoneName(out));
    EXPECT_EQ(out, "-");
    os.shells["zonename 2>/dev/null"] = {" \n", 0, false};
    EXPECT_TRUE(Toolbox::getZoneName(out));
    EXPECT_EQ(out, "");
    os.shells.erase("zonename 2>/dev/null");
    os.shells["LANG=C; ps -o zone -p 4242 2>/dev/null | sed '2q;d' 2>/dev/null"].output = "";
    out = "before";
    EXPECT_FALSE(Toolbox::getZoneName(out));
    EXPECT_EQ(out, "before");
    EXPECT_EQ(os.openStreams(), 0);
}

}  // namespace
