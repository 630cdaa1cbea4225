#pragma once
// Fake disks: what a raw disk device answers to the disk controls
// (controller, geometry, label) and to SCSI commands, built from the
// readable facts a test or a simulated machine gives.
#include <map>
#include <string>

#include "common/replay/SimulatedSystem.h"

namespace replay {

struct SimulatedDisk {
    dk_cinfo controller{};
    dk_geom geometry{};
    vtoc label{};
    std::string failing;  // disk controls that fail with EIO, by name ("DKIOCGVTOC")
    // SCSI answers as the device sends them; empty: the command fails (EIO).
    std::string inquiry, capacity, formatPage, geometryPage;
    // Answers to exact commands, by their command block's bytes, as a
    // capture records them; they come before the answers above. An empty
    // answer: the command fails (EIO).
    std::map<std::string, std::string> commands;
};

// Big-endian `n` bytes of `value`.
std::string bigEndian(unsigned long long value, int n);
// A standard INQUIRY answer: device type, then the blank-padded fields.
std::string scsiInquiry(unsigned char type, const std::string& vendor, const std::string& product,
                        const std::string& revision, const std::string& serial);
// A MODE SENSE(6) answer: header, 8-byte block descriptor, then the page.
std::string modeSense(const std::string& page);
std::string formatPage(unsigned sectorsPerTrack, unsigned bytesPerSector);  // page 3
std::string rigidGeometryPage(unsigned cylinders, unsigned heads);        // page 4

// Makes `path` a device answering as `disk` does.
void installDisk(SimulatedSystem& os, const std::string& path, const SimulatedDisk& disk);

}  // namespace replay
