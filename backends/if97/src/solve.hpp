#pragma once
// The state of water given by any supported pair of inputs, to full precision: the backward
// equations (where they exist) give the start, Newton steps on the basic equations finish.
// Units of the release: p MPa, T K, v m³/kg, h and u kJ/kg, s kJ/(kg K).
#include "properties.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace if97::solve {

// The beginning of every failure text of the library.
inline constexpr std::string_view error_prefix = "Error in IF97: ";

// The input quantities, in the order in which a pair is written canonically.
enum variable : int { P = 0, T, v, h, s, u, x };

// true when the pair (a, b), in either order, is supported.
bool supported(variable a, variable b);

// State of the pair (a < b), evaluated up to `lvl` (at least basic unless b is x) and written
// into st; on failure region none and errormsg holds "Error in IF97: " with the reason (values
// quoted in bar, °C, m³/kg, kJ/kg, kJ/(kg K)).
void solve_pair(properties::state& st, variable a, double value_a, variable b, double value_b,
                int lvl, std::string& errormsg);

// The same for a pair in either order and any level. The two commonest questions are answered
// here, in the caller: (p, T) within the limits, and Ts(p) alone, whose saturation point holds
// p, T and x only.
inline void state_of(properties::state& st, variable a, double value_a, variable b, double value_b,
                     int lvl, std::string& errormsg) {
    using namespace properties;
    if (a > b) std::swap(a, b), std::swap(value_a, value_b);
    if (b != x) lvl = std::max(lvl, int(enthalpy)); // only (P, x), (T, x) stop short of h
    if (a == P && b == T && value_a > 0.0 && value_a <= p_max && value_b >= T_min &&
        value_b <= T_max) {
        state_pt(st, value_a, value_b, lvl);
        if (st.region != none) return;
    } else if (a == P && b == x && lvl == bare && value_a <= forward::pc &&
               value_a >= p_sat_min() && value_b >= 0.0 && value_b <= 1.0) {
        st.region = two_phase, st.level = bare;
        st.p = value_a, st.T = forward::tsat(value_a), st.x = value_b;
        st.v = st.h = st.s = st.u = not_set;
        return;
    }
    solve_pair(st, a, value_a, b, value_b, lvl, errormsg);
}

} // namespace if97::solve
