#pragma once
// Two-phase states from state functions by a simultaneous Newton iteration (Michelsen, Fluid
// Phase Equilib. 158-160 (1999) 617; Michelsen and Mollerup, Thermodynamic Models, 2nd ed. 2007,
// ch. 11). The unknowns are the vapour amounts n^V (per mole of feed) and ln T and/or ln P; the
// equations are equal fugacities, ln f_i^V - ln f_i^L = 0, and one given state function for each
// free variable among T and P. The derivatives of the given totals by n^V_j are the differences
// of the partial molar properties of the two phases (Gibbs-Duhem at constant T and P), which the
// model's ln phi derivatives in T, P and n supply.
#include "equilibrium/flash_ph_ps.hpp"

namespace varimol {

// The target of a state-function flash in two phases: which of T and P are unknown, and
// the given properties (the first for the unknown T, or for P when T is fixed; the second for P
// when both are unknown).
struct two_phase_target {
    bool free_t = true, free_p = false;
    given first = given::h;
    double first_value = 0.0;
    given second = given::v;
    double second_value = 0.0;
};

// Newton from the two-phase state `start` (a split at start.T, start.P). Returns 0 with the
// converged state in st, or 1 when the iteration does not converge, leaves the two-phase region
// reaches a split that does not lower the Gibbs energy of the feed, or one whose liquid is the
// less dense phase (the labels of a split must match those of the isothermal flash); the caller
// then takes its nested search.
int two_phase_newton(const fluid& f, const two_phase_target& target, const eq_state& start,
                     eq_state& st);

} // namespace varimol
