#pragma once
// The equilibrium state from pressure or temperature and one more state function: (p, h), (p, s),
// (p, u), (p, v), (T, s), (T, v), and from (h, s). The unknown temperature (or pressure) is found
// by a bracketed one-dimensional search on the stable state of the isothermal flash, whose
// enthalpy, entropy, energy and volume grow monotonically with temperature at fixed pressure
// (and entropy and volume fall with pressure at fixed temperature), two-phase region included
// (Michelsen, Fluid Phase Equilib. 158-160 (1999) 617, the nested formulation). For a pure fluid
// the two-phase states lie on the saturation line: the saturation point is found first and the
// two-phase state follows from the lever rule. Every two-phase or homogeneous result comes from
// a full isothermal flash with its stability test.
#include "equilibrium/flash_tp.hpp"

#include <limits>

namespace varimol {

enum class given { v, u, h, s };

// Lowest pressure of the model's range (Pa); the highest is fluid::pmax.
inline constexpr double pmin = 1.0;

// An equilibrium state of the overall composition f.z.
struct eq_state {
    double T = 0.0, P = 0.0;                   // K, Pa
    double v = 0.0, u = 0.0, h = 0.0, s = 0.0; // m3/mol, J/mol, J/mol, J/(mol K), overall
    double q = 0.0; // two phases: vapour fraction; homogeneous: -1 liquid-like, 2 vapour-like
    // slope of the given property by the unknown for a homogeneous state (first step of a search;
    // NaN in two phases)
    double slope = std::numeric_limits<double>::quiet_NaN();
    flash_result fr;   // phases and compositions (nphase 1: fr.liq is the phase)
    state_props one{}; // the homogeneous phase's properties (nphase 1)
};

double given_value(const eq_state& st, given sp);
// liquid-like (-1) or vapour-like (2) quality of a homogeneous phase
double phase_quality(const fluid& f, const phase& ph);
// Fills st from a flash result at (T, P).
void state_from_flash(const fluid& f, double T, double P, const flash_result& fr, eq_state& st);
// The stable state at (T, P); with `warm` two-phase, the split starts from its K-values first.
// `lenient`: a stability test without convergence (446) keeps the homogeneous state (for the
// intermediate points of a search; the answer itself is never lenient).
int state_tp(const fluid& f, double T, double P, eq_state& st, const eq_state* warm = nullptr,
             bool lenient = false);
// Two saturated phases of a pure fluid at T, P with vapour fraction q.
void pure_two_phase_state(const fluid& f, double T, double P, const phase& l, const phase& v,
                          double q, eq_state& st);

// Results besides 0: out_below (the value lies below the range of the search: below its value
// at the lowest temperature, or at the lowest pressure for the decreasing specs), out_above, or
// a convergence code.
inline constexpr int out_below = -1, out_above = 1;

// Given P (Pa) and the given property (v, u, h or s) at `value`: the temperature in [tmin, tmax].
// t_guess (K, 0 for none) starts the search; `lenient` as for state_tp.
int flash_p(const fluid& f, double P, given sp, double value, eq_state& st, double t_guess = 0.0,
            bool lenient = false);
// Given T (K) and the given property (v or s): the pressure in [1e-6 Pa, 1e10 Pa] (the caller
// checks the model's range); out_below/out_above refer to the pressure. p_guess (Pa, 0 for none).
// `warm`: a two-phase state nearby whose K-values start the first split.
int flash_t(const fluid& f, double T, given sp, double value, eq_state& st, double p_guess = 0.0,
            const eq_state* warm = nullptr, bool lenient = false);
// Given h (J/mol) and s (J/(mol K)): the pressure in [pmin, pmax] by the fall of s with P at
// fixed h, each step a (p, h) state. Codes 0, 3260-3263 or a convergence code.
int flash_hs(const fluid& f, double h, double s, eq_state& st);

} // namespace varimol
