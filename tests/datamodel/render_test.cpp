#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <string>

#include "invscan/com/KorTable.h"
#include "invscan/com/KorValue.h"
#include "invscan/com/Render.h"
#include "invscan/com/ValueText.h"
#include "support/StreamCapture.h"

namespace {

std::string toFile(void (*print)(FILE*, const unsigned char*), const KorTableAttrib& a)
{
    FILE* f = tmpfile();
    print(f, a.getAttribPtr());
    std::string out;
    rewind(f);
    int c;
    while ((c = fgetc(f)) != EOF) out.push_back(static_cast<char>(c));
    fclose(f);
    return out;
}

TEST(Conversions, KorStringSizes)
{
    EXPECT_EQ(SizeAsKorString(""), 8u);
    EXPECT_EQ(SizeAsKorString(nullptr), 8u);
    EXPECT_EQ(SizeAsKorString("hello"), 28u);
    EXPECT_EQ(SizeAsKorWideString(L"hi"), 16u);
    EXPECT_EQ(SizeAsKorWideString(nullptr), 8u);
}

TEST(Conversions, StringToKorStringPacksBackToBack)
{
    alignas(4) unsigned char buffer[64];
    unsigned long offset = 0, previous = 99;
    auto* first = reinterpret_cast<KorString*>(buffer);
    EXPECT_EQ(StringToKorString("ab", first, sizeof buffer, &offset, &previous), 16u);
    EXPECT_EQ(previous, 0u);
    EXPECT_EQ(offset, 16u);
    EXPECT_EQ(first->count, 3u);
    auto* second = reinterpret_cast<KorString*>(buffer + offset);
    EXPECT_EQ(StringToKorString(nullptr, second, sizeof buffer - offset, &offset, &previous), 8u);
    EXPECT_EQ(previous, 16u);
    EXPECT_EQ(offset, 24u);
    EXPECT_EQ(second->count, 1u);
    // Too little room: the empty string rather than a cut one.
    EXPECT_EQ(StringToKorString("abcdef", first, 16, nullptr, nullptr), 8u);
}

TEST(Conversions, DmtfEscape)
{
    wchar_t text[] = L"a\"\tb\\";
    wchar_t* escaped = dmtf_escape(text);
    EXPECT_STREQ(escaped, L"a\\\"\\x09b\\\\");
    delete[] escaped;
    wchar_t empty[] = L"";
    EXPECT_EQ(dmtf_escape(empty), empty);  // returned as it is
}

TEST(Printers, ValueAloneByType)
{
    std::string s = " say \"hi\" ";
    const unsigned char raw[] = {0x0A, 0xFF};
    const KorTableAttrib uchar(1, static_cast<unsigned char>(7));
    const KorTableAttrib ushort(1, static_cast<unsigned short>(513));
    const KorTableAttrib ulong(1, 4000000000u);
    const KorTableAttrib uquad(1, _uquad{{0xFFFFFFFFu, 5u}});
    const KorTableAttrib flt(1, 2.25f);
    const KorTableAttrib str(1, s);
    const KorTableAttrib oct(1, raw, 2u);
    const KorTableAttrib ull(1, 18446744073709551615ull);
    const KorTableAttrib ll(1, -3ll);
    const KorTableAttrib wide(1, L"not printed");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, uchar), "0x07");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, ushort), "513");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, ulong), "4000000000");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, uquad), "-1");  // first word only, signed
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, flt), "2.250000");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, str), "say \\\"hi\\\"");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, oct), "\"0AFF\"");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, ull), "18446744073709551615");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, ll), "-3");
    EXPECT_EQ(toFile(PrintKorAttribValueToFile, wide), "");
}

TEST(Printers, FloatUsesAPointUnderACommaLocale)
{
    const std::string saved = std::setlocale(LC_NUMERIC, nullptr);
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8") && !std::setlocale(LC_NUMERIC, "fr_FR.UTF-8"))
        GTEST_SKIP() << "no comma-decimal locale installed";
    const std::string comma = std::setlocale(LC_NUMERIC, nullptr);
    FILE* f = tmpfile();
    fprintf(f, "%.1f|", 1.5);  // the locale is really in force
    PrintKorFloat(f, 1.5);
    rewind(f);
    char buffer[32] = {};
    ASSERT_NE(fgets(buffer, sizeof buffer, f), nullptr);
    fclose(f);
    EXPECT_STREQ(buffer, "1,5|1.500000");
    EXPECT_EQ(std::setlocale(LC_NUMERIC, nullptr), comma);  // restored afterwards
    std::setlocale(LC_NUMERIC, saved.c_str());
}

