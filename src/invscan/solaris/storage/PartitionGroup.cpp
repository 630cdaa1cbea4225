#include "invscan/solaris/storage/PartitionGroup.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <set>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/PartitionGroup";
const char* const kFunction = "getTable()";
#define PART_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

const char* const kMountTable = sys::solaris::path(sys::solaris::Id::MountTable);
constexpr size_t kMountTableLimit = 16 << 20;  // thousands of zones' mounts fit

// Kernel views, not storage: never a row.
const std::set<std::string> kPseudo = {
    "proc",     "sysfs",      "devfs",   "dev",       "devpts",    "devtmpfs", "ctfs",     "objfs",
    "mntfs",    "sharefs",    "fd",      "lofs",      "autofs",    "cgroup",   "cgroup2",  "securityfs",
    "debugfs",  "tracefs",    "bpf",     "pstore",    "configfs",  "fusectl",  "mqueue",   "hugetlbfs",
    "binfmt_misc", "nsfs",    "rpc_pipefs", "selinuxfs", "efivarfs", "bootfs", "ramfs"};
const std::set<std::string> kRemote = {"nfs", "nfs3", "nfs4", "cifs", "smbfs", "smb3", "afs", "fuse.sshfs"};
const std::set<std::string> kMemory = {"tmpfs", "swap"};
const std::set<std::string> kOptical = {"hsfs", "iso9660", "udf"};
// Where memory file systems hold run-time state rather than files a user keeps.
const char* const kRunTimeDirs[] = {"/dev", "/run", "/var/run", "/system/volatile", "/etc/svc/volatile", "/sys", "/proc"};

bool under(const std::string& path, const char* dir)
{
    const size_t n = std::strlen(dir);
    return path.compare(0, n, dir) == 0 && (path.size() == n || path[n] == '/');
}

bool startsWith(const std::string& text, const char* prefix) { return text.compare(0, std::strlen(prefix), prefix) == 0; }

// The partition-type id of a file-system name: Solaris ones live in a
// Solaris partition, Linux ones in a Linux one.
int fsTypeId(const std::string& type)
{
    static const struct {
        const char* name;
        int id;
    } kIds[] = {{"ufs", 0xBF},    {"zfs", 0xBF},      {"ext2", 0x83},  {"ext3", 0x83},  {"ext4", 0x83},
                {"xfs", 0x83},    {"btrfs", 0x83},    {"jfs", 0x83},   {"reiserfs", 0x83}, {"f2fs", 0x83},
                {"pcfs", 0x0C},   {"vfat", 0x0C},     {"msdos", 0x06}, {"ntfs", 0x07},  {"ntfs3", 0x07},
                {"exfat", 0x07},  {"hfs", 0xAF},      {"hfsplus", 0xAF}};
    for (const auto& k : kIds)
        if (type == k.name) return k.id;
    return -1;
}

// A remote special "host:/path" (NFS) or "//host/share" (SMB).
void splitRemote(const std::string& special, std::string& host, std::string& path)
{
    if (startsWith(special, "//")) {
        const size_t slash = special.find('/', 2);
        host = special.substr(2, slash == std::string::npos ? std::string::npos : slash - 2);
        path = slash == std::string::npos ? std::string() : special.substr(slash);
        const size_t at = host.rfind('@');  // "user@host"
        if (at != std::string::npos) host = host.substr(at + 1);
        return;
    }
    const size_t colon = special.find(':');
    if (colon == std::string::npos || colon == 0) return;
    host = special.substr(0, colon);
    path = special.substr(colon + 1);
}

// The size of the disk slice a block device names ("/dev/dsk/c0t0d0s3"),
// from the raw device's label; 0 when it is not a slice or cannot be read.
unsigned long long sliceBytes(sys::System& os, const std::string& special)
{
    if (!startsWith(special, "/dev/dsk/")) return 0;
    const size_t s = special.rfind('s');
    if (s == std::string::npos || s + 1 >= special.size()) return 0;
    char* end = nullptr;
    const long slice = std::strtol(special.c_str() + s + 1, &end, 10);
    if (*end != '\0' || slice < 0 || slice >= V_NUMPAR) return 0;
    const std::string raw = "/dev/rdsk/" + special.substr(9);
    const int fd = os.open(raw.c_str(), O_RDONLY | O_NDELAY);
    if (fd < 0) return 0;
    struct vtoc label{};
    unsigned long long bytes = 0;
    if (os.ioctl(fd, DKIOCGVTOC, &label) >= 0 && slice < label.v_nparts) {
        const unsigned long long sector = label.v_sectorsz ? label.v_sectorsz : 512;
        bytes = static_cast<unsigned long long>(label.v_part[slice].p_size) * sector;
    }
    os.close(fd);
    return bytes;
}

// The mount option `word`, alone between commas.
bool hasOption(const std::string& options, const char* word)
{
    const std::string wrapped = "," + options + ",";
    return wrapped.find("," + std::string(word) + ",") != std::string::npos;
}

}  // namespace

