// Round trips through if97_main: states spread over the whole IF97 range (every region, the
// two-phase dome, the neighbourhood of the critical point) are computed from (P, T) or (T, x);
// every supported input pair taken from such a state must return the same state.
#include "forward.hpp"
#include "if97/if97.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::array<const char*, 7> letter = {"P", "T", "v", "h", "s", "u", "x"};
enum quantity { P, T, v, h, s, u, x };

// A state in the units of if97_main: P bar, T °C, v, h, s, u, x.
using values = std::array<double, 7>;

bool evaluate(const char* l1, double a, const char* l2, double b, values& out) {
    std::string err;
    std::array<double, 7> o{};
    if97::if97_main(l1, a, l2, b, "P,T,v,h,s,u,x.", o, err);
    out = o;
    return err == "No errors";
}

struct reference_state {
    values value;
    bool two_phase;
    std::string origin;
};

// Seeded states per zone; T in K and p in MPa for drawing, stored in if97_main units.
std::vector<reference_state> reference_states() {
    std::vector<reference_state> states;
    std::mt19937_64 rng(97);
    std::uniform_real_distribution<double> U(0.0, 1.0);
    auto add_pt = [&](double p, double TK, const char* zone) {
        values st{};
        if (evaluate("P", p * 10.0, "T", TK - 273.15, st))
            states.push_back({st, false,
                              std::string(zone) + " P=" + std::to_string(p * 10) +
                                  " bar T=" + std::to_string(TK - 273.15) + " C"});
    };
    auto log_between = [&](double a, double b) { return a * std::pow(b / a, U(rng)); };
    for (int k = 0; k < 120; ++k) { // region 1
        const double TK = 273.15 + 350.0 * U(rng);
        add_pt(log_between(if97::forward::psat(TK) * 1.0001, 100.0), TK, "region 1");
    }
    for (int k = 0; k < 120; ++k) { // region 2
        const double TK = 273.15 + 800.0 * U(rng);
        const double top = TK <= 623.15   ? if97::forward::psat(TK) * 0.9999
                           : TK <= 863.15 ? if97::forward::p_b23(TK) * 0.9999
                                          : 100.0;
        add_pt(log_between(1e-4, top), TK, "region 2");
    }
    for (int k = 0; k < 120; ++k) { // region 3
        const double TK = 623.16 + 240.0 * U(rng);
        const double low = if97::forward::p_b23(TK) * 1.0001;
        if (low < 100.0) add_pt(low + (100.0 - low) * U(rng), TK, "region 3");
    }
    for (int k = 0; k < 60; ++k) // near the critical point, both sides of the saturation line
        add_pt(if97::forward::pc + 0.6 * (U(rng) - 0.5), if97::forward::Tc + 3.0 * (U(rng) - 0.5),
               "near-critical");
    for (int k = 0; k < 60; ++k) // region 5
        add_pt(log_between(1e-3, 50.0), 1073.16 + 1200.0 * U(rng), "region 5");
    for (int k = 0; k < 120; ++k) { // the dome, with some states close to the critical point
        const double TK = k % 6 == 0 ? if97::forward::Tc - 2.0 * U(rng)
                                     : 273.16 + (if97::forward::Tc - 273.5) * U(rng);
        values st{};
        const double q = 0.01 + 0.98 * U(rng);
        if (evaluate("T", TK - 273.15, "x", q, st))
            states.push_back(
                {st, true,
                 "two-phase T=" + std::to_string(TK - 273.15) + " C x=" + std::to_string(q)});
    }
    return states;
}

// Relative change of each quantity when either input of the pair changes by a relative 1e-7:
// the conditioning of the pair at this state. Cold liquid from (T, v) or (T, s), for instance,
// fixes the pressure only to a few digits because v and s hardly change with it.
values sensitivity(int a, int b, const values& st) {
    values worst{};
    for (int moved : {a, b}) {
        values shifted = st;
        shifted[moved] *= 1.0 + 1e-7;
        values out{};
        if (!evaluate(letter[a], shifted[a], letter[b], shifted[b], out)) continue;
        for (int q = 0; q < 6; ++q) {
            const double scale = std::max(std::fabs(st[q]), q == T ? 273.15 : 1.0);
            worst[q] = std::max(worst[q], std::fabs(out[q] - st[q]) / scale / 1e-7);
        }
    }
    return worst;
}

constexpr std::array<std::array<int, 2>, 14> pairs = {{
    {P, T},
    {P, h},
    {P, s},
    {P, v},
    {P, u},
    {P, x},
    {T, v},
    {T, s},
    {T, x},
    {v, h},
    {v, s},
    {v, u},
    {v, x},
    {h, s},
}};

double scale_of(int q, double value) {
    return std::max(std::fabs(value), q == T ? 273.15 : 1.0);
}

// Pairs that have two states in places: (v, x) near the critical point, where v' + x (v'' - v')
// has a minimum in T at small x; (P, v) and (T, s) in liquid colder than its density maximum.
bool has_two_states(int a, int b) {
    return (a == v && b == x) || (a == P && b == v) || (a == T && b == s);
}

// The other state of such a pair: same inputs, and a state of IF97 as recomputed from its own
// (P, T), or (T, x) in the dome.
bool another_state_of_the_pair(int a, int b, const values& ref, const values& got) {
    for (const int q : {a, b})
        if (std::fabs(got[q] - ref[q]) > 1e-12 * scale_of(q, ref[q])) return false;
    values again{};
    const bool dome = got[x] > 0.0 && got[x] < 1.0;
    if (!(dome ? evaluate("T", got[T], "x", got[x], again)
               : evaluate("P", got[P], "T", got[T], again)))
        return false;
    for (int q = 0; q < 6; ++q)
        if (std::fabs(again[q] - got[q]) > 1e-10 * scale_of(q, got[q])) return false;
    return true;
}

