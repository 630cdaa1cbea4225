#pragma once
// The one check of the operating system's API level. Solaris 10 is the
// oldest system we run on; Solaris 11.4 added the calls that open a
// descriptor closed-on-exec in one step (O_CLOEXEC, pipe2), let a spawned
// child close every descriptor above its standard three, and read a stream
// from memory (fmemopen). Where a call is missing the seam has a Solaris 10
// form of it, and the Linux build runs that form too, in tests.
//
// A Solaris build says it targets 11.4 or later by defining
// INVSCAN_SOLARIS_11_4 (CMake does, from the system headers); otherwise it
// gets the Solaris 10 forms only.
#if defined(__linux__) || (defined(__sun) && defined(INVSCAN_SOLARIS_11_4))
#define INVSCAN_MODERN_POSIX 1
#else
#define INVSCAN_MODERN_POSIX 0
#endif
