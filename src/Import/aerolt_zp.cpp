#include "Import/aerolt_zp.hpp"

namespace aerolt_zp {
using backend = zp_adapter::absent<"Aerolt">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations =
    backend::row(fluid | getcompset | phase_compositions);

} // namespace aerolt_zp
