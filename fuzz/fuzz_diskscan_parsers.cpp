// The diskscan probe's readers of mount tables, "fcinfo hba-port",
// "zpool status" and "metastat -p" output, over any text.
#include <cstddef>
#include <cstdint>
#include <string>

// The probe is a program, not a library: its pure readers are compiled in.
#include "probes/diskscan/Parsers.cpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    (void)diskscan::parseMountInfo(text);
    (void)diskscan::parseSolarisMounts(text);
    (void)diskscan::parseFcinfoHbaPort(text);
    (void)diskscan::parseZpoolStatus(text);
    (void)diskscan::parseMetastat(text);
    return 0;
}
