#include "common/util/smbios.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"

namespace {

// `length` bytes of physical memory from `address`: mapped, else sought and
// read. Null on any failure; the device is closed on every path.
unsigned char* readPhysical(uint32_t address, size_t length)
{
    sys::System& os = sys::current();
    auto* buffer = static_cast<unsigned char*>(std::malloc(length ? length : 1));
    if (!buffer) return nullptr;
    const int fd = os.open(sys::solaris::path(sys::solaris::Id::MemoryDevice), O_RDONLY);
    if (fd < 0) {
        std::free(buffer);
        return nullptr;
    }
    long page = os.sysconf(_SC_PAGESIZE);
    if (page <= 0) page = 4096;
    const uint32_t base = address - address % static_cast<uint32_t>(page);
    const size_t span = length + (address - base);
    void* map = os.mmap(span, fd, base);
    bool ok = false;
    if (map != MAP_FAILED) {
        std::memcpy(buffer, static_cast<const unsigned char*>(map) + (address - base), length);
        os.munmap(map, span);
        ok = true;
    } else if (os.lseek(fd, address, SEEK_SET) == static_cast<long long>(address)) {
        size_t got = 0;
        while (got < length) {
            const ssize_t n = os.read(fd, buffer + got, length - got);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            got += static_cast<size_t>(n);
        }
        ok = got == length;
    }
    os.close(fd);
    if (!ok) {
        std::free(buffer);
        return nullptr;
    }
    return buffer;
}

bool checksumIsZero(const unsigned char* p, size_t length)
{
    unsigned char sum = 0;
    for (size_t i = 0; i < length; ++i) sum = static_cast<unsigned char>(sum + p[i]);
    return sum == 0;
}

char* copyOf(const char* text) { return strdup(text ? text : ""); }

// The System Wake-up Type names of the SMBIOS standard.
const char* wakeUpName(unsigned value)
{
    static const char* const names[] = {"Reserved",    "Other",     "Unknown",          "APM Timer", "Modem Ring",
                                        "LAN Remote", "Power Switch", "PCI PME#",      "AC Power Restored"};
    return value <= 8 ? names[value] : "";
}

struct SystemInfo {
    std::string manufacturer, product, wakeUp, version, serial;
};

// Every type 1 structure overwrites the last: the last one wins.
int takeSystemInfo(const unsigned char* s, const char* strings, void* context)
{
    if (s[0] != 1) return 0;
    auto* info = static_cast<SystemInfo*>(context);
    const unsigned length = s[1];
    auto field = [&](unsigned offset) { return length > offset ? getString_SMBIOS(strings, s[offset]) : ""; };
    info->manufacturer = field(4);
    info->product = field(5);
    info->version = field(6);
    info->serial = field(7);
    info->wakeUp = length > 24 ? wakeUpName(s[24]) : "";
    return 0;
}

}  // namespace

unsigned int getInt16_SMBIOS(const unsigned char* p) { return static_cast<unsigned>(p[0] | (p[1] << 8)); }

uint32_t getInt32_SMBIOS(const unsigned char* p)
{
    return getInt16_SMBIOS(p) + (static_cast<uint32_t>(p[2]) << 16) + (static_cast<uint32_t>(p[3]) << 24);
}

const char* getString_SMBIOS(const char* strings, int n)
{
    static const char empty[] = "";
    if (n < 1) return empty;
    const char* s = strings;
    while (n > 1 && *s) {
        s += std::strlen(s) + 1;
        --n;
    }
    return s;  // past the last string: the empty one that ends the set
}

int find_SMBIOS(SMBIOS_Locator* locator)
{
    std::memset(locator, 0, sizeof *locator);
    unsigned char* area = readPhysical(SMBIOS_BIOS_AREA, SMBIOS_BIOS_AREA_LENGTH);
    if (!area) return -1;
    int result = -1;
    for (uint32_t at = 0; at + 16 <= SMBIOS_BIOS_AREA_LENGTH; at += 16) {
        const unsigned char* p = area + at;
        if (std::memcmp(p, "_SM_", 4) == 0 && p[5] >= 4 && at + p[5] <= SMBIOS_BIOS_AREA_LENGTH &&
            checksumIsZero(p, p[5])) {
            locator->smbiosMajor = p[6];
            locator->smbiosMinor = p[7];
        } else if (std::memcmp(p, "_DMI_", 5) == 0 && checksumIsZero(p, 15)) {
            locator->dmiMajor = p[14] >> 4;
            locator->dmiMinor = p[14] & 0x0F;
            locator->tableLength = static_cast<int>(getInt16_SMBIOS(p + 6));
            locator->tableAddress = getInt32_SMBIOS(p + 8);
            locator->structureCount = static_cast<int>(getInt16_SMBIOS(p + 12));
            locator->table = readPhysical(locator->tableAddress, static_cast<size_t>(locator->tableLength));
            result = 0;
            break;
        }
    }
    std::free(area);
    return result;
}

