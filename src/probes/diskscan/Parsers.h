#pragma once
// Pure readers of what the operating system says about mounts, pools and
// Fibre Channel ports, each over captured text.
#include <map>
#include <string>
#include <vector>

namespace diskscan {

struct Mount {
    std::string special;     // what is mounted: a device, a pool's dataset, "proc"
    std::string mountPoint;
    std::string type;
    int major = -1, minor = -1;  // the device numbers, where the text gives them
};

// Linux /proc/self/mountinfo ("36 35 98:0 / /mnt rw - ext4 /dev/sda1 rw"),
// with its octal escapes (\040 a blank) undone.
std::vector<Mount> parseMountInfo(const std::string& text);
// Solaris /etc/mnttab (tab-separated: special, mount point, type, options,
// time) or "mount -v" ("special on /point type ufs options on date").
std::vector<Mount> parseSolarisMounts(const std::string& text);

struct HbaPort {
    std::string id, description, vendor, model, type, serial, speed, state, wwnn, wwpn;
};
// "fcinfo hba-port": one port per "HBA Port WWN:" block. Id is the
// controller of "OS Device Name" (/dev/cfg/c2 -> c2); a serial "not
// available" is none.
std::vector<HbaPort> parseFcinfoHbaPort(const std::string& text);

// "zpool status": each pool's devices that hold its data (logs too; cache
// and spare devices hold none of it), in the order printed.
std::map<std::string, std::vector<std::string>> parseZpoolStatus(const std::string& text);

// "metastat -p": each metadevice's parts, in order: its submirrors or
// sub-metadevices ("d12") and its slices ("c0t0d0s1").
std::map<std::string, std::vector<std::string>> parseMetastat(const std::string& text);

}  // namespace diskscan
