#pragma once
// Stand-alone logging to standard error, for code that runs without the
// framework's tracing.
#include "invscan/com/Export.h"

extern "C" {
// Exported switch for the host or a debugger; off by default.
INVSCAN_API extern int debug_on;

// Local time as "%Y-%m-%dT%H:%M:%S", malloc'ed; the empty text when
// formatting fails. The caller frees it.
char* getLocalDatetime();
// Writes "<time> <file>(<line>) - " (or "<file>(<line>) - " without a time).
void logprefix(const char* file, int line);
// Writes the formatted text unchanged: no prefix, no line end.
void logprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
}
