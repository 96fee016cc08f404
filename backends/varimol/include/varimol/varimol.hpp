#pragma once
// Varimol: a cubic equation of state for pure fluids and mixtures of up to 20 components.
//
// Units at every entry point (molar SI): temperature K, pressure Pa, molar volume m3/mol, molar
// internal energy and enthalpy J/mol, molar entropy and heat capacity J/(mol K), dpdt Pa/K,
// dpdv Pa mol/m3, d2pdt2 Pa/K2, d2pdv2 Pa mol2/m6, d2pdtdv Pa mol/(m3 K), dcvdt J/(mol K2);
// mole fractions; q the molar vapour fraction.
//
// Models (model_code of vm3_setfluid, see varimol/parameters.hpp): 1 Peng-Robinson with the
// Stryjek-Vera alpha (PRSV), 2 Peng-Robinson with the 1978 alpha, 3 Soave-Redlich-Kwong, each
// with van der Waals one-fluid mixing and kij; 11 PRSV and 12 Peng-Robinson 1978 with
// Wong-Sandler mixing and NRTL. R = 8.314462618 J/(mol K). Ideal gas from the cp0/R polynomial;
// reference state h = 0, s = 0 for the ideal gas at 298.15 K and 101325 Pa, per component (the
// ideal-gas mixture carries the entropy of mixing -R sum x ln x).
//
// Modes of vm3_tmdprop: 1 (p, T: the stable state, split into liquid and vapour where the
// tangent-plane test finds the feed unstable), -1 and -2 (p, T on the liquid or the vapour root,
// no phase split), 11 (p, q) and 12 (T, q) for 0 <= q <= 1, and the stable state (split where
// it is unstable) from 2 (T, v), 3 (T, s), 4 (p, v), 5 (v, u), 6 (v, h), 7 (v, s), 8 (p, u),
// 9 (p, h), 10 (p, s), 13 (h, s) and 15 (v, q: the point of the line of vapour fraction q whose
// overall volume is v). The unknowns are found by one-dimensional searches over the isothermal
// flash (nested for the (v, x) pairs and (h, s)); every answer comes from a full flash with its
// stability test; a pure fluid's two-phase states lie on its saturation line. Where the model's
// functions are not monotone (the PRSV alpha drops its kappa1 term above Tr = 0.7, a small step
// in h and s) a pair can have two answers, and either is returned. Modes of vm3_tmdprop_1ph (one
// homogeneous phase): 1 (the root of lower Gibbs energy), -1, -2, 2 (T, v), 3 (T, s), 4 (p, v),
// 5 (v, u), 6 (v, h), 7 (v, s), and 8 (p, u), 9 (p, h), 10 (p, s) on the root of lower Gibbs
// energy at each temperature (a value inside the jump between the two roots, in the dome, has
// no homogeneous state: code 106). Other modes (vm3_tmdprop 14 and above 15; vm3_tmdprop_1ph
// 13) answer code 110 in this version.
//
// Quality of a homogeneous state: q = -1 when liquid-like, q = 2 when vapour-like. Where the
// cubic has two roots the smaller one is liquid-like; where it has one, the state is liquid-like
// when its volume is below the critical volume of the fluid (the exact one of the cubic for a
// pure fluid; for a mixture Zc R Tpc/Ppc with the pseudo-critical point of Kay's rule).
// Two-phase states (0 < q < 1): v, u, h, s are the molar averages of the phases; cv and the
// pressure derivatives are -8888.8 (not computed); lnphi is that of the liquid phase. At q = 0
// and q = 1 the state is the saturated liquid or vapour with all its single-phase properties.
// x and y hold the compositions at the caller's positions (0 for components of zero fraction,
// whose lnphi is 0); a homogeneous state has x = y = the overall composition.
//
// Limits: Tmin the triple point (0.3 Tc where unknown; for a mixture the mole-fraction average
// of the components' values), Tmax 5 Tc (the highest Tc of a mixture), 0 < p <= 1000 bar; the
// state-function modes answer states below 1 Pa as outside the model (Pmin = 1 Pa).
// vm3_fluidinfo gives the exact critical point of a pure fluid and, for a mixture, the critical
// point of the mixture at its composition (the conditions of Heidemann and Khalil), computed
// when the fluid is configured; where none with a positive pressure is found, the
// pseudo-critical point of Kay's rule (sum x Tc, sum x Pc) stands in.
//
// Codes (ierr): 0 success; 28 warning (mode -1/-2: the cubic has only the other kind of root,
// which is returned); 100 mole fractions negative or not adding up to 1 (within 1e-6);
// 101 no fluid configured, unknown model code, component count outside 1..20, or a parameter
// that is not finite or not physical; 102 T >= Tc where saturation is asked (vm3_psat_k1);
// 103 T below Tmin (vm3_psat_k1); 106 pure-fluid saturation without convergence;
// 109 no root of the cubic above the covolume; 110 mode not available in this version;
// 3180/3181 T above Tmax / below Tmin (or not finite); 3185/3186 p above Pmax / not positive
// (or not finite); 3190-3263 the given pair outside the model's range, in the one-phase and the
// full modes, with the meanings of their texts (e.g. 3245/3246 h below h(Tmin, p) / above
// h(Tmax, p); 3210 v so large that p < Pmin at Tmax, 3214 the state's p above Pmax; a value
// that is not finite answers its pair's lower code); 3280 q outside [0, 1] for (v, q), 3281/3282
// v above / below every volume of the line of that q, 3283 the line reaches v at more than one
// temperature; 3270/3275 q outside [0, 1] or not finite; 3271/3276 p or T above the
// critical point of a pure fluid with saturation asked, or, for a mixture, above its
// cricondenbar or cricondentherm, or above its critical pressure or temperature where the line
// of the asked q does not reach the given p or T; 3272/3277 below the lower limit;
// 400-402, 410-412, 420-422, 430-432 bubble/dew pressure/temperature (and interior q, by the
// nearer end) without convergence (x0, x1) or collapsed onto the trivial solution (x2);
// 441 PT flash without convergence; 446 stability test without convergence;
// 450-453 phase envelope (vm3_phaseenvelope).
// Nothing throws, nothing aborts; no result is NaN when ierr is 0 or 28.
#include "varimol/parameters.hpp"

