// invscan: the command-line host. Drives the scanner library the way an
// inventory host does and prints what the groups return.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <climits>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <list>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "tools/invscan/Cli11.h"
#include <nlohmann/json.hpp>

#include "common/replay/MachineFile.h"
#include "common/replay/Recorder.h"
#include "common/replay/Sanitizer.h"
#include "common/replay/SimulatedSystem.h"
#include "common/sys/ChildOutput.h"
#include "common/sys/Portable.h"
#include "common/sys/PosixSystem.h"
#include "common/sys/Spawn.h"
#include "common/sys/System.h"
#include "common/vartree/vtexec.h"
#include "framework/NimCfg.h"
#include "framework/RunLog.h"
#include "framework/Trace.h"
#include "framework/XmlNimParser.h"
#include "framework/utils.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/KorGroup.h"
#include "invscan/com/KorTable.h"
#include "tools/invscan/Diff.h"
#include "tools/invscan/Output.h"
#include "tools/invscan/Schema.h"

namespace cli {

// The replayed capture's hardware configuration lives in a temporary file
// for the run; a signal that ends the run removes it first (only
// async-signal-safe calls in the handler), then ends the run as it would have.
char g_heldConfig[64] = "";

extern "C" void removeHeldConfig(int signalNumber)
{
    if (g_heldConfig[0]) unlink(g_heldConfig);
    raise(signalNumber);  // the handler was reset: the default action ends the process
}

void removeHeldConfigOnSignals()
{
    for (int signalNumber : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE, SIGALRM, SIGUSR1, SIGUSR2}) {
        struct sigaction previous;
        // A signal the caller ignores (nohup) stays ignored.
        if (sigaction(signalNumber, nullptr, &previous) != 0 || previous.sa_handler == SIG_IGN) continue;
        struct sigaction action;
        std::memset(&action, 0, sizeof action);
        action.sa_handler = removeHeldConfig;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_RESETHAND;
        sigaction(signalNumber, &action, nullptr);
    }
}

