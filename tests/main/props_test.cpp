// What a caller of the property interface observes beyond the reference values: keywords, the
// not-computed sentinel, the bundles' special cases, phase markers, failures and bad input.
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace water_support;
namespace zm = zentropia_main;
using zp_common::not_set;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

// 10 bar, 100 °C (liquid), and 10 bar, 300 °C (vapour), in the "Zentropia" set.
constexpr double p_bar = 10.0, t_liquid = 100.0, t_vapour = 300.0;

double calc(std::string_view keyword, std::string& errormsg, double t = t_liquid) {
    return zm::calcprop(keyword, "PT", p_bar, t, errormsg);
}

TEST(Calcprop, KeywordFormsAgree) {
    select_water();
    const std::vector<std::vector<std::string>> groups{
        {"pressure", "Pressure", "PRESSURE", "P", "p", "pressure      "},
        {"temperature", "t", "T"},
        {"specvolume", "v", "V"},
        {"density", "d", "Density"},
        {"enthalpy", "h", "H"},
        {"entropy", "s"},
        {"intenergy", "u"},
        {"vaporqual", "q"},
        {"heatcapv", "cv", "CV"},
        {"heatcapp", "cp", "Cp"},
        {"soundspeed", "c", "SoundSpeed"},
        {"viscosity", "eta", "ETA"},
        {"thermcond", "lambda", "Lambda"},
        // A keyword is a text of 32 characters: what follows is cut off.
        {"enthalpy", "enthalpy                        and more"}};
    for (const auto& group : groups) {
        std::string errormsg;
        const double first = calc(group[0], errormsg);
        ASSERT_EQ(errormsg, "No errors") << group[0];
        for (const auto& keyword : group) {
            EXPECT_EQ(calc(keyword, errormsg), first) << keyword;
            EXPECT_EQ(errormsg, "No errors") << keyword;
        }
    }
}

TEST(Calcprop, UnknownKeywords) {
    select_water();
    for (const char* keyword : {"enthalpie", "", "x", "heat capacity", "dp_dt", " p", "fugacity",
                                "a keyword far longer than the thirty-two characters"}) {
        std::string errormsg;
        calc(keyword, errormsg);
        EXPECT_EQ(errormsg, "Unknown property specified...") << '"' << keyword << '"';
        // The library stays usable.
        EXPECT_GT(calc("h", errormsg), 400.0);
        EXPECT_EQ(errormsg, "No errors");
    }
}

TEST(Calcprop, NotComputedValuesReachTheCallerUnconverted) {
    // IF97 has no surface tension in its state bundle and no pressure derivatives there, so the
    // derivative properties other than cp and c are not computed.
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e6), t = to_set(set, kind::T, 373.15);
        for (const char* keyword :
             {"sigma", "alpha", "beta", "chi", "fi", "ksi", "psi", "zeta", "theta", "kappa",
              "gamma", "dpdt", "dpdv", "d2pdt2", "d2pdv2", "d2pdtdv", "dcvdt"}) {
            std::string errormsg;
            EXPECT_EQ(zm::calcprop(keyword, "PT", p, t, errormsg), not_set)
                << keyword << " in " << set.name << " " << set.basis;
            EXPECT_EQ(errormsg, "No errors");
        }
    }
}

TEST(Conversion, SentinelPassesEveryConverter) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        for (double sentinel : {not_set, not_set + 0.05, not_set - 0.09}) {
            for (const char* symbol : {"P", "T", "h", "d", "kappa", "eta", "Mmol"}) {
                double out = 0.0;
                zm::outputconversion(symbol, sentinel, out);
                EXPECT_EQ(out, sentinel) << symbol;
            }
            double v[21];
            std::fill(std::begin(v), std::end(v), sentinel);
            zm::alloutputconv(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                              v[11], v[12], v[13], v[14], v[15], v[16], v[17], v[18], v[19], v[20]);
            for (double x : v) EXPECT_EQ(x, sentinel) << set.name;
        }
        // A value just outside the sentinel's band is converted.
        double out = 0.0;
        zm::outputconversion("T", not_set - 0.2, out);
        if (set.name != "Zentropia") {
            EXPECT_NE(out, not_set - 0.2);
        }
    }
}

