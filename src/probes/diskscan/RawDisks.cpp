#include "probes/diskscan/RawDisks.h"

#include <fcntl.h>

#include <cstdlib>
#include <cstring>

namespace diskscan {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isShortForm(const std::string& name)
{
    if (name.size() < 8) return false;
    for (size_t i = 0; i < 8; i += 2)
        if (name[i] != "ctds"[i / 2] || !isDigit(name[i + 1])) return false;
    return true;
}

// The slice the path names, or -1 (p0 names, and names without a slice).
int sliceOf(const std::string& path)
{
    const size_t s = path.rfind('s');
    if (s == std::string::npos) return -1;
    const int slice = std::atoi(path.c_str() + s + 1);
    return slice > 0 || (slice == 0 && s + 1 < path.size() && path[s + 1] == '0') ? slice : -1;
}

bool namesWholeDisk(sys::System& os, const std::string& path)
{
    const int fd = os.open(path.c_str(), O_RDONLY);
    if (fd < 0) return false;
    vtoc label{};
    const bool labelled = os.ioctl(fd, DKIOCGVTOC, &label) == 0;
    os.close(fd);
    if (!labelled) return false;
    const int slice = sliceOf(path);
    return slice < 0 || slice >= label.v_nparts || slice >= V_NUMPAR || label.v_part[slice].p_tag == V_BACKUP;
}

}  // namespace

std::string diskOf(const std::string& name)
{
    const size_t d = name.rfind('d');
    if (d == std::string::npos || d == 0) return name;
    size_t end = d + 1;
    while (end < name.size() && isDigit(name[end])) ++end;
    return name.substr(0, end);
}

std::map<std::string, std::string> reportedDiskPaths(sys::System& os)
{
    std::map<std::string, std::string> paths;
    sys::Dir* dir = os.opendir("/dev/rdsk");
    if (!dir) return paths;
    std::string last;
    while (const char* entry = os.readdir(dir)) {
        const std::string name = entry;
        if (name == "." || name == "..") continue;
        const bool shortForm = isShortForm(name);
        if (shortForm && name.compare(0, 6, last) == 0) continue;
        const std::string path = "/dev/rdsk/" + name;
        if (!paths.count(diskOf(name)) && namesWholeDisk(os, path)) paths[diskOf(name)] = path;
        if (shortForm) last = name.substr(0, 6);
    }
    os.closedir(dir);
    return paths;
}

}  // namespace diskscan
