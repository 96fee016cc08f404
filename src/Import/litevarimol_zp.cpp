#include "Import/litevarimol_zp.hpp"

namespace litevarimol_zp {
namespace {
constexpr std::string_view model = "liteVarimol";
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
                                                                  .psat_k1 = true});

} // namespace litevarimol_zp