TEST(Conversion, TemperatureInputsReachTheBackEndInCelsius) {
    // The same state in kelvin (SI) and in °C: the offset of the conversion pair is applied.
    select_water("SI", "PerMass");
    std::string errormsg;
    const double h_si = zm::enthalpy("PT", 1e6, 373.15, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    select_water("Zentropia", "PerMass");
    EXPECT_NEAR(zm::enthalpy("PT", 10.0, 100.0, errormsg) * 1000.0, h_si, 1e-9 * h_si);
}

TEST(Bundles, AllpropsMatchesCalcpropAndEntryPoints) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 5e6), t = to_set(set, kind::T, 600.0);
        double P, T, v, d, h, s, u, q, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta;
        double kappa, gamma, eta, lambda;
        composition x{}, y{};
        std::string errormsg;
        zm::allprops("PT", p, t, P, T, v, d, h, s, u, q, x, y, cv, cp, c, alpha, beta, chi, fi, ksi,
                     psi, zeta, theta, kappa, gamma, eta, lambda, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        const std::vector<std::pair<double, double>> same{
            {h, zm::calcprop("h", "PT", p, t, errormsg)},
            {cp, zm::heatcapp("PT", p, t, errormsg)},
            {c, zm::soundspeed("PT", p, t, errormsg)},
            {d, zm::density("PT", p, t, errormsg)},
            {eta, zm::viscosity("PT", p, t, errormsg)},
            {lambda, zm::thermcond("PT", p, t, errormsg)},
            {cv, zm::heatcapv("PT", p, t, errormsg)}};
        for (const auto& [bundle, single] : same) EXPECT_NEAR(bundle, single, 1e-12 * single);
        EXPECT_NEAR(v * d, 1.0, 1e-12) << "per-mole volume and density are reciprocal too";
        // The bundle's extra derivatives are not computed for IF97.
        for (double value : {alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa, gamma})
            EXPECT_EQ(value, not_set);
    }
}

TEST(Bundles, Su2BundleSquaresTheSoundSpeed) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e5), t = to_set(set, kind::T, 500.0);
        double P, T, d, s, u, cv, c2, alpha, beta;
        std::string errormsg;
        zm::allpropssu2("PT", p, t, P, T, d, s, u, cv, c2, alpha, beta, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        const double c = zm::soundspeed("PT", p, t, errormsg);
        EXPECT_NEAR(c2, c * c, 1e-12 * c * c) << set.name;
        EXPECT_NEAR(s, zm::entropy("PT", p, t, errormsg), 1e-12 * std::fabs(s));
        EXPECT_EQ(alpha, not_set);
        EXPECT_EQ(beta, not_set);
    }
}

