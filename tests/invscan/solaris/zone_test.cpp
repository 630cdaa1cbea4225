// The zone reader's library steps, one fault at a time: each gives its own
// result code and trace line and leaves no library open. Whole zone set-ups
// are simulated machines (tests/machines); this machine's real answer is at
// the end.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "framework/Trace.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/solaris/virtualization/Zone.h"
#include "support/FakeSystem.h"
#include "support/TableReader.h"
#include "support/TempDir.h"
#include "support/Topology.h"

#include <map>
#include <set>

namespace {

using testsupport::FakeSystem;
using Setup = std::function<void(FakeSystem&)>;

struct Case {
    const char* what;
    Setup setup;
    int result;
    std::string trace;
};

// Runs one reading step on a machine without zones (so the constructor
// reads nothing) set up by `c`.
void expectStep(const Case& c, const std::function<int(Zone&, Zone::ZoneInfo&)>& step, Zone::ZoneInfo& info)
{
    FakeSystem os;
    c.setup(os);
    testsupport::ScopedSystem scope(os);
    trace::Capture capture;
    Zone zone;
    EXPECT_EQ(step(zone, info), c.result) << c.what;
    EXPECT_TRUE(capture.contains(c.trace)) << c.what << ": " << c.trace;
    EXPECT_EQ(os.openLibraries(), 0) << c.what;
}

void v12n(FakeSystem& os, std::vector<std::string> missing = {})
{
    os.libraries["libv12n.so.1"].missing = std::move(missing);
    os.v12n.name = "non-global-zone";
}

TEST(ZoneLibraries, EveryVirtualizationEnvironmentFaultHasItsResult)
{
    const Case cases[] = {
        {"no library on any path", [](FakeSystem&) {}, 1, "Failed to load libv12n.so.1 library, no v12n info available"},
        {"no environment call", [](FakeSystem& os) { v12n(os, {"v12n_get_current_env"}); }, 2,
         "ERROR! Couldn't find 'v12n_get_current_env' function in libv12n.so.1"},
        {"no free call", [](FakeSystem& os) { v12n(os, {"v12n_free_env"}); }, 3,
         "ERROR! Couldn't find 'v12n_free_env' function in libv12n.so.1"},
        {"no environment", [](FakeSystem& os) { v12n(os), os.v12n.envFails = true; }, 4,
         "v12n_get_current_env() function failed with errno=95"},
        {"no property call", [](FakeSystem& os) { v12n(os, {"v12n_get_env_prop"}); }, 5,
         "ERROR! Couldn't find 'v12n_get_env_prop' function in libv12n.so.1"},
        {"no name", [](FakeSystem& os) { v12n(os), os.v12n.nameFails = true; }, 6,
         "getting V12N_PROP_NAME failed with errno=2"},
        {"a kernel zone without its name", [](FakeSystem& os) { v12n(os), os.v12n.name = "kernel-zone", os.v12n.kzFails = true; },
         7, "getting V12N_PROP_KZ_ZONENAME failed"},
        {"found on the third path, joined without a slash",
         [](FakeSystem& os) { os.libraries["/usr/lib/64libv12n.so.1"], os.v12n.name = "kvm"; }, 0,
         "env property V12N_PROP_NAME value:'kvm'"},
    };
    for (const Case& c : cases) {
        Zone::ZoneInfo info;
        expectStep(c, [](Zone& z, Zone::ZoneInfo& i) { return z.readZoneType(i); }, info);
    }
}

void pools(FakeSystem& os, std::vector<std::string> missing = {}, std::vector<std::string> failing = {})
{
    os.libraries["libpool.so"].missing = std::move(missing);
    os.pools.failing = std::move(failing);
    os.pools.byName["p1"] = {{"pset", "pset_p1", 3}};
}

TEST(ZoneLibraries, EveryPoolFaultHasItsResultAndLeavesTheCapacityUnknown)
{
    std::vector<Case> cases = {
        {"no library", [](FakeSystem&) {}, 1, "Failed to load libpool.so library, no pool info available"},
        {"value allocation fails", [](FakeSystem& os) { pools(os, {}, {"pool_value_alloc"}); }, 11,
         "ERROR! 'pool_value_alloc' failed, pool error: 5, error description: 'fake pool error'"},
        {"configuration allocation fails", [](FakeSystem& os) { pools(os, {}, {"pool_conf_alloc"}); }, 9,
         "ERROR! 'pool_conf_alloc' failed"},
        {"pools are off", [](FakeSystem& os) { pools(os, {}, {"pool_conf_open"}); }, 10, "ERROR! 'pool_conf_open' failed"},
        {"no such pool", [](FakeSystem& os) { pools(os), os.pools.byName.clear(); }, 19, "ERROR! 'pool_get_pool' failed"},
        {"resources cannot be listed", [](FakeSystem& os) { pools(os, {}, {"pool_query_pool_resources"}); }, 20,
         "ERROR! 'pool_query_pool_resources' failed"},
        {"no property", [](FakeSystem& os) { pools(os, {}, {"pool_get_property"}); }, 21,
         "ERROR! 'pool_get_property' failed"},
    };
    // Each function looked up: missing, it has its own result.
    const char* functions[] = {"pool_error", "pool_strerror", "pool_conf_alloc", "pool_conf_open",
                               "pool_dynamic_location", "pool_get_property", "pool_value_alloc",
                               // then, after the value: 12 to 18
                               "pool_value_free", "pool_conf_close", "pool_value_get_string", "pool_get_pool",
                               "pool_query_pool_resources", "pool_resource_to_elem", "pool_value_get_uint64"};
    for (int i = 0; i < 14; ++i) {
        const std::string missing = functions[i];
        cases.push_back({functions[i], [missing](FakeSystem& os) { pools(os, {missing}); }, i < 7 ? i + 2 : i + 5,
                         "ERROR! Couldn't find '" + missing + "' function in libpool.so"});
    }
    for (const Case& c : cases) {
        Zone::ZoneInfo info;
        info.sharedPoolName = "p1";
        expectStep(c, [](Zone& z, Zone::ZoneInfo& i) { return z.readPoolInfo(i); }, info);
        EXPECT_EQ(info.sharedPoolCapacity, Zone::CAPACITY_NOT_AVAILABLE) << c.what;
    }

    // Sound: the processor set's size; and no name, nothing to read.
    Zone::ZoneInfo info;
    info.sharedPoolName = "p1";
    expectStep({"sound", [](FakeSystem& os) { pools(os); }, 0, "shared pool pset.size is: 3"},
               [](Zone& z, Zone::ZoneInfo& i) { return z.readPoolInfo(i); }, info);
    EXPECT_EQ(info.sharedPoolCapacity, 3.0f);
    EXPECT_EQ(info.poolResourceName, "pset_p1");
    Zone::ZoneInfo unnamed;
    expectStep({"no pool name", [](FakeSystem&) {}, 30, "the shared pool has no name, no information to read"},
               [](Zone& z, Zone::ZoneInfo& i) { return z.readPoolInfo(i); }, unnamed);
}

// Packages and cores as the kernel's topology counts them.
std::pair<int, int> sysfsTopology()
{
    std::set<std::string> packages, cores;
    for (int cpu = 0;; ++cpu) {
        const std::string dir = "/sys/devices/system/cpu/cpu" + std::to_string(cpu) + "/topology/";
        const std::string package = testsupport::readFile(dir + "physical_package_id");
        if (package.empty()) break;
        packages.insert(package);
        cores.insert(package + ":" + testsupport::readFile(dir + "core_id"));
    }
    return {static_cast<int>(packages.size()), static_cast<int>(cores.size())};
}

TEST(LparOnThisMachine, NodeCapacityIsTheTopologyAndThereIsNoZone)
{
    const auto topology = sysfsTopology();
    if (topology.first == 0) GTEST_SKIP() << "no processor topology in sysfs";
    if (!testsupport::kernelAgreesWithCpuid()) GTEST_SKIP() << "the hypervisor's CPUID and the kernel disagree";
    sys::setCurrent(nullptr);
    testsupport::ScopedEnv home("NIM_HOMEDIR", (std::string(INVSCAN_BIN_DIR) + "/..").c_str());
    std::unique_ptr<KorGroup> group(GroupFactory::getInstance()->getGroup("Lpar"));
    std::unique_ptr<KorTable> table(group->getTable());
    ASSERT_NE(table, nullptr);
    const std::vector<testsupport::Row> rows = testsupport::readTable(*table);
    std::map<unsigned long, KorValue> row;
    for (const KorValue& v : rows.at(0)) row[v.id] = v;
    EXPECT_EQ(row.at(4).real, topology.first);   // Node Capacity
    EXPECT_EQ(row.at(8).real, topology.second);  // Node Capacity In Cores
    for (unsigned long outside : {5, 9, 6, 10}) EXPECT_EQ(row.at(outside).real, -1.0) << outside;
}

}  // namespace

