#pragma once
// The one process-wide selection (model, components, composition) and the dispatch of every
// evaluation to the adapter of the selected back-end. All values in internal units (°C, bar,
// m³/kg, kg/m³, kJ/kg, kJ/(kg K), Pa s, W/(m K), N/m, kg/mol; pressure derivatives per pascal).
// Every operation with errormsg leaves "No errors" or a failure text in it.
#include "base/common.hpp"
#include "base/fluidstable.hpp"
#include "base/zp_models.hpp"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace zentropia_base {

using zp_common::composition;
using component_names = std::array<std::string, zp_common::max_components>;
using zp_adapter::phase_values;

// A read-only view of the selection for the other layers.
struct selection_state {
    std::string modelname;  // canonical model name; "Msh_<model>" for a table model
    std::string sublibrary; // canonical model the caller named (after a "Msh_" prefix)
    std::string modelalias; // canonical name of the back-end that serves the selection
    int usr_ncmp;           // components the caller gave
    component_names usr_cmp;
    composition usr_cnc;
    int ncmps; // components handed to the back-end
    bool islut;
};

// the current selection
const selection_state& selection();
// the back-end serving the selection, resolved at selection time (none before any)
const zp_models::model& selected_alias();
// true when the selected fluid has two or more components, also where one name stands for a
// mixture (a predefined mixture or a fluid file)
bool selected_mixture();
// the model named by the selection's modelname (none for a table model)
const zp_models::model& selected_model();

// true when value still holds the not-computed sentinel -8888.8
inline bool isinit(double value) {
    return zp_common::isinit(value);
}
// true when value was computed
inline bool isnotinit(double value) {
    return zp_common::isnotinit(value);
}

// index of a model name among the first len_modelname characters of modelname (exact case), or -1
void zpgetindex(std::string_view modelname, int& index, int len_modelname);
// version numbers of a back-end; -9 when it reports none, -8 for an unknown name
void zpgetversion(std::string_view modelname, std::array<int, 4>& version);
// calls every back-end's un-initialise entry; the selection stays
void releaseobjects();

// selects model, components (1 to 20 names of at most 256 characters) and composition
void setfluid(std::string_view model, int in_ncmp, std::span<const std::string> in_cmp,
              std::span<const double> in_cnc, std::string& errormsg);
// the selection as the back-end holds it
void getfluid(std::string& model, int& ncomp, std::array<std::string, 20>& comp,
              zp_common::composition& conc);

// the full state at (input1, input2); usr_x, usr_y in the caller's component positions
void allthermophys(std::string_view inputspec, double input1, double input2, double& p, double& t,
                   double& v, double& d, double& h, double& s, double& u, double& q,
                   zp_common::composition& usr_x, zp_common::composition& usr_y, double& cv,
                   double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                   double& dcvdt, double& eta, double& lambda, double& sigma,
                   std::string& errormsg);
// allthermophys for the SU2 bundle
void allthermophyssu2(std::string_view inputspec, double input1, double input2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      zp_common::composition& usr_x, zp_common::composition& usr_y, double& cv,
                      double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                      double& dcvdt, double& eta, double& lambda, double& sigma,
                      std::string& errormsg);
// allthermophys for the part `wanted` (zp_adapter::output flags) of the state: an adapter that
// evaluates parts of states is asked for that part alone, any other for its whole state
void allthermophys_part(std::string_view inputspec, double input1, double input2, unsigned wanted,
                        zp_adapter::state_values& out, zp_common::composition& usr_x,
                        zp_common::composition& usr_y, std::string& errormsg);
// one property named by outputspec; 0.0 when no model is selected
double calculate(std::string_view inputspec, double input1, double input2,
                 std::string_view outputspec, std::string& errormsg);
// a fluid constant by keyword ("M_mol", "T_crit", "P_crit", "T_min", "T_max"); -8888.8 without
// a model
double getinfo(std::string_view property, std::string& errormsg);
double zp_mmol(std::string& errormsg);  // molar mass, kg/mol
double zp_tcrit(std::string& errormsg); // critical temperature, °C
double zp_pcrit(std::string& errormsg); // critical pressure, bar
double zp_tmin(std::string& errormsg);  // lowest temperature of the model, °C
double zp_tmax(std::string& errormsg);  // highest temperature of the model, °C
// molar mass of each caller component (0.0 for components not handed to the back-end)
void zp_mmolcomp(zp_common::composition& mmol, std::string& errormsg);
// molar mass of a mixture of the selected components with composition cnc (caller positions)
double zp_mmol_cnc(std::span<const double> cnc, std::string& errormsg);

