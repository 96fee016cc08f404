#pragma once
// The messages of the liteVarimol back-end's error codes. Some messages quote a limit of the fluid
// selected at the moment of the lookup, which the back-end supplies through the limits hook.
#include "Import/errortext.hpp"

#include <cstddef>
#include <string>

namespace litevarimol_zp {

// The back-end's limits of the selected fluid, in the units the messages print.
struct limits_hook {
    void (*ptminmax)(double& tmin, double& tmax, double& pmax); // K, K, bar
    void (*critpoint)(double& tcrit, double& pcrit);            // K, bar
};
// installs the functions that answer the limits (the back-end's, or a test's); a null function
// leaves its limits unknown, printed as asterisks
void set_limits_hook(const limits_hook& hook);

// errstr = the message of back-end code ierr, cut to `length` characters; a code without a
// message gives "Unknown error. Code =" and the code
void litevarimol_errorstring(int ierr, std::string& errstr,
                             std::size_t length = zp_errortext::whole);

} // namespace litevarimol_zp
