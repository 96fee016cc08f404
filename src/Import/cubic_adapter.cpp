#include "Import/cubic_adapter.hpp"

#include "base/filelocation.hpp"
#include "fluiddb/sqlite.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace cubic_adapter {
namespace {

using zp_common::max_components;
using zp_common::no_errors;
using zp_common::not_set;
using zp_common::trim;

// Calculation modes of the back-ends by the two letters of the input specification. `inverse1`
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

double& variable(state_vars& in, given g) {
    switch (g) {
    case given::p:
        return in.p;
    case given::t:
        return in.t;
    case given::v:
        return in.v;
    case given::u:
        return in.u;
    case given::h:
        return in.h;
    case given::s:
        return in.s;
    case given::q:
        break;
    }
    return in.q;
}

// characters `from` to `from + n` of the input specification (1-based as the suffixes are named)
std::string_view chars(std::string_view text, std::size_t from, std::size_t n) {
    return from - 1 < text.size() ? text.substr(from - 1, n) : std::string_view();
}

} // namespace

bool read_request(std::string_view inputspec, double value1, double value2,
                  std::string_view model_prefix, request& req, std::string& errormsg) {
    const auto given = trim(inputspec);
    const auto pair = given.substr(0, 2);
    const auto row = std::find_if(modes.begin(), modes.end(),
                                  [pair](const mode_row& r) { return r.pair == pair; });
    if (row == modes.end()) {
        errormsg.assign(model_prefix)
            .append("calculation of properties as function of ")
            .append(inputspec)
            .append(" not available.");
        return false;
    }
    req.mode = row->mode;
    if (req.mode == 1 && given.size() >= 6) {
        if (chars(given, 4, 3) == "vap") req.mode = -2;
        if (chars(given, 4, 3) == "liq") req.mode = -1;
    }
    req.single_phase = chars(given, 3, 4) == "_1ph";
    req.in = state_vars{};
    variable(req.in, row->first) = row->inverse1 ? 1.0 / value1 : value1;
    variable(req.in, row->second) = row->inverse2 ? 1.0 / value2 : value2;
    return true;
}

void inputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h, double& s) {
    t += 273.15;
    p *= 100000.0;
    v *= mmol;
    u *= mmol * 1000.0;
    h *= mmol * 1000.0;
    s *= mmol * 1000.0;
}

