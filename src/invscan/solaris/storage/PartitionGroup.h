#pragma once
// "Partition": one row a mounted file system of the mount table, with its
// sizes from statvfs; pseudo file systems are left out.
#include <string>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;

class INVSCAN_API PartitionGroup : public KorGroup {
public:
    PartitionGroup();
    KorTable* getTable() override;
};

// One line of the mount table: special, mount point, type, options.
struct MountEntry {
    std::string special, mountPoint, type, options;
};
// The tab-separated lines of /etc/mnttab; lines with fewer than three fields are skipped.
std::vector<MountEntry> parseMountTable(const std::string& text);

// What a file system is, from its type, device and mount point.
struct FileSystemKind {
    bool shown = false;        // false: a pseudo file system, left out
    unsigned long partType = 0;   // the catalogue's partition types
    unsigned long mediaType = 0;  // the catalogue's media types
    int fsTypeId = -1;            // the partition-type id the catalogue names; -1: none fits
};
FileSystemKind classifyMount(const MountEntry& m);

struct PartitionRow {
    MountEntry mount;
    FileSystemKind kind;
    bool sized = false;
    unsigned long long totalBytes = 0, freeBytes = 0;
    unsigned long long physicalBytes = 0;  // the slice's size, where a disk label tells it
    std::string server, serverPath;        // "host:/path" of a remote mount
};

std::vector<PartitionRow> gatherPartitions(sys::System& os, const std::vector<MountEntry>& mounts);
void shapePartitionRows(const std::vector<PartitionRow>& rows, KorTable& table);
