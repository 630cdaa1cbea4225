#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "support/TempDir.h"

namespace {

class NimCfgTest : public ::testing::Test {
protected:
    void SetUp() override { NimCfg::clear(); }
    void TearDown() override { NimCfg::clear(); }
};

TEST_F(NimCfgTest, LoadsFileWithCommentsBlanksAndSpacing)
{
    testsupport::TempDir dir;
    const std::string file = dir.write("a.cfg", "# comment\n\n  config_dir =  /etc/inv  \nhwscanner.timeout=30\r\n"
                                                "empty=\nurl = a=b\nconfig_dir=/later");  // no final line end
    std::string error;
    ASSERT_TRUE(NimCfg::loadFile(file, &error)) << error;
    EXPECT_EQ(NimCfg::getKey("config_dir").narrow(), "/later");
    EXPECT_EQ(NimCfg::getKey("hwscanner.timeout").narrow(), "30");
    EXPECT_TRUE(NimCfg::hasKey("empty"));
    EXPECT_EQ(NimCfg::getKey("url").narrow(), "a=b");
    EXPECT_TRUE(NimCfg::getKey("absent").empty());
    EXPECT_FALSE(NimCfg::hasKey("absent"));
}

TEST_F(NimCfgTest, BadFilesSayWhy)
{
    std::string error;
    EXPECT_FALSE(NimCfg::loadFile("/nonexistent/invscan.cfg", &error));
    EXPECT_NE(error.find("cannot open"), std::string::npos);

    testsupport::TempDir dir;
    EXPECT_FALSE(NimCfg::loadFile(dir.write("long.cfg", "k=" + std::string(5000, 'x') + "\n"), &error));
    EXPECT_NE(error.find("longer than 4096"), std::string::npos) << error;
    EXPECT_FALSE(NimCfg::loadFile(dir.write("big.cfg", std::string(2 * 1024 * 1024, '\n')), &error));
    EXPECT_NE(error.find("larger than"), std::string::npos) << error;

    EXPECT_FALSE(NimCfg::loadFile(dir.write("bad.cfg", "good=1\nno equals here\nlater=2\n"), &error));
    EXPECT_NE(error.find(":2:"), std::string::npos) << error;
    EXPECT_EQ(NimCfg::getKey("good").narrow(), "1");
    EXPECT_FALSE(NimCfg::hasKey("later"));

    EXPECT_FALSE(NimCfg::setFromAssignment("=value"));
    EXPECT_TRUE(NimCfg::setFromAssignment("k=v"));
    EXPECT_EQ(NimCfg::getKey("k").narrow(), "v");
}

TEST_F(NimCfgTest, TraceLevelAndFileComeFromConfiguration)
{
    testsupport::TempDir dir;
    const std::string sinkFile = dir.path() + "/trace.log";
    NimCfg::setKey("trace.file", String(sinkFile));
    EXPECT_TRUE(trace::configure());
    EXPECT_NE(access(sinkFile.c_str(), F_OK), 0);  // tracing is off: no file is made

    // A link planted where the trace file goes is refused, not followed.
    const std::string victim = dir.write("victim", "keep\n");
    ASSERT_EQ(symlink(victim.c_str(), (dir.path() + "/link.log").c_str()), 0);
    NimCfg::setKey("trace.level", "min");
    NimCfg::setKey("trace.file", String(dir.path() + "/link.log"));
    EXPECT_FALSE(trace::configure());
    CcLogWrapper::traceMIN(getCcLogHw(), 1, "./../../../src/x", "fn", "hardware to standard error");
    EXPECT_EQ(testsupport::readFile(victim), "keep\n");

    NimCfg::setKey("trace.level", "mid");
    NimCfg::setKey("trace.file", String(sinkFile));
    EXPECT_TRUE(trace::configure());
    EXPECT_EQ(trace::level(), trace::Level::Mid);
    CcLogWrapper::traceMID(getCcLogHw(), 7, "./../../../src/x", "fn", "hardware value=%d", 5);
    CcLogWrapper::traceMAX(getCcLogHw(), 8, "./../../../src/x", "fn", "hardware not written");

    NimCfg::clear();
    trace::configure();  // back to off, standard error
    EXPECT_EQ(trace::level(), trace::Level::Off);

    const std::string content = testsupport::readFile(sinkFile);
    EXPECT_NE(content.find(" MID ./../../../src/x(7) fn: hardware value=5\n"), std::string::npos) << content;
    EXPECT_EQ(content.find("not written"), std::string::npos);
}

TEST(TraceLevels, Parse)
{
    trace::Level level;
    EXPECT_TRUE(trace::parseLevel(" MAX ", level));
    EXPECT_EQ(level, trace::Level::Max);
    EXPECT_TRUE(trace::parseLevel("1", level));
    EXPECT_EQ(level, trace::Level::Min);
    EXPECT_FALSE(trace::parseLevel("verbose", level));
}

TEST(StreamTracer, EmitsOneLineOnDestructionWithEveryKindOfValue)
{
    trace::Capture capture;
    {
        Trace t(Tracer::getInstance(Tracer::CONFIG), "getHWGroupFromNode");
        t << "hardware get group attribute " << String(L"Name") << "=" << L"Memory" << " " << 42 << " "
          << Trace::hex << 255u << Trace::dec << " " << std::string("%s");
        EXPECT_TRUE(capture.records().empty());
    }
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_EQ(capture.records()[0].text, "hardware get group attribute Name=Memory 42 0xff %s");
    EXPECT_EQ(capture.records()[0].function, "getHWGroupFromNode");
    EXPECT_EQ(capture.records()[0].file, "config");
}

TEST(StreamTracer, InactiveBelowLevel)
{
    trace::Capture capture(trace::Level::Min);
    { Trace(Tracer::getInstance(Tracer::HARDWARE), "fn") << "dropped"; }
    { Trace(Tracer::getInstance(Tracer::HARDWARE), "fn", trace::Level::Min) << "kept"; }
    EXPECT_EQ(capture.texts(), std::vector<std::string>{"kept"});
}

}  // namespace
