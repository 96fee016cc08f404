#pragma once
// Ideal-gas properties of a component from its cp0 polynomial cp0/R = a0 + a1 T + ... + a4 T^4
// (T in K; the form of Poling, Prausnitz and O'Connell, The Properties of Gases and Liquids,
// 5th ed. 2001, App. A), integrated analytically. Reference state: h = 0 and s = 0 for the ideal
// gas at 298.15 K and 101325 Pa, for every component. Outside the polynomial's range the
// polynomial is extrapolated.
#include "model/components.hpp"

namespace varimol {

inline constexpr double reference_temperature = 298.15; // K
inline constexpr double reference_pressure = 101325.0;  // Pa

struct ideal_gas_terms {
    double h;     // J/mol, relative to the reference state
    double s;     // J/(mol K), at the reference pressure
    double cp;    // J/(mol K)
    double dcpdt; // J/(mol K^2)
};

// The pure component's ideal gas at T (K).
ideal_gas_terms ideal_gas(const component& c, double T);
// The same with ln(T/reference_temperature) given, formed once for all the components.
ideal_gas_terms ideal_gas(const component& c, double T, double ln_t_ratio);

} // namespace varimol
