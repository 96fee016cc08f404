// The cost of the dispatch: allthermophys for IF97 water against the one back-end call it makes
// (if97_main with the full-state list), at one state and at states that change every call.
#include "Import/if97_zp.hpp"
#include "base/zentropia_base.hpp"
#include "if97/if97.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

namespace zb = zentropia_base;

namespace {

constexpr std::string_view full_state = "p,t,v,h,s,u,x,cv,dv,tc.";

// Liquid temperatures in °C at 10 bar: every call a new state, so the back-end's memory of its
// last state does not help.
std::array<double, 64> temperatures() {
    std::array<double, 64> t{};
    for (std::size_t i = 0; i < t.size(); ++i) t[i] = 20.0 + 2.0 * double(i);
    return t;
}

void select_water() {
    std::string e;
    zb::setfluid("IF97", 1, std::vector<std::string>{"water"}, std::vector<double>{1.0}, e);
}

void allthermophys_at(benchmark::State& state, bool varying) {
    select_water();
    const auto ts = temperatures();
    double p, t, v, d, h, s, u, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda,
        sigma;
    zp_common::composition x{}, y{};
    std::string e;
    e.reserve(64);
    std::size_t i = 0;
    for (auto _ : state) {
        const double temperature = varying ? ts[i++ % ts.size()] : 26.85;
        zb::allthermophys("PT", 10.0, temperature, p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv,
                          d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma, e);
        benchmark::DoNotOptimize(h);
    }
    if (e != "No errors") state.SkipWithError(e.c_str());
}

void if97_main_at(benchmark::State& state, bool varying) {
    const auto ts = temperatures();
    std::array<double, 10> out{};
    std::string e;
    e.reserve(64);
    std::size_t i = 0;
    for (auto _ : state) {
        const double temperature = varying ? ts[i++ % ts.size()] : 26.85;
        if97::if97_main("P", 10.0, "T", temperature, full_state, out, e);
        benchmark::DoNotOptimize(out);
    }
    if (e != "No errors") state.SkipWithError(e.c_str());
}

// the adapter alone, without the dispatcher
void if97_allprops_at(benchmark::State& state, bool varying) {
    const auto ts = temperatures();
    double p, t, v, d, h, s, u, q, cv, eta, lambda;
    zp_common::composition x{}, y{};
    std::string e;
    e.reserve(64);
    std::size_t i = 0;
    for (auto _ : state) {
        const double temperature = varying ? ts[i++ % ts.size()] : 26.85;
        if97_zp::if97_allprops("PT", 10.0, temperature, p, t, v, d, h, s, u, q, x, y, cv, eta,
                               lambda, e);
        benchmark::DoNotOptimize(h);
    }
    if (e != "No errors") state.SkipWithError(e.c_str());
}

void allthermophys_new_state(benchmark::State& s) {
    allthermophys_at(s, true);
}
void if97_main_new_state(benchmark::State& s) {
    if97_main_at(s, true);
}
void allthermophys_same_state(benchmark::State& s) {
    allthermophys_at(s, false);
}
void if97_main_same_state(benchmark::State& s) {
    if97_main_at(s, false);
}
void if97_allprops_new_state(benchmark::State& s) {
    if97_allprops_at(s, true);
}
void if97_allprops_same_state(benchmark::State& s) {
    if97_allprops_at(s, false);
}

void calculate_h(benchmark::State& state) {
    select_water();
    const auto ts = temperatures();
    std::string e;
    e.reserve(64);
    std::size_t i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(zb::calculate("PT", 10.0, ts[i++ % 64], "h", e));
    if (e != "No errors") state.SkipWithError(e.c_str());
}

void if97_main_h(benchmark::State& state) {
    const auto ts = temperatures();
    std::array<double, 1> out{};
    std::string e;
    e.reserve(64);
    std::size_t i = 0;
    for (auto _ : state) {
        if97::if97_main("P", 10.0, "T", ts[i++ % 64], "h.", out, e);
        benchmark::DoNotOptimize(out);
    }
    if (e != "No errors") state.SkipWithError(e.c_str());
}

} // namespace

BENCHMARK(if97_main_new_state);
BENCHMARK(if97_allprops_new_state);
BENCHMARK(allthermophys_new_state);
BENCHMARK(if97_main_same_state);
BENCHMARK(if97_allprops_same_state);
BENCHMARK(allthermophys_same_state);
BENCHMARK(if97_main_h);
BENCHMARK(calculate_h);
BENCHMARK_MAIN();
