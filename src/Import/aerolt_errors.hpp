#pragma once
// The messages of the Aerolt back-end's error codes.
#include "Import/errortext.hpp"

#include <cstddef>
#include <string>
#include <string_view>

namespace aerolt_zp {

// errormsg = the whole message of back-end code errorid, its "Error in Aerolt" prefix included,
// cut to `length` characters; two messages quote the failing call's input and output
// specifications
void aerolt_errorstring(int errorid, std::string_view inputspec, std::string_view outputspec,
                        std::string& errormsg, std::size_t length = zp_errortext::whole);

} // namespace aerolt_zp
