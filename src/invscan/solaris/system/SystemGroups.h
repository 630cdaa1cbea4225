#pragma once
// The groups that describe the running system from its configuration:
// "Operating System", "Regional", "UNIX System Params" and "Scan Info".
// Each gathers plain facts through the OS seam and shapes them in one
// function; a test can hand the shaping step facts of its own.
#include <string>
#include <vector>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

namespace sys {
class System;
}
class KorTable;
struct VtExecInfo;

// ---- "Operating System"
struct OperatingSystemFacts {
    std::string sysname, release, version;  // sysinfo: "SunOS", "5.10", "Generic_150400-59"
    std::vector<std::string> banner;        // /etc/release, trimmed non-empty lines
    std::string arch, kernelMode;           // the cpuid probe's view
    std::string systemLocale, messagesLocale, userLocale;
    long long bootTime = -1, installTime = -1;
};
// The banner's lines, trimmed, without empty ones.
std::vector<std::string> releaseBannerLines(const std::string& text);
// The release's version as the system's users know it, from the banner:
// OmniOS's "r151026", else the first version-looking word ("10" of "Oracle
// Solaris 10 1/13 ...", "11.4", "v3.1.6", OpenIndiana's "oi_151.1.8",
// NexentaStor's "4.0.3-FP2") or SmartOS image stamp (its date), else the
// kernel release.
struct OsVersion {
    long major = -1, minor = -1;
};
OsVersion osVersion(const OperatingSystemFacts& facts);
// The update or support-repository level: "u11" of a Solaris 10 banner's
// build ("s10x_u11wos_24a"), or the third figure of a Solaris 11.4 kernel
// version ("11.4.42.111.0"); -1 when neither tells.
long maintenanceLevel(const OperatingSystemFacts& facts);
// "INSTDATE=Nov 30 2018 12:44" of a package's pkginfo, in local time; -1.
long long parseInstallDate(const std::string& pkginfo);
unsigned long osType(const std::string& sysname, const std::string& release);

bool gatherOperatingSystemFacts(sys::System& os, VtExecInfo* cpuid, OperatingSystemFacts& facts);
void shapeOperatingSystemRow(const OperatingSystemFacts& facts, KorTable& table);

class INVSCAN_API OperatingSystemGroup : public KorGroup {
public:
    OperatingSystemGroup();
    KorTable* getTable() override;
};

// ---- "Regional"
struct RegionalFacts {
    std::string locale;
    long offsetEast = 0;  // seconds east of UTC now, summer time included
    bool summerTimeNow = false;
    std::string zoneName, summerZoneName;
};
RegionalFacts gatherRegionalFacts(sys::System& os);
void shapeRegionalRow(const RegionalFacts& facts, KorTable& table);

class INVSCAN_API RegionalGroup : public KorGroup {
public:
    RegionalGroup();
    KorTable* getTable() override;
};

// ---- "UNIX System Params"
struct UnixSystemFacts {
    long long bootTime = -1;
    int runLevel = -1;
    std::string hostname;
};
UnixSystemFacts gatherUnixSystemFacts(sys::System& os);
void shapeUnixSystemRow(const UnixSystemFacts& facts, KorTable& table);

class INVSCAN_API UnixSystemParamsGroup : public KorGroup {
public:
    UnixSystemParamsGroup();
    KorTable* getTable() override;
};

// ---- "Scan Info"
struct ScanInfoFacts {
    long long now = 0;
    long long bootTime = -1;
    bool portable = false;  // the firmware calls the enclosure portable
};
ScanInfoFacts gatherScanInfoFacts(sys::System& os);
void shapeScanInfoRow(const ScanInfoFacts& facts, KorTable& table);

class INVSCAN_API ScanInfoGroup : public KorGroup {
public:
    ScanInfoGroup();
    KorTable* getTable() override;
};
