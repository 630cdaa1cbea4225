#include "invscan/com/GroupFactory.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "framework/CpuThreshold.h"
#include "framework/NimCfg.h"
#include "framework/Trace.h"
#include "framework/XmlNimParser.h"
#include "framework/XmlNode.h"
#include "framework/utils.h"
#include "common/util/ApiGuard.h"
#include "invscan/com/Catalogue.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/InstalledConfig.h"

namespace {

const char* const SOURCE = "./../../../src/invscan/com/GroupFactory";

// The catalogue keeps no record with this id; the listing skips it all the same.
const unsigned long SKIPPED_GROUP_ID = 26;

std::string text(const String& value) { return value.narrow(); }

// A whole number in [low, high], white space around allowed.
bool parseWhole(const String& value, long low, long high, long& out)
{
    const std::string digits = utils::trimBoth(value.narrow());
    if (digits.empty() || digits.size() > 9) return false;
    size_t i = 0;
    bool negative = false;
    if (digits[0] == '-' || digits[0] == '+') {
        negative = digits[0] == '-';
        i = 1;
    }
    if (i == digits.size()) return false;
    long number = 0;
    for (; i < digits.size(); ++i) {
        if (digits[i] < '0' || digits[i] > '9') return false;
        number = number * 10 + (digits[i] - '0');
    }
    if (negative) number = -number;
    if (number < low || number > high) return false;
    out = number;
    return true;
}

}  // namespace

GroupFactory* GroupFactory::singleton_ = nullptr;

GroupFactory* GroupFactory::getInstance()
{
    return api::guarded<GroupFactory*>(SOURCE, "getInstance", nullptr, [&]() -> GroupFactory* {
        if (!singleton_) singleton_ = new (std::nothrow) GroupFactory();
        return singleton_;
    });
}

// The records are deliberately left alone: they may still be referenced by a
// host that outlives the factory's statics.
GroupFactory::~GroupFactory() = default;

int GroupFactory::initialise()
{
    return api::guarded<int>(SOURCE, "initialise", 0, [&]() -> int {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "initialise", "hardware ");
        setHWConfigFile();
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "initialise", "hardware result=%d", 1);
        return 1;
    });
}

void GroupFactory::setHWConfigFile()
{
    api::guardedCall(SOURCE, "setHWConfigFile()", [&] {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "setHWConfigFile()", "hardware ");
        try {
            const String fileName = NimCfg::getKey("hwscanner.config_file");
            const String directory = NimCfg::getKey("config_dir");
            // The file name is joined to the directory even when it is absolute:
            // hosts rely on config_dir as the root.
            m_HWConfigFile = directory + String(File::pathSeparator) +
                             (fileName.length() >= 1 ? fileName : String("NimHWConfig.xml"));
        } catch (const std::exception&) {
            m_HWConfigFile = String();
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "setHWConfigFile()",
                                   "hardware ERROR! out of memory while setting the configuration path");
        }
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "setHWConfigFile()", "hardware m_HWConfigFile = %s",
                                   text(m_HWConfigFile).c_str());
    });
}

void GroupFactory::startScan()
{
    api::guardedCall(SOURCE, "startScan", [] {});
}

bool GroupFactory::isExcluded(unsigned long groupId)
{
    return api::guarded<bool>(SOURCE, "isExcluded", false, [&]() -> bool {
        try {
            std::string list = NimCfg::getKey("hwscanner.exclude").narrow();
            for (size_t start = 0; start <= list.size();) {
                size_t end = list.find(',', start);
                if (end == std::string::npos) end = list.size();
                const String item(utils::trimBoth(list.substr(start, end - start)));
                long id = 0;
                if (!item.empty() && (parseWhole(item, 1, 0xFFFF, id) ? static_cast<unsigned long>(id) == groupId
                                                                     : getGroupIdFromName(item) == groupId))
                    return true;
                start = end + 1;
            }
        } catch (const std::exception&) {
            // Out of memory: nothing is excluded.
        }
        return false;
    });
}

void GroupFactory::endScan()
{
    api::guardedCall(SOURCE, "endScan", [] { runScanEndHooks(); });
}

KorGroup* GroupFactory::getKORGroup(unsigned long groupId)
{
    return api::guarded<KorGroup*>(SOURCE, "getKORGroup()", nullptr, [&]() -> KorGroup* {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "getKORGroup()", "hardware Table id = %lu", groupId);
        KorGroup* group = nullptr;
        if (isExcluded(groupId)) {
            CcLogWrapper::traceMID(hLog, __LINE__, SOURCE, "getKORGroup()", "hardware group %lu %s", groupId,
                                   "excluded by hwscanner.exclude");
            return nullptr;
        }
        try {
            if (GroupCreator create = findGroupClass(groupId)) group = create();
        } catch (const std::exception& e) {
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "getKORGroup()",
                                   "hardware ERROR! creating group %lu failed: %s", groupId, e.what());
            group = nullptr;
        }
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "getKORGroup()", "hardware Finished group = %lu %s",
                                   groupId, group ? "created" : "none");
        return group;
    });
}

