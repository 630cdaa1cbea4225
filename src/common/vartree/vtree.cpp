#include "common/vartree/vtree.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

#include "framework/utils.h"

// Programming errors (null node, value, name or root) stop the process, in
// every build type.
#define VT_ASSERT(expr)                                                                                    \
    do {                                                                                                   \
        if (!(expr)) {                                                                                     \
            std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", "./../../../src/common/vartree/vtree", \
                         __LINE__, __func__, #expr);                                                      \
            std::abort();                                                                                  \
        }                                                                                                  \
    } while (0)

// ---- ownership --------------------------------------------------------------

namespace {
char* tailOf(void* block, size_t size) { return static_cast<char*>(block) + size; }
}  // namespace

VtVariant* VtVariant::makeInline(const char* nameText, size_t nameLength, const char* text, size_t textLength)
{
    const size_t tail = nameLength + 1 + (text ? textLength + 1 : 0);
    auto* v = ::new (::operator new(sizeof(VtVariant) + tail)) VtVariant;
    v->name = tailOf(v, sizeof(VtVariant));
    std::memcpy(v->name, nameText, nameLength);
    v->name[nameLength] = '\0';
    if (text) {
        v->type = VT_STRING;
        v->inlineText = static_cast<unsigned int>(nameLength + 1);
        v->value.s = v->name + v->inlineText;
        std::memcpy(v->value.s, text, textLength);
        v->value.s[textLength] = '\0';
    }
    return v;
}

VtVariant::~VtVariant()
{
    char* tail = tailOf(this, sizeof(VtVariant));
    if (name != tail) delete[] name;
    switch (type) {
    case VT_STRING:
        if (!inlineText || value.s != tail + inlineText) delete[] value.s;
        break;
    case VT_WSTRING: delete[] value.u; break;
    case VT_DATA: delete[] value.d.bytes; break;
    default: break;
    }
}

namespace {
void freeValues(VtVariant* v)
{
    while (v) {
        VtVariant* following = v->next;
        delete v;
        v = following;
    }
}
}  // namespace

VtNode* VtNode::makeInline(const char* nameText, size_t nameLength)
{
    auto* node = ::new (::operator new(sizeof(VtNode) + nameLength + 1)) VtNode;
    node->name = tailOf(node, sizeof(VtNode));
    std::memcpy(node->name, nameText, nameLength);
    node->name[nameLength] = '\0';
    return node;
}

VtNode::~VtNode()
{
    if (name != tailOf(this, sizeof(VtNode))) delete[] name;
    freeValues(values);
    // Siblings are freed in a loop, so a long child list costs no stack; the
    // depth of recursion is the nesting depth, which the parser bounds.
    VtNode* c = children;
    while (c) {
        VtNode* sibling = c->next;
        c->next = nullptr;
        delete c;
        c = sibling;
    }
}

char* vtStrDup(const char* text)
{
    if (!text) return nullptr;
    const size_t n = std::strlen(text) + 1;
    char* copy = new char[n];
    std::memcpy(copy, text, n);
    return copy;
}

wchar_t* vtStrDup(const wchar_t* text)
{
    if (!text) return nullptr;
    const size_t n = std::wcslen(text) + 1;
    wchar_t* copy = new wchar_t[n];
    std::wmemcpy(copy, text, n);
    return copy;
}

unsigned char* vtBufDup(const unsigned char* bytes, unsigned int size)
{
    if (!bytes) return nullptr;
    unsigned char* copy = new unsigned char[size ? size : 1];
    if (size) std::memcpy(copy, bytes, size);
    return copy;
}

// ---- building and looking up ------------------------------------------------

int VtNode::addValue(VtVariant* v)
{
    VT_ASSERT(v != 0);
    VT_ASSERT(v->name != 0);
    v->next = nullptr;
    if (!values) {
        values = v;
    } else {
        VtVariant* tail = values;
        while (tail->next) tail = tail->next;
        tail->next = v;
    }
    return 1;
}

int VtNode::addChild(VtNode* n)
{
    VT_ASSERT(n != 0);
    VT_ASSERT(n->name != 0);
    n->next = nullptr;
    if (!children) {
        children = n;
    } else {
        VtNode* tail = children;
        while (tail->next) tail = tail->next;
        tail->next = n;
    }
    return 1;
}

VtNode* VtNode::getChild(const char* childName, int index) const
{
    for (VtNode* c = children; c; c = c->next) {
        if (childName && std::strcmp(c->name, childName) != 0) continue;
        if (index-- == 0) return c;
    }
    return nullptr;
}

VtVariant* VtNode::getValue(const char* valueName) const
{
    VT_ASSERT(valueName != 0);
    for (VtVariant* v = values; v; v = v->next)
        if (std::strcmp(v->name, valueName) == 0) return v;
    return nullptr;
}

VtVariant* VtNode::getValue(const char* path, const char* valueName) const
{
    VT_ASSERT(valueName != 0);
    const VtNode* node = this;
    if (path) {
        // Components are walked left to right; an empty one ends the walk.
        const char* at = path;
        while (node) {
            const char* dot = std::strchr(at, '.');
            const std::string component = dot ? std::string(at, static_cast<size_t>(dot - at)) : std::string(at);
            if (component.empty()) break;
            node = node->getChild(component.c_str(), 0);
            if (!dot) break;
            at = dot + 1;
        }
    }
    return node ? node->getValue(valueName) : nullptr;
}

const char* VtNode::getValue(const char* path, const char* valueName, const char* def) const
{
    const VtVariant* v = getValue(path, valueName);
    return v && v->type == VT_STRING ? v->value.s : def;
}

int VtNode::getValue(const char* path, const char* valueName, int def) const
{
    const VtVariant* v = getValue(path, valueName);
    return v && v->type == VT_INT ? v->value.i : def;
}

float VtNode::getValueF(const char* path, const char* valueName, float def) const
{
    const VtVariant* v = getValue(path, valueName);
    return v && v->type == VT_FLOAT ? static_cast<float>(v->value.f) : def;
}

// ---- reading lines ------------------------------------------------------------

VtILineStream::VtILineStream(VtIStream* source)
    : m_source(source), m_buffer(new char[FIRST_SIZE + 1])
{
}

char* VtILineStream::get_next_line()
{
    char* b = m_buffer.get();
    char* start = b + m_pos;
    auto* end = static_cast<char*>(std::memchr(start, '\n', static_cast<size_t>(m_fill - m_pos)));
    if (!end) return nullptr;
    *end = '\0';
    // A carriage return cuts its line: the text after it is not kept.
    m_lastLength = static_cast<size_t>(end - start);
    if (char* cr = static_cast<char*>(std::memchr(start, '\r', m_lastLength))) {
        *cr = '\0';
        m_lastLength = static_cast<size_t>(cr - start);
    }
    m_pos = static_cast<int>(end - b) + 1;
    return start;
}

char* VtILineStream::nextLine()
{
    char* b = m_buffer.get();
    char* line = get_next_line();
    if (!line) {
        std::memmove(b, b + m_pos, static_cast<size_t>(m_fill - m_pos));
        m_fill -= m_pos;
        m_pos = 0;
        b[m_fill] = '\0';
        while (!m_eof) {
            if (m_fill == m_capacity && m_capacity < BUFFER_SIZE) {
                const int grown = m_capacity * 2 < BUFFER_SIZE ? m_capacity * 2 : BUFFER_SIZE;
                std::unique_ptr<char[]> larger(new char[static_cast<size_t>(grown) + 1]);
                std::memcpy(larger.get(), b, static_cast<size_t>(m_fill));
                m_buffer = std::move(larger);
                m_capacity = grown;
                b = m_buffer.get();
            }
            // A full buffer asks for 0 bytes, which ends the stream: the
            // buffered bytes then come back as one last line.
            int n = m_source ? m_source->read(b + m_fill, static_cast<unsigned>(m_capacity - m_fill)) : 0;
            if (n <= 0) {  // a read error counts as the end of input
                m_eof = true;
                n = 0;
            }
            m_fill += n;
            if ((line = get_next_line()) != nullptr) break;
        }
        if (!line) {
            if (m_fill == 0) return nullptr;
            b[m_fill] = '\0';
            for (int i = 0; i < m_fill; ++i)
                if (b[i] == '\r') b[i] = '\0';
            m_lastLength = std::strlen(b);
            line = b;
            m_pos = m_fill = 0;
        }
    }
    return line;
}

char* VtILineStream::getline(char* dst, unsigned int len, int)
{
    const char* line = nextLine();
    if (!line) return nullptr;
    if (len == 0) return dst;
    // Not strncpy: it would pad every short line out to `len` bytes.
    size_t n = std::strlen(line);
    if (n > len - 1) n = len - 1;
    std::memcpy(dst, line, n);
    dst[n] = '\0';
    return dst;
}

// ---- parsing ------------------------------------------------------------------

namespace {

constexpr int kLineBuffer = 102400;

// The text up to the first line end, or the first byte sequence that is no
// character of the current locale.
size_t cutLength(const char* text)
{
    const int maxLength = static_cast<int>(MB_CUR_MAX);
    if (maxLength == 1) return std::strcspn(text, "\r\n");  // every byte is a character
    size_t n = 0;
    std::mblen(nullptr, 0);
    while (text[n] && text[n] != '\r' && text[n] != '\n') {
        int step = std::mblen(text + n, static_cast<size_t>(maxLength));
        if (step < 0) break;
        if (step == 0) step = 1;
        n += static_cast<size_t>(step);
    }
    return n;
}

int hexDigit(char c)
{
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return c - '0';  // deliberately unchecked
}

// "N,hexdigits": 0 with the bytes, -1 without the ",", -3 when short.
int parseHex(const char* text, unsigned char*& bytes, unsigned int& count)
{
    bytes = nullptr;
    count = 0;
    const long long n = std::atoll(text);
    const char* comma = std::strchr(text, ',');
    if (!comma) return -1;
    if (n <= 0) return 0;
    const char* digits = comma + 1;
    // Check the digits are there before allocating: a count is outside input.
    if (static_cast<unsigned long long>(std::strlen(digits)) < 2ull * static_cast<unsigned long long>(n)) return -3;
    bytes = new unsigned char[static_cast<size_t>(n)];
    for (long long i = 0; i < n; ++i)
        bytes[i] = static_cast<unsigned char>(hexDigit(digits[2 * i]) * 16 + hexDigit(digits[2 * i + 1]));
    count = static_cast<unsigned int>(n);
    return 0;
}

// An open node with the tails of its lists: appending stays constant-time
// however many siblings a probe prints.
struct OpenNode {
    VtNode* node;
    VtNode* lastChild;
    VtVariant* lastValue;
};

void appendValue(OpenNode& open, VtVariant* v)
{
    v->next = nullptr;
    if (open.lastValue)
        open.lastValue->next = v;
    else
        open.node->addValue(v);
    open.lastValue = v;
}

void appendChild(OpenNode& open, VtNode* n)
{
    n->next = nullptr;
    if (open.lastChild)
        open.lastChild->next = n;
    else
        open.node->addChild(n);
    open.lastChild = n;
}

int parseValueLine(const char* line, OpenNode& current)
{
    const char* colon = std::strchr(line, ':');
    const char* equals = std::strchr(line, '=');
    if (!colon || !equals || equals != colon + 2) return VT_ERR_VALUE_SYNTAX;
    const char kind = colon[1];
    const char* text = equals + 1;
    const auto nameLength = static_cast<size_t>(colon - line);

    VtVariant* v;
    switch (kind) {
    case 'i': {
        // Digits end before any line end or foreign byte: no cut needed. A
        // number that does not fit an int is refused, never wrapped
        // (4294967297 is no 1).
        errno = 0;
        const long long number = std::strtoll(text, nullptr, 10);
        if (errno == ERANGE || number < INT_MIN || number > INT_MAX) return VT_ERR_INT_RANGE;
        v = VtVariant::makeInline(line, nameLength, nullptr, 0);
        v->type = VT_INT;
        v->value.i = static_cast<int>(number);
        break;
    }
    case 'f': {
        double d = 0;
        const size_t n = cutLength(text);
        utils::charToDouble(text[n] ? std::string(text, n).c_str() : text, d);
        v = VtVariant::makeInline(line, nameLength, nullptr, 0);
        v->type = VT_FLOAT;
        v->value.f = d;
        break;
    }
    case 's':
        v = VtVariant::makeInline(line, nameLength, text, cutLength(text));
        break;
    case 'd':
    case 'u': {
        unsigned char* bytes;
        unsigned int count;
        if (parseHex(text, bytes, count) != 0) return VT_ERR_HEX;
        v = VtVariant::makeInline(line, nameLength, nullptr, 0);
        if (kind == 'd') {
            v->type = VT_DATA;
            v->value.d.bytes = bytes;
            v->value.d.length = count;
        } else {
            v->type = VT_WSTRING;
            const std::wstring wide =
                bytes ? utils::utf8ToWideChar(std::string(reinterpret_cast<const char*>(bytes), count)) : std::wstring();
            delete[] bytes;
            v->value.u = vtStrDup(wide.c_str());
        }
        break;
    }
    default:
        return VT_ERR_VALUE_TYPE;
    }
    appendValue(current, v);
    return VT_OK;
}

}  // namespace

int vtParseNodeDump(VtILineStream* in, VtNode* root)
{
    VT_ASSERT(root != 0);
    std::vector<OpenNode> parents;  // open parents; bounded
    parents.reserve(VT_MAX_DEPTH);
    OpenNode current{root, nullptr, nullptr};
    for (VtNode* c = root->children; c; c = c->next) current.lastChild = c;
    for (VtVariant* v = root->values; v; v = v->next) current.lastValue = v;
    int status = VT_OK;

    char* line;
    while (status == VT_OK && (line = in->nextLine()) != nullptr) {
        // Lines are read in place; a longer one keeps its first bytes only.
        if (in->lastLength() >= kLineBuffer) line[kLineBuffer - 1] = '\0';
        const char* p = line;
        while (*p == ' ' || *p == '\t' || (*p && std::isspace(static_cast<unsigned char>(*p)))) ++p;
        const char c = *p;
        if (c == '(') {
            if (parents.size() >= static_cast<size_t>(VT_MAX_DEPTH)) {
                status = VT_ERR_TOO_DEEP;
                break;
            }
            VtNode* node = VtNode::makeInline(p + 1, std::strcspn(p + 1, "\r\n"));
            parents.push_back(current);
            current = OpenNode{node, nullptr, nullptr};
        } else if (c == ')') {
            if (parents.empty()) {
                status = VT_ERR_CLOSE;
                break;
            }
            VtNode* done = current.node;
            current = parents.back();
            parents.pop_back();
            appendChild(current, done);
        } else if (c == ';' || c == '\0' || c == '\r' || c == '\n') {
            continue;
        } else if (std::isalnum(static_cast<unsigned char>(c))) {
            status = parseValueLine(p, current);
        } else {
            status = VT_ERR_BAD_LINE;
        }
    }
    // Nodes still open were never attached: they are dropped.
    while (!parents.empty()) {
        delete current.node;
        current = parents.back();
        parents.pop_back();
    }
    return status;
}

VtNode* vtParseNodeDump(VtILineStream* in)
{
    auto* root = new VtNode;
    root->name = vtStrDup("");
    if (vtParseNodeDump(in, root) != VT_OK) {
        delete root;
        return nullptr;
    }
    return root;
}

// ---- writing ------------------------------------------------------------------

const char* vtGetIndentString()
{
    static const char indent[] = "   ";
    return indent;
}

void vtIndent(int n)
{
    for (int i = 0; i < n; ++i) std::fputs(vtGetIndentString(), stdout);
}

namespace {
void dumpBytes(const char* name, char letter, const unsigned char* bytes, unsigned int count)
{
    std::printf("%s:%c=%u,", name, letter, count);
    for (unsigned int i = 0; i < count; ++i) std::printf("%02x", bytes[i]);
    std::printf("\n");
}
}  // namespace

void vtDumpValue(const VtVariant* value, int indent)
{
    VT_ASSERT(value != 0);
    VT_ASSERT(value->name != 0);
    vtIndent(indent);
    switch (value->type) {
    case VT_INT: std::printf("%s:%c=%d\n", value->name, 'i', value->value.i); break;
    case VT_STRING: std::printf("%s:%c=%s\n", value->name, 's', value->value.s ? value->value.s : ""); break;
    case VT_FLOAT: std::printf("%s:%c=%f\n", value->name, 'f', value->value.f); break;
    case VT_WSTRING: {
        const std::string utf8 = utils::stringToUTF8(std::wstring(value->value.u ? value->value.u : L""));
        dumpBytes(value->name, 'u', reinterpret_cast<const unsigned char*>(utf8.data()),
                  static_cast<unsigned>(utf8.size()));
        break;
    }
    case VT_DATA: dumpBytes(value->name, 'd', value->value.d.bytes, value->value.d.length); break;
    default: std::printf("%s:?=%p\n", value->name, static_cast<const void*>(value)); break;
    }
}

void vtDumpNode(const VtNode* node, int indent)
{
    if (!node) return;
    VT_ASSERT(node->name != 0);
    vtIndent(indent);
    std::printf("%c%s\n", '(', node->name);
    for (const VtVariant* v = node->values; v; v = v->next) vtDumpValue(v, indent + 1);
    for (const VtNode* c = node->children; c; c = c->next) vtDumpNode(c, indent + 1);
    vtIndent(indent);
    std::printf("%c\n", ')');
    std::fflush(stdout);
}
