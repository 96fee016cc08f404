#pragma once
// Loading the fluid parameters of the cubic back-ends: a Varimol fluid text ("<name>.vmx", from
// the fluid database or a fluid file in the fluids directory) parsed into the back-end's arrays,
// and a mixture of named pure fluids assembled with the binary kij of the database. The line
// layout is written down in data/fluids/README.md.
#include "varimol/parameters.hpp"

#include <span>
#include <string>
#include <string_view>

namespace varimol_load {

// The fluid a back-end is configured with.
struct fluid_data {
    int model_code = 0;
    int n_comps = 0;
    varimol::fluid_parameters fluidparameters{};
    varimol::binary_parameters binaryparameters{};
};

// Fluid texts of 78 lines or fewer are not fluid texts.
inline constexpr int min_lines = 79;

// Parses the lines of a fluid text. Returns 0 on success, else the 1-based number of the first
// line that does not hold what the layout puts there.
int parse_fluid_text(std::span<const std::string> lines, fluid_data& fluid);

// Loads the fluid `name` from the fluids directory `fluidpath` (database first, then a plain
// file "<name>.vmx"). errormsg: "No errors", or the text of the failure written after `prefix`
// ("Error in Varimol: ").
void load_fluid(std::string_view fluidpath, std::string_view name, std::string_view prefix,
                fluid_data& fluid, std::string& errormsg);

// Assembles the mixture of the pure fluids `names` (each loaded as above) with the kij of the
// database's binary pairs; the mixing rule and equation of state are those of the first fluid.
void assemble_mixture(std::string_view fluidpath, std::span<const std::string> names,
                      std::string_view prefix, fluid_data& fluid, std::string& errormsg);

} // namespace varimol_load
