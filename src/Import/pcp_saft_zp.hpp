#pragma once
// Adapter of the PCP-SAFT back-end. The back-end library is not shipped yet: every operation
// answers "Error in PCP-SAFT: back-end library not installed." and leaves its outputs as they were.
#include "Import/adapter.hpp"

#include <array>
#include <string>
#include <string_view>

namespace pcp_saft_zp {

// the adapter's row of the dispatch table
extern const zp_adapter::operations operations;

// the state in every phase present at (value1, value2)
void pcp_saft_allpropsallphases(std::string_view inputspec, double value1, double value2,
                                zp_adapter::phase_values& p, zp_adapter::phase_values& t,
                                zp_adapter::phase_values& v, zp_adapter::phase_values& d,
                                zp_adapter::phase_values& h, zp_adapter::phase_values& s,
                                zp_adapter::phase_values& u, double& q, zp_adapter::composition& x,
                                zp_adapter::composition& y, zp_adapter::phase_values& cv,
                                zp_adapter::phase_values& dpdt, zp_adapter::phase_values& dpdv,
                                zp_adapter::phase_values& d2pdt2, zp_adapter::phase_values& d2pdv2,
                                zp_adapter::phase_values& d2pdtdv, zp_adapter::phase_values& dcvdt,
                                double& eta, double& lambda, std::string& errormsg);
// the state with the saturated liquid and vapour at its pressure
void pcp_saft_allpropssatext(std::string_view inputspec, double value1, double value2, double& p,
                             double& t, double& v, double& d, double& h, double& s, double& u,
                             double& q, zp_adapter::composition& x, zp_adapter::composition& y,
                             double& v_liq, double& d_liq, double& h_liq, double& s_liq,
                             double& u_liq, double& v_vap, double& d_vap, double& h_vap,
                             double& s_vap, double& u_vap, std::string& errormsg);
// the derivative bundle of process simulators
void pcp_saft_capeopenderiv(std::string_view inputspec, double value1, double value2, double& v,
                            double& h, double& s, double& g, zp_adapter::composition& lnphi,
                            std::string& errormsg);
// binary phase compositions for the interaction parameter kij at p (bar) and t (°C)
void pcp_saft_xy_kij(double kij, double p, double t, std::array<double, 2>& x,
                     std::array<double, 2>& y, std::string& errormsg);
// residual enthalpy and entropy and the phase compositions for a molecular parameter; takes the
// temperature (°C) before the pressure (bar)
void pcp_saft_hsxy_mp(double t, double p, double molpar, double& h_r, double& s_r,
                      zp_adapter::composition& x, zp_adapter::composition& y,
                      std::string& errormsg);

} // namespace pcp_saft_zp
