#pragma once
// A temporary folder removed with everything in it when the object dies,
// with helpers to write files and executable scripts into it.
#include <string>

namespace testsupport {

class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    // Writes `content` at path()/relative, creating folders on the way.
    std::string write(const std::string& relative, const std::string& content, int mode = 0644) const;
    // A "#!/bin/sh" script.
    std::string script(const std::string& relative, const std::string& body) const;

private:
    std::string m_path;
};

// Sets an environment variable for a scope, restoring the old value after.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    std::string m_name, m_old;
    bool m_had;
};

// The whole text of a file; empty when it cannot be read.
std::string readFile(const std::string& path);

// Open descriptors of this process.
int openDescriptorCount();
// True when this process has a child that has ended but was not reaped.
bool hasZombieChild();

}  // namespace testsupport
