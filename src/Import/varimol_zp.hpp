#pragma once
// Adapter of the Varimol back-end. The back-end library is not shipped yet: every operation answers
// "Error in Varimol: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

#include <array>
#include <string>

namespace varimol_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// binary phase compositions for the activity parameters aij, aji, alfa at pressure p (bar) and
// temperature t (°C)
void varimol_xy_a_alfa(double aij, double aji, double alfa, double p, double t,
                       std::array<double, 2>& x, std::array<double, 2>& y, std::string& errormsg);

} // namespace varimol_zp
