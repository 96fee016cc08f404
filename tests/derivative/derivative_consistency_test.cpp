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

// alpha = (∂P/∂ρ)_u = -v² (∂P/∂v)_u, beta = (∂P/∂u)_ρ, zeta = (∂T/∂v)_u, c² = -v² (∂P/∂v)_s
// and gamma = 1 - (v/c) (∂c/∂v)_s, by differences of (v,u) and (v,s) states; steps small enough
// to stay in the state's phase.
expected_derivatives by_differences(double v, double u, double s) {
    expected_derivatives e;
    const double dv = 1e-6 * v, du = 1e-6 * std::fabs(u) + 1e-4;
    const double dpdv_u = diff1("vu", v, u, "P", dv) * 1e5;
    e.alpha = -v * v * dpdv_u;
    e.beta = diff2("vu", v, u, "P", du) * 1e5 / 1000.0;
    e.zeta = diff1("vu", v, u, "T", dv);
    const double dpdv_s = diff1("vs", v, s, "P", dv) * 1e5;
    e.c = std::sqrt(-v * v * dpdv_s);
    e.gamma = 1.0 - v / e.c * diff1("vs", v, s, "c", dv);
    return e;
}

struct state {
    const char* spec;
    double in1, in2;
    const char* where;
};

TEST(DerivativeConsistency, SinglePhaseAgainstDifferences) {
    water_support::select_water();
    for (const state& st : {state{"PT", 50.0, 20.0, "liquid"}, state{"PT", 100.0, 250.0, "liquid"},
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
    // An ideal gas with cp/cv = k(T) has gamma = (k + 1)/2 + (k - 1) T k'(T) / (2k); with a
    // constant k this is (cp/cv + 1)/2. Steam approaches it as the pressure falls; k' comes from
    // a difference of the back-end's heat capacities.
    water_support::select_water();
    const auto ratio = [](double p, double t) {
        return value_of(zd::zp_heatcapp, "PT", p, t) / value_of(zd::zp_heatcapv, "PT", p, t);
    };
    for (double t : {200.0, 500.0, 1000.0, 1800.0}) {
        double previous_gap = 1.0;
        for (double p : {1e-1, 1e-2, 1e-3}) {
            const double k = ratio(p, t), T = t + 273.15;
            const double dk = (ratio(p, t + 0.5) - ratio(p, t - 0.5)) / 1.0;
            const double ideal = (k + 1) / 2 + (k - 1) * T * dk / (2 * k);
            const double gap = std::fabs(value_of(zd::zp_gamma, "PT", p, t) - ideal);
            EXPECT_LT(gap, 3e-3 * p) << p << " bar, " << t << " °C";
            if (previous_gap > 1e-7) EXPECT_LT(gap, previous_gap) << p << " bar, " << t << " °C";
            previous_gap = gap;
            // The constant-k form is good to the size of the temperature term, under 1 %.
            EXPECT_NEAR(value_of(zd::zp_gamma, "PT", p, t), (k + 1) / 2, 1e-2);
        }
    }
}

TEST(DerivativeConsistency, TwoPhaseAgainstDifferences) {
    // In the two-phase region the derivatives follow from the saturated phases (Clapeyron with
    // the region equations); the back-end's (v,u), (v,s) and (P,s) states of the mixture give them
    // independently, with the saturation-pressure equation of IF97. The two agree to about 1e-4:
    // the tolerances are 2e-4, 1e-3 for the second derivative.
    water_support::select_water();
    for (double p : {0.1, 1.0, 10.0, 100.0}) {
        for (double q : {0.05, 0.5, 0.95}) {
            SCOPED_TRACE(std::to_string(p) + " bar, q = " + std::to_string(q));
            const double v = at("Pq", p, q, "v"), u = at("Pq", p, q, "u"), s = at("Pq", p, q, "s");
            const expected_derivatives e = by_differences(v, u, s);
            const double alpha = value_of(zd::zp_alpha, "Pq", p, q);
            const double beta = value_of(zd::zp_beta, "Pq", p, q);
            EXPECT_NEAR(alpha, e.alpha, 2e-4 * std::fabs(e.alpha));
            EXPECT_NEAR(beta, e.beta, 2e-4 * std::fabs(e.beta));
            EXPECT_NEAR(value_of(zd::zp_zeta, "Pq", p, q), e.zeta, 2e-4 * std::fabs(e.zeta));
            // c² = alpha + v² P beta, the speed of sound of the homogeneous mixture.
            const double c = std::sqrt(alpha + v * v * p * 1e5 * beta);
            EXPECT_NEAR(c, e.c, 2e-4 * e.c);
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
            EXPECT_NEAR(value_of(zd::zp_heatcapv, "Pq", p, q), cv, 2e-4 * cv);
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
    // The marker stands at characters 4 to 6, behind a separator: "PT liq".
    for (const case_& c :
         {case_{"PT", 0.5, false}, case_{"PT liq", 0.5, true}, case_{"PT vap", 0.5, true},
          case_{"Pq_vap", 0.5, true}, case_{"PTliq", 0.5, false}, case_{"PT LIQ", 0.5, false},
          case_{"PT  ph", 0.5, true}, case_{"PT", 1e-9, true}, case_{"PT", 0.999999995, true},
          case_{"PT", 2e-8, false}, case_{"PT", 0.0, true}, case_{"PT", 1.0, true},
          case_{"PT", -0.3, true}, case_{"PT", 1.4, true}, case_{"", 0.5, false}}) {
        EXPECT_EQ(zd::is_single_phase(c.spec, c.q), c.single) << c.spec << " " << c.q;
    }
}

TEST(DerivativeConsistency, SaturationLineFunctionsAgainstDifferencesAlongTheLine) {
    // The saturated states of the back-end lie on IF97's saturation-pressure equation. Fed with
    // that line's slope and curvature (central differences), the functions of one saturated phase
    // must give its changes along the line; the Clapeyron slope from the phases' volumes and
    // entropies agrees with the line to IF97's consistency, about 1e-4.
    water_support::select_water();
    for (double t : {50.0, 150.0, 250.0, 340.0}) {
        const double T = t + 273.15, dt = 1e-2;
        const double p = at("Tq", t, 0.0, "P"), P = p * 1e5;
        const double slope = diff1("Tq", t, 0.0, "P", dt) * 1e5;
        const double curvature =
            (at("Tq", t + dt, 0.0, "P") - 2 * p + at("Tq", t - dt, 0.0, "P")) / (dt * dt) * 1e5;
        const double v_l = at("Tq", t, 0.0, "v"), v_v = at("Tq", t, 1.0, "v");
        const double s_l = at("Tq", t, 0.0, "s") * 1e3, s_v = at("Tq", t, 1.0, "s") * 1e3;
        EXPECT_NEAR(zd::dpdt_sat(v_v, v_l, s_v, s_l), slope, 2e-4 * slope) << t;
        for (double x : {0.0, 1.0}) {
            SCOPED_TRACE(std::to_string(t) + " °C, quality " + std::to_string(x));
            const double dpdt = at("Tq", t, x, "dP_dT"), dpdv = at("Tq", t, x, "dP_dv");
            const double cp = at("Tq", t, x, "cp") * 1e3;
            const double dp = 1e-5 * p;
            // Changes of the saturated phase's properties along the line (SI).
            const auto along_p = [&](const char* key, double to_si) {
                return diff1("Pq", p, x, key, dp) / 1e5 * to_si;
            };
            const auto along_t = [&](const char* key, double to_si) {
                return diff1("Tq", t, x, key, dt) * to_si;
            };
            const double dvdp = zd::dvdp(dpdt, dpdv, slope);
            EXPECT_NEAR(dvdp, along_p("v", 1.0), 1e-6 * std::fabs(dvdp));
            EXPECT_NEAR(zd::dsdp(T, cp, dpdt, dpdv, slope), along_p("s", 1e3),
                        1e-6 * std::fabs(along_p("s", 1e3)));
            // du/dP and du/dT of the vapour pass through zero near 235 °C: compare with the
            // size of their caloric term.
            EXPECT_NEAR(zd::dudp(T, P, cp, dpdt, dpdv, slope), along_p("u", 1e3),
                        1e-6 * cp / slope);
            EXPECT_NEAR(zd::dvdt(dpdt, dpdv, slope), along_t("v", 1.0),
                        1e-6 * std::fabs(along_t("v", 1.0)));
            EXPECT_NEAR(zd::dudt(T, P, cp, dpdt, dpdv, slope), along_t("u", 1e3), 1e-6 * cp);
            // Second order along the line.
            const double d2v =
                zd::d2vdp2(dpdt, dpdv, slope, dvdp, at("Tq", t, x, "d2P_dT2"),
                           at("Tq", t, x, "d2P_dv2"), at("Tq", t, x, "d2P_dTdv"), curvature);
            const double h = 1e-3 * p;
            const double d2v_fd =
                (at("Pq", p + h, x, "v") - 2 * at("Pq", p, x, "v") + at("Pq", p - h, x, "v")) /
                (h * h) / 1e10;
            EXPECT_NEAR(d2v, d2v_fd, 1e-4 * std::fabs(d2v_fd));
            const double d2s = zd::d2sdp2(T, cp, dpdt, dpdv, slope, dvdp, at("Tq", t, x, "d2P_dT2"),
                                          at("Tq", t, x, "d2P_dv2"), at("Tq", t, x, "d2P_dTdv"),
                                          curvature, at("Tq", t, x, "dCv_dT"));
            const double d2s_fd =
                (at("Pq", p + h, x, "s") - 2 * at("Pq", p, x, "s") + at("Pq", p - h, x, "s")) /
                (h * h) / 1e10 * 1e3;
            EXPECT_NEAR(d2s, d2s_fd, 1e-4 * std::fabs(d2s_fd));
        }
        // The line's curvature from the phases' changes (Clapeyron differentiated).
        const auto phase_slopes = [&](double x, double& ds, double& dv) {
            const double dpdt = at("Tq", t, x, "dP_dT"), dpdv = at("Tq", t, x, "dP_dv");
            ds = zd::dsdp(T, at("Tq", t, x, "cp") * 1e3, dpdt, dpdv, slope);
            dv = zd::dvdp(dpdt, dpdv, slope);
        };
        double ds_l, dv_l, ds_v, dv_v;
        phase_slopes(0.0, ds_l, dv_l);
        phase_slopes(1.0, ds_v, dv_v);
        EXPECT_NEAR(zd::d2pdt2_sat(v_v, v_l, slope, ds_v, ds_l, dv_v, dv_l), curvature,
                    2e-3 * curvature)
            << t;
    }
}

// The bundle operations with every output, for a state of the selected model.
struct bundle_state {
    double p, t, v, d, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt;
};
bundle_state evaluate(std::string_view spec, double in1, double in2) {
    bundle_state b;
    double h, s, u, eta, lambda, sigma;
    water_support::composition x{}, y{};
    std::string errormsg;
    zentropia_base::allthermophys(spec, in1, in2, b.p, b.t, b.v, b.d, h, s, u, b.q, x, y, b.cv,
                                  b.dpdt, b.dpdv, b.d2pdt2, b.d2pdv2, b.d2pdtdv, b.dcvdt, eta,
                                  lambda, sigma, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    return b;
}

struct bundle_outputs {
    double cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa, gamma;
};
bundle_outputs derive(std::string_view spec, double in1, double in2, std::string& errormsg) {
    const bundle_state b = evaluate(spec, in1, in2);
    bundle_outputs o{};
    o.cv = b.cv;
    zd::allderivative(spec, in1, in2, b.p, b.t, b.v, b.d, b.q, o.cv, b.dpdt, b.dpdv, b.d2pdt2,
                      b.d2pdv2, b.d2pdtdv, b.dcvdt, o.cp, o.c, o.alpha, o.beta, o.chi, o.fi, o.ksi,
                      o.psi, o.zeta, o.theta, o.kappa, o.gamma, errormsg);
    return o;
}

TEST(DerivativeConsistency, BundleSinglePhaseBranch) {
    // IF97's own answers and differences of its states, taken before the model changes.
    water_support::select_water();
    const double p = 50.0, t = 200.0;
    const double cp_if97 = at("PT", p, t, "cp"), c_if97 = at("PT", p, t, "c");
    const double cv_if97 = at("PT", p, t, "cv");
    const double v = at("PT", p, t, "v"), u = at("PT", p, t, "u"), s = at("PT", p, t, "s");
    const expected_derivatives e = by_differences(v, u, s);
    const double theta = diff2("PT", p, t, "v", 1e-3) / v;
    const double kappa = -diff1("PT", p, t, "v", 1e-3) / v;
    // ksi = (∂ρ/∂h)_P and psi = (∂ρ/∂P)_h.
    const double h = at("PT", p, t, "h");
    const double ksi =
        (1.0 / at("Ph", p, h + 0.01, "v") - 1.0 / at("Ph", p, h - 0.01, "v")) / 0.02 / 1000.0;
    const double psi =
        (1.0 / at("Ph", p + 0.01, h, "v") - 1.0 / at("Ph", p - 0.01, h, "v")) / 0.02 / 1e5;

    const water_support::water_with_derivatives model;
    std::string errormsg = "No errors";
    const bundle_outputs o = derive("PT", p, t, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_EQ(o.cv, cv_if97);
    EXPECT_NEAR(o.cp, cp_if97, 1e-10 * cp_if97);
    EXPECT_NEAR(o.c, c_if97, 1e-10 * c_if97);
    EXPECT_NEAR(o.alpha, e.alpha, 1e-6 * std::fabs(e.alpha));
    EXPECT_NEAR(o.beta, e.beta, 1e-6 * std::fabs(e.beta));
    EXPECT_NEAR(o.zeta, e.zeta, 1e-6 * std::fabs(e.zeta));
    EXPECT_NEAR(o.gamma, e.gamma, 1e-4 * std::fabs(e.gamma));
    EXPECT_NEAR(o.theta, theta, 1e-6 * std::fabs(theta));
    EXPECT_NEAR(o.kappa, kappa, 1e-6 * kappa);
    EXPECT_NEAR(o.ksi, ksi, 1e-5 * std::fabs(ksi));
    EXPECT_NEAR(o.psi, psi, 1e-5 * std::fabs(psi));
    // The single-property operations of this model agree with its bundle.
    EXPECT_NEAR(value_of(zd::zp_kappa, "PT", p, t), o.kappa, 1e-12 * o.kappa);
    EXPECT_NEAR(value_of(zd::zp_theta, "PT", p, t), o.theta, 1e-12 * o.theta);
    EXPECT_NEAR(value_of(zd::zp_ksi, "PT", p, t), o.ksi, 1e-12 * std::fabs(o.ksi));
    EXPECT_NEAR(value_of(zd::zp_psi, "PT", p, t), o.psi, 1e-12 * std::fabs(o.psi));
    EXPECT_NEAR(value_of(zd::zp_heatcapp, "PT", p, t), o.cp, 1e-12 * o.cp);
    EXPECT_NEAR(value_of(zd::zp_soundspeed, "PT", p, t), o.c, 1e-12 * o.c);

    // A failed evaluation upstream: nothing is computed or written.
    errormsg = "Error in PCP-SAFT: something";
    const bundle_state b = evaluate("PT", p, t);
    double cv = 1.0, cp = 7.0, c = 7.0, out[10];
    zd::allderivative("PT", p, t, b.p, b.t, b.v, b.d, b.q, cv, b.dpdt, b.dpdv, b.d2pdt2, b.d2pdv2,
                      b.d2pdtdv, b.dcvdt, cp, c, out[0], out[1], out[2], out[3], out[4], out[5],
                      out[6], out[7], out[8], out[9], errormsg);
    EXPECT_EQ(cp, 7.0);
    EXPECT_EQ(cv, 1.0);
}

TEST(DerivativeConsistency, BundleTwoPhaseBranch) {
    // The bundles rebuild the two-phase derivatives from the saturated states of one bundle
    // evaluation each; compared with differences of the mixture's states as above.
    water_support::select_water();
    struct reference {
        double p, q, v, alpha, beta, zeta, c, cv;
    };
    std::vector<reference> refs;
    for (double p : {1.0, 50.0})
        for (double q : {0.2, 0.7}) {
            const double v = at("Pq", p, q, "v"), u = at("Pq", p, q, "u"), s = at("Pq", p, q, "s");
            const expected_derivatives e = by_differences(v, u, s);
            const double t = at("Pq", p, q, "T");
            const double cv = (at("Tv", t + 1e-3, v, "u") - at("Tv", t - 1e-3, v, "u")) / 2e-3;
            refs.push_back({p, q, v, e.alpha, e.beta, e.zeta, e.c, cv});
        }
    const water_support::water_with_derivatives model;
    for (const reference& r : refs) {
        SCOPED_TRACE(std::to_string(r.p) + " bar, q = " + std::to_string(r.q));
        std::string errormsg = "No errors";
        const bundle_outputs o = derive("Pq", r.p, r.q, errormsg);
        ASSERT_EQ(errormsg, "No errors");
        EXPECT_NEAR(o.alpha, r.alpha, 2e-4 * std::fabs(r.alpha));
        EXPECT_NEAR(o.beta, r.beta, 2e-4 * std::fabs(r.beta));
        EXPECT_NEAR(o.zeta, r.zeta, 2e-4 * std::fabs(r.zeta));
        EXPECT_NEAR(o.c, r.c, 2e-4 * r.c);
        EXPECT_NEAR(o.cv, r.cv, 2e-4 * r.cv) << "cv is replaced by the two-phase value";
        EXPECT_NEAR(o.gamma, value_of(zd::zp_gamma, "Pq", r.p, r.q), 1e-9 * std::fabs(o.gamma));
        for (double value : {o.cp, o.theta, o.kappa}) EXPECT_EQ(value, not_set);

        // The flow-solver and Tarn bundles give the same c, alpha, beta (and zeta).
        const bundle_state b = evaluate("Pq", r.p, r.q);
        double cv = b.cv, c, alpha, beta;
        zd::allderivativesu2("Pq", r.p, r.q, b.p, b.t, b.v, b.q, cv, b.dpdt, b.dpdv, c, alpha, beta,
                             errormsg);
        EXPECT_NEAR(c, o.c, 1e-12 * c);
        EXPECT_NEAR(alpha, o.alpha, 1e-9 * std::fabs(alpha));
        EXPECT_NEAR(beta, o.beta, 1e-12 * beta);
        EXPECT_NEAR(cv, o.cv, 1e-12 * cv);
        double cp, zeta;
        cv = b.cv;
        zd::allderivativetarn("Pq", r.p, r.q, b.p, b.t, b.v, b.q, cv, b.dpdt, b.dpdv, cp, c, alpha,
                              beta, zeta, errormsg);
        EXPECT_EQ(cp, not_set);
        EXPECT_NEAR(c, o.c, 1e-9 * c);
        EXPECT_NEAR(zeta, o.zeta, 1e-9 * std::fabs(zeta));
        EXPECT_NEAR(cv, o.cv, 1e-9 * cv);
        // A phase-qualified specification takes the single-phase branch (with the two-phase
        // state's own back-end values, which IF97 leaves unset there).
        cv = b.cv;
        zd::allderivativesu2("Pq liq", r.p, r.q, b.p, b.t, b.v, b.q, cv, b.dpdt, b.dpdv, c, alpha,
                             beta, errormsg);
        EXPECT_EQ(cv, b.cv);
    }
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
    // The single-property operations likewise.
    EXPECT_EQ(value_of(zd::zp_soundspeed, "Pq", 10.0, 0.5), not_set);
    EXPECT_EQ(value_of(zd::zp_gamma, "Pq", 10.0, 0.5), not_set);
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
