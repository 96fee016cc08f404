#include "Import/critova_zp.hpp"

namespace critova_zp {
using backend = zp_adapter::absent<"Critova">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations = backend::row(fluid);

} // namespace critova_zp
