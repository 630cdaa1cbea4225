// Linked into every test program: INVSCAN_CALL_FORMS=solaris10 makes the
// seam use the forms it has for Solaris 10 (fork and exec, close-on-exec set
// after the open, a stream from a temporary file) on this machine too, so
// the suites that start children run once with each.
#include <cstdlib>
#include <cstring>

#include "common/sys/Portable.h"

namespace {
const bool g_forms = [] {
    const char* forms = std::getenv("INVSCAN_CALL_FORMS");
    if (forms && std::strcmp(forms, "solaris10") == 0) sys::useCallForms(sys::CallForms::Solaris10);
    return true;
}();
}  // namespace
