#pragma once
// Adapter of the Varimol back-end, the cubic equation of state for pure fluids and mixtures of up
// to 20 components. It keeps its own copy of the selection, loads the fluid parameters (fluid
// database or fluid file), turns the input specification into the back-end's calculation mode and
// converts between the library's internal units (°C, bar, m³/kg, kJ/kg, kJ/(kg K)) and the
// back-end's molar SI units (K, Pa, m³/mol, J/mol, J/(mol K)).
#include "Import/adapter.hpp"

#include <array>
#include <string>
#include <string_view>

namespace varimol_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// proves the back-end is linked
void varimol_zp_sub();
// the back-end's version numbers
void varimol_getversion(zp_adapter::version_numbers& version);
// true when comp[0], the count and every concentration equal the stored selection (the later
// names are not compared: the first name names the whole fluid)
bool varimol_issamefluid(int ncomp, std::span<const std::string> comp,
                         std::span<const double> conc);
// loads and configures the fluid: one name (a fluid or a predefined mixture), or the pure fluids
// of a mixture with their mole fractions
void varimol_setfluid(int ncomp, std::span<const std::string> comp, std::span<const double> conc,
                      std::string& errormsg);
// the stored selection; with ncomp = -1 on entry a predefined mixture is resolved into its pure
// fluids
void varimol_getfluid(int& ncomp, zp_adapter::component_names& comp, zp_adapter::composition& conc);
// "M_mol" (kg/mol), "T_crit", "T_min", "T_max" (°C), "P_crit" (bar)
double varimol_getinfo(std::string_view property, std::string& errormsg);
// the fluids this model can load by name
void varimol_getcompset(int& ncomps, std::vector<std::string>& compset, std::string& errormsg);
// the full state in internal units; x, y, lnphi per component of the fluid
void varimol_allprops(std::string_view inputspec, double value1, double value2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      zp_adapter::composition& x, zp_adapter::composition& y,
                      zp_adapter::composition& lnphi, double& cv, double& dpdt, double& dpdv,
                      double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt, double& eta,
                      double& lambda, std::string& errormsg);
// one property: "P", "T", "v", "d", "h", "s", "u", "q", "cv", "dP_dT", "dP_dv", "d2P_dT2",
// "d2P_dv2", "d2P_dTdv", "dCv_dT"
double varimol_prop(std::string_view inputspec, double value1, double value2,
                    std::string_view outputspec, std::string& errormsg);
// single-phase state from v (m³/kg) and u (kJ/kg)
void varimol_zflow_vu(double& p, double& t, double v_in, double& h, double& s, double u_in,
                      double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                      double& d2pdtdv, double& dcvdt, std::string& errormsg);
// liquid and vapour compositions and ln(fugacity coefficient) at a state; `dim` values written
void varimol_liquidcmp(std::string_view inputspec, double value1, double value2,
                       zp_adapter::composition& output, int& dim, std::string& errormsg);
void varimol_vaporcmp(std::string_view inputspec, double value1, double value2,
                      zp_adapter::composition& output, int& dim, std::string& errormsg);
void varimol_fugacoef(std::string_view inputspec, double value1, double value2,
                      zp_adapter::composition& output, int& dim, std::string& errormsg);
// the phase envelope of the selected mixture as the back-end traces it: t in K and p in Pa (no
// unit conversion), x and y the liquid and vapour compositions; npnts the points written (at
// most the room of the spans)
void varimol_phaseenvelope(int& npnts, std::span<double> t, std::span<double> p,
                           std::span<zp_adapter::composition> x,
                           std::span<zp_adapter::composition> y, std::string& errormsg);
// saturation pressure psat (bar) at t (°C) of the selected pure fluid under PRSV with kappa1 = k1
void varimol_psat_k1(double k1, double t, double& psat, std::string& errormsg);
// binary phase compositions for the NRTL parameters aij, aji, alfa (Wong-Sandler mixing) at
// pressure p (bar) and temperature t (°C)
void varimol_xy_a_alfa(double aij, double aji, double alfa, double p, double t,
                       std::array<double, 2>& x, std::array<double, 2>& y, std::string& errormsg);

// the molar unit conversions, in place, with the molar mass mmol (kg/mol)
void varimol_inputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                            double& s);
void varimol_outputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                             double& s, double& cv, double& dpdv, double& d2pdv2, double& d2pdtdv,
                             double& dcvdt);

} // namespace varimol_zp
