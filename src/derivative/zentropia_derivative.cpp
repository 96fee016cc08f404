#include "derivative/zentropia_derivative.hpp"

#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "main/zentropia_thermo.hpp"

#include <cmath>

namespace zentropia_derivative {
namespace {

using zp_common::is_ok;
using zp_common::not_set;
using zp_models::derivatives;

// Internal units to SI inside the formulas: T = t + 273.15, P = 100000 p, kJ = 1000 J.
constexpr double kelvin_offset = 273.15;
constexpr double pa_per_bar = 100000.0;
constexpr double j_per_kj = 1000.0;

// What the selected model's bundle delivers for the derivative properties.
derivatives delivered_derivatives() {
    return zentropia_base::selected_alias().derived;
}
bool is_mixture() {
    return zentropia_base::selected_mixture();
}

// ---- Single-phase formulas (T K, P Pa, cv kJ/(kg K), pressure derivatives per pascal) ----------

double cp_of(double T, double cv, double dpdt, double dpdv) {
    return cv - (dpdt * dpdt * T / dpdv) / j_per_kj;
}
double c_of(double v, double cv, double cp, double dpdv) {
    return std::sqrt(-dpdv * cp * v * v / cv);
}
double beta_of(double cv, double dpdt) {
    return dpdt / cv / j_per_kj;
}
double zeta_of(double T, double P, double cv, double dpdt) {
    return (P - T * dpdt) / cv / j_per_kj;
}
double theta_of(double v, double dpdt, double dpdv) {
    return -(dpdt / dpdv) / v;
}
double kappa_of(double v, double dpdv) {
    return -(pa_per_bar / v) / dpdv;
}
// Fundamental derivative v³/(2c²) (∂²P/∂v²)_s (P. A. Thompson, Phys. Fluids 14 (1971) 1843), the
// isentropic curvature written with the derivatives along an isotherm and an isochore.
double gamma_of(double T, double v, double c, double cv, double dpdt, double d2pdt2, double d2pdv2,
                double d2pdtdv, double dcvdt) {
    const double a = T / cv / j_per_kj;
    const double curvature =
        d2pdv2 - 3.0 * a * dpdt * d2pdtdv +
        (a * dpdt) * (a * dpdt) * (3.0 * d2pdt2 + (dpdt / T) * (1.0 - a * dcvdt));
    return v * v * v / (2.0 * c * c) * curvature;
}
// These hold in both regions.
double alpha_of(double P, double v, double c, double beta) {
    return c * c - v * v * P * beta;
}
double chi_of(double T, double P, double v) {
    return -P * v * v / T;
}
double fi_of(double T) {
    return 1.0 / T;
}
double ksi_of(double P, double d, double alpha, double beta) {
    return -(beta * d * d) / (alpha * d * d + P * beta);
}
double psi_of(double d, double beta, double ksi) {
    return -ksi * (beta + d) / (beta * d);
}

// The properties that follow from c and beta in both regions.
void complete_common(double T, double P, double v, double d, derived_properties& r) {
    r.alpha = alpha_of(P, v, r.c, r.beta);
    r.chi = chi_of(T, P, v);
    r.fi = fi_of(T);
    r.ksi = ksi_of(P, d, r.alpha, r.beta);
    r.psi = psi_of(d, r.beta, r.ksi);
}

// ---- Two-phase region of a pure fluid ----------------------------------------------------------

// One saturated phase, SI: v m³/kg, s and cp J/(kg K), cv kJ/(kg K), pressure derivatives per Pa.
struct saturated_phase {
    double v = not_set, s = not_set, cp = not_set;
    double dpdt = not_set, dpdv = not_set;
    double d2pdt2 = not_set, d2pdv2 = not_set, d2pdtdv = not_set, dcvdt = not_set;
};

struct two_phase_values {
    double dpdt_s = not_set, c = not_set, beta = not_set, alpha = not_set, zeta = not_set;
    double gamma = not_set, cv = not_set;
};

// Everything that follows from the saturated phases at the state's temperature t (°C), pressure p
// (bar), quality q and specific volume v. The second-order terms (gamma) only when asked for.
bool two_phase(double t, double p, double q, double v, const saturated_phase& liq,
               const saturated_phase& vap, bool second_order, two_phase_values& out,
               std::string& errormsg) {
    const double T = t + kelvin_offset;
    const double P = pa_per_bar * p;
    const double dpdt_s = dpdt_sat(vap.v, liq.v, vap.s, liq.s);
    const double dv_vdp = dvdp(vap.dpdt, vap.dpdv, dpdt_s);
    const double dv_ldp = dvdp(liq.dpdt, liq.dpdv, dpdt_s);
    const double ds_vdp = dsdp(T, vap.cp, vap.dpdt, vap.dpdv, dpdt_s);
    const double ds_ldp = dsdp(T, liq.cp, liq.dpdt, liq.dpdv, dpdt_s);
    const double dxdp = dxdp_s(q, vap.s, liq.s, ds_vdp, ds_ldp);
    out.dpdt_s = dpdt_s;
    out.c = calc_c_2f(q, v, vap.v, liq.v, dxdp, dv_vdp, dv_ldp);
    out.beta = calc_beta_2f(q, T, P, vap.v, liq.v, vap.cp, liq.cp, vap.dpdt, liq.dpdt, vap.dpdv,
                            liq.dpdv, dpdt_s, dv_vdp, dv_ldp, errormsg);
    if (!is_ok(errormsg)) return false;
    out.alpha = alpha_of(P, v, out.c, out.beta);
    out.zeta = (out.beta * P - (out.c / v) * (out.c / v)) / dpdt_s;
    out.cv = dpdt_s / out.beta / j_per_kj;
    if (second_order) {
        const double d2pdt2_s = d2pdt2_sat(vap.v, liq.v, dpdt_s, ds_vdp, ds_ldp, dv_vdp, dv_ldp);
        const double d2v_vdp2 = d2vdp2(vap.dpdt, vap.dpdv, dpdt_s, dv_vdp, vap.d2pdt2, vap.d2pdv2,
                                       vap.d2pdtdv, d2pdt2_s);
        const double d2v_ldp2 = d2vdp2(liq.dpdt, liq.dpdv, dpdt_s, dv_ldp, liq.d2pdt2, liq.d2pdv2,
                                       liq.d2pdtdv, d2pdt2_s);
        const double d2xdp2 =
            d2xdp2_s(q, T, vap.s, liq.s, vap.cp, liq.cp, vap.dpdt, liq.dpdt, vap.dpdv, liq.dpdv,
                     dpdt_s, dv_vdp, dv_ldp, ds_vdp, ds_ldp, dxdp, d2pdt2_s, vap.d2pdt2, liq.d2pdt2,
                     vap.d2pdv2, liq.d2pdv2, vap.d2pdtdv, liq.d2pdtdv, vap.dcvdt, liq.dcvdt);
        // (∂²v/∂P²)_s of the mixture v = v_l + x (v_v - v_l)
        const double d2vdp2_mix = 2.0 * dxdp * (dv_vdp - dv_ldp) + q * (d2v_vdp2 - d2v_ldp2) +
                                  d2v_ldp2 + (vap.v - liq.v) * d2xdp2;
        const double c = out.c;
        out.gamma = c * c * c * c / (2.0 * v * v * v) * d2vdp2_mix;
    }
    return true;
}

// A saturated phase from the first-order values of a back-end: cv in kJ/(kg K), s in kJ/(kg K).
void finish_phase(double t, double v, double s, double cv, double dpdt, double dpdv,
                  saturated_phase& phase) {
    const double T = t + kelvin_offset;
    phase.v = v;
    phase.s = s * j_per_kj;
    phase.cp = j_per_kj * cv - dpdt * dpdt * T / dpdv;
    phase.dpdt = dpdt;
    phase.dpdv = dpdv;
}

// The saturated phase at t (°C) and quality 0 or 1 from one bundle evaluation.
bool saturated_from_bundle(decltype(&zentropia_base::allthermophys) evaluate, double t,
                           double quality, saturated_phase& phase, std::string& errormsg) {
    double p = not_set, ts = not_set, v = not_set, d = not_set, h = not_set, s = not_set;
    double u = not_set, q = not_set, cv = not_set, dpdt = not_set, dpdv = not_set;
    double eta = not_set, lambda = not_set, sigma = not_set;
    zp_common::composition x{}, y{};
    evaluate("Tq", t, quality, p, ts, v, d, h, s, u, q, x, y, cv, dpdt, dpdv, phase.d2pdt2,
             phase.d2pdv2, phase.d2pdtdv, phase.dcvdt, eta, lambda, sigma, errormsg);
    if (!is_ok(errormsg)) return false;
    finish_phase(t, v, s, cv, dpdt, dpdv, phase);
    return true;
}

// ---- States asked one property at a time ------------------------------------------------------

using single_query = double (*)(std::string_view, double, double, std::string&);

struct state_query {
    std::string_view inputspec;
    double input1, input2;
};

// One property of the state, unless an earlier question of the same operation failed.
double ask(const state_query& s, single_query get, std::string& errormsg) {
    return is_ok(errormsg) ? get(s.inputspec, s.input1, s.input2, errormsg) : not_set;
}
double ask(const state_query& s, std::string_view key, std::string& errormsg) {
    return is_ok(errormsg)
               ? zentropia_base::calculate(s.inputspec, s.input1, s.input2, key, errormsg)
               : not_set;
}

// The saturated phase at t (°C) and quality 0 or 1, one question per property.
bool saturated_by_query(double t, double quality, bool second_order, saturated_phase& phase,
                        std::string& errormsg) {
    using namespace zentropia_thermo;
    const state_query s{"Tq", t, quality};
    const double v = ask(s, zp_specvolume, errormsg);
    const double entropy = ask(s, zp_entropy, errormsg);
    const double cv = ask(s, "cv", errormsg);
    const double dpdt = ask(s, dp_dt, errormsg);
    const double dpdv = ask(s, dp_dv, errormsg);
    if (second_order) {
        phase.d2pdt2 = ask(s, d2p_dt2, errormsg);
        phase.d2pdv2 = ask(s, d2p_dv2, errormsg);
        phase.d2pdtdv = ask(s, d2p_dtdv, errormsg);
        phase.dcvdt = ask(s, dcv_dt, errormsg);
    }
    if (!is_ok(errormsg)) return false;
    finish_phase(t, v, entropy, cv, dpdt, dpdv, phase);
    return true;
}

// Two-phase values of a pure-fluid state, every value asked anew.
bool two_phase_by_query(const state_query& s, double q, bool second_order, two_phase_values& out,
                        std::string& errormsg) {
    using namespace zentropia_thermo;
    const double t = ask(s, zp_temperature, errormsg);
    const double p = ask(s, zp_pressure, errormsg);
    const double v = ask(s, zp_specvolume, errormsg);
    if (!is_ok(errormsg)) return false;
    saturated_phase liq, vap;
    return saturated_by_query(t, 0.0, second_order, liq, errormsg) &&
           saturated_by_query(t, 1.0, second_order, vap, errormsg) &&
           two_phase(t, p, q, v, liq, vap, second_order, out, errormsg);
}

// First-order state of the single-phase branch, asked one property at a time.
struct first_order_state {
    double T, P, v, cv, dpdt, dpdv;
};
first_order_state first_order(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    first_order_state st{};
    st.T = ask(s, zp_temperature, errormsg) + kelvin_offset;
    st.P = ask(s, zp_pressure, errormsg) * pa_per_bar;
    st.v = ask(s, zp_specvolume, errormsg);
    st.cv = ask(s, "cv", errormsg);
    st.dpdt = ask(s, dp_dt, errormsg);
    st.dpdv = ask(s, dp_dv, errormsg);
    return st;
}
double sound_speed_of(const first_order_state& st) {
    return c_of(st.v, st.cv, cp_of(st.T, st.cv, st.dpdt, st.dpdv), st.dpdv);
}

// ---- Rules of the single-property operations --------------------------------------------------

// The single-phase formulas, each asking for its own inputs in this order.
using single_formula = double (*)(const state_query& s, std::string& errormsg);

double cv_asked(const state_query& s, std::string& errormsg) {
    return ask(s, "cv", errormsg);
}
double c_asked(const state_query& s, std::string& errormsg) {
    return sound_speed_of(first_order(s, errormsg));
}
double alpha_asked(const state_query& s, std::string& errormsg) {
    const first_order_state st = first_order(s, errormsg);
    return alpha_of(st.P, st.v, sound_speed_of(st), beta_of(st.cv, st.dpdt));
}
double beta_asked(const state_query& s, std::string& errormsg) {
    const double cv = ask(s, "cv", errormsg);
    const double dpdt = ask(s, zentropia_thermo::dp_dt, errormsg);
    return beta_of(cv, dpdt);
}
double zeta_asked(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    const double T = ask(s, zp_temperature, errormsg) + kelvin_offset;
    const double P = ask(s, zp_pressure, errormsg) * pa_per_bar;
    const double cv = ask(s, "cv", errormsg);
    const double dpdt = ask(s, dp_dt, errormsg);
    return zeta_of(T, P, cv, dpdt);
}
double chi_asked(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    const double T = ask(s, zp_temperature, errormsg) + kelvin_offset;
    const double P = ask(s, zp_pressure, errormsg) * pa_per_bar;
    const double v = ask(s, zp_specvolume, errormsg);
    return chi_of(T, P, v);
}
double fi_asked(const state_query& s, std::string& errormsg) {
    return fi_of(ask(s, zentropia_thermo::zp_temperature, errormsg) + kelvin_offset);
}
double theta_asked(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    const double v = ask(s, zp_specvolume, errormsg);
    const double dpdt = ask(s, dp_dt, errormsg);
    const double dpdv = ask(s, dp_dv, errormsg);
    return theta_of(v, dpdt, dpdv);
}
double kappa_asked(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    const double v = ask(s, zp_specvolume, errormsg);
    const double dpdv = ask(s, dp_dv, errormsg);
    return kappa_of(v, dpdv);
}
double gamma_asked(const state_query& s, std::string& errormsg) {
    using namespace zentropia_thermo;
    const first_order_state st = first_order(s, errormsg);
    const double d2pdt2 = ask(s, d2p_dt2, errormsg);
    const double d2pdv2 = ask(s, d2p_dv2, errormsg);
    const double d2pdtdv = ask(s, d2p_dtdv, errormsg);
    const double dcvdt = ask(s, dcv_dt, errormsg);
    return gamma_of(st.T, st.v, sound_speed_of(st), st.cv, st.dpdt, d2pdt2, d2pdv2, d2pdtdv, dcvdt);
}

enum class if97_rule { as_others, backend, missing };

// How a single-property operation is answered. The models that answer the property themselves
// are asked by key: a table model always, IF97 by key (backend), not at all (missing: a text
// naming the property) or like any other model. Any other model: in the two-phase region of a
// pure fluid the value of the saturated mixture (null: the sentinel), or the single-phase formula
// where it holds in both regions (in_both_regions); in the single-phase region the formula.
struct property_rule {
    std::string_view key;
    if97_rule if97;
    std::string_view if97_name = {};
    double two_phase_values::*mixture = nullptr;
    single_formula formula = nullptr;
    bool in_both_regions = false;
};

using enum if97_rule;
using mix = two_phase_values;
// clang-format off
//                                  key      IF97       IF97's name  mixture      formula
constexpr property_rule cv_rule    {"cv",    backend,   "",          &mix::cv,    cv_asked};
constexpr property_rule c_rule     {"c",     backend,   "",          &mix::c,     c_asked};
constexpr property_rule alpha_rule {"alpha", as_others, "",          &mix::alpha, alpha_asked};
constexpr property_rule beta_rule  {"beta",  as_others, "",          &mix::beta,  beta_asked};
constexpr property_rule zeta_rule  {"zeta",  as_others, "",          &mix::zeta,  zeta_asked};
constexpr property_rule chi_rule   {"chi",   as_others, "",          nullptr,     chi_asked, true};
constexpr property_rule fi_rule    {"phi",   as_others, "",          nullptr,     fi_asked,  true};
constexpr property_rule theta_rule {"theta", missing,   "Theta",     nullptr,     theta_asked};
constexpr property_rule kappa_rule {"kappa", missing,   "Kappa",     nullptr,     kappa_asked};
constexpr property_rule gamma_rule {"gamma", as_others, "",          &mix::gamma, gamma_asked};
// Operations of their own shape, routed alike.
constexpr property_rule cp_rule    {"cp",    backend};
constexpr property_rule ksi_rule   {"ksi",   missing,   "Ksi"};
constexpr property_rule psi_rule   {"psi",   missing,   "Psi"};
// clang-format on

// Models that answer the property themselves; true with the answer in value.
bool routed(const property_rule& rule, const state_query& s, double& value, std::string& errormsg) {
    const derivatives by = delivered_derivatives();
    if (by == derivatives::backend_all ||
        (by == derivatives::backend_cp_c && rule.if97 == backend)) {
        value = zentropia_base::calculate(s.inputspec, s.input1, s.input2, rule.key, errormsg);
        return true;
    }
    if (by == derivatives::backend_cp_c && rule.if97 == missing) {
        errormsg = zp_common::trim(zentropia_base::selection().modelname);
        errormsg += ": calculation of ";
        errormsg += rule.if97_name;
        errormsg += " not available.";
        value = not_set;
        return true;
    }
    return false;
}

// The value of an operation after its evaluations: the sentinel when one of them failed.
double checked(double value, const std::string& errormsg) {
    return is_ok(errormsg) ? value : not_set;
}

// A two-phase value of a pure fluid; the sentinel for mixtures and failures. gamma is the one
// value that needs the second-order terms.
double two_phase_property(const state_query& s, double q, double two_phase_values::*value,
                          std::string& errormsg) {
    if (is_mixture()) return not_set;
    two_phase_values tp;
    if (!two_phase_by_query(s, q, value == &two_phase_values::gamma, tp, errormsg)) return not_set;
    return tp.*value;
}

// One single-property operation by its rule; a failed phase test answers 0.
double one_property(const property_rule& rule, std::string_view inputspec, double input1,
                    double input2, std::string& errormsg) {
    const state_query s{inputspec, input1, input2};
    double value;
    if (routed(rule, s, value, errormsg)) return value;
    const double q = zentropia_thermo::zp_vaporqual(inputspec, input1, input2, errormsg);
    if (!is_ok(errormsg)) return 0.0;
    if (!rule.in_both_regions && !is_single_phase(inputspec, q))
        return rule.mixture == nullptr ? not_set : two_phase_property(s, q, rule.mixture, errormsg);
    return checked(rule.formula(s, errormsg), errormsg);
}

} // namespace

derived_properties single_phase_derived(double p, double t, double v, double d, double cv,
                                        double dpdt, double dpdv, double d2pdt2, double d2pdv2,
                                        double d2pdtdv, double dcvdt) {
    const double T = t + kelvin_offset;
    const double P = pa_per_bar * p;
    derived_properties r;
    r.cp = cp_of(T, cv, dpdt, dpdv);
    r.c = c_of(v, cv, r.cp, dpdv);
    r.beta = beta_of(cv, dpdt);
    r.zeta = zeta_of(T, P, cv, dpdt);
    r.theta = theta_of(v, dpdt, dpdv);
    r.kappa = kappa_of(v, dpdv);
    r.gamma = gamma_of(T, v, r.c, cv, dpdt, d2pdt2, d2pdv2, d2pdtdv, dcvdt);
    complete_common(T, P, v, d, r);
    return r;
}

bool is_single_phase(std::string_view inputspec, double q) {
    if (q < 1e-8 || q > 0.99999999) return true;
    const std::string_view marker = inputspec.size() > 3 ? inputspec.substr(3, 3) : "";
    if (marker == "liq" || marker == "vap") return true;
    return inputspec.size() > 4 && inputspec.substr(4, 2) == "ph";
}

completion completion_of_selection() {
    return delivered_derivatives();
}

bool completion_keeps_state(std::string_view inputspec, double q) {
    switch (completion_of_selection()) {
    case completion::backend_all:
        return false;
    case completion::backend_cp_c:
        return true;
    default: // (a two-phase mixture state gets no derivatives, and no text)
        return is_single_phase(inputspec, q) || is_mixture();
    }
}

// ---- Bundles ------------------------------------------------------------------------------------

void allderivative(std::string_view inputspec, double input1, double input2, double p, double t,
                   double v, double d, double q, double& cv, double dpdt, double dpdv,
                   double d2pdt2, double d2pdv2, double d2pdtdv, double dcvdt, double& cp,
                   double& c, double& alpha, double& beta, double& chi, double& fi, double& ksi,
                   double& psi, double& zeta, double& theta, double& kappa, double& gamma,
                   std::string& errormsg, const backend_sound* delivered) {
    if (!is_ok(errormsg)) return;
    const state_query s{inputspec, input1, input2};
    if (delivered_derivatives() == derivatives::backend_all) {
        cp = ask(s, "cp", errormsg), c = ask(s, "c", errormsg);
        alpha = ask(s, "alpha", errormsg), beta = ask(s, "beta", errormsg);
        chi = ask(s, "chi", errormsg), fi = ask(s, "phi", errormsg);
        ksi = ask(s, "ksi", errormsg), psi = ask(s, "psi", errormsg);
        zeta = ask(s, "zeta", errormsg), theta = ask(s, "theta", errormsg);
        kappa = ask(s, "kappa", errormsg), gamma = ask(s, "gamma", errormsg);
        return;
    }
    if (delivered_derivatives() == derivatives::backend_cp_c) {
        cp = delivered != nullptr ? delivered->cp : ask(s, "cp", errormsg);
        c = delivered != nullptr ? delivered->c : ask(s, "c", errormsg);
        alpha = beta = chi = fi = ksi = psi = zeta = theta = kappa = gamma = not_set;
        return;
    }
    derived_properties r;
    if (is_single_phase(inputspec, q)) {
        r = single_phase_derived(p, t, v, d, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt);
    } else {
        if (is_mixture()) {
            cp = c = alpha = beta = chi = fi = ksi = psi = zeta = theta = kappa = gamma = not_set;
            return;
        }
        saturated_phase liq, vap;
        two_phase_values tp;
        if (!saturated_from_bundle(zentropia_base::allthermophys, t, 0.0, liq, errormsg) ||
            !saturated_from_bundle(zentropia_base::allthermophys, t, 1.0, vap, errormsg) ||
            !two_phase(t, p, q, v, liq, vap, true, tp, errormsg))
            return;
        r.cp = r.theta = r.kappa = not_set;
        r.c = tp.c, r.beta = tp.beta, r.zeta = tp.zeta, r.gamma = tp.gamma;
        cv = tp.cv;
        complete_common(t + kelvin_offset, pa_per_bar * p, v, d, r);
    }
    cp = r.cp, c = r.c, alpha = r.alpha, beta = r.beta, chi = r.chi, fi = r.fi;
    ksi = r.ksi, psi = r.psi, zeta = r.zeta, theta = r.theta, kappa = r.kappa, gamma = r.gamma;
}

void allderivativesu2(std::string_view inputspec, double input1, double input2, double p, double t,
                      double v, double q, double& cv, double dpdt, double dpdv, double& c,
                      double& alpha, double& beta, std::string& errormsg,
                      const backend_sound* delivered) {
    if (!is_ok(errormsg)) return;
    if (delivered_derivatives() == derivatives::backend_cp_c) {
        c = delivered != nullptr ? delivered->c
                                 : ask(state_query{inputspec, input1, input2}, "c", errormsg);
        alpha = beta = not_set;
        return;
    }
    const double T = t + kelvin_offset;
    if (is_single_phase(inputspec, q)) {
        c = c_of(v, cv, cp_of(T, cv, dpdt, dpdv), dpdv);
        beta = beta_of(cv, dpdt);
    } else {
        if (is_mixture()) {
            c = alpha = beta = not_set;
            return;
        }
        saturated_phase liq, vap;
        two_phase_values tp;
        if (!saturated_from_bundle(zentropia_base::allthermophyssu2, t, 0.0, liq, errormsg) ||
            !saturated_from_bundle(zentropia_base::allthermophyssu2, t, 1.0, vap, errormsg) ||
            !two_phase(t, p, q, v, liq, vap, false, tp, errormsg))
            return;
        c = tp.c, beta = tp.beta;
        cv = tp.cv;
    }
    alpha = alpha_of(pa_per_bar * p, v, c, beta);
}

void allderivativetarn(std::string_view inputspec, double input1, double input2, double p, double t,
                       double v, double q, double& cv, double dpdt, double dpdv, double& cp,
                       double& c, double& alpha, double& beta, double& zeta, std::string& errormsg,
                       const backend_sound* delivered) {
    if (!is_ok(errormsg)) return;
    if (delivered_derivatives() == derivatives::backend_cp_c) {
        const state_query s{inputspec, input1, input2};
        cp = delivered != nullptr ? delivered->cp : ask(s, "cp", errormsg);
        c = delivered != nullptr ? delivered->c : ask(s, "c", errormsg);
        alpha = beta = zeta = not_set;
        return;
    }
    const double T = t + kelvin_offset;
    const double P = pa_per_bar * p;
    if (q < 1e-8 || q > 0.99999999) {
        cp = cp_of(T, cv, dpdt, dpdv);
        c = c_of(v, cv, cp, dpdv);
        beta = beta_of(cv, dpdt);
        zeta = zeta_of(T, P, cv, dpdt);
    } else {
        // Saturated phases one property at a time, for mixtures as well.
        saturated_phase phases[2];
        for (int i = 0; i < 2; ++i) {
            using namespace zentropia_thermo;
            const state_query s{"Tq", t, static_cast<double>(i)};
            saturated_phase& ph = phases[i];
            ph.v = ask(s, zp_specvolume, errormsg);
            ph.s = ask(s, zp_entropy, errormsg) * j_per_kj;
            ph.dpdt = ask(s, dp_dt, errormsg);
            ph.dpdv = ask(s, dp_dv, errormsg);
            ph.cp = ask(s, zp_heatcapp, errormsg) * j_per_kj;
        }
        two_phase_values tp;
        if (!is_ok(errormsg) || !two_phase(t, p, q, v, phases[0], phases[1], false, tp, errormsg))
            return;
        cp = not_set;
        c = tp.c, beta = tp.beta, zeta = tp.zeta;
        cv = tp.cv;
    }
    alpha = alpha_of(P, v, c, beta);
}

// ---- Single-property operations: cp from one bundle evaluation, the others by their rules ------

double zp_heatcapp(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    const state_query s{inputspec, input1, input2};
    double value;
    if (routed(cp_rule, s, value, errormsg)) return value;
    double p = not_set, t = not_set, v = not_set, d = not_set, h = not_set, entropy = not_set;
    double u = not_set, q = not_set, cv = not_set, dpdt = not_set, dpdv = not_set;
    double d2pdt2 = not_set, d2pdv2 = not_set, d2pdtdv = not_set, dcvdt = not_set;
    double eta = not_set, lambda = not_set, sigma = not_set;
    zp_common::composition x{}, y{};
    zentropia_base::allthermophys(inputspec, input1, input2, p, t, v, d, h, entropy, u, q, x, y, cv,
                                  dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma,
                                  errormsg);
    if (!is_ok(errormsg)) return 0.0;
    if (!is_single_phase(inputspec, q)) return not_set;
    return cp_of(t + kelvin_offset, cv, dpdt, dpdv);
}

double zp_heatcapv(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return one_property(cv_rule, inputspec, input1, input2, errormsg);
}

double zp_soundspeed(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg) {
    return one_property(c_rule, inputspec, input1, input2, errormsg);
}

double zp_alpha(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(alpha_rule, inputspec, input1, input2, errormsg);
}

double zp_beta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(beta_rule, inputspec, input1, input2, errormsg);
}