// The one text of a value the command line and the tests' table text share:
// what the hosts' locale, a code point no encoding carries or a date-time never
// set must not change or break.
TEST(Printers, ValueTextOfEdgeValues)
{
    const unsigned char raw[] = {0x00, 0x9F};
    const wchar_t odd[] = {L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), L'\0'};
    KorValue unset;
    unset.type = KOR_DATETIME;
    unset.bytes = std::string(KOR_DATETIME_LENGTH, '\0');
    KorValue decoded;
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(1, raw, 2u).getAttribPtr(), decoded));
    EXPECT_EQ(korValueText(decoded, RealForm::Short), "009F");
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(1, odd).getAttribPtr(), decoded));
    EXPECT_EQ(korValueText(decoded, RealForm::Short), "a\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(korValueText(unset, RealForm::Short), "");

    const std::string saved = std::setlocale(LC_NUMERIC, nullptr);
    const bool comma = std::setlocale(LC_NUMERIC, "de_DE.UTF-8") || std::setlocale(LC_NUMERIC, "fr_FR.UTF-8");
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(1, 1234567.125).getAttribPtr(), decoded));
    const std::string fixed = realText(1234567.125, RealForm::Fixed), shown = korValueText(decoded, RealForm::Short),
                      exact = korValueText(decoded, RealForm::Exact);
    std::setlocale(LC_NUMERIC, saved.c_str());
    EXPECT_EQ(fixed, "1234567.125000") << (comma ? "under a comma locale" : "");
    EXPECT_EQ(shown, "1.23457e+06");
    EXPECT_EQ(exact, "1234567.12");
}

TEST(Printers, EnumTable)
{
    FILE* f = tmpfile();
    PrintKorEnumToFile(f, getAttribDefinitionFromId(getGroupDefinitionFromId(15), 3));
    PrintKorEnumToFile(f, getAttribDefinitionFromId(getGroupDefinitionFromId(15), 1));  // none
    PrintKorEnumToFile(f, nullptr);
    rewind(f);
    std::string out;
    int c;
    while ((c = fgetc(f)) != EOF) out.push_back(static_cast<char>(c));
    fclose(f);
    EXPECT_EQ(out, "\n\t\t1 = \"+\"\n\t\t2 = \"-\"");
}

TEST(Printers, TableDumpWithEveryType)
{
    setenv("TZ", "UTC", 1);
    tzset();
    KorTable table(3, 1);
    auto* row = new KorTableRow;
    std::string text = "disk";
    const unsigned char raw[] = {0xBE, 0xEF};
    row->addAttrib(new KorTableAttrib(1, static_cast<unsigned char>(0x41)));
    row->addAttrib(new KorTableAttrib(2, static_cast<unsigned short>(258)));
    row->addAttrib(new KorTableAttrib(3, 16u));
    row->addAttrib(new KorTableAttrib(4, _uquad{{2u, 0u}}));
    row->addAttrib(new KorTableAttrib(5, 0.5f));
    row->addAttrib(new KorTableAttrib(6, -0.25));
    row->addAttrib(new KorTableAttrib(7, text));
    row->addAttrib(new KorTableAttrib(8, raw, 2u));
    row->addAttrib(new KorTableAttrib(9, 86400L));
    row->addAttrib(new KorTableAttrib(10, 4294967297ull));
    row->addAttrib(new KorTableAttrib(11, -1ll));
    row->addAttrib(new KorTableAttrib(12, L"w"));
    table.addRow(row);

    testsupport::StreamCapture out(stdout);
    table.toString();
    unsetenv("TZ");
    tzset();
    const char* expected =
        "\n--------Table Memory (00000003) ver=1"
        "\nRows=1"
        "\n\t Attribs=12"
        "\n\t\t---len      : 13\n\t\t   attribId : x00000001\n\t\t   kor_type : 1 (KOR_UCHAR)\n\t\t   value    : 0x41"
        "\n\t\t---len      : 14\n\t\t   attribId : x00000002\n\t\t   kor_type : 2 (KOR_USHORT)\n\t\t   value    : 258 (0x0102)"
        "\n\t\t---len      : 16\n\t\t   attribId : x00000003\n\t\t   kor_type : 3 (KOR_ULONG)\n\t\t   value    : 16 (0x00000010)"
        "\n\t\t---len      : 20\n\t\t   attribId : x00000004\n\t\t   kor_type : 4 (KOR_UQUAD)\n\t\t   value    : 2"
        "\n\t\t---len      : 16\n\t\t   attribId : x00000005\n\t\t   kor_type : 5 (KOR_FLOAT)\n\t\t   value    : 0.500000"
        "\n\t\t---len      : 20\n\t\t   attribId : x00000006\n\t\t   kor_type : 6 (KOR_DOUBLE)\n\t\t   value    : -0.250000"
        "\n\t\t---len      : 36\n\t\t   attribId : x00000007\n\t\t   kor_type : 7 (KOR_STRING)\n\t\t   value    : disk"
        "\n\t\t---len      : 18\n\t\t   attribId : x00000008\n\t\t   kor_type : 8 (KOR_OCTETSTRING)\n\t\t   value    : \"BEEF\""
        "\n\t\t---len      : 38\n\t\t   attribId : x00000009\n\t\t   kor_type : 9 (KOR_DATETIME)\n\t\t   value    : 1970-01-02-00.00.00.000000"
        "\n\t\t---len      : 20\n\t\t   attribId : x0000000A\n\t\t   kor_type : 10 (KOR_ULONGLONG)\n\t\t   value    : 4294967297 (0x               1)"
        "\n\t\t---len      : 20\n\t\t   attribId : x0000000B\n\t\t   kor_type : 11 (KOR_LONGLONG)\n\t\t   value    : -1 (0x        FFFFFFFF)"
        "\n\t\t---len      : 24\n\t\t   attribId : x0000000C\n\t\t   kor_type : 12 (KOR_WIDESTRING)\n\t\t   value    : Unknown attrib value type";
    EXPECT_EQ(out.text(), expected);
}

}  // namespace
