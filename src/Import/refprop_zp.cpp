#include "Import/refprop_zp.hpp"

namespace refprop_zp {
namespace {
constexpr std::string_view model = "RefProp";
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
                                                                  .zflow_vu = true});

void refprop_alltransprops(double, double, double&, double&, double&, double&, double&, double&,
                           std::string& errormsg) {
    backend::fail(errormsg);
}

} // namespace refprop_zp
