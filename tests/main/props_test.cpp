// What a caller of the property interface observes beyond the reference values: keywords, the
// not-computed sentinel, the bundles' special cases, phase markers, failures and bad input.
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace water_support;
namespace zm = zentropia_main;

using entry_point = double (*)(std::string_view, double, double, std::string&);

// allprops in one array: p t v d h s u q cv cp c alpha beta chi fi ksi psi zeta theta kappa gamma
// eta lambda.
std::array<double, 23> allprops(std::string_view inputspec, double in1, double in2,
                                std::string& errormsg) {
    std::array<double, 23> o;
    composition x{}, y{};
    zm::allprops(inputspec, in1, in2, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y, o[8],
                 o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18], o[19], o[20],
                 o[21], o[22], errormsg);
    return o;
}

TEST(Calcprop, Keywords) {
    select_water();
    std::string errormsg;
    const auto calc = [&](std::string_view keyword) {
        return zm::calcprop(keyword, "PT", 10.0, 100.0, errormsg);
    };
    // Long and short forms in any case; a keyword is a text of 32 characters.
    for (const std::vector<std::string>& same :
         {std::vector<std::string>{"pressure", "PRESSURE", "P", "p", "pressure   "},
          {"enthalpy", "h", "H", "enthalpy                        and more"},
          {"heatcapp", "cp", "Cp"},
          {"thermcond", "lambda"}}) {
        const double first = calc(same[0]);
        ASSERT_EQ(errormsg, "No errors") << same[0];
        for (const auto& keyword : same) EXPECT_EQ(calc(keyword), first) << keyword;
    }
    for (const char* keyword : {"enthalpie", "", "dp_dt", " p"}) {
        calc(keyword);
        EXPECT_EQ(errormsg, "Unknown property specified...") << '"' << keyword << '"';
        EXPECT_GT(calc("h"), 400.0);
        EXPECT_EQ(errormsg, "No errors");
    }
}

TEST(Conversion, TheSentinelReachesTheCallerUnconverted) {
    // IF97 has no surface tension and no pressure derivatives in its state bundle: the
    // derivative properties other than cp and c are not computed, in every unit set.
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e6), t = to_set(set, kind::T, 373.15);
        std::string errormsg;
        for (const char* keyword : {"sigma", "alpha", "chi", "ksi", "theta", "kappa", "gamma",
                                    "dpdt", "d2pdv2", "dcvdt"}) {
            EXPECT_EQ(zm::calcprop(keyword, "PT", p, t, errormsg), not_set) << keyword;
            EXPECT_EQ(errormsg, "No errors");
        }
        for (double sentinel : {not_set, not_set + 0.09}) {
            std::array<double, 21> v;
            v.fill(sentinel);
            zm::alloutputconv(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                              v[11], v[12], v[13], v[14], v[15], v[16], v[17], v[18], v[19], v[20]);
            for (double x : v) EXPECT_EQ(x, sentinel) << set.name;
            double out;
            zm::outputconversion("T", sentinel, out);
            EXPECT_EQ(out, sentinel);
        }
        // Dimensionless values are returned as computed.
        EXPECT_NEAR(zm::vaporqual("Pq", p, 0.25, errormsg), 0.25, 1e-12);
    }
}

TEST(Bundles, AgreeWithEachOtherAndTheEntryPoints) {
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 5e6), t = to_set(set, kind::T, 600.0);
        std::string errormsg;
        const auto o = allprops("PT", p, t, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        const std::vector<std::pair<double, entry_point>> same{
            {o[4], zm::enthalpy},  {o[3], zm::density},     {o[8], zm::heatcapv},
            {o[9], zm::heatcapp},  {o[10], zm::soundspeed}, {o[21], zm::viscosity},
            {o[22], zm::thermcond}};
        for (const auto& [bundle, entry] : same)
            EXPECT_NEAR(bundle, entry("PT", p, t, errormsg), 1e-12 * std::fabs(bundle));
        EXPECT_EQ(o[4], zm::calcprop("h", "PT", p, t, errormsg));
        // The flow-solver bundle squares the speed of sound; the Tarn bundle's transport
        // derivatives are zero by design.
        double P, T, d, s, u, cv, c2, alpha, beta, tarn[19];
        zm::allpropssu2("PT", p, t, P, T, d, s, u, cv, c2, alpha, beta, errormsg);
        EXPECT_NEAR(c2, o[10] * o[10], 1e-12 * c2);
        EXPECT_EQ(alpha, not_set);
        zm::allpropstarn("PT", p, t, tarn[0], tarn[1], tarn[2], tarn[3], tarn[4], tarn[5], tarn[6],
                         tarn[7], tarn[8], tarn[9], tarn[10], tarn[11], tarn[12], tarn[13],
                         tarn[14], tarn[15], tarn[16], tarn[17], tarn[18], errormsg);
        EXPECT_EQ(tarn[4], o[4]);
        for (int i = 15; i < 19; ++i) EXPECT_EQ(tarn[i], 0.0);
    }
}

