#include "Import/litevarimol_zp.hpp"

namespace litevarimol_zp {
using backend = zp_adapter::absent<"liteVarimol">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations =
    backend::row(fluid | getcompset | phase_compositions | fugacoef | zflow_vu | psat_k1);

} // namespace litevarimol_zp
