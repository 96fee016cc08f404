#pragma once
// The loops of the Fluid object: one procedure over NumPy arrays of states, in C++.
#include <pybind11/pybind11.h>

namespace zpy {

// _calcprop_array, _allprops_array and _allprops_columns of zentropia._core
void bind_arrays(pybind11::module_& m);

} // namespace zpy
