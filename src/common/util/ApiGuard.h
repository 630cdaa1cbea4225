#pragma once
// What every entry point a host calls runs inside: one process-wide recursive
// lock, so that a host driving the library from several threads gets correct
// tables (its scans take turns; an entry point that calls another from inside
// holds the lock already), and a catch of everything, so that nothing is
// thrown to the host: an exception, std::bad_alloc included, becomes the
// entry point's neutral result (null table, null group, false, 0) and one
// trace line at the minimum level.
#include <exception>
#include <mutex>
#include <new>
#include <type_traits>

namespace api {

// Never destroyed: a host thread may still scan while the process exits.
std::recursive_mutex& lock();

// The minimum-level line for an exception stopped at an entry point. Throws
// nothing, even out of memory.
void traceStopped(const char* source, const char* function, const char* what) noexcept;

// Runs `body` under the lock; its result, or `neutral` with a trace line when
// it throws.
template <class T, class Body>
T guarded(const char* source, const char* function, T neutral, Body&& body) noexcept
{
    try {
        std::lock_guard<std::recursive_mutex> hold(lock());
        return body();
    } catch (const std::bad_alloc&) {
        traceStopped(source, function, "out of memory");
    } catch (const std::exception& e) {
        traceStopped(source, function, e.what());
    } catch (...) {
        traceStopped(source, function, "an exception of unknown type");
    }
    return neutral;
}

// The same for an entry point with no result.
template <class Body>
void guardedCall(const char* source, const char* function, Body&& body) noexcept
{
    guarded<int>(source, function, 0, [&]() -> int {
        body();
        return 0;
    });
}

}  // namespace api

class KorTable;

namespace api {

// A group's getTable(): its table, or null with a trace line naming `group`.
template <class Body>
KorTable* guardedTable(const char* group, Body&& body) noexcept
{
    return guarded<KorTable*>("./../../../src/invscan/com/KorGroup", group, nullptr, body);
}

}  // namespace api
