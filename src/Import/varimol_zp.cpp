#include "Import/varimol_zp.hpp"

namespace varimol_zp {
using backend = zp_adapter::absent<"Varimol">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations = backend::row(
    fluid | getcompset | phase_compositions | fugacoef | zflow_vu | psat_k1 | phaseenvelope);

void varimol_xy_a_alfa(double, double, double, double, double, std::array<double, 2>&,
                       std::array<double, 2>&, std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace varimol_zp
