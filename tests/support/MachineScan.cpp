#include "support/MachineScan.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <sstream>

#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/solaris/virtualization/Zone.h"
#include "support/Machine.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace testsupport {

namespace {

// What the zone reader makes of the machine: facts no group shows whole.
std::string zoneFacts()
{
    const Zone zone;
    const Zone::ZoneInfo& z = zone.getZoneInfo();
    char capacity[64];
    std::snprintf(capacity, sizeof capacity, "capacity %g, pool capacity %g", static_cast<double>(z.capacity),
                  static_cast<double>(z.sharedPoolCapacity));
    return std::string("== Zone\n") + (zone.isInsideZone() ? "inside a zone" : "no zones") +
           (zone.isGlobalZone() ? ", global" : "") + (zone.isKernelZone() ? ", kernel zone" : "") +
           (zone.isInsidePool() ? ", in a pool" : "") + "\nid " + z.id + ", hostid " + z.hostid + ", name '" + z.name +
           "', type '" + z.type + "' ('" + z.typeDisplayed + "'), " + capacity + "\npool '" + z.sharedPoolName +
           "': " + z.sharedPoolType + " '" + z.poolResourceName + "'\nchild zones " +
           std::to_string(zone.getChildZonesInfo().size()) + "\n";
}

// Every group that has a class, in catalogue order, its table as text; what
// the zone reader makes of the machine; then a "Problems" section when there
// are any.
std::string scanMachine(const std::string& dir)
{
    FakeSystem os;
    std::string error;
    if (!loadMachine(dir, os, error)) return "cannot load: " + error + "\n";
    replay::useMachineEnvironment(os);  // each machine is scanned in a child of its own
    ScopedSystem scope(os);
    vtSetProbeTap(&os);  // the probes print the machine's captured output
    trace::Capture trace(trace::Level::Max);
    NimCfg::setKey(String("config_dir"), String(dir + "/config"));

    // Every group that has a class, in catalogue order.
    std::string problems;
    auto scanGroups = [&problems](std::string& out, bool checkCatalogue) {
        GroupFactory* factory = GroupFactory::getInstance();
        factory->initialise();
        factory->loadNodeFromFile(factory->getHWConfigFile(), 0);
        factory->startScan();
        for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g) {
            if (!findGroupClass(g->id)) continue;
            std::unique_ptr<KorGroup> group(factory->getKORGroup(g->id));
            std::unique_ptr<KorTable> table(group ? group->getTable() : nullptr);
            out += "== " + std::string(g->name) + "\n";
            if (!table) {
                out += "no table\n";
                continue;
            }
            if (checkCatalogue)
                for (const std::string& problem : catalogueProblems(*table))
                    problems += "CATALOGUE: " + std::string(g->name) + ", " + problem + "\n";
            out += tableText(*table);
        }
        factory->endScan();
    };
    std::string out;
    scanGroups(out, true);
    // A scan runs each command once, however many groups read its output.
    for (const auto& command : os.runs)
        if (command.second > 1)
            problems += "COMMAND RUN " + std::to_string(command.second) + " TIMES IN A SCAN: " + command.first + "\n";
    // Tracing changes no result: a second scan with tracing off gives the same tables.
    {
        trace::Capture quiet(trace::Level::Off);
        std::string again;
        scanGroups(again, false);
        if (again != out) problems += "UNTRACED SCAN DIFFERS\n";
    }
    // The build stamp differs from build to build.
    const std::string stamp = getBuildDateQVRB();
    for (size_t at; (at = out.find(stamp)) != std::string::npos;) out.replace(at, stamp.size(), "<build stamp>");
    out += zoneFacts();
    if (os.openKstatHandles() != 0) problems += "LEAK: kernel statistics left open\n";
    if (os.openLibraries() != 0) problems += "LEAK: libraries left open\n";
    if (os.openStreams() != 0) problems += "LEAK: command pipes left open\n";
    if (os.openDirectories() != 0) problems += "LEAK: directories left open\n";
    if (os.openDescriptors() != 0) problems += "LEAK: devices left open\n";
    vtSetProbeTap(nullptr);
    // Each probe runs once in a process, however many groups read its tree.
    for (const auto& probe : os.probeRuns)
        if (probe.second > 1) problems += "PROBE RUN " + std::to_string(probe.second) + " TIMES: " + probe.first + "\n";

