#pragma once
// Viscosity, thermal conductivity and surface tension: from the back-end or from the library's own
// corresponding-states model, chosen per selected model. Internal units throughout: inputs as the
// input specification says (bar, °C, m³/kg ...), viscosity Pa s, thermal conductivity W/(m K),
// surface tension N/m; eta_t Pa s/K, eta_rho Pa s m³/kg, lambda_t W/(m K²), lambda_rho
// W m²/(kg K).
#include <span>
#include <string>
#include <string_view>

namespace zentropia_transport {

// Loads the transport data of the components (caller's names, found through the fluid-name
// table in the fluid database) and mixes them for the own model (called by the fluid selection).
void transport_setfluid(int ncmp, std::span<const std::string> cmp, std::span<const double> cnc,
                        std::string& errormsg);
// The own model at temperature t (K) and specific volume v (m³/kg); conductivity or surface
// tension -8888.8 where a component lacks an ideal-gas heat capacity or a critical pressure, and
// surface tension -8888.8 at or above the (pseudo-)critical temperature.
void transport_calcprop(double t, double v, double& eta, double& eta_t, double& eta_rho,
                        double& lambda, double& lambda_t, double& lambda_rho, double& sigma,
                        std::string& errormsg);

// All transport properties of a state; the derivatives and sigma are -8888.8 where not available.
void zp_alltransprops(std::string_view inputspec, double input1, double input2, double& eta,
                      double& eta_t, double& eta_rho, double& lambda, double& lambda_t,
                      double& lambda_rho, double& sigma, std::string& errormsg);
// Dynamic viscosity in Pa s.
double zp_viscosity(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg);
// Thermal conductivity in W/(m K).
double zp_thermcond(std::string_view inputspec, double input1, double input2,
                    std::string& errormsg);
// Surface tension in N/m.
double zp_surftens(std::string_view inputspec, double input1, double input2, std::string& errormsg);

} // namespace zentropia_transport
