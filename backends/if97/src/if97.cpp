#include "if97/if97.hpp"

#include "forward.hpp"
#include "properties.hpp"
#include "sentinel.hpp"
#include "solve.hpp"
#include "transport.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string>

namespace if97 {

namespace {

using properties::state;
using solve::variable;

using solve::error_prefix;

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
    dCv_dT
};

struct code_entry {
    std::string_view name;
    code id;
    int level;
};

constexpr std::array<code_entry, 21> code_table{{
    {"P", code::p, properties::bare},
    {"p", code::p, properties::bare},
    {"T", code::T, properties::bare},
    {"t", code::T, properties::bare},
    {"v", code::v, properties::basic},
    {"h", code::h, properties::enthalpy},
    {"s", code::s, properties::basic},
    {"u", code::u, properties::basic},
    {"x", code::x, properties::bare},
    {"cv", code::cv, properties::caloric},
    {"cp", code::cp, properties::caloric},
    {"w", code::w, properties::caloric},
    {"dv", code::dv, properties::basic},
    {"tc", code::tc, properties::caloric},
    {"st", code::st, properties::bare},
    {"dP_dT", code::dP_dT, properties::caloric},
    {"dP_dv", code::dP_dv, properties::caloric},
    {"d2P_dT2", code::d2P_dT2, properties::full},
    {"d2P_dv2", code::d2P_dv2, properties::full},
    {"d2P_dTdv", code::d2P_dTdv, properties::full},
    {"dCv_dT", code::dCv_dT, properties::full},
}};

// An output list "h,s,cp." parsed without allocating.
struct code_list {
    std::array<code, 64> id;
    int count = 0;
    int level = properties::bare;
};

std::string_view strip(std::string_view text) {
    std::size_t first = 0, last = text.size();
    while (first < last && text[first] == ' ') ++first;
    while (last > first && text[last - 1] == ' ') --last;
    return text.substr(first, last - first);
}

bool same(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t k = 0; k < a.size(); ++k)
        if (a[k] != b[k]) return false;
    return true;
}

// The failure of an output list: unknown code, too many codes, or no closing '.'.
[[gnu::cold, gnu::noinline]] bool code_error(std::string_view outlist, const code_list& list,
                                             std::string_view name, std::string& errormsg) {
    name = strip(name);
    if (outlist.find('.') == std::string_view::npos)
        errormsg = std::string(error_prefix) + "output list '" + std::string(strip(outlist)) +
                   "' not closed by '.'";
    else if (list.count == static_cast<int>(list.id.size()))
        errormsg = std::string(error_prefix) + "more than " + std::to_string(list.id.size()) +
                   " output codes";
    else if (name.empty() && list.count == 0 && strip(outlist.substr(0, outlist.find('.'))).empty())
        errormsg = std::string(error_prefix) + "empty output list";
    else
        errormsg = std::string(error_prefix) + "unknown output code '" + std::string(name) + "'";
    return false;
}

// Entries of the one-letter codes by their letter, found without a search.
constexpr std::array<signed char, 128> one_letter = [] {
    std::array<signed char, 128> index{};
    index.fill(-1);
    for (std::size_t k = 0; k < code_table.size(); ++k)
        if (code_table[k].name.size() == 1)
            index[static_cast<unsigned char>(code_table[k].name[0])] = static_cast<signed char>(k);
    return index;
}();

// Entries of the two-letter codes by their letters (the 5 low bits of each), checked after.
constexpr std::size_t two_letter_key(char a, char b) {
    return (static_cast<std::size_t>(a) & 31u) << 5 | (static_cast<std::size_t>(b) & 31u);
}
constexpr std::array<signed char, 1024> two_letter = [] {
    std::array<signed char, 1024> index{};
    index.fill(-1);
    for (std::size_t k = 0; k < code_table.size(); ++k)
        if (code_table[k].name.size() == 2)
            index[two_letter_key(code_table[k].name[0], code_table[k].name[1])] =
                static_cast<signed char>(k);
    return index;
}();

const code_entry* find_code(std::string_view name) {
    if (name.size() == 1) {
        const auto c = static_cast<unsigned char>(name[0]);
        return c < 128 && one_letter[c] >= 0 ? &code_table[one_letter[c]] : nullptr;
    }
    if (name.size() == 2) {
        const int k = two_letter[two_letter_key(name[0], name[1])];
        return k >= 0 && same(code_table[k].name, name) ? &code_table[k] : nullptr;
    }
    for (const code_entry& e : code_table)
        if (same(e.name, name)) return &e;
    return nullptr;
}

// One pass over the list: codes separated by ',' up to the closing '.'.
bool parse_codes(std::string_view outlist, code_list& list, std::string& errormsg) {
    std::size_t start = 0;
    for (std::size_t k = 0; k < outlist.size(); ++k) {
        const char c = outlist[k];
        if (c != ',' && c != '.') continue;
        std::string_view name = outlist.substr(start, k - start);
        if (name.size() != 1) name = strip(name);
        const code_entry* e = find_code(name);
        if (e == nullptr || list.count == static_cast<int>(list.id.size()))
            return code_error(outlist, list, name, errormsg);
        list.id[list.count++] = e->id;
        if (e->level > list.level) list.level = e->level;
        if (c == '.') return true;
        start = k + 1;
    }
    return code_error(outlist, list, {}, errormsg);
}

