#include "Import/tpsi_zp.hpp"

namespace tpsi_zp {
namespace {
constexpr std::string_view model = "TPSI";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row({.setfluid = true,
                                                                  .getfluid = true,
                                                                  .getcompset = true,
                                                                  .getinfo = true,
                                                                  .prop = true,
                                                                  .allprops = true});

} // namespace tpsi_zp
