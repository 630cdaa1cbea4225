#pragma once
// Reading an attribute's value block back: the one place that knows the
// block layout besides KorTableAttrib, which writes it. The diagnostic
// printers, the command line's renderers and the tests all read through it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "invscan/com/KorTypes.h"

struct KorValue {
    uint32_t size = 0;  // the block's first three words, set whenever the
    uint32_t id = 0;    // block is long enough to hold them
    uint32_t type = 0;

    unsigned long long number = 0;  // types 1-4 and 10; type 4 as its 8 bytes
    long long signedNumber = 0;     // type 11
    double real = 0;                // types 5 and 6
    std::wstring text;              // types 7 and 12, up to the first zero
    std::string bytes;              // type 8: the octets; type 9: the 26 characters

    bool isUnsigned() const;  // types 1-4 and 10
    // The first word of a type-4 value, as the hosts' dumps show it.
    int32_t uquadFirstWord() const;
};

// False when the block is null, or its size word is not exactly what its
// type's value needs (blocks are sized to their content), or the type is
// unknown. The header words are filled in even then, when they are there.
bool decodeKorValue(const unsigned char* block, KorValue& out);

// A Kor string at `at` with `room` bytes available: its characters up to the
// first zero in `text`, its size in bytes in `*used`. False when the count is
// 0 or the characters would run past `room`.
bool decodeKorString(const unsigned char* at, size_t room, std::wstring& text, size_t* used);
