#include "common/vartree/vtree.h"

VtNode* vtNewNode(const char* name)
{
    auto* node = new VtNode;
    node->name = vtStrDup(name);
    return node;
}

void vtAddInt(VtNode* node, const char* name, long value)
{
    auto* v = new VtVariant;
    v->name = vtStrDup(name);
    v->type = VT_INT;
    v->value.i = static_cast<int>(value);
    node->addValue(v);
}

void vtAddString(VtNode* node, const char* name, const std::string& value)
{
    std::string text = value;
    for (char& c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u >= 0x7F) c = '?';
    }
    auto* v = new VtVariant;
    v->name = vtStrDup(name);
    v->type = VT_STRING;
    v->value.s = vtStrDup(text.c_str());
    node->addValue(v);
}
