// The phase envelope and the critical point of the cubic back-end (PRSV, kij of data/fluids):
// the whole envelope from 1 bar through the critical point back to 1 bar (vm3_phaseenvelope)
// of a methane/ethane binary, a 5-component natural gas and air, and the critical point of the
// gas alone (vm3_setfluid of a mixture computes it; the rest of the set-up is timed apart).
#include "varimol_fluids.hpp"

#include <benchmark/benchmark.h>

#include <vector>

using namespace varimol;

namespace {

const varimol_test::mixture_recipe binary{{"CH4", "C2H6"}, {0.85, 0.15}};
const varimol_test::mixture_recipe gas5{{"CH4", "C2H6", "C3H8", "N2", "CO2"},
                                        {0.85, 0.06, 0.03, 0.04, 0.02}};
const varimol_test::mixture_recipe air{{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}};

void envelope(benchmark::State& state, const varimol_test::mixture_recipe& m) {
    if (varimol_test::select(model_prsv_vdw, m) != 0) {
        state.SkipWithError("fluid not configured");
        return;
    }
    std::vector<double> T(1000), p(1000);
    std::vector<composition> x(1000), y(1000);
    int npnts = 0, ierr = 0;
    for (auto _ : state) {
        npnts = 1000;
        vm3_phaseenvelope(npnts, T, p, x, y, ierr);
        benchmark::DoNotOptimize(p.data());
    }
    if (ierr != 0) state.SkipWithError("envelope failed");
    state.counters["points"] = npnts;
}

// vm3_setfluid of the gas; the same set-up of a pure fluid is the baseline without the critical
// point
void setfluid(benchmark::State& state, const varimol_test::mixture_recipe& m) {
    fluid_parameters fp;
    binary_parameters bp;
    varimol_test::make_parameters(m, fp, bp);
    int ierr = 0;
    for (auto _ : state) {
        vm3_setfluid(model_prsv_vdw, fp, bp, static_cast<int>(m.names.size()), ierr);
        benchmark::DoNotOptimize(ierr);
    }
    if (ierr != 0) state.SkipWithError("set-up failed");
}

} // namespace

BENCHMARK_CAPTURE(envelope, binary, binary)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(envelope, gas5, gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(envelope, air, air)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(setfluid, gas5_critical, gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(setfluid, binary_critical, binary)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(setfluid, pure_ch4, varimol_test::mixture_recipe{{"CH4"}, {1.0}})
    ->Unit(benchmark::kMicrosecond);

static void bubble_start(benchmark::State& state) {
    varimol_test::select(model_prsv_vdw, gas5);
    for (auto _ : state) {
        double T = 0, p = 1e5, v, u, h, s, q = 0, cv, a, b, c, d, e, g;
        composition x, y, l;
        int ierr;
        vm3_tmdprop(11, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, l, ierr);
        benchmark::DoNotOptimize(T);
    }
}
BENCHMARK(bubble_start)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
