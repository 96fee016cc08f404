#pragma once
// Unit definitions taken from their legal definitions, not from the library's unit table, to
// check its conversions against: the international yard and pound (1959), the standard
// acceleration of gravity (CGPM 1901), the International Table calorie and Btu (1956), the
// conventional millimetre of mercury and the metric horsepower.
namespace independent {

inline constexpr double ft = 0.3048;              // m
inline constexpr double in = 0.0254;              // m
inline constexpr double mi = 1609.344;            // m
inline constexpr double lb = 0.45359237;          // kg
inline constexpr double g_n = 9.80665;            // m/s2
inline constexpr double lbf = lb * g_n;           // N, 4.4482216152605
inline constexpr double psi = lbf / (in * in);    // Pa, 6894.757293168
inline constexpr double btu = 2326.0 * lb;        // J, 1 Btu/lb = 2.326 kJ/kg: 1055.05585262
inline constexpr double btu_per_h = btu / 3600.0; // W
inline constexpr double cal = 4.1868;             // J
inline constexpr double mmhg = 13.5951 * g_n;     // Pa, 133.322387415
inline constexpr double hp = 75.0 * g_n;          // W, metric horsepower
inline constexpr double knot = 1852.0 / 3600.0;   // m/s
inline constexpr double rankine = 5.0 / 9.0;      // K per degree Rankine or Fahrenheit
inline constexpr double per_rankine = 9.0 / 5.0;  // a value per degree R is this many per kelvin

// Relative agreement expected: the table's exact definitions, and the conversion factors it
// carries to 7 significant digits (Btu, lbf, psia, Btu/h, kn, hp) or 6 (mHg).
inline constexpr double exact = 1e-13;
inline constexpr double seven_digits = 1e-6;
inline constexpr double six_digits = 5e-6;

} // namespace independent
