// Parse throughput of a large synthetic node dump, and the memory a tree
// takes per node and per value.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <string>

#include "common/vartree/vtree.h"

namespace {

// About `bytes` of dump: packages of processors with a mix of value kinds.
std::string syntheticDump(size_t bytes, size_t& nodes, size_t& values)
{
    std::string out = "(ProcessorTable\n   TotalPackageCount:i=64\n";
    nodes = 1;
    values = 1;
    for (int p = 0; out.size() < bytes; ++p) {
        out += "   (Processor\n";
        out += "      Manufacturer:s=GenuineIntel\n      CpuClockMHz:i=" + std::to_string(2000 + p % 1000) + "\n";
        out += "      BrandName:s=Intel(R) Xeon(R) CPU E5-2699 v3 @ 2.30GHz\n      Ratio:f=0.750000\n";
        out += "      Signature:d=4,f2060300\n      Name:u=5,4e616d6521\n";
        out += "      (CPUID\n         Family:i=6\n         Model:i=63\n         Stepping:i=2\n      )\n   )\n";
        nodes += 2;
        values += 9;
    }
    out += ")\n";
    return out;
}

void BM_ParseNodeDump(benchmark::State& state)
{
    size_t nodes = 0, values = 0;
    const std::string dump = syntheticDump(50u << 20, nodes, values);
    for (auto _ : state) {
        state.PauseTiming();  // the stream's own copy of the text is not parsing
        VtIStream_Memory in(dump);
        state.ResumeTiming();
        VtILineStream lines(&in);
        VtNode* root = vtParseNodeDump(&lines);
        benchmark::DoNotOptimize(root);
        state.PauseTiming();
        delete root;
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * dump.size()));
}
BENCHMARK(BM_ParseNodeDump)->Unit(benchmark::kMillisecond)->Iterations(5);

// The same with a warm heap, as in a long-lived host: freed pages stay
// mapped, so the parse pays for its work and not for the kernel's page faults.
void BM_ParseNodeDumpWarmHeap(benchmark::State& state)
{
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    BM_ParseNodeDump(state);
    mallopt(M_TRIM_THRESHOLD, 128 * 1024);
}
BENCHMARK(BM_ParseNodeDumpWarmHeap)->Unit(benchmark::kMillisecond)->Iterations(5);

// Heap bytes a parsed dump holds, divided over `items`.
double heapPerItem(const std::string& dump, size_t items)
{
    const size_t before = mallinfo2().uordblks;
    VtNode* root;
    {
        VtIStream_Memory in(dump);
        VtILineStream lines(&in);
        root = vtParseNodeDump(&lines);
    }
    // The streams and their buffers are gone: only the tree is counted.
    const size_t after = mallinfo2().uordblks;
    delete root;
    return static_cast<double>(after - before) / static_cast<double>(items);
}

// Nodes alone (short names), and values alone (integers with short names).
void BM_TreeMemory(benchmark::State& state)
{
    const size_t count = 100000;
    std::string nodes = "(Root\n", values = "(Root\n";
    for (size_t i = 0; i < count; ++i) {
        nodes += "(Processor\n)\n";
        values += "Family:i=6\n";
    }
    nodes += ")\n";
    values += ")\n";
    double perNode = 0, perValue = 0;
    for (auto _ : state) {
        perNode = heapPerItem(nodes, count);
        perValue = heapPerItem(values, count);
    }
    state.counters["bytes_per_node"] = perNode;
    state.counters["bytes_per_value"] = perValue;
}
BENCHMARK(BM_TreeMemory)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
