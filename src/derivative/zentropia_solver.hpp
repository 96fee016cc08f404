#pragma once
// The inverse problem in internal units: which value of one input gives a property its target?
#include <string>
#include <string_view>

namespace zentropia_solver {

// The value of input number targt (1 or 2) of inputspec, searched in [minval, maxval], at which
// the property funcspec (long name or symbol, any case) equals funcval while the other input
// is held at fixedval. All values in internal units; 0.0 and a text in errormsg on failure.
double zp_solve(std::string_view funcspec, double funcval, std::string_view inputspec, int targt,
                double fixedval, double minval, double maxval, std::string& errormsg);

} // namespace zentropia_solver
