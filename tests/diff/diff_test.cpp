// invscan diff over simulated machines, the same one twice and copies edited
// the way the machine itself would change.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "invscan/com/Catalogue.h"
#include "invscan/com/CatalogueChanges.h"
#include "support/Machine.h"
#include "support/Program.h"

namespace {

using testsupport::ProgramResult;

class Diff : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (testsupport::invscanProgram().empty()) GTEST_SKIP() << "invscan is not built";
    }

    ProgramResult run(const std::vector<std::string>& args) { return testsupport::runInvscan(args, m_temp); }

    // The scan's JSON of a machine (a folder or a capture).
    nlohmann::json scanJson(const std::string& machine)
    {
        const ProgramResult r = run({"--format", "json", "scan", "--replay", machine});
        return nlohmann::json::parse(r.out);  // throws, failing the test, when not JSON
    }

    testsupport::TempDir m_temp;
};

// The lines that name one change each: indented under their group.
std::vector<std::string> changeLines(const std::string& out)
{
    std::vector<std::string> lines;
    std::istringstream in(out);
    for (std::string line; std::getline(in, line);)
        if (line.rfind("  ", 0) == 0) lines.push_back(line);
    return lines;
}

TEST_F(Diff, EveryMachineAgainstItselfHasNoChange)
{
    for (const std::string& name : testsupport::machineNames()) {
        SCOPED_TRACE(name);
        const std::string dir = testsupport::machineDir(name);
        const ProgramResult r = run({"diff", "--all", dir, dir});
        EXPECT_EQ(r.code, 0) << r.out << r.err;
        EXPECT_NE(r.out.find("\nno change; every attribute compared\n"), std::string::npos) << r.out;
    }
}

