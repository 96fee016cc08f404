#include "main/curves.hpp"

#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "derivative/zentropia_solver.hpp"
#include "main/zentropia_isoline.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"

#include <algorithm>
#include <array>

namespace zentropia_main {

namespace {

// Property keywords are compared as lower-case texts of at most 32 characters.
constexpr std::size_t keyword_length = 32;

struct unit_of_keyword {
    std::string_view keyword;
    std::string_view symbol;
};

// Unit symbols of the property keywords whose symbol differs from the lower-cased keyword;
// any other keyword is its own unit symbol.
constexpr std::array<unit_of_keyword, 15> keyword_units{{
    {"pressure", "P"},
    {"p", "P"},
    {"temperature", "T"},
    {"t", "T"},
    {"specvolume", "v"},
    {"density", "d"},
    {"enthalpy", "h"},
    {"entropy", "s"},
    {"intenergy", "u"},
    {"vaporqual", "q"},
    {"heatcapv", "cv"},
    {"heatcapp", "cp"},
    {"soundspeed", "c"},
    {"viscosity", "eta"},
    {"thermcond", "lambda"},
}};

std::string unit_symbol(std::string_view keyword) {
    std::string key = zp_common::lower(zp_common::trim(zp_common::fit(keyword, keyword_length)));
    for (const auto& row : keyword_units)
        if (key == row.keyword) return std::string(row.symbol);
    return key;
}

// (factor, offset) of a unit symbol: internal value = caller's value * factor + offset.
std::array<double, 2> conversion(std::string_view symbol) {
    std::array<double, 2> cf{1.0, 0.0};
    zentropia_units::getunitconvfact(symbol, cf);
    return cf;
}

double to_internal(double value, const std::array<double, 2>& cf) {
    return value * cf[0] + cf[1];
}

} // namespace

double solve(std::string_view funcspec, double funcval, std::string_view inputspec, int targt,
             double fixedval, double minval, double maxval, std::string& errormsg) {
    // The inputs' one-character unit symbols; none when targt names no input, and the solver
    // then reports the invalid order.
    const bool valid_target = (targt == 1 || targt == 2) && inputspec.size() >= 2;
    const std::string_view unknown_symbol =
        valid_target ? inputspec.substr(static_cast<std::size_t>(targt - 1), 1) : "";
    const std::string_view fixed_symbol =
        valid_target ? inputspec.substr(static_cast<std::size_t>(2 - targt), 1) : "";

    const auto cf_value = conversion(unit_symbol(funcspec));
    const auto cf_fixed = conversion(fixed_symbol);
    const auto cf_unknown = conversion(unknown_symbol);
    const double x = zentropia_solver::zp_solve(
        funcspec, to_internal(funcval, cf_value), inputspec, targt, to_internal(fixedval, cf_fixed),
        to_internal(minval, cf_unknown), to_internal(maxval, cf_unknown), errormsg);
    double result = x;
    outputconversion(unknown_symbol, x, result);
    return result;
}

void isoline(std::string_view propspec, double propval, std::string_view runspec,
             std::string_view calcspec, double minval, double maxval, int npnts,
             std::span<double> runval, std::span<double> calcval, std::string& errormsg) {
    const std::string_view prop = zp_common::trim(propspec);
    const std::string_view run = zp_common::trim(runspec);
    const auto cf_prop = conversion(prop);
    const auto cf_run = conversion(run);
    const int filled = zentropia_isoline::zp_isoline(
        prop, to_internal(propval, cf_prop), run, calcspec, to_internal(minval, cf_run),
        to_internal(maxval, cf_run), npnts, runval, calcval, errormsg);
    // Only what was filled goes back to the caller's units; a refused line leaves the arrays.
    const std::string calc_symbol = unit_symbol(calcspec);
    for (int i = 0; i < filled; ++i) {
        outputconversion(run, runval[i], runval[i]);
        outputconversion(calc_symbol, calcval[i], calcval[i]);
    }
}

void saturation_line(int& npnts, std::span<double> t, std::span<double> p,
                     std::span<zp_common::composition> x, std::span<zp_common::composition> y,
                     std::string& errormsg) {
    if (zp_common::trim(zentropia_base::selection().modelalias).empty()) {
        errormsg =
            std::string(zp_common::error_prefix) + "no model selected for the saturation line";
        return;
    }
    zentropia_base::zp_saturationline(npnts, t, p, x, y, errormsg);
    if (!zp_common::is_ok(errormsg)) return; // nothing was filled
    // Only pressure and temperature carry units; the compositions are mole fractions.
    const auto cf_p = conversion("P");
    const auto cf_t = conversion("T");
    for (double& value : p)
        if (cf_p[0] != 1.0) value /= cf_p[0];
    for (double& value : t) {
        if (cf_t[1] != 0.0) value -= cf_t[1];
        if (cf_t[0] != 1.0) value /= cf_t[0];
    }
}

} // namespace zentropia_main
