#pragma once
// The hardware configuration file "NimHWConfig.xml": its records and the
// reader that checks its shape while parsing.
//
//   <NimHWConfig>
//     <Settings priority="0" cpuThreshold="0"/>
//     <Hardware key="value" .../>                    global attributes
//     <Group Name="Processor" key="value" .../>      attributes of one group
//     <Processors> <Processor Manufactor=".." .../> ... </Processors>
//     <QCMs> <QCM Family=".." NewFamily=".." CoresPerPackage=".."/> ... </QCMs>
//   </NimHWConfig>
//
// Every element is optional and may repeat; anything else is refused.
#include <vector>

#include "framework/String.h"
#include "framework/XmlNimParser.h"

// One processor identification record.
struct ProcessorInfo {
    String Manufactor;  // spelled so in the file
    String BrandID;
    String Signature;
    String Type;
    String Family;
    String Model;
    String Description;
    String TypeEnum;
};

// One multi-core package record: a family id, the family it is reported as,
// and its cores per package.
struct QCMInfo {
    String Family;
    String NewFamily;
    String CoresPerPackage;
};

class HWParseNodeSink : public ParseNodeSink {
public:
    HWParseNodeSink() = default;

    bool onStartNode(Node& node) override;
    bool onEndNode(Node& node) override;
    void onWarning(const String& message, int line) override;
    void onError(const String& message, int line) override;
    void onCriticalError(const String& message, int line) override;

    // The "Processors" and "QCMs" sections met, in file order. They point
    // into the parser's tree and live as long as it does.
    const std::vector<Node*>& getProcessorNodes() const { return m_processors; }
    const std::vector<Node*>& getQCMNodes() const { return m_qcms; }

private:
    std::vector<Node*> m_processors;
    std::vector<Node*> m_qcms;
};

// The configuration file is small: a megabyte is far beyond any real one.
class HWXmlNimParser : public XmlNimParser {
public:
    static const size_t HW_MAX_BYTES = 1024u * 1024u;
    static const size_t HW_MAX_DEPTH = 8;

    explicit HWXmlNimParser(HWParseNodeSink& sink);
};

namespace hwconfig {
// Element names of the file.
extern const wchar_t* const ROOT;        // "NimHWConfig"
extern const wchar_t* const SETTINGS;    // "Settings"
extern const wchar_t* const HARDWARE;    // "Hardware"
extern const wchar_t* const GROUP;       // "Group"
extern const wchar_t* const PROCESSORS;  // "Processors"
extern const wchar_t* const PROCESSOR;   // "Processor"
extern const wchar_t* const QCMS;        // "QCMs"
extern const wchar_t* const QCM;         // "QCM"
}  // namespace hwconfig
