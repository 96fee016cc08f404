#include "Import/adapter.hpp"

namespace zp_adapter {

void not_installed(std::string_view model, std::string& errormsg) {
    errormsg.assign("Error in ").append(model).append(": back-end library not installed.");
}

} // namespace zp_adapter
