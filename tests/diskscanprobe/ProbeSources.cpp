// The probe is a program, not a library: its pure parts and the Linux
// gathering step (which takes any sysfs root) are compiled in directly.
#include "probes/diskscan/Parsers.cpp"
#include "probes/diskscan/Scan.cpp"
#include "probes/diskscan/platform_linux.cpp"
#include "probes/diskscan/RawDisks.cpp"
