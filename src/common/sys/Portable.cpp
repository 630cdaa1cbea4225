#include "common/sys/Portable.h"

#include "common/sys/ApiLevel.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace sys {

namespace {
std::atomic<CallForms> g_forms{INVSCAN_MODERN_POSIX ? CallForms::Native : CallForms::Solaris10};
}

void useCallForms(CallForms forms)
{
    g_forms = INVSCAN_MODERN_POSIX ? forms : CallForms::Solaris10;
}

CallForms callForms() { return g_forms; }

std::size_t boundedLength(const char* text, std::size_t bound)
{
    const void* nul = std::memchr(text, '\0', bound);
    return nul ? static_cast<std::size_t>(static_cast<const char*>(nul) - text) : bound;
}

char* boundedCopy(const char* text, std::size_t bound)
{
    const std::size_t n = boundedLength(text, bound);
    char* copy = static_cast<char*>(std::malloc(n + 1));
    if (!copy) return nullptr;
    std::memcpy(copy, text, n);
    copy[n] = '\0';
    return copy;
}

int setCloexec(int fd)
{
    const int current = fcntl(fd, F_GETFD);
    if (current < 0 || fcntl(fd, F_SETFD, current | FD_CLOEXEC) < 0) return errno;
    return 0;
}

int openCloexec(const char* path, int flags, int mode)
{
#if INVSCAN_MODERN_POSIX
    if (g_forms == CallForms::Native) return ::open(path, flags | O_CLOEXEC, mode);
#endif
    // A child another host thread starts between these two calls inherits
    // the descriptor: the price of a system without O_CLOEXEC.
    const int fd = ::open(path, flags, mode);
    if (fd >= 0 && setCloexec(fd) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

std::FILE* memoryStream(const char* data, std::size_t size)
{
    if (size == 0) return std::fopen("/dev/null", "r");
#if INVSCAN_MODERN_POSIX
    if (g_forms == CallForms::Native) return fmemopen(const_cast<char*>(data), size, "r");
#endif
    std::FILE* f = std::tmpfile();
    if (!f) return nullptr;
    if (std::fwrite(data, 1, size, f) != size || std::fflush(f) != 0 || std::fseek(f, 0, SEEK_SET) != 0) {
        const int error = errno;
        std::fclose(f);
        errno = error;
        return nullptr;
    }
    return f;
}

}  // namespace sys
