#include "Import/critova_zp.hpp"

namespace critova_zp {
namespace {
constexpr std::string_view model = "Critova";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row(
    {.setfluid = true, .getfluid = true, .getinfo = true, .prop = true, .allprops = true});

} // namespace critova_zp
