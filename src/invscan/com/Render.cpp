#include "invscan/com/Render.h"

#include "common/util/ApiGuard.h"
#include "invscan/com/KorValue.h"
#include "invscan/com/ValueText.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <string>

namespace {
const char* const kSource = "./../../../src/invscan/com/Render";

// Writes one wide character to a narrow or wide stream: a byte-oriented
// stream (stdout after printf) would refuse fputwc.
void putWide(FILE* stream, wchar_t c)
{
    if (fwide(stream, 0) > 0) {
        fputwc(c, stream);
        return;
    }
    char bytes[MB_LEN_MAX];
    std::mbstate_t state{};
    const size_t n = std::wcrtomb(bytes, c, &state);
    if (n == static_cast<size_t>(-1))
        fputc('?', stream);
    else
        fwrite(bytes, 1, n, stream);
}

void printWide(FILE* stream, const std::wstring& text)
{
    if (text.empty()) return;
    std::wstring copy(text);
    wchar_t* escaped = dmtf_escape(&copy[0]);
    for (const wchar_t* c = escaped; *c; ++c) putWide(stream, *c);
    if (escaped != copy.c_str()) delete[] escaped;
}
}  // namespace

unsigned long SizeAsKorString(const char* text)
{
    return text && *text ? 4 * std::strlen(text) + 8 : 8;
}

unsigned long SizeAsKorWideString(const wchar_t* text)
{
    return text && *text ? 4 * std::wcslen(text) + 8 : 8;
}

unsigned long SizeofKorString(const KorString* korString) { return 4ul * korString->count + 4; }

unsigned long StringToKorString(const char* source, KorString* destination, unsigned long room,
                                unsigned long* offset, unsigned long* previousOffset)
{
    auto* chars = reinterpret_cast<unsigned char*>(destination) + 4;
    uint32_t count = 1;
    if (source && *source && room >= 8) {
        const size_t limit = (room - 4) / 4;  // characters that fit, terminator included
        try {
            std::wstring wide(limit, L'\0');
            const size_t n = std::mbstowcs(&wide[0], source, limit);
            if (n != static_cast<size_t>(-1) && n < limit) {
                count = static_cast<uint32_t>(n + 1);
                std::memcpy(chars, wide.c_str(), 4 * count);
            }
        } catch (const std::exception& e) {
            api::traceStopped(kSource, "StringToKorString", e.what());  // written as the empty string
        }
    }
    if (count == 1) std::memset(chars, 0, 4);
    std::memcpy(destination, &count, 4);
    const unsigned long size = SizeofKorString(destination);
    if (previousOffset) *previousOffset = offset ? *offset : 0;
    if (offset) *offset += size;
    return size;
}

