#include "invscan/solaris/storage/StorageGroup.h"

#include <fcntl.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/sys/Portable.h"
#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/vartree/vtree.h"
#include "framework/RunLog.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/md5.h"
#include "invscan/solaris/system/ComponentIDGroup.h"
#include "invscan/solaris/storage/DiskScanTree.h"
#include "invscan/solaris/storage/scsiscan.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/StorageGroup";
#define ST_TRACE(level, fn, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)

const char* const kRawDiskDir = sys::solaris::path(sys::solaris::Id::RawDiskDir);
const size_t kIostatLine = 512;  // the longest line the CD/DVD reader takes whole
// iostat prints a few hundred bytes a device: a command that never stops
// printing is not followed past this.
const size_t kMaxIostatOutput = 16u << 20;

std::string md5Text(const char* text)
{
    char* digest = md5_checksum(text);
    std::string out = digest ? digest : "";
    std::free(digest);
    return out;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// cXtYdZsN with one digit each: the only names whose slices are skipped
// and that are offered to the CD/DVD reader.
bool isShortForm(const char* name)
{
    if (std::strlen(name) < 8) return false;
    for (int i = 0; i < 8; i += 2)
        if (name[i] != "ctds"[i / 2] || !isDigit(name[i + 1])) return false;
    return true;
}

std::string diskKey(const std::string& md5id, const std::string& serial) { return serial.empty() ? md5id : serial; }

bool bothEmpty(const std::string& md5id, const std::string& serial) { return md5id.empty() && serial.empty(); }

// The next line as fgets with a buffer of `size` would give it, without its
// line end; false at the end of the text.
bool nextLine(const std::string& text, size_t& pos, size_t size, std::string& line)
{
    if (pos >= text.size()) return false;
    const size_t end = text.find('\n', pos);
    size_t length = (end == std::string::npos ? text.size() : end + 1) - pos;
    if (length > size - 1) length = size - 1;
    line.assign(text, pos, length);
    pos += length;
    if (!line.empty() && line.back() == '\n') line.pop_back();
    return true;
}

// The text after `label` up to `stop` (exclusive; null or absent: the end of the line).
std::string textAfter(const std::string& line, const char* label, const char* stop)
{
    const size_t at = line.find(label);
    if (at == std::string::npos) return std::string();
    const size_t from = at + std::strlen(label);
    const size_t to = stop ? line.find(stop, from) : std::string::npos;
    return line.substr(from, to == std::string::npos ? std::string::npos : to - from);
}

// The line names the device, and not a longer one (c0t0d1 is no c0t0d10).
bool namesDevice(const std::string& line, const std::string& device)
{
    for (size_t at = line.find(device); at != std::string::npos; at = line.find(device, at + 1)) {
        const size_t after = at + device.size();
        if (after == line.size() || !std::isalnum(static_cast<unsigned char>(line[after]))) return true;
    }
    return false;
}

// "Size: ... <0 bytes>": a drive without a medium, which is what a CD/DVD
// drive looks like to iostat.
bool showsNoMedium(const std::string& line)
{
    return line.find("Size: ") != std::string::npos &&
           (line.find("<-1 bytes>") != std::string::npos || line.find("<0 bytes>") != std::string::npos);
}

// The drive's facts from "iostat -En" output: the line after the one naming
// `device` names the drive, the next must show no medium (else the facts
// are dropped). A pure reading of the text, traced under reportCDROMs.
void readIostatDrive(const std::string& device, const std::string& iostatOutput, CdFacts& cd)
{
    std::string line;
    size_t pos = 0;
    // 0: looking for the device's line; 1: the line after it names the
    // drive; 2: the next one says whether a medium is in; 3: done.
    int state = 0;
    while (state < 3 && nextLine(iostatOutput, pos, kIostatLine, line)) {
        if (state == 0) {
            if (namesDevice(line, device)) state = 1;
            continue;
        }
        if (state == 1) {
            cd.vendor = textAfter(line, "Vendor: ", " ");
            cd.product = textAfter(line, "Product: ", "Revision: ");
            cd.serial = textAfter(line, "Serial No: ", nullptr);
            cd.serial.resize(std::find_if(cd.serial.begin(), cd.serial.end(),
                                          [](char c) { return static_cast<unsigned char>(c) <= ' '; }) -
                             cd.serial.begin());
            // The line after this one says whether a medium is in, whatever
            // this one holds (a size here is not the drive's verdict).
            state = 2;
            continue;
        }
        if (showsNoMedium(line)) {
            ST_TRACE(traceMAX, "reportCDROMs()", "hardware %s", "- done -");
        } else {
            ST_TRACE(traceMAX, "reportCDROMs()", "hardware %s", "- not zero or -1, not expected... -");
            cd = CdFacts();
        }
        state = 3;
    }
}

// Reads a whole command stream into memory, up to the limit.
std::string readAll(FILE* stream)
{
    std::string out;
    char chunk[4096];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, stream)) > 0 && out.size() < kMaxIostatOutput) out.append(chunk, n);
    return out;
}

