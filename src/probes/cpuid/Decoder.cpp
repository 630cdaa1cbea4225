#include "probes/cpuid/Decoder.h"

#include <algorithm>

namespace cpuid {

namespace {

constexpr uint32_t kExtBase = 0x80000000u;
constexpr uint32_t kHvBase = 0x40000000u;

uint32_t bits(uint32_t value, unsigned low, unsigned count)
{
    return (value >> low) & ((count >= 32) ? 0xFFFFFFFFu : ((1u << count) - 1u));
}

uint32_t mask(unsigned width) { return width >= 32 ? 0xFFFFFFFFu : ((1u << width) - 1u); }

unsigned ceilLog2(uint32_t n)
{
    unsigned width = 0;
    while (width < 32 && (uint64_t{1} << width) < n) ++width;
    return width;
}

void appendRegText(std::string& out, uint32_t reg)
{
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<char>((reg >> (8 * i)) & 0xFF));
}

// Up to the first NUL.
std::string cText(const std::string& raw) { return raw.substr(0, raw.find('\0')); }

std::string collapseBlanks(const std::string& text)
{
    std::string out;
    for (char c : text) {
        bool blank = (c == ' ' || c == '\t');
        if (blank) {
            if (!out.empty() && out.back() != ' ') out.push_back(' ');
        } else {
            out.push_back(c);
        }
    }
    while (!out.empty() && out.back() == ' ') out.pop_back();
    return out;
}

bool isAmdLike(const std::string& vendor)
{
    return vendor == "AuthenticAMD" || vendor == "HygonGenuine";
}

Placement compose(uint32_t apic, unsigned smtShift, unsigned pkgShift)
{
    if (pkgShift < smtShift) pkgShift = smtShift;
    Placement p;
    p.apicId = apic;
    p.thread = apic & mask(smtShift);
    p.core = smtShift >= 32 ? 0 : (apic >> smtShift) & mask(pkgShift - smtShift);
    p.package = pkgShift >= 32 ? 0 : apic >> pkgShift;
    return p;
}

// Leaf 0x1F or 0xB: SMT shift from the SMT level, package shift from the
// highest level listed.
bool placeByExtendedTopology(const CpuDump& dump, uint32_t leaf, Placement& out)
{
    if (dump.maxBasic() < leaf || bits(dump.get(leaf, 0).ebx, 0, 16) == 0) return false;
    unsigned smtShift = 0;
    unsigned pkgShift = 0;
    bool any = false;
    for (uint32_t sub = 0; sub < 32; ++sub) {
        Regs r = dump.get(leaf, sub);
        uint32_t type = bits(r.ecx, 8, 8);
        if (type == 0) break;
        unsigned shift = bits(r.eax, 0, 5);
        if (type == 1) smtShift = shift;
        pkgShift = std::max(pkgShift, shift);
        any = true;
    }
    if (!any) return false;
    out = compose(dump.get(leaf, 0).edx, smtShift, pkgShift);
    return true;
}

// Leaf 1 EBX[23:16] is the number of addressable ids, not a count of
// threads, and only meaningful with the HTT flag.
uint32_t addressableLogical(const Regs& leaf1)
{
    if (!(leaf1.edx & (1u << 28))) return 1;
    uint32_t n = bits(leaf1.ebx, 16, 8);
    return n == 0 ? 1 : n;
}

Placement placeIntelLegacy(const CpuDump& dump)
{
    Regs l1 = dump.get(1);
    uint32_t logical = addressableLogical(l1);
    uint32_t cores = dump.maxBasic() >= 4 ? bits(dump.get(4, 0).eax, 26, 6) + 1 : 1;
    uint32_t perCore = logical > cores ? logical / cores : 1;
    unsigned smtWidth = ceilLog2(perCore);
    unsigned coreWidth = ceilLog2(cores);
    return compose(bits(l1.ebx, 24, 8), smtWidth, smtWidth + coreWidth);
}

Placement placeAmd(const CpuDump& dump)
{
    Regs l1 = dump.get(1);
    uint32_t family = 0, model = 0, stepping = 0;
    decodeSignature(l1.eax, family, model, stepping);
    uint32_t maxExt = dump.maxExtended();

    uint32_t apic = bits(l1.ebx, 24, 8);
    uint32_t threadsPerCore = 1;
    // Before family 0x17 leaf 0x8000001E EBX[15:8] counts cores per compute
    // unit, not threads.
    if (family >= 0x17 && maxExt >= 0x8000001Eu) {
        Regs topo = dump.get(0x8000001Eu);
        threadsPerCore = bits(topo.ebx, 8, 8) + 1;
        // The 32-bit id, when it agrees with the 8-bit one.
        if ((topo.eax & 0xFF) == apic) apic = topo.eax;
    }
    unsigned pkgShift;
    if (maxExt >= 0x80000008u) {
        Regs r = dump.get(0x80000008u);
        uint32_t size = bits(r.ecx, 12, 4);
        pkgShift = size != 0 ? size : ceilLog2(bits(r.ecx, 0, 8) + 1);
    } else {
        pkgShift = ceilLog2(addressableLogical(l1));
    }
    return compose(apic, ceilLog2(threadsPerCore), pkgShift);
}

struct FeatureBit {
    uint32_t leaf;
    int reg;  // 0 eax, 1 ebx, 2 ecx, 3 edx
    unsigned bit;
    const char* name;
};

const FeatureBit kFeatures[] = {
    {1, 3, 0, "fpu"}, {1, 3, 1, "vme"}, {1, 3, 2, "de"}, {1, 3, 3, "pse"},
    {1, 3, 4, "tsc"}, {1, 3, 5, "msr"}, {1, 3, 6, "pae"}, {1, 3, 7, "mce"},
    {1, 3, 8, "cx8"}, {1, 3, 9, "apic"}, {1, 3, 11, "sep"}, {1, 3, 12, "mtrr"},
    {1, 3, 13, "pge"}, {1, 3, 14, "mca"}, {1, 3, 15, "cmov"}, {1, 3, 16, "pat"},
    {1, 3, 17, "pse36"}, {1, 3, 18, "pn"}, {1, 3, 19, "clflush"}, {1, 3, 21, "ds"},
    {1, 3, 22, "acpi"}, {1, 3, 23, "mmx"}, {1, 3, 24, "fxsr"}, {1, 3, 25, "sse"},
    {1, 3, 26, "sse2"}, {1, 3, 27, "ss"}, {1, 3, 28, "ht"}, {1, 3, 29, "tm"},
    {1, 3, 31, "pbe"},
    {1, 2, 0, "sse3"}, {1, 2, 1, "pclmulqdq"}, {1, 2, 2, "dtes64"}, {1, 2, 3, "monitor"},
    {1, 2, 4, "ds_cpl"}, {1, 2, 5, "vmx"}, {1, 2, 6, "smx"}, {1, 2, 7, "est"},
    {1, 2, 8, "tm2"}, {1, 2, 9, "ssse3"}, {1, 2, 12, "fma"}, {1, 2, 13, "cx16"},
    {1, 2, 14, "xtpr"}, {1, 2, 15, "pdcm"}, {1, 2, 17, "pcid"}, {1, 2, 18, "dca"},
    {1, 2, 19, "sse4_1"}, {1, 2, 20, "sse4_2"}, {1, 2, 21, "x2apic"}, {1, 2, 22, "movbe"},
    {1, 2, 23, "popcnt"}, {1, 2, 24, "tsc_deadline_timer"}, {1, 2, 25, "aes"},
    {1, 2, 26, "xsave"}, {1, 2, 27, "osxsave"}, {1, 2, 28, "avx"}, {1, 2, 29, "f16c"},
    {1, 2, 30, "rdrand"}, {1, 2, 31, "hypervisor"},
    {7, 1, 0, "fsgsbase"}, {7, 1, 3, "bmi1"}, {7, 1, 4, "hle"}, {7, 1, 5, "avx2"},
    {7, 1, 7, "smep"}, {7, 1, 8, "bmi2"}, {7, 1, 9, "erms"}, {7, 1, 10, "invpcid"},
    {7, 1, 11, "rtm"}, {7, 1, 16, "avx512f"}, {7, 1, 17, "avx512dq"}, {7, 1, 18, "rdseed"},
    {7, 1, 19, "adx"}, {7, 1, 20, "smap"}, {7, 1, 23, "clflushopt"}, {7, 1, 24, "clwb"},
    {7, 1, 28, "avx512cd"}, {7, 1, 29, "sha_ni"}, {7, 1, 30, "avx512bw"}, {7, 1, 31, "avx512vl"},
    {7, 2, 1, "avx512vbmi"}, {7, 2, 8, "gfni"}, {7, 2, 9, "vaes"}, {7, 2, 10, "vpclmulqdq"},
    {7, 2, 11, "avx512_vnni"},
    {0x80000001u, 3, 11, "syscall"}, {0x80000001u, 3, 20, "nx"}, {0x80000001u, 3, 22, "mmxext"},
    {0x80000001u, 3, 25, "fxsr_opt"}, {0x80000001u, 3, 26, "pdpe1gb"}, {0x80000001u, 3, 27, "rdtscp"},
    {0x80000001u, 3, 29, "lm"}, {0x80000001u, 3, 30, "3dnowext"}, {0x80000001u, 3, 31, "3dnow"},
    {0x80000001u, 2, 0, "lahf_lm"}, {0x80000001u, 2, 1, "cmp_legacy"}, {0x80000001u, 2, 2, "svm"},
    {0x80000001u, 2, 5, "abm"}, {0x80000001u, 2, 6, "sse4a"}, {0x80000001u, 2, 8, "3dnowprefetch"},
    {0x80000001u, 2, 11, "xop"}, {0x80000001u, 2, 16, "fma4"},
};

uint32_t regOf(const Regs& r, int which)
{
    switch (which) {
    case 0: return r.eax;
    case 1: return r.ebx;
    case 2: return r.ecx;
    default: return r.edx;
    }
}

bool leafAvailable(const CpuDump& dump, uint32_t leaf)
{
    if (leaf >= kExtBase) return dump.maxExtended() >= leaf;
    return dump.maxBasic() >= leaf;
}

void describe(const CpuDump& dump, Package& pkg)
{
    pkg.vendor = dump.vendor();
    Regs l1 = dump.get(1);
    pkg.signature = l1.eax;
    decodeSignature(l1.eax, pkg.family, pkg.model, pkg.stepping);
    pkg.type = bits(l1.eax, 12, 2);
    pkg.brandId = bits(l1.ebx, 0, 8);
    uint32_t maxExt = dump.maxExtended();
    if (maxExt >= 0x80000001u) {
        Regs e1 = dump.get(0x80000001u);
        pkg.extBrand = bits(e1.ebx, 0, 16);
        pkg.is64bit = (e1.edx & (1u << 29)) != 0;
    }
    pkg.brand = brandString(dump);
    pkg.features = featureNames(dump);
    cacheSizes(dump, pkg.l2KB, pkg.l3KB);
}

}  // namespace

