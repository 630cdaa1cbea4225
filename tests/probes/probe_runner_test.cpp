#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "invscan/com/probeVT.h"
#include "support/StreamCapture.h"
#include "support/TempDir.h"

namespace {

using testsupport::ScopedEnv;
using testsupport::TempDir;

std::unique_ptr<VtExecInfo> header(const std::string& output)
{
    VtIStream_Memory in(output);
    return std::unique_ptr<VtExecInfo>(vtParseProgramOutput(&in));
}

TEST(ResponseHeader, Forms)
{
    auto ok = header("1.0 0 ok\n(A\nx:i=1\n)\n");
    EXPECT_EQ(ok->result, 0);
    EXPECT_EQ(ok->major, 1);
    EXPECT_EQ(ok->minor, 0);
    EXPECT_STREQ(ok->message, "ok");
    ASSERT_NE(ok->root, nullptr);
    EXPECT_EQ(ok->root->getValue("A", "x", 0), 1);

    EXPECT_STREQ(header("1.0 0\n")->message, "");
    EXPECT_EQ(header("2.3 7 busy now\n")->result, 7);
    EXPECT_STREQ(header("; banner\n;more\n1.0 0 after comments\n")->message, "after comments");

    for (const char* bad : {"0.9 0 x\n", "1.0 -1 x\n", "1 0 ok\n", "\n1.0 0 ok\n", "x\n", "", "1. 0 ok\n"}) {
        auto info = header(bad);
        EXPECT_EQ(info->result, -1) << bad;
        EXPECT_EQ(info->message, nullptr) << bad;
        EXPECT_EQ(info->root, nullptr) << bad;
    }
    // A malformed dump keeps the header but has no tree.
    auto broken = header("1.0 3 partial\n)\n");
    EXPECT_EQ(broken->result, 3);
    EXPECT_STREQ(broken->message, "partial");
    EXPECT_EQ(broken->root, nullptr);
    std::unique_ptr<VtExecInfo> none(vtParseProgramOutput(nullptr));
    EXPECT_EQ(none->result, -1);
}

class ProbeRunner : public ::testing::Test {
protected:
    void SetUp() override
    {
        NimCfg::clear();
        m_home.write("bin/.keep", "");
    }
    void TearDown() override { NimCfg::clear(); }
    // A probe that counts its runs in runs.log and prints its arguments.
    void countingProbe(const std::string& name)
    {
        m_home.script("bin/" + name, "echo run >> '" + m_home.path() + "/runs.log'\n"
                                     "echo '1.0 0 ok'\necho '(Args'\necho \"count:i=$#\"\n"
                                     "echo \"first:s=$1\"\necho \"last:s=$(eval echo \\${$#})\"\necho ')'\n"
                                     "echo 'to stderr' >&2\n");
    }
    int runs() const
    {
        std::ifstream in(m_home.path() + "/runs.log");
        int n = 0;
        std::string line;
        while (std::getline(in, line)) ++n;
        return n;
    }
    TempDir m_home;
};

TEST_F(ProbeRunner, FindsProgramsUnderNimHomeAndSplitsArguments)
{
    countingProbe("cpuid");
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    std::unique_ptr<VtExecInfo> info(vtExecCommand("cpuid", "a  b", nullptr));
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info->result, 0);
    EXPECT_EQ(info->root->getValue("Args", "count", -1), 2);  // empty tokens skipped
    EXPECT_STREQ(info->root->getValue("Args", "first", ""), "a");

    std::string many;
    for (int i = 1; i <= 70; ++i) many += "t" + std::to_string(i) + " ";
    info.reset(vtExecCommand("cpuid", many.c_str(), nullptr));
    EXPECT_EQ(info->root->getValue("Args", "count", -1), 62);
    EXPECT_STREQ(info->root->getValue("Args", "last", ""), "t62");
}

