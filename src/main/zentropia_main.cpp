// Conversions at the interface's edge, calcprop and its keyword table, the saturation bundle.
#include "main/zentropia_main.hpp"

#include "base/zentropia_base.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "main/main_internal.hpp"
#include "main/zentropia_thermo.hpp"
#include "units/zentropia_units.hpp"

#include <array>

namespace zentropia_main {
namespace {

using zentropia_units::unit_row;
using zp_common::is_ok;
using zp_common::not_set;

// Property symbols are texts of 10 characters: "dlambda_drho" is the symbol "dlambda_dr".
constexpr std::size_t symbol_length = 10;
// Property keywords are compared as texts of 32 characters.
constexpr std::size_t keyword_length = 32;

struct keyword {
    std::string_view long_form; // empty where the property has only the short form
    std::string_view short_form;
    double state_record::*value;
};

// Tried in this order; the first row whose long or short form matches answers.
constexpr std::array<keyword, 30> keywords{{
    {"pressure", "p", &state_record::p},
    {"temperature", "t", &state_record::t},
    {"specvolume", "v", &state_record::v},
    {"density", "d", &state_record::d},
    {"enthalpy", "h", &state_record::h},
    {"entropy", "s", &state_record::s},
    {"intenergy", "u", &state_record::u},
    {"vaporqual", "q", &state_record::q},
    {"heatcapv", "cv", &state_record::cv},
    {"heatcapp", "cp", &state_record::cp},
    {"soundspeed", "c", &state_record::c},
    {"", "alpha", &state_record::alpha},
    {"", "beta", &state_record::beta},
    {"", "chi", &state_record::chi},
    {"", "fi", &state_record::fi},
    {"", "ksi", &state_record::ksi},
    {"", "psi", &state_record::psi},
    {"", "zeta", &state_record::zeta},
    {"", "theta", &state_record::theta},
    {"", "kappa", &state_record::kappa},
    {"", "gamma", &state_record::gamma},
    {"viscosity", "eta", &state_record::eta},
    {"thermcond", "lambda", &state_record::lambda},
    {"surftens", "sigma", &state_record::sigma},
    {"", "dpdt", &state_record::dpdt},
    {"", "dpdv", &state_record::dpdv},
    {"", "d2pdt2", &state_record::d2pdt2},
    {"", "d2pdv2", &state_record::d2pdv2},
    {"", "d2pdtdv", &state_record::d2pdtdv},
    {"", "dcvdt", &state_record::dcvdt},
}};

// text equals the lower-case word when ASCII letters are lowered
bool equals_lowered(std::string_view text, std::string_view word) {
    if (text.size() != word.size() || word.empty()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != word[i]) return false;
    }
    return true;
}

const keyword* find_keyword(std::string_view propspec) {
    const std::string_view key = zp_common::trim(zp_common::fit(propspec, keyword_length));
    for (const keyword& k : keywords)
        if (equals_lowered(key, k.long_form) || equals_lowered(key, k.short_form)) return &k;
    return nullptr;
}

// The unit row of each one-character property symbol (the letters of an input specification),
// read once from the unit module's symbol table; -1 for a character that is no symbol.
const std::array<signed char, 128>& letter_rows() {
    static const std::array<signed char, 128> rows = [] {
        std::array<signed char, 128> r;
        r.fill(-1);
        for (int i = 0; i < 27; ++i) {
            const auto symbol = zp_common::trim(zentropia_units::symbolset(unit_row(i)));
            if (symbol.size() == 1 && static_cast<unsigned char>(symbol[0]) < 128)
                r[static_cast<unsigned char>(symbol[0])] = static_cast<signed char>(i);
        }
        return r;
    }();
    return rows;
}

// Caller's value of the input at position i of the input specification to internal units.
double input_to_internal(std::string_view inputspec, std::size_t i, double value) {
    const unsigned char letter = i < inputspec.size() ? inputspec[i] : ' ';
    const int row = letter < 128 ? letter_rows()[letter] : -1;
    if (row < 0) return value;
    const auto& cf = zentropia_units::convfact()[static_cast<std::size_t>(row)];
    return value * cf.factor + cf.offset;
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
    zp_input1 = input_to_internal(inputspec, 0, input1);
    zp_input2 = input_to_internal(inputspec, 1, input2);
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
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    state_record r;
    evaluate_state(inputspec, zp_input1, zp_input2, r, work_x, work_y, errormsg);
    alloutputconv(r.p, r.t, r.v, r.d, r.h, r.s, r.u, r.cv, r.cp, r.c, r.alpha, r.beta, r.chi, r.fi,
                  r.ksi, r.psi, r.zeta, r.theta, r.kappa, r.eta, r.lambda);
    to_caller(zentropia_units::convfact(), unit_row::sigma, r.sigma);
    if (!is_ok(errormsg)) return not_set;
    const keyword* k = find_keyword(propspec);
    if (k == nullptr) {
        errormsg = "Unknown property specified...";
        return not_set;
    }
    return r.*(k->value);
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
