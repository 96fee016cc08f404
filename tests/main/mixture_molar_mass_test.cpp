// Molar masses of a mixture's components and of any composition of them, for the cubic models,
// and what they change for a caller: per-mole values of a coexisting phase are based on that
// phase's own molar mass.
#include "base/zentropia_base.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

namespace {

namespace zb = zentropia_base;
using zp_common::composition;

void select(std::string_view model, const std::vector<std::string>& names,
            const std::vector<double>& conc) {
    std::string e;
    zb::setfluid(model, static_cast<int>(names.size()), names, conc, e);
    ASSERT_TRUE(e == "No errors" || e == "Same fluid") << e;
}

void units(std::string_view basis) {
    std::string e;
    zentropia_units::setunits("SI", basis, "", "", e);
    ASSERT_EQ(e, "No errors");
}

} // namespace

TEST(MixtureMolarMass, ComponentsAndCompositionsOfTheCubicModels) {
    const std::vector<std::string> names{"methane", "carbon dioxide", "ethane"};
    const std::vector<double> conc{0.6, 0.3, 0.1};
    for (const std::string model : {"Varimol", "liteVarimol"}) {
        SCOPED_TRACE(model);
        // each pure fluid's molar mass, as the back-end reports it for that fluid alone
        std::array<double, 3> pure{};
        std::string e;
        for (std::size_t i = 0; i < names.size(); ++i) {
            select(model, {names[i]}, {1.0});
            pure[i] = zb::zp_mmol(e);
            ASSERT_EQ(e, "No errors");
        }
        select(model, names, conc);
        composition mmol{};
        mmol.fill(-1.0);
        zb::zp_mmolcomp(mmol, e);
        ASSERT_EQ(e, "No errors");
        for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(mmol[i], pure[i]) << i;
        EXPECT_EQ(mmol[3], 0.0);
        // the selected composition gives the back-end's molar mass of the mixture
        EXPECT_NEAR(zb::zp_mmol_cnc(conc, e), zb::zp_mmol(e), 1e-15);
        EXPECT_EQ(zb::zp_mmol_cnc(std::vector{0.0, 1.0, 0.0}, e), pure[1]);
        // amounts need not add up to 1
        EXPECT_NEAR(zb::zp_mmol_cnc(std::vector{2.0, 0.0, 2.0}, e), 0.5 * (pure[0] + pure[2]),
                    1e-15);
        EXPECT_EQ(e, "No errors");
        zb::zp_mmol_cnc(std::vector{0.0, 0.0, 0.0}, e);
        EXPECT_EQ(e, "Error in Zentropia: composition without a positive amount");
        EXPECT_NEAR(zb::zp_mmol_cnc(conc, e), zb::zp_mmol(e), 1e-15);
        EXPECT_EQ(e, "No errors");
    }
}

TEST(MixtureMolarMass, PerMoleValuesOfEachPhaseUseItsOwnMolarMass) {
    // The conversion of a two-phase bundle: per mole, each phase's values are its per-mass
    // values times the molar mass of its own composition, the overall ones times the mixture's.
    select("Varimol", {"methane", "ethane"}, {0.9, 0.1});
    std::string e;
    composition mmol{};
    zb::zp_mmolcomp(mmol, e);
    const composition x{0.2, 0.8}, y{0.99, 0.01};
    struct bundle {
        double p = 20.0, t = -100.0, v = 0.01, d = 100.0, h = 50.0, s = 1.5, u = 40.0;
        double v_liq = 0.002, d_liq = 500.0, h_liq = -300.0, s_liq = -2.0, u_liq = -310.0;
        double v_vap = 0.05, d_vap = 20.0, h_vap = 200.0, s_vap = 3.0, u_vap = 180.0;
    };
    const auto convert = [&](std::string_view basis) {
        units(basis);
        bundle b;
        zentropia_main::alloutputconvext(b.p, b.t, b.v, b.d, b.h, b.s, b.u, x, y, b.v_liq, b.d_liq,
                                         b.h_liq, b.s_liq, b.u_liq, b.v_vap, b.d_vap, b.h_vap,
                                         b.s_vap, b.u_vap, e);
        EXPECT_EQ(e, "No errors");
        return b;
    };
    const bundle mass = convert("PerMass"), mole = convert("PerMole");
    units("PerMass");
    const auto molar_mass = [&](const composition& z) {
        return std::inner_product(z.begin(), z.end(), mmol.begin(), 0.0);
    };
    const double m_liq = molar_mass(x), m_vap = molar_mass(y), m = zb::zp_mmol(e);
    ASSERT_GT(m_liq, 1.5 * m_vap);
    struct row {
        double per_mole, per_mass, molar_mass;
    };
    for (const auto& [per_mole, per_mass, mm] :
         {row{mole.h_liq, mass.h_liq, m_liq}, row{mole.s_liq, mass.s_liq, m_liq},
          row{mole.v_liq, mass.v_liq, m_liq}, row{mole.d_liq, mass.d_liq, 1.0 / m_liq},
          row{mole.h_vap, mass.h_vap, m_vap}, row{mole.u_vap, mass.u_vap, m_vap},
          row{mole.h, mass.h, m}, row{mole.v, mass.v, m}})
        EXPECT_NEAR(per_mole, per_mass * mm, 1e-12 * std::fabs(per_mole)) << mm;
}
