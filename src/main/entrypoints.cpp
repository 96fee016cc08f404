// One entry point per property: input conversion, one internal evaluation, output conversion.
#include "base/zentropia_base.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "main/main_internal.hpp"
#include "main/zentropia_main.hpp"
#include "main/zentropia_thermo.hpp"
#include "transport/zentropia_transport.hpp"
#include "units/zentropia_units.hpp"

#include <optional>

namespace zentropia_main {
namespace {

using zentropia_units::unit_row;
using zp_common::is_ok;
using zp_common::not_set;

using internal_property = double (*)(std::string_view, double, double, std::string&);

enum class phase_marker { none, liquid, vapour };

// Characters 4 to 6 of the input specification, compared exactly.
phase_marker marker_of(std::string_view inputspec) {
    const std::string_view marker = inputspec.size() > 3 ? inputspec.substr(3, 3) : "";
    return marker == "liq"   ? phase_marker::liquid
           : marker == "vap" ? phase_marker::vapour
                             : phase_marker::none;
}

// One full evaluation of the state (internal inputs); the composition of the marked phase is
// copied into the entry point's own cnc.
state_record evaluate_marked(std::string_view inputspec, double zp_input1, double zp_input2,
                             phase_marker marker, composition& cnc, std::string& errormsg) {
    state_record r;
    composition x{}, y{};
    evaluate_record(zentropia_base::allthermophys, inputspec, zp_input1, zp_input2, r, x, y,
                    errormsg);
    if (marker == phase_marker::liquid) cnc = x;
    if (marker == phase_marker::vapour) cnc = y;
    return r;
}

// Entry points without a phase rule: convert, evaluate, convert back (no row: the value is
// dimensionless and returned as computed).
double simple(std::string_view inputspec, double input1, double input2, internal_property get,
              std::optional<unit_row> row, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    double value = get(inputspec, zp_input1, zp_input2, errormsg);
    if (row) to_caller(zentropia_units::convfact(), *row, value);
    return value;
}

// Entry points with the phase-marker rule: a marked state is evaluated in full and its value taken
// from that evaluation, converted with the molar mass of the marked phase.
double with_phase_rule(std::string_view inputspec, double input1, double input2,
                       internal_property get, double state_record::*field, unit_row row,
                       composition& cnc, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    const phase_marker marker = marker_of(inputspec);
    const double value =
        marker == phase_marker::none
            ? get(inputspec, zp_input1, zp_input2, errormsg)
            : evaluate_marked(inputspec, zp_input1, zp_input2, marker, cnc, errormsg).*field;
    return output_in_phase_units(inputspec, cnc, row, value);
}

// g = h - T s or f = u - T s from one full evaluation (t in °C internally).
double free_energy(std::string_view inputspec, double input1, double input2,
                   double state_record::*energy, composition& cnc, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    const state_record r =
        evaluate_marked(inputspec, zp_input1, zp_input2, marker_of(inputspec), cnc, errormsg);
    const double value = is_ok(errormsg) ? r.*energy - (r.t + 273.15) * r.s : not_set;
    return output_in_phase_units(inputspec, cnc, unit_row::u, value);
}

double constant(double (*get)(std::string&), unit_row row, std::string& errormsg) {
    double value = get(errormsg);
    to_caller(zentropia_units::convfact(), row, value);
    return value;
}

void phase_vector(std::string_view inputspec, double input1, double input2,
                  void (*get)(std::string_view, double, double, composition&, std::string&),
                  composition& output, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    get(inputspec, zp_input1, zp_input2, output, errormsg);
}

} // namespace

double pressure(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_thermo::zp_pressure, unit_row::P, errormsg);
}
double temperature(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_thermo::zp_temperature, unit_row::T,
                  errormsg);
}
double specvolume(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_specvolume,
                           &state_record::v, unit_row::v, cnc, errormsg);
}
double density(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_density,
                           &state_record::d, unit_row::d, cnc, errormsg);
}
double enthalpy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_enthalpy,
                           &state_record::h, unit_row::h, cnc, errormsg);
}
double entropy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_entropy,
                           &state_record::s, unit_row::s, cnc, errormsg);
}
double intenergy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_intenergy,
                           &state_record::u, unit_row::u, cnc, errormsg);
}
double gibbsenergy(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    static composition cnc{};
    return free_energy(inputspec, input1, input2, &state_record::h, cnc, errormsg);
}
double helmholtzenergy(std::string_view inputspec, double input1, double input2,
                       std::string& errormsg) {
    static composition cnc{};
    return free_energy(inputspec, input1, input2, &state_record::u, cnc, errormsg);
}
double heatcapv(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_derivative::zp_heatcapv,
                           &state_record::cv, unit_row::cv, cnc, errormsg);
}
double heatcapp(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    // With a phase marker the full evaluation only supplies the phase's composition.
    const phase_marker marker = marker_of(inputspec);
    if (marker != phase_marker::none)
        evaluate_marked(inputspec, zp_input1, zp_input2, marker, cnc, errormsg);
    const double value =
        zentropia_derivative::zp_heatcapp(inputspec, zp_input1, zp_input2, errormsg);
    return output_in_phase_units(inputspec, cnc, unit_row::cp, value);
}
double soundspeed(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_soundspeed, unit_row::c,
                  errormsg);
}
double alpha(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_alpha, unit_row::alpha,
                  errormsg);
}
double beta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_beta, unit_row::beta,
                  errormsg);
}
double chi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_chi, unit_row::chi, errormsg);
}
double fi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_fi, unit_row::fi, errormsg);
}
double ksi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_ksi, unit_row::ksi, errormsg);
}
double psi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_psi, unit_row::psi, errormsg);
}
double zeta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_zeta, unit_row::zeta,
                  errormsg);
}
double theta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_theta, unit_row::theta,
                  errormsg);
}
double kappa(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_kappa, unit_row::kappa,
                  errormsg);
}
double gamma(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_gamma, std::nullopt,
                  errormsg);
}
double vaporqual(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_thermo::zp_vaporqual, std::nullopt,
                  errormsg);
}
double viscosity(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_viscosity, unit_row::eta,
                  errormsg);
}
double thermcond(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_thermcond, unit_row::lambda,
                  errormsg);
}
double surftens(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_surftens, unit_row::sigma,
                  errormsg);
}

