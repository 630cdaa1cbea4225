#include "invscan/solaris/StorageGroup.h"

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
#include "common/sys/System.h"
#include "common/vartree/vtree.h"
#include "framework/RunLog.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/md5.h"
#include "invscan/solaris/ComponentIDGroup.h"
#include "invscan/solaris/DiskScanTree.h"
#include "invscan/solaris/scsiscan.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/StorageGroup";
#define ST_TRACE(level, fn, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)

const char* const kRawDiskDir = "/dev/rdsk";
const char* const kDevDir = "/dev/";
const size_t kIostatLine = 512;  // the longest line the CD/DVD reader takes whole
// iostat prints a few hundred bytes a device: a command that never stops
// printing is not followed past this.
const size_t kMaxIostatOutput = 16u << 20;

// What one row says, whatever kind of device it is.
struct StorageRow {
    unsigned long type = 0;
    std::string id, model, vendor, serial;
    unsigned long cylinders = 0, sectors = 0, heads = 0, sizeMB = 0;
    std::string device, isSan, wwnn, wwpn, sanAdapter;
};

KorTableRow* shapeStorageRow(int index, const StorageRow& r)
{
    auto* row = new KorTableRow;
    row->addAttrib(new KorTableAttrib(STOR_INDEX, static_cast<unsigned long>(index)));
    row->addAttrib(new KorTableAttrib(STOR_ID, r.id.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_TYPE, r.type));
    row->addAttrib(new KorTableAttrib(STOR_MODEL, r.model.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_MANUFACTURER, r.vendor.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_SERIAL_NUMBER, r.serial.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_CYLINDERS, r.cylinders));
    row->addAttrib(new KorTableAttrib(STOR_SECTORS, r.sectors));
    row->addAttrib(new KorTableAttrib(STOR_HEADS, r.heads));
    row->addAttrib(new KorTableAttrib(STOR_TOTAL_SIZE, r.sizeMB));
    row->addAttrib(new KorTableAttrib(STOR_DEVICE, r.device.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_IS_SAN_DISK, r.isSan.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_WWNN, r.wwnn.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_WWPN, r.wwpn.c_str()));
    row->addAttrib(new KorTableAttrib(STOR_SAN_ADAPTER, r.sanAdapter.c_str()));
    return row;
}

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

// The keys of the disks reported in this scan, as the bar-joined text the
// matching rule is defined on ("|key1|key2"), with a sorted copy of the keys
// so that a SAN host's thousands of paths are not each a search of the
// whole text. Without a bar inside any key, "|key" occurs in the text
// exactly when a recorded key starts with `key`.
class PreviousDisks {
public:
    void clear()
    {
        m_text.clear();
        m_keys.clear();
        m_barInKey = false;
    }
    bool contains(const std::string& key) const
    {
        if (m_barInKey || key.find('|') != std::string::npos) return m_text.find("|" + key) != std::string::npos;
        auto it = m_keys.lower_bound(key);
        return it != m_keys.end() && it->compare(0, key.size(), key) == 0;
    }
    void add(const std::string& key)
    {
        m_text += "|" + key;
        m_keys.insert(key);
        m_barInKey = m_barInKey || key.find('|') != std::string::npos;
    }

private:
    std::string m_text;
    std::set<std::string> m_keys;
    bool m_barInKey = false;
};

PreviousDisks g_previousDisks;

std::string diskKey(const char* md5id, const char* serial)
{
    return serial && *serial ? serial : md5id ? md5id : "";
}

bool bothEmpty(const char* md5id, const char* serial)
{
    return (!md5id || !*md5id) && (!serial || !*serial);
}

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
bool runIostat(std::string& output)
{
    sys::System& os = sys::current();
    runlog::Timed timed("iostat -En");
    FILE* stream = os.popen("/usr/bin/iostat -En", "r");
    if (!stream) stream = os.popen("iostat -En", "r");
    if (!stream) return false;
    output = readAll(stream);
    timed.setStatus(runlog::exitStatus(os.pclose(stream)));
    return true;
}

