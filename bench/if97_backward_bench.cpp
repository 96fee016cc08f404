// Speed of the IAPWS-IF97 backward equations, over fixed seeded sets of states in their regions.

#include "backward.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <initializer_list>
#include <random>
#include <vector>

namespace bw = if97::backward;

namespace {

struct pair {
    double a;
    double b;
};

constexpr std::size_t set_size = 1024;

// Uniform in each of the boxes of `boxes` in turn: {a_min, a_max, b_min, b_max}.
std::vector<pair> states(std::initializer_list<std::array<double, 4>> boxes) {
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    std::vector<pair> set;
    while (set.size() < set_size) {
        for (const auto& box : boxes) {
            set.push_back(
                {box[0] + (box[1] - box[0]) * u(rng), box[2] + (box[3] - box[2]) * u(rng)});
        }
    }
    set.resize(set_size);
    return set;
}

// Region 3 states (p, T) between 623.15 K and the B23 line (R7-97 eq. 6).
std::vector<pair> region3_states(double p_min, double p_max, double t_min, double t_max) {
    std::vector<pair> set;
    std::mt19937_64 rng(20240611);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    while (set.size() < set_size) {
        const double p = p_min + (p_max - p_min) * u(rng);
        const double t = t_min + (t_max - t_min) * u(rng);
        const double t_b23 =
            572.54459862746 + std::sqrt((p - 13.91883977887) / 0.10192970039326e-2);
        if (t <= t_b23) set.push_back({p, t});
    }
    return set;
}

template <double (*f)(double, double)>
void run(benchmark::State& state, const std::vector<pair>& set) {
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f(set[k].a, set[k].b));
        k = (k + 1) % set_size;
    }
}

// (p, h) and (p, s) in region 1: 17 to 100 MPa, up to about 620 K
const auto region1_ph = states({{17.0, 100.0, 50.0, 1500.0}});
const auto region1_ps = states({{17.0, 100.0, 0.2, 3.5}});
// Region 2 in its subregions 2a (p <= 4 MPa), 2b and 2c
const auto region2_ph = states(
    {{0.001, 4.0, 2700.0, 4000.0}, {4.0, 100.0, 3550.0, 4000.0}, {20.0, 100.0, 2800.0, 3300.0}});
const auto region2_ps =
    states({{0.001, 4.0, 6.8, 9.0}, {4.0, 100.0, 5.9, 7.2}, {20.0, 100.0, 5.2, 5.8}});
const auto region2_hs =
    states({{2800.0, 3600.0, 7.2, 9.0}, {3300.0, 3900.0, 5.9, 6.8}, {2800.0, 3300.0, 5.2, 5.8}});
const auto region3_ph = states({{16.6, 100.0, 1700.0, 2700.0}});
const auto region3_pt = region3_states(16.6, 100.0, 623.15, 863.15);
const auto near_critical_pt = region3_states(21.0, 23.0, 640.0, 652.0);

void t_ph_1(benchmark::State& s) {
    run<bw::t_ph_1>(s, region1_ph);
}
void t_ps_1(benchmark::State& s) {
    run<bw::t_ps_1>(s, region1_ps);
}
void t_ph_2(benchmark::State& s) {
    run<bw::t_ph_2>(s, region2_ph);
}
void t_ps_2(benchmark::State& s) {
    run<bw::t_ps_2>(s, region2_ps);
}
void p_hs_2(benchmark::State& s) {
    run<bw::p_hs_2>(s, region2_hs);
}
void t_ph_3(benchmark::State& s) {
    run<bw::t_ph_3>(s, region3_ph);
}
void v_ph_3(benchmark::State& s) {
    run<bw::v_ph_3>(s, region3_ph);
}
void v_pt_3(benchmark::State& s) {
    run<bw::v_pt_3>(s, region3_pt);
}
void v_pt_3_near_critical(benchmark::State& s) {
    run<bw::v_pt_3>(s, near_critical_pt);
}

} // namespace

BENCHMARK(t_ph_1);
BENCHMARK(t_ps_1);
BENCHMARK(t_ph_2);
BENCHMARK(t_ps_2);
BENCHMARK(p_hs_2);
BENCHMARK(t_ph_3);
BENCHMARK(v_ph_3);
BENCHMARK(v_pt_3);
BENCHMARK(v_pt_3_near_critical);

BENCHMARK_MAIN();
