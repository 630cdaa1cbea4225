// Platforms without a gathering step of their own.
#if !defined(__linux__) && !defined(__sun)

#include "probes/diskscan/Scan.h"

namespace diskscan {

bool gatherScan(Scan&, std::string& error, FILE*)
{
    error = "this platform has no disk reader";
    return false;
}

}  // namespace diskscan

#endif
