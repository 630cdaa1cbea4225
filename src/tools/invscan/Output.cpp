#include "tools/invscan/Output.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <set>
#include <algorithm>

#include "framework/utils.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/KorTypes.h"

namespace cli {

namespace {

const size_t HEADER = 12;

uint32_t word(const unsigned char* p)
{
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

std::string wideText(const unsigned char* p, uint32_t available)
{
    // A Kor string: a count including the terminator, then 32-bit characters.
    if (available < 4) return std::string();
    const uint32_t count = word(p);
    if (count == 0 || (available - 4) / 4 < count) return std::string();
    std::wstring wide;
    wide.reserve(count);
    for (uint32_t i = 0; i + 1 < count; ++i) {
        uint32_t c = word(p + 4 + 4 * i);
        if (c == 0) break;
        if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) c = 0xFFFD;
        wide.push_back(static_cast<wchar_t>(c));
    }
    return utils::stringToUTF8(wide);
}

std::string hexBytes(const unsigned char* p, uint32_t length)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(2 * length);
    for (uint32_t i = 0; i < length; ++i) {
        out.push_back(digits[p[i] >> 4]);
        out.push_back(digits[p[i] & 0x0F]);
    }
    return out;
}

std::string formatReal(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.6g", value);
    return buffer;
}

std::string valueText(const KorTable& table, const DecodedValue& value)
{
    std::string out;
    if (value.isSigned)
        out = std::to_string(value.signedValue);
    else if (value.isNumber)
        out = std::to_string(value.unsignedValue);
    else if (value.isReal)
        out = formatReal(value.realValue);
    else
        out = value.text;
    if (const char* text = enumText(table, value)) out += std::string(" (") + text + ")";
    return out;
}

}  // namespace

bool decodeBlock(const unsigned char* block, DecodedValue& out)
{
    out = DecodedValue();
    if (!block) return false;
    const uint32_t size = word(block);
    if (size < HEADER) return false;
    out.id = word(block + 4);
    out.type = word(block + 8);
    const unsigned char* v = block + HEADER;
    const uint32_t room = size - HEADER;
    auto need = [&](uint32_t bytes) { return room >= bytes; };
    switch (out.type) {
    case KOR_UCHAR:
        if (!need(1)) return false;
        out.isNumber = true;
        out.unsignedValue = v[0];
        return true;
    case KOR_USHORT: {
        if (!need(2)) return false;
        uint16_t s;
        std::memcpy(&s, v, 2);
        out.isNumber = true;
        out.unsignedValue = s;
        return true;
    }
    case KOR_ULONG:
        if (!need(4)) return false;
        out.isNumber = true;
        out.unsignedValue = word(v);
        return true;
    case KOR_UQUAD:
    case KOR_ULONGLONG: {
        if (!need(8)) return false;
        uint64_t q;
        std::memcpy(&q, v, 8);
        out.isNumber = true;
        out.unsignedValue = q;
        return true;
    }
    case KOR_LONGLONG: {
        if (!need(8)) return false;
        int64_t q;
        std::memcpy(&q, v, 8);
        out.isNumber = out.isSigned = true;
        out.signedValue = q;
        return true;
    }
    case KOR_FLOAT: {
        if (!need(4)) return false;
        float f;
        std::memcpy(&f, v, 4);
        out.isReal = true;
        out.realValue = f;
        return true;
    }
    case KOR_DOUBLE: {
        if (!need(8)) return false;
        double d;
        std::memcpy(&d, v, 8);
        out.isReal = true;
        out.realValue = d;
        return true;
    }
    case KOR_STRING:
    case KOR_WIDESTRING:
        out.text = wideText(v, room);
        return true;
    case KOR_OCTETSTRING: {
        if (!need(4)) return false;
        const uint32_t length = word(v);
        if (room - 4 < length) return false;
        out.text = hexBytes(v + 4, length);
        return true;
    }
    case KOR_DATETIME:
        if (!need(KOR_DATETIME_LENGTH)) return false;
        out.text.assign(reinterpret_cast<const char*>(v), KOR_DATETIME_LENGTH);
        if (out.text[0] == '\0') out.text.clear();  // the time could not be converted
        return true;
    default:
        return false;
    }
}

