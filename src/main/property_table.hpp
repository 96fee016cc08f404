#pragma once
// The single-value outputs of allprops by name, for the programs of this tree that name
// properties (the command-line tool, the Python extension): keyword, meaning, unit symbol and the
// property's own entry point.
#include "base/common.hpp"
#include "main/zentropia_main.hpp"

#include <array>
#include <string>
#include <string_view>

namespace zentropia {

// One single-value output of zentropia_main::allprops, for programs that name properties.
struct property {
    std::string_view name;        // the short keyword of calcprop
    std::string_view keyword;     // the long keyword of calcprop ("" where there is none)
    std::string_view description; // for people
    std::string_view unit_symbol; // the unit symbol ("" for the dimensionless q and gamma)
    // The property's own entry point, where it answers as calcprop does; null for the derivative
    // properties alpha to gamma, which the entry points compute from single properties while
    // calcprop takes them from the model's full state.
    double (*entry)(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg);
};

// The outputs of allprops other than the compositions x and y, in its argument order.
inline constexpr std::array<property, 23> allprops_outputs{{
    {"p", "pressure", "pressure", "P", &zentropia_main::pressure},
    {"t", "temperature", "temperature", "T", &zentropia_main::temperature},
    {"v", "specvolume", "specific volume", "v", &zentropia_main::specvolume},
    {"d", "density", "density", "d", &zentropia_main::density},
    {"h", "enthalpy", "specific enthalpy", "h", &zentropia_main::enthalpy},
    {"s", "entropy", "specific entropy", "s", &zentropia_main::entropy},
    {"u", "intenergy", "specific internal energy", "u", &zentropia_main::intenergy},
    {"q", "vaporqual", "vapour quality", "", &zentropia_main::vaporqual},
    {"cv", "heatcapv", "isochoric heat capacity", "cv", &zentropia_main::heatcapv},
    {"cp", "heatcapp", "isobaric heat capacity", "cp", &zentropia_main::heatcapp},
    {"c", "soundspeed", "speed of sound", "c", &zentropia_main::soundspeed},
    {"alpha", "", "derivative alpha", "alpha", nullptr},
    {"beta", "", "derivative beta", "beta", nullptr},
    {"chi", "", "derivative chi", "chi", nullptr},
    {"fi", "", "derivative fi", "fi", nullptr},
    {"ksi", "", "derivative ksi", "ksi", nullptr},
    {"psi", "", "derivative psi", "psi", nullptr},
    {"zeta", "", "derivative zeta", "zeta", nullptr},
    {"theta", "", "isobaric expansion coefficient", "theta", nullptr},
    {"kappa", "", "isothermal compressibility", "kappa", nullptr},
    {"gamma", "", "fundamental derivative", "", nullptr},
    {"eta", "viscosity", "dynamic viscosity", "eta", &zentropia_main::viscosity},
    {"lambda", "thermcond", "thermal conductivity", "lambda", &zentropia_main::thermcond},
}};

// The position in allprops_outputs of a calcprop keyword (either form, any case), or -1.
inline int allprops_output_index(std::string_view keyword) {
    const std::string key = zp_common::lower(zp_common::strip(keyword));
    for (std::size_t i = 0; i < allprops_outputs.size(); ++i)
        if (key == allprops_outputs[i].name || key == allprops_outputs[i].keyword)
            return static_cast<int>(i);
    return -1;
}

} // namespace zentropia
