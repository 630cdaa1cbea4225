#include "common/util/ApiGuard.h"

#include "framework/Trace.h"

namespace api {

std::recursive_mutex& lock()
{
    // Placed in static storage and never destroyed: exit's destructors must
    // not pull it from under a thread still inside the library.
    alignas(std::recursive_mutex) static unsigned char storage[sizeof(std::recursive_mutex)];
    static std::recursive_mutex* const mutex = new (storage) std::recursive_mutex();
    return *mutex;
}

void traceStopped(const char* source, const char* function, const char* what) noexcept
{
    try {
        std::lock_guard<std::recursive_mutex> hold(lock());
        CcLogWrapper::traceMIN(getCcLogHw(), __LINE__, source, function, "hardware ERROR! %s stopped: %s", function,
                               what ? what : "");
    } catch (...) {
        // Out of memory even for the trace line: the neutral result says enough.
    }
}

}  // namespace api
