// Reading a fluid's text from the fluid database beside the library, once the connection is open:
// what selecting a Varimol fluid costs the loader.
#include "base/filelocation.hpp"
#include "fluiddb/sqlite.hpp"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

const std::string fluids = filelocation::fluidpath(filelocation::library_module);

void read_text(benchmark::State& state, const char* name, int expected) {
    std::vector<std::string> lines(400); // element buffers are reused from call to call
    if (sqlite::getfluid(fluids, name, lines) != expected) {
        state.SkipWithError("fluid database not found beside the library");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(sqlite::getfluid(fluids, name, lines));
    state.counters["lines"] = expected;
}

// a pure fluid: 120 lines
void BM_getfluid_pure(benchmark::State& state) {
    read_text(state, "CH4.vmx", 120);
}
// a predefined mixture of 10 components: 264 lines
void BM_getfluid_mixture(benchmark::State& state) {
    read_text(state, "NG-GulfCoast.vmx", 264);
}
// a transport text: 28 lines
void BM_getfluid_transport(benchmark::State& state) {
    read_text(state, "CH4.trn", 28);
}
// the list of the Varimol fluids
void BM_getfluidnames_varimol(benchmark::State& state) {
    std::vector<std::string> names(1000);
    for (auto _ : state) benchmark::DoNotOptimize(sqlite::getfluidnames(fluids, "Varimol", names));
}

} // namespace

BENCHMARK(BM_getfluid_pure)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_getfluid_mixture)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_getfluid_transport)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_getfluidnames_varimol)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