    std::istringstream wanted(readFile(dir + "/trace.txt"));
    std::string line;
    bool missing = false;
    while (std::getline(wanted, line))
        if (!line.empty() && !trace.contains(line)) problems += "TRACE MISSING: " + line + "\n", missing = true;
    // INVSCAN_SHOW_TRACE=1: the lines that did come, to write a machine's trace.txt by.
    if (missing && std::getenv("INVSCAN_SHOW_TRACE"))
        for (const std::string& text : trace.texts()) problems += "TRACED: " + text + "\n";
    return problems.empty() ? out : out + "== Problems\n" + problems;
}

}  // namespace

bool scanMachineInChild(const std::string& dir, std::string& result)
{
    TempDir home;
    const std::string path = home.path() + "/result.txt";
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0) return (result = "cannot fork"), false;
    if (pid == 0) {
        setenv("NIM_HOMEDIR", home.path().c_str(), 1);
        setenv("TZ", "UTC", 1);
        // The locale is the machine's (its `env` lines), never the test runner's.
        for (const char* name : {"LC_ALL", "LC_MESSAGES", "LC_CTYPE", "LANG", "LANGUAGE"}) unsetenv(name);
        tzset();
        const std::string text = scanMachine(dir);
        FILE* f = std::fopen(path.c_str(), "w");
        const bool written = f && std::fputs(text.c_str(), f) >= 0;
        if (f) std::fclose(f);
        // exit, not _exit: the leak checker of a sanitizer build runs here.
        std::exit(written ? 0 : 3);
    }
    int status = 0;
    if (waitpid(pid, &status, 0) != pid) return (result = "lost the scan's process"), false;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return (result = "the scan crashed or leaked, status " + std::to_string(status)), false;
    result = readFile(path);
    return true;
}

std::string groupSection(const std::string& scan, const std::string& name)
{
    const std::string heading = "== " + name + "\n";
    size_t at = scan.rfind(heading, 0) == 0 ? 0 : scan.find("\n" + heading);
    if (at == std::string::npos) return "";
    at = scan.find('\n', at + (at == 0 ? 0 : 1)) + 1;
    const size_t end = scan.find("\n== ", at - 1);
    return scan.substr(at, end == std::string::npos ? std::string::npos : end + 1 - at);
}

Sections sectionsOf(const std::string& scan)
{
    Sections sections;
    std::istringstream in(scan);
    std::string line;
    while (std::getline(in, line))
        if (line.rfind("== ", 0) == 0)
            sections.emplace_back(line.substr(3), "");
        else if (!sections.empty())
            sections.back().second += line + "\n";
    return sections;
}

const std::string* sectionOf(const Sections& sections, const std::string& name)
{
    for (const auto& section : sections)
        if (section.first == name) return &section.second;
    return nullptr;
}

namespace {
std::string sectionNamed(const Sections& sections, const std::string& name, const std::string& otherwise)
{
    const std::string* text = sectionOf(sections, name);
    return text ? *text : otherwise;
}
}  // namespace

std::string defaultsFile() { return std::string(INVSCAN_SOURCE_DIR) + "/tests/machines/defaults.txt"; }

std::string defaultSection(const std::string& name)
{
    return sectionNamed(sectionsOf(readFile(defaultsFile())), name, "no table\n");
}

std::string expectedSection(const std::string& dir, const std::string& name)
{
    return sectionNamed(sectionsOf(readFile(dir + "/expected.txt")), name, defaultSection(name));
}

std::string sectionsText(const Sections& sections, const std::function<std::string(const std::string&)>& byDefault)
{
    std::string text;
    for (const auto& section : sections)
        if (section.second != byDefault(section.first)) text += "== " + section.first + "\n" + section.second;
    return text;
}

}  // namespace testsupport
