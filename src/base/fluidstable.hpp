#pragma once
// The fluid name table (fluids/FluidsTable.txt beside the library): for every known fluid its long
// name, short name and CAS number, and its name in each back-end. Translates the caller's
// component names into the selected back-end's names.
#include "base/zp_models.hpp"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fluidstable {

inline constexpr std::string_view file_name = "FluidsTable.txt";
inline constexpr std::size_t field_width = 32; // characters per column of the table
inline constexpr int max_rows = 1000;          // fluid lines read at most
inline constexpr int columns = 9;
// the name columns listed by getfluidnames
enum name_kind : int { long_name = 0, short_name = 1, cas_number = 2 };

// reads the table from the fluids directory beside the library
void readfluidstable(std::string& errormsg);
// reads the table from the file `filename` instead (tools and tests)
void readfluidstable_file(std::string_view filename, std::string& errormsg);
// rows read
int nfluids();
// cell of a row (0-based) and column (0-based), without trailing blanks
std::string_view cell(int row, int column);

// translates ncomp caller names into the names of `model`'s back-end
void zp_to_libname(zp_models::model_id model, int ncomp, std::span<const std::string> zp_comp,
                   std::span<std::string> lib_comp, std::string& errormsg);
// ASCII letters lowered, cut to 32 characters
std::string tolower(std::string_view string);

// the fluids of the table that the back-end of `model` offers (every fluid for a blank model),
// by long name, short name or CAS number
void getfluidnames(int longshortcas, std::string_view model, int& nfluid,
                   std::vector<std::string>& fluidset, std::string& errormsg);
// the component names the back-end of `model` offers
void getcompset(std::string_view model, int& ncomps, std::vector<std::string>& compset,
                std::string& errormsg);

} // namespace fluidstable
