#pragma once
// IAPWS-IF97 backward and boundary equations: fast approximations used as starting points, which
// the forward equations then polish. Units of the releases: p in MPa, T in K, h in kJ/kg,
// s in kJ/(kg K), v in m³/kg.

namespace if97::backward {

// Boundaries (R7-97(2012), SR2-01(2014), SR3-03(2014), SR4-04(2014))
double h_2bc(double p);             // 2b/2c boundary enthalpy, R7-97 eq. 21
double p_2bc(double h);             // 2b/2c boundary pressure, R7-97 eq. 20
double h_2ab_s(double s);           // 2a/2b boundary for p(h,s), SR2-01 eq. 2
double h_3ab(double p);             // 3a/3b boundary, SR3-03 eq. 1
double h1_s(double s);              // saturated-liquid enthalpy h'1(s), SR4-04 eq. 3
double h3a_s(double s);             // saturated-liquid enthalpy h'3a(s), SR4-04 eq. 4
double h2ab_s(double s);            // saturated-vapour enthalpy h''2ab(s), SR4-04 eq. 5
double h2c3b_s(double s);           // saturated-vapour enthalpy h''2c3b(s), SR4-04 eq. 6
double hb13_s(double s);            // region 1/3 boundary h_B13(s), SR4-04 eq. 7
double tb23_hs(double h, double s); // region 2/3 boundary T_B23(h,s), SR4-04 eq. 8
double psat3_h(double h);           // region 3 saturation pressure psat,3(h), SR3-03 eq. 10
double psat3_s(double s);           // region 3 saturation pressure psat,3(s), SR3-03 eq. 11

// Region 1 (R7-97 eqs. 11, 13) and region 2 (R7-97 eqs. 22-25, subregion chosen inside)
double t_ph_1(double p, double h);
double t_ps_1(double p, double s);
double t_ph_2(double p, double h);
double t_ps_2(double p, double s);
double p_hs_1(double h, double s); // SR2-01 eq. 1
double p_hs_2(double h, double s); // SR2-01 eqs. 3-5, subregion chosen inside

// Region 3 (SR3-03: subregion 3a/3b chosen inside; SR4-04 eqs. 1-2 for p(h,s))
double t_ph_3(double p, double h);
double v_ph_3(double p, double h);
double t_ps_3(double p, double s);
double v_ps_3(double p, double s);
double p_hs_3(double h, double s);

// Region 4: saturation temperature from (h, s) for s >= s''(623.15 K) = 5.210887825 kJ/(kg K),
// SR4-04 eq. 9
double tsat_hs(double h, double s);

// Region 3: v(p, T) with the subregion 3a..3z chosen inside (SR5-05, including the
// near-critical subregions 3u..3z)
double v_pt_3(double p, double T);

// Region 3 subregion boundaries T_3xy(p) of SR5-05 eqs. 1-3 (uv and wx: near-critical ones)
enum class boundary3 { ab, cd, ef, gh, ij, jk, mn, op, qu, rx, uv, wx };
double t_3(boundary3 which, double p);

// Region 3 subregion 'a'..'z' of (p, T) as SR5-05 Tables 2 and 10 assign it
char subregion_3(double p, double T);

} // namespace if97::backward