double zp_zeta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(zeta_rule, inputspec, input1, input2, errormsg);
}

double zp_chi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(chi_rule, inputspec, input1, input2, errormsg);
}

double zp_fi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(fi_rule, inputspec, input1, input2, errormsg);
}

double zp_ksi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    const state_query s{inputspec, input1, input2};
    double value;
    if (routed(ksi_rule, s, value, errormsg)) return value;
    const double alpha = zp_alpha(inputspec, input1, input2, errormsg);
    const double beta = ask(s, zp_beta, errormsg);
    const double d = ask(s, zentropia_thermo::zp_density, errormsg);
    const double P = ask(s, zentropia_thermo::zp_pressure, errormsg) * pa_per_bar;
    const double denominator = alpha * d * d + P * beta;
    if (!is_ok(errormsg) || zp_common::isinit(alpha) || zp_common::isinit(beta) ||
        !(std::fabs(denominator) > 1e-6))
        return not_set;
    return ksi_of(P, d, alpha, beta);
}

double zp_psi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    const state_query s{inputspec, input1, input2};
    double value;
    if (routed(psi_rule, s, value, errormsg)) return value;
    const double ksi = zp_ksi(inputspec, input1, input2, errormsg);
    if (zp_common::isinit(ksi)) return not_set;
    const double beta = ask(s, zp_beta, errormsg);
    const double d = ask(s, zentropia_thermo::zp_density, errormsg);
    return checked(psi_of(d, beta, ksi), errormsg);
}

