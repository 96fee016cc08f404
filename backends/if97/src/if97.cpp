#include "if97/if97.hpp"

#include "properties.hpp"
#include "sentinel.hpp"
#include "solve.hpp"
#include "transport.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace if97 {

namespace {

using properties::state;
using solve::variable;

constexpr const char* prefix = "Error in IF97: ";

// Output codes and the state level each one needs.
enum class code : unsigned char {
    p,
    T,
    v,
    h,
    s,
    u,
    x,
    cv,
    cp,
    w,
    dv,
    tc,
    st,
    dP_dT,
    dP_dv,
    d2P_dT2,
    d2P_dv2,
    d2P_dTdv,
    dCv_dT,
};

struct code_entry {
    std::string_view name;
    code id;
    int level;
};

constexpr std::array<code_entry, 21> code_table{{
    {"P", code::p, properties::basic},
    {"p", code::p, properties::basic},
    {"T", code::T, properties::basic},
    {"t", code::T, properties::basic},
    {"v", code::v, properties::basic},
    {"h", code::h, properties::basic},
    {"s", code::s, properties::basic},
    {"u", code::u, properties::basic},
    {"x", code::x, properties::basic},
    {"cv", code::cv, properties::caloric},
    {"cp", code::cp, properties::caloric},
    {"w", code::w, properties::caloric},
    {"dv", code::dv, properties::basic},
    {"tc", code::tc, properties::caloric},
    {"st", code::st, properties::basic},
    {"dP_dT", code::dP_dT, properties::caloric},
    {"dP_dv", code::dP_dv, properties::caloric},
    {"d2P_dT2", code::d2P_dT2, properties::full},
    {"d2P_dv2", code::d2P_dv2, properties::full},
    {"d2P_dTdv", code::d2P_dTdv, properties::full},
    {"dCv_dT", code::dCv_dT, properties::full},
}};

// An output list "h,s,cp." parsed without allocating.
struct code_list {
    std::array<code, 64> id{};
    int count = 0;
    int level = properties::basic;
};

std::string_view strip(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(' ');
    return text.substr(first, last - first + 1);
}

bool parse_codes(std::string_view outlist, code_list& list, std::string& errormsg) {
    const auto end = outlist.find('.');
    if (end == std::string_view::npos) {
        errormsg = std::string(prefix) + "output list '" + std::string(strip(outlist)) +
                   "' not closed by '.'";
        return false;
    }
    std::string_view rest = outlist.substr(0, end);
    if (strip(rest).empty()) {
        errormsg = std::string(prefix) + "empty output list";
        return false;
    }
    while (true) {
        const auto comma = rest.find(',');
        const std::string_view name = strip(rest.substr(0, comma));
        const auto it = std::find_if(code_table.begin(), code_table.end(),
                                     [&](const code_entry& e) { return e.name == name; });
        if (it == code_table.end()) {
            errormsg = std::string(prefix) + "unknown output code '" + std::string(name) + "'";
            return false;
        }
        if (list.count == static_cast<int>(list.id.size())) {
            errormsg = std::string(prefix) + "more than " + std::to_string(list.id.size()) +
                       " output codes";
            return false;
        }
        list.id[list.count++] = it->id;
        list.level = std::max(list.level, it->level);
        if (comma == std::string_view::npos) break;
        rest = rest.substr(comma + 1);
    }
    return true;
}

bool parse_letter(std::string_view letter, variable& var, std::string& errormsg) {
    const std::string_view l = strip(letter);
    if (l.size() == 1) {
        switch (l[0]) {
        case 'P':
        case 'p':
            var = solve::P;
            return true;
        case 'T':
        case 't':
            var = solve::T;
            return true;
        case 'v':
            var = solve::v;
            return true;
        case 'h':
            var = solve::h;
            return true;
        case 's':
            var = solve::s;
            return true;
        case 'u':
            var = solve::u;
            return true;
        case 'x':
            var = solve::x;
            return true;
        default:
            break;
        }
    }
    errormsg = std::string(prefix) + "unknown input letter '" + std::string(l) +
               "' (known: P, T, v, h, s, u, x)";
    return false;
}

// Interface units (bar, °C) to the release's (MPa, K).
double to_release(variable var, double value) {
    if (var == solve::P) return value * 0.1;
    if (var == solve::T) return value + 273.15;
    return value;
}

// The last state evaluated, so that several questions about one state pay once.
struct last_state {
    bool valid = false;
    variable a = solve::P, b = solve::T;
    double value_a = 0, value_b = 0; // interface units, as given
    state st;
    double quality = not_set;
    double viscosity = not_set, conductivity = not_set;
};

last_state cache;

double output_value(code id, last_state& c) {
    const state& st = c.st;
    const bool single = st.region != properties::two_phase;
    switch (id) {
    case code::p:
        return c.a == solve::P ? c.value_a : st.p * 10.0;
    case code::T:
        return c.a == solve::T ? c.value_a : c.b == solve::T ? c.value_b : st.T - 273.15;
    case code::v:
        return st.v;
    case code::h:
        return st.h;
    case code::s:
        return st.s;
    case code::u:
        return st.u;
    case code::x:
        if (c.quality == not_set) c.quality = properties::quality(st);
        return c.quality;
    case code::cv:
        return st.cv;
    case code::cp:
        return st.cp;
    case code::w:
        return st.w;
    case code::dv:
        if (single && c.viscosity == not_set) c.viscosity = transport::viscosity(st.T, 1.0 / st.v);
        return c.viscosity;
    case code::tc:
        if (single && c.conductivity == not_set) {
            const double rho = 1.0 / st.v;
            const double drho_dp = -1e6 / (st.v * st.v * st.dp_dv); // kg/(m³ MPa)
            c.conductivity = transport::conductivity(st.T, rho, st.cp, st.cv, drho_dp,
                                                     transport::drho_dp_reference(rho));
        }
        return c.conductivity;
    case code::st:
        return transport::surface_tension(st.T);
    case code::dP_dT:
        return st.dp_dT;
    case code::dP_dv:
        return st.dp_dv;
    case code::d2P_dT2:
        return st.d2p_dT2;
    case code::d2P_dv2:
        return st.d2p_dv2;
    case code::d2P_dTdv:
        return st.d2p_dTdv;
    default:
        return st.dcv_dT;
    }
}

} // namespace

