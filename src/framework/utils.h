#pragma once
// Text helpers of the framework.
#include <cstdio>
#include <string>
#include "framework/String.h"

namespace utils {

// White space (blank, tab, CR, LF, VT, FF) removed from both ends.
std::string trimBoth(const std::string& text);
std::wstring trimBoth(const std::wstring& text);
void trimBothInPlace(std::string& text);
void trimBothInPlace(std::wstring& text);

// Parses a decimal number with '.' as the decimal mark whatever the locale.
// Leading and trailing white space is allowed; anything else fails.
bool charToDouble(const char* text, double& value);

// UTF-8 to wide text; invalid sequences become U+FFFD.
std::wstring utf8ToWideChar(const std::string& text);
std::string stringToUTF8(const std::wstring& text);
std::string stringToUTF8(const String& text);

std::string toLower(const std::string& text);  // ASCII letters only
std::wstring toLower(const std::wstring& text);

// POSIX extended regular expression. True when `text` matches; `firstGroup`
// receives the first parenthesised group (empty when it has none or did not take part).
bool regexMatch(const std::string& text, const std::string& pattern, std::string& firstGroup);

// "1F" or "0x1f" -> "31". Empty for empty, invalid or over-64-bit input.
std::string hexToDecimal(const std::string& hex);

// Opens a configuration file for reading, only when it is a regular file:
// a FIFO, a device (/dev/zero) or a folder gives null with errno set (a FIFO
// without a writer would block the open, so it is opened without waiting).
std::FILE* openRegularFile(const std::string& path);

}  // namespace utils

class File {
public:
    // The platform's path separator, as wide text.
    static const wchar_t* const pathSeparator;
};
