// The C API of the units (zentropia_units).
#include "capi/capi_support.hpp"
#include "units/unitparser.hpp"
#include "units/zentropia_units.hpp"
#include "zentropia/zentropia.h"

namespace zu = zentropia_units;
using namespace zp_capi;

ZP_C void zentropia_setunits(const char* unitset, const char* massormole, const char* propsymbol,
                             const char* propunit, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zu::setunits(text(unitset), text(massormole), text(propsymbol), text(propunit), e);
    });
}

ZP_C void zentropia_setunits_mmol(const char* unitset, const char* massormole,
                                  const char* propsymbol, const char* propunit, double mmol,
                                  char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        zu::setunits_mmol(text(unitset), text(massormole), text(propsymbol), text(propunit), mmol,
                          e);
    });
}

ZP_C void zentropia_setunits_phase(double mmol, char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) { zu::setunits_phase(mmol, e); });
}

ZP_C void zentropia_updateunits(char* errormsg, int errormsg_len) {
    guarded(errormsg, errormsg_len, [](std::string& e) { zu::updateunits(e); });
}

ZP_C void zentropia_getunits(char* unitset, int unitset_len, char* massormole, int massormole_len,
                             char* propsymbol, int propsymbol_len, char* propunit,
                             int propunit_len) {
    quiet([&] {
        zu::getunits(text_out(unitset, unitset_len), text_out(massormole, massormole_len),
                     text_out(propsymbol, propsymbol_len), text_out(propunit, propunit_len));
    });
}

ZP_C void zentropia_getunit(const char* symbol, char* unit, int unit_len, char* errormsg,
                            int errormsg_len) {
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        const auto result = zu::getunit(text(symbol), e);
        put_text(unit, unit_len, result);
    });
}

ZP_C void zentropia_getunitconvfact(const char* symbol, double* cf, int cf_len) {
    quiet([&] { zu::getunitconvfact(text(symbol), array_ref<double, 2>(cf, cf_len)); });
}

#define ZP_DEFINE_UNIT_DESCRIPTION(name)                                                           \
    ZP_C void zentropia_##name(const char* massormole, int* n_prop, int n_prop_len, char* prop,    \
                               int prop_count, int prop_width, double* power, int power_len,       \
                               char* unit, int unit_count, int unit_width) {                       \
        quiet([&] {                                                                                \
            zu::name(text(massormole), array_ref<int, zu::nsymbols>(n_prop, n_prop_len),           \
                     texts_out<zu::slot_texts>(prop, prop_count, prop_width),                      \
                     array_ref<double, zu::nslots>(power, power_len),                              \
                     texts_out<zu::slot_texts>(unit, unit_count, unit_width));                     \
        });                                                                                        \
    }
ZENTROPIA_UNIT_DESCRIPTIONS(ZP_DEFINE_UNIT_DESCRIPTION)

ZP_C int zentropia_isalfa(char c) {
    return quiet([&] { return unitparser::isalfa(c); });
}

ZP_C int zentropia_isdigit(char c) {
    return quiet([&] { return unitparser::isdigit(c); });
}

ZP_C int zentropia_isvalid(char c) {
    return quiet([&] { return unitparser::isvalid(c); });
}

ZP_C int zentropia_isdigitstr(const char* string) {
    return quiet([&] { return unitparser::isdigitstr(text(string)); });
}

ZP_C void zentropia_strtoarr(const char* string, char* array, int array_count, int array_width,
                             int* nelmts, char* errormsg, int errormsg_len) {
    using entries = std::array<std::string, unitparser::max_entries>;
    guarded(errormsg, errormsg_len, [&](std::string& e) {
        unitparser::strtoarr(text(string), texts_out<entries>(array, array_count, array_width),
                             out(nelmts), e);
    });
}

ZP_C void zentropia_strtoint(char* string, int string_len, int* number, char* msg, int msg_len) {
    quiet([&] {
        std::string consumed(get_text(string, string_len));
        unitparser::strtoint(consumed, out(number), text_out(msg, msg_len));
        put_text(string, string_len, consumed);
    });
}
