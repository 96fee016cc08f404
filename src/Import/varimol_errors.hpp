#pragma once
// The messages of the Varimol back-end's error codes.
#include "Import/errortext.hpp"

#include <cstddef>
#include <string>

namespace varimol_zp {

// errstr = the message of back-end code ierr, cut to `length` characters; a code without a
// message gives "Unknown error. Code =" and the code
void varimol_errorstring(int ierr, std::string& errstr, std::size_t length = zp_errortext::whole);

} // namespace varimol_zp