std::string attributeName(const KorTable& table, uint32_t attribId)
{
    if (const char* name = getAttribNameFromId(table.getGroupDefinitionFromId(), attribId)) return name;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "attribute 0x%08" PRIX32, attribId);
    return buffer;
}

const char* enumText(const KorTable& table, const DecodedValue& value)
{
    if (!value.isNumber || value.isSigned) return nullptr;
    return getEnumAsciiValue(table.getGroupDefinitionFromId(), value.id,
                             static_cast<unsigned long>(value.unsignedValue));
}

std::string localTime(long seconds)
{
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char buffer[32];
    if (!localtime_r(&t, &parts) || std::strftime(buffer, sizeof buffer, "%Y-%m-%d %H:%M:%S", &parts) == 0)
        return std::to_string(seconds);
    return buffer;
}

std::string renderText(KorTable& table)
{
    std::string out;
    out += table.getGroupName();
    out += " (group " + std::to_string(table.getGroupId()) + ", version " +
           std::to_string(table.getGroupVersion()) + ")";
    out += ": " + std::to_string(table.getRowCount()) + (table.getRowCount() == 1 ? " row" : " rows");
    out += ", scanned " + localTime(table.getTimeStamp()) + "\n";

    // Names are padded to the longest one in the table, so values line up.
    size_t width = 0;
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        row->reset();
        const unsigned long count = row->getNumAttribs();
        for (unsigned long i = 0; i < count; ++i)
            if (KorTableAttrib* attrib = row->getNext())
                width = std::max(width, attributeName(table, static_cast<uint32_t>(attrib->getId())).size());
        row->reset();
    }

    unsigned long index = 0;
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        out += "\n  [" + std::to_string(++index) + "]\n";
        row->reset();
        // Rows may hold null attributes: getNext() cannot tell them from the
        // end, so walk by count.
        const unsigned long count = row->getNumAttribs();
        for (unsigned long i = 0; i < count; ++i) {
            KorTableAttrib* attrib = row->getNext();
            if (!attrib) continue;
            DecodedValue value;
            std::string name;
            std::string shown;
            if (decodeBlock(attrib->getAttribPtr(), value)) {
                name = attributeName(table, value.id);
                shown = valueText(table, value);
            } else {
                name = attributeName(table, static_cast<uint32_t>(attrib->getId()));
                shown = "(unreadable value)";
            }
            out += "    " + name + std::string(width > name.size() ? width - name.size() : 0, ' ') + " : " +
                   shown + "\n";
        }
        row->reset();
    }
    table.reset();
    return out;
}

nlohmann::json renderJson(KorTable& table)
{
    nlohmann::json rows = nlohmann::json::array();
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        nlohmann::json object = nlohmann::json::object();
        std::set<std::string> repeated;
        row->reset();
        const unsigned long count = row->getNumAttribs();
        for (unsigned long i = 0; i < count; ++i) {
            KorTableAttrib* attrib = row->getNext();
            if (!attrib) continue;
            DecodedValue value;
            nlohmann::json item;
            std::string name;
            if (!decodeBlock(attrib->getAttribPtr(), value)) {
                name = attributeName(table, static_cast<uint32_t>(attrib->getId()));
                item = nullptr;
            } else {
                name = attributeName(table, value.id);
                if (value.isSigned)
                    item = value.signedValue;
                else if (value.isNumber)
                    item = value.unsignedValue;
                else if (value.isReal)
                    item = value.realValue;
                else
                    item = value.text;
                if (const char* text = enumText(table, value))
                    item = nlohmann::json{{"value", value.unsignedValue}, {"text", text}};
            }
            // A repeated attribute keeps every value, in row order.
            if (object.contains(name)) {
                if (repeated.insert(name).second) object[name] = nlohmann::json::array({object[name]});
                object[name].push_back(std::move(item));
            } else {
                object[name] = item;
            }
        }
        row->reset();
        rows.push_back(std::move(object));
    }
    table.reset();
    return nlohmann::json{{"id", table.getGroupId()},
                          {"name", table.getGroupName()},
                          {"version", table.getGroupVersion()},
                          {"timestamp", localTime(table.getTimeStamp())},
                          {"rows", std::move(rows)}};
}

}  // namespace cli
