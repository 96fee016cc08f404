// Speed of the library's own transport model: one transport_calcprop of a ten-component natural
// gas (viscosity, conductivity, their temperature and density derivatives, surface tension) after
// transport_setfluid, over a fixed seeded set of gas and liquid-like states.

#include "transport/zentropia_transport.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

namespace ztr = zentropia_transport;

const std::array<std::string, 10> names{"methane",        "ethane",          "propane",  "n-butane",
                                        "isobutane",      "n-pentane",       "n-hexane", "nitrogen",
                                        "carbon dioxide", "hydrogen sulfide"};
const std::array<double, 10> fractions{0.80,  0.07,  0.03, 0.01, 0.01,
                                       0.005, 0.005, 0.03, 0.03, 0.01};

struct state {
    double t, v; // K, m³/kg
};

// 200 to 500 K, 1 to 500 kg/m³.
const std::vector<state>& states() {
    static const std::vector<state> set = [] {
        std::mt19937_64 rng(20261123);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::vector<state> out(1024);
        for (auto& s : out) s = {200.0 + 300.0 * u(rng), 1.0 / (1.0 + 499.0 * u(rng))};
        return out;
    }();
    return set;
}

void BM_calcprop_ten_components(benchmark::State& bench) {
    std::string errormsg;
    ztr::transport_setfluid(10, names, fractions, errormsg);
    if (errormsg != "No errors") {
        bench.SkipWithError(errormsg.c_str());
        return;
    }
    const auto& set = states();
    std::size_t k = 0;
    double eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma;
    for (auto _ : bench) {
        const state& s = set[k++ & (set.size() - 1)];
        ztr::transport_calcprop(s.t, s.v, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                                errormsg);
        benchmark::DoNotOptimize(eta);
        benchmark::DoNotOptimize(lambda);
        benchmark::DoNotOptimize(sigma);
    }
}
BENCHMARK(BM_calcprop_ten_components);

} // namespace

BENCHMARK_MAIN();
