#include "framework/XmlNimParser.h"

#include "framework/utils.h"

#include <expat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "framework/Trace.h"

// ---------------------------------------------------------------- sink

ParseNodeSink::~ParseNodeSink() = default;

bool ParseNodeSink::onStartNode(Node&) { return true; }
bool ParseNodeSink::onEndNode(Node&) { return true; }

void ParseNodeSink::onWarning(const String& message, int line)
{
    Trace(Tracer::getInstance(Tracer::FRAMEWORK), "onWarning", trace::Level::Mid)
        << "Message is " << message << " at line " << line;
}

void ParseNodeSink::onError(const String& message, int line)
{
    Trace(Tracer::getInstance(Tracer::FRAMEWORK), "onError", trace::Level::Min)
        << "Message is " << message << " at line " << line;
}

void ParseNodeSink::onCriticalError(const String& message, int line)
{
    Trace(Tracer::getInstance(Tracer::FRAMEWORK), "onCriticalError", trace::Level::Min)
        << "Message is " << message << " at line " << line;
}

// ---------------------------------------------------------------- reader

NodeReader::NodeReader(ParseNodeSink& sink) : m_sink(sink) {}

NodeReader::~NodeReader() = default;

bool NodeReader::startElement(const String& name, const std::vector<Node::Attribute>& attributes, int line)
{
    auto node = std::make_unique<Node>(name, line);
    for (const auto& attribute : attributes) node->addAttribute(attribute.first, attribute.second);
    Node* added;
    if (m_open.empty()) {
        // A second top-level element cannot reach here: expat refuses it.
        m_root = std::move(node);
        added = m_root.get();
    } else {
        added = m_open.back()->addChild(std::move(node));
    }
    m_open.push_back(added);
    m_text.emplace_back();
    return m_sink.onStartNode(*added);
}

bool NodeReader::endElement()
{
    if (m_open.empty()) return false;
    Node* node = m_open.back();
    node->setText(String(m_text.back()));
    m_open.pop_back();
    m_text.pop_back();
    return m_sink.onEndNode(*node);
}

void NodeReader::characters(const char* text, size_t length)
{
    if (!m_text.empty() && text) m_text.back().append(text, length);
}

std::unique_ptr<Node> NodeReader::releaseRoot()
{
    m_open.clear();
    m_text.clear();
    return std::move(m_root);
}

void NodeReader::clear()
{
    m_open.clear();
    m_text.clear();
    m_root.reset();
}

// ---------------------------------------------------------------- parser

struct XmlNimParser::Run {
    XmlNimParser* self;
    XML_Parser expat;
    int status = STATUS_OK;  // set by a handler that stopped the parse
    size_t bytes = 0;

