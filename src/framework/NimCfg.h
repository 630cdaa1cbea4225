#pragma once
// Process-wide key=value configuration of the framework.
#include <string>
#include "framework/String.h"

class NimCfg {
public:
    // The configured value, empty when the key is absent.
    static String getKey(const String& key);
    static void setKey(const String& key, const String& value);
    static bool hasKey(const String& key);
    // Loads "key = value" lines; '#' starts a comment line, blank lines are
    // skipped, white space around key and value is dropped. Later keys win.
    // Returns false (with a reason in *error) when the file cannot be read or
    // a line has no '='; the lines before the bad one stay loaded.
    static bool loadFile(const std::string& path, std::string* error = nullptr);
    // Parses "KEY=VALUE" as given on a command line.
    static bool setFromAssignment(const std::string& assignment);
    static void clear();

    // "hwscanner.timeout": the seconds a command or probe may run, 1 to
    // 86400; DEFAULT_TIMEOUT when absent, and when invalid (traced).
    static int getTimeout();
    static constexpr int DEFAULT_TIMEOUT = 600;
    static constexpr int MAX_TIMEOUT = 86400;
};