namespace {

const int EXIT_USAGE = 2;

struct Options {
    std::string format = "text";
    std::string configFile;
    std::vector<std::string> assignments;
    std::string hwConfig;
    std::string traceLevel;
    std::string traceFile;
    std::vector<std::string> groups;
    std::vector<std::string> excluded;
    bool timing = false;
    double deadline = 0;  // seconds; 0: none
    std::string replay;   // a capture file or a simulated machine's folder
    std::string capture;  // where a capture goes
    bool sanitize = false;
    bool force = false;   // a capture may replace an existing file
    bool noHwConfig = false;  // a capture without one: its machine had none, this host's does not stand in
};

struct Wanted {
    unsigned long id;
    std::string name;
};

std::string versionText()
{
    return std::string("invscan ") + INVSCAN_VERSION + " (build " + getBuildDateQVRB() + ")";
}

void fail(const std::string& message)
{
    std::fprintf(stderr, "invscan: %s\n", escapeControls(message).c_str());
}

// Where this program lives: /proc when it has the link, else argv[0].
std::string programPath(const char* argv0)
{
    for (const char* link : {"/proc/self/exe", "/proc/self/path/a.out"}) {
        char buffer[PATH_MAX];
        const ssize_t length = readlink(link, buffer, sizeof buffer - 1);
        if (length > 0) return std::string(buffer, static_cast<size_t>(length));
    }
    if (argv0 && std::strchr(argv0, '/')) {
        if (char* resolved = realpath(argv0, nullptr)) {
            std::string path(resolved);
            std::free(resolved);
            return path;
        }
    }
    return std::string();
}

// The probes sit in <prefix>/bin beside this program; the library finds them
// through NIM_HOMEDIR. A caller's own setting wins.
void setHomeDir(const std::string& prefix)
{
    if (!prefix.empty()) setenv("NIM_HOMEDIR", prefix.c_str(), 0);
}

bool isNumber(const std::string& text)
{
    if (text.empty() || text.size() > 9) return false;
    for (char c : text)
        if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

std::list<String> allGroupNames()
{
    std::list<String> names;
    GroupFactory::getInstance()->getAllGroups(names);
    return names;
}

// A group by id, exact name, or a name that differs only in case.
bool resolveGroup(const std::string& argument, const std::list<String>& names, Wanted& out)
{
    if (isNumber(argument)) {
        const unsigned long id = std::strtoul(argument.c_str(), nullptr, 10);
        for (const String& name : names) {
            if (getGroupIdFromName(name) == id) {
                out = {id, name.narrow()};
                return true;
            }
        }
        return false;
    }
    for (const String& name : names) {
        if (name.narrow() == argument) {
            out = {getGroupIdFromName(name), argument};
            return true;
        }
    }
    int matches = 0;
    const std::string lowered = utils::toLower(argument);
    for (const String& name : names) {
        if (utils::toLower(name.narrow()) == lowered) {
            out = {getGroupIdFromName(name), name.narrow()};
            ++matches;
        }
    }
    return matches == 1;
}

int applyConfiguration(const Options& options)
{
    if (!options.configFile.empty()) {
        std::string error;
        if (!NimCfg::loadFile(options.configFile, &error)) {
            fail("cannot use configuration file " + options.configFile + ": " + error);
            return EXIT_USAGE;
        }
    }
    for (const std::string& assignment : options.assignments) {
        if (!NimCfg::setFromAssignment(assignment)) {
            fail("--set needs KEY=VALUE, not '" + assignment + "'");
            return EXIT_USAGE;
        }
    }
    if (!options.traceLevel.empty()) {
        trace::Level level;
        if (!trace::parseLevel(options.traceLevel, level)) {
            fail("unknown trace level '" + options.traceLevel + "' (off, min, mid, max or 0-3)");
            return EXIT_USAGE;
        }
        NimCfg::setKey("trace.level", options.traceLevel);
    }
    if (!options.traceFile.empty()) {
        NimCfg::setKey("trace.file", options.traceFile);
        // A trace file with no level asked for would stay empty.
        if (NimCfg::getKey("trace.level").empty()) NimCfg::setKey("trace.level", "max");
    }
    if (!trace::configure() && !options.traceFile.empty()) {
        fail("cannot write trace file " + options.traceFile);
        return EXIT_USAGE;
    }
    return 0;
}

int runList(const Options& options)
{
    const std::list<String> names = allGroupNames();
    if (options.format == "json") {
        nlohmann::ordered_json groups = nlohmann::ordered_json::array();
        for (const String& name : names)
            groups.push_back({{"id", getGroupIdFromName(name)}, {"name", name.narrow()}});
        std::printf("%s\n", nlohmann::ordered_json{{"groups", groups}}
                                .dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                                .c_str());
        return 0;
    }
    for (const String& name : names)
        std::printf("%4lu  %s\n", getGroupIdFromName(name), name.narrow().c_str());
    return 0;
}

int runScan(const Options& options)
{
    GroupFactory* factory = GroupFactory::getInstance();
    if (!factory) {
        fail("out of memory");
        return 1;
    }
    const std::list<String> names = allGroupNames();
    std::vector<Wanted> wanted;
    if (options.groups.empty()) {
        for (const String& name : names) wanted.push_back({getGroupIdFromName(name), name.narrow()});
    } else {
        for (const std::string& argument : options.groups) {
            Wanted one{};
            if (!resolveGroup(argument, names, one)) {
                fail("unknown group '" + argument + "' (see 'invscan list')");
                return EXIT_USAGE;
            }
            wanted.push_back(one);
        }
    }

    // --exclude adds to the configuration's list, which the factory honours.
    std::string exclude = NimCfg::getKey("hwscanner.exclude").narrow();
    for (const std::string& argument : options.excluded) {
        Wanted one{};
        if (!resolveGroup(argument, names, one)) {
            fail("unknown group '" + argument + "' to exclude (see 'invscan list')");
            return EXIT_USAGE;
        }
        exclude += (exclude.empty() ? "" : ",") + std::to_string(one.id);
    }
    NimCfg::setKey("hwscanner.exclude", exclude);

    // The host's calling order.
    factory->initialise();
    const String hwConfig = options.noHwConfig       ? String()
                            : options.hwConfig.empty() ? factory->getHWConfigFile()
                                                       : String(options.hwConfig);
    const int loaded = factory->loadNodeFromFile(hwConfig, 0);
    if (loaded != 0 && !options.hwConfig.empty()) {
        fail("cannot use hardware configuration " + options.hwConfig + ": " + XmlNimParser::statusText(loaded));
        return EXIT_USAGE;
    }
    factory->startScan();

    const bool json = options.format == "json";
    const bool kor = options.format == "kor";
    const bool brief = options.format == "short";
    nlohmann::ordered_json results = nlohmann::ordered_json::array();
    // A group whose source failed is no usage error, but a scan in which
    // every group that could run gave nothing has failed.
    int attempted = 0, produced = 0;
    using Clock = std::chrono::steady_clock;
    const Clock::time_point started = Clock::now();
    auto since = [](Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); };
    const int timeout = NimCfg::getTimeout();
    if (options.deadline > 0)
        sys::setLatestEnd(sys::monotonicMillis() + static_cast<long long>(options.deadline * 1000.0 + 0.5));
    runlog::take();  // runs before the scan are not its own
    std::vector<std::pair<std::string, double>> groupTimes;
    for (const Wanted& one : wanted) {
        nlohmann::ordered_json entry{{"id", one.id}, {"name", one.name}};
        std::string notRun;
        if (GroupFactory::isExcluded(one.id)) {
            notRun = "excluded";
            entry["reason"] = "hwscanner.exclude";
        } else if (options.deadline > 0 && since(started) >= options.deadline) {
            notRun = "skipped";
            ++attempted;  // it could have run: a scan that ran nothing has failed
            entry["reason"] = "the scan's deadline had passed";
        }
        if (!notRun.empty()) {
            if (json) {
                entry["status"] = notRun;
                entry["tables"] = nlohmann::ordered_json::array();
                results.push_back(std::move(entry));
            } else if (brief) {
                std::printf("%s", shortNote(one.name, notRun).c_str());
            } else {
                std::printf("%s (group %lu): %s (%s)\n\n", one.name.c_str(), one.id, notRun.c_str(),
                            notRun == "excluded" ? "hwscanner.exclude" : "the scan's deadline had passed");
            }
            continue;
        }
        // A group started before the deadline may not run its commands past
        // it: the probes and commands end at it to the millisecond, and the
        // shell pipes (whose bound is in whole seconds) at the next second.
        if (options.deadline > 0) {
            const double rest = options.deadline - since(started);
            int left = static_cast<int>(rest);
            if (left < rest) ++left;  // whole seconds, rounded up
            NimCfg::setKey("hwscanner.timeout", std::to_string(std::max(1, std::min(timeout, static_cast<int>(left)))));
        }
        const Clock::time_point groupStarted = Clock::now();
        KorGroup* group = factory->getGroup(String(one.name));
        if (!group) {
            if (json) {
                entry["status"] = "no class";
                entry["tables"] = nlohmann::ordered_json::array();
                results.push_back(std::move(entry));
            } else if (brief) {
                std::printf("%s", shortNote(one.name, "not built yet").c_str());
            } else {
                std::printf("%s (group %lu): not built yet\n\n", one.name.c_str(), one.id);
            }
            continue;
        }
        ++attempted;
        std::vector<KorTable*> tables;
        if (KorTable* table = group->getTable()) tables.push_back(table);
        // Further tables are the host's to delete, like the main one.
        for (int i = 0; i < group->getExtraTableCount(); ++i)
            if (KorTable* extra = group->getExtraTable(i)) tables.push_back(extra);
        if (tables.empty()) {
            if (json) {
                entry["status"] = "no table";
                entry["tables"] = nlohmann::ordered_json::array();
                results.push_back(std::move(entry));
            } else if (brief) {
                std::printf("%s", shortNote(one.name, "no table").c_str());
            } else {
                std::printf("%s (group %lu): no table (nothing found, or the source failed)\n\n",
                            one.name.c_str(), one.id);
            }
        } else {
            ++produced;
            nlohmann::ordered_json rendered = nlohmann::ordered_json::array();
            for (KorTable* table : tables) {
                if (json) {
                    rendered.push_back(renderJson(*table));
                } else if (brief) {
                    std::printf("%s", renderShort(*table).c_str());
                } else if (kor) {
                    table->toString();
                    std::printf("\n\n");
                } else {
                    std::printf("%s\n", renderText(*table).c_str());
                }
            }
            if (json) {
                entry["status"] = "scanned";
                entry["tables"] = std::move(rendered);
                results.push_back(std::move(entry));
            }
        }
        for (KorTable* table : tables) delete table;
        delete group;
        groupTimes.emplace_back(one.name, since(groupStarted));
        std::fflush(stdout);
    }
    factory->endScan();
    if (options.deadline > 0) {
        NimCfg::setKey("hwscanner.timeout", std::to_string(timeout));
        sys::setLatestEnd(-1);
    }
    const double total = since(started);
    const std::vector<runlog::Run> runs = runlog::take();

    if (json) {
        nlohmann::ordered_json document{{"invscan", {{"version", INVSCAN_VERSION}, {"build", getBuildDateQVRB()}}},
                                        {"groups", std::move(results)}};
        if (options.timing) {
            nlohmann::ordered_json groups = nlohmann::ordered_json::array(), ran = nlohmann::ordered_json::array();
            for (const auto& g : groupTimes) groups.push_back({{"name", g.first}, {"seconds", g.second}});
            for (const runlog::Run& r : runs) ran.push_back({{"run", r.what}, {"seconds", r.seconds}, {"status", r.status}});
            document["timing"] = {{"seconds", total}, {"groups", std::move(groups)}, {"runs", std::move(ran)}};
        }
        std::printf("%s\n", document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
    }
    if (options.timing && !json) {
        std::printf("Timing (seconds)\n");
        for (const auto& g : groupTimes) std::printf("  %9.6f  group %s\n", g.second, g.first.c_str());
        for (const runlog::Run& r : runs) std::printf("  %9.6f  run   %s (status %d)\n", r.seconds, r.what.c_str(), r.status);
        std::printf("  %9.6f  the whole scan\n", total);
    }
    const bool failed = attempted > 0 && produced == 0;
    return std::fflush(stdout) == 0 && !failed ? 0 : 1;
}

// Runs one probe the way the library does and prints what it parsed.
int runProbe(const std::string& name, bool replaying)
{
    // A bare name only: the probes live in one folder.
    if (name.empty() || name.find('/') != std::string::npos || name == "." || name == "..") {
        fail("a probe is named without a path, for example: invscan probe cpuid");
        return EXIT_USAGE;
    }
    const char* home = std::getenv("NIM_HOMEDIR");
    const std::string path = std::string(home ? home : ".") + "/bin/" + name;
    if (!replaying && access(path.c_str(), X_OK) != 0) {
        fail("no probe program " + path);
        return 1;
    }
    // The library prints the tree as the probe gave it: through a file, so
    // that a hostile probe or capture cannot reach the terminal raw.
    std::fflush(stdout);
    std::FILE* held = std::tmpfile();
    const int terminal = held ? dup(STDOUT_FILENO) : -1;
    if (terminal < 0 || dup2(fileno(held), STDOUT_FILENO) < 0) {
        if (held) std::fclose(held);
        if (terminal >= 0) close(terminal);
        fail(std::string("cannot run the probe: ") + std::strerror(errno));
        return 1;
    }
    const int code = vtExecTest(name.c_str());
    std::fflush(stdout);
    dup2(terminal, STDOUT_FILENO);
    close(terminal);
    std::rewind(held);
    std::string line;
    for (int c; (c = std::fgetc(held)) != EOF;) {
        if (c != '\n') {
            line.push_back(static_cast<char>(c));
            continue;
        }
        std::printf("%s\n", escapeControls(line).c_str());
        line.clear();
    }
    if (!line.empty()) std::printf("%s", escapeControls(line).c_str());
    std::fclose(held);
    std::fflush(stdout);
    return code;
}

// The machine's answers in place of this machine's for the rest of the
// process: its system calls and its probes. Null with the error on stderr
// when the file cannot be read.
std::unique_ptr<replay::SimulatedSystem> startReplay(const std::string& path)
{
    auto simulated = std::make_unique<replay::SimulatedSystem>();
    std::string error;
    if (!replay::loadReplay(path, *simulated, error)) {
        fail("cannot replay " + path + ": " + error);
        return nullptr;
    }
    // The capture's environment, none of this host's: time zone, locale.
    replay::useMachineEnvironment(*simulated);
    // A simulated machine's folder brings its hardware configuration.
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) NimCfg::setKey("config_dir", path + "/config");
    sys::setCurrent(simulated.get());
    vtSetProbeTap(simulated.get());
    return simulated;
}

// What the replay asked for and the capture did not hold.
void endReplay(const replay::SimulatedSystem& simulated)
{
    vtSetProbeTap(nullptr);
    sys::setCurrent(nullptr);
    if (simulated.unanswered.empty()) return;
    std::string list;
    for (const std::string& call : simulated.unanswered) list += (list.empty() ? "" : ", ") + call;
    fail("not in the capture: " + list);
}

// A capture holds serial numbers: it is written to a new file beside its
// place (created, never opened through a link, readable by its owner only)
// that takes the capture's name once complete, and never replaces a file
// there unless forced.
struct CaptureFile {
    std::string path, temporary;
    int fd = -1;
};

// The new file, made before the scan so that a capture that cannot be
// written is refused at once. 0, or an errno with `error` set.
int createCapture(const std::string& path, bool force, CaptureFile& file, std::string& error)
{
    struct stat st;
    if (!force && lstat(path.c_str(), &st) == 0) return (error = "it exists (--force replaces it)"), EEXIST;
    const size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
    file.path = path;
    for (unsigned attempt = 0; file.fd < 0 && attempt < 100; ++attempt) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        file.temporary = folder + "/." + base + "." + std::to_string(getpid()) + "-" + std::to_string(now % 1000000) +
                         "-" + std::to_string(attempt);
        file.fd = sys::openCloexec(file.temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (file.fd < 0 && errno != EEXIST) break;
    }
    if (file.fd >= 0) return 0;
    const int cause = errno;
    error = std::strerror(cause);
    return cause;
}

// Writes `text` and gives the file its name; the temporary name is gone
// after, whatever happened. 0, or an errno with `error` set.
int placeCapture(CaptureFile& file, const std::string* text, bool force, std::string& error)
{
    int problem = text ? 0 : ECANCELED;
    for (size_t done = 0; !problem && done < text->size();) {
        const ssize_t n = write(file.fd, text->data() + done, text->size() - done);
        if (n > 0)
            done += static_cast<size_t>(n);
        else if (n < 0 && errno != EINTR)
            problem = errno;
    }
    if (close(file.fd) != 0 && !problem) problem = errno;
    file.fd = -1;
    if (!problem) {
        if (force) {
            if (rename(file.temporary.c_str(), file.path.c_str()) != 0) problem = errno;
        } else if (link(file.temporary.c_str(), file.path.c_str()) != 0) {  // fails on anything there, a link too
            problem = errno;
            struct stat st;
            // A file system without hard links: the name is still free.
            if ((problem == EPERM || problem == ENOTSUP || problem == EOPNOTSUPP) &&
                lstat(file.path.c_str(), &st) != 0 && errno == ENOENT)
                problem = rename(file.temporary.c_str(), file.path.c_str()) == 0 ? 0 : errno;
        }
    }
    unlink(file.temporary.c_str());
    if (problem) error = problem == EEXIST ? "it exists (--force replaces it)" : std::strerror(problem);
    return problem;
}

// A scan as usual that keeps every answer of the machine in `file`. Of a
// replay too: a capture sanitized afterwards, a machine's folder as one file.
int runCapture(const Options& options, replay::SimulatedSystem* replaying)
{
    CaptureFile file;
    std::string error;
    if (createCapture(options.capture, options.force, file, error) != 0) {
        fail("cannot write capture " + options.capture + ": " + error);
        return EXIT_USAGE;
    }
    replay::Recorder recorder(sys::current(), replaying);
    sys::setCurrent(&recorder);
    vtSetProbeTap(&recorder);
    const int code = runScan(options);
    vtSetProbeTap(replaying);
    sys::setCurrent(replaying);
    if (code == EXIT_USAGE) {  // nothing was scanned
        placeCapture(file, nullptr, false, error);
        return code;
    }
    const std::string hwConfig =
        options.hwConfig.empty() ? GroupFactory::getInstance()->getHWConfigFile().narrow() : options.hwConfig;
    std::string config;
    bool cut = false;
    if (!options.noHwConfig &&
        sys::readRegularFile(hwConfig.c_str(), config, XmlNimParser::DEFAULT_MAX_BYTES, &cut) && !cut)
        recorder.keepHardwareConfig(config);
    replay::Sanitizer sanitizer;
    std::ostringstream text;
    recorder.write(text, options.sanitize ? &sanitizer : nullptr);
    const std::string captured = text.str();
    if (placeCapture(file, &captured, options.force, error) != 0) {
        fail("cannot write capture " + options.capture + ": " + error);
        return 1;
    }
    return code;
}

}  // namespace

