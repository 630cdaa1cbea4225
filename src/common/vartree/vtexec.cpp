#include "common/vartree/vtexec.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "common/sys/ChildOutput.h"
#include "common/sys/Portable.h"
#include "common/sys/Spawn.h"
#include "framework/NimCfg.h"
#include "framework/RunLog.h"
#include "framework/Trace.h"

VtExecInfo::~VtExecInfo()
{
    delete[] message;
    delete root;
}

// ---- the child process ----------------------------------------------------------

VtProcess::VtProcess()
{
    // Close-on-exec keeps these pipes out of every other child; the spawn
    // gives the child the copies it needs.
    m_pipesOk = sys::makePipe(m_stdinPipe) == 0 && sys::makePipe(m_stdoutPipe) == 0 &&
                sys::makePipe(m_stderrPipe) == 0;
    m_stdin = new VtOStream_Unix(m_stdinPipe[1]);
    m_stdout = new VtIStream_Unix(m_stdoutPipe[0]);
    m_stderr = new VtIStream_Unix(m_stderrPipe[0]);
}

VtProcess::~VtProcess()
{
    delete m_stdin;
    delete m_stdout;
    delete m_stderr;
    closeUnusedHandles();
}

void VtProcess::closeUnusedHandles()
{
    for (int* fd : {&m_stdinPipe[0], &m_stdoutPipe[1], &m_stderrPipe[1]}) sys::closeFd(*fd);
}

namespace {

const char* const kSource = "./../../../src/common/vartree/vtexec";

// The error log, created 0644 or truncated with its mode reset to 0644, and
// its first line the start time. Opened here, not in the child, and never
// through a link or into anything but a regular file: the folder may be
// shared, and the scan runs as root.
int openErrorLog(const char* errorLog)
{
    if (!errorLog) return -1;
    const int flags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK;
    int fd = sys::openCloexec(errorLog, flags | O_CREAT | O_EXCL, 0644);
    if (fd < 0 && errno == EEXIST) {
        fd = sys::openCloexec(errorLog, flags);
        struct stat st;
        if (fd >= 0 && (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || fchmod(fd, 0644) != 0 || ftruncate(fd, 0) != 0))
            sys::closeFd(fd);
    }
    if (fd < 0) return -1;
    char stamp[256];
    const time_t now = time(nullptr);
    struct tm local;
    size_t n = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-y2k"  // the locale's own date form is wanted
    if (localtime_r(&now, &local)) n = strftime(stamp, sizeof stamp, "CPUID START TIMESTAMP = %c\n", &local);
#pragma GCC diagnostic pop
    if (n > 0 && write(fd, stamp, n) < 0) {
        // the probe's own lines still follow
    }
    return fd;
}

}  // namespace

VtProcess* VtProcess::create(const char* program, const char* args, const char* errorLog)
{
    auto* p = new VtProcess;
    if (!p->m_pipesOk || !program) {
        delete p;
        return nullptr;
    }
    enum { MAX_ARGS = 63 };
    sys::SpawnRequest request;
    request.argv.emplace_back(program);
    if (args) {
        std::string copy(args);
        char* save = nullptr;
        for (char* t = strtok_r(&copy[0], " ", &save); t && request.argv.size() < MAX_ARGS;
             t = strtok_r(nullptr, " ", &save))
            request.argv.emplace_back(t);
    }
    int log = openErrorLog(errorLog);
    request.stdinFd = p->m_stdinPipe[0];
    request.stdoutFd = p->m_stdoutPipe[1];
    request.stderrFd = log >= 0 ? log : p->m_stderrPipe[1];
    pid_t pid;
    p->m_startError = sys::spawn(request, &pid);
    sys::closeFd(log);
    if (p->m_startError == EAGAIN || p->m_startError == ENOMEM) {
        // No process could be made: the caller may try again later.
        const int error = p->m_startError;
        delete p;
        errno = error;
        return nullptr;
    }
    // A program that cannot be executed leaves no child: its output reads
    // as empty, as from a child that failed to exec.
    if (!p->m_startError) p->m_pid = pid;
    p->closeUnusedHandles();
    return p;
}

void VtProcess::destroy()
{
    if (m_pid >= 0) sys::killGroup(m_pid);  // only while it is still ours
    m_pid = -1;
    m_exitValue = -1;
}

int VtProcess::exitValue() { return m_exitValue; }

