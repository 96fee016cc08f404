// The C API of the reference state (zentropia_refstate).
#include "capi/capi_support.hpp"
#include "refstate/zentropia_refstate.hpp"
#include "zentropia/zentropia.h"

namespace zr = zentropia_refstate;
using namespace zp_capi;

ZP_C void zentropia_setrefstate(double t_ref, double p_ref, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) { zr::setrefstate(t_ref, p_ref, e); });
}

ZP_C void zentropia_setrefstate_nondim(double t_ref, double p_ref, double v_ref, char* errormsg,
                                       int errormsg_len) {
    guarded_inout(errormsg, errormsg_len,
                  [&](std::string& e) { zr::setrefstate_nondim(t_ref, p_ref, v_ref, e); });
}

ZP_C void zentropia_updaterefstate(char* errormsg, int errormsg_len) {
    guarded_inout(errormsg, errormsg_len, [](std::string& e) { zr::updaterefstate(e); });
}

ZP_C void zentropia_updaterefstate_nondim(char* errormsg, int errormsg_len) {
    guarded_inout(errormsg, errormsg_len, [](std::string& e) { zr::updaterefstate_nondim(e); });
}

ZP_C void zentropia_getrefstate(double* t_ref, double* p_ref, double* v_ref, char* errormsg,
                                int errormsg_len) {
    guarded(errormsg, errormsg_len,
            [&](std::string& e) { zr::getrefstate(out(t_ref), out(p_ref), out(v_ref), e); });
}

ZP_C int zentropia_isrefstateset(void) {
    return quiet([] { return zr::isrefstateset(); });
}

ZP_C void zentropia_releaserefstate(void) {
    quiet([] { zr::releaserefstate(); });
}

ZP_C double zentropia_dimnondimconvfact(const char* symbol) {
    return quiet([&] { return zr::dimnondimconvfact(text(symbol)); });
}
