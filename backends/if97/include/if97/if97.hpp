#pragma once
// IAPWS-IF97 water and steam, with the IAPWS industrial transport properties.
//
// Units at this interface: pressure bar, temperature °C, specific volume m³/kg, enthalpy and
// internal energy kJ/kg, entropy and heat capacities kJ/(kg K), speed of sound m/s, viscosity Pa s,
// thermal conductivity W/(m K), surface tension N/m; pressure derivatives on a pascal basis
// (dP_dT Pa/K, dP_dv Pa kg/m³, d2P_dT2 Pa/K², d2P_dv2 Pa (kg/m³)², d2P_dTdv Pa kg/(m³ K)),
// dCv_dT J/(kg K²).
//
// Inputs: two of the letters P (or p), T (or t), v, h, s, u, x (vapour quality), as the pairs
// PT, Ph, Ps, Pv, Pu, Px, Tv, Ts, Tx, vh, vs, vu, vx, hs in either order, over the whole range
// of IF97 (0 to 800 °C up to 1000 bar, 800 to 2000 °C up to 500 bar), the dome included. Every
// pair is solved on the basic equations to full precision; where a pair has two states (v and x
// near the critical point, P and v or T and s in liquid colder than its density maximum), the
// one found from the higher temperature (vx) or by the iteration is returned.
//
// Output codes: P, p, T, t, v, h, s, u, x, cv, cp, w, dv (viscosity), tc (thermal conductivity),
// st (surface tension at the state's temperature, -8888.8 from the critical temperature on),
// dP_dT, dP_dv, d2P_dT2, d2P_dv2, d2P_dTdv, dCv_dT. Viscosity and conductivity are those of
// IAPWS R12-08 and R15-11 for industrial use, with IF97 densities and derivatives (the
// conductivity's reference compressibility at 1.5 Tc from R15-11 eq. 25); above 900 °C (region 5)
// they are extrapolated beyond their published range.
//
// Inside the dome (0 < x < 1) v, h, s, u are the quality-weighted mixture of the saturated
// phases; cv is the isochoric heat capacity of the mixture, held at its overall volume while part
// of it evaporates or condenses; cp, w, dv, tc and the pressure derivatives are -8888.8. At x = 0
// and x = 1 the state is the saturated liquid or vapour, with all its single-phase properties.
// Above 350 °C both saturated phases solve the region-3 equation at the saturation pressure.
//
// Quality of a single-phase state: below the critical pressure the extended quality
// (h - h')/(h'' - h') at the state's pressure, which is at most 0 for liquid and at least 1 for
// vapour; at and above the critical pressure -1 below the critical temperature and 2 from it on.
// No single-phase state has a quality strictly between 0 and 1.
#include <array>
#include <span>
#include <string>
#include <string_view>

namespace if97 {

// Evaluates the state given by two inputs (letters P/p, T/t, v, h, s, u, x in either order) and
// writes one value per output code of `outlist` ("h,s,cp." - comma separated, closed by ".";
// blanks around a code are ignored) into the first entries of `output`. Failures: errormsg
// begins "Error in IF97: " and says what is wrong and by how much; every entry of `output` is
// -8888.8. Repeated questions about the same inputs are answered from the remembered last state.
void if97_main(std::string_view letter1, double value1, std::string_view letter2, double value2,
               std::string_view outlist, std::span<double> output, std::string& errormsg);
// Proves the library is linked.
void if97_sub();
// The library's version numbers.
void getversion(std::array<int, 4>& version);
// Releases what the library holds (its cached last state).
void uninit_if97();

} // namespace if97
