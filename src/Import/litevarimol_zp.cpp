#include "Import/litevarimol_zp.hpp"

#include "Import/cubic_adapter.hpp"
#include "Import/litevarimol_errors.hpp"
#include "Import/varimol_load.hpp"
#include "litevarimol/litevarimol.hpp"

#include <algorithm>
#include <cstdint>

namespace litevarimol_zp {
namespace {

using zp_common::no_errors;
using zp_common::not_set;
using zp_common::trim;

static_assert(max_components == litevarimol::max_components);

constexpr std::string_view model_prefix = "Error in liteVarimol: ";
constexpr std::string_view code_prefix = "Error in liteVarimol. ";
using cubic_adapter::max_listed;
using cubic_adapter::warning_code;

cubic_adapter::selection state;
// the pure fluids of the selection's one name, once getfluid has resolved them
cubic_adapter::resolved_mixture resolved;
cubic_adapter::state_memory memory;

using cubic_adapter::fluid_directory;

void put_code(int ierr, std::string& errormsg) {
    std::string text;
    litevarimol_errorstring(ierr, text);
    errormsg.assign(code_prefix).append(text);
}

void too_many(std::string_view what, int n, std::string& errormsg) {
    errormsg.assign(model_prefix)
        .append(what)
        .append(std::to_string(n))
        .append(" components, at most ")
        .append(std::to_string(max_components))
        .append(".");
}

// The back-end's limits in the units of its error messages (K, bar).
void limits_ptminmax(double& tmin, double& tmax, double& pmax) {
    litevarimol::ptminmax(tmin, tmax, pmax);
    pmax /= 100000.0;
}
void limits_critpoint(double& tcrit, double& pcrit) {
    litevarimol::critpoint(tcrit, pcrit);
    pcrit /= 100000.0;
}

// The loaded fluid in the back-end's arrays of 10 columns (the layouts differ only in the
// number of columns).
void narrow(const varimol_load::fluid_data& fluid, litevarimol::fluid_parameters& fp,
            litevarimol::binary_parameters& bp) {
    constexpr int rows = varimol::component_rows, kinds = varimol::binary_kinds;
    for (int c = 0; c < max_components; ++c)
        for (int r = 0; r < rows; ++r)
            fp[c * rows + r] = fluid.fluidparameters[varimol::parameter_index(r, c)];
    for (int j = 0; j < max_components; ++j)
        for (int i = 0; i < max_components; ++i)
            for (int k = 0; k < kinds; ++k)
                bp[(j * max_components + i) * kinds + k] =
                    fluid.binaryparameters[varimol::binary_index(k, i, j)];
}

// dim of the composition outputs: the number of components of the selection, or of the named
// fluid when one name was given
int composition_dim() {
    int dim = std::min(state.ncmp, max_components);
    if (state.ncmp == 1) {
        int n = -1;
        zp_adapter::component_names names;
        zp_adapter::composition conc;
        litevarimol_getfluid(n, names, conc);
        dim = std::clamp(n, 1, max_components);
    }
    return dim;
}

using cubic_adapter::phase_state;
void evaluate(std::string_view inputspec, double value1, double value2, phase_state& st,
              std::string& errormsg) {
    litevarimol_allprops(inputspec, value1, value2, st.p, st.t, st.v, st.d, st.h, st.s, st.u, st.q,
                         st.x, st.y, st.cv, st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv,
                         st.dcvdt, st.eta, st.lambda, errormsg);
}

void phase_composition(bool liquid, std::string_view inputspec, double value1, double value2,
                       zp_adapter::composition& output, int& dim, std::string& errormsg) {
    errormsg = no_errors;
    phase_state st{};
    evaluate(inputspec, value1, value2, st, errormsg);
    dim = composition_dim();
    cubic_adapter::phase_composition(liquid, dim, st.q, st.x, st.y, state.cnc, output);
}

// The dispatch row takes the composition operations without their dim.
template <bool Liquid>
void composition_row(std::string_view inputspec, double value1, double value2,
                     zp_adapter::composition& output, std::string& errormsg) {
    int dim = 0;
    phase_composition(Liquid, inputspec, value1, value2, output, dim, errormsg);
}

void allprops_row(std::string_view inputspec, double value1, double value2, double& p, double& t,
                  double& v, double& d, double& h, double& s, double& u, double& q,
                  zp_adapter::composition& x, zp_adapter::composition& y, zp_adapter::composition&,
                  double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                  double& d2pdtdv, double& dcvdt, double& eta, double& lambda, double&,
                  std::string& errormsg) {
    litevarimol_allprops(inputspec, value1, value2, p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv,
                         d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, errormsg);
}

void uninit() {
    memory.valid = false;
    litevarimol::uninit_litevarimol();
}

// The state of a request from the back-end, converted to internal units; its code returned. The
// back-end's compositions fill the first max_components entries of x and y.
int compute(const cubic_adapter::request& req, phase_state& st) {
    cubic_adapter::state_vars in = req.in;
    const double mmol = state.mmol;
    cubic_adapter::inputunitsconv(mmol, in.t, in.p, in.v, in.u, in.h, in.s);
    int ierr = 0;
    double qq = in.q;
    if (req.single_phase) {
        litevarimol::litevarimolprops_1ph(req.mode, in.t, in.p, in.v, in.u, in.h, in.s, st.cv,
                                          st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv,
                                          st.dcvdt, ierr);
        std::fill_n(st.x.begin(), max_components, 1.0);
        std::fill_n(st.y.begin(), max_components, 1.0);
        qq = 1.0;
    } else {
        litevarimol::composition xl{}, yl{};
        litevarimol::litevarimolprops(req.mode, in.t, in.p, in.v, in.u, in.h, in.s, qq, st.cv,
                                      st.dpdt, st.dpdv, st.d2pdt2, st.d2pdv2, st.d2pdtdv, st.dcvdt,
                                      xl, yl, ierr);
        std::copy(xl.begin(), xl.end(), st.x.begin());
        std::copy(yl.begin(), yl.end(), st.y.begin());
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
    .model = "liteVarimol",
    .installed = true,
    .zp_sub = &litevarimol_zp_sub,
    .getversion = &litevarimol_getversion,
    .uninit = &uninit,
    .setfluid = [](std::string_view, int ncomp, std::span<const std::string> comp,
                   std::span<const double> conc,
                   std::string& errormsg) { litevarimol_setfluid(ncomp, comp, conc, errormsg); },
    .getfluid = &litevarimol_getfluid,
    .getcompset = &litevarimol_getcompset,
    .getinfo = &litevarimol_getinfo,
    .prop = &litevarimol_prop,
    .allprops = &allprops_row,
    .liquidcmp = &composition_row<true>,
    .vaporcmp = &composition_row<false>,
    .fugacoef = nullptr,
    .zflow_vu = &litevarimol_zflow_vu,
    .psat_k1 = &litevarimol_psat_k1,
    .phaseenvelope = nullptr,
    .evaluate = &evaluate_part,
    .mmolcomp =
        [](zp_adapter::composition& mmol, std::string& errormsg) {
            mmol = state.component_mmol;
            errormsg = no_errors;
        },
    .fluid_components = [] { return state.n_comps; }};

void litevarimol_zp_sub() {
    litevarimol::litevarimol_sub();
}

void litevarimol_getversion(zp_adapter::version_numbers& version) {
    litevarimol::lvm_getversion(version);
}

bool litevarimol_issamefluid(int ncomp, std::span<const std::string> comp,
                             std::span<const double> conc) {
    return ncomp <= max_components &&
           cubic_adapter::same_selection(state.fluidname, state.ncmp, state.cnc, ncomp, comp, conc);
}

void litevarimol_setfluid(int ncomp, std::span<const std::string> comp,
                          std::span<const double> conc, std::string& errormsg) {
    if (litevarimol_issamefluid(ncomp, comp, conc)) {
        errormsg = zp_common::same_fluid;
        return;
    }
    // More components than the back-end holds: refused before anything changes, the previous
    // fluid stays selected.
    if (ncomp > max_components) return too_many("a selection of ", ncomp, errormsg);
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
    if (fluid.n_comps > max_components)
        return too_many(state.fluidname + " has ", fluid.n_comps, errormsg);

    litevarimol::fluid_parameters fp{};
    litevarimol::binary_parameters bp{};
    narrow(fluid, fp, bp);
    int ierr = 0;
    double tcr = 0.0, pcr = 0.0;
    litevarimol::set_fluid(static_cast<std::int16_t>(fluid.model_code), fp, bp, tcr, pcr,
                           static_cast<std::int16_t>(fluid.n_comps), ierr);
    if (ierr == 0 && fluid.n_comps >= 2) litevarimol::calc_critpoint(tcr, pcr, ierr);
    // the limit messages quote the limits of the fluid the back-end holds
    set_limits_hook({&limits_ptminmax, &limits_critpoint});
    if (ierr != 0) return put_code(ierr, errormsg);
    state.mmol = litevarimol::wmol();
    cubic_adapter::keep_components(fluid, state);
    errormsg = no_errors;
}

void litevarimol_getfluid(int& ncomp, zp_adapter::component_names& comp,
                          zp_adapter::composition& conc) {
    cubic_adapter::getfluid(state, resolved, &litevarimol_getcompset, model_prefix, ncomp, comp,
                            conc);
}

double litevarimol_getinfo(std::string_view property, std::string& errormsg) {
    errormsg = no_errors;
    const auto key = trim(property);
    double tcrit = 0.0, pcrit = 0.0, tmin = 0.0, tmax = 0.0, pmax = 0.0;
    litevarimol::critpoint(tcrit, pcrit);
    litevarimol::ptminmax(tmin, tmax, pmax);
    if (key == "M_mol") return litevarimol::wmol();
    if (key == "T_crit") return tcrit - 273.15;
    if (key == "P_crit") return pcrit / 100000.0;
    if (key == "T_min") return tmin - 273.15;
    if (key == "T_max") return tmax - 273.15;
    errormsg.assign("Error in Zentropia: for liteVarimol no info available for ")
        .append(key)
        .append(".");
    return not_set;
}

void litevarimol_getcompset(int& ncomps, std::vector<std::string>& compset, std::string& errormsg) {
    errormsg = no_errors;
    cubic_adapter::list_fluids(fluid_directory(), "liteVarimol", max_listed, ncomps, compset);
}

void litevarimol_allprops(std::string_view inputspec, double value1, double value2, double& p,
                          double& t, double& v, double& d, double& h, double& s, double& u,
                          double& q, zp_adapter::composition& x, zp_adapter::composition& y,
                          double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                          double& d2pdtdv, double& dcvdt, double& eta, double& lambda,
                          std::string& errormsg) {
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
    // the back-end's columns; the caller's further entries stay as they were
    std::copy_n(st.x.begin(), max_components, x.begin());
    std::copy_n(st.y.begin(), max_components, y.begin());
    if (e.ierr != 0 && e.ierr != warning_code) put_code(e.ierr, errormsg);
}

double litevarimol_prop(std::string_view inputspec, double value1, double value2,
                        std::string_view outputspec, std::string& errormsg) {
    phase_state st{};
    evaluate(inputspec, value1, value2, st, errormsg);
    if (errormsg != no_errors) return not_set;
    return cubic_adapter::select_output(st, inputspec, outputspec, model_prefix, errormsg);
}

void litevarimol_zflow_vu(double& p, double& t, double v_in, double& h, double& s, double u_in,
                          double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                          double& d2pdtdv, double& dcvdt, std::string& errormsg) {
    errormsg = no_errors;
    const double mmol = litevarimol::wmol();
    int ierr = 0;
    litevarimol::vu_zflow(p, t, v_in * mmol, h, s, u_in * mmol * 1000.0, cv, dpdt, dpdv, d2pdt2,
                          d2pdv2, d2pdtdv, dcvdt, ierr);
    cubic_adapter::output_homogeneous(mmol, t, p, h, s, cv, dpdv, d2pdv2, d2pdtdv, dcvdt);
    if (ierr != 0 && ierr != warning_code) put_code(ierr, errormsg);
}

void litevarimol_liquidcmp(std::string_view inputspec, double value1, double value2,
                           zp_adapter::composition& output, int& dim, std::string& errormsg) {
    phase_composition(true, inputspec, value1, value2, output, dim, errormsg);
}
void litevarimol_vaporcmp(std::string_view inputspec, double value1, double value2,
                          zp_adapter::composition& output, int& dim, std::string& errormsg) {
    phase_composition(false, inputspec, value1, value2, output, dim, errormsg);
}

void litevarimol_psat_k1(double, double, double& psat, std::string& errormsg) {
    psat = 0.0;
    errormsg = no_errors;
}

} // namespace litevarimol_zp
