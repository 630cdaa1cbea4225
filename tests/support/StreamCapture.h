#pragma once
// Redirects a standard stream (stderr or stdout) into a temporary file for
// the lifetime of the object; text() returns what was written so far.
#include <cstdio>
#include <string>

namespace testsupport {

class StreamCapture {
public:
    explicit StreamCapture(FILE* stream = stderr);
    ~StreamCapture();
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;
    std::string text();

private:
    FILE* m_stream;
    FILE* m_file;
    int m_saved;
};

}  // namespace testsupport
