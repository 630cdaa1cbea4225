#include <gtest/gtest.h>

#include <random>
#include <string>

#include "common/vartree/vtexec.h"
#include "common/vartree/vtree.h"
#include "support/StreamCapture.h"

namespace {

// Parses `text` fed in pieces of `chunk` bytes into a fresh root.
int parse(const std::string& text, VtNode& root, unsigned chunk = 65536)
{
    VtIStream_Memory in(text, chunk);
    VtILineStream lines(&in);
    if (!root.name) root.name = vtStrDup("");
    return vtParseNodeDump(&lines, &root);
}

TEST(NodeDump, StatusCodes)
{
    const struct {
        const char* text;
        int status;
    } cases[] = {
        {"", VT_OK},
        {"(A\n", VT_OK},
        {")\n", VT_ERR_CLOSE},
        {" x:i=1\n", VT_OK},
        {"-1\n", VT_ERR_BAD_LINE},
        {"#x\n", VT_ERR_BAD_LINE},
        {"name:s=a=b\n", VT_OK},
        {"na=me:s=x\n", VT_ERR_VALUE_SYNTAX},
        {"name\n", VT_ERR_VALUE_SYNTAX},
        {"name:q=1\n", VT_ERR_VALUE_TYPE},
        {"name:ss=1\n", VT_ERR_VALUE_SYNTAX},
        {"data:d=3,0a0B\n", VT_ERR_HEX},
        {"data:d=2;0a0B\n", VT_ERR_HEX},
        {"data:d=2,0a0B\n", VT_OK},
        // An integer that does not fit is refused, not wrapped to 1 or cut to 32 bits.
        {"TotalPackageCount:i=4294967297\n", VT_ERR_INT_RANGE},
        {"n:i=2147483648\n", VT_ERR_INT_RANGE},
        {"n:i=-2147483649\n", VT_ERR_INT_RANGE},
        {"n:i=99999999999999999999999\n", VT_ERR_INT_RANGE},
        {"n:i=2147483647\n", VT_OK},
        {"n:i=-2147483648\n", VT_OK},
        {"; comment\n(A\n; inside\n)\n\n", VT_OK},
    };
    for (const auto& c : cases) {
        VtNode root;
        EXPECT_EQ(parse(c.text, root), c.status) << c.text;
    }
}

TEST(NodeDump, ValuesByKindAndLookupsNeverConvert)
{
    VtNode root;
    ASSERT_EQ(parse("top:i=7\n(A\n   n:i=-12\n   s:s= keep blanks \r\n   f:f=2.5\n"
                    "   d:d=2,0a0B\n   e:d=0,\n   u:u=3,c3a978\n   z:d=1,zz\n"
                    "   (B\n      deep:s=yes\n   )\n)\n(A\n  second:i=2\n)\n",
                    root),
              VT_OK);
    EXPECT_EQ(root.getValue(nullptr, "top", 0), 7);
    const VtNode* a = root.getChild("A", 0);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->getValue(nullptr, "n", 0), -12);
    EXPECT_STREQ(a->getValue(nullptr, "s", "def"), " keep blanks ");
    EXPECT_FLOAT_EQ(a->getValueF(nullptr, "f", 0), 2.5f);
    const VtVariant* d = a->getValue("d");
    ASSERT_NE(d, nullptr);
    ASSERT_EQ(d->value.d.length, 2u);
    EXPECT_EQ(d->value.d.bytes[0], 0x0a);
    EXPECT_EQ(d->value.d.bytes[1], 0x0b);
    EXPECT_EQ(a->getValue("e")->value.d.length, 0u);
    EXPECT_STREQ(a->getValue("u")->value.u, L"\u00e9x");
    EXPECT_EQ(a->getValue("z")->value.d.bytes[0], static_cast<unsigned char>(('z' - '0') * 16 + ('z' - '0')));  // lenient on purpose
    // Kinds are never converted.
    EXPECT_EQ(a->getValue(nullptr, "s", 99), 99);
    EXPECT_STREQ(a->getValue(nullptr, "n", "def"), "def");
    EXPECT_FLOAT_EQ(a->getValueF(nullptr, "n", 1.0f), 1.0f);
    // Paths, indexes, nameless children.
    EXPECT_STREQ(root.getValue("A.B", "deep", ""), "yes");
    EXPECT_EQ(root.getValue("A..B", "deep"), nullptr);  // stops after A
    EXPECT_EQ(root.getValue("A..B", "n")->value.i, -12);
    EXPECT_EQ(root.getValue("", "top")->value.i, 7);
    EXPECT_EQ(root.getChild("A", 1)->getValue(nullptr, "second", 0), 2);
    EXPECT_EQ(root.getChild("A", 2), nullptr);
    EXPECT_EQ(root.getChild(nullptr, 1), root.getChild("A", 1));
    EXPECT_EQ(root.getChild(nullptr, 2), nullptr);
}

