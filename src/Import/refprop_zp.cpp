#include "Import/refprop_zp.hpp"

namespace refprop_zp {
using backend = zp_adapter::absent<"RefProp">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations =
    backend::row(fluid | getcompset | phase_compositions | fugacoef | zflow_vu);

void refprop_alltransprops(double, double, double&, double&, double&, double&, double&, double&,
                           std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace refprop_zp
