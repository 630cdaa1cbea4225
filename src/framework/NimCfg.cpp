#include "framework/NimCfg.h"

#include <fstream>
#include <map>

#include <cerrno>
#include <cstdlib>

#include "framework/Trace.h"
#include "framework/utils.h"

namespace {
std::map<std::wstring, std::wstring>& store()
{
    static std::map<std::wstring, std::wstring> keys;
    return keys;
}

// Splits "key = value"; false when there is no '=' or the key is empty.
bool splitAssignment(const std::string& line, std::string& key, std::string& value)
{
    const auto eq = line.find('=');
    if (eq == std::string::npos) return false;
    key = utils::trimBoth(line.substr(0, eq));
    value = utils::trimBoth(line.substr(eq + 1));
    return !key.empty();
}
}  // namespace

String NimCfg::getKey(const String& key)
{
    auto it = store().find(key.wide());
    return it == store().end() ? String() : String(it->second);
}

void NimCfg::setKey(const String& key, const String& value)
{
    store()[key.wide()] = value.wide();
}

bool NimCfg::hasKey(const String& key)
{
    return store().count(key.wide()) != 0;
}

bool NimCfg::setFromAssignment(const std::string& assignment)
{
    std::string key, value;
    if (!splitAssignment(assignment, key, value)) return false;
    setKey(key, value);
    return true;
}

bool NimCfg::loadFile(const std::string& path, std::string* error)
{
    std::ifstream in(path);
    if (!in) {
        if (error) *error = "cannot open " + path;
        return false;
    }
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        const std::string trimmed = utils::trimBoth(line);
        if (trimmed.empty() || trimmed[0] == '#') continue;
        if (!setFromAssignment(trimmed)) {
            if (error) *error = path + ":" + std::to_string(number) + ": expected key=value";
            return false;
        }
    }
    if (in.bad()) {
        if (error) *error = "cannot read " + path;
        return false;
    }
    return true;
}

void NimCfg::clear()
{
    store().clear();
}

int NimCfg::getTimeout()
{
    const std::string text = utils::trimBoth(getKey("hwscanner.timeout").narrow());
    if (text.empty()) return DEFAULT_TIMEOUT;
    char* end = nullptr;
    errno = 0;
    const long seconds = std::strtol(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || seconds < 1 || seconds > MAX_TIMEOUT) {
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, "./../../../src/framework/NimCfg", "getTimeout()",
                               "hardware ERROR! hwscanner.timeout %s is not a number of seconds, using %d",
                               text.c_str(), DEFAULT_TIMEOUT);
        return DEFAULT_TIMEOUT;
    }
    return static_cast<int>(seconds);
}
