#pragma once
// Which class serves which group id. Each group class registers itself from
// its own source file, so the factory needs no list of every class.
class KorGroup;

using GroupCreator = KorGroup* (*)();

// Returns true; a second registration of the same id replaces the first.
bool registerGroupClass(unsigned long groupId, GroupCreator create);
// Null when no class is registered for the id.
GroupCreator findGroupClass(unsigned long groupId);

#define INVSCAN_REGISTER_GROUP(groupId, Class)                                 \
    static const bool Class##_registered_ =                                    \
        registerGroupClass((groupId), []() -> KorGroup* { return new Class(); })

// Facts some groups share within one scan register how to forget them; the
// factory's endScan calls each, so the next scan reads the machine anew.
using ScanEndHook = void (*)();
bool registerScanEnd(ScanEndHook forget);
void runScanEndHooks();

#define INVSCAN_AT_SCAN_END(forget) static const bool forget##_at_scan_end_ = registerScanEnd(forget)
