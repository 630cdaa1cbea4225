#pragma once
// "Storage": the machine's hard disks, CD/DVD drives, floppy and PCMCIA
// device. Disks come from walking the raw-disk directory and asking each
// device (disk controls, then the SCSI layer); a disk seen under several
// names (slices, multipath) is reported once. CD/DVD drives come from the
// output of "iostat -En".
#include <string>

#include "invscan/com/Export.h"
#include "invscan/com/KorGroup.h"

class KorTableRow;

class INVSCAN_API StorageGroup : public KorGroup {
public:
    StorageGroup();
    // Null when no disk and no CD/DVD row was found, even if a floppy or
    // PCMCIA row was: such a table is discarded on purpose.
    KorTable* getTable() override;
};

// One raw device path to a disk row, or null. `*notCdFlag` is set to 0 on
// entry; `*ioError` to 1 when the open failed with an I/O error.
KorTableRow* reportPhysHardDisk(char* charDevPath, int* index, int* notCdFlag, int* ioError);
// One raw-disk directory entry to a CD/DVD row, or null: the drive must be
// in "iostat -En" output (held in memory, read from its start per device)
// without a medium.
KorTableRow* reportCDROMs(char* name, int* index, const std::string& iostatOutput);
KorTableRow* reportFloppy(int* index);
KorTableRow* reportPCMCIA(int* index);

// The disks reported in this scan, by serial (or, without one, by the digest
// of their controller description). A key that is the prefix of a recorded
// one counts as found: kept so on purpose.
int addPreviousDisks(char* md5id, char* serial);
int foundPreviousDisks(char* md5id, char* serial);
void clearPreviousDisks();

// 1 while a backup program ("save", "recover", "nsrclone", "nsrstage") runs.
int isUltrium_tape_LT4772_running();
// 1 when the first occurrence of `name` in `line` runs exactly to the line's end.
int getExactMatch(char* line, char* name);
