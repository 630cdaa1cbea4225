#pragma once
// invscan diff: what changed between two scans of one machine.
#include <string>

namespace cli {

struct DiffOptions {
    std::string oldPath, newPath;  // a JSON scan, a capture, or a simulated machine's folder
    std::string format = "text";   // text or json
    bool all = false;              // compare the attributes that change on every scan too
    bool force = false;            // compare scans of two machines
};

// 0 no change, 1 changes, 2 trouble (said on stderr). `self` is this
// program, which replays a capture into a scan.
int runDiff(const DiffOptions& options, const std::string& self);

}  // namespace cli