// The output lists read so far and their codes: a caller usually asks a few lists again and
// again (a bundle's list, then one property, then the bundle's again), and then the text is
// compared instead of parsed. The table is small and searched from the list used last; a new list
// takes the place of the oldest.
struct remembered_list {
    std::array<char, 256> text{};
    std::size_t size = 0; // 0: nothing remembered
    code_list list;
};

constexpr std::size_t remembered_lists = 8;
std::array<remembered_list, remembered_lists> lists;
std::size_t last_used = 0; // the entry the last call used
std::size_t next_free = 0; // the entry a new list takes

// The remembered codes of outlist, or nullptr.
inline const code_list* remembered(std::string_view outlist) {
    const remembered_list& last = lists[last_used];
    if (last.size != 0 && same(outlist, std::string_view(last.text.data(), last.size)))
        return &last.list;
    for (std::size_t k = 0; k < remembered_lists; ++k) {
        const remembered_list& m = lists[k];
        if (m.size != 0 && same(outlist, std::string_view(m.text.data(), m.size))) {
            last_used = k;
            return &m.list;
        }
    }
    return nullptr;
}

// The last pair of one-character input letters read and their variables (a valid pair to begin
// with, so that no match is ever wrong).
struct remembered_pair {
    char first = 'P', second = 'T';
    variable a = solve::P, b = solve::T;
};

remembered_pair last_pair;

// The variable of an input letter, or -1.
int letter_of(std::string_view letter) {
    const std::string_view l = letter.size() == 1 ? letter : strip(letter);
    if (l.size() != 1) return -1;
    switch (l[0]) {
    case 'P':
    case 'p':
        return solve::P;
    case 'T':
    case 't':
        return solve::T;
    case 'v':
        return solve::v;
    case 'h':
        return solve::h;
    case 's':
        return solve::s;
    case 'u':
        return solve::u;
    case 'x':
        return solve::x;
    default:
        return -1;
    }
}

