// Conversions at the interface's edge, calcprop and its keyword table, the saturation bundle.
#include "main/zentropia_main.hpp"

#include "base/zentropia_base.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "main/main_internal.hpp"
#include "main/zentropia_thermo.hpp"
#include "units/zentropia_units.hpp"

#include <array>
#include <cstring>

namespace zentropia_main {
namespace {

using zentropia_units::unit_row;
using zp_common::is_ok;
using zp_common::not_set;

// Property symbols are texts of 10 characters: "dlambda_drho" is the symbol "dlambda_dr".
constexpr std::size_t symbol_length = 10;
// Property keywords are compared as texts of 32 characters.
constexpr std::size_t keyword_length = 32;

// How a keyword's value is found: the outputs of the state it needs, whether it is one of the
// derivative properties completed from the state, and the unit row it is converted by (none: the
// value is dimensionless or a pressure derivative, returned as computed).
enum class completed : bool { no, yes };
constexpr int no_row = -1;

struct keyword {
    std::string_view long_form; // empty where the property has only the short form
    std::string_view short_form;
    double state_record::*value;
    unsigned needs;
    completed derived;
    int row;
};

constexpr int row_of(unit_row row) {
    return static_cast<int>(row);
}

namespace out = zp_adapter::output;
using enum completed;
using enum unit_row;

// Tried in this order; the first row whose long or short form matches answers.
// clang-format off
constexpr std::array<keyword, 30> keywords{{
    {"pressure",    "p",       &state_record::p,       out::p,           no,  row_of(P)},
    {"temperature", "t",       &state_record::t,       out::t,           no,  row_of(T)},
    {"specvolume",  "v",       &state_record::v,       out::v,           no,  row_of(v)},
    {"density",     "d",       &state_record::d,       out::d,           no,  row_of(d)},
    {"enthalpy",    "h",       &state_record::h,       out::h,           no,  row_of(h)},
    {"entropy",     "s",       &state_record::s,       out::s,           no,  row_of(s)},
    {"intenergy",   "u",       &state_record::u,       out::u,           no,  row_of(u)},
    {"vaporqual",   "q",       &state_record::q,       out::q,           no,  no_row},
    {"heatcapv",    "cv",      &state_record::cv,      out::cv,          no,  row_of(cv)},
    {"heatcapp",    "cp",      &state_record::cp,      out::cp,          yes, row_of(cp)},
    {"soundspeed",  "c",       &state_record::c,       out::c,           yes, row_of(c)},
    {"",            "alpha",   &state_record::alpha,   0,                yes, row_of(alpha)},
    {"",            "beta",    &state_record::beta,    0,                yes, row_of(beta)},
    {"",            "chi",     &state_record::chi,     0,                yes, row_of(chi)},
    {"",            "fi",      &state_record::fi,      0,                yes, row_of(fi)},
    {"",            "ksi",     &state_record::ksi,     0,                yes, row_of(ksi)},
    {"",            "psi",     &state_record::psi,     0,                yes, row_of(psi)},
    {"",            "zeta",    &state_record::zeta,    0,                yes, row_of(zeta)},
    {"",            "theta",   &state_record::theta,   0,                yes, row_of(theta)},
    {"",            "kappa",   &state_record::kappa,   0,                yes, row_of(kappa)},
    {"",            "gamma",   &state_record::gamma,   0,                yes, no_row},
    {"viscosity",   "eta",     &state_record::eta,     out::eta,         no,  row_of(eta)},
    {"thermcond",   "lambda",  &state_record::lambda,  out::lambda,      no,  row_of(lambda)},
    {"surftens",    "sigma",   &state_record::sigma,   out::sigma,       no,  row_of(sigma)},
    {"",            "dpdt",    &state_record::dpdt,    out::derivatives, no,  no_row},
    {"",            "dpdv",    &state_record::dpdv,    out::derivatives, no,  no_row},
    {"",            "d2pdt2",  &state_record::d2pdt2,  out::derivatives, no,  no_row},
    {"",            "d2pdv2",  &state_record::d2pdv2,  out::derivatives, no,  no_row},
    {"",            "d2pdtdv", &state_record::d2pdtdv, out::derivatives, no,  no_row},
    {"",            "dcvdt",   &state_record::dcvdt,   out::derivatives, no,  no_row},
}};
// clang-format on

// What the derivative completion reads of a state.
constexpr unsigned completion_reads =
    out::p | out::t | out::v | out::d | out::q | out::cv | out::derivatives;

// The part of the state one keyword's value needs, and when the completion runs, for the way the
// selected model completes its states.
struct evaluation_plan {
    unsigned wanted;
    completion_rule completion;
};
evaluation_plan plan_of(const keyword& k) {
    using zentropia_derivative::completion;
    switch (zentropia_derivative::completion_of_selection()) {
    case completion::backend_cp_c:
        // cp and c are the back-end's own values of the state; the completion computes nothing
        // else, so the other derivative properties stay not computed.
        return {k.needs, completion_rule::never};
    case completion::formulas:
        if (k.derived == yes) return {completion_reads | k.needs, completion_rule::always};
        // A mixture's state is never changed by the completion (its two-phase states get no
        // derivatives), so neither its quality nor its phase compositions are needed; for one
        // component the quality tells whether the completion may be left out (single phase).
        if (zentropia_base::selected_mixture()) return {k.needs, completion_rule::never};
        return {k.needs | out::q, completion_rule::if_it_changes_the_state};
    default:
        return {out::all, completion_rule::always};
    }
}

// text equals the lower-case word when ASCII letters are lowered
bool equals_lowered(std::string_view text, std::string_view word) {
    if (text.size() != word.size() || word.empty()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != word[i]) return false;
    }
    return true;
}

[[gnu::noinline]] const keyword* find_keyword(std::string_view propspec) {
    const std::string_view key = zp_common::trim(zp_common::fit(propspec, keyword_length));
    for (const keyword& k : keywords)
        if (equals_lowered(key, k.long_form) || equals_lowered(key, k.short_form)) return &k;
    return nullptr;
}

// The keyword of the last call found in the table: callers ask one property again and again.
const keyword* remembered_keyword(std::string_view propspec) {
    static std::array<char, keyword_length> text{};
    static std::size_t size = 0;
    static const keyword* last = nullptr;
    if (last != nullptr && propspec.size() == size) {
        // keywords are a few characters long: compared here rather than by a library call
        std::size_t i = 0;
        while (i < size && propspec[i] == text[i]) ++i;
        if (i == size) return last;
    }
    const keyword* k = find_keyword(propspec);
    if (k != nullptr && propspec.size() <= text.size()) {
        std::memcpy(text.data(), propspec.data(), propspec.size());
        size = propspec.size(), last = k;
    }
    return k;
}

// The unit row of each one-character property symbol (the letters of an input specification),
// read once from the unit module's symbol table; -1 for a character that is no symbol.
[[gnu::noinline]] std::array<signed char, 128> read_letter_rows() {
    std::array<signed char, 128> r;
    r.fill(-1);
    for (int i = 0; i < 27; ++i) {
        const auto symbol = zp_common::trim(zentropia_units::symbolset(unit_row(i)));
        if (symbol.size() == 1 && static_cast<unsigned char>(symbol[0]) < 128)
            r[static_cast<unsigned char>(symbol[0])] = static_cast<signed char>(i);
    }
    return r;
}
inline const std::array<signed char, 128>& letter_rows() {
    static const std::array<signed char, 128> rows = read_letter_rows();
    return rows;
}

// Caller's value of the input at position i of the input specification to internal units.
double input_to_internal(std::string_view inputspec, std::size_t i, double value,
                         const std::array<signed char, 128>& rows, const conversion_table& cf) {
    const unsigned char letter = i < inputspec.size() ? inputspec[i] : ' ';
    const int row = letter < 128 ? rows[letter] : -1;
    if (row < 0) return value;
    const auto& pair = cf[static_cast<std::size_t>(row)];
    return value * pair.factor + pair.offset;
}

// Runs convert with the unit factors of the phase marked in inputspec ("liq" or "vap" at
// characters 4 to 6): per-mole units of one phase are based on that phase's molar mass. Without a
// molar mass for the phase the fluid's own factors stay.
template <typename Convert>
void in_phase_units(std::string_view inputspec, const composition& cnc, Convert convert) {
    const std::string_view marker = inputspec.size() > 3 ? inputspec.substr(3, 3) : "";
    if (marker != "liq" && marker != "vap") {
        convert();
        return;
    }
    std::string scratch;
    const double mmol = zentropia_base::zp_mmol_cnc(cnc, scratch);
    if (!is_ok(scratch)) {
        convert();
        return;
    }
    zentropia_units::setunits_phase(mmol, scratch);
    convert();
    zentropia_units::setunits_phase(zentropia_base::zp_mmol(scratch), scratch);
}

std::array<double, 2> conversion_pair_of(std::string_view symbol) {
    std::array<double, 2> cf{1.0, 0.0};
    zentropia_units::getunitconvfact(zp_common::fit(symbol, symbol_length), cf);
    return cf;
}

// Work arrays for the compositions calcprop does not return.
composition work_x{}, work_y{};

// One saturated phase at internal pressure p (bar): quality 0 or 1.
state_record saturated_at_pressure(double p, double quality, std::string& errormsg) {
    state_record st;
    composition x{}, y{};
    evaluate_record(zentropia_base::allthermophys, "Pq", p, quality, st, x, y, errormsg);
    // Back-ends whose bundle lacks the pressure derivatives are asked for them one at a time.
    if (is_ok(errormsg) && (zp_common::isinit(st.dpdt) || zp_common::isinit(st.dpdv)))
        zentropia_thermo::complete_derivatives("Pq", p, quality, st.dpdt, st.dpdv, st.d2pdt2,
                                               st.d2pdv2, st.d2pdtdv, st.dcvdt, errormsg);
    return st;
}

} // namespace

