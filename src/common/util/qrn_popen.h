#pragma once
// Running a command with its output read line by line without blocking, and
// an overall time-out after which the command is killed.
#include "invscan/com/Export.h"

extern "C" {
// Arguments after `file` end with a null pointer. Null when a pipe or the
// process cannot be made, or with more than QRN_MAX_ARGS arguments.
INVSCAN_API void* qrn_popen(char const* file, int timeoutSeconds, ...);
// 1: a line is in buf; 0: nothing yet, call again; -1: finished or killed.
INVSCAN_API int qrn_pgets(char* buf, int size, void* handle);
INVSCAN_API void qrn_pclose(void* handle);
}

enum { QRN_MAX_ARGS = 256 };
