#include "support/Guarded.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>

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

ChildText textFromChild(const std::function<std::string()>& body, bool leakCheck)
{
    ChildText result;
    int fds[2];
    if (pipe(fds) != 0) return result;
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0) {
        close(fds[0]);
        close(fds[1]);
        return result;
    }
    if (pid == 0) {
        close(fds[0]);
        const std::string text = body();
        size_t sent = 0;
        while (sent < text.size()) {
            const ssize_t n = write(fds[1], text.data() + sent, text.size() - sent);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) break;
            sent += static_cast<size_t>(n);
        }
        close(fds[1]);
        const int status = sent == text.size() ? 0 : 3;
        if (!leakCheck) _exit(status);
        std::exit(status);  // a sanitizer build's leak checker runs here
    }
    close(fds[1]);
    char buffer[4096];
    for (ssize_t got; (got = read(fds[0], buffer, sizeof buffer)) != 0;) {
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) break;
        result.text.append(buffer, static_cast<size_t>(got));
    }
    close(fds[0]);
    while (waitpid(pid, &result.status, 0) < 0)
        if (errno != EINTR) return result;
    result.ended = WIFEXITED(result.status) && WEXITSTATUS(result.status) == 0;
    return result;
}

}  // namespace testsupport
