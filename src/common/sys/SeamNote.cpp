#include "common/sys/SeamNote.h"

namespace sys {

namespace {
NoteSink g_sink = nullptr;
}

void setNoteSink(NoteSink sink) { g_sink = sink; }

void note(const char* text)
{
    if (g_sink && text) g_sink(text);
}

}  // namespace sys