// Runs `command` and reports the fixed row when it prints a line.
void reportByListing(KorTable& table, int& index, const std::string& command, const char* what,
                     KorTableRow* (*report)(int*))
{
    const char* fn = "getTable()";
    sys::System& os = sys::current();
    runlog::Timed timed(command);
    FILE* stream = os.popen(command.c_str(), "r");
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
        if (KorTableRow* row = report(&index)) {
            ST_TRACE(traceMAX, fn, "hardware %s", (std::string(what) + " kor table").c_str());
            table.addRow(row);
        }
    }
    timed.setStatus(runlog::exitStatus(os.pclose(stream)));
}

// A "Disk" node of the diskscan tree, with its place among them.
struct NumberedDisk {
    int number;
    const VtNode* node;
};

// The tree's disks by "Id", each list in tree order. Built once for the
// tree (the probe runs once per process): a SAN host has a thousand disks
// and asks for each of them.
const std::vector<NumberedDisk>& disksWithId(const VtNode* table, const std::string& id)
{
    static const VtNode* indexed = nullptr;
    static std::unordered_map<std::string, std::vector<NumberedDisk>> byId;
    static const std::vector<NumberedDisk> none;
    if (indexed != table) {
        byId.clear();
        forEachChild(table, "Disk", [](int number, const VtNode* disk) { byId[textOf(disk, "Id")].push_back({number, disk}); });
        indexed = table;
    }
    auto it = byId.find(id);
    return it == byId.end() ? none : it->second;
}

// Looks the disk up in the diskscan probe's tree: 1 when found, with its SAN
// facts; 0 (facts untouched) otherwise. Later matches overwrite earlier ones.
int getMoreScsiInfo(std::string deviceName, std::string& isSan, std::string& wwnn, std::string& wwpn,
                    std::string& sanAdapter)
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
        const int san = disk->getValue(nullptr, "isSAN", 0);
        const char* diskWwnn = disk->getValue(nullptr, "WWNN", "");
        const char* diskWwpn = disk->getValue(nullptr, "WWPN", "");
        ST_TRACE(traceMAX, fn, "Checking disk #%d: id=%s", candidate.number, id);
        if (deviceName != id) {
            ST_TRACE(traceMAX, fn, "%s", "Devices don't match, skipping.");
            continue;
        }
        ST_TRACE(traceMAX, fn, "disk #%d issan=%d wwnn=%s wwpn=%s", candidate.number, san, diskWwnn, diskWwpn);
        const VtNode* hba = disk->getChild("HBA", 0);
        if (!hba && san == 1) ST_TRACE(traceMIN, fn, "%s", "ERROR! Failed to find hba node for SAN disk");
        if (hba) {
            const char* hbaId = hba->getValue(nullptr, "Id", "");
            ST_TRACE(traceMAX, fn, "hba found: id=%s wwnn=%s wwpn=%s", hbaId, hba->getValue(nullptr, "WWNN", ""),
                     hba->getValue(nullptr, "WWPN", ""));
            sanAdapter = hbaId;
        }
        isSan = san == 1 ? "Y" : "N";
        wwnn = diskWwnn;
        wwpn = diskWwpn;
        result = 1;
    }
    ST_TRACE(traceMAX, fn, "result=%d", result);
    return result;
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

// The fixed row of a floppy or PCMCIA device.
KorTableRow* reportFixed(int* index, unsigned long type, const char* fn)
{
    ST_TRACE(traceMidEntry, fn, "hardware %s %d", "index=", *index);
    char zeros[64];
    std::snprintf(zeros, sizeof zeros, "%lu%lu%lu%lu", 0UL, 0UL, 0UL, 0UL);
    StorageRow r;
    r.type = type;
    r.id = md5Text(zeros);
    ++*index;
    return shapeStorageRow(*index, r);
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
    FILE* stream = os.popen("/usr/bin/ps -ef", "r");
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

int foundPreviousDisks(char* md5id, char* serial)
{
    if (bothEmpty(md5id, serial)) return 0;
    const std::string key = diskKey(md5id, serial);
    const int found = g_previousDisks.contains(key) ? 1 : 0;
    ST_TRACE(traceMAX, "foundPreviousDisks()", "hardware %s %s %s %i", "Was >", key.c_str(), "< found?", found);
    return found;
}

int addPreviousDisks(char* md5id, char* serial)
{
    const char* fn = "addPreviousDisks()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %s", "MD5ID=", md5id ? md5id : "", "serial=",
             serial ? serial : "");
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
    g_previousDisks.add(key);
    ST_TRACE(traceMAX, fn, "hardware %s %s", "Adding disk >", key.c_str());
    ST_TRACE(traceMidExit, fn, "hardware %s", "Return 1");
    return 1;
}

