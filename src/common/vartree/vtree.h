#pragma once
// The variable tree and its node-dump text format: named nodes carrying
// named, typed values, as the probe programs print them.
#include <cstddef>
#include <memory>
#include <new>
#include <string>

#include "common/vartree/VtStream.h"

enum VtValueKind { VT_INT = 0, VT_STRING = 1, VT_FLOAT = 2, VT_WSTRING = 3, VT_DATA = 4 };

// Parse status codes.
enum {
    VT_OK = 0,
    VT_ERR_BAD_LINE = -1,      // a line starts with an unexpected character
    VT_ERR_CLOSE = -4,         // ")" with no open node
    VT_ERR_VALUE_SYNTAX = -5,  // no ":" or the "=" is not two characters after it
    VT_ERR_VALUE_TYPE = -6,    // unknown type letter
    VT_ERR_TOO_DEEP = -7,      // nodes nested deeper than VT_MAX_DEPTH
    VT_ERR_HEX = -9,           // malformed hex byte string
    VT_ERR_INT_RANGE = -10,    // an integer that does not fit 32 bits
};
constexpr int VT_MAX_DEPTH = 131;  // open parents the parser keeps

// A parsed dump is mostly small values: the parser makes each value (and
// each node) one allocation holding its name, and a string value its text,
// just past the struct. Those are freed with it; a name or text put in
// their place later is the caller's vtStrDup, freed as usual.
struct VtVariant {
    VtVariant() = default;
    ~VtVariant();
    VtVariant(const VtVariant&) = delete;
    VtVariant& operator=(const VtVariant&) = delete;
    // The name (and for VT_STRING the text) copied into the value's own block.
    static VtVariant* makeInline(const char* name, size_t nameLength, const char* text, size_t textLength);
    static void* operator new(size_t size) { return ::operator new(size); }
    static void operator delete(void* block) { ::operator delete(block); }

    char* name = nullptr;
    int type = VT_INT;
    unsigned int inlineText = 0;  // where past the struct an inline text starts; 0: none
    VtVariant* next = nullptr;
    union {
        int i;
        char* s;
        double f;
        wchar_t* u;
        struct {
            unsigned char* bytes;
            unsigned int length;
        } d;
    } value{};
};

struct VtNode {
    VtNode() = default;
    ~VtNode();  // frees values and children, iteratively along sibling lists
    VtNode(const VtNode&) = delete;
    VtNode& operator=(const VtNode&) = delete;
    static VtNode* makeInline(const char* name, size_t nameLength);  // the name in the node's block
    static void* operator new(size_t size) { return ::operator new(size); }
    static void operator delete(void* block) { ::operator delete(block); }

    int addValue(VtVariant* v);
    int addChild(VtNode* n);

    // Null name: the index-th child; otherwise the index-th child of that name.
    VtNode* getChild(const char* name, int index) const;
    VtVariant* getValue(const char* name) const;
    // `path` is "A.B.C" below this node (null: this node).
    VtVariant* getValue(const char* path, const char* name) const;
    const char* getValue(const char* path, const char* name, const char* def) const;
    int getValue(const char* path, const char* name, int def) const;
    float getValueF(const char* path, const char* name, float def) const;

    char* name = nullptr;
    VtNode* next = nullptr;
    VtVariant* values = nullptr;
    VtNode* children = nullptr;
};

char* vtStrDup(const char* text);
wchar_t* vtStrDup(const wchar_t* text);
unsigned char* vtBufDup(const unsigned char* bytes, unsigned int size);

// Buffered line splitter. Lines end at a line feed; every carriage return is
// cut out (and cuts its line); a line longer than the buffer ends the stream.
// The buffer starts small and grows to BUFFER_SIZE only for long lines: most
// dumps are a few kilobytes, read in a long-lived host.
class VtILineStream {
public:
    static constexpr int BUFFER_SIZE = 409600;
    static constexpr int FIRST_SIZE = 16384;
    explicit VtILineStream(VtIStream* source);
    // Next line into dst (at most len - 1 bytes kept); null at the end.
    char* getline(char* dst, unsigned int len, int timeout = -1);
    // Next line in place, valid until the next call; null at the end.
    char* nextLine();
    size_t lastLength() const { return m_lastLength; }  // of the line nextLine gave

private:
    char* get_next_line();

    VtIStream* m_source;
    bool m_eof = false;
    std::unique_ptr<char[]> m_buffer;
    int m_capacity = FIRST_SIZE;  // bytes the buffer holds, besides a terminator
    int m_pos = 0;
    int m_fill = 0;
    size_t m_lastLength = 0;
};

// Building a tree, as the probes do: a new node the caller owns, and values
// added to one. Strings keep printable ASCII only (anything else becomes
// '?'): a dump value ends at a line break and readers' locales differ.
VtNode* vtNewNode(const char* name);
void vtAddInt(VtNode* node, const char* name, long value);
void vtAddString(VtNode* node, const char* name, const std::string& value);

int vtParseNodeDump(VtILineStream* in, VtNode* root);
VtNode* vtParseNodeDump(VtILineStream* in);  // a root named "", or null on error

void vtIndent(int n);
const char* vtGetIndentString();
void vtDumpNode(const VtNode* node, int indent);
void vtDumpValue(const VtVariant* value, int indent);
