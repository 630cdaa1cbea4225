#pragma once
// String and command helpers, exported with the library. Byte strings only;
// character classes are those of the POSIX locale. Only strtok and the stream
// form of get_token keep state between calls (process-wide, not reentrant).
#include <cstdio>
#include <map>
#include <string>

#include "invscan/com/Export.h"

class INVSCAN_API Toolbox {
public:
    Toolbox() = delete;

    // Three-way comparison of lower-cased copies.
    static int stricmp(const std::string& a, const std::string& b);
    // First case-insensitive occurrence of `needle`; null when either is null or empty.
    static const char* strcasestr(const char* haystack, const char* needle);
    // True and `out` set when strtol/strtoul consumed at least one character.
    static bool str2long(const char* text, long& out, int base);
    static bool str2ulong(const char* text, unsigned long& out, int base);
    // 1, 0 or -1 over major*10000 + minor*100 + third; a null, empty,
    // unparsable or all-zero version compares as -1 (so "1.100" equals "2.0").
    static int compareVersions(const char* a, const char* b);
    static std::string trim(const char* text);
    // The next blank-separated token from `pos`, which moves past it.
    static std::string get_token(const char* text, int& pos);
    // The next token of a stream in one shared 99-character buffer, or null;
    // a token that fills the buffer is lost, a partial last one carried over.
    static const char* get_token(FILE* stream);
    // Token-by-token match; "%name" captures (twice: joined by a blank).
    // Fills "matched" and "rest" too.
    static bool match(const char* text, const char* pattern, std::map<std::string, std::string>& values);
    static std::string replace(const char* text, const char* what, const char* with);
    // The next `delimiter`-separated field of the last text given (null: go
    // on with it); false when exhausted. A NUL delimiter gives the whole text.
    static bool strtok(const char* text, char delimiter, std::string& out);
    // The first output line of a shell command, its line end included.
    static bool getCmdValue(const char* command, std::string& out);
    static bool getCmdValue2(const char* command, std::string& out);
    static bool pathExists(const char* path);
    static bool getZoneName(std::string& out);
    // True whenever the command gave a line, even one that is no number.
    static bool getZoneId(long& id);
};
