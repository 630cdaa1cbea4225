// The table of Solaris commands and files: what the groups build from it is
// what the Linux seam recognises, and the seam answers or refuses every
// entry without ever running a Linux program of a Solaris name.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "common/sys/SolarisCommands.h"
#include "common/sys/System.h"
#include "common/util/Toolbox.h"
#include "framework/Trace.h"
#include "support/TempDir.h"
#if defined(__linux__)
#include "common/sys/LinuxAnswers.h"
#endif

namespace {

using namespace sys::solaris;
using testsupport::ScopedEnv;
using testsupport::TempDir;

// The entry's command with every {word} part filled.
std::vector<std::string> sampleArgv(const Entry& e)
{
    std::vector<std::string> values;
    for (const char* at = e.text; (at = std::strchr(at, '{')); ++at) values.push_back("42");
    return argv(e.id, values);
}

TEST(SolarisCommands, BuiltCommandsAreFoundAgainAndOnlyWordsFillThem)
{
    for (const Entry& e : table()) {
        EXPECT_STREQ(entry(e.id).text, e.text);  // entries in the order of their ids
        const std::vector<std::string> words = sampleArgv(e);
        ASSERT_FALSE(words.empty()) << e.text;
        std::string text;
        for (const std::string& w : words) text += (text.empty() ? "" : " ") + w;
        const Entry* found = e.form == Form::Run ? findRun(words) : e.form == Form::Shell ? findShell(text) : findFile(text);
        ASSERT_NE(found, nullptr) << text;
        EXPECT_EQ(found->id, e.id) << text;
        EXPECT_EQ(e.form == Form::File, *e.program == '\0') << e.text;
        EXPECT_NE(*e.missing, '\0') << e.text;
    }
    // A value that is no word builds nothing: no option, blank or shell text reaches a command.
    for (const char* zone : {"-rf", "a b", "z;reboot", "", "x$(id)"})
        EXPECT_TRUE(zonecfgInfo(zone, "brand").empty()) << zone;
    EXPECT_FALSE(zonecfgInfo("app-3.zone_1", "brand").empty());
    EXPECT_TRUE(argv(Id::Poolbind).empty());                // a part left unfilled
    EXPECT_TRUE(argv(Id::Ifconfig, {"extra"}).empty());     // a value with nowhere to go
    EXPECT_EQ(findRun({"ifconfig", "-a", "-v"}), nullptr);  // only the exact form is an entry
    EXPECT_EQ(findShell(processZone(42) + "; reboot"), nullptr);
    EXPECT_EQ(findShell("ls -la /dev/  | grep disk"), nullptr);  // the spacing is part of the line
}

TEST(SolarisCommands, SolarisOnlyProgramsInShellLines)
{
    const struct {
        std::string line;
        const char* program;
    } cases[] = {
        {"/usr/bin/iostat -En -x", "iostat"},
        {"LANG=C TZ=UTC zoneadm list 2>/dev/null", "zoneadm"},
        {"ls -la /dev/ | grep disk; prtconf -v", "prtconf"},
        {"echo x && ifconfig -a", "ifconfig"},
        {processZone(7), ""},  // ps and sed are Linux's too
        {"/usr/bin/ps -ef", ""},
        {"grep zonename /etc/passwd", ""},  // a Solaris name as an argument runs nothing
    };
    for (const auto& c : cases) EXPECT_EQ(solarisOnlyProgramIn(c.line), c.program) << c.line;
}

#if defined(__linux__)

// A folder of programs named as every program the table's answered or
// absent commands name (ps and ls too: their answered lines must not run
// them either), each leaving a mark when it runs.
struct PlantedPrograms {
    TempDir bin;
    std::unique_ptr<ScopedEnv> path;
    PlantedPrograms()
    {
        for (const Entry& e : table())
            if (*e.program && e.onLinux != OnLinux::Native) bin.script(e.program, "echo ran > " + bin.path() + "/ran-$(basename $0)\necho out\n");
        path.reset(new ScopedEnv("PATH", (bin.path() + ":/usr/bin:/bin").c_str()));
    }
    // The programs that left a mark.
    std::string ran() const
    {
        std::string out;
        for (const Entry& e : table())
            if (access((bin.path() + "/ran-" + e.program).c_str(), F_OK) == 0 && out.find(e.program) == std::string::npos)
                out += std::string(e.program) + " ";
        return out;
    }
};

// Every entry is answered by the Linux seam or refused as missing; none runs.
TEST(SolarisCommands, LinuxSeamAnswersOrRefusesEveryEntry)
{
    PlantedPrograms planted;
    sys::System& os = sys::platform();
    // The files the file answers read, in a Linux tree.
    TempDir root;
    root.write("etc/os-release", "PRETTY_NAME=\"Debian GNU/Linux 12\"\n");
    root.write("proc/self/mounts", "/dev/vda / ext4 rw 0 0\n");
    root.write("etc/default/keyboard", "XKBLAYOUT=\"us\"\n");
    for (const Entry& e : table()) {
        SCOPED_TRACE(e.text);
        if (e.onLinux == OnLinux::Native) continue;
        const bool answered = e.onLinux == OnLinux::Answered;
        const std::vector<std::string> words = sampleArgv(e);
        if (e.form == Form::Run) {
            std::vector<std::string> lines;
            errno = 0;
            const int status = os.runCommand(words, 10, lines);
            if (answered) {
                EXPECT_NE(status, -1);
            } else {
                EXPECT_EQ(status, -1);
                EXPECT_EQ(errno, ENOENT);  // as the runner says of a program it cannot find
                EXPECT_TRUE(lines.empty());
            }
        } else if (e.form == Form::Shell) {
            ASSERT_TRUE(answered) << "a Solaris-only shell line is refused like any unanswered one";
            std::string text;
            for (const std::string& w : words) text += (text.empty() ? "" : " ") + w;
            FILE* stream = os.popen(text.c_str(), "r");
            ASSERT_NE(stream, nullptr);
            char line[256];
            while (std::fgets(line, sizeof line, stream)) EXPECT_NE(std::string(line), "out\n");
            os.pclose(stream);
        } else if (e.id == Id::RawDiskDir) {
            sys::Dir* dir = os.opendir(e.text);
            EXPECT_NE(dir, nullptr);
            if (dir) os.closedir(dir);
        } else if (e.id == Id::MemoryDevice) {
            const int fd = os.open(e.text, O_RDONLY);  // this machine's firmware tables, when it shows them
            if (fd >= 0) os.close(fd);
            else EXPECT_EQ(errno, ENOENT);
        } else if (answered) {
            std::string text;
            EXPECT_TRUE(sys::linuxanswers::answerFile(e.text, root.path(), text));
        } else {
            errno = 0;
            EXPECT_EQ(os.openRegular(e.text), -1);
            EXPECT_EQ(errno, ENOENT);
        }
    }
    EXPECT_EQ(planted.ran(), "");
}

// A command of a Solaris program in a form the seam does not answer fails as
// on a machine without it, says so in the trace, and never runs the program
// of that name on the PATH.
TEST(SolarisCommands, UnansweredSolarisCommandFailsAndDoesNotRun)
{
    PlantedPrograms planted;
    trace::Capture capture;
    sys::System& os = sys::platform();
    std::vector<std::string> lines;
    errno = 0;
    EXPECT_EQ(os.runCommand({"ifconfig", "-a", "-v"}, 10, lines), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(os.runCommand({"zoneadm", "list", "-v"}, 10, lines), -1);

    FILE* stream = os.popen("/usr/bin/iostat -En -x 2>/dev/null", "r");
    ASSERT_NE(stream, nullptr);
    char line[64];
    EXPECT_EQ(std::fgets(line, sizeof line, stream), nullptr);
    EXPECT_EQ(os.pclose(stream), 127 << 8);  // as the shell says of a program it cannot find
    EXPECT_EQ(os.popen("zonecfg -z a info > /tmp/x", "w"), nullptr);

    // Asking the zone's name goes on to ps, as on a machine without zonename,
    // and neither names a zone.
    sys::System* before = &sys::current();
    sys::setCurrent(&os);
    std::string zone = "stale";
    EXPECT_FALSE(Toolbox::getZoneName(zone));
    sys::setCurrent(before);

    EXPECT_EQ(planted.ran(), "");
    EXPECT_TRUE(capture.contains("Solaris command 'ifconfig -a -v' not answered on Linux: taken as missing"));
    EXPECT_TRUE(capture.contains("Solaris command '/usr/bin/iostat -En -x 2>/dev/null' not answered on Linux"));
}

#endif  // __linux__

}  // namespace
