#include "support/StreamCapture.h"

#include <unistd.h>

namespace testsupport {

StreamCapture::StreamCapture(FILE* stream) : m_stream(stream), m_file(tmpfile()), m_saved(-1)
{
    fflush(m_stream);
    if (!m_file) return;
    m_saved = dup(fileno(m_stream));
    dup2(fileno(m_file), fileno(m_stream));
}

StreamCapture::~StreamCapture()
{
    fflush(m_stream);
    if (m_saved >= 0) {
        dup2(m_saved, fileno(m_stream));
        close(m_saved);
    }
    if (m_file) fclose(m_file);
}

std::string StreamCapture::text()
{
    fflush(m_stream);
    if (!m_file) return std::string();
    std::string out;
    rewind(m_file);
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, m_file)) > 0) out.append(buffer, n);
    return out;
}

}  // namespace testsupport