KorGroup* GroupFactory::getGroup(const String& groupName)
{
    return api::guarded<KorGroup*>(SOURCE, "getGroup", nullptr, [&]() -> KorGroup* {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "getGroup", "hardware groupName=%s",
                                    text(groupName).c_str());
        CpuThreshold::doIteration();
        const unsigned long groupId = getGroupIdFromName(groupName);
        KorGroup* group = getKORGroup(groupId);
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "getGroup", "hardware groupId=%ld",
                                   static_cast<long>(groupId));
        if (group) {
            try {
                group->setGlobalAttrList(&m_globalAttrs);
                group->setGroupAttrList(&m_groupAttrs[groupName]);
            } catch (const std::exception&) {
                // Without its lists the group still scans; it reads them as absent.
                group->setGlobalAttrList(nullptr);
                group->setGroupAttrList(nullptr);
            }
        }
        return group;
    });
}

int GroupFactory::getAllGroups(std::list<String>& names)
{
    return api::guarded<int>(SOURCE, "getAllGroups", 0, [&]() -> int {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "getAllGroups", "hardware ");
        try {
            for (const korGroupDef* def = GROUPS_DEF; def->id != 0xFFFFFFFFu; ++def) {
                if (def->id == SKIPPED_GROUP_ID) continue;
                names.push_back(String(def->name));
                CcLogWrapper::traceMAX(hLog, __LINE__, SOURCE, "getAllGroups", "hardware group = %s",
                                       def->name);
            }
        } catch (const std::exception&) {
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "getAllGroups",
                                   "hardware ERROR! out of memory while listing the groups");
        }
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "getAllGroups", "hardware result=%d", 0);
        return 0;
    });
}

const AttrList* GroupFactory::getGroupAttrList(const String& groupName) const
{
    return api::guarded<const AttrList*>(SOURCE, "getGroupAttrList", nullptr, [&]() -> const AttrList* {
        auto it = m_groupAttrs.find(groupName);
        return it == m_groupAttrs.end() ? nullptr : &it->second;
    });
}

void GroupFactory::clearConfiguration()
{
    // The lists are emptied, never replaced: groups still alive point at them.
    m_globalAttrs.clear();
    m_loadedFiles.clear();
    for (auto& entry : m_groupAttrs) entry.second.clear();
    for (ProcessorInfo* info : m_processors) delete info;
    m_processors.clear();
    for (QCMInfo* info : m_qcms) delete info;
    m_qcms.clear();
}

int GroupFactory::loadNodeFromFile(const String& path, int priority)
{
    return api::guarded<int>(SOURCE, "loadNodeFromFile", XmlNimParser::STATUS_NO_MEMORY, [&]() -> int {
        int hLog = getCcLogHw();
        const std::string file = text(path);
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "loadNodeFromFile", "hardware %s priority=%d",
                                    file.c_str(), priority);
        int result = XmlNimParser::STATUS_NOT_PARSED;
        const Node* settings = nullptr;
        HWParseNodeSink sink;
        HWXmlNimParser parser(sink);
        try {
            clearConfiguration();
            CcLogWrapper::traceMAX(hLog, __LINE__, SOURCE, "loadNodeFromFile", "hardware Open config file %s for read",
                                   file.c_str());
            std::FILE* in = file.empty() ? nullptr : utils::openRegularFile(file);
            // A host that set no config_dir reads the installed configuration.
            std::string installed;
            if (!in && path == m_HWConfigFile && !(installed = hwconfig::installedFile(file)).empty())
                in = utils::openRegularFile(installed);
            if (!in) {
                CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                                       "hardware ERROR! Failed to open file %s for reading", file.c_str());
                result = XmlNimParser::STATUS_OPEN_FAILED;
            } else {
                result = parser.parseStream(in);
                std::fclose(in);
                CcLogWrapper::traceMAX(hLog, __LINE__, SOURCE, "loadNodeFromFile", "hardware %s is %d",
                                       "nimparser status", result);
                if (result != XmlNimParser::STATUS_OK) {
                    CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                                           "hardware ERROR! Failed to parse the xmlfile %s", file.c_str());
                } else {
                    const Node* root = parser.getRoot();
                    getHWGroupFromNode(root);
                    for (const Node* section : sink.getProcessorNodes()) getProcessorFromNode(section);
                    for (const Node* section : sink.getQCMNodes()) getQCMFromNode(section);
                    settings = root->findChild(String(hwconfig::SETTINGS));
                    m_loadedFiles.push_back(path);
                }
            }
        } catch (const std::exception& e) {
            clearConfiguration();
            settings = nullptr;
            result = XmlNimParser::STATUS_NO_MEMORY;
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                                   "hardware ERROR! Failed to parse the xmlfile %s: %s", file.c_str(), e.what());
        }
        applySettings(settings, priority);
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "loadNodeFromFile", "hardware result=%d", result);
        return result;
    });
}

