#include "invscan/com/KorGroup.h"

#include <new>

KorGroup::KorGroup(unsigned long groupId, unsigned long version)
    : m_version(static_cast<uint32_t>(version)), m_groupId(static_cast<uint32_t>(groupId))
{
}

KorGroup::~KorGroup()
{
    delete[] m_extraTables;  // the tables themselves belong to whoever took them
}

KorTable* KorGroup::getTable() { return nullptr; }

KorTable* KorGroup::generateTable() { return nullptr; }

String KorGroup::getGroupName() const { return String(getGroupNameFromId(m_groupId)); }

void KorGroup::addExtraTable(KorTable* table)
{
    KorTable** grown = new (std::nothrow) KorTable*[static_cast<size_t>(m_extraCount) + 1];
    if (!grown) return;
    for (int i = 0; i < m_extraCount; ++i) grown[i] = m_extraTables[i];
    grown[m_extraCount] = table;
    delete[] m_extraTables;
    m_extraTables = grown;
    ++m_extraCount;
}

KorTable* KorGroup::getExtraTable(int index) const
{
    return index < 0 || index >= m_extraCount ? nullptr : m_extraTables[index];
}

namespace {
const wchar_t* findAttr(const AttrList* list, const wchar_t* key)
{
    if (!list || !key) return nullptr;
    const String wanted(key);
    for (const auto& entry : *list)
        if (entry.first.compareTo(wanted) == 0) return entry.second.c_str();
    return nullptr;
}
}  // namespace

const wchar_t* KorGroup::getGlobalAttr(const wchar_t* key) const { return findAttr(m_globalAttrs, key); }

const wchar_t* KorGroup::getGroupAttr(const wchar_t* key) const { return findAttr(m_groupAttrs, key); }
