#pragma once
// States of water and steam from the IF97 basic equations: the property set of one state, the
// region of a (p, T) state, region-3 densities, exact saturation and two-phase mixtures.
// Units of the release: p MPa, T K, v m³/kg, h and u kJ/kg, s, cv and cp kJ/(kg K), w m/s; the
// pressure derivatives on a pascal basis (Pa/K, Pa kg/m³, Pa/K², Pa (kg/m³)², Pa kg/(m³ K)) and
// dcv_dT in J/(kg K²).
#include "forward.hpp"
#include "sentinel.hpp"

namespace if97::properties {

using forward::derivatives;

// What a state holds, cumulatively.
enum level : int {
    bare = 0,     // p, T and x of a mixture given by (p, x) or (T, x): the saturation line alone
    enthalpy = 1, // p, T and h of a (p, T) state of region 1, 2 or 5: what h alone needs
    basic = 2,    // p, T, v, h, s, u
    caloric = 3,  // + cv, cp, w, dp_dT, dp_dv
    full = 4,     // + d2p_dT2, d2p_dv2, d2p_dTdv, dcv_dT
};

// Region numbers of IF97; two_phase is a mixture of saturated liquid and vapour.
enum region : int { none = 0, r1 = 1, r2 = 2, r3 = 3, two_phase = 4, r5 = 5 };

struct state {
    int region = none;
    int level = 0;
    double p = not_set, T = not_set, v = not_set, h = not_set, s = not_set, u = not_set;
    double x = not_set; // vapour quality of a mixture; not set for a single phase until asked for
    double cv = not_set, cp = not_set, w = not_set;
    double dp_dT = not_set, dp_dv = not_set;
    double d2p_dT2 = not_set, d2p_dv2 = not_set, d2p_dTdv = not_set, dcv_dT = not_set;
};

// A saturated liquid and vapour at one temperature and pressure.
struct saturation {
    double T = not_set, p = not_set;
    state liquid, vapour;
};

// Lowest and highest pressure and temperature of the formulation.
inline constexpr double p_max = 100.0, p_max5 = 50.0;    // MPa
inline constexpr double T_min = 273.15, T_max = 2273.15; // K
// Saturation pressure at 273.15 K and at the region 1/3 boundary temperature 623.15 K.
double p_sat_min();
double p_sat_13();

// State of region 1, 2 or 5 at (p, T), computed up to `lvl` (enthalpy to full).
state gibbs_state(int reg, double p, double T, int lvl);
// For iterations along an isobar of region 1, 2 or 5 that follow h or s: the Gibbs derivatives
// at (p, T) up to the second order, the h, s and cp they give at tau = T*/T, and the state they
// give (up to `caloric`), built once at the end instead of at every step.
struct isobar_point {
    double h, s, cp;
};
derivatives gibbs_derivatives(int reg, double p, double T);
inline isobar_point isobar_values(double T, double tau, const derivatives& g) {
    return {forward::R * T * tau * g.f_y, forward::R * (tau * g.f_y - g.f),
            -forward::R * tau * tau * g.f_yy};
}
state gibbs_state(int reg, double p, double T, int lvl, const derivatives& g);
// State of region 3 at (rho, T).
state helmholtz_state(double rho, double T, int lvl);

// Region (r1, r2, r3, r5) of the single-phase state (p, T); none outside the range.
int region_pt(double p, double T);
// Region-3 density at (p, T) on the stable branch (the liquid one above ps(T) below Tc);
// a negative value when the iteration fails.
double rho3_pt(double p, double T);
// The state at (p, T) in its region; region none outside the range.
state state_pt(double p, double T, int lvl);
// The same, written into `st` (lvl enthalpy to full; enthalpy gives basic in region 3); st.region
// none outside the range.
void state_pt(state& st, double p, double T, int lvl);

// Saturated liquid and vapour at temperature T (273.15 K to Tc) or pressure p (ps(273.15 K)
// to pc). Above 623.15 K both phases solve p3(rho, T) = ps(T) with the region-3 equation, from
// densities near_liquid and near_vapour when they are given (as close ones, from a neighbouring
// temperature) and not 0.
saturation saturation_T(double T, int lvl, double near_liquid = 0.0, double near_vapour = 0.0);
saturation saturation_p(double p, int lvl);
// Derivatives along the saturation line, d/dT of v, h, s, u of one saturated phase.
struct saturation_slope {
    double v, h, s, u;
};
saturation_slope slope(const state& phase, double dps_dT);
// The mixture of quality x (0..1); cv is the isochoric heat capacity of the mixture when lvl
// asks for it, cp, w and the single-phase pressure derivatives stay not set inside the dome.
state mixture(const saturation& sat, double x, int lvl);

// Vapour quality of a single-phase state by the convention of this library: below pc the
// extended quality (h - h')/(h'' - h') at the state's pressure, never strictly between 0 and 1;
// at and above pc, -1 on the liquid side (T < Tc) and 2 on the gas side (T >= Tc).
double quality(const state& st);

// Raises a state to `lvl` (re-evaluates its equation; a mixture is rebuilt from its saturation).
state raise(const state& st, int lvl);

} // namespace if97::properties
