#include "refstate/zentropia_refstate.hpp"

#include "base/common.hpp"
#include "main/zentropia_thermo.hpp"
#include "refstate/dimnondim.hpp"
#include "units/zentropia_units.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace zentropia_refstate {
namespace {

using zentropia_units::unit_row;

double t_r = 0.0;
double p_r = 0.0;
double v_r = 0.0;
bool refstate_status = false;

// Reference quantities: pressure (Pa), specific volume (m3/kg), temperature (K) and a unit mass.
constexpr std::array<std::string_view, 4> reference_vars = {"P", "v", "T", "M"};
constexpr double reference_mass = 1.0;

// The scales of the dimensional analysis, in SI units.
struct scales {
    double M, L, t, T, w, e, R, P, d, v, h, s;
};

scales current_scales() {
    const auto s = [](std::string_view symbol) { return dimnondim::scaling_value(symbol); };
    return {s("M"), s("L"), s("t"), s("T"), s("w"), s("e"),
            s("R"), s("P"), s("d"), s("v"), s("h"), s("s")};
}

// Scale of each reduced property, by its unit row and by the symbol dimnondimconvfact knows it as
// (the density derivatives of viscosity and conductivity are spelt "deta_dD" and "dlambda_dD"
// there). Surface tension and molar mass are not reduced.
struct reduced_property {
    unit_row row;
    std::string_view symbol;
    double (*scale)(const scales&);
};

constexpr reduced_property reduced_properties[] = {
    {unit_row::P, "P", [](const scales& s) { return s.P; }},
    {unit_row::T, "T", [](const scales& s) { return s.T; }},
    {unit_row::v, "v", [](const scales& s) { return s.v; }},
    {unit_row::d, "d", [](const scales& s) { return s.d; }},
    {unit_row::h, "h", [](const scales& s) { return s.h; }},
    {unit_row::s, "s", [](const scales& s) { return s.s; }},
    {unit_row::u, "u", [](const scales& s) { return s.e; }},
    {unit_row::cp, "cp", [](const scales& s) { return s.R; }},
    {unit_row::cv, "cv", [](const scales& s) { return s.R; }},
    {unit_row::c, "c", [](const scales& s) { return s.w; }},
    {unit_row::alpha, "alpha", [](const scales& s) { return s.e; }},
    {unit_row::beta, "beta", [](const scales& s) { return s.P / s.e; }},
    {unit_row::chi, "chi", [](const scales& s) { return s.s / s.d; }},
    {unit_row::fi, "fi", [](const scales& s) { return s.s / s.e; }},
    {unit_row::ksi, "ksi", [](const scales& s) { return s.d / s.h; }},
    {unit_row::psi, "psi", [](const scales& s) { return s.d / s.P; }},
    {unit_row::zeta, "zeta", [](const scales& s) { return s.T / s.v; }},
    {unit_row::theta, "theta", [](const scales& s) { return 1.0 / s.T; }},
    {unit_row::kappa, "kappa", [](const scales& s) { return 1.0 / s.P; }},
    {unit_row::eta, "eta", [](const scales& s) { return s.P * s.t; }},
    {unit_row::deta_dT, "deta_dT", [](const scales& s) { return s.P * s.t / s.T; }},
    {unit_row::deta_drho, "deta_dD", [](const scales& s) { return s.P * s.t / s.d; }},
    {unit_row::lambda, "lambda",
     [](const scales& s) { return s.M * s.L / s.T / (s.t * s.t * s.t); }},
    {unit_row::dlambda_dT, "dlambda_dT",
     [](const scales& s) { return s.M * s.L / (s.T * s.T) / (s.t * s.t * s.t); }},
    {unit_row::dlambda_dr, "dlambda_dD",
     [](const scales& s) { return s.L * s.L * s.L * s.L / s.T / (s.t * s.t * s.t); }},
};

// Conversion pair (factor, offset) of a symbol in the caller's current units.
std::array<double, 2> pair_of(std::string_view symbol) {
    std::array<double, 2> cf{};
    zentropia_units::getunitconvfact(symbol, cf);
    return cf;
}

// The caller's reference pressure in bar and temperature in °C. The reference pressure is taken as
// absolute: only the factor of its unit applies.
std::pair<double, double> internal_pt(double t_ref, double p_ref) {
    const auto cf_p = pair_of("P"), cf_t = pair_of("T");
    return {p_ref * cf_p[0], t_ref * cf_t[0] + cf_t[1]};
}

// Sets the reference at pressure p (bar), temperature t (°C) and specific volume v (m3/kg), the
// caller's t_ref and p_ref being stored as given.
void apply_reference(double t_ref, double p_ref, double p, double t, double v,
                     std::string& errormsg) {
    const std::array<double, 4> reference = {1.0e5 * p, v, t + 273.15, reference_mass};
    for (double value : reference) {
        if (!(std::isfinite(value) && value > 0.0)) {
            char text[160];
            std::snprintf(text, sizeof text,
                          "reference state needs a positive pressure, temperature and specific "
                          "volume: %g Pa, %g K, %g m3/kg",
                          reference[0], reference[2], reference[1]);
            errormsg = std::string(zp_common::error_prefix) + text;
            refstate_status = false;
            return;
        }
    }
    dimnondim::setup_reference(reference_vars, reference);

    // From here on a caller's value is a multiple of the scale of its SI unit.
    zentropia_units::setunits("SI", "PerMass", "", "", errormsg);
    if (!zp_common::is_ok(errormsg)) {
        refstate_status = false;
        return;
    }
    const scales s = current_scales();
    for (const auto& property : reduced_properties)
        zentropia_units::scale_factor(property.row, property.scale(s));

    t_r = t_ref;
    p_r = p_ref;
    v_r = v;
    refstate_status = true;
}

} // namespace

