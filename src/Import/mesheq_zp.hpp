#pragma once
// Adapter of the Mesheq back-end. The back-end library is not shipped yet: every operation answers
// "Error in Mesheq: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

#include <string>
#include <string_view>

namespace mesheq_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// builds or loads the look-up table `tablename` and makes it the current one
void mesheq_settable(std::string_view tablename, std::string_view tabletype,
                     std::string_view interpolmethod, std::string_view meshname,
                     std::string_view searchalg, int phase, std::string& errormsg);
// builds a new look-up table over the input ranges with the given mesh spacing
void mesheq_settable_new(std::string_view tablename, std::string_view inputspec, double input1_min,
                         double input1_max, double input2_min, double input2_max,
                         double meshspacing, std::string_view tabletype,
                         std::string_view intpolmethod, std::string_view searchalg,
                         std::string& errormsg);
// makes the loaded table `tablename` the current one
void mesheq_usetable(std::string_view tablename, std::string& errormsg);
// everything known about the current table
void mesheq_alltableinfo(std::string& sublibrary, std::string& fluid, std::string& table_type,
                         std::string& intpol_method, std::string& search_alg,
                         std::string& table_props, double& x_min, double& x_max, double& y_min,
                         double& y_max, double& mesh_space, int& nzones, std::string& errormsg);

} // namespace mesheq_zp
