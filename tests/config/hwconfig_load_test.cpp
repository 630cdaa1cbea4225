// Loading the hardware configuration file through the factory.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <list>
#include <string>
#include <vector>

#include "framework/CpuThreshold.h"
#include "framework/NimCfg.h"
#include "support/TempDir.h"
#include "framework/Trace.h"
#include "framework/XmlNimParser.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"

namespace {

const char* const GOOD =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<NimHWConfig>\n"
    "  <Settings priority=\"0\" cpuThreshold=\"40\"/>\n"
    "  <Hardware site=\"lab\" owner=\"ops\"/>\n"
    "  <Group Name=\"Storage\" skipTapes=\"yes\"/>\n"
    "  <Group Name=\"Storage\" extra=\"1\"/>\n"
    "  <Group Name=\"Memory\" unit=\"KB\"/>\n"
    "  <Processors>\n"
    "    <Processor Manufactor=\"GenuineIntel\" BrandID=\"1\" Signature=\"0x6f6\" Type=\"0\" Family=\"6\"\n"
    "               Model=\"15\" Description=\"Core 2\" TypeEnum=\"3\"/>\n"
    "    <Processor Manufactor=\"AuthenticAMD\" Family=\"15\"/>\n"
    "  </Processors>\n"
    "  <QCMs><QCM Family=\"15\" NewFamily=\"16\" CoresPerPackage=\"4\"/></QCMs>\n"
    "</NimHWConfig>\n";

class HWConfigLoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        NimCfg::clear();
        m_factory = GroupFactory::getInstance();
    }
    void TearDown() override
    {
        // The throttle is process-wide: leave it off for the other tests.
        CpuThreshold::Initialize(0);
        NimCfg::clear();
    }
    std::string write(const std::string& name, const std::string& content) { return m_temp.write(name, content); }
    void expectEmpty()
    {
        EXPECT_TRUE(m_factory->getGlobalAttrList().empty());
        const AttrList* storage = m_factory->getGroupAttrList("Storage");
        EXPECT_TRUE(storage == nullptr || storage->empty());
        EXPECT_TRUE(m_factory->getProcessorInfo().empty());
        EXPECT_TRUE(m_factory->getQCMInfo().empty());
    }

    testsupport::TempDir m_temp;
    const std::string m_dir = m_temp.path();
    GroupFactory* m_factory = nullptr;
};

TEST_F(HWConfigLoad, AGoodFileFillsListsRecordsAndSettings)
{
    const std::string path = write("NimHWConfig.xml", GOOD);
    trace::Capture capture(trace::Level::Max);
    ASSERT_EQ(m_factory->loadNodeFromFile(path, 0), 0);

    EXPECT_TRUE(capture.contains("hardware Open config file " + path + " for read"));
    EXPECT_TRUE(capture.contains("hardware nimparser status is 0"));
    EXPECT_TRUE(capture.contains("hardware get global attribute site=lab"));
    EXPECT_TRUE(capture.contains("hardware get group attribute skipTapes=yes"));
    EXPECT_TRUE(capture.contains("Processor node stored"));
    EXPECT_TRUE(capture.contains("QCM node stored"));
    EXPECT_TRUE(capture.contains("New cpuThreshold is 40"));
    EXPECT_TRUE(capture.contains("New priority is 0"));
    EXPECT_FALSE(capture.contains("ERROR!"));

    const AttrList expectedGlobal = {{"site", "lab"}, {"owner", "ops"}};
    EXPECT_EQ(m_factory->getGlobalAttrList(), expectedGlobal);
    // Two sections of one group append in file order; "Name" is the key, not an attribute.
    const AttrList expectedStorage = {{"skipTapes", "yes"}, {"extra", "1"}};
    ASSERT_NE(m_factory->getGroupAttrList("Storage"), nullptr);
    EXPECT_EQ(*m_factory->getGroupAttrList("Storage"), expectedStorage);

    ASSERT_EQ(m_factory->getProcessorInfo().size(), 2u);
    const ProcessorInfo& intel = *m_factory->getProcessorInfo()[0];
    EXPECT_EQ(intel.Manufactor, String("GenuineIntel"));
    EXPECT_EQ(intel.Signature, String("0x6f6"));
    EXPECT_EQ(intel.Description, String("Core 2"));
    EXPECT_EQ(intel.TypeEnum, String("3"));
    EXPECT_TRUE(m_factory->getProcessorInfo()[1]->Model.empty());
    ASSERT_EQ(m_factory->getQCMInfo().size(), 1u);
    EXPECT_EQ(m_factory->getQCMInfo()[0]->NewFamily, String("16"));
    EXPECT_EQ(m_factory->getQCMInfo()[0]->CoresPerPackage, String("4"));

    EXPECT_EQ(CpuThreshold::getThreshold(), 40);
}

TEST_F(HWConfigLoad, TheShippedDefaultLoads)
{
    const std::string path = std::string(INVSCAN_SOURCE_DIR) + "/config/NimHWConfig.xml";
    trace::Capture capture(trace::Level::Max);
    EXPECT_EQ(m_factory->loadNodeFromFile(path, 0), 0);
    EXPECT_FALSE(capture.contains("ERROR!"));
    EXPECT_FALSE(CpuThreshold::isEnabled());
}

