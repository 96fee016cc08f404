#pragma once
// Shared by the property interface's source files: the record of one evaluated state and the
// conversion of single values by their row of the current unit set.
#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "units/zentropia_units.hpp"

#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

namespace zentropia_main {

// Every internal result of one state: the back-end's values and the derived properties.
struct state_record : zp_adapter::state_values {
    double alpha = zp_common::not_set, beta = zp_common::not_set, chi = zp_common::not_set;
    double fi = zp_common::not_set, ksi = zp_common::not_set, psi = zp_common::not_set;
    double zeta = zp_common::not_set, theta = zp_common::not_set, kappa = zp_common::not_set;
    double gamma = zp_common::not_set;
};

// One evaluation of the state (internal inputs) by a dispatcher bundle (allthermophys or
// allthermophyssu2) into r; x and y receive the phase compositions.
using dispatcher = decltype(&zentropia_base::allthermophys);
inline void evaluate_record(dispatcher evaluate, std::string_view inputspec, double zp_input1,
                            double zp_input2, state_record& r, zp_common::composition& x,
                            zp_common::composition& y, std::string& errormsg) {
    evaluate(inputspec, zp_input1, zp_input2, r.p, r.t, r.v, r.d, r.h, r.s, r.u, r.q, x, y, r.cv,
             r.dpdt, r.dpdv, r.d2pdt2, r.d2pdv2, r.d2pdtdv, r.dcvdt, r.eta, r.lambda, r.sigma,
             errormsg);
}

// Evaluates the state (internal inputs) and completes its derivative properties, in internal
// units; x and y receive the phase compositions.
void evaluate_state(std::string_view inputspec, double zp_input1, double zp_input2, state_record& r,
                    zp_common::composition& x, zp_common::composition& y, std::string& errormsg);
// When the derivative properties of a part of a state are completed: always (the value asked for
// is one of them), never (the completion of the selected model cannot change the state's values
// nor fail), or when it could change the state's values or the error text (the outcome is then
// that of the whole state).
enum class completion_rule { always, never, if_it_changes_the_state };
// The derivative properties of an evaluated state by the rule `completion`, and the partial
// success of the RefProp back-end turned into the state it stands for.
void complete_state(std::string_view inputspec, double zp_input1, double zp_input2,
                    completion_rule completion, state_record& r, std::string& errormsg);
// The RefProp back-end's partial success: the state is valid, its derivatives are not.
inline bool is_refprop_partial(std::string_view errormsg) {
    return errormsg.starts_with("Error in RefProp: [CFD_PROP Error 101]");
}
// The same for the part `wanted` (zp_adapter::output flags) of the state. Inline: a single
// property's path is short, and most states need no completion.
inline void evaluate_state(std::string_view inputspec, double zp_input1, double zp_input2,
                           unsigned wanted, completion_rule completion, state_record& r,
                           zp_common::composition& x, zp_common::composition& y,
                           std::string& errormsg) {
    zentropia_base::allthermophys_part(inputspec, zp_input1, zp_input2, wanted, r, x, y, errormsg);
    if (completion != completion_rule::never || is_refprop_partial(errormsg)) [[unlikely]]
        complete_state(inputspec, zp_input1, zp_input2, completion, r, errormsg);
}

// A value of the phase marked in inputspec ("liq", "vap"), whose composition is cnc, in the
// caller's unit of one row: outputconversion_cnc by row.
double output_in_phase_units(std::string_view inputspec, const zp_common::composition& cnc,
                             zentropia_units::unit_row row, double zp_output);

using conversion_table = std::array<zentropia_units::conversion_pair, 27>;

// Internal value to the caller's unit by one row of the current unit set, whatever it holds.
inline double caller_value(const conversion_table& cf, zentropia_units::unit_row row,
                           double value) {
    const auto& pair = cf[static_cast<int>(row)];
    return (value - pair.offset) / pair.factor;
}
// The same in place; the not-computed sentinel stays as it is.
inline void to_caller(const conversion_table& cf, zentropia_units::unit_row row, double& value) {
    if (zp_common::isnotinit(value)) value = caller_value(cf, row, value);
}
// A value and the unit row it is converted by.
struct row_value {
    zentropia_units::unit_row row;
    double& value;
};
// Several values in place, each by its row.
inline void to_caller(const conversion_table& cf, std::initializer_list<row_value> values) {
    for (const row_value& v : values) to_caller(cf, v.row, v.value);
}
// The factor of one row.
inline double factor_of(const conversion_table& cf, zentropia_units::unit_row row) {
    return cf[static_cast<int>(row)].factor;
}

} // namespace zentropia_main
