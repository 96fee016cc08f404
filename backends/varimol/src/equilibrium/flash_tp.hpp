#pragma once
// Isothermal flash at (T, P): the stable phase or the two coexisting phases (Michelsen,
// Fluid Phase Equilib. 9 (1982) 21; Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007,
// ch. 10-11).
#include "equilibrium/stability.hpp"

namespace varimol {

struct flash_result {
    int nphase = 1;     // 1: homogeneous, 2: liquid and vapour
    double beta = 0.0;  // molar vapour fraction (two phases)
    vec x{}, y{};       // liquid and vapour compositions (homogeneous: both z)
    phase liq, vap;     // the phases (homogeneous: both the one phase)
    double tpd = 0.0;   // lowest tangent-plane distance found by the stability test, or the
                        // (negative) change of G/RT by which a first split proved the feed
                        // unstable
};

// A split from Wilson's K-values that lowers the Gibbs energy within three substitutions proves
// the feed unstable; otherwise the stability test decides. An unstable feed is split by successive substitution with
// dominant-eigenvalue acceleration, finished by Newton steps on the Gibbs energy in the vapour
// amounts. Returns 0, 441 (no convergence) or 446 (stability test without convergence).
int flash_tp(const fluid& f, double T, double P, const double* z, flash_result& out);

// The two-phase split from given starting K-values (ln K), without a stability test.
int flash_split(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
                vec lnk, flash_result& out);

} // namespace varimol
