#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <regex>

#include "framework/Trace.h"
#include "invscan/com/logging.h"
#include "support/StreamCapture.h"

namespace {

TEST(Logging, PrefixCarriesLocalTimeFileAndLine)
{
    testsupport::StreamCapture err(stderr);
    logprefix("a", 12);
    EXPECT_TRUE(std::regex_match(err.text(), std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d a\(12\) - )")))
        << err.text();
    char* when = getLocalDatetime();  // the caller's to free
    ASSERT_NE(when, nullptr);
    EXPECT_TRUE(std::regex_match(when, std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d)"))) << when;
    std::free(when);
}

TEST(Logging, PrintfPassesArgumentPercentSignsThrough)
{
    testsupport::StreamCapture err(stderr);
    logprintf("%s|%d", "100% %s %n", 7);
    EXPECT_EQ(err.text(), "100% %s %n|7");
}

TEST(Tracing, CaptureRecordsTextsAndPassesPercentSignsThrough)
{
    trace::Capture capture;
    const int hLog = getCcLogHw();
    CcLogWrapper::traceMidEntry(hLog, 10, "./../../../src/invscan/com/Md5", "md5_checksum", "hardware ");
    CcLogWrapper::traceMAX(hLog, 11, "./../../../src/invscan/com/Md5", "md5_checksum", "hardware text=%s",
                           "50% %d done");
    CcLogWrapper::traceMidExit(hLog, 12, "./../../../src/invscan/com/Md5", "md5_checksum", "hardware result=%d", 0);

    ASSERT_EQ(capture.records().size(), 3u);
    EXPECT_EQ(capture.texts()[1], "hardware text=50% %d done");
    const trace::Record& exit = capture.records()[2];
    EXPECT_EQ(exit.level, trace::Level::Mid);
    EXPECT_EQ(exit.file, "./../../../src/invscan/com/Md5");
    EXPECT_EQ(exit.line, 12);
    EXPECT_EQ(exit.function, "md5_checksum");
    EXPECT_TRUE(std::regex_match(
        exit.formatted,
        std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} MID \./\.\./\.\./\.\./src/invscan/com/Md5\(12\) md5_checksum: hardware result=0)")))
        << exit.formatted;
}

// A format that would crash if it were ever expanded: proves that a call
// below the active level returns before formatting.
TEST(Tracing, BelowActiveLevelFormatsNothing)
{
    trace::Capture capture(trace::Level::Min);
    CcLogWrapper::traceMAX(getCcLogHw(), 1, "f", "fn", "hardware %s", reinterpret_cast<const char*>(std::uintptr_t{1}));
    CcLogWrapper::traceMID(getCcLogHw(), 1, "f", "fn", "hardware mid");
    CcLogWrapper::traceMIN(getCcLogHw(), 1, "f", "fn", "hardware ERROR! shown");
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_EQ(capture.records()[0].text, "hardware ERROR! shown");
}

TEST(Tracing, OffByDefaultAndRestoredAfterCapture)
{
    EXPECT_EQ(trace::level(), trace::Level::Off);
    {
        trace::Capture outer(trace::Level::Mid);
        {
            trace::Capture inner(trace::Level::Max);
            CcLogWrapper::traceMAX(getCcLogHw(), 1, "f", "fn", "inner");
            EXPECT_EQ(inner.records().size(), 1u);
        }
        CcLogWrapper::traceMAX(getCcLogHw(), 1, "f", "fn", "dropped at mid");
        CcLogWrapper::traceMID(getCcLogHw(), 1, "f", "fn", "outer");
        EXPECT_EQ(outer.texts(), std::vector<std::string>{"outer"});
    }
    EXPECT_EQ(trace::level(), trace::Level::Off);
}

}  // namespace
