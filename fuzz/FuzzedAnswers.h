#pragma once
// What the targets over the groups' readers share. Input: a byte that picks
// the reader, then texts separated by NUL bytes (the reader's own text
// first, then what it is read with). A seed is a selector byte and a real
// capture. Where a reader is reached only through the group that runs the
// command or reads the file, a simulated machine answers with the texts.
#include <cerrno>
#include <clocale>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "common/replay/SimulatedSystem.h"
#include "framework/RunLog.h"

// Texts are cut on character boundaries in the locale hosts mostly run in.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::setlocale(LC_ALL, "C.UTF-8");
    return 0;
}

namespace fuzzed {

// The texts after the selector byte; at least `count`, empty when not given.
inline std::vector<std::string> parts(const uint8_t* data, size_t size, size_t count)
{
    std::vector<std::string> out;
    size_t start = 1;
    for (size_t i = 1; i <= size; ++i) {
        if (i < size && data[i] != 0) continue;
        if (start <= size) out.emplace_back(reinterpret_cast<const char*>(data) + start, i - start);
        start = i + 1;
    }
    if (out.size() < count) out.resize(count);
    return out;
}

// The lines of a command's output, as the command runner gives them.
inline std::vector<std::string> lines(const std::string& text)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

// A simulated machine for the whole run: the fuzzed texts change each input,
// and what the input names (a driver's module, a mount point, a device) is
// answered without being noted, so that nothing grows from input to input.
// Every file system has the same sizes; every other path is absent.
class QuietSystem : public replay::SimulatedSystem {
public:
    int open(const char* path, int flags) override
    {
        if (path && (files.count(path) || devices.count(path))) return SimulatedSystem::open(path, flags);
        errno = ENOENT;
        return -1;
    }
    int statvfs64(const char*, struct statvfs64* buf) override
    {
        *buf = {};
        buf->f_frsize = 8192;
        buf->f_blocks = 2573694;
        buf->f_bavail = 1378547;
        return 0;
    }

    // Installed as the current system, with only these answers.
    static QuietSystem& fresh()
    {
        static QuietSystem* os = new QuietSystem;
        os->commands.clear();
        os->files.clear();
        os->sysinfoValues.clear();
        sys::setCurrent(os);
        return *os;
    }
};

// After each input: the commands' run log is taken as a host takes it after
// each scan (kept, it grows for a thousand runs and looks like a leak).
struct AfterInput {
    ~AfterInput()
    {
        sys::setCurrent(nullptr);
        (void)runlog::take();
    }
};

}  // namespace fuzzed
