#pragma once
// liteVarimol: the cubic equation of state of Varimol reduced to mixtures of up to 10 components,
// with its own configured fluid. Units at every entry point as in Varimol (molar SI): T K, p Pa,
// v m3/mol, u and h J/mol, s and cv J/(mol K), dpdt Pa/K, dpdv Pa mol/m3, d2pdt2 Pa/K2,
// d2pdv2 Pa mol2/m6, d2pdtdv Pa mol/(m3 K), dcvdt J/(mol K2); q the molar vapour fraction.
//
// The parameter arrays have the rows and binary kinds of Varimol (varimol/parameters.hpp) with
// 10 columns: fluidparameters(row, component) at component * 16 + row, binaryparameters(kind, i, j)
// at (j * 10 + i) * 5 + kind (rows, kinds and components counted from 0). model_code and n_comps
// are 16-bit integers.
//
// Modes of litevarimolprops: those of Varimol's vm3_tmdprop (1, -1, -2, 2 Tv, 3 Ts, 4 pv, 5 vu,
// 6 vh, 7 vs, 8 pu, 9 ph, 10 ps, 11 pq, 12 Tq, 13 hs, 15 vq); litevarimolprops_1ph those of
// vm3_tmdprop_1ph. No fugacity coefficients, phase envelope or binary-parameter routine.
//
// Codes (ierr, 32-bit): 0 success, 28 warning (as Varimol), and the liteVarimol codes: 100 mole
// fractions; 102/103 saturation at T > Tc / T < Tmin; 104/105/111 bubble pressure, 116/117/125
// dew pressure, 122/123/124/135 bubble temperature, 126/127/128/136 dew temperature (inner loop,
// outer loop, trivial solution, start); 106-109, 129-157, 164 as Varimol; 118 flash without
// convergence, 156 its stability test without convergence; 158/159 T above Tmax / below Tmin;
// 155 p not positive; 166 p above Pmax; 161 v below vmin(T, Pmax); 162/163 saturation above the
// critical pressure / temperature; 165 p below Pmin of a (p, q) state; 167-201 the state-function
// pairs, one code per limit as in the liteVarimol table. Codes of Varimol without a liteVarimol
// counterpart keep their number: 101 no fluid configured, unknown model, more than 10
// components or a parameter not finite or not physical; 110 operation not available. Nothing throws; no result is NaN when ierr is 0 or 28.
#include <array>
#include <cstdint>

#if defined(__GNUC__)
#define LITEVARIMOL_API __attribute__((visibility("default")))
#else
#define LITEVARIMOL_API
#endif

namespace litevarimol {

inline constexpr int max_components = 10;
using fluid_parameters = std::array<double, 16 * max_components>;
using binary_parameters = std::array<double, 5 * max_components * max_components>;
using composition = std::array<double, max_components>;

// Library initialisation (nothing to set up).
LITEVARIMOL_API void litevarimol_sub();
// Version numbers.
LITEVARIMOL_API void lvm_getversion(std::array<int, 4>& version);
// Configures the fluid; tcr (K) and pcr (Pa) its critical point: exact for a pure fluid, for a
// mixture the critical point of the mixture (Kay's pseudo-critical estimate where the mixture
// has none with a positive pressure). ierr 0, 100 or
// 101; on failure the previous fluid stays configured.
LITEVARIMOL_API void set_fluid(std::int16_t model_code, const fluid_parameters& fluidparameters,
                               const binary_parameters& binaryparameters, double& tcr,
                               double& pcr, std::int16_t n_comps, int& ierr);
// The critical point of the configured fluid (K, Pa), kept for critpoint. ierr 0, or 101 when
// no fluid is configured.
LITEVARIMOL_API void calc_critpoint(double& tcr, double& pcr, int& ierr);
// The full state with phase equilibrium; x and y the liquid and vapour compositions.
LITEVARIMOL_API void litevarimolprops(int mode, double& T, double& p, double& v, double& u,
                                      double& h, double& s, double& q, double& cv, double& dpdt,
                                      double& dpdv, double& d2pdt2, double& d2pdv2,
                                      double& d2pdtdv, double& dcvdt, composition& x,
                                      composition& y, int& ierr);
// One homogeneous phase (no split, no quality and compositions).
LITEVARIMOL_API void litevarimolprops_1ph(int mode, double& T, double& p, double& v, double& u,
                                          double& h, double& s, double& cv, double& dpdt,
                                          double& dpdv, double& d2pdt2, double& d2pdv2,
                                          double& d2pdtdv, double& dcvdt, int& ierr);
// The homogeneous state from v and u (the flow solvers' state): p, T, h, s and the derivatives.
LITEVARIMOL_API void vu_zflow(double& p, double& T, double v, double& h, double& s, double u,
                              double& cv, double& dpdt, double& dpdv, double& d2pdt2,
                              double& d2pdv2, double& d2pdtdv, double& dcvdt, int& ierr);
// Molar mass of the configured fluid, kg/mol (0 when none).
LITEVARIMOL_API double wmol();
// The critical point last set by set_fluid or calc_critpoint (K, Pa; 0 when none).
LITEVARIMOL_API void critpoint(double& tcr, double& pcr);
// Limits of the configured fluid: Tmin, Tmax (K), Pmax (Pa); 0 when none.
LITEVARIMOL_API void ptminmax(double& tmin, double& tmax, double& pmax);
// Releases the configured fluid.
LITEVARIMOL_API void uninit_litevarimol();

} // namespace litevarimol
