// The framework XML reader: tree shape, limits, refusals.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/Trace.h"
#include "framework/XmlNimParser.h"

namespace {

struct RecordingSink : ParseNodeSink {
    std::vector<std::string> events;
    std::vector<std::string> messages;
    std::string refuse;  // element name to refuse

    bool onStartNode(Node& node) override
    {
        events.push_back("<" + node.getName().narrow());
        return node.getName().narrow() != refuse;
    }
    bool onEndNode(Node& node) override
    {
        events.push_back(">" + node.getName().narrow());
        return true;
    }
    void onWarning(const String& m, int line) override { messages.push_back("W" + std::to_string(line) + " " + m.narrow()); }
    void onError(const String& m, int line) override { messages.push_back("E" + std::to_string(line) + " " + m.narrow()); }
    void onCriticalError(const String& m, int line) override
    {
        messages.push_back("C" + std::to_string(line) + " " + m.narrow());
    }
};

TEST(XmlReader, BuildsTheTreeWithAttributesInDocumentOrderTextAndLines)
{
    RecordingSink sink;
    XmlNimParser parser(sink);
    const std::string doc =
        "<?xml version=\"1.0\"?>\n"
        "<root b=\"2\" a=\"1\">\n"
        "  <child name=\"x &amp; y\">hello <![CDATA[<raw>]]></child>\n"
        "  <child name=\"\xC3\xA9t\xC3\xA9\"/>\n"
        "  <!-- comment -->\n"
        "  <other><deep/></other>\n"
        "</root>\n";
    ASSERT_EQ(parser.parseText(doc), XmlNimParser::STATUS_OK);
    const Node* root = parser.getRoot();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getName(), String("root"));
    ASSERT_EQ(root->getAttributes().size(), 2u);
    EXPECT_EQ(root->getAttributes()[0].first, String("b"));
    EXPECT_EQ(root->getAttributes()[1].second, String("1"));
    ASSERT_EQ(root->getChildCount(), 3u);
    EXPECT_EQ(root->getChild(0)->getAttribute("name"), String("x & y"));
    EXPECT_EQ(root->getChild(0)->getText(), String("hello <raw>"));
    EXPECT_EQ(root->getChild(0)->getLine(), 3);
    EXPECT_EQ(root->getChild(1)->getAttribute("name").wide(), std::wstring(L"\u00e9t\u00e9"));
    EXPECT_EQ(root->getChild(2)->getChild(0)->getParent(), root->getChild(2));
    EXPECT_EQ(root->findChild("other"), root->getChild(2));
    EXPECT_EQ(root->findChild("none"), nullptr);
    EXPECT_EQ(root->getChild(3), nullptr);
    EXPECT_EQ(root->findAttribute("missing"), nullptr);
    EXPECT_TRUE(root->getAttribute("missing").empty());
    EXPECT_EQ(sink.events, (std::vector<std::string>{"<root", "<child", ">child", "<child", ">child", "<other",
                                                      "<deep", ">deep", ">other", ">root"}));
    EXPECT_TRUE(sink.messages.empty());
}

TEST(XmlReader, HonoursTheDeclaredEncoding)
{
    RecordingSink sink;
    XmlNimParser parser(sink);
    ASSERT_EQ(parser.parseText("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r v=\"caf\xE9\"/>"),
              XmlNimParser::STATUS_OK);
    EXPECT_EQ(parser.getRoot()->getAttribute("v").wide(), std::wstring(L"caf\u00e9"));
}

struct BadDocument {
    const char* what;
    std::string text;
    int status;
};

