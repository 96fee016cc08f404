#include "Import/tpsi_zp.hpp"

namespace tpsi_zp {
using backend = zp_adapter::absent<"TPSI">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations = backend::row(fluid | getcompset);

} // namespace tpsi_zp
