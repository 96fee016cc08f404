// The IF97 adapter: fluid constants, the fixed fluid, and the translation of inputs and output
// keywords to the back-end's letters and codes (checked against direct calls of the back-end).
#include "Import/if97_zp.hpp"

#include "if97/if97.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace if97_zp;
using zp_common::composition;

namespace {

// the back-end's answer for one output code at (letter1 value1, letter2 value2)
double backend(std::string_view l1, double v1, std::string_view l2, double v2,
               std::string_view code) {
    std::array<double, 1> out{};
    std::string e;
    if97::if97_main(l1, v1, l2, v2, std::string(code) + ".", out, e);
    EXPECT_EQ(e, "No errors") << code;
    return out[0];
}

} // namespace

TEST(If97Adapter, FluidConstants) {
    struct {
        const char* keyword;
        double value;
        const char* errormsg;
    } const cases[] = {
        {"M_mol", 0.018015257, "No errors"},
        {"T_crit", 373.946, "No errors"},
        {"P_crit", 220.64, "No errors"},
        {"T_min", 0.01000001, "No errors"},
        {"T_max", 2000.0, "No errors"},
        {"T_max   ", 2000.0, "No errors"},
        {"t_max", 0.0, "Error in Zentropia: for IF97 no info available for t_max."},
        {"Rho_crit  ", 0.0, "Error in Zentropia: for IF97 no info available for Rho_crit."},
        {"", 0.0, "Error in Zentropia: for IF97 no info available for ."},
    };
    for (const auto& c : cases) {
        std::string e = "stale";
        EXPECT_EQ(if97_getinfo(c.keyword, e), c.value) << c.keyword;
        EXPECT_EQ(e, c.errormsg) << c.keyword;
    }
}

TEST(If97Adapter, AlwaysWater) {
    int n = 0;
    zp_adapter::component_names comp;
    comp.fill("old");
    composition conc{};
    conc.fill(0.5);
    if97_getfluid(n, comp, conc);
    EXPECT_EQ(n, 1);
    EXPECT_EQ(comp[0], "H2O");
    EXPECT_EQ(conc[0], 1.0);
    for (int i = 1; i < 20; ++i) EXPECT_TRUE(comp[i] == "?" && conc[i] == 0.0) << i;
}

TEST(If97Adapter, InputsAndKeywordsReachTheBackEndTranslated) {
    std::string e;
    // liquid at 10 bar, 50 °C; vapour at 1 bar, 150 °C; wet steam at 1 bar
    const double v_liquid = backend("P", 10.0, "T", 50.0, "v");
    struct {
        const char* inputspec;
        double in1, in2;
        const char* keyword;
        const char* l1;
        double b1;
        const char* l2;
        double b2;
        const char* code;
        bool reciprocal;
    } const cases[] = {
        {"PT", 10.0, 50.0, "h", "P", 10.0, "T", 50.0, "h", false},
        {"PT", 10.0, 50.0, "d", "P", 10.0, "T", 50.0, "v", true},
        {"PT", 1.0, 150.0, "c", "P", 1.0, "T", 150.0, "w", false},
        {"PT", 1.0, 150.0, "eta", "P", 1.0, "T", 150.0, "dv", false},
        {"PT", 1.0, 150.0, "lambda", "P", 1.0, "T", 150.0, "tc", false},
        {"PT", 10.0, 50.0, "sigma", "P", 10.0, "T", 50.0, "st", false},
        {"Pq", 1.0, 0.3, "q", "P", 1.0, "x", 0.3, "x", false},
        // densities are sent as specific volumes, in either position
        {"dT", 1.0 / v_liquid, 50.0, "P", "v", v_liquid, "T", 50.0, "P", false},
        {"Td", 50.0, 1.0 / v_liquid, "P", "T", 50.0, "v", v_liquid, "P", false},
        // a ready-made list passes as it is
        {"PT", 10.0, 50.0, "dP_dT", "P", 10.0, "T", 50.0, "dP_dT", false},
    };
    for (const auto& c : cases) {
        const double expected = backend(c.l1, c.b1, c.l2, c.b2, c.code);
        const double got = if97_prop(c.inputspec, c.in1, c.in2, c.keyword, e);
        EXPECT_EQ(e, "No errors") << c.inputspec << ' ' << c.keyword;
        EXPECT_DOUBLE_EQ(got, c.reciprocal ? 1.0 / expected : expected)
            << c.inputspec << ' ' << c.keyword;
    }
}

