#pragma once
// The one way this library starts a child process. The command runner, the
// shell pipes (popen), the probe runner and the command pipes with time-out
// all start their children here, so each child alike:
// - runs in a process group of its own, so a time-out ends whatever it started;
// - sees LC_ALL=C, so its output reads the same on every machine;
// - has default signal dispositions and an empty signal mask, whatever the
//   host set for itself;
// - inherits only its three standard descriptors;
// - is started without fork in the host: nothing runs between the two that a
//   threaded host could deadlock on.
#include <sys/types.h>

#include <string>
#include <vector>

namespace sys {

// What a child's standard descriptor is: a descriptor of the caller's, the
// null device, or nothing at all.
enum : int { SPAWN_NULL = -1, SPAWN_CLOSED = -2 };

struct SpawnRequest {
    std::vector<std::string> argv;  // argv[0] names the program
    bool searchPath = false;        // look argv[0] up on PATH; else it is a path
    int stdinFd = SPAWN_NULL;
    int stdoutFd = SPAWN_NULL;
    int stderrFd = SPAWN_NULL;
};

// Starts the child; its pid in `*pid`. 0, or the errno of what failed: then no
// child exists (a program that cannot be executed is reported here).
int spawn(const SpawnRequest& request, pid_t* pid);

// A pipe whose ends are closed on exec; 0 or an errno.
int makePipe(int fds[2]);

// Kills the child and everything in its process group.
void killGroup(pid_t pid);

// Waits for the child, retrying on interruption; true with its raw status.
bool reap(pid_t pid, int* status);
// As reap, but gives up (false, the child left running) once `deadlineMs` of
// monotonicMillis() has passed; -1: no deadline.
bool reapBy(pid_t pid, int* status, long long deadlineMs);

long long monotonicMillis();

// Closes a descriptor that is not -1 and sets it to -1.
void closeFd(int& fd);

}  // namespace sys
