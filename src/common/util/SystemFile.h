#pragma once
// Small system files (release banners, defaults, the PCI id database) read
// through the OS seam, so a test or a replay can answer them.
#include <cstddef>
#include <functional>
#include <string>

namespace sys {
class System;
}

namespace util {

// Every file here is read only when it is a regular file (a FIFO, a device or
// a folder fails at once, without blocking) and never past its limit.

// The whole file, or false when it cannot be opened or read, or is larger
// than `limit` bytes (a settings file that large is not one).
bool readSystemFile(sys::System& os, const char* path, std::string& text, size_t limit = 1 << 20);

// The file's whole lines within its first `limit` bytes (a line cut by the
// limit is dropped); `cut` says whether there was more. False when it cannot
// be opened or read.
bool readSystemFileHead(sys::System& os, const char* path, std::string& text, size_t limit, bool* cut = nullptr);

// Each line without its line end, until `line` returns false or the file
// ends; at most `limit` bytes are read. False when the file cannot be opened.
bool forEachSystemFileLine(sys::System& os, const char* path, const std::function<bool(const std::string&)>& line,
                           size_t limit = 16 << 20);

}  // namespace util