    explicit Run(XmlNimParser* owner) : self(owner), expat(XML_ParserCreate(nullptr))
    {
        if (!expat) return;
        XML_SetUserData(expat, this);
        XML_SetElementHandler(expat, &Run::onStart, &Run::onEnd);
        XML_SetCharacterDataHandler(expat, &Run::onText);
        XML_SetEntityDeclHandler(expat, &Run::onEntity);
    }
    ~Run()
    {
        if (expat) XML_ParserFree(expat);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    int line() const { return expat ? static_cast<int>(XML_GetCurrentLineNumber(expat)) : 0; }

    void stop(int why)
    {
        if (status == STATUS_OK) status = why;
        XML_StopParser(expat, XML_FALSE);
    }

    // Nothing may unwind through expat's C frames.
    template <typename Body>
    static void guarded(void* data, Body body)
    {
        Run* run = static_cast<Run*>(data);
        try {
            body(*run);
        } catch (const std::bad_alloc&) {
            run->stop(STATUS_NO_MEMORY);
        } catch (...) {
            run->stop(STATUS_REJECTED);
        }
    }

    static void onStart(void* data, const XML_Char* name, const XML_Char** attributes)
    {
        guarded(data, [&](Run& run) {
            XmlNimParser& parser = *run.self;
            if (run.status != STATUS_OK) return;
            if (parser.m_reader.depth() >= parser.m_maxDepth) {
                parser.m_sink.onCriticalError(String("elements nested deeper than ") +
                                                  String(std::to_string(parser.m_maxDepth)),
                                              run.line());
                run.stop(STATUS_TOO_DEEP);
                return;
            }
            std::vector<Node::Attribute> list;
            for (const XML_Char** a = attributes; a && a[0] && a[1]; a += 2)
                list.emplace_back(String(a[0]), String(a[1]));
            if (!parser.m_reader.startElement(String(name), list, run.line())) run.stop(STATUS_REJECTED);
        });
    }

    static void onEnd(void* data, const XML_Char*)
    {
        guarded(data, [&](Run& run) {
            if (run.status != STATUS_OK) return;
            if (!run.self->m_reader.endElement()) run.stop(STATUS_REJECTED);
        });
    }

    static void onText(void* data, const XML_Char* text, int length)
    {
        guarded(data, [&](Run& run) {
            if (run.status == STATUS_OK && length > 0)
                run.self->m_reader.characters(text, static_cast<size_t>(length));
        });
    }

    static void onEntity(void* data, const XML_Char* name, int, const XML_Char*, int, const XML_Char*,
                         const XML_Char*, const XML_Char*, const XML_Char*)
    {
        guarded(data, [&](Run& run) {
            run.self->m_sink.onCriticalError(String("entity declaration refused: ") + String(name),
                                             run.line());
            run.stop(STATUS_ENTITY_REFUSED);
        });
    }
};

namespace {
String tooLarge(size_t limit)
{
    return String("document larger than ") + String(std::to_string(limit)) + String(" bytes");
}
}  // namespace

int XmlNimParser::parseText(const std::string& document)
{
    m_reader.clear();
    m_status = STATUS_NOT_PARSED;
    Run run(this);
    if (!run.expat) {
        m_sink.onCriticalError("cannot create the XML parser", 0);
        return m_status = STATUS_NO_MEMORY;
    }
    if (document.size() > m_maxBytes) {
        m_sink.onCriticalError(tooLarge(m_maxBytes), 0);
        return finish(run, STATUS_TOO_LARGE);
    }
    // Fed in chunks: expat takes an int length.
    const size_t chunk = 64 * 1024;
    size_t done = 0;
    do {
        const size_t length = std::min(chunk, document.size() - done);
        const bool last = done + length == document.size();
        if (XML_Parse(run.expat, document.data() + done, static_cast<int>(length), last) != XML_STATUS_OK)
            return finish(run, STATUS_NOT_WELL_FORMED);
        done += length;
    } while (done < document.size());
    return finish(run, STATUS_OK);
}

int XmlNimParser::parseStream(std::FILE* in)
{
    m_reader.clear();
    m_status = STATUS_NOT_PARSED;
    if (!in) {
        m_status = STATUS_OPEN_FAILED;
        m_sink.onCriticalError("no input to read", 0);
        return m_status;
    }
    Run run(this);
    if (!run.expat) {
        m_sink.onCriticalError("cannot create the XML parser", 0);
        return m_status = STATUS_NO_MEMORY;
    }

    const int chunk = 64 * 1024;
    for (;;) {
        void* buffer = XML_GetBuffer(run.expat, chunk);
        if (!buffer) {
            m_sink.onCriticalError("out of memory while reading", run.line());
            return finish(run, STATUS_NO_MEMORY);
        }
        const size_t got = std::fread(buffer, 1, chunk, in);
        if (got < static_cast<size_t>(chunk) && std::ferror(in)) {
            const int error = errno;
            m_sink.onCriticalError(String("read failed: ") + String(std::strerror(error)), run.line());
            return finish(run, STATUS_READ_FAILED);
        }
        run.bytes += got;
        if (run.bytes > m_maxBytes) {
            m_sink.onCriticalError(tooLarge(m_maxBytes), run.line());
            return finish(run, STATUS_TOO_LARGE);
        }
        const bool last = got == 0 || std::feof(in);
        if (XML_ParseBuffer(run.expat, static_cast<int>(got), last) != XML_STATUS_OK)
            return finish(run, STATUS_NOT_WELL_FORMED);
        if (last) return finish(run, STATUS_OK);
    }
}

int XmlNimParser::parseFile(const std::string& path)
{
    std::FILE* in = utils::openRegularFile(path);
    if (!in) {
        const int error = errno;
        m_reader.clear();
        m_status = STATUS_OPEN_FAILED;
        m_sink.onCriticalError(String("cannot open ") + String(path) + String(": ") +
                                   String(std::strerror(error)),
                               0);
        return m_status;
    }
    const int status = parseStream(in);
    std::fclose(in);
    return status;
}

int XmlNimParser::finish(Run& run, int status)
{
    if (status == STATUS_NOT_WELL_FORMED) {
        if (run.status != STATUS_OK) {
            status = run.status;  // a handler stopped it and has reported why
        } else {
            const XML_Error code = XML_GetErrorCode(run.expat);
            m_sink.onCriticalError(String(XML_ErrorString(code)), run.line());
        }
    } else if (status == STATUS_OK && run.status != STATUS_OK) {
        status = run.status;
    }
    if (status != STATUS_OK) m_reader.clear();
    m_status = status;
    return status;
}

Node* XmlNimParser::getRoot() const
{
    return m_status == STATUS_OK ? m_reader.getRoot() : nullptr;
}

std::unique_ptr<Node> XmlNimParser::releaseRoot()
{
    if (m_status != STATUS_OK) return nullptr;
    return m_reader.releaseRoot();
}

const char* XmlNimParser::statusText(int status)
{
    switch (status) {
    case STATUS_OK: return "ok";
    case STATUS_OPEN_FAILED: return "cannot open";
    case STATUS_READ_FAILED: return "read failed";
    case STATUS_NOT_WELL_FORMED: return "not well-formed";
    case STATUS_TOO_LARGE: return "too large";
    case STATUS_TOO_DEEP: return "nested too deeply";
    case STATUS_REJECTED: return "unexpected content";
    case STATUS_ENTITY_REFUSED: return "entity declarations refused";
    case STATUS_NO_MEMORY: return "out of memory";
    case STATUS_NOT_PARSED: return "not parsed";
    default: return "unknown";
    }
}

XmlNimParser::XmlNimParser(ParseNodeSink& sink) : m_sink(sink), m_reader(sink) {}

XmlNimParser::~XmlNimParser() = default;