int VtProcess::waitFor()
{
    if (m_pid >= 1 && m_exitValue < 0) {
        int status = 0;
        if (sys::reap(m_pid, &status) == sys::Child::Exited && WIFEXITED(status)) m_exitValue = WEXITSTATUS(status);
    }
    return exitValue();
}

// ---- the response header ------------------------------------------------------------

VtExecInfo* vtParseProgramOutput(VtIStream* out)
{
    auto* info = new VtExecInfo;
    if (!out) return info;
    VtILineStream lines(out);
    char line[256];
    const char* got;
    while ((got = lines.getline(line, sizeof line, -1)) != nullptr && line[0] == ';') {
    }
    if (!got) return info;

    const char* p = line;
    const int major = std::atoi(p);
    while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
    int minor = -1;
    if (*p == '.') {
        ++p;
        if (std::isdigit(static_cast<unsigned char>(*p))) {
            minor = std::atoi(p);
            while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
            while (std::isspace(static_cast<unsigned char>(*p))) ++p;
        }
    }
    int result = -1;
    if (std::isdigit(static_cast<unsigned char>(*p))) {
        result = std::atoi(p);
        while (std::isdigit(static_cast<unsigned char>(*p))) ++p;
        while (std::isspace(static_cast<unsigned char>(*p))) ++p;
    }
    if (p == line || result < 0 || major < 1 || minor < 0) return info;

    info->result = result;
    info->major = major;
    info->minor = minor;
    info->message = vtStrDup(p);
    info->root = vtParseNodeDump(&lines);
    return info;
}

namespace {

// The probe's standard output as a stream for the node-dump reader, read
// with the scanner's deadline and the output bound; either bound reached
// reads as the end.
class BoundedOutput : public VtIStream {
public:
    BoundedOutput(sys::ChildOutput& child, std::string* copy) : m_child(child), m_copy(copy) {}

    int read(char* buffer, unsigned int length) override
    {
        const long n = m_child.read(buffer, length);
        if (n > 0 && m_copy && !m_child.overflowed()) m_copy->append(buffer, static_cast<size_t>(n));
        return static_cast<int>(n);
    }

private:
    sys::ChildOutput& m_child;
    std::string* m_copy;  // what was read, for a capture
};

VtProbeTap* g_tap = nullptr;

int fdOf(VtIStream* stream) { return static_cast<VtIStream_Unix*>(stream)->fd(); }

// A run past a bound is a failed run: no header, no tree.
void discard(VtExecInfo& info)
{
    info.result = -1;
    delete[] info.message;
    info.message = nullptr;
    delete info.root;
    info.root = nullptr;
}

}  // namespace

void vtSetProbeTap(VtProbeTap* tap) { g_tap = tap; }

namespace {

// vtExecProgram, keeping what the probe printed and its exit status (-1:
// none) when `copy` is given.
VtExecInfo* execProgram(const char* program, const char* args, const char* errorLog, std::string* copy, int* exitStatus)
{
    runlog::Timed timed(std::string(program ? program : "") + (args && *args ? std::string(" ") + args : ""));
    VtProcess* process = VtProcess::create(program, args, errorLog);
    const int log = getCcLogHw();
    if (!process) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, "vtExecProgram()", "[E] %s could not be started: %s",
                               program ? program : "", std::strerror(errno));
        return nullptr;
    }
    if (process->startError())
        CcLogWrapper::traceMIN(log, __LINE__, kSource, "vtExecProgram()", "[E] %s could not be executed: %s", program,
                               std::strerror(process->startError()));

    // Probes are meant to run unbounded; a long-lived host cannot wait
    // forever, so the scanner's time-out bounds the whole run.
    const int seconds = NimCfg::getTimeout();
    const long long deadline = sys::monotonicMillis() + 1000LL * seconds;
    sys::ChildOutput child(process->pid(), fdOf(process->getStdout()), fdOf(process->getStderr()), deadline,
                           VT_MAX_OUTPUT_BYTES, false);
    BoundedOutput output(child, copy);
    VtExecInfo* info = vtParseProgramOutput(&output);
    // Our ends closed first, so a probe still writing gets SIGPIPE instead of
    // blocking; then it is waited for, killed past a bound, and reaped: a
    // long-lived host must not collect zombies. A host that ignores SIGCHLD
    // or reaps children itself takes the status first (Gone): the probe
    // ended, and its output is what it says.
    process->getStdout()->close();
    process->getStderr()->close();
    int status = 0;
    const sys::ChildOutput::End end = child.finish(&status);
    const bool timedOut = end == sys::ChildOutput::End::TimedOut;
    const bool reaped = end == sys::ChildOutput::End::Exited;
    if (end == sys::ChildOutput::End::Overflowed) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, "vtExecProgram()", "[E] %s printed more than %u bytes: killed",
                               program, static_cast<unsigned>(VT_MAX_OUTPUT_BYTES));
        discard(*info);
    } else if (timedOut) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, "vtExecProgram()", "[E] %s did not finish within %d s: killed",
                               program, seconds);
        discard(*info);
    } else if (reaped && WIFSIGNALED(status)) {
        CcLogWrapper::traceMIN(log, __LINE__, kSource, "vtExecProgram()", "[E] %s ended by signal %d", program,
                               WTERMSIG(status));
    } else if (reaped) {
        CcLogWrapper::traceMAX(log, __LINE__, kSource, "vtExecProgram()", "[I] %s exit status %d", program,
                               WEXITSTATUS(status));
        timed.setStatus(WEXITSTATUS(status));
        if (exitStatus) *exitStatus = WEXITSTATUS(status);
    }
    delete process;
    return info;
}

}  // namespace

