#pragma once
// Scans a simulated machine through the group factory, as a host does, in a
// child process of its own: the probes run once per process, and a leak or
// crash fails that scan alone.
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace testsupport {

// The machine's every built group in catalogue order ("== NAME", then its
// table as text or "no table"), then "== Zone", what the zone reader makes of
// it, then, only when something is wrong, "== Problems": "CATALOGUE:",
// "LEAK:", "PROBE RUN", "COMMAND RUN", "UNTRACED SCAN DIFFERS" lines, and
// "TRACE MISSING:" for each line of the folder's trace.txt that did not come.
// False with `result` saying why when the scan crashed or leaked memory.
bool scanMachineInChild(const std::string& dir, std::string& result);

// The section of a scan's text that follows "== NAME", up to the next "== ".
std::string groupSection(const std::string& scan, const std::string& name);

// A scan's text (or an expected file) as its sections, in order: each
// "== NAME" and the lines up to the next one.
using Sections = std::vector<std::pair<std::string, std::string>>;
Sections sectionsOf(const std::string& scan);
// The text of section NAME, null when there is none.
const std::string* sectionOf(const Sections& sections, const std::string& name);

// tests/machines/defaults.txt: what a machine that answers nothing gives,
// for the sections where that is not "no table".
std::string defaultsFile();
// What a machine gives for section NAME unless its expected file lists it:
// the section of defaults.txt, else "no table".
std::string defaultSection(const std::string& name);
// What the machine in `dir` must give for section NAME: the section of its
// expected.txt, else the default.
std::string expectedSection(const std::string& dir, const std::string& name);
// The sections whose text is not `byDefault`'s for their name, as an
// expected file holds them.
std::string sectionsText(const Sections& sections, const std::function<std::string(const std::string&)>& byDefault);

}  // namespace testsupport
