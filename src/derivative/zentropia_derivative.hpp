#pragma once
// Caloric and derivative properties built from the pressure derivatives a back-end returns, in the
// single-phase region and, for pure fluids, in the two-phase region from the saturated states
// along the saturation line (Clapeyron).
//
// Internal units: p bar, t °C, v m³/kg, d kg/m³, cv and cp kJ/(kg K); the pressure derivatives on
// a pascal basis (dpdt Pa/K, dpdv Pa kg/m³, d2pdt2 Pa/K², d2pdv2 Pa (kg/m³)², d2pdtdv
// Pa kg/(m³ K)), dcvdt J/(kg K²). Results: c m/s, alpha = (∂P/∂ρ)_u m²/s², beta = (∂P/∂u)_ρ kg/m³,
// chi = -P v²/T N m⁴/(kg² K), fi = 1/T 1/K, ksi = (∂ρ/∂h)_P kg² /(N m⁴), psi = (∂ρ/∂P)_h s²/m²,
// zeta = (∂T/∂v)_u K kg/m³, theta = (∂v/∂T)_P / v 1/K, kappa = -(∂v/∂P)_T / v 1/bar and the
// fundamental derivative gamma = v³/(2c²) (∂²P/∂v²)_s (dimensionless).
// The saturation-line functions work in SI: T K, P Pa, s and cp J/(kg K).
#include "base/zp_models.hpp"

#include <string>
#include <string_view>

namespace zentropia_derivative {

// true when the state counts as one phase: q outside (1e-8, 0.99999999), or a phase-qualified
// input specification (characters 4 to 6 "liq" or "vap", or characters 5 and 6 "ph")
bool is_single_phase(std::string_view inputspec, double q);

// The derivative properties of one state.
struct derived_properties {
    double cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa, gamma;
};
// Derivative properties of a single-phase state from its pressure derivatives.
derived_properties single_phase_derived(double p, double t, double v, double d, double cv,
                                        double dpdt, double dpdv, double d2pdt2, double d2pdv2,
                                        double d2pdtdv, double dcvdt);

// How allderivative completes a state of the selected model: by the formulas over the pressure
// derivatives, with the back-end's own cp and c (and -8888.8 for the other ten), or asking the
// back-end for all twelve (table models); the model's row says which.
using completion = zp_models::derivatives;
completion completion_of_selection();
// true when allderivative leaves the state's values (cv) and the error text as they are: for
// back-ends whose own cp and c belong to the evaluated state, and in the single-phase region
// where only formulas are evaluated
bool completion_keeps_state(std::string_view inputspec, double q);

// The back-end's own cp and c, when the state's evaluation delivered them.
struct backend_sound {
    double cp, c;
};

// The twelve derivative properties of a state evaluated by the dispatcher; cv is replaced by the
// two-phase value in the two-phase region. Does nothing unless errormsg is "No errors". A model
// that takes cp and c from its back-end takes those of `delivered` instead of asking again.
void allderivative(std::string_view inputspec, double input1, double input2, double p, double t,
                   double v, double d, double q, double& cv, double dpdt, double dpdv,
                   double d2pdt2, double d2pdv2, double d2pdtdv, double dcvdt, double& cp,
                   double& c, double& alpha, double& beta, double& chi, double& fi, double& ksi,
                   double& psi, double& zeta, double& theta, double& kappa, double& gamma,
                   std::string& errormsg, const backend_sound* delivered = nullptr);
// c, alpha and beta for the SU2 bundle.
void allderivativesu2(std::string_view inputspec, double input1, double input2, double p, double t,
                      double v, double q, double& cv, double dpdt, double dpdv, double& c,
                      double& alpha, double& beta, std::string& errormsg,
                      const backend_sound* delivered = nullptr);
// cp, c, alpha, beta and zeta for the Tarn bundle (two-phase for mixtures too).
void allderivativetarn(std::string_view inputspec, double input1, double input2, double p, double t,
                       double v, double q, double& cv, double dpdt, double dpdv, double& cp,
                       double& c, double& alpha, double& beta, double& zeta, std::string& errormsg,
                       const backend_sound* delivered = nullptr);

// One property of a state given in internal units, evaluated anew.
double zp_heatcapp(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_heatcapv(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_soundspeed(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg);
double zp_alpha(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_beta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_chi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_fi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_ksi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_psi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_zeta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_theta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_kappa(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_gamma(std::string_view inputspec, double input1, double input2, std::string& errormsg);

// Saturation line. Suffix _v: saturated vapour, _l: saturated liquid, _s / dpdt_s: along the line.
// Clapeyron slope dP/dT of the saturation line
double dpdt_sat(double v_v, double v_l, double s_v, double s_l);
// dv/dP of one saturated phase along the line
double dvdp(double dpdt, double dpdv, double dpdt_s);
// ds/dP of one saturated phase along the line
double dsdp(double t, double cp, double dpdt, double dpdv, double dpdt_s);
// du/dP of one saturated phase along the line
double dudp(double t, double p, double cp, double dpdt, double dpdv, double dpdt_s);
// dv/dT of one saturated phase along the line
double dvdt(double dpdt, double dpdv, double dpdt_s);
// du/dT of one saturated phase along the line
double dudt(double t, double p, double cp, double dpdt, double dpdv, double dpdt_s);
// (∂x/∂P)_s in the two-phase region
double dxdp_s(double x, double s_v, double s_l, double ds_vdp, double ds_ldp);
// (∂x/∂P)_v in the two-phase region
double dxdp_v(double x, double v_v, double v_l, double dv_vdp, double dv_ldp);
// d²P/dT² of the saturation line
double d2pdt2_sat(double v_v, double v_l, double dpdt_s, double ds_vdp, double ds_ldp,
                  double dv_vdp, double dv_ldp);
// speed of sound of the homogeneous two-phase mixture
double calc_c_2f(double x, double v, double v_v, double v_l, double dxdp, double dv_vdp,
                 double dv_ldp);
// (∂P/∂u)_v in the two-phase region; asks the back-end for the saturated internal energies at
// the temperature t (K)
double calc_beta_2f(double x, double t, double p, double v_v, double v_l, double cp_v, double cp_l,
                    double dpdt_v, double dpdt_l, double dpdv_v, double dpdv_l, double dpdt_s,
                    double dv_vdp, double dv_ldp, std::string& errormsg);
// d²v/dP² of one saturated phase along the line
double d2vdp2(double dpdt, double dpdv, double dpdt_s, double dvdp, double d2pdt2, double d2pdv2,
              double d2pdtdv, double d2pdt2_s);
// d²s/dP² of one saturated phase along the line
double d2sdp2(double t, double cp, double dpdt, double dpdv, double dpdt_s, double dvdp,
              double d2pdt2, double d2pdv2, double d2pdtdv, double d2pdt2_s, double dcvdt);
// (∂²x/∂P²)_s in the two-phase region
double d2xdp2_s(double x, double t, double s_v, double s_l, double cp_v, double cp_l, double dpdt_v,
                double dpdt_l, double dpdv_v, double dpdv_l, double dpdt_s, double dv_vdp,
                double dv_ldp, double ds_vdp, double ds_ldp, double dxdp, double d2pdt2_s,
                double d2pdt2_v, double d2pdt2_l, double d2pdv2_v, double d2pdv2_l,
                double d2pdtdv_v, double d2pdtdv_l, double dcvdt_v, double dcvdt_l);

} // namespace zentropia_derivative
