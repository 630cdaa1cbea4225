#pragma once
// Attribute type codes shared by the value blocks and the schema catalogue.
#include <cstdint>

enum KorAttribType : uint32_t {
    KOR_UCHAR = 1,
    KOR_USHORT = 2,
    KOR_ULONG = 3,
    KOR_UQUAD = 4,
    KOR_FLOAT = 5,
    KOR_DOUBLE = 6,
    KOR_STRING = 7,
    KOR_OCTETSTRING = 8,
    KOR_DATETIME = 9,
    KOR_ULONGLONG = 10,
    KOR_LONGLONG = 11,
    KOR_WIDESTRING = 12,
};

// Type reported for an attribute that has no value block.
constexpr uint32_t KOR_NO_TYPE = 0x80000000u;

// A 64-bit value carried as two 32-bit words, copied as 8 bytes.
struct _uquad {
    uint32_t val[2];
};

// A Kor string: a 32-bit count of wide characters including the terminating
// zero, followed by that many 32-bit wide characters.
struct KorString {
    uint32_t count;
    // count wide characters follow
};

// Length of the date-time form 2024-01-31-23.59.58.000000, no terminator.
constexpr unsigned KOR_DATETIME_LENGTH = 26;
