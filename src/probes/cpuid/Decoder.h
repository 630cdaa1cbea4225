#pragma once
// Pure decoding of CPUID register values into packages, cores and threads.
// Nothing here runs the instruction: the input is what each logical
// processor answered, so captures from other machines decode the same way.
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cpuid {

struct Regs {
    uint32_t eax = 0;
    uint32_t ebx = 0;
    uint32_t ecx = 0;
    uint32_t edx = 0;
};

// What one logical processor answered, by (leaf, subleaf). Leaves that were
// not asked read as all zeros.
class CpuDump {
public:
    void set(uint32_t leaf, uint32_t subleaf, const Regs& regs) { m_regs[{leaf, subleaf}] = regs; }
    Regs get(uint32_t leaf, uint32_t subleaf = 0) const;
    bool empty() const { return m_regs.empty(); }
    const std::map<std::pair<uint32_t, uint32_t>, Regs>& all() const { return m_regs; }

    uint32_t maxBasic() const { return get(0).eax; }
    // 0 when the extended range is absent (old parts answer garbage there).
    uint32_t maxExtended() const;
    std::string vendor() const;

private:
    std::map<std::pair<uint32_t, uint32_t>, Regs> m_regs;
};

// Where one logical processor sits.
struct Placement {
    uint32_t apicId = 0;
    uint32_t package = 0;
    uint32_t core = 0;    // unique within its package
    uint32_t thread = 0;  // within its core
};

struct Package {
    uint32_t id = 0;                 // package field of the APIC id
    std::vector<size_t> processors;  // indexes into the decoder's input
    int cores = 0;                   // distinct cores seen
    int threadsPerCore = 0;          // the most threads seen on one core
    int logicalCount = 0;

    // Identity, from the package's first logical processor.
    std::string vendor;
    std::string brand;  // blanks trimmed and runs collapsed
    uint32_t signature = 0;  // leaf 1 EAX
    uint32_t family = 0;
    uint32_t model = 0;
    uint32_t stepping = 0;
    uint32_t type = 0;
    uint32_t brandId = 0;   // leaf 1 EBX[7:0]
    uint32_t extBrand = 0;  // leaf 0x80000001 EBX[15:0]
    bool is64bit = false;
    std::vector<std::string> features;
    uint32_t l2KB = 0;
    uint32_t l3KB = 0;
};

struct Decoded {
    std::vector<Package> packages;  // in ascending package id
    std::vector<Placement> placements;  // one per input processor
    int logicalCount = 0;
    bool hypervisor = false;          // leaf 1 ECX bit 31
    std::string hypervisorVendor;     // leaf 0x40000000 signature
    std::string hypervisorInterface;  // leaf 0x40000001 EAX, when it is text
};

// Family, model and stepping of a leaf 1 EAX value, decoded the standard
// way: extended family only when the base family is 0xF, extended model
// for family 6 and 0xF and above.
void decodeSignature(uint32_t eax, uint32_t& family, uint32_t& model, uint32_t& stepping);

// The 48-character brand string of leaves 0x80000002-4, cleaned up; "" when
// the part has none.
std::string brandString(const CpuDump& dump);

// The topology fields of one logical processor.
Placement placeOf(const CpuDump& dump);

// Feature names in the usual lower-case spelling.
std::vector<std::string> featureNames(const CpuDump& dump);

// L2 and L3 size in KB (0 when unknown).
void cacheSizes(const CpuDump& dump, uint32_t& l2KB, uint32_t& l3KB);

// The whole machine. Processors with no answers at all are left out of the
// counts.
Decoded decode(const std::vector<CpuDump>& processors);

}  // namespace cpuid
