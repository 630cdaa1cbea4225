#include "support/Machine.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"

namespace testsupport {

std::string machineDir(const std::string& name) { return std::string(INVSCAN_SOURCE_DIR) + "/tests/machines/" + name; }

std::vector<std::string> machineNames()
{
    std::vector<std::string> names;
    DIR* d = opendir((std::string(INVSCAN_SOURCE_DIR) + "/tests/machines").c_str());
    if (!d) return names;
    while (dirent* e = readdir(d)) {
        const std::string name = e->d_name;
        if (name[0] != '.' && access((machineDir(name) + "/machine.txt").c_str(), R_OK) == 0) names.push_back(name);
    }
    closedir(d);
    std::sort(names.begin(), names.end());
    return names;
}

std::string machineTestName(const ::testing::TestParamInfo<std::string>& param)
{
    std::string name = param.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

MachineInUse::MachineInUse(const std::string& dir)
{
    if (!loadMachine(dir, m_machine, m_error)) {
        if (m_error.empty()) m_error = "cannot load " + dir;
        return;
    }
    sys::setCurrent(&m_machine);
    vtSetProbeTap(&m_machine);
    NimCfg::setKey(String("config_dir"), String(dir + "/config"));
}

MachineInUse::~MachineInUse()
{
    if (!m_error.empty()) return;
    vtSetProbeTap(nullptr);
    sys::setCurrent(nullptr);
}

}  // namespace testsupport