int run(int argc, char** argv)
{
    std::setlocale(LC_CTYPE, "");
    Options options;

    CLI::App app{"invscan: scans this machine's hardware inventory and prints it.", "invscan"};
    app.set_version_flag("--version", versionText());
    app.require_subcommand(0, 1);
    app.add_option("--format", options.format,
                   "Output: text (readable), short (a line a row), kor (diagnostic dump) or json")
        ->check(CLI::IsMember({"text", "short", "kor", "json"}))
        ->capture_default_str();
    app.add_option("--config", options.configFile, "Configuration file of key=value lines")
        ->type_name("FILE");
    app.add_option("--set", options.assignments, "Configuration key, after --config (repeatable)")
        ->type_name("KEY=VALUE")
        ->expected(1)
        ->allow_extra_args(false)  // one pair per --set: what follows is a group name
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--hwconfig", options.hwConfig,
                   "Hardware configuration file (default: config_dir/hwscanner.config_file)")
        ->type_name("FILE");
    app.add_option("--trace", options.traceLevel, "Trace level: off, min, mid or max")->type_name("LEVEL");
    app.add_option("--trace-file", options.traceFile, "Write trace lines to FILE (default: standard error)")
        ->type_name("FILE");

    CLI::App* list = app.add_subcommand("list", "List the id and name of every group");
    CLI::App* scan = app.add_subcommand("scan", "Scan the named groups (every group when none is named)");
    scan->add_option("groups", options.groups, "Group names or ids")->type_name("GROUP|ID");
    scan->add_option("--exclude", options.excluded, "Leave a group out (repeatable; adds to hwscanner.exclude)")
        ->type_name("GROUP|ID")
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    scan->add_flag("--timing", options.timing, "Add the time of each group and of each probe and command run");
    scan->add_option("--deadline", options.deadline, "Start no group after SECONDS; bound their commands by it")
        ->type_name("SECONDS")
        ->check(CLI::PositiveNumber);
    scan->add_option("--replay", options.replay, "Scan a captured machine (a capture FILE or a machine's folder)")
        ->type_name("FILE");
    CLI::App* probe = app.add_subcommand("probe", "Run a probe program under NIM_HOMEDIR/bin and print its tree");
    std::string probeName;
    probe->add_option("name", probeName, "Probe name, for example cpuid")->required()->type_name("NAME");
    probe->add_option("--replay", options.replay, "Print what the probe printed in a capture")->type_name("FILE");
    CLI::App* capture =
        app.add_subcommand("capture", "Scan this machine and keep every answer it gave in FILE, to replay elsewhere");
    capture->add_option("file", options.capture, "Where the capture goes")->required()->type_name("FILE");
    capture->add_flag("--sanitize", options.sanitize,
                      "Replace serial numbers, host ids, UUIDs, MAC addresses and WWNs with placeholders");
    capture->add_option("--replay", options.replay, "Capture a replay instead of this machine (to sanitize a capture)")
        ->type_name("FILE");
    capture->add_flag("--force", options.force, "Replace FILE when it exists");
    CLI::App* diff =
        app.add_subcommand("diff", "Say what changed between two scans of one machine (exit 1 when anything did)");
    DiffOptions diffOptions;
    diff->add_option("old", diffOptions.oldPath, "The earlier scan: JSON, a capture or a machine's folder")
        ->required()
        ->type_name("OLD");
    diff->add_option("new", diffOptions.newPath, "The later scan, likewise")->required()->type_name("NEW");
    diff->add_flag("--all", diffOptions.all, "Compare the attributes that change on every scan too");
    diff->add_flag("--force", diffOptions.force, "Compare scans of two different machines");
    CLI::App* schema = app.add_subcommand("schema", "Print the JSON Schema of 'scan --format json'");
    for (CLI::App* sub : {list, scan, probe, capture, diff, schema}) sub->fallthrough();

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const int code = app.exit(e);
        return code == 0 ? 0 : EXIT_USAGE;
    }

    const std::string self = programPath(argc > 0 ? argv[0] : nullptr);
    const std::string prefix =
        self.empty() ? std::string() : std::filesystem::path(self).parent_path().parent_path().string();
    setHomeDir(prefix);
    // Installed layout: <prefix>/bin/invscan and <prefix>/config/NimHWConfig.xml.
    if (!prefix.empty() && !NimCfg::hasKey("config_dir")) NimCfg::setKey("config_dir", prefix + "/config");

    if (!list->parsed() && !scan->parsed() && !probe->parsed() && !capture->parsed() && !diff->parsed() &&
        !schema->parsed()) {
        fail("a command is needed: list, scan, probe, capture, diff or schema (see --help)");
        return EXIT_USAGE;
    }
    if (const int code = applyConfiguration(options)) return code;
    if (list->parsed()) return runList(options);
    if (schema->parsed()) return runSchema();
    if (diff->parsed()) {
        diffOptions.format = options.format;
        return runDiff(diffOptions, self);
    }
    std::unique_ptr<replay::SimulatedSystem> simulated;
    if (!options.replay.empty() && !(simulated = startReplay(options.replay))) return EXIT_USAGE;
    // The capture's hardware configuration, unless one is named.
    std::string heldConfig;
    if (simulated && simulated->hasHardwareConfig && options.hwConfig.empty()) {
        char* path = g_heldConfig;
        std::snprintf(g_heldConfig, sizeof g_heldConfig, "%s", "/tmp/invscan-hwconfig-XXXXXX");
        removeHeldConfigOnSignals();
        const int fd = mkstemp(path);
        if (fd < 0 || write(fd, simulated->hardwareConfig.data(), simulated->hardwareConfig.size()) < 0) {
            fail(std::string("cannot replay the capture's hardware configuration: ") + std::strerror(errno));
            if (fd >= 0) close(fd);
            return 1;
        }
        close(fd);
        heldConfig = options.hwConfig = path;
    }
    std::error_code notFolder;
    if (simulated && !simulated->hasHardwareConfig && options.hwConfig.empty() &&
        !std::filesystem::is_directory(options.replay, notFolder))
        options.noHwConfig = true;
    const int code = probe->parsed()     ? runProbe(probeName, simulated != nullptr)
                     : capture->parsed() ? runCapture(options, simulated.get())
                                         : runScan(options);
    if (simulated) endReplay(*simulated);
    if (!heldConfig.empty()) unlink(heldConfig.c_str());
    g_heldConfig[0] = '\0';
    return code;
}

}  // namespace cli

int main(int argc, char** argv)
{
    try {
        return cli::run(argc, argv);
    } catch (const std::exception& e) {
        cli::fail(e.what());
    } catch (...) {
        cli::fail("unexpected failure");
    }
    return 1;
}