VtExecInfo* vtExecProgram(const char* program, const char* args, const char* errorLog)
{
    return execProgram(program, args, errorLog, nullptr, nullptr);
}

VtExecInfo* vtExecCommand(const char* command, const char* args, const char* errorLog)
{
    if (!command) return nullptr;
    const char* home = std::getenv("NIM_HOMEDIR");
    const std::string program = home ? std::string(home) + "/" + "bin" + "/" + command : std::string(command);
    if (!g_tap) return vtExecProgram(program.c_str(), args, errorLog);
    std::string output;
    int status = -1;
    if (g_tap->replay(command, output, status)) {
        runlog::Timed timed(program + " (replayed)");
        timed.setStatus(status);
        VtIStream_Memory stream(output);
        return vtParseProgramOutput(&stream);
    }
    VtExecInfo* info = execProgram(program.c_str(), args, errorLog, &output, &status);
    if (info) g_tap->record(command, output, status);
    return info;
}

int vtExecTest(const char* command)
{
    VtExecInfo* info = vtExecCommand(command, nullptr, nullptr);
    const bool ok = info && info->result >= 0;
    if (ok) {
        std::printf("Command '%s' executed successfully\n", command);
        std::printf("VT version = %d.%d, result = %d, message = %s\n", info->major, info->minor, info->result,
                    info->message ? info->message : "");
        vtDumpNode(info->root, 0);
    } else {
        std::fprintf(stderr, "*** Fatal: could not execute '%s'\n", command ? command : "");
    }
    delete info;
    return ok ? 0 : 1;
}

void vtDumpResponse(int result, const char* message)
{
    std::printf("%d.%d %d", 1, 0, result);
    if (message) std::printf(" %s", message);
    std::printf("\n");
}

// ---- look-ups through a result record ----------------------------------------------------

VtVariant* vtGetValue(VtExecInfo* info, const char* path, const char* name)
{
    return info && info->root ? info->root->getValue(path, name) : nullptr;
}

int vtGetValue(const VtVariant* v, int def) { return v && v->type == VT_INT ? v->value.i : def; }

const char* vtGetValue(const VtVariant* v, const char* def) { return v && v->type == VT_STRING ? v->value.s : def; }

int vtGetValue(VtExecInfo* info, const char* path, const char* name, int def)
{
    return vtGetValue(vtGetValue(info, path, name), def);
}

const char* vtGetValue(VtExecInfo* info, const char* path, const char* name, const char* def)
{
    return vtGetValue(vtGetValue(info, path, name), def);
}

VtNode* vtGetNode(const VtExecInfo* info, const char* name, int index)
{
    if (!info || !info->root) return nullptr;
    if (!name) return info->root;
    return info->root->getChild(name, index < 0 ? 0 : index);
}

int vtProbeMain(int argc, char** argv, const char* name, int (*run)(FILE* debug))
{
    bool debugMode = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-d") == 0) {
            debugMode = true;
        } else {
            std::fprintf(stderr, "%s: unknown option '%s'\nusage: %s [-d]\n", name, argv[i], name);
            vtDumpResponse(2, (std::string("usage: ") + name + " [-d]").c_str());
            return 2;
        }
    }
    try {
        return run(debugMode ? stderr : nullptr);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: %s\n", name, e.what());
        vtDumpResponse(3, "internal error");
        return 3;
    }
}
