#include "invscan/solaris/system/SystemGroups.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "InvscanVersion.h"  // generated from the project's version
#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/SystemFile.h"
#include "common/util/smbios.h"
#include "common/vartree/vtexec.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/probeVT.h"
#include "invscan/solaris/system/SystemFacts.h"
#include "common/util/ApiGuard.h"

using systemfacts::trimmed;

namespace {

const char* const kSource = "./../../../src/invscan/solaris/SystemGroups";

#define SYS_TRACE(level, function, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, function, __VA_ARGS__)

// Where the release banner and the core package's install record live.
const char* const kReleaseFile = sys::solaris::path(sys::solaris::Id::Release);
const char* const kCorePackageInfo = sys::solaris::path(sys::solaris::Id::CorePackageInfo);

bool digits(const std::string& text, size_t from, size_t count)
{
    if (from + count > text.size() || count == 0) return false;
    for (size_t i = from; i < from + count; ++i)
        if (!std::isdigit(static_cast<unsigned char>(text[i]))) return false;
    return true;
}

// A word that is a version: digits in dotted parts, perhaps after a 'v' or
// OpenIndiana's "oi_" ("oi_151.1.8"), perhaps with a dashed suffix
// (NexentaStor's fix pack: "4.0.3-FP2").
bool versionWord(const std::string& word, long& major, long& minor)
{
    size_t i = word.compare(0, 3, "oi_") == 0 ? 3 : word[0] == 'v' || word[0] == 'V' ? 1 : 0;
    if (i >= word.size() || !std::isdigit(static_cast<unsigned char>(word[i]))) return false;
    size_t last = word.find('-', i);
    if (last == std::string::npos) last = word.size();
    for (size_t j = i; j < last; ++j)
        if (!std::isdigit(static_cast<unsigned char>(word[j])) && word[j] != '.') return false;
    char* end = nullptr;
    major = std::strtol(word.c_str() + i, &end, 10);
    minor = *end == '.' ? std::strtol(end + 1, nullptr, 10) : 0;
    return true;
}

// OmniOS's release ("r151026"): what its users call the version, ahead of
// the "v11" every OmniOS banner carries.
bool omniosRelease(const std::string& word, long& major)
{
    if (word.size() < 2 || word[0] != 'r' || !digits(word, 1, word.size() - 1)) return false;
    major = std::strtol(word.c_str() + 1, nullptr, 10);
    return true;
}

// A SmartOS platform image's stamp ("20160330T234717Z", or after "joyent_"):
// its date is the release its users know.
bool platformStamp(const std::string& word, long& major)
{
    const size_t at = word.compare(0, 7, "joyent_") == 0 ? 7 : 0;
    if (!digits(word, at, 8) || word.size() < at + 9 || word[at + 8] != 'T') return false;
    major = std::strtol(word.substr(at, 8).c_str(), nullptr, 10);
    return true;
}

std::vector<std::string> wordsOf(const std::string& line)
{
    std::vector<std::string> words;
    size_t start = 0;
    while (start < line.size()) {
        size_t end = line.find(' ', start);
        if (end == std::string::npos) end = line.size();
        if (end > start) words.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

int monthOf(const char* name)
{
    static const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    for (int m = 0; m < 12; ++m)
        if (std::strncmp(name, months[m], 3) == 0) return m;
    return -1;
}

// SMBIOS enclosure types that travel: portable, laptop, notebook, hand held,
// sub notebook, tablet, convertible, detachable.
int findEnclosure(const unsigned char* structure, const char*, void* context)
{
    if (structure[0] != 3 || structure[1] < 6) return 0;
    const int type = structure[5] & 0x7F;
    *static_cast<bool*>(context) = type == 8 || type == 9 || type == 10 || type == 11 || type == 14 ||
                                   type == 30 || type == 31 || type == 32;
    return 1;
}

void traceEntry(const char* group)
{
    CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, "getTable()", "hardware %s", group);
}

// The group's table of one row that `shape` makes of `facts`; the exit traced.
template <typename Facts>
KorTable* oneRowTable(const KorGroup& group, const Facts& facts, void (*shape)(const Facts&, KorTable&), const char* name)
{
    auto* table = new KorTable(group.getGroupId(), group.getGroupVersion());
    shape(facts, *table);
    CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, "getTable()", "hardware %s", name);
    return table;
}

}  // namespace

// ---------------------------------------------------------------- Operating System

