#include "invscan/com/HWConfig.h"

#include <initializer_list>

#include "framework/Trace.h"
#include "framework/utils.h"

namespace hwconfig {
const wchar_t* const ROOT = L"NimHWConfig";
const wchar_t* const SETTINGS = L"Settings";
const wchar_t* const HARDWARE = L"Hardware";
const wchar_t* const GROUP = L"Group";
const wchar_t* const PROCESSORS = L"Processors";
const wchar_t* const PROCESSOR = L"Processor";
const wchar_t* const QCMS = L"QCMs";
const wchar_t* const QCM = L"QCM";
}  // namespace hwconfig

namespace {

bool isOneOf(const String& name, std::initializer_list<const wchar_t*> names)
{
    for (const wchar_t* candidate : names)
        if (name == String(candidate)) return true;
    return false;
}

// Which children an element may have.
bool allowedChild(const String& parent, const String& child)
{
    using namespace hwconfig;
    if (parent == String(ROOT)) return isOneOf(child, {SETTINGS, HARDWARE, GROUP, PROCESSORS, QCMS});
    if (parent == String(PROCESSORS)) return child == String(PROCESSOR);
    if (parent == String(QCMS)) return child == String(QCM);
    return false;
}

// Attributes a record element knows; others are kept out with a warning.
bool knownAttribute(const String& element, const String& key)
{
    using namespace hwconfig;
    if (element == String(PROCESSOR))
        return isOneOf(key, {L"Manufactor", L"BrandID", L"Signature", L"Type", L"Family", L"Model",
                             L"Description", L"TypeEnum"});
    if (element == String(QCM)) return isOneOf(key, {L"Family", L"NewFamily", L"CoresPerPackage"});
    if (element == String(SETTINGS)) return isOneOf(key, {L"priority", L"cpuThreshold"});
    return true;
}

Trace configTrace(const char* function, trace::Level level = trace::Level::Mid)
{
    return Trace(Tracer::getInstance(Tracer::CONFIG), function, level);
}

}  // namespace

bool HWParseNodeSink::onStartNode(Node& node)
{
    const Node* parent = node.getParent();
    if (!parent) {
        if (node.getName() != String(hwconfig::ROOT)) {
            onError(String("unexpected root element <") + node.getName() + String(">, expected <") +
                        String(hwconfig::ROOT) + String(">"),
                    node.getLine());
            return false;
        }
        return true;
    }
    if (!allowedChild(parent->getName(), node.getName())) {
        onError(String("unexpected element <") + node.getName() + String("> in <") + parent->getName() +
                    String(">"),
                node.getLine());
        return false;
    }
    if (node.getName() == String(hwconfig::GROUP) && utils::trimBoth(node.getAttribute(L"Name").wide()).empty()) {
        onError(String("<Group> without a Name attribute"), node.getLine());
        return false;
    }
    for (const Node::Attribute& attribute : node.getAttributes())
        if (!knownAttribute(node.getName(), attribute.first))
            onWarning(String("unknown attribute ") + attribute.first + String(" of <") + node.getName() +
                          String("> ignored"),
                      node.getLine());
    return true;
}

bool HWParseNodeSink::onEndNode(Node& node)
{
    if (!utils::trimBoth(node.getText().wide()).empty())
        onWarning(String("text inside <") + node.getName() + String("> ignored"), node.getLine());
    if (node.getName() == String(hwconfig::PROCESSORS)) {
        m_processors.push_back(&node);
        configTrace("onEndNode") << "Processor node stored";
    } else if (node.getName() == String(hwconfig::QCMS)) {
        m_qcms.push_back(&node);
        configTrace("onEndNode") << "QCM node stored";
    }
    return true;
}

void HWParseNodeSink::onWarning(const String& message, int line)
{
    configTrace("onWarning") << "Message is " << message << " at line " << line;
}

void HWParseNodeSink::onError(const String& message, int line)
{
    configTrace("onError", trace::Level::Min) << "Message is " << message << " at line " << line;
}

void HWParseNodeSink::onCriticalError(const String& message, int line)
{
    configTrace("onCriticalError", trace::Level::Min) << "Message is " << message << " at line " << line;
}

HWXmlNimParser::HWXmlNimParser(HWParseNodeSink& sink) : XmlNimParser(sink)
{
    setMaxBytes(HW_MAX_BYTES);
    setMaxDepth(HW_MAX_DEPTH);
}
