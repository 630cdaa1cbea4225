// What the OS seam says of its choices reaches the hardware trace at the
// medium level.
#include "common/sys/SeamNote.h"
#include "framework/Trace.h"

namespace {

void traceSeamNote(const char* text)
{
    CcLogWrapper::traceMID(getCcLogHw(), __LINE__, "./../../../src/common/sys/System", "seam", "hardware %s", text);
}

const bool installed = (sys::setNoteSink(&traceSeamNote), true);

}  // namespace
