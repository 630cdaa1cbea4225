#include "common/sys/System.h"

namespace sys {
namespace {
System* g_replacement = nullptr;
}

System& current() { return g_replacement ? *g_replacement : platform(); }

void setCurrent(System* replacement) { g_replacement = replacement; }

}  // namespace sys