void clearPreviousDisks() { g_previousDisks.clear(); }

KorTableRow* reportFloppy(int* index) { return reportFixed(index, STORAGE_TYPE_FLOPPY, "reportFloppy()"); }

KorTableRow* reportPCMCIA(int* index) { return reportFixed(index, STORAGE_TYPE_MEMORY_CARD, "reportPCMCIA()"); }

KorTableRow* reportCDROMs(char* name, int* index, const std::string& iostatOutput)
{
    const char* fn = "reportCDROMs()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %d", "reportCDROMs for", name ? name : "", "index=", *index);
    if (!name || !isShortForm(name)) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "... path not properly formatted. Return NULL");
        return nullptr;
    }
    const std::string device(name, 6);
    std::string vendor, product, serial, line;
    size_t pos = 0;
    int state = 0;
    while (state < 3 && nextLine(iostatOutput, pos, kIostatLine, line)) {
        if (state == 0) {
            if (namesDevice(line, device)) state = 1;
            continue;
        }
        if (state == 1) {
            vendor = textAfter(line, "Vendor: ", " ");
            product = textAfter(line, "Product: ", "Revision: ");
            serial = textAfter(line, "Serial No: ", nullptr);
            const size_t end = std::find_if(serial.begin(), serial.end(),
                                            [](char c) { return static_cast<unsigned char>(c) <= ' '; }) -
                               serial.begin();
            serial.resize(end);
            // The line after this one says whether a medium is in, whatever
            // this one holds (a size here is not the drive's verdict).
            state = 2;
            continue;
        }
        if (showsNoMedium(line)) {
            ST_TRACE(traceMAX, fn, "hardware %s", "- done -");
        } else {
            ST_TRACE(traceMAX, fn, "hardware %s", "- not zero or -1, not expected... -");
            vendor.clear();
            product.clear();
            serial.clear();
        }
        state = 3;
    }
    if (vendor.empty() && product.empty()) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return nullptr;
    }
    StorageRow r;
    r.type = STORAGE_TYPE_CDROM;
    r.id = md5Text("0000");
    r.model = product;
    r.vendor = vendor;
    r.serial = serial;
    ++*index;
    ST_TRACE(traceMidExit, fn, "hardware %s %s %s %s", "CD/DVD vendor=", vendor.c_str(), "product=", product.c_str());
    return shapeStorageRow(*index, r);
}

