#pragma once
// kstat_lookup's matching over a chain the implementation built itself (the
// Linux one and the test fake): a null module or name, or instance -1, match all.
#include <cerrno>
#include <cstring>

#include "common/sys/SolarisTypes.h"

namespace sys {

inline kstat_t* lookupInChain(kstat_ctl_t* kc, const char* module, int instance, const char* name)
{
    for (kstat_t* k = kc ? kc->kc_chain : nullptr; k; k = k->ks_next) {
        if (module && std::strcmp(k->ks_module, module) != 0) continue;
        if (instance != -1 && k->ks_instance != instance) continue;
        if (name && std::strcmp(k->ks_name, name) != 0) continue;
        return k;
    }
    errno = ENOENT;
    return nullptr;
}

}  // namespace sys