void TimeToKorDateTime(long secondsSinceEpoch, char* destination)
{
    const time_t when = static_cast<time_t>(secondsSinceEpoch);
    struct tm local;
    if (!localtime_r(&when, &local)) {
        destination[0] = '\0';
        return;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d-%02d.%02d.%02d.000000", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    std::memcpy(destination, text, KOR_DATETIME_LENGTH);
}

wchar_t* dmtf_escape(wchar_t* text)
{
    // Out of memory gives null: the caller owns what comes back, never its own text.
    return api::guarded<wchar_t*>(kSource, "dmtf_escape", nullptr, [&]() -> wchar_t* {
        if (!text || !*text) return text;
        const size_t length = std::wcslen(text);
        wchar_t* out = new wchar_t[4 * length + 1];
        wchar_t* w = out;
        static const wchar_t hex[] = L"0123456789abcdef";
        for (const wchar_t* r = text; *r; ++r) {
            const wchar_t c = *r;
            if (c == L'\\' || c == L'"') {
                *w++ = L'\\';
                *w++ = c;
            } else if (c >= 1 && c <= 31) {
                *w++ = L'\\';
                *w++ = L'x';
                *w++ = hex[(c >> 4) & 15];
                *w++ = hex[c & 15];
            } else {
                *w++ = c;
            }
        }
        *w = L'\0';
        return out;
    });
}

const char* getKorAttribTypeAsString(unsigned long type)
{
    static const char* const names[] = {"KOR_UCHAR",       "KOR_USHORT",   "KOR_ULONG",     "KOR_UQUAD",
                                        "KOR_FLOAT",       "KOR_DOUBLE",   "KOR_STRING",    "KOR_OCTETSTRING",
                                        "KOR_DATETIME",    "KOR_ULONGLONG", "KOR_LONGLONG", "KOR_WIDESTRING"};
    return type >= 1 && type <= 12 ? names[type - 1] : "Undefined Attrib Type";
}

void PrintKorFloat(FILE* stream, double value)
{
    api::guardedCall(kSource, "PrintKorFloat", [&] {
        if (!stream) stream = stdout;
        std::fputs(realText(value, RealForm::Fixed).c_str(), stream);
    });
}

void PrintKorStringToFile(FILE* stream, const KorString* korString)
{
    api::guardedCall(kSource, "PrintKorStringToFile", [&] {
        if (!korString || korString->count < 1) return;
        std::wstring text;
        const auto* at = reinterpret_cast<const unsigned char*>(korString);
        if (decodeKorString(at, SizeofKorString(korString), text, nullptr)) printWide(stream, text);
    });
}

void PrintOctetStringToFile(FILE* stream, const unsigned char* bytes, unsigned long length)
{
    std::fprintf(stream, "\"%s\"", hexText(bytes, length).c_str());
}

void PrintKorTimeBlockToFile(FILE* stream, const char* chars)
{
    for (unsigned i = 0; i < KOR_DATETIME_LENGTH; ++i) std::fputc(chars[i], stream);
}

void PrintKorEnumToFile(FILE* stream, const korAttribDef* attribDef)
{
    if (!attribDef || !attribDef->enumDef) return;
    for (const korEnumDef* e = attribDef->enumDef; e->value != KOR_END; ++e)
        std::fprintf(stream, "\n\t\t%d = \"%s\"", static_cast<int>(e->value), e->text);
}

namespace {
// The value forms the two printers share; `verbose` adds the hexadecimal
// echoes of the diagnostic dump. Numbers, reals and octets are the library's
// one text of a value (korValueText); a byte, a type-4 value, strings and
// date-times keep the dump's own forms, as hosts' logs show them.
void printValue(FILE* stream, const KorValue& v, bool decoded, bool verbose)
{
    if (!decoded) {
        if (verbose) std::fputs("Unknown attrib value type", stream);
        return;
    }
    switch (v.type) {
    case KOR_UCHAR:
        std::fprintf(stream, "0x%02X", static_cast<unsigned>(v.number));
        break;
    case KOR_USHORT:
        std::fputs(korValueText(v, RealForm::Fixed).c_str(), stream);
        if (verbose) std::fprintf(stream, " (0x%04X)", static_cast<unsigned>(v.number));
        break;
    case KOR_ULONG:
        std::fputs(korValueText(v, RealForm::Fixed).c_str(), stream);
        if (verbose) std::fprintf(stream, " (0x%08X)", static_cast<unsigned>(v.number));
        break;
    case KOR_UQUAD:
        // Only the first word, as a signed number: hosts' dumps show it so.
        std::fprintf(stream, "%ld", static_cast<long>(v.uquadFirstWord()));
        break;
    case KOR_FLOAT:
    case KOR_DOUBLE:
        std::fputs(korValueText(v, RealForm::Fixed).c_str(), stream);
        break;
    case KOR_STRING:
        printWide(stream, v.text);
        break;
    case KOR_OCTETSTRING:
        if (!v.bytes.empty())
            PrintOctetStringToFile(stream, reinterpret_cast<const unsigned char*>(v.bytes.data()), v.bytes.size());
        break;
    case KOR_DATETIME:
        PrintKorTimeBlockToFile(stream, v.bytes.data());
        break;
    case KOR_ULONGLONG:
        std::fputs(korValueText(v, RealForm::Fixed).c_str(), stream);
        if (verbose) std::fprintf(stream, " (0x%16X)", static_cast<unsigned>(v.number));
        break;
    case KOR_LONGLONG:
        std::fputs(korValueText(v, RealForm::Fixed).c_str(), stream);
        if (verbose) std::fprintf(stream, " (0x%16X)", static_cast<unsigned>(v.signedNumber));
        break;
    default:  // wide strings deliberately included
        if (verbose) std::fputs("Unknown attrib value type", stream);
        break;
    }
}
}  // namespace

void PrintKorAttribValue(const unsigned char* block)
{
    api::guardedCall(kSource, "PrintKorAttribValue", [&] {
        if (!block) return;
        KorValue v;
        const bool decoded = decodeKorValue(block, v);
        std::printf("\n\t\t---len      : %lu", static_cast<unsigned long>(v.size));
        std::printf("\n\t\t   attribId : x%08X", v.id);
        std::printf("\n\t\t   kor_type : %lu (%s)", static_cast<unsigned long>(v.type), getKorAttribTypeAsString(v.type));
        std::printf("\n\t\t   value    : ");
        printValue(stdout, v, decoded, true);
    });
}

void PrintKorAttribValueToFile(FILE* stream, const unsigned char* block)
{
    api::guardedCall(kSource, "PrintKorAttribValueToFile", [&] {
        if (!stream || !block) return;
        KorValue v;
        const bool decoded = decodeKorValue(block, v);
        printValue(stream, v, decoded, false);
    });
}