KorTableRow* reportPhysHardDisk(char* charDevPath, int* index, int* notCdFlag, int* ioError)
{
    const char* fn = "reportPhysHardDisk()";
    ST_TRACE(traceMidEntry, fn, "hardware %s %s %s %d", "char_dev_path=", charDevPath ? charDevPath : "", "index=",
             *index);
    *notCdFlag = 0;
    if (!charDevPath) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "char_dev_path equal to NULL");
        return nullptr;
    }
    sys::System& os = sys::current();
    const int fd = os.open(charDevPath, O_RDONLY);
    if (fd < 0) {
        const int code = errno;
        const char* error = std::strerror(code);
        ST_TRACE(traceMIN, fn, "hardware %s %s", "strerr=", error);
        ST_TRACE(traceMID, fn, "hardware %s %s %s %s", "open of device", charDevPath, "failed :", error);
        // Solaris words EIO "I/O error"; other C libraries word it otherwise.
        if (code == EIO || std::strstr(error, "I/O error")) *ioError = 1;
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return nullptr;
    }
    dk_cinfo controller{};
    dk_geom geometry{};
    vtoc label{};
    if (os.ioctl(fd, DKIOCINFO, &controller) < 0) {
        ST_TRACE(traceMIN, fn, "hardware %s %s %s %s", "ioctl DKIOCINFO of device", charDevPath, "failed :",
                 std::strerror(errno));
        os.close(fd);
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return nullptr;
    }
    if (os.ioctl(fd, DKIOCGGEOM, &geometry) < 0 || os.ioctl(fd, DKIOCGVTOC, &label) < 0) {
        ST_TRACE(traceMID, fn, "hardware %s %s %s %s", "ioctl DKIOCGGEOM/DKIOCGVTOC of device", charDevPath,
                 "failed :", std::strerror(errno));
        os.close(fd);
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return nullptr;
    }
    os.close(fd);
    ST_TRACE(traceMAX, fn, "hardware %s", "dkiocggeom & dkiocgvtoc successful.");

    StorageRow r;
    r.type = controller.dki_ctype == DKC_DIRECT || controller.dki_ctype == DKC_SCSI_CCS ? STORAGE_TYPE_HARD_DISK
                                                                                        : STORAGE_TYPE_UNKNOWN;
    SCSIinfo scsi{};
    SCSIscan(charDevPath, &scsi);  // judged by the fields it filled
    if (scsi.product && *scsi.product) {
        r.model = scsi.product;
    } else {
        const std::string text(label.v_asciilabel, sys::boundedLength(label.v_asciilabel, sizeof label.v_asciilabel));
        r.model = text.substr(0, text.find(' '));
    }
    r.sizeMB = scsi.sizeMB > 0 ? scsi.sizeMB : labelSizeMB(geometry, label);
    r.cylinders = scsi.cylinders > 0 ? scsi.cylinders : geometry.dkg_ncyl;
    r.heads = scsi.heads > 0 ? scsi.heads : geometry.dkg_nhead;
    r.sectors = scsi.sectors > 0 ? scsi.sectors : geometry.dkg_nsect;
    r.vendor = scsi.vendor ? scsi.vendor : "";
    r.serial = scsi.serial ? scsi.serial : "";
    freeInfo(scsi);

    // The disk's identity when it has no serial: its controller's description.
    char description[1024];
    std::snprintf(description, sizeof description, "%.*s|%d|%d|%d|%d|%d|%d|%d|%.*s|%d|%d", DK_DEVLEN,
                  controller.dki_cname, controller.dki_ctype, controller.dki_flags, controller.dki_cnum,
                  static_cast<int>(controller.dki_addr), static_cast<int>(controller.dki_space),
                  static_cast<int>(controller.dki_prio), static_cast<int>(controller.dki_vec), DK_DEVLEN,
                  controller.dki_dname, static_cast<int>(controller.dki_unit), static_cast<int>(controller.dki_slave));
    ST_TRACE(traceMAX, fn, "hardware %s %s %s %s", "Current DiskInfo=", description, "Disk_Serial=", r.serial.c_str());

    // A slice other than the whole-disk one is part of a disk, not a disk.
    const int slice = sliceOf(charDevPath);
    if (slice >= 0 && slice < label.v_nparts && slice < V_NUMPAR) {
        ST_TRACE(traceMAX, fn, "hardware Slice number %d out of %d", slice, static_cast<int>(label.v_nparts));
        const int tag = label.v_part[slice].p_tag;
        ST_TRACE(traceMAX, fn, "hardware This partition tag=%d", tag);
        if (tag != V_BACKUP) {
            ST_TRACE(traceMAX, fn, "hardware %s", "It's not full disk but partition, return NULL");
            return nullptr;
        }
    }

    std::string md5id = md5Text(description);
    ST_TRACE(traceMAX, fn, "hardware %s %s %s %s", "Device=", charDevPath, "Disk_Id=", md5id.c_str());
    if (!addPreviousDisks(&md5id[0], &r.serial[0])) {
        ST_TRACE(traceMidExit, fn, "hardware %s", "Return NULL");
        return nullptr;
    }

    char geometryText[1024] = {};
    std::snprintf(geometryText, sizeof geometryText, "%d%d%d%ld", static_cast<int>(r.cylinders),
                  static_cast<int>(r.heads), static_cast<int>(r.sectors), static_cast<long>(r.sizeMB));
    r.id = md5Text(geometryText);
    r.device = charDevPath;
    getMoreScsiInfo(charDevPath, r.isSan, r.wwnn, r.wwpn, r.sanAdapter);
    ++*index;
    ST_TRACE(traceMidExit, fn, "hardware %s %d", "Return row, index=", *index);
    return shapeStorageRow(*index, r);
}

