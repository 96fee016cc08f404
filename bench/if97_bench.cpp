// Speed of the IF97 back-end through its entry point if97_main, over fixed seeded sets of valid
// states. Every iteration asks about a different state than the one before, so the back-end's
// memory of its last state does not help, except in BM_repeated_state, which measures it.
#include "forward.hpp"
#include "if97/if97.hpp"
#include "properties.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t set_size = 1024;

// A state in interface units (bar, °C, m³/kg, kJ/kg, kJ/(kg K)).
struct sample {
    double p, t, v, h, s, u;
};

enum class zone { region1, region2, region3, region5, two_phase, dome_top };

// Uniform states of one zone, drawn with a fixed seed and completed by if97_main from (P, T)
// (or (P, x) in the dome).
std::vector<sample> make_set(zone z) {
    std::mt19937_64 rng(20260611 + static_cast<int>(z));
    std::uniform_real_distribution<double> U(0.0, 1.0);
    std::vector<sample> set;
    std::string err;
    std::array<double, 6> o{};
    while (set.size() < set_size) {
        double p = 0, t = 0;
        switch (z) {
        case zone::region1: // 0 to 350 °C, saturation pressure to 1000 bar
            t = 350.0 * U(rng);
            p = if97::forward::psat(t + 273.15) * 10.0 + (1000.0 - 165.3) * U(rng) + 1.0;
            break;
        case zone::region2: // 0.1 to 165 bar, saturation temperature (plus 1 K) to 800 °C
            p = std::exp(std::log(0.1) + (std::log(165.0) - std::log(0.1)) * U(rng));
            t = if97::forward::tsat(p * 0.1) - 273.15 + 1.0 +
                (800.0 - if97::forward::tsat(p * 0.1) + 273.15 - 1.0) * U(rng);
            break;
        case zone::region3: // 350 to 500 °C above the B23 line
            t = 350.0 + 150.0 * U(rng);
            p = if97::forward::p_b23(t + 273.15) * 10.0 + 1.0 + 1000.0 * U(rng);
            if (p > 1000.0) continue;
            break;
        case zone::region5:
            t = 800.0 + 1200.0 * U(rng);
            p = 0.1 + 499.9 * U(rng);
            break;
        case zone::two_phase: // (P, x) in the dome below 165 bar
        case zone::dome_top:  // and from 166 to 220 bar, where the saturated phases are region 3
            p = z == zone::two_phase
                    ? std::exp(std::log(0.1) + (std::log(165.0) - std::log(0.1)) * U(rng))
                    : 166.0 + 54.0 * U(rng);
            if97::if97_main("P", p, "x", 0.05 + 0.9 * U(rng), "P,T,v,h,s,u.", o, err);
            set.push_back({o[0], o[1], o[2], o[3], o[4], o[5]});
            continue;
        }
        if97::if97_main("P", p, "T", t, "P,T,v,h,s,u.", o, err);
        if (err == "No errors") set.push_back({o[0], o[1], o[2], o[3], o[4], o[5]});
    }
    return set;
}

const std::vector<sample>& states(zone z) {
    static std::array<std::vector<sample>, 6> sets;
    auto& set = sets[static_cast<int>(z)];
    if (set.empty()) set = make_set(z);
    return set;
}

// One if97_main call per iteration with inputs (a, b) taken from the sample. The texts are
// string views made once, as a caller holding its letters and output list passes them.
template <class Pick>
void run(benchmark::State& bench, zone z, std::string_view l1, std::string_view l2,
         std::string_view list, Pick pick) {
    const auto& set = states(z);
    std::string err;
    std::array<double, 8> out{};
    std::size_t k = 0;
    for (auto _ : bench) {
        const sample& st = set[k];
        const auto [a, b] = pick(st);
        if97::if97_main(l1, a, l2, b, list, out, err);
        benchmark::DoNotOptimize(out.data());
        k = (k + 1) % set_size;
    }
    if (err != "No errors") bench.SkipWithError(err.c_str());
}

auto pt = [](const sample& st) { return std::pair{st.p, st.t}; };
auto ph = [](const sample& st) { return std::pair{st.p, st.h}; };
auto ps = [](const sample& st) { return std::pair{st.p, st.s}; };
auto hs = [](const sample& st) { return std::pair{st.h, st.s}; };
auto vu = [](const sample& st) { return std::pair{st.v, st.u}; };

