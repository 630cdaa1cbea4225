#pragma once
// "PartitionToStorage": which disk holds each mounted file system, from the
// diskscan probe's partition table; a mirror gives one row per disk.
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class INVSCAN_API PartitionToStorageGroup : public KorGroup {
public:
    PartitionToStorageGroup();
    // Never null: empty when the probe or its tree failed.
    KorTable* getTable() override;
};