TEST(If97RoundTrip, EveryPairReturnsTheStateItCameFrom) {
    const std::vector<reference_state> states = reference_states();
    ASSERT_GT(states.size(), 550u);
    int checked = 0, second_states = 0;
    for (const reference_state& ref : states) {
        for (const auto& [a, b] : pairs) {
            // quality only in the dome, where (P, T) does not fix a state
            if ((a == x || b == x) != ref.two_phase) continue;
            values got{};
            const bool ok = evaluate(letter[a], ref.value[a], letter[b], ref.value[b], got);
            EXPECT_TRUE(ok) << letter[a] << letter[b] << " from " << ref.origin;
            if (!ok) continue;
            ++checked;
            // the inputs themselves come back to rounding; the rest to 1e-10, or to what a 1e-13
            // change of the inputs moves them where the pair is ill-conditioned
            const values cond = sensitivity(a, b, ref.value);
            values tol{};
            bool same = true;
            for (int q = 0; q < 6; ++q) {
                tol[q] = ((q == a || q == b) ? 1e-12 : 1e-10 + std::min(cond[q], 1e7) * 1e-13) *
                         scale_of(q, ref.value[q]);
                same = same && std::fabs(got[q] - ref.value[q]) <= tol[q];
            }
            if (!same && has_two_states(a, b) && another_state_of_the_pair(a, b, ref.value, got)) {
                ++second_states;
                continue;
            }
            for (int q = 0; q < 6; ++q)
                EXPECT_LE(std::fabs(got[q] - ref.value[q]), tol[q])
                    << letter[a] << letter[b] << " from " << ref.origin << ": " << letter[q] << " "
                    << got[q] << " instead of " << ref.value[q];
            if (ref.two_phase) {
                EXPECT_NEAR(got[x], ref.value[x], 1e-9)
                    << letter[a] << letter[b] << " from " << ref.origin;
            }
        }
    }
    EXPECT_GT(checked, 5000);
    EXPECT_LT(second_states, 20); // rare: near-critical (v, x), cold liquid (P, v), (T, s)
}

// Quality of single-phase states: never strictly between 0 and 1, extended below pc.
TEST(If97RoundTrip, QualityConventionOutsideTheDome) {
    struct expectation {
        double p_bar, t_C;
        double x_low, x_high; // expected range of x
    };
    const std::array<expectation, 8> cases = {{
        {10.0, 20.0, -1.0, 0.0},    // subcooled: (h - h')/(h'' - h') < 0
        {10.0, 179.0, -0.01, 0.0},  // just below the saturation temperature of 179.88 °C
        {10.0, 180.0, 1.0, 1.01},   // just above it
        {10.0, 500.0, 1.3, 1.4},    // superheated: (3479.0 - 762.7)/(2777.1 - 762.7)
        {210.0, 300.0, -5.0, 0.0},  // region 1 below pc
        {210.0, 400.0, 1.0, 20.0},  // region 3 vapour below pc
        {300.0, 350.0, -1.0, -1.0}, // above pc, colder than Tc
        {300.0, 500.0, 2.0, 2.0},   // above pc, hotter than Tc
    }};
    for (const expectation& c : cases) {
        std::array<double, 1> q{};
        std::string err;
        if97::if97_main("P", c.p_bar, "T", c.t_C, "x.", q, err);
        EXPECT_EQ(err, "No errors");
        EXPECT_GE(q[0], c.x_low) << c.p_bar << " bar " << c.t_C << " °C";
        EXPECT_LE(q[0], c.x_high) << c.p_bar << " bar " << c.t_C << " °C";
        EXPECT_FALSE(q[0] > 0.0 && q[0] < 1.0) << c.p_bar << " bar " << c.t_C << " °C";
    }
}

// The saturated states above 623.15 K come from the region-3 equation itself: both phases have
// the saturation pressure of eq. 30 to rounding, and the liquid is the denser.
TEST(If97RoundTrip, SaturationAboveRegion1IsExact) {
    for (const double t_C : {350.5, 360.0, 370.0, 373.0, 373.9, 373.94, 373.945}) {
        std::array<double, 2> liquid{}, vapour{};
        std::string err;
        if97::if97_main("T", t_C, "x", 0.0, "P,v.", liquid, err);
        ASSERT_EQ(err, "No errors");
        if97::if97_main("T", t_C, "x", 1.0, "P,v.", vapour, err);
        ASSERT_EQ(err, "No errors");
        const double ps = if97::forward::psat(t_C + 273.15) * 10.0;
        EXPECT_NEAR(liquid[0], ps, 1e-13 * ps);
        EXPECT_NEAR(vapour[0], ps, 1e-13 * ps);
        EXPECT_LT(liquid[1], vapour[1]) << t_C;
        // the pressure of each phase from its own density and temperature
        for (const double vv : {liquid[1], vapour[1]}) {
            std::array<double, 1> p{};
            if97::if97_main("T", t_C, "v", vv, "P.", p, err);
            ASSERT_EQ(err, "No errors");
            EXPECT_NEAR(p[0], ps, 2e-9 * ps) << t_C << " °C, v " << vv;
        }
    }
}

} // namespace
