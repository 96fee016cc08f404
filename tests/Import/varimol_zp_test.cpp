// The Varimol adapter: fluid loading (database, fluid file, named pure fluids), the mode table and
// its suffixes, the molar unit conversions (checked against direct calls of the back-end), the
// composition outputs and the error texts.
#include "Import/varimol_zp.hpp"

#include "base/zentropia_base.hpp"
#include "varimol/varimol.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

using namespace varimol_zp;
using zp_common::composition;

namespace {

void select(std::vector<std::string> names, std::vector<double> conc,
            std::string expected = "No errors") {
    std::string e;
    varimol_setfluid(static_cast<int>(names.size()), names, conc, e);
    if (e == "Same fluid" && expected == "No errors") return;
    ASSERT_EQ(e, expected);
}

struct full_state {
    double p, t, v, d, h, s, u, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda;
    composition x{}, y{}, lnphi{};
    std::string e;
};
full_state evaluate(std::string_view inputspec, double v1, double v2) {
    full_state st{};
    varimol_allprops(inputspec, v1, v2, st.p, st.t, st.v, st.d, st.h, st.s, st.u, st.q, st.x, st.y,
                     st.lnphi, st.cv, st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv, st.dcvdt,
                     st.eta, st.lambda, st.e);
    return st;
}

// the back-end's molar state at (T K, p Pa) in `mode`
struct molar_state {
    double T, p, v, u, h, s, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt;
    composition x{}, y{}, lnphi{};
    int ierr;
};
molar_state backend_pt(int mode, double T, double p) {
    molar_state m{};
    m.T = T, m.p = p;
    varimol::vm3_tmdprop(mode, m.T, m.p, m.v, m.u, m.h, m.s, m.q, m.cv, m.dpdt, m.dpdv, m.d2pdt2,
                         m.d2pdv2, m.d2pdtdv, m.dcvdt, m.x, m.y, m.lnphi, m.ierr);
    return m;
}

double molar_mass() {
    std::string e;
    return varimol_getinfo("M_mol", e);
}

} // namespace

TEST(VarimolAdapter, UnitConversionsAgainstTheBackEnd) {
    select({"C3H8", "nC4"}, {0.6, 0.4});
    const double M = molar_mass();
    EXPECT_NEAR(M, 0.6 * 0.04409562 + 0.4 * 0.0581222, 1e-6);
    for (const auto& [p_bar, t_c] : {std::pair{1.0, 80.0}, {20.0, 20.0}, {5.0, 10.0}}) {
        const auto st = evaluate("PT", p_bar, t_c);
        const auto m = backend_pt(1, t_c + 273.15, p_bar * 1e5);
        ASSERT_EQ(st.e, "No errors");
        EXPECT_DOUBLE_EQ(st.t, t_c);
        EXPECT_DOUBLE_EQ(st.p, p_bar);
        EXPECT_DOUBLE_EQ(st.v, m.v / M);
        EXPECT_DOUBLE_EQ(st.d, M / m.v);
        EXPECT_DOUBLE_EQ(st.h, m.h / M / 1000.0);
        EXPECT_DOUBLE_EQ(st.s, m.s / M / 1000.0);
        EXPECT_DOUBLE_EQ(st.u, m.u / M / 1000.0);
        EXPECT_EQ(st.q, m.q);
        if (m.cv != zp_common::not_set) EXPECT_DOUBLE_EQ(st.cv, m.cv / M / 1000.0);
        EXPECT_EQ(st.dpdt, m.dpdt); // pressure derivatives stay per pascal
        EXPECT_DOUBLE_EQ(st.dpdv, m.dpdv * M);
        EXPECT_DOUBLE_EQ(st.d2pdv2, m.d2pdv2 * M * M);
        EXPECT_DOUBLE_EQ(st.d2pdtdv, m.d2pdtdv * M);
        EXPECT_DOUBLE_EQ(st.dcvdt, m.dcvdt / M);
        EXPECT_EQ(st.eta, zp_common::not_set);
        EXPECT_EQ(st.lambda, zp_common::not_set);
        // every other pair of the same state returns it (those the back-end serves)
        for (const auto& [inputspec, a, b] : {std::tuple{"Pd", st.p, st.d},
                                              {"Td", st.t, st.d},
                                              {"Tv", st.t, st.v},
                                              {"Pv", st.p, st.v}}) {
            const auto again = evaluate(inputspec, a, b);
            if (again.e != "No errors") continue; // pairs of the second part of the back-end
            EXPECT_NEAR(again.t, st.t, 1e-7) << inputspec;
            EXPECT_NEAR(again.h, st.h, 1e-7) << inputspec;
        }
    }
}

