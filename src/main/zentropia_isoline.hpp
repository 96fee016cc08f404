#pragma once
// Lines of constant property in internal units, with the points where they cross the saturation
// boundary.
#include <span>
#include <string>
#include <string_view>

namespace zentropia_isoline {

// Steps the run variable runspec from minval to maxval while the property propspec is held at
// propval, and computes calcspec at each point; the points where the line meets the saturated
// liquid and vapour are inserted in order, each moved 1e-6 onto its own phase's side (for a run
// in "P" or "T"). Fills npnts entries of runval and calcval and returns how many it filled (0 on
// failure). If the back-end rejects the order propspec-runspec of the inputs, the opposite order
// is used.
int zp_isoline(std::string_view propspec, double propval, std::string_view runspec,
               std::string_view calcspec, double minval, double maxval, int npnts,
               std::span<double> runval, std::span<double> calcval, std::string& errormsg);

// Whether subrij (without trailing blanks) occurs in karrij.
bool is_substring(std::string_view subrij, std::string_view karrij);

} // namespace zentropia_isoline
