#include "framework/NimCfg.h"

#include <map>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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
// One line of a configuration file: a comment, blank, or key=value.
bool takeLine(const std::string& line, const std::string& path, int number, std::string& problem)
{
    const std::string trimmed = utils::trimBoth(line);
    if (trimmed.empty() || trimmed[0] == '#' || NimCfg::setFromAssignment(trimmed)) return true;
    problem = path + ":" + std::to_string(number) + ": expected key=value";
    return false;
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
    // Configuration is small: a file past these is not one.
    const size_t maxBytes = 1024 * 1024, maxLine = 4096;
    std::FILE* in = utils::openRegularFile(path);
    if (!in) {
        if (error) *error = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    std::string problem, line;
    size_t total = 0;
    int number = 1;
    for (int c; problem.empty() && (c = std::fgetc(in)) != EOF;) {
        if (++total > maxBytes) {
            problem = path + ": larger than " + std::to_string(maxBytes) + " bytes";
        } else if (c != '\n') {
            line.push_back(static_cast<char>(c));
            if (line.size() > maxLine)
                problem = path + ":" + std::to_string(number) + ": longer than " + std::to_string(maxLine) + " characters";
            continue;
        }
        if (problem.empty() && !takeLine(line, path, number++, problem)) break;
        line.clear();
    }
    if (problem.empty() && std::ferror(in)) problem = "cannot read " + path;
    if (problem.empty() && !line.empty()) takeLine(line, path, number, problem);
    std::fclose(in);
    if (!problem.empty() && error) *error = problem;
    return problem.empty();
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
