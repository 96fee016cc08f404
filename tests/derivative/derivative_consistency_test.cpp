// The derivative layer against independent evaluations: central differences of the IF97 back-end's
// own state functions (through the dispatcher, internal units), in the single-phase region and in
// the two-phase region, the ideal-gas limit, and the saturation-line functions against differences
// along the line.
#include "derivative/zentropia_derivative.hpp"
#include "main/water_support.hpp"
#include "main/zentropia_thermo.hpp"

#include <gtest/gtest.h>

namespace {

namespace zd = zentropia_derivative;
namespace zt = zentropia_thermo;
using zp_common::not_set;

// One property of a state, which must evaluate.
double at(std::string_view spec, double in1, double in2, std::string_view key) {
    std::string errormsg;
    const double value = zentropia_base::calculate(spec, in1, in2, key, errormsg);
    EXPECT_EQ(errormsg, "No errors") << spec << " " << in1 << " " << in2 << " " << key;
    return value;
}

// Central difference of key by the first input, the second held.
double diff1(std::string_view spec, double in1, double in2, std::string_view key, double step) {
    return (at(spec, in1 + step, in2, key) - at(spec, in1 - step, in2, key)) / (2 * step);
}
double diff2(std::string_view spec, double in1, double in2, std::string_view key, double step) {
    return (at(spec, in1, in2 + step, key) - at(spec, in1, in2 - step, key)) / (2 * step);
}

double value_of(double (*op)(std::string_view, double, double, std::string&), std::string_view spec,
                double in1, double in2) {
    std::string errormsg;
    const double value = op(spec, in1, in2, errormsg);
    EXPECT_EQ(errormsg, "No errors") << spec << " " << in1 << " " << in2;
    return value;
}

// The properties as derivatives of (v, u) and (v, s) states, SI: P in Pa, u in J/kg.
struct expected_derivatives {
    double alpha, beta, zeta, c, gamma;
};

// alpha = (∂P/∂ρ)_u = -v² (∂P/∂v)_u, beta = (∂P/∂u)_ρ, zeta = (∂T/∂v)_u, c² = -v² (∂P/∂v)_s and
// gamma = v³/(2c²) (∂²P/∂v²)_s, by differences of (v,u) and (v,s) states.
expected_derivatives by_differences(double v, double u, double s) {
    expected_derivatives e;
    const double dv = 1e-5 * v, du = 1e-5 * std::fabs(u) + 1e-3;
    const double dpdv_u = diff1("vu", v, u, "P", dv) * 1e5;
    e.alpha = -v * v * dpdv_u;
    e.beta = diff2("vu", v, u, "P", du) * 1e5 / 1000.0;
    e.zeta = diff1("vu", v, u, "T", dv);
    const double dpdv_s = diff1("vs", v, s, "P", dv) * 1e5;
    e.c = std::sqrt(-v * v * dpdv_s);
    const double h = 1e-3 * v;
    const double d2pdv2_s =
        (at("vs", v + h, s, "P") - 2 * at("vs", v, s, "P") + at("vs", v - h, s, "P")) / (h * h) *
        1e5;
    e.gamma = v * v * v / (2 * e.c * e.c) * d2pdv2_s;
    return e;
}

struct state {
    const char* spec;
    double in1, in2;
    const char* where;
};

TEST(DerivativeConsistency, SinglePhaseAgainstDifferences) {
    water_support::select_water();
    for (const state& st : {state{"PT", 1.0, 20.0, "liquid"}, state{"PT", 100.0, 250.0, "liquid"},
                            state{"PT", 0.1, 200.0, "vapour"}, state{"PT", 50.0, 500.0, "vapour"},
                            state{"PT", 300.0, 400.0, "region 3"},
                            state{"PT", 250.0, 380.0, "near-critical region 3"},
                            state{"PT", 30.0, 1500.0, "region 5"}}) {
        SCOPED_TRACE(st.where);
        const double v = at(st.spec, st.in1, st.in2, "v");
        const double u = at(st.spec, st.in1, st.in2, "u");
        const double s = at(st.spec, st.in1, st.in2, "s");
        const expected_derivatives e = by_differences(v, u, s);
        EXPECT_NEAR(value_of(zd::zp_alpha, st.spec, st.in1, st.in2), e.alpha,
                    1e-6 * std::fabs(e.alpha));
        EXPECT_NEAR(value_of(zd::zp_beta, st.spec, st.in1, st.in2), e.beta,
                    1e-6 * std::fabs(e.beta));
        EXPECT_NEAR(value_of(zd::zp_zeta, st.spec, st.in1, st.in2), e.zeta,
                    1e-6 * std::fabs(e.zeta));
        EXPECT_NEAR(value_of(zd::zp_gamma, st.spec, st.in1, st.in2), e.gamma,
                    1e-4 * std::fabs(e.gamma));
        // The back-end's own speed of sound.
        EXPECT_NEAR(value_of(zd::zp_soundspeed, st.spec, st.in1, st.in2), e.c, 1e-6 * e.c);
        // chi and fi need no derivative.
        const double T = st.in2 + 273.15, P = st.in1 * 1e5;
        EXPECT_NEAR(value_of(zd::zp_chi, st.spec, st.in1, st.in2), -P * v * v / T,
                    1e-12 * P * v * v / T);
        EXPECT_DOUBLE_EQ(value_of(zd::zp_fi, st.spec, st.in1, st.in2), 1.0 / T);
    }
}

TEST(DerivativeConsistency, FundamentalDerivativeReachesTheIdealGasLimit) {
    // For an ideal gas gamma = (cp/cv + 1)/2; steam approaches it as the pressure falls.
    water_support::select_water();
    for (double t : {200.0, 500.0, 1000.0, 1800.0}) {
        double previous_gap = 1.0;
        for (double p : {1e-2, 1e-3, 1e-4}) {
            const double cp = value_of(zd::zp_heatcapp, "PT", p, t);
            const double cv = value_of(zd::zp_heatcapv, "PT", p, t);
            const double gamma = value_of(zd::zp_gamma, "PT", p, t);
            const double gap = std::fabs(gamma - (cp / cv + 1) / 2);
            EXPECT_LT(gap, 1e-3) << p << " bar, " << t << " °C";
            EXPECT_LT(gap, previous_gap) << p << " bar, " << t << " °C";
            previous_gap = gap;
        }
    }
}

TEST(DerivativeConsistency, TwoPhaseAgainstDifferences) {
    // In the two-phase region the derivatives follow from the saturated phases (Clapeyron); the
    // back-end's (v,u), (v,s) and (P,s) states of the mixture give them independently.
    water_support::select_water();
    for (double p : {0.1, 1.0, 10.0, 100.0}) {
        for (double q : {0.05, 0.5, 0.95}) {
            SCOPED_TRACE(std::to_string(p) + " bar, q = " + std::to_string(q));
            const double v = at("Pq", p, q, "v"), u = at("Pq", p, q, "u"), s = at("Pq", p, q, "s");
            const expected_derivatives e = by_differences(v, u, s);
            const double alpha = value_of(zd::zp_alpha, "Pq", p, q);
            const double beta = value_of(zd::zp_beta, "Pq", p, q);
            EXPECT_NEAR(alpha, e.alpha, 1e-5 * std::fabs(e.alpha));
            EXPECT_NEAR(beta, e.beta, 1e-5 * std::fabs(e.beta));
            EXPECT_NEAR(value_of(zd::zp_zeta, "Pq", p, q), e.zeta, 1e-5 * std::fabs(e.zeta));
            // c² = alpha + v² P beta, the speed of sound of the homogeneous mixture.
            const double c = std::sqrt(alpha + v * v * p * 1e5 * beta);
            EXPECT_NEAR(c, e.c, 1e-5 * e.c);
            // gamma = c⁴/(2v³) (∂²v/∂P²)_s, from (P, s) states.
            const double dp = 1e-2 * p;
            const double d2vdp2 =
                (at("Ps", p + dp, s, "v") - 2 * v + at("Ps", p - dp, s, "v")) / (dp * dp) / 1e10;
            const double gamma = std::pow(c, 4) / (2 * v * v * v) * d2vdp2;
            EXPECT_NEAR(value_of(zd::zp_gamma, "Pq", p, q), gamma, 1e-3 * std::fabs(gamma));
            // cv of the mixture: (∂u/∂T)_v.
            const double dt = 1e-3;
            const double t = at("Pq", p, q, "T");
            const double cv = (at("Tv", t + dt, v, "u") - at("Tv", t - dt, v, "u")) / (2 * dt);
            EXPECT_NEAR(value_of(zd::zp_heatcapv, "Pq", p, q), cv, 1e-5 * cv);
            // Properties that do not exist in the two-phase region of a pure fluid.
            std::string errormsg;
            EXPECT_EQ(zd::zp_heatcapp("Pq", p, q, errormsg), not_set);
        }
    }
}

TEST(DerivativeConsistency, PhaseTest) {
    struct case_ {
        const char* spec;
        double q;
        bool single;
    };
    for (const case_& c :
         {case_{"PT", 0.5, false}, case_{"PTliq", 0.5, true}, case_{"PTvap", 0.5, true},
          case_{"PTLIQ", 0.5, false}, case_{"PT  ph", 0.5, true}, case_{"PT", 1e-9, true},
          case_{"PT", 0.999999995, true}, case_{"PT", 2e-8, false}, case_{"PT", 0.0, true},
          case_{"PT", 1.0, true}, case_{"PT", -0.3, true}, case_{"PT", 1.4, true},
          case_{"", 0.5, false}}) {
        EXPECT_EQ(zd::is_single_phase(c.spec, c.q), c.single) << c.spec << " " << c.q;
    }
}

TEST(DerivativeConsistency, SaturationLineFunctionsAgainstDifferencesAlongTheLine) {
    // At the saturation temperature t, SI values of one saturated phase (quality 0 or 1).
    water_support::select_water();
    for (double t : {50.0, 150.0, 250.0, 340.0}) {
        for (double x : {0.0, 1.0}) {
            SCOPED_TRACE(std::to_string(t) + " °C, quality " + std::to_string(x));
            const double T = t + 273.15, P = at("Tq", t, x, "P") * 1e5;
            const double v_l = at("Tq", t, 0.0, "v"), v_v = at("Tq", t, 1.0, "v");
            const double s_l = at("Tq", t, 0.0, "s") * 1e3, s_v = at("Tq", t, 1.0, "s") * 1e3;
            const double dpdt_s = zd::dpdt_sat(v_v, v_l, s_v, s_l);
            const double dt = 1e-3;
            const double slope = diff1("Tq", t, x, "P", dt) * 1e5;
            EXPECT_NEAR(dpdt_s, slope, 1e-7 * slope);
            const double curvature =
                (at("Tq", t + dt, x, "P") - 2 * P / 1e5 + at("Tq", t - dt, x, "P")) / (dt * dt) *
                1e5;

            const double dpdt = at("Tq", t, x, "dP_dT"), dpdv = at("Tq", t, x, "dP_dv");
            const double cp = at("Tq", t, x, "cp") * 1e3;
            const double dp = 1e-5 * P / 1e5;
            const auto along_p = [&](const char* key) {
                return diff1("Pq", P / 1e5, x, key, dp) / 1e5;
            };
            const auto along_t = [&](const char* key) { return diff1("Tq", t, x, key, dt); };
            const double dvdp = zd::dvdp(dpdt, dpdv, dpdt_s);
            EXPECT_NEAR(dvdp, along_p("v"), 1e-6 * std::fabs(dvdp));
            EXPECT_NEAR(zd::dsdp(T, cp, dpdt, dpdv, dpdt_s), along_p("s") * 1e3,
                        1e-6 * std::fabs(along_p("s") * 1e3));
            EXPECT_NEAR(zd::dudp(T, P, cp, dpdt, dpdv, dpdt_s), along_p("u") * 1e3,
                        1e-6 * std::fabs(along_p("u") * 1e3));
            EXPECT_NEAR(zd::dvdt(dpdt, dpdv, dpdt_s), along_t("v"), 1e-6 * std::fabs(along_t("v")));
            EXPECT_NEAR(zd::dudt(T, P, cp, dpdt, dpdv, dpdt_s), along_t("u") * 1e3,
                        1e-6 * std::fabs(along_t("u") * 1e3));

            // Second order: the line's curvature and d²v/dP² of the phase.
            const double ds_vdp =
                zd::dsdp(T, at("Tq", t, 1.0, "cp") * 1e3, at("Tq", t, 1.0, "dP_dT"),
                         at("Tq", t, 1.0, "dP_dv"), dpdt_s);
            const double ds_ldp =
                zd::dsdp(T, at("Tq", t, 0.0, "cp") * 1e3, at("Tq", t, 0.0, "dP_dT"),
                         at("Tq", t, 0.0, "dP_dv"), dpdt_s);
            const double dv_vdp =
                zd::dvdp(at("Tq", t, 1.0, "dP_dT"), at("Tq", t, 1.0, "dP_dv"), dpdt_s);
            const double dv_ldp =
                zd::dvdp(at("Tq", t, 0.0, "dP_dT"), at("Tq", t, 0.0, "dP_dv"), dpdt_s);
            const double d2pdt2_s =
                zd::d2pdt2_sat(v_v, v_l, dpdt_s, ds_vdp, ds_ldp, dv_vdp, dv_ldp);
            EXPECT_NEAR(d2pdt2_s, curvature, 1e-4 * std::fabs(curvature));
            const double d2v =
                zd::d2vdp2(dpdt, dpdv, dpdt_s, dvdp, at("Tq", t, x, "d2P_dT2"),
                           at("Tq", t, x, "d2P_dv2"), at("Tq", t, x, "d2P_dTdv"), d2pdt2_s);
            const double h = 1e-3 * P / 1e5;
            const double d2v_fd = (at("Pq", P / 1e5 + h, x, "v") - 2 * at("Pq", P / 1e5, x, "v") +
                                   at("Pq", P / 1e5 - h, x, "v")) /
                                  (h * h) / 1e10;
            EXPECT_NEAR(d2v, d2v_fd, 1e-3 * std::fabs(d2v_fd));
        }
    }
}

TEST(DerivativeConsistency, BundleSinglePhaseBranchOfAModelWithPressureDerivatives) {
    // IF97 answers the bundle with cp and c only. A model whose state evaluation carries the
    // pressure derivatives takes the single-phase branch: fed with IF97's derivatives of a state it
    // must reproduce IF97's own cp and c and the differences of theta and kappa.
    water_support::select_water();
    const double p = 50.0, t = 200.0;
    const double v = at("PT", p, t, "v"), d = 1.0 / v, cv0 = at("PT", p, t, "cv");
    const double dpdt = at("PT", p, t, "dP_dT"), dpdv = at("PT", p, t, "dP_dv");
    const double d2pdt2 = at("PT", p, t, "d2P_dT2"), d2pdv2 = at("PT", p, t, "d2P_dv2");
    const double d2pdtdv = at("PT", p, t, "d2P_dTdv"), dcvdt = at("PT", p, t, "dCv_dT");
    const double cp_if97 = at("PT", p, t, "cp"), c_if97 = at("PT", p, t, "c");
    const double gamma_if97 = value_of(zd::zp_gamma, "PT", p, t);
    const double alpha_if97 = value_of(zd::zp_alpha, "PT", p, t);
    const double theta = diff2("PT", p, t, "v", 1e-3) / v;
    const double kappa = -diff1("PT", p, t, "v", 1e-3) / v;

    // The selection fails (no such back-end installed) but keeps its model.
    std::string errormsg = "";
    const std::array<std::string, 1> name{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("Varimol", 1, name, one, errormsg);
    ASSERT_EQ(zentropia_base::selection().modelalias, "Varimol");

    double cv = cv0, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, th, ka, gamma;
    errormsg = "No errors";
    zd::allderivative("PT", p, t, p, t, v, d, -0.5, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt,
                      cp, c, alpha, beta, chi, fi, ksi, psi, zeta, th, ka, gamma, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(cv, cv0);
    EXPECT_NEAR(cp, cp_if97, 1e-10 * cp_if97);
    EXPECT_NEAR(c, c_if97, 1e-10 * c_if97);
    EXPECT_NEAR(gamma, gamma_if97, 1e-12 * gamma);
    EXPECT_NEAR(alpha, alpha_if97, 1e-12 * std::fabs(alpha));
    EXPECT_NEAR(th, theta, 1e-6 * std::fabs(theta));
    EXPECT_NEAR(ka, kappa, 1e-6 * kappa);
    // ksi = (∂ρ/∂h)_P and psi = (∂ρ/∂P)_h of the same state.
    const double h = at("PT", p, t, "h");
    const double dksi =
        (1.0 / at("Ph", p, h + 0.01, "v") - 1.0 / at("Ph", p, h - 0.01, "v")) / 0.02 / 1000.0;
    EXPECT_NEAR(ksi, dksi, 1e-5 * std::fabs(dksi));
    const double dpsi =
        (1.0 / at("Ph", p + 0.01, h, "v") - 1.0 / at("Ph", p - 0.01, h, "v")) / 0.02 / 1e5;
    EXPECT_NEAR(psi, dpsi, 1e-5 * std::fabs(dpsi));

    // A failed evaluation upstream: nothing is computed or written.
    errormsg = "Error in Varimol: something";
    cp = 7.0;
    zd::allderivative("PT", p, t, p, t, v, d, -0.5, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt,
                      cp, c, alpha, beta, chi, fi, ksi, psi, zeta, th, ka, gamma, errormsg);
    EXPECT_EQ(cp, 7.0);
}

TEST(DerivativeConsistency, TwoPhaseMixturesAreNotComputed) {
    std::string errormsg = "";
    const std::array<std::string, 2> names{"water", "ammonia"};
    const std::array<double, 2> half{0.5, 0.5};
    zentropia_base::setfluid("Varimol", 2, names, half, errormsg);
    ASSERT_EQ(zentropia_base::selection().ncmps, 2);
    double cv = 2.5, out[12];
    errormsg = "No errors";
    zd::allderivative("PT", 10.0, 150.0, 10.0, 150.0, 0.1, 10.0, 0.5, cv, 1.0, -1.0, 0.0, 0.0, 0.0,
                      0.0, out[0], out[1], out[2], out[3], out[4], out[5], out[6], out[7], out[8],
                      out[9], out[10], out[11], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(cv, 2.5);
    for (double value : out) EXPECT_EQ(value, not_set);
    water_support::select_water();
}

TEST(DerivativeConsistency, If97BundleGivesCpAndSoundSpeedOnly) {
    water_support::select_water();
    double cv = 1.0, out[12];
    std::string errormsg = "No errors";
    zd::allderivative("PT", 10.0, 150.0, 10.0, 150.0, 0.001, 1000.0, -0.5, cv, not_set, not_set,
                      not_set, not_set, not_set, not_set, out[0], out[1], out[2], out[3], out[4],
                      out[5], out[6], out[7], out[8], out[9], out[10], out[11], errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_NEAR(out[0], at("PT", 10.0, 150.0, "cp"), 1e-12);
    EXPECT_NEAR(out[1], at("PT", 10.0, 150.0, "c"), 1e-9);
    for (int i = 2; i < 12; ++i) EXPECT_EQ(out[i], not_set);
}

} // namespace
