#pragma once
// Adapter of the Aerolt back-end. The back-end library is not shipped yet: every operation answers
// "Error in Aerolt: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

namespace aerolt_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

} // namespace aerolt_zp
