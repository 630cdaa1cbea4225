// The invscan command line, end to end: the built program run as a user would.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "invscan/com/Catalogue.h"
#include "support/Machine.h"
#include "support/MachineScan.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

struct Result {
    int code = -1;
    std::string out;
    std::string err;
};

std::string quote(const std::string& word)
{
    std::string out = "'";
    for (char c : word) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

class Cli : public ::testing::Test {
protected:
    void SetUp() override
    {
        const char* dir = std::getenv("INVSCAN_BIN_DIR");
        m_program = std::string(dir ? dir : INVSCAN_BIN_DIR) + "/invscan";
        if (access(m_program.c_str(), X_OK) != 0) GTEST_SKIP() << "not built: " << m_program;
    }

    Result run(const std::vector<std::string>& args, const std::string& environment = "")
    {
        std::string command = environment + " " + quote(m_program);
        for (const std::string& arg : args) command += " " + quote(arg);
        command += " >" + quote(m_dir + "/out") + " 2>" + quote(m_dir + "/err") + " </dev/null";
        Result result;
        const int status = std::system(command.c_str());
        result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.out = testsupport::readFile(m_dir + "/out");
        result.err = testsupport::readFile(m_dir + "/err");
        return result;
    }

    std::string write(const std::string& name, const std::string& content) { return m_temp.write(name, content); }

    std::string m_program;
    testsupport::TempDir m_temp;
    const std::string m_dir = m_temp.path();
};

TEST_F(Cli, VersionAndHelpSucceed)
{
    const Result version = run({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_TRUE(std::regex_search(version.out,
                                  std::regex(R"(^invscan \S+ \(build 20\d\d-\d\d-\d\d-\d\d\.\d\d\.\d\d\.000000\))")))
        << version.out;

    const Result help = run({"--help"});
    EXPECT_EQ(help.code, 0);
    for (const char* word : {"list", "scan", "--format", "--config", "--set", "--hwconfig", "--trace",
                             "--trace-file", "--version"})
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
}

TEST_F(Cli, MistakesGiveAMessageAndExitTwo)
{
    // Neither file must hang or fill memory: a FIFO without a writer, and an
    // endless device.
    const std::string fifo = m_dir + "/fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    struct Case {
        std::vector<std::string> args;
        const char* message;
    };
    const std::vector<Case> cases = {
        {{}, "a command is needed"},
        {{"frobnicate"}, "frobnicate"},
        {{"--bogus", "list"}, "--bogus"},
        {{"scan", "Nope"}, "unknown group 'Nope'"},
        {{"scan", "Memory", "8"}, "unknown group '8'"},
        {{"scan", "26"}, "unknown group '26'"},
        {{"--format", "xml", "list"}, "xml"},
        {{"--trace", "loud", "list"}, "unknown trace level 'loud'"},
        {{"--set", "novalue", "list"}, "KEY=VALUE"},
        {{"--config", "/nonexistent/invscan.cfg", "list"}, "/nonexistent/invscan.cfg"},
        {{"--hwconfig", "/nonexistent/hw.xml", "scan", "Memory"}, "/nonexistent/hw.xml"},
        {{"--config", "/dev/zero", "list"}, "/dev/zero"},
        {{"--config", fifo, "list"}, fifo.c_str()},
        {{"--hwconfig", fifo, "scan", "Memory"}, fifo.c_str()},
        {{"--hwconfig", "/dev/zero", "scan", "Memory"}, "/dev/zero"},
        {{"scan", "--exclude", "Nope"}, "unknown group 'Nope' to exclude"},
        {{"scan", "--deadline", "0"}, "--deadline"},
        {{"scan", "--deadline", "soon"}, "--deadline"},
    };
    for (const Case& c : cases) {
        std::string joined;
        for (const std::string& a : c.args) joined += a + " ";
        SCOPED_TRACE(joined);
        const Result r = run(c.args);
        EXPECT_EQ(r.code, 2);
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
}

TEST_F(Cli, ListAndScanCoverEveryGroupInEachFormat)
{
    const Result list = run({"list"});
    ASSERT_EQ(list.code, 0) << list.err;
    // Every group in catalogue order, the first and last as the catalogue has them.
    const korGroupDef& last = GROUPS_DEF[testsupport::catalogueGroupCount() - 1];
    EXPECT_TRUE(std::regex_search(list.out, std::regex(R"(^ *1  ComponentID\n(.*\n)* *)" + std::to_string(last.id) +
                                                       "  " + last.name + "\n$")))
        << list.out;
    EXPECT_EQ(static_cast<size_t>(std::count(list.out.begin(), list.out.end(), '\n')),
              testsupport::catalogueGroupCount());
    EXPECT_EQ(nlohmann::json::parse(run({"list", "--format", "json"}).out).at("groups").at(1),
              (nlohmann::json{{"id", 2}, {"name", "Processor"}}));

    const Result r = run({"scan", "--format", "json"});
    ASSERT_EQ(r.code, 0) << r.err;
    const auto doc = nlohmann::json::parse(r.out);  // throws, failing the test, when not JSON
    EXPECT_TRUE(doc.at("invscan").at("build").is_string());
    ASSERT_EQ(doc.at("groups").size(), testsupport::catalogueGroupCount());
    const Result text = run({"scan"}), kor = run({"--format", "kor", "scan"});
    for (const auto& group : doc["groups"]) {
        SCOPED_TRACE(group.dump());
        const std::string name = group.at("name"), status = group.at("status");
        EXPECT_TRUE(status == "scanned" || status == "no class" || status == "no table");
        EXPECT_EQ(group["tables"].empty(), status != "scanned");
        for (const auto& table : group["tables"]) EXPECT_EQ(table.at("id"), group.at("id"));
        // The other formats say the same of each group.
        const std::string said = name + " (group " + std::to_string(group["id"].get<int>()) +
                                 (status == "no class" ? "): not built yet" : status == "no table" ? "): no table" : ",");
        EXPECT_NE(text.out.find(said), std::string::npos);
        EXPECT_EQ(kor.out.find("--------Table " + name + " (") != std::string::npos, status == "scanned");
    }
}

TEST_F(Cli, GroupsAreNamedByNameIdOrAnyCaseInTheOrderGiven)
{
    for (const char* which : {"Memory", "3", "memory", "MEMORY"}) {
        const auto doc = nlohmann::json::parse(run({"scan", which, "--format", "json"}).out);
        ASSERT_EQ(doc["groups"].size(), 1u) << which;
        EXPECT_EQ(doc["groups"][0]["id"], 3) << which;
    }
    const auto doc = nlohmann::json::parse(run({"scan", "SAN Adapter", "Operating System", "--format", "json"}).out);
    ASSERT_EQ(doc["groups"].size(), 2u);
    EXPECT_EQ(doc["groups"][0]["id"], 54);
    EXPECT_EQ(doc["groups"][1]["id"], 4);
}

TEST_F(Cli, ConfigurationFileSetAndTraceOptionsReachTheLibrary)
{
    const std::string traceFile = m_dir + "/trace.log";
    const std::string hw = write("hw.xml", "<NimHWConfig><Hardware site=\"lab\"/></NimHWConfig>");
    const std::string cfg = write("invscan.cfg", "# comment\ntrace.level = min\nhwscanner.cputhreshold = 90\n");
    // --set takes one pair each time: Memory after it is still a group.
    const Result r =
        run({"--config", cfg, "--trace-file", traceFile, "--hwconfig", hw, "scan", "--set", "trace.level=max", "Memory"});
    ASSERT_EQ(r.code, 0) << r.err;
    const std::string trace = testsupport::readFile(traceFile);
    EXPECT_NE(trace.find("hardware groupName=Memory"), std::string::npos) << trace;
    EXPECT_NE(trace.find("hardware get global attribute site=lab"), std::string::npos);
    EXPECT_NE(trace.find("New cpuThreshold is 90"), std::string::npos);
    // --set comes after --config: max, so the detailed lines are there.
    EXPECT_NE(trace.find("hardware Open config file " + hw + " for read"), std::string::npos);
}

TEST_F(Cli, TheDefaultHardwareConfigurationComesFromConfigDir)
{
    const std::string dir = m_dir + "/etc";
    write("etc/NimHWConfig.xml", "<NimHWConfig><Hardware from=\"configdir\"/></NimHWConfig>");
    const std::string traceFile = m_dir + "/trace.log";
    const Result r = run({"--set", "config_dir=" + dir, "--trace", "max", "--trace-file", traceFile, "scan", "3"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(testsupport::readFile(traceFile).find("hardware get global attribute from=configdir"), std::string::npos);
}

TEST_F(Cli, ABadDefaultHardwareConfigurationDoesNotStopTheScan)
{
    const std::string traceFile = m_dir + "/trace.log";
    const Result r = run({"--set", "config_dir=/nonexistent", "--trace", "min", "--trace-file", traceFile, "scan", "3"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_NE(testsupport::readFile(traceFile).find("hardware ERROR! Failed to open file /nonexistent/NimHWConfig.xml for reading"),
              std::string::npos);
}

TEST_F(Cli, AScanWhereEveryGroupFailedExitsOne)
{
    EXPECT_EQ(run({"scan", "Processor"}, "NIM_HOMEDIR=/nonexistent").code, 1);
    EXPECT_EQ(run({"scan", "Processor", "Memory"}, "NIM_HOMEDIR=/nonexistent").code, 0);
    EXPECT_EQ(run({"scan", "SAN Adapter"}).code, 0);  // no class yet: nothing failed
}

TEST_F(Cli, AnUnwritableTraceFileIsRefused)
{
    const Result r = run({"--trace", "max", "--trace-file", "/nonexistent/dir/trace.log", "list"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("/nonexistent/dir/trace.log"), std::string::npos);
}

}  // namespace

namespace {

TEST_F(Cli, ProbeRunsANamedProgramUnderTheHomeFolder)
{
    // A scripted probe in a home folder of our own.
    m_temp.script("home/bin/fake", "echo '1.0 0 ready'\necho '(Box'\necho 'n:i=7'\necho ')'\n");
    const std::string home = "NIM_HOMEDIR=" + quote(m_dir + "/home");

    Result r = run({"probe", "fake"}, home);
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out, "Command 'fake' executed successfully\nVT version = 1.0, result = 0, message = ready\n"
                     "(\n   (Box\n      n:i=7\n   )\n)\n");

    m_temp.script("home/bin/broken", "echo 'not a header'\n");
    r = run({"probe", "broken"}, home);
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.err, "*** Fatal: could not execute 'broken'\n");

    r = run({"probe", "missing"}, home);
    EXPECT_EQ(r.code, 1);
    EXPECT_NE(r.err.find("no probe program"), std::string::npos) << r.err;

    EXPECT_EQ(run({"probe", "../bin/fake"}, home).code, 2);
    EXPECT_EQ(run({"probe"}, home).code, 2);
}

TEST_F(Cli, ProbeFindsTheShippedCpuidBesideItself)
{
    // Without NIM_HOMEDIR the install prefix is the home.
    const Result r = run({"probe", "cpuid"}, "env -u NIM_HOMEDIR");
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("(ProcessorTable"), std::string::npos) << r.out;
}

}  // namespace

namespace {

std::map<std::string, nlohmann::json> byName(const nlohmann::json& document)
{
    std::map<std::string, nlohmann::json> out;
    for (const auto& g : document.at("groups")) out[g.at("name")] = g;
    return out;
}

// Operators keep groups off a machine by option or by key; a deadline skips
// what it leaves no time for; --timing tells where the time went.
TEST_F(Cli, ExcludeDeadlineAndTiming)
{
    Result r = run({"--set", "hwscanner.exclude=Memory, 47", "--format", "json", "scan", "--exclude", "cpumeter",
                    "--timing", "Memory", "UnixCpuMeter", "CpuMeter", "Processor"});
    ASSERT_EQ(r.code, 0) << r.err;
    nlohmann::json document = nlohmann::json::parse(r.out);
    auto groups = byName(document);
    for (const char* name : {"Memory", "UnixCpuMeter", "CpuMeter"}) {
        EXPECT_EQ(groups[name].at("status"), "excluded") << name;
        EXPECT_EQ(groups[name].at("reason"), "hwscanner.exclude") << name;
    }
    EXPECT_EQ(groups["Processor"].at("status"), "scanned");
    const nlohmann::json& timing = document.at("timing");
    ASSERT_EQ(timing.at("groups").size(), 1u);  // only what ran is timed
    EXPECT_EQ(timing.at("groups")[0].at("name"), "Processor");
    double sum = 0;
    bool probe = false;
    for (const auto& run : timing.at("runs")) {
        sum += run.at("seconds").get<double>();
        probe |= run.at("run").get<std::string>().find("/bin/cpuid") != std::string::npos && run.at("status") == 0;
    }
    EXPECT_TRUE(probe) << timing.dump();
    EXPECT_LE(sum, timing.at("seconds").get<double>());

    r = run({"scan", "--timing", "Memory"});
    EXPECT_NE(r.out.find("Timing (seconds)"), std::string::npos);
    EXPECT_NE(r.out.find("group Memory"), std::string::npos);

    // A deadline long past when the second group would start.
    r = run({"--format", "json", "scan", "--deadline", "0.000001", "Memory", "UnixCpuMeter"});
    ASSERT_EQ(r.code, 1) << r.err;  // nothing ran: no group gave a table
    groups = byName(nlohmann::json::parse(r.out));
    EXPECT_EQ(groups["Memory"].at("status"), "skipped");
    EXPECT_EQ(groups["UnixCpuMeter"].at("reason"), "the scan's deadline had passed");
    r = run({"scan", "--deadline", "600", "Memory"});
    EXPECT_EQ(r.code, 0);
    EXPECT_EQ(r.out.find("skipped"), std::string::npos);
}

// A capture of this machine replays to the same tables, anywhere; sanitized,
// it keeps no MAC address or serial number of the machine and still replays.
TEST_F(Cli, CaptureReplaysToTheSameTables)
{
    const std::string capture = m_dir + "/this.capture", sanitized = m_dir + "/sanitized.capture";
    const Result live = run({"--format", "json", "capture", capture});
    ASSERT_EQ(live.code, 0) << live.err;
    Result replayed = run({"--format", "json", "scan", "--replay", capture});
    ASSERT_EQ(replayed.code, 0) << replayed.err;
    EXPECT_EQ(replayed.err, "");  // nothing the scan asked for is missing
    EXPECT_EQ(nlohmann::json::parse(replayed.out).at("groups"), nlohmann::json::parse(live.out).at("groups"));
    EXPECT_EQ(run({"probe", "--replay", capture, "cpuid"}).out, run({"probe", "cpuid"}).out);

    // Named groups replay alone, in text too.
    replayed = run({"scan", "--replay", capture, "Memory"});
    EXPECT_EQ(replayed.code, 0);
    EXPECT_NE(replayed.out.find("Memory (group 3"), std::string::npos) << replayed.out;

    ASSERT_EQ(run({"capture", "--sanitize", sanitized}).code, 0);
    const std::string original = testsupport::readFile(capture), clean = testsupport::readFile(sanitized);
    const std::regex mac("([0-9a-f]{1,2}\\\\?:){5}[0-9a-f]{1,2}");
    std::set<std::string> macs;
    for (std::sregex_iterator it(original.begin(), original.end(), mac), end; it != end; ++it) macs.insert(it->str());
    for (const std::string& m : macs) EXPECT_EQ(clean.find(m), std::string::npos) << m;
    const std::regex serial("Serial No: (\\S+)");
    for (std::sregex_iterator it(original.begin(), original.end(), serial), end; it != end; ++it)
        EXPECT_EQ(clean.find((*it)[1].str()), std::string::npos) << it->str();
    replayed = run({"--format", "json", "scan", "--replay", sanitized});
    EXPECT_EQ(replayed.code, 0) << replayed.err;
    const nlohmann::json sanitizedScan = nlohmann::json::parse(replayed.out), liveScan = nlohmann::json::parse(live.out);
    for (const auto& g : sanitizedScan.at("groups"))
        EXPECT_EQ(g.at("status"), byName(liveScan).at(g.at("name")).at("status")) << g.dump();
}

// What a replay needs and the capture lacks fails as on a machine without it
// and is named; a file that is not a whole capture is refused.
TEST_F(Cli, ReplayNamesWhatIsMissingAndRefusesBrokenFiles)
{
    const std::string end = "end-of-capture\n";
    Result r = run({"scan", "--replay", write("bare", "invscan-machine 1\nsysinfo SYSNAME SunOS\n" + end), "Memory"});
    EXPECT_NE(r.code, 2);  // a scan, however poor
    EXPECT_NE(r.err.find("not in the capture: sysconf PAGESIZE"), std::string::npos) << r.err;
    r = run({"probe", "--replay", write("noprobe", "invscan-machine 1\n" + end), "cpuid"});
    EXPECT_NE(r.err.find("not in the capture: probe cpuid"), std::string::npos) << r.err;

    const std::string good = "invscan-machine 1\nsysconf PAGESIZE 4096\nrun ls\n> a\n" + end;
    const std::map<std::string, std::string> broken = {
        {"empty", ""},
        {"foreign", "<?xml version=\"1.0\"?>\n<config/>\n"},
        {"newer", "invscan-machine 99\n" + end},
        {"cut short", good.substr(0, good.size() - end.size())},
        {"cut mid-line", good.substr(0, 30)},
        {"garbled", "invscan-machine 1\nsysconf PAGESIZE many\n" + end},
        {"binary", std::string("invscan-machine 1\n\x01\x02\xff\x00zz\n", 24) + end},
        {"after the end", good + "time 1\n"},
        {"out of range", "invscan-machine 1\ndisk d ctl=x,99999999999999999999999\n" + end},
    };
    for (const auto& b : broken) {
        r = run({"scan", "--replay", write("broken", b.second)});
        EXPECT_EQ(r.code, 2) << b.first;
        EXPECT_NE(r.err.find("cannot replay"), std::string::npos) << b.first << ": " << r.err;
        EXPECT_EQ(r.out, "") << b.first;
    }
    EXPECT_EQ(run({"scan", "--replay", m_dir + "/absent"}).code, 2);
    EXPECT_EQ(run({"capture", m_dir + "/no/such/folder/file"}).code, 2);
}

// Every file the command line reads is a regular file within its bound:
// what is not is refused at once, never read, and never blocks the run (a
// FIFO without a writer would block an open that waits for one). Each run
// is ended by `timeout` should it block.
TEST_F(Cli, FilesThatAreNoRegularFileOrPastTheirBoundAreRefused)
{
    const std::string guard = "timeout -s KILL 120";
    const std::string fifo = m_dir + "/fifo", folder = m_dir + "/folder";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    // A sparse file one byte past a bound: no disk, no time to write.
    auto pastBound = [&](const std::string& name, off_t bound) {
        const std::string path = write(name, "");
        EXPECT_EQ(truncate(path.c_str(), bound + 1), 0);
        return path;
    };
    // A simulated machine's folder with one of its files replaced.
    const std::string base = testsupport::machineDir("xeon-2socket-ht");
    auto machine = [&](const std::string& name, const std::string& file, const std::string& kind) {
        const std::string dir = m_dir + "/" + name;
        write(name + "/machine.txt", testsupport::readFile(base + "/machine.txt"));
        write(name + "/probes/cpuid", testsupport::readFile(base + "/probes/cpuid"));
        const std::string path = dir + "/" + file;
        std::remove(path.c_str());
        int made = 0;
        if (kind == "fifo") made = mkfifo(path.c_str(), 0600);
        if (kind == "folder") made = mkdir(path.c_str(), 0700);
        if (kind == "device") made = symlink("/dev/zero", path.c_str());
        if (kind == "large") made = truncate(write(name + "/" + file, "").c_str(), 16 << 20 | 1);
        EXPECT_EQ(made, 0) << name;
        return dir;
    };
    std::string bigAnswer = "invscan-machine 1\nprobe cpuid\n";
    for (size_t printed = 0; printed <= (16u << 20); printed += 1001) bigAnswer += "> " + std::string(1000, '7') + "\n";

    const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
        {"capture: a device", {"scan", "--replay", "/dev/zero", "Memory"}},
        {"capture: a FIFO", {"scan", "--replay", fifo, "Memory"}},
        {"capture: past 128 MiB", {"scan", "--replay", pastBound("huge.capture", 128 << 20), "Memory"}},
        {"capture: a probe answer past 16 MiB", {"probe", "--replay", write("answer", bigAnswer + "end-of-capture\n"), "cpuid"}},
        {"machine file: a FIFO", {"scan", "--replay", machine("m1", "machine.txt", "fifo"), "Memory"}},
        {"machine file: a device", {"scan", "--replay", machine("m2", "machine.txt", "device"), "Memory"}},
        {"machine file: a folder", {"scan", "--replay", machine("m3", "machine.txt", "folder"), "Memory"}},
        {"probe answer: a FIFO", {"scan", "--replay", machine("m4", "probes/cpuid", "fifo"), "Memory"}},
        {"probe answer: a device", {"probe", "--replay", machine("m5", "probes/cpuid", "device"), "cpuid"}},
        {"probe answer: a folder", {"probe", "--replay", machine("m6", "probes/cpuid", "folder"), "cpuid"}},
        {"probe answer: past 16 MiB", {"probe", "--replay", machine("m7", "probes/cpuid", "large"), "cpuid"}},
        {"hardware configuration: a device", {"--hwconfig", "/dev/zero", "scan", "Memory"}},
        {"hardware configuration: a FIFO", {"--hwconfig", fifo, "scan", "Memory"}},
        {"hardware configuration: a folder", {"--hwconfig", folder, "scan", "Memory"}},
        {"hardware configuration: past 16 MiB", {"--hwconfig", pastBound("huge.xml", 16 << 20), "scan", "Memory"}},
        {"hardware configuration of a capture: a device", {"--hwconfig", "/dev/zero", "capture", m_dir + "/c1"}},
        {"hardware configuration of a capture: a FIFO", {"--hwconfig", fifo, "capture", m_dir + "/c2"}},
        {"configuration: a FIFO", {"--config", fifo, "scan", "Memory"}},
    };
    for (const auto& c : cases) {
        const Result r = run(c.second, guard);
        EXPECT_EQ(r.code, 2) << c.first << ": " << r.err;
        EXPECT_NE(r.err, "") << c.first;
    }
    for (const char* capture : {"/c1", "/c2"})
        EXPECT_NE(access((m_dir + capture).c_str(), F_OK), 0) << "a capture of a refused scan was written";
}

// A capture holds serial numbers: it is a new file only its owner reads,
// never written through a link nor over a file unless --force says so, and
// no temporary file is left beside it.
TEST_F(Cli, ACaptureIsANewFileOnlyItsOwnerReads)
{
    const std::string machine = testsupport::machineDir("xeon-2socket-ht");
    auto capture = [&](const std::string& name, bool force = false) {
        std::vector<std::string> args = {"capture", "--replay", machine, m_dir + "/" + name};
        if (force) args.push_back("--force");
        return run(args);
    };
    auto modeOf = [&](const std::string& name) {
        struct stat st;
        return lstat((m_dir + "/" + name).c_str(), &st) == 0 ? st.st_mode : 0;
    };

    Result r = run({"capture", "--replay", machine, m_dir + "/fresh"}, "umask 022;");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(modeOf("fresh"), static_cast<mode_t>(S_IFREG | 0600));
    const std::string captured = testsupport::readFile(m_dir + "/fresh");
    EXPECT_NE(captured.find("end-of-capture"), std::string::npos);

    // An existing file is kept, and so is what a planted link points at.
    write("kept", "precious");
    r = capture("kept");
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("exists"), std::string::npos) << r.err;
    EXPECT_EQ(testsupport::readFile(m_dir + "/kept"), "precious");
    write("target", "precious");
    ASSERT_EQ(symlink((m_dir + "/target").c_str(), (m_dir + "/link").c_str()), 0);
    ASSERT_EQ(symlink((m_dir + "/nothing-yet").c_str(), (m_dir + "/dangling").c_str()), 0);
    EXPECT_EQ(capture("link").code, 2);
    EXPECT_EQ(capture("dangling").code, 2);
    EXPECT_EQ(testsupport::readFile(m_dir + "/target"), "precious");
    EXPECT_NE(access((m_dir + "/nothing-yet").c_str(), F_OK), 0) << "written through a dangling link";

    // --force replaces the file, or the link itself, never the link's target.
    EXPECT_EQ(capture("kept", true).code, 0);
    EXPECT_EQ(testsupport::readFile(m_dir + "/kept"), captured);
    EXPECT_EQ(modeOf("kept"), static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_EQ(capture("link", true).code, 0);
    EXPECT_EQ(modeOf("link"), static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_EQ(testsupport::readFile(m_dir + "/target"), "precious");

    // Nothing but what the test made and the captures.
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_dir)) names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"fresh", "kept", "target", "link", "dangling", "out", "err"}));
}

