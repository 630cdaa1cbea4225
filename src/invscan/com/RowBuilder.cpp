#include "invscan/com/RowBuilder.h"

#include <cwchar>
#include <memory>

#include "framework/utils.h"
#include "invscan/com/CatalogueChanges.h"

namespace rowrules {

std::string decodable(const std::string& text)
{
    std::string out;
    std::mbstate_t state{};
    for (size_t i = 0; i < text.size();) {
        wchar_t wide;
        const size_t n = std::mbrtowc(&wide, text.data() + i, text.size() - i, &state);
        if (n == static_cast<size_t>(-1) || n == static_cast<size_t>(-2) || n == 0) {
            out += '?';  // a byte of another encoding, or a cut character
            state = std::mbstate_t{};
            ++i;
            continue;
        }
        out.append(text, i, n);
        i += n;
    }
    return out;
}

std::string cut(const std::string& text, size_t max)
{
    if (max == 0 || text.size() <= max) return text;
    // Walked to the end: a text undecodable anywhere stays whole, so that
    // whether it is stored does not depend on where the cut falls.
    std::mbstate_t state{};
    size_t fits = 0;  // the bytes of the whole characters that fit
    for (size_t at = 0; at < text.size();) {
        wchar_t wide;
        size_t n = std::mbrtowc(&wide, text.data() + at, text.size() - at, &state);
        if (n == static_cast<size_t>(-1) || n == static_cast<size_t>(-2)) return text;
        if (n == 0) n = 1;  // a zero byte
        at += n;
        if (at <= max) fits = at;
    }
    return text.substr(0, fits);
}

uint32_t lengthOf(const korGroupDef* group, uint32_t attribId)
{
    if (!group || isUnboundedAttrib(group->id, attribId)) return 0;
    const korAttribDef* def = getAttribDefinitionFromId(group, attribId);
    return def ? def->maxLength : 0;
}

uint32_t typeOf(const korGroupDef* group, uint32_t attribId)
{
    const korAttribDef* def = group ? getAttribDefinitionFromId(group, attribId) : nullptr;
    return def ? getCarriedType(group->id, attribId, def->type) : KOR_NO_TYPE;
}

}  // namespace rowrules

RowBuilder::RowBuilder(unsigned long groupId, Undecodable undecodable)
    : m_group(getGroupDefinitionFromId(groupId)), m_undecodable(undecodable)
{
}

RowBuilder::~RowBuilder() { delete m_row; }

RowBuilder& RowBuilder::text(uint32_t id, const std::string& value)
{
    // Trimmed before it is cut, so that leading blanks take no room.
    std::string shown = utils::trimBoth(value);
    if (m_undecodable == Undecodable::Shown) shown = rowrules::decodable(shown);
    const std::string cut = rowrules::cut(shown, rowrules::lengthOf(m_group, id));
    add(new KorTableAttrib(id, cut.c_str()));
    return *this;
}

RowBuilder& RowBuilder::text(uint32_t id, const char* value) { return text(id, std::string(value ? value : "")); }

RowBuilder& RowBuilder::textIfAny(uint32_t id, const std::string& value)
{
    return value.empty() ? *this : text(id, value);
}

RowBuilder& RowBuilder::number(uint32_t id, unsigned long long value)
{
    switch (rowrules::typeOf(m_group, id)) {  // an attribute the catalogue lacks: ULONG
    case KOR_UCHAR: add(new KorTableAttrib(id, static_cast<unsigned char>(value))); break;
    case KOR_USHORT: add(new KorTableAttrib(id, static_cast<unsigned short>(value))); break;
    case KOR_ULONGLONG: add(new KorTableAttrib(id, value)); break;
    default: add(new KorTableAttrib(id, static_cast<unsigned int>(value))); break;
    }
    return *this;
}

RowBuilder& RowBuilder::when(uint32_t id, long long secondsSinceEpoch)
{
    add(new KorTableAttrib(id, static_cast<long>(secondsSinceEpoch)));
    return *this;
}

RowBuilder& RowBuilder::real(uint32_t id, double value)
{
    add(new KorTableAttrib(id, static_cast<float>(value)));  // every real of the catalogue is a float
    return *this;
}

void RowBuilder::add(KorTableAttrib* attrib)
{
    std::unique_ptr<KorTableAttrib> owned(attrib);
    if (!m_row) m_row = new KorTableRow;
    m_row->addAttrib(owned.get());
    owned.release();
}

KorTableRow* RowBuilder::release()
{
    KorTableRow* row = m_row ? m_row : new KorTableRow;
    m_row = nullptr;
    return row;
}

void RowBuilder::addTo(KorTable& table)
{
    std::unique_ptr<KorTableRow> row(release());
    table.addRow(row.get());
    row.release();
}
