#pragma once
// The SCSI query layer: INQUIRY, READ CAPACITY and the format and geometry
// mode pages sent straight to a disk through the user SCSI pass-through
// (USCSICMD), decoded into one flat record. Each query owns the command,
// the control block and the areas its answer lands in: nothing is shared
// between calls.
#include <cstddef>
#include <cstdint>

// The bytes a command may read back.
const size_t SCSI_DATA_SIZE = 8192;

struct SCSIinfo {
    char* devName;  // a heap copy of the path, the caller's
    int fd;         // open only during SCSIscan; 0 after
    unsigned char dtype;  // INQUIRY byte 0, whole: 0 a disk, 5 a CD/DVD
    char* vendor;         // heap strings or null, the caller's
    char* product;
    char* serial;
    char* revision;
    unsigned long sizeMB;
    unsigned cylinders;
    unsigned heads;
    unsigned sectors;
    unsigned bytesPerSector;
};

struct ScsiCmd_t {
    unsigned char* cdb;
    uint32_t cdbLength;  // 6 or 10; the low byte counts
    const char* devName;  // for the trace lines; must not be null
    int fd;
    unsigned char* data;  // out: on success, the answer (that is, `buffer`)
    unsigned char* buffer;  // in: the caller's SCSI_DATA_SIZE bytes the answer is read into
};

// -1 when the INQUIRY succeeded and 0 when it failed: inverted on purpose;
// callers look at the fields. -1 too for a bad path (info untouched).
int SCSIscan(char* devName, SCSIinfo* info);
int ScsiQueryInquiry(SCSIinfo* info);
int ScsiQueryCapacity(SCSIinfo* info);
int ScsiQueryFormat(SCSIinfo* info);
int ScsiQueryGeometry(SCSIinfo* info);
int ScsiCmd(ScsiCmd_t* cmd);
int ScsiInquiryDecode(void* data, SCSIinfo* info);
int ScsiCapacityDecode(void* data, SCSIinfo* info);
int ScsiFormatDecode(void* page, SCSIinfo* info);
int ScsiGeometryDecode(void* page, SCSIinfo* info);

// A heap copy of `length` bytes of `text`, cleaned: mode 0 drops leading
// white space, keeps printable characters and folds each run of white space
// into one; mode 3 stops at the first character that is not printable.
// Both trim trailing white space. Null for null text or length 0.
char* CleanString(const char* text, int length, int mode);