void liquidcmp(std::string_view inputspec, double input1, double input2, composition& output,
               std::string& errormsg) {
    phase_vector(inputspec, input1, input2, zentropia_thermo::zp_liquidcmp, output, errormsg);
}
void vaporcmp(std::string_view inputspec, double input1, double input2, composition& output,
              std::string& errormsg) {
    phase_vector(inputspec, input1, input2, zentropia_thermo::zp_vaporcmp, output, errormsg);
}
void fugacoef(std::string_view inputspec, double input1, double input2, composition& output,
              std::string& errormsg) {
    phase_vector(inputspec, input1, input2, zentropia_thermo::zp_fugacoef, output, errormsg);
}

double mmol(std::string& errormsg) {
    return constant(zentropia_base::zp_mmol, unit_row::Mmol, errormsg);
}
double tcrit(std::string& errormsg) {
    return constant(zentropia_base::zp_tcrit, unit_row::T, errormsg);
}
double pcrit(std::string& errormsg) {
    return constant(zentropia_base::zp_pcrit, unit_row::P, errormsg);
}
double tmin(std::string& errormsg) {
    return constant(zentropia_base::zp_tmin, unit_row::T, errormsg);
}
double tmax(std::string& errormsg) {
    return constant(zentropia_base::zp_tmax, unit_row::T, errormsg);
}

void allinfo(double& m_mol, double& t_crit, double& p_crit, double& t_min, double& t_max,
             std::string& errormsg) {
    m_mol = mmol(errormsg);
    t_crit = tcrit(errormsg);
    p_crit = pcrit(errormsg);
    t_min = tmin(errormsg);
    t_max = tmax(errormsg);
}

} // namespace zentropia_main
