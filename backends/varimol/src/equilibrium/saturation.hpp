#pragma once
// Saturation of pure fluids and points of given vapour fraction of mixtures: bubble (q = 0),
// dew (q = 1) and any q between, at given temperature (pressure unknown) or given pressure
// (temperature unknown).
#include "equilibrium/flash_tp.hpp"

namespace varimol {

// Pure fluid (f.n == 1): the saturation pressure at T (K) by equal fugacity of the two roots of
// the cubic, Newton steps in ln P (d(ln phi_L - ln phi_V)/d ln P = Z_L - Z_V) inside a bracket
// narrowed by every evaluation; close to Tc the start comes from the slope of the critical
// isochore, so that the iteration is exact up to the critical point. Returns 0, 102 (T >= Tc),
// 103 (T <= 0), 106 (no convergence).
int pure_saturation_pressure(const fluid& f, double T, double& P, phase& liq, phase& vap);
// Pure fluid: the saturation temperature at P (Pa), Newton steps in T with
// d(ln phi_L - ln phi_V)/dT in the same way. Returns 0, 143 (P >= Pc), 144 (P <= 0), 106.
int pure_saturation_temperature(const fluid& f, double P, double& T, phase& liq, phase& vap);

// Mixture point of vapour fraction q in [0, 1] with the overall composition z on the tie line:
// x_i = z_i/(1 + q (K_i - 1)), y_i = K_i x_i. Newton on (ln K, ln P) at given T
// (given_t = true) or on (ln K, T) at given P, from Wilson's K-values and a few successive
// substitutions (Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 12).
// T (K) and P (Pa) carry the given value in and the solved one out. Codes: 0; at given T
// 400/401/402 (q < 1/2, bubble side) or 410/411/412; at given P 420/421/422 or 430/431/432.
int saturation_q(const fluid& f, bool given_t, double& T, double& P, double q, const double* z,
                 flash_result& out);

// The same point by Newton on (ln K, ln P or T) straight from the given K-values (lnk, n values)
// and the T and P passed in, as when they come from a traced curve close to the point. Returns 0
// or the codes of saturation_q; the start is left unchanged on failure.
int saturation_q_from(const fluid& f, bool given_t, double& T, double& P, double q,
                      const double* z, const double* lnk, flash_result& out);

// The point of vapour fraction q from a converged point of vapour fraction qf at the same T (or
// P), its ln K given: continuation in the vapour fraction along the tie lines of that T or P,
// each point by Newton from the previous ones. Returns 0 or the codes of saturation_q.
int saturation_q_follow(const fluid& f, bool given_t, double& T, double& P, double qf, double q,
                        const double* z, const double* lnk, flash_result& out);

} // namespace varimol
