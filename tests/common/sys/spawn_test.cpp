// The one spawn primitive, in whichever form this run of the suite uses
// (ctest runs it again with INVSCAN_CALL_FORMS=solaris10 for the fork form).
#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "common/sys/Portable.h"
#include "common/sys/Spawn.h"
#include "common/sys/System.h"
#include "support/TempDir.h"

namespace {

// Runs argv with its standard output into a pipe; what it printed, and its
// pid and how it ended.
struct ChildRun {
    std::string output;
    pid_t pid = -1;
    int status = 0;
    sys::Child child = sys::Child::Running;
};

ChildRun run(const std::vector<std::string>& argv)
{
    ChildRun r;
    int out[2];
    EXPECT_EQ(sys::makePipe(out), 0);
    sys::SpawnRequest request;
    request.argv = argv;
    request.stdoutFd = out[1];
    EXPECT_EQ(sys::spawn(request, &r.pid), 0);
    sys::closeFd(out[1]);
    char chunk[4096];
    ssize_t n;
    while ((n = read(out[0], chunk, sizeof chunk)) > 0 || (n < 0 && errno == EINTR))
        if (n > 0) r.output.append(chunk, static_cast<size_t>(n));
    sys::closeFd(out[0]);
    r.child = sys::reap(r.pid, &r.status);
    return r;
}

// A line "Key:\tvalue" of /proc/PID/status, as a number in base 16.
unsigned long long statusMask(pid_t pid, const std::string& key)
{
    std::istringstream in(testsupport::readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    while (std::getline(in, line))
        if (line.rfind(key + ":", 0) == 0) return std::stoull(line.substr(key.size() + 1), nullptr, 16);
    return ~0ULL;
}

TEST(Spawn, ChildGetsOnlyItsStandardDescriptorsTheCLocaleItsOwnGroupAndDefaultSignals)
{
    if (access("/proc/self/fd", F_OK) != 0) GTEST_SKIP() << "no /proc to look at a child with";
    // Descriptors the host opened without close-on-exec, low and high, and a
    // host that ignores SIGINT and blocks SIGUSR1 while it starts us.
    const int low = open("/dev/null", O_RDONLY);
    const int high = fcntl(low, F_DUPFD, 200);
    ASSERT_GE(low, 0);
    ASSERT_GE(high, 200);
    struct sigaction ignore = {}, oldInt = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGINT, &ignore, &oldInt);
    sigset_t usr1, oldMask;
    sigemptyset(&usr1);
    sigaddset(&usr1, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &usr1, &oldMask);
    testsupport::ScopedEnv locale("LC_ALL", "de_DE.UTF-8");

    sys::SpawnRequest request;
    request.argv = {"sleep", "30"};
    request.searchPath = true;
    pid_t pid = -1;
    const int started = sys::spawn(request, &pid);
    pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
    sigaction(SIGINT, &oldInt, nullptr);
    close(low);
    close(high);
    ASSERT_EQ(started, 0);

    // Looked at once it runs sleep, not the copy of us before the exec.
    const std::string proc = "/proc/" + std::to_string(pid);
    for (int i = 0; i < 2000 && testsupport::readFile(proc + "/comm") != "sleep\n"; ++i) usleep(5000);
    ASSERT_EQ(testsupport::readFile(proc + "/comm"), "sleep\n");
    // The loader opens files of its own for a moment after the exec; an
    // inherited descriptor stays for good.
    std::set<int> fds;
    for (int i = 0; i < 400 && fds != std::set<int>{0, 1, 2}; ++i) {
        if (i) usleep(5000);
        fds.clear();
        if (DIR* d = opendir((proc + "/fd").c_str())) {
            while (struct dirent* e = readdir(d))
                if (e->d_name[0] != '.') fds.insert(std::atoi(e->d_name));
            closedir(d);
        }
    }
    EXPECT_EQ(fds, (std::set<int>{0, 1, 2}));
    // The new program's environment shows a moment after its name does.
    std::string environ;
    for (int i = 0; i < 400 && (environ = testsupport::readFile(proc + "/environ")).empty(); ++i) usleep(5000);
    EXPECT_NE(environ.find(std::string("LC_ALL=C") + '\0'), std::string::npos);
    EXPECT_EQ(environ.find("LC_ALL=de_DE"), std::string::npos);
    EXPECT_EQ(getpgid(pid), pid);
    EXPECT_EQ(statusMask(pid, "SigIgn") & (1ULL << (SIGINT - 1)), 0u);
    EXPECT_EQ(statusMask(pid, "SigBlk") & (1ULL << (SIGUSR1 - 1)), 0u);

    sys::killGroup(pid);
    int status = 0;
    ASSERT_EQ(sys::reap(pid, &status), sys::Child::Exited);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST(Spawn, ProgramsThatCannotRunAreErrorsAndLeaveNoChild)
{
    testsupport::TempDir dir;
    const std::string plain = dir.write("plain", "#!/bin/sh\necho no\n", 0644);
    const std::string runs = dir.script("runs", "exit 3\n");
    struct Case {
        std::string program;
        bool searchPath;
        int error;
    } cases[] = {
        {dir.path() + "/missing", false, ENOENT},
        {plain, false, EACCES},
        {dir.path(), false, EACCES},
        {"invscan-no-such-program", true, ENOENT},
        {runs, false, 0},
    };
    for (const Case& c : cases) {
        sys::SpawnRequest request;
        request.argv = {c.program};
        request.searchPath = c.searchPath;
        pid_t pid = 0;
        EXPECT_EQ(sys::spawn(request, &pid), c.error) << c.program;
        if (c.error) {
            EXPECT_EQ(pid, -1) << c.program;
            continue;
        }
        int status = 0;
        ASSERT_EQ(sys::reap(pid, &status), sys::Child::Exited);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 3);
    }
    EXPECT_FALSE(testsupport::hasZombieChild());
}

TEST(Spawn, PipesAndFilesAreClosedOnExec)
{
    // The run ctest made for the Solaris 10 forms really uses them.
    const char* forms = std::getenv("INVSCAN_CALL_FORMS");
    EXPECT_EQ(sys::callForms() == sys::CallForms::Solaris10, forms && std::string(forms) == "solaris10");

    int fds[2];
    ASSERT_EQ(sys::makePipe(fds), 0);
    const int file = sys::openCloexec("/dev/null", O_RDONLY);
    ASSERT_GE(file, 0);
    for (int fd : {fds[0], fds[1], file}) EXPECT_TRUE(fcntl(fd, F_GETFD) & FD_CLOEXEC) << fd;
    close(fds[0]);
    close(fds[1]);
    close(file);

    const char text[] = "one\ntwo\n";
    FILE* stream = sys::memoryStream(text, sizeof text - 1);
    ASSERT_NE(stream, nullptr);
    char line[16];
    ASSERT_NE(fgets(line, sizeof line, stream), nullptr);
    EXPECT_STREQ(line, "one\n");
    ASSERT_NE(fgets(line, sizeof line, stream), nullptr);
    EXPECT_STREQ(line, "two\n");
    EXPECT_EQ(fgets(line, sizeof line, stream), nullptr);
    fclose(stream);
}

// Hosts that take their children's status themselves: SIGCHLD ignored (the
// kernel reaps), or a thread of their own reaping every child. Each case in
// a process of its own, as it changes the process's dispositions.
void takeStatusLikeAHost(bool reaperThread)
{
    std::atomic<bool> stop{false};
    std::thread reaper;
    if (reaperThread) {
        reaper = std::thread([&stop] {
            while (!stop) {
                int status;
                if (waitpid(-1, &status, WNOHANG) <= 0) usleep(200);
            }
        });
    } else {
        signal(SIGCHLD, SIG_IGN);
    }
    for (int i = 0; i < 20; ++i) {
        ChildRun r = run({"/bin/sh", "-c", "echo out; sleep 0.01"});
        if (r.output != "out\n" || r.child == sys::Child::Running) std::_Exit(10 + i);
        // Its pid may be another process's now: nothing may be sent to it.
        sys::killGroup(r.pid);
        FILE* shell = sys::current().popen("echo piped", "r");
        char line[32] = "";
        if (!shell || !fgets(line, sizeof line, shell) || std::string(line) != "piped\n") std::_Exit(40 + i);
        if (sys::current().pclose(shell) != 0) std::_Exit(60 + i);
        std::vector<std::string> lines;
        if (sys::current().runCommand({"sh", "-c", "echo ran"}, 30, lines) != 0 || lines.size() != 1 ||
            lines[0] != "ran")
            std::_Exit(80 + i);
    }
    stop = true;
    if (reaper.joinable()) reaper.join();
    std::_Exit(0);
}

TEST(Spawn, AHostThatTakesItsChildrensStatusStillGetsTheirOutputAndNoTimeOut)
{
    EXPECT_EXIT(takeStatusLikeAHost(false), ::testing::ExitedWithCode(0), "") << "SIGCHLD ignored";
    EXPECT_EXIT(takeStatusLikeAHost(true), ::testing::ExitedWithCode(0), "") << "a reaper thread";
}

}  // namespace