TEST_F(HWConfigLoad, TheConfigurationKeyOverridesTheFilesThreshold)
{
    const std::string path = write("NimHWConfig.xml", GOOD);
    NimCfg::setKey("hwscanner.cputhreshold", "25");
    trace::Capture capture(trace::Level::Max);
    ASSERT_EQ(m_factory->loadNodeFromFile(path, 0), 0);
    EXPECT_TRUE(capture.contains("New cpuThreshold is 40"));
    EXPECT_TRUE(capture.contains("New cpuThreshold is 25"));
    EXPECT_EQ(CpuThreshold::getThreshold(), 25);
    EXPECT_EQ(m_factory->getCpuThresholdText(), String("25"));
}

TEST_F(HWConfigLoad, BadSettingsAreIgnoredWithAnError)
{
    const std::string path = write("s.xml", "<NimHWConfig><Settings priority=\"high\" cpuThreshold=\"150\"/>"
                                            "<Hardware a=\"1\"/></NimHWConfig>");
    trace::Capture capture(trace::Level::Max);
    ASSERT_EQ(m_factory->loadNodeFromFile(path, 0), 0);
    EXPECT_TRUE(capture.contains("hardware ERROR! priority high"));
    EXPECT_TRUE(capture.contains("hardware ERROR! cpuThreshold 150"));
    EXPECT_FALSE(CpuThreshold::isEnabled());
    EXPECT_EQ(m_factory->getGlobalAttrList().size(), 1u);
}

struct BadFile {
    const char* what;
    std::string content;
};

TEST_F(HWConfigLoad, BadFilesTraceTheParseFailureAndLeaveEmptyLists)
{
    // What the XML reader refuses is its own tests' business; these are the
    // shapes only a hardware configuration file must have.
    const std::vector<BadFile> cases = {
        {"unexpected element", "<NimHWConfig><Hardware a=\"1\"/><Disk/></NimHWConfig>"},
        {"element inside Hardware", "<NimHWConfig><Hardware a=\"1\"><x/></Hardware></NimHWConfig>"},
        {"wrong element in Processors", "<NimHWConfig><Processors><QCM/></Processors></NimHWConfig>"},
        {"wrong root", "<Config><Hardware a=\"1\"/></Config>"},
        {"Group without Name", "<NimHWConfig><Group a=\"1\"/></NimHWConfig>"},
        {"not XML", "site=lab\nowner=ops\n"},
        {"past its own size bound", "<NimHWConfig><!-- " + std::string(HWXmlNimParser::HW_MAX_BYTES, 'x') + " -->"
                                    "</NimHWConfig>"},
    };
    for (const BadFile& bad : cases) {
        SCOPED_TRACE(bad.what);
        ASSERT_EQ(m_factory->loadNodeFromFile(write("good.xml", GOOD), 0), 0);
        const std::string path = write("bad.xml", bad.content);
        trace::Capture capture(trace::Level::Max);
        const int status = m_factory->loadNodeFromFile(path, 0);
        EXPECT_NE(status, 0);
        EXPECT_TRUE(capture.contains("hardware nimparser status is " + std::to_string(status)));
        EXPECT_TRUE(capture.contains("hardware ERROR! Failed to parse the xmlfile " + path));
        EXPECT_TRUE(capture.contains("Message is"));
        expectEmpty();
        // Settings of a rejected file do not apply.
        EXPECT_FALSE(CpuThreshold::isEnabled());
    }
}

TEST_F(HWConfigLoad, WhatCannotBeOpenedAsARegularFileFailsAtOnceAndLeavesEmptyLists)
{
    const std::string fifo = m_dir + "/fifo.xml";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);  // no writer: a plain open would wait forever
    const std::string locked = write("locked.xml", GOOD);
    chmod(locked.c_str(), 0);  // readable all the same when the tests run as root
    std::vector<std::string> paths = {"", m_dir + "/absent.xml", m_dir, fifo, "/dev/zero"};
    if (access(locked.c_str(), R_OK) != 0) paths.push_back(locked);
    for (const std::string& path : paths) {
        ASSERT_EQ(m_factory->loadNodeFromFile(write("good.xml", GOOD), 0), 0);
        EXPECT_FALSE(m_factory->getLoadedFiles().empty());
        trace::Capture capture(trace::Level::Max);
        EXPECT_EQ(m_factory->loadNodeFromFile(path, 0), XmlNimParser::STATUS_OPEN_FAILED) << path;
        EXPECT_TRUE(capture.contains("hardware ERROR! Failed to open file " + path + " for reading")) << path;
        expectEmpty();
        EXPECT_TRUE(m_factory->getLoadedFiles().empty());
    }
}

TEST_F(HWConfigLoad, ReloadingKeepsTheListsGroupsPointAt)
{
    const std::string first = write("a.xml", GOOD);
    const std::string second =
        write("b.xml", "<NimHWConfig><Hardware site=\"hq\"/><Group Name=\"Storage\" k=\"v\"/></NimHWConfig>");
    ASSERT_EQ(m_factory->loadNodeFromFile(first, 0), 0);
    const AttrList* global = &m_factory->getGlobalAttrList();
    const AttrList* storage = m_factory->getGroupAttrList("Storage");
    ASSERT_NE(storage, nullptr);
    ASSERT_EQ(m_factory->loadNodeFromFile(second, 0), 0);
    // Same list objects, new content: a group handed out earlier reads the new values.
    EXPECT_EQ(&m_factory->getGlobalAttrList(), global);
    EXPECT_EQ(m_factory->getGroupAttrList("Storage"), storage);
    EXPECT_EQ(*global, (AttrList{{"site", "hq"}}));
    EXPECT_EQ(*storage, (AttrList{{"k", "v"}}));
    EXPECT_TRUE(m_factory->getProcessorInfo().empty());
}

}  // namespace