// "iostat -En" on the full path, else on the PATH; false when neither runs.
bool runIostat(sys::System& os, std::string& output)
{
    runlog::Timed timed("iostat -En");
    FILE* stream = os.popen(sys::solaris::line(sys::solaris::Id::Iostat).c_str(), "r");
    if (!stream) stream = os.popen(sys::solaris::line(sys::solaris::Id::IostatOnPath).c_str(), "r");
    if (!stream) return false;
    output = readAll(stream);
    timed.setStatus(runlog::exitStatus(os.pclose(stream)));
    return true;
}

// The slice a raw path names ("...s3" -> 3), or -1 when it names none, as
// with the x86 whole-disk names ending in p0, where the last 's' is rdsk's.
int sliceOf(const char* path)
{
    const char* s = std::strrchr(path, 's');
    if (!s) return -1;
    const int slice = std::atoi(s + 1);
    return slice > 0 || (slice == 0 && s[1] == '0') ? slice : -1;
}

// The size in MB from the label's geometry, in single precision as it has
// always been computed. Sectors above 1024 bytes would make the divisor 0:
// they give the true size instead.
unsigned long labelSizeMB(const dk_geom& g, const vtoc& v)
{
    if (v.v_sectorsz == 0) return 0;
    const unsigned long long sectors = static_cast<unsigned long long>(g.dkg_ncyl) * g.dkg_nsect * g.dkg_nhead;
    if (v.v_sectorsz > 1024) return static_cast<unsigned long>(sectors * v.v_sectorsz / (1024 * 1024));
    volatile float mb = static_cast<float>(sectors);  // stored at each step, as on every processor
    mb = mb / static_cast<float>(1024 / v.v_sectorsz);
    mb = mb * (1.0f / 1024.0f);
    return static_cast<unsigned long>(mb);
}

void freeInfo(SCSIinfo& info)
{
    for (char* s : {info.devName, info.vendor, info.product, info.serial, info.revision}) std::free(s);
}

// The disk's identity when it has no serial: its controller's description.
std::string controllerDescription(const dk_cinfo& c)
{
    char text[1024];
    std::snprintf(text, sizeof text, "%.*s|%d|%d|%d|%d|%d|%d|%d|%.*s|%d|%d", DK_DEVLEN, c.dki_cname, c.dki_ctype,
                  c.dki_flags, c.dki_cnum, static_cast<int>(c.dki_addr), static_cast<int>(c.dki_space),
                  static_cast<int>(c.dki_prio), static_cast<int>(c.dki_vec), DK_DEVLEN, c.dki_dname,
                  static_cast<int>(c.dki_unit), static_cast<int>(c.dki_slave));
    return text;
}

// The row's "ID" of a disk: the digest of its geometry and size.
std::string geometryId(const DiskFacts& d)
{
    char text[1024] = {};
    std::snprintf(text, sizeof text, "%d%d%d%ld", static_cast<int>(d.cylinders), static_cast<int>(d.heads),
                  static_cast<int>(d.sectors), static_cast<long>(d.sizeMB));
    return md5Text(text);
}

// The "ID" every CD/DVD, floppy and PCMCIA row shares: rows stay apart by their index.
std::string zerosId()
{
    char zeros[64];
    std::snprintf(zeros, sizeof zeros, "%lu%lu%lu%lu", 0UL, 0UL, 0UL, 0UL);
    return md5Text(zeros);
}

