#pragma once
// Reference state for reduced (dimensionless) values: while one is set, every value a caller passes
// or receives is a multiple of the reference scale of its dimension. Scales derive from the
// reference pressure, specific volume and temperature and a unit mass.
#include <string>
#include <string_view>

namespace zentropia_refstate {

// reference at temperature t_ref and pressure p_ref (caller's units); specific volume of the fluid
void setrefstate(double t_ref, double p_ref, std::string& errormsg);
// as setrefstate with the specific volume v_ref given (caller's units); acts only when errormsg
// reads "No errors" on entry
void setrefstate_nondim(double t_ref, double p_ref, double v_ref, std::string& errormsg);
// sets the stored reference again (e.g. after a new fluid), if one is set
void updaterefstate(std::string& errormsg);
// sets the stored reference with its stored specific volume again, if one is set
void updaterefstate_nondim(std::string& errormsg);
// the stored reference values; a warning text when none is set
void getrefstate(double& t_ref, double& p_ref, double& v_ref, std::string& errormsg);
// true while a reference state is in force
bool isrefstateset();
// all scales back to 1; the caller selects units again with setunits
void releaserefstate();
// scale of a property symbol in SI units; 1.0 while no reference state is set
double dimnondimconvfact(std::string_view symbol);

} // namespace zentropia_refstate
