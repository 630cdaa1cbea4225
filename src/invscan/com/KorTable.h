#pragma once
// The inventory data model: a table of rows of typed attribute values.
//
// Each attribute's value is one contiguous heap block: total size, attribute
// id and type code (32-bit words, host order), the value packed right behind
// with no padding, so that a host can copy it in one go.
//
// Overloads pick the type: note that on LP64 `long` is 64 bits and int64_t
// IS long, so pass 64-bit counts as `long long` / `unsigned long long`; a
// plain signed `long` is always a time (seconds since the epoch).
#include <cstdint>
#include <string>

#include "invscan/com/Catalogue.h"
#include "invscan/com/Export.h"
#include "invscan/com/KorTypes.h"

class INVSCAN_API KorTableAttrib {
public:
    KorTableAttrib(unsigned long id, unsigned char value);
    KorTableAttrib(unsigned long id, unsigned short value);
    KorTableAttrib(unsigned long id, unsigned int value);   // KOR_ULONG
    KorTableAttrib(unsigned long id, unsigned long value);  // KOR_ULONG: the low 32 bits
    KorTableAttrib(unsigned long id, _uquad value);
    KorTableAttrib(unsigned long id, float value);
    KorTableAttrib(unsigned long id, double value);
    // Trims the caller's string in place, then stores it.
    KorTableAttrib(unsigned long id, std::string& value);
    // Stores a trimmed copy; the caller's text is untouched. Null is empty.
    KorTableAttrib(unsigned long id, const char* value);
    KorTableAttrib(unsigned long id, const unsigned char* bytes, unsigned int length);
    // Deliberately a date-time: seconds since the epoch, rendered in local time now.
    KorTableAttrib(unsigned long id, long secondsSinceEpoch);
    KorTableAttrib(unsigned long id, unsigned long long value);
    KorTableAttrib(unsigned long id, long long value);
    KorTableAttrib(unsigned long id, const wchar_t* value);
    ~KorTableAttrib();

    KorTableAttrib(const KorTableAttrib&) = delete;
    KorTableAttrib& operator=(const KorTableAttrib&) = delete;

    unsigned long getId() const;    // 0 without a block
    unsigned long getType() const;  // KOR_NO_TYPE without a block
    const unsigned char* getAttribPtr() const { return m_block; }
    void toString() const;

private:
    void allocate(unsigned long id, uint32_t type, uint32_t valueSize);
    void storeKorString(unsigned long id, uint32_t type, const std::wstring& text);
    void storeNarrow(unsigned long id, const std::string& trimmed);
    unsigned char* valuePtr() { return m_block + 12; }

    unsigned char* m_block = nullptr;
};

// A singly linked list with a tail pointer and a cursor; shared by rows and
// tables. Owns its elements.
template <typename T>
class INVSCAN_API KorList {
public:
    KorList() = default;
    ~KorList();
    KorList(const KorList&) = delete;
    KorList& operator=(const KorList&) = delete;

    void append(T* element);
    uint32_t count() const { return m_count; }
    void reset() { m_cursor = nullptr; }
    T* next();
    template <typename F>
    void forEach(F f) const
    {
        for (const Link* l = m_head; l; l = l->next) f(l->element);
    }

private:
    struct Link {
        T* element;
        Link* next;
    };
    uint32_t m_count = 0;
    Link* m_head = nullptr;
    Link* m_tail = nullptr;
    Link* m_cursor = nullptr;
};

class INVSCAN_API KorTableRow {
public:
    KorTableRow() = default;
    // Appends even a null attribute, and counts it. Returns 1.
    int addAttrib(KorTableAttrib* attrib);
    unsigned long getNumAttribs() const { return m_attribs.count(); }
    int reset();
    // Next attribute; null at the end, and null again until reset().
    KorTableAttrib* getNext() { return m_attribs.next(); }
    void toString() const;

private:
    KorList<KorTableAttrib> m_attribs;
};

class INVSCAN_API KorTable {
public:
    KorTable(unsigned long groupId, unsigned long version);
    KorTable(const korGroupDef* defs, unsigned long groupId, unsigned long version);

    KorTable(const KorTable&) = delete;
    KorTable& operator=(const KorTable&) = delete;

    // Refuses null (returns 0); otherwise appends and returns 1.
    int addRow(KorTableRow* row);
    unsigned long getGroupId() const { return m_groupId; }
    unsigned long getGroupVersion() const { return m_version; }
    unsigned long getRowCount() const { return m_rows.count(); }
    long getTimeStamp() const { return m_timeStamp; }
    const char* getGroupName() const;  // "Unknown" when not catalogued
    const korGroupDef* getGroupDefinitionFromId() const;
    int reset();
    KorTableRow* getNext() { return m_rows.next(); }
    void toString() const;

private:
    void createTimeStap();

    uint32_t m_version;
    uint32_t m_groupId;
    const korGroupDef* m_defs;
    KorList<KorTableRow> m_rows;
    long m_timeStamp = 0;
};
