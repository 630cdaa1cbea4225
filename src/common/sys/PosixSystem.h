#pragma once
// The calls that are the same on Solaris and Linux: files and devices,
// directories, memory mapping, run-time libraries and commands.
#include "common/sys/System.h"

namespace sys {

class PosixSystem : public System {
public:
    long gethostid() override;
    pid_t getpid() override;
    long sysconf(int name) override;

    time_t time() override;
    struct tm* localtime_r(const time_t* clock, struct tm* result) override;
    void setutxent() override;
    struct utmpx* getutxent() override;
    void endutxent() override;

    Dir* opendir(const char* path) override;
    const char* readdir(Dir* dir) override;
    int closedir(Dir* dir) override;
    int open(const char* path, int flags) override;
    int openRegular(const char* path) override;
    int close(int fd) override;
    int ioctl(int fd, int request, void* arg) override;
    ssize_t read(int fd, void* buf, size_t count) override;
    long long lseek(int fd, long long offset, int whence) override;
    void* mmap(size_t length, int fd, long long offset) override;
    int munmap(void* addr, size_t length) override;
    int statvfs64(const char* path, struct statvfs64* buf) override;

    void* dlopen(const char* path, int mode) override;
    void* dlsym(void* handle, const char* symbol) override;
    int dlclose(void* handle) override;

    FILE* popen(const char* command, const char* mode) override;
    int pclose(FILE* stream) override;
    int runCommand(const std::vector<std::string>& argv, int timeoutSeconds,
                   std::vector<std::string>& lines) override;
};

// Opens `path` to read only when it is a regular file, checked on the open
// descriptor: a FIFO, a device (/dev/zero) or a socket gives -1 with EINVAL,
// a folder EISDIR. The open never waits for a FIFO's writer; the descriptor
// is closed on exec and reads block as usual.
int openRegularFile(const char* path);

// The first `limit` bytes of the regular file at `path`; `cut` (when given)
// says whether it holds more. False with errno when it cannot be opened or read.
bool readRegularFile(const char* path, std::string& text, size_t limit, bool* cut = nullptr);

}  // namespace sys
