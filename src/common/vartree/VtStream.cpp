#include "common/vartree/VtStream.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

int VtIStream_Unix::read(char* buffer, unsigned int length)
{
    if (m_fd == -1) return -1;
    ssize_t n;
    do {
        n = ::read(m_fd, buffer, length);
    } while (n < 0 && errno == EINTR);
    return static_cast<int>(n);
}

void VtIStream_Unix::close()
{
    if (m_fd != -1) ::close(m_fd);
    m_fd = -1;
}

int VtOStream_Unix::write(char* buffer, unsigned int length)
{
    if (m_fd == -1) return -1;
    return static_cast<int>(::write(m_fd, buffer, length));
}

void VtOStream_Unix::close()
{
    if (m_fd != -1) ::close(m_fd);
    m_fd = -1;
}

int VtIStream_Memory::read(char* buffer, unsigned int length)
{
    size_t n = m_text.size() - m_at;
    if (n > length) n = length;
    if (n > m_chunk) n = m_chunk;
    std::memcpy(buffer, m_text.data() + m_at, n);
    m_at += n;
    return static_cast<int>(n);
}
