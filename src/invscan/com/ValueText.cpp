#include "invscan/com/ValueText.h"

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "framework/utils.h"

std::string realText(double value, RealForm form)
{
    char buffer[512];  // "%f" of the largest double takes 316 characters
    if (form == RealForm::Fixed)
        std::snprintf(buffer, sizeof buffer, "%f", value);
    else
        std::snprintf(buffer, sizeof buffer, "%.*g", form == RealForm::Short ? 6 : 9, value);
    std::string text = buffer;
    const std::lconv* locale = std::localeconv();
    const char* point = locale && locale->decimal_point ? locale->decimal_point : ".";
    const size_t at = std::strcmp(point, ".") == 0 || !*point ? std::string::npos : text.find(point);
    if (at != std::string::npos) text.replace(at, std::strlen(point), ".");
    return text;
}

std::string hexText(const unsigned char* bytes, size_t length)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(2 * length);
    for (size_t i = 0; i < length; ++i) {
        out.push_back(digits[bytes[i] >> 4]);
        out.push_back(digits[bytes[i] & 0x0F]);
    }
    return out;
}

std::string korValueText(const KorValue& value, RealForm realForm)
{
    switch (value.type) {
    case KOR_LONGLONG: return std::to_string(value.signedNumber);
    case KOR_FLOAT:
    case KOR_DOUBLE: return realText(value.real, realForm);
    case KOR_STRING:
    case KOR_WIDESTRING: {
        std::wstring clean(value.text);
        for (wchar_t& c : clean) {
            const auto u = static_cast<uint32_t>(c);
            if (u > 0x10FFFF || (u >= 0xD800 && u <= 0xDFFF)) c = static_cast<wchar_t>(0xFFFD);
        }
        return utils::stringToUTF8(clean);
    }
    case KOR_OCTETSTRING:
        return hexText(reinterpret_cast<const unsigned char*>(value.bytes.data()), value.bytes.size());
    case KOR_DATETIME: return value.bytes.empty() || value.bytes[0] == '\0' ? std::string() : value.bytes;
    default: return std::to_string(value.number);
    }
}
