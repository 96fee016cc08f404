#include "Import/aerolt_zp.hpp"

namespace aerolt_zp {
namespace {
constexpr std::string_view model = "Aerolt";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row({.setfluid = true,
                                                                  .getfluid = true,
                                                                  .getcompset = true,
                                                                  .getinfo = true,
                                                                  .prop = true,
                                                                  .allprops = true,
                                                                  .liquidcmp = true,
                                                                  .vaporcmp = true});

} // namespace aerolt_zp
