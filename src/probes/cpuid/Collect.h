#pragma once
// Asking a processor for its CPUID leaves, and writing what it said.
#include <cstdint>
#include <functional>
#include <string>

#include "probes/cpuid/Decoder.h"

namespace cpuid {

using Query = std::function<Regs(uint32_t leaf, uint32_t subleaf)>;

// Every leaf and subleaf the decoder reads, within the limits the processor
// reports, plus the hypervisor leaves when one is announced.
CpuDump collect(const Query& query);

// Whether this build can run the CPUID instruction at all.
bool haveInstruction();
// The instruction on whatever processor the caller runs on (zeros without it).
Regs instruction(uint32_t leaf, uint32_t subleaf);

// "CPU n:" then one "   0xleaf 0xsub: eax=0x... ebx=0x... ecx=0x... edx=0x..."
// line per register set: the raw format of the etallen cpuid tool, so a
// debug log can be read back as a capture.
std::string rawText(const CpuDump& dump, int cpu);

}  // namespace cpuid