TEST(Bundles, SaturationBundle) {
    std::string errormsg;
    double line[10], o[23];
    // On a failed state the saturation outputs stay as they were.
    select_water("Zentropia", "PerMass");
    std::fill(std::begin(line), std::end(line), 123.0);
    composition x{}, y{};
    zm::allpropssat("PT", 5000.0, 100.0, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y, o[8],
                    o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18], o[19],
                    o[20], o[21], o[22], line[0], line[1], line[2], line[3], line[4], line[5],
                    line[6], line[7], line[8], line[9], errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;
    for (double value : line) EXPECT_EQ(value, 123.0);
    // With the pressure in bar, a pressure at or above the critical one gives the sentinel.
    for (double p : {220.64, 300.0}) {
        zm::modelica_p(p, line[0], line[1], line[2], line[3], line[4], line[5], line[6], line[7],
                       line[8], line[9], errormsg);
        for (double value : line) EXPECT_EQ(value, not_set) << p;
    }
    // In Pa the internal pressure (bar) is compared with the critical pressure in Pa: the
    // evaluation itself reports the supercritical pressure.
    select_water("SI", "PerMass");
    zm::modelica_p(230e5, line[0], line[1], line[2], line[3], line[4], line[5], line[6], line[7],
                   line[8], line[9], errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;
}

TEST(Bundles, TransportBundles) {
    select_water("Zentropia", "PerMass");
    double eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma;
    std::string errormsg;
    zm::alltransprops("PT", 10.0, 100.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                      errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_EQ(eta, zm::viscosity("PT", 10.0, 100.0, errormsg));
    // The transport interface receives the caller's inputs as given: 1e6 Pa and 373.15 K reach
    // it as 1e6 bar and 373.15 °C, beyond IF97's range.
    select_water("SI", "PerMass");
    zm::alltransprops("PT", 1e6, 373.15, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho, sigma,
                      errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in IF97")) << errormsg;
    zm::alltransprops_old(373.15, 958.0, eta, eta_t, eta_rho, lambda, lambda_t, lambda_rho,
                          errormsg);
    EXPECT_EQ(errormsg,
              "Error in Zentropia: AllTransProps method not available for this library...");
}

TEST(Bundles, ZflowFromVolumeAndEnergy) {
    // The flow-solver bundle returns the state of (v, u) and, with IF97's derivatives asked one
    // at a time, the same derived properties as the entry points.
    for (const unit_set& set : all_unit_sets) {
        select_water(set.name, set.basis);
        for (double t_k : {300.0, 900.0}) {
            const double p = to_set(set, kind::P, 2e6), t = to_set(set, kind::T, t_k);
            std::string errormsg;
            const double v = zm::specvolume("PT", p, t, errormsg);
            const double u = zm::intenergy("PT", p, t, errormsg);
            double out[10];
            zm::zflow_vu(out[0], out[1], v, out[2], out[3], u, out[4], out[5], out[6], out[7],
                         out[8], out[9], errormsg);
            ASSERT_EQ(errormsg, "No errors") << set.name << " " << t_k;
            const std::vector<entry_point> entries{
                zm::pressure, zm::temperature, zm::enthalpy, zm::entropy, zm::alpha,
                zm::beta,     zm::chi,         zm::fi,       zm::zeta,    zm::gamma};
            for (std::size_t i = 0; i < entries.size(); ++i) {
                const double expected = entries[i]("PT", p, t, errormsg);
                EXPECT_NEAR(out[i], expected, 1e-7 * std::fabs(expected) + 1e-9) << i;
            }
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
    static constexpr zp_adapter::operations partial = [] {
        zp_adapter::operations row = double_adapter::row;
        row.allprops = &allprops_partial;
        return row;
    }();
    const water_with_derivatives model({1.0}, "Zentropia", "PerMass", &partial);
    std::string errormsg;
    // calcprop, allprops and the Tarn bundle accept the state; only chi and fi of the
    // derivatives are computed. The flow-solver bundle passes RefProp's text on.
    const auto o = allprops("PT", 10.0, 100.0, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(zm::calcprop("h", "PT", 10.0, 100.0, errormsg), o[4]);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_NEAR(o[14], 1.0 / 373.15, 1e-15);
    EXPECT_LT(o[13], 0.0);
    for (int i : {9, 10, 11, 12, 15, 16, 17, 18, 19, 20}) EXPECT_EQ(o[i], not_set) << i;
    double tarn[19];
    zm::allpropstarn("PT", 10.0, 100.0, tarn[0], tarn[1], tarn[2], tarn[3], tarn[4], tarn[5],
                     tarn[6], tarn[7], tarn[8], tarn[9], tarn[10], tarn[11], tarn[12], tarn[13],
                     tarn[14], tarn[15], tarn[16], tarn[17], tarn[18], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(tarn[9], not_set);
    double P, T, d, s, u, cv, c2, alpha, beta;
    zm::allpropssu2("PT", 10.0, 100.0, P, T, d, s, u, cv, c2, alpha, beta, errormsg);
    EXPECT_TRUE(errormsg.starts_with("Error in RefProp: [CFD_PROP Error 101]"));
    for (double value : {c2, alpha, beta}) EXPECT_EQ(value, not_set);
    EXPECT_EQ(P, 10.0);
}

TEST(Bundles, AModelWithPressureDerivativesFillsEveryOutput) {
    // allprops of a model whose state bundle carries the derivatives, against IF97's entry
    // points (which ask for the derivatives one at a time) and, for theta = (∂v/∂T)_P / v, a
    // difference in the caller's units.
    const unit_set set{"Anglo-Saxon", "PerMass"};
    select_water(set.name, set.basis);
    const double p = to_set(set, kind::P, 3e6), t = to_set(set, kind::T, 500.0);
    std::string errormsg;
    const std::vector<std::pair<int, entry_point>> same{{11, zm::alpha}, {12, zm::beta},
                                                        {13, zm::chi},   {14, zm::fi},
                                                        {17, zm::zeta},  {20, zm::gamma}};
    std::vector<double> expected;
    for (const auto& [i, entry] : same) expected.push_back(entry("PT", p, t, errormsg));
    const double dv =
        zm::specvolume("PT", p, t + 0.01, errormsg) - zm::specvolume("PT", p, t - 0.01, errormsg);
    const water_with_derivatives model({1.0}, set.name, set.basis);
    const auto o = allprops("PT", p, t, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    for (std::size_t k = 0; k < same.size(); ++k)
        EXPECT_NEAR(o[same[k].first], expected[k], 1e-10 * std::fabs(expected[k])) << k;
    EXPECT_NEAR(o[18], dv / 0.02 / o[2], 1e-6 * o[18]);
    for (int i : {15, 16, 19}) EXPECT_NE(o[i], not_set);
}

TEST(EntryPoints, PhaseMarkersConvertWithThePhasesMolarMass) {
    // A two-component fluid per mole: a marked phase's value ("PT liq") is taken from a full
    // evaluation and converted with the molar mass of that phase's composition.
    const water_with_derivatives mixture({0.5, 0.5}, "SI", "PerMole");
    const double other = double_adapter::other_molar_mass;
    const double m_fluid = 0.5 * molar_mass + 0.5 * other;
    const double m_liquid = 0.3 * molar_mass + 0.7 * other;
    const double m_vapour = 0.6 * molar_mass + 0.4 * other;
    std::string errormsg;
    const double rho = 1.0 / zentropia_base::calculate("PT", 10.0, 76.85, "v", errormsg);
    const double h = 1000.0 * zentropia_base::calculate("PT", 10.0, 76.85, "h", errormsg);
    for (const auto& [inputspec, m] :
         {std::pair{"PT", m_fluid}, std::pair{"PT liq", m_liquid}, std::pair{"PT vap", m_vapour},
          std::pair{"PT    ", m_fluid}, std::pair{"PT", m_fluid}}) {
        EXPECT_NEAR(zm::density(inputspec, 1e6, 350.0, errormsg), rho / m, 1e-9 * rho / m)
            << inputspec;
        EXPECT_NEAR(zm::enthalpy(inputspec, 1e6, 350.0, errormsg), h * m, 1e-9 * h * m)
            << inputspec;
        EXPECT_EQ(errormsg, "No errors");
    }
    // heatcapp keeps its own operation with a marker, heatcapv takes the full evaluation's cv.
    EXPECT_NEAR(zm::heatcapv("PT liq", 1e6, 350.0, errormsg) / m_liquid,
                zm::heatcapv("PT", 1e6, 350.0, errormsg) / m_fluid, 1e-9);
    EXPECT_NEAR(zm::heatcapp("PT liq", 1e6, 350.0, errormsg) / m_liquid,
                zm::heatcapp("PT", 1e6, 350.0, errormsg) / m_fluid, 1e-9);
}

TEST(EntryPoints, PhaseCompositions) {
    select_water();
    composition liquid, vapour;
    std::string errormsg;
    struct case_ {
        const char* inputspec;
        double in1, in2, liquid, vapour;
    };
    for (const case_& c : {case_{"Pq", 1.0, 0.5, 1.0, 1.0}, case_{"PT", 1.0, 20.0, 1.0, 0.0},
                           case_{"PT", 1.0, 200.0, 0.0, 1.0}}) {
        liquid.fill(-1.0), vapour.fill(-1.0);
        zm::liquidcmp(c.inputspec, c.in1, c.in2, liquid, errormsg);
        zm::vaporcmp(c.inputspec, c.in1, c.in2, vapour, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_EQ(liquid[0], c.liquid) << c.inputspec << " " << c.in2;
        EXPECT_EQ(vapour[0], c.vapour) << c.inputspec << " " << c.in2;
        EXPECT_EQ(liquid[1], -1.0) << "beyond the caller's components nothing is written";
    }
    // A component of zero concentration is not passed to the back-end and gets 0.
    const water_with_derivatives mixture({0.5, 0.0, 0.5});
    ASSERT_EQ(zentropia_base::selection().ncmps, 2);
    zm::liquidcmp("PT", 10.0, 100.0, liquid, errormsg);
    EXPECT_EQ(liquid[0], 1.0);
    EXPECT_EQ(liquid[1], 0.0);
}

TEST(EntryPoints, If97SaysWhichDerivativesItCannotGive) {
    select_water("SI", "PerMass");
    for (const auto& [entry, text] :
         {std::pair{&zm::ksi, "IF97: calculation of Ksi not available."},
          std::pair{&zm::psi, "IF97: calculation of Psi not available."},
          std::pair{&zm::theta, "IF97: calculation of Theta not available."},
          std::pair{&zm::kappa, "IF97: calculation of Kappa not available."}}) {
        std::string errormsg;
        EXPECT_EQ(entry("PT", 1e5, 300.0, errormsg), not_set);
        EXPECT_EQ(errormsg, text);
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
        if (set.basis == "PerMass") {
            EXPECT_NEAR(m, molar_mass / (set.name == "Anglo-Saxon" ? 0.45359237 : 1.0), 1e-12);
        }
    }
}

TEST(BadInput, FailuresAreReportedAndTheLibraryStaysUsable) {
    select_water();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    struct case_ {
        const char* inputspec;
        double in1, in2;
    };
    for (const case_& c :
         {case_{"PT", nan, 100.0}, case_{"PT", 10.0, nan}, case_{"PT", inf, 100.0},
          case_{"PT", -5.0, 100.0}, case_{"PT", 5000.0, 100.0}, case_{"PT", 10.0, 5000.0},
          case_{"Pq", 10.0, 1.5}, case_{"Xy", 1.0, 2.0}, case_{"", 1.0, 2.0}, case_{"P", 1, 2}}) {
        std::string errormsg;
        zm::calcprop("h", c.inputspec, c.in1, c.in2, errormsg);
        EXPECT_TRUE(errormsg.starts_with("Error in"))
            << c.inputspec << " " << c.in1 << ": " << errormsg;
        allprops(c.inputspec, c.in1, c.in2, errormsg);
        EXPECT_TRUE(errormsg.starts_with("Error in")) << errormsg;
        for (auto entry : {zm::density, zm::soundspeed, zm::gamma, zm::viscosity, zm::alpha}) {
            entry(c.inputspec, c.in1, c.in2, errormsg);
            EXPECT_NE(errormsg, "No errors");
        }
        EXPECT_GT(zm::enthalpy("PT", 10.0, 100.0, errormsg), 400.0);
        EXPECT_EQ(errormsg, "No errors");
    }
    // A model whose back-end is not installed: its adapter's text reaches the caller unchanged.
    std::string errormsg;
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("TPSI", 1, name, one, errormsg);
    const std::string missing = "Error in TPSI: back-end library not installed.";
    for (auto entry : {zm::density, zm::soundspeed, zm::enthalpy}) {
        entry("PT", 10.0, 100.0, errormsg);
        EXPECT_EQ(errormsg, missing);
    }
    zm::calcprop("h", "PT", 10.0, 100.0, errormsg);
    EXPECT_EQ(errormsg, missing);
    EXPECT_EQ(zm::mmol(errormsg), not_set);
    EXPECT_EQ(errormsg, missing);
}

} // namespace
