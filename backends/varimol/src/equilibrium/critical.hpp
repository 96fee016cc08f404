#pragma once
// The critical point of a mixture from the conditions of Heidemann and Khalil (AIChE J. 26
// (1980) 769) in the formulation of Michelsen (Fluid Phase Equilib. 4 (1980) 1; Michelsen and
// Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 12). With Q_ij = d ln f_i/d n_j at constant
// T and total volume V, and B_ij = sqrt(z_i z_j) Q_ij:
//   1. the smallest eigenvalue of B is zero (limit of stability), u its eigenvector;
//   2. the cubic form c = d/ds [dn^T Q(z + s dn) dn] at s = 0 vanishes, dn_i = sqrt(z_i) u_i.
// For a given V, condition 1 is solved for T; condition 2 is then solved for V. The derivative
// of the cubic form is taken by a fourth-order central difference in s.
#include "model/properties.hpp"

namespace varimol {

struct critical_state {
    double T = 0.0; // K
    double P = 0.0; // Pa
    double v = 0.0; // molar volume, m3/mol
};

// Critical point of the composition z (mole fractions of the active components). With
// T_guess > 0 and v_guess > 0 the search starts there (a point close to the critical one);
// otherwise from 1.5 times the pseudo-critical temperature of Kay's rule and 4 covolumes.
// Codes: 0; 301/302 the temperature of the stability limit not bracketed / not converged;
// 303/304 the volume where the cubic form vanishes not bracketed / not converged;
// 310 the model could not be evaluated at a trial state; 300 no positive critical pressure.
int critical_point(const fluid& f, const double* z, double T_guess, double v_guess,
                   critical_state& out);

} // namespace varimol