TEST(XmlReader, BadDocumentsFailWithTheirStatusAMessageAndNoTree)
{
    const std::string laughs =
        "<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]>"
        "<l>&b;</l>";
    std::string deep;
    for (int i = 0; i < 20; ++i) deep += "<d>";
    for (int i = 0; i < 20; ++i) deep += "</d>";
    const std::vector<BadDocument> cases = {
        {"empty", "", XmlNimParser::STATUS_NOT_WELL_FORMED},
        {"not XML", "hello world", XmlNimParser::STATUS_NOT_WELL_FORMED},
        {"truncated", "<root><a x=\"1\"", XmlNimParser::STATUS_NOT_WELL_FORMED},
        {"unclosed", "<root><a/>", XmlNimParser::STATUS_NOT_WELL_FORMED},
        {"two roots", "<a/><b/>", XmlNimParser::STATUS_NOT_WELL_FORMED},
        {"entity declarations", laughs, XmlNimParser::STATUS_ENTITY_REFUSED},
        {"too deep", deep, XmlNimParser::STATUS_TOO_DEEP},
        {"too large", "<r>" + std::string(5000, 'x') + "</r>", XmlNimParser::STATUS_TOO_LARGE},
        {"refused element", "<root><refuse/></root>", XmlNimParser::STATUS_REJECTED},
    };
    for (const BadDocument& bad : cases) {
        SCOPED_TRACE(bad.what);
        RecordingSink sink;
        sink.refuse = "refuse";
        XmlNimParser parser(sink);
        parser.setMaxDepth(10);
        parser.setMaxBytes(4096);
        EXPECT_EQ(parser.parseText(bad.text), bad.status);
        EXPECT_EQ(parser.getStatus(), bad.status);
        EXPECT_EQ(parser.getRoot(), nullptr);
        EXPECT_EQ(parser.releaseRoot(), nullptr);
        // The sink refused on its own account; everything else the parser reports.
        if (bad.status != XmlNimParser::STATUS_REJECTED) {
            EXPECT_FALSE(sink.messages.empty());
        }
    }
}

TEST(XmlReader, SyntaxErrorsReportTheLine)
{
    RecordingSink sink;
    XmlNimParser parser(sink);
    EXPECT_EQ(parser.parseText("<root>\n<a>\n</b>\n</root>"), XmlNimParser::STATUS_NOT_WELL_FORMED);
    ASSERT_EQ(sink.messages.size(), 1u);
    EXPECT_EQ(sink.messages[0].substr(0, 3), "C3 ");

    // The default sink traces them.
    trace::Capture capture(trace::Level::Max);
    ParseNodeSink tracing;
    XmlNimParser second(tracing);
    EXPECT_NE(second.parseText("<a>\n<b></a>"), XmlNimParser::STATUS_OK);
    EXPECT_TRUE(capture.contains("Message is"));
    EXPECT_TRUE(capture.contains("at line 2"));
}

TEST(XmlReader, AParserCanBeReusedAfterAFailure)
{
    RecordingSink sink;
    XmlNimParser parser(sink);
    EXPECT_NE(parser.parseText("<broken"), XmlNimParser::STATUS_OK);
    ASSERT_EQ(parser.parseText("<fine/>"), XmlNimParser::STATUS_OK);
    std::unique_ptr<Node> root = parser.releaseRoot();
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->getName(), String("fine"));
}

TEST(XmlReader, MissingFilesAndDirectoriesFailCleanly)
{
    RecordingSink sink;
    XmlNimParser parser(sink);
    EXPECT_EQ(parser.parseFile("/nonexistent/dir/file.xml"), XmlNimParser::STATUS_OPEN_FAILED);
    EXPECT_EQ(parser.parseFile("/"), XmlNimParser::STATUS_OPEN_FAILED);
    EXPECT_EQ(parser.parseStream(nullptr), XmlNimParser::STATUS_OPEN_FAILED);
}

TEST(XmlReader, VeryDeepTreesAreDestroyedWithoutRecursion)
{
    // Built in code, beyond what any parse allows: the destructor must cope.
    auto root = std::make_unique<Node>("n");
    Node* tip = root.get();
    for (int i = 0; i < 200000; ++i) tip = tip->addChild(std::make_unique<Node>("n"));
    int depth = 0;
    for (const Node* n = tip; n->getParent(); n = n->getParent()) ++depth;
    EXPECT_EQ(depth, 200000);
    root.reset();
}

}  // namespace
