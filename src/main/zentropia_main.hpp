#pragma once
// The property interface: every property of the selected fluid in the caller's units.
//
// A state is given by an input specification (two property symbols such as "PT", "Ph", "Td",
// "vu"; characters 4 to 6 may carry the phase marker "liq" or "vap", behind a separator:
// "PT liq") and two values in the units
// of the current unit set. Results come back in the same unit set; the not-computed value -8888.8
// passes every conversion unchanged. Pressure derivatives (dpdt ...) and the dimensionless q,
// gamma and phase compositions are returned unconverted. errormsg is "No errors" on success.
#include "base/common.hpp"

#include <string>
#include <string_view>

namespace zentropia_main {

using zp_common::composition;

// ---- Conversions between the caller's units and the internal ones ----------------------------

// The two inputs of an input specification in internal units.
void inputconversion(std::string_view inputspec, double input1, double input2, double& zp_input1,
                     double& zp_input2);
// One internal value in the caller's unit of the property symbol outputspec.
void outputconversion(std::string_view outputspec, double zp_output, double& output);
// As outputconversion, for a value of the phase marked in inputspec, whose composition is cnc.
void outputconversion_cnc(std::string_view inputspec, const composition& cnc,
                          std::string_view outputspec, double zp_output, double& output);

// ---- By keyword ---------------------------------------------------------------------------------

// One property by keyword ("Pressure" or "P", "enthalpy" or "h", "alpha", "dpdt" ...).
double calcprop(std::string_view propspec, std::string_view inputspec, double input1, double input2,
                std::string& errormsg);

// ---- Bundles
// --------------------------------------------------------------------------------------

void allprops(std::string_view inputspec, double input1, double input2, double& p, double& t,
              double& v, double& d, double& h, double& s, double& u, double& q, composition& x,
              composition& y, double& cv, double& cp, double& c, double& alpha, double& beta,
              double& chi, double& fi, double& ksi, double& psi, double& zeta, double& theta,
              double& kappa, double& gamma, double& eta, double& lambda, std::string& errormsg);
// allprops and the saturation properties of modelica_p at the state's pressure.
void allpropssat(std::string_view inputspec, double input1, double input2, double& p, double& t,
                 double& v, double& d, double& h, double& s, double& u, double& q, composition& x,
                 composition& y, double& cv, double& cp, double& c, double& alpha, double& beta,
                 double& chi, double& fi, double& ksi, double& psi, double& zeta, double& theta,
                 double& kappa, double& gamma, double& eta, double& lambda, double& d_liq,
                 double& d_vap, double& h_liq, double& h_vap, double& t_sat, double& dd_liq_dp,
                 double& dd_vap_dp, double& dh_liq_dp, double& dh_vap_dp, double& dt_sat_dp,
                 std::string& errormsg);
// The state and its two coexisting phases.
void allpropssatext(std::string_view inputspec, double input1, double input2, double& p, double& t,
                    double& v, double& d, double& h, double& s, double& u, double& q,
                    composition& x, composition& y, double& v_liq, double& d_liq, double& h_liq,
                    double& s_liq, double& u_liq, double& v_vap, double& d_vap, double& h_vap,
                    double& s_vap, double& u_vap, std::string& errormsg);
// The flow-solver bundle; c2 is the squared speed of sound.
void allpropssu2(std::string_view inputspec, double input1, double input2, double& p, double& t,
                 double& d, double& s, double& u, double& cv, double& c2, double& alpha,
                 double& beta, std::string& errormsg);
// The Tarn bundle; the four transport derivatives are always 0.
void allpropstarn(std::string_view inputspec, double input1, double input2, double& p, double& t,
                  double& v, double& d, double& h, double& s, double& u, double& cv, double& cp,
                  double& c, double& alpha, double& beta, double& zeta, double& eta, double& lambda,
                  double& dlam_dt, double& dlam_drho, double& deta_dt, double& deta_drho,
                  std::string& errormsg);
// Transport properties; the transport interface receives input1 and input2 as given.
void alltransprops(std::string_view inputspec, double input1, double input2, double& eta,
                   double& eta_t, double& eta_rho, double& lambda, double& lambda_t,
                   double& lambda_rho, double& sigma, std::string& errormsg);
// Transport properties from temperature and density.
void alltransprops_old(double t, double d, double& eta, double& eta_t, double& eta_d,
                       double& lambda, double& lambda_t, double& lambda_d, std::string& errormsg);
// The flow-solver bundle from specific volume v and internal energy u (inputs).
void zflow_vu(double& p, double& t, double v, double& h, double& s, double u, double& alpha,
              double& beta, double& chi, double& fi, double& zeta, double& gamma,
              std::string& errormsg);

// The converters of the bundles: internal to caller's units, in place.
void alloutputconv(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                   double& cv, double& cp, double& c, double& alpha, double& beta, double& chi,
                   double& fi, double& ksi, double& psi, double& zeta, double& theta, double& kappa,
                   double& eta, double& lambda);
void alloutputconvsu2(double& p, double& t, double& d, double& s, double& u, double& cv, double& c2,
                      double& alpha, double& beta);
void alloutputconvtarn(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                       double& cv, double& cp, double& c, double& alpha, double& beta, double& zeta,
                       double& eta, double& lambda);
// Per phase: the liquid values with the molar mass of x, the vapour values with that of y.
void alloutputconvext(double& p, double& t, double& v, double& d, double& h, double& s, double& u,
                      const composition& x, const composition& y, double& v_liq, double& d_liq,
                      double& h_liq, double& s_liq, double& u_liq, double& v_vap, double& d_vap,
                      double& h_vap, double& s_vap, double& u_vap, std::string& errormsg);

// ---- Saturation line of a pure fluid at pressure p ------------------------------------------

// Saturated densities and enthalpies, saturation temperature and their derivatives along the
// saturation line by pressure (per caller's pressure unit); -8888.8 at and above the critical
// pressure.
void modelica_p(double p, double& d_liq, double& d_vap, double& h_liq, double& h_vap, double& t_sat,
                double& dd_liq_dp, double& dd_vap_dp, double& dh_liq_dp, double& dh_vap_dp,
                double& dt_sat_dp, std::string& errormsg);
// The same for a mixture at pressure p and temperature t: not available yet.
void modelica_p_mix(double p, double t, double& d_liq, double& d_vap, double& h_liq, double& h_vap,
                    double& t_sat, double& dd_liq_dp, double& dd_vap_dp, double& dh_liq_dp,
                    double& dh_vap_dp, double& dt_sat_dp, std::string& errormsg);

// ---- One entry point per property --------------------------------------------------------------

double pressure(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double temperature(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double specvolume(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double density(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double enthalpy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double entropy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double intenergy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// g = h - T s
double gibbsenergy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// f = u - T s
double helmholtzenergy(std::string_view inputspec, double input1, double input2,
                       std::string& errormsg);
double heatcapv(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double heatcapp(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double soundspeed(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double alpha(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double beta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double chi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double fi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double ksi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double psi(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zeta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double theta(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double kappa(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// the fundamental derivative (dimensionless)
double gamma(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// vapour quality (dimensionless)
double vaporqual(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double viscosity(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double thermcond(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double surftens(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// Phase compositions and fugacity coefficients at the caller's component positions.
void liquidcmp(std::string_view inputspec, double input1, double input2, composition& output,
               std::string& errormsg);
void vaporcmp(std::string_view inputspec, double input1, double input2, composition& output,
              std::string& errormsg);
void fugacoef(std::string_view inputspec, double input1, double input2, composition& output,
              std::string& errormsg);
// Fluid constants: molar mass, critical temperature and pressure, temperature range.
double mmol(std::string& errormsg);
double tcrit(std::string& errormsg);
double pcrit(std::string& errormsg);
double tmin(std::string& errormsg);
double tmax(std::string& errormsg);
void allinfo(double& m_mol, double& t_crit, double& p_crit, double& t_min, double& t_max,
             std::string& errormsg);

} // namespace zentropia_main