TEST_F(Diff, EditedMachinesShowEachChangeOnItsOwnLine)
{
    struct Case {
        const char* what;
        const char* machine;
        std::vector<std::pair<std::string, std::string>> edits;  // in machine.txt
        std::string appended;                                      // to machine.txt
        std::vector<std::string> options;
        int code;
        std::vector<std::string> lines;  // each matches one change line
        size_t count;                    // how many change lines there are
    };
    const std::string md5 = "\"[0-9a-f]{32}\"";
    const std::string zoneWeb1 = "> 1:web1:running:/zones/web1:3f2b6c1a-0e5d-4a4e-9c7c-2b1f0d8e9a11:solaris:excl:-:none:\n";
    const std::string zoneApp2 = "> 10:app2:running:/zones/app2:a2b3c4d5-e6f7-4081-9293-a4b5c6d7e8f9:solaris:excl:-:none:\n";
    const std::string zoneApp3 = "> 11:app3:running:/zones/app3:b3c4d5e6-f708-4192-a3b4-c5d6e7f8091a:solaris:excl:-:none:\n";
    const std::string app3Config = "run zonecfg -z app3 info brand\n> brand: solaris\nrun zonecfg -z app3 info pool\n> pool:\n";
    const std::vector<Case> cases = {
        // The storage row's id follows the device, so the slot stays and its serial changes.
        {"disk swapped", "sol10-x86-disks-and-dvd", {{"3NM1KQ2X0000", "9XK0ABCD0000"}}, "", {}, 1,
         {"  ~ Index=1, ID=" + md5 + R"(: Serial Number: "3NM1KQ2X0000" -> "9XK0ABCD0000")"}, 1},
        {"memory doubled", "sol11-global-with-zones", {{"sysconf PHYS_PAGES 4194304", "sysconf PHYS_PAGES 8388608"}}, "", {}, 1,
         {"  ~ row 1: Total Physical: 16777216 -> 33554432", "  ~ row 1: Total Virtual: 16777216 -> 33554432",
          "  ~ row 1: Total Page: 4194304 -> 8388608"},
         3},
        {"zone added last", "sol11-global-with-zones", {{zoneApp2, zoneApp2 + zoneApp3}}, app3Config, {}, 1,
         {R"(  \+ VirtualMachineID="\d+": Name="app3", Number=10, Type="Zone")"}, 1},
        // Every zone shares the host's id: rows pair by likeness, so only the
        // numbers behind the new zone move.
        {"zone added first", "sol11-global-with-zones", {{zoneWeb1, zoneWeb1 + zoneApp3}}, app3Config, {}, 1,
         {R"(  \+ VirtualMachineID="\d+": Name="app3", Number=1, Type="Zone")",
          R"(  ~ VirtualMachineID="\d+" \(row 2: Name="build"\): Number: 1 -> 2)",
          R"(  ~ VirtualMachineID="\d+" \(row 10: Name="app2"\): Number: 9 -> 10)"},
         10},
        // The id is made of the factory address, which stays.
        {"NIC address changed", "sol11-aggr-ipmp", {{"ether 2:8:20:aa:bb:cc", "ether 2:8:20:aa:bb:dd"}}, "", {}, 1,
         {"  ~ ID=" + md5 + R"(: Current Address: "02:08:20:aa:bb:cc" -> "02:08:20:aa:bb:dd")"}, 1},
        {"free memory only", "sol11-global-with-zones", {{"sysconf AVPHYS_PAGES 1048576", "sysconf AVPHYS_PAGES 524288"}},
         "", {}, 0, {}, 0},
        {"free memory, --all", "sol11-global-with-zones",
         {{"sysconf AVPHYS_PAGES 1048576", "sysconf AVPHYS_PAGES 524288"}}, "", {"--all"}, 1,
         {"  ~ row 1: Free Physical: 4194304 -> 2097152", "  ~ row 1: Free Virtual: 4194304 -> 2097152",
          "  ~ row 1: Free Page: 1048576 -> 524288"},
         3},
        {"renamed host, --force", "sol11-aggr-ipmp", {{"sysinfo HOSTNAME db07", "sysinfo HOSTNAME db08"}}, "", {"--force"}, 1,
         {R"(  ~ row 1: Hostname: "db07" -> "db08")", R"(  ~ row 1: Computer Alias: "db07" -> "db08")",
          R"(  ~ Address="172.16.8.23": Hostname: "db07" -> "db08")"},
         10},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::string copy = testsupport::copyMachine(c.machine, m_temp, std::string("m") + std::to_string(&c - &cases[0]));
        for (const auto& edit : c.edits) ASSERT_TRUE(testsupport::replaceInFile(copy + "/machine.txt", edit.first, edit.second));
        if (!c.appended.empty())
            std::ofstream(copy + "/machine.txt", std::ios::app) << c.appended;
        std::vector<std::string> args = {"diff"};
        args.insert(args.end(), c.options.begin(), c.options.end());
        args.push_back(testsupport::machineDir(c.machine));
        args.push_back(copy);
        const ProgramResult r = run(args);
        EXPECT_EQ(r.code, c.code) << r.out << r.err;
        const std::vector<std::string> lines = changeLines(r.out);
        EXPECT_EQ(lines.size(), c.count) << r.out;
        for (const std::string& pattern : c.lines) {
            const std::regex re(pattern);
            EXPECT_TRUE(std::any_of(lines.begin(), lines.end(), [&](const std::string& l) { return std::regex_match(l, re); }))
                << pattern << "\n" << r.out;
        }
        const std::string summary = c.count == 0 ? "no change" : std::to_string(c.count) + " change";
        EXPECT_NE(r.out.find("\n" + summary), std::string::npos) << r.out;
    }
}

