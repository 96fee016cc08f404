// The liteVarimol adapter through the library: the same states as the Varimol adapter for a
// mixture, its capacity of 10 components, the limit messages of the selected fluid, the
// saturation pressure it does not compute and its fluid constants.
#include "Import/litevarimol_zp.hpp"

#include "base/zentropia_base.hpp"
#include "litevarimol/litevarimol.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

namespace zb = zentropia_base;

namespace {

using zp_common::composition;

// the selection's message; a selection the model already holds counts as made
std::string select(const char* model, std::vector<std::string> names, std::vector<double> conc) {
    std::string e;
    zb::setfluid(model, static_cast<int>(names.size()), names, conc, e);
    return e == "Same fluid" ? "No errors" : e;
}

struct full_state {
    double p, t, v, d, h, s, u, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda,
        sigma;
    composition x{}, y{};
    std::string e;
};
full_state state(const char* inputspec, double v1, double v2) {
    full_state st{};
    zb::allthermophys(inputspec, v1, v2, st.p, st.t, st.v, st.d, st.h, st.s, st.u, st.q, st.x, st.y,
                      st.cv, st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv, st.dcvdt, st.eta,
                      st.lambda, st.sigma, st.e);
    return st;
}

void expect_same(const full_state& lite, const full_state& full, const std::string& where) {
    ASSERT_EQ(lite.e, "No errors") << where;
    ASSERT_EQ(full.e, "No errors") << where;
    const double pairs[][2] = {
        {lite.p, full.p},       {lite.t, full.t},       {lite.v, full.v},
        {lite.h, full.h},       {lite.s, full.s},       {lite.u, full.u},
        {lite.q, full.q},       {lite.cv, full.cv},     {lite.dpdt, full.dpdt},
        {lite.dpdv, full.dpdv}, {lite.x[1], full.x[1]}, {lite.y[1], full.y[1]}};
    for (const auto& [a, b] : pairs) EXPECT_NEAR(a, b, 1e-9 * (1.0 + std::abs(b))) << where;
}

} // namespace

TEST(LiteVarimolAdapter, SameStatesAsVarimolForAMixture) {
    const std::vector<std::string> names{"methane", "ethane"};
    const std::vector<double> conc{0.9, 0.1};
    // the state of both models at one input pair; returns liteVarimol's
    const auto both = [&](const char* inputspec, double v1, double v2) {
        EXPECT_EQ(select("Varimol", names, conc), "No errors");
        const auto full = state(inputspec, v1, v2);
        EXPECT_EQ(select("liteVarimol", names, conc), "No errors");
        const auto lite = state(inputspec, v1, v2);
        expect_same(lite, full, std::string(inputspec) + " " + std::to_string(v1));
        return lite;
    };
    struct {
        const char* inputspec;
        double v1, v2;
    } cases[] = {{"PT", 50.0, 0.0}, {"PT", 20.0, -90.0}, {"Pq", 20.0, 0.5},
                 {"Pq", 30.0, 0.0}, {"Tq", -100.0, 1.0}, {"PT_liq", 20.0, -120.0}};
    for (const auto& c : cases) {
        const auto lite = both(c.inputspec, c.v1, c.v2);
        // pressure and enthalpy of the state found give it back, in both models
        const auto back = both("Ph", lite.p, lite.h);
        EXPECT_NEAR(back.t, lite.t, 1e-6) << c.inputspec;
    }
}