double zp_theta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(theta_rule, inputspec, input1, input2, errormsg);
}

double zp_kappa(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(kappa_rule, inputspec, input1, input2, errormsg);
}

double zp_gamma(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return one_property(gamma_rule, inputspec, input1, input2, errormsg);
}

// ---- Saturation line --------------------------------------------------------------------------

double dpdt_sat(double v_v, double v_l, double s_v, double s_l) {
    return (s_v - s_l) / (v_v - v_l);
}

double dvdp(double dpdt, double dpdv, double dpdt_s) {
    return 1.0 / dpdv - dpdt / (dpdv * dpdt_s);
}

double dsdp(double t, double cp, double dpdt, double dpdv, double dpdt_s) {
    return dpdt / dpdv + cp / (t * dpdt_s);
}

double dudp(double t, double p, double cp, double dpdt, double dpdv, double dpdt_s) {
    return (t * dpdt - p) / dpdv + (p * dpdt / dpdv + cp) / dpdt_s;
}

double dvdt(double dpdt, double dpdv, double dpdt_s) {
    return (dpdt_s - dpdt) / dpdv;
}

double dudt(double t, double p, double cp, double dpdt, double dpdv, double dpdt_s) {
    return p * dpdt / dpdv + cp + (t * dpdt - p) / dpdv * dpdt_s;
}

