#pragma once
// "SAN Adapter": the host bus adapter ports of the diskscan probe's tree.
#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class INVSCAN_API SANAdapterGroup : public KorGroup {
public:
    SANAdapterGroup();
    // Never null: empty when the probe or its tree failed.
    KorTable* getTable() override;
};
