// The derivative layer against independent evaluations: central differences of the IF97 back-end's
// own state functions (through the dispatcher, internal units) in the single-phase and two-phase
// regions, the ideal-gas limit, and the saturation-line functions along IF97's saturation line.
// In the two-phase region the layer builds on the Clapeyron equation of IF97's region equations,
// the back-end's mixture states on its saturation-pressure equation; IF97 makes the two agree to
// about 1e-4, which sets the tolerances there.
#include "derivative/zentropia_derivative.hpp"
#include "main/water_support.hpp"

#include <gtest/gtest.h>

namespace {

namespace zd = zentropia_derivative;
using water_support::not_set;

// One property of a state, which must evaluate.
double at(std::string_view inputspec, double in1, double in2, std::string_view key) {
    std::string errormsg;
    const double value = zentropia_base::calculate(inputspec, in1, in2, key, errormsg);
    EXPECT_EQ(errormsg, "No errors") << inputspec << " " << in1 << " " << in2 << " " << key;
    return value;
}
// Central differences of key by the first and by the second input.
double diff1(std::string_view inputspec, double in1, double in2, std::string_view key,
             double step) {
    return (at(inputspec, in1 + step, in2, key) - at(inputspec, in1 - step, in2, key)) / (2 * step);
}
double diff2(std::string_view inputspec, double in1, double in2, std::string_view key,
             double step) {
    return (at(inputspec, in1, in2 + step, key) - at(inputspec, in1, in2 - step, key)) / (2 * step);
}
double value_of(double (*op)(std::string_view, double, double, std::string&),
                std::string_view inputspec, double in1, double in2) {
    std::string errormsg;
    const double value = op(inputspec, in1, in2, errormsg);
    EXPECT_EQ(errormsg, "No errors") << inputspec << " " << in1 << " " << in2;
    return value;
}

// SI: alpha = (∂P/∂ρ)_u = -v² (∂P/∂v)_u, beta = (∂P/∂u)_ρ, zeta = (∂T/∂v)_u, c² = -v² (∂P/∂v)_s,
// gamma = 1 - (v/c) (∂c/∂v)_s (single phase) and cv = (∂u/∂T)_v, from (v,u), (v,s) and (T,v)
// states with steps small enough to stay in the state's phase.
struct expected_derivatives {
    double alpha, beta, zeta, c, gamma, cv;
};
expected_derivatives by_differences(std::string_view inputspec, double in1, double in2) {
    const double v = at(inputspec, in1, in2, "v"), u = at(inputspec, in1, in2, "u");
    const double s = at(inputspec, in1, in2, "s"), t = at(inputspec, in1, in2, "T");
    const double dv = 1e-5 * v, du = 1e-5 * std::fabs(u) + 1e-3;
    expected_derivatives e;
    e.alpha = -v * v * diff1("vu", v, u, "P", dv) * 1e5;
    e.beta = diff2("vu", v, u, "P", du) * 1e5 / 1000.0;
    e.zeta = diff1("vu", v, u, "T", dv);
    e.c = std::sqrt(-v * v * diff1("vs", v, s, "P", dv) * 1e5);
    e.gamma = 1.0 - v / e.c * diff1("vs", v, s, "c", dv);
    e.cv = (at("Tv", t + 1e-3, v, "u") - at("Tv", t - 1e-3, v, "u")) / 2e-3;
    return e;
}

TEST(DerivativeConsistency, SinglePropertiesOfSinglePhaseStates) {
    water_support::select_water();
    for (const auto& [p, t] : {std::pair{50.0, 20.0},
                               {100.0, 250.0},
                               {0.1, 200.0},
                               {50.0, 500.0},
                               {300.0, 400.0},
                               {250.0, 380.0},
                               {30.0, 1500.0}}) {
        SCOPED_TRACE(std::to_string(p) + " bar, " + std::to_string(t) + " °C");
        const expected_derivatives e = by_differences("PT", p, t);
        EXPECT_NEAR(value_of(zd::zp_alpha, "PT", p, t), e.alpha, 1e-6 * std::fabs(e.alpha));
        EXPECT_NEAR(value_of(zd::zp_beta, "PT", p, t), e.beta, 1e-6 * std::fabs(e.beta));
        EXPECT_NEAR(value_of(zd::zp_zeta, "PT", p, t), e.zeta, 1e-6 * std::fabs(e.zeta));
        EXPECT_NEAR(value_of(zd::zp_gamma, "PT", p, t), e.gamma, 1e-4 * std::fabs(e.gamma));
        EXPECT_NEAR(value_of(zd::zp_soundspeed, "PT", p, t), e.c, 1e-6 * e.c);
        const double v = at("PT", p, t, "v"), T = t + 273.15;
        EXPECT_NEAR(value_of(zd::zp_chi, "PT", p, t), -p * 1e5 * v * v / T, 1e-12 * p * 1e5 * v);
        EXPECT_DOUBLE_EQ(value_of(zd::zp_fi, "PT", p, t), 1.0 / T);
    }
}

TEST(DerivativeConsistency, FundamentalDerivativeReachesTheIdealGasLimit) {
    // An ideal gas with cp/cv = k(T) has gamma = (k + 1)/2 + (k - 1) T k'(T) / (2k), which is
    // (cp/cv + 1)/2 for a constant k. Steam approaches it as the pressure falls; k' comes from a
    // difference of the back-end's heat capacities.
    water_support::select_water();
    const auto ratio = [](double p, double t) {
        return value_of(zd::zp_heatcapp, "PT", p, t) / value_of(zd::zp_heatcapv, "PT", p, t);
    };
    for (double t : {200.0, 500.0, 1000.0, 1800.0}) {
        for (double p : {1e-1, 1e-2, 1e-3}) {
            const double k = ratio(p, t), dk = ratio(p, t + 0.5) - ratio(p, t - 0.5);
            const double ideal = (k + 1) / 2 + (k - 1) * (t + 273.15) * dk / (2 * k);
            const double gamma = value_of(zd::zp_gamma, "PT", p, t);
            EXPECT_NEAR(gamma, ideal, 3e-3 * p) << p << " bar, " << t << " °C";
            EXPECT_NEAR(gamma, (k + 1) / 2, 1e-2) << "the temperature term stays under 1 %";
        }
    }
}

TEST(DerivativeConsistency, SinglePropertiesOfTwoPhaseStates) {
    water_support::select_water();
    for (double p : {0.1, 1.0, 10.0, 100.0}) {
        for (double q : {0.05, 0.5, 0.95}) {
            SCOPED_TRACE(std::to_string(p) + " bar, q = " + std::to_string(q));
            const expected_derivatives e = by_differences("Pq", p, q);
            const double alpha = value_of(zd::zp_alpha, "Pq", p, q);
            const double beta = value_of(zd::zp_beta, "Pq", p, q);
            const double v = at("Pq", p, q, "v"), s = at("Pq", p, q, "s");
            EXPECT_NEAR(alpha, e.alpha, 2e-4 * std::fabs(e.alpha));
            EXPECT_NEAR(beta, e.beta, 2e-4 * std::fabs(e.beta));
            EXPECT_NEAR(value_of(zd::zp_zeta, "Pq", p, q), e.zeta, 2e-4 * std::fabs(e.zeta));
            EXPECT_NEAR(value_of(zd::zp_heatcapv, "Pq", p, q), e.cv, 2e-4 * e.cv);
            // c² = alpha + v² P beta, the speed of sound of the homogeneous mixture, and
            // gamma = c⁴/(2v³) (∂²v/∂P²)_s from (P, s) states.
            const double c = std::sqrt(alpha + v * v * p * 1e5 * beta);
            EXPECT_NEAR(c, e.c, 2e-4 * e.c);
            const double dp = 1e-2 * p;
            const double d2vdp2 =
                (at("Ps", p + dp, s, "v") - 2 * v + at("Ps", p - dp, s, "v")) / (dp * dp) / 1e10;
            const double gamma = std::pow(c, 4) / (2 * v * v * v) * d2vdp2;
            EXPECT_NEAR(value_of(zd::zp_gamma, "Pq", p, q), gamma, 1e-3 * std::fabs(gamma));
            std::string errormsg;
            EXPECT_EQ(zd::zp_heatcapp("Pq", p, q, errormsg), not_set);
            EXPECT_EQ(zd::zp_kappa("Pq", p, q, errormsg), not_set) << "not available for IF97";
        }
    }
}

TEST(DerivativeConsistency, PhaseTest) {
    // The marker stands at characters 4 to 6, behind a separator: "PT liq".
    // clang-format off
    for (const auto& [inputspec, q, single] : {
             std::tuple{"PT", 0.5, false}, {"PT liq", 0.5, true}, {"Pq_vap", 0.5, true},
             {"PTliq", 0.5, false}, {"PT LIQ", 0.5, false}, {"PT  ph", 0.5, true}, {"", 0.5, false},
             {"PT", 1e-9, true}, {"PT", 2e-8, false}, {"PT", 0.999999995, true}, {"PT", 0.0, true},
             {"PT", -0.3, true}, {"PT", 1.4, true}})
        // clang-format on
        EXPECT_EQ(zd::is_single_phase(inputspec, q), single) << inputspec << " " << q;
}

TEST(DerivativeConsistency, SaturationLineFunctions) {
    // Fed with the slope and curvature of IF97's saturation line (central differences), the
    // functions of one saturated phase give its changes along the line; the Clapeyron slope and
    // curvature from the phases agree with the line to IF97's consistency.
    water_support::select_water();
    for (double t : {50.0, 150.0, 250.0, 340.0}) {
        const double T = t + 273.15, dt = 1e-2, p = at("Tq", t, 0.0, "P"), P = p * 1e5;
        const double slope = diff1("Tq", t, 0.0, "P", dt) * 1e5;
        const double curvature =
            (at("Tq", t + dt, 0.0, "P") - 2 * p + at("Tq", t - dt, 0.0, "P")) / (dt * dt) * 1e5;
        double v[2], s[2], ds[2], dv[2];
        for (int x = 0; x < 2; ++x) {
            SCOPED_TRACE(std::to_string(t) + " °C, quality " + std::to_string(x));
            v[x] = at("Tq", t, x, "v"), s[x] = at("Tq", t, x, "s") * 1e3;
            const double dpdt = at("Tq", t, x, "dP_dT"), dpdv = at("Tq", t, x, "dP_dv");
            const double cp = at("Tq", t, x, "cp") * 1e3, dp = 1e-5 * p, h = 1e-3 * p;
            const auto along_p = [&](const char* key) { return diff1("Pq", p, x, key, dp) / 1e5; };
            const auto second_p = [&](const char* key) {
                return (at("Pq", p + h, x, key) - 2 * at("Pq", p, x, key) +
                        at("Pq", p - h, x, key)) /
                       (h * h) / 1e10;
            };
            dv[x] = zd::dvdp(dpdt, dpdv, slope);
            ds[x] = zd::dsdp(T, cp, dpdt, dpdv, slope);
            EXPECT_NEAR(dv[x], along_p("v"), 1e-6 * std::fabs(dv[x]));
            EXPECT_NEAR(ds[x], along_p("s") * 1e3, 1e-6 * std::fabs(ds[x]));
            // u of the vapour passes a maximum near 235 °C: compare with the caloric term.
            EXPECT_NEAR(zd::dudp(T, P, cp, dpdt, dpdv, slope), along_p("u") * 1e3,
                        1e-6 * cp / slope);
            EXPECT_NEAR(zd::dvdt(dpdt, dpdv, slope), diff1("Tq", t, x, "v", dt),
                        1e-6 * std::fabs(dv[x] * slope));
            EXPECT_NEAR(zd::dudt(T, P, cp, dpdt, dpdv, slope), diff1("Tq", t, x, "u", dt) * 1e3,
                        1e-6 * cp);
            const double d2pdt2 = at("Tq", t, x, "d2P_dT2"), d2pdv2 = at("Tq", t, x, "d2P_dv2");
            const double d2pdtdv = at("Tq", t, x, "d2P_dTdv");
            EXPECT_NEAR(zd::d2vdp2(dpdt, dpdv, slope, dv[x], d2pdt2, d2pdv2, d2pdtdv, curvature),
                        second_p("v"), 1e-4 * std::fabs(second_p("v")));
            EXPECT_NEAR(zd::d2sdp2(T, cp, dpdt, dpdv, slope, dv[x], d2pdt2, d2pdv2, d2pdtdv,
                                   curvature, at("Tq", t, x, "dCv_dT")),
                        second_p("s") * 1e3, 1e-4 * std::fabs(second_p("s") * 1e3));
        }
        EXPECT_NEAR(zd::dpdt_sat(v[1], v[0], s[1], s[0]), slope, 2e-4 * slope) << t;
        EXPECT_NEAR(zd::d2pdt2_sat(v[1], v[0], slope, ds[1], ds[0], dv[1], dv[0]), curvature,
                    2e-3 * curvature)
            << t;
    }
}

// The bundle operation for a state of the selected model, from one state evaluation.
struct bundle_result {
    double cv0, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa, gamma;
};
bundle_result bundle(std::string_view inputspec, double in1, double in2, std::string& errormsg) {
    double p, t, v, d, h, s, u, q, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma;
    water_support::composition x{}, y{};
    bundle_result r;
    zentropia_base::allthermophys(inputspec, in1, in2, p, t, v, d, h, s, u, q, x, y, r.cv0, dpdt,
                                  dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma,
                                  errormsg);
    r.cv = r.cv0;
    zd::allderivative(inputspec, in1, in2, p, t, v, d, q, r.cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv,
                      dcvdt, r.cp, r.c, r.alpha, r.beta, r.chi, r.fi, r.ksi, r.psi, r.zeta, r.theta,
                      r.kappa, r.gamma, errormsg);
    return r;
}

TEST(DerivativeConsistency, BundleOfAModelWithPressureDerivatives) {
    // IF97 answers the bundle with cp and c only; a model whose state evaluation carries the
    // derivatives takes both branches. References from IF97, taken before the model changes.
    water_support::select_water();
    const double p = 50.0, t = 200.0, h = at("PT", p, t, "h"), v = at("PT", p, t, "v");
    const double cp = at("PT", p, t, "cp"), c = at("PT", p, t, "c");
    const expected_derivatives e = by_differences("PT", p, t);
    const double theta = diff2("PT", p, t, "v", 1e-3) / v;
    const double kappa = -diff1("PT", p, t, "v", 1e-3) / v;
    // ksi = (∂ρ/∂h)_P and psi = (∂ρ/∂P)_h.
    const double ksi = (1 / at("Ph", p, h + 0.01, "v") - 1 / at("Ph", p, h - 0.01, "v")) / 20.0;
    const double psi = (1 / at("Ph", p + 0.01, h, "v") - 1 / at("Ph", p - 0.01, h, "v")) / 2e3;
    std::vector<std::pair<double, expected_derivatives>> two_phase;
    for (double q : {0.2, 0.7}) two_phase.push_back({q, by_differences("Pq", 1.0, q)});
    std::string errormsg = "No errors";
    const bundle_result if97 = bundle("PT", p, t, errormsg);
    EXPECT_EQ(if97.cp, cp);
    for (double value : {if97.alpha, if97.beta, if97.zeta, if97.gamma, if97.ksi})
        EXPECT_EQ(value, not_set);

    const water_support::water_with_derivatives model;
    const bundle_result r = bundle("PT", p, t, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_EQ(r.cv, r.cv0);
    EXPECT_NEAR(r.cp, cp, 1e-10 * cp);
    EXPECT_NEAR(r.c, c, 1e-10 * c);
    EXPECT_NEAR(r.alpha, e.alpha, 1e-6 * std::fabs(e.alpha));
    EXPECT_NEAR(r.beta, e.beta, 1e-6 * std::fabs(e.beta));
    EXPECT_NEAR(r.zeta, e.zeta, 1e-6 * std::fabs(e.zeta));
    EXPECT_NEAR(r.gamma, e.gamma, 1e-4 * std::fabs(e.gamma));
    EXPECT_NEAR(r.theta, theta, 1e-6 * std::fabs(theta));
    EXPECT_NEAR(r.kappa, kappa, 1e-6 * kappa);
    EXPECT_NEAR(r.ksi, ksi, 1e-5 * std::fabs(ksi));
    EXPECT_NEAR(r.psi, psi, 1e-5 * std::fabs(psi));
    EXPECT_NEAR(value_of(zd::zp_psi, "PT", p, t), r.psi, 1e-12 * std::fabs(r.psi));
    EXPECT_NEAR(value_of(zd::zp_theta, "PT", p, t), r.theta, 1e-12 * r.theta);

    for (const auto& [q, ref] : two_phase) {
        SCOPED_TRACE(q);
        const bundle_result b = bundle("Pq", 1.0, q, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_NEAR(b.alpha, ref.alpha, 2e-4 * std::fabs(ref.alpha));
        EXPECT_NEAR(b.beta, ref.beta, 2e-4 * ref.beta);
        EXPECT_NEAR(b.zeta, ref.zeta, 2e-4 * std::fabs(ref.zeta));
        EXPECT_NEAR(b.c, ref.c, 2e-4 * ref.c);
        EXPECT_NEAR(b.cv, ref.cv, 2e-4 * ref.cv) << "cv is replaced by the two-phase value";
        EXPECT_NEAR(b.gamma, value_of(zd::zp_gamma, "Pq", 1.0, q), 1e-9 * std::fabs(b.gamma));
        for (double value : {b.cp, b.theta, b.kappa}) EXPECT_EQ(value, not_set);
        // The flow-solver and Tarn bundles give the same values.
        double pp, tt, vv, d, hh, s, u, qq, cv, dpdt, dpdv, d2[4], eta, lambda, sigma;
        water_support::composition x{}, y{};
        zentropia_base::allthermophys("Pq", 1.0, q, pp, tt, vv, d, hh, s, u, qq, x, y, cv, dpdt,
                                      dpdv, d2[0], d2[1], d2[2], d2[3], eta, lambda, sigma,
                                      errormsg);
        double c2, alpha2, beta2, cp2, zeta2, cv2 = cv;
        zd::allderivativesu2("Pq", 1.0, q, pp, tt, vv, qq, cv2, dpdt, dpdv, c2, alpha2, beta2,
                             errormsg);
        EXPECT_NEAR(c2, b.c, 1e-12 * c2);
        EXPECT_NEAR(alpha2, b.alpha, 1e-9 * std::fabs(alpha2));
        EXPECT_NEAR(cv2, b.cv, 1e-12 * cv2);
        cv2 = cv;
        zd::allderivativetarn("Pq", 1.0, q, pp, tt, vv, qq, cv2, dpdt, dpdv, cp2, c2, alpha2, beta2,
                              zeta2, errormsg);
        EXPECT_EQ(cp2, not_set);
        EXPECT_NEAR(zeta2, b.zeta, 1e-9 * std::fabs(zeta2));
        EXPECT_NEAR(cv2, b.cv, 1e-9 * cv2);
    }
    // After a failed evaluation nothing is computed or written.
    errormsg = "Error in Critova: something";
    double cv = 1.0, out[12] = {7.0};
    zd::allderivative("PT", p, t, p, t, v, 1 / v, -0.5, cv, 1, -1, 0, 0, 0, 0, out[0], out[1],
                      out[2], out[3], out[4], out[5], out[6], out[7], out[8], out[9], out[10],
                      out[11], errormsg);
    EXPECT_EQ(out[0], 7.0);
}

TEST(DerivativeConsistency, TwoPhaseMixturesAreNotComputed) {
    const water_support::water_with_derivatives model({0.5, 0.5});
    ASSERT_EQ(zentropia_base::selection().ncmps, 2);
    double cv = 2.5, out[12];
    std::string errormsg = "No errors";
    zd::allderivative("PT", 10.0, 150.0, 10.0, 150.0, 0.1, 10.0, 0.5, cv, 1.0, -1.0, 0.0, 0.0, 0.0,
                      0.0, out[0], out[1], out[2], out[3], out[4], out[5], out[6], out[7], out[8],
                      out[9], out[10], out[11], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(cv, 2.5);
    for (double value : out) EXPECT_EQ(value, not_set);
    EXPECT_EQ(value_of(zd::zp_soundspeed, "Pq", 10.0, 0.5), not_set);
    EXPECT_EQ(value_of(zd::zp_gamma, "Pq", 10.0, 0.5), not_set);
}

} // namespace