Regs CpuDump::get(uint32_t leaf, uint32_t subleaf) const
{
    auto it = m_regs.find({leaf, subleaf});
    return it == m_regs.end() ? Regs{} : it->second;
}

uint32_t CpuDump::maxExtended() const
{
    uint32_t e = get(kExtBase).eax;
    return (e >= kExtBase && e <= 0x8000FFFFu) ? e : 0;
}

std::string CpuDump::vendor() const
{
    Regs r = get(0);
    std::string raw;
    appendRegText(raw, r.ebx);
    appendRegText(raw, r.edx);
    appendRegText(raw, r.ecx);
    return cText(raw);
}

void decodeSignature(uint32_t eax, uint32_t& family, uint32_t& model, uint32_t& stepping)
{
    uint32_t baseFamily = bits(eax, 8, 4);
    family = baseFamily == 0xF ? baseFamily + bits(eax, 20, 8) : baseFamily;
    model = bits(eax, 4, 4);
    if (baseFamily == 0x6 || baseFamily == 0xF) model |= bits(eax, 16, 4) << 4;
    stepping = bits(eax, 0, 4);
}

std::string brandString(const CpuDump& dump)
{
    if (dump.maxExtended() < 0x80000004u) return "";
    std::string raw;
    for (uint32_t leaf = 0x80000002u; leaf <= 0x80000004u; ++leaf) {
        Regs r = dump.get(leaf);
        appendRegText(raw, r.eax);
        appendRegText(raw, r.ebx);
        appendRegText(raw, r.ecx);
        appendRegText(raw, r.edx);
    }
    return collapseBlanks(cText(raw));
}

