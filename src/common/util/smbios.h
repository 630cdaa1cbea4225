#pragma once
// A small reader of the SMBIOS (DMI) table of an x86 machine, read from
// physical memory through the memory device: the entry point is looked for in
// the BIOS area, the structures are walked, and the System Information
// structure (type 1) gives the machine's identity. C-style: strings returned
// through pointers are heap copies the caller frees.
#include <cstdint>

// Where the table is, filled by find_SMBIOS; `table` is the caller's to free
// with free_SMBIOS.
struct SMBIOS_Locator {
    int smbiosMajor;
    int smbiosMinor;
    int dmiMajor;
    int dmiMinor;
    int tableLength;
    uint32_t tableAddress;
    unsigned char* table;
    int structureCount;
};

// The structure, its string set, and the caller's context; non-zero stops the walk.
typedef int (*SMBIOS_Callback)(const unsigned char* structure, const char* strings, void* context);

const uint32_t SMBIOS_BIOS_AREA = 0xF0000;
const uint32_t SMBIOS_BIOS_AREA_LENGTH = 0x10000;

unsigned int getInt16_SMBIOS(const unsigned char* p);
uint32_t getInt32_SMBIOS(const unsigned char* p);
// The n-th string (from 1) of a string set; "" for n < 1 or past the last.
const char* getString_SMBIOS(const char* strings, int n);
// 0 when the "_DMI_" entry point was found and its table copied, else -1.
int find_SMBIOS(SMBIOS_Locator* locator);
void free_SMBIOS(SMBIOS_Locator* locator);
// -1 without a table; else walks at most structureCount structures, ending
// at the first one that would run past the table.
int scan_SMBIOS(const SMBIOS_Locator* locator, SMBIOS_Callback callback, void* context);
// The 4 characters after "[" (when more than 4 follow), or the first 4 of a
// 7-character product without "["; "" otherwise. Returns `out` (5 bytes).
char* getTypeFromProd(const char* product, char* out);
// 1 and the first 4 of the exactly 7 characters in "-[...]-" of a "Zyx"
// product; 0 otherwise, `out` untouched.
int getTypeFromProd_Vantor(const char* manufacturer, const char* product, char* out);
// 0 and five heap strings, or -1 when no table was found (nothing allocated).
int SMBIOS_GetSystemInfo(char** manufacturer, char** product, char** machineType, char** version, char** serial);
// Diagnostic: unless `flag`, writes smbios_<index>.txt (hex dump), smbios_<index>.raw and smbios.bin.
void dump_smbios(int index, const unsigned char* data, unsigned long length, int flag);