TEST(If97Adapter, ListsAndLongKeywords) {
    std::string e;
    std::array<double, 3> out{};
    if97_props("PT", 10.0, 50.0, "h,s,cp", out, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_DOUBLE_EQ(out[0], if97_prop("PT", 10.0, 50.0, "h", e));
    EXPECT_DOUBLE_EQ(out[1], if97_prop("PT", 10.0, 50.0, "s", e));
    EXPECT_DOUBLE_EQ(out[2], if97_prop("PT", 10.0, 50.0, "cp", e));
    // trailing blanks of a keyword that is not one of the six stay in front of the "."
    EXPECT_DOUBLE_EQ(if97_prop("PT", 10.0, 50.0, "h   ", e), out[0]);
    EXPECT_EQ(e, "No errors");
    // a keyword the back-end does not know: its message, and the not-computed value
    EXPECT_EQ(if97_prop("PT", 10.0, 50.0, "enthalpy", e), -8888.8);
    EXPECT_EQ(e, "Error in IF97: unknown output code 'enthalpy'");
    // the back-end reads 80 characters at most: a longer text loses its closing "."
    std::array<double, 40> many{};
    std::string list = "h";
    while (list.size() < 79) list += ",h";
    if97_props("PT", 10.0, 50.0, list, many, e);
    EXPECT_EQ(e, "No errors");
    if97_props("PT", 10.0, 50.0, list + ",h", many, e);
    EXPECT_NE(e, "No errors");
    EXPECT_EQ(many[0], -8888.8);
}

TEST(If97Adapter, FullState) {
    struct {
        const char* inputspec;
        double in1, in2;
    } const states[] = {
        {"PT", 1.0, 26.85}, {"PT", 1.0, 300.0}, {"Pq", 1.0, 0.25}, {"PT", 300.0, 500.0}};
    for (const auto& s : states) {
        double p, t, v, d, h, en, u, q, cv, eta, lambda;
        composition x{}, y{};
        std::string e;
        if97_allprops(s.inputspec, s.in1, s.in2, p, t, v, d, h, en, u, q, x, y, cv, eta, lambda, e);
        ASSERT_EQ(e, "No errors") << s.inputspec << s.in1;
        EXPECT_EQ(p, s.in1);
        EXPECT_DOUBLE_EQ(d * v, 1.0);
        EXPECT_DOUBLE_EQ(h, if97_prop(s.inputspec, s.in1, s.in2, "h", e));
        EXPECT_NEAR(u, h - p * 1e5 * v / 1e3, 1e-10 * std::fabs(h)); // u = h - Pv, kJ/kg
        EXPECT_DOUBLE_EQ(x[0] + y[0], 1.0);
        EXPECT_EQ(y[0], q);
        EXPECT_TRUE(x[1] == -8888.8 && y[1] == -8888.8 && x[19] == -8888.8);
        EXPECT_GT(cv, 0.0);
    }
}

TEST(If97Adapter, BackEndFailuresPassUnchanged) {
    double p = 1, t = 2, v = 3, d = 4, h = 5, s = 6, u = 7, q = 8, cv = 9, eta = 10, lambda = 11;
    composition x{}, y{};
    std::string e;
    if97_allprops("PT", 2000.0, 20.0, p, t, v, d, h, s, u, q, x, y, cv, eta, lambda, e);
    EXPECT_TRUE(e.starts_with("Error in IF97: ")) << e;
    for (double value : {p, t, v, d, h, s, u, q, cv, eta, lambda, x[0], y[0]})
        EXPECT_EQ(value, -8888.8);
    // a density of zero is an infinite specific volume
    EXPECT_EQ(if97_prop("dT", 0.0, 20.0, "h", e), -8888.8);
    EXPECT_EQ(e, "Error in IF97: input value of v is not a finite number");
    EXPECT_EQ(if97_prop("zT", 1.0, 20.0, "h", e), -8888.8);
    EXPECT_TRUE(e.starts_with("Error in IF97: unknown input letter 'z'")) << e;
    EXPECT_EQ(if97_prop("P", 1.0, 20.0, "h", e), -8888.8);
    EXPECT_TRUE(e.starts_with("Error in IF97: ")) << e;
    // and the next good call works
    EXPECT_GT(if97_prop("PT", 1.0, 20.0, "h", e), 0.0);
    EXPECT_EQ(e, "No errors");
}
