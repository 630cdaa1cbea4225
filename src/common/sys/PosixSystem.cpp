#include "common/sys/PosixSystem.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

#include "common/sys/ChildOutput.h"
#include "common/sys/Portable.h"
#include "common/sys/Spawn.h"

namespace sys {

namespace {
class PosixDir : public Dir {
public:
    explicit PosixDir(DIR* d) : m_dir(d) {}
    ~PosixDir() override { ::closedir(m_dir); }
    DIR* m_dir;
};

// Appends `chunk` to `pending`, moving each completed line into `lines`.
void splitLines(std::string& pending, const char* chunk, size_t n, std::vector<std::string>& lines)
{
    pending.append(chunk, n);
    size_t start = 0, nl;
    while ((nl = pending.find('\n', start)) != std::string::npos) {
        lines.emplace_back(pending, start, nl - start);
        start = nl + 1;
    }
    pending.erase(0, start);
}
}  // namespace

long PosixSystem::gethostid() { return ::gethostid(); }
long PosixSystem::sysconf(int name) { return ::sysconf(name); }
pid_t PosixSystem::getpid() { return ::getpid(); }

time_t PosixSystem::time() { return ::time(nullptr); }
struct tm* PosixSystem::localtime_r(const time_t* clock, struct tm* result) { return ::localtime_r(clock, result); }
void PosixSystem::setutxent() { ::setutxent(); }
struct utmpx* PosixSystem::getutxent() { return ::getutxent(); }
void PosixSystem::endutxent() { ::endutxent(); }

Dir* PosixSystem::opendir(const char* path)
{
    DIR* d = ::opendir(path);
    return d ? new PosixDir(d) : nullptr;
}

const char* PosixSystem::readdir(Dir* dir)
{
    auto* d = static_cast<PosixDir*>(dir);
    if (!d) return nullptr;
    struct dirent* e = ::readdir(d->m_dir);
    return e ? e->d_name : nullptr;
}

int PosixSystem::closedir(Dir* dir)
{
    delete dir;
    return 0;
}

int PosixSystem::open(const char* path, int flags) { return openCloexec(path, flags); }
int PosixSystem::openRegular(const char* path) { return openRegularFile(path); }

int openRegularFile(const char* path)
{
    const int fd = openCloexec(path, O_RDONLY | O_NONBLOCK);
    if (fd < 0) return -1;
    struct stat st;
    int error = 0;
    if (::fstat(fd, &st) != 0) {
        error = errno;
    } else if (S_ISDIR(st.st_mode)) {
        error = EISDIR;
    } else if (!S_ISREG(st.st_mode)) {
        error = EINVAL;
    } else {
        const int flags = ::fcntl(fd, F_GETFL);
        if (flags < 0 || ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK) != 0) error = errno;
    }
    if (error) {
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

bool readRegularFile(const char* path, std::string& text, size_t limit, bool* cut)
{
    text.clear();
    if (cut) *cut = false;
    const int fd = openRegularFile(path);
    if (fd < 0) return false;
    char buffer[16384];
    int error = 0;
    for (;;) {
        // One byte past the limit tells a file of exactly `limit` bytes from a longer one.
        const size_t room = limit - text.size() + 1;
        const ssize_t n = ::read(fd, buffer, room < sizeof buffer ? room : sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) error = errno;
        if (n <= 0) break;
        text.append(buffer, static_cast<size_t>(n));
        if (text.size() > limit) {
            text.resize(limit);
            if (cut) *cut = true;
            break;
        }
    }
    ::close(fd);
    if (error) {
        text.clear();
        errno = error;
        return false;
    }
    return true;
}
int PosixSystem::close(int fd) { return ::close(fd); }
int PosixSystem::ioctl(int fd, int request, void* arg) { return ::ioctl(fd, request, arg); }
ssize_t PosixSystem::read(int fd, void* buf, size_t count) { return ::read(fd, buf, count); }

long long PosixSystem::lseek(int fd, long long offset, int whence)
{
    return static_cast<long long>(::lseek(fd, static_cast<off_t>(offset), whence));
}

void* PosixSystem::mmap(size_t length, int fd, long long offset)
{
    if (offset != static_cast<long long>(static_cast<off_t>(offset))) {
        errno = EOVERFLOW;  // out of reach of this build's file offsets
        return MAP_FAILED;
    }
    return ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, static_cast<off_t>(offset));
}

int PosixSystem::munmap(void* addr, size_t length) { return ::munmap(addr, length); }
int PosixSystem::statvfs64(const char* path, struct statvfs64* buf) { return ::statvfs64(path, buf); }

void* PosixSystem::dlopen(const char* path, int mode) { return ::dlopen(path, mode); }
void* PosixSystem::dlsym(void* handle, const char* symbol) { return ::dlsym(handle, symbol); }
int PosixSystem::dlclose(void* handle) { return ::dlclose(handle); }

namespace {
// The children behind the streams popen handed out, for pclose.
std::mutex g_streamsLock;
std::map<FILE*, pid_t> g_streams;
}  // namespace

// Through the shell, as popen does, but started like every other child.
FILE* PosixSystem::popen(const char* command, const char* mode)
{
    if (!command || !mode || (mode[0] != 'r' && mode[0] != 'w')) {
        errno = EINVAL;
        return nullptr;
    }
    const bool reading = mode[0] == 'r';
    int ends[2];
    if (int e = makePipe(ends)) {
        errno = e;
        return nullptr;
    }
    SpawnRequest request;
    request.argv = {"/bin/sh", "-c", command};
    (reading ? request.stdoutFd : request.stdinFd) = ends[reading ? 1 : 0];
    pid_t pid;
    const int e = spawn(request, &pid);
    int mine = ends[reading ? 0 : 1];
    int theirs = ends[reading ? 1 : 0];
    closeFd(theirs);
    FILE* stream = e ? nullptr : fdopen(mine, reading ? "r" : "w");
    if (!stream) {
        const int saved = e ? e : errno;
        closeFd(mine);
        if (pid > 0) {
            killGroup(pid);
            int status;
            reap(pid, &status);
        }
        errno = saved;
        return nullptr;
    }
    std::lock_guard<std::mutex> hold(g_streamsLock);
    g_streams[stream] = pid;
    return stream;
}

int PosixSystem::pclose(FILE* stream)
{
    pid_t pid = -1;
    {
        std::lock_guard<std::mutex> hold(g_streamsLock);
        auto it = g_streams.find(stream);
        if (it == g_streams.end()) {
            errno = ECHILD;
            return -1;
        }
        pid = it->second;
        g_streams.erase(it);
    }
    std::fclose(stream);
    // A status the host took before us is not ours to report: the command
    // ended, and its output was all it said.
    int status = 0;
    return reap(pid, &status) == Child::Exited ? status : 0;
}

int PosixSystem::runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines)
{
    lines.clear();
    int out[2];
    if (int e = makePipe(out)) {
        errno = e;
        return -1;
    }
    SpawnRequest request;
    request.argv = argv;
    request.searchPath = true;
    request.stdoutFd = out[1];
    pid_t pid;
    const int started = spawn(request, &pid);
    closeFd(out[1]);
    if (started) {
        closeFd(out[0]);
        errno = started;  // it never started
        return -1;
    }

    const long long deadline = timeoutSeconds > 0 ? monotonicMillis() + 1000LL * timeoutSeconds : -1;
    ChildOutput child(pid, out[0], -1, deadline, static_cast<size_t>(-1));
    std::string pending;
    char chunk[4096];
    long n;
    while ((n = child.read(chunk, sizeof chunk)) > 0) splitLines(pending, chunk, static_cast<size_t>(n), lines);
    if (!pending.empty()) lines.push_back(pending);
    int status = 0;
    switch (child.finish(&status)) {
    case ChildOutput::End::Exited:
        break;
    case ChildOutput::End::Gone:
        return 0;  // its status went to the host: it ended
    default:
        errno = ETIMEDOUT;
        return -1;
    }
    if (!WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace sys
