#include "Import/varimol_zp.hpp"

#include "Import/cubic_adapter.hpp"
#include "Import/varimol_errors.hpp"
#include "Import/varimol_load.hpp"
#include "varimol/varimol.hpp"

#include <algorithm>

namespace varimol_zp {
namespace {

using zp_common::max_components;
using zp_common::no_errors;
using zp_common::not_set;
using zp_common::trim;

constexpr std::string_view model_prefix = "Error in Varimol: ";
constexpr std::string_view code_prefix = "Error in Varimol. ";
using cubic_adapter::max_listed;
using cubic_adapter::warning_code;

cubic_adapter::selection state;
// the pure fluids of the selection's one name, once getfluid has resolved them
cubic_adapter::resolved_mixture resolved;
cubic_adapter::state_memory memory;

using cubic_adapter::fluid_directory;

void put_code(int ierr, std::string& errormsg) {
    std::string text;
    varimol_errorstring(ierr, text);
    errormsg.assign(code_prefix).append(text);
}

// dim of the composition outputs: the number of components of the selection, or of the named
// fluid when one name was given
int composition_dim() {
    int dim = std::min(state.ncmp, max_components);
    if (state.ncmp == 1) {
        int n = -1;
        zp_adapter::component_names names;
        zp_adapter::composition conc;
        varimol_getfluid(n, names, conc);
        dim = std::clamp(n, 1, max_components);
    }
    return dim;
}

using cubic_adapter::phase_state;
void evaluate(std::string_view inputspec, double value1, double value2, phase_state& st,
              std::string& errormsg) {
    varimol_allprops(inputspec, value1, value2, st.p, st.t, st.v, st.d, st.h, st.s, st.u, st.q,
                     st.x, st.y, st.lnphi, st.cv, st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2,
                     st.d2pdtdv, st.dcvdt, st.eta, st.lambda, errormsg);
}

enum class phase_output { liquid, vapour, fugacity };
void phase_composition(phase_output kind, std::string_view inputspec, double value1, double value2,
                       zp_adapter::composition& output, int& dim, std::string& errormsg) {
    errormsg = no_errors;
    phase_state st{};
    evaluate(inputspec, value1, value2, st, errormsg);
    dim = composition_dim();
    if (kind == phase_output::fugacity) {
        std::copy_n(st.lnphi.begin(), dim, output.begin());
        return;
    }
    cubic_adapter::phase_composition(kind == phase_output::liquid, dim, st.q, st.x, st.y, state.cnc,
                                     output);
}

// The dispatch row takes the composition operations without their dim.
template <phase_output Kind>
void composition_row(std::string_view inputspec, double value1, double value2,
                     zp_adapter::composition& output, std::string& errormsg) {
    int dim = 0;
    phase_composition(Kind, inputspec, value1, value2, output, dim, errormsg);
}

void allprops_row(std::string_view inputspec, double value1, double value2, double& p, double& t,
                  double& v, double& d, double& h, double& s, double& u, double& q,
                  zp_adapter::composition& x, zp_adapter::composition& y,
                  zp_adapter::composition& lnphi, double& cv, double& dpdt, double& dpdv,
                  double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt, double& eta,
                  double& lambda, double&, std::string& errormsg) {
    varimol_allprops(inputspec, value1, value2, p, t, v, d, h, s, u, q, x, y, lnphi, cv, dpdt, dpdv,
                     d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, errormsg);
}

void getcompset_row(int& ncomps, std::vector<std::string>& compset, std::string& errormsg) {
    varimol_getcompset(ncomps, compset, errormsg);
}

void uninit() {
    memory.valid = false;
    varimol::uninit_varimol();
}

// The state of a request from the back-end, converted to internal units; its code returned.
int compute(const cubic_adapter::request& req, phase_state& st) {
    cubic_adapter::state_vars in = req.in;
    const double mmol = state.mmol;
    varimol_inputunitsconv(mmol, in.t, in.p, in.v, in.u, in.h, in.s);
    int ierr = 0;
    double qq = in.q;
    if (req.single_phase) {
        varimol::vm3_tmdprop_1ph(req.mode, in.t, in.p, in.v, in.u, in.h, in.s, st.cv, st.dpdt,
                                 st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv, st.dcvdt, ierr);
        st.x.fill(1.0);
        st.y.fill(1.0);
        qq = 1.0;
    } else {
        varimol::vm3_tmdprop(req.mode, in.t, in.p, in.v, in.u, in.h, in.s, qq, st.cv, st.dpdt,
                             st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv, st.dcvdt, st.x, st.y,
                             st.lnphi, ierr);
    }
    cubic_adapter::complete_state(mmol, in, qq, st);
    return ierr;
}

// A part of a state: the phase compositions are delivered only with the quality.
void evaluate_part(std::string_view inputspec, double value1, double value2, unsigned wanted,
                   zp_adapter::state_values& out, zp_adapter::composition& x,
                   zp_adapter::composition& y, std::string& errormsg) {
    cubic_adapter::evaluate_part(memory, &compute, &put_code, model_prefix, max_components,
                                 inputspec, value1, value2, wanted, out, x, y, errormsg);
}

} // namespace

constinit const zp_adapter::operations operations{
    .model = "Varimol",
    .installed = true,
    .zp_sub = &varimol_zp_sub,
    .getversion = &varimol_getversion,
    .uninit = &uninit,
    .setfluid = [](std::string_view, int ncomp, std::span<const std::string> comp,
                   std::span<const double> conc,
                   std::string& errormsg) { varimol_setfluid(ncomp, comp, conc, errormsg); },
    .getfluid = &varimol_getfluid,
    .getcompset = &getcompset_row,
    .getinfo = &varimol_getinfo,
    .prop = &varimol_prop,
    .allprops = &allprops_row,
    .liquidcmp = &composition_row<phase_output::liquid>,
    .vaporcmp = &composition_row<phase_output::vapour>,
    .fugacoef = &composition_row<phase_output::fugacity>,
    .zflow_vu = &varimol_zflow_vu,
    .psat_k1 = &varimol_psat_k1,
    .phaseenvelope = &varimol_phaseenvelope,
    .evaluate = &evaluate_part,
    .mmolcomp =
        [](zp_adapter::composition& mmol, std::string& errormsg) {
            mmol = state.component_mmol;
            errormsg = no_errors;
        },
    .fluid_components = [] { return state.n_comps; }};

void varimol_zp_sub() {
    varimol::varimol_sub();
}

void varimol_getversion(zp_adapter::version_numbers& version) {
    varimol::vm3_getversion(version);
}

bool varimol_issamefluid(int ncomp, std::span<const std::string> comp,
                         std::span<const double> conc) {
    return cubic_adapter::same_selection(state.fluidname, state.ncmp, state.cnc, ncomp, comp, conc);
}

void varimol_setfluid(int ncomp, std::span<const std::string> comp, std::span<const double> conc,
                      std::string& errormsg) {
    if (varimol_issamefluid(ncomp, comp, conc)) {
        errormsg = zp_common::same_fluid;
        return;
    }
    memory.valid = false;
    resolved.valid = false;
    const int n = std::clamp(ncomp, 0, std::min<int>(max_components, comp.size()));
    state.ncmp = ncomp;
    state.fluidname = n > 0 ? std::string(trim(comp[0])) : std::string();
    state.cmp.fill(std::string());
    state.cnc.fill(0.0);
    for (int i = 0; i < n && static_cast<std::size_t>(i) < conc.size(); ++i) {
        state.cmp[i] = std::string(trim(comp[i]));
        state.cnc[i] = conc[i];
    }

    varimol_load::fluid_data fluid;
    cubic_adapter::load_selection(fluid_directory(), std::span(state.cmp).first(std::max(n, 1)),
                                  std::span(state.cnc).first(std::max(n, 1)), model_prefix, fluid,
                                  errormsg);
    if (errormsg != no_errors) return;

    int ierr = 0;
    varimol::vm3_setfluid(fluid.model_code, fluid.fluidparameters, fluid.binaryparameters,
                          fluid.n_comps, ierr);
    if (ierr != 0) {
        put_code(ierr, errormsg);
        return;
    }
    double tcrit = 0.0, pcrit = 0.0, tmin = 0.0, tmax = 0.0;
    varimol::vm3_fluidinfo(state.mmol, tcrit, pcrit, tmin, tmax);
    cubic_adapter::keep_components(fluid, state);
    errormsg = no_errors;
}

void varimol_getfluid(int& ncomp, zp_adapter::component_names& comp,
                      zp_adapter::composition& conc) {
    cubic_adapter::getfluid(state, resolved, &varimol_getcompset, model_prefix, ncomp, comp, conc);
}

double varimol_getinfo(std::string_view property, std::string& errormsg) {
    errormsg = no_errors;
    double mmol = 0.0, tcrit = 0.0, pcrit = 0.0, tmin = 0.0, tmax = 0.0;
    varimol::vm3_fluidinfo(mmol, tcrit, pcrit, tmin, tmax);
    const auto key = trim(property);
    if (key == "M_mol") return mmol;
    if (key == "T_crit") return tcrit - 273.15;
    if (key == "P_crit") return pcrit / 100000.0;
    if (key == "T_min") return tmin - 273.15;
    if (key == "T_max") return tmax - 273.15;
    errormsg.assign("Error in Zentropia: for Varimol no info available for ")
        .append(key)
        .append(".");
    return not_set;
}

void varimol_getcompset(int& ncomps, std::vector<std::string>& compset, std::string& errormsg) {
    errormsg = no_errors;
    compset.assign(max_listed, std::string());
    varimol::vm3_fluidsset(ncomps, compset);
    // The back-end reads its fluids from the library's fluid database and the user's fluid files,
    // which the library lists.
    if (ncomps <= 0)
        cubic_adapter::list_fluids(fluid_directory(), "Varimol", max_listed, ncomps, compset);
    else
        compset.resize(std::clamp(ncomps, 0, max_listed));
}

void varimol_inputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                            double& s) {
    cubic_adapter::inputunitsconv(mmol, t, p, v, u, h, s);
}

