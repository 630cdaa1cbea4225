// Solaris: the raw-disk directory, the mount table, the ZFS pools under
// the mounts, and the Fibre Channel ports of "fcinfo hba-port". Each
// command is bounded by a time-out.
#if defined(__sun)

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>

#include "common/sys/System.h"
#include "probes/diskscan/RawDisks.h"
#include "probes/diskscan/Scan.h"

namespace diskscan {
namespace {

const int kCommandSeconds = 60;

std::string output(const std::vector<std::string>& argv)
{
    std::vector<std::string> lines;
    std::string text;
    if (sys::platform().runCommand(argv, kCommandSeconds, lines) < 0) return text;
    for (const std::string& line : lines) text += line + "\n";
    return text;
}

}  // namespace

bool gatherScan(Scan& scan, std::string& error, FILE* debug)
{
    const std::map<std::string, std::string> idOf = reportedDiskPaths(sys::platform());
    scan.hbas = parseFcinfoHbaPort(output({"/usr/sbin/fcinfo", "hba-port"}));
    for (const auto& disk : idOf) {
        DiskFact f;
        f.id = disk.second;
        const std::string controller = disk.first.substr(0, disk.first.find('t'));
        for (const HbaPort& h : scan.hbas) {
            if (h.id != controller) continue;
            f.san = f.viaHba = true;
            f.hbaId = h.id;
            f.hbaWwnn = h.wwnn;
            f.hbaWwpn = h.wwpn;
            // A fabric target's port name is the target part of the disk's name.
            // cNtTARGETdM: nothing to take from a name without a target (c0d0).
            const size_t t = controller.size(), d = disk.first.rfind('d');
            if (t < disk.first.size() && d != std::string::npos && d > t + 1 && d - t - 1 == 16)
                f.wwpn = disk.first.substr(t + 1, 16);
        }
        if (debug) std::fprintf(debug, "disk %s san %d\n", f.id.c_str(), f.san ? 1 : 0);
        scan.disks.push_back(f);
    }

    std::ifstream mnttab("/etc/mnttab");
    std::ostringstream text;
    text << mnttab.rdbuf();
    std::map<std::string, std::vector<std::string>> pools, metadevices;
    bool poolsRead = false, metadevicesRead = false;
    for (const Mount& m : parseSolarisMounts(text.str())) {
        PartitionFact p{m.mountPoint, m.special, m.type, {}};
        std::vector<std::string> devices;
        if (m.special.compare(0, 9, "/dev/dsk/") == 0) {
            devices.push_back(m.special.substr(9));
        } else if (m.special.compare(0, 12, "/dev/md/dsk/") == 0) {
            // A metadevice: its mirrors and stripes down to their slices.
            if (!metadevicesRead)
                metadevices = parseMetastat(output({"/usr/sbin/metastat", "-p"})), metadevicesRead = true;
            std::vector<std::string> pending{m.special.substr(12)};
            for (size_t i = 0; i < pending.size() && i < 1024; ++i) {
                const auto it = metadevices.find(pending[i]);
                if (it == metadevices.end())
                    devices.push_back(pending[i]);
                else
                    pending.insert(pending.end(), it->second.begin(), it->second.end());
            }
        } else if (m.type == "zfs") {
            if (!poolsRead) pools = parseZpoolStatus(output({"/usr/sbin/zpool", "status"})), poolsRead = true;
            const auto it = pools.find(m.special.substr(0, m.special.find('/')));
            if (it != pools.end()) devices = it->second;
        } else {
            continue;  // no disk under it (proc, tmpfs, nfs, ...)
        }
        for (const std::string& device : devices) {
            const auto it = idOf.find(diskOf(device));
            if (it != idOf.end() && std::find(p.disks.begin(), p.disks.end(), it->second) == p.disks.end())
                p.disks.push_back(it->second);
        }
        if (debug) std::fprintf(debug, "mount %s on %s: %zu disks\n", m.special.c_str(), m.mountPoint.c_str(), p.disks.size());
        scan.partitions.push_back(p);
    }
    if (scan.disks.empty() && scan.partitions.empty() && scan.hbas.empty()) {
        error = "no disk, mount or adapter could be read";
        return false;
    }
    return true;
}

}  // namespace diskscan

#endif  // __sun
