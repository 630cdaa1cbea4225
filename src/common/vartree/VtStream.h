#pragma once
// Byte streams the probe runner reads and writes: file descriptors, and an
// in-memory source for parsing captured text.
#include <string>

class VtIStream {
public:
    virtual ~VtIStream() = default;
    // Bytes read, 0 at the end, negative on error.
    virtual int read(char* buffer, unsigned int length) = 0;
    virtual void close() {}
};

class VtOStream {
public:
    virtual ~VtOStream() = default;
    virtual int write(char* buffer, unsigned int length) = 0;
    virtual void close() {}
};

class VtIStream_Unix : public VtIStream {
public:
    explicit VtIStream_Unix(int fd) : m_fd(fd) {}
    ~VtIStream_Unix() override { close(); }
    int read(char* buffer, unsigned int length) override;
    void close() override;
    int fd() const { return m_fd; }

private:
    int m_fd;
};

class VtOStream_Unix : public VtOStream {
public:
    explicit VtOStream_Unix(int fd) : m_fd(fd) {}
    ~VtOStream_Unix() override { close(); }
    int write(char* buffer, unsigned int length) override;
    void close() override;

private:
    int m_fd;
};

// Reads a text held in memory, in pieces of at most `chunk` bytes (tests use
// small pieces to cross buffer edges).
class VtIStream_Memory : public VtIStream {
public:
    explicit VtIStream_Memory(std::string text, unsigned int chunk = 65536)
        : m_text(std::move(text)), m_chunk(chunk ? chunk : 1)
    {
    }
    int read(char* buffer, unsigned int length) override;

private:
    std::string m_text;
    size_t m_at = 0;
    unsigned int m_chunk;
};
