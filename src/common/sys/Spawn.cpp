#include "common/sys/Spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
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

int placeDescriptor(posix_spawn_file_actions_t* actions, int fd, int target)
{
    if (fd == SPAWN_CLOSED) return posix_spawn_file_actions_addclose(actions, target);
    if (fd == SPAWN_NULL)
        return posix_spawn_file_actions_addopen(actions, target, "/dev/null", target == 0 ? O_RDONLY : O_WRONLY, 0);
    return posix_spawn_file_actions_adddup2(actions, fd, target);
}

}  // namespace

int makePipe(int fds[2])
{
    return pipe2(fds, O_CLOEXEC) == 0 ? 0 : errno;
}

int spawn(const SpawnRequest& request, pid_t* pid)
{
    *pid = -1;
    if (request.argv.empty()) return EINVAL;
    std::vector<std::string> args(request.argv);
    std::vector<std::string> env = childEnvironment();
    std::vector<char*> argv = pointers(args), envp = pointers(env);

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
        error = request.searchPath ? posix_spawnp(pid, argv[0], &actions, &attributes, argv.data(), envp.data())
                                   : posix_spawn(pid, argv[0], &actions, &attributes, argv.data(), envp.data());
        if (error) *pid = -1;
    }
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

void killGroup(pid_t pid)
{
    if (pid <= 0) return;
    kill(-pid, SIGKILL);
    kill(pid, SIGKILL);  // should it have left its group
}

bool reap(pid_t pid, int* status)
{
    return reapBy(pid, status, -1);
}

bool reapBy(pid_t pid, int* status, long long deadlineMs)
{
    if (pid <= 0) return false;
    for (;;) {
        const pid_t r = waitpid(pid, status, deadlineMs < 0 ? 0 : WNOHANG);
        if (r == pid) return true;
        if (r < 0 && errno != EINTR) return false;
        if (r == 0) {
            if (monotonicMillis() >= deadlineMs) return false;
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
