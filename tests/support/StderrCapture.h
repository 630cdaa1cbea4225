#pragma once
// Redirects standard error into a temporary file for the lifetime of the
// object; text() returns what was written so far.
#include <cstdio>
#include <string>

namespace testsupport {

class StderrCapture {
public:
    StderrCapture();
    ~StderrCapture();
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;
    std::string text();

private:
    FILE* m_file;
    int m_saved;
};

}  // namespace testsupport