#include <array>
#include <span>
#include <string>

namespace varimol {

using composition = std::array<double, max_components>;

// Library initialisation (nothing to set up; proves the library is linked).
void varimol_sub();
// Version numbers of the back-end.
void vm3_getversion(std::array<int, 4>& version);
// Configures the fluid. ierr 0, 100 or 101; on failure the previous fluid stays configured.
void vm3_setfluid(int model_code, const fluid_parameters& fluidparameters,
                  const binary_parameters& binaryparameters, int n_comps, int& ierr);
// Molar mass (kg/mol), critical point (K, Pa; of the mixture at its composition) and
// temperature limits (K) of the configured fluid; all 0 when none is configured.
void vm3_fluidinfo(double& mmol, double& tcrit, double& pcrit, double& tmin, double& tmax);
// The fluids this back-end can load by name: none of its own (ncomps = 0); the fluid texts are
// read from the fluid database by the library, which lists them.
void vm3_fluidsset(int& ncomps, std::span<std::string> compset);
// Full state with phase equilibrium (modes above); the two given variables in, the rest out.
void vm3_tmdprop(int mode, double& T, double& p, double& v, double& u, double& h, double& s,
                 double& q, double& cv, double& dpdt, double& dpdv, double& d2pdt2,
                 double& d2pdv2, double& d2pdtdv, double& dcvdt, composition& x, composition& y,
                 composition& lnphi, int& ierr);
// One homogeneous phase (modes above), no quality and compositions.
void vm3_tmdprop_1ph(int mode, double& T, double& p, double& v, double& u, double& h, double& s,
                     double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                     double& d2pdtdv, double& dcvdt, int& ierr);
// Saturation pressure (Pa) at T (K) of the configured pure fluid under PRSV with kappa1 = k1
// (the fluid's other constants unchanged). ierr 0, 101 (not a pure fluid), 102, 103, 106.
void vm3_psat_k1(double k1, double T, double& psat, int& ierr);
// Liquid and vapour mole fractions of the configured binary at p (Pa) and T (K) under
// Peng-Robinson (the fluid's alpha; PR 1978 for SRK fluids) with Wong-Sandler mixing and NRTL
// tau_12 = aij, tau_21 = aji, alpha = alfa. ierr 0, 101 (not a binary), 441 (no two phases).
void vm3_xy_a_alfa(double aij, double aji, double alfa, double p, double T,
                   std::array<double, 2>& x, std::array<double, 2>& y, int& ierr);
// The phase envelope of the configured mixture, from the bubble point at 1 bar round through
// the critical point to the dew point at 1 bar: T (K), p (Pa), liquid x and vapour y mole
// fractions at each point (x = y = z at the critical point). The curve is the boundary of the
// single-phase region: where a second liquid appears (a gas with a heavy component, a liquid
// that splits in two), the curve continues from that three-phase point with the new phase as
// the incipient one, and the point is listed twice, once with each incipient phase; there x or
// y is the second liquid, and the other the feed. Where the feed is already split at its
// bubble point at 1 bar, the curve is traced from the dew point at 1 bar and listed in the
// same order, ending at the dew point. npnts in: room for points (at most the size of the
// smallest span); out: points written. ierr 0, 101 (no mixture configured), 450 no convergence
// or the curve left the model's range (a liquid-liquid boundary rising to Pmax: the points up
// to there are returned), 451 no bubble or dew point at 1 bar, 452 more points than room (those
// traced are returned), 453 the critical point could not be located.
void vm3_phaseenvelope(int& npnts, std::span<double> T, std::span<double> p,
                       std::span<composition> x, std::span<composition> y, int& ierr);
// Releases the configured fluid.
void uninit_varimol();

} // namespace varimol
