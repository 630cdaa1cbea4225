#include "support/StderrCapture.h"

#include <unistd.h>

namespace testsupport {

StderrCapture::StderrCapture() : m_file(tmpfile()), m_saved(-1)
{
    fflush(stderr);
    if (!m_file) return;
    m_saved = dup(fileno(stderr));
    dup2(fileno(m_file), fileno(stderr));
}

StderrCapture::~StderrCapture()
{
    fflush(stderr);
    if (m_saved >= 0) {
        dup2(m_saved, fileno(stderr));
        close(m_saved);
    }
    if (m_file) fclose(m_file);
}

std::string StderrCapture::text()
{
    fflush(stderr);
    if (!m_file) return std::string();
    std::string out;
    rewind(m_file);
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, m_file)) > 0) out.append(buffer, n);
    return out;
}

}  // namespace testsupport
