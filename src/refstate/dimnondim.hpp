#pragma once
// Scales of mass, length, time, temperature and derived quantities from four reference quantities,
// by dimensional analysis. Symbols (case-sensitive): "M" mass, "L" length, "t" time,
// "T" temperature, "w" velocity, "e" and "h" energy per mass, "s" and "R" entropy per mass,
// "P" pressure, "d" density, "v" specific volume. Failures go to the zenvir status record
// (module "adim") and never stop the caller.
#include <span>
#include <string_view>

namespace dimnondim {

// (re)writes the symbol table and the dimension exponents
void setup_table();
// derives every scale from four reference symbols with independent dimensions and their
// values in SI units (positive and finite); a failure keeps the previous scales
void setup_reference(std::span<const std::string_view, 4> ref_var,
                     std::span<const double, 4> ref_val);
// scale of var in SI units; 0.0 for an unknown symbol or before any reference
double scaling_value(std::string_view var);
// nondim_val times the scale of var
double dim_value(std::string_view var, double nondim_val);
// dim_val divided by the scale of var
double nondim_value(std::string_view var, double dim_val);

} // namespace dimnondim
