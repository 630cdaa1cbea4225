#pragma once
// The built invscan run as a user would, and simulated machines copied into
// a temporary folder for a test to edit.
#include <string>
#include <vector>

#include "support/TempDir.h"

namespace testsupport {

struct ProgramResult {
    int code = -1;  // exit status; -1 when it did not exit
    std::string out, err;
};

// The built program (INVSCAN_BIN_DIR from the environment or the build); empty when it is not there.
std::string invscanProgram();
// Runs it with `args`, standard input empty; its output is kept in `temp` meanwhile.
ProgramResult runInvscan(const std::vector<std::string>& args, const TempDir& temp);
// A copy of tests/machines/`machine` at temp/`name`; its path.
std::string copyMachine(const std::string& machine, const TempDir& temp, const std::string& name);
// Replaces every `from` in the file with `to`; false, writing nothing, when there is none.
bool replaceInFile(const std::string& path, const std::string& from, const std::string& to);

}  // namespace testsupport
