#include "support/Program.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/Machine.h"

namespace testsupport {

namespace {
std::string quote(const std::string& word)
{
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}
}  // namespace

std::string invscanProgram()
{
    const char* dir = std::getenv("INVSCAN_BIN_DIR");
    const std::string program = std::string(dir ? dir : INVSCAN_BIN_DIR) + "/invscan";
    return access(program.c_str(), X_OK) == 0 ? program : std::string();
}

ProgramResult runInvscan(const std::vector<std::string>& args, const TempDir& temp)
{
    std::string command = quote(invscanProgram());
    for (const std::string& arg : args) command += " " + quote(arg);
    const std::string out = temp.path() + "/.out", err = temp.path() + "/.err";
    command += " >" + quote(out) + " 2>" + quote(err) + " </dev/null";
    ProgramResult result;
    const int status = std::system(command.c_str());
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = readFile(out);
    result.err = readFile(err);
    return result;
}

std::string copyMachine(const std::string& machine, const TempDir& temp, const std::string& name)
{
    const std::string to = temp.path() + "/" + name;
    std::filesystem::copy(machineDir(machine), to, std::filesystem::copy_options::recursive);
    return to;
}

bool replaceInFile(const std::string& path, const std::string& from, const std::string& to)
{
    std::string text = readFile(path);
    size_t at = text.find(from);
    if (from.empty() || at == std::string::npos) return false;
    for (; at != std::string::npos; at = text.find(from, at + to.size())) text.replace(at, from.size(), to);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    return true;
}

}  // namespace testsupport
