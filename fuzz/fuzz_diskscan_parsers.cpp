// The diskscan probe's readers of mount tables, "fcinfo hba-port",
// "zpool status" and "metastat -p" output, over any text.
#include <cstddef>
#include <cstdint>
#include <string>

// The probe is a program, not a library: its pure readers are compiled in.
#include "probes/diskscan/Parsers.cpp"

// Input: a byte that picks the reader, then its text. Seeds are whole
// captures: their first byte picks one reader, their rest reads as text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 5) {
    case 0: (void)diskscan::parseMountInfo(text); break;
    case 1: (void)diskscan::parseSolarisMounts(text); break;
    case 2: (void)diskscan::parseFcinfoHbaPort(text); break;
    case 3: (void)diskscan::parseZpoolStatus(text); break;
    default: (void)diskscan::parseMetastat(text); break;
    }
    return 0;
}
