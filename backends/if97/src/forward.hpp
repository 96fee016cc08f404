#pragma once
// IAPWS-IF97 basic equations (R7-97(2012)): the dimensionless Gibbs energy of regions 1, 2 and 5,
// the dimensionless Helmholtz energy of region 3, the saturation-pressure equation of region 4
// and the B23 boundary. Units of the release: p in MPa, T in K, rho in kg/m³.
#include "power_sum.hpp"

namespace if97::forward {

using power_sum::derivatives;

// Constants of the formulation (R7-97 eqs. 1-4)
inline constexpr double R = 0.461526;  // specific gas constant, kJ/(kg K)
inline constexpr double Tc = 647.096;  // critical temperature, K
inline constexpr double pc = 22.064;   // critical pressure, MPa
inline constexpr double rhoc = 322.0;  // critical density, kg/m³
inline constexpr double T13 = 623.15;  // boundary temperature of regions 1 and 3, K
inline constexpr double T25 = 1073.15; // boundary temperature of regions 2 and 5, K

// Reducing constants (R7-97 eqs. 7, 15, 28, 32)
inline constexpr double p1_star = 16.53, T1_star = 1386.0;
inline constexpr double p2_star = 1.0, T2_star = 540.0;
inline constexpr double p5_star = 1.0, T5_star = 1000.0;

// gamma(pi, tau) of regions 1, 2 (ideal + residual part) and 5 with its derivatives up to
// `order`, x = pi = p/p*, y = tau = T*/T; order 0: gamma_tau alone.
template <int order> derivatives gamma1(double p, double T);
template <int order> derivatives gamma2(double p, double T);
template <int order> derivatives gamma5(double p, double T);
// phi(delta, tau) of region 3 with its derivatives up to `order`, x = delta = rho/rhoc,
// y = tau = Tc/T.
template <int order> derivatives phi3(double rho, double T);

// Region 4: saturation pressure ps(T) in MPa (eq. 30), its derivative dps/dT in MPa/K, and
// saturation temperature Ts(p) in K (eq. 31). Valid from 273.15 K to Tc.
double psat(double T);
double dpsat_dT(double T);
double tsat(double p);

// B23 boundary between regions 2 and 3: p(T) (eq. 5) and T(p) (eq. 6).
double p_b23(double T);
double t_b23(double p);

} // namespace if97::forward
