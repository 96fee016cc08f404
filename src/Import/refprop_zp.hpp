#pragma once
// Adapter of the RefProp back-end. The back-end library is not shipped yet: every operation answers
// "Error in RefProp: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

#include <string>

namespace refprop_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// viscosity and thermal conductivity with their derivatives by temperature and by density, at
// temperature t (°C) and density d (kg/m³)
void refprop_alltransprops(double t, double d, double& eta, double& eta_t, double& eta_d,
                           double& lambda, double& lambda_t, double& lambda_d,
                           std::string& errormsg);

} // namespace refprop_zp
