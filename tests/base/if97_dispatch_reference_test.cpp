// IF97 water through the whole dispatch path (selection, allthermophys / calculate, the IF97
// adapter, the back-end) against the IAPWS verification values of R7-97(2012).
#include "backends/if97/reference_csv.hpp"
#include "base/zentropia_base.hpp"
#include "if97/if97.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace zb = zentropia_base;
using zp_common::composition;

namespace {

// The verification tables print 9 significant digits.
constexpr double relative_tolerance = 1e-8;

struct state_values {
    double p, t, v, d, h, s, u, q;
};

state_values all_properties(std::string_view spec, double in1, double in2, std::string& e) {
    state_values r{};
    double cv = 0, a = 0, eta = 0, lambda = 0, sigma = 0;
    composition x{}, y{};
    zb::allthermophys(spec, in1, in2, r.p, r.t, r.v, r.d, r.h, r.s, r.u, r.q, x, y, cv, a, a, a, a,
                      a, a, eta, lambda, sigma, e);
    return r;
}

class If97Reference : public testing::Test {
protected:
    void SetUp() override {
        std::string e;
        zb::setfluid("IF97", 1, std::vector<std::string>{"water"}, std::vector<double>{1.0}, e);
        ASSERT_EQ(e, "Same fluid");
        rows = reference_csv::read(std::string(ZP_DATA_DIR) + "/if97/verification_tables.csv");
        ASSERT_FALSE(rows.empty());
    }
    std::vector<reference_csv::row> rows;
};

void expect_close(double actual, double expected, const std::string& what) {
    EXPECT_NEAR(actual, expected, relative_tolerance * std::fabs(expected)) << what;
}

} // namespace

// Regions 1, 2 and 5 from (T, p), region 3 from (rho, T): the full state through allthermophys,
// cp and the speed of sound through calculate.
TEST_F(If97Reference, SinglePhaseStates) {
    int checked = 0;
    for (const auto& r : rows) {
        const auto& table = r["table"];
        const bool tp = table == "R7-97(2012) Table 5" || table == "R7-97(2012) Table 15" ||
                        table == "R7-97(2012) Table 42";
        const bool rho_t = table == "R7-97(2012) Table 33";
        if (!tp && !rho_t) continue;
        // internal units: bar and °C
        const std::string spec = tp ? "PT" : "dT";
        const double in1 = tp ? r.number("in2") * 10.0 : r.number("in1");
        const double in2 = tp ? r.number("in1") - 273.15 : r.number("in2") - 273.15;
        const auto& out = r["output"];
        const double expected = r.number("value");
        const std::string what = table + " " + r["inputs"] + " " + out;
        std::string e;
        const auto st = all_properties(spec, in1, in2, e);
        ASSERT_EQ(e, "No errors") << what;
        EXPECT_NEAR(st.d * st.v, 1.0, 1e-15) << what;
        if (out == "v") expect_close(st.v, expected, what);
        if (out == "h") expect_close(st.h, expected, what);
        if (out == "u") expect_close(st.u, expected, what);
        if (out == "s") expect_close(st.s, expected, what);
        if (out == "p") expect_close(st.p / 10.0, expected, what);
        if (out == "cp") expect_close(zb::calculate(spec, in1, in2, "cp", e), expected, what);
        if (out == "w") expect_close(zb::calculate(spec, in1, in2, "c", e), expected, what);
        EXPECT_EQ(e, "No errors") << what;
        ++checked;
    }
    EXPECT_EQ(checked, 4 * 18);
}

// Saturation pressure from temperature and saturation temperature from pressure, with the
// quality as second input.
TEST_F(If97Reference, SaturationLine) {
    int checked = 0;
    for (const auto& r : rows) {
        const auto& table = r["table"];
        std::string e;
        if (table == "R7-97(2012) Table 35") {
            const double p = zb::calculate("Tq", r.number("in1") - 273.15, 0.0, "P", e);
            expect_close(p / 10.0, r.number("value"), r["inputs"]);
        } else if (table == "R7-97(2012) Table 36") {
            const double t = zb::calculate("Pq", r.number("in1") * 10.0, 1.0, "T", e);
            expect_close(t + 273.15, r.number("value"), r["inputs"]);
        } else {
            continue;
        }
        EXPECT_EQ(e, "No errors") << r["inputs"];
        ++checked;
    }
    EXPECT_EQ(checked, 6);
}

// The state from specific volume and internal energy goes through allthermophys with "vu" for
// IF97: a round trip from (p, T) comes back to the same pressure and temperature.
TEST_F(If97Reference, VolumeAndEnergyRoundTrip) {
    for (const auto& [p_bar, t_c] : {std::pair{30.0, 26.85}, {1.0, 200.0}, {250.0, 380.0}}) {
        std::string e;
        const auto st = all_properties("PT", p_bar, t_c, e);
        ASSERT_EQ(e, "No errors");
        double p = 0, t = 0, v = st.v, h = 0, s = 0, u = st.u, cv = 0, a = 0;
        zb::zflow_tmd_vu(p, t, v, h, s, u, cv, a, a, a, a, a, a, e);
        ASSERT_EQ(e, "No errors") << p_bar << " bar";
        EXPECT_NEAR(p, p_bar, 1e-6 * p_bar);
        EXPECT_NEAR(t, t_c, 1e-6);
        EXPECT_NEAR(h, st.h, 1e-7 * st.h);
    }
}

// Water given with a second component of zero concentration: the back-end sees water alone, the
// caller's second position receives 0.
TEST_F(If97Reference, ZeroConcentrationComponent) {
    std::string e;
    zb::setfluid("IF97", 2, std::vector<std::string>{"water", "ethanol"},
                 std::vector<double>{1.0, 0.0}, e);
    ASSERT_EQ(e, "Same fluid");
    EXPECT_EQ(zb::selection().ncmps, 1);
    double p, t, v, d, h, s, u, q, cv, a, eta, lambda, sigma;
    composition x{}, y{};
    x.fill(7.0);
    zb::allthermophys("Pq", 1.0, 0.25, p, t, v, d, h, s, u, q, x, y, cv, a, a, a, a, a, a, eta,
                      lambda, sigma, e);
    ASSERT_EQ(e, "No errors");
    EXPECT_DOUBLE_EQ(x[0], 0.75);
    EXPECT_DOUBLE_EQ(y[0], 0.25);
    EXPECT_EQ(x[1], 0.0);
    EXPECT_EQ(y[1], 0.0);
    EXPECT_EQ(x[2], 7.0);
    EXPECT_TRUE(zb::isinit(sigma));
    EXPECT_EQ(zb::zp_mmol_cnc(x, e), 0.018015257);
}

TEST_F(If97Reference, VersionOfTheBackEnd) {
    std::array<int, 4> direct{}, version{};
    if97::getversion(direct);
    zb::zpgetversion("IF97", version);
    EXPECT_EQ(version, direct);
    EXPECT_NE(version, (std::array<int, 4>{-9, -9, -9, -9}));
}