KorTableRow* shapeRow(const StorageDevice& d)
{
    static const DiskFacts kNoDisk;
    const DiskFacts& disk = d.kind == StorageDevice::DISK ? d.disk : kNoDisk;
    unsigned long type = disk.type;
    std::string model = disk.model, vendor = disk.vendor, serial = disk.serial;
    switch (d.kind) {
    case StorageDevice::DISK: break;
    case StorageDevice::CD:
        type = STORAGE_TYPE_CDROM;
        model = d.cd.product;
        vendor = d.cd.vendor;
        serial = d.cd.serial;
        break;
    case StorageDevice::FLOPPY: type = STORAGE_TYPE_FLOPPY; break;
    case StorageDevice::PCMCIA: type = STORAGE_TYPE_MEMORY_CARD; break;
    }
    RowBuilder row(STORAGE_GROUP);
    row.number(STOR_INDEX, d.index);
    row.text(STOR_ID, d.kind == StorageDevice::DISK ? geometryId(disk) : zerosId());
    row.number(STOR_TYPE, type);
    row.text(STOR_MODEL, model);
    row.text(STOR_MANUFACTURER, vendor);
    row.text(STOR_SERIAL_NUMBER, serial);
    row.number(STOR_CYLINDERS, disk.cylinders);
    row.number(STOR_SECTORS, disk.sectors);
    row.number(STOR_HEADS, disk.heads);
    row.number(STOR_TOTAL_SIZE, disk.sizeMB);
    row.text(STOR_DEVICE, disk.device);
    row.text(STOR_IS_SAN_DISK, disk.san.isSan);
    row.text(STOR_WWNN, disk.san.wwnn);
    row.text(STOR_WWPN, disk.san.wwpn);
    row.text(STOR_SAN_ADAPTER, disk.san.adapter);
    return row.release();
}

}  // namespace

int getExactMatch(char* line, char* name)
{
    if (!line || !name || !*name) return 0;
    const char* at = std::strstr(line, name);
    if (!at) return 0;
    const void* newline = std::memchr(at, '\n', sys::boundedLength(at, 256));
    const size_t rest = newline ? static_cast<size_t>(static_cast<const char*>(newline) - at) : std::strlen(at);
    return rest == std::strlen(name) && std::strncmp(at, name, rest) == 0 ? 1 : 0;
}

int isUltrium_tape_LT4772_running()
{
    const char* fn = "isUltrium_tape_LT4772_running()";
    sys::System& os = sys::current();
    ST_TRACE(traceMAX, fn, "hardware %s ", "running ps -ef");
    runlog::Timed timed("/usr/bin/ps -ef");
    FILE* stream = os.popen(sys::solaris::line(sys::solaris::Id::ProcessList).c_str(), "r");
    if (!stream) return 0;
    char line[256];
    char names[][16] = {"save", "recover", "nsrclone", "nsrstage"};
    while (std::fgets(line, sizeof line, stream)) {
        for (char* name : names) {
            if (!getExactMatch(line, name)) continue;
            timed.setStatus(runlog::exitStatus(os.pclose(stream)));
            ST_TRACE(traceMAX, fn, "hardware %s", "Ultrium_tape_LT4772 tape robot is running");
            return 1;
        }
    }
    timed.setStatus(runlog::exitStatus(os.pclose(stream)));
    ST_TRACE(traceMAX, fn, "hardware %s", "closed tape");
    return 0;
}


bool StorageFacts::hasDiskOrDrive() const
{
    for (const StorageDevice& d : devices)
        if (d.kind == StorageDevice::DISK || d.kind == StorageDevice::CD) return true;
    return false;
}

// Without a bar inside any key, "|key" occurs in the text exactly when a
// recorded key starts with `key`: the sorted keys answer that without a
// search of the whole text (a SAN host has thousands of paths).
bool StorageScan::PreviousDisks::contains(const std::string& key) const
{
    if (m_barInKey || key.find('|') != std::string::npos) return m_text.find("|" + key) != std::string::npos;
    auto it = m_keys.lower_bound(key);
    return it != m_keys.end() && it->compare(0, key.size(), key) == 0;
}

void StorageScan::PreviousDisks::add(const std::string& key)
{
    m_text += "|" + key;
    m_keys.insert(key);
    m_barInKey = m_barInKey || key.find('|') != std::string::npos;
}