TEST(LiteVarimolAdapter, PhaseCompositionsByTheVapourFraction) {
    ASSERT_EQ(select("liteVarimol", {"methane", "ethane"}, {0.9, 0.1}), "No errors");
    const auto split = state("Pq", 20.0, 0.5);
    composition liquid{}, vapour{};
    std::string e;
    zb::liquidcmp_zp("Pq", 20.0, 0.5, liquid, e);
    zb::vaporcmp_zp("Pq", 20.0, 0.5, vapour, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_EQ(liquid[1], split.x[1]);
    EXPECT_EQ(vapour[1], split.y[1]);
    EXPECT_GT(liquid[1], vapour[1]); // ethane gathers in the liquid
    // a gas above its dew point is vapour of the overall composition
    zb::liquidcmp_zp("PT", 1.0, 20.0, liquid, e);
    zb::vaporcmp_zp("PT", 1.0, 20.0, vapour, e);
    EXPECT_EQ(liquid[0], 0.0);
    EXPECT_EQ(vapour[1], 0.1);
}

TEST(LiteVarimolAdapter, CapacityAndBadSelections) {
    const std::vector<std::string> eleven{"methane",        "ethane",    "propane",  "n-butane",
                                          "isobutane",      "n-pentane", "n-hexane", "nitrogen",
                                          "carbon dioxide", "n-heptane", "n-octane"};
    const std::vector<double> even(11, 1.0 / 11.0);
    EXPECT_EQ(select("liteVarimol", eleven, even),
              "Error in liteVarimol: a selection of 11 components, at most 10.");
    // ten of them are served (the composition renormalised to one)
    std::vector<std::string> ten(eleven.begin(), eleven.end() - 1);
    EXPECT_EQ(select("liteVarimol", ten, std::vector<double>(10, 0.1)), "No errors");
    EXPECT_EQ(state("PT", 1.0, 200.0).e, "No errors");
    EXPECT_EQ(select("liteVarimol", {"methane", "ethane"}, {0.5, 0.6}),
              "Error in liteVarimol. Sum of mole fractions does not equal 1");
    EXPECT_EQ(select("liteVarimol", {"no such fluid"}, {1.0}),
              "Error in liteVarimol: error opening fluid no such fluid");
    ASSERT_EQ(select("liteVarimol", {"methane", "ethane"}, {0.5, 0.5}), "No errors");
    EXPECT_EQ(state("PT", 10.0, 20.0).e, "No errors");
    EXPECT_EQ(state("xy", 10.0, 20.0).e,
              "Error in liteVarimol: calculation of properties as function of xy not available.");
}

TEST(LiteVarimolAdapter, LimitMessagesShowTheSelectedFluid) {
    for (const char* fluid : {"methane", "propane"}) {
        ASSERT_EQ(select("liteVarimol", {fluid}, {1.0}), "No errors");
        std::string e;
        const double tmax = zb::getinfo("T_max", e) + 273.15;
        const double tmin = zb::getinfo("T_min", e) + 273.15;
        char above[16], below[16];
        std::snprintf(above, sizeof above, "%7.2f", tmax);
        std::snprintf(below, sizeof below, "%7.2f", tmin);
        EXPECT_EQ(state("PT", 1.0, tmax - 273.15 + 50.0).e,
                  std::string("Error in liteVarimol. Temperature out of range for this fluid, "
                              "T > Tmax (= ") +
                      above + " K)...")
            << fluid;
        EXPECT_EQ(state("PT", 1.0, tmin - 273.15 - 5.0).e,
                  std::string("Error in liteVarimol. Temperature out of range for this fluid, "
                              "T < Tmin (= ") +
                      below + " K)...")
            << fluid;
    }
}

TEST(LiteVarimolAdapter, PsatK1AndFluidConstants) {
    ASSERT_EQ(select("liteVarimol", {"methane", "ethane"}, {0.8, 0.2}), "No errors");
    double psat = 7.0;
    std::string e;
    zb::psat_k1(0.05, -100.0, psat, e);
    EXPECT_EQ(psat, 0.0);
    EXPECT_EQ(e, "No errors");

    double tcr = 0, pcr = 0, tmin = 0, tmax = 0, pmax = 0;
    litevarimol::critpoint(tcr, pcr);
    litevarimol::ptminmax(tmin, tmax, pmax);
    EXPECT_GT(tcr, 190.0); // the mixture's critical point lies above methane's
    const struct {
        const char* key;
        double expected;
    } keys[] = {{"M_mol", litevarimol::wmol()},
                {"T_crit", tcr - 273.15},
                {"P_crit", pcr / 1e5},
                {"T_min", tmin - 273.15},
                {"T_max", tmax - 273.15}};
    for (const auto& k : keys) {
        EXPECT_DOUBLE_EQ(litevarimol_zp::litevarimol_getinfo(k.key, e), k.expected) << k.key;
        EXPECT_EQ(e, "No errors");
    }
    EXPECT_NEAR(keys[0].expected, 0.8 * 0.016043 + 0.2 * 0.030069, 1e-5);
    EXPECT_EQ(litevarimol_zp::litevarimol_getinfo("T_boil", e), zp_common::not_set);
    EXPECT_EQ(e, "Error in Zentropia: for liteVarimol no info available for T_boil.");
}
