#include "derivative/zentropia_solver.hpp"

#include "base/common.hpp"
#include "derivative/zentropia_derivative.hpp"
#include "derivative/zfunctions.hpp"
#include "main/zentropia_thermo.hpp"
#include "transport/zentropia_transport.hpp"

#include <array>
#include <cmath>
#include <cstdio>

namespace zentropia_solver {

namespace {

struct solvable_property {
    std::string_view name;
    std::string_view symbol; // empty: the property has no symbol of its own
    zfunctions::property_function function;
};

// The properties a search can target, tried in this order; the first match wins.
constexpr std::array<solvable_property, 23> solvable_properties{{
    {"pressure", "p", zentropia_thermo::zp_pressure},
    {"temperature", "t", zentropia_thermo::zp_temperature},
    {"specvolume", "v", zentropia_thermo::zp_specvolume},
    {"density", "d", zentropia_thermo::zp_density},
    {"enthalpy", "h", zentropia_thermo::zp_enthalpy},
    {"entropy", "s", zentropia_thermo::zp_entropy},
    {"intenergy", "u", zentropia_thermo::zp_intenergy},
    {"vaporqual", "q", zentropia_thermo::zp_vaporqual},
    {"heatcapv", "cv", zentropia_derivative::zp_heatcapv},
    {"heatcapp", "cp", zentropia_derivative::zp_heatcapp},
    {"soundspeed", "c", zentropia_derivative::zp_soundspeed},
    {"alpha", "", zentropia_derivative::zp_alpha},
    {"beta", "", zentropia_derivative::zp_beta},
    {"chi", "", zentropia_derivative::zp_chi},
    {"fi", "", zentropia_derivative::zp_fi},
    {"psi", "", zentropia_derivative::zp_psi},
    {"ksi", "", zentropia_derivative::zp_ksi},
    {"zeta", "", zentropia_derivative::zp_zeta},
    {"kappa", "", zentropia_derivative::zp_kappa},
    {"theta", "", zentropia_derivative::zp_theta},
    {"gamma", "", zentropia_derivative::zp_gamma},
    {"viscosity", "eta", zentropia_transport::zp_viscosity},
    {"thermcond", "lambda", zentropia_transport::zp_thermcond},
}};

// Property names are compared as lower-case texts of at most 32 characters.
constexpr std::size_t keyword_length = 32;

zfunctions::property_function find_property(std::string_view key) {
    for (const auto& row : solvable_properties)
        if (key == row.name || (!row.symbol.empty() && key == row.symbol)) return row.function;
    return nullptr;
}

} // namespace

double zp_solve(std::string_view funcspec, double funcval, std::string_view inputspec, int targt,
                double fixedval, double minval, double maxval, std::string& errormsg) {
    const std::string key =
        zp_common::lower(zp_common::trim(zp_common::fit(funcspec, keyword_length)));
    const auto function = find_property(key);
    if (function == nullptr) {
        errormsg = std::string(zp_common::error_prefix) + "unknown function " +
                   std::string(zp_common::trim(zp_common::fit(funcspec, keyword_length)));
        return 0.0;
    }
    if (!std::isfinite(funcval) || !std::isfinite(fixedval) || !std::isfinite(minval) ||
        !std::isfinite(maxval)) {
        std::array<char, 160> values{};
        std::snprintf(values.data(), values.size(), "target %g, fixed input %g, bounds %g and %g",
                      funcval, fixedval, minval, maxval);
        errormsg =
            std::string(zp_common::error_prefix) + "solve needs finite values: " + values.data();
        return 0.0;
    }
    return zfunctions::zsolve(function, funcval, inputspec, fixedval, targt, minval, maxval,
                              errormsg);
}

} // namespace zentropia_solver
