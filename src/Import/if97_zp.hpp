#pragma once
// Adapter of the IAPWS-IF97 back-end (water and steam). Internal units pass through unchanged:
// the back-end works in bar, °C, m³/kg and kJ/kg itself.
#include "Import/adapter.hpp"

#include <span>
#include <string>
#include <string_view>

namespace if97_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// proves the back-end is linked
void if97_zp_sub();
// the back-end's version numbers
void if97_getversion(zp_adapter::version_numbers& version);
// always water: "H2O" then "?" in every further name, concentrations 1.0 then 0.0
void if97_getfluid(int& ncomp, zp_adapter::component_names& comp, zp_adapter::composition& conc);
// "M_mol" (kg/mol), "T_crit" (°C), "P_crit" (bar), "T_min" (°C), "T_max" (°C); 0.0 and an
// error text for any other keyword
double if97_getinfo(std::string_view property, std::string& errormsg);
// the full state; x[0] = 1 - q, y[0] = q, further entries -8888.8
void if97_allprops(std::string_view inputspec, double value1, double value2, double& p, double& t,
                   double& v, double& d, double& h, double& s, double& u, double& q,
                   zp_adapter::composition& x, zp_adapter::composition& y, double& cv, double& eta,
                   double& lambda, std::string& errormsg);
// one property named by outputspec
double if97_prop(std::string_view inputspec, double value1, double value2,
                 std::string_view outputspec, std::string& errormsg);
// One value per output code of `outputspec` into `output` (-8888.8 where the back-end wrote
// nothing). Input "d" is sent as "v" = 1/d, quality "q" as "x"; a lone "d", "q", "c", "eta",
// "lambda" or "sigma" names one property, any other text is a ready-made list of codes.
void if97_props(std::string_view inputspec, double value1, double value2,
                std::string_view outputspec, std::span<double> output, std::string& errormsg);
// releases what the back-end holds
void if97_uninit();

} // namespace if97_zp
