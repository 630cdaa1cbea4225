#pragma once
// "ComponentID": the machine's identity in one row, from the SMBIOS table,
// else Solaris sysinfo values and the PROM's banner name. The row is always
// produced, with empty strings where nothing was found.
#include <string>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class KorTable;

class INVSCAN_API ComponentIDGroup : public KorGroup {
public:
    ComponentIDGroup();
    KorTable* getTable() override;
    // The root node's "banner-name" from the PROM device: a new string the
    // caller frees, or null.
    static char* getBanner();
};

struct ComponentIdentity {
    std::string manufacturer, product, serial, type, hwSerial, platform;
};

// The type a platform name gives: what follows its first comma when that
// comes within 32 characters, at most 32 characters; "" otherwise.
std::string typeFromPlatform(const std::string& platform);
void shapeComponentIdRow(const ComponentIdentity& id, KorTable& table);
