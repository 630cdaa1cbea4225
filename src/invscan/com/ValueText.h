#pragma once
// A decoded value as text: the one conversion the diagnostic dump, the
// command line and the tests' table text share. Not shown to hosts.
#include <cstddef>
#include <string>

#include "invscan/com/KorValue.h"

// How a real is written.
enum class RealForm {
    Fixed,   // "%f": six decimals, the diagnostic dump's
    Short,   // "%.6g": the command line's
    Exact,   // "%.9g": enough digits to tell any two floats apart
};
// `value` in `form`, with a '.' whatever the locale's decimal point: what a
// host reads back must not follow the locale.
std::string realText(double value, RealForm form);
// Upper-case hexadecimal, two digits a byte.
std::string hexText(const unsigned char* bytes, size_t length);
// Numbers in decimal (a type-4 value as its 8 bytes), reals in `realForm`,
// strings in UTF-8 with code points no encoding carries as U+FFFD, octets in
// hexadecimal, a date-time its 26 characters or nothing when it was never set.
std::string korValueText(const KorValue& value, RealForm realForm);
