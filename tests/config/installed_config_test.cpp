// A host that sets only NIM_HOMEDIR: the factory's default path is then "/"
// and the file name, and the load reads the installed configuration instead,
// saying where it looked; a host's own folder or file is never replaced.
#include <gtest/gtest.h>

#include <string>

#include "framework/CpuThreshold.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "framework/XmlNimParser.h"
#include "invscan/com/GroupFactory.h"
#include "support/TempDir.h"

namespace {

using testsupport::ScopedEnv;
using testsupport::TempDir;

const char* const HOME_CONFIG = "<NimHWConfig><Hardware site=\"home\"/></NimHWConfig>\n";

bool hasGlobal(GroupFactory* factory, const char* key, const char* value)
{
    for (const auto& attribute : factory->getGlobalAttrList())
        if (attribute.first == String(key) && attribute.second == String(value)) return true;
    return false;
}

TEST(InstalledConfiguration, FoundUnderTheHomeOnlyWhenTheHostSetNoFolder)
{
    TempDir home, other;
    home.write("config/NimHWConfig.xml", HOME_CONFIG);
    const std::string homeFile = home.path() + "/config/NimHWConfig.xml";
    GroupFactory* factory = GroupFactory::getInstance();
    const struct {
        const char* what;
        const char* nimHome;     // null: unset
        const char* configDir;   // null: unset
        bool ownPath;            // the host passes a path of its own
        bool loads;
        const char* traced;
    } cases[] = {
        {"only NIM_HOMEDIR: the home's file", "HOME", nullptr, false, true, "reading the installed HOMEFILE"},
        {"config_dir set: the host's folder, nothing else", "HOME", "OTHER", false, false, "Failed to open file OTHER/"},
        {"a path of the host's own is not replaced", "HOME", nullptr, true, false, "Failed to open file OTHER/mine.xml"},
        {"a home without the file: where it looked", "OTHER", nullptr, false, false,
         "no configuration was found at /NimHWConfig.xml, OTHER/config/NimHWConfig.xml"},
    };
    auto expand = [&](std::string text) {
        for (const auto& r : {std::make_pair(std::string("HOMEFILE"), homeFile),
                              std::make_pair(std::string("HOME"), home.path()),
                              std::make_pair(std::string("OTHER"), other.path())})
            for (size_t at; (at = text.find(r.first)) != std::string::npos;) text.replace(at, r.first.size(), r.second);
        return text;
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        NimCfg::clear();
        if (c.configDir) NimCfg::setKey("config_dir", expand(c.configDir));
        const std::string nimHome = c.nimHome ? expand(c.nimHome) : std::string();
        ScopedEnv env("NIM_HOMEDIR", c.nimHome ? nimHome.c_str() : nullptr);
        factory->initialise();
        trace::Capture capture(trace::Level::Max);
        const String path = c.ownPath ? String(other.path() + "/mine.xml") : factory->getHWConfigFile();
        const int result = factory->loadNodeFromFile(path, 0);
        EXPECT_EQ(result == XmlNimParser::STATUS_OK, c.loads) << result;
        EXPECT_EQ(hasGlobal(factory, "site", "home"), c.loads);
        EXPECT_TRUE(capture.contains(expand(c.traced))) << expand(c.traced);
    }
    NimCfg::clear();
    CpuThreshold::Initialize(0);
}

}  // namespace
