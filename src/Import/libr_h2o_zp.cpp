#include "Import/libr_h2o_zp.hpp"

namespace libr_h2o_zp {
namespace {
constexpr std::string_view model = "LiBr-H2O";
using backend = zp_adapter::absent<model>;
} // namespace

constinit const zp_adapter::operations operations = backend::row({});

} // namespace libr_h2o_zp
