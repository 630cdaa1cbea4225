// Nothing is thrown to the host, out of memory included. This program
// replaces operator new so that one chosen allocation fails; every group of
// a simulated machine is asked for its table with the first, second, ...
// allocation failing (all of the first 64, then ever sparser), and each
// answer must be a table or null with a line at the minimum trace level,
// never an exception. Also: a capture claiming millions of processors is
// refused, not believed.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"
#include "support/Guarded.h"
#include "support/Machine.h"

namespace {
// -1: no allocation fails; otherwise how many succeed before the one that does.
std::atomic<long> g_untilFailure{-1};
std::atomic<bool> g_failed{false};
}  // namespace

void* operator new(std::size_t size)
{
    if (g_untilFailure.load(std::memory_order_relaxed) >= 0 && g_untilFailure.fetch_sub(1) == 0) {
        g_untilFailure = -1;
        g_failed = true;
        throw std::bad_alloc();
    }
    if (void* block = std::malloc(size ? size : 1)) return block;
    throw std::bad_alloc();
}
// The pair of the operator new above: its blocks come from malloc.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
#pragma GCC diagnostic pop

namespace {

using namespace testsupport;

// Every group of the machine under each failure, in a child process (a
// failed allocation may leave what it built unfreed): what went wrong, and
// how many failures were tried.
std::string failEachAllocation(const std::string& dir, int& tried)
{
    MachineInUse machine(dir);
    if (!machine.error().empty()) return "cannot load: " + machine.error();
    GroupFactory* factory = GroupFactory::getInstance();
    factory->initialise();
    factory->loadNodeFromFile(factory->getHWConfigFile(), 0);
    std::string problems;
    tried = 0;
    for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g) {
        if (!findGroupClass(g->id)) continue;
        // A group with nothing to show on this machine gives null anyway.
        std::unique_ptr<KorGroup> plain(factory->getGroup(String(g->name)));
        const bool hasTable = std::unique_ptr<KorTable>(plain->getTable()) != nullptr;
        factory->endScan();
        for (long k = 0;; k += k < 64 ? 1 : k / 8) {
            trace::Capture minimum(trace::Level::Min);
            const String name(g->name);
            g_failed = false;
            g_untilFailure = k;
            KorTable* table = nullptr;
            bool thrown = false;
            try {
                std::unique_ptr<KorGroup> group(factory->getGroup(name));
                table = group ? group->getTable() : nullptr;
                factory->endScan();
            } catch (...) {
                thrown = true;
            }
            g_untilFailure = -1;
            const bool failed = g_failed;
            const bool said = !minimum.records().empty();
            delete table;
            if (!failed) break;  // past the last allocation the group makes
            ++tried;
            if (thrown) problems += std::string(g->name) + ": allocation " + std::to_string(k) + " threw\n";
            else if (!table && hasTable && !said)
                problems += std::string(g->name) + ": allocation " + std::to_string(k) + " gave null, traced nothing\n";
        }
    }
    return problems;
}

TEST(OutOfMemory, EveryGroupGivesATableOrNullWithATraceLineNeverAnException)
{
    // A failed allocation may leave what it half built: no leak check here.
    const testsupport::ChildText child = testsupport::textFromChild(
        [] {
            int tried = 0;
            const std::string problems = failEachAllocation(machineDir("sol10-x86-workstation"), tried);
            return std::to_string(tried) + "\n" + problems;
        },
        false);
    const std::string& report = child.text;
    ASSERT_TRUE(child.ended) << "status " << child.status << "\n" << report;
    const size_t cut = report.find('\n');
    std::printf("failed allocations tried: %s\n", report.substr(0, cut).c_str());
    EXPECT_GT(std::atol(report.c_str()), 100);
    EXPECT_EQ(report.substr(cut + 1), "");
}

TEST(OutOfMemory, ACaptureClaimingMillionsOfProcessorsIsRefused)
{
    const struct {
        const char* line;
        bool believed;
    } cases[] = {
        {"online 4194303 on", false},
        {"online -1 on", false},
        {"online 65535 on", true},
        {"cpu_stat 4194303 1 2 3 4", false},
        {"pset 0 1 4194304", false},
        {"pset 0 1 2 3", true},
    };
    for (const auto& c : cases) {
        std::istringstream in(std::string(c.line) + "\n");
        FakeSystem machine;
        std::string error;
        EXPECT_EQ(replay::readMachine(in, "capture", false, machine, error), c.believed) << c.line << ": " << error;
    }
    // A list of more processors than any machine has.
    std::string many = "pset";
    for (int cpu = 0; cpu <= 65536; ++cpu) many += " " + std::to_string(cpu % 65536);
    std::istringstream in(many + "\n");
    FakeSystem machine;
    std::string error;
    EXPECT_FALSE(replay::readMachine(in, "capture", false, machine, error));
    EXPECT_NE(error, "");
}

}  // namespace
