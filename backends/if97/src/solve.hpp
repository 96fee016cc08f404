#pragma once
// The state of water given by any supported pair of inputs, to full precision: the backward
// equations (where they exist) give the start, Newton steps on the basic equations finish.
// Units of the release: p MPa, T K, v m³/kg, h and u kJ/kg, s kJ/(kg K).
#include "properties.hpp"

#include <string>
#include <string_view>

namespace if97::solve {

// The beginning of every failure text of the library.
inline constexpr std::string_view error_prefix = "Error in IF97: ";

// The input quantities, in the order in which a pair is written canonically.
enum variable : int { P = 0, T, v, h, s, u, x };

// true when the pair (a, b), in either order, is supported.
bool supported(variable a, variable b);

// State of the pair, evaluated up to `lvl`; on failure region none and errormsg holds
// "Error in IF97: " with the reason (values quoted in bar, °C, m³/kg, kJ/kg, kJ/(kg K)).
properties::state state_of(variable a, double value_a, variable b, double value_b, int lvl,
                           std::string& errormsg);

} // namespace if97::solve
