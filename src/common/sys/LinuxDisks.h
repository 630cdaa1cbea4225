#pragma once
// Linux's disks in the shapes the Solaris disk code asks for: the raw-disk
// directory, the disk controls and the SCSI commands, answered from sysfs
// (and by the device itself through SG_IO where it can be opened), and the
// three commands whose Linux namesakes mean something else.
#if defined(__linux__)

#include <string>
#include <vector>

#include "common/sys/SolarisTypes.h"

namespace sys {
namespace linuxdisks {

// One whole disk or optical drive, as the kernel knows it.
struct Disk {
    std::string kernelName;  // "vda", "sda", "sr0"
    std::string entry;       // its raw-disk directory name: the kernel name; cHtTdLs2 for a drive
    bool optical = false;
    bool scsi = false;       // it has a SCSI address (host, target, lun)
    int host = 0, channel = 0, target = 0, lun = 0;
    int major = 0, minor = 0;  // the block device's numbers
    std::string driver;      // the controller's driver, for the controller description
    std::string vendor, model, revision, serial;
    unsigned long long bytes = 0;  // 0: no medium
    unsigned blockSize = 512;
};

// Every whole disk and optical drive under `sysfs`/block, in name order:
// no partitions, no floppy drive, and nothing without a device behind it
// (loop, zram, ram, device-mapper and md volumes are not disks).
std::vector<Disk> listDisks(const std::string& sysfs = "/sys");
// The disk or drive listed under `entry`, read alone where it can be.
bool findDisk(const std::string& entry, Disk& d, const std::string& sysfs = "/sys");

// The disk controls a Solaris disk driver answers, from the facts.
void controllerInfo(const Disk& d, dk_cinfo& out);
void geometry(const Disk& d, dk_geom& out);
void label(const Disk& d, vtoc& out);
// A SCSI command (INQUIRY, READ CAPACITY(10), MODE SENSE(6) pages 3 and 4)
// answered from the facts; false (errno EIO) for any other.
bool emulateScsi(const Disk& d, uscsi_cmd& cmd);

// "iostat -En", "ls -la /dev/ | grep disk", "ls -la /dev/| grep pcmcia" as
// Solaris answers them, from the same facts; false for any other command.
bool answerCommand(const std::string& command, const std::string& sysfs, std::string& output);

}  // namespace linuxdisks
}  // namespace sys

#endif  // __linux__