// Control characters of a hostile capture or argument reach the terminal
// written out as JSON writes them, in tables and in error messages alike.
TEST_F(Cli, ControlCharactersAreWrittenOutNotSentToTheTerminal)
{
    // One mount point named with escapes: a title, a screen clear.
    const std::string hostile = "/u01\x1b]0;owned\x07\x1b[2J";
    std::string text = testsupport::readFile(testsupport::machineDir("sol10-mounts") + "/machine.txt");
    for (size_t at = 0; (at = text.find("/u01", at)) != std::string::npos; at += hostile.size())
        text.replace(at, 4, hostile);
    write("hostile/machine.txt", text);
    Result r = run({"scan", "--replay", m_dir + "/hostile", "Partition"});
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find(" : /u01\\u001b]0;owned\\u0007\\u001b[2J\n"), std::string::npos) << r.out;
    EXPECT_EQ(std::count_if(r.out.begin(), r.out.end(),
                            [](char c) { return c != '\n' && static_cast<unsigned char>(c) < 0x20; }),
              0);

    // What a replayed probe printed, shown as its tree.
    r = run({"probe", "--replay",
             write("probe.capture", "invscan-machine 1\nprobe cpuid\n> 1.0 0 OK\n> (ProcessorTable\n"
                                    ">    Name:s=x\x1b[2Jy\n> )\nend-of-capture\n"),
             "cpuid"});
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_NE(r.out.find("x\\u001b[2Jy"), std::string::npos) << r.out;
    EXPECT_EQ(r.out.find('\x1b'), std::string::npos);

    r = run({"scan", "--replay", m_dir + "/no\x1b[2Jsuch\ncapture"});
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("no\\u001b[2Jsuch\\ncapture"), std::string::npos) << r.err;
    EXPECT_EQ(r.err.find('\x1b'), std::string::npos);
}

