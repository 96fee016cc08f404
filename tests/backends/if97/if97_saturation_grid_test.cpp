// The interpolated saturation line that starts the two-phase iterations: it must place a
// mixture given by (v, u) or (s, h) close to its temperature, and find no mixture for a single
// phase. A start that is merely poor would go unnoticed elsewhere (the iterations still converge,
// only slower), hence this test of the starts themselves.
#include "if97/if97.hpp"
#include "saturation_grid.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>

namespace {

namespace grid = if97::saturation_grid;

struct state {
    double T, v, h, s, u; // K, m³/kg, kJ/kg, kJ/(kg K), kJ/kg
};

state from_if97(const char* l1, double a, const char* l2, double b) {
    std::array<double, 5> o{};
    std::string err;
    if97::if97_main(l1, a, l2, b, "T,v,h,s,u.", o, err);
    EXPECT_EQ(err, "No errors") << l1 << "=" << a << " " << l2 << "=" << b;
    return {o[0] + 273.15, o[1], o[2], o[3], o[4]};
}

TEST(SaturationGrid, PlacesMixturesCloseToTheirTemperature) {
    std::mt19937_64 rng(623);
    std::uniform_real_distribution<double> U(0.0, 1.0);
    for (int k = 0; k < 3000; ++k) {
        // 0.0062 bar (0.02 °C) to 220 bar, log-uniform; x from 0.01 to 0.99
        const double p = std::exp(std::log(0.0062) + (std::log(220.0) - std::log(0.0062)) * U(rng));
        const state m = from_if97("P", p, "x", 0.01 + 0.98 * U(rng));
        const double tolerance = 1e-6; // K; the interpolation is good to some 2e-7 K up to 220 bar
        EXPECT_NEAR(grid::mixture_T(grid::v, m.v, grid::u, m.u), m.T, tolerance) << "p " << p;
        EXPECT_NEAR(grid::mixture_T(grid::s, m.s, grid::h, m.h), m.T, tolerance) << "p " << p;
        EXPECT_NEAR(grid::mixture_T(grid::v, m.v, grid::h, m.h), m.T, tolerance) << "p " << p;
    }
}

TEST(SaturationGrid, FindsNoMixtureForASinglePhase) {
    std::mt19937_64 rng(1997);
    std::uniform_real_distribution<double> U(0.0, 1.0);
    for (int k = 0; k < 2000; ++k) {
        // compressed liquid and steam at least 0.5 K away from saturation, up to 500 bar
        const double p = std::exp(std::log(0.01) + (std::log(500.0) - std::log(0.01)) * U(rng));
        std::array<double, 1> ts{};
        std::string err;
        if97::if97_main("P", std::fmin(p, 220.0), "x", 0.0, "T.", ts, err);
        const bool liquid = k % 2 == 0;
        const double t =
            liquid ? 0.5 + (ts[0] - 1.0) * U(rng) : ts[0] + 0.5 + (800.0 - ts[0]) * U(rng);
        if (liquid && p > 220.0 && t > 370.0) continue; // supercritical: no phases at all
        const state st = from_if97("P", p, "T", t);
        EXPECT_TRUE(std::isnan(grid::mixture_T(grid::v, st.v, grid::u, st.u)))
            << "p " << p << " t " << t;
        EXPECT_TRUE(std::isnan(grid::mixture_T(grid::s, st.s, grid::h, st.h)))
            << "p " << p << " t " << t;
    }
}

} // namespace