void BM_pt_h_region1(benchmark::State& b) {
    run(b, zone::region1, "P", "T", "h.", pt);
}
void BM_pt_h_region2(benchmark::State& b) {
    run(b, zone::region2, "P", "T", "h.", pt);
}
void BM_pt_h_region3(benchmark::State& b) {
    run(b, zone::region3, "P", "T", "h.", pt);
}
void BM_pt_h_region5(benchmark::State& b) {
    run(b, zone::region5, "P", "T", "h.", pt);
}
void BM_pt_seven_region1(benchmark::State& b) {
    run(b, zone::region1, "P", "T", "v,h,s,u,cv,cp,w.", pt);
}
void BM_pt_seven_region2(benchmark::State& b) {
    run(b, zone::region2, "P", "T", "v,h,s,u,cv,cp,w.", pt);
}
void BM_ph_T_region1(benchmark::State& b) {
    run(b, zone::region1, "P", "h", "T.", ph);
}
void BM_ph_T_region2(benchmark::State& b) {
    run(b, zone::region2, "P", "h", "T.", ph);
}
void BM_ph_T_region3(benchmark::State& b) {
    run(b, zone::region3, "P", "h", "T.", ph);
}
void BM_ph_T_two_phase(benchmark::State& b) {
    run(b, zone::two_phase, "P", "h", "T.", ph);
}
void BM_ps_T_region1(benchmark::State& b) {
    run(b, zone::region1, "P", "s", "T.", ps);
}
void BM_ps_T_region2(benchmark::State& b) {
    run(b, zone::region2, "P", "s", "T.", ps);
}
void BM_hs_P_region1(benchmark::State& b) {
    run(b, zone::region1, "h", "s", "P.", hs);
}
void BM_hs_P_region2(benchmark::State& b) {
    run(b, zone::region2, "h", "s", "P.", hs);
}
void BM_hs_P_region3(benchmark::State& b) {
    run(b, zone::region3, "h", "s", "P.", hs);
}
void BM_hs_P_two_phase(benchmark::State& b) {
    run(b, zone::two_phase, "h", "s", "P.", hs);
}
void BM_hs_P_dome_top(benchmark::State& b) {
    run(b, zone::dome_top, "h", "s", "P.", hs);
}
void BM_vu_PT_region1(benchmark::State& b) {
    run(b, zone::region1, "v", "u", "P,T.", vu);
}
void BM_vu_PT_region2(benchmark::State& b) {
    run(b, zone::region2, "v", "u", "P,T.", vu);
}
void BM_vu_PT_region3(benchmark::State& b) {
    run(b, zone::region3, "v", "u", "P,T.", vu);
}
void BM_vu_PT_two_phase(benchmark::State& b) {
    run(b, zone::two_phase, "v", "u", "P,T.", vu);
}
void BM_vu_PT_dome_top(benchmark::State& b) {
    run(b, zone::dome_top, "v", "u", "P,T.", vu);
}

// Saturation temperature from pressure: through if97_main (P, x) -> T, and the bare eq. 31.
void BM_tsat_main(benchmark::State& b) {
    run(b, zone::two_phase, "P", "x", "T.", [](const sample& st) { return std::pair{st.p, 0.5}; });
}
void BM_tsat_equation(benchmark::State& bench) {
    const auto& set = states(zone::two_phase);
    std::size_t k = 0;
    for (auto _ : bench) {
        benchmark::DoNotOptimize(if97::forward::tsat(set[k].p * 0.1));
        k = (k + 1) % set_size;
    }
}

// The basic equation alone, without the entry point: h of region 1 and 2 from (p, T), with
// gamma_tau alone, as if97_main evaluates it for the list "h.".
void raw_h(benchmark::State& bench, zone z, int reg) {
    const auto& set = states(z);
    std::size_t k = 0;
    for (auto _ : bench) {
        const sample& st = set[k];
        benchmark::DoNotOptimize(if97::properties::gibbs_state(reg, st.p * 0.1, st.t + 273.15,
                                                               if97::properties::enthalpy)
                                     .h);
        k = (k + 1) % set_size;
    }
}
void BM_equation_h_region1(benchmark::State& b) {
    raw_h(b, zone::region1, 1);
}
void BM_equation_h_region2(benchmark::State& b) {
    raw_h(b, zone::region2, 2);
}

// The same state asked again and again: the last-state memory answers.
void BM_repeated_state(benchmark::State& bench) {
    std::string err;
    std::array<double, 8> out{};
    for (auto _ : bench) {
        if97::if97_main("P", 10.0, "h", 2800.0, "T,v.", out, err);
        benchmark::DoNotOptimize(out.data());
    }
}

} // namespace

BENCHMARK(BM_pt_h_region1);
BENCHMARK(BM_pt_h_region2);
BENCHMARK(BM_pt_h_region3);
BENCHMARK(BM_pt_h_region5);
BENCHMARK(BM_pt_seven_region1);
BENCHMARK(BM_pt_seven_region2);
BENCHMARK(BM_ph_T_region1);
BENCHMARK(BM_ph_T_region2);
BENCHMARK(BM_ph_T_region3);
BENCHMARK(BM_ph_T_two_phase);
BENCHMARK(BM_ps_T_region1);
BENCHMARK(BM_ps_T_region2);
BENCHMARK(BM_hs_P_region1);
BENCHMARK(BM_hs_P_region2);
BENCHMARK(BM_hs_P_region3);
BENCHMARK(BM_hs_P_two_phase);
BENCHMARK(BM_hs_P_dome_top);
BENCHMARK(BM_vu_PT_region1);
BENCHMARK(BM_vu_PT_region2);
BENCHMARK(BM_vu_PT_region3);
BENCHMARK(BM_vu_PT_two_phase);
BENCHMARK(BM_vu_PT_dome_top);
BENCHMARK(BM_tsat_main);
BENCHMARK(BM_tsat_equation);
BENCHMARK(BM_equation_h_region1);
BENCHMARK(BM_equation_h_region2);
BENCHMARK(BM_repeated_state);

BENCHMARK_MAIN();