// What the disk controls answer for one device.
struct StorageScan::DiskDescription {
    dk_cinfo controller{};
    dk_geom geometry{};
    vtoc label{};
};

StorageScan::StorageScan(sys::System& os) : m_os(os) {}

int StorageScan::foundPreviousDisks(const std::string& md5id, const std::string& serial) const
{
    if (bothEmpty(md5id, serial)) return 0;
    const std::string key = diskKey(md5id, serial);
    const int found = m_previous.contains(key) ? 1 : 0;
    ST_TRACE(traceMAX, "foundPreviousDisks()", "hardware %s %s %s %i", "Was >", key.c_str(), "< found?", found);
    return found;
}

int StorageScan::addPreviousDisks(const std::string& md5id, const std::string& serial)
{
    const char* fn = "addPreviousDisks()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %s", "MD5ID=", md5id.c_str(), "serial=", serial.c_str());
    if (bothEmpty(md5id, serial)) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return 0");
        return 0;
    }
    const std::string key = diskKey(md5id, serial);
    if (foundPreviousDisks(md5id, serial)) {
        ST_TRACE(traceMAX, fn, "hardware %s %s %s", "Not adding >", key.c_str(), "< to list of drives reported.");
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return 0");
        return 0;
    }
    m_previous.add(key);
    ST_TRACE(traceMAX, fn, "hardware %s %s", "Adding disk >", key.c_str());
    ST_TRACE(traceMidExit, fn, "hardware %s", "Return 1");
    return 1;
}

// The tree's disks by "Id", each list in tree order, built on the scan's
// first look-up (the probe's tree is the same for the whole scan): a SAN
// host has a thousand disks and asks for each of them.
const std::vector<StorageScan::NumberedDisk>& StorageScan::disksWithId(const VtNode* table, const std::string& id)
{
    static const std::vector<NumberedDisk> none;
    if (!m_disksIndexed) {
        forEachChild(table, "Disk",
                     [this](int number, const VtNode* disk) { m_disksById[textOf(disk, "Id")].push_back({number, disk}); });
        m_disksIndexed = true;
    }
    auto it = m_disksById.find(id);
    return it == m_disksById.end() ? none : it->second;
}

// Looks the disk up in the diskscan probe's tree: 1 when found, with its SAN
// facts; 0 (facts untouched) otherwise. Later matches overwrite earlier ones.
int StorageScan::getMoreScsiInfo(const std::string& deviceName, SanFacts& san)
{
    const char* fn = "getMoreScsiInfo()";
    ST_TRACE(traceMAX, fn, "hardware i_name=%s", deviceName.c_str());
    const VtNode* root = diskScanInfo(kSource, fn);
    if (!root) return 0;
    const VtNode* table = root->getChild("DiskTable", 0);
    if (!table) {
        ST_TRACE(traceMIN, fn, "%s", "ERROR! Failed to get disk table");
        return 0;
    }
    // Traced in full, every disk is looked at; otherwise only the matches.
    std::vector<NumberedDisk> everyDisk;
    if (trace::enabled(trace::Level::Max))
        forEachChild(table, "Disk", [&everyDisk](int number, const VtNode* disk) { everyDisk.push_back({number, disk}); });
    const std::vector<NumberedDisk>& candidates = everyDisk.empty() ? disksWithId(table, deviceName) : everyDisk;
    int result = 0;
    for (const NumberedDisk& candidate : candidates) {
        const VtNode* disk = candidate.node;
        const char* id = disk->getValue(nullptr, "Id", "");
        const int isSan = disk->getValue(nullptr, "isSAN", 0);
        const char* wwnn = disk->getValue(nullptr, "WWNN", "");
        const char* wwpn = disk->getValue(nullptr, "WWPN", "");
        ST_TRACE(traceMAX, fn, "Checking disk #%d: id=%s", candidate.number, id);
        if (deviceName != id) {
            ST_TRACE(traceMAX, fn, "%s", "Devices don't match, skipping.");
            continue;
        }
        ST_TRACE(traceMAX, fn, "disk #%d issan=%d wwnn=%s wwpn=%s", candidate.number, isSan, wwnn, wwpn);
        const VtNode* hba = disk->getChild("HBA", 0);
        if (!hba && isSan == 1) ST_TRACE(traceMIN, fn, "%s", "ERROR! Failed to find hba node for SAN disk");
        if (hba) {
            const char* hbaId = hba->getValue(nullptr, "Id", "");
            ST_TRACE(traceMAX, fn, "hba found: id=%s wwnn=%s wwpn=%s", hbaId, hba->getValue(nullptr, "WWNN", ""),
                     hba->getValue(nullptr, "WWPN", ""));
            san.adapter = hbaId;
        }
        san.isSan = isSan == 1 ? "Y" : "N";
        san.wwnn = wwnn;
        san.wwpn = wwpn;
        result = 1;
    }
    ST_TRACE(traceMAX, fn, "result=%d", result);
    return result;
}

