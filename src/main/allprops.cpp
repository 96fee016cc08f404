// The bundles: every property of one state in a single call, and their output converters.
#include "base/zentropia_base.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "main/main_internal.hpp"
#include "main/zentropia_main.hpp"
#include "main/zentropia_thermo.hpp"
#include "transport/zentropia_transport.hpp"
#include "units/zentropia_units.hpp"

#include <algorithm>

namespace zentropia_main {
namespace {

using zentropia_units::unit_row;
using zp_common::is_ok;
using zp_common::not_set;

// Scratch storage for what a bundle evaluates but does not return.
composition scratch_x{}, scratch_y{};

} // namespace

void complete_state(std::string_view inputspec, double zp_input1, double zp_input2,
                    completion_rule completion, state_record& r, std::string& errormsg) {
    if (is_refprop_partial(errormsg)) {
        // The state stands; of its derivatives only those of p, v and T alone are computed.
        errormsg = zp_common::no_errors;
        r.cp = r.c = not_set;
        std::string scratch;
        const double chi = zentropia_derivative::zp_chi(inputspec, zp_input1, zp_input2, scratch);
        if (is_ok(scratch)) r.chi = chi;
        const double fi = zentropia_derivative::zp_fi(inputspec, zp_input1, zp_input2, scratch);
        if (is_ok(scratch)) r.fi = fi;
        return;
    }
    if (completion == completion_rule::never ||
        (completion == completion_rule::if_it_changes_the_state &&
         zentropia_derivative::completion_keeps_state(inputspec, r.q)))
        return;
    const zentropia_derivative::backend_sound sound{r.cp, r.c};
    r.cp = r.c = not_set;
    zentropia_derivative::allderivative(
        inputspec, zp_input1, zp_input2, r.p, r.t, r.v, r.d, r.q, r.cv, r.dpdt, r.dpdv, r.d2pdt2,
        r.d2pdv2, r.d2pdtdv, r.dcvdt, r.cp, r.c, r.alpha, r.beta, r.chi, r.fi, r.ksi, r.psi, r.zeta,
        r.theta, r.kappa, r.gamma, errormsg, r.sound ? &sound : nullptr);
}

void evaluate_state(std::string_view inputspec, double zp_input1, double zp_input2, state_record& r,
                    composition& x, composition& y, std::string& errormsg) {
    evaluate_state(inputspec, zp_input1, zp_input2, zp_adapter::output::all,
                   completion_rule::always, r, x, y, errormsg);
}

void allprops(std::string_view inputspec, double input1, double input2, double& p, double& t,
              double& v, double& d, double& h, double& s, double& u, double& q, composition& x,
              composition& y, double& cv, double& cp, double& c, double& alpha, double& beta,
              double& chi, double& fi, double& ksi, double& psi, double& zeta, double& theta,
              double& kappa, double& gamma, double& eta, double& lambda, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    state_record r;
    evaluate_state(inputspec, zp_input1, zp_input2, r, x, y, errormsg);
    p = r.p, t = r.t, v = r.v, d = r.d, h = r.h, s = r.s, u = r.u, q = r.q, cv = r.cv;
    cp = r.cp, c = r.c, alpha = r.alpha, beta = r.beta, chi = r.chi, fi = r.fi, ksi = r.ksi;
    psi = r.psi, zeta = r.zeta, theta = r.theta, kappa = r.kappa, gamma = r.gamma;
    eta = r.eta, lambda = r.lambda;
    alloutputconv(p, t, v, d, h, s, u, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta,
                  kappa, eta, lambda);
}

void allpropssat(std::string_view inputspec, double input1, double input2, double& p, double& t,
                 double& v, double& d, double& h, double& s, double& u, double& q, composition& x,
                 composition& y, double& cv, double& cp, double& c, double& alpha, double& beta,
                 double& chi, double& fi, double& ksi, double& psi, double& zeta, double& theta,
                 double& kappa, double& gamma, double& eta, double& lambda, double& d_liq,
                 double& d_vap, double& h_liq, double& h_vap, double& t_sat, double& dd_liq_dp,
                 double& dd_vap_dp, double& dh_liq_dp, double& dh_vap_dp, double& dt_sat_dp,
                 std::string& errormsg) {
    allprops(inputspec, input1, input2, p, t, v, d, h, s, u, q, x, y, cv, cp, c, alpha, beta, chi,
             fi, ksi, psi, zeta, theta, kappa, gamma, eta, lambda, errormsg);
    if (!is_ok(errormsg)) return;
    if (zentropia_base::selection().ncmps == 1)
        modelica_p(p, d_liq, d_vap, h_liq, h_vap, t_sat, dd_liq_dp, dd_vap_dp, dh_liq_dp, dh_vap_dp,
                   dt_sat_dp, errormsg);
    else
        modelica_p_mix(p, t, d_liq, d_vap, h_liq, h_vap, t_sat, dd_liq_dp, dd_vap_dp, dh_liq_dp,
                       dh_vap_dp, dt_sat_dp, errormsg);
}

void allpropssatext(std::string_view inputspec, double input1, double input2, double& p, double& t,
                    double& v, double& d, double& h, double& s, double& u, double& q,
                    composition& x, composition& y, double& v_liq, double& d_liq, double& h_liq,
                    double& s_liq, double& u_liq, double& v_vap, double& d_vap, double& h_vap,
                    double& s_vap, double& u_vap, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    zentropia_base::zp_allpropssatext(inputspec, zp_input1, zp_input2, p, t, v, d, h, s, u, q, x, y,
                                      v_liq, d_liq, h_liq, s_liq, u_liq, v_vap, d_vap, h_vap, s_vap,
                                      u_vap, errormsg);
    if (is_refprop_partial(errormsg)) errormsg = zp_common::no_errors;
    alloutputconvext(p, t, v, d, h, s, u, x, y, v_liq, d_liq, h_liq, s_liq, u_liq, v_vap, d_vap,
                     h_vap, s_vap, u_vap, errormsg);
}

void allpropssu2(std::string_view inputspec, double input1, double input2, double& p, double& t,
                 double& d, double& s, double& u, double& cv, double& c2, double& alpha,
                 double& beta, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    // One evaluation holds what this bundle and the completion of its derivatives read.
    namespace out = zp_adapter::output;
    constexpr unsigned wanted = out::p | out::t | out::v | out::d | out::s | out::u | out::q |
                                out::cv | out::derivatives | out::cp | out::c;
    state_record r;
    zentropia_base::allthermophys_part(inputspec, zp_input1, zp_input2, wanted, r, scratch_x,
                                       scratch_y, errormsg);
    const zentropia_derivative::backend_sound sound{r.cp, r.c};
    r.c = not_set;
    double c_squared = not_set;
    if (is_refprop_partial(errormsg)) {
        // Unlike allprops, the caller sees RefProp's text.
        r.alpha = r.beta = not_set;
    } else if (zentropia_base::selected_alias().derived == zp_models::derivatives::backend_all) {
        // A table model delivers the flow-solver quantities in the derivative slots.
        c_squared = r.d2pdtdv, r.alpha = r.d2pdt2, r.beta = r.d2pdv2;
    } else {
        zentropia_derivative::allderivativesu2(inputspec, zp_input1, zp_input2, r.p, r.t, r.v, r.q,
                                               r.cv, r.dpdt, r.dpdv, r.c, r.alpha, r.beta, errormsg,
                                               r.sound ? &sound : nullptr);
        if (zp_common::isnotinit(r.c)) c_squared = r.c * r.c;
    }
    p = r.p, t = r.t, d = r.d, s = r.s, u = r.u, cv = r.cv, c2 = c_squared;
    alpha = r.alpha, beta = r.beta;
    alloutputconvsu2(p, t, d, s, u, cv, c2, alpha, beta);
}

void allpropstarn(std::string_view inputspec, double input1, double input2, double& p, double& t,
                  double& v, double& d, double& h, double& s, double& u, double& cv, double& cp,
                  double& c, double& alpha, double& beta, double& zeta, double& eta, double& lambda,
                  double& dlam_dt, double& dlam_drho, double& deta_dt, double& deta_drho,
                  std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    state_record r;
    zentropia_base::allthermophys_part(inputspec, zp_input1, zp_input2, zp_adapter::output::all, r,
                                       scratch_x, scratch_y, errormsg);
    const zentropia_derivative::backend_sound sound{r.cp, r.c};
    r.cp = r.c = not_set;
    if (is_refprop_partial(errormsg))
        errormsg = zp_common::no_errors;
    else
        zentropia_derivative::allderivativetarn(inputspec, zp_input1, zp_input2, r.p, r.t, r.v, r.q,
                                                r.cv, r.dpdt, r.dpdv, r.cp, r.c, r.alpha, r.beta,
                                                r.zeta, errormsg, r.sound ? &sound : nullptr);
    p = r.p, t = r.t, v = r.v, d = r.d, h = r.h, s = r.s, u = r.u, cv = r.cv, cp = r.cp;
    c = r.c, alpha = r.alpha, beta = r.beta, zeta = r.zeta, eta = r.eta, lambda = r.lambda;
    alloutputconvtarn(p, t, v, d, h, s, u, cv, cp, c, alpha, beta, zeta, eta, lambda);
    // Not computed by this bundle: zero, by design.
    dlam_dt = dlam_drho = deta_dt = deta_drho = 0.0;
}

void alltransprops(std::string_view inputspec, double input1, double input2, double& eta,
                   double& eta_t, double& eta_rho, double& lambda, double& lambda_t,
                   double& lambda_rho, double& sigma, std::string& errormsg) {
    // The converted inputs are not used: the transport interface receives the caller's values.
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    zentropia_transport::zp_alltransprops(inputspec, input1, input2, eta, eta_t, eta_rho, lambda,
                                          lambda_t, lambda_rho, sigma, errormsg);
    outputconversion("eta", eta, eta);
    outputconversion("deta_dT", eta_t, eta_t);
    outputconversion("deta_drho", eta_rho, eta_rho);
    outputconversion("lambda", lambda, lambda);
    outputconversion("dlambda_dT", lambda_t, lambda_t);
    outputconversion("dlambda_drho", lambda_rho, lambda_rho);
    outputconversion("sigma", sigma, sigma);
}

void alltransprops_old(double t, double d, double& eta, double& eta_t, double& eta_d,
                       double& lambda, double& lambda_t, double& lambda_d, std::string& errormsg) {
    double zp_t, zp_d;
    inputconversion("Td", t, d, zp_t, zp_d);
    zentropia_base::alltransprops_zp(zp_t, zp_d, eta, eta_t, eta_d, lambda, lambda_t, lambda_d,
                                     errormsg);
    outputconversion("eta", eta, eta);
    outputconversion("deta_dT", eta_t, eta_t);
    outputconversion("deta_drho", eta_d, eta_d);
    outputconversion("lambda", lambda, lambda);
    outputconversion("dlambda_dT", lambda_t, lambda_t);
    outputconversion("dlambda_drho", lambda_d, lambda_d);
}

void zflow_vu(double& p, double& t, double v, double& h, double& s, double u, double& alpha,
              double& beta, double& chi, double& fi, double& zeta, double& gamma,
              std::string& errormsg) {
    const auto& cf = zentropia_units::convfact();
    const double v_i = v * factor_of(cf, unit_row::v);
    const double u_i = u * factor_of(cf, unit_row::u);
    // The evaluation writes the state's own v and u back: keep the inputs, which also name the
    // state for the back-end's further questions.
    double v_state = v_i, u_state = u_i;
    state_record r;
    zentropia_base::zflow_tmd_vu(r.p, r.t, v_state, r.h, r.s, u_state, r.cv, r.dpdt, r.dpdv,
                                 r.d2pdt2, r.d2pdv2, r.d2pdtdv, r.dcvdt, errormsg);
    p = r.p, t = r.t, h = r.h, s = r.s;
    alpha = beta = chi = fi = zeta = gamma = not_set;
    if (is_ok(errormsg)) {
        // Back-ends whose state evaluation lacks the pressure derivatives are asked for them; if
        // they cannot answer, the properties built on them stay not computed.
        std::string scratch{zp_common::no_errors};
        zentropia_thermo::complete_derivatives("vu", v_i, u_i, r.dpdt, r.dpdv, r.d2pdt2, r.d2pdv2,
                                               r.d2pdtdv, r.dcvdt, scratch);
        const auto dp = zentropia_derivative::single_phase_derived(
            r.p, r.t, v_i, 1.0 / v_i, r.cv, r.dpdt, r.dpdv, r.d2pdt2, r.d2pdv2, r.d2pdtdv, r.dcvdt);
        chi = dp.chi, fi = dp.fi;
        if (is_ok(scratch)) alpha = dp.alpha, beta = dp.beta, zeta = dp.zeta, gamma = dp.gamma;
    }
    to_caller(cf, {{unit_row::P, p},
                   {unit_row::T, t},
                   {unit_row::h, h},
                   {unit_row::s, s},
                   {unit_row::alpha, alpha},
                   {unit_row::beta, beta},
                   {unit_row::chi, chi},
                   {unit_row::fi, fi},
                   {unit_row::zeta, zeta}});
}

void alloutputconv(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                   double& cv, double& cp, double& c, double& alpha, double& beta, double& chi,
                   double& fi, double& ksi, double& psi, double& zeta, double& theta, double& kappa,
                   double& eta, double& lambda) {
    const auto& cf = zentropia_units::convfact();
    to_caller(cf, unit_row::P, p), to_caller(cf, unit_row::T, t), to_caller(cf, unit_row::v, v);
    to_caller(cf, unit_row::d, d), to_caller(cf, unit_row::h, h), to_caller(cf, unit_row::s, s);
    to_caller(cf, unit_row::u, u), to_caller(cf, unit_row::cp, cp);
    to_caller(cf, unit_row::cv, cv), to_caller(cf, unit_row::c, c);
    to_caller(cf, unit_row::alpha, alpha), to_caller(cf, unit_row::beta, beta);
    to_caller(cf, unit_row::chi, chi), to_caller(cf, unit_row::fi, fi);
    to_caller(cf, unit_row::ksi, ksi), to_caller(cf, unit_row::psi, psi);
    to_caller(cf, unit_row::zeta, zeta), to_caller(cf, unit_row::theta, theta);
    to_caller(cf, unit_row::kappa, kappa), to_caller(cf, unit_row::eta, eta);
    to_caller(cf, unit_row::lambda, lambda);
}

void alloutputconvsu2(double& p, double& t, double& d, double& s, double& u, double& cv, double& c2,
                      double& alpha, double& beta) {
    const auto& cf = zentropia_units::convfact();
    to_caller(cf, {{unit_row::P, p},
                   {unit_row::T, t},
                   {unit_row::d, d},
                   {unit_row::s, s},
                   {unit_row::u, u},
                   {unit_row::cv, cv},
                   {unit_row::alpha, alpha},
                   {unit_row::beta, beta}});
    if (zp_common::isnotinit(c2)) {
        const double f_c = factor_of(cf, unit_row::c);
        c2 = c2 / f_c / f_c;
    }
}

void alloutputconvtarn(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                       double& cv, double& cp, double& c, double& alpha, double& beta, double& zeta,
                       double& eta, double& lambda) {
    // The bundle's outputs are a part of allprops' outputs.
    double chi = not_set, fi = not_set, ksi = not_set, psi = not_set, theta = not_set;
    double kappa = not_set;
    alloutputconv(p, t, v, d, h, s, u, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta,
                  kappa, eta, lambda);
}

void alloutputconvext(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                      const composition& x, const composition& y, double& v_liq, double& d_liq,
                      double& h_liq, double& s_liq, double& u_liq, double& v_vap, double& d_vap,
                      double& h_vap, double& s_vap, double& u_vap, std::string& errormsg) {
    const auto& cf = zentropia_units::convfact();
    if (std::all_of(cf.begin(), cf.end(), [](const auto& row) { return row.factor == 1.0; }))
        return;
    // Per-mole units of each phase are based on that phase's molar mass; these conversions are
    // made whatever the values hold.
    std::string scratch;
    const auto convert_phase = [&](const composition& cnc, double& pv, double& pd, double& ph,
                                   double& ps, double& pu) {
        zentropia_units::setunits_phase(zentropia_base::zp_mmol_cnc(cnc, scratch), scratch);
        if (!is_ok(scratch)) errormsg = scratch;
        pv /= factor_of(cf, unit_row::v);
        pd /= factor_of(cf, unit_row::d);
        ph /= factor_of(cf, unit_row::h);
        ps /= factor_of(cf, unit_row::s);
        pu /= factor_of(cf, unit_row::u);
    };
    convert_phase(x, v_liq, d_liq, h_liq, s_liq, u_liq);
    convert_phase(y, v_vap, d_vap, h_vap, s_vap, u_vap);
    zentropia_units::setunits_phase(zentropia_base::zp_mmol(scratch), scratch);
    if (!is_ok(scratch)) errormsg = scratch;
    p = caller_value(cf, unit_row::P, p);
    v /= factor_of(cf, unit_row::v);
    d /= factor_of(cf, unit_row::d);
    h /= factor_of(cf, unit_row::h);
    s /= factor_of(cf, unit_row::s);
    u /= factor_of(cf, unit_row::u);
    t = caller_value(cf, unit_row::T, t);
}

} // namespace zentropia_main
