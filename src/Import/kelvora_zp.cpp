#include "Import/kelvora_zp.hpp"

namespace kelvora_zp {
namespace {
constexpr std::string_view model = "Kelvora";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row(
    {.setfluid = true, .getfluid = true, .getinfo = true, .prop = true, .allprops = true});

} // namespace kelvora_zp
