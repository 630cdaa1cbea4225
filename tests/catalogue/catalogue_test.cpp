#include <gtest/gtest.h>

#include <set>
#include <string>

#include "invscan/com/Catalogue.h"

namespace {

size_t rows(const korAttribDef* table)
{
    size_t n = 0;
    while (table[n].id != KOR_END) ++n;
    return n;
}

size_t entries(const korEnumDef* table)
{
    size_t n = 0;
    while (table[n].value != KOR_END) ++n;
    return n;
}

TEST(CatalogueLookups, GroupsByIdAndName)
{
    EXPECT_STREQ(getGroupNameFromId(2), "Processor");
    EXPECT_STREQ(getGroupNameFromId(0), "Unknown");
    EXPECT_STREQ(getGroupNameFromId(0xFFFFFFFFul), "Unknown");
    EXPECT_STREQ(getGroupNameFromId(26), "Unknown");
    EXPECT_EQ(getGroupIdFromName(String("Processor")), 2u);
    EXPECT_EQ(getGroupIdFromName(String("processor")), 0u);
    EXPECT_EQ(getGroupIdFromName(String("Processor ")), 0u);
    EXPECT_EQ(getGroupIdFromName(String("Process")), 0u);
    EXPECT_EQ(getGroupIdFromName(String("IPv6 Address")), 51u);
    EXPECT_EQ(getGroupIdFromName(String("")), 0u);
    EXPECT_EQ(getDebugMaskFromName("Memory"), 0u);
    EXPECT_EQ(getDebugMaskFromName(nullptr), 0u);
    EXPECT_EQ(getGroupDefinitionFromId(0xFFFFFFFFul), nullptr);
    ASSERT_NE(getGroupDefinitionFromId(54), nullptr);
    EXPECT_STREQ(getGroupDefinitionFromId(54)->name, "SAN Adapter");
}

TEST(CatalogueLookups, AttributesAndEnumerations)
{
    const korGroupDef* ip = getGroupDefinitionFromId(6);
    EXPECT_STREQ(ip->attribs[2].name, "DHCP Enabled");  // third in the table...
    EXPECT_STREQ(getAttribNameFromId(ip, 9), "DHCP Enabled");  // ...with id 9
    EXPECT_EQ(getAttribNameFromId(ip, 12), nullptr);
    EXPECT_EQ(getAttribNameFromId(nullptr, 1), nullptr);

    const korGroupDef* storage = getGroupDefinitionFromId(5);
    EXPECT_EQ(getEnumAsciiValue(storage, 3, 68), nullptr);  // the gap
    EXPECT_STREQ(getEnumAsciiValue(storage, 3, 16), "Winchester Removable Disk ");  // the blank is the name's
    EXPECT_STREQ(getEnumAsciiValue(storage, 3, 70), "Virtual Disc");  // the last, after the gap
    EXPECT_EQ(getEnumAsciiValue(storage, 4, 0), nullptr);  // no enumeration
    EXPECT_EQ(getEnumAsciiValue(nullptr, 3, 30), nullptr);

    const korGroupDef* processor = getGroupDefinitionFromId(2);
    const char* empty = getEnumAsciiValue(processor, 9, 0);
    ASSERT_NE(empty, nullptr);
    EXPECT_STREQ(empty, "");
    EXPECT_STREQ(getAttribNameFromId(processor, 32), "MMX(tm) Techonlogy");

    const korAttribDef* hardDisk = getAttribDefinitionFromId(storage, 13);
    ASSERT_NE(hardDisk, nullptr);
    EXPECT_EQ(hardDisk->type, KOR_STRING);
    EXPECT_EQ(hardDisk->maxLength, 1u);

    EXPECT_EQ(getEnumAsciiValue(getGroupDefinitionFromId(4), 2, 74), nullptr);  // past the last
}

TEST(CatalogueLookups, OtherDefinitionArrays)
{
    const korGroupDef empty[] = {{KOR_END, nullptr, nullptr, nullptr, 0, 0, 0}};
    EXPECT_EQ(getGroupDefinitionFromId(empty, 2), nullptr);
    const korAttribDef none[] = {{KOR_END, nullptr, 0, 0, nullptr}};
    const korGroupDef bare{9, "Bare", none, nullptr, 0, 1, 0};
    EXPECT_EQ(getAttribDefinitionFromId(&bare, 1), nullptr);
}

// One guard over the whole catalogue.
TEST(CatalogueConsistency, WholeCatalogue)
{
    struct Expected {
        uint32_t id;
        const char* name;
        size_t rows;
        std::vector<uint32_t> keys;
    };
    const Expected groups[] = {
        {1, "ComponentID", 32, {}},          {2, "Processor", 45, {1, 2}},
        {3, "Memory", 9, {}},                {4, "Operating System", 22, {}},
        {5, "Storage", 16, {1, 2}},          {6, "IP Address", 11, {2}},
        {51, "IPv6 Address", 11, {2}},       {10, "Keyboard", 6, {}},
        {15, "Regional", 6, {}},             {19, "UNIX System Params", 4, {}},
        {20, "Scan Info", 9, {}},            {27, "Partition", 12, {1, 7, 8}},
        {7, "Network Adapter", 15, {2}},     {29, "PCI Device", 3, {1, 2}},
        {44, "PhysicalProcessor", 14, {1}},  {34, "Lpar", 61, {}},
        {50, "VirtualMachineGuest", 9, {}},  {46, "CpuMeter", 5, {}},
        {47, "UnixCpuMeter", 3, {}},         {49, "VirtualMachine", 53, {3}},
        {53, "PartitionToStorage", 3, {1}},  {54, "SAN Adapter", 10, {1, 2}},
    };
    size_t i = 0;
    for (const Expected& e : groups) {
        const korGroupDef& g = GROUPS_DEF[i++];
        SCOPED_TRACE(e.name);
        EXPECT_EQ(g.id, e.id);
        EXPECT_STREQ(g.name, e.name);
        EXPECT_EQ(g.version, 1u);
        EXPECT_EQ(g.debugMask, 0u);
        EXPECT_EQ(rows(g.attribs), e.rows);
        ASSERT_EQ(g.numKeys, e.keys.size());
        EXPECT_EQ(g.keys == nullptr, e.keys.empty());
        std::set<uint32_t> ids;
        for (const korAttribDef* a = g.attribs; a->id != KOR_END; ++a) {
            EXPECT_TRUE(ids.insert(a->id).second) << "duplicate id " << a->id;
            EXPECT_NE(a->name, nullptr);
            EXPECT_GE(a->type, 1u);
            EXPECT_LE(a->type, 12u);
            EXPECT_EQ(a->maxLength != 0, a->type == KOR_STRING) << a->name;
        }
        for (uint32_t k = 0; k < g.numKeys; ++k) {
            EXPECT_EQ(g.keys[k], e.keys[k]);
            EXPECT_TRUE(ids.count(g.keys[k])) << "key " << g.keys[k] << " not in the table";
        }
    }
    EXPECT_EQ(GROUPS_DEF[i].id, KOR_END);
    EXPECT_EQ(GROUPS_DEF[i].name, nullptr);
    EXPECT_EQ(GROUPS_DEF[i].attribs, nullptr);
    EXPECT_EQ(rows(LPAR_ATTRS_DEF) + 1, 62u);
    EXPECT_EQ(getAttribDefinitionFromId(getGroupDefinitionFromId(34), 1), nullptr);  // no attribute 1

    const struct {
        const korEnumDef* table;
        size_t count;
        const char* name;
    } enums[] = {
        {REGIONAL_TZ_PLUS_MINUS, 2, "tz+-"}, {REGIONAL_TZ_DAYLIGHT, 2, "daylight"},
        {STORAGE_SECURITY_ENABLED_ENUM_DEF, 4, "security"}, {PART_TYPE_ENUM_DEF, 4, "part type"},
        {PART_MEDIA_TYPE_ENUM_DEF, 7, "media"}, {PROCESSOR_INTERFACE_ENUM_DEF, 18, "interface"},
        {ADAPTER_TYPE_ENUM_DEF, 18, "adapter"}, {OS_TYPE_ENUM_DEF, 80, "os"},
        {STORAGE_TYPE_ENUM_DEF, 69, "storage"}, {FILE_SYSTEM_TYPE_ENUM_DEF, 105, "fs"},
        {PROCESSOR_FAMILY_ENUM_DEF, 126, "family"}, {MONITOR_STATUS_ENUMS_DEF, 3, "monitor"},
        {MODEM_DEVTYPE_ENUMS_DEF, 4, "modem"}, {USB_DEVICE_IS_HUB_ENUM_DEF, 2, "hub"},
        {USB_DEVICE_CLASS_ENUM_DEF, 11, "usb"}, {POINTING_DEVICE_TYPE_ENUM_DEF, 9, "pointing"},
        {HWSEC_POP_ENUM_DEF, 4, "pop"}, {KOR_ATTRIB_SMBIOS_ENCLOSURE_TYPE_ENUM_DEF, 25, "enclosure"},
    };
    for (const auto& e : enums) {
        EXPECT_EQ(entries(e.table), e.count) << e.name;
        EXPECT_EQ(e.table[e.count].text, nullptr) << e.name;
        std::set<uint32_t> values;
        for (const korEnumDef* v = e.table; v->value != KOR_END; ++v)
            EXPECT_TRUE(values.insert(v->value).second) << e.name << " repeats " << v->value;
    }
    EXPECT_STREQ(PROCESSOR_FAMILY_ENUM_DEF[35].text, "Alpah 21064");

}

}  // namespace