// Opens the device and asks its controller, geometry and label; false
// (traced, closed) when any of them fails.
bool StorageScan::askDisk(const std::string& path, DiskDescription& d, bool& ioError)
{
    const char* fn = "reportPhysHardDisk()";
    const int fd = m_os.open(path.c_str(), O_RDONLY);
    if (fd < 0) {
        const int code = errno;
        const char* error = std::strerror(code);
        ST_TRACE(traceMIN, fn, "hardware %s %s", "strerr=", error);
        ST_TRACE(traceMID, fn, "hardware %s %s %s %s", "open of device", path.c_str(), "failed :", error);
        // Solaris words EIO "I/O error"; other C libraries word it otherwise.
        if (code == EIO || std::strstr(error, "I/O error")) ioError = true;
        return false;
    }
    if (m_os.ioctl(fd, DKIOCINFO, &d.controller) < 0) {
        ST_TRACE(traceMIN, fn, "hardware %s %s %s %s", "ioctl DKIOCINFO of device", path.c_str(), "failed :",
                 std::strerror(errno));
        m_os.close(fd);
        return false;
    }
    if (m_os.ioctl(fd, DKIOCGGEOM, &d.geometry) < 0 || m_os.ioctl(fd, DKIOCGVTOC, &d.label) < 0) {
        ST_TRACE(traceMID, fn, "hardware %s %s %s %s", "ioctl DKIOCGGEOM/DKIOCGVTOC of device", path.c_str(),
                 "failed :", std::strerror(errno));
        m_os.close(fd);
        return false;
    }
    m_os.close(fd);
    ST_TRACE(traceMAX, fn, "hardware %s", "dkiocggeom & dkiocgvtoc successful.");
    return true;
}

// The disk's type from its controller, the rest from the SCSI layer where
// it answered, else from the label and geometry.
void StorageScan::takeScsiFacts(const std::string& path, const DiskDescription& d, DiskFacts& facts)
{
    const dk_cinfo& c = d.controller;
    facts.type = c.dki_ctype == DKC_DIRECT || c.dki_ctype == DKC_SCSI_CCS ? STORAGE_TYPE_HARD_DISK : STORAGE_TYPE_UNKNOWN;
    SCSIinfo scsi{};
    std::string device = path;
    SCSIscan(&device[0], &scsi);  // judged by the fields it filled
    if (scsi.product && *scsi.product) {
        facts.model = scsi.product;
    } else {
        const char* label = d.label.v_asciilabel;
        const std::string text(label, sys::boundedLength(label, sizeof d.label.v_asciilabel));
        facts.model = text.substr(0, text.find(' '));
    }
    facts.sizeMB = scsi.sizeMB > 0 ? scsi.sizeMB : labelSizeMB(d.geometry, d.label);
    facts.cylinders = scsi.cylinders > 0 ? scsi.cylinders : d.geometry.dkg_ncyl;
    facts.heads = scsi.heads > 0 ? scsi.heads : d.geometry.dkg_nhead;
    facts.sectors = scsi.sectors > 0 ? scsi.sectors : d.geometry.dkg_nsect;
    facts.vendor = scsi.vendor ? scsi.vendor : "";
    facts.serial = scsi.serial ? scsi.serial : "";
    freeInfo(scsi);
}