void inputconversion(std::string_view inputspec, double input1, double input2, double& zp_input1,
                     double& zp_input2) {
    const auto& rows = letter_rows();
    const auto& cf = zentropia_units::convfact();
    zp_input1 = input_to_internal(inputspec, 0, input1, rows, cf);
    zp_input2 = input_to_internal(inputspec, 1, input2, rows, cf);
}

void outputconversion(std::string_view outputspec, double zp_output, double& output) {
    if (zp_common::isinit(zp_output)) {
        output = zp_output;
        return;
    }
    const auto cf = conversion_pair_of(outputspec);
    output = (zp_output - cf[1]) / cf[0];
}

void outputconversion_cnc(std::string_view inputspec, const composition& cnc,
                          std::string_view outputspec, double zp_output, double& output) {
    in_phase_units(inputspec, cnc, [&] { outputconversion(outputspec, zp_output, output); });
}

double output_in_phase_units(std::string_view inputspec, const composition& cnc, unit_row row,
                             double zp_output) {
    double output = zp_output;
    in_phase_units(inputspec, cnc, [&] { to_caller(zentropia_units::convfact(), row, output); });
    return output;
}

double calcprop(std::string_view propspec, std::string_view inputspec, double input1, double input2,
                std::string& errormsg) {
    const auto& rows = letter_rows();
    const auto& cf = zentropia_units::convfact();
    const double zp_input1 = input_to_internal(inputspec, 0, input1, rows, cf);
    const double zp_input2 = input_to_internal(inputspec, 1, input2, rows, cf);
    // The state is evaluated first: an unknown keyword is reported only for a state that stands,
    // whose failures are then those of the whole state.
    const keyword* k = remembered_keyword(propspec);
    const evaluation_plan plan =
        k != nullptr ? plan_of(*k) : evaluation_plan{out::all, completion_rule::always};
    state_record r;
    evaluate_state(inputspec, zp_input1, zp_input2, plan.wanted, plan.completion, r, work_x, work_y,
                   errormsg);
    if (!is_ok(errormsg)) return not_set;
    if (k == nullptr) {
        errormsg = "Unknown property specified...";
        return not_set;
    }
    double value = r.*(k->value);
    if (k->row != no_row) to_caller(cf, unit_row(k->row), value);
    return value;
}

