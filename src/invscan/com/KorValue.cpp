#include "invscan/com/KorValue.h"

#include <cstring>

namespace {
constexpr size_t HEADER = 12;  // size, id and type

uint32_t word(const unsigned char* at)
{
    uint32_t v;
    std::memcpy(&v, at, sizeof v);
    return v;
}

// Bytes of value that a fixed-size type carries; 0 for the others.
size_t fixedSize(uint32_t type)
{
    switch (type) {
    case KOR_UCHAR: return 1;
    case KOR_USHORT: return 2;
    case KOR_ULONG:
    case KOR_FLOAT: return 4;
    case KOR_UQUAD:
    case KOR_DOUBLE:
    case KOR_ULONGLONG:
    case KOR_LONGLONG: return 8;
    case KOR_DATETIME: return KOR_DATETIME_LENGTH;
    default: return 0;
    }
}
}  // namespace

bool KorValue::isUnsigned() const
{
    return (type >= KOR_UCHAR && type <= KOR_UQUAD) || type == KOR_ULONGLONG;
}

int32_t KorValue::uquadFirstWord() const
{
    int32_t first;
    std::memcpy(&first, &number, sizeof first);  // `number` holds the block's bytes in order
    return first;
}

bool decodeKorString(const unsigned char* at, size_t room, std::wstring& text, size_t* used)
{
    text.clear();
    if (room < 4) return false;
    const uint32_t count = word(at);
    if (count == 0 || (room - 4) / 4 < count) return false;
    for (uint32_t i = 0; i + 1 < count; ++i) {
        const uint32_t c = word(at + 4 + 4 * i);
        if (c == 0) break;
        text.push_back(static_cast<wchar_t>(c));
    }
    if (used) *used = 4 + 4 * static_cast<size_t>(count);
    return true;
}

bool decodeKorValue(const unsigned char* block, KorValue& out)
{
    out = KorValue();
    if (!block) return false;
    out.size = word(block);
    if (out.size < HEADER) return false;
    out.id = word(block + 4);
    out.type = word(block + 8);
    const unsigned char* v = block + HEADER;
    const size_t room = out.size - HEADER;

    if (const size_t n = fixedSize(out.type)) {
        if (room != n) return false;
        switch (out.type) {
        case KOR_UCHAR: out.number = v[0]; break;
        case KOR_USHORT: {
            uint16_t s;
            std::memcpy(&s, v, 2);
            out.number = s;
            break;
        }
        case KOR_ULONG: out.number = word(v); break;
        case KOR_UQUAD:
        case KOR_ULONGLONG: std::memcpy(&out.number, v, 8); break;
        case KOR_LONGLONG: std::memcpy(&out.signedNumber, v, 8); break;
        case KOR_FLOAT: {
            float f;
            std::memcpy(&f, v, 4);
            out.real = f;
            break;
        }
        case KOR_DOUBLE: std::memcpy(&out.real, v, 8); break;
        case KOR_DATETIME: out.bytes.assign(reinterpret_cast<const char*>(v), n); break;
        }
        return true;
    }
    switch (out.type) {
    case KOR_STRING:
    case KOR_WIDESTRING: {
        size_t used = 0;
        return decodeKorString(v, room, out.text, &used) && used == room;
    }
    case KOR_OCTETSTRING:
        if (room < 4 || room - 4 != word(v)) return false;
        out.bytes.assign(reinterpret_cast<const char*>(v + 4), room - 4);
        return true;
    default:
        return false;
    }
}
