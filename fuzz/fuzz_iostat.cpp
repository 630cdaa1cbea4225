// The CD/DVD reader over any "iostat -En" output.
#include <cstddef>
#include <cstdint>
#include <string>

#include "invscan/com/KorTable.h"
#include "invscan/solaris/StorageGroup.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string output(reinterpret_cast<const char*>(data), size);
    char names[][16] = {"c0t0d0s2", "c1t2d3s0", "c0t0d0", ""};
    int index = 0;
    for (char* name : names) delete reportCDROMs(name, &index, output);
    return 0;
}
