#pragma once
// Single properties in internal units, one back-end question each, and the phase compositions.
//
// Every operation takes the input specification ("PT", "Ph", "Tq" ...) and two inputs in internal
// units (bar, °C, m³/kg, kg/m³, kJ/kg, kJ/(kg K)) and returns one value in internal units; the
// pressure derivatives are on a pascal basis (dP_dT Pa/K, dP_dv Pa kg/m³, d2P_dT2 Pa/K²,
// d2P_dv2 Pa (kg/m³)², d2P_dTdv Pa kg/(m³ K), dCv_dT J/(kg K²)). Failures are the dispatcher's or
// the adapter's texts, passed on unchanged.
#include "base/common.hpp"

#include <string>
#include <string_view>

namespace zentropia_thermo {

double zp_pressure(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_temperature(std::string_view inputspec, double input1, double input2,
                      std::string& errormsg);
double zp_specvolume(std::string_view inputspec, double input1, double input2,
                     std::string& errormsg);
double zp_density(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_enthalpy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_entropy(std::string_view inputspec, double input1, double input2, std::string& errormsg);
double zp_intenergy(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg);
// vapour quality (dimensionless)
double zp_vaporqual(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg);
// (∂P/∂v)_T in Pa kg/m³
double dp_dv(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// (∂P/∂T)_v in Pa/K
double dp_dt(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// (∂²P/∂v²)_T in Pa (kg/m³)²
double d2p_dv2(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// (∂²P/∂T²)_v in Pa/K²
double d2p_dt2(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// ∂²P/∂T∂v in Pa kg/(m³ K)
double d2p_dtdv(std::string_view inputspec, double input1, double input2, std::string& errormsg);
// (∂cv/∂T)_v in J/(kg K²)
double dcv_dt(std::string_view inputspec, double input1, double input2, std::string& errormsg);

// Liquid-phase composition (mole fractions) at the caller's component positions.
void zp_liquidcmp(std::string_view inputspec, double input1, double input2,
                  zp_common::composition& output, std::string& errormsg);
// Vapour-phase composition at the caller's component positions.
void zp_vaporcmp(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg);
// Fugacity coefficients at the caller's component positions.
void zp_fugacoef(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg);

// Asks the back-end, one question each, for those of the six pressure derivatives that a bundle
// evaluation of the same state left at the not-computed sentinel (back-ends whose bundle does not
// carry them). Stops at the first failure.
void complete_derivatives(std::string_view inputspec, double input1, double input2, double& dpdt,
                          double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                          double& dcvdt, std::string& errormsg);

} // namespace zentropia_thermo
