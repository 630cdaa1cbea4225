#pragma once
// A simulated machine whose command outputs, files and sysinfo texts are
// fuzzer bytes, for the targets that reach a reader through the group that
// runs the command or reads the file, as a scan does.
//
// Input: a byte, then texts separated by NUL bytes. The byte's low seven
// bits pick the answer the first text gives (modulo their count); the next
// texts give the answers after it, in order, wrapping round. Its high bit is
// the target's own choice (a release, a form). A seed is a selector byte and
// one real capture: it answers the question it was captured from.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/replay/SimulatedSystem.h"
#include "framework/RunLog.h"

namespace fuzzed {

struct Answer {
    enum Kind { Run, File, Sysinfo } kind;
    const char* key;  // the command's words joined by blanks, the path, or unused
    int command = 0;  // the sysinfo command
};

struct Machine {
    std::unique_ptr<replay::SimulatedSystem> os = std::make_unique<replay::SimulatedSystem>();
    bool highBit = false;
    size_t first = 0;  // the answer the first text gave

    Machine() = default;
    Machine(Machine&&) = default;
    // The commands' run log is taken as a host takes it after each scan:
    // kept, it would grow for a thousand runs and look like a leak.
    ~Machine()
    {
        if (!os) return;
        sys::setCurrent(nullptr);
        (void)runlog::take();
    }
};

inline Machine answering(const uint8_t* data, size_t size, const std::vector<Answer>& answers)
{
    Machine m;
    if (size == 0 || answers.empty()) return m;
    m.highBit = (data[0] & 0x80) != 0;
    m.first = (data[0] & 0x7F) % answers.size();
    size_t which = m.first, start = 1, given = 0;
    for (size_t i = 1; i <= size && given < answers.size(); ++i) {
        if (i < size && data[i] != 0) continue;
        const std::string text(reinterpret_cast<const char*>(data) + start, i - start);
        const Answer& a = answers[which];
        if (a.kind == Answer::Run)
            m.os->commands[a.key].output = text;
        else if (a.kind == Answer::File)
            m.os->files[a.key] = text;
        else
            m.os->sysinfoValues[a.command] = text.substr(0, text.find('\n'));
        which = (which + 1) % answers.size();
        start = i + 1;
        ++given;
    }
    sys::setCurrent(m.os.get());
    return m;
}

}  // namespace fuzzed