// the state of given specific volume v and internal energy u (in); the rest out
void zflow_tmd_vu(double& p, double& t, double& v, double& h, double& s, double& u, double& cv,
                  double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                  double& dcvdt, std::string& errormsg);
// the state in every phase present (PCP-SAFT)
void zp_allpropsallphases(std::string_view inputspec, double input1, double input2, phase_values& p,
                          phase_values& t, phase_values& v, phase_values& d, phase_values& h,
                          phase_values& s, phase_values& u, double& q,
                          zp_common::composition& usr_x, zp_common::composition& usr_y,
                          phase_values& cv, phase_values& dpdt, phase_values& dpdv,
                          phase_values& d2pdt2, phase_values& d2pdv2, phase_values& d2pdtdv,
                          phase_values& dcvdt, double& eta, double& lambda, std::string& errormsg);
// the state with the saturated liquid and vapour at its pressure (PCP-SAFT)
void zp_allpropssatext(std::string_view inputspec, double input1, double input2, double& p,
                       double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                       zp_common::composition& usr_x, zp_common::composition& usr_y, double& v_liq,
                       double& d_liq, double& h_liq, double& s_liq, double& u_liq, double& v_vap,
                       double& d_vap, double& h_vap, double& s_vap, double& u_vap,
                       std::string& errormsg);
// viscosity and conductivity with their temperature and density derivatives (RefProp)
void alltransprops_zp(double t, double d, double& eta, double& eta_t, double& eta_d, double& lambda,
                      double& lambda_t, double& lambda_d, std::string& errormsg);
// the derivative bundle of process simulators (PCP-SAFT)
void capeopenderiv_zp(std::string_view inputspec, double input1, double input2, double& v,
                      double& h, double& s, double& g, zp_common::composition& lnphi,
                      std::string& errormsg);
// saturation pressure with binary parameter k1 at temperature t (the Varimol models)
void psat_k1(double k1, double t, double& psat, std::string& errormsg);
// binary phase compositions for activity parameters aij, aji, alfa at p, t (Varimol)
void xy_a_alfa(double aij, double aji, double alfa, double p, double t, std::array<double, 2>& x,
               std::array<double, 2>& y, std::string& errormsg);
// binary phase compositions for interaction parameter kij at p, t (PCP-SAFT)
void xy_kij(double kij, double p, double t, std::array<double, 2>& x, std::array<double, 2>& y,
            std::string& errormsg);
// residual enthalpy and entropy and phase compositions for a molecular parameter (PCP-SAFT)
void hsxy_mp(double p, double t, double molpar, double& h_r, double& s_r, zp_common::composition& x,
             zp_common::composition& y, std::string& errormsg);
// the phase envelope of the selection: npnts points (at most t.size()) of t, p and the liquid
// and vapour compositions x[i], y[i] in the back-end's units
void zp_saturationline(int& npnts, std::span<double> t, std::span<double> p,
                       std::span<zp_common::composition> x, std::span<zp_common::composition> y,
                       std::string& errormsg);
// the selected adapter's liquid and vapour compositions and fugacity coefficients, in the
// back-end's component positions
void liquidcmp_zp(std::string_view inputspec, double input1, double input2,
                  zp_common::composition& output, std::string& errormsg);
void vaporcmp_zp(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg);
void fugacoef_zp(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg);

// Look-up tables of the table models, forwarded to the Mesheq back-end.
void settable(std::string_view tablename, std::string_view tabletype,
              std::string_view interpolmethod, std::string_view meshname,
              std::string_view searchalg, int phase, std::string& errormsg);
void settable_new(std::string_view tablename, std::string_view inputspec, double input1_min,
                  double input1_max, double input2_min, double input2_max, double meshspacing,
                  std::string_view tabletype, std::string_view intpolmethod,
                  std::string_view searchalg, std::string& errormsg);
void usetable(std::string_view tablename, std::string& errormsg);
void alltableinfo(std::string& sublibrary, std::string& fluid, std::string& table_type,
                  std::string& intpol_method, std::string& search_alg, std::string& table_props,
                  double& x_min, double& x_max, double& y_min, double& y_max, double& mesh_space,
                  int& nzones, std::string& errormsg);

// The fluid lists of the fluid name table and of the back-ends.
using fluidstable::getcompset;
using fluidstable::getfluidnames;

} // namespace zentropia_base
