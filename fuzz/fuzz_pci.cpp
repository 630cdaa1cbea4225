// The PCI Device readers over any text: the PCI functions of "prtconf -pv"
// output, then their names looked up in a PCI id database read line by line
// through a simulated machine (the first place it is looked for, or with
// the first byte's high bit the second), and the rows shaped.
#include <cstddef>
#include <cstdint>

#include "FuzzedAnswers.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/KorTable.h"
#include "invscan/solaris/system/PCIDeviceGroup.h"

// Input: a byte, then the prtconf output, a NUL byte and the database.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0) return 0;
    const std::vector<std::string> text = fuzzed::parts(data, size, 2);
    const std::vector<PciFunction> functions = parsePromNodes(fuzzed::lines(text[0]));
    if (functions.empty()) return 0;
    fuzzed::AfterInput after;
    fuzzed::QuietSystem& os = fuzzed::QuietSystem::fresh();
    os.files[(data[0] & 0x80) ? "/usr/share/misc/pci.ids" : "/usr/share/hwdata/pci.ids"] = text[1];
    PciNames names;
    lookUpPciNames(os, functions, names);
    KorTable table(PCI_DEVICE_GROUP, 1);
    shapePciRows(functions, names, table);
    return 0;
}
