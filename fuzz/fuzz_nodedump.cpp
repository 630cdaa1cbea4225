// Node dumps are outside input: any bytes must parse or fail cleanly.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/vartree/vtree.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Small pieces exercise the refill path of the line splitter.
    const unsigned chunk = size ? 1u + data[0] % 64u : 1u;
    VtIStream_Memory in(std::string(reinterpret_cast<const char*>(data), size), chunk);
    VtILineStream lines(&in);
    delete vtParseNodeDump(&lines);
    return 0;
}
