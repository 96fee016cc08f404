#include "Import/varimol_zp.hpp"

namespace varimol_zp {
namespace {
constexpr std::string_view model = "Varimol";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row({.setfluid = true,
                                                                  .getfluid = true,
                                                                  .getcompset = true,
                                                                  .getinfo = true,
                                                                  .prop = true,
                                                                  .allprops = true,
                                                                  .liquidcmp = true,
                                                                  .vaporcmp = true,
                                                                  .fugacoef = true,
                                                                  .zflow_vu = true,
                                                                  .psat_k1 = true,
                                                                  .phaseenvelope = true});

void varimol_xy_a_alfa(double, double, double, double, double, std::array<double, 2>&,
                       std::array<double, 2>&, std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace varimol_zp
