#include <gtest/gtest.h>

#include "invscan/com/KorGroup.h"
#include "invscan/com/KorTable.h"

namespace {

KorTableRow* rowWith(unsigned n)
{
    auto* row = new KorTableRow;
    for (unsigned i = 1; i <= n; ++i) row->addAttrib(new KorTableAttrib(i, i));
    return row;
}

TEST(Iteration, EndIsStickyUntilReset)
{
    KorTable table(3, 1);
    EXPECT_EQ(table.getNext(), nullptr);  // empty: the cursor stays put
    KorTableRow* first = rowWith(1);
    KorTableRow* second = rowWith(2);
    table.addRow(first);
    table.addRow(second);
    EXPECT_EQ(table.getNext(), first);
    EXPECT_EQ(table.getNext(), second);
    EXPECT_EQ(table.getNext(), nullptr);
    EXPECT_EQ(table.getNext(), nullptr);  // no wrap-around
    table.addRow(rowWith(0));             // appending does not move the cursor...
    EXPECT_NE(table.getNext(), nullptr);  // ...but the next step sees the new row
    EXPECT_EQ(table.reset(), 1);
    EXPECT_EQ(table.getNext(), first);

    second->reset();
    KorTableAttrib* a = second->getNext();
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(a->getId(), 1u);
    EXPECT_EQ(second->getNext()->getId(), 2u);
    EXPECT_EQ(second->getNext(), nullptr);
    EXPECT_EQ(second->getNext(), nullptr);
}

TEST(Iteration, NullRowsAreRefusedNullAttribsCounted)
{
    KorTable table(3, 1);
    EXPECT_EQ(table.addRow(nullptr), 0);
    EXPECT_EQ(table.getRowCount(), 0u);
    auto* row = new KorTableRow;
    EXPECT_EQ(row->addAttrib(nullptr), 1);
    EXPECT_EQ(row->getNumAttribs(), 1u);
    EXPECT_EQ(table.addRow(row), 1);
    EXPECT_EQ(table.getRowCount(), 1u);
}

TEST(Table, NamesIdsAndTimestamp)
{
    const long before = static_cast<long>(time(nullptr));
    KorTable processor(2, 1);
    EXPECT_STREQ(processor.getGroupName(), "Processor");
    EXPECT_EQ(processor.getGroupDefinitionFromId(), getGroupDefinitionFromId(2));
    EXPECT_GE(processor.getTimeStamp(), before);
    const korGroupDef emptyDefs[] = {{KOR_END, nullptr, nullptr, nullptr, 0, 0, 0}};
    EXPECT_STREQ(KorTable(emptyDefs, 2, 1).getGroupName(), "Unknown");
}

class NullGroup : public KorGroup {
public:
    NullGroup() : KorGroup(3, 1) {}
    KorTable* getTable() override { return nullptr; }
};

TEST(Group, ExtraTablesBoundsAndMobility)
{
    NullGroup group;
    EXPECT_EQ(group.getGroupName().narrow(), "Memory");
    KorTable a(3, 1), b(3, 1);
    group.addExtraTable(&a);
    group.addExtraTable(&b);
    EXPECT_EQ(group.getExtraTableCount(), 2);
    EXPECT_EQ(group.getExtraTable(0), &a);
    EXPECT_EQ(group.getExtraTable(1), &b);
    EXPECT_EQ(group.getExtraTable(-1), nullptr);
    EXPECT_EQ(group.getExtraTable(2), nullptr);
    EXPECT_EQ(group.getMobilityFlag(), 0);
    group.setMobilityFlag(1);
    EXPECT_EQ(group.getMobilityFlag(), 1);
}

}  // namespace
