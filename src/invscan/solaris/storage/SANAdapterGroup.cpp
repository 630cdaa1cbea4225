#include "invscan/solaris/storage/SANAdapterGroup.h"

#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/KorTable.h"
#include "invscan/com/RowBuilder.h"
#include "invscan/solaris/storage/DiskScanTree.h"
#include "common/util/ApiGuard.h"

namespace {
const char* const kSource = "./../../../src/invscan/solaris/SANAdapterGroup";
const char* const kFunction = "getTable()";
}  // namespace

SANAdapterGroup::SANAdapterGroup() : KorGroup(SAN_ADAPTER_GROUP, 1) {}

KorTable* SANAdapterGroup::getTable()
{
    return api::guardedTable("SANAdapterGroup::getTable()", [&]() -> KorTable* {
        const int log = getCcLogHw();
        CcLogWrapper::traceMidEntry(log, __LINE__, kSource, kFunction, "hardware %s", "SANAdapterGroup");
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        const VtNode* info = diskScanInfo(kSource, kFunction);
        const VtNode* hbas = info ? info->getChild("HbaTable", 0) : nullptr;
        if (info && !hbas) CcLogWrapper::traceMIN(log, __LINE__, kSource, kFunction, "%s", "ERROR! Failed to get hba table");
        forEachChild(hbas, "HBA", [&](int h, const VtNode* hba) {
            const char* id = textOf(hba, "Id");
            const char* description = textOf(hba, "Description");
            const char* vendor = textOf(hba, "Vendor");
            const char* model = textOf(hba, "Model");
            const char* type = textOf(hba, "Type");  // traced, not stored
            const char* serial = textOf(hba, "Serial");
            const char* speed = textOf(hba, "Speed");
            const char* state = textOf(hba, "State");
            const char* wwnn = textOf(hba, "WWNN");
            const char* wwpn = textOf(hba, "WWPN");
            CcLogWrapper::traceMAX(log, __LINE__, kSource, kFunction,
                                   "Adding hba #%d: id=%s desc=%s vendor=%s model=%s type=%s serial=%s speed=%s state=%s "
                                   "wwnn=%s wwpn=%s",
                                   h, id, description, vendor, model, type, serial, speed, state, wwnn, wwpn);
            RowBuilder row(SAN_ADAPTER_GROUP);
            row.number(SAN_INDEX, h);
            row.text(SAN_ID, id);
            row.text(SAN_DESCRIPTION, description);
            row.text(SAN_WWNN, wwnn);
            row.text(SAN_WWPN, wwpn);
            row.text(SAN_MANUFACTURER, vendor);
            row.text(SAN_MODEL, model);
            row.text(SAN_SERIAL_NUMBER, serial);
            row.text(SAN_STATE, state);
            row.text(SAN_SPEED, speed);
            row.addTo(*table);
        });
        CcLogWrapper::traceMidExit(log, __LINE__, kSource, kFunction, "hardware %s%p", "table=", static_cast<void*>(table));
        return table;
    });
}

INVSCAN_REGISTER_GROUP(SAN_ADAPTER_GROUP, SANAdapterGroup);