void if97_main(std::string_view letter1, double value1, std::string_view letter2, double value2,
               std::string_view outlist, std::span<double> output, std::string& errormsg) {
    errormsg = "No errors";
    std::fill(output.begin(), output.end(), not_set);

    variable a{}, b{};
    if (!parse_letter(letter1, a, errormsg) || !parse_letter(letter2, b, errormsg)) return;
    if (!solve::supported(a, b)) {
        errormsg = std::string(prefix) + "input pair '" + std::string(strip(letter1)) +
                   std::string(strip(letter2)) +
                   "' not supported (pairs: PT, Ph, Ps, Pv, Pu, Px, Tv, Ts, Tx, vh, vs, vu, vx, "
                   "hs, in either order)";
        return;
    }
    code_list list;
    if (!parse_codes(outlist, list, errormsg)) return;
    if (list.count > static_cast<int>(output.size())) {
        errormsg = std::string(prefix) + "output list asks for " + std::to_string(list.count) +
                   " values, the output array holds " + std::to_string(output.size());
        return;
    }
    for (const auto& [letter, value] : {std::pair{letter1, value1}, std::pair{letter2, value2}}) {
        if (!std::isfinite(value)) {
            errormsg = std::string(prefix) + "input value of " + std::string(strip(letter)) +
                       " is not a finite number";
            return;
        }
    }
    if (a > b) std::swap(a, b), std::swap(value1, value2);

    if (!(cache.valid && cache.a == a && cache.b == b && cache.value_a == value1 &&
          cache.value_b == value2)) {
        cache.valid = false;
        state st = solve::state_of(a, to_release(a, value1), b, to_release(b, value2), list.level,
                                   errormsg);
        if (st.region == properties::none) return;
        cache = {true, a, b, value1, value2, st, not_set, not_set, not_set};
    } else if (cache.st.level < list.level) {
        cache.st = properties::raise(cache.st, list.level);
    }
    for (int k = 0; k < list.count; ++k) output[k] = output_value(list.id[k], cache);
}

void if97_sub() {}

void getversion(std::array<int, 4>& version) {
    version = {1, 0, 0, 0};
}

void uninit_if97() {
    cache = last_state{};
}

} // namespace if97