TEST(Bundles, TarnBundleReturnsZeroTransportDerivatives) {
    select_water("SI", "PerMass");
    double out[15], dlam_dt = 1, dlam_drho = 1, deta_dt = 1, deta_drho = 1;
    std::string errormsg;
    zm::allpropstarn("PT", 1e5, 300.0, out[0], out[1], out[2], out[3], out[4], out[5], out[6],
                     out[7], out[8], out[9], out[10], out[11], out[12], out[13], out[14], dlam_dt,
                     dlam_drho, deta_dt, deta_drho, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(out[4], 112.5e3, 0.5e3) << "h in J/kg";
    EXPECT_EQ(out[10], not_set) << "alpha";
    EXPECT_EQ(dlam_dt, 0.0);
    EXPECT_EQ(dlam_drho, 0.0);
    EXPECT_EQ(deta_dt, 0.0);
    EXPECT_EQ(deta_drho, 0.0);
    // Also after a failure.
    dlam_dt = 1;
    zm::allpropstarn("PT", nan, 300.0, out[0], out[1], out[2], out[3], out[4], out[5], out[6],
                     out[7], out[8], out[9], out[10], out[11], out[12], out[13], out[14], dlam_dt,
                     dlam_drho, deta_dt, deta_drho, errormsg);
    EXPECT_NE(errormsg, "No errors");
    EXPECT_EQ(dlam_dt, 0.0);
}

TEST(Bundles, SaturationBundleLeavesItsOutputsOnFailure) {
    select_water();
    double P, T, v, d, h, s, u, q, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta;
    double kappa, gamma, eta, lambda;
    std::array<double, 10> line;
    line.fill(123.0);
    composition x{}, y{};
    std::string errormsg;
    zm::allpropssat("PT", 5000.0, 100.0, P, T, v, d, h, s, u, q, x, y, cv, cp, c, alpha, beta, chi,
                    fi, ksi, psi, zeta, theta, kappa, gamma, eta, lambda, line[0], line[1], line[2],
                    line[3], line[4], line[5], line[6], line[7], line[8], line[9], errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;
    for (double value : line) EXPECT_EQ(value, 123.0);
}

TEST(Bundles, ModelicaSaturationAtAndAboveTheCriticalPressure) {
    // With the pressure in bar, the internal pressure meets the critical pressure.
    select_water("Zentropia", "PerMass");
    std::array<double, 10> line;
    std::string errormsg;
    for (double p : {220.64, 221.0, 300.0}) {
        line.fill(0.0);
        zm::modelica_p(p, line[0], line[1], line[2], line[3], line[4], line[5], line[6], line[7],
                       line[8], line[9], errormsg);
        for (double value : line) EXPECT_EQ(value, not_set) << p;
    }
    // With pressures in Pa the internal pressure (bar) is compared with the critical pressure in
    // Pa: no sentinel; the evaluation above the critical point reports its own failure.
    select_water("SI", "PerMass");
    zm::modelica_p(230e5, line[0], line[1], line[2], line[3], line[4], line[5], line[6], line[7],
                   line[8], line[9], errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;
}

TEST(Bundles, ModelicaSaturationTemperatureSlopeIsTheClapeyronInverse) {
    // dT/dp along the line against a central difference of the saturation temperature. The
    // slope comes from the Clapeyron equation of the region equations, the saturation
    // temperature from IF97's saturation equation: the two agree to about 1e-4.
    select_water("Zentropia", "PerMass");
    for (double p : {0.05, 1.0, 10.0, 100.0, 200.0}) {
        std::array<double, 10> line;
        std::string errormsg;
        zm::modelica_p(p, line[0], line[1], line[2], line[3], line[4], line[5], line[6], line[7],
                       line[8], line[9], errormsg);
        ASSERT_EQ(errormsg, "No errors");
        const double dp = 1e-4 * p;
        const double dt = (zm::temperature("Pq", p + dp, 0.0, errormsg) -
                           zm::temperature("Pq", p - dp, 0.0, errormsg)) /
                          (2 * dp);
        EXPECT_NEAR(line[9], dt, 3e-4 * dt) << p;
        EXPECT_NEAR(line[4], zm::temperature("Pq", p, 1.0, errormsg), 1e-9);
    }
}

TEST(Bundles, TransportBundles) {
    select_water("Zentropia", "PerMass");
    double eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma;
    std::string errormsg;
    zm::alltransprops("PT", 10.0, 100.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                      errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_EQ(eta, zm::viscosity("PT", 10.0, 100.0, errormsg));
    EXPECT_EQ(lambda, zm::thermcond("PT", 10.0, 100.0, errormsg));
    for (double value : {eta_t, eta_rho, lambda_t, lambda_rho, sigma}) EXPECT_EQ(value, not_set);

    // The transport interface receives the caller's inputs as given: 1e6 Pa and 373.15 K reach
    // it as 1e6 bar and 373.15 °C, beyond the range of IF97.
    select_water("SI", "PerMass");
    zm::alltransprops("PT", 1e6, 373.15, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                      errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;

    // Transport from (t, d): only RefProp offers it.
    zm::alltransprops_old(373.15, 958.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho,
                          errormsg);
    EXPECT_EQ(errormsg,
              "Error in Zentropia: AllTransProps method not available for this library...");
}

TEST(Bundles, ZflowFromVolumeAndEnergyMatchesTheEntryPoints) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        for (double t_k : {300.0, 600.0, 900.0}) {
            const double p = to_set(set, kind::P, 2e6), t = to_set(set, kind::T, t_k);
            std::string errormsg;
            const double v = zm::specvolume("PT", p, t, errormsg);
            const double u = zm::intenergy("PT", p, t, errormsg);
            double P, T, h, s, alpha, beta, chi, fi, zeta, gamma;
            zm::zflow_vu(P, T, v, h, s, u, alpha, beta, chi, fi, zeta, gamma, errormsg);
            ASSERT_EQ(errormsg, "No errors") << set.name << " " << t_k;
            EXPECT_NEAR(P, p, 1e-9 * p);
            EXPECT_NEAR(T, t, 1e-9 * std::fabs(t) + 1e-9);
            EXPECT_NEAR(h, zm::enthalpy("PT", p, t, errormsg), 1e-9 * std::fabs(h) + 1e-9);
            EXPECT_NEAR(s, zm::entropy("PT", p, t, errormsg), 1e-9 * std::fabs(s) + 1e-12);
            const std::vector<std::pair<double, double>> same{
                {alpha, zm::alpha("PT", p, t, errormsg)}, {beta, zm::beta("PT", p, t, errormsg)},
                {chi, zm::chi("PT", p, t, errormsg)},     {fi, zm::fi("PT", p, t, errormsg)},
                {zeta, zm::zeta("PT", p, t, errormsg)},   {gamma, zm::gamma("PT", p, t, errormsg)}};
            for (const auto& [bundle, single] : same)
                EXPECT_NEAR(bundle, single, 1e-7 * std::fabs(single)) << set.name << " " << t_k;
        }
    }
}

// A back-end that reports RefProp's partial success after evaluating the state.
void allprops_partial(std::string_view inputspec, double value1, double value2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      composition& x, composition& y, composition& lnphi, double& cv, double& dpdt,
                      double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt,
                      double& eta, double& lambda, double& sigma, std::string& errormsg) {
    double_adapter::allprops(inputspec, value1, value2, p, t, v, d, h, s, u, q, x, y, lnphi, cv,
                             dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma,
                             errormsg);
    errormsg = "Error in RefProp: [CFD_PROP Error 101] derivatives not available";
}

TEST(Bundles, RefPropPartialSuccess) {
    const water_with_derivatives model;
    zp_adapter::operations partial = double_adapter::row;
    partial.allprops = &allprops_partial;
    zp_models::replace_adapter(zp_models::model_id::critova, &partial);
    std::string errormsg;
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("Critova", 1, name, one, errormsg);
    ASSERT_EQ(errormsg, "No errors");

    // calcprop and allprops accept the state; only chi and fi of the derivatives are computed.
    const double h = zentropia_base::calculate("PT", 10.0, 100.0, "h", errormsg);
    EXPECT_EQ(zm::calcprop("h", "PT", 10.0, 100.0, errormsg), h);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_NEAR(zm::calcprop("fi", "PT", 10.0, 100.0, errormsg), 1.0 / 373.15, 1e-15);
    EXPECT_LT(zm::calcprop("chi", "PT", 10.0, 100.0, errormsg), 0.0);
    for (const char* keyword :
         {"cp", "c", "alpha", "beta", "ksi", "psi", "zeta", "theta", "kappa", "gamma"})
        EXPECT_EQ(zm::calcprop(keyword, "PT", 10.0, 100.0, errormsg), not_set) << keyword;
    // The Tarn bundle accepts it too; the flow-solver bundle passes RefProp's text on.
    double o[19];
    zm::allpropstarn("PT", 10.0, 100.0, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8], o[9],
                     o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(o[4], h);
    EXPECT_EQ(o[9], not_set) << "c";
    double P, T, d, entropy, u, cv, c2, alpha, beta;
    zm::allpropssu2("PT", 10.0, 100.0, P, T, d, entropy, u, cv, c2, alpha, beta, errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in RefProp: [CFD_PROP Error 101]"));
    EXPECT_EQ(c2, not_set);
    EXPECT_EQ(alpha, not_set);
    EXPECT_EQ(beta, not_set);
    EXPECT_EQ(P, 10.0);
}

TEST(Bundles, CoexistingPhasesConvertPerPhase) {
    // The converter of the two-phase bundle, per mole: each phase with its own molar mass.
    const water_with_derivatives mixture({0.5, 0.5}, "SI", "PerMole");
    const double m_fluid = 0.5 * molar_mass + 0.5 * double_adapter::other_molar_mass;
    const double m_liquid = 0.3 * molar_mass + 0.7 * double_adapter::other_molar_mass;
    composition x{}, y{};
    x[0] = 0.3, x[1] = 0.7, y[0] = 0.6, y[1] = 0.4;
    double p = 10.0, t = 100.0, v = 0.1, d = 10.0, h = 100.0, s = 1.0, u = 90.0;
    double liq[5] = {0.001, 1000.0, 400.0, 1.2, 380.0}, vap[5] = {0.1, 10.0, 2600.0, 7.0, 2500.0};
    std::string errormsg = "No errors";
    zm::alloutputconvext(p, t, v, d, h, s, u, x, y, liq[0], liq[1], liq[2], liq[3], liq[4], vap[0],
                         vap[1], vap[2], vap[3], vap[4], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_NEAR(p, 1e6, 1e-6);
    EXPECT_NEAR(t, 373.15, 1e-12);
    EXPECT_NEAR(h, 100.0e3 * m_fluid, 1e-9);
    EXPECT_NEAR(liq[1], 1000.0 / m_liquid, 1e-6);
    EXPECT_NEAR(liq[2], 400.0e3 * m_liquid, 1e-9);
    EXPECT_NEAR(vap[0], 0.1 * (0.6 * molar_mass + 0.4 * double_adapter::other_molar_mass), 1e-15);

    // With every factor 1 nothing is converted, the temperature offset of kelvin included.
    zentropia_units::setunits("Zentropia", "PerMass", "T", "K", errormsg);
    ASSERT_EQ(errormsg, "No errors");
    t = 100.0;
    zm::alloutputconvext(p, t, v, d, h, s, u, x, y, liq[0], liq[1], liq[2], liq[3], liq[4], vap[0],
                         vap[1], vap[2], vap[3], vap[4], errormsg);
    EXPECT_EQ(t, 100.0);
}

TEST(EntryPoints, PhaseMarkersOfAPureFluid) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e6), t = to_set(set, kind::T, 350.0);
        std::string errormsg;
        // For a pure fluid the marked phase has the fluid's own molar mass: the same values.
        for (auto entry : {zm::density, zm::specvolume, zm::enthalpy, zm::entropy, zm::intenergy,
                           zm::heatcapv, zm::heatcapp, zm::gibbsenergy}) {
            const double plain = entry("PT", p, t, errormsg);
            ASSERT_EQ(errormsg, "No errors");
            EXPECT_NEAR(entry("PT liq", p, t, errormsg), plain, 1e-12 * std::fabs(plain));
            EXPECT_EQ(errormsg, "No errors");
        }
    }
}

TEST(EntryPoints, PhaseMarkersConvertWithThePhasesMolarMass) {
    // A two-component fluid per mole: a marked phase's value is converted with the molar mass of
    // that phase's composition, an unmarked one with the fluid's.
    const water_with_derivatives mixture({0.5, 0.5}, "SI", "PerMole");
    const double m_fluid = 0.5 * molar_mass + 0.5 * double_adapter::other_molar_mass;
    const double m_liquid = 0.3 * molar_mass + 0.7 * double_adapter::other_molar_mass;
    const double m_vapour = 0.6 * molar_mass + 0.4 * double_adapter::other_molar_mass;
    std::string errormsg;
    const double rho = 1.0 / zentropia_base::calculate("PT", 10.0, 76.85, "v", errormsg);
    const double h = 1000.0 * zentropia_base::calculate("PT", 10.0, 76.85, "h", errormsg);
    EXPECT_NEAR(zm::density("PT", 1e6, 350.0, errormsg), rho / m_fluid, 1e-9 * rho / m_fluid);
    EXPECT_NEAR(zm::density("PT liq", 1e6, 350.0, errormsg), rho / m_liquid, 1e-9 * rho / m_liquid);
    EXPECT_NEAR(zm::density("PT vap", 1e6, 350.0, errormsg), rho / m_vapour, 1e-9 * rho / m_vapour);
    EXPECT_NEAR(zm::enthalpy("PT liq", 1e6, 350.0, errormsg), h * m_liquid, 1e-9 * h * m_liquid);
    EXPECT_EQ(errormsg, "No errors");
    // The factors are the fluid's again afterwards.
    EXPECT_NEAR(zm::density("PT", 1e6, 350.0, errormsg), rho / m_fluid, 1e-9 * rho / m_fluid);
}

TEST(EntryPoints, PhaseCompositionsAtTheCallersPositions) {
    // Three components, the second of zero concentration: the back-end sees two, and the caller
    // gets 0 at the second position. Critova describes pure fluids: liquid 1 below q = 1.
    const water_with_derivatives mixture({0.5, 0.0, 0.5});
    ASSERT_EQ(zentropia_base::selection().ncmps, 2);
    composition liquid;
    liquid.fill(-1.0);
    std::string errormsg;
    zm::liquidcmp("PT", 10.0, 100.0, liquid, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(liquid[0], 1.0);
    EXPECT_EQ(liquid[1], 0.0);
    EXPECT_EQ(liquid[3], -1.0) << "beyond the caller's components nothing is written";
}

TEST(Bundles, AModelWithPressureDerivativesFillsEveryOutput) {
    // All derivative outputs of allprops, in the caller's units, against the single-property
    // entry points of IF97 (which ask the back-end for the derivatives).
    for (const unit_set& set : all_unit_sets) {
        if (set.basis == "PerMole") continue;
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 3e6), t = to_set(set, kind::T, 500.0);
        std::string errormsg;
        const std::vector<double> expected{
            zm::alpha("PT", p, t, errormsg), zm::beta("PT", p, t, errormsg),
            zm::chi("PT", p, t, errormsg),   zm::fi("PT", p, t, errormsg),
            zm::zeta("PT", p, t, errormsg),  zm::gamma("PT", p, t, errormsg)};
        ASSERT_EQ(errormsg, "No errors");
        const water_with_derivatives model({1.0}, set.name);
        double P, T, v, d, h, s, u, q, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta;
        double kappa, gamma, eta, lambda;
        composition x{}, y{};
        zm::allprops("PT", p, t, P, T, v, d, h, s, u, q, x, y, cv, cp, c, alpha, beta, chi, fi, ksi,
                     psi, zeta, theta, kappa, gamma, eta, lambda, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        const std::vector<double> got{alpha, beta, chi, fi, zeta, gamma};
        for (std::size_t i = 0; i < got.size(); ++i)
            EXPECT_NEAR(got[i], expected[i], 1e-10 * std::fabs(expected[i])) << set.name << i;
        for (double value : {ksi, psi, theta, kappa}) EXPECT_NE(value, not_set);
        EXPECT_EQ(zm::calcprop("kappa", "PT", p, t, errormsg), kappa);
        // theta = (∂v/∂T)_P / v, in the caller's 1/T unit.
        const double dt = to_set(set, kind::T, 500.01) - to_set(set, kind::T, 499.99);
        const double dv = zm::specvolume("PT", p, t + dt / 2, errormsg) -
                          zm::specvolume("PT", p, t - dt / 2, errormsg);
        EXPECT_NEAR(theta, dv / dt / v, 1e-6 * theta) << set.name;
    }
}

TEST(EntryPoints, FreeEnergies) {
    select_water("Zentropia", "PerMass");
    std::string errormsg;
    const double h = zm::enthalpy("PT", 10.0, 150.0, errormsg);
    const double u = zm::intenergy("PT", 10.0, 150.0, errormsg);
    const double s = zm::entropy("PT", 10.0, 150.0, errormsg);
    EXPECT_NEAR(zm::gibbsenergy("PT", 10.0, 150.0, errormsg), h - 423.15 * s, 1e-9);
    EXPECT_NEAR(zm::helmholtzenergy("PT", 10.0, 150.0, errormsg), u - 423.15 * s, 1e-9);
    EXPECT_EQ(errormsg, "No errors");
}

TEST(EntryPoints, DimensionlessValuesAreNotConverted) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e5);
        std::string errormsg;
        EXPECT_NEAR(zm::vaporqual("Pq", p, 0.25, errormsg), 0.25, 1e-12);
        const double gamma_ideal =
            zm::gamma("PT", to_set(set, kind::P, 100.0), to_set(set, kind::T, 700.0), errormsg);
        EXPECT_NEAR(gamma_ideal, 1.15, 0.05) << "about (cp/cv + 1)/2 of steam at low pressure";
    }
}

