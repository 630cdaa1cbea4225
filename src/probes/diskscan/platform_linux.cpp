// Linux: the seam's view of the disks, the mounts of /proc/self/mountinfo
// traced through sysfs (partitions to their disk, device-mapper, md and LVM
// volumes to the disks under them), and the Fibre Channel classes.
#if defined(__linux__)

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "common/sys/LinuxDisks.h"
#include "probes/diskscan/platform_linux.h"

namespace diskscan {
namespace {

std::string readText(const std::string& path)
{
    std::ifstream in(path);
    std::ostringstream out;
    out << in.rdbuf();
    std::string text = out.str();
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

std::vector<std::string> entries(const std::string& dir)
{
    std::vector<std::string> out;
    if (DIR* d = opendir(dir.c_str())) {
        while (const dirent* e = readdir(d))
            if (e->d_name[0] != '.') out.push_back(e->d_name);
        closedir(d);
    }
    std::sort(out.begin(), out.end());
    return out;
}

std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string realPath(const std::string& path)
{
    char resolved[4096];
    return realpath(path.c_str(), resolved) ? std::string(resolved) : std::string();
}

// The whole disks under a block device: itself, its disk when it is a
// partition, the disks under its slaves when it is a volume.
void disksUnder(const std::string& sysDir, std::set<std::string>& kernelNames, int depth = 0)
{
    if (sysDir.empty() || depth > 16) return;
    const std::vector<std::string> slaves = entries(sysDir + "/slaves");
    if (!slaves.empty()) {
        for (const std::string& s : slaves) disksUnder(realPath(sysDir + "/slaves/" + s), kernelNames, depth + 1);
    } else if (access((sysDir + "/partition").c_str(), F_OK) == 0) {
        disksUnder(sysDir.substr(0, sysDir.rfind('/')), kernelNames, depth + 1);
    } else {
        kernelNames.insert(lastPart(sysDir));
    }
}

}  // namespace

void gatherLinux(const std::string& sysfs, const std::string& mountinfo, Scan& scan, FILE* debug)
{
    const std::vector<sys::linuxdisks::Disk> disks = sys::linuxdisks::listDisks(sysfs);
    std::map<std::string, std::string> idOf;  // kernel name -> Id
    for (const sys::linuxdisks::Disk& d : disks) {
        DiskFact f;
        f.id = "/dev/rdsk/" + d.entry;
        idOf[d.kernelName] = f.id;
        const std::string fcHost = sysfs + "/class/fc_host/host" + std::to_string(d.host);
        if (d.scsi && access(fcHost.c_str(), F_OK) == 0) {
            const std::string target = sysfs + "/class/fc_transport/target" + std::to_string(d.host) + ":" +
                                       std::to_string(d.channel) + ":" + std::to_string(d.target);
            f.san = true;
            f.wwnn = readText(target + "/node_name");
            f.wwpn = readText(target + "/port_name");
            f.viaHba = true;
            f.hbaId = "host" + std::to_string(d.host);
            f.hbaWwnn = readText(fcHost + "/node_name");
            f.hbaWwpn = readText(fcHost + "/port_name");
        }
        if (debug) std::fprintf(debug, "disk %s (%s) san %d\n", f.id.c_str(), d.kernelName.c_str(), f.san ? 1 : 0);
        scan.disks.push_back(f);
    }

    for (const Mount& m : parseMountInfo(mountinfo)) {
        int major = m.major, minor = m.minor;
        struct stat st;
        // btrfs and others show an anonymous device number: ask the device itself.
        if (major == 0 && m.special.compare(0, 5, "/dev/") == 0 && stat(m.special.c_str(), &st) == 0 &&
            S_ISBLK(st.st_mode)) {
            major = static_cast<int>(::major(st.st_rdev));
            minor = static_cast<int>(::minor(st.st_rdev));
        }
        if (major <= 0) continue;  // no block device under it
        const std::string sysDir = realPath(sysfs + "/dev/block/" + std::to_string(major) + ":" + std::to_string(minor));
        if (sysDir.empty()) continue;
        PartitionFact p{m.mountPoint, m.special, m.type, {}};
        std::set<std::string> names;
        disksUnder(sysDir, names);
        for (const std::string& name : names)
            if (idOf.count(name)) p.disks.push_back(idOf[name]);
        if (debug) std::fprintf(debug, "mount %s on %s: %zu disks\n", m.special.c_str(), m.mountPoint.c_str(), p.disks.size());
        scan.partitions.push_back(p);
    }

    for (const std::string& host : entries(sysfs + "/class/fc_host")) {
        const std::string dir = sysfs + "/class/fc_host/" + host;
        HbaPort h;
        h.id = host;
        h.description = readText(dir + "/symbolic_name");
        h.model = h.description.substr(0, h.description.find(' '));
        h.type = readText(dir + "/port_type");
        h.serial = readText(dir + "/serial_number");
        h.speed = readText(dir + "/speed");
        h.state = readText(dir + "/port_state");
        h.wwnn = readText(dir + "/node_name");
        h.wwpn = readText(dir + "/port_name");
        if (debug) std::fprintf(debug, "hba %s %s %s\n", h.id.c_str(), h.wwpn.c_str(), h.state.c_str());
        scan.hbas.push_back(h);
    }
}

bool gatherScan(Scan& scan, std::string& error, FILE* debug)
{
    gatherLinux("/sys", readText("/proc/self/mountinfo"), scan, debug);
    if (scan.disks.empty() && scan.partitions.empty() && scan.hbas.empty()) {
        error = "no disk, mount or adapter could be read";
        return false;
    }
    return true;
}

}  // namespace diskscan

#endif  // __linux__
