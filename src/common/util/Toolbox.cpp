#include "common/util/Toolbox.h"

#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/ApiGuard.h"
#include "framework/RunLog.h"
#include "framework/utils.h"

namespace {
const char* const kSource = "./../../../src/common/util/Toolbox";

bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }
bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

// major*10000 + minor*100 + third, or 0 when the text does not begin with a digit.
long versionNumber(const char* text)
{
    if (!isDigit(text[0])) return 0;
    char* end = nullptr;
    long value = std::strtol(text, &end, 0) * 10000;
    if (end[0] == '.' && isDigit(end[1])) {
        value += std::strtol(end + 1, &end, 0) * 100;
        if (end[0] == '.' && isDigit(end[1])) value += std::strtol(end + 1, &end, 0);
    }
    return value;
}

}  // namespace

int Toolbox::stricmp(const std::string& a, const std::string& b)
{
    return api::guarded<int>(kSource, "Toolbox::stricmp", 0, [&]() -> int {
        return utils::toLower(a).compare(utils::toLower(b));
    });
}

const char* Toolbox::strcasestr(const char* haystack, const char* needle)
{
    if (!haystack || !needle || !*haystack || !*needle) return nullptr;
    for (const char* start = haystack; *start; ++start) {
        const char* h = start;
        const char* n = needle;
        while (*n && *h && std::tolower(static_cast<unsigned char>(*h)) == std::tolower(static_cast<unsigned char>(*n))) {
            ++h;
            ++n;
        }
        if (!*n) return start;
    }
    return nullptr;
}

bool Toolbox::str2long(const char* text, long& out, int base)
{
    if (!text) return false;
    char* end = nullptr;
    const long value = std::strtol(text, &end, base);
    if (end == text) return false;
    out = value;
    return true;
}

bool Toolbox::str2ulong(const char* text, unsigned long& out, int base)
{
    if (!text) return false;
    char* end = nullptr;
    const unsigned long value = std::strtoul(text, &end, base);
    if (end == text) return false;
    out = value;
    return true;
}

int Toolbox::compareVersions(const char* a, const char* b)
{
    if (!a || !b || !*a || !*b) return -1;
    const long x = versionNumber(a), y = versionNumber(b);
    if (x == 0 || y == 0) return -1;  // never equal when unparsable, on purpose
    return x > y ? 1 : x < y ? -1 : 0;
}

std::string Toolbox::trim(const char* text)
{
    return api::guarded<std::string>(kSource, "Toolbox::trim", std::string(), [&]() -> std::string {
        if (!text) return std::string();
        const char* first = text;
        while (*first && isSpace(*first)) ++first;
        const char* last = nullptr;
        for (const char* c = first; *c; ++c)
            if (!isSpace(*c)) last = c;
        return last ? std::string(first, last + 1) : std::string();
    });
}

std::string Toolbox::get_token(const char* text, int& pos)
{
    return api::guarded<std::string>(kSource, "Toolbox::get_token", std::string(), [&]() -> std::string {
        if (!text || pos < 0) return std::string();
        const int length = static_cast<int>(std::strlen(text));
        while (pos < length && isSpace(text[pos])) ++pos;
        const int start = pos;
        while (pos < length && !isSpace(text[pos])) ++pos;
        return std::string(text + start, static_cast<size_t>(pos - start));
    });
}

const char* Toolbox::get_token(FILE* stream)
{
    return api::guarded<const char*>(kSource, "Toolbox::get_token", nullptr, [&]() -> const char* {
        static char token[100];  // 99 characters and the terminator, shared by every caller
        static size_t used = 0;
        for (int c; (c = std::fgetc(stream)) != EOF;) {
            if (!isSpace(static_cast<char>(c))) {
                if (used == sizeof token - 1) {
                    used = 0;  // too long: the token is lost
                    return nullptr;
                }
                token[used++] = static_cast<char>(c);
            } else if (used > 0) {
                token[used] = '\0';
                used = 0;
                return token;
            }
        }
        return nullptr;  // a partial token stays for the next call, on purpose
    });
}

