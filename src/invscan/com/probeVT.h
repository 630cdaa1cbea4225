#pragma once
// The two probe programs, each run at most once per process; every group
// reads their cached trees.
#include "common/vartree/vtexec.h"

VtExecInfo* getCpuidVT();
VtExecInfo* getDiskScanVT();
