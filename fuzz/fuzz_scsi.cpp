// A disk whose every answer is fuzzer bytes: the controller, geometry and
// label structures, then INQUIRY, READ CAPACITY and the two mode pages, all
// read through the Storage group's disk reader and the SCSI layer's decoders.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "common/replay/SimulatedSystem.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/storage/StorageGroup.h"

namespace {

// Input: chunks, each a two-byte length (low byte first) and that many bytes, in the order
// DKIOCINFO, DKIOCGGEOM, DKIOCGVTOC (each padded or cut to its structure),
// INQUIRY, READ CAPACITY, page 3, page 4. A missing chunk fails its request;
// every other call fails as on an empty machine.
class FuzzedDisk : public replay::SimulatedSystem {
public:
    std::vector<std::string> answers;

    int open(const char*, int) override { return 77; }
    int close(int) override { return 0; }
    int ioctl(int, int request, void* arg) override
    {
        switch (request) {
        case DKIOCINFO: return fill(0, arg, sizeof(dk_cinfo));
        case DKIOCGGEOM: return fill(1, arg, sizeof(dk_geom));
        case DKIOCGVTOC: return fill(2, arg, sizeof(vtoc));
        case USCSICMD: {
            auto* cmd = static_cast<uscsi_cmd*>(arg);
            const unsigned char op = static_cast<unsigned char>(cmd->uscsi_cdb[0]);
            const size_t which = op == 0x12 ? 3 : op == 0x25 ? 4 : cmd->uscsi_cdb[2] == 3 ? 5 : 6;
            if (which >= answers.size()) return fail(-1);
            const std::string& a = answers[which];
            std::memcpy(cmd->uscsi_bufaddr, a.data(), a.size() < cmd->uscsi_buflen ? a.size() : cmd->uscsi_buflen);
            return 0;
        }
        default: return fail(-1);
        }
    }

private:
    template <typename T>
    static T fail(T result)
    {
        errno = EIO;
        return result;
    }
    int fill(size_t which, void* out, size_t size) const
    {
        if (which >= answers.size()) return fail(-1);
        std::memset(out, 0, size);
        std::memcpy(out, answers[which].data(), answers[which].size() < size ? answers[which].size() : size);
        return 0;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static FuzzedDisk disk;
    static bool installed = (sys::setCurrent(&disk), true);
    (void)installed;
    disk.answers.clear();
    for (size_t i = 0; i + 1 < size;) {
        const size_t length = data[i] | (data[i + 1] << 8);
        i += 2;
        const size_t n = length < size - i ? length : size - i;
        disk.answers.emplace_back(reinterpret_cast<const char*>(data + i), n);
        i += n;
    }
    StorageScan scan(disk);
    StorageFacts facts;
    for (const char* path : {"/dev/rdsk/c0t0d0s3", "/dev/rdsk/c0t0d0p0", "/dev/rdsk/c10t0d0s15"}) {
        StorageDevice device;
        bool ioError = false;
        if (scan.reportPhysHardDisk(path, device, ioError)) facts.devices.push_back(device);
    }
    KorTable table(5, 1);
    shapeStorageRows(facts, table);
    return 0;
}
