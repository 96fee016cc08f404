#pragma once
// Adapter of the LiBr-H2O back-end. The back-end library is not shipped yet: every operation
// answers "Error in LiBr-H2O: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

namespace libr_h2o_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

} // namespace libr_h2o_zp