// A JSON table written the way tests/machines' expected.txt writes tables.
std::string expectedText(const nlohmann::ordered_json& table)
{
    std::string out = table.at("name").get<std::string>() + "\n";
    int index = 0;
    for (const auto& row : table.at("rows")) {
        out += "[" + std::to_string(++index) + "]\n";
        for (const auto& attribute : row.items()) {
            const nlohmann::ordered_json& value = attribute.value();
            const auto values = value.is_array() ? value : nlohmann::ordered_json::array({value});
            for (nlohmann::ordered_json v : values) {
                if (v.is_object()) v = v.at("value");  // an enumeration: its number
                std::string text;
                if (v.is_null()) {
                    text = "(unreadable)";
                } else if (v.is_string()) {
                    text = v.get<std::string>();
                } else if (v.is_number_float()) {
                    char buffer[64];
                    std::snprintf(buffer, sizeof buffer, "%.9g", v.get<double>());
                    text = buffer;
                } else {
                    text = v.dump();
                }
                out += "  " + attribute.key() + " = " + text + "\n";
            }
        }
    }
    return out;
}

// Every simulated machine replayed through the command line gives the tables
// its expected.txt holds; so does a capture of that replay, which proves the
// capture keeps every answer a scan of such a machine reads. Nothing of the
// replaying host counts: two hosts with their own time zone, locale and
// tape-backup switch (set or not) show the same tables.
class MachineReplay : public Cli, public ::testing::WithParamInterface<std::string> {};

