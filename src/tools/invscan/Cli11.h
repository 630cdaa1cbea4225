#pragma once
// CLI11, included here only. It names a template parameter SS, which
// Solaris's <sys/regset.h> (reached from <stdlib.h>) defines as the number
// of a register; nothing of ours uses the register names.
#include <cstdlib>
#undef SS
#include <CLI/CLI.hpp>
