// `invscan scan --format short` on simulated machines: one aligned line per
// row, and on each line what tells a person which device it is.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Machine.h"
#include "support/Program.h"

namespace {

using testsupport::runInvscan;

std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// A value as the short view shows it: at most 40 characters.
std::string shown(const nlohmann::json& value)
{
    const std::string text = value.is_object() ? value.at("text").get<std::string>()
                             : value.is_string() ? value.get<std::string>()
                                                 : value.dump();
    return text.size() > 40 ? text.substr(0, 37) + "..." : text;
}

class ShortView : public ::testing::TestWithParam<std::string> {};

TEST_P(ShortView, OneAlignedLinePerRowNamingEachDevice)
{
    if (testsupport::invscanProgram().empty()) GTEST_SKIP() << "invscan not built";
    testsupport::TempDir temp;
    const std::string machine = testsupport::machineDir(GetParam());
    const auto full = runInvscan({"--format", "json", "scan", "--replay", machine}, temp);
    const auto brief = runInvscan({"--format", "short", "scan", "--replay", machine}, temp);
    ASSERT_EQ(brief.code, full.code) << brief.err;
    ASSERT_FALSE(full.out.empty()) << full.err;
    const std::vector<std::string> got = lines(brief.out);

    // The lines, in order: a group's rows numbered from 1, or one line
    // saying why it has none.
    std::vector<std::pair<std::string, std::string>> expected;  // group, index
    std::map<std::string, std::vector<nlohmann::json>> rows;
    const nlohmann::json document = nlohmann::json::parse(full.out);
    for (const auto& group : document.at("groups")) {
        const std::string name = group.at("name");
        if (group.at("tables").empty()) expected.emplace_back(name, "-");
        for (const auto& table : group.at("tables")) {
            if (table.at("rows").empty()) expected.emplace_back(name, "-");
            for (size_t i = 0; i < table.at("rows").size(); ++i) {
                expected.emplace_back(name, std::to_string(i + 1));
                rows[name].push_back(table.at("rows")[i]);
            }
        }
    }
    ASSERT_EQ(got.size(), expected.size()) << brief.out;
    const std::regex digest("(^|[^0-9a-f])[0-9a-f]{32}([^0-9a-f]|$)");
    size_t indexEnds = std::string::npos;
    std::map<std::string, size_t> seen;
    for (size_t i = 0; i < got.size(); ++i) {
        const std::string& line = got[i];
        SCOPED_TRACE(line);
        const std::string& group = expected[i].first;
        ASSERT_EQ(line.rfind(group + " ", 0), 0u);
        // Group and number are columns: the values start at one offset.
        const size_t index = line.find_first_not_of(' ', group.size());
        const size_t end = std::min(line.find(' ', index), line.size());
        EXPECT_EQ(line.substr(index, end - index), expected[i].second);
        if (indexEnds == std::string::npos) indexEnds = end;
        EXPECT_EQ(end, indexEnds);
        EXPECT_FALSE(std::regex_search(line, digest)) << "a digest names nothing for a person";
        if (expected[i].second == "-") continue;

        // What names the row for a person is on its line.
        const nlohmann::json& row = rows[group][seen[group]++];
        const std::map<std::string, std::vector<std::string>> naming = {
            {"Storage", {"Device", "Type"}},
            {"Network Adapter", {"Permanent Address"}},
            {"PCI Device", {"Name"}},
            {"PhysicalProcessor", {"Manufacturer", "Family"}},
            {"Partition", {"FS Mount Point"}},
        };
        if (!naming.count(group)) continue;
        for (const std::string& attribute : naming.at(group)) {
            if (row.contains(attribute) && shown(row.at(attribute)) != "") {
                EXPECT_NE(line.find("  " + shown(row.at(attribute))), std::string::npos) << attribute;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Machines, ShortView,
                         ::testing::Values("sol10-san-multipath", "sol10-x86-disks-and-dvd", "sol11-aggr-ipmp",
                                           "xeon-2socket-ht", "kvm-guest-2core", "every-source-fails"),
                         testsupport::machineTestName);

}  // namespace
