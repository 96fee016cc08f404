#include "Import/kelvora_zp.hpp"

namespace kelvora_zp {
using backend = zp_adapter::absent<"Kelvora">;
using namespace zp_adapter::offer;

constinit const zp_adapter::operations operations = backend::row(fluid);

} // namespace kelvora_zp