namespace {

// zonecfg is asked only about names a zone can have: one beginning with '-'
// would be read as an option, one with a blank split into more arguments.
TEST(ZoneNames, OnlyAZoneNameReachesZonecfg)
{
    const struct {
        std::string name;
        bool asked;
    } cases[] = {
        {"web1", true},           {"db-2.prod_x", true}, {"9lives", true},
        {"-z", false},            {"-oops", false},      {".hidden", false},
        {"a info brand", false},  {"a;b", false},        {std::string(65, 'a'), false},
        {std::string(64, 'a'), true},
    };
    for (const auto& c : cases) {
        FakeSystem os;
        os.commands["zonecfg -z " + c.name + " info brand"].output = "brand: solaris\n";
        testsupport::ScopedSystem scope(os);
        trace::Capture capture;
        Zone zone;
        std::string brand;
        EXPECT_EQ(zone.getZonePropertyValue("brand", c.name, brand), c.asked) << c.name;
        EXPECT_EQ(brand, c.asked ? "solaris" : "") << c.name;
        bool ran = false;
        for (const auto& run : os.runs) ran = ran || run.first.rfind("zonecfg", 0) == 0;
        EXPECT_EQ(ran, c.asked) << c.name;
        EXPECT_EQ(capture.contains("is no zone name"), !c.asked) << c.name;
    }
}

}  // namespace