void GroupFactory::applySettings(const Node* settings, int priority)
{
    int hLog = getCcLogHw();
    long niceValue = priority > 0 ? priority : 0;
    long threshold = 0;
    m_cpuThreshold = String("0");

    auto adoptPriority = [&](const String& value) {
        long parsed = 0;
        if (!parseWhole(value, 0, 19, parsed)) {
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                                   "hardware ERROR! priority %s is not a whole number from 0 to 19, ignored",
                                   text(value).c_str());
            return;
        }
        niceValue = parsed;
        CcLogWrapper::traceMID(hLog, __LINE__, SOURCE, "loadNodeFromFile", "New priority is %s",
                               text(value).c_str());
    };
    auto adoptThreshold = [&](const String& value) {
        long parsed = 0;
        if (!parseWhole(value, 0, 100, parsed)) {
            CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                                   "hardware ERROR! cpuThreshold %s is not a percentage from 0 to 100, ignored",
                                   text(value).c_str());
            return;
        }
        threshold = parsed;
        m_cpuThreshold = value;
        CcLogWrapper::traceMID(hLog, __LINE__, SOURCE, "loadNodeFromFile", "New cpuThreshold is %s",
                               text(value).c_str());
    };

    try {
        if (settings) {
            if (const String* value = settings->findAttribute(String("priority"))) adoptPriority(*value);
            if (const String* value = settings->findAttribute(String("cpuThreshold"))) adoptThreshold(*value);
        }
        // The operator's configuration wins over the file.
        const String configured = NimCfg::getKey("hwscanner.cputhreshold");
        if (!configured.empty()) adoptThreshold(configured);
    } catch (const std::exception&) {
        CcLogWrapper::traceMIN(hLog, __LINE__, SOURCE, "loadNodeFromFile",
                               "hardware ERROR! out of memory while reading the settings");
    }
    CpuThreshold::Initialize(static_cast<int>(threshold), static_cast<int>(niceValue));
}

void GroupFactory::getHWGroupFromNode(const Node* node)
{
    api::guardedCall(SOURCE, "getHWGroupFromNode", [&] {
        if (!node) return;
        int hLog = getCcLogHw();
        if (node->getName() == String(hwconfig::HARDWARE)) {
            for (const Node::Attribute& attribute : node->getAttributes()) {
                m_globalAttrs.push_back(attribute);
                CcLogWrapper::traceMAX(hLog, __LINE__, SOURCE, "getHWGroupFromNode",
                                       "hardware get global attribute %s=%s", text(attribute.first).c_str(),
                                       text(attribute.second).c_str());
            }
        } else if (node->getName() == String(hwconfig::GROUP)) {
            const String name = node->getAttribute(String("Name"));
            AttrList& list = m_groupAttrs[name];
            for (const Node::Attribute& attribute : node->getAttributes()) {
                if (attribute.first == String("Name")) continue;
                list.push_back(attribute);
                CcLogWrapper::traceMAX(hLog, __LINE__, SOURCE, "getHWGroupFromNode",
                                       "hardware get group attribute %s=%s", text(attribute.first).c_str(),
                                       text(attribute.second).c_str());
            }
        }
        for (size_t i = 0; i < node->getChildCount(); ++i) getHWGroupFromNode(node->getChild(i));
    });
}

void GroupFactory::getProcessorFromNode(const Node* processors)
{
    api::guardedCall(SOURCE, "getProcessorFromNode", [&] {
        if (!processors) return;
        for (size_t i = 0; i < processors->getChildCount(); ++i) {
            const Node* node = processors->getChild(i);
            if (node->getName() != String(hwconfig::PROCESSOR)) continue;
            auto* info = new ProcessorInfo;
            info->Manufactor = node->getAttribute(String("Manufactor"));
            info->BrandID = node->getAttribute(String("BrandID"));
            info->Signature = node->getAttribute(String("Signature"));
            info->Type = node->getAttribute(String("Type"));
            info->Family = node->getAttribute(String("Family"));
            info->Model = node->getAttribute(String("Model"));
            info->Description = node->getAttribute(String("Description"));
            info->TypeEnum = node->getAttribute(String("TypeEnum"));
            m_processors.push_back(info);
        }
    });
}

void GroupFactory::getQCMFromNode(const Node* qcms)
{
    api::guardedCall(SOURCE, "getQCMFromNode", [&] {
        if (!qcms) return;
        for (size_t i = 0; i < qcms->getChildCount(); ++i) {
            const Node* node = qcms->getChild(i);
            if (node->getName() != String(hwconfig::QCM)) continue;
            auto* info = new QCMInfo;
            info->Family = node->getAttribute(String("Family"));
            info->NewFamily = node->getAttribute(String("NewFamily"));
            info->CoresPerPackage = node->getAttribute(String("CoresPerPackage"));
            m_qcms.push_back(info);
        }
    });
}

int GetNIMMaxTimeout()
{
    return api::guarded<int>(SOURCE, "GetNIMMaxTimeout", NimCfg::DEFAULT_TIMEOUT, [&]() -> int {
        int hLog = getCcLogHw();
        CcLogWrapper::traceMidEntry(hLog, __LINE__, SOURCE, "GetNIMMaxTimeout", "hardware ");
        const int timeout = NimCfg::getTimeout();
        CcLogWrapper::traceMidExit(hLog, __LINE__, SOURCE, "GetNIMMaxTimeout", "hardware result=%d", timeout);
        return timeout;
    });
}