TEST_F(ProbeRunner, WithoutNimHomeTheNameIsAPathFromTheCurrentFolder)
{
    countingProbe("probe");
    ScopedEnv home("NIM_HOMEDIR", nullptr);
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    ASSERT_EQ(chdir((m_home.path() + "/bin").c_str()), 0);
    std::unique_ptr<VtExecInfo> relative(vtExecCommand("./probe", nullptr, nullptr));
    // execv resolves a bare name against the current folder, never PATH.
    std::unique_ptr<VtExecInfo> bare(vtExecCommand("probe", nullptr, nullptr));
    ASSERT_EQ(chdir(cwd), 0);
    EXPECT_EQ(relative->result, 0);
    EXPECT_EQ(bare->result, 0);
}

// The accessors cache per process: each case runs in a process of its own.
#define IN_OWN_PROCESS(body) \
    EXPECT_EXIT({ body std::exit(::testing::Test::HasFailure() ? 1 : 0); }, ::testing::ExitedWithCode(0), "")

TEST_F(ProbeRunner, AccessorsRunEachProbeOnceAndCacheEvenAFailure)
{
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    IN_OWN_PROCESS({
        trace::Capture capture;
        VtExecInfo* first = getCpuidVT();
        ASSERT_NE(first, nullptr);
        EXPECT_EQ(first->result, -1);
        EXPECT_EQ(first->root, nullptr);
        EXPECT_TRUE(capture.contains("[I] VT command executed, rc=-1"));
        countingProbe("cpuid");  // appears later: the cached failure stands
        EXPECT_EQ(getCpuidVT(), first);
        EXPECT_EQ(runs(), 0);
    });
    countingProbe("cpuid");
    countingProbe("diskscan");
    IN_OWN_PROCESS({
        for (int i = 0; i < 5; ++i) {
            ASSERT_NE(getCpuidVT(), nullptr);
            ASSERT_NE(getDiskScanVT(), nullptr);
        }
        EXPECT_EQ(runs(), 2);
        EXPECT_EQ(getDiskScanVT()->result, 0);
    });
}

