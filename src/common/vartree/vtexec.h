#pragma once
#include <string>
#include <cstdio>
// Running the probe programs: the child process with its three pipes, the
// response header that precedes a node dump, and the result record.
#include "common/vartree/VtStream.h"
#include "common/vartree/vtree.h"

struct VtExecInfo {
    int result = -1;  // -1 when no valid header was read
    int major = 0;
    int minor = 0;
    char* message = nullptr;  // null when no valid header
    VtNode* root = nullptr;   // null without a header or when the dump was malformed
    ~VtExecInfo();
};

class VtProcess {
public:
    VtProcess();
    // Closes the descriptors; neither waits for nor kills the child.
    virtual ~VtProcess();
    VtProcess(const VtProcess&) = delete;
    VtProcess& operator=(const VtProcess&) = delete;

    // Starts `program` with `args` split on blanks (at most 62 tokens) and,
    // when `errorLog` can be opened, its standard error in that file. Null
    // when the process cannot be created.
    static VtProcess* create(const char* program, const char* args, const char* errorLog);

    virtual void destroy();   // SIGKILL, then forget the pid
    virtual int exitValue();  // -1 until known
    virtual int waitFor();    // reaps the child; returns exitValue()
    void closeUnusedHandles();

    VtOStream* getStdin() const { return m_stdin; }
    VtIStream* getStdout() const { return m_stdout; }
    VtIStream* getStderr() const { return m_stderr; }
    int pid() const { return m_pid; }
    // Why the program could not be executed (an errno), 0 when it started.
    int startError() const { return m_startError; }

private:
    VtOStream* m_stdin = nullptr;
    VtIStream* m_stdout = nullptr;
    VtIStream* m_stderr = nullptr;
    int m_pid = -1;
    int m_exitValue = -1;
    int m_stdinPipe[2] = {-1, -1};
    int m_stdoutPipe[2] = {-1, -1};
    int m_stderrPipe[2] = {-1, -1};
    bool m_pipesOk = false;
    int m_startError = 0;
};

// The most a probe may print; a run past it is a failed run.
constexpr unsigned long VT_MAX_OUTPUT_BYTES = 16ul * 1024 * 1024;

VtExecInfo* vtParseProgramOutput(VtIStream* out);
// Runs the program to its end and parses its output. Null only when no
// process could be made. A run that outlives "hwscanner.timeout" or prints
// more than VT_MAX_OUTPUT_BYTES is killed with its process group and gives
// result -1 and no tree; each run's end is traced.
VtExecInfo* vtExecProgram(const char* program, const char* args, const char* errorLog);
// Runs $NIM_HOMEDIR/bin/<command>, or <command> itself without NIM_HOMEDIR;
// through the probe tap when one is set.
VtExecInfo* vtExecCommand(const char* command, const char* args, const char* errorLog);

// What a capture keeps of each probe run, and what a replay answers instead
// of running the probe. Keyed by the command's name ("cpuid").
class VtProbeTap {
public:
    virtual ~VtProbeTap() = default;
    // True with what the probe printed and its exit status: the probe is not run.
    virtual bool replay(const std::string& command, std::string& output, int& status) = 0;
    virtual void record(const std::string& command, const std::string& output, int status) = 0;
};
// Not owned; null: probes run as they are.
void vtSetProbeTap(VtProbeTap* tap);
int vtExecTest(const char* command);
// Producer side of the header: "1.0 <result> <message>".
void vtDumpResponse(int result, const char* message);
// A probe program's main: "-d" gives `run` standard error for what it read
// (null otherwise); another argument answers result 2 ("usage: NAME [-d]"),
// an exception result 3 ("internal error"). Returns the exit status.
int vtProbeMain(int argc, char** argv, const char* name, int (*run)(FILE* debug));

VtVariant* vtGetValue(VtExecInfo* info, const char* path, const char* name);
int vtGetValue(VtExecInfo* info, const char* path, const char* name, int def);
const char* vtGetValue(VtExecInfo* info, const char* path, const char* name, const char* def);
int vtGetValue(const VtVariant* v, int def);
const char* vtGetValue(const VtVariant* v, const char* def);
VtNode* vtGetNode(const VtExecInfo* info, const char* name, int index);
