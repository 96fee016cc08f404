#include "Import/libr_h2o_zp.hpp"

namespace libr_h2o_zp {
using backend = zp_adapter::absent<"LiBr-H2O">;

constinit const zp_adapter::operations operations = backend::row(0);

} // namespace libr_h2o_zp
