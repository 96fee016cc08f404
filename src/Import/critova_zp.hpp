#pragma once
// Adapter of the Critova back-end. The back-end library is not shipped yet: every operation answers
// "Error in Critova: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

namespace critova_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

} // namespace critova_zp
