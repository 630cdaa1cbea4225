#pragma once
// The diskscan probe's "ScsiInfo" node, as the storage groups read it.
struct VtNode;

// Runs the probe (once per process) and gives its "ScsiInfo" node, or null
// after tracing why, under the caller's source and function: "ERROR! Failed
// to execute diskscan command", "ERROR! diskscan command failed with
// error=%d" or "ERROR! Failed to get root node".
const VtNode* diskScanInfo(const char* source, const char* function);

// The children of `parent` named `name`, in order, for `visit(n, child)`.
template <typename Visit>
void forEachChild(const VtNode* parent, const char* name, Visit visit);

// A value of `node` as a string; "" when it is missing.
const char* textOf(const VtNode* node, const char* name);

#include "common/vartree/vtree.h"
#include <cstring>

template <typename Visit>
void forEachChild(const VtNode* parent, const char* name, Visit visit)
{
    int n = 0;
    for (const VtNode* child = parent ? parent->children : nullptr; child; child = child->next)
        if (child->name && std::strcmp(child->name, name) == 0) visit(n++, child);
}
