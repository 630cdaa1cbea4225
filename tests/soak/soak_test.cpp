// Drives the library as a long-lived host does, scan after scan in one
// process (factory, hardware configuration, every group through getGroup and
// getTable, a walk of every row, delete, endScan), on this machine and on each
// simulated machine, and checks that nothing piles up: descriptors, child
// processes, loaded libraries, and on a simulated machine its kernel
// statistics, pipes, directories and devices.
//
// INVSCAN_SOAK_SCANS sets the number of scans (default 3). From 200 on, and
// without the sanitizers (whose quarantine holds freed memory on purpose),
// resident memory may grow by less than 1 MiB from scan 100 to the last.
// Each machine's figures are printed, one line each.
#include <gtest/gtest.h>
#include <link.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "invscan/com/GroupFactory.h"
#include "support/Guarded.h"
#include "support/HostScan.h"
#include "support/Machine.h"
#include "support/TempDir.h"

namespace {

using namespace testsupport;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
constexpr long kMemoryFromScan = 100;
constexpr long kMemoryGrowthLimitKiB = 1024;

int scanCount()
{
    const char* text = std::getenv("INVSCAN_SOAK_SCANS");
    const int n = text ? std::atoi(text) : 0;
    return n > 0 ? n : 3;
}

long residentKiB()
{
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

int loadedObjects()
{
    int n = 0;
    dl_iterate_phdr([](dl_phdr_info*, size_t, void* count) { return ++*static_cast<int*>(count), 0; }, &n);
    return n;
}

// "none" when no child of this process is left, running or not reaped.
std::string childrenLeft()
{
    int status = 0;
    const pid_t pid = waitpid(-1, &status, WNOHANG);
    if (pid > 0) return "a child left unreaped";
    if (pid == 0) return "a child still running";
    return errno == ECHILD ? "none" : "waitpid failed";
}

// One scan as a host makes it; the number of attribute values walked.
unsigned long scanOnce()
{
    unsigned long values = 0;
    testsupport::hostScan([&values](const std::string&, KorTable* table) {
        if (!table) return;
        table->reset();
        while (KorTableRow* row = table->getNext()) {
            row->reset();
            for (unsigned long i = 0; i < row->getNumAttribs(); ++i)
                if (const KorTableAttrib* attrib = row->getNext()) values += attrib->getAttribPtr() != nullptr;
        }
    });
    return values;
}

// Scans n times; what went wrong, empty when nothing did. The figures go to
// `figures`.
std::string soak(int n, std::string& figures, FakeSystem* machine)
{
    const int descriptorsBefore = openDescriptorCount();
    unsigned long firstValues = scanOnce();
    // What a first scan loads for good (name services, the locale) is no leak.
    const int descriptorsWarm = openDescriptorCount(), objectsWarm = loadedObjects();
    long memoryAt100 = residentKiB();
    std::string problems;
    for (int i = 2; i <= n; ++i) {
        const unsigned long values = scanOnce();
        if (values != firstValues && problems.empty())
            problems += "scan " + std::to_string(i) + " walked " + std::to_string(values) + " values, the first " +
                        std::to_string(firstValues) + "; ";
        if (i == kMemoryFromScan) memoryAt100 = residentKiB();
    }
    const long memoryEnd = residentKiB();
    const int descriptorsEnd = openDescriptorCount(), objectsEnd = loadedObjects();
    const std::string children = childrenLeft();
    figures = std::to_string(n) + " scans, " + std::to_string(firstValues) + " values each; resident " +
              std::to_string(memoryAt100) + " KiB at scan " + std::to_string(n < kMemoryFromScan ? 1 : kMemoryFromScan) +
              ", " + std::to_string(memoryEnd) + " KiB at the end; descriptors " + std::to_string(descriptorsBefore) +
              " before, " + std::to_string(descriptorsWarm) + " after one scan, " + std::to_string(descriptorsEnd) +
              " at the end; loaded objects " + std::to_string(objectsWarm) + " then " + std::to_string(objectsEnd) +
              "; children left: " + children;

    if (descriptorsEnd != descriptorsWarm) problems += "descriptors went from " + std::to_string(descriptorsWarm) +
                                                       " to " + std::to_string(descriptorsEnd) + "; ";
    if (objectsEnd != objectsWarm) problems += "loaded objects went from " + std::to_string(objectsWarm) + " to " +
                                               std::to_string(objectsEnd) + "; ";
    if (children != "none") problems += children + "; ";
    if (n >= 2 * kMemoryFromScan && !kSanitized && memoryEnd - memoryAt100 >= kMemoryGrowthLimitKiB)
        problems += "resident memory grew by " + std::to_string(memoryEnd - memoryAt100) + " KiB; ";
    if (machine) {
        if (machine->openKstatHandles()) problems += "kernel statistics left open; ";
        if (machine->openLibraries()) problems += "libraries left open; ";
        if (machine->openStreams()) problems += "command pipes left open; ";
        if (machine->openDirectories()) problems += "directories left open; ";
        if (machine->openDescriptors()) problems += "devices left open; ";
    }
    return problems;
}

// Runs the soak in a child process of its own, as the probes' trees are kept
// for the life of a process: its problems, and its figures.
std::pair<std::string, std::string> soakInChild(const std::string& machineDirectory)
{
    const testsupport::ChildText child = testsupport::textFromChild(
        [&machineDirectory] {
            std::string problems, figures;
            if (machineDirectory.empty()) {
                problems = soak(scanCount(), figures, nullptr);
            } else {
                MachineInUse machine(machineDirectory);
                problems = machine.error().empty() ? soak(scanCount(), figures, &machine.system())
                                                   : "cannot load: " + machine.error();
            }
            return problems + "\n" + figures;
        },
        false);
    if (!child.ended) return {"the soak's process ended with status " + std::to_string(child.status), ""};
    const size_t cut = child.text.find('\n');
    return {child.text.substr(0, cut), child.text.substr(cut + 1)};
}

TEST(Soak, ScanAfterScanOnThisMachineLeavesNothingBehind)
{
    const auto result = soakInChild("");
    std::printf("soak this machine: %s\n", result.second.c_str());
    EXPECT_EQ(result.first, "");
}

class SoakMachine : public ::testing::TestWithParam<std::string> {};

TEST_P(SoakMachine, ScanAfterScanLeavesNothingBehind)
{
    const auto result = soakInChild(machineDir(GetParam()));
    std::printf("soak %s: %s\n", GetParam().c_str(), result.second.c_str());
    EXPECT_EQ(result.first, "");
}

INSTANTIATE_TEST_SUITE_P(All, SoakMachine, ::testing::ValuesIn(machineNames()), machineTestName);

}  // namespace