TEST(VarimolAdapter, ModesAndSuffixes) {
    select({"CH4", "C2H6"}, {0.9, 0.1});
    // liquid and vapour roots of a two-phase (p, T): modes -1 and -2, no phase split
    const double p = 20.0, t = -100.0;
    const auto stable = evaluate("PT", p, t);
    ASSERT_EQ(stable.e, "No errors");
    EXPECT_GT(stable.q, 0.0);
    EXPECT_LT(stable.q, 1.0);
    const auto liquid = evaluate("PT_liq", p, t);
    const auto vapour = evaluate("PT_vap", p, t);
    EXPECT_EQ(liquid.h, evaluate("PTxliq", p, t).h); // the suffix's first character is free
    EXPECT_DOUBLE_EQ(liquid.v, backend_pt(-1, t + 273.15, p * 1e5).v / molar_mass());
    EXPECT_DOUBLE_EQ(vapour.v, backend_pt(-2, t + 273.15, p * 1e5).v / molar_mass());
    EXPECT_LT(liquid.v, vapour.v);
    // a phase suffix of another pair, or too short a text, changes nothing
    EXPECT_EQ(evaluate("PT_li", p, t).h, stable.h);
    EXPECT_EQ(evaluate("Pq_liq", p, 0.5).h, evaluate("Pq", p, 0.5).h);
    // one homogeneous phase: q = 1 and unit compositions
    const auto one = evaluate("PT_1ph", p, t);
    EXPECT_EQ(one.q, 1.0);
    EXPECT_EQ(one.x[19], 1.0);
    EXPECT_EQ(one.y[0], 1.0);
    // the liquid root asked where only a vapour root exists: code 28 is passed over
    const auto warm = evaluate("PT_liq", 1.0, 100.0);
    EXPECT_EQ(warm.e, "No errors");
    // pairs the table does not know, written as given
    for (const char* inputspec : {"pt", "TP", "xy", ""}) {
        const auto st = evaluate(inputspec, 1.0, 20.0);
        EXPECT_EQ(st.e, std::string("Error in Varimol: calculation of properties as function of ") +
                            inputspec + " not available.");
        EXPECT_EQ(st.h, zp_common::not_set);
    }
    std::string e;
    EXPECT_EQ(varimol_prop("PT", p, t, "T", e), t);
    EXPECT_EQ(varimol_prop("PT", p, t, "cp", e), zp_common::not_set);
    EXPECT_EQ(e, "Error in Varimol: calculation of cp as function of PT not available.");
}

TEST(VarimolAdapter, CompositionOutputsBySideOfTheDome) {
    select({"CH4", "C2H6"}, {0.9, 0.1});
    struct {
        double p, t;
        bool liquid_like, two_phase;
    } const cases[] = {
        {20.0, -100.0, false, true}, {50.0, -150.0, true, false}, {5.0, 20.0, false, false}};
    for (const auto& c : cases) {
        composition x{}, y{}, lnphi{};
        int dim = 0;
        std::string e;
        varimol_liquidcmp("PT", c.p, c.t, x, dim, e);
        varimol_vaporcmp("PT", c.p, c.t, y, dim, e);
        varimol_fugacoef("PT", c.p, c.t, lnphi, dim, e);
        ASSERT_EQ(e, "No errors");
        EXPECT_EQ(dim, 2);
        const auto st = evaluate("PT", c.p, c.t);
        if (c.two_phase) {
            EXPECT_EQ(x[0], st.x[0]);
            EXPECT_EQ(y[1], st.y[1]);
            // the overall composition lies on the tie line
            EXPECT_NEAR(st.q * y[0] + (1 - st.q) * x[0], 0.9, 1e-10);
        } else {
            const composition& present = c.liquid_like ? x : y;
            const composition& absent = c.liquid_like ? y : x;
            EXPECT_EQ(present[0], 0.9);
            EXPECT_EQ(absent[0], 0.0);
        }
        EXPECT_EQ(lnphi[0], st.lnphi[0]);
    }
}

