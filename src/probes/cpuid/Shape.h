#pragma once
// Turns the decoded machine into the tree the scanner reads.
#include <string>

#include "common/vartree/vtree.h"
#include "probes/cpuid/Decoder.h"
#include "probes/cpuid/Platform.h"

namespace cpuid {

// The processor line named in the brand string ("Xeon", "Core", "EPYC",
// ...), or "Unknown".
std::string familyName(const std::string& brand);

// A root named "" holding "ProcessorTable" (one "Processor" per package, in
// package order) and, when a hypervisor announces itself, "Hypervisor".
// `decoded` must come from the dumps of `machine.processors`, in order.
// The caller deletes the root.
VtNode* buildTree(const Machine& machine, const Decoded& decoded);

// The root's children in node-dump form on standard output.
void printTree(const VtNode* root);

}  // namespace cpuid