TEST_F(ProbeRunner, DebugModeWritesTheErrorLog)
{
    countingProbe("cpuid");
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    TempDir logs;
    const std::string log = logs.write("traceNIM_cpuid.log", "old content that is longer than the new one\n", 0600);
    NimCfg::setKey("common_trace_path", String(logs.path()));
    const mode_t old = umask(022);
    IN_OWN_PROCESS({
        VtExecInfo* info = getCpuidVT();
        ASSERT_NE(info, nullptr);
        EXPECT_STREQ(info->root->getValue("Args", "first", ""), "-d");
    });
    struct stat st;
    ASSERT_EQ(stat(log.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);
    const std::string content = testsupport::readFile(log);
    EXPECT_EQ(content.rfind("CPUID START TIMESTAMP = ", 0), 0u) << content;
    EXPECT_NE(content.find("\nto stderr\n"), std::string::npos);
    EXPECT_EQ(content.find("old content"), std::string::npos);

    // A fresh log is created 0644.
    ASSERT_EQ(unlink(log.c_str()), 0);
    std::unique_ptr<VtExecInfo>(vtExecCommand("cpuid", "-d", log.c_str()));
    umask(old);
    ASSERT_EQ(stat(log.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);
}

TEST_F(ProbeRunner, ALogPlantedAsALinkOrAFifoIsLeftAlone)
{
    countingProbe("cpuid");
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    TempDir logs;
    const std::string victim = logs.write("victim", "keep me\n", 0600);
    const std::string link = logs.path() + "/traceNIM_cpuid.log";
    ASSERT_EQ(symlink(victim.c_str(), link.c_str()), 0);
    std::unique_ptr<VtExecInfo> info(vtExecCommand("cpuid", "-d", link.c_str()));
    EXPECT_EQ(info->result, 0);  // the probe still runs, its errors unlogged
    struct stat st;
    ASSERT_EQ(stat(victim.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(testsupport::readFile(victim), "keep me\n");

    const std::string fifo = logs.path() + "/fifo.log";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    info.reset(vtExecCommand("cpuid", "-d", fifo.c_str()));
    EXPECT_EQ(info->result, 0);
}

TEST_F(ProbeRunner, FaultyProbesEndWithinTheTimeOutAndAreTraced)
{
    const std::string dump = "echo '1.0 0 ok'; echo '(A'; echo 'x:i=1'; echo ')'\n";
    m_home.script("bin/sleeper", "sleep 30\n");
    m_home.script("bin/holder", dump + "exec sleep 30\n");
    m_home.script("bin/parent", dump + "sleep 30 &\nexit 0\n");
    m_home.script("bin/shouter", "head -c 1000000 /dev/zero >&2\n" + dump);
    m_home.script("bin/flood", "echo '1.0 0 ok'; echo '(A'; yes 'x:i=1' | head -c 17000000; echo ')'\n");
    m_home.write("bin/plain", "#!/bin/sh\n" + dump, 0644);
    m_home.write("bin/folder/.keep", "");
    m_home.script("bin/killed", dump + "kill -9 $$\n");
    // The time-out for each: 1 s where it is the bound under test, long
    // enough elsewhere for a slow (sanitizer) build to parse what it gets.
    struct Case {
        const char* probe;
        const char* timeout;
        int result;
        const char* trace;
    } cases[] = {
        {"sleeper", "1", -1, "sleeper did not finish within 1 s: killed"},
        {"holder", "1", -1, "holder did not finish within 1 s: killed"},
        {"parent", "1", -1, "parent did not finish within 1 s: killed"},  // its child holds the output
        {"shouter", "60", 0, "shouter exit status 0"},                    // standard error drained
        {"flood", "600", -1, "flood printed more than 16777216 bytes: killed"},
        {"plain", "60", -1, "plain could not be executed: Permission denied"},
        {"folder", "60", -1, "folder could not be executed: Permission denied"},
        {"killed", "60", 0, "killed ended by signal 9"},  // what it printed stands
    };
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    trace::Capture capture;
    for (const Case& c : cases) {
        capture.clear();
        NimCfg::setKey("hwscanner.timeout", c.timeout);
        std::unique_ptr<VtExecInfo> info(vtExecCommand(c.probe, nullptr, nullptr));
        ASSERT_NE(info, nullptr) << c.probe;
        EXPECT_EQ(info->result, c.result) << c.probe;
        EXPECT_EQ(info->root != nullptr, c.result == 0) << c.probe;
        EXPECT_TRUE(capture.contains(c.trace)) << c.trace;
    }
    EXPECT_FALSE(testsupport::hasZombieChild());
}

TEST_F(ProbeRunner, HundredRunsLeaveNoDescriptorOrZombie)
{
    m_home.script("bin/chatty", "echo '1.0 0 ok'\ni=0\nwhile [ $i -lt 200 ]; do echo \"v$i:i=$i\"; i=$((i+1)); done\n");
    m_home.script("bin/early", "echo '0.1 0 bad header'\nexec cat /dev/zero\n");
    ScopedEnv home("NIM_HOMEDIR", m_home.path().c_str());
    const int before = testsupport::openDescriptorCount();
    for (int i = 0; i < 100; ++i) {
        std::unique_ptr<VtExecInfo> a(vtExecCommand("chatty", nullptr, nullptr));
        ASSERT_EQ(a->root->getValue(nullptr, "v199", -1), 199);
        // A probe that keeps writing after a bad header must not hang us.
        std::unique_ptr<VtExecInfo> b(vtExecCommand(i % 10 == 0 ? "early" : "missing", nullptr, nullptr));
        ASSERT_EQ(b->result, -1);
    }
    EXPECT_EQ(testsupport::openDescriptorCount(), before);
    EXPECT_FALSE(testsupport::hasZombieChild());
}

TEST(ResponseWriter, HeaderLine)
{
    testsupport::StreamCapture out(stdout);
    vtDumpResponse(0, "ok");
    vtDumpResponse(3, nullptr);
    EXPECT_EQ(out.text(), "1.0 0 ok\n1.0 3\n");
}

}  // namespace
