#include "common/sys/PosixSystem.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace sys {

namespace {
class PosixDir : public Dir {
public:
    explicit PosixDir(DIR* d) : m_dir(d) {}
    ~PosixDir() override { ::closedir(m_dir); }
    DIR* m_dir;
};

long long monotonicMillis()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<long long>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

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

int PosixSystem::open(const char* path, int flags) { return ::open(path, flags | O_CLOEXEC); }
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

void* PosixSystem::dlopen(const char* path, int mode) { return ::dlopen(path, mode); }
void* PosixSystem::dlsym(void* handle, const char* symbol) { return ::dlsym(handle, symbol); }
int PosixSystem::dlclose(void* handle) { return ::dlclose(handle); }

FILE* PosixSystem::popen(const char* command, const char* mode) { return ::popen(command, mode); }
int PosixSystem::pclose(FILE* stream) { return ::pclose(stream); }

int PosixSystem::runCommand(const std::vector<std::string>& argv, int timeoutSeconds, std::vector<std::string>& lines)
{
    lines.clear();
    if (argv.empty()) {
        errno = EINVAL;
        return -1;
    }
    // Everything the child needs is made before fork.
    std::vector<char*> args;
    for (const std::string& a : argv) args.push_back(const_cast<char*>(a.c_str()));
    args.push_back(nullptr);
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0) return -1;
    // Closed by a successful exec; otherwise the child writes its errno here.
    int execError[2];
    if (pipe2(execError, O_CLOEXEC) != 0) {
        ::close(out[0]);
        ::close(out[1]);
        return -1;
    }
    const int devnull = ::open("/dev/null", O_RDWR | O_CLOEXEC);

    const pid_t pid = fork();
    if (pid < 0) {
        const int saved = errno;
        for (int fd : {out[0], out[1], execError[0], execError[1], devnull})
            if (fd >= 0) ::close(fd);
        errno = saved;
        return -1;
    }
    if (pid == 0) {
        setpgid(0, 0);  // its own group, so a time-out ends whatever it started
        if (devnull >= 0) {
            dup2(devnull, 0);
            dup2(devnull, 2);
        }
        dup2(out[1], 1);
        execvp(args[0], args.data());
        const int error = errno;
        if (::write(execError[1], &error, sizeof error) < 0) {
            // the parent then sees a plain exit 127
        }
        _exit(127);
    }
    ::close(out[1]);
    ::close(execError[1]);
    if (devnull >= 0) ::close(devnull);

    const long long deadline = timeoutSeconds > 0 ? monotonicMillis() + 1000LL * timeoutSeconds : -1;
    std::string pending;
    bool timedOut = false;
    char chunk[4096];
    for (;;) {
        int wait = -1;
        if (deadline >= 0) {
            const long long left = deadline - monotonicMillis();
            if (left <= 0) {
                timedOut = true;
                break;
            }
            wait = static_cast<int>(left);
        }
        struct pollfd p = {out[0], POLLIN, 0};
        const int r = poll(&p, 1, wait);
        if (r < 0 && errno == EINTR) continue;
        if (r < 0) break;
        if (r == 0) continue;  // the deadline check above ends it
        const ssize_t n = ::read(out[0], chunk, sizeof chunk);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        splitLines(pending, chunk, static_cast<size_t>(n), lines);
    }
    ::close(out[0]);
    if (!pending.empty()) lines.push_back(pending);
    // A child that closed its output may still run: the deadline holds for it too.
    int status = 0;
    pid_t r = 0;
    while (!timedOut && deadline >= 0 && (r = waitpid(pid, &status, WNOHANG)) == 0) {
        if (monotonicMillis() >= deadline) {
            timedOut = true;
            break;
        }
        struct timespec pause = {0, 10 * 1000 * 1000};
        nanosleep(&pause, nullptr);
    }
    if (timedOut) {
        kill(-pid, SIGKILL);
        kill(pid, SIGKILL);  // in case it had not yet made its group
    }
    if (r != pid) {
        do {
            r = waitpid(pid, &status, 0);
        } while (r < 0 && errno == EINTR);
    }
    int error = 0;
    ssize_t got;
    do {
        got = ::read(execError[0], &error, sizeof error);
    } while (got < 0 && errno == EINTR);
    ::close(execError[0]);
    if (got == static_cast<ssize_t>(sizeof error)) {
        errno = error;  // it never started
        return -1;
    }
    if (timedOut) {
        errno = ETIMEDOUT;
        return -1;
    }
    if (r != pid || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

}  // namespace sys
