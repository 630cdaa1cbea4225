#include "invscan/solaris/system/MemoryGroup.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/sys/System.h"
#include "framework/Trace.h"
#include "invscan/com/CatalogueIds.h"
#include "invscan/com/GroupRegistry.h"
#include "invscan/com/RowBuilder.h"
#include "common/util/ApiGuard.h"

namespace {

const char* const kSource = "./../../../src/invscan/solaris/MemoryGroup";
const char* const kFunction = "getTable()";
constexpr int kPathLength = 1024;  // each swap entry's path buffer
constexpr int kMaxSwapDevices = 65536;

#define MEM_TRACE(level, ...) CcLogWrapper::level(getCcLogHw(), __LINE__, kSource, kFunction, __VA_ARGS__)

// KB of `pages` pages, or 0 unless both figures are positive; the product
// is formed in 64 bits so large memories do not wrap.
long long pagesToKB(long long pages, long long pageSize)
{
    return pages > 0 && pageSize > 0 ? pages * pageSize / 1024 : 0;
}

struct Swap {
    long long totalKB = 0;
    long long freeKB = 0;
};

// Without swap devices the anonymous-memory figures stand in.
Swap swapFromAnonInfo(sys::System& os, long pageSize)
{
    Swap swap;
    anoninfo info{};
    if (os.swapctl(SC_AINFO, &info) == -1) {
        MEM_TRACE(traceMID, "hardware %s %s", "swapctl(SC_AINFO) failed :", std::strerror(errno));
        return swap;
    }
    const unsigned long max = info.ani_max, free = info.ani_free;
    swap.totalKB = static_cast<long long>(static_cast<double>(pageSize) * static_cast<double>(max) * 0.0009765625);
    swap.freeKB = static_cast<long long>(static_cast<double>(pageSize) * static_cast<double>(free) * 0.0009765625);
    MEM_TRACE(traceMID, "hardware %s %ld", "totalSwapspace :", static_cast<long>(swap.totalKB));
    MEM_TRACE(traceMID, "hardware %s %ld", "freeSwapspace :", static_cast<long>(swap.freeKB));
    return swap;
}

// One entry more than the count asks for, deliberately: a device added
// between the two calls still fits.
Swap swapFromDevices(sys::System& os, int count, long pageSize)
{
    Swap swap;
    MEM_TRACE(traceMID, "hardware %s %d", "swapctl(SC_GETNSWP) returns ", count);
    const size_t bytes = sizeof(swapent) * static_cast<size_t>(count) + sizeof(swaptbl_t);
    auto* table = static_cast<swaptbl_t*>(std::calloc(1, bytes));
    // Path buffers in one block, released with the table.
    auto* paths = static_cast<char*>(std::calloc(static_cast<size_t>(count), kPathLength));
    if (!table || !paths) {
        MEM_TRACE(traceMID, "hardware %s %s", "swapctl failed :", std::strerror(ENOMEM));
        std::free(table);
        std::free(paths);
        return swap;
    }
    MEM_TRACE(traceMID, "hardware %s", "memory allocated");
    table->swt_n = count;
    MEM_TRACE(traceMID, "hardware %s", "Filling a memory");
    for (int i = 0; i < count; ++i) table->swt_ent[i].ste_path = paths + static_cast<size_t>(i) * kPathLength;

    const int listed = os.swapctl(SC_LIST, table);
    if (listed < 0) {
        MEM_TRACE(traceMID, "hardware %s %s", "swapctl failed :", std::strerror(errno));
    } else if (listed == 0) {
        MEM_TRACE(traceMIN, "hardware %s %s", "swapctl failed :", "No swap configured");
    } else {
        MEM_TRACE(traceMID, "hardware %s %d", "swapctl(SC_LIST) returns ", table->swt_n);
        for (int i = 0; i < listed && i < count; ++i) {
            const swapent& e = table->swt_ent[i];
            MEM_TRACE(traceMID, "hardware %s %s", "Swap device:", e.ste_path);
            const long long total = static_cast<long long>(e.ste_pages) * pageSize;
            const long long free = static_cast<long long>(e.ste_free) * pageSize;
            MEM_TRACE(traceMID, "hardware %s %lld", ":", total);
            MEM_TRACE(traceMID, "hardware %s %lld", ":", free);
            if (total > 0) swap.totalKB += total / 1024;
            if (free > 0) swap.freeKB += free / 1024;
        }
        MEM_TRACE(traceMAX, "hardware %s %ld", "Total Swap Space", static_cast<long>(swap.totalKB));
        MEM_TRACE(traceMAX, "hardware %s %ld", "Free Swap Space", static_cast<long>(swap.freeKB));
    }
    std::free(table);
    std::free(paths);
    return swap;
}

// A figure the system could not give (-1) is reported as 0.
unsigned long long known(long long value) { return value > 0 ? static_cast<unsigned long long>(value) : 0; }

}  // namespace

