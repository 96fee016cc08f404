#include "Import/varimol_zp.hpp"

#include "Import/varimol_errors.hpp"
#include "Import/varimol_load.hpp"
#include "base/filelocation.hpp"
#include "fluiddb/sqlite.hpp"
#include "varimol/varimol.hpp"

#include <algorithm>
#include <cmath>

namespace varimol_zp {
namespace {

using zp_common::max_components;
using zp_common::no_errors;
using zp_common::not_set;
using zp_common::trim;

constexpr std::string_view model_prefix = "Error in Varimol: ";
constexpr std::string_view code_prefix = "Error in Varimol. ";
// the back-end's warning that the asked root does not exist and the other one was returned
constexpr int warning_code = 28;
// most fluids listed by getcompset
constexpr int max_listed = 500;

// The selection as the caller made it, and the molar mass of the configured fluid.
struct module_state {
    std::string fluidname = "undefined";
    int ncmp = 0;
    zp_adapter::component_names cmp{};
    zp_adapter::composition cnc{};
    double mmol = 0.0; // kg/mol
};
module_state state;

std::string fluid_directory() {
    return filelocation::fluidpath(filelocation::library_module);
}

// Calculation modes of the back-end by the two letters of the input specification. `inverse1`
// and `inverse2`: the value is a density, handed over as specific volume 1/value.
enum class given { p, t, v, u, h, s, q };
struct mode_row {
    std::string_view pair;
    int mode;
    given first, second;
    bool inverse1, inverse2;
};
constexpr std::array<mode_row, 20> modes{{
    {"PT", 1, given::p, given::t, false, false},  {"Pv", 4, given::p, given::v, false, false},
    {"Pd", 4, given::p, given::v, false, true},   {"Ph", 9, given::p, given::h, false, false},
    {"Ps", 10, given::p, given::s, false, false}, {"Pq", 11, given::p, given::q, false, false},
    {"Pu", 8, given::p, given::u, false, false},  {"Tv", 2, given::t, given::v, false, false},
    {"Td", 2, given::t, given::v, false, true},   {"Ts", 3, given::t, given::s, false, false},
    {"Tq", 12, given::t, given::q, false, false}, {"vh", 6, given::v, given::h, false, false},
    {"vs", 7, given::v, given::s, false, false},  {"vq", 15, given::v, given::q, false, false},
    {"vu", 5, given::v, given::u, false, false},  {"dh", 6, given::v, given::h, true, false},
    {"ds", 7, given::v, given::s, true, false},   {"dq", 15, given::v, given::q, true, false},
    {"du", 5, given::v, given::u, true, false},   {"hs", 13, given::h, given::s, false, false},
}};

// The six state variables in the order the back-end takes them, plus the quality.
struct state_vars {
    double t = not_set, p = not_set, v = not_set, u = not_set, h = not_set, s = not_set,
           q = not_set;
    double& operator[](given g) {
        switch (g) {
        case given::p:
            return p;
        case given::t:
            return t;
        case given::v:
            return v;
        case given::u:
            return u;
        case given::h:
            return h;
        case given::s:
            return s;
        case given::q:
            break;
        }
        return q;
    }
};

void put_code(int ierr, std::string& errormsg) {
    std::string text;
    varimol_errorstring(ierr, text);
    errormsg.assign(code_prefix).append(text);
}

// characters `from` to `from + n` of the input specification (1-based as the suffixes are named)
std::string_view chars(std::string_view text, std::size_t from, std::size_t n) {
    return from - 1 < text.size() ? text.substr(from - 1, n) : std::string_view();
}

void not_available(std::string_view inputspec, std::string& errormsg) {
    errormsg.assign(model_prefix)
        .append("calculation of properties as function of ")
        .append(inputspec)
        .append(" not available.");
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

struct phase_state {
    double p, t, v, d, h, s, u, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda;
    zp_adapter::composition x, y, lnphi;
};
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
    const double q = st.q;
    if (kind == phase_output::fugacity) {
        std::copy_n(st.lnphi.begin(), dim, output.begin());
        return;
    }
    const bool liquid = kind == phase_output::liquid;
    if (dim == 1) {
        output[0] = liquid ? (q < 1.0 ? 1.0 : 0.0) : (q > 0.0 ? 1.0 : 0.0);
        return;
    }
    for (int i = 0; i < dim; ++i) {
        if (q < 0.0)
            output[i] = liquid ? state.cnc[i] : 0.0;
        else if (q > 1.0)
            output[i] = liquid ? 0.0 : state.cnc[i];
        else
            output[i] = liquid ? st.x[i] : st.y[i];
    }
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
    varimol::uninit_varimol();
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
    .phaseenvelope = &varimol_phaseenvelope};

void varimol_zp_sub() {
    varimol::varimol_sub();
}

void varimol_getversion(zp_adapter::version_numbers& version) {
    varimol::vm3_getversion(version);
}

bool varimol_issamefluid(int ncomp, std::span<const std::string> comp,
                         std::span<const double> conc) {
    if (comp.empty() || ncomp != state.ncmp || trim(comp[0]) != trim(state.fluidname)) return false;
    for (int i = 0; i < ncomp; ++i)
        if (static_cast<std::size_t>(i) >= conc.size() || conc[i] != state.cnc[i]) return false;
    return true;
}

void varimol_setfluid(int ncomp, std::span<const std::string> comp, std::span<const double> conc,
                      std::string& errormsg) {
    if (varimol_issamefluid(ncomp, comp, conc)) {
        errormsg = zp_common::same_fluid;
        return;
    }
    const int n = std::clamp(ncomp, 0, std::min<int>(max_components, comp.size()));
    state.ncmp = ncomp;
    state.fluidname = n > 0 ? std::string(trim(comp[0])) : std::string();
    state.cmp.fill(std::string());
    state.cnc.fill(0.0);
    for (int i = 0; i < n && static_cast<std::size_t>(i) < conc.size(); ++i) {
        state.cmp[i] = std::string(trim(comp[i]));
        state.cnc[i] = conc[i];
    }

    const std::string directory = fluid_directory();
    varimol_load::fluid_data fluid;
    varimol_load::load_fluid(directory, state.fluidname, model_prefix, fluid, errormsg);
    if (errormsg != no_errors) return;
    if (n >= 2) {
        // A pure fluid named first: the caller names every component of the mixture. A mixture
        // named first is the whole fluid, given again with its composition and no other names
        // ("?", as getfluid reports them).
        const bool others_named =
            std::any_of(state.cmp.begin() + 1, state.cmp.begin() + n,
                        [](const std::string& c) { return !c.empty() && c != "?"; });
        if (fluid.n_comps == 1)
            varimol_load::assemble_mixture(directory, std::span(state.cmp).first(n), model_prefix,
                                           fluid, errormsg);
        else if (fluid.n_comps != n || others_named)
            errormsg.assign(model_prefix)
                .append("the mixture ")
                .append(state.fluidname)
                .append(" cannot be combined with other components");
        if (errormsg != no_errors) return;
        for (int i = 0; i < n; ++i)
            fluid.fluidparameters[varimol::parameter_index(varimol::row_mole_fraction, i)] =
                state.cnc[i];
    }

    int ierr = 0;
    varimol::vm3_setfluid(fluid.model_code, fluid.fluidparameters, fluid.binaryparameters,
                          fluid.n_comps, ierr);
    if (ierr != 0) {
        put_code(ierr, errormsg);
        return;
    }
    double tcrit = 0.0, pcrit = 0.0, tmin = 0.0, tmax = 0.0;
    varimol::vm3_fluidinfo(state.mmol, tcrit, pcrit, tmin, tmax);
    errormsg = no_errors;
}

void varimol_getfluid(int& ncomp, zp_adapter::component_names& comp,
                      zp_adapter::composition& conc) {
    const bool resolve = ncomp == -1;
    ncomp = state.ncmp;
    comp.fill("?");
    comp[0] = state.fluidname;
    conc = state.cnc;
    if (!resolve) return;

    // A predefined mixture into its pure fluids: each component is the first loadable pure fluid
    // with the same identifying number.
    const std::string directory = fluid_directory();
    varimol_load::fluid_data mixture;
    std::string errormsg;
    varimol_load::load_fluid(directory, state.fluidname, model_prefix, mixture, errormsg);
    if (errormsg != no_errors) return;
    if (mixture.n_comps > 1) {
        int nlisted = 0;
        std::vector<std::string> listed;
        varimol_getcompset(nlisted, listed, errormsg);
        for (int i = 0; i < mixture.n_comps; ++i) {
            const double id = mixture.fluidparameters[varimol::parameter_index(varimol::row_id, i)];
            for (const auto& name : listed) {
                varimol_load::fluid_data pure;
                varimol_load::load_fluid(directory, name, model_prefix, pure, errormsg);
                if (errormsg != no_errors || pure.n_comps != 1 ||
                    pure.fluidparameters[varimol::parameter_index(varimol::row_id, 0)] != id)
                    continue;
                comp[i] = name;
                if (state.ncmp == 1)
                    conc[i] = mixture.fluidparameters[varimol::parameter_index(
                        varimol::row_mole_fraction, i)];
                break;
            }
        }
    }
    ncomp = mixture.n_comps;
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
    if (ncomps <= 0) {
        const std::string directory = fluid_directory();
        ncomps = sqlite::getfluidnames(directory, "Varimol", compset);
        std::vector<std::string> files;
        filelocation::searchdirectory(directory, "*.vmx", files);
        for (const auto& file : files) {
            if (ncomps >= max_listed) break;
            compset[ncomps++] = file.substr(0, file.size() - 4);
        }
    }
    compset.resize(std::clamp(ncomps, 0, max_listed));
}

void varimol_inputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                            double& s) {
    t += 273.15;
    p *= 100000.0;
    v *= mmol;
    u *= mmol * 1000.0;
    h *= mmol * 1000.0;
    s *= mmol * 1000.0;
}

void varimol_outputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h,
                             double& s, double& cv, double& dpdv, double& d2pdv2, double& d2pdtdv,
                             double& dcvdt) {
    t -= 273.15;
    p /= 100000.0;
    v /= mmol;
    u /= mmol * 1000.0;
    h /= mmol * 1000.0;
    s /= mmol * 1000.0;
    if (cv != not_set) cv /= mmol * 1000.0;
    dpdv *= mmol;
    d2pdv2 *= mmol * mmol;
    d2pdtdv *= mmol;
    dcvdt /= mmol; // on a per-mass basis without the kilo of cv
}