StorageGroup::StorageGroup() : KorGroup(STORAGE_GROUP, 1) {}

KorTable* StorageGroup::getTable()
{
    return api::guardedTable("StorageGroup::getTable()", [&]() -> KorTable* {
        const char* fn = "getTable()";
        ST_TRACE(traceMidEntry, fn, "hardware %s", "StorageGroup");
        clearPreviousDisks();
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        if (std::getenv("CHECK_ULTRIUM_TAPE_RUNNING") && isUltrium_tape_LT4772_running()) {
            ST_TRACE(traceMidExit, fn, "hardware %s", "StorageGroup: a backup is running, nothing asked");
            return table;
        }

        char* banner = ComponentIDGroup::getBanner();
        const std::string product = banner ? banner : "";
        std::free(banner);
        ST_TRACE(traceMAX, fn, "hardware %s %s", "product=", product.c_str());
        // Fujitsu Siemens machines are not asked for their CD/DVD drives.
        std::string iostat;
        bool haveIostat = false;
        if (product.find("Fujitsu Siemens") == std::string::npos) {
            haveIostat = runIostat(iostat);
            if (!haveIostat) ST_TRACE(traceMID, fn, "hardware %s", "iostat failed - no CD-ROMs will be reported");
        }

        sys::System& os = sys::current();
        int index = 0, counted = 0;
        if (sys::Dir* dir = os.opendir(kRawDiskDir)) {
            // The slices of one disk come next to each other: remembering the
            // last disk's digits is enough to skip its other slices.
            int last[3] = {-1, -1, -1};
            while (const char* entry = os.readdir(dir)) {
                if (std::strcmp(entry, ".") == 0 || std::strcmp(entry, "..") == 0) continue;
                std::string name = entry;
                const bool shortForm = isShortForm(name.c_str());
                if (shortForm && name[1] == last[0] && name[3] == last[1] && name[5] == last[2]) {
                    ST_TRACE(traceMAX, fn, "hardware %s %s", "... skipping", name.c_str());
                    continue;
                }
                std::string path = std::string(kRawDiskDir) + "/" + name;
                int notCd = 1, ioError = 0;
                KorTableRow* row = reportPhysHardDisk(&path[0], &index, &notCd, &ioError);
                ST_TRACE(traceMAX, fn, "hardware %s %d", "error from reportPhysHardDisk=", ioError);
                if (notCd == 0 && haveIostat && !row && ioError == 0) row = reportCDROMs(&name[0], &index, iostat);
                if (row) {
                    table->addRow(row);
                    ++counted;
                }
                if (shortForm) last[0] = name[1], last[1] = name[3], last[2] = name[5];
            }
            os.closedir(dir);
        } else {
            ST_TRACE(traceMID, fn, "hardware %s %s", "Can't open dierctory", kRawDiskDir);
        }

        reportByListing(*table, index, std::string("ls -la ") + kDevDir + " | grep disk", "floppy", reportFloppy);
        reportByListing(*table, index, std::string("ls -la ") + kDevDir + "| grep pcmcia", "pcmcia", reportPCMCIA);

        ST_TRACE(traceMidExit, fn, "hardware %s", "StorageGroup");
        if (counted == 0) {
            delete table;
            return nullptr;
        }
        return table;
    });
}

INVSCAN_REGISTER_GROUP(STORAGE_GROUP, StorageGroup);
