#pragma once
// The residual Helmholtz energy F = A_r/(RT) of the cubic (Michelsen and Mollerup,
// Thermodynamic Models, 2nd ed. 2007, ch. 3, eq. 3.33 and the derivatives of ch. 2-3), the
// logarithms of the fugacity coefficients with their derivatives, and every property of a
// homogeneous phase. The equilibrium algorithms reach the model only through this header.
//   F(T, V, n) = -n ln(1 - B/V) - D(T)/T f(V, B),
//   f = ln((V + delta1 B)/(V + delta2 B)) / (R B (delta1 - delta2)).
#include "model/components.hpp"
#include "model/mixing.hpp"

namespace varimol {

enum class root_choice { stable, liquid, vapour };

// A homogeneous phase at (T, P) and composition x: one root of the cubic.
struct phase {
    double Z = 0.0;   // compressibility factor, -
    double v = 0.0;   // molar volume, m3/mol
    double lng = 0.0; // G_r/(RT) = sum_i x_i ln phi_i, -
    vec lnphi{};      // ln phi_i
    int nroots = 0;   // physical roots of the cubic at (T, P, x): 1 or 2
    bool smaller = true; // the chosen root is the smaller one (or the only one)
};

// ln phi of the phase of composition x (normalised) at the temperature of `t` and P (Pa), on the
// chosen root (stable: the one of lower Gibbs energy). Optional derivatives: dn(i, j) =
// d ln phi_i / d n_j at constant T, P for one mole in total (1/mol), dp(i) = d ln phi_i/dP (1/Pa).
// Returns 0, or 109 when the cubic has no root above the covolume.
int eval_phase(const fluid& f, const temperature_terms<double>& t, double P, const double* x,
               root_choice r, phase& out, mat* dn = nullptr, vec* dp = nullptr);
// The same with dt(i) = d ln phi_i/dT at constant P and composition (1/K).
int eval_phase_t(const fluid& f, const temperature_terms<taylor<1>>& t, double P,
                 const double* x, root_choice r, phase& out, mat* dn, vec* dp, vec* dt);

// Every property of a homogeneous phase at T (K), v (m3/mol) and composition x.
struct state_props {
    double T, P, v;           // K, Pa, m3/mol
    double u, h, s;           // J/mol, J/mol, J/(mol K)
    double cv;                // J/(mol K)
    double dpdt, dpdv;        // Pa/K, Pa mol/m3
    double d2pdt2, d2pdv2, d2pdtdv; // Pa/K2, Pa mol2/m6, Pa mol/(m3 K)
    double dcvdt;             // J/(mol K2)
};
void homogeneous(const fluid& f, double T, double v, const double* x, state_props& out);
// Only P, u, h and s of the phase (the other members of `out` are left as they are).
void caloric(const fluid& f, double T, double v, const double* x, state_props& out);

// F = A_r/(RT) per mole and its first derivatives (for the tests of the derivatives):
// F, dF/dT (1/K), dF/dV (mol/m3), dF/dn_i at T, V for one mole in volume v.
void residual_helmholtz(const fluid& f, double T, double v, const double* x, double& F,
                        double& FT, double& FV, vec& Fn);

} // namespace varimol