bool Toolbox::match(const char* text, const char* pattern, std::map<std::string, std::string>& values)
{
    return api::guarded<bool>(kSource, "Toolbox::match", false, [&]() -> bool {
        if (!text || !pattern) return false;
        int textPos = 0, patternPos = 0;
        bool matched = true;
        for (;;) {
            const std::string want = get_token(pattern, patternPos);
            if (want.empty()) break;
            const std::string got = get_token(text, textPos);
            if (got.empty()) {
                matched = false;
                break;
            }
            if (want[0] == '%') {
                auto it = values.find(want.substr(1));
                if (it == values.end())
                    values[want.substr(1)] = got;
                else
                    it->second += " " + got;
            } else if (stricmp(want, got) != 0) {
                matched = false;
                break;
            }
        }
        values["matched"] = std::string(text, static_cast<size_t>(textPos));
        values["rest"] = std::string(text + textPos);
        int probe = textPos;
        return matched && get_token(text, probe).empty();
    });
}

std::string Toolbox::replace(const char* text, const char* what, const char* with)
{
    return api::guarded<std::string>(kSource, "Toolbox::replace", std::string(), [&]() -> std::string {
        const std::string source = text ? text : "";
        if (!what || !*what) return source;
        const std::string needle = what, replacement = with ? with : "";
        std::string out;
        size_t from = 0, at;
        while ((at = source.find(needle, from)) != std::string::npos) {
            out.append(source, from, at - from).append(replacement);
            from = at + needle.size();
        }
        return out.append(source, from, std::string::npos);
    });
}

bool Toolbox::strtok(const char* text, char delimiter, std::string& out)
{
    return api::guarded<bool>(kSource, "Toolbox::strtok", false, [&]() -> bool {
        static std::string copy;
        static size_t position = std::string::npos;  // npos: exhausted
        if (text) {
            copy = text;
            position = 0;
        }
        if (position == std::string::npos) return false;
        if (delimiter == '\0') {
            out = copy;  // the whole text, from its start: so it was built
            position = std::string::npos;
            return true;
        }
        const size_t end = copy.find(delimiter, position);
        out = copy.substr(position, end == std::string::npos ? std::string::npos : end - position);
        position = end == std::string::npos ? std::string::npos : end + 1;
        return true;
    });
}

bool Toolbox::getCmdValue(const char* command, std::string& out)
{
    return api::guarded<bool>(kSource, "Toolbox::getCmdValue", false, [&]() -> bool {
        // The one place a shell runs a command line: the callers write pipes
        // and redirections into it.
        sys::System& os = sys::current();
        runlog::Timed timed(command ? command : "");
        FILE* pipe = command ? os.popen(command, "r") : nullptr;
        if (!pipe) return false;
        char line[255];
        const bool got = std::fgets(line, sizeof line - 1, pipe) != nullptr;
        timed.setStatus(runlog::exitStatus(os.pclose(pipe)));
        if (got) out = line;
        return got;
    });
}

bool Toolbox::getCmdValue2(const char* command, std::string& out) { return getCmdValue(command, out); }

bool Toolbox::pathExists(const char* path)
{
    struct stat st;
    return path && ::stat(path, &st) == 0;
}

bool Toolbox::getZoneName(std::string& out)
{
    return api::guarded<bool>(kSource, "Toolbox::getZoneName", false, [&]() -> bool {
        std::string line;
        // ps's command prints its second output line: the value under ps's header.
        const long pid = static_cast<long>(sys::current().getpid());
        if (!getCmdValue2(sys::solaris::line(sys::solaris::Id::Zonename).c_str(), line) &&
            !getCmdValue(sys::solaris::processZone(pid).c_str(), line))
            return false;
        // Whatever the command printed is the answer, even a blank line: only a
        // command that gave nothing at all says there are no zones.
        out = trim(line.c_str());
        return true;
    });
}

bool Toolbox::getZoneId(long& id)
{
    return api::guarded<bool>(kSource, "Toolbox::getZoneId", false, [&]() -> bool {
        std::string line;
        if (!getCmdValue(sys::solaris::processZoneId(static_cast<long>(sys::current().getpid())).c_str(), line))
            return false;
        str2long(trim(line.c_str()).c_str(), id, 0);
        return true;  // even when the line was no number: so it was built
    });
}