// A failure: its text, and every output back to -8888.8.
[[gnu::cold, gnu::noinline]] void fail(std::string_view text, std::span<double> output,
                                       std::string& errormsg) {
    errormsg = std::string(error_prefix);
    errormsg += text;
    std::fill(output.begin(), output.end(), not_set);
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

namespace {

// The rarer paths of if97_main, out of line, so that the common one stays short: a caller who
// repeats its letters and output list with new values pays for neither being read again.

[[gnu::cold, gnu::noinline]] void reset_message(std::string& errormsg) {
    errormsg.assign("No errors");
}

// The variables of letters other than the last ones; false on failure (the text is written).
[[gnu::noinline]] bool read_letters(std::string_view letter1, std::string_view letter2, variable& a,
                                    variable& b, std::span<double> output, std::string& errormsg) {
    const int l1 = letter_of(letter1), l2 = letter_of(letter2);
    if (l1 < 0 || l2 < 0)
        return fail("unknown input letter '" + std::string(strip(l1 < 0 ? letter1 : letter2)) +
                        "' (known: P, T, v, h, s, u, x)",
                    output, errormsg),
               false;
    a = variable(l1), b = variable(l2);
    if (!solve::supported(a, b))
        return fail("input pair '" + std::string(strip(letter1)) + std::string(strip(letter2)) +
                        "' not supported (pairs: PT, Ph, Ps, Pv, Pu, Px, Tv, Ts, Tx, vh, vs, "
                        "vu, vx, hs, in either order)",
                    output, errormsg),
               false;
    if (letter1.size() == 1 && letter2.size() == 1) last_pair = {letter1[0], letter2[0], a, b};
    return true;
}

// The codes of an output list not remembered, parsed and remembered; nullptr on failure (the
// text is written, the outputs are -8888.8).
[[gnu::noinline]] const code_list* read_list(std::string_view outlist, std::span<double> output,
                                             std::string& errormsg) {
    code_list parsed;
    if (!parse_codes(outlist, parsed, errormsg)) {
        // (nothing of a list that failed half-way stays)
        std::fill(output.begin(), output.end(), not_set);
        return nullptr;
    }
    static code_list unremembered; // a list too long to remember, for this call only
    if (outlist.empty() || outlist.size() > lists[0].text.size()) {
        unremembered = parsed;
        return &unremembered;
    }
    remembered_list& m = lists[next_free];
    last_used = next_free;
    next_free = (next_free + 1) % remembered_lists;
    std::memcpy(m.text.data(), outlist.data(), outlist.size());
    m.size = outlist.size();
    m.list = parsed;
    return &m.list;
}

// The failure of a call whose outputs do not fit or whose values are not finite numbers.
[[gnu::cold, gnu::noinline]] void refuse(const code_list& list, std::string_view letter1,
                                         double value1, std::string_view letter2,
                                         std::span<double> output, std::string& errormsg) {
    if (list.count > static_cast<int>(output.size()))
        return fail("output list asks for " + std::to_string(list.count) +
                        " values, the output array holds " + std::to_string(output.size()),
                    output, errormsg);
    fail("input value of " + std::string(strip(std::isfinite(value1) ? letter2 : letter1)) +
             " is not a finite number",
         output, errormsg);
}

// The state of (a, b) up to the list's level, from memory when it is the last one, and the
// outputs.
void answer(const code_list& list, variable a, double value_a, variable b, double value_b,
            std::span<double> output, std::string& errormsg) {
    const bool known = cache.valid && cache.a == a && cache.b == b && cache.value_a == value_a &&
                       cache.value_b == value_b;
    // A (P, T) state asked for more than it holds is evaluated anew rather than raised (a region-3
    // state would be raised from its rounded volume): its values never depend on what was asked
    // before. A new (P, T) evaluation costs what raising it would.
    const bool pt_anew = known && cache.st.level < list.level && a == solve::P && b == solve::T;
    if (!known || cache.st.level == properties::bare || pt_anew) { // solve (a bare point again)
        if (!known || list.level > properties::bare) {
            cache.valid = false;
            solve::state_of(cache.st, a, to_release(a, value_a), b, to_release(b, value_b),
                            list.level, errormsg);
            if (cache.st.region == properties::none) {
                std::fill(output.begin(), output.end(), not_set);
                return;
            }
            cache.a = a, cache.b = b;
            cache.value_a = value_a, cache.value_b = value_b;
            cache.quality = cache.viscosity = cache.conductivity = not_set;
            cache.valid = true;
        }
    } else if (cache.st.level < list.level) {
        cache.st = properties::raise(cache.st, list.level);
    }
    for (int k = 0; k < list.count; ++k) output[k] = output_value(list.id[k], cache);
}

} // namespace

namespace {

// A bare point of the saturation line, Ts(p) from (P, x) or ps(T) from (T, x) with the list "T."
// or "P.": answered at the cost of the equation, before anything else is looked at. The value is
// the one the general path gives; the remembered state is forgotten, as that path would replace
// it. false when the question is not of this kind or its values are outside the line.
[[gnu::always_inline]] inline bool saturation_point(std::string_view letter1, double value1,
                                                    std::string_view letter2, double value2,
                                                    std::string_view outlist,
                                                    std::span<double> output) {
    if (letter1.size() != 1 || letter2.size() != 1 || letter2[0] != 'x' || outlist.size() != 2 ||
        outlist[1] != '.' || output.empty() || !(value2 >= 0.0 && value2 <= 1.0))
        return false;
    const char in = letter1[0], out = outlist[0];
    if ((in == 'P' || in == 'p') && (out == 'T' || out == 't')) {
        const double p = to_release(solve::P, value1);
        // (the lowest saturation pressure, 611.213 Pa, is checked by the general path)
        if (!(p <= forward::pc && p >= 0.000612)) return false;
        output[0] = forward::tsat(p) - 273.15;
    } else if ((in == 'T' || in == 't') && (out == 'P' || out == 'p')) {
        const double T = to_release(solve::T, value1);
        if (!(T >= properties::T_min && T < forward::Tc)) return false;
        output[0] = forward::psat(T) * 10.0;
    } else {
        return false;
    }
    cache.valid = false;
    return true;
}

// Every question but the bare saturation points.
[[gnu::noinline]] void general_question(std::string_view letter1, double value1,
                                        std::string_view letter2, double value2,
                                        std::string_view outlist, std::span<double> output,
                                        std::string& errormsg) {
    variable a = last_pair.a, b = last_pair.b;
    const bool same_letters = letter1.size() == 1 && letter2.size() == 1 &&
                              letter1[0] == last_pair.first && letter2[0] == last_pair.second;
    if (!same_letters && !read_letters(letter1, letter2, a, b, output, errormsg)) return;
    const code_list* list = remembered(outlist);
    if (list == nullptr && (list = read_list(outlist, output, errormsg)) == nullptr) return;
    if (list->count > static_cast<int>(output.size()) || !std::isfinite(value1) ||
        !std::isfinite(value2))
        return refuse(*list, letter1, value1, letter2, output, errormsg);
    if (a > b) std::swap(a, b), std::swap(value1, value2);
    answer(*list, a, value1, b, value2, output, errormsg);
}

} // namespace

void if97_main(std::string_view letter1, double value1, std::string_view letter2, double value2,
               std::string_view outlist, std::span<double> output, std::string& errormsg) {
    if (std::string_view(errormsg) != std::string_view("No errors")) reset_message(errormsg);
    if (saturation_point(letter1, value1, letter2, value2, outlist, output)) return;
    general_question(letter1, value1, letter2, value2, outlist, output, errormsg);
}

void if97_sub() {}

// The version of the build, set once in the top-level CMakeLists.txt.
void getversion(std::array<int, 4>& version) {
    version = {ZP_VERSION_MAJOR, ZP_VERSION_MINOR, ZP_VERSION_PATCH, 0};
}

void uninit_if97() {
    cache = last_state{};
    for (remembered_list& m : lists) m.size = 0;
    last_used = next_free = 0;
}

} // namespace if97
