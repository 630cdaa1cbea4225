#pragma once
// The two probe programs, each run at most once per process; every group
// reads their cached trees.
#include "common/vartree/vtexec.h"

VtExecInfo* getCpuidVT();
VtExecInfo* getDiskScanVT();

namespace probes {
// Forgets the cached results (the records are freed): for tests that run
// several scripted probes in one process.
void resetCacheForTests();
}  // namespace probes
