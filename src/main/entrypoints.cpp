// One entry point per property: input conversion, one internal evaluation, output conversion.
#include "base/zentropia_base.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "main/main_internal.hpp"
#include "main/zentropia_main.hpp"
#include "main/zentropia_thermo.hpp"
#include "transport/zentropia_transport.hpp"

namespace zentropia_main {
namespace {

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
    zentropia_base::allthermophys(inputspec, zp_input1, zp_input2, r.p, r.t, r.v, r.d, r.h, r.s,
                                  r.u, r.q, x, y, r.cv, r.dpdt, r.dpdv, r.d2pdt2, r.d2pdv2,
                                  r.d2pdtdv, r.dcvdt, r.eta, r.lambda, r.sigma, errormsg);
    if (marker == phase_marker::liquid) cnc = x;
    if (marker == phase_marker::vapour) cnc = y;
    return r;
}

// Entry points without a phase rule: convert, evaluate, convert back (symbol empty: the value is
// dimensionless and returned as computed).
double simple(std::string_view inputspec, double input1, double input2, internal_property get,
              std::string_view symbol, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    const double value = get(inputspec, zp_input1, zp_input2, errormsg);
    if (symbol.empty()) return value;
    double output;
    outputconversion(symbol, value, output);
    return output;
}

// Entry points with the phase-marker rule: a marked state is evaluated in full and its value taken
// from that evaluation, converted with the molar mass of the marked phase.
double with_phase_rule(std::string_view inputspec, double input1, double input2,
                       internal_property get, double state_record::*field, std::string_view symbol,
                       composition& cnc, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    const phase_marker marker = marker_of(inputspec);
    const double value =
        marker == phase_marker::none
            ? get(inputspec, zp_input1, zp_input2, errormsg)
            : evaluate_marked(inputspec, zp_input1, zp_input2, marker, cnc, errormsg).*field;
    double output;
    outputconversion_cnc(inputspec, cnc, symbol, value, output);
    return output;
}

// g = h - T s or f = u - T s from one full evaluation (t in °C internally).
double free_energy(std::string_view inputspec, double input1, double input2,
                   double state_record::*energy, composition& cnc, std::string& errormsg) {
    double zp_input1, zp_input2;
    inputconversion(inputspec, input1, input2, zp_input1, zp_input2);
    const state_record r =
        evaluate_marked(inputspec, zp_input1, zp_input2, marker_of(inputspec), cnc, errormsg);
    const double value = is_ok(errormsg) ? r.*energy - (r.t + 273.15) * r.s : not_set;
    double output;
    outputconversion_cnc(inputspec, cnc, "u", value, output);
    return output;
}

double constant(double (*get)(std::string&), std::string_view symbol, std::string& errormsg) {
    double output;
    outputconversion(symbol, get(errormsg), output);
    return output;
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
    return simple(inputspec, input1, input2, zentropia_thermo::zp_pressure, "P", errormsg);
}
double temperature(std::string_view inputspec, double input1, double input2,
                   std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_thermo::zp_temperature, "T", errormsg);
}
double specvolume(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_specvolume,
                           &state_record::v, "v", cnc, errormsg);
}
double density(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_density,
                           &state_record::d, "d", cnc, errormsg);
}
double enthalpy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_enthalpy,
                           &state_record::h, "h", cnc, errormsg);
}
double entropy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_entropy,
                           &state_record::s, "s", cnc, errormsg);
}
double intenergy(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    static composition cnc{};
    return with_phase_rule(inputspec, input1, input2, zentropia_thermo::zp_intenergy,
                           &state_record::u, "u", cnc, errormsg);
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
                           &state_record::cv, "cv", cnc, errormsg);
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
    double output;
    outputconversion_cnc(inputspec, cnc, "cp", value, output);
    return output;
}
double soundspeed(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_soundspeed, "c", errormsg);
}
double alpha(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_alpha, "alpha", errormsg);
}
double beta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_beta, "beta", errormsg);
}
double chi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_chi, "chi", errormsg);
}
double fi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_fi, "fi", errormsg);
}
double ksi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_ksi, "ksi", errormsg);
}
double psi(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_psi, "psi", errormsg);
}
double zeta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_zeta, "zeta", errormsg);
}
double theta(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_theta, "theta", errormsg);
}
double kappa(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_kappa, "kappa", errormsg);
}
double gamma(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_derivative::zp_gamma, "", errormsg);
}
double vaporqual(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_thermo::zp_vaporqual, "", errormsg);
}
double viscosity(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_viscosity, "eta", errormsg);
}
double thermcond(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_thermcond, "lambda", errormsg);
}
double surftens(std::string_view inputspec, double input1, double input2, std::string& errormsg) {
    return simple(inputspec, input1, input2, zentropia_transport::zp_surftens, "sigma", errormsg);
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
    return constant(zentropia_base::zp_mmol, "Mmol", errormsg);
}
double tcrit(std::string& errormsg) {
    return constant(zentropia_base::zp_tcrit, "T", errormsg);
}
double pcrit(std::string& errormsg) {
    return constant(zentropia_base::zp_pcrit, "P", errormsg);
}
double tmin(std::string& errormsg) {
    return constant(zentropia_base::zp_tmin, "T", errormsg);
}
double tmax(std::string& errormsg) {
    return constant(zentropia_base::zp_tmax, "T", errormsg);
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