void varimol_outputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                             double& s, double& cv, double& dpdv, double& d2pdv2, double& d2pdtdv,
                             double& dcvdt) {
    cubic_adapter::outputunitsconv(mmol, t, p, v, u, h, s, cv, dpdv, d2pdv2, d2pdtdv, dcvdt);
}

void varimol_allprops(std::string_view inputspec, double value1, double value2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      zp_adapter::composition& x, zp_adapter::composition& y,
                      zp_adapter::composition& lnphi, double& cv, double& dpdt, double& dpdv,
                      double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt, double& eta,
                      double& lambda, std::string& errormsg) {
    errormsg = no_errors;
    p = t = v = u = h = s = q = eta = lambda = not_set;

    cubic_adapter::request req;
    if (!cubic_adapter::read_request(inputspec, value1, value2, model_prefix, req, errormsg))
        return;
    const cubic_adapter::evaluated& e = cubic_adapter::state_for(memory, req, &compute);
    const phase_state& st = e.st;
    p = st.p, t = st.t, v = st.v, d = st.d, u = st.u, h = st.h, s = st.s, q = st.q;
    cv = st.cv, dpdt = st.dpdt, dpdv = st.dpdv, d2pdt2 = st.d2pdt2, d2pdv2 = st.d2pdv2;
    d2pdtdv = st.d2pdtdv, dcvdt = st.dcvdt;
    x = st.x;
    y = st.y;
    // one homogeneous phase has no fugacity coefficients of a split
    if (!req.single_phase) lnphi = st.lnphi;
    if (e.ierr != 0 && e.ierr != warning_code) put_code(e.ierr, errormsg);
}

