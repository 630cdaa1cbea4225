#pragma once
// Runs code that would block forever if it were wrong (a read of a FIFO
// without a writer) in a child process that an alarm ends, so that such a
// test fails instead of hanging.
#include <functional>

namespace testsupport {

// `body`'s result (0-255) from a forked child; -1 when the child was killed,
// by the alarm after `seconds` or otherwise.
int inGuardedChild(const std::function<int()>& body, unsigned seconds = 60);

}  // namespace testsupport
