#include "support/Fixtures.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace testsupport {

std::string fixturePath(const std::string& kind)
{
    const std::string dir = std::string(INVSCAN_FIXTURES_DIR) + "/" + kind;
    struct stat st {};
    return stat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? dir : std::string();
}

std::string captureText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    const std::string all = text.str();
    const std::string marker = "#==== END OF PROVENANCE HEADER ====";
    const size_t at = all.find(marker);
    if (at == std::string::npos) return all;
    const size_t next = all.find('\n', at);
    return next == std::string::npos ? std::string() : all.substr(next + 1);
}

bool inCI()
{
    const char* ci = std::getenv("CI");
    return ci && std::strcmp(ci, "true") == 0;
}

}  // namespace testsupport