std::vector<MountEntry> parseMountTable(const std::string& text)
{
    std::vector<MountEntry> out;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::vector<std::string> fields;
        size_t from = start;
        while (from <= end) {
            size_t tab = text.find('\t', from);
            if (tab == std::string::npos || tab > end) tab = end;
            fields.push_back(text.substr(from, tab - from));
            from = tab + 1;
        }
        const size_t lineStart = start;
        start = end + 1;
        if (fields.size() < 3 || fields[0].empty() || fields[1].empty()) {
            // Not special, mount point and type: the line is dropped, and said so.
            if (end > lineStart)
                PART_TRACE(traceMID, "hardware %s '%s'", "unreadable mount-table line dropped:",
                           text.substr(lineStart, end - lineStart).c_str());
            continue;
        }
        MountEntry m;
        m.special = fields[0];
        m.mountPoint = fields[1];
        m.type = fields[2];
        if (fields.size() > 3) m.options = fields[3];
        out.push_back(m);
    }
    return out;
}

FileSystemKind classifyMount(const MountEntry& m)
{
    FileSystemKind k;
    // "ignore" marks what df and mount skip too (automounter and volume manager entries).
    if (kPseudo.count(m.type) || hasOption(m.options, "ignore")) return k;
    if (kMemory.count(m.type)) {
        for (const char* dir : kRunTimeDirs)
            if (under(m.mountPoint, dir)) return k;
    }
    k.shown = true;
    k.fsTypeId = fsTypeId(m.type);
    if (kRemote.count(m.type)) {
        k.partType = PART_TYPE_REMOTE_DRIVE;
        k.mediaType = PART_MEDIA_REMOTE;
        return k;
    }
    const bool volume = m.type == "zfs" || startsWith(m.special, "/dev/md/") || startsWith(m.special, "/dev/vx/") ||
                        startsWith(m.special, "/dev/mapper/") || startsWith(m.special, "/dev/dm-") ||
                        startsWith(m.special, "/dev/md");
    k.partType = volume ? PART_TYPE_LOGICAL_VOLUME : PART_TYPE_LOGICAL_DRIVE;
    if (kOptical.count(m.type))
        k.mediaType = PART_MEDIA_CDROM;
    else if (kMemory.count(m.type))
        k.mediaType = PART_MEDIA_RAM_DISK;
    else
        k.mediaType = PART_MEDIA_LOCAL_DISK;
    return k;
}

std::vector<PartitionRow> gatherPartitions(sys::System& os, const std::vector<MountEntry>& mounts)
{
    std::vector<PartitionRow> rows;
    for (const MountEntry& m : mounts) {
        PartitionRow row;
        row.mount = m;
        row.kind = classifyMount(m);
        if (!row.kind.shown) {
            PART_TRACE(traceMAX, "hardware %s %s %s", "left out:", m.type.c_str(), m.mountPoint.c_str());
            continue;
        }
        if (row.kind.partType == PART_TYPE_REMOTE_DRIVE) splitRemote(m.special, row.server, row.serverPath);
        struct statvfs64 fs{};
        // statvfs of a remote file system waits for its server, with no
        // time-out: one server down would hold the whole scan. Its sizes
        // are left out.
        if (row.kind.partType == PART_TYPE_REMOTE_DRIVE) {
            rows.push_back(row);
            continue;
        }
        if (os.statvfs64(m.mountPoint.c_str(), &fs) == 0) {
            const unsigned long long unit = fs.f_frsize ? fs.f_frsize : fs.f_bsize;
            row.sized = true;
            row.totalBytes = static_cast<unsigned long long>(fs.f_blocks) * unit;
            row.freeBytes = static_cast<unsigned long long>(fs.f_bavail) * unit;
        } else {
            PART_TRACE(traceMID, "hardware %s %s %s", "statvfs failed:", m.mountPoint.c_str(), std::strerror(errno));
        }
        row.physicalBytes = sliceBytes(os, m.special);
        rows.push_back(row);
    }
    return rows;
}

void shapePartitionRows(const std::vector<PartitionRow>& rows, KorTable& table)
{
    unsigned int index = 0;
    for (const PartitionRow& r : rows) {
        RowBuilder row(PARTITION_GROUP, RowBuilder::Undecodable::Shown);
        row.number(PART_INDEX, ++index);
        row.number(PART_TYPE, r.kind.partType);
        row.number(PART_MEDIA_TYPE, r.kind.mediaType);
        row.text(PART_DEVICE_NAME, r.mount.special);
        if (r.physicalBytes) row.number(PART_PHYSICAL_SIZE, r.physicalBytes);
        if (r.kind.fsTypeId >= 0) row.number(PART_FS_TYPE, r.kind.fsTypeId);
        // Both the directory: the access point is what PartitionToStorage rows name.
        row.text(PART_FS_ACCESS_POINT, r.mount.mountPoint);
        row.text(PART_FS_MOUNT_POINT, r.mount.mountPoint);
        if (r.sized) {
            row.number(PART_FS_TOTAL_SIZE, r.totalBytes);
            row.number(PART_FS_FREE_SIZE, r.freeBytes);
        }
        row.textIfAny(PART_SERVER_HOSTNAME, r.server);
        row.textIfAny(PART_SERVER_PATH, r.serverPath);
        row.addTo(table);
    }
}

PartitionGroup::PartitionGroup() : KorGroup(PARTITION_GROUP, 1) {}

KorTable* PartitionGroup::getTable()
{
    return api::guardedTable("PartitionGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PartitionGroup");
        sys::System& os = sys::current();
        std::string text;
        if (!util::readSystemFile(os, kMountTable, text, kMountTableLimit)) {
            PART_TRACE(traceMIN, "hardware %s %s", "ERROR! cannot read", kMountTable);
            return nullptr;
        }
        const std::vector<PartitionRow> rows = gatherPartitions(os, parseMountTable(text));
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapePartitionRows(rows, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "PartitionGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(PARTITION_GROUP, PartitionGroup);
