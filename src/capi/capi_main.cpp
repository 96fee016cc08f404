// The C API of the property interface (zentropia_main): the caller's units.
#include "base/zentropia_base.hpp"
#include "capi/capi_support.hpp"
#include "main/curves.hpp"
#include "main/zentropia_main.hpp"
#include "zentropia/zentropia.h"

namespace zb = zentropia_base;
namespace zm = zentropia_main;
using namespace zp_capi;

ZP_C void zentropia_inputconversion(const char* inputspec, double input1, double input2,
                                    double* zp_input1, double* zp_input2) {
    quiet([&] {
        zm::inputconversion(text(inputspec), input1, input2, out(zp_input1), out(zp_input2));
    });
}

ZP_C void zentropia_outputconversion(const char* outputspec, double zp_output, double* output) {
    quiet([&] { zm::outputconversion(text(outputspec), zp_output, out(output)); });
}

ZP_C void zentropia_outputconversion_cnc(const char* inputspec, const double* cnc, int cnc_len,
                                         const char* outputspec, double zp_output, double* output) {
    quiet([&] {
        zm::outputconversion_cnc(text(inputspec), composition_in(cnc, cnc_len), text(outputspec),
                                 zp_output, out(output));
    });
}

ZP_C double zentropia_calcprop(const char* propspec, const char* inputspec, double input1,
                               double input2, char* errormsg, int errormsg_len) {
    return guarded(errormsg, errormsg_len, [&](std::string& e) {
        return zm::calcprop(text(propspec), text(inputspec), input1, input2, e);
    });
}

ZP_C void zentropia_allprops(const char* inputspec, double input1, double input2, double* p,
                             double* t, double* v, double* d, double* h, double* s, double* u,
                             double* q, double* x, int x_len, double* y, int y_len, double* cv,
                             double* cp, double* c, double* alpha, double* beta, double* chi,
                             double* fi, double* ksi, double* psi, double* zeta, double* theta,
                             double* kappa, double* gamma, double* eta, double* lambda,
                             char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::allprops(text(inputspec), input1, input2, out(p), out(t), out(v), out(d), out(h),
                     out(s), out(u), out(q), composition_ref(x, x_len), composition_ref(y, y_len),
                     out(cv), out(cp), out(c), out(alpha), out(beta), out(chi), out(fi), out(ksi),
                     out(psi), out(zeta), out(theta), out(kappa), out(gamma), out(eta), out(lambda),
                     e);
    });
}

ZP_C void zentropia_allpropssat(const char* inputspec, double input1, double input2, double* p,
                                double* t, double* v, double* d, double* h, double* s, double* u,
                                double* q, double* x, int x_len, double* y, int y_len, double* cv,
                                double* cp, double* c, double* alpha, double* beta, double* chi,
                                double* fi, double* ksi, double* psi, double* zeta, double* theta,
                                double* kappa, double* gamma, double* eta, double* lambda,
                                double* d_liq, double* d_vap, double* h_liq, double* h_vap,
                                double* t_sat, double* dd_liq_dp, double* dd_vap_dp,
                                double* dh_liq_dp, double* dh_vap_dp, double* dt_sat_dp,
                                char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::allpropssat(text(inputspec), input1, input2, out(p), out(t), out(v), out(d), out(h),
                        out(s), out(u), out(q), composition_ref(x, x_len),
                        composition_ref(y, y_len), out(cv), out(cp), out(c), out(alpha), out(beta),
                        out(chi), out(fi), out(ksi), out(psi), out(zeta), out(theta), out(kappa),
                        out(gamma), out(eta), out(lambda), out(d_liq), out(d_vap), out(h_liq),
                        out(h_vap), out(t_sat), out(dd_liq_dp), out(dd_vap_dp), out(dh_liq_dp),
                        out(dh_vap_dp), out(dt_sat_dp), e);
    });
}

ZP_C void zentropia_allpropssatext(const char* inputspec, double input1, double input2, double* p,
                                   double* t, double* v, double* d, double* h, double* s, double* u,
                                   double* q, double* x, int x_len, double* y, int y_len,
                                   double* v_liq, double* d_liq, double* h_liq, double* s_liq,
                                   double* u_liq, double* v_vap, double* d_vap, double* h_vap,
                                   double* s_vap, double* u_vap, char* errormsg, int errormsg_len) {
    guarded_inout(errormsg, errormsg_len, [&](std::string& e) {
        zm::allpropssatext(text(inputspec), input1, input2, out(p), out(t), out(v), out(d), out(h),
                           out(s), out(u), out(q), composition_ref(x, x_len),
                           composition_ref(y, y_len), out(v_liq), out(d_liq), out(h_liq),
                           out(s_liq), out(u_liq), out(v_vap), out(d_vap), out(h_vap), out(s_vap),
                           out(u_vap), e);
    });
}

