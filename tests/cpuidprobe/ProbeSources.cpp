// The probe is a program, not a library: its pure parts (no platform file,
// no main) are compiled into this test directly.
#include "probes/cpuid/Collect.cpp"
#include "probes/cpuid/Decoder.cpp"
#include "probes/cpuid/Firmware.cpp"
#include "probes/cpuid/Shape.cpp"