Placement placeOf(const CpuDump& dump)
{
    Placement p;
    if (isAmdLike(dump.vendor())) return placeAmd(dump);
    if (placeByExtendedTopology(dump, 0x1F, p)) return p;
    if (placeByExtendedTopology(dump, 0xB, p)) return p;
    return placeIntelLegacy(dump);
}

std::vector<std::string> featureNames(const CpuDump& dump)
{
    std::vector<std::string> names;
    for (const FeatureBit& f : kFeatures) {
        if (!leafAvailable(dump, f.leaf)) continue;
        if (regOf(dump.get(f.leaf, 0), f.reg) & (1u << f.bit)) names.emplace_back(f.name);
    }
    return names;
}

void cacheSizes(const CpuDump& dump, uint32_t& l2KB, uint32_t& l3KB)
{
    l2KB = 0;
    l3KB = 0;
    bool amd = isAmdLike(dump.vendor());
    if (!amd && dump.maxBasic() >= 4) {
        for (uint32_t sub = 0; sub < 32; ++sub) {
            Regs r = dump.get(4, sub);
            uint32_t type = bits(r.eax, 0, 5);
            if (type == 0) break;
            if (type != 1 && type != 3) continue;  // instruction caches
            uint64_t size = uint64_t{bits(r.ebx, 22, 10) + 1} * (bits(r.ebx, 12, 10) + 1) *
                            (bits(r.ebx, 0, 12) + 1) * (uint64_t{r.ecx} + 1);
            auto kb = static_cast<uint32_t>(size / 1024);
            uint32_t level = bits(r.eax, 5, 3);
            if (level == 2) l2KB = std::max(l2KB, kb);
            if (level == 3) l3KB = std::max(l3KB, kb);
        }
    }
    if (dump.maxExtended() >= 0x80000006u) {
        Regs r = dump.get(0x80000006u);
        if (l2KB == 0) l2KB = bits(r.ecx, 16, 16);
        // Only AMD fills the L3 field, in 512 KB units.
        if (amd && l3KB == 0) l3KB = bits(r.edx, 18, 14) * 512;
    }
}