void modelica_p(double p, double& d_liq, double& d_vap, double& h_liq, double& h_vap, double& t_sat,
                double& dd_liq_dp, double& dd_vap_dp, double& dh_liq_dp, double& dh_vap_dp,
                double& dt_sat_dp, std::string& errormsg) {
    const auto& cf = zentropia_units::convfact();
    const auto& f_p = cf[static_cast<int>(unit_row::P)];
    const auto& f_t = cf[static_cast<int>(unit_row::T)];
    const auto& f_d = cf[static_cast<int>(unit_row::d)];
    const auto& f_h = cf[static_cast<int>(unit_row::h)];
    const double p_int = p * f_p.factor;
    // The critical pressure is compared as pcrit returns it, in the caller's unit.
    if (p_int >= pcrit(errormsg)) {
        d_liq = d_vap = h_liq = h_vap = t_sat = not_set;
        dd_liq_dp = dd_vap_dp = dh_liq_dp = dh_vap_dp = dt_sat_dp = not_set;
        return;
    }
    const state_record liq = saturated_at_pressure(p_int, 0.0, errormsg);
    const state_record vap = saturated_at_pressure(p_int, 1.0, errormsg);
    const double T = vap.t + 273.15;
    // SI inside: cp J/(kg K), slopes per Pa.
    const double cp_l = 1000.0 * liq.cv - liq.dpdt * liq.dpdt * T / liq.dpdv;
    const double cp_v = 1000.0 * vap.cv - vap.dpdt * vap.dpdt * T / vap.dpdv;
    const double slope = 1000.0 * zentropia_derivative::dpdt_sat(vap.v, liq.v, vap.s, liq.s);
    const double dvdp_l = zentropia_derivative::dvdp(liq.dpdt, liq.dpdv, slope);
    const double dvdp_v = zentropia_derivative::dvdp(vap.dpdt, vap.dpdv, slope);
    const double dhdp_l = T * liq.dpdt / liq.dpdv + liq.v + cp_l / slope;
    const double dhdp_v = T * vap.dpdt / vap.dpdv + vap.v + cp_v / slope;

    d_liq = liq.d / f_d.factor;
    d_vap = vap.d / f_d.factor;
    h_liq = liq.h / f_h.factor;
    h_vap = vap.h / f_h.factor;
    t_sat = (vap.t - f_t.offset) / f_t.factor;
    dd_liq_dp = (-100000.0 * dvdp_l / (liq.v * liq.v)) / f_d.factor * f_p.factor;
    dd_vap_dp = (-100000.0 * dvdp_v / (vap.v * vap.v)) / f_d.factor * f_p.factor;
    // 100 turns J/kg per Pa into kJ/kg per bar.
    dh_liq_dp = 100.0 * dhdp_l / f_h.factor * f_p.factor;
    dh_vap_dp = 100.0 * dhdp_v / f_h.factor * f_p.factor;
    dt_sat_dp = (100000.0 / slope) / f_t.factor * f_p.factor;
}

void modelica_p_mix(double /*p*/, double /*t*/, double& d_liq, double& d_vap, double& h_liq,
                    double& h_vap, double& t_sat, double& dd_liq_dp, double& dd_vap_dp,
                    double& dh_liq_dp, double& dh_vap_dp, double& dt_sat_dp,
                    std::string& errormsg) {
    d_liq = d_vap = h_liq = h_vap = t_sat = not_set;
    dd_liq_dp = dd_vap_dp = dh_liq_dp = dh_vap_dp = dt_sat_dp = not_set;
    errormsg = "Error in Zentropia: saturation properties of mixtures not available.";
}

} // namespace zentropia_main
