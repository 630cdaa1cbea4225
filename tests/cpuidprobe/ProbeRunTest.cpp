// The built probe on this machine, checked against what the kernel says.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>

#include "common/vartree/vtexec.h"
#include "cpuidprobe/DumpReader.h"
#include "probes/cpuid/Decoder.h"
#include "support/TempDir.h"
#include "support/Topology.h"

namespace {

std::string probePath()
{
    const char* dir = std::getenv("INVSCAN_BIN_DIR");
    return std::string(dir && *dir ? dir : INVSCAN_BIN_DIR) + "/cpuid";
}

struct ProbeOutput {
    int status = -1;
    std::string out;
};

ProbeOutput runProbe(const std::string& args)
{
    ProbeOutput run;
    std::string command = "'" + probePath() + "' " + args;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.out.append(buffer, n);
    run.status = pclose(pipe);
    return run;
}

std::unique_ptr<VtExecInfo> parse(const std::string& text)
{
    VtIStream_Memory stream(text);
    return std::unique_ptr<VtExecInfo>(vtParseProgramOutput(&stream));
}

// Field -> values in /proc/cpuinfo order, one per "processor" entry.
std::map<std::string, std::vector<std::string>> readCpuinfo()
{
    std::map<std::string, std::vector<std::string>> fields;
    std::ifstream in("/proc/cpuinfo");
    std::string line;
    while (std::getline(in, line)) {
        size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string key = line.substr(0, colon);
        key.erase(key.find_last_not_of(" \t") + 1);
        std::string value = colon + 2 <= line.size() ? line.substr(colon + 2) : "";
        fields[key].push_back(value);
    }
    return fields;
}

class CpuidProbeRun : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (access(probePath().c_str(), X_OK) != 0) GTEST_SKIP() << "probe not built: " << probePath();
        ProbeOutput plain = runProbe("2>/dev/null");
        ASSERT_EQ(plain.status, 0) << plain.out;
        info = parse(plain.out);
        ASSERT_TRUE(info);
        ASSERT_EQ(info->result, 0) << plain.out;
        ASSERT_NE(info->root, nullptr) << plain.out;
    }
    std::unique_ptr<VtExecInfo> info;
};

TEST_F(CpuidProbeRun, AgreesWithTheKernelsProcessorList)
{
    auto cpuinfo = readCpuinfo();
    if (cpuinfo["vendor_id"].empty()) GTEST_SKIP() << "no x86 /proc/cpuinfo here";

    long online = sysconf(_SC_NPROCESSORS_ONLN);
    EXPECT_EQ(vtGetValue(info.get(), "ProcessorTable", "OnlineProcessorCount", -1), online);
    // Processors outside this process's affinity are not read, so at most.
    int active = vtGetValue(info.get(), "ProcessorTable", "ActiveProcessorCount", -1);
    EXPECT_GE(active, 1);
    EXPECT_LE(active, online);

    const VtNode* table = vtGetNode(info.get(), "ProcessorTable", 0);
    ASSERT_NE(table, nullptr);
    const VtNode* first = table->getChild("Processor", 0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(std::string(first->getValue(nullptr, "Manufacturer", "")), cpuinfo["vendor_id"][0]);
    EXPECT_EQ(first->getValue("CPUID", "Family", -1), std::atoi(cpuinfo["cpu family"][0].c_str()));
    EXPECT_EQ(first->getValue("CPUID", "Model", -1), std::atoi(cpuinfo["model"][0].c_str()));
    if (!cpuinfo["stepping"].empty()) {
        EXPECT_EQ(first->getValue("CPUID", "Stepping", -1), std::atoi(cpuinfo["stepping"][0].c_str()));
    }

    // With every processor visible the kernel's socket and core counts match,
    // unless a hypervisor tells the kernel one topology and CPUID another.
    if (active == online && testsupport::kernelAgreesWithCpuid() && !cpuinfo["physical id"].empty() && !cpuinfo["cpu cores"].empty()) {
        std::set<std::string> sockets(cpuinfo["physical id"].begin(), cpuinfo["physical id"].end());
        EXPECT_EQ(vtGetValue(info.get(), "ProcessorTable", "TotalPackageCount", -1),
                  static_cast<int>(sockets.size()));
        int coresPerSocket = std::atoi(cpuinfo["cpu cores"][0].c_str());
        EXPECT_EQ(first->getValue(nullptr, "TotalCoreCount", -1), coresPerSocket);
        int siblings = std::atoi(cpuinfo["siblings"][0].c_str());
        EXPECT_EQ(first->getValue(nullptr, "TotalProcCount", -1), siblings);
    }
}

// "-d" leaves standard output as it is and logs registers that decode to
// the same machine.
TEST_F(CpuidProbeRun, DebugModeLogsRegistersThatDecodeToTheSameTree)
{
    testsupport::TempDir dir;
    const std::string logPath = dir.path() + "/log";
    ProbeOutput debug = runProbe("-d 2>'" + logPath + "'");
    std::stringstream log(testsupport::readFile(logPath));

    ASSERT_EQ(debug.status, 0);
    std::unique_ptr<VtExecInfo> again = parse(debug.out);
    ASSERT_TRUE(again && again->root);
    EXPECT_EQ(vtGetValue(again.get(), "ProcessorTable", "TotalCoreCount", -2),
              vtGetValue(info.get(), "ProcessorTable", "TotalCoreCount", -1));

    cpuid::Decoded fromLog = cpuid::decode(cpuidtest::readDumpText(log.str()));
    EXPECT_EQ(fromLog.logicalCount, vtGetValue(info.get(), "ProcessorTable", "ActiveProcessorCount", -1));
    EXPECT_EQ(static_cast<int>(fromLog.packages.size()),
              vtGetValue(info.get(), "ProcessorTable", "TotalPackageCount", -1));
}

TEST(CpuidProbeUsage, UnknownOptionGivesAFailedHeaderAndStatus)
{
    if (access(probePath().c_str(), X_OK) != 0) GTEST_SKIP() << "probe not built: " << probePath();
    ProbeOutput bad = runProbe("--bogus 2>/dev/null");
    EXPECT_NE(bad.status, 0);
    std::unique_ptr<VtExecInfo> parsed = parse(bad.out);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->major, 1);
    EXPECT_GT(parsed->result, 0);
    EXPECT_EQ(vtGetNode(parsed.get(), "ProcessorTable", 0), nullptr);
}

}  // namespace
