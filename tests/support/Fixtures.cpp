#include "support/Fixtures.h"

#include <sys/stat.h>

#include <cstdlib>
#include <cstring>

namespace testsupport {

std::string fixturePath(const std::string& kind)
{
    const std::string dir = std::string(INVSCAN_FIXTURES_DIR) + "/" + kind;
    struct stat st {};
    return stat(dir.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? dir : std::string();
}

bool inCI()
{
    const char* ci = std::getenv("CI");
    return ci && std::strcmp(ci, "true") == 0;
}

}  // namespace testsupport
