#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "framework/NimCfg.h"
#include "framework/Trace.h"

namespace {

class TempFile {
public:
    explicit TempFile(const std::string& content)
    {
        char name[] = "/tmp/invscan-test-XXXXXX";
        const int fd = mkstemp(name);
        if (fd >= 0) close(fd);
        m_path = name;
        std::ofstream(m_path) << content;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

class NimCfgTest : public ::testing::Test {
protected:
    void SetUp() override { NimCfg::clear(); }
    void TearDown() override { NimCfg::clear(); }
};

TEST_F(NimCfgTest, MissingKeyIsEmpty)
{
    EXPECT_TRUE(NimCfg::getKey("config_dir").empty());
    EXPECT_FALSE(NimCfg::hasKey("config_dir"));
    NimCfg::setKey("config_dir", "/opt/x");
    EXPECT_EQ(NimCfg::getKey("config_dir").narrow(), "/opt/x");
}

TEST_F(NimCfgTest, LoadsFileWithCommentsBlanksAndSpacing)
{
    TempFile file("# comment\n\n  config_dir =  /etc/inv  \nhwscanner.timeout=30\r\n"
                  "empty=\nurl = a=b\nconfig_dir=/later\n");
    std::string error;
    ASSERT_TRUE(NimCfg::loadFile(file.path(), &error)) << error;
    EXPECT_EQ(NimCfg::getKey("config_dir").narrow(), "/later");
    EXPECT_EQ(NimCfg::getKey("hwscanner.timeout").narrow(), "30");
    EXPECT_TRUE(NimCfg::hasKey("empty"));
    EXPECT_EQ(NimCfg::getKey("url").narrow(), "a=b");
}

TEST_F(NimCfgTest, BadFilesSayWhy)
{
    std::string error;
    EXPECT_FALSE(NimCfg::loadFile("/nonexistent/invscan.cfg", &error));
    EXPECT_NE(error.find("cannot open"), std::string::npos);

    TempFile bad("good=1\nno equals here\nlater=2\n");
    EXPECT_FALSE(NimCfg::loadFile(bad.path(), &error));
    EXPECT_NE(error.find(":2:"), std::string::npos) << error;
    EXPECT_EQ(NimCfg::getKey("good").narrow(), "1");
    EXPECT_FALSE(NimCfg::hasKey("later"));

    EXPECT_FALSE(NimCfg::setFromAssignment("=value"));
    EXPECT_TRUE(NimCfg::setFromAssignment("k=v"));
    EXPECT_EQ(NimCfg::getKey("k").narrow(), "v");
}

TEST_F(NimCfgTest, TraceLevelAndFileComeFromConfiguration)
{
    TempFile sinkFile("");
    NimCfg::setKey("trace.level", "mid");
    NimCfg::setKey("trace.file", String(sinkFile.path()));
    trace::configure();
    EXPECT_EQ(trace::level(), trace::Level::Mid);
    CcLogWrapper::traceMID(getCcLogHw(), 7, "./../../../src/x", "fn", "hardware value=%d", 5);
    CcLogWrapper::traceMAX(getCcLogHw(), 8, "./../../../src/x", "fn", "hardware not written");

    NimCfg::clear();
    trace::configure();  // back to off, standard error
    EXPECT_EQ(trace::level(), trace::Level::Off);

    std::ifstream in(sinkFile.path());
    std::stringstream content;
    content << in.rdbuf();
    EXPECT_NE(content.str().find(" MID ./../../../src/x(7) fn: hardware value=5\n"), std::string::npos)
        << content.str();
    EXPECT_EQ(content.str().find("not written"), std::string::npos);
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
