// The cpuid probe's decoding of register dumps into packages, cores and
// threads, its tree, and its reader of the firmware's SMBIOS tables.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

// The probe is a program, not a library: its pure parts are compiled in.
#include "probes/cpuid/Decoder.cpp"
#include "probes/cpuid/Firmware.cpp"
#include "probes/cpuid/Shape.cpp"

namespace {

// The leaves the decoder reads; a record's selector byte picks one, or
// gives its own leaf number when past the list.
const uint32_t kLeaves[] = {0x0,        0x1,        0x2,        0x4,        0x7,        0xB,
                            0x1F,       0x40000000, 0x40000001, 0x80000000, 0x80000001, 0x80000002,
                            0x80000003, 0x80000004, 0x80000006, 0x80000008, 0x8000001E};

uint32_t word(const uint8_t* p)
{
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

}  // namespace

// Input: a first byte that splits off firmware bytes at the end (its value
// times 4 of them: entry point, then table), then 19-byte records: the
// processor (low 3 bits), the leaf selector, the subleaf, and EAX, EBX,
// ECX, EDX.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) return 0;
    size_t firmware = static_cast<size_t>(data[0]) * 4;
    if (firmware > size - 1) firmware = size - 1;
    const uint8_t* records = data + 1;
    const size_t recordBytes = size - 1 - firmware;

    cpuid::Machine machine;
    machine.processors.resize(8);
    for (size_t i = 0; i + 19 <= recordBytes; i += 19) {
        const uint8_t* r = records + i;
        const size_t n = sizeof kLeaves / sizeof kLeaves[0];
        const uint32_t leaf = r[1] < n ? kLeaves[r[1]] : (r[1] & 0x80 ? 0x80000000u : 0u) + (r[1] & 0x3F);
        machine.processors[r[0] & 7].dump.set(leaf, r[2], {word(r + 3), word(r + 7), word(r + 11), word(r + 15)});
    }
    // Processors nothing was said of are not there.
    std::vector<cpuid::LogicalProcessor> present;
    for (size_t i = 0; i < machine.processors.size(); ++i)
        if (!machine.processors[i].dump.empty()) present.push_back(machine.processors[i]), present.back().osId = int(i);
    machine.processors = present;
    machine.onlineCount = static_cast<int>(present.size());

    const std::string fw(reinterpret_cast<const char*>(data + 1 + recordBytes), firmware);
    const size_t entry = fw.size() < 32 ? fw.size() : 32;
    machine.firmware = cpuid::parseFirmware(fw.substr(0, entry), fw.substr(entry));
    (void)cpuid::virtualizationFromFirmware(machine.firmware);
    (void)cpuid::brandFromFirmware(machine.firmware);

    std::vector<cpuid::CpuDump> dumps;
    for (const cpuid::LogicalProcessor& p : machine.processors) dumps.push_back(p.dump);
    const cpuid::Decoded decoded = cpuid::decode(dumps);
    std::unique_ptr<VtNode> root(cpuid::buildTree(machine, decoded));
    return 0;
}
