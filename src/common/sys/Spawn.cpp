#include "common/sys/Spawn.h"

#include "common/sys/ApiLevel.h"
#include "common/sys/Portable.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

extern char** environ;

namespace sys {

namespace {

// The caller's environment with LC_ALL=C in place of any LC_ALL of its own.
std::vector<std::string> childEnvironment()
{
    std::vector<std::string> env;
    for (char** e = environ; e && *e; ++e)
        if (std::strncmp(*e, "LC_ALL=", 7) != 0) env.emplace_back(*e);
    env.emplace_back("LC_ALL=C");
    return env;
}

std::vector<char*> pointers(std::vector<std::string>& strings)
{
    std::vector<char*> out;
    for (std::string& s : strings) out.push_back(&s[0]);
    out.push_back(nullptr);
    return out;
}

#if INVSCAN_MODERN_POSIX
int placeDescriptor(posix_spawn_file_actions_t* actions, int fd, int target)
{
    if (fd == SPAWN_CLOSED) return posix_spawn_file_actions_addclose(actions, target);
    if (fd == SPAWN_NULL)
        return posix_spawn_file_actions_addopen(actions, target, "/dev/null", target == 0 ? O_RDONLY : O_WRONLY, 0);
    return posix_spawn_file_actions_adddup2(actions, fd, target);
}

int spawnWithActions(const SpawnRequest& request, char* const* argv, char* const* envp, pid_t* pid)
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    if (int e = posix_spawn_file_actions_init(&actions)) return e;
    if (int e = posix_spawnattr_init(&attributes)) {
        posix_spawn_file_actions_destroy(&actions);
        return e;
    }
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    int error = 0;
    const int fds[3] = {request.stdinFd, request.stdoutFd, request.stderrFd};
    for (int target = 0; target < 3 && !error; ++target) error = placeDescriptor(&actions, fds[target], target);
    if (!error) error = posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    if (!error) error = posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                                  POSIX_SPAWN_SETSIGDEF);
    if (!error) error = posix_spawnattr_setpgroup(&attributes, 0);
    if (!error) error = posix_spawnattr_setsigmask(&attributes, &none);
    if (!error) error = posix_spawnattr_setsigdefault(&attributes, &all);
    if (!error) {
        error = request.searchPath ? posix_spawnp(pid, argv[0], &actions, &attributes, argv, envp)
                                   : posix_spawn(pid, argv[0], &actions, &attributes, argv, envp);
        if (error) *pid = -1;
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}
#endif

// The program a path or a PATH search names: an executable regular file, or
// the errno exec would give. Looked up before the fork, because the child
// may call nothing that allocates.
int resolveProgram(const SpawnRequest& request, std::string& path)
{
    const std::string& name = request.argv[0];
    std::vector<std::string> candidates;
    if (!request.searchPath || name.find('/') != std::string::npos) {
        candidates.push_back(name);
    } else {
        const char* search = std::getenv("PATH");
        std::string folders = search && *search ? search : "/usr/bin:/bin";
        size_t start = 0;
        for (;;) {
            const size_t end = folders.find(':', start);
            std::string folder = folders.substr(start, end == std::string::npos ? std::string::npos : end - start);
            candidates.push_back((folder.empty() ? std::string(".") : folder) + "/" + name);
            if (end == std::string::npos) break;
            start = end + 1;
        }
    }
    int error = ENOENT;
    for (const std::string& candidate : candidates) {
        struct stat st;
        if (stat(candidate.c_str(), &st) != 0) {
            if (candidates.size() == 1) error = errno;
            continue;
        }
        if (!S_ISREG(st.st_mode) || access(candidate.c_str(), X_OK) != 0) {
            error = EACCES;
            continue;
        }
        path = candidate;
        return 0;
    }
    return error;
}

// One past the highest descriptor the child may have inherited. Every one
// the limit allows, unless the limit is so high that closing them all would
// cost more than the child's run: then those open now, and a margin.
int descriptorBound()
{
    const long kCloseAll = 4096;
    struct rlimit limit;
    long bound = kCloseAll;
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY &&
        limit.rlim_cur < static_cast<rlim_t>(kCloseAll))
        return static_cast<int>(limit.rlim_cur);
    if (DIR* d = opendir("/proc/self/fd")) {
        long highest = -1;
        while (struct dirent* e = readdir(d)) {
            char* end = nullptr;
            const long fd = std::strtol(e->d_name, &end, 10);
            if (end != e->d_name && *end == '\0' && fd > highest) highest = fd;
        }
        closedir(d);
        if (highest + 1 + 1024 > bound) bound = highest + 1 + 1024;
    }
    return static_cast<int>(bound);
}

