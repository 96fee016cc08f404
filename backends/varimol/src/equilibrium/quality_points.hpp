#pragma once
// Points of given vapour fraction of a mixture (bubble and dew points included), bounded by the
// cricondenbar and cricondentherm of its envelope and started from it near the critical point.
#include "equilibrium/flash_tp.hpp"
#include "model/components.hpp"

namespace varimol {

// A mixture's point of vapour fraction q at given P (given_t false) or T: T and P in K and Pa,
// the split in fr. The envelope is traced once per fluid, at the first call. Returns 0, 3271
// (3276) for a pressure (temperature) beyond the line of q, or the iteration's code.
int mixture_quality_point(const fluid& f, bool given_t, double& T, double& P, double q,
                          flash_result& fr);

// Forgets the envelope traced for the fluid configured before.
void forget_traced_envelope();

} // namespace varimol