void free_SMBIOS(SMBIOS_Locator* locator)
{
    std::free(locator->table);
    locator->table = nullptr;
}

int scan_SMBIOS(const SMBIOS_Locator* locator, SMBIOS_Callback callback, void* context)
{
    if (!locator || !locator->table) return -1;
    const unsigned char* table = locator->table;
    const long length = locator->tableLength;
    long at = 0;
    for (int count = 0; count < locator->structureCount && at + 4 <= length; ++count) {
        const long formatted = table[at + 1];
        if (formatted < 4 || at + formatted > length) break;  // a header that cannot be right
        // The string set ends with two NULs, both inside the table.
        long end = at + formatted;
        while (end + 1 < length && (table[end] != 0 || table[end + 1] != 0)) ++end;
        if (end + 1 >= length) break;
        end += 2;
        if (callback(table + at, reinterpret_cast<const char*>(table + at + formatted), context) != 0) break;
        at = end;
    }
    return 0;
}

char* getTypeFromProd(const char* product, char* out)
{
    std::string type;
    const char* text = product ? product : "";
    if (const char* bracket = std::strchr(text, '[')) {
        if (std::strlen(bracket + 1) > 4) type.assign(bracket + 1, 4);
    } else if (std::strlen(text) == 7) {
        type.assign(text, 4);
    }
    std::strcpy(out, type.c_str());
    return out;
}

int getTypeFromProd_Vantor(const char* manufacturer, const char* product, char* out)
{
    if (!manufacturer || !product || std::strncmp(manufacturer, "Zyx", 3) != 0) return 0;
    const char* open = std::strstr(product, "-[");
    const char* close = open ? std::strstr(open + 2, "]-") : nullptr;
    if (!close || close - (open + 2) != 7) return 0;
    std::memcpy(out, open + 2, 4);
    out[4] = '\0';
    return 1;
}

int SMBIOS_GetSystemInfo(char** manufacturer, char** product, char** machineType, char** version, char** serial)
{
    SMBIOS_Locator locator;
    if (find_SMBIOS(&locator) != 0) return -1;
    SystemInfo info;
    scan_SMBIOS(&locator, takeSystemInfo, &info);
    free_SMBIOS(&locator);
    *manufacturer = copyOf(info.manufacturer.c_str());
    *product = copyOf(info.product.c_str());
    *version = copyOf(info.version.c_str());
    *serial = copyOf(info.serial.c_str());
    // The wake-up type is read and not returned: the machine type takes its place.
    char type[8] = "";
    if (getTypeFromProd_Vantor(info.manufacturer.c_str(), info.product.c_str(), type))
        *machineType = copyOf(type);
    else if (info.manufacturer == "Zyx")
        *machineType = copyOf(getTypeFromProd(info.product.c_str(), type));
    else
        *machineType = copyOf(info.version.c_str());
    return 0;
}

void dump_smbios(int index, const unsigned char* data, unsigned long length, int flag)
{
    if (flag || !data) return;
    char name[64];
    std::snprintf(name, sizeof name, "smbios_%d.txt", index);
    if (FILE* text = std::fopen(name, "w")) {
        for (unsigned long line = 0; line < length; line += 16) {
            std::fprintf(text, "%08lX", line);
            for (unsigned long i = line; i < line + 16; ++i)
                i < length ? std::fprintf(text, " %02X", data[i]) : std::fprintf(text, "   ");
            std::fputc(' ', text);
            for (unsigned long i = line; i < line + 16 && i < length; ++i)
                std::fputc(std::isprint(data[i]) ? data[i] : '?', text);
            std::fputc('\n', text);
        }
        std::fclose(text);
    }
    std::snprintf(name, sizeof name, "smbios_%d.raw", index);
    for (const char* raw : {static_cast<const char*>(name), "smbios.bin"})
        if (FILE* f = std::fopen(raw, "wb")) {
            std::fwrite(data, 1, length, f);
            std::fclose(f);
        }
}
