#pragma once
// Transport properties of water for industrial use with IF97 densities and derivatives.
// Units: T in K, rho in kg/m³, cp and cv in kJ/(kg K), drho_dp in kg/(m³ MPa).

namespace if97::transport {

// Dynamic viscosity in Pa s, IAPWS R12-08 eqs. 10-12 with the critical enhancement mu2 = 1
// (industrial use).
double viscosity(double T, double rho);

// Thermal conductivity in W/(m K), IAPWS R15-11 with the simplified critical enhancement of its
// industrial form. drho_dp_T is (d rho/d p)_T at (T, rho); drho_dp_TR the same derivative at the
// reference temperature T_R = 1.5 Tc and the same density; both from IF97.
double conductivity(double T, double rho, double cp, double cv, double drho_dp_T,
                    double drho_dp_TR);

// Surface tension in N/m, IAPWS R1-76(2014) eq. 1; -8888.8 at or above the critical temperature.
double surface_tension(double T);

} // namespace if97::transport
