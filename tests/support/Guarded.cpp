#include "support/Guarded.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>

namespace testsupport {

int inGuardedChild(const std::function<int()>& body, unsigned seconds)
{
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0) return -1;
    if (pid == 0) {
        signal(SIGALRM, SIG_DFL);
        alarm(seconds);  // ends the child
        _exit(body() & 0xFF);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace testsupport
