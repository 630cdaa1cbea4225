#pragma once
// The framework's XML reader, on expat. XmlNimParser feeds the document to a
// NodeReader, which builds the Node tree and tells a ParseNodeSink about each
// element; the sink may refuse an element, which ends the parse as an error.
// Documents are untrusted input: size and depth are bounded, and entity
// declarations are refused (no entity expansion at all).
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "framework/String.h"
#include "framework/XmlNode.h"

class ParseNodeSink {
public:
    virtual ~ParseNodeSink();

    // A new element, attributes set and already attached to its parent.
    // Returning false stops the parse (the sink reports why through onError).
    virtual bool onStartNode(Node& node);
    // The element and everything inside it are complete.
    virtual bool onEndNode(Node& node);

    // Parser messages. The defaults trace them on the framework component.
    virtual void onWarning(const String& message, int line);
    virtual void onError(const String& message, int line);
    virtual void onCriticalError(const String& message, int line);
};

// Builds the tree from element events; knows nothing of expat.
class NodeReader {
public:
    explicit NodeReader(ParseNodeSink& sink);
    ~NodeReader();
    NodeReader(const NodeReader&) = delete;
    NodeReader& operator=(const NodeReader&) = delete;

    // False when the sink refused the element.
    bool startElement(const String& name, const std::vector<Node::Attribute>& attributes, int line);
    bool endElement();
    // UTF-8 text inside the current element.
    void characters(const char* text, size_t length);

    size_t depth() const { return m_open.size(); }
    Node* getRoot() const { return m_root.get(); }
    std::unique_ptr<Node> releaseRoot();
    void clear();

private:
    ParseNodeSink& m_sink;
    std::unique_ptr<Node> m_root;
    std::vector<Node*> m_open;
    std::vector<std::string> m_text;  // pending text of each open element
};

class XmlNimParser {
public:
    enum Status {
        STATUS_OK = 0,
        STATUS_OPEN_FAILED = 1,
        STATUS_READ_FAILED = 2,
        STATUS_NOT_WELL_FORMED = 3,
        STATUS_TOO_LARGE = 4,
        STATUS_TOO_DEEP = 5,
        STATUS_REJECTED = 6,       // the sink refused an element
        STATUS_ENTITY_REFUSED = 7, // the document declares entities
        STATUS_NO_MEMORY = 8,
        STATUS_NOT_PARSED = 9,
    };

    static const size_t DEFAULT_MAX_BYTES = 16u * 1024u * 1024u;
    static const size_t DEFAULT_MAX_DEPTH = 256;

    explicit XmlNimParser(ParseNodeSink& sink);
    virtual ~XmlNimParser();
    XmlNimParser(const XmlNimParser&) = delete;
    XmlNimParser& operator=(const XmlNimParser&) = delete;

    // Each parse starts afresh and returns the status it ends with.
    int parseFile(const std::string& path);
    int parseStream(std::FILE* in);
    int parseText(const std::string& document);

    int getStatus() const { return m_status; }
    static const char* statusText(int status);
    // The tree of the last successful parse (null after a failure).
    Node* getRoot() const;
    std::unique_ptr<Node> releaseRoot();

    void setMaxBytes(size_t bytes) { m_maxBytes = bytes; }
    void setMaxDepth(size_t depth) { m_maxDepth = depth; }
    size_t getMaxBytes() const { return m_maxBytes; }
    size_t getMaxDepth() const { return m_maxDepth; }

protected:
    ParseNodeSink& sink() { return m_sink; }

private:
    struct Run;
    int finish(Run& run, int status);

    ParseNodeSink& m_sink;
    NodeReader m_reader;
    int m_status = STATUS_NOT_PARSED;
    size_t m_maxBytes = DEFAULT_MAX_BYTES;
    size_t m_maxDepth = DEFAULT_MAX_DEPTH;
};