void varimol_allprops(std::string_view inputspec, double value1, double value2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      zp_adapter::composition& x, zp_adapter::composition& y,
                      zp_adapter::composition& lnphi, double& cv, double& dpdt, double& dpdv,
                      double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt, double& eta,
                      double& lambda, std::string& errormsg) {
    errormsg = no_errors;
    p = t = v = u = h = s = q = eta = lambda = not_set;

    const auto spec = trim(inputspec);
    const auto pair = spec.substr(0, 2);
    const auto row = std::find_if(modes.begin(), modes.end(),
                                  [pair](const mode_row& r) { return r.pair == pair; });
    if (row == modes.end()) return not_available(inputspec, errormsg);
    int mode = row->mode;
    if (mode == 1 && spec.size() >= 6) {
        if (chars(spec, 4, 3) == "vap") mode = -2;
        if (chars(spec, 4, 3) == "liq") mode = -1;
    }

    state_vars in;
    in[row->first] = row->inverse1 ? 1.0 / value1 : value1;
    in[row->second] = row->inverse2 ? 1.0 / value2 : value2;
    const double mmol = state.mmol;
    varimol_inputunitsconv(mmol, in.t, in.p, in.v, in.u, in.h, in.s);

    int ierr = 0;
    double qq = in.q;
    if (chars(spec, 3, 4) == "_1ph") {
        varimol::vm3_tmdprop_1ph(mode, in.t, in.p, in.v, in.u, in.h, in.s, cv, dpdt, dpdv, d2pdt2,
                                 d2pdv2, d2pdtdv, dcvdt, ierr);
        x.fill(1.0);
        y.fill(1.0);
        qq = 1.0;
    } else {
        varimol::vm3_tmdprop(mode, in.t, in.p, in.v, in.u, in.h, in.s, qq, cv, dpdt, dpdv, d2pdt2,
                             d2pdv2, d2pdtdv, dcvdt, x, y, lnphi, ierr);
    }
    varimol_outputunitsconv(mmol, in.t, in.p, in.v, in.u, in.h, in.s, cv, dpdv, d2pdv2, d2pdtdv,
                            dcvdt);
    p = in.p, t = in.t, v = in.v, u = in.u, h = in.h, s = in.s, q = qq;
    d = 1.0 / v;
    if (ierr != 0 && ierr != warning_code) put_code(ierr, errormsg);
}

