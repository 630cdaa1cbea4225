#include "common/util/SystemFile.h"

#include <fcntl.h>

#include <cerrno>
#include <vector>

#include "common/sys/System.h"

namespace util {

bool forEachSystemFileLine(sys::System& os, const char* path, const std::function<bool(const std::string&)>& line,
                           size_t limit)
{
    const int fd = os.open(path, O_RDONLY);
    if (fd < 0) return false;
    std::vector<char> buffer(64 * 1024);
    std::string pending, text;  // one line's buffer for every line: a long file is no stream of allocations
    size_t total = 0;
    bool going = true;
    while (going && total < limit) {
        const ssize_t n = os.read(fd, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        total += static_cast<size_t>(n);
        pending.append(buffer.data(), static_cast<size_t>(n));
        size_t start = 0, end;
        while (going && (end = pending.find('\n', start)) != std::string::npos) {
            size_t stop = end;
            if (stop > start && pending[stop - 1] == '\r') --stop;
            text.assign(pending, start, stop - start);
            going = line(text);
            start = end + 1;
        }
        pending.erase(0, start);
    }
    if (going && !pending.empty()) line(pending);  // a last line without its end
    os.close(fd);
    return true;
}

bool readSystemFile(sys::System& os, const char* path, std::string& text, size_t limit)
{
    text.clear();
    const int fd = os.open(path, O_RDONLY);
    if (fd < 0) return false;
    char buffer[8192];
    bool ok = true;
    for (;;) {
        const ssize_t n = os.read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = false;
        if (n <= 0) break;
        text.append(buffer, static_cast<size_t>(n));
        if (text.size() > limit) {
            ok = false;
            break;
        }
    }
    os.close(fd);
    if (!ok) text.clear();
    return ok;
}

}  // namespace util
