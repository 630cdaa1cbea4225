#include "common/replay/SimulatedDisks.h"

#include <algorithm>
#include <cstring>

namespace replay {

std::string bigEndian(unsigned long long value, int n)
{
    std::string b(static_cast<size_t>(n), '\0');
    for (int i = n - 1; i >= 0; --i, value >>= 8) b[static_cast<size_t>(i)] = static_cast<char>(value & 0xFF);
    return b;
}

std::string scsiInquiry(unsigned char type, const std::string& vendor, const std::string& product,
                        const std::string& revision, const std::string& serial)
{
    std::string b(48, ' ');
    b[0] = static_cast<char>(type);
    b.replace(8, std::min<size_t>(vendor.size(), 8), vendor, 0, 8);
    b.replace(16, std::min<size_t>(product.size(), 16), product, 0, 16);
    b.replace(32, std::min<size_t>(revision.size(), 4), revision, 0, 4);
    b.replace(36, std::min<size_t>(serial.size(), 12), serial, 0, 12);
    return b;
}

std::string modeSense(const std::string& page) { return std::string("\0\0\0\x08", 4) + std::string(8, '\0') + page; }

std::string formatPage(unsigned sectorsPerTrack, unsigned bytesPerSector)
{
    return std::string("\x03\x16", 2) + std::string(8, '\0') + bigEndian(sectorsPerTrack, 2) +
           bigEndian(bytesPerSector, 2) + std::string(10, '\0');
}

std::string rigidGeometryPage(unsigned cylinders, unsigned heads)
{
    return std::string("\x04\x16", 2) + bigEndian(cylinders, 3) + bigEndian(heads, 1) + std::string(18, '\0');
}

void installDisk(SimulatedSystem& os, const std::string& path, const SimulatedDisk& disk)
{
    os.devices[path].ioctl = [disk](int request, void* arg) {
        auto fails = [&disk](const char* name) { return disk.failing.find(name) != std::string::npos; };
        switch (request) {
        case DKIOCINFO:
            if (fails("DKIOCINFO")) break;
            *static_cast<dk_cinfo*>(arg) = disk.controller;
            return 0;
        case DKIOCGGEOM:
            if (fails("DKIOCGGEOM")) break;
            *static_cast<dk_geom*>(arg) = disk.geometry;
            return 0;
        case DKIOCGVTOC:
            if (fails("DKIOCGVTOC")) break;
            *static_cast<vtoc*>(arg) = disk.label;
            return 0;
        case USCSICMD: {
            auto* block = static_cast<uscsi_cmd*>(arg);
            const auto* cdb = reinterpret_cast<const unsigned char*>(block->uscsi_cdb);
            const auto exact = disk.commands.find(std::string(block->uscsi_cdb, block->uscsi_cdblen));
            const std::string& answer = exact != disk.commands.end() ? exact->second
                                        : cdb[0] == 0x12             ? disk.inquiry
                                        : cdb[0] == 0x25 ? disk.capacity
                                        : cdb[2] == 3    ? disk.formatPage
                                                         : disk.geometryPage;
            if (answer.empty() || answer.size() > block->uscsi_buflen) break;
            std::memcpy(block->uscsi_bufaddr, answer.data(), answer.size());
            return 0;
        }
        default: return errno = ENOTTY, -1;
        }
        return errno = EIO, -1;
    };
}

}  // namespace replay
