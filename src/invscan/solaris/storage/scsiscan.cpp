#include "invscan/solaris/storage/scsiscan.h"

#include <fcntl.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/sys/System.h"
#include "framework/Trace.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/scsiscan";
#define SCSI_MAX(fn, ...) CcLogWrapper::traceMAX(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)
#define SCSI_ENTRY(fn, ...) CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)
#define SCSI_EXIT(fn, ...) CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, fn, __VA_ARGS__)

const size_t kPageArea = 24;

// The command blocks, copied by each query into its own request: nothing a
// command writes outlives the query that sent it.
const unsigned char kInquiry[6] = {0x12, 0, 0, 0, 0x30, 0};
const unsigned char kCapacity[10] = {0x25, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const unsigned char kFormat[6] = {0x1A, 0, 0x03, 0, 0xFF, 0};
const unsigned char kGeometry[6] = {0x1A, 0, 0x04, 0, 0xFF, 0};

uint32_t be32(const unsigned char* p)
{
    return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
           (static_cast<uint32_t>(p[2]) << 8) | p[3];
}
unsigned be16(const unsigned char* p) { return (static_cast<unsigned>(p[0]) << 8) | p[1]; }

bool startsWell(unsigned char c) { return c != ' ' && std::isalnum(c); }

// One command and the area its answer is read into, owned by the query.
struct Exchange {
    unsigned char cdb[10];
    unsigned char buffer[SCSI_DATA_SIZE];
};

// Sends the command `cdb` to the record's device; the data (in `x`), or null.
template <size_t N>
unsigned char* send(SCSIinfo* info, const unsigned char (&cdb)[N], Exchange& x)
{
    std::memcpy(x.cdb, cdb, N);
    ScsiCmd_t cmd{x.cdb, static_cast<uint32_t>(N), info->devName, info->fd, nullptr, x.buffer};
    return ScsiCmd(&cmd) == 0 ? cmd.data : nullptr;
}

// The mode page in a MODE SENSE(6) answer, copied into its 24-byte area:
// never more than the area holds, whatever the page-length byte says.
void copyPage(const unsigned char* answer, unsigned char* area)
{
    const unsigned char* page = answer + 4 + answer[3];
    std::memset(area, 0, kPageArea);
    size_t count = page[1];  // the two header bytes included, so the page's last two are left out
    if (count < 2) count = 2;
    if (count > kPageArea) count = kPageArea;
    std::memcpy(area, page, count);
}

}  // namespace

