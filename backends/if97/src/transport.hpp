#pragma once
// Transport properties of water for industrial use with IF97 densities and derivatives.
// Units: T in K, rho in kg/m³, cp and cv in kJ/(kg K), drho_dp in kg/(m³ MPa).
// The functions assume a valid single-phase state; the caller checks the range.

namespace if97::transport {

// Dynamic viscosity in Pa s, IAPWS R12-08 eqs. 10-12 with the critical enhancement mu2 = 1
// (industrial use).
double viscosity(double T, double rho);

// Thermal conductivity in W/(m K), IAPWS R15-11 with the simplified critical enhancement of its
// industrial form. drho_dp_T is (d rho/d p)_T at (T, rho) from IF97; drho_dp_TR the same
// derivative at the reference temperature T_R = 1.5 Tc and the same density, which the
// industrial form takes from drho_dp_reference(rho).
double conductivity(double T, double rho, double cp, double cv, double drho_dp_T,
                    double drho_dp_TR);

// (d rho/d p)_T in kg/(m³ MPa) at T_R = 1.5 Tc and density rho, IAPWS R15-11 eq. 25 (Table 6):
// the industrial substitute for an equation of state at T_R.
double drho_dp_reference(double rho);

// The terms of R15-11 eq. 10 in units of 1 mW/(m K): lambda = lambda0 * lambda1 + lambda2.
struct conductivity_terms {
    double lambda0; // dilute gas, eq. 16
    double lambda1; // residual, eq. 17
    double lambda2; // simplified critical enhancement, eqs. 18-24
};
// The terms that conductivity() sums, same arguments.
conductivity_terms conductivity_parts(double T, double rho, double cp, double cv, double drho_dp_T,
                                      double drho_dp_TR);

// Surface tension in N/m, IAPWS R1-76(2014) eq. 1; -8888.8 at or above the critical temperature.
double surface_tension(double T);

} // namespace if97::transport
