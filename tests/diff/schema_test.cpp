// invscan schema checked by a real validator (Debian's python3-jsonschema)
// against the JSON of every simulated machine and of this one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Machine.h"
#include "support/Program.h"

namespace {

using testsupport::ProgramResult;

// Prints "OK" or the first error for each document named after the schema.
const char* const kValidator = R"(import json, sys
import jsonschema
schema = json.load(open(sys.argv[1]))
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)
for path in sys.argv[2:]:
    error = jsonschema.exceptions.best_match(validator.iter_errors(json.load(open(path))))
    print(path, "OK" if error is None else "INVALID %s: %s" % (list(error.absolute_path), error.message[:160]))
)";

class Schema : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (testsupport::invscanProgram().empty()) GTEST_SKIP() << "invscan is not built";
        // The distribution's interpreter, which the package installs into.
        if (std::system("/usr/bin/python3 -c 'import jsonschema' >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "python3-jsonschema is not installed (scripts/install-deps.sh)";
        const ProgramResult r = testsupport::runInvscan({"schema"}, m_temp);
        ASSERT_EQ(r.code, 0) << r.err;
        m_schema = m_temp.write("schema.json", r.out);
        m_script = m_temp.write("validate.py", kValidator);
    }

    // Each document's verdict, in order.
    std::vector<std::string> validate(const std::vector<std::string>& documents)
    {
        std::string command = "/usr/bin/python3 " + m_script + " " + m_schema;
        for (const std::string& d : documents) command += " " + d;
        command += " >" + m_temp.path() + "/verdicts 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << testsupport::readFile(m_temp.path() + "/verdicts");
        std::vector<std::string> verdicts;
        std::istringstream in(testsupport::readFile(m_temp.path() + "/verdicts"));
        for (std::string line; std::getline(in, line);) verdicts.push_back(line);
        EXPECT_EQ(verdicts.size(), documents.size());
        return verdicts;
    }

    testsupport::TempDir m_temp;
    std::string m_schema, m_script;
};

TEST_F(Schema, EveryMachinesScanIsValid)
{
    std::vector<std::string> documents;
    std::vector<std::string> args = {"--format", "json", "scan"};
    for (const std::string& name : testsupport::machineNames()) {
        args.resize(3);
        args.insert(args.end(), {"--replay", testsupport::machineDir(name)});
        documents.push_back(m_temp.write(name + ".json", testsupport::runInvscan(args, m_temp).out));
    }
    // This machine, as it is.
    args.resize(3);
    documents.push_back(m_temp.write("this-machine.json", testsupport::runInvscan(args, m_temp).out));
    for (const std::string& verdict : validate(documents))
        EXPECT_EQ(verdict.substr(verdict.find(' ') + 1), "OK") << verdict;
}

TEST_F(Schema, RefusesWhatTheCatalogueDoesNotAllow)
{
    const std::string machine = testsupport::machineDir("sol10-x86-disks-and-dvd");
    const auto scan = nlohmann::json::parse(
        testsupport::runInvscan({"--format", "json", "scan", "--replay", machine}, m_temp).out);
    // Each edit applies to the first row of the named group.
    struct Case {
        const char* what;
        const char* group;
        const char* attribute;
        nlohmann::json value;  // null: the attribute removed
    };
    const std::vector<Case> cases = {
        {"a number as text", "Memory", "Total Physical", "16 GB"},
        {"a number out of range", "Memory", "Total Physical", 4294967296ULL},
        {"65 characters where 64 fit", "Storage", "Serial Number", std::string(65, 'S')},
        {"a text as a number", "Storage", "Model", 42},
        {"an enumeration's text not its value's", "Storage", "Type", {{"value", 30}, {"text", "Floppy/Diskette"}}},
        {"an attribute the group does not have", "Storage", "Colour", "blue"},
        {"a date in another form", "Scan Info", "Scan Date", "2024-01-31 23:59:58"},
    };
    std::vector<std::string> documents = {m_temp.write("unchanged.json", scan.dump())};
    for (const Case& c : cases) {
        nlohmann::json edited = scan;
        bool found = false;
        for (auto& g : edited["groups"])
            if (g["name"] == c.group && !g["tables"].empty()) {
                g["tables"][0]["rows"][0][c.attribute] = c.value;
                found = true;
            }
        ASSERT_TRUE(found) << c.what << ": no " << c.group << " table";
        documents.push_back(m_temp.write(std::string("edit") + std::to_string(documents.size()) + ".json", edited.dump()));
    }
    // CpuMeter's tick counters are wider than the catalogue's 32 bits on
    // purpose: a long-running machine's count passes.
    nlohmann::json ticks = scan;
    bool meter = false;
    for (auto& g : ticks["groups"])
        if (g["name"] == "CpuMeter" && !g["tables"].empty()) {
            g["tables"][0]["rows"][0]["IdleTime"] = 4294967301ULL;
            meter = true;
        }
    ASSERT_TRUE(meter) << "no CpuMeter table";
    documents.push_back(m_temp.write("ticks.json", ticks.dump()));
    const std::vector<std::string> verdicts = validate(documents);
    ASSERT_EQ(verdicts.size(), cases.size() + 2);
    EXPECT_EQ(verdicts[0].substr(verdicts[0].find(' ') + 1), "OK") << verdicts[0];
    for (size_t i = 0; i < cases.size(); ++i)
        EXPECT_NE(verdicts[i + 1].find(" INVALID ["), std::string::npos) << cases[i].what << ": " << verdicts[i + 1];
    EXPECT_EQ(verdicts.back().substr(verdicts.back().find(' ') + 1), "OK") << verdicts.back();
}

}  // namespace