double varimol_prop(std::string_view inputspec, double value1, double value2,
                    std::string_view outputspec, std::string& errormsg) {
    phase_state st{};
    evaluate(inputspec, value1, value2, st, errormsg);
    if (errormsg != no_errors) return not_set;
    struct output_entry {
        std::string_view name;
        double phase_state::*value;
    };
    static constexpr std::array<output_entry, 15> outputs{{
        {"P", &phase_state::p},
        {"T", &phase_state::t},
        {"v", &phase_state::v},
        {"d", &phase_state::d},
        {"h", &phase_state::h},
        {"s", &phase_state::s},
        {"u", &phase_state::u},
        {"q", &phase_state::q},
        {"cv", &phase_state::cv},
        {"dP_dT", &phase_state::dpdt},
        {"dP_dv", &phase_state::dpdv},
        {"d2P_dT2", &phase_state::d2pdt2},
        {"d2P_dv2", &phase_state::d2pdv2},
        {"d2P_dTdv", &phase_state::d2pdtdv},
        {"dCv_dT", &phase_state::dcvdt},
    }};
    for (const auto& out : outputs)
        if (outputspec == out.name) return st.*out.value;
    errormsg.assign(model_prefix)
        .append("calculation of ")
        .append(outputspec)
        .append(" as function of ")
        .append(inputspec)
        .append(" not available.");
    return not_set;
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
    h /= mmol * 1000.0;
    s /= mmol * 1000.0;
    cv /= mmol * 1000.0;
    t -= 273.15;
    p /= 100000.0;
    dpdv *= mmol;
    d2pdv2 *= mmol * mmol;
    d2pdtdv *= mmol;
    dcvdt /= mmol;
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
