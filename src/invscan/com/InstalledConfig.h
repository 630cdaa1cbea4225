#pragma once
// Where the hardware configuration file is found when the host said nothing.
#include <string>

namespace hwconfig {

// The installed counterpart of `asked`, the factory's own path for a host
// that set no "config_dir" (that path is then "/" and the file name): the
// file of that name under $NIM_HOMEDIR/config, else in the folder the build
// installs the configuration in. Empty when "config_dir" is set, or when no
// installed file is there. Either way the trace says where it looked, so a
// host that sets only NIM_HOMEDIR learns why its configuration was or was
// not read.
std::string installedFile(const std::string& asked);

}  // namespace hwconfig
