#if defined(__linux__)

#include "common/sys/LinuxDisks.h"
#include "common/sys/SolarisCommands.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

namespace sys {
namespace linuxdisks {
namespace {

// A small sysfs file's text, trimmed of surrounding blanks; empty when unreadable.
std::string attribute(const std::string& path)
{
    std::ifstream in(path);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(std::string(" \t\r\n\0", 5)) - first + 1);
}

std::string linkName(const std::string& path)
{
    char target[4096];
    const ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
    if (n <= 0) return std::string();
    target[n] = '\0';
    const char* slash = std::strrchr(target, '/');
    return slash ? slash + 1 : target;
}

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::vector<std::string> names(const std::string& dir)
{
    std::vector<std::string> out;
    if (DIR* d = ::opendir(dir.c_str())) {
        while (const dirent* e = ::readdir(d))
            if (e->d_name[0] != '.') out.push_back(e->d_name);
        ::closedir(d);
    }
    std::sort(out.begin(), out.end());
    return out;
}

// The unit serial number page (0x80) the kernel keeps for a SCSI disk.
std::string serialFromVpd(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (page.size() < 4 || static_cast<unsigned char>(page[1]) != 0x80) return std::string();
    const size_t length = std::min<size_t>(static_cast<unsigned char>(page[3]), page.size() - 4);
    std::string serial = page.substr(4, length);
    serial.erase(0, serial.find_first_not_of(' '));
    serial.erase(serial.find_last_not_of(" \0", std::string::npos, 2) + 1);
    return serial;
}

// A PCI or virtio id ("0x1af4") is no vendor's name.
std::string nameOrEmpty(const std::string& text) { return text.compare(0, 2, "0x") == 0 ? std::string() : text; }

void put(std::string& area, size_t at, const std::string& text, size_t width)
{
    area.replace(at, width, (text + std::string(width, ' ')).substr(0, width));
}

// "%.2f" of bytes / 10^9, without the locale's decimal comma.
std::string gigabytes(unsigned long long bytes)
{
    const unsigned long long hundredths = (bytes + 5000000ULL) / 10000000ULL;
    char text[48];
    std::snprintf(text, sizeof text, "%llu.%02lluGB", hundredths / 100, hundredths % 100);
    return text;
}

}  // namespace

bool readDisk(const std::string& sysfs, const std::string& name, Disk& d)
{
    const std::string dir = sysfs + "/block/" + name;
    // Floppies are not raw disks: Solaris keeps them apart (/dev/rdiskette).
    if (name.empty() || name.find('/') != std::string::npos || !exists(dir + "/device") ||
        attribute(dir + "/hidden") == "1" || name.compare(0, 2, "fd") == 0)
        return false;
    d = Disk();
    d.kernelName = name;
    std::sscanf(attribute(dir + "/dev").c_str(), "%d:%d", &d.major, &d.minor);
    const std::string address = linkName(dir + "/device");
    d.scsi = std::sscanf(address.c_str(), "%d:%d:%d:%d", &d.host, &d.channel, &d.target, &d.lun) == 4;
    const std::string type = attribute(dir + "/device/type");
    d.optical = type == "5" || name.compare(0, 2, "sr") == 0;
    d.driver = d.scsi ? attribute(sysfs + "/class/scsi_host/host" + std::to_string(d.host) + "/proc_name")
                      : linkName(dir + "/device/driver");
    d.vendor = nameOrEmpty(attribute(dir + "/device/vendor"));
    d.model = attribute(dir + "/device/model");
    d.revision = attribute(dir + "/device/rev");
    if (d.revision.empty()) d.revision = attribute(dir + "/device/firmware_rev");
    d.serial = attribute(dir + "/serial");
    if (d.serial.empty()) d.serial = attribute(dir + "/device/serial");
    if (d.serial.empty()) d.serial = serialFromVpd(dir + "/device/vpd_pg80");
    d.bytes = std::strtoull(attribute(dir + "/size").c_str(), nullptr, 10) * 512ULL;  // always 512-byte units
    const unsigned long size = std::strtoul(attribute(dir + "/queue/logical_block_size").c_str(), nullptr, 10);
    if (size >= 512 && size <= 65536) d.blockSize = static_cast<unsigned>(size);
    // The CD/DVD reader knows drives by their Solaris names only.
    char solarisName[64];
    std::snprintf(solarisName, sizeof solarisName, "c%dt%dd%ds2", d.host, d.target, d.lun);
    d.entry = d.optical && d.scsi ? solarisName : name;
    return true;
}

std::vector<Disk> listDisks(const std::string& sysfs)
{
    std::vector<Disk> disks;
    Disk d;
    for (const std::string& name : names(sysfs + "/block"))
        if (readDisk(sysfs, name, d)) disks.push_back(d);
    return disks;
}

bool findDisk(const std::string& entry, Disk& d, const std::string& sysfs)
{
    // A disk's entry is its kernel name: only a drive's Solaris name needs the list.
    if (readDisk(sysfs, entry, d)) return d.entry == entry;
    for (const Disk& each : listDisks(sysfs))
        if (each.optical && each.entry == entry) return d = each, true;
    return false;
}

void controllerInfo(const Disk& d, dk_cinfo& out)
{
    std::memset(&out, 0, sizeof out);
    std::snprintf(out.dki_cname, sizeof out.dki_cname, "%s", d.driver.c_str());
    std::snprintf(out.dki_dname, sizeof out.dki_dname, "%s", d.optical ? "sr" : d.scsi ? "sd" : d.driver.c_str());
    // Disks behind a SCSI host are what sd drives on Solaris; the others
    // (virtio, NVMe, MMC) are attached directly.
    out.dki_ctype = static_cast<ushort_t>(d.optical ? DKC_CDROM : d.scsi ? DKC_SCSI_CCS : DKC_DIRECT);
    // A SCSI disk's address; another's driver (major) and unit (minor) numbers.
    out.dki_cnum = static_cast<ushort_t>(d.scsi ? d.host : d.major);
    out.dki_unit = static_cast<uint_t>(d.scsi ? d.target : d.minor);
    out.dki_slave = static_cast<uint_t>(d.scsi ? d.lun : 0);
    out.dki_partition = 2;
    out.dki_maxtransfer = 256;
}

// The geometry Solaris gives a disk that has none of its own: 255 heads of
// 63 sectors, cylinders as many as fit in the field.
void geometry(const Disk& d, dk_geom& out)
{
    std::memset(&out, 0, sizeof out);
    const unsigned long long cylinders = d.bytes / d.blockSize / (255 * 63);
    out.dkg_ncyl = static_cast<unsigned short>(std::min<unsigned long long>(cylinders, 65533));
    out.dkg_pcyl = static_cast<unsigned short>(std::min<unsigned long long>(cylinders, 65535));
    out.dkg_acyl = static_cast<unsigned short>(out.dkg_pcyl - out.dkg_ncyl);
    out.dkg_nhead = 255;
    out.dkg_nsect = 63;
    out.dkg_intrlv = 1;
}

void label(const Disk& d, vtoc& out)
{
    std::memset(&out, 0, sizeof out);
    dk_geom g;
    geometry(d, g);
    out.v_sanity = VTOC_SANE;
    out.v_version = V_VERSION;
    out.v_sectorsz = static_cast<ushort_t>(d.blockSize > 0xFFFF ? 0 : d.blockSize);
    out.v_nparts = V_NUMPAR;
    out.v_part[2].p_tag = V_BACKUP;  // the whole disk, as every label has it
    out.v_part[2].p_size = static_cast<int32_t>(std::min<unsigned long long>(d.bytes / d.blockSize, 0x7FFFFFFF));
    std::string model = d.model.empty() ? std::string("DEFAULT") : d.model;
    std::replace(model.begin(), model.end(), ' ', '-');
    std::snprintf(out.v_asciilabel, sizeof out.v_asciilabel, "%s cyl %u alt %u hd %u sec %u", model.c_str(),
                  static_cast<unsigned>(g.dkg_ncyl), static_cast<unsigned>(g.dkg_acyl),
                  static_cast<unsigned>(g.dkg_nhead), static_cast<unsigned>(g.dkg_nsect));
}

bool emulateScsi(const Disk& d, uscsi_cmd& cmd)
{
    const auto* cdb = reinterpret_cast<const unsigned char*>(cmd.uscsi_cdb);
    std::string answer;
    if (cdb && cmd.uscsi_cdblen >= 6 && cdb[0] == 0x12 && (cdb[1] & 1) == 0) {  // standard INQUIRY
        answer.assign(96, ' ');
        answer[0] = static_cast<char>(d.optical ? 5 : 0);
        answer[1] = static_cast<char>(d.optical ? 0x80 : 0);  // removable medium
        answer[2] = 5;
        answer[3] = 2;
        answer[4] = 91;
        answer[5] = answer[6] = answer[7] = 0;
        put(answer, 8, d.vendor, 8);
        put(answer, 16, d.model, 16);
        put(answer, 32, d.revision, 4);
        put(answer, 36, d.serial, 20);
        answer.resize(std::min<size_t>(answer.size(), cdb[4]));
    } else if (cdb && cmd.uscsi_cdblen >= 10 && cdb[0] == 0x25 && d.bytes > 0) {  // READ CAPACITY(10)
        const unsigned long long last = d.bytes / d.blockSize - 1;
        const uint32_t lba = last > 0xFFFFFFFFULL ? 0xFFFFFFFFu : static_cast<uint32_t>(last);
        const unsigned char bytes[8] = {static_cast<unsigned char>(lba >> 24), static_cast<unsigned char>(lba >> 16),
                                        static_cast<unsigned char>(lba >> 8),  static_cast<unsigned char>(lba),
                                        static_cast<unsigned char>(d.blockSize >> 24),
                                        static_cast<unsigned char>(d.blockSize >> 16),
                                        static_cast<unsigned char>(d.blockSize >> 8),
                                        static_cast<unsigned char>(d.blockSize)};
        answer.assign(reinterpret_cast<const char*>(bytes), sizeof bytes);
    } else {
        // Mode pages and everything else: the kernel keeps no such facts.
        cmd.uscsi_status = 2;  // CHECK CONDITION
        errno = EIO;
        return false;
    }
    const size_t n = std::min(answer.size(), static_cast<size_t>(cmd.uscsi_buflen));
    if (cmd.uscsi_bufaddr && n) std::memcpy(cmd.uscsi_bufaddr, answer.data(), n);
    cmd.uscsi_resid = cmd.uscsi_buflen - n;
    cmd.uscsi_status = 0;
    return true;
}

bool answerCommand(const std::string& command, const std::string& sysfs, std::string& output)
{
    output.clear();
    const solaris::Entry* e = solaris::findShell(command);
    if (!e) return false;
    if (e->id == solaris::Id::Iostat || e->id == solaris::Id::IostatOnPath) {
        // What iostat says of each device that the readers use: its name,
        // identity and size. Linux keeps no error counters of this kind.
        for (const Disk& d : listDisks(sysfs)) {
            const std::string name = d.entry.substr(0, d.entry.size() - (d.entry == d.kernelName ? 0 : 2));
            char text[512];
            std::snprintf(text, sizeof text, "%s\nVendor: %-8s Product: %-16s Revision: %-4s Serial No: %s \n",
                          name.c_str(), d.vendor.c_str(), d.model.c_str(), d.revision.c_str(), d.serial.c_str());
            output += text;
            output += "Size: " + gigabytes(d.bytes) + " <" + std::to_string(d.bytes) + " bytes>\n";
        }
        return true;
    }
    // Solaris shows a floppy drive as /dev/diskette, and a PCMCIA adapter as /dev/pcmcia.
    if (e->id == solaris::Id::DevDiskListing) {
        for (const std::string& name : names(sysfs + "/block"))
            if (name.compare(0, 2, "fd") == 0) output += "diskette -> /dev/" + name + "\n";
        return true;
    }
    if (e->id == solaris::Id::DevPcmciaListing) {
        for (const std::string& name : names(sysfs + "/class/pcmcia_socket"))
            output += "pcmcia -> /sys/class/pcmcia_socket/" + name + "\n";
        return true;
    }
    return false;
}

}  // namespace linuxdisks
}  // namespace sys

#endif  // __linux__
