// The system-file line reader (the PCI id database's): a 100 MB file of one
// line, whose reading was quadratic when each read searched the whole
// pending line again, and a database-shaped file of short lines.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/sys/System.h"
#include "common/util/SystemFile.h"

namespace {

// A file of `bytes` written once for the run; removed at exit.
std::string fileOf(const std::string& text)
{
    char path[] = "/tmp/bench-system-file-XXXXXX";
    const int fd = mkstemp(path);
    if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
    close(fd);
    return path;
}

struct Files {
    std::string oneLine = fileOf(std::string(100u << 20, 'x'));
    std::string database;
    Files()
    {
        std::string text;
        for (int vendor = 0; text.size() < (2u << 20); ++vendor) {
            char line[96];
            std::snprintf(line, sizeof line, "%04x  Vendor number %d\n", vendor & 0xffff, vendor);
            text += line;
            for (int device = 0; device < 8; ++device) {
                std::snprintf(line, sizeof line, "\t%04x  Device %d of vendor %d\n", device, device, vendor);
                text += line;
            }
        }
        database = fileOf(text);
    }
    ~Files()
    {
        unlink(oneLine.c_str());
        unlink(database.c_str());
    }
};

const Files& files()
{
    static const Files f;
    return f;
}

void readLines(benchmark::State& state, const std::string& path, size_t limit)
{
    size_t lines = 0;
    for (auto _ : state) {
        util::forEachSystemFileLine(sys::current(), path.c_str(), [&](const std::string&) { return ++lines, true; },
                                    limit);
    }
    benchmark::DoNotOptimize(lines);
}

// At the reader's default bound (16 MiB), as the PCI group reads it, and unbounded.
void BM_OneLine100MB_DefaultBound(benchmark::State& state) { readLines(state, files().oneLine, 16u << 20); }
void BM_OneLine100MB_Whole(benchmark::State& state) { readLines(state, files().oneLine, 128u << 20); }
void BM_DatabaseOf2MB(benchmark::State& state) { readLines(state, files().database, 16u << 20); }

BENCHMARK(BM_OneLine100MB_DefaultBound)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OneLine100MB_Whole)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DatabaseOf2MB)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
