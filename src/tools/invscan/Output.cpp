#include "tools/invscan/Output.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <set>
#include <algorithm>

#include "invscan/com/Catalogue.h"
#include "invscan/com/KorTypes.h"
#include "invscan/com/ValueText.h"

namespace cli {

namespace {

// The command line's plain text of a value: reals with six digits.
std::string plainText(const KorValue& value) { return korValueText(value, RealForm::Short); }

std::string valueText(const KorTable& table, const KorValue& value)
{
    std::string out = escapeControls(plainText(value));
    if (const char* text = enumText(table, value)) out += std::string(" (") + text + ")";
    return out;
}

}  // namespace

std::string escapeControls(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    char code[8];
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const char* named = c == '\n'   ? "\\n"
                            : c == '\t' ? "\\t"
                            : c == '\r' ? "\\r"
                            : c == '\b' ? "\\b"
                            : c == '\f' ? "\\f"
                                        : nullptr;
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        if (named) {
            out += named;
        } else if (c < 0x20 || c == 0x7F) {
            std::snprintf(code, sizeof code, "\\u%04x", c);
            out += code;
        } else if (c == 0xC2 && next >= 0x80 && next <= 0x9F) {  // U+0080-U+009F: CSI and its kin in UTF-8
            std::snprintf(code, sizeof code, "\\u%04x", next);
            out += code;
            ++i;
        } else {
            out.push_back(static_cast<char>(c));
        }
    }
    return out;
}

std::string attributeName(const KorTable& table, uint32_t attribId)
{
    if (const char* name = getAttribNameFromId(table.getGroupDefinitionFromId(), attribId)) return name;
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "attribute 0x%08" PRIX32, attribId);
    return buffer;
}

const char* enumText(const KorTable& table, const KorValue& value)
{
    if (!value.isUnsigned()) return nullptr;
    return getEnumAsciiValue(table.getGroupDefinitionFromId(), value.id, static_cast<unsigned long>(value.number));
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
            KorValue value;
            std::string name;
            std::string shown;
            if (decodeKorValue(attrib->getAttribPtr(), value)) {
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

nlohmann::ordered_json renderJson(KorTable& table)
{
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        nlohmann::ordered_json object = nlohmann::ordered_json::object();
        std::set<std::string> repeated;
        row->reset();
        const unsigned long count = row->getNumAttribs();
        for (unsigned long i = 0; i < count; ++i) {
            KorTableAttrib* attrib = row->getNext();
            if (!attrib) continue;
            KorValue value;
            nlohmann::ordered_json item;
            std::string name;
            if (!decodeKorValue(attrib->getAttribPtr(), value)) {
                name = attributeName(table, static_cast<uint32_t>(attrib->getId()));
                item = nullptr;
            } else {
                name = attributeName(table, value.id);
                if (value.type == KOR_LONGLONG)
                    item = value.signedNumber;
                else if (value.isUnsigned())
                    item = value.number;
                else if (value.type == KOR_FLOAT || value.type == KOR_DOUBLE)
                    item = value.real;
                else
                    item = plainText(value);
                if (const char* text = enumText(table, value))
                    item = nlohmann::ordered_json{{"value", value.number}, {"text", text}};
            }
            // A repeated attribute keeps every value, in row order.
            if (object.contains(name)) {
                if (repeated.insert(name).second) object[name] = nlohmann::ordered_json::array({object[name]});
                object[name].push_back(std::move(item));
            } else {
                object[name] = item;
            }
        }
        row->reset();
        rows.push_back(std::move(object));
    }
    table.reset();
    return nlohmann::ordered_json{{"id", table.getGroupId()},
                          {"name", table.getGroupName()},
                          {"version", table.getGroupVersion()},
                          {"timestamp", localTime(table.getTimeStamp())},
                          {"rows", std::move(rows)}};
}

namespace {

// The short view's columns: the longest group name, a row number, values.
const size_t SHORT_VALUES = 5;      // values a line shows at most
const size_t SHORT_VALUE_CUT = 40;  // characters a value shows at most

size_t groupColumn()
{
    static size_t width = 0;
    if (width == 0)
        for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g) width = std::max(width, std::strlen(g->name));
    return width;
}

std::string shortLine(const std::string& group, const std::string& index, const std::string& rest)
{
    std::string line = group + std::string(groupColumn() > group.size() ? groupColumn() - group.size() : 0, ' ');
    line += std::string(index.size() < 3 ? 3 - index.size() : 0, ' ') + index + "  " + rest;
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line + "\n";
}

// Characters on the screen: UTF-8 continuation bytes take no column.
size_t columns(const std::string& text)
{
    size_t n = 0;
    for (char c : text) n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return n;
}

// A digest identifies a row to a program, not to a person: the full view has it.
bool isDigest(const std::string& text)
{
    return text.size() == 32 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

}  // namespace

std::string shortNote(const std::string& group, const std::string& note)
{
    return shortLine(group, "-", "(" + note + ")");
}

std::string renderShort(KorTable& table)
{
    const korGroupDef* def = table.getGroupDefinitionFromId();
    auto isKey = [def](uint32_t id) {
        for (uint32_t k = 0; def && def->keys && k < def->numKeys; ++k)
            if (def->keys[k] == id) return true;
        return false;
    };
    // Each row's chosen values; a number carries its name, as "Size=512"
    // alone would say nothing.
    std::vector<std::vector<std::string>> rows;
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        std::vector<std::string> keys, texts, numbers;
        row->reset();
        const unsigned long count = row->getNumAttribs();
        for (unsigned long i = 0; i < count; ++i) {
            KorTableAttrib* attrib = row->getNext();
            KorValue value;
            if (!attrib || !decodeKorValue(attrib->getAttribPtr(), value)) continue;
            const std::string name = attributeName(table, value.id);
            const char* named = enumText(table, value);
            const bool text = named || value.type == KOR_STRING || value.type == KOR_WIDESTRING;
            std::string shown = escapeControls(named ? std::string(named) : plainText(value));
            // The row's number is the line's own column.
            if (shown.empty() || isDigest(shown) || name == "Index") continue;
            if (columns(shown) > SHORT_VALUE_CUT) {
                size_t cut = 0, kept = 0;  // bytes, and the characters they begin
                for (; cut < shown.size(); ++cut)
                    if ((static_cast<unsigned char>(shown[cut]) & 0xC0) != 0x80 && kept++ == SHORT_VALUE_CUT - 3) break;
                shown = shown.substr(0, cut) + "...";
            }
            if (!text) shown = name + "=" + shown;
            (isKey(value.id) ? keys : text ? texts : numbers).push_back(shown);
        }
        row->reset();
        std::vector<std::string> chosen;
        for (const auto* list : {&keys, &texts, &numbers})
            for (const auto& v : *list)
                if (chosen.size() < SHORT_VALUES) chosen.push_back(v);
        rows.push_back(std::move(chosen));
    }
    table.reset();
    if (rows.empty()) return shortNote(table.getGroupName(), "no rows");

    std::vector<size_t> widths;
    for (const auto& row : rows)
        for (size_t c = 0; c < row.size(); ++c) {
            if (widths.size() <= c) widths.push_back(0);
            widths[c] = std::max(widths[c], columns(row[c]));
        }
    std::string out;
    for (size_t r = 0; r < rows.size(); ++r) {
        std::string rest;
        for (size_t c = 0; c < rows[r].size(); ++c)
            rest += rows[r][c] + std::string(widths[c] - columns(rows[r][c]) + 2, ' ');
        out += shortLine(table.getGroupName(), std::to_string(r + 1), rest);
    }
    return out;
}

}  // namespace cli
