// The probe is a program, not a library: its pure parts are compiled into
// this test directly.
#include "probes/cpuid/Decoder.cpp"