double dxdp_s(double x, double s_v, double s_l, double ds_vdp, double ds_ldp) {
    return ((x - 1.0) * ds_ldp - x * ds_vdp) / (s_v - s_l);
}

double dxdp_v(double x, double v_v, double v_l, double dv_vdp, double dv_ldp) {
    return ((x - 1.0) * dv_ldp - x * dv_vdp) / (v_v - v_l);
}

double d2pdt2_sat(double v_v, double v_l, double dpdt_s, double ds_vdp, double ds_ldp,
                  double dv_vdp, double dv_ldp) {
    return dpdt_s / (v_v - v_l) * (ds_vdp - ds_ldp - dpdt_s * (dv_vdp - dv_ldp));
}

double calc_c_2f(double x, double v, double v_v, double v_l, double dxdp, double dv_vdp,
                 double dv_ldp) {
    return std::sqrt(-v * v / ((v_v - v_l) * dxdp + (dv_vdp - dv_ldp) * x + dv_ldp));
}

double calc_beta_2f(double x, double t, double p, double v_v, double v_l, double cp_v, double cp_l,
                    double dpdt_v, double dpdt_l, double dpdv_v, double dpdv_l, double dpdt_s,
                    double dv_vdp, double dv_ldp, std::string& errormsg) {
    const double u_v = zentropia_thermo::zp_intenergy("Tq", t - kelvin_offset, 1.0, errormsg);
    if (!is_ok(errormsg)) return not_set;
    const double u_l = zentropia_thermo::zp_intenergy("Tq", t - kelvin_offset, 0.0, errormsg);
    if (!is_ok(errormsg)) return not_set;
    const double dxdp = dxdp_v(x, v_v, v_l, dv_vdp, dv_ldp);
    const double du_vdp = dudp(t, p, cp_v, dpdt_v, dpdv_v, dpdt_s);
    const double du_ldp = dudp(t, p, cp_l, dpdt_l, dpdv_l, dpdt_s);
    return 1.0 / ((u_v - u_l) * j_per_kj * dxdp + (du_vdp - du_ldp) * x + du_ldp);
}

