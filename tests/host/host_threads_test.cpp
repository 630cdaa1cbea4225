// A host with a thread pool: four threads scan at once, through the factory
// as a host does (getGroup, getTable, walk, delete, endScan), from a cold
// start, so the probe caches, the scan's shared facts, the factory's group
// lists and each group's own state are all raced for. Every table must equal
// what one thread alone gets, and each probe must still run once.
//
// INVSCAN_THREAD_SCANS sets the scans each thread makes (default 2); a long
// run by hand: INVSCAN_THREAD_SCANS=2000. Each machine runs in a child
// process of its own, as the probes' trees are kept for the life of one.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "invscan/com/GroupFactory.h"
#include "support/Guarded.h"
#include "support/HostScan.h"
#include "support/Machine.h"
#include "support/MachineScan.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

const int kThreads = 4;

int scansEach()
{
    const char* text = std::getenv("INVSCAN_THREAD_SCANS");
    const int n = text ? std::atoi(text) : 0;
    return n > 0 ? n : 2;
}

// The first line that differs, with the group it is in.
std::string firstDifference(const std::string& got, const std::string& wanted)
{
    std::istringstream a(got), b(wanted);
    std::string lineA, lineB, group;
    while (true) {
        const bool moreA = static_cast<bool>(std::getline(a, lineA)), moreB = static_cast<bool>(std::getline(b, lineB));
        if (!moreA && !moreB) return "no difference";
        if (!moreA || !moreB || lineA != lineB)
            return "in " + group + ": '" + (moreA ? lineA : "(end)") + "', one thread alone '" + (moreB ? lineB : "(end)") + "'\n";
        if (lineA.rfind("== ", 0) == 0) group = lineA.substr(3);
    }
}

// One scan as a host makes it: every group by name, each table as text.
std::string scanOnce()
{
    std::string out;
    testsupport::hostScan([&out](const std::string& name, KorTable* table) {
        out += "== " + name + "\n" + (table ? tableText(*table) : std::string("no table\n"));
    });
    return out;
}

// Scans the machine from four threads at once, then from one; what differed
// (empty when nothing did), and the figures.
std::string raceOnMachine(const std::string& dir, std::string& figures)
{
    MachineInUse machine(dir);
    if (!machine.error().empty()) return "cannot load: " + machine.error();

    const int n = scansEach();
    // Each thread's distinct tables, with how often it got each.
    std::vector<std::map<std::string, int>> results(kThreads);
    std::mutex gate;
    std::condition_variable opened;
    int waiting = 0;
    const std::time_t started = std::time(nullptr);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            {
                // All four reach the library together, while its caches are cold.
                std::unique_lock<std::mutex> hold(gate);
                if (++waiting == kThreads) opened.notify_all();
                opened.wait(hold, [&] { return waiting == kThreads; });
            }
            for (int i = 0; i < n; ++i) ++results[static_cast<size_t>(t)][scanOnce()];
        });
    for (std::thread& thread : threads) thread.join();
    const std::time_t ended = std::time(nullptr);

    const std::string alone = scanOnce();
    std::string problems;
    int differing = 0;
    for (int t = 0; t < kThreads; ++t)
        for (const auto& got : results[static_cast<size_t>(t)])
            if (got.first != alone) {
                if (differing == 0)
                    problems += "thread " + std::to_string(t) + ": " + firstDifference(got.first, alone);
                differing += got.second;
            }
    if (differing) problems = std::to_string(differing) + " scans differ; the first: " + problems;
    // One thread's tables are the machine's: the groups that give none are
    // those its expected scan says (the host's locale and build show in the rest).
    for (const auto& group : sectionsOf(alone))
        if ((group.second == "no table\n") != (expectedSection(dir, group.first) == "no table\n"))
            problems += "one thread's scan has not the machine's " + group.first + ":\n" + group.second;
    for (const auto& probe : machine.system().probeRuns)
        if (probe.second != 1) problems += "probe " + probe.first + " ran " + std::to_string(probe.second) + " times\n";
    figures = std::to_string(kThreads) + " threads x " + std::to_string(n) + " scans in " +
              std::to_string(ended - started) + " s, " + std::to_string(alone.size()) + " bytes of tables each";
    return problems;
}

// Runs in a child process: its problems, and its figures.
std::pair<std::string, std::string> raceInChild(const std::string& dir)
{
    const testsupport::ChildText child = testsupport::textFromChild([&dir] {
        std::string figures;
        const std::string problems = raceOnMachine(dir, figures);
        return problems + "\n" + figures;
    });
    if (!child.ended)
        return {"the scanning process ended with status " + std::to_string(child.status) + "\n" + child.text, ""};
    const size_t cut = child.text.rfind('\n');
    return {child.text.substr(0, cut), child.text.substr(cut + 1)};
}

// Storage and SAN disks, zones and pools, and a workstation with most groups.
class HostThreads : public ::testing::TestWithParam<std::string> {};

TEST_P(HostThreads, FourThreadsGetTheTablesOneThreadGets)
{
    const auto result = raceInChild(machineDir(GetParam()));
    std::printf("%s: %s\n", GetParam().c_str(), result.second.c_str());
    EXPECT_EQ(result.first, "");
}

INSTANTIATE_TEST_SUITE_P(Machines, HostThreads,
                         ::testing::Values("sol10-san-multipath", "sol11-global-with-zones", "sol10-x86-workstation"),
                         machineTestName);

}  // namespace
