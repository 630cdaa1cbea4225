// The "diskscan" probe: the response header, then the disk, partition and
// host bus adapter tree as a node dump on standard output. "-d" writes what
// was read to standard error.
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "common/vartree/vtexec.h"
#include "probes/diskscan/Scan.h"

namespace {

enum { RESULT_OK = 0, RESULT_NOTHING_READ = 1, RESULT_USAGE = 2, RESULT_INTERNAL = 3 };

int run(FILE* debug)
{
    diskscan::Scan scan;
    std::string error;
    if (!diskscan::gatherScan(scan, error, debug)) {
        if (debug) std::fprintf(debug, "diskscan: %s\n", error.c_str());
        vtDumpResponse(RESULT_NOTHING_READ, error.c_str());
        return 1;
    }
    VtNode* root = diskscan::buildTree(scan);
    vtDumpResponse(RESULT_OK, "OK");
    diskscan::printTree(root);
    delete root;
    return 0;
}

}  // namespace

int main(int argc, char** argv)
{
    bool debugMode = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "-d") == 0) {
            debugMode = true;
        } else {
            std::fprintf(stderr, "diskscan: unknown option '%s'\nusage: diskscan [-d]\n", argv[i]);
            vtDumpResponse(RESULT_USAGE, "usage: diskscan [-d]");
            return 2;
        }
    }
    try {
        return run(debugMode ? stderr : nullptr);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "diskscan: %s\n", e.what());
        vtDumpResponse(RESULT_INTERNAL, "internal error");
        return 3;
    }
}
