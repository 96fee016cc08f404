#pragma once
// Tangent-plane stability of a homogeneous phase (Michelsen, Fluid Phase Equilib. 9 (1982) 1;
// Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007, ch. 10).
#include "model/properties.hpp"

namespace varimol {

// Wilson's estimate of the K-values, ln K_i = ln(Pc_i/P) + 5.373 (1 + w_i)(1 - Tc_i/T)
// (Wilson, Chem. Eng. Prog. 65 (1969), as given by Michelsen and Mollerup, ch. 10).
void wilson_k(const fluid& f, double T, double P, double* lnk);

struct stability_result {
    bool stable = true;
    double tpd = 0.0;  // lowest tangent-plane distance found, -ln(sum W) at its stationary point
    vec w{};           // normalised composition of that trial phase
    vec lnphi_w{};     // its ln phi
    bool lighter = true; // the trial phase is less dense than the tested one
};

// Tests the phase of composition z at (T, P) whose ln phi are in `zphase` (stable root). Trial
// phases: Wilson vapour-like and liquid-like, and, when the Wilson K-values spread over more
// than two decades, near-pure trials of the lightest and the heaviest component. Each trial is
// iterated by accelerated successive substitution, then by second-order steps in
// alpha_i = 2 sqrt(W_i). Unstable when a trial reaches tpd < -1e-10. Returns 0 or 446.
// `wilson`, when given, holds the ln K of wilson_k at (T, P) already formed by the caller.
int stability(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
              const phase& zphase, stability_result& out, const double* wilson = nullptr);

} // namespace varimol
