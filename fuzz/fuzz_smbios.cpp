// The SMBIOS structure walk over any table bytes, reading every string of
// every structure the way the type 1 reader does.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "common/util/smbios.h"

namespace {
int readStrings(const unsigned char* structure, const char* strings, void* total)
{
    // Every string number a formatted byte could hold, as a reader might ask.
    for (unsigned i = 4; i < structure[1]; ++i)
        *static_cast<size_t*>(total) += std::strlen(getString_SMBIOS(strings, structure[i]));
    return 0;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2 || size > 0xFFFF + 2) return 0;
    SMBIOS_Locator locator{};
    // A copy of exactly the table's length, so any read past it is caught.
    locator.tableLength = static_cast<int>(size - 2);
    locator.structureCount = data[0] | (data[1] << 8);
    locator.table = static_cast<unsigned char*>(std::malloc(size - 2 ? size - 2 : 1));
    std::memcpy(locator.table, data + 2, size - 2);
    size_t total = 0;
    scan_SMBIOS(&locator, readStrings, &total);
    free_SMBIOS(&locator);
    return 0;
}
