#pragma once
// Adapter of the liteVarimol back-end, the cubic equation of state of Varimol for mixtures of up
// to 10 components. It selects fluids as the Varimol adapter does (the same fluid texts and
// mixtures of named fluids), takes the same input specifications and converts the same molar
// units, with the molar mass the back-end reports. The back-end computes no fugacity coefficients,
// phase envelope or binary compositions for interaction parameters.
#include "Import/adapter.hpp"

#include <string>
#include <string_view>

namespace litevarimol_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// most components of a liteVarimol fluid
inline constexpr int max_components = 10;

// proves the back-end is linked
void litevarimol_zp_sub();
// the back-end's version numbers
void litevarimol_getversion(zp_adapter::version_numbers& version);
// true when comp[0], the count and every concentration equal the stored selection
bool litevarimol_issamefluid(int ncomp, std::span<const std::string> comp,
                             std::span<const double> conc);
// loads and configures the fluid (one name, or the pure fluids of a mixture with their mole
// fractions; at most 10); a mixture's critical point is computed at selection
void litevarimol_setfluid(int ncomp, std::span<const std::string> comp,
                          std::span<const double> conc, std::string& errormsg);
// the stored selection; with ncomp = -1 on entry a predefined mixture is resolved into its pure
// fluids
void litevarimol_getfluid(int& ncomp, zp_adapter::component_names& comp,
                          zp_adapter::composition& conc);
// "M_mol" (kg/mol), "T_crit", "T_min", "T_max" (°C), "P_crit" (bar)
double litevarimol_getinfo(std::string_view property, std::string& errormsg);
// the fluids this model can load by name
void litevarimol_getcompset(int& ncomps, std::vector<std::string>& compset, std::string& errormsg);
// the full state in internal units; x and y hold the first 10 components (the rest untouched)
void litevarimol_allprops(std::string_view inputspec, double value1, double value2, double& p,
                          double& t, double& v, double& d, double& h, double& s, double& u,
                          double& q, zp_adapter::composition& x, zp_adapter::composition& y,
                          double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                          double& d2pdtdv, double& dcvdt, double& eta, double& lambda,
                          std::string& errormsg);
// one property, by the names of the Varimol adapter
double litevarimol_prop(std::string_view inputspec, double value1, double value2,
                        std::string_view outputspec, std::string& errormsg);
// single-phase state from v (m³/kg) and u (kJ/kg)
void litevarimol_zflow_vu(double& p, double& t, double v_in, double& h, double& s, double u_in,
                          double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                          double& d2pdtdv, double& dcvdt, std::string& errormsg);
// liquid and vapour compositions at a state; `dim` values written
void litevarimol_liquidcmp(std::string_view inputspec, double value1, double value2,
                           zp_adapter::composition& output, int& dim, std::string& errormsg);
void litevarimol_vaporcmp(std::string_view inputspec, double value1, double value2,
                          zp_adapter::composition& output, int& dim, std::string& errormsg);
// the back-end has no saturation pressure for a given kappa1: psat = 0, "No errors"
void litevarimol_psat_k1(double k1, double t, double& psat, std::string& errormsg);

} // namespace litevarimol_zp
