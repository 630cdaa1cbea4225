#include "common/replay/Sanitizer.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <regex>
#include <vector>

namespace replay {

namespace {

// Replaces each match of `re` with what `change` makes of it.
template <typename Change>
std::string replaceAll(const std::string& in, const std::regex& re, Change change)
{
    std::string out;
    auto last = in.cbegin();
    for (std::sregex_iterator it(in.begin(), in.end(), re), end; it != end; ++it) {
        out.append(last, (*it)[0].first);
        out += change(*it);
        last = (*it)[0].second;
    }
    out.append(last, in.cend());
    return out;
}

std::string lower(std::string s)
{
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

// `n` as hexadecimal digits, `width` of them.
std::string hexNumber(unsigned long n, size_t width)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%0*lx", static_cast<int>(width), n);
    return std::string(buffer).substr(std::string(buffer).size() > width ? std::string(buffer).size() - width : 0);
}

}  // namespace

std::string Sanitizer::placeholder(const std::string& kind, const std::string& value, const std::string& pattern)
{
    std::map<std::string, std::string>& seen = m_seen[kind];
    auto it = seen.find(value);
    if (it != seen.end()) return it->second;
    // The pattern's run of '#' takes the number, as wide as the run.
    const size_t at = pattern.find('#');
    const size_t width = pattern.find_first_not_of('#', at) == std::string::npos
                             ? pattern.size() - at
                             : pattern.find_first_not_of('#', at) - at;
    std::string made = pattern;
    made.replace(at, width, hexNumber(seen.size() + 1, width));
    return seen[value] = made;
}

std::string Sanitizer::serial(const std::string& value)
{
    std::string trimmed = value;
    while (!trimmed.empty() && (trimmed.back() == ' ' || trimmed.back() == '\0')) trimmed.pop_back();
    if (trimmed.find_first_not_of(" \0", 0) == std::string::npos) return value;  // nothing there
    std::string made = placeholder("serial", trimmed, "SN########");
    made.resize(trimmed.size(), '0');
    return made + value.substr(trimmed.size());
}

unsigned long Sanitizer::hostid(unsigned long id)
{
    return std::stoul(placeholder("hostid", std::to_string(id), "a#######"), nullptr, 16);
}

std::string Sanitizer::text(const std::string& in)
{
    static const std::regex uuid("[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}");
    // Six groups of one or two digits: Solaris leaves out leading zeros,
    // dladm's parseable form escapes the colons.
    static const std::regex mac("\\b[0-9a-fA-F]{1,2}((\\\\?:)[0-9a-fA-F]{1,2}){5}\\b(?!\\\\?:[0-9a-fA-F])");
    static const std::regex wwnColons("\\b[0-9a-fA-F]{2}(:[0-9a-fA-F]{2}){7}\\b");
    static const std::regex wwn("\\b(0x)?[0-9a-fA-F]{16}\\b");
    // Multipath device names carry the logical unit's WWN: c0t<WWN>d0.
    static const std::regex deviceWwn("\\b(c[0-9]+t)([0-9a-fA-F]{16,32})(d[0-9]+)");
    // "Serial No: X", "serial=X", and a node dump's "SerialNumber:s=X".
    static const std::regex serialField(
        "((serial[ _-]?(no\\.?|number|num)?|hostid)[ \\t]*[:=][ \\t]*\"?(s=)?)([^\\s\",;=]+)(?!=)", std::regex::icase);

    std::string out = replaceAll(in, uuid, [this](const std::smatch& m) {
        return placeholder("uuid", lower(m.str()), "00000000-0000-4000-8000-############");
    });
    out = replaceAll(out, wwnColons, [this](const std::smatch& m) {
        std::string hex = m.str();
        hex.erase(std::remove(hex.begin(), hex.end(), ':'), hex.end());
        std::string made = placeholder("wwn", lower(hex), "20000000########");
        std::string colons;
        for (size_t i = 0; i < made.size(); i += 2) colons += (i ? ":" : "") + made.substr(i, 2);
        return colons;
    });
    out = replaceAll(out, mac, [this](const std::smatch& m) {
        // Six groups inside a longer run (a WWN: "xx:" before them) are no MAC address.
        const std::string before = m.prefix().str();
        const size_t n = before.size();
        if (n >= 3 && before[n - 1] == ':' && std::isxdigit(static_cast<unsigned char>(before[n - 2])) &&
            std::isxdigit(static_cast<unsigned char>(before[n - 3])) &&
            (n == 3 || !std::isalnum(static_cast<unsigned char>(before[n - 4])) || before[n - 4] == ':'))
            return m.str();
        // The same address however it is written: two digits a byte.
        std::string canonical;
        const std::string separator = m[2].str();
        std::string word = m.str();
        size_t from = 0;
        for (int i = 0; i < 6; ++i) {
            const size_t to = i < 5 ? word.find(separator, from) : word.size();
            std::string byte = lower(word.substr(from, to - from));
            canonical += (byte.size() == 1 ? "0" : "") + byte;
            from = to + separator.size();
        }
        const std::string made = placeholder("mac", canonical, "02000000####");
        std::string written;
        for (size_t i = 0; i < 12; i += 2) written += (i ? separator : "") + made.substr(i, 2);
        return written;
    });
    out = replaceAll(out, deviceWwn, [this](const std::smatch& m) {
        const std::string digits = m[2].str();
        std::string made = placeholder("lun", lower(digits), "60000000########");
        made.resize(digits.size(), '0');
        return m[1].str() + made + m[3].str();
    });
    out = replaceAll(out, wwn, [this](const std::smatch& m) {
        return m[1].str() + placeholder("wwn", lower(m.str().substr(m[1].length())), "20000000########");
    });
    out = replaceAll(out, serialField, [this](const std::smatch& m) {
        const bool hostid = lower(m[2].str()) == "hostid";
        const std::string value = m[5].str();
        std::string made = hostid ? placeholder("hostid-text", lower(value), "a#######") : serial(value);
        return m[1].str() + made;
    });
    return out;
}

std::string Sanitizer::scsiAnswer(const std::string& cdb, const std::string& answer)
{
    if (cdb.empty() || static_cast<unsigned char>(cdb[0]) != 0x12) return answer;
    std::string out = answer;
    const bool unitSerialPage = cdb.size() > 2 && (cdb[1] & 1) && static_cast<unsigned char>(cdb[2]) == 0x80;
    if (unitSerialPage && out.size() > 4) {
        const size_t length = std::min(out.size() - 4, static_cast<size_t>(static_cast<unsigned char>(out[3])));
        out.replace(4, length, serial(out.substr(4, length)));
    } else if (!(cdb.size() > 1 && (cdb[1] & 1)) && out.size() > 36) {
        // A standard answer: the vendor-specific bytes that hold the serial number.
        const size_t length = std::min<size_t>(out.size() - 36, 12);
        out.replace(36, length, serial(out.substr(36, length)));
    }
    return out;
}

std::string Sanitizer::firmware(const std::string& bytes, unsigned long long address, unsigned long long tableAddress,
                                size_t tableLength)
{
    if (tableAddress < address || tableAddress - address >= bytes.size()) return bytes;
    std::string out = bytes;
    const size_t start = static_cast<size_t>(tableAddress - address);
    const size_t end = std::min(out.size(), start + tableLength);
    // Per type: the formatted-area offsets of strings to replace, and of a UUID.
    struct Fields {
        std::vector<size_t> strings;
        size_t uuid;
    };
    const std::map<int, Fields> kinds = {
        {1, {{7}, 8}}, {2, {{7, 8}, 0}}, {3, {{7, 8}, 0}}, {4, {{0x20, 0x21}, 0}}, {17, {{0x18, 0x19}, 0}}};
    for (size_t at = start; at + 4 <= end;) {
        const int type = static_cast<unsigned char>(out[at]);
        const size_t length = static_cast<unsigned char>(out[at + 1]);
        if (length < 4 || at + length > end) break;
        // The strings follow the formatted area, each NUL-ended, two NULs at the end.
        std::vector<std::pair<size_t, size_t>> strings;
        size_t s = at + length;
        while (s < end && out[s] != '\0') {
            const size_t stop = out.find('\0', s);
            if (stop == std::string::npos || stop >= end) break;
            strings.emplace_back(s, stop - s);
            s = stop + 1;
        }
        auto kind = kinds.find(type);
        if (kind != kinds.end()) {
            for (size_t offset : kind->second.strings) {
                if (offset >= length) continue;
                const size_t index = static_cast<unsigned char>(out[at + offset]);
                if (index == 0 || index > strings.size()) continue;
                const auto& str = strings[index - 1];
                out.replace(str.first, str.second, serial(out.substr(str.first, str.second)));
            }
            const size_t u = kind->second.uuid;
            if (u && u + 16 <= length) {
                const std::string made = placeholder("uuid-bytes", out.substr(at + u, 16), "400080000000000000000000########");
                for (size_t i = 0; i < 16; ++i) out[at + u + i] = static_cast<char>(std::stoi(made.substr(2 * i, 2), nullptr, 16));
            }
        }
        if (type == 127) break;
        at = strings.empty() ? at + length + 2 : s + 1;  // past the double NUL
    }
    return out;
}

}  // namespace replay
