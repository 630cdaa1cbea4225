#include "support/TableReader.h"

#include <cstdio>
#include <set>

#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/com/ValueText.h"

namespace testsupport {

namespace {

std::string attribName(const KorTable& table, unsigned long id)
{
    const char* name = getAttribNameFromId(table.getGroupDefinitionFromId(), id);
    return name ? name : "attribute " + std::to_string(id);
}
}  // namespace

std::vector<Row> readTable(KorTable& table)
{
    std::vector<Row> rows;
    table.reset();
    while (KorTableRow* row = table.getNext()) {
        Row values;
        row->reset();
        // Walk by count: a null attribute would end getNext() early.
        for (unsigned long i = 0; i < row->getNumAttribs(); ++i) {
            KorTableAttrib* attrib = row->getNext();
            KorValue v;
            if (!attrib || !decodeKorValue(attrib->getAttribPtr(), v)) v.type = 0;
            values.push_back(v);
        }
        row->reset();
        rows.push_back(values);
    }
    table.reset();
    return rows;
}

std::vector<NamedRow> readNamedRows(KorTable& table)
{
    std::vector<NamedRow> named;
    for (const Row& row : readTable(table)) {
        NamedRow values;
        for (const KorValue& v : row) values[attribName(table, v.id)] = valueText(v);
        named.push_back(values);
    }
    return named;
}

std::string valueText(const KorValue& v) { return v.type == 0 ? "(unreadable)" : korValueText(v, RealForm::Exact); }

std::string tableText(KorTable& table)
{
    std::string out = std::string(table.getGroupName()) + "\n";
    int index = 0;
    for (const Row& row : readTable(table)) {
        out += "[" + std::to_string(++index) + "]\n";
        for (const KorValue& v : row) out += "  " + attribName(table, v.id) + " = " + valueText(v) + "\n";
    }
    return out;
}

std::vector<std::string> catalogueProblems(KorTable& table)
{
    std::vector<std::string> problems;
    const korGroupDef* group = table.getGroupDefinitionFromId();
    if (!group) return {"group " + std::to_string(table.getGroupId()) + " is not catalogued"};
    int index = 0;
    for (const Row& row : readTable(table)) {
        ++index;
        std::set<uint32_t> seen;
        for (const KorValue& v : row) {
            const std::string where = "row " + std::to_string(index) + ", " + attribName(table, v.id) + ": ";
            if (v.type == 0) {
                problems.push_back(where + "null or unreadable");
                continue;
            }
            if (!seen.insert(v.id).second) problems.push_back(where + "appears twice");
            const korAttribDef* def = getAttribDefinitionFromId(group, v.id);
            if (!def) {
                problems.push_back(where + "not an attribute of " + group->name);
                continue;
            }
            // The row builder's rules: the catalogue's, and its named departures.
            if (rowrules::typeOf(group, v.id) != v.type)
                problems.push_back(where + "type " + std::to_string(v.type) + ", catalogue says " +
                                   std::to_string(def->type));
            const uint32_t length = rowrules::lengthOf(group, v.id);
            if ((v.type == KOR_STRING || v.type == KOR_WIDESTRING) && length > 0 && v.text.size() > length)
                problems.push_back(where + std::to_string(v.text.size()) + " characters, longer than " +
                                   std::to_string(def->maxLength));
        }
    }
    return problems;
}

}  // namespace testsupport

size_t testsupport::catalogueGroupCount()
{
    size_t n = 0;
    while (GROUPS_DEF[n].id != KOR_END) ++n;
    return n;
}
