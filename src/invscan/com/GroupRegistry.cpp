#include "invscan/com/GroupRegistry.h"

#include <map>
#include <vector>

namespace {
// A function-local map: registrations run from other files' static
// initialisers, whose order against ours is unspecified.
std::map<unsigned long, GroupCreator>& registry()
{
    static std::map<unsigned long, GroupCreator> creators;
    return creators;
}

std::vector<ScanEndHook>& scanEndHooks()
{
    static std::vector<ScanEndHook> hooks;
    return hooks;
}
}  // namespace

bool registerGroupClass(unsigned long groupId, GroupCreator create)
{
    registry()[groupId] = create;
    return true;
}

GroupCreator findGroupClass(unsigned long groupId)
{
    auto it = registry().find(groupId);
    return it == registry().end() ? nullptr : it->second;
}

bool registerScanEnd(ScanEndHook forget)
{
    scanEndHooks().push_back(forget);
    return true;
}

void runScanEndHooks()
{
    for (ScanEndHook forget : scanEndHooks()) forget();
}
