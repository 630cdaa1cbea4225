#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "invscan/com/KorTable.h"
#include "invscan/com/KorValue.h"
#include "support/TempDir.h"

namespace {

using Bytes = std::vector<unsigned char>;

Bytes blockOf(const KorTableAttrib& a)
{
    const unsigned char* p = a.getAttribPtr();
    uint32_t size;
    std::memcpy(&size, p, 4);
    return Bytes(p, p + size);
}

// Little-endian words: the test machines and the target are x86.
Bytes header(uint32_t size, uint32_t id, uint32_t type)
{
    Bytes b;
    for (uint32_t w : {size, id, type})
        for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(w >> (8 * i)));
    return b;
}

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes wideChars(const std::u32string& text)
{
    Bytes b;
    const uint32_t count = static_cast<uint32_t>(text.size() + 1);
    for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(count >> (8 * i)));
    for (char32_t c : text + U'\0')
        for (int i = 0; i < 4; ++i) b.push_back(static_cast<unsigned char>(c >> (8 * i)));
    return b;
}

TEST(AttribBlock, NumericTypesArePackedWithoutPadding)
{
    struct Case {
        const char* what;
        Bytes actual;
        Bytes expected;
    } cases[] = {
        {"uchar", blockOf(KorTableAttrib(1, static_cast<unsigned char>(0xAB))), header(13, 1, 1) + Bytes{0xAB}},
        {"ushort", blockOf(KorTableAttrib(2, static_cast<unsigned short>(0x1234))),
         header(14, 2, 2) + Bytes{0x34, 0x12}},
        {"ulong", blockOf(KorTableAttrib(3, 0xDEADBEEFul)), header(16, 3, 3) + Bytes{0xEF, 0xBE, 0xAD, 0xDE}},
        {"uint", blockOf(KorTableAttrib(3, 7u)), header(16, 3, 3) + Bytes{7, 0, 0, 0}},
        {"uquad", blockOf(KorTableAttrib(4, _uquad{{0x04030201u, 0x08070605u}})),
         header(20, 4, 4) + Bytes{1, 2, 3, 4, 5, 6, 7, 8}},
        {"float", blockOf(KorTableAttrib(5, 1.5f)), header(16, 5, 5) + Bytes{0, 0, 0xC0, 0x3F}},
        {"double", blockOf(KorTableAttrib(6, 1.5)), header(20, 6, 6) + Bytes{0, 0, 0, 0, 0, 0, 0xF8, 0x3F}},
        {"ulonglong", blockOf(KorTableAttrib(10, 0x0102030405060708ull)),
         header(20, 10, 10) + Bytes{8, 7, 6, 5, 4, 3, 2, 1}},
        {"longlong", blockOf(KorTableAttrib(11, -2ll)),
         header(20, 11, 11) + Bytes{0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
    };
    for (const Case& c : cases) EXPECT_EQ(c.actual, c.expected) << c.what;
}

TEST(AttribBlock, SixtyFourBitCountsNeverBecomeDatesOrShrink)
{
    // long long and unsigned long long keep 64 bits on both builds; only a
    // plain long is a time.
    EXPECT_EQ(KorTableAttrib(1, static_cast<long long>(5000000000LL)).getType(), KOR_LONGLONG);
    EXPECT_EQ(KorTableAttrib(1, static_cast<unsigned long long>(5000000000ULL)).getType(), KOR_ULONGLONG);
    EXPECT_EQ(KorTableAttrib(1, 5L).getType(), KOR_DATETIME);
}

TEST(AttribBlock, NarrowStringsAreTrimmed)
{
    std::string inPlace = "  abc  ";
    const KorTableAttrib fromStd(7, inPlace);
    EXPECT_EQ(inPlace, "abc");  // the caller's string changes
    EXPECT_EQ(blockOf(fromStd), header(32, 7, 7) + wideChars(U"abc"));

    char text[] = "\t abc \n";
    const KorTableAttrib fromChars(7, static_cast<const char*>(text));
    EXPECT_STREQ(text, "\t abc \n");  // a copy is trimmed, not the text
    EXPECT_EQ(blockOf(fromChars), header(32, 7, 7) + wideChars(U"abc"));
}

TEST(AttribBlock, EmptyBlankNullAndUnconvertibleStringsAreEmpty)
{
    std::string blank = "   ";
    const Bytes empty = header(20, 8, 7) + wideChars(U"");
    EXPECT_EQ(blockOf(KorTableAttrib(8, blank)), empty);
    EXPECT_EQ(blockOf(KorTableAttrib(8, static_cast<const char*>(nullptr))), empty);
    EXPECT_EQ(blockOf(KorTableAttrib(8, "")), empty);
    // In the C locale a byte above 0x7F is no character.
    EXPECT_EQ(blockOf(KorTableAttrib(8, "caf\xc3\xa9")), empty);
}

TEST(AttribBlock, WideStringsAndOctets)
{
    EXPECT_EQ(blockOf(KorTableAttrib(12, L" x\u00e9 ")), header(28, 12, 12) + wideChars(U"x\u00e9"));
    EXPECT_EQ(blockOf(KorTableAttrib(12, static_cast<const wchar_t*>(nullptr))),
              header(20, 12, 12) + wideChars(U""));
    const unsigned char raw[] = {0, 0xFF, 0x10};
    EXPECT_EQ(blockOf(KorTableAttrib(8, raw, 3u)), (header(19, 8, 8) + Bytes{3, 0, 0, 0, 0, 0xFF, 0x10}));
}

TEST(AttribBlock, SignedLongIsALocalDateTime)
{
    testsupport::ScopedEnv utc("TZ", "UTC");
    tzset();
    const KorTableAttrib epoch(9, 0L);
    const std::string text = "1970-01-01-00.00.00.000000";
    EXPECT_EQ(blockOf(epoch), header(38, 9, 9) + Bytes(text.begin(), text.end()));
    const KorTableAttrib later(9, 1706745598L);  // 2024-01-31 23:59:58 UTC
    const Bytes b = blockOf(later);
    EXPECT_EQ(std::string(b.begin() + 12, b.end()), "2024-01-31-23.59.58.000000");
}

TEST(AttribBlock, EveryBlockDecodesBackAndDamagedOnesAreRefused)
{
    KorValue v;
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(4, _uquad{{0xFFFFFFFFu, 7u}}).getAttribPtr(), v));
    EXPECT_EQ(v.uquadFirstWord(), -1);  // what the diagnostic dump prints
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(5, 1.5f).getAttribPtr(), v));
    EXPECT_EQ(v.real, 1.5);
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(11, -2ll).getAttribPtr(), v));
    EXPECT_EQ(v.signedNumber, -2);
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(12, L"x\u00e9").getAttribPtr(), v));
    EXPECT_EQ(v.text, L"x\u00e9");
    const unsigned char raw[] = {0, 0xFF};
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(8, raw, 2u).getAttribPtr(), v));
    EXPECT_EQ(v.bytes, std::string("\0\xFF", 2));
    ASSERT_TRUE(decodeKorValue(KorTableAttrib(10, 0x0102030405060708ull).getAttribPtr(), v));
    EXPECT_EQ(v.number, 0x0102030405060708ull);
    EXPECT_EQ(v.id, 10u);

    // Each damage: the block's bytes, a word to overwrite and its new value.
    const KorTableAttrib ulong(3, 30ul), text(2, "abc"), octets(8, raw, 2u);
    struct Case {
        const char* what;
        const KorTableAttrib& attrib;
        size_t offset;
        uint32_t value;
    } cases[] = {
        {"size below the header", ulong, 0, 11},   {"size one short", ulong, 0, 15},
        {"size one long", ulong, 0, 17},           {"type 0", ulong, 8, 0},
        {"unknown type", ulong, 8, 77},            {"string count past the block", text, 12, 1000},
        {"string count 0", text, 12, 0},           {"string count short of the block", text, 12, 2},
        {"octet count past the block", octets, 12, 3},
    };
    for (const Case& c : cases) {
        Bytes b = blockOf(c.attrib);
        b.resize(b.size() + 8);  // room for a lying size word to point into
        std::memcpy(b.data() + c.offset, &c.value, 4);
        EXPECT_FALSE(decodeKorValue(b.data(), v)) << c.what;
    }
    EXPECT_FALSE(decodeKorValue(nullptr, v));
}

}  // namespace