TEST(EntryPoints, PhaseCompositionsOfAPureFluid) {
    select_water();
    composition liquid, vapour;
    std::string errormsg;
    struct case_ {
        const char* spec;
        double in1, in2, liquid, vapour;
    };
    for (const case_& c : {case_{"Pq", 1.0, 0.5, 1.0, 1.0}, case_{"PT", 1.0, 20.0, 1.0, 0.0},
                           case_{"PT", 1.0, 200.0, 0.0, 1.0}}) {
        liquid.fill(-1.0), vapour.fill(-1.0);
        zm::liquidcmp(c.spec, c.in1, c.in2, liquid, errormsg);
        zm::vaporcmp(c.spec, c.in1, c.in2, vapour, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_EQ(liquid[0], c.liquid) << c.spec << " " << c.in2;
        EXPECT_EQ(vapour[0], c.vapour) << c.spec << " " << c.in2;
        EXPECT_EQ(liquid[1], -1.0) << "entries beyond the caller's components stay";
    }
}

TEST(EntryPoints, DerivativesIf97CannotGiveSayWhy) {
    select_water("SI", "PerMass");
    struct case_ {
        double (*entry)(std::string_view, double, double, std::string&);
        const char* text;
    };
    for (const case_& c : {case_{zm::ksi, "IF97: calculation of Ksi not available."},
                           case_{zm::psi, "IF97: calculation of Psi not available."},
                           case_{zm::theta, "IF97: calculation of Theta not available."},
                           case_{zm::kappa, "IF97: calculation of Kappa not available."}}) {
        std::string errormsg;
        EXPECT_EQ(c.entry("PT", 1e5, 300.0, errormsg), not_set);
        EXPECT_EQ(errormsg, c.text);
    }
}

TEST(EntryPoints, FluidConstantsInEveryUnitSet) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        double m, tc, pc, tlo, thi;
        std::string errormsg;
        zm::allinfo(m, tc, pc, tlo, thi, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_NEAR(tc, to_set(set, kind::T, 647.096), 1e-9);
        EXPECT_NEAR(pc, to_set(set, kind::P, 22.064e6), 1e-9 * pc);
        EXPECT_NEAR(tlo, to_set(set, kind::T, 273.16000001), 1e-9);
        EXPECT_NEAR(thi, to_set(set, kind::T, 2273.15), 1e-9);
        EXPECT_EQ(tc, zm::tcrit(errormsg));
        EXPECT_EQ(pc, zm::pcrit(errormsg));
        if (set.basis == "PerMass") {
            const double lb_per_kg = set.name == "Anglo-Saxon" ? 1.0 / 0.45359237 : 1.0;
            EXPECT_NEAR(m, molar_mass * lb_per_kg, 1e-12);
        }
    }
}