MemoryFacts gatherMemoryFacts(sys::System& os)
{
    MemoryFacts facts;
    facts.pageSize = os.sysconf(_SC_PAGESIZE);
    facts.physPages = os.sysconf(_SC_PHYS_PAGES);
    facts.freePages = os.sysconf(_SC_AVPHYS_PAGES);
    MEM_TRACE(traceMID, "hardware %s %ld", "PageSize :", facts.pageSize);
    MEM_TRACE(traceMID, "hardware %s %ld", "NumPages :", facts.physPages);
    MEM_TRACE(traceMID, "hardware %s %ld", "FreePages :", facts.freePages);
    MEM_TRACE(traceMID, "hardware %s %ld", "TotalSize :", static_cast<long>(pagesToKB(facts.physPages, facts.pageSize)));
    MEM_TRACE(traceMID, "hardware %s %ld", "FreeSize :", static_cast<long>(pagesToKB(facts.freePages, facts.pageSize)));

    Swap swap;
    errno = 0;
    const int devices = os.swapctl(SC_GETNSWP, nullptr);
    if (devices < 1) {
        // The text names SC_LIST though SC_GETNSWP failed: kept as hosts know it.
        MEM_TRACE(traceMID, "hardware swapctl(SC_LIST) failed(%s), trying swapctl(SC_AINFO)", std::strerror(errno));
        swap = swapFromAnonInfo(os, facts.pageSize);
    } else if (devices > kMaxSwapDevices) {
        // No machine has this many devices; the bound keeps the sizes from
        // wrapping on a 32-bit build.
        MEM_TRACE(traceMID, "hardware %s %s", "swapctl failed :", std::strerror(EOVERFLOW));
    } else {
        swap = swapFromDevices(os, devices + 1, facts.pageSize);
    }
    facts.swapTotalKB = swap.totalKB;
    facts.swapFreeKB = swap.freeKB;
    return facts;
}

void shapeMemoryRow(const MemoryFacts& facts, KorTable& table)
{
    const long long totalKB = pagesToKB(facts.physPages, facts.pageSize);
    const long long freeKB = pagesToKB(facts.freePages, facts.pageSize);
    RowBuilder row(MEMORY_GROUP);
    row.number(MEM_TOTAL_PHYSICAL, known(totalKB));
    row.number(MEM_FREE_PHYSICAL, known(freeKB));
    row.number(MEM_TOTAL_VIRTUAL, known(facts.swapTotalKB + totalKB));
    row.number(MEM_FREE_VIRTUAL, known(facts.swapFreeKB + freeKB));
    row.number(MEM_TOTAL_PAGE, known(facts.physPages));
    row.number(MEM_FREE_PAGE, known(facts.freePages));
    row.number(MEM_PAGE_SIZE, known(facts.pageSize));
    row.addTo(table);
}

MemoryGroup::MemoryGroup() : KorGroup(MEMORY_GROUP, 1) {}

KorTable* MemoryGroup::getTable()
{
    return api::guardedTable("MemoryGroup::getTable()", [&]() -> KorTable* {
        CcLogWrapper::traceMidEntry(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "MemoryGroup");
        const MemoryFacts facts = gatherMemoryFacts(sys::current());
        auto* table = new KorTable(getGroupId(), getGroupVersion());
        MEM_TRACE(traceMAX, "hardware %s %p", "table :", static_cast<void*>(table));
        shapeMemoryRow(facts, *table);
        CcLogWrapper::traceMidExit(getCcLogHw(), __LINE__, kSource, kFunction, "hardware %s", "MemoryGroup");
        return table;
    });
}

INVSCAN_REGISTER_GROUP(MEMORY_GROUP, MemoryGroup);
