#pragma once
// The two probe programs, each run at most once per process; every group
// reads their cached trees.
#include "common/vartree/vtexec.h"

VtExecInfo* getCpuidVT();
VtExecInfo* getDiskScanVT();

// True when a group can read the probe's tree; otherwise traces, under the
// calling group's source and function, why not ("[E] Cannot execute VT
// command" or "[E] VT command returned %d data=%p") and gives false.
bool vtResultUsable(VtExecInfo* info, const char* source, const char* function);
