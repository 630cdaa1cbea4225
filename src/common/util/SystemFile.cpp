#include "common/util/SystemFile.h"

#include <fcntl.h>

#include <cerrno>
#include <vector>

#include "common/sys/System.h"

namespace util {

namespace {

// Up to `limit` bytes of the file into `text` (one past it when there are
// more, so callers can tell). False when it cannot be opened or read.
bool readUpTo(sys::System& os, const char* path, std::string& text, size_t limit)
{
    text.clear();
    const int fd = os.openRegular(path);
    if (fd < 0) return false;
    char buffer[8192];
    bool ok = true;
    while (text.size() <= limit) {
        const size_t room = limit - text.size() + 1;
        const ssize_t n = os.read(fd, buffer, room < sizeof buffer ? room : sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = false;
        if (n <= 0) break;
        text.append(buffer, static_cast<size_t>(n));
    }
    os.close(fd);
    if (!ok) text.clear();
    return ok;
}

}  // namespace

bool forEachSystemFileLine(sys::System& os, const char* path, const std::function<bool(const std::string&)>& line,
                           size_t limit)
{
    const int fd = os.openRegular(path);
    if (fd < 0) return false;
    std::vector<char> buffer(64 * 1024);
    std::string pending, text;  // one line's buffer for every line: a long file is no stream of allocations
    size_t total = 0;
    bool going = true;
    while (going && total < limit) {
        const size_t room = limit - total;
        const ssize_t n = os.read(fd, buffer.data(), room < buffer.size() ? room : buffer.size());
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        total += static_cast<size_t>(n);
        // What is pending holds no line end: look only at what this read added,
        // or a long line is searched again after every read.
        size_t start = 0, end, from = pending.size();
        pending.append(buffer.data(), static_cast<size_t>(n));
        while (going && (end = pending.find('\n', from)) != std::string::npos) {
            size_t stop = end;
            if (stop > start && pending[stop - 1] == '\r') --stop;
            text.assign(pending, start, stop - start);
            going = line(text);
            start = from = end + 1;
        }
        pending.erase(0, start);
    }
    if (going && !pending.empty()) line(pending);  // a last line without its end
    os.close(fd);
    return true;
}

bool readSystemFile(sys::System& os, const char* path, std::string& text, size_t limit)
{
    if (!readUpTo(os, path, text, limit)) return false;
    if (text.size() <= limit) return true;
    text.clear();
    return false;
}

bool readSystemFileHead(sys::System& os, const char* path, std::string& text, size_t limit, bool* cut)
{
    if (cut) *cut = false;
    if (!readUpTo(os, path, text, limit)) return false;
    if (text.size() > limit) {
        if (cut) *cut = true;
        const size_t lastEnd = limit ? text.rfind('\n', limit - 1) : std::string::npos;
        text.resize(lastEnd == std::string::npos ? 0 : lastEnd + 1);
    }
    return true;
}

}  // namespace util