TEST(VarimolAdapter, LoadingAndSelection) {
    std::string e;
    // a pure fluid from the database; its critical point is the exact one of the cubic
    select({"CO2"}, {1.0});
    EXPECT_NEAR(varimol_getinfo("T_crit", e), 304.1282 - 273.15, 1e-6);
    EXPECT_NEAR(varimol_getinfo("P_crit", e), 73.773, 1e-6);
    EXPECT_EQ(varimol_getinfo("Rho_crit", e), zp_common::not_set);
    EXPECT_EQ(e, "Error in Zentropia: for Varimol no info available for Rho_crit.");

    // a predefined mixture: the fluid's own composition; resolved into its pure fluids on request
    select({"R404A"}, {1.0});
    int n = -1;
    zp_adapter::component_names names;
    composition conc{};
    varimol_getfluid(n, names, conc);
    ASSERT_EQ(n, 3);
    EXPECT_EQ(names[0], "R125");
    EXPECT_EQ(names[1], "R143a");
    EXPECT_EQ(names[2], "R134a");
    EXPECT_NEAR(conc[0] + conc[1] + conc[2], 1.0, 1e-12);
    composition x{};
    int dim = 0;
    varimol_liquidcmp("PT", 1.0, -80.0, x, dim, e); // subcooled: the stored composition
    EXPECT_EQ(dim, 3);
    EXPECT_EQ(x[0], 1.0);
    EXPECT_EQ(x[1], 0.0);

    // the same first name, count and composition: "Same fluid", later names not compared
    select({"CH4", "C2H6"}, {0.5, 0.5});
    select({"CH4", "anything"}, {0.5, 0.5}, "Same fluid");
    n = 0;
    varimol_getfluid(n, names, conc);
    EXPECT_EQ(names[1], "?");

    // failures keep the library usable
    select({"no such fluid"}, {1.0}, "Error in Varimol: error opening fluid no such fluid");
    select({"../../etc/passwd"}, {1.0}, "Error in Varimol: error opening fluid ../../etc/passwd");
    select({"R410A", "?"}, {0.4, 0.6}); // the blend again, with another composition
    select({"R410A", "CH4"}, {0.5, 0.5},
           "Error in Varimol: the mixture R410A cannot be combined with other components");
    select({"CH4", "R410A"}, {0.5, 0.5},
           "Error in Varimol: the mixture R410A cannot be combined with other components");
    select({"CH4", "C2H6"}, {0.5, 0.6}, "Error in Varimol. Sum of mole fractions does not equal 1");
    select({"CH4", "C2H6"}, {0.3, 0.7});
    EXPECT_EQ(evaluate("PT", 1.0, 20.0).e, "No errors");
}

TEST(VarimolAdapter, UserFluidFile) {
    // A fluid file dropped into the fluids directory is found when the database lacks the name;
    // one that is not a fluid text is refused with the line at fault.
    const std::filesystem::path dir = ZP_FLUIDS_DIR;
    std::filesystem::copy_file(std::filesystem::path(ZP_DATA_DIR) / "fluids/examples/CO2-N2.vmx",
                               dir / "zp-test-CO2-N2.vmx",
                               std::filesystem::copy_options::overwrite_existing);
    {
        std::ofstream bad(dir / "zp-test-bad.vmx");
        for (int i = 0; i < 120; ++i) bad << (i == 0 ? "1 1" : i == 7 ? "hot" : "1.0") << "\n";
    }
    select({"zp-test-CO2-N2"}, {1.0});
    EXPECT_NEAR(molar_mass(), 0.85 * 0.0440098 + 0.15 * 0.02801348, 1e-9);
    select({"zp-test-bad"}, {1.0}, "Error in Varimol: error reading fluid zp-test-bad, line 8");
    std::filesystem::remove(dir / "zp-test-CO2-N2.vmx");
    std::filesystem::remove(dir / "zp-test-bad.vmx");
}

TEST(VarimolAdapter, ThroughTheLibrary) {
    // Names are translated through the fluid table; an unknown name reaches the adapter.
    std::string e;
    const std::vector<std::string> names{"methane", "ethane"};
    zentropia_base::setfluid("varimol", 2, names, std::vector{0.9, 0.1}, e);
    ASSERT_EQ(e, "No errors");
    EXPECT_NEAR(zentropia_base::calculate("PT", 20.0, -100.0, "q", e),
                evaluate("PT", 20.0, -100.0).q, 0.0);
    e.clear();
    zentropia_base::setfluid("Varimol", 1, std::vector<std::string>{"unobtainium"},
                             std::vector{1.0}, e);
    EXPECT_EQ(e, "Error in Varimol: error opening fluid unobtainium");
    e.clear();
    zentropia_base::setfluid("Varimol", 1, std::vector<std::string>{"R410A"}, std::vector{1.0}, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_NEAR(zentropia_base::calculate("Pq", 10.0, 0.0, "T", e), 0.0, 60.0);
    EXPECT_EQ(e, "No errors");
}
