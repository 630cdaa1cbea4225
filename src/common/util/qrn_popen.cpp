#include "common/util/qrn_popen.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "common/sys/Spawn.h"

namespace {
struct PipeHandle {
    int pid;
    int input;   // parent's write end of the child's stdin; 0 = none
    int output;  // parent's read end of the child's stdout; 0 = none
    FILE* stream;
    int start;
    int timeout;
    bool exited;
    int status;
};
}  // namespace

extern "C" void* qrn_popen(char const* file, int timeoutSeconds, ...)
{
    if (!file) return nullptr;
    const char* argv[QRN_MAX_ARGS + 2];
    int argc = 0;
    argv[argc++] = file;
    va_list args;
    va_start(args, timeoutSeconds);
    for (const char* a = va_arg(args, const char*); a; a = va_arg(args, const char*)) {
        if (argc > QRN_MAX_ARGS) {
            va_end(args);
            return nullptr;
        }
        argv[argc++] = a;
    }
    va_end(args);
    argv[argc] = nullptr;

    int in[2], out[2];
    if (sys::makePipe(in) != 0) return nullptr;
    if (sys::makePipe(out) != 0) {
        sys::closeFd(in[0]);
        sys::closeFd(in[1]);
        return nullptr;
    }
    sys::SpawnRequest request;
    request.argv.assign(argv, argv + argc);
    request.searchPath = true;
    request.stdinFd = in[0];
    request.stdoutFd = out[1];
    request.stderrFd = sys::SPAWN_CLOSED;  // the command runs without a standard error
    pid_t pid;
    const int error = sys::spawn(request, &pid);
    sys::closeFd(in[0]);
    sys::closeFd(out[1]);
    auto* h = static_cast<PipeHandle*>(std::calloc(1, sizeof(PipeHandle)));
    if (!h) {
        sys::closeFd(in[1]);
        sys::closeFd(out[0]);
        if (!error) {
            sys::killGroup(pid);
            int status;
            sys::reap(pid, &status);
        }
        return nullptr;
    }
    h->start = static_cast<int>(time(nullptr));
    h->timeout = timeoutSeconds;
    if (error) {
        // A command that cannot be executed ends at once, with no output and
        // the status a failed exec gives.
        sys::closeFd(in[1]);
        sys::closeFd(out[0]);
        h->exited = true;
        h->status = 255 << 8;
        return h;
    }
    h->pid = pid;
    h->input = in[1];
    h->output = out[0];
    return h;
}

extern "C" int qrn_pgets(char* buf, int size, void* handle)
{
    auto* h = static_cast<PipeHandle*>(handle);
    if (!h) return 0;
    if (!h->stream && h->output) h->stream = fdopen(h->output, "r");
    if (h->stream && size > 1) {
        struct pollfd p = {h->output, POLLIN, 0};
        if (poll(&p, 1, 0) > 0 && (p.revents & (POLLIN | POLLHUP)) &&
            fgets(buf, size - 1, h->stream) != nullptr)  // one byte short, as hosts expect
            return 1;
    }
    if (h->exited) return -1;
    int status = 0;
    const sys::Child child = sys::reapBy(h->pid, &status, 0);
    if (child != sys::Child::Running) {
        // A status the host took before us (Gone) reads as a clean end.
        h->exited = true;
        h->status = child == sys::Child::Exited ? status : 0;
        usleep(50);  // let the last output arrive
        return 0;
    }
    if (h->start >= 1 && h->timeout >= 1 && time(nullptr) > h->start + h->timeout) {
        sys::killGroup(h->pid);
        // Reap it now: the kill is certain to end it, and a long-lived host
        // must not keep zombies.
        sys::reap(h->pid, &status);
        h->exited = true;
        h->status = status;
        return -1;
    }
    return 0;
}

extern "C" void qrn_pclose(void* handle)
{
    auto* h = static_cast<PipeHandle*>(handle);
    if (!h) return;
    if (h->input) close(h->input);
    if (h->stream)
        fclose(h->stream);  // closes the output descriptor as well
    else if (h->output)
        close(h->output);
    if (!h->exited) {
        // Our ends are closed, so the command sees end of input and a broken
        // pipe; reap it so no zombie is left behind.
        int status;
        if (sys::reapBy(h->pid, &status, 0) == sys::Child::Running) {
            sys::killGroup(h->pid);
            sys::reap(h->pid, &status);
        }
    }
    free(h);
}