TEST_F(Diff, AGroupInOneScanOnlyIsListed)
{
    const std::string machine = testsupport::machineDir("sol11-aggr-ipmp");
    nlohmann::json scan = scanJson(machine);
    const std::string whole = m_temp.write("whole.json", scan.dump());
    // Network Adapter gone from the list, Regional without its table.
    auto& groups = scan["groups"];
    for (auto it = groups.begin(); it != groups.end(); ++it)
        if ((*it)["name"] == "Network Adapter") {
            groups.erase(it);
            break;
        }
    for (auto& g : groups)
        if (g["name"] == "Regional") g["status"] = "no table", g["tables"] = nlohmann::json::array();
    const std::string cut = m_temp.write("cut.json", scan.dump());

    ProgramResult r = run({"diff", whole, cut});
    EXPECT_EQ(r.code, 1) << r.err;
    EXPECT_EQ(changeLines(r.out).size(), 0u) << r.out;
    EXPECT_NE(r.out.find("\nNetwork Adapter (group 7): only in OLD (NEW: absent)\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\nRegional (group 15): only in OLD (NEW: no table)\n"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("\n2 changes in 2 groups"), std::string::npos) << r.out;

    // The same for machines, the other way round; a JSON scan and the
    // machine it came from are the same.
    r = run({"--format", "json", "diff", cut, machine});
    EXPECT_EQ(r.code, 1) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    EXPECT_EQ(doc.at("changes"), 2);
    ASSERT_EQ(doc.at("groups").size(), 2u) << r.out;
    EXPECT_EQ(doc["groups"][0].at("name"), "Regional");
    EXPECT_EQ(doc["groups"][0].at("only_in"), "new");
    EXPECT_EQ(doc["groups"][0].at("other_status"), "no table");
    EXPECT_EQ(doc["groups"][1].at("name"), "Network Adapter");
    EXPECT_EQ(doc["groups"][1].at("only_in"), "new");
    EXPECT_EQ(run({"diff", whole, machine}).code, 0);
}

TEST_F(Diff, ADiskTakenOutMovesTheIndexOfThoseBehindIt)
{
    nlohmann::json scan = scanJson(testsupport::machineDir("sol10-san-multipath"));
    const std::string whole = m_temp.write("whole.json", scan.dump());
    size_t disks = 0;
    for (auto& g : scan["groups"])
        if (g["name"] == "Storage") {
            auto& rows = g["tables"][0]["rows"];
            disks = rows.size();
            ASSERT_GE(disks, 3u);
            rows.erase(rows.begin() + 1);
            for (size_t i = 1; i < rows.size(); ++i) rows[i]["Index"] = i + 1;
        }
    const ProgramResult r = run({"diff", whole, m_temp.write("cut.json", scan.dump())});
    EXPECT_EQ(r.code, 1) << r.err;
    EXPECT_NE(r.out.find("\nStorage (group 5), rows matched by key Index, ID (then without Index)\n"), std::string::npos)
        << r.out;
    const std::vector<std::string> lines = changeLines(r.out);
    ASSERT_EQ(lines.size(), disks - 1) << r.out;
    EXPECT_TRUE(std::regex_match(lines[0], std::regex(R"(  - Index=2, ID="[0-9a-f]{32}": Type=30 \(Hard Disk\), .*)")))
        << lines[0];
    for (size_t i = 1; i < lines.size(); ++i) {
        const std::string index = std::to_string(i + 2), moved = std::to_string(i + 1);
        EXPECT_TRUE(std::regex_match(lines[i], std::regex("  ~ Index=" + index + R"(, ID="[0-9a-f]{32}": Index: )" +
                                                          index + " -> " + moved)))
            << lines[i];
    }
}

TEST_F(Diff, JsonNamesTheMatchAndEachAttributesOldAndNewValue)
{
    const std::string copy = testsupport::copyMachine("sol10-x86-disks-and-dvd", m_temp, "disk");
    ASSERT_TRUE(testsupport::replaceInFile(copy + "/machine.txt", "3NM1KQ2X0000", "9XK0ABCD0000"));
    const ProgramResult r = run({"diff", "--format", "json", testsupport::machineDir("sol10-x86-disks-and-dvd"), copy});
    EXPECT_EQ(r.code, 1) << r.err;
    const auto doc = nlohmann::json::parse(r.out);
    ASSERT_EQ(doc.at("groups").size(), 1u) << r.out;
    const auto& storage = doc["groups"][0];
    EXPECT_EQ(storage.at("matched_by"), "keys");
    EXPECT_EQ(storage.at("match_attributes"), (nlohmann::json{"Index", "ID"}));
    EXPECT_TRUE(storage.at("added").empty());
    EXPECT_TRUE(storage.at("removed").empty());
    ASSERT_EQ(storage.at("changed").size(), 1u);
    EXPECT_EQ(storage["changed"][0].at("key").at("Index"), 1);
    EXPECT_EQ(storage["changed"][0].at("attributes"),
              (nlohmann::json{{{"name", "Serial Number"}, {"old", "3NM1KQ2X0000"}, {"new", "9XK0ABCD0000"}}}));
}

TEST_F(Diff, TroubleExitsTwoAndSaysWhy)
{
    const std::string machine = testsupport::machineDir("sol11-aggr-ipmp");
    const std::string renamed = testsupport::copyMachine("sol11-aggr-ipmp", m_temp, "renamed");
    ASSERT_TRUE(testsupport::replaceInFile(renamed + "/machine.txt", "sysinfo HOSTNAME db07", "sysinfo HOSTNAME db08"));
    const std::string cutCapture = m_temp.write("cut.capture", "invscan-machine 1\nsysinfo HOSTNAME db07\n");
    struct Case {
        std::vector<std::string> args;
        const char* message;
    };
    const std::vector<Case> cases = {
        {{"diff", machine, renamed},
         "are scans of different machines (--force compares them anyway):\n"
         "  UNIX System Params Hostname \"db07\" / \"db08\""},
        {{"diff", machine, m_temp.path() + "/none.json"}, "cannot read"},
        {{"diff", m_temp.write("foreign.json", R"({"groups": []})"), machine}, "is JSON but no invscan scan"},
        {{"diff", m_temp.write("broken.json", R"({"invscan": {)"), machine}, "is not readable JSON"},
        {{"diff", machine, m_temp.write("notes.txt", "hello\n")}, "is neither an invscan JSON scan nor a capture"},
        {{"diff", machine, cutCapture}, "cannot replay"},
        {{"diff", machine, m_temp.path()}, "no simulated machine"},
        {{"diff", machine, "/dev/zero"}, "not a regular file"},
        {{"diff", machine}, "new is required"},
    };
    const ProgramResult forced = run({"diff", "--force", machine, renamed});
    EXPECT_EQ(forced.code, 1) << forced.err;
    EXPECT_NE(forced.out.find("\n!!! different machines, compared as asked: UNIX System Params Hostname \"db07\" / \"db08\"\n"),
              std::string::npos)
        << forced.out;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.args.back());
        const ProgramResult r = run(c.args);
        EXPECT_EQ(r.code, 2);
        EXPECT_NE(r.err.find(c.message), std::string::npos) << r.err;
        EXPECT_TRUE(r.out.empty()) << r.out;
    }
}

// The README prints the list of attributes left out: it must be the list.
TEST(DiffReadme, ListsEveryAttributeLeftOut)
{
    std::string expected;
    for (const korAttribRef* a = VOLATILE_ATTRS_DEF; a->groupId != KOR_END; ++a) {
        const bool first = a == VOLATILE_ATTRS_DEF || a[-1].groupId != a->groupId;
        if (first) expected += std::string(expected.empty() ? "" : "\n") + "- " + getGroupNameFromId(a->groupId) + ": ";
        expected += std::string(first ? "" : ", ") + getAttribNameFromId(getGroupDefinitionFromId(a->groupId), a->attribId);
    }
    const std::string readme = testsupport::readFile(std::string(INVSCAN_SOURCE_DIR) + "/README.md");
    EXPECT_NE(readme.find("\n" + expected + "\n\n"), std::string::npos) << expected;
}

}  // namespace