void outputunitsconv(double mmol, double& t, double& p, double& v, double& u, double& h, double& s,
                     double& cv, double& dpdv, double& d2pdv2, double& d2pdtdv, double& dcvdt) {
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

void output_homogeneous(double mmol, double& t, double& p, double& h, double& s, double& cv,
                        double& dpdv, double& d2pdv2, double& d2pdtdv, double& dcvdt) {
    h /= mmol * 1000.0;
    s /= mmol * 1000.0;
    cv /= mmol * 1000.0;
    t -= 273.15;
    p /= 100000.0;
    dpdv *= mmol;
    d2pdv2 *= mmol * mmol;
    d2pdtdv *= mmol;
    dcvdt /= mmol;
}

double select_output(const phase_state& st, std::string_view inputspec, std::string_view outputspec,
                     std::string_view model_prefix, std::string& errormsg) {
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

namespace {
bool recalls(const state_memory& memory, const request& req) {
    if (!memory.valid) return false;
    const request& last = memory.last.req;
    const auto same = [](double a, double b) {
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
    };
    return last.mode == req.mode && last.single_phase == req.single_phase &&
           same(last.in.t, req.in.t) && same(last.in.p, req.in.p) && same(last.in.v, req.in.v) &&
           same(last.in.u, req.in.u) && same(last.in.h, req.in.h) && same(last.in.s, req.in.s) &&
           same(last.in.q, req.in.q);
}

} // namespace

void complete_state(double mmol, state_vars& in, double q, phase_state& st) {
    outputunitsconv(mmol, in.t, in.p, in.v, in.u, in.h, in.s, st.cv, st.dpdv, st.d2pdv2, st.d2pdtdv,
                    st.dcvdt);
    st.p = in.p, st.t = in.t, st.v = in.v, st.u = in.u, st.h = in.h, st.s = in.s, st.q = q;
    st.d = 1.0 / st.v;
    st.eta = st.lambda = not_set;
}

const evaluated& state_for(state_memory& memory, const request& req, compute_fn compute) {
    evaluated& e = memory.last;
    if (recalls(memory, req)) return e;
    memory.valid = false;
    e.req = req;
    e.ierr = compute(req, e.st);
    memory.valid = true;
    return e;
}

void deliver(const evaluated& e, unsigned wanted, int columns, zp_adapter::state_values& out,
             zp_adapter::composition& x, zp_adapter::composition& y, std::string& errormsg,
             put_code_fn put_code) {
    const phase_state& st = e.st;
    out.p = st.p, out.t = st.t, out.v = st.v, out.d = st.d, out.h = st.h, out.s = st.s;
    out.u = st.u, out.q = st.q, out.cv = st.cv, out.dpdt = st.dpdt, out.dpdv = st.dpdv;
    out.d2pdt2 = st.d2pdt2, out.d2pdv2 = st.d2pdv2, out.d2pdtdv = st.d2pdtdv;
    out.dcvdt = st.dcvdt, out.eta = st.eta, out.lambda = st.lambda;
    if ((wanted & zp_adapter::output::q) != 0) {
        std::copy_n(st.x.begin(), columns, x.begin());
        std::copy_n(st.y.begin(), columns, y.begin());
    }
    if (e.ierr != 0 && e.ierr != warning_code) put_code(e.ierr, errormsg);
}

void evaluate_part(state_memory& memory, compute_fn compute, put_code_fn put_code,
                   std::string_view model_prefix, int columns, std::string_view inputspec,
                   double value1, double value2, unsigned wanted, zp_adapter::state_values& out,
                   zp_adapter::composition& x, zp_adapter::composition& y, std::string& errormsg) {
    errormsg = no_errors;
    request req;
    if (!read_request(inputspec, value1, value2, model_prefix, req, errormsg)) {
        out.p = out.t = out.v = out.u = out.h = out.s = out.q = out.eta = out.lambda = not_set;
        return;
    }
    deliver(state_for(memory, req, compute), wanted, columns, out, x, y, errormsg, put_code);
}

void phase_composition(bool liquid, int dim, double q, const zp_adapter::composition& x,
                       const zp_adapter::composition& y, const zp_adapter::composition& overall,
                       zp_adapter::composition& output) {
    if (dim == 1) {
        output[0] = liquid ? (q < 1.0 ? 1.0 : 0.0) : (q > 0.0 ? 1.0 : 0.0);
        return;
    }
    for (int i = 0; i < dim; ++i) {
        if (q < 0.0)
            output[i] = liquid ? overall[i] : 0.0;
        else if (q > 1.0)
            output[i] = liquid ? 0.0 : overall[i];
        else
            output[i] = liquid ? x[i] : y[i];
    }
}

bool same_selection(std::string_view fluidname, int ncmp, const zp_adapter::composition& cnc,
                    int ncomp, std::span<const std::string> comp, std::span<const double> conc) {
    if (comp.empty() || ncomp != ncmp || trim(comp[0]) != trim(fluidname)) return false;
    for (int i = 0; i < ncomp; ++i)
        if (static_cast<std::size_t>(i) >= conc.size() || i >= max_components || conc[i] != cnc[i])
            return false;
    return true;
}

void load_selection(std::string_view fluidpath, std::span<const std::string> names,
                    std::span<const double> conc, std::string_view model_prefix,
                    varimol_load::fluid_data& fluid, std::string& errormsg) {
    const int n = static_cast<int>(names.size());
    const std::string fluidname = n > 0 ? names[0] : std::string();
    varimol_load::load_fluid(fluidpath, fluidname, model_prefix, fluid, errormsg);
    if (errormsg != no_errors || n < 2) return;
    // A pure fluid named first: the caller names every component of the mixture. A mixture named
    // first is the whole fluid, given again with its composition and no other names ("?", as
    // getfluid reports them).
    const bool others_named = std::any_of(names.begin() + 1, names.end(), [](const std::string& c) {
        return !c.empty() && c != "?";
    });
    if (fluid.n_comps == 1)
        varimol_load::assemble_mixture(fluidpath, names, model_prefix, fluid, errormsg);
    else if (fluid.n_comps != n || others_named)
        errormsg.assign(model_prefix)
            .append("the mixture ")
            .append(fluidname)
            .append(" cannot be combined with other components");
    if (errormsg != no_errors) return;
    for (int i = 0; i < n && static_cast<std::size_t>(i) < conc.size(); ++i)
        fluid.fluidparameters[varimol::parameter_index(varimol::row_mole_fraction, i)] = conc[i];
}

int resolve_mixture(std::string_view fluidpath, std::string_view fluidname, fluid_list list,
                    std::string_view model_prefix, bool take_fractions,
                    zp_adapter::component_names& comp, zp_adapter::composition& conc) {
    varimol_load::fluid_data mixture;
    std::string errormsg;
    varimol_load::load_fluid(fluidpath, fluidname, model_prefix, mixture, errormsg);
    if (errormsg != no_errors) return -1;
    if (mixture.n_comps > 1) {
        int nlisted = 0;
        std::vector<std::string> listed;
        list(nlisted, listed, errormsg);
        // One pass over the listed fluids, each loaded once (loading is what costs): a component
        // takes the first pure fluid whose identifying number is its own; the pass ends when
        // every component has one.
        const int n = std::min(mixture.n_comps, max_components);
        std::array<bool, max_components> found{};
        int missing = n;
        for (const auto& name : listed) {
            if (missing == 0) break;
            varimol_load::fluid_data pure;
            varimol_load::load_fluid(fluidpath, name, model_prefix, pure, errormsg);
            if (errormsg != no_errors || pure.n_comps != 1) continue;
            const double id = pure.fluidparameters[varimol::parameter_index(varimol::row_id, 0)];
            for (int i = 0; i < n; ++i) {
                if (found[static_cast<std::size_t>(i)] ||
                    mixture.fluidparameters[varimol::parameter_index(varimol::row_id, i)] != id)
                    continue;
                found[static_cast<std::size_t>(i)] = true;
                --missing;
                comp[i] = name;
                if (take_fractions)
                    conc[i] = mixture.fluidparameters[varimol::parameter_index(
                        varimol::row_mole_fraction, i)];
            }
        }
    }
    return mixture.n_comps;
}

void list_fluids(std::string_view fluidpath, std::string_view library, int max_listed, int& ncomps,
                 std::vector<std::string>& compset) {
    compset.assign(max_listed, std::string());
    ncomps = sqlite::getfluidnames(fluidpath, library, compset);
    std::vector<std::string> files;
    filelocation::searchdirectory(std::string(fluidpath), "*.vmx", files);
    for (const auto& file : files) {
        if (ncomps >= max_listed) break;
        compset[ncomps++] = file.substr(0, file.size() - 4);
    }
    compset.resize(std::clamp(ncomps, 0, max_listed));
}

void keep_components(const varimol_load::fluid_data& fluid, selection& state) {
    state.n_comps = fluid.n_comps;
    state.component_mmol.fill(0.0);
    for (int i = 0; i < std::clamp(fluid.n_comps, 0, max_components); ++i)
        state.component_mmol[i] =
            fluid.fluidparameters[varimol::parameter_index(varimol::row_molar_mass, i)];
}

std::string fluid_directory() {
    return filelocation::fluidpath(filelocation::library_module);
}

void getfluid(const selection& state, resolved_mixture& resolved, fluid_list list,
              std::string_view model_prefix, int& ncomp, zp_adapter::component_names& comp,
              zp_adapter::composition& conc) {
    const bool resolve = ncomp == -1;
    ncomp = state.ncmp;
    comp.fill("?");
    comp[0] = state.fluidname;
    conc = state.cnc;
    if (!resolve) return;
    if (!resolved.valid) {
        resolved.names = comp;
        resolved.conc = conc;
        resolved.n = resolve_mixture(fluid_directory(), state.fluidname, list, model_prefix,
                                     state.ncmp == 1, resolved.names, resolved.conc);
        resolved.valid = true;
    }
    comp = resolved.names;
    conc = resolved.conc;
    if (resolved.n >= 0) ncomp = resolved.n;
}

} // namespace cubic_adapter