ZP_C void zentropia_allpropssu2(const char* inputspec, double input1, double input2, double* p,
                                double* t, double* d, double* s, double* u, double* cv, double* c2,
                                double* alpha, double* beta, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::allpropssu2(text(inputspec), input1, input2, out(p), out(t), out(d), out(s), out(u),
                        out(cv), out(c2), out(alpha), out(beta), e);
    });
}

ZP_C void zentropia_allpropstarn(const char* inputspec, double input1, double input2, double* p,
                                 double* t, double* v, double* d, double* h, double* s, double* u,
                                 double* cv, double* cp, double* c, double* alpha, double* beta,
                                 double* zeta, double* eta, double* lambda, double* dlam_dt,
                                 double* dlam_drho, double* deta_dt, double* deta_drho,
                                 char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::allpropstarn(text(inputspec), input1, input2, out(p), out(t), out(v), out(d), out(h),
                         out(s), out(u), out(cv), out(cp), out(c), out(alpha), out(beta), out(zeta),
                         out(eta), out(lambda), out(dlam_dt), out(dlam_drho), out(deta_dt),
                         out(deta_drho), e);
    });
}

ZP_C void zentropia_alltransprops(const char* inputspec, double input1, double input2, double* eta,
                                  double* eta_t, double* eta_rho, double* lambda, double* lambda_t,
                                  double* lambda_rho, double* sigma, char* errormsg,
                                  int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::alltransprops(text(inputspec), input1, input2, out(eta), out(eta_t), out(eta_rho),
                          out(lambda), out(lambda_t), out(lambda_rho), out(sigma), e);
    });
}

ZP_C void zentropia_alltransprops_old(double t, double d, double* eta, double* eta_t, double* eta_d,
                                      double* lambda, double* lambda_t, double* lambda_d,
                                      char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::alltransprops_old(t, d, out(eta), out(eta_t), out(eta_d), out(lambda), out(lambda_t),
                              out(lambda_d), e);
    });
}

ZP_C void zentropia_zflow_vu(double* p, double* t, double v, double* h, double* s, double u,
                             double* alpha, double* beta, double* chi, double* fi, double* zeta,
                             double* gamma, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::zflow_vu(out(p), out(t), v, out(h), out(s), u, out(alpha), out(beta), out(chi), out(fi),
                     out(zeta), out(gamma), e);
    });
}

ZP_C void zentropia_alloutputconv(double* p, double* t, double* v, double* d, double* h, double* s,
                                  double* u, double* cv, double* cp, double* c, double* alpha,
                                  double* beta, double* chi, double* fi, double* ksi, double* psi,
                                  double* zeta, double* theta, double* kappa, double* eta,
                                  double* lambda) {
    quiet([&] {
        zm::alloutputconv(out(p), out(t), out(v), out(d), out(h), out(s), out(u), out(cv), out(cp),
                          out(c), out(alpha), out(beta), out(chi), out(fi), out(ksi), out(psi),
                          out(zeta), out(theta), out(kappa), out(eta), out(lambda));
    });
}

ZP_C void zentropia_alloutputconvsu2(double* p, double* t, double* d, double* s, double* u,
                                     double* cv, double* c2, double* alpha, double* beta) {
    quiet([&] {
        zm::alloutputconvsu2(out(p), out(t), out(d), out(s), out(u), out(cv), out(c2), out(alpha),
                             out(beta));
    });
}

ZP_C void zentropia_alloutputconvtarn(double* p, double* t, double* v, double* d, double* h,
                                      double* s, double* u, double* cv, double* cp, double* c,
                                      double* alpha, double* beta, double* zeta, double* eta,
                                      double* lambda) {
    quiet([&] {
        zm::alloutputconvtarn(out(p), out(t), out(v), out(d), out(h), out(s), out(u), out(cv),
                              out(cp), out(c), out(alpha), out(beta), out(zeta), out(eta),
                              out(lambda));
    });
}

ZP_C void zentropia_alloutputconvext(double* p, double* t, double* v, double* d, double* h,
                                     double* s, double* u, const double* x, int x_len,
                                     const double* y, int y_len, double* v_liq, double* d_liq,
                                     double* h_liq, double* s_liq, double* u_liq, double* v_vap,
                                     double* d_vap, double* h_vap, double* s_vap, double* u_vap,
                                     char* errormsg, int errormsg_len) {
    guarded_success(errormsg, errormsg_len, [&](std::string& e) {
        zm::alloutputconvext(out(p), out(t), out(v), out(d), out(h), out(s), out(u),
                             composition_in(x, x_len), composition_in(y, y_len), out(v_liq),
                             out(d_liq), out(h_liq), out(s_liq), out(u_liq), out(v_vap), out(d_vap),
                             out(h_vap), out(s_vap), out(u_vap), e);
    });
}

