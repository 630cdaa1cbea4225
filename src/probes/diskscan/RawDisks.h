#pragma once
// Which raw device path the Storage group reports for each disk of the
// raw-disk directory, found the way that group finds it, so that the
// probe's "Id" lands on the same row.
#include <map>
#include <string>

#include "common/sys/System.h"

namespace diskscan {

// "c0t0d0s0" -> "c0t0d0": the disk a slice or partition name belongs to.
std::string diskOf(const std::string& name);

// Disk name -> "/dev/rdsk/ENTRY": in directory order, the first entry of
// each disk that names the whole disk (no slice number, or a slice whose
// label tag is the backup slice), passing over the one-digit slice names
// of the disk just looked at.
std::map<std::string, std::string> reportedDiskPaths(sys::System& os);

}  // namespace diskscan