// A slice other than the whole-disk one is part of a disk, not a disk. A
// path without a slice number (c0t0d0p0) is a whole disk.
bool StorageScan::isWholeDisk(const std::string& path, const DiskDescription& d) const
{
    const char* fn = "reportPhysHardDisk()";
    const int slice = sliceOf(path.c_str());
    if (slice < 0 || slice >= d.label.v_nparts || slice >= V_NUMPAR) return true;
    ST_TRACE(traceMAX, fn, "hardware Slice number %d out of %d", slice, static_cast<int>(d.label.v_nparts));
    const int tag = d.label.v_part[slice].p_tag;
    ST_TRACE(traceMAX, fn, "hardware This partition tag=%d", tag);
    if (tag == V_BACKUP) return true;
    ST_TRACE(traceMAX, fn, "hardware %s", "It's not full disk but partition, return NULL");
    return false;
}

bool StorageScan::reportPhysHardDisk(const std::string& charDevPath, StorageDevice& out, bool& ioError)
{
    const char* fn = "reportPhysHardDisk()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %d", "char_dev_path=", charDevPath.c_str(), "index=", m_index);
    DiskDescription d;
    if (!askDisk(charDevPath, d, ioError)) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return false;
    }
    DiskFacts facts;
    takeScsiFacts(charDevPath, d, facts);
    const std::string description = controllerDescription(d.controller);
    ST_TRACE(traceMAX, fn, "hardware %s %s %s %s", "Current DiskInfo=", description.c_str(), "Disk_Serial=",
             facts.serial.c_str());
    if (!isWholeDisk(charDevPath, d)) return false;

    const std::string md5id = md5Text(description.c_str());
    ST_TRACE(traceMAX, fn, "hardware %s %s %s %s", "Device=", charDevPath.c_str(), "Disk_Id=", md5id.c_str());
    if (!addPreviousDisks(md5id, facts.serial)) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return false;
    }
    facts.device = charDevPath;
    getMoreScsiInfo(charDevPath, facts.san);
    out = StorageDevice();
    out.kind = StorageDevice::DISK;
    out.index = ++m_index;
    out.disk = facts;
    ST_TRACE(traceMidExit, fn, "hardware %s %d", "Return row, index=", m_index);
    return true;
}

bool StorageScan::reportCDROMs(const std::string& name, const std::string& iostatOutput, StorageDevice& out)
{
    const char* fn = "reportCDROMs()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %d", "reportCDROMs for", name.c_str(), "index=", m_index);
    if (!isShortForm(name.c_str())) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "... path not properly formatted. Return NULL");
        return false;
    }
    CdFacts cd;
    readIostatDrive(name.substr(0, 6), iostatOutput, cd);
    if (cd.vendor.empty() && cd.product.empty()) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return false;
    }
    out = StorageDevice();
    out.kind = StorageDevice::CD;
    out.index = ++m_index;
    out.cd = cd;
    ST_TRACE(traceMidExit, fn, "hardware %s %s %s %s", "CD/DVD vendor=", cd.vendor.c_str(), "product=",
             cd.product.c_str());
    return true;
}

StorageDevice StorageScan::reportFixed(StorageDevice::Kind kind, const char* fn)
{
    ST_TRACE(traceMidEntry, fn, "hardware %s %d", "index=", m_index);
    StorageDevice d;
    d.kind = kind;
    d.index = ++m_index;
    return d;
}

StorageDevice StorageScan::reportFloppy() { return reportFixed(StorageDevice::FLOPPY, "reportFloppy()"); }

StorageDevice StorageScan::reportPCMCIA() { return reportFixed(StorageDevice::PCMCIA, "reportPCMCIA()"); }

// Every entry of the raw-disk directory, as a disk or else (when iostat ran)
// as a CD/DVD drive. The slices of one disk come next to each other:
// remembering the last disk's digits is enough to skip its other slices.
void StorageScan::walkRawDisks(const std::string* iostat, StorageFacts& facts)
{
    const char* fn = "getTable()";
    sys::Dir* dir = m_os.opendir(kRawDiskDir);
    if (!dir) {
        ST_TRACE(traceMID, fn, "hardware %s %s", "Can't open dierctory", kRawDiskDir);
        return;
    }
    int last[3] = {-1, -1, -1};
    while (const char* entry = m_os.readdir(dir)) {
        if (std::strcmp(entry, ".") == 0 || std::strcmp(entry, "..") == 0) continue;
        const std::string name = entry;
        const bool shortForm = isShortForm(name.c_str());
        if (shortForm && name[1] == last[0] && name[3] == last[1] && name[5] == last[2]) {
            ST_TRACE(traceMAX, fn, "hardware %s %s", "... skipping", name.c_str());
            continue;
        }
        StorageDevice device;
        bool ioError = false;
        bool found = reportPhysHardDisk(std::string(kRawDiskDir) + "/" + name, device, ioError);
        ST_TRACE(traceMAX, fn, "hardware %s %d", "error from reportPhysHardDisk=", ioError ? 1 : 0);
        if (!found && iostat && !ioError) found = reportCDROMs(name, *iostat, device);
        if (found) facts.devices.push_back(device);
        if (shortForm) last[0] = name[1], last[1] = name[3], last[2] = name[5];
    }
    m_os.closedir(dir);
}