void setrefstate(double t_ref, double p_ref, std::string& errormsg) {
    const auto [p, t] = internal_pt(t_ref, p_ref);
    const double v = zentropia_thermo::zp_specvolume("PT", p, t, errormsg);
    if (!zp_common::is_ok(errormsg)) {
        refstate_status = false;
        return;
    }
    apply_reference(t_ref, p_ref, p, t, v, errormsg);
}

void setrefstate_nondim(double t_ref, double p_ref, double v_ref, std::string& errormsg) {
    const auto [p, t] = internal_pt(t_ref, p_ref);
    const double v = v_ref * pair_of("v")[0];
    // Deliberately no reset of errormsg: the caller's text must read "No errors" to go on.
    if (!zp_common::is_ok(errormsg)) {
        refstate_status = false;
        return;
    }
    apply_reference(t_ref, p_ref, p, t, v, errormsg);
}

void updaterefstate(std::string& errormsg) {
    if (refstate_status) setrefstate(t_r, p_r, errormsg);
}

void updaterefstate_nondim(std::string& errormsg) {
    if (refstate_status) setrefstate_nondim(t_r, p_r, v_r, errormsg);
}

void getrefstate(double& t_ref, double& p_ref, double& v_ref, std::string& errormsg) {
    t_ref = t_r;
    p_ref = p_r;
    v_ref = v_r;
    errormsg =
        refstate_status ? zp_common::no_errors : "Zentropia warning: reference state not set.";
}

bool isrefstateset() {
    return refstate_status;
}

void releaserefstate() {
    dimnondim::setup_reference(reference_vars, std::array<double, 4>{1.0, 1.0, 1.0, 1.0});
    refstate_status = false;
}

double dimnondimconvfact(std::string_view symbol) {
    if (!refstate_status) return 1.0;
    const std::string_view name = zp_common::trim(symbol);
    for (const auto& property : reduced_properties)
        if (property.symbol == name) return property.scale(current_scales());
    return dimnondim::scaling_value(name);
}

} // namespace zentropia_refstate
