#pragma once
// IAPWS-IF97 water and steam, with the IAPWS industrial transport properties.
//
// Units at this interface: pressure bar, temperature °C, specific volume m³/kg, enthalpy and
// internal energy kJ/kg, entropy and heat capacities kJ/(kg K), speed of sound m/s, viscosity Pa s,
// thermal conductivity W/(m K), surface tension N/m; pressure derivatives on a pascal basis
// (dP_dT Pa/K, dP_dv Pa kg/m³, d2P_dT2 Pa/K², d2P_dv2 Pa (kg/m³)², d2P_dTdv Pa kg/(m³ K)),
// dCv_dT J/(kg K²).
#include <array>
#include <span>
#include <string>
#include <string_view>

namespace if97 {

// Evaluates the state given by two inputs (letters P/p, T/t, v, h, s, u, x in either order) and
// writes one value per output code of `outlist` ("h,s,cp." - comma separated, closed by ".") into
// `output`. Failures: errormsg begins "Error in IF97: "; outputs keep -8888.8.
void if97_main(std::string_view letter1, double value1, std::string_view letter2, double value2,
               std::string_view outlist, std::span<double> output, std::string& errormsg);
// Proves the library is linked.
void if97_sub();
// The library's version numbers.
void getversion(std::array<int, 4>& version);
// Releases what the library holds (its cached last state).
void uninit_if97();

} // namespace if97
