#pragma once
// Scans a simulated machine through the group factory, as a host does, in a
// child process of its own: the probes run once per process, and a leak or
// crash fails that scan alone.
#include <string>

namespace testsupport {

// The machine's every built group in catalogue order (its table as text or
// "no table"), then what the zone reader makes of it, then the problems found:
// "CATALOGUE:", "LEAK:", "PROBE RUN", "UNTRACED SCAN DIFFERS" and "TRACE
// MISSING:" lines for each line of the folder's trace.txt that did not come.
// False with `result` saying why when the scan crashed or leaked memory.
bool scanMachineInChild(const std::string& dir, std::string& result);

// The section of a scan's text that follows "== NAME", up to the next "== ".
std::string groupSection(const std::string& scan, const std::string& name);

}  // namespace testsupport
