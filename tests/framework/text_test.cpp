#include <gtest/gtest.h>

#include <clocale>
#include <map>

#include "framework/String.h"
#include "framework/utils.h"

namespace {

TEST(String, NarrowAndWideConstructionAgree)
{
    const String narrow("Gr\xc3\xb6\xc3\x9f" "e");  // "Größe" in UTF-8
    const String wide(L"Gr\u00f6\u00dfe");
    EXPECT_EQ(narrow.compareTo(wide), 0);
    EXPECT_EQ(narrow.length(), 5u);
    EXPECT_EQ(wide.narrow(), "Gr\xc3\xb6\xc3\x9f" "e");
    EXPECT_EQ(String(static_cast<const char*>(nullptr)).length(), 0u);
    EXPECT_EQ(String(static_cast<const wchar_t*>(nullptr)).length(), 0u);
}

TEST(Utils, TrimBothNarrowWideAndInPlace)
{
    EXPECT_EQ(utils::trimBoth(std::string(" \t a b \r\n")), "a b");
    EXPECT_EQ(utils::trimBoth(std::string("   ")), "");
    EXPECT_EQ(utils::trimBoth(std::wstring(L"\n x\t")), L"x");
    std::string s = "\v keep  ";
    utils::trimBothInPlace(s);
    EXPECT_EQ(s, "keep");
    std::wstring w = L"  ";
    utils::trimBothInPlace(w);
    EXPECT_TRUE(w.empty());
}

TEST(Utils, CharToDoubleIgnoresTheLocale)
{
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous ? previous : "C";
    // A comma-decimal locale when the machine has one; the C locale otherwise.
    const bool comma = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") || std::setlocale(LC_NUMERIC, "fr_FR.UTF-8");
    double v = 0;
    EXPECT_TRUE(utils::charToDouble(" 2.5 ", v));
    EXPECT_DOUBLE_EQ(v, 2.5);
    EXPECT_TRUE(utils::charToDouble("-1e3", v));
    EXPECT_DOUBLE_EQ(v, -1000);
    EXPECT_FALSE(utils::charToDouble("2,5", v));
    EXPECT_FALSE(utils::charToDouble("", v));
    EXPECT_FALSE(utils::charToDouble("3.5GHz", v));
    EXPECT_FALSE(utils::charToDouble(nullptr, v));
    std::setlocale(LC_NUMERIC, saved.c_str());
    if (!comma) std::printf("note: no comma-decimal locale installed; checked under C only\n");
}

TEST(Utils, Utf8RoundTripAndInvalidInput)
{
    const std::wstring all = L"A\u00e9\u20ac\U0001F600";
    EXPECT_EQ(utils::utf8ToWideChar(utils::stringToUTF8(all)), all);
    EXPECT_EQ(utils::stringToUTF8(all).size(), 1u + 2 + 3 + 4);
    // Truncated, overlong and stray continuation bytes each become U+FFFD.
    EXPECT_EQ(utils::utf8ToWideChar("a\xe2\x82"), L"a\uFFFD\uFFFD");
    EXPECT_EQ(utils::utf8ToWideChar("\xc0\xaf"), L"\uFFFD\uFFFD");
    EXPECT_EQ(utils::utf8ToWideChar("\x80z"), L"\uFFFDz");
    EXPECT_EQ(utils::stringToUTF8(String(L"x")), "x");
}

TEST(Utils, LowerCasingTouchesAsciiOnly)
{
    EXPECT_EQ(utils::toLower(std::string("SunOS 5.10 \xc3\x89")), "sunos 5.10 \xc3\x89");
    EXPECT_EQ(utils::toLower(std::wstring(L"ABC\u00c9")), L"abc\u00c9");
}

TEST(Utils, RegexMatchReturnsFirstGroup)
{
    std::string group;
    EXPECT_TRUE(utils::regexMatch("Solaris 10 8/07 s10x_u4wos_12b X86", "Solaris ([0-9]+)", group));
    EXPECT_EQ(group, "10");
    EXPECT_TRUE(utils::regexMatch("abc", "b", group));
    EXPECT_EQ(group, "");
    EXPECT_FALSE(utils::regexMatch("abc", "x(y)", group));
    EXPECT_EQ(group, "");
    EXPECT_FALSE(utils::regexMatch("abc", "(unclosed", group));  // a bad pattern is no match
    EXPECT_TRUE(utils::regexMatch("ab", "a(x)?b", group));
    EXPECT_EQ(group, "");  // the group did not take part
}

TEST(Utils, HexToDecimal)
{
    EXPECT_EQ(utils::hexToDecimal("1F"), "31");
    EXPECT_EQ(utils::hexToDecimal("0x1f"), "31");
    EXPECT_EQ(utils::hexToDecimal("ffffffffffffffff"), "18446744073709551615");
    EXPECT_EQ(utils::hexToDecimal("1ffffffffffffffff"), "");
    EXPECT_EQ(utils::hexToDecimal("12g"), "");
    EXPECT_EQ(utils::hexToDecimal(""), "");
    EXPECT_EQ(utils::hexToDecimal("0x"), "");
}

}  // namespace