double varimol_prop(std::string_view inputspec, double value1, double value2,
                    std::string_view outputspec, std::string& errormsg) {
    phase_state st{};
    evaluate(inputspec, value1, value2, st, errormsg);
    if (errormsg != no_errors) return not_set;
    return cubic_adapter::select_output(st, inputspec, outputspec, model_prefix, errormsg);
}

void varimol_zflow_vu(double& p, double& t, double v_in, double& h, double& s, double u_in,
                      double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                      double& d2pdtdv, double& dcvdt, std::string& errormsg) {
    errormsg = no_errors;
    const double mmol = varimol_getinfo("M_mol", errormsg);
    double v = v_in * mmol, u = u_in * mmol * 1000.0;
    int ierr = 0;
    varimol::vm3_tmdprop_1ph(5, t, p, v, u, h, s, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt,
                             ierr);
    cubic_adapter::output_homogeneous(mmol, t, p, h, s, cv, dpdv, d2pdv2, d2pdtdv, dcvdt);
    if (ierr != 0 && ierr != warning_code) put_code(ierr, errormsg);
}

void varimol_liquidcmp(std::string_view inputspec, double value1, double value2,
                       zp_adapter::composition& output, int& dim, std::string& errormsg) {
    phase_composition(phase_output::liquid, inputspec, value1, value2, output, dim, errormsg);
}
void varimol_vaporcmp(std::string_view inputspec, double value1, double value2,
                      zp_adapter::composition& output, int& dim, std::string& errormsg) {
    phase_composition(phase_output::vapour, inputspec, value1, value2, output, dim, errormsg);
}
void varimol_fugacoef(std::string_view inputspec, double value1, double value2,
                      zp_adapter::composition& output, int& dim, std::string& errormsg) {
    phase_composition(phase_output::fugacity, inputspec, value1, value2, output, dim, errormsg);
}

void varimol_phaseenvelope(int& npnts, std::span<double> t, std::span<double> p,
                           std::span<zp_adapter::composition> x,
                           std::span<zp_adapter::composition> y, std::string& errormsg) {
    errormsg = no_errors;
    int ierr = 0;
    npnts = static_cast<int>(std::min({t.size(), p.size(), x.size(), y.size()}));
    varimol::vm3_phaseenvelope(npnts, t, p, x, y, ierr);
    if (ierr != 0) put_code(ierr, errormsg);
}

void varimol_psat_k1(double k1, double t, double& psat, std::string& errormsg) {
    errormsg = no_errors;
    int ierr = 0;
    varimol::vm3_psat_k1(k1, t + 273.15, psat, ierr);
    psat /= 100000.0;
    if (ierr != 0) put_code(ierr, errormsg);
}

void varimol_xy_a_alfa(double aij, double aji, double alfa, double p, double t,
                       std::array<double, 2>& x, std::array<double, 2>& y, std::string& errormsg) {
    errormsg = no_errors;
    int ierr = 0;
    varimol::vm3_xy_a_alfa(aij, aji, alfa, p * 100000.0, t + 273.15, x, y, ierr);
    if (ierr != 0) put_code(ierr, errormsg);
}

} // namespace varimol_zp
