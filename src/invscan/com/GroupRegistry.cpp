#include "invscan/com/GroupRegistry.h"

#include <map>

namespace {
// A function-local map: registrations run from other files' static
// initialisers, whose order against ours is unspecified.
std::map<unsigned long, GroupCreator>& registry()
{
    static std::map<unsigned long, GroupCreator> creators;
    return creators;
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
