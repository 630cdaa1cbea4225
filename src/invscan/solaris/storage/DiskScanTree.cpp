#include "invscan/solaris/storage/DiskScanTree.h"

#include "framework/Trace.h"
#include "invscan/com/probeVT.h"

const VtNode* diskScanInfo(const char* source, const char* function)
{
    const int log = getCcLogHw();
    VtExecInfo* info = getDiskScanVT();
    if (!info) {
        CcLogWrapper::traceMIN(log, __LINE__, source, function, "%s", "ERROR! Failed to execute diskscan command");
        return nullptr;
    }
    if (info->result != 0 || !info->root) {
        CcLogWrapper::traceMIN(log, __LINE__, source, function, "ERROR! diskscan command failed with error=%d",
                               info->result);
        return nullptr;
    }
    const VtNode* root = info->root->getChild("ScsiInfo", 0);
    if (!root) CcLogWrapper::traceMIN(log, __LINE__, source, function, "%s", "ERROR! Failed to get root node");
    return root;
}

const char* textOf(const VtNode* node, const char* name)
{
    return node ? node->getValue(nullptr, name, "") : "";
}
