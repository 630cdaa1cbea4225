#include "probes/cpuid/Collect.h"

#include <algorithm>
#include <cstdio>

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#define CPUID_HAVE_INSTRUCTION 1
#endif

namespace cpuid {

namespace {

// Bounds against processors (and hypervisors) that report nonsense maxima.
constexpr uint32_t kBasicLimit = 0x3F;
constexpr uint32_t kExtLimit = 0x80000028u;
constexpr uint32_t kHvLimit = 0x40000010u;
constexpr uint32_t kSubleafLimit = 64;

// Subleaves up to and including the one `last` says ends the list.
void collectSubleaves(const Query& query, CpuDump& dump, uint32_t leaf,
                      bool (*last)(const Regs&))
{
    for (uint32_t sub = 0; sub < kSubleafLimit; ++sub) {
        Regs r = query(leaf, sub);
        dump.set(leaf, sub, r);
        if (last(r)) break;
    }
}

bool cacheListEnd(const Regs& r) { return (r.eax & 0x1F) == 0; }
bool topologyListEnd(const Regs& r) { return ((r.ecx >> 8) & 0xFF) == 0; }

}  // namespace

CpuDump collect(const Query& query)
{
    CpuDump dump;
    Regs r0 = query(0, 0);
    dump.set(0, 0, r0);
    uint32_t maxBasic = std::min(r0.eax, kBasicLimit);
    for (uint32_t leaf = 1; leaf <= maxBasic; ++leaf) {
        switch (leaf) {
        case 0x4:
            collectSubleaves(query, dump, leaf, cacheListEnd);
            break;
        case 0xB:
        case 0x1F:
            collectSubleaves(query, dump, leaf, topologyListEnd);
            break;
        case 0x7: {
            Regs r = query(leaf, 0);
            dump.set(leaf, 0, r);
            for (uint32_t sub = 1; sub <= std::min(r.eax, uint32_t{7}); ++sub) dump.set(leaf, sub, query(leaf, sub));
            break;
        }
        default:
            dump.set(leaf, 0, query(leaf, 0));
        }
    }

    if (maxBasic >= 1 && (dump.get(1).ecx & (1u << 31))) {
        Regs hv = query(0x40000000u, 0);
        dump.set(0x40000000u, 0, hv);
        if (hv.eax > 0x40000000u && hv.eax < 0x40010000u) {
            for (uint32_t leaf = 0x40000001u; leaf <= std::min(hv.eax, kHvLimit); ++leaf)
                dump.set(leaf, 0, query(leaf, 0));
        }
    }

    Regs e0 = query(0x80000000u, 0);
    if (e0.eax >= 0x80000000u && e0.eax <= 0x8000FFFFu) {
        dump.set(0x80000000u, 0, e0);
        uint32_t maxExt = std::min(e0.eax, kExtLimit);
        for (uint32_t leaf = 0x80000001u; leaf <= maxExt; ++leaf) {
            if (leaf == 0x8000001Du)
                collectSubleaves(query, dump, leaf, cacheListEnd);
            else
                dump.set(leaf, 0, query(leaf, 0));
        }
    }
    return dump;
}

#ifdef CPUID_HAVE_INSTRUCTION
bool haveInstruction() { return __get_cpuid_max(0, nullptr) != 0; }

Regs instruction(uint32_t leaf, uint32_t subleaf)
{
    unsigned a = 0, b = 0, c = 0, d = 0;
    __cpuid_count(leaf, subleaf, a, b, c, d);
    return Regs{a, b, c, d};
}
#else
bool haveInstruction() { return false; }
Regs instruction(uint32_t, uint32_t) { return Regs{}; }
#endif

std::string rawText(const CpuDump& dump, int cpu)
{
    std::string out = "CPU " + std::to_string(cpu) + ":\n";
    char line[128];
    for (const auto& [key, r] : dump.all()) {
        std::snprintf(line, sizeof line, "   0x%08x 0x%02x: eax=0x%08x ebx=0x%08x ecx=0x%08x edx=0x%08x\n",
                      static_cast<unsigned>(key.first), static_cast<unsigned>(key.second),
                      static_cast<unsigned>(r.eax), static_cast<unsigned>(r.ebx),
                      static_cast<unsigned>(r.ecx), static_cast<unsigned>(r.edx));
        out += line;
    }
    return out;
}

}  // namespace cpuid