Decoded decode(const std::vector<CpuDump>& processors)
{
    Decoded out;
    out.placements.resize(processors.size());
    // package id -> index in out.packages; core id -> processors on it.
    std::map<uint32_t, std::map<uint32_t, int>> coresOf;
    std::map<uint32_t, Package> byId;
    for (size_t i = 0; i < processors.size(); ++i) {
        const CpuDump& dump = processors[i];
        if (dump.empty()) continue;
        Placement p = placeOf(dump);
        out.placements[i] = p;
        ++out.logicalCount;
        auto found = byId.find(p.package);
        if (found == byId.end()) {
            Package pkg;
            pkg.id = p.package;
            describe(dump, pkg);
            found = byId.emplace(p.package, std::move(pkg)).first;
        }
        found->second.processors.push_back(i);
        ++coresOf[p.package][p.core];

        if (out.logicalCount == 1 && (dump.get(1).ecx & (1u << 31))) {
            out.hypervisor = true;
            Regs hv = dump.get(kHvBase);
            std::string sig;
            appendRegText(sig, hv.ebx);
            appendRegText(sig, hv.ecx);
            appendRegText(sig, hv.edx);
            out.hypervisorVendor = cText(sig);
            if (hv.eax >= kHvBase + 1 && hv.eax < kHvBase + 0x10000) {
                std::string iface;
                appendRegText(iface, dump.get(kHvBase + 1).eax);
                bool text = std::all_of(iface.begin(), iface.end(),
                                        [](char c) { return c >= 0x20 && c < 0x7F; });
                if (text) out.hypervisorInterface = iface;
            }
        }
    }
    for (auto& [id, pkg] : byId) {
        const auto& cores = coresOf[id];
        pkg.cores = static_cast<int>(cores.size());
        pkg.logicalCount = static_cast<int>(pkg.processors.size());
        pkg.threadsPerCore = 0;
        for (const auto& core : cores) pkg.threadsPerCore = std::max(pkg.threadsPerCore, core.second);
        out.packages.push_back(std::move(pkg));
    }
    return out;
}

}  // namespace cpuid
