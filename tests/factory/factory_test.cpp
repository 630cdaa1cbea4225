// The group factory: ids and names, the group listing, the configuration
// path, attribute lists, the build stamp.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <list>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "framework/CpuThreshold.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/GroupFactory.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorGroup.h"
#include "support/TableReader.h"
#include "support/TempDir.h"

namespace {

class StubGroup : public KorGroup {
public:
    explicit StubGroup(unsigned long id) : KorGroup(id, 1) {}
    KorTable* getTable() override { return nullptr; }
};

KorGroup* makeProcessorStub() { return new StubGroup(2); }
KorGroup* makeStorageStub() { return new StubGroup(5); }

// Puts stand-in classes behind two catalogued ids for one test, then restores
// whatever the library registered.
class WithStubGroups {
public:
    WithStubGroups() : m_processor(findGroupClass(2)), m_storage(findGroupClass(5))
    {
        registerGroupClass(2, makeProcessorStub);
        registerGroupClass(5, makeStorageStub);
    }
    ~WithStubGroups()
    {
        registerGroupClass(2, m_processor);
        registerGroupClass(5, m_storage);
    }

private:
    GroupCreator m_processor;
    GroupCreator m_storage;
};

class Factory : public ::testing::Test {
protected:
    void SetUp() override
    {
        NimCfg::clear();
        factory = GroupFactory::getInstance();
        ASSERT_NE(factory, nullptr);
    }
    void TearDown() override
    {
        CpuThreshold::Initialize(0);
        NimCfg::clear();
    }
    GroupFactory* factory = nullptr;
};

TEST_F(Factory, ListsEveryGroupAndFindsEachByExactNameOrId)
{
    WithStubGroups stubs;
    std::list<String> names{"already there"};
    trace::Capture capture(trace::Level::Max);
    EXPECT_EQ(factory->getAllGroups(names), 0);
    EXPECT_EQ(names.front().narrow(), "already there");  // appends, never replaces
    names.pop_front();
    ASSERT_EQ(names.size(), testsupport::catalogueGroupCount());
    const korGroupDef* def = GROUPS_DEF;
    for (const String& name : names) {
        SCOPED_TRACE(name.narrow());
        EXPECT_STREQ(name.narrow().c_str(), (def++)->name);  // catalogue order
        // A name and its id give the same answer, whatever classes exist so far.
        const unsigned long id = getGroupIdFromName(name);
        std::unique_ptr<KorGroup> byId(factory->getKORGroup(id)), byName(factory->getGroup(name));
        EXPECT_EQ(byId == nullptr, findGroupClass(id) == nullptr);
        EXPECT_EQ(byName == nullptr, byId == nullptr);
        EXPECT_EQ(byId ? byId->getGroupId() : id, id);
        EXPECT_EQ(byName ? byName->getGroupId() : id, id);
    }
    EXPECT_TRUE(capture.contains("hardware group = SAN Adapter"));
    EXPECT_TRUE(capture.contains("hardware groupName=Processor"));
    EXPECT_TRUE(capture.contains("hardware groupId=2"));

    capture.clear();
    for (const char* name : {"processor", " Processor", "Processor ", "Proc", "", "Nope"})
        EXPECT_EQ(factory->getGroup(name), nullptr) << name;
    EXPECT_TRUE(capture.contains("hardware groupId=0"));
    for (unsigned long id : {0ul, 8ul, 26ul, 55ul, 0xFFFFFFFFul}) EXPECT_EQ(factory->getKORGroup(id), nullptr) << id;
    EXPECT_TRUE(capture.contains("hardware Table id = 26"));
    EXPECT_TRUE(capture.contains("hardware Finished group = 26"));
}

struct PathCase {
    const char* what;
    const char* configDir;   // null: key absent
    const char* configFile;  // null: key absent
    const char* expected;
};

TEST_F(Factory, ConfigurationPathRules)
{
    const std::vector<PathCase> cases = {
        {"default file name", "/etc/nim", nullptr, "/etc/nim/NimHWConfig.xml"},
        {"empty file name", "/etc/nim", "", "/etc/nim/NimHWConfig.xml"},
        {"configured name", "/etc/nim", "hw.xml", "/etc/nim/hw.xml"},
        {"absolute name still joined", "/etc/nim", "/opt/hw.xml", "/etc/nim//opt/hw.xml"},
        {"no config_dir", nullptr, nullptr, "/NimHWConfig.xml"},
        {"no config_dir, configured name", nullptr, "hw.xml", "/hw.xml"},
    };
    for (const PathCase& c : cases) {
        SCOPED_TRACE(c.what);
        NimCfg::clear();
        if (c.configDir) NimCfg::setKey("config_dir", c.configDir);
        if (c.configFile) NimCfg::setKey("hwscanner.config_file", c.configFile);
        trace::Capture capture(trace::Level::Max);
        EXPECT_EQ(factory->initialise(), 1);
        EXPECT_EQ(factory->getHWConfigFile().narrow(), c.expected);
        EXPECT_TRUE(capture.contains(std::string("hardware m_HWConfigFile = ") + c.expected));
    }
}

TEST_F(Factory, AttributeListsAreAttachedOnlyThroughGetGroup)
{
    testsupport::TempDir dir;
    const std::string path = dir.write("hw.xml", "<NimHWConfig>"
                                                 "<Hardware site=\"lab\"/>"
                                                 "<Hardware owner=\"ops\" site=\"second\"/>"
                                                 "<Group Name=\"Storage\" skipTapes=\"yes\"/>"
                                                 "<Group Name=\"Processor\" skipTapes=\"no\"/>"
                                                 "</NimHWConfig>");
    WithStubGroups stubs;
    ASSERT_EQ(factory->loadNodeFromFile(path, 0), 0);

    KorGroup* storage = factory->getGroup("Storage");
    KorGroup* processor = factory->getGroup("Processor");
    KorGroup* direct = factory->getKORGroup(5);
    ASSERT_NE(storage, nullptr);
    ASSERT_NE(processor, nullptr);
    ASSERT_NE(direct, nullptr);

    // First equal key wins, in file order.
    ASSERT_NE(storage->getGlobalAttr(L"site"), nullptr);
    EXPECT_STREQ(storage->getGlobalAttr(L"site"), L"lab");
    EXPECT_STREQ(storage->getGlobalAttr(L"owner"), L"ops");
    EXPECT_STREQ(storage->getGroupAttr(L"skipTapes"), L"yes");
    EXPECT_STREQ(processor->getGroupAttr(L"skipTapes"), L"no");
    EXPECT_EQ(storage->getGroupAttr(L"Name"), nullptr);
    EXPECT_EQ(storage->getGlobalAttr(L"absent"), nullptr);
    // The groups share the factory's global list.
    EXPECT_STREQ(processor->getGlobalAttr(L"site"), storage->getGlobalAttr(L"site"));
    // Created by id: no lists at all.
    EXPECT_EQ(direct->getGlobalAttr(L"site"), nullptr);
    EXPECT_EQ(direct->getGroupAttr(L"skipTapes"), nullptr);
    delete storage;
    delete processor;
    delete direct;
}

TEST_F(Factory, AGroupWithoutASectionGetsAnEmptyListCreatedOnDemand)
{
    WithStubGroups stubs;
    ASSERT_NE(factory->loadNodeFromFile("/nonexistent/NimHWConfig.xml", 0), 0);
    KorGroup* storage = factory->getGroup("Storage");
    ASSERT_NE(storage, nullptr);
    ASSERT_NE(factory->getGroupAttrList("Storage"), nullptr);
    EXPECT_TRUE(factory->getGroupAttrList("Storage")->empty());
    EXPECT_EQ(storage->getGroupAttr(L"anything"), nullptr);
    EXPECT_EQ(storage->getGlobalAttr(L"anything"), nullptr);
    delete storage;
}

TEST_F(Factory, BuildStampHasTheDateTimeFormInOneBuffer)
{
    const char* first = getBuildDateQVRB();
    ASSERT_NE(first, nullptr);
    const std::string text = first;
    EXPECT_TRUE(std::regex_match(text, std::regex(R"(20\d\d-\d\d-\d\d-\d\d\.\d\d\.\d\d\.000000)"))) << text;
    // Made from the yy/mm/dd and hh:mm:ss texts of the build.
    EXPECT_EQ(text.substr(2, 8), std::string(QVRB_BuildDate).replace(2, 1, "-").replace(5, 1, "-"));
    EXPECT_EQ(text.substr(11, 8), std::string(QVRB_BuildTime).replace(2, 1, ".").replace(5, 1, "."));
    EXPECT_EQ(getBuildDateQVRB(), first);  // the same buffer
}

}  // namespace
