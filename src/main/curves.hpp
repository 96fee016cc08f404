#pragma once
// Inverse problems and curves in the caller's units: the unit conversion around the solver, the
// isolines and the saturation line of the selected fluid.
#include "base/common.hpp"

#include <span>
#include <string>
#include <string_view>

namespace zentropia_main {

// The value of input number targt (1 or 2) of inputspec, searched between minval and maxval,
// at which the property funcspec equals funcval with the other input fixed at fixedval; every
// value in the caller's units. On failure errormsg holds the text and the value is not meaningful.
double solve(std::string_view funcspec, double funcval, std::string_view inputspec, int targt,
             double fixedval, double minval, double maxval, std::string& errormsg);

// A line of constant propspec (a property symbol) at propval: runspec (a property symbol) is
// stepped from minval to maxval and calcspec (a property keyword) computed at each of the npnts
// points, including the points where the line crosses the saturation boundary.
void isoline(std::string_view propspec, double propval, std::string_view runspec,
             std::string_view calcspec, double minval, double maxval, int npnts,
             std::span<double> runval, std::span<double> calcval, std::string& errormsg);

// The saturation curve (phase envelope) of the selected fluid: npnts points of temperature t,
// pressure p and the liquid and vapour compositions x[i], y[i] (mole fractions), for the models
// whose back-end offers it; the other models answer that it is not available.
void saturation_line(int& npnts, std::span<double> t, std::span<double> p,
                     std::span<zp_common::composition> x, std::span<zp_common::composition> y,
                     std::string& errormsg);

} // namespace zentropia_main