char* CleanString(const char* text, int length, int mode)
{
    if (!text || length <= 0) return nullptr;
    std::string out;
    int i = 0;
    while (i < length && text[i] && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
    for (; i < length && text[i]; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (mode == 3 && !std::isprint(c)) break;
        if (std::isspace(c)) {
            if (!out.empty() && out.back() != ' ') out.push_back(' ');
        } else if (std::isprint(c)) {
            out.push_back(static_cast<char>(c));
        }
    }
    while (!out.empty() && std::isspace(static_cast<unsigned char>(out.back()))) out.pop_back();
    return strdup(out.c_str());
}

int ScsiCmd(ScsiCmd_t* cmd)
{
    const char* fn = "ScsiCmd()";
    SCSI_ENTRY(fn, "hardware %s", "");
    if (!cmd || !cmd->cdb || (cmd->cdbLength & 0xFF) == 0 || cmd->fd < 0 || !cmd->devName || !cmd->buffer) {
        SCSI_EXIT(fn, "hardware %s", "ScsiCmd: Bad parameters. Return -1");
        return -1;
    }
    std::memset(cmd->buffer, 0, SCSI_DATA_SIZE);
    uscsi_cmd block;
    std::memset(&block, 0, sizeof block);
    block.uscsi_flags = USCSI_READ | USCSI_ISOLATE | USCSI_SILENT;
    block.uscsi_cdb = reinterpret_cast<caddr_t>(cmd->cdb);
    block.uscsi_cdblen = static_cast<uchar_t>(cmd->cdbLength & 0xFF);
    block.uscsi_bufaddr = reinterpret_cast<caddr_t>(cmd->buffer);
    block.uscsi_buflen = SCSI_DATA_SIZE;
    errno = 0;
    sys::current().ioctl(cmd->fd, USCSICMD, &block);  // judged by the status and errno, as the driver reports
    if (block.uscsi_status == 0 && errno <= 0) {
        cmd->data = cmd->buffer;
        SCSI_EXIT(fn, "hardware %s", "return 0");
        return 0;
    }
    const int error = errno;
    SCSI_EXIT(fn, "hardware %s %s %x %s %i %s", cmd->devName, ": SCSI command 0x", cmd->cdb[0], "failed: e=", error,
              std::strerror(error));
    return -1;
}

int ScsiInquiryDecode(void* data, SCSIinfo* info)
{
    const char* fn = "ScsiInquiryDecode()";
    if (!data || !info) return -1;
    const auto* d = static_cast<const unsigned char*>(data);
    const char* text = static_cast<const char*>(data);
    const char* dev = info->devName ? info->devName : "";
    SCSI_MAX(fn, "hardware %s %s %.*s %s %.*s %s", dev, "SCSI INQUIRY: vendor=<", 8, text + 8, "> product=<", 16,
             text + 16, ">");
    SCSI_MAX(fn, "hardware %s %s %.*s %s %.*s %s", dev, "SCSI INQUIRY: rev=<", 4, text + 32, "> serial=<", 12,
             text + 36, ">");
    if (startsWell(d[8])) info->vendor = CleanString(text + 8, 8, 0);
    if (startsWell(d[16])) info->product = CleanString(text + 16, 16, 0);
    if (startsWell(d[32])) info->revision = CleanString(text + 32, 4, 0);
    if (d[36] != 0 && startsWell(d[36])) {
        char* s = CleanString(text + 36, 12, 3);
        if (s && std::strlen(s) < 6) {
            SCSI_MAX(fn, "hardware %s %s %s %s", dev, ": Serial value <", s, "> too short.  Ignored.");
            std::free(s);
        } else {
            info->serial = s;
        }
    }
    info->dtype = d[0];
    SCSI_MAX(fn, "hardware %s %s %i", dev, "Dtype (0=direct access drive, 5=cdrom):", info->dtype);
    SCSI_EXIT(fn, "hardware %s", ": Return 0");
    return 0;
}

int ScsiCapacityDecode(void* data, SCSIinfo* info)
{
    const char* fn = "ScsiCapacityDecode()";
    const auto* d = static_cast<const unsigned char*>(data);
    const uint32_t blocks = be32(d), length = be32(d + 4);  // the last block's address: one block short, so it was built
    const char* dev = info->devName ? info->devName : "";
    SCSI_MAX(fn, "hardware %s %s %d %s %d %s", dev, ": SCSI CAPACITY: Blocks=<", static_cast<int>(blocks),
             "> BlockSize=<", static_cast<int>(length), ">");
    unsigned long size = 0;
    if (length > 1024) {
        // The usual divisor (1024 / length) would be 0 here: such blocks
        // (2048 on optical media, 4096 on 4Kn disks) give the true size instead.
        size = static_cast<unsigned long>(static_cast<unsigned long long>(blocks) * length / (1024 * 1024));
    } else if (length > 0) {
        // Single precision at every step: stored, so that x87 registers'
        // extra precision cannot round 2097151 blocks of 512 differently.
        volatile float mb = static_cast<float>(blocks);
        mb = mb / static_cast<float>(1024 / length);
        mb = mb * (1.0f / 1024.0f);
        size = static_cast<unsigned long>(mb);
    }
    info->sizeMB = size;
    info->bytesPerSector = length;
    SCSI_MAX(fn, "hardware %s %s %lu %s", dev, ": Size in MB: <", size, ">");
    return 0;
}

int ScsiFormatDecode(void* page, SCSIinfo* info)
{
    const auto* p = static_cast<const unsigned char*>(page);
    info->sectors = be16(p + 10);
    info->bytesPerSector = be16(p + 12);
    SCSI_MAX("ScsiFormatDecode()", "hardware %s %s %d %s %d %s", info->devName ? info->devName : "",
             ": SCSI FORMAT: #sect=<", static_cast<int>(info->sectors), "> secsize=<",
             static_cast<int>(info->bytesPerSector), ">");
    return 0;
}

int ScsiGeometryDecode(void* page, SCSIinfo* info)
{
    const auto* p = static_cast<const unsigned char*>(page);
    info->heads = p[5];
    info->cylinders = (static_cast<unsigned>(p[2]) << 16) | (static_cast<unsigned>(p[3]) << 8) | p[4];
    SCSI_MAX("ScsiGeometryDecode()", "hardware %s %s %d %s %d %s", info->devName ? info->devName : "",
             ": SCSI GEOMETRY: #tracks=<", static_cast<int>(info->heads), "> PhyCyl=<",
             static_cast<int>(info->cylinders), ">");
    return 0;
}

int ScsiQueryInquiry(SCSIinfo* info)
{
    Exchange x;
    unsigned char* data = send(info, kInquiry, x);
    return data ? ScsiInquiryDecode(data, info) : -1;
}

int ScsiQueryCapacity(SCSIinfo* info)
{
    Exchange x;
    unsigned char* data = send(info, kCapacity, x);
    return data ? ScsiCapacityDecode(data, info) : -1;
}

namespace {
// MODE SENSE of one page, its 24-byte area handed to `decode`; -1 when the
// command fails.
int queryModePage(SCSIinfo* info, const unsigned char (&command)[6], int (*decode)(void*, SCSIinfo*))
{
    Exchange x;
    unsigned char* data = send(info, command, x);
    if (!data) return -1;
    unsigned char page[kPageArea];
    copyPage(data, page);
    return decode(page, info);
}
}  // namespace

int ScsiQueryFormat(SCSIinfo* info) { return queryModePage(info, kFormat, ScsiFormatDecode); }

int ScsiQueryGeometry(SCSIinfo* info) { return queryModePage(info, kGeometry, ScsiGeometryDecode); }

int SCSIscan(char* devName, SCSIinfo* info)
{
    const char* fn = "SCSIscan()";
    SCSI_ENTRY(fn, "hardware %s %s", "devName=", devName ? devName : "");
    if (!devName || !*devName) {
        SCSI_EXIT(fn, "hardware %s %d", "bad char path name passed into scsiscan.Return=", -1);
        return -1;
    }
    sys::System& os = sys::current();
    const int fd = os.open(devName, O_RDWR | O_NDELAY | O_NONBLOCK);
    if (fd < 0) {
        SCSI_EXIT(fn, "hardware %s %d", "cannot open device path.Return=", -1);
        return -1;
    }
    std::memset(info, 0, sizeof *info);
    info->fd = fd;
    info->devName = strdup(devName);
    const bool inquired = ScsiQueryInquiry(info) == 0;
    if (!inquired) SCSI_MAX(fn, "hardware %s", "ScsiQueryInquiry returned error.");
    if (inquired && info->dtype == 0) {
        ScsiQueryCapacity(info);
        ScsiQueryFormat(info);
        ScsiQueryGeometry(info);
    }
    if (info->fd >= 0) {
        os.close(info->fd);
        info->fd = 0;
    }
    const int result = inquired ? -1 : 0;  // inverted, on purpose
    SCSI_EXIT(fn, "hardware %s %d", "Return =", result);
    return result;
}
