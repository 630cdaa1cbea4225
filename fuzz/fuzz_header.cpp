// A probe's whole output: the response header, then its dump.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/vartree/vtexec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    VtIStream_Memory in(std::string(reinterpret_cast<const char*>(data), size));
    delete vtParseProgramOutput(&in);
    return 0;
}
