#pragma once
// The equilibrium state from the volume and one more variable: (T, v), (v, u), (v, h), (v, s)
// and (v, q). At fixed temperature the stable volume falls monotonically with pressure, and at
// fixed volume the energy, enthalpy and entropy of the stable state grow with temperature (the
// heat capacity at constant volume is positive, two-phase region included), so each pair is a
// nested one-dimensional search over the isothermal flash (Michelsen, Fluid Phase Equilib.
// 158-160 (1999) 617, the nested formulation of the UV, VH and VS flashes). A homogeneous
// (T, v) state is explicit in the model: it is taken directly when the isothermal flash at its
// pressure confirms it as the stable state.
#include "equilibrium/flash_ph_ps.hpp"

namespace varimol {

// The stable state at T (K) and v (m3/mol). p_guess (Pa, 0 for none) starts the two-phase search.
// Returns 0, 109 (v at or below the covolume) or a convergence code; the caller checks P.
// `warm`: a two-phase state nearby whose K-values start the split.
// `lenient` as for state_tp (intermediate points of a search).
int state_tv(const fluid& f, double T, double v, eq_state& st, double p_guess = 0.0,
             const eq_state* warm = nullptr, bool lenient = false);
// Given v and the given property (u, h or s) at `value`: the temperature in [tmin, tmax]; out_below
// / out_above when the value lies below its value at tmin or above it at tmax.
int flash_v(const fluid& f, double v, given sp, double value, eq_state& st);
// Given v and the vapour fraction q in [0, 1]: the temperature on the line of that q where the
// overall volume is v. Codes 0, 3281 (v above every volume of the line), 3282 (below), 3283 (more
// than one temperature gives v), or a convergence code.
int flash_vq(const fluid& f, double v, double q, eq_state& st);

} // namespace varimol