#define ZP_UNPAREN(...) __VA_ARGS__
#define ZP_DEFINE_SATURATION_BUNDLE(name, params, ...)                                             \
    ZP_C void zentropia_##name(ZP_UNPAREN params, double* d_liq, double* d_vap, double* h_liq,     \
                               double* h_vap, double* t_sat, double* dd_liq_dp, double* dd_vap_dp, \
                               double* dh_liq_dp, double* dh_vap_dp, double* dt_sat_dp,            \
                               char* errormsg, int errormsg_len) {                                 \
        guarded(errormsg, errormsg_len, [&](std::string& e) {                                      \
            zm::name(__VA_ARGS__, out(d_liq), out(d_vap), out(h_liq), out(h_vap), out(t_sat),      \
                     out(dd_liq_dp), out(dd_vap_dp), out(dh_liq_dp), out(dh_vap_dp),               \
                     out(dt_sat_dp), e);                                                           \
        });                                                                                        \
    }
ZP_DEFINE_SATURATION_BUNDLE(modelica_p, (double p), p)
ZP_DEFINE_SATURATION_BUNDLE(modelica_p_mix, (double p, double t), p, t)

#define ZP_DEFINE_SINGLE_PROPERTY(name)                                                            \
    ZP_C double zentropia_##name(const char* inputspec, double input1, double input2,              \
                                 char* errormsg, int errormsg_len) {                               \
        return guarded(errormsg, errormsg_len, [&](std::string& e) {                               \
            return zm::name(text(inputspec), input1, input2, e);                                   \
        });                                                                                        \
    }
ZENTROPIA_SINGLE_PROPERTIES(ZP_DEFINE_SINGLE_PROPERTY)

#define ZP_DEFINE_COMPOSITION(name)                                                                \
    ZP_C void zentropia_##name(const char* inputspec, double input1, double input2,                \
                               double* output, int output_len, char* errormsg, int errormsg_len) { \
        guarded_inout(errormsg, errormsg_len, [&](std::string& e) {                                \
            zm::name(text(inputspec), input1, input2, composition_ref(output, output_len), e);     \
        });                                                                                        \
    }
ZENTROPIA_COMPOSITIONS(ZP_DEFINE_COMPOSITION)

#define ZP_DEFINE_FLUID_CONSTANT(name)                                                             \
    ZP_C double zentropia_##name(char* errormsg, int errormsg_len) {                               \
        return guarded(errormsg, errormsg_len, [](std::string& e) { return zm::name(e); });        \
    }
ZENTROPIA_FLUID_CONSTANTS(ZP_DEFINE_FLUID_CONSTANT)

ZP_C void zentropia_allinfo(double* m_mol, double* t_crit, double* p_crit, double* t_min,
                            double* t_max, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::allinfo(out(m_mol), out(t_crit), out(p_crit), out(t_min), out(t_max), e);
    });
}

ZP_C double zentropia_solve(const char* funcspec, double funcval, const char* inputspec, int targt,
                            double fixedval, double minval, double maxval, char* errormsg,
                            int errormsg_len) {
    return guarded(errormsg, errormsg_len, [&](std::string& e) {
        return zm::solve(text(funcspec), funcval, text(inputspec), targt, fixedval, minval, maxval,
                         e);
    });
}

ZP_C void zentropia_isoline(const char* propspec, double propval, const char* runspec,
                            const char* calcspec, double minval, double maxval, int npnts,
                            double* runval, int runval_len, double* calcval, int calcval_len,
                            char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zm::isoline(text(propspec), propval, text(runspec), text(calcspec), minval, maxval, npnts,
                    buffer(runval, runval_len), buffer(calcval, calcval_len), e);
    });
}

// zp_saturationline belongs to the selection (zentropia_base), saturation_line to the property
// interface
namespace {
using zb::zp_saturationline;
using zm::saturation_line;
} // namespace
#define ZP_DEFINE_PHASE_ENVELOPE(name)                                                             \
    ZP_C void zentropia_##name(int* npnts, double* t, int t_len, double* p, int p_len, double* x,  \
                               int x_len, double* y, int y_len, char* errormsg,                    \
                               int errormsg_len) {                                                 \
        guarded_inout(errormsg, errormsg_len, [&](std::string& e) {                                \
            name(out(npnts), buffer(t, t_len), buffer(p, p_len), points_ref(x, x_len),             \
                 points_ref(y, y_len), e);                                                         \
        });                                                                                        \
    }
ZENTROPIA_PHASE_ENVELOPES(ZP_DEFINE_PHASE_ENVELOPE)
