// The CD/DVD reader over any "iostat -En" output.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/sys/System.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/storage/StorageGroup.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string output(reinterpret_cast<const char*>(data), size);
    StorageScan scan(sys::current());
    StorageFacts facts;
    for (const char* name : {"c0t0d0s2", "c1t2d3s0", "c0t0d0", ""}) {
        StorageDevice drive;
        if (scan.reportCDROMs(name, output, drive)) facts.devices.push_back(drive);
    }
    KorTable table(5, 1);
    shapeStorageRows(facts, table);
    return 0;
}