TEST_P(MachineReplay, GivesTheExpectedTablesAndSoDoesItsCapture)
{
    const std::string dir = testsupport::machineDir(GetParam());
    const std::string plainHost =
        "env -u LC_ALL -u LC_MESSAGES -u LC_CTYPE -u LANG -u LANGUAGE -u TZ -u CHECK_ULTRIUM_TAPE_RUNNING";
    const std::string otherHost =
        "env LC_ALL=C.UTF-8 LANG=de_DE.UTF-8 LC_MESSAGES=fr_FR LANGUAGE=de TZ=NZST-12NZDT,M9.5.0,M4.1.0/3 "
        "CHECK_ULTRIUM_TAPE_RUNNING=1";
    const std::string capture = m_dir + "/machine.capture";
    const Result captured = run({"--format", "json", "capture", "--replay", dir, capture}, otherHost);
    ASSERT_NE(captured.code, 2) << captured.err;
    for (const std::string& source : {dir, capture}) {
        const Result r = run({"--format", "json", "scan", "--replay", source}, plainHost);
        ASSERT_NE(r.code, 2) << r.err;
        const Result elsewhere = run({"--format", "json", "scan", "--replay", source}, otherHost);
        EXPECT_EQ(elsewhere.out, r.out) << source << " replayed on another host";
        std::map<std::string, std::string> shown;
        const auto document = nlohmann::ordered_json::parse(r.out);
        const std::string stamp = document.at("invscan").at("build");
        for (const auto& g : document.at("groups")) {
            std::string text = g.at("status") == "no table" ? "no table\n" : "";
            for (const auto& table : g.at("tables")) text += expectedText(table);
            for (size_t at; (at = text.find(stamp)) != std::string::npos;)
                text.replace(at, stamp.size(), "<build stamp>");
            shown[g.at("name")] = text;
        }
        // Each group the command line showed against what the machine must give
        // (its expected.txt, else the default), and every group it expects shown.
        for (const auto& group : shown)
            EXPECT_EQ(group.second, testsupport::expectedSection(dir, group.first)) << source << ", group " << group.first;
        for (const auto& listed : testsupport::sectionsOf(testsupport::readFile(dir + "/expected.txt")))
            if (listed.first != "Zone") {  // what the zone reader makes of it: no group shows it
                EXPECT_EQ(shown.count(listed.first), 1u) << source << " shows no group " << listed.first;
            }
    }
}

INSTANTIATE_TEST_SUITE_P(All, MachineReplay, ::testing::ValuesIn(testsupport::machineNames()), testsupport::machineTestName);

}  // namespace