double d2vdp2(double dpdt, double dpdv, double dpdt_s, double dvdp, double d2pdt2, double d2pdv2,
              double d2pdtdv, double d2pdt2_s) {
    const double a = dpdt, b = dpdv, s = dpdt_s;
    return ((d2pdv2 * (a - s) - b * d2pdtdv) / (b * b * s)) * dvdp +
           (((a - s) * d2pdtdv - d2pdt2 * b) * s + a * b * d2pdt2_s) / ((s * b) * (s * b)) / s;
}

double d2sdp2(double t, double cp, double dpdt, double dpdv, double dpdt_s, double dvdp,
              double d2pdt2, double d2pdv2, double d2pdtdv, double d2pdt2_s, double dcvdt) {
    const double a = dpdt, b = dpdv, s = dpdt_s;
    const double k1 = (2.0 * t * a * d2pdt2 + a * a) / b;
    const double k2 = t * a * a * d2pdtdv / (b * b);
    const double r = ((dcvdt - k1 + k2) / (t * s) - cp / (t * t * s) + d2pdt2 / b -
                      a * d2pdtdv / (b * b) - cp * d2pdt2_s / (s * s * t)) /
                     s;
    const double m = d2pdt2 + a * a * d2pdv2 / (b * b) - 2.0 * a * d2pdtdv / b;
    return r + (t * m / (t * s) - a * d2pdv2 / (b * b) + d2pdtdv / b) * dvdp;
}

double d2xdp2_s(double x, double t, double s_v, double s_l, double cp_v, double cp_l, double dpdt_v,
                double dpdt_l, double dpdv_v, double dpdv_l, double dpdt_s, double dv_vdp,
                double dv_ldp, double ds_vdp, double ds_ldp, double dxdp, double d2pdt2_s,
                double d2pdt2_v, double d2pdt2_l, double d2pdv2_v, double d2pdv2_l,
                double d2pdtdv_v, double d2pdtdv_l, double dcvdt_v, double dcvdt_l) {
    const double d2s_l = d2sdp2(t, cp_l, dpdt_l, dpdv_l, dpdt_s, dv_ldp, d2pdt2_l, d2pdv2_l,
                                d2pdtdv_l, d2pdt2_s, dcvdt_l);
    const double d2s_v = d2sdp2(t, cp_v, dpdt_v, dpdv_v, dpdt_s, dv_vdp, d2pdt2_v, d2pdv2_v,
                                d2pdtdv_v, d2pdt2_s, dcvdt_v);
    return (2.0 * dxdp * (ds_ldp - ds_vdp) - x * d2s_v + (x - 1.0) * d2s_l) / (s_v - s_l);
}

} // namespace zentropia_derivative
