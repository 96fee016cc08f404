#pragma once
// Adapter of the TPSI back-end. The back-end library is not shipped yet: every operation answers
// "Error in TPSI: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

namespace tpsi_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

} // namespace tpsi_zp
