// The cubic back-end at its entry point vm3_tmdprop, for a methane/ethane binary and a
// 5-component natural gas (PRSV, kij of data/fluids): two-phase PT flash, single-phase PT with
// the stability test, bubble pressure (T, q = 0) and dew temperature (p, q = 1). Each set holds
// 1024 seeded states found at start-up from the bubble and dew lines; each iteration asks the
// next state of the set. The same states recomputed from (p, h) and from (v, u): two-phase and
// one-phase, and the homogeneous (v, u) state of the flow solvers.
#include "varimol_fluids.hpp"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

using namespace varimol;

namespace {

struct request {
    int mode;
    double T, p, q;
};

struct fluid_case {
    varimol_test::mixture_recipe recipe;
    double tlo, thi; // K, temperatures scanned for the bubble and dew lines
};

const fluid_case binary{{{"CH4", "C2H6"}, {0.6, 0.4}}, 150.0, 260.0};
const fluid_case gas5{
    {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}}, 150.0, 215.0};

int call(request r, double& T, double& p) {
    double v, u, h, s, q = r.q, cv, a, b, c, d, e, g;
    composition x, y, lnphi;
    int ierr;
    T = r.T;
    p = r.p;
    vm3_tmdprop(r.mode, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, lnphi, ierr);
    return ierr;
}

// the four request sets of a fluid: 0 two-phase flash, 1 one-phase PT, 2 bubble p, 3 dew T
std::vector<request> make_set(const fluid_case& fc, int kind) {
    varimol_test::select(model_prsv_vdw, fc.recipe);
    std::mt19937_64 rng(12345 + kind);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    std::vector<request> set;
    while (set.size() < 1024) {
        const double T = fc.tlo + u(rng) * (fc.thi - fc.tlo);
        double t, pb, pd;
        if (call({12, T, 0.0, 0.0}, t, pb) || call({12, T, 0.0, 1.0}, t, pd)) continue;
        switch (kind) {
        case 0:
            set.push_back({1, T, pd + (0.02 + 0.96 * u(rng)) * (pb - pd), 0.0});
            break;
        case 1:
            if (u(rng) < 0.5)
                set.push_back({1, T, pd * (0.1 + 0.8 * u(rng)), 0.0});
            else
                set.push_back({1, T, pb * (1.1 + u(rng)), 0.0});
            break;
        case 2:
            set.push_back({12, T, 0.0, 0.0});
            break;
        case 3:
            set.push_back({11, 0.0, pd, 1.0});
            break;
        }
    }
    return set;
}

// the state-function requests: a state of the set of `kind` recomputed from (p, h) or (v, u)
struct pair_request {
    int mode;
    double p, v, u, h;
};

std::vector<pair_request> make_pairs(const fluid_case& fc, int kind, int mode) {
    const std::vector<request> set = make_set(fc, kind);
    std::vector<pair_request> out;
    for (const request& r : set) {
        double T = r.T, p = r.p, v, u, h, s, q = r.q, cv, a, b, c, d, e, g;
        composition x, y, lnphi;
        int ierr;
        vm3_tmdprop(r.mode, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, lnphi, ierr);
        if (ierr == 0) out.push_back({mode, p, v, u, h});
    }
    return out;
}

void run_pairs(benchmark::State& state, const fluid_case& fc, int kind, int mode,
               bool one_phase = false) {
    const std::vector<pair_request> set = make_pairs(fc, kind, mode);
    std::size_t k = 0, failed = 0;
    for (auto _ : state) {
        const pair_request& r = set[k];
        double T = 0.0, p = mode == 9 ? r.p : 0.0, v = r.v, u = r.u, h = r.h, s = 0.0, q = 0.0;
        double cv, a, b, c, d, e, g;
        composition x, y, lnphi;
        int ierr;
        if (one_phase)
            vm3_tmdprop_1ph(mode, T, p, v, u, h, s, cv, a, b, c, d, e, g, ierr);
        else
            vm3_tmdprop(mode, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, lnphi, ierr);
        failed += ierr != 0;
        benchmark::DoNotOptimize(T);
        k = (k + 1) % set.size();
    }
    state.counters["failed"] = static_cast<double>(failed);
}

void run(benchmark::State& state, const fluid_case& fc, int kind) {
    const std::vector<request> set = make_set(fc, kind);
    std::size_t k = 0, failed = 0;
    for (auto _ : state) {
        double T, p;
        failed += call(set[k], T, p) != 0;
        benchmark::DoNotOptimize(T);
        benchmark::DoNotOptimize(p);
        k = (k + 1) & 1023;
    }
    state.counters["failed"] = static_cast<double>(failed);
}

void BM_flash_two_phase_binary(benchmark::State& s) {
    run(s, binary, 0);
}
void BM_flash_two_phase_gas5(benchmark::State& s) {
    run(s, gas5, 0);
}
void BM_one_phase_pt_binary(benchmark::State& s) {
    run(s, binary, 1);
}
void BM_one_phase_pt_gas5(benchmark::State& s) {
    run(s, gas5, 1);
}
void BM_bubble_pressure_binary(benchmark::State& s) {
    run(s, binary, 2);
}
void BM_bubble_pressure_gas5(benchmark::State& s) {
    run(s, gas5, 2);
}
void BM_dew_temperature_binary(benchmark::State& s) {
    run(s, binary, 3);
}
void BM_dew_temperature_gas5(benchmark::State& s) {
    run(s, gas5, 3);
}

void BM_ph_two_phase_binary(benchmark::State& s) {
    run_pairs(s, binary, 0, 9);
}
void BM_ph_two_phase_gas5(benchmark::State& s) {
    run_pairs(s, gas5, 0, 9);
}
void BM_ph_one_phase_binary(benchmark::State& s) {
    run_pairs(s, binary, 1, 9);
}
void BM_vu_two_phase_binary(benchmark::State& s) {
    run_pairs(s, binary, 0, 5);
}
void BM_vu_one_phase_binary(benchmark::State& s) {
    run_pairs(s, binary, 1, 5);
}
void BM_vu_homogeneous_1ph_binary(benchmark::State& s) {
    run_pairs(s, binary, 1, 5, true);
}

} // namespace

BENCHMARK(BM_ph_two_phase_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ph_two_phase_gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ph_one_phase_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_vu_two_phase_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_vu_one_phase_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_vu_homogeneous_1ph_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_flash_two_phase_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_flash_two_phase_gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_one_phase_pt_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_one_phase_pt_gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_bubble_pressure_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_bubble_pressure_gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dew_temperature_binary)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_dew_temperature_gas5)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
