#pragma once
// The Linux gathering step over any sysfs tree and mount table, so that
// tests can hand it trees of their own.
#include <cstdio>
#include <string>

#include "probes/diskscan/Scan.h"

namespace diskscan {

// Disks, SAN facts and ports from `sysfs`; partitions from `mountinfo`
// (the text of /proc/self/mountinfo).
void gatherLinux(const std::string& sysfs, const std::string& mountinfo, Scan& scan, FILE* debug);

}  // namespace diskscan