TEST(NodeDump, UnclosedNodesAreDroppedAndErrorsKeepWhatWasAttached)
{
    VtNode root;
    EXPECT_EQ(parse("(A\n(B\nx:i=1\n", root), VT_OK);
    EXPECT_EQ(root.children, nullptr);

    VtNode partial;
    EXPECT_EQ(parse("(A\n)\n(B\nbad:q=1\n)\n", partial), VT_ERR_VALUE_TYPE);
    EXPECT_NE(partial.getChild("A", 0), nullptr);
    EXPECT_EQ(partial.getChild("B", 0), nullptr);

    VtIStream_Memory in("(A\n)\n)\n");
    VtILineStream lines(&in);
    EXPECT_EQ(vtParseNodeDump(&lines), nullptr);  // one-argument form: null on error
    VtIStream_Memory empty("");
    VtILineStream none(&empty);
    VtNode* r = vtParseNodeDump(&none);
    ASSERT_NE(r, nullptr);
    EXPECT_STREQ(r->name, "");
    delete r;
}

TEST(NodeDump, NestingIsBounded)
{
    std::string ok, deep;
    for (int i = 0; i < VT_MAX_DEPTH; ++i) ok += "(n\n";
    for (int i = 0; i < VT_MAX_DEPTH; ++i) ok += ")\n";
    VtNode a;
    EXPECT_EQ(parse(ok, a), VT_OK);
    for (int i = 0; i < 100000; ++i) deep += "(n\n";
    VtNode b;
    EXPECT_EQ(parse(deep, b), VT_ERR_TOO_DEEP);
}

TEST(NodeDump, HugeCountsDoNotAllocate)
{
    VtNode root;
    EXPECT_EQ(parse("d:d=2147483647,00\n", root), VT_ERR_HEX);
    EXPECT_EQ(parse("d:d=99999999999999999999,00\n", root), VT_ERR_HEX);
}

TEST(LineStream, CrLfLongLinesAndPieces)
{
    const std::string crlf = "(A\r\nx:s=abc\r\n)\r\n";
    for (unsigned chunk : {1u, 2u, 5u, 4096u}) {
        VtNode root;
        EXPECT_EQ(parse(crlf, root, chunk), VT_OK);
        EXPECT_STREQ(root.getValue("A", "x", ""), "abc");
    }
    // A carriage return inside a line cuts it there; no final line feed.
    VtIStream_Memory in("ab\rcd\nlast");
    VtILineStream lines(&in);
    char buf[16];
    EXPECT_STREQ(lines.getline(buf, sizeof buf), "ab");
    EXPECT_STREQ(lines.getline(buf, sizeof buf), "last");
    EXPECT_EQ(lines.getline(buf, sizeof buf), nullptr);

    // Cut to len - 1 bytes.
    VtIStream_Memory shortBuf("0123456789\n");
    VtILineStream cut(&shortBuf);
    EXPECT_STREQ(cut.getline(buf, 5), "0123");

    // The longest value line the parser takes, and one longer than the buffer.
    const std::string longest = "s:s=" + std::string(102399 - 4, 'x') + "\n";
    VtNode root;
    EXPECT_EQ(parse(longest + "after:i=1\n", root, 1000), VT_OK);
    EXPECT_EQ(std::string(root.getValue(nullptr, "s", "")).size(), 102395u);
    EXPECT_EQ(root.getValue(nullptr, "after", 0), 1);

    const std::string huge(VtILineStream::BUFFER_SIZE + 100, 'y');
    VtIStream_Memory big(huge + "\nnext\n", 7000);
    VtILineStream bigLines(&big);
    std::string line(VtILineStream::BUFFER_SIZE + 1, '\0');
    ASSERT_NE(bigLines.getline(&line[0], static_cast<unsigned>(line.size())), nullptr);
    EXPECT_EQ(std::string(line.c_str()).size(), static_cast<size_t>(VtILineStream::BUFFER_SIZE));
    EXPECT_EQ(bigLines.getline(&line[0], 16), nullptr);  // the stream ends there
}

