#pragma once
// Calls that Solaris 10 lacks, in one form for every system we build on.
#include <cstddef>
#include <cstdio>

namespace sys {

// The length of `text` up to its first NUL, at most `bound` (strnlen).
std::size_t boundedLength(const char* text, std::size_t bound);

// A malloc'ed, NUL-terminated copy of at most `bound` bytes of `text`
// (strndup); the caller frees it. Null when memory is short.
char* boundedCopy(const char* text, std::size_t bound);

// open(2) with the descriptor closed on exec (O_CLOEXEC where the system has
// it, else FD_CLOEXEC set at once after the open). -1 with errno on failure.
int openCloexec(const char* path, int flags, int mode = 0);

// Marks an open descriptor closed-on-exec; 0 or an errno.
int setCloexec(int fd);

// A read-only stream over `size` bytes of `data`, which the caller keeps
// until the stream is closed (fmemopen where the system has it, else a copy
// in an unlinked temporary file). Null with errno on failure.
std::FILE* memoryStream(const char* data, std::size_t size);

// Which forms the seam uses: the system's own calls where it has them, or
// the Solaris 10 forms. Tests switch to the Solaris 10 forms on Linux so
// that they are not code only a Solaris machine runs. Not for hosts.
enum class CallForms { Native, Solaris10 };
void useCallForms(CallForms forms);
CallForms callForms();

}  // namespace sys