TEST(BadInput, FailuresAreReportedAndTheLibraryStaysUsable) {
    select_water("Zentropia", "PerMass");
    struct case_ {
        const char* spec;
        double in1, in2;
    };
    for (const case_& c : {case_{"PT", nan, 100.0}, case_{"PT", 10.0, nan}, case_{"PT", inf, 100.0},
                           case_{"PT", -5.0, 100.0}, case_{"PT", 5000.0, 100.0},
                           case_{"PT", 10.0, 5000.0}, case_{"Pq", 10.0, 1.5}, case_{"Xy", 1.0, 2.0},
                           case_{"", 1.0, 2.0}, case_{"P", 1.0, 2.0}}) {
        std::string errormsg;
        zm::calcprop("h", c.spec, c.in1, c.in2, errormsg);
        EXPECT_TRUE(errormsg.starts_with("Error in"))
            << c.spec << " " << c.in1 << " " << c.in2 << ": " << errormsg;
        double P, T, v, d, h, s, u, q, cv, cp, cc, alpha, beta, chi, fi, ksi, psi, zeta, theta;
        double kappa, gamma, eta, lambda;
        composition x{}, y{};
        zm::allprops(c.spec, c.in1, c.in2, P, T, v, d, h, s, u, q, x, y, cv, cp, cc, alpha, beta,
                     chi, fi, ksi, psi, zeta, theta, kappa, gamma, eta, lambda, errormsg);
        EXPECT_TRUE(errormsg.starts_with("Error in")) << errormsg;
        for (auto entry : {zm::density, zm::soundspeed, zm::gamma, zm::viscosity, zm::alpha}) {
            entry(c.spec, c.in1, c.in2, errormsg);
            EXPECT_NE(errormsg, "No errors");
        }
        EXPECT_GT(calc("h", errormsg), 400.0);
        EXPECT_EQ(errormsg, "No errors");
    }
}

TEST(BadInput, AFailedSelectionIsReportedByEveryEntryPoint) {
    // A model whose back-end is not installed: its adapter's text reaches the caller unchanged.
    std::string errormsg;
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("TPSI", 1, name, one, errormsg);
    ASSERT_NE(errormsg, "No errors");
    const std::string missing = "Error in TPSI: back-end library not installed.";
    zm::calcprop("h", "PT", 10.0, 100.0, errormsg);
    EXPECT_EQ(errormsg, missing);
    zm::density("PT", 10.0, 100.0, errormsg);
    EXPECT_EQ(errormsg, missing);
    zm::soundspeed("PT", 10.0, 100.0, errormsg);
    EXPECT_EQ(errormsg, missing);
    EXPECT_EQ(zm::mmol(errormsg), not_set);
    EXPECT_EQ(errormsg, missing);
    // An unknown model name leaves the model selected before it in place.
    select_water();
    zentropia_base::setfluid("no such model", 1, name, one, errormsg);
    EXPECT_EQ(errormsg, "Error in Zentropia: invalid model name no such model");
    EXPECT_GT(calc("h", errormsg), 400.0);
    EXPECT_EQ(errormsg, "No errors");
}

} // namespace
