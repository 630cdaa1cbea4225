#pragma once
// Base of every inventory group: a group scans one category of the machine
// and builds a table of it.
#include <list>
#include <utility>

#include "framework/String.h"
#include "invscan/com/Export.h"
#include "invscan/com/KorTable.h"

// Attribute list read from the hardware configuration file: key, value pairs
// in file order. Owned by the factory; groups only read them.
using AttrList = std::list<std::pair<String, String>>;

class INVSCAN_API KorGroup {
public:
    KorGroup(unsigned long groupId, unsigned long version);
    virtual ~KorGroup();

    KorGroup(const KorGroup&) = delete;
    KorGroup& operator=(const KorGroup&) = delete;

    // A new table owned by the caller, or null when the source is missing.
    virtual KorTable* getTable() = 0;
    virtual KorTable* generateTable();

    unsigned long getGroupId() const { return m_groupId; }
    unsigned long getGroupVersion() const { return m_version; }
    String getGroupName() const;

    // Further tables besides the main one; the group does not delete them.
    void addExtraTable(KorTable* table);
    int getExtraTableCount() const { return m_extraCount; }
    KorTable* getExtraTable(int index) const;

    void setMobilityFlag(int flag) { m_mobility = flag; }
    int getMobilityFlag() const { return m_mobility; }

    // The configuration lists; the factory attaches them.
    void setGlobalAttrList(const AttrList* list) { m_globalAttrs = list; }
    void setGroupAttrList(const AttrList* list) { m_groupAttrs = list; }
    // Value of the first entry with an equal key; null when absent.
    const wchar_t* getGlobalAttr(const wchar_t* key) const;
    const wchar_t* getGroupAttr(const wchar_t* key) const;

private:
    uint32_t m_version;
    uint32_t m_groupId;
    KorTable** m_extraTables = nullptr;
    int m_extraCount = 0;
    int m_mobility = 0;
    const AttrList* m_globalAttrs = nullptr;
    const AttrList* m_groupAttrs = nullptr;
};
