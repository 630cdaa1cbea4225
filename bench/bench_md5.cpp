// md5_checksum throughput on short, medium and long texts.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "invscan/com/md5.h"

static void BM_Md5Checksum(benchmark::State& state)
{
    const std::string text(static_cast<size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        char* digest = md5_checksum(text.c_str());
        benchmark::DoNotOptimize(digest);
        std::free(digest);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Md5Checksum)->Arg(64)->Arg(1024)->Arg(1 << 20);

BENCHMARK_MAIN();
