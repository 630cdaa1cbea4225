#include "framework/NimCfg.h"

#include <fstream>
#include <map>

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
