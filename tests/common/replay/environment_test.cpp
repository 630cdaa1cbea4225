// What a capture keeps of the scan's environment, and what a replay takes
// from the host it runs on: nothing.
#include <gtest/gtest.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <sstream>
#include <string>

#include "common/replay/Recorder.h"
#include "common/replay/SimulatedSystem.h"
#include "support/FakeSystem.h"
#include "support/TempDir.h"

namespace {

using testsupport::ScopedEnv;

// The "env" lines and the comments about them of an empty machine's capture.
std::string environmentLines()
{
    testsupport::FakeSystem machine;
    std::ostringstream out;
    replay::Recorder(machine).write(out, nullptr);
    std::istringstream in(out.str());
    std::string lines;
    for (std::string line; std::getline(in, line);)
        if (line.rfind("env ", 0) == 0 || line.rfind("# TZ ", 0) == 0) lines += line + "\n";
    return lines;
}

TEST(CaptureEnvironment, TheTimeZoneIsKeptAsARuleAndEveryLocaleVariable)
{
    ScopedEnv all("LC_ALL", nullptr), ctype("LC_CTYPE", nullptr), messages("LC_MESSAGES", nullptr),
        language("LANGUAGE", nullptr), tape("CHECK_ULTRIUM_TAPE_RUNNING", nullptr);
    ScopedEnv lang("LANG", "ja_JP.eucJP"), time("LC_TIME", "de_DE.UTF-8"), home("HOME", "/root");
    testsupport::TempDir dir;
    // A zone file of the first format has no rule at its end: TZ stays as it is.
    const std::string old = dir.write("old-zone", std::string("TZif") + std::string(40, '\0'));
    struct Case {
        const char* tz;
        std::string lines;
    } const cases[] = {
        {"EST5EDT,M3.2.0,M11.1.0", "env TZ EST5EDT,M3.2.0,M11.1.0\n"},  // already a rule
        {"Europe/Berlin", "# TZ Europe/Berlin, kept as its zone file's rule\nenv TZ CET-1CEST,M3.5.0,M10.5.0/3\n"},
        {":Europe/Berlin", "# TZ :Europe/Berlin, kept as its zone file's rule\nenv TZ CET-1CEST,M3.5.0,M10.5.0/3\n"},
        {old.c_str(), "env TZ " + old + "\n"},
    };
    for (const Case& c : cases) {
        if (std::string(c.tz).find("Europe/Berlin") != std::string::npos &&
            access("/usr/share/zoneinfo/Europe/Berlin", R_OK) != 0)
            continue;  // no zone files here to read the rule from
        ScopedEnv tz("TZ", c.tz);
        // Every locale variable, in name order; nothing the scan does not read.
        EXPECT_EQ(environmentLines(), c.lines + "env LANG ja_JP.eucJP\nenv LC_TIME de_DE.UTF-8\n") << c.tz;
    }
}

// The replaying host's own variables go, the machine's come, a machine
// without TZ is on UTC, and the character locale follows the machine's.
TEST(CaptureEnvironment, AReplayTakesTheMachinesEnvironmentAndNoneOfTheHosts)
{
    ScopedEnv tz("TZ", "JST-9"), lang("LANG", "de_DE.UTF-8"), time("LC_TIME", "fr_FR.UTF-8"),
        tape("CHECK_ULTRIUM_TAPE_RUNNING", "1"), all("LC_ALL", nullptr), ctype("LC_CTYPE", nullptr),
        path("PATH", "/usr/bin:/bin");
    const std::string savedLocale = std::setlocale(LC_CTYPE, nullptr);
    testsupport::FakeSystem machine;
    machine.environment["LC_ALL"] = "C.UTF-8";
    replay::useMachineEnvironment(machine);
    EXPECT_STREQ(std::getenv("TZ"), "UTC0");
    EXPECT_EQ(std::getenv("LANG"), nullptr);
    EXPECT_EQ(std::getenv("LC_TIME"), nullptr);
    EXPECT_EQ(std::getenv("CHECK_ULTRIUM_TAPE_RUNNING"), nullptr);
    EXPECT_STREQ(std::getenv("LC_ALL"), "C.UTF-8");
    EXPECT_STREQ(std::getenv("PATH"), "/usr/bin:/bin");  // not the scan's to read
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8");

    machine.environment = {{"TZ", "NZST-12NZDT,M9.5.0,M4.1.0/3"}, {"LANG", "xx_YY.ISO8859-1"}};
    replay::useMachineEnvironment(machine);
    EXPECT_STREQ(std::getenv("TZ"), "NZST-12NZDT,M9.5.0,M4.1.0/3");
    EXPECT_EQ(std::getenv("LC_ALL"), nullptr);
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");  // no such locale here, and no UTF-8 one
    std::setlocale(LC_CTYPE, savedLocale.c_str());

    // The summer offset is found in the machine's year, by its own clock:
    // west and east of UTC, where a summer noon is on another UTC day.
    const struct {
        const char* tz;
        long timezone, altzone;
    } zones[] = {{"EST5EDT,M3.2.0,M11.1.0", 5 * 3600, 4 * 3600}, {"NZST-12NZDT,M9.5.0,M4.1.0/3", -12 * 3600, -13 * 3600}};
    for (const auto& z : zones) {
        machine.environment = {{"TZ", z.tz}};
        machine.now = 946684800;  // 2000-01-01
        replay::useMachineEnvironment(machine);
        sys::TimeZone zone;
        machine.tzset(zone);
        EXPECT_EQ(zone.timezone, z.timezone) << z.tz;
        EXPECT_EQ(zone.altzone, z.altzone) << z.tz;
        EXPECT_EQ(zone.daylight, 1) << z.tz;
    }
}

}  // namespace
