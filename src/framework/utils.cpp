#include "framework/utils.h"

#include <regex.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>
#include <locale>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "common/sys/Portable.h"
#include "common/sys/PosixSystem.h"

namespace utils {
namespace {
bool isSpace(unsigned c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }

template <typename S>
S trimmed(const S& text)
{
    size_t begin = 0, end = text.size();
    while (begin < end && isSpace(static_cast<unsigned>(text[begin]))) ++begin;
    while (end > begin && isSpace(static_cast<unsigned>(text[end - 1]))) --end;
    return text.substr(begin, end - begin);
}
}  // namespace

std::string trimBoth(const std::string& text) { return trimmed(text); }
std::wstring trimBoth(const std::wstring& text) { return trimmed(text); }
void trimBothInPlace(std::string& text) { text = trimmed(text); }
void trimBothInPlace(std::wstring& text) { text = trimmed(text); }

bool charToDouble(const char* text, double& value)
{
    if (!text) return false;
    // from_chars reads '.' whatever the process locale says (strtod would
    // follow LC_NUMERIC), and costs no stream.
    const char* begin = text;
    const char* end = text + std::strlen(text);
    while (begin < end && isSpace(static_cast<unsigned char>(*begin))) ++begin;
    while (end > begin && isSpace(static_cast<unsigned char>(end[-1]))) --end;
    if (begin < end && *begin == '+') ++begin;
    double parsed = 0;
    const auto result = std::from_chars(begin, end, parsed);
    if (result.ec != std::errc() || result.ptr != end || begin == end) return false;
    value = parsed;
    return true;
}

std::wstring utf8ToWideChar(const std::string& text)
{
    std::wstring out;
    out.reserve(text.size());
    const auto* p = reinterpret_cast<const unsigned char*>(text.data());
    const auto* end = p + text.size();
    while (p < end) {
        const unsigned c = *p;
        int extra;
        uint32_t cp;
        if (c < 0x80) { out.push_back(static_cast<wchar_t>(c)); ++p; continue; }
        if ((c & 0xE0) == 0xC0) { extra = 1; cp = c & 0x1F; }
        else if ((c & 0xF0) == 0xE0) { extra = 2; cp = c & 0x0F; }
        else if ((c & 0xF8) == 0xF0) { extra = 3; cp = c & 0x07; }
        else { out.push_back(L'\xFFFD'); ++p; continue; }
        if (end - p <= extra) { out.push_back(L'\xFFFD'); ++p; continue; }
        bool ok = true;
        for (int i = 1; i <= extra; ++i) {
            if ((p[i] & 0xC0) != 0x80) { ok = false; break; }
            cp = (cp << 6) | (p[i] & 0x3F);
        }
        static const uint32_t minimum[] = {0, 0x80, 0x800, 0x10000};
        if (!ok || cp < minimum[extra] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
            out.push_back(L'\xFFFD');
            ++p;
            continue;
        }
        out.push_back(static_cast<wchar_t>(cp));
        p += extra + 1;
    }
    return out;
}

std::string stringToUTF8(const std::wstring& text)
{
    std::string out;
    out.reserve(text.size());
    for (wchar_t wc : text) {
        uint32_t cp = static_cast<uint32_t>(wc);
        if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) cp = 0xFFFD;
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

std::string stringToUTF8(const String& text) { return stringToUTF8(text.wide()); }

std::string toLower(const std::string& text)
{
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::wstring toLower(const std::wstring& text)
{
    std::wstring out(text);
    for (wchar_t& c : out)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    return out;
}

namespace {
// Compiled patterns by their text: the zone reader matches the same few
// against every zone's zonecfg output, and compiling is most of a match.
class CompiledPatterns {
public:
    ~CompiledPatterns() { clear(); }
    // Null when the pattern does not compile. Used under the lock.
    const regex_t* find(const std::string& pattern)
    {
        auto it = m_compiled.find(pattern);
        if (it != m_compiled.end()) return &it->second;
        if (m_compiled.size() >= kKept) clear();  // patterns made from input cannot pile up
        // Compiled in place: a regex_t is not for copying.
        regex_t& re = m_compiled[pattern];
        if (regcomp(&re, pattern.c_str(), REG_EXTENDED) == 0) return &re;
        m_compiled.erase(pattern);
        return nullptr;
    }
    std::mutex lock;

private:
    static constexpr size_t kKept = 16;
    void clear()
    {
        for (auto& compiled : m_compiled) regfree(&compiled.second);
        m_compiled.clear();
    }
    std::map<std::string, regex_t> m_compiled;
};
}  // namespace

bool regexMatch(const std::string& text, const std::string& pattern, std::string& firstGroup)
{
    firstGroup.clear();
    static CompiledPatterns patterns;
    std::lock_guard<std::mutex> hold(patterns.lock);
    const regex_t* re = patterns.find(pattern);
    if (!re) return false;
    regmatch_t groups[2];
    const bool matched = regexec(re, text.c_str(), 2, groups, 0) == 0;
    if (matched && re->re_nsub >= 1 && groups[1].rm_so >= 0)
        firstGroup = text.substr(static_cast<size_t>(groups[1].rm_so),
                                 static_cast<size_t>(groups[1].rm_eo - groups[1].rm_so));
    return matched;
}

std::string hexToDecimal(const std::string& hex)
{
    std::string body = trimBoth(hex);
    if (body.size() > 2 && body[0] == '0' && (body[1] == 'x' || body[1] == 'X')) body = body.substr(2);
    if (body.empty() || body.size() > 16) return std::string();
    uint64_t value = 0;
    for (char c : body) {
        int digit;
        if (c >= '0' && c <= '9') digit = c - '0';
        else if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
        else return std::string();
        value = (value << 4) | static_cast<uint64_t>(digit);
    }
    return std::to_string(value);
}

std::FILE* openRegularFile(const std::string& path)
{
    const int fd = sys::openRegularFile(path.c_str());
    if (fd < 0) return nullptr;
    std::FILE* file = fdopen(fd, "rb");
    if (!file) {
        const int error = errno;
        ::close(fd);
        errno = error;
    }
    return file;
}

}  // namespace utils

const wchar_t* const File::pathSeparator = L"/";
