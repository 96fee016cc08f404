#pragma once
// The generic two-parameter cubic equation of state
//     P = R T / (v - b) - a(T) / ((v + delta1 b)(v + delta2 b)),
// with a_c = Omega_a R^2 Tc^2 / Pc and b = Omega_b R Tc / Pc for a pure fluid (Michelsen and
// Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 3). Each cubic is one row of
// (delta1, delta2, Omega_a, Omega_b, Zc); the omegas are the exact values that the conditions
// dP/dv = d2P/dv2 = 0 at (Tc, Pc) give, not the rounded ones of the original papers.
namespace varimol {

inline constexpr double gas_constant = 8.314462618; // J/(mol K), CODATA 2018 exact

struct cubic_family {
    double delta1, delta2; // -
    double omega_a, omega_b; // -
    double zc;               // critical compressibility factor of the cubic, -
};

inline constexpr double sqrt2 = 1.4142135623730950488;

// Peng and Robinson, Ind. Eng. Chem. Fundam. 15 (1976) 59.
inline constexpr cubic_family peng_robinson{1.0 + sqrt2, 1.0 - sqrt2, 0.4572355289213822,
                                            0.07779607390388846, 0.30740130869870386};
// Soave, Chem. Eng. Sci. 27 (1972) 1197: Omega_a = 1/(9(2^(1/3) - 1)),
// Omega_b = (2^(1/3) - 1)/3, Zc = 1/3.
inline constexpr double cbrt2_minus_1 = 0.25992104989487316476;
inline constexpr cubic_family soave_redlich_kwong{1.0, 0.0, 1.0 / (9.0 * cbrt2_minus_1),
                                                  cbrt2_minus_1 / 3.0, 1.0 / 3.0};

// The real roots of the cubic in Z = P v / (R T) above the covolume, with A = a P / (R T)^2
// and B = b P / (R T). Returns the number of distinct physical roots (0, 1 or 2); zmin and zmax
// are the smallest and largest of them (equal when there is one).
int z_roots(const cubic_family& eos, double A, double B, double& zmin, double& zmax);

} // namespace varimol
