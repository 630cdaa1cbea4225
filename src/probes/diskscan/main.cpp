// The "diskscan" probe: the response header, then the disk, partition and
// host bus adapter tree as a node dump on standard output. "-d" writes what
// was read to standard error.
#include <cstdio>
#include <string>

#include "common/vartree/vtexec.h"
#include "probes/diskscan/Scan.h"

namespace {

// 2 (bad usage) and 3 (internal error) are answered by vtProbeMain.
enum { RESULT_OK = 0, RESULT_NOTHING_READ = 1 };

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

int main(int argc, char** argv) { return vtProbeMain(argc, argv, "diskscan", run); }
