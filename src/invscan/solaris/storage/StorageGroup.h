#pragma once
// "Storage": the machine's hard disks, CD/DVD drives, floppy and PCMCIA
// device. Disks come from walking the raw-disk directory and asking each
// device (disk controls, then the SCSI layer); a disk seen under several
// names (slices, multipath) is reported once. CD/DVD drives come from the
// output of "iostat -En".
//
// A scan gathers plain facts per device (StorageScan, one object a scan,
// owning what the scan remembers), then one function shapes them into rows.
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;
struct VtNode;

class INVSCAN_API StorageGroup : public KorGroup {
public:
    StorageGroup();
    // Null when no disk and no CD/DVD row was found, even if a floppy or
    // PCMCIA row was: such a table is discarded on purpose.
    KorTable* getTable() override;
};

// What the diskscan probe says of a disk; all empty when it does not list it.
struct SanFacts {
    std::string isSan;  // "Y" or "N"
    std::string wwnn, wwpn;
    std::string adapter;  // the "Id" of the disk's HBA node
};

struct DiskFacts {
    std::string device;      // the raw path it was found under
    unsigned long type = 0;  // hard disk for SCSI and direct controllers, else unknown
    std::string model, vendor, serial;
    unsigned long cylinders = 0, heads = 0, sectors = 0, sizeMB = 0;
    SanFacts san;
};

// From the drive's lines of "iostat -En".
struct CdFacts {
    std::string vendor, product, serial;
};

struct StorageDevice {
    enum Kind { DISK, CD, FLOPPY, PCMCIA };
    Kind kind = DISK;
    int index = 0;   // the scan's running index: the first device found is 1
    DiskFacts disk;  // DISK only
    CdFacts cd;      // CD only
};

struct StorageFacts {
    bool backupRunning = false;          // a backup holds the tape robot: nothing was asked
    std::vector<StorageDevice> devices;  // in the order found, floppy and PCMCIA last
    // A disk or CD/DVD drive was found: without one no table is reported.
    bool hasDiskOrDrive() const;
};

// One scan: the raw-disk walk, iostat, the floppy and PCMCIA listings. It
// owns the scan's state: the running index, the disks already reported
// (emptied by each new scan object), the diskscan probe's disks by path.
class StorageScan {
public:
    explicit StorageScan(sys::System& os);
    StorageFacts gather();

    // One raw device path to a disk's facts; false when it is no disk, a
    // slice of one, or one reported already. `ioError` is set when the open
    // failed with an I/O error (such a device is not offered as a CD/DVD).
    bool reportPhysHardDisk(const std::string& charDevPath, StorageDevice& out, bool& ioError);
    // One raw-disk directory entry to a CD/DVD drive: it must be in the
    // "iostat -En" output (read from its start per device) without a medium.
    bool reportCDROMs(const std::string& name, const std::string& iostatOutput, StorageDevice& out);
    StorageDevice reportFloppy();
    StorageDevice reportPCMCIA();

    // The disks reported in this scan, by serial (or, without one, by the
    // digest of their controller description). A key that is the prefix of
    // a recorded one counts as found: kept so on purpose.
    int addPreviousDisks(const std::string& md5id, const std::string& serial);
    int foundPreviousDisks(const std::string& md5id, const std::string& serial) const;

private:
    class PreviousDisks {
    public:
        bool contains(const std::string& key) const;
        void add(const std::string& key);

    private:
        std::string m_text;  // "|key1|key2", the text the matching rule is defined on
        std::set<std::string> m_keys;  // the same keys, for a look-up that is no search of the text
        bool m_barInKey = false;
    };
    struct DiskDescription;
    struct NumberedDisk {
        int number;
        const VtNode* node;
    };

    bool askDisk(const std::string& path, DiskDescription& d, bool& ioError);
    void takeScsiFacts(const std::string& path, const DiskDescription& d, DiskFacts& facts);
    bool isWholeDisk(const std::string& path, const DiskDescription& d) const;
    int getMoreScsiInfo(const std::string& deviceName, SanFacts& san);
    const std::vector<NumberedDisk>& disksWithId(const VtNode* table, const std::string& id);
    void walkRawDisks(const std::string* iostat, StorageFacts& facts);
    void reportByListing(const std::string& command, const char* what, StorageDevice (StorageScan::*report)(),
                         StorageFacts& facts);
    StorageDevice reportFixed(StorageDevice::Kind kind, const char* fn);

    sys::System& m_os;
    int m_index = 0;
    PreviousDisks m_previous;
    bool m_disksIndexed = false;
    std::unordered_map<std::string, std::vector<NumberedDisk>> m_disksById;
};

// The rows of the facts, one a device, in their order; none for a scan a
// backup stopped.
void shapeStorageRows(const StorageFacts& facts, KorTable& table);

// 1 while a backup program ("save", "recover", "nsrclone", "nsrstage") runs.
int isUltrium_tape_LT4772_running();
// 1 when the first occurrence of `name` in `line` runs exactly to the line's end.
int getExactMatch(char* line, char* name);
