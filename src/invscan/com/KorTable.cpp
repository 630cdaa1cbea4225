#include "invscan/com/KorTable.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwchar>
#include <new>

#include "common/sys/System.h"
#include "framework/utils.h"
#include "invscan/com/Render.h"

namespace {
constexpr uint32_t kHeaderSize = 12;  // size, id, type

void put32(unsigned char* at, uint32_t v) { std::memcpy(at, &v, 4); }
uint32_t get32(const unsigned char* at)
{
    uint32_t v;
    std::memcpy(&v, at, 4);
    return v;
}
}  // namespace

// ---- KorTableAttrib -------------------------------------------------------

void KorTableAttrib::allocate(unsigned long id, uint32_t type, uint32_t valueSize)
{
    const uint32_t size = kHeaderSize + valueSize;
    m_block = new (std::nothrow) unsigned char[size];
    if (!m_block) return;
    put32(m_block, size);
    put32(m_block + 4, static_cast<uint32_t>(id));
    put32(m_block + 8, type);
}

KorTableAttrib::KorTableAttrib(unsigned long id, unsigned char value)
{
    allocate(id, KOR_UCHAR, 1);
    if (m_block) m_block[12] = value;
}

KorTableAttrib::KorTableAttrib(unsigned long id, unsigned short value)
{
    allocate(id, KOR_USHORT, 2);
    if (m_block) std::memcpy(valuePtr(), &value, 2);
}

KorTableAttrib::KorTableAttrib(unsigned long id, unsigned int value)
{
    allocate(id, KOR_ULONG, 4);
    if (m_block) put32(valuePtr(), value);
}

KorTableAttrib::KorTableAttrib(unsigned long id, unsigned long value)
    : KorTableAttrib(id, static_cast<unsigned int>(value))
{
}

KorTableAttrib::KorTableAttrib(unsigned long id, _uquad value)
{
    allocate(id, KOR_UQUAD, 8);
    if (m_block) std::memcpy(valuePtr(), value.val, 8);
}

KorTableAttrib::KorTableAttrib(unsigned long id, float value)
{
    allocate(id, KOR_FLOAT, 4);
    if (m_block) std::memcpy(valuePtr(), &value, 4);
}

KorTableAttrib::KorTableAttrib(unsigned long id, double value)
{
    allocate(id, KOR_DOUBLE, 8);
    if (m_block) std::memcpy(valuePtr(), &value, 8);
}

void KorTableAttrib::storeKorString(unsigned long id, uint32_t type, const std::wstring& text)
{
    const uint32_t count = static_cast<uint32_t>(text.size() + 1);
    allocate(id, type, 4 + 4 * count);
    if (!m_block) return;
    put32(valuePtr(), count);
    std::memcpy(valuePtr() + 4, text.c_str(), 4 * count);  // with the terminator
}

// Converted from the current multibyte encoding; a text that does not convert
// is stored empty. The block is sized to the converted length exactly.
void KorTableAttrib::storeNarrow(unsigned long id, const std::string& trimmed)
{
    std::wstring wide;
    if (!trimmed.empty()) {
        const size_t length = std::mbstowcs(nullptr, trimmed.c_str(), 0);
        if (length != static_cast<size_t>(-1)) {
            wide.resize(length);
            std::mbstowcs(&wide[0], trimmed.c_str(), length + 1);
        }
    }
    storeKorString(id, KOR_STRING, wide);
}

KorTableAttrib::KorTableAttrib(unsigned long id, std::string& value)
{
    utils::trimBothInPlace(value);
    storeNarrow(id, value);
}

KorTableAttrib::KorTableAttrib(unsigned long id, const char* value)
{
    storeNarrow(id, value ? utils::trimBoth(std::string(value)) : std::string());
}

KorTableAttrib::KorTableAttrib(unsigned long id, const unsigned char* bytes, unsigned int length)
{
    if (!bytes) length = 0;
    allocate(id, KOR_OCTETSTRING, 4 + length);
    if (!m_block) return;
    put32(valuePtr(), length);
    if (length) std::memcpy(valuePtr() + 4, bytes, length);
}

