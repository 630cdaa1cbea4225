// invscan schema: the JSON Schema of `invscan scan --format json`, made from
// the catalogue so that the two cannot drift apart.
#include <cstdio>
#include <map>
#include <string>

#include "invscan/com/Catalogue.h"
#include "invscan/com/CatalogueChanges.h"
#include "tools/invscan/Schema.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

Json unsignedUpTo(unsigned long long maximum)
{
    return Json{{"type", "integer"}, {"minimum", 0}, {"maximum", maximum}};
}

// One value of an attribute, as the JSON output renders it (Output.cpp): an
// enumerated number with its text as {"value", "text"}, a number outside the
// enumeration as the number alone.
// Enumerations shared by several attributes are written once, in $defs.
using EnumRefs = std::map<const korEnumDef*, std::string>;

Json valueSchema(uint32_t groupId, const korAttribDef& a, Json& defs, EnumRefs& enums)
{
    Json value;
    const uint32_t type = getCarriedType(groupId, a.id, a.type);
    switch (type) {
    case KOR_UCHAR: value = unsignedUpTo(0xFFu); break;
    case KOR_USHORT: value = unsignedUpTo(0xFFFFu); break;
    case KOR_ULONG: value = unsignedUpTo(0xFFFFFFFFu); break;
    case KOR_UQUAD:
    case KOR_ULONGLONG: value = unsignedUpTo(0xFFFFFFFFFFFFFFFFull); break;
    case KOR_LONGLONG: value = Json{{"type", "integer"}}; break;
    case KOR_FLOAT:
    case KOR_DOUBLE: value = Json{{"type", "number"}}; break;
    case KOR_OCTETSTRING: value = Json{{"type", "string"}, {"pattern", "^([0-9A-F]{2})*$"}}; break;
    case KOR_DATETIME:
        // year-month-day-hour.minute.second.000000; empty when the time could not be converted
        value = Json{{"type", "string"},
                     {"pattern", "^([0-9]{4}-[0-9]{2}-[0-9]{2}-[0-9]{2}\\.[0-9]{2}\\.[0-9]{2}\\.[0-9]{6})?$"}};
        break;
    default:  // strings
        value = Json{{"type", "string"}};
        if (a.maxLength > 0 && !isUnboundedAttrib(groupId, a.id)) value["maxLength"] = a.maxLength;
        break;
    }
    const bool number = type == KOR_UCHAR || type == KOR_USHORT || type == KOR_ULONG || type == KOR_UQUAD ||
                        type == KOR_ULONGLONG;
    if (a.enumDef && number) {
        std::string& ref = enums[a.enumDef];
        if (ref.empty()) {
            ref = "enum-" + std::to_string(groupId) + "-" + std::to_string(a.id);
            Json entries = Json::array();
            for (const korEnumDef* e = a.enumDef; e->value != KOR_END; ++e)
                entries.push_back({{"value", e->value}, {"text", e->text ? e->text : ""}});
            defs[ref] = Json{{"enum", std::move(entries)}};
        }
        value = Json{{"anyOf", Json::array({value, Json{{"$ref", "#/$defs/" + ref}}})}};
    }
    return value;
}

// A row's attribute: one value, the values of a repeated attribute in row
// order, or null for a value the scanner could not decode.
Json attributeSchema(uint32_t groupId, const korAttribDef& a, Json& defs, EnumRefs& enums)
{
    const Json value = valueSchema(groupId, a, defs, enums);
    return Json{{"anyOf", Json::array({value, Json{{"type", "array"}, {"minItems", 2}, {"items", value}},
                                       Json{{"type", "null"}}})}};
}

Json tableSchema(const korGroupDef& g, Json& defs, EnumRefs& enums)
{
    Json attributes = Json::object();
    if (g.attribs)
        for (const korAttribDef* a = g.attribs; a->id != KOR_END; ++a)
            attributes[a->name] = attributeSchema(g.id, *a, defs, enums);
    const Json row{{"type", "object"}, {"properties", std::move(attributes)}, {"additionalProperties", false}};
    return Json{{"type", "object"},
                {"required", {"id", "name", "version", "timestamp", "rows"}},
                {"properties",
                 {{"id", {{"const", g.id}}},
                  {"name", {{"const", g.name}}},
                  {"version", {{"type", "integer"}, {"minimum", 0}}},
                  {"timestamp", {{"type", "string"}}},
                  {"rows", {{"type", "array"}, {"items", row}}}}},
                {"additionalProperties", false}};
}

}  // namespace

Json scanSchema()
{
    Json defs = Json::object();
    Json ids = Json::array();
    Json byId = Json::array();
    EnumRefs enums;
    for (const korGroupDef* g = GROUPS_DEF; g->id != KOR_END; ++g) {
        const std::string ref = "table-" + std::to_string(g->id);
        Json table = tableSchema(*g, defs, enums);  // adds the enumerations first
        defs[ref] = std::move(table);
        ids.push_back(g->id);
        byId.push_back({{"if", {{"properties", {{"id", {{"const", g->id}}}}}, {"required", {"id"}}}},
                        {"then",
                         {{"properties",
                           {{"name", {{"const", g->name}}},
                            {"tables", {{"items", {{"$ref", "#/$defs/" + ref}}}}}}}}}});
    }
    defs["group"] = Json{{"type", "object"},
                         {"required", {"id", "name", "status", "tables"}},
                         {"properties",
                          {{"id", {{"enum", ids}}},
                           {"name", {{"type", "string"}}},
                           {"status", {{"enum", {"scanned", "excluded", "skipped", "no class", "no table"}}}},
                           {"reason", {{"type", "string"}}},
                           {"tables", {{"type", "array"}}}}},
                         {"additionalProperties", false},
                         {"allOf", std::move(byId)}};
    const Json seconds{{"type", "number"}, {"minimum", 0}};
    return Json{
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"$id", std::string("urn:invscan:scan:") + INVSCAN_VERSION},
        {"title", "invscan scan --format json"},
        {"description",
         "One scan of a machine: every group asked for, with its tables of rows. "
         "invscan.version is the version of the program that wrote it; each table's version is its group's."},
        {"type", "object"},
        {"required", {"invscan", "groups"}},
        {"properties",
         {{"invscan",
           {{"type", "object"},
            {"required", {"version", "build"}},
            {"properties", {{"version", {{"type", "string"}}}, {"build", {{"type", "string"}}}}},
            {"additionalProperties", false}}},
          {"groups", {{"type", "array"}, {"items", {{"$ref", "#/$defs/group"}}}}},
          {"timing",
           {{"type", "object"},
            {"properties",
             {{"seconds", seconds},
              {"groups", {{"type", "array"}, {"items", {{"type", "object"}}}}},
              {"runs", {{"type", "array"}, {"items", {{"type", "object"}}}}}}}}}}},
        {"additionalProperties", false},
        {"$defs", std::move(defs)}};
}

int runSchema()
{
    std::printf("%s\n", scanSchema().dump(2, ' ', false, Json::error_handler_t::replace).c_str());
    return std::fflush(stdout) == 0 ? 0 : 1;
}

}  // namespace cli
