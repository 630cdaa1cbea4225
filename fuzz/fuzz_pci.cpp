// The PCI Device group over any "prtconf -pv" output and any PCI id
// database: the device tree's PCI functions, then their names looked up line
// by line in the database, as a scan does on a simulated machine answering
// with the input.
#include <cstddef>
#include <cstdint>
#include <memory>

#include "FuzzedAnswers.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/PCIDeviceGroup.h"

// The high bit of the first byte: the database is where older systems keep
// it (the first place has none).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::vector<fuzzed::Answer> answers = {
        {fuzzed::Answer::Run, "prtconf -pv"},
        {fuzzed::Answer::File, "/usr/share/hwdata/pci.ids"},
    };
    fuzzed::Machine m = fuzzed::answering(data, size, answers);
    if (m.highBit) {
        m.os->files["/usr/share/misc/pci.ids"] = m.os->files["/usr/share/hwdata/pci.ids"];
        m.os->files.erase("/usr/share/hwdata/pci.ids");
    }
    std::unique_ptr<KorTable> table(PCIDeviceGroup().getTable());
    return 0;
}
