#include "invscan/solaris/storage/PartitionToStorageGroup.h"

#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/storage/DiskScanTree.h"
#include "common/util/ApiGuard.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/PartitionToStorageGroup";
const char* const kFunction = "getTable()";
}  // namespace

PartitionToStorageGroup::PartitionToStorageGroup() : KorGroup(PARTITION_TO_STORAGE_GROUP, 1) {}

KorTable* PartitionToStorageGroup::getTable()
{
    return api::guardedTable("PartitionToStorageGroup::getTable()", [&]() -> KorTable* {
        const int log = getCcLogHw();
        CcLogWrapper::traceMidEntry(log, __LINE__, kSource, kFunction, "hardware %s", "PartitionToStorageGroup");
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        const VtNode* info = diskScanInfo(kSource, kFunction);
        const VtNode* partitions = info ? info->getChild("PartitionTable", 0) : nullptr;
        if (info && !partitions)
            CcLogWrapper::traceMIN(log, __LINE__, kSource, kFunction, "%s", "ERROR! Failed to get partition table");
        unsigned long index = 0;
        forEachChild(partitions, "Partition", [&](int p, const VtNode* partition) {
            const char* name = textOf(partition, "Name");
            CcLogWrapper::traceMAX(log, __LINE__, kSource, kFunction, "Partition #%d: name=%s mount=%s type=%s", p, name,
                                   textOf(partition, "Mount"), textOf(partition, "Type"));
            forEachChild(partition, "Disk", [&](int d, const VtNode* disk) {
                const char* id = textOf(disk, "Id");
                CcLogWrapper::traceMAX(log, __LINE__, kSource, kFunction, "Partition #%d Disk #%d: id=%s", p, d, id);
                RowBuilder row(PARTITION_TO_STORAGE_GROUP);
                row.number(P2S_INDEX, index++);
                row.text(P2S_PARTITION_ACCESS_POINT, name);
                row.text(P2S_STORAGE_DEVICE, id);
                row.addTo(*table);
            });
        });
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, kFunction, "hardware %s%p", "table=", static_cast<void*>(table));
        return table;
    });
}

INVSCAN_REGISTER_GROUP(PARTITION_TO_STORAGE_GROUP, PartitionToStorageGroup);