// The child's side of the fork: async-signal-safe calls only, on memory the
// parent prepared. Never returns.
[[noreturn]] void becomeChild(const int fds[3], int nullFd, int bound, const char* path, char* const* argv,
                              char* const* envp)
{
    struct sigaction byDefault;
    std::memset(&byDefault, 0, sizeof byDefault);
    byDefault.sa_handler = SIG_DFL;
    for (int signal = 1; signal < 128; ++signal) sigaction(signal, &byDefault, nullptr);
    setpgid(0, 0);
    for (int target = 0; target < 3; ++target) {
        const int fd = fds[target];
        if (fd == SPAWN_CLOSED)
            close(target);
        else if (dup2(fd == SPAWN_NULL ? nullFd : fd, target) < 0)
            _exit(127);
        else if (fd == target)
            fcntl(target, F_SETFD, 0);  // dup2 onto itself keeps close-on-exec
    }
    for (int fd = 3; fd < bound; ++fd) close(fd);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(path, argv, envp);
    _exit(127);
}

int spawnWithFork(const SpawnRequest& request, char* const* argv, char* const* envp, pid_t* pid)
{
    std::string path;
    if (int e = resolveProgram(request, path)) return e;
    const int fds[3] = {request.stdinFd, request.stdoutFd, request.stderrFd};
    int nullFd = -1;
    if (fds[0] == SPAWN_NULL || fds[1] == SPAWN_NULL || fds[2] == SPAWN_NULL) {
        nullFd = openCloexec("/dev/null", O_RDWR);
        if (nullFd < 0) return errno;
    }
    const int bound = descriptorBound();
    // No handler of the host's may run in the child before its dispositions
    // are reset: every signal is held across the fork.
    sigset_t all, saved;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &saved);
    const pid_t child = fork();
    if (child == 0) becomeChild(fds, nullFd, bound, path.c_str(), argv, envp);
    const int error = child < 0 ? errno : 0;
    pthread_sigmask(SIG_SETMASK, &saved, nullptr);
    closeFd(nullFd);
    if (error) return error;
    setpgid(child, child);  // as the child does: its group exists before we may kill it
    *pid = child;
    return 0;
}

}  // namespace

int makePipe(int fds[2])
{
#if INVSCAN_MODERN_POSIX
    if (callForms() == CallForms::Native) return pipe2(fds, O_CLOEXEC) == 0 ? 0 : errno;
#endif
    if (pipe(fds) != 0) return errno;
    int error = setCloexec(fds[0]);
    if (!error) error = setCloexec(fds[1]);
    if (error) {
        closeFd(fds[0]);
        closeFd(fds[1]);
    }
    return error;
}

int spawn(const SpawnRequest& request, pid_t* pid)
{
    *pid = -1;
    if (request.argv.empty()) return EINVAL;
    std::vector<std::string> args(request.argv);
    std::vector<std::string> env = childEnvironment();
    std::vector<char*> argv = pointers(args), envp = pointers(env);
#if INVSCAN_MODERN_POSIX
    if (callForms() == CallForms::Native) return spawnWithActions(request, argv.data(), envp.data(), pid);
#endif
    return spawnWithFork(request, argv.data(), envp.data(), pid);
}

void killGroup(pid_t pid)
{
    if (pid <= 0) return;
    // Ours while it runs or waits unreaped as a zombie (its pid and group
    // cannot be reused then); once someone else reaped it, no longer.
    siginfo_t info;
    std::memset(&info, 0, sizeof info);
    if (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0) return;
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);  // should it have left its group
}

Child reap(pid_t pid, int* status)
{
    return reapBy(pid, status, -1);
}

Child reapBy(pid_t pid, int* status, long long deadlineMs)
{
    if (pid <= 0) return Child::Gone;
    for (;;) {
        const pid_t r = waitpid(pid, status, deadlineMs < 0 ? 0 : WNOHANG);
        if (r == pid) return Child::Exited;
        if (r < 0 && errno != EINTR) return Child::Gone;
        if (r == 0) {
            if (monotonicMillis() >= deadlineMs) return Child::Running;
            struct timespec pause = {0, 5 * 1000 * 1000};
            nanosleep(&pause, nullptr);
        }
    }
}

long long monotonicMillis()
{
    struct timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<long long>(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void closeFd(int& fd)
{
    if (fd != -1) ::close(fd);
    fd = -1;
}

}  // namespace sys
