#include "common/vartree/vtexec.h"

#include <fcntl.h>
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

VtExecInfo::~VtExecInfo()
{
    delete[] message;
    delete root;
}

// ---- the child process ----------------------------------------------------------

VtProcess::VtProcess()
{
    // Close-on-exec keeps these pipes out of every other child; dup2 in the
    // child clears the flag on the copies it keeps.
    m_pipesOk = pipe2(m_stdinPipe, O_CLOEXEC) == 0 && pipe2(m_stdoutPipe, O_CLOEXEC) == 0 &&
                pipe2(m_stderrPipe, O_CLOEXEC) == 0;
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
    for (int* fd : {&m_stdinPipe[0], &m_stdoutPipe[1], &m_stderrPipe[1]}) {
        if (*fd != -1) close(*fd);
        *fd = -1;
    }
}

namespace {
// In the child: the error log, created 0644 or truncated with its mode reset.
int openErrorLog(const char* errorLog)
{
    if (!errorLog) return -1;
    int fd = open(errorLog, O_WRONLY | O_CREAT | O_EXCL, 0644);
    if (fd < 0 && errno == EEXIST) {
        chmod(errorLog, 0644);
        fd = open(errorLog, O_WRONLY | O_TRUNC);
    }
    if (fd >= 0) {
        char stamp[256];
        const time_t now = time(nullptr);
        struct tm local;
        size_t n = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-y2k"  // the locale's own date form is wanted
        if (localtime_r(&now, &local)) n = strftime(stamp, sizeof stamp, "CPUID START TIMESTAMP = %c\n", &local);
#pragma GCC diagnostic pop
        if (n > 0 && write(fd, stamp, n) < 0) {
            // nothing more to do in the child
        }
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
    // The argument vector is built before fork: the child only calls
    // async-signal-safe functions.
    enum { MAX_ARGS = 63 };
    char* argv[MAX_ARGS + 1] = {};
    std::string program_copy(program);
    std::string args_copy(args ? args : "");
    argv[0] = &program_copy[0];
    int argc = 1;
    if (args) {
        char* save = nullptr;
        for (char* t = strtok_r(&args_copy[0], " ", &save); t && argc < MAX_ARGS; t = strtok_r(nullptr, " ", &save))
            argv[argc++] = t;
    }

    const pid_t pid = fork();
    if (pid < 0) {
        delete p;
        return nullptr;
    }
    if (pid == 0) {
        const int log = openErrorLog(errorLog);
        dup2(p->m_stdinPipe[0], 0);
        dup2(p->m_stdoutPipe[1], 1);
        dup2(log >= 0 ? log : p->m_stderrPipe[1], 2);
        execv(program, argv);
        _exit(255);
    }
    p->m_pid = pid;
    p->closeUnusedHandles();
    return p;
}

void VtProcess::destroy()
{
    if (m_pid >= 0) kill(m_pid, SIGKILL);
    m_pid = -1;
    m_exitValue = -1;
}

int VtProcess::exitValue() { return m_exitValue; }

int VtProcess::waitFor()
{
    if (m_pid >= 1 && m_exitValue < 0) {
        int status = 0;
        pid_t r;
        do {
            r = waitpid(m_pid, &status, 0);
        } while ((r >= 0 && r != m_pid) || (r < 0 && errno == EINTR));
        if (r == m_pid && WIFEXITED(status)) m_exitValue = WEXITSTATUS(status);
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

VtExecInfo* vtExecProgram(const char* program, const char* args, const char* errorLog)
{
    VtProcess* process = VtProcess::create(program, args, errorLog);
    if (!process) return nullptr;
    VtExecInfo* info = vtParseProgramOutput(process->getStdout());
    // Close our end first, so a probe still writing gets SIGPIPE instead of
    // blocking, then reap it: a long-lived host must not collect zombies.
    process->getStdout()->close();
    process->waitFor();
    delete process;
    return info;
}

VtExecInfo* vtExecCommand(const char* command, const char* args, const char* errorLog)
{
    if (!command) return nullptr;
    const char* home = std::getenv("NIM_HOMEDIR");
    const std::string program = home ? std::string(home) + "/" + "bin" + "/" + command : std::string(command);
    return vtExecProgram(program.c_str(), args, errorLog);
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
