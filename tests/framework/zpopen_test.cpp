// The command runner: its time-out comes from configuration, it runs through
// the OS seam, and a real run past its time-out is stopped.
#include <gtest/gtest.h>

#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "framework/ZPopen.h"
#include "support/FakeSystem.h"
#include "support/TempDir.h"

namespace {

class ZPopenTest : public ::testing::Test {
protected:
    void SetUp() override { NimCfg::clear(); }
    void TearDown() override { NimCfg::clear(); }
};

TEST_F(ZPopenTest, TimeOutKeyIsReadAndBadValuesTakeTheDefault)
{
    testsupport::FakeSystem os;
    os.commands["zoneadm list -cp"] = {"0:global:running:/::solaris:shared:-:none:\n", 0, false};
    testsupport::ScopedSystem scope(os);
    trace::Capture capture;

    ZPopen zoneadm("zoneadm", {String("list"), String("-cp")});
    EXPECT_EQ(zoneadm.run(), 0);
    EXPECT_EQ(os.lastTimeout, NimCfg::DEFAULT_TIMEOUT);  // absent
    EXPECT_EQ(zoneadm.lines(), (std::vector<std::string>{"0:global:running:/::solaris:shared:-:none:"}));

    const std::pair<const char*, int> cases[] = {{" 7 ", 7}, {"86400", 86400}, {"0", 600}, {"abc", 600}, {"-3", 600}, {"99999999999", 600}};
    for (const auto& c : cases) {
        NimCfg::setKey("hwscanner.timeout", c.first);
        zoneadm.run();
        EXPECT_EQ(os.lastTimeout, c.second) << c.first;
    }
    EXPECT_TRUE(capture.contains("hwscanner.timeout abc is not a number of seconds, using 600"));

    ZPopen missing("poolbind", {String("-q"), String("1")});
    EXPECT_EQ(missing.run(), -1);
    EXPECT_FALSE(missing.timedOut());
    EXPECT_TRUE(capture.contains("[E] poolbind could not run"));
}

TEST_F(ZPopenTest, RealRunPastItsTimeOutIsStopped)
{
    NimCfg::setKey("hwscanner.timeout", "1");
    trace::Capture capture;
    ZPopen slow("sh", {String("-c"), String("echo started; sleep 20")});
    EXPECT_EQ(slow.run(), -1);
    EXPECT_TRUE(slow.timedOut());
    EXPECT_EQ(slow.lines(), (std::vector<std::string>{"started"}));
    EXPECT_TRUE(capture.contains("[E] sh timed out after 1 s"));
    EXPECT_FALSE(testsupport::hasZombieChild());

    // Commands read the same on every machine: the C locale, whatever the host's.
    testsupport::ScopedEnv japanese("LC_ALL", "ja_JP.UTF-8");
    ZPopen quick("sh", {String("-c"), String("echo $LC_ALL; exit 4")});
    EXPECT_EQ(quick.run(), 4);
    EXPECT_EQ(quick.exitStatus(), 4);
    EXPECT_FALSE(quick.timedOut());
    EXPECT_EQ(quick.lines(), (std::vector<std::string>{"C"}));
}

}  // namespace
