// Systems without a processor-binding facility we know: the current
// processor's view only.
#if !defined(__linux__) && !defined(__sun)

#include "probes/cpuid/Collect.h"
#include "probes/cpuid/Platform.h"

namespace cpuid {

bool gatherMachine(Machine& machine, std::string& error, FILE* debug)
{
    if (!haveInstruction()) {
        error = "this processor has no CPUID instruction";
        return false;
    }
    if (debug) std::fprintf(debug, "no processor binding on this system; reading the current one only\n");
    LogicalProcessor lp;
    lp.osId = 0;
    lp.dump = collect(instruction);
    machine.processors.push_back(std::move(lp));
    machine.onlineCount = 1;
    return true;
}

bool readFirmwareTables(std::string&, std::string&) { return false; }

}  // namespace cpuid

#endif
