#include "invscan/com/InstalledConfig.h"

#include <sys/stat.h>

#include <cstdlib>

#include "framework/NimCfg.h"
#include "framework/Trace.h"

#ifndef INVSCAN_INSTALLED_CONFIG_DIR
#define INVSCAN_INSTALLED_CONFIG_DIR ""
#endif

namespace hwconfig {

namespace {

const char* const SOURCE = "./../../../src/invscan/com/InstalledConfig";

bool isFile(const std::string& path)
{
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

}  // namespace

std::string installedFile(const std::string& asked)
{
    if (NimCfg::hasKey("config_dir")) return std::string();
    const size_t slash = asked.rfind('/');
    const std::string name = slash == std::string::npos ? asked : asked.substr(slash + 1);
    if (name.empty()) return std::string();

    std::string looked;
    const char* home = std::getenv("NIM_HOMEDIR");
    const std::string homeConfig = home && *home ? std::string(home) + "/config" : std::string();
    for (const std::string& dir : {homeConfig, std::string(INVSCAN_INSTALLED_CONFIG_DIR)}) {
        if (dir.empty()) continue;
        const std::string path = dir + "/" + name;
        if (isFile(path)) {
            CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, SOURCE, "installedFile",
                                   "hardware config_dir is not set and %s is not there: reading the installed %s",
                                   asked.c_str(), path.c_str());
            return path;
        }
        looked += (looked.empty() ? "" : ", ") + path;
    }
    CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, SOURCE, "installedFile",
                           "hardware ERROR! config_dir is not set and no configuration was found at %s%s%s "
                           "(set config_dir, or NIM_HOMEDIR to the scanner's home)",
                           asked.c_str(), looked.empty() ? "" : ", ", looked.c_str());
    return std::string();
}

}  // namespace hwconfig
