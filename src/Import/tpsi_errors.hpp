#pragma once
// The messages of the TPSI back-end's error codes (the adapter puts "Error in TPSI. " before them).
#include "Import/errortext.hpp"

#include <cstddef>
#include <string>

namespace tpsi_zp {

// errstr = the message of back-end code ierr, cut to `length` characters; "Unknown error." for a
// code without a message
void tpsi_errorstring(int ierr, std::string& errstr, std::size_t length = zp_errortext::whole);

} // namespace tpsi_zp
