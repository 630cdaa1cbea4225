#pragma once
// Runs code that would block forever if it were wrong (a read of a FIFO
// without a writer) in a child process that an alarm ends, so that such a
// test fails instead of hanging.
#include <functional>
#include <string>

namespace testsupport {

// `body`'s result (0-255) from a forked child; -1 when the child was killed,
// by the alarm after `seconds` or otherwise.
int inGuardedChild(const std::function<int()>& body, unsigned seconds = 60);

// The text `body` returns, made in a forked child (a process of its own: the
// probes' results are kept for the life of a process) and sent back through
// a pipe. `ended` is false, with the raw status, when the child did not end
// with status 0 (it crashed, or a sanitizer found a leak at its exit; with
// `leakCheck` false the child ends without the exit handlers that check).
struct ChildText {
    bool ended = false;
    int status = 0;
    std::string text;
};
ChildText textFromChild(const std::function<std::string()>& body, bool leakCheck = true);

}  // namespace testsupport
