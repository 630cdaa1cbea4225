#pragma once
// The one way this library starts a child process. The command runner, the
// shell pipes (popen), the probe runner and the command pipes with time-out
// all start their children here, so each child alike:
// - runs in a process group of its own, so a time-out ends whatever it started;
// - sees LC_ALL=C, so its output reads the same on every machine;
// - has default signal dispositions and an empty signal mask, whatever the
//   host set for itself;
// - inherits only its three standard descriptors;
// - runs nothing of ours between fork and exec that is not async-signal-safe,
//   so a threaded host cannot deadlock it.
// Two forms: posix_spawn with a close-from action where the system has one
// (Linux, Solaris 11.4), else fork and exec with every descriptor above 2
// closed by the child (Solaris 10). See ApiLevel.h.
//
// A host may ignore SIGCHLD or reap children of its own: then a child's exit
// status is gone before we ask for it. Such a child is never signalled again
// (its pid may be another's by then), and reaping it says so.
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
// child exists (a program that cannot be found or executed is reported here).
int spawn(const SpawnRequest& request, pid_t* pid);

// A pipe whose ends are closed on exec; 0 or an errno.
int makePipe(int fds[2]);

// Kills the child and everything in its process group, if the child is still
// ours (running, or ended and not yet reaped); a child reaped by someone else
// is left alone.
void killGroup(pid_t pid);

// What became of a child.
enum class Child {
    Exited,   // ended; its raw status was taken
    Running,  // still running when we stopped waiting
    Gone      // its status was taken by someone else (SIGCHLD ignored, a reaper)
};

// Waits for the child, retrying on interruption: Exited (with its raw status)
// or Gone.
Child reap(pid_t pid, int* status);
// As reap, but stops waiting (Running, the child left running) once
// `deadlineMs` of monotonicMillis() has passed; -1: no deadline, 0: just look.
Child reapBy(pid_t pid, int* status, long long deadlineMs);

long long monotonicMillis();

// Closes a descriptor that is not -1 and sets it to -1.
void closeFd(int& fd);

}  // namespace sys
