#pragma once
// The C++ programming interface of Zentropia. Each module's procedures live in the namespace of
// the module and are declared in its own header; this header gathers those headers, so that a
// program includes one file and the declarations exist once:
//   zentropia_base      selection of model, components and composition, dispatch, fluid lists
//   zentropia_main      the property interface: calcprop, the allprops family, one entry point
//                       per property, solve, isoline, saturation_line
//   zentropia_units     unit sets and their conversion pairs
//   zentropia_refstate  reference state for reduced values
// Compile with both include/ and src/ on the include path and link libzentropia.
#include "base/zentropia_base.hpp"
#include "main/curves.hpp"
#include "main/zentropia_main.hpp"
#include "refstate/zentropia_refstate.hpp"
#include "units/zentropia_units.hpp"