std::vector<std::string> releaseBannerLines(const std::string& text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const std::string line = trimmed(text.substr(start, end - start));
        if (!line.empty()) lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

unsigned long osType(const std::string& sysname, const std::string& release)
{
    if (sysname == "SunOS") return release.compare(0, 2, "5.") == 0 ? OS_TYPE_SOLARIS : OS_TYPE_SUNOS;
    if (sysname == "Linux") return OS_TYPE_LINUX;
    return sysname.empty() ? OS_TYPE_UNKNOWN : OS_TYPE_OTHER;
}

OsVersion osVersion(const OperatingSystemFacts& facts)
{
    OsVersion v;
    if (!facts.banner.empty()) {
        const std::vector<std::string> words = wordsOf(facts.banner.front());
        for (const std::string& word : words)
            if (omniosRelease(word, v.major)) return v.minor = 0, v;
        for (const std::string& word : words) {
            if (versionWord(word, v.major, v.minor)) return v;
            if (platformStamp(word, v.major)) return v.minor = 0, v;
        }
        // A SmartOS zone's banner names its image further down only:
        // "See joyent_20141002T182809Z for assembly date and time."
        for (size_t i = 1; i < facts.banner.size(); ++i)
            for (const std::string& word : wordsOf(facts.banner[i]))
                if (word.compare(0, 7, "joyent_") == 0 && platformStamp(word, v.major)) return v.minor = 0, v;
        v = OsVersion();
    }
    if (!facts.release.empty() && !versionWord(facts.release.substr(0, facts.release.find_first_of("-+ ")), v.major, v.minor))
        v = OsVersion();
    return v;
}

long maintenanceLevel(const OperatingSystemFacts& facts)
{
    if (!facts.banner.empty()) {
        const std::string& line = facts.banner.front();
        const size_t at = line.find("_u");
        if (at != std::string::npos && std::isdigit(static_cast<unsigned char>(line[at + 2]))) {
            char* end = nullptr;
            const long update = std::strtol(line.c_str() + at + 2, &end, 10);
            if (std::strncmp(end, "wos", 3) == 0) return update;
        }
    }
    // "11.4.42.111.0": the third figure is the support repository update.
    const std::string& v = facts.version;
    if (v.compare(0, 5, "11.4.") == 0 && std::isdigit(static_cast<unsigned char>(v[5])))
        return std::strtol(v.c_str() + 5, nullptr, 10);
    return -1;
}

long long parseInstallDate(const std::string& pkginfo)
{
    const auto settings = systemfacts::parseSettings(pkginfo);
    auto it = settings.find("INSTDATE");
    if (it == settings.end()) return -1;
    char month[4] = {0};
    int day = 0, year = 0, hour = 0, minute = 0;
    if (std::sscanf(it->second.c_str(), "%3s %d %d %d:%d", month, &day, &year, &hour, &minute) != 5) return -1;
    struct tm t{};
    t.tm_mon = monthOf(month);
    if (t.tm_mon < 0 || day < 1 || day > 31 || year < 1970 || hour > 23 || minute > 59) return -1;
    t.tm_mday = day;
    t.tm_year = year - 1900;
    t.tm_hour = hour;
    t.tm_min = minute;
    t.tm_isdst = -1;
    const time_t seconds = std::mktime(&t);
    return seconds == static_cast<time_t>(-1) ? -1 : static_cast<long long>(seconds);
}

bool gatherOperatingSystemFacts(sys::System& os, VtExecInfo* cpuid, OperatingSystemFacts& facts)
{
    const char* fn = "gatherOperatingSystemFacts()";
    facts = OperatingSystemFacts();
    facts.sysname = systemfacts::sysinfoText(os, SI_SYSNAME);
    facts.release = systemfacts::sysinfoText(os, SI_RELEASE);
    facts.version = systemfacts::sysinfoText(os, SI_VERSION);
    std::string banner;
    if (util::readSystemFile(os, kReleaseFile, banner, 64 * 1024)) {
        facts.banner = releaseBannerLines(banner);
    } else {
        SYS_TRACE(traceMID, fn, "hardware %s %s", "no release banner in", kReleaseFile);
    }
    if (facts.sysname.empty() && facts.banner.empty()) {
        SYS_TRACE(traceMIN, fn, "hardware %s", "ERROR! neither sysinfo nor the release banner names the system");
        return false;
    }
    // The probe's failure costs two attributes, not the table.
    if (cpuid && cpuid->result == 0 && cpuid->root) {
        if (VtNode* table = vtGetNode(cpuid, "ProcessorTable", 0)) {
            facts.arch = table->getValue(nullptr, "OSSystemArch", "");
            facts.kernelMode = table->getValue(nullptr, "OSKernelMode", "");
        }
    } else {
        SYS_TRACE(traceMID, fn, "hardware %s", "no cpuid facts: architecture and kernel mode left out");
    }
    const systemfacts::Locales locales = systemfacts::readLocales(os);
    facts.systemLocale = locales.system;
    facts.messagesLocale = locales.messages;
    facts.userLocale = locales.user;
    facts.bootTime = systemfacts::bootTime(os);
    std::string pkginfo;
    if (util::readSystemFile(os, kCorePackageInfo, pkginfo, 64 * 1024)) facts.installTime = parseInstallDate(pkginfo);
    SYS_TRACE(traceMAX, fn, "hardware %s %s %s", facts.sysname.c_str(), facts.release.c_str(), facts.version.c_str());
    return true;
}

void shapeOperatingSystemRow(const OperatingSystemFacts& facts, KorTable& table)
{
    RowBuilder row(OPERATING_SYSTEM_GROUP, RowBuilder::Undecodable::Shown);
    const std::string name = facts.banner.empty() ? facts.sysname + " " + facts.release : facts.banner.front();
    row.text(OS_NAME, name);
    row.number(OS_TYPE, osType(facts.sysname, facts.release));
    const OsVersion version = osVersion(facts);
    if (version.major >= 0) {
        row.number(OS_MAJOR_VERSION, version.major);
        row.number(OS_MINOR_VERSION, version.minor);
    }
    row.textIfAny(OS_SUB_VERSION, facts.version);
    if (facts.installTime > 0) row.when(OS_INSTALL_DATE, facts.installTime);
    row.textIfAny(OS_ARCH, facts.arch);
    row.textIfAny(OS_KERNEL_MODE, facts.kernelMode);
    std::string description;
    for (const std::string& line : facts.banner) description += (description.empty() ? "" : " ") + line;
    if (!description.empty()) row.text(OS_DESCRIPTION, description);
    row.text(OS_LANGUAGE_VERSION, systemfacts::languageOf(facts.systemLocale));
    row.text(OS_LOCALE_ID, facts.systemLocale);
    row.text(OS_MESSAGES_LOCALE, facts.messagesLocale);
    if (facts.bootTime > 0) row.when(OS_LAST_BOOT_UP_TIME, facts.bootTime);
    row.text(OS_CURRENT_USER_LOCALE_ID, facts.userLocale);
    row.textIfAny(OS_OS_NAME, facts.sysname);
    row.textIfAny(OS_OS_VERSION, facts.release);
    const long level = maintenanceLevel(facts);
    if (level >= 0) row.number(OS_MAINTENANCE_LEVEL, level);
    row.addTo(table);
}

OperatingSystemGroup::OperatingSystemGroup() : KorGroup(OPERATING_SYSTEM_GROUP, 1) {}

KorTable* OperatingSystemGroup::getTable()
{
    return api::guardedTable("OperatingSystemGroup::getTable()", [&]() -> KorTable* {
        traceEntry("OperatingSystemGroup");
        OperatingSystemFacts facts;
        if (!gatherOperatingSystemFacts(sys::current(), getCpuidVT(), facts)) return nullptr;
        return oneRowTable(*this, facts, shapeOperatingSystemRow, "OperatingSystemGroup");
    });
}

// ---------------------------------------------------------------- Regional

RegionalFacts gatherRegionalFacts(sys::System& os)
{
    RegionalFacts facts;
    facts.locale = systemfacts::readLocales(os).user;
    sys::TimeZone zone;
    os.tzset(zone);
    const time_t now = os.time();
    struct tm local{};
    facts.summerTimeNow = os.localtime_r(&now, &local) && local.tm_isdst > 0;
    facts.offsetEast = -(facts.summerTimeNow ? zone.altzone : zone.timezone);
    facts.zoneName = zone.standardName;
    if (zone.daylight) facts.summerZoneName = zone.summerName;
    SYS_TRACE(traceMAX, "gatherRegionalFacts()", "hardware %s %ld %s", "offset east", facts.offsetEast,
              facts.zoneName.c_str());
    return facts;
}

void shapeRegionalRow(const RegionalFacts& facts, KorTable& table)
{
    RowBuilder row(REGIONAL_GROUP, RowBuilder::Undecodable::Shown);
    row.text(REG_LOCAL, facts.locale);
    row.number(REG_TZ_SECONDS, facts.offsetEast < 0 ? -facts.offsetEast : facts.offsetEast);
    row.number(REG_TZ_PLUS_MINUS, facts.offsetEast < 0 ? REG_MINUS : REG_PLUS);
    row.number(REG_DAYLIGHT, facts.summerTimeNow ? REG_DAYLIGHT_TRUE : REG_DAYLIGHT_FALSE);
    row.textIfAny(REG_TZ_NAME, facts.zoneName);
    row.textIfAny(REG_TZ_DAYLIGHT_NAME, facts.summerZoneName);
    row.addTo(table);
}

RegionalGroup::RegionalGroup() : KorGroup(REGIONAL_GROUP, 1) {}

KorTable* RegionalGroup::getTable()
{
    return api::guardedTable("RegionalGroup::getTable()", [&]() -> KorTable* {
        traceEntry("RegionalGroup");
        return oneRowTable(*this, gatherRegionalFacts(sys::current()), shapeRegionalRow, "RegionalGroup");
    });
}

// ---------------------------------------------------------------- UNIX System Params

UnixSystemFacts gatherUnixSystemFacts(sys::System& os)
{
    UnixSystemFacts facts;
    facts.bootTime = systemfacts::bootTime(os);
    facts.runLevel = systemfacts::runLevel(os);
    facts.hostname = systemfacts::sysinfoText(os, SI_HOSTNAME);
    return facts;
}

void shapeUnixSystemRow(const UnixSystemFacts& facts, KorTable& table)
{
    RowBuilder row(UNIX_SYSTEM_PARAMS_GROUP, RowBuilder::Undecodable::Shown);
    if (facts.bootTime > 0) row.when(UNIX_BOOT_TIME, facts.bootTime);
    if (facts.runLevel >= 0) row.number(UNIX_RUN_LEVEL, facts.runLevel);
    if (!facts.hostname.empty()) {
        row.text(UNIX_HOSTNAME, facts.hostname);
        // The alias is the name without its domain.
        row.text(UNIX_COMPUTER_ALIAS, facts.hostname.substr(0, facts.hostname.find('.')));
    }
    row.addTo(table);
}

UnixSystemParamsGroup::UnixSystemParamsGroup() : KorGroup(UNIX_SYSTEM_PARAMS_GROUP, 1) {}

KorTable* UnixSystemParamsGroup::getTable()
{
    return api::guardedTable("UnixSystemParamsGroup::getTable()", [&]() -> KorTable* {
        traceEntry("UnixSystemParamsGroup");
        const UnixSystemFacts facts = gatherUnixSystemFacts(sys::current());
        if (facts.bootTime <= 0 && facts.runLevel < 0 && facts.hostname.empty()) {
            SYS_TRACE(traceMIN, "getTable()", "hardware %s", "ERROR! no boot time, run level or host name");
            return nullptr;
        }
        return oneRowTable(*this, facts, shapeUnixSystemRow, "UnixSystemParamsGroup");
    });
}

// ---------------------------------------------------------------- Scan Info

ScanInfoFacts gatherScanInfoFacts(sys::System& os)
{
    ScanInfoFacts facts;
    facts.now = os.time();
    facts.bootTime = systemfacts::bootTime(os);
    SMBIOS_Locator locator{};
    if (find_SMBIOS(&locator) == 0) {
        scan_SMBIOS(&locator, findEnclosure, &facts.portable);
        free_SMBIOS(&locator);
    }
    return facts;
}

void shapeScanInfoRow(const ScanInfoFacts& facts, KorTable& table)
{
    RowBuilder row(SCAN_INFO_GROUP, RowBuilder::Undecodable::Shown);
    row.text(SCAN_MANUFACTURER, "invscan");
    row.number(SCAN_MAJOR_VERSION, INVSCAN_VERSION_MAJOR);
    row.number(SCAN_MINOR_VERSION, INVSCAN_VERSION_MINOR);
    row.number(SCAN_MAINTENANCE_VERSION, INVSCAN_VERSION_PATCH);
    row.number(SCAN_PATCH_LEVEL, 0);
    row.when(SCAN_DATE, facts.now);
    row.text(SCAN_BUILD, getBuildDateQVRB());
    if (facts.bootTime > 0 && facts.now >= facts.bootTime) row.number(SCAN_UPTIME, facts.now - facts.bootTime);
    row.number(SCAN_MOBILITY_FLAG, facts.portable ? 1 : 0);
    row.addTo(table);
}

ScanInfoGroup::ScanInfoGroup() : KorGroup(SCAN_INFO_GROUP, 1) {}

KorTable* ScanInfoGroup::getTable()
{
    return api::guardedTable("ScanInfoGroup::getTable()", [&]() -> KorTable* {
        traceEntry("ScanInfoGroup");
        return oneRowTable(*this, gatherScanInfoFacts(sys::current()), shapeScanInfoRow, "ScanInfoGroup");
    });
}

INVSCAN_REGISTER_GROUP(OPERATING_SYSTEM_GROUP, OperatingSystemGroup);
INVSCAN_REGISTER_GROUP(REGIONAL_GROUP, RegionalGroup);
INVSCAN_REGISTER_GROUP(UNIX_SYSTEM_PARAMS_GROUP, UnixSystemParamsGroup);
INVSCAN_REGISTER_GROUP(SCAN_INFO_GROUP, ScanInfoGroup);
