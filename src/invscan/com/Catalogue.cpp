#include "invscan/com/Catalogue.h"

#include <cstring>

#include "common/util/ApiGuard.h"

const char* getGroupNameFromId(const korGroupDef* defs, unsigned long groupId)
{
    const korGroupDef* g = getGroupDefinitionFromId(defs, groupId);
    return g && g->name ? g->name : "Unknown";
}

const korGroupDef* getGroupDefinitionFromId(const korGroupDef* defs, unsigned long groupId)
{
    if (!defs) return nullptr;
    for (const korGroupDef* g = defs; g->id != KOR_END; ++g)
        if (g->id == groupId) return g;
    return nullptr;
}

const char* getGroupNameFromId(unsigned long groupId) { return getGroupNameFromId(GROUPS_DEF, groupId); }

const korGroupDef* getGroupDefinitionFromId(unsigned long groupId)
{
    return getGroupDefinitionFromId(GROUPS_DEF, groupId);
}

namespace {
// Name scans stop at the sentinel's null name, not at its id.
const korGroupDef* findByName(const char* name)
{
    if (!name) return nullptr;
    for (const korGroupDef* g = GROUPS_DEF; g->name; ++g)
        if (std::strcmp(g->name, name) == 0) return g;
    return nullptr;
}
}  // namespace

unsigned long getGroupIdFromName(const String& name)
{
    return api::guarded<unsigned long>("./../../../src/invscan/com/Catalogue", "getGroupIdFromName", 0, [&] {
        const korGroupDef* g = findByName(name.narrow().c_str());
        return g ? static_cast<unsigned long>(g->id) : 0ul;
    });
}

unsigned long getDebugMaskFromName(const char* name)
{
    const korGroupDef* g = findByName(name);
    return g ? g->debugMask : 0;
}

const korAttribDef* getAttribDefinitionFromId(const korGroupDef* group, unsigned long attribId)
{
    if (!group || !group->attribs) return nullptr;
    for (const korAttribDef* a = group->attribs; a->id != KOR_END; ++a)
        if (a->id == attribId) return a;
    return nullptr;
}

const char* getAttribNameFromId(const korGroupDef* group, unsigned long attribId)
{
    const korAttribDef* a = getAttribDefinitionFromId(group, attribId);
    return a ? a->name : nullptr;
}

const char* getEnumAsciiValue(const korGroupDef* group, unsigned long attribId, unsigned long value)
{
    const korAttribDef* a = getAttribDefinitionFromId(group, attribId);
    if (!a || !a->enumDef) return nullptr;
    for (const korEnumDef* e = a->enumDef; e->value != KOR_END; ++e)
        if (e->value == value) return e->text;
    return nullptr;
}
