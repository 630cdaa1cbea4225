#if defined(__linux__)

#include "common/sys/LinuxHostId.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "common/sys/LinuxAnswers.h"

namespace sys {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The first 8 hexadecimal digits of a machine id; false when the line has fewer.
bool machineIdPrefix(const std::string& line, uint32_t& id)
{
    if (line.size() < 8) return false;
    uint32_t value = 0;
    for (size_t i = 0; i < 8; ++i) {
        const int digit = hexDigit(line[i]);
        if (digit < 0) return false;
        value = (value << 4) | static_cast<uint32_t>(digit);
    }
    id = value;
    return true;
}

// "aa:bb:cc:dd:ee:ff" to its last four bytes; false for another form or all zeros.
bool macSuffix(const std::string& text, uint32_t& id)
{
    if (text.size() != 17) return false;
    unsigned char bytes[6];
    bool anySet = false;
    for (size_t i = 0; i < 6; ++i) {
        const int high = hexDigit(text[3 * i]), low = hexDigit(text[3 * i + 1]);
        if (high < 0 || low < 0 || (i < 5 && text[3 * i + 2] != ':')) return false;
        bytes[i] = static_cast<unsigned char>(high * 16 + low);
        anySet = anySet || bytes[i] != 0;
    }
    if (!anySet) return false;
    id = static_cast<uint32_t>(bytes[2]) << 24 | static_cast<uint32_t>(bytes[3]) << 16 |
         static_cast<uint32_t>(bytes[4]) << 8 | bytes[5];
    return true;
}

// glibc's "/etc/hostid": its first 4 bytes, from a regular file only (never
// a FIFO left in its place, which would block the scan).
bool readHostidFile(const std::string& path, int32_t& value)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    struct stat st;
    bool got = false;
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        unsigned char bytes[sizeof value];
        size_t have = 0;
        for (ssize_t n; have < sizeof bytes && (n = ::read(fd, bytes + have, sizeof bytes - have)) != 0;) {
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) break;
            have += static_cast<size_t>(n);
        }
        if (have == sizeof bytes) {
            std::memcpy(&value, bytes, sizeof value);
            got = true;
        }
    }
    ::close(fd);
    return got;
}

}  // namespace

uint32_t localHostId(const std::string& root, std::string& source)
{
    // glibc's file: exactly what sethostid() wrote, an int32_t in native order.
    int32_t value = 0;
    if (readHostidFile(root + "/etc/hostid", value)) {
        source = "/etc/hostid";
        return static_cast<uint32_t>(value);
    }
    uint32_t id = 0;
    for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
        if (machineIdPrefix(linuxanswers::firstLine(root + path), id)) {
            source = path;
            return id;
        }
    }
    const std::string net = root + "/sys/class/net";
    std::vector<std::string> names;
    if (DIR* d = ::opendir(net.c_str())) {
        while (const dirent* e = ::readdir(d))
            if (e->d_name[0] != '.') names.push_back(e->d_name);
        ::closedir(d);
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        if (name == "lo") continue;
        if (macSuffix(linuxanswers::firstLine(net + "/" + name + "/address"), id)) {
            source = "MAC of " + name;
            return id;
        }
    }
    source = "none";
    return 0;
}

}  // namespace sys

#endif  // __linux__