KorTableAttrib::KorTableAttrib(unsigned long id, long secondsSinceEpoch)
{
    allocate(id, KOR_DATETIME, KOR_DATETIME_LENGTH);
    if (!m_block) return;
    char text[KOR_DATETIME_LENGTH];
    std::memset(text, 0, sizeof text);
    TimeToKorDateTime(secondsSinceEpoch, text);
    std::memcpy(valuePtr(), text, KOR_DATETIME_LENGTH);
}

KorTableAttrib::KorTableAttrib(unsigned long id, unsigned long long value)
{
    allocate(id, KOR_ULONGLONG, 8);
    if (m_block) std::memcpy(valuePtr(), &value, 8);
}

KorTableAttrib::KorTableAttrib(unsigned long id, long long value)
{
    allocate(id, KOR_LONGLONG, 8);
    if (m_block) std::memcpy(valuePtr(), &value, 8);
}

KorTableAttrib::KorTableAttrib(unsigned long id, const wchar_t* value)
{
    storeKorString(id, KOR_WIDESTRING, value ? utils::trimBoth(std::wstring(value)) : std::wstring());
}

KorTableAttrib::~KorTableAttrib()
{
    delete[] m_block;
    m_block = nullptr;
}

unsigned long KorTableAttrib::getId() const { return m_block ? get32(m_block + 4) : 0; }

unsigned long KorTableAttrib::getType() const { return m_block ? get32(m_block + 8) : KOR_NO_TYPE; }

void KorTableAttrib::toString() const
{
    if (m_block) PrintKorAttribValue(m_block);
}

// ---- lists ---------------------------------------------------------------

template <typename T>
KorList<T>::~KorList()
{
    while (m_head) {
        Link* next = m_head->next;
        delete m_head->element;
        delete m_head;
        m_head = next;
    }
    m_tail = m_cursor = nullptr;
    m_count = 0;
}

template <typename T>
void KorList<T>::append(T* element)
{
    Link* link = new Link{element, nullptr};
    if (m_tail)
        m_tail->next = link;
    else
        m_head = link;
    m_tail = link;
    ++m_count;
}

template <typename T>
T* KorList<T>::next()
{
    if (!m_cursor) {
        m_cursor = m_head;
        return m_cursor ? m_cursor->element : nullptr;
    }
    if (!m_cursor->next) return nullptr;  // stays at the end until reset()
    m_cursor = m_cursor->next;
    return m_cursor->element;
}

template class KorList<KorTableAttrib>;
template class KorList<KorTableRow>;

// ---- KorTableRow ------------------------------------------------------------

int KorTableRow::addAttrib(KorTableAttrib* attrib)
{
    m_attribs.append(attrib);
    return 1;
}

int KorTableRow::reset()
{
    m_attribs.reset();
    return 1;
}

void KorTableRow::toString() const
{
    std::printf("\n\t Attribs=%lu", static_cast<unsigned long>(m_attribs.count()));
    m_attribs.forEach([](const KorTableAttrib* a) {
        if (a) a->toString();
    });
}

// ---- KorTable ---------------------------------------------------------------

KorTable::KorTable(unsigned long groupId, unsigned long version) : KorTable(GROUPS_DEF, groupId, version) {}

KorTable::KorTable(const korGroupDef* defs, unsigned long groupId, unsigned long version)
    : m_version(static_cast<uint32_t>(version)), m_groupId(static_cast<uint32_t>(groupId)), m_defs(defs)
{
    createTimeStap();
}

void KorTable::createTimeStap()
{
    // The machine's clock, through the seam: a replayed scan shows the captured times.
    m_timeStamp = static_cast<long>(sys::current().time());
}

int KorTable::addRow(KorTableRow* row)
{
    if (!row) return 0;
    m_rows.append(row);
    return 1;
}

const char* KorTable::getGroupName() const { return getGroupNameFromId(m_defs, m_groupId); }

const korGroupDef* KorTable::getGroupDefinitionFromId() const
{
    return ::getGroupDefinitionFromId(m_defs, m_groupId);
}

int KorTable::reset()
{
    m_rows.reset();
    return 1;
}

void KorTable::toString() const
{
    std::printf("\n--------Table %s (%08lX) ver=%lu", getGroupName(), static_cast<unsigned long>(m_groupId),
                static_cast<unsigned long>(m_version));
    std::printf("\nRows=%lu", static_cast<unsigned long>(m_rows.count()));
    m_rows.forEach([](const KorTableRow* r) {
        if (r) r->toString();
    });
}