// Runs `command` and reports the fixed device when it prints a line.
void StorageScan::reportByListing(const std::string& command, const char* what, StorageDevice (StorageScan::*report)(),
                                  StorageFacts& facts)
{
    const char* fn = "getTable()";
    runlog::Timed timed(command);
    FILE* stream = m_os.popen(command.c_str(), "r");
    if (!stream) {
        ST_TRACE(traceMID, fn, "hardware %s", (std::string("unable to execute popen for ") + what).c_str());
        return;
    }
    char line[512];
    errno = 0;
    if (!std::fgets(line, sizeof line, stream)) {
        ST_TRACE(traceMAX, fn, "hardware %s %d", (std::string("no ") + what).c_str(), errno);
    } else {
        ST_TRACE(traceMAX, fn, "hardware %s", (std::string(what) + " present").c_str());
        facts.devices.push_back((this->*report)());
        ST_TRACE(traceMAX, fn, "hardware %s", (std::string(what) + " kor table").c_str());
    }
    timed.setStatus(runlog::exitStatus(m_os.pclose(stream)));
}

StorageFacts StorageScan::gather()
{
    const char* fn = "getTable()";
    StorageFacts facts;
    if (std::getenv("CHECK_ULTRIUM_TAPE_RUNNING") && isUltrium_tape_LT4772_running()) {
        facts.backupRunning = true;
        return facts;
    }
    char* banner = ComponentIDGroup::getBanner();
    const std::string product = banner ? banner : "";
    std::free(banner);
    ST_TRACE(traceMAX, fn, "hardware %s %s", "product=", product.c_str());
    // Fujitsu Siemens machines are not asked for their CD/DVD drives.
    std::string iostat;
    bool haveIostat = false;
    if (product.find("Fujitsu Siemens") == std::string::npos) {
        haveIostat = runIostat(m_os, iostat);
        if (!haveIostat) ST_TRACE(traceMID, fn, "hardware %s", "iostat failed - no CD-ROMs will be reported");
    }
    walkRawDisks(haveIostat ? &iostat : nullptr, facts);
    reportByListing(sys::solaris::line(sys::solaris::Id::DevDiskListing), "floppy", &StorageScan::reportFloppy, facts);
    reportByListing(sys::solaris::line(sys::solaris::Id::DevPcmciaListing), "pcmcia", &StorageScan::reportPCMCIA,
                    facts);
    return facts;
}

void shapeStorageRows(const StorageFacts& facts, KorTable& table)
{
    for (const StorageDevice& d : facts.devices) table.addRow(shapeRow(d));
}

StorageGroup::StorageGroup() : KorGroup(STORAGE_GROUP, 1) {}

KorTable* StorageGroup::getTable()
{
    return api::guardedTable("StorageGroup::getTable()", [&]() -> KorTable* {
        const char* fn = "getTable()";
        ST_TRACE(traceMidEntry, fn, "hardware %s", "StorageGroup");
        const StorageFacts facts = StorageScan(sys::current()).gather();
        if (facts.backupRunning) {
            ST_TRACE(traceMidExit, fn, "hardware %s", "StorageGroup: a backup is running, nothing asked");
            return new KorTable(getGroupId(), getGroupVersion());
        }
        ST_TRACE(traceMidExit, fn, "hardware %s", "StorageGroup");
        if (!facts.hasDiskOrDrive()) return nullptr;
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        shapeStorageRows(facts, *table);
        return table;
    });
}

INVSCAN_REGISTER_GROUP(STORAGE_GROUP, StorageGroup);