// Writer, then reader: random trees come back exactly.
std::string randomName(std::mt19937& rng)
{
    static const char alnum[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    std::string s(1 + rng() % 8, 'a');
    for (char& c : s) c = alnum[rng() % (sizeof alnum - 1)];
    return s;
}

VtNode* randomTree(std::mt19937& rng, int depth)
{
    auto* n = new VtNode;
    n->name = vtStrDup(randomName(rng).c_str());
    for (unsigned v = rng() % 5; v > 0; --v) {
        auto* var = new VtVariant;
        var->name = vtStrDup((randomName(rng) + " x").c_str());
        var->type = static_cast<int>(rng() % 5);
        switch (var->type) {
        case VT_INT: var->value.i = static_cast<int>(rng()); break;
        case VT_STRING: var->value.s = vtStrDup(("v=" + randomName(rng) + " :;()").c_str()); break;
        case VT_FLOAT: var->value.f = static_cast<int>(rng() % 2000000) / 1000.0 - 1000; break;
        case VT_WSTRING: var->value.u = vtStrDup(L"w\u00e9\u20ac\U0001F600"); break;
        case VT_DATA: {
            unsigned char bytes[7];
            for (unsigned char& b : bytes) b = static_cast<unsigned char>(rng());
            var->value.d.length = rng() % 8;
            var->value.d.bytes = var->value.d.length ? vtBufDup(bytes, var->value.d.length) : nullptr;
            break;
        }
        }
        n->addValue(var);
    }
    if (depth < 6)
        for (unsigned c = rng() % 4; c > 0; --c) n->addChild(randomTree(rng, depth + 1));
    return n;
}

std::string dump(const VtNode* n)
{
    testsupport::StreamCapture out(stdout);
    vtDumpNode(n, 0);
    return out.text();
}

TEST(NodeDump, WriterThenReaderRoundTripsRandomTrees)
{
    std::mt19937 rng(20261123);
    for (int i = 0; i < 200; ++i) {
        VtNode* tree = randomTree(rng, 0);
        const std::string text = dump(tree);
        VtNode root;
        ASSERT_EQ(parse(text, root, 1 + rng() % 300), VT_OK) << text;
        ASSERT_NE(root.children, nullptr);
        EXPECT_EQ(dump(root.children), text);
        delete tree;
    }
}

TEST(ExecInfoLookups, NullsAndIndexes)
{
    VtExecInfo info;
    EXPECT_EQ(vtGetNode(&info, "Processor", 0), nullptr);
    EXPECT_EQ(vtGetNode(nullptr, nullptr, 0), nullptr);
    info.root = new VtNode;
    info.root->name = vtStrDup("");
    EXPECT_EQ(parse("(Processor\nn:i=1\n)\n(Processor\nn:i=2\n)\n", *info.root), VT_OK);
    EXPECT_EQ(vtGetNode(&info, "Processor", -3), info.root->children);
    EXPECT_EQ(vtGetNode(&info, nullptr, 5), info.root);
    EXPECT_EQ(vtGetValue(&info, "Processor", "n", 0), 1);
    EXPECT_STREQ(vtGetValue(&info, "Processor", "n", "d"), "d");
    EXPECT_EQ(vtGetValue(static_cast<VtExecInfo*>(nullptr), "Processor", "n"), nullptr);
}

}  // namespace
