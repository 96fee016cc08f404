#include "base/zentropia_base.hpp"

#include "Import/mesheq_zp.hpp"

#if __has_include("transport/zentropia_transport.hpp")
#include "transport/zentropia_transport.hpp"
#define ZP_TRANSPORT_MODULE 1
#endif

#include <algorithm>
#include <charconv>
#include <cmath>

namespace zentropia_base {
namespace {

using zp_common::is_ok;
using zp_common::is_success;
using zp_common::no_errors;
using zp_common::not_set;
using zp_common::same_text;
using zp_common::trim;
using zp_models::model_id;

constexpr std::string_view model_name_unknown = "Error in Zentropia: model name unknown";
constexpr std::string_view invalid_model_name = "Error in Zentropia: invalid model name";
constexpr std::string_view alltransprops_unavailable =
    "Error in Zentropia: AllTransProps method not available for this library...";
constexpr std::string_view psat_k1_unavailable =
    "Error in Zentropia: Psat_k1 not available for specified model";
constexpr std::string_view xy_a_alfa_unavailable =
    "Error in Zentropia: xy_A_alfa not available for specified model";
constexpr std::string_view xy_kij_unavailable =
    "Error in Zentropia: xy_kij not available for specified model";
constexpr std::string_view hsxy_mp_unavailable =
    "Error in Zentropia: hsxy_mp not available for specified model";

// Model names are texts of 20 characters.
constexpr std::size_t model_name_length = 20;
constexpr std::string_view table_prefix = "msh_";
constexpr std::string_view table_model_prefix = "Msh_";
constexpr std::string_view placeholder_name = "xxx";

// Per-component molar-mass keywords of the back-ends' getinfo, component 1 to 20.
constexpr std::array<std::string_view, zp_common::max_components> component_mmol_keywords{
    "M_mol_1",  "M_mol_2",  "M_mol_3",  "M_mol_4",  "M_mol_5",  "M_mol_6",  "M_mol_7",
    "M_mol_8",  "M_mol_9",  "M_mol_10", "M_mol_11", "M_mol_12", "M_mol_13", "M_mol_14",
    "M_mol_15", "M_mol_16", "M_mol_17", "M_mol_18", "M_mol_19", "M_mol_20"};

// The names zpgetindex knows, at their index.
constexpr std::array<std::string_view, 12> indexed_models{
    "Zentropia", "liteVarimol", "Aerolt",  "IF97",    "LiBr-H2O", "Mesheq",
    "PCP-SAFT",  "RefProp",     "Critova", "Varimol", "TPSI",     "Kelvora"};
selection_state state{"", "", "", 0, {}, {}, 0, false};
// The selection resolved once: the models named by modelalias and modelname, and the adapter.
const zp_models::model* alias = &zp_models::of(model_id::none);
const zp_models::model* named = &zp_models::of(model_id::none);
const zp_adapter::operations* alias_ops = nullptr;

// The selected fluid is a mixture (decided at selection).
bool mixture_selected = false;

// Compositions as the back-end sees them (only the components handed to it).
composition work_x{};
composition work_y{};
composition work_lnphi{};

std::string transport_errormsg;

void resolve_selection() {
    alias = &zp_models::by_name(state.modelalias);
    named = &zp_models::by_name(state.modelname);
    alias_ops = alias->adapter;
}

void append_number(std::string& text, double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    text.append(buffer.data(), end);
}

// Names the inputs that are not numbers. A finite one is not shown: it arrives here in internal
// units, a value the caller never gave.
[[gnu::cold, gnu::noinline]] void report_non_finite(double input1, double input2,
                                                    std::string& errormsg) {
    errormsg.assign("Error in Zentropia: input values must be finite numbers, ");
    if (!std::isfinite(input1) && !std::isfinite(input2)) {
        errormsg.append("inputs 1 and 2 are ");
        append_number(errormsg, input1);
        errormsg.append(" and ");
    } else {
        errormsg.append(std::isfinite(input1) ? "input 2 is " : "input 1 is ");
    }
    append_number(errormsg, std::isfinite(input2) ? input1 : input2);
}

// Back-ends are not asked about states that are not numbers.
inline bool finite_inputs(double input1, double input2, std::string& errormsg) {
    if (std::isfinite(input1) && std::isfinite(input2)) [[likely]]
        return true;
    report_non_finite(input1, input2, errormsg);
    return false;
}

// An input specification is two property symbols, optionally followed by a phase marker: "liq" or
// "vap" at characters 4 to 6, or "ph" at characters 5 and 6, the third character being free
// ("PT liq", "Pq_vap", "PT 1ph"); trailing blanks are padding. The back-ends read the first two
// characters and the marker only, so anything else behind them would be ignored silently: such a
// text is refused.
[[gnu::noinline]] bool well_formed_padded(std::string_view inputspec) {
    const auto given = trim(inputspec);
    if (given.size() == 2) [[likely]]
        return true;
    if (given.size() != 6) return false;
    const auto marker = given.substr(3);
    return marker == "liq" || marker == "vap" || marker.substr(1) == "ph";
}

inline bool well_formed(std::string_view inputspec) {
    // the usual case, two letters without padding, needs no trimming
    if (inputspec.size() == 2 && inputspec[1] != ' ') [[likely]]
        return true;
    return well_formed_padded(inputspec);
}

[[gnu::cold, gnu::noinline]] void report_inputspec(std::string_view inputspec,
                                                   std::string& errormsg) {
    constexpr std::size_t shown = 32;
    const auto given = trim(inputspec);
    errormsg.assign("Error in Zentropia: input specification \"")
        .append(given.substr(0, shown))
        .append(given.size() > shown ? "...\"" : "\"")
        .append(" not understood: two property symbols are expected, optionally followed by a "
                "phase marker as in \"PT liq\"");
}

// A state request the back-ends can be asked: a well-formed input specification and two numbers.
inline bool valid_request(std::string_view inputspec, double input1, double input2,
                          std::string& errormsg) {
    if (!well_formed(inputspec)) [[unlikely]] {
        report_inputspec(inputspec, errormsg);
        return false;
    }
    return finite_inputs(input1, input2, errormsg);
}

// Copies the caller's compositions into the back-end's work arrays.
void copy_in(const composition& usr_x, const composition& usr_y) {
    std::copy_n(usr_x.begin(), state.usr_ncmp, work_x.begin());
    std::copy_n(usr_y.begin(), state.usr_ncmp, work_y.begin());
}

// Spreads back-end values over the caller's components: a component setfluid did not hand to the
// back-end receives 0.0, unless the back-end keeps such components.
void spread(const composition& backend_values, composition& caller_values, bool keeps_zero) {
    int k = 0;
    for (int i = 0; i < state.usr_ncmp; ++i) {
        if (zp_models::is_dropped(state.usr_cnc[i]) && !keeps_zero) {
            caller_values[i] = 0.0;
            --k;
        } else {
            caller_values[i] = backend_values[i + k];
        }
    }
}

void leave_placeholder() {
    mixture_selected = false;
    state.usr_ncmp = 1;
    state.ncmps = 1;
    state.usr_cmp.fill(std::string(placeholder_name));
    state.usr_cnc.fill(1.0);
}

bool valid_selection_input(int in_ncmp, std::span<const std::string> in_cmp,
                           std::span<const double> in_cnc, std::string& errormsg) {
    const auto fail = [&errormsg](const std::string& why) {
        errormsg.assign(zp_common::error_prefix).append(why);
        return false;
    };
    if (in_ncmp < 1 || in_ncmp > zp_common::max_components)
        return fail("number of components " + std::to_string(in_ncmp) + " outside 1 to 20");
    const auto n = static_cast<std::size_t>(in_ncmp);
    if (in_cmp.size() < n || in_cnc.size() < n)
        return fail(std::to_string(n) + " components announced but " +
                    std::to_string(in_cmp.size()) + " names and " + std::to_string(in_cnc.size()) +
                    " concentrations given");
    for (std::size_t i = 0; i < n; ++i) {
        const auto component = "component " + std::to_string(i + 1);
        if (in_cmp[i].size() > zp_common::max_name_length)
            return fail("name of " + component + " longer than 256 characters");
        if (!std::isfinite(in_cnc[i]))
            return fail("concentration of " + component + " is not a finite number");
        if (in_cnc[i] < 0.0) return fail("concentration of " + component + " is negative");
    }
    return true;
}

bool same_selection(std::string_view model, int in_ncmp, std::span<const std::string> in_cmp,
                    std::span<const double> in_cnc) {
    if (!same_text(model, state.modelname) || in_ncmp != state.usr_ncmp) return false;
    for (int i = 0; i < in_ncmp; ++i)
        if (in_cnc[i] != state.usr_cnc[i] || !same_text(in_cmp[i], state.usr_cmp[i])) return false;
    return true;
}

// The library's own transport model learns the fluid handed to the back-end. Its failure text
// stays with the transport module: a fluid it cannot describe still gets every property the
// back-end computes.
void configure_transport(int ncmp, std::span<const std::string> cmp, std::span<const double> cnc) {
#ifdef ZP_TRANSPORT_MODULE
    zentropia_transport::transport_setfluid(ncmp, cmp, cnc, transport_errormsg);
#else
    // Call site of zentropia_transport::transport_setfluid: until that module exists the hook
    // records success.
    (void)ncmp, (void)cmp, (void)cnc;
    transport_errormsg = no_errors;
#endif
}

// The operation `op` of the model's own operations; null when the model does not offer it.
template <typename Op>
Op special(const zp_models::model& m, Op zp_models::special_operations::*op) {
    return m.special != nullptr ? m.special->*op : nullptr;
}

// A bundle that only some back-ends offer (`offered`), run on the back-end's work compositions;
// any other model computes nothing here and leaves errormsg as it was.
template <typename Evaluate>
void special_bundle(bool offered, std::string_view inputspec, double input1, double input2,
                    composition& usr_x, composition& usr_y, std::string& errormsg,
                    Evaluate evaluate) {
    copy_in(usr_x, usr_y);
    if (offered) {
        if (valid_request(inputspec, input1, input2, errormsg)) evaluate();
    } else if (alias->id == model_id::none) {
        errormsg = model_name_unknown;
    }
    spread(work_x, usr_x, named->bundle_keeps_zero_components);
    spread(work_y, usr_y, named->bundle_keeps_zero_components);
}

} // namespace

const selection_state& selection() {
    return state;
}
const zp_models::model& selected_alias() {
    return *alias;
}
bool selected_mixture() {
    return mixture_selected;
}
const zp_models::model& selected_model() {
    return *named;
}

void zpgetindex(std::string_view modelname, int& index, int len_modelname) {
    const auto n = std::min<std::size_t>(std::max(len_modelname, 0), modelname.size());
    const auto name = trim(modelname.substr(0, n));
    index = -1;
    for (std::size_t i = 0; i < indexed_models.size(); ++i)
        if (name == indexed_models[i]) {
            index = static_cast<int>(i);
            return;
        }
}

void zpgetversion(std::string_view modelname, std::array<int, 4>& version) {
    version.fill(-9);
    const auto& m = zp_models::by_name(modelname);
    if (m.release_order >= 0) {
        if (m.adapter != nullptr && m.adapter->getversion != nullptr)
            m.adapter->getversion(version);
    } else if (!m.versionless)
        version.fill(-8);
}

void releaseobjects() {
    for (int i = 0; i < zp_models::released_count; ++i)
        if (const auto* ops = zp_models::released(i).adapter;
            ops != nullptr && ops->uninit != nullptr)
            ops->uninit();
}

void setfluid(std::string_view model, int in_ncmp, std::span<const std::string> in_cmp,
              std::span<const double> in_cnc, std::string& errormsg) {
    if (!valid_selection_input(in_ncmp, in_cmp, in_cnc, errormsg)) return leave_placeholder();

    const bool table_model = zp_common::lower(model.substr(0, table_prefix.size())) == table_prefix;
    const auto caller_model = trim(
        zp_common::fit(table_model ? model.substr(table_prefix.size()) : model, model_name_length));

    // A caller that passes the success text of its previous, identical selection keeps it.
    if (is_ok(errormsg) && same_selection(model, in_ncmp, in_cmp, in_cnc)) {
        errormsg = zp_common::same_fluid;
        return;
    }

    errormsg = no_errors;
    state.usr_ncmp = in_ncmp;
    state.ncmps = in_ncmp;
    for (int i = 0; i < zp_common::max_components; ++i) {
        state.usr_cmp[i] = i < in_ncmp ? std::string(trim(in_cmp[i])) : std::string();
        state.usr_cnc[i] = i < in_ncmp ? in_cnc[i] : 0.0;
    }

    // The canonical model: a text that names no model keeps the previous modelname.
    state.sublibrary = caller_model;
    state.islut = table_model;
    const auto& chosen = zp_models::by_text(caller_model);
    if (chosen.id == model_id::none) {
        errormsg = invalid_model_name;
        if (!caller_model.empty()) errormsg.append(" ").append(caller_model);
    } else {
        state.modelname = chosen.name;
        state.sublibrary = chosen.name;
    }
    if (table_model) {
        state.modelalias = zp_models::of(model_id::mesheq).name;
        state.modelname = std::string(table_model_prefix).append(state.sublibrary);
        state.modelname.resize(std::min(state.modelname.size(), model_name_length));
    } else {
        state.modelalias = state.modelname;
    }
    resolve_selection();

    // Components of (near) zero concentration stay away from most back-ends.
    const bool keeps_zero = !table_model && chosen.keeps_zero_components;
    component_names passed_cmp;
    composition passed_cnc{};
    int npassed = 0;
    for (int i = 0; i < in_ncmp; ++i)
        if (in_ncmp == 1 || keeps_zero || !zp_models::is_dropped(in_cnc[i])) {
            passed_cmp[npassed] = state.usr_cmp[i];
            passed_cnc[npassed] = in_cnc[i];
            ++npassed;
        }
    if (npassed == 0) { // every concentration zero: nothing would remain to describe
        errormsg.assign(zp_common::error_prefix).append("every concentration is zero");
    }
    state.ncmps = npassed;

    component_names lib_cmp;
    const auto passed_names = std::span<const std::string>(passed_cmp.data(), npassed);
    if (is_ok(errormsg))
        fluidstable::zp_to_libname(alias->id, npassed, passed_names,
                                   std::span<std::string>(lib_cmp.data(), npassed), errormsg);
    if (is_ok(errormsg)) {
        if (alias->fixed_fluid) {
            errormsg = zp_common::same_fluid; // its one fluid is always selected
        } else if (alias_ops != nullptr && alias_ops->setfluid != nullptr) {
            composition conc = passed_cnc;
            conc[0] += alias->first_conc_offset;
            alias_ops->setfluid(state.sublibrary, npassed,
                                alias->untranslated_names
                                    ? passed_names
                                    : std::span<const std::string>(lib_cmp.data(), npassed),
                                std::span<const double>(conc.data(), npassed), errormsg);
        }
        if (is_success(errormsg)) {
            mixture_selected =
                npassed > 1 || (alias_ops != nullptr && alias_ops->fluid_components != nullptr &&
                                alias_ops->fluid_components() > 1);
            configure_transport(npassed, passed_names,
                                std::span<const double>(passed_cnc.data(), npassed));
        }
    }
    if (!is_success(errormsg)) leave_placeholder();
}

void getfluid(std::string& model, int& ncomp, std::array<std::string, 20>& comp,
              zp_common::composition& conc) {
    model = state.modelname;
    if (alias_ops != nullptr && alias_ops->getfluid != nullptr)
        alias_ops->getfluid(ncomp, comp, conc);
    // These back-ends describe the fluid by their own parameters: report the caller's selection.
    if (alias->reports_caller_fluid) {
        ncomp = state.usr_ncmp;
        comp = state.usr_cmp;
        conc = state.usr_cnc;
    }
}

void allthermophys(std::string_view inputspec, double input1, double input2, double& p, double& t,
                   double& v, double& d, double& h, double& s, double& u, double& q,
                   zp_common::composition& usr_x, zp_common::composition& usr_y, double& cv,
                   double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                   double& dcvdt, double& eta, double& lambda, double& sigma,
                   std::string& errormsg) {
    sigma = not_set; // stays when the back-end has no surface tension
    copy_in(usr_x, usr_y);
    if (alias_ops == nullptr || alias_ops->allprops == nullptr)
        errormsg = model_name_unknown;
    else if (valid_request(inputspec, input1, input2, errormsg))
        alias_ops->allprops(inputspec, input1, input2, p, t, v, d, h, s, u, q, work_x, work_y,
                            work_lnphi, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda,
                            sigma, errormsg);
    spread(work_x, usr_x, named->keeps_zero_components);
    spread(work_y, usr_y, named->keeps_zero_components);
}

namespace {

// The general part of a state: with its phase compositions, or from an adapter that evaluates
// whole states only, or without a model.
[[gnu::noinline]] void general_part(std::string_view inputspec, double input1, double input2,
                                    unsigned wanted, zp_adapter::state_values& out,
                                    zp_common::composition& usr_x, zp_common::composition& usr_y,
                                    std::string& errormsg) {
    const bool compositions = (wanted & zp_adapter::output::q) != 0;
    if (compositions) copy_in(usr_x, usr_y);
    if (alias_ops == nullptr || alias_ops->allprops == nullptr) {
        errormsg = model_name_unknown;
    } else if (valid_request(inputspec, input1, input2, errormsg)) {
        if (alias_ops->evaluate != nullptr)
            alias_ops->evaluate(inputspec, input1, input2, wanted, out, work_x, work_y, errormsg);
        else
            alias_ops->allprops(inputspec, input1, input2, out.p, out.t, out.v, out.d, out.h, out.s,
                                out.u, out.q, work_x, work_y, work_lnphi, out.cv, out.dpdt,
                                out.dpdv, out.d2pdt2, out.d2pdv2, out.d2pdtdv, out.dcvdt, out.eta,
                                out.lambda, out.sigma, errormsg);
    }
    if (!compositions) return;
    spread(work_x, usr_x, named->keeps_zero_components);
    spread(work_y, usr_y, named->keeps_zero_components);
}

} // namespace

void allthermophys_part(std::string_view inputspec, double input1, double input2, unsigned wanted,
                        zp_adapter::state_values& out, zp_common::composition& usr_x,
                        zp_common::composition& usr_y, std::string& errormsg) {
    out.sigma = not_set; // stays when the back-end has no surface tension
    // The usual single property: no phase compositions, an adapter that evaluates parts of
    // states, nothing to do after its answer.
    if ((wanted & zp_adapter::output::q) == 0 && alias_ops != nullptr &&
        alias_ops->allprops != nullptr && alias_ops->evaluate != nullptr) [[likely]] {
        if (!well_formed(inputspec) || !std::isfinite(input1) || !std::isfinite(input2))
            [[unlikely]] {
            valid_request(inputspec, input1, input2, errormsg); // writes the text
            return;
        }
        return alias_ops->evaluate(inputspec, input1, input2, wanted, out, work_x, work_y,
                                   errormsg);
    }
    general_part(inputspec, input1, input2, wanted, out, usr_x, usr_y, errormsg);
}

void allthermophyssu2(std::string_view inputspec, double input1, double input2, double& p,
                      double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                      zp_common::composition& usr_x, zp_common::composition& usr_y, double& cv,
                      double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                      double& dcvdt, double& eta, double& lambda, double& sigma,
                      std::string& errormsg) {
    allthermophys(inputspec, input1, input2, p, t, v, d, h, s, u, q, usr_x, usr_y, cv, dpdt, dpdv,
                  d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, sigma, errormsg);
}

double calculate(std::string_view inputspec, double input1, double input2,
                 std::string_view outputspec, std::string& errormsg) {
    if (alias_ops == nullptr || alias_ops->prop == nullptr) {
        errormsg = invalid_model_name;
        return 0.0;
    }
    if (!valid_request(inputspec, input1, input2, errormsg)) return not_set;
    return alias_ops->prop(inputspec, input1, input2, outputspec, errormsg);
}

double getinfo(std::string_view property, std::string& errormsg) {
    if (alias_ops == nullptr || alias_ops->getinfo == nullptr) {
        errormsg = model_name_unknown;
        return not_set;
    }
    return alias_ops->getinfo(property, errormsg);
}

double zp_mmol(std::string& errormsg) {
    return getinfo("M_mol", errormsg);
}
double zp_tcrit(std::string& errormsg) {
    return getinfo("T_crit", errormsg);
}
double zp_pcrit(std::string& errormsg) {
    return getinfo("P_crit", errormsg);
}
double zp_tmin(std::string& errormsg) {
    return getinfo("T_min", errormsg);
}
double zp_tmax(std::string& errormsg) {
    return getinfo("T_max", errormsg);
}

void zp_mmolcomp(zp_common::composition& mmol, std::string& errormsg) {
    // A back-end of one component answers "M_mol"; a mixture back-end gives its components'
    // molar masses through its row, or answers "M_mol_<i>" for its component i (counted from 1).
    composition backend_mmol{};
    if (state.ncmps <= 1) {
        backend_mmol[0] = zp_mmol(errormsg);
    } else if (alias_ops != nullptr && alias_ops->mmolcomp != nullptr) {
        alias_ops->mmolcomp(backend_mmol, errormsg);
    } else {
        for (int i = 0; i < state.ncmps; ++i) {
            backend_mmol[i] = getinfo(component_mmol_keywords[i], errormsg);
            if (!is_ok(errormsg)) break;
        }
    }
    mmol.fill(0.0);
    if (is_ok(errormsg)) spread(backend_mmol, mmol, named->keeps_zero_components);
}

double zp_mmol_cnc(std::span<const double> cnc, std::string& errormsg) {
    if (state.ncmps <= 1) return zp_mmol(errormsg);
    composition mmol{};
    zp_mmolcomp(mmol, errormsg);
    if (!is_ok(errormsg)) return not_set;
    double amount = 0.0, mass = 0.0;
    const auto n = std::min<std::size_t>(state.usr_ncmp, cnc.size());
    for (std::size_t i = 0; i < n; ++i)
        if (std::isfinite(cnc[i]) && cnc[i] > 0.0) {
            amount += cnc[i];
            mass += cnc[i] * mmol[i];
        }
    if (amount <= 0.0) {
        errormsg.assign(zp_common::error_prefix).append("composition without a positive amount");
        return not_set;
    }
    return mass / amount;
}

void zflow_tmd_vu(double& p, double& t, double& v, double& h, double& s, double& u, double& cv,
                  double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
                  double& dcvdt, std::string& errormsg) {
    if (alias_ops != nullptr && alias_ops->zflow_vu != nullptr) {
        if (finite_inputs(v, u, errormsg))
            alias_ops->zflow_vu(p, t, v, h, s, u, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt,
                                errormsg);
    } else if (alias->id != model_id::none) {
        double d = not_set, q = not_set, eta = not_set, lambda = not_set, sigma = not_set;
        composition x{}, y{};
        allthermophys("vu", v, u, p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv, d2pdt2, d2pdv2,
                      d2pdtdv, dcvdt, eta, lambda, sigma, errormsg);
    } else {
        errormsg = model_name_unknown;
    }
}

void zp_allpropsallphases(std::string_view inputspec, double input1, double input2, phase_values& p,
                          phase_values& t, phase_values& v, phase_values& d, phase_values& h,
                          phase_values& s, phase_values& u, double& q,
                          zp_common::composition& usr_x, zp_common::composition& usr_y,
                          phase_values& cv, phase_values& dpdt, phase_values& dpdv,
                          phase_values& d2pdt2, phase_values& d2pdv2, phase_values& d2pdtdv,
                          phase_values& dcvdt, double& eta, double& lambda, std::string& errormsg) {
    const auto op = special(*alias, &zp_models::special_operations::allpropsallphases);
    special_bundle(op != nullptr, inputspec, input1, input2, usr_x, usr_y, errormsg, [&] {
        op(inputspec, input1, input2, p, t, v, d, h, s, u, q, work_x, work_y, cv, dpdt, dpdv,
           d2pdt2, d2pdv2, d2pdtdv, dcvdt, eta, lambda, errormsg);
    });
}

void zp_allpropssatext(std::string_view inputspec, double input1, double input2, double& p,
                       double& t, double& v, double& d, double& h, double& s, double& u, double& q,
                       zp_common::composition& usr_x, zp_common::composition& usr_y, double& v_liq,
                       double& d_liq, double& h_liq, double& s_liq, double& u_liq, double& v_vap,
                       double& d_vap, double& h_vap, double& s_vap, double& u_vap,
                       std::string& errormsg) {
    const auto op = special(*alias, &zp_models::special_operations::allpropssatext);
    special_bundle(op != nullptr, inputspec, input1, input2, usr_x, usr_y, errormsg, [&] {
        op(inputspec, input1, input2, p, t, v, d, h, s, u, q, work_x, work_y, v_liq, d_liq, h_liq,
           s_liq, u_liq, v_vap, d_vap, h_vap, s_vap, u_vap, errormsg);
    });
}

void alltransprops_zp(double t, double d, double& eta, double& eta_t, double& eta_d, double& lambda,
                      double& lambda_t, double& lambda_d, std::string& errormsg) {
    // The absorption pairs are listed without their hyphen here, so they are unlisted.
    if (!alias->lists_transport_slopes) {
        errormsg = model_name_unknown;
    } else if (const auto op = special(*alias, &zp_models::special_operations::alltransprops);
               op == nullptr) {
        errormsg = alltransprops_unavailable;
    } else if (finite_inputs(t, d, errormsg)) {
        op(t, d, eta, eta_t, eta_d, lambda, lambda_t, lambda_d, errormsg);
    }
}

void capeopenderiv_zp(std::string_view inputspec, double input1, double input2, double& v,
                      double& h, double& s, double& g, zp_common::composition& lnphi,
                      std::string& errormsg) {
    const auto op = special(*named, &zp_models::special_operations::capeopenderiv);
    if (op == nullptr) {
        errormsg.assign("Error in Zentropia: CapeOpenDeriv_ZP not available for ")
            .append(trim(state.modelname))
            .append(" ...");
        return;
    }
    if (valid_request(inputspec, input1, input2, errormsg))
        op(inputspec, input1, input2, v, h, s, g, lnphi, errormsg);
}

void psat_k1(double k1, double t, double& psat, std::string& errormsg) {
    const auto* ops = named->adapter;
    if (ops == nullptr || ops->psat_k1 == nullptr)
        errormsg = psat_k1_unavailable;
    else if (finite_inputs(k1, t, errormsg))
        ops->psat_k1(k1, t, psat, errormsg);
}

void xy_a_alfa(double aij, double aji, double alfa, double p, double t, std::array<double, 2>& x,
               std::array<double, 2>& y, std::string& errormsg) {
    const auto op = special(*named, &zp_models::special_operations::xy_a_alfa);
    if (op == nullptr)
        errormsg = xy_a_alfa_unavailable;
    else if (finite_inputs(p, t, errormsg))
        op(aij, aji, alfa, p, t, x, y, errormsg);
}

void xy_kij(double kij, double p, double t, std::array<double, 2>& x, std::array<double, 2>& y,
            std::string& errormsg) {
    const auto op = special(*named, &zp_models::special_operations::xy_kij);
    if (op == nullptr)
        errormsg = xy_kij_unavailable;
    else if (finite_inputs(p, t, errormsg))
        op(kij, p, t, x, y, errormsg);
}

void hsxy_mp(double p, double t, double molpar, double& h_r, double& s_r, zp_common::composition& x,
             zp_common::composition& y, std::string& errormsg) {
    const auto op = special(*named, &zp_models::special_operations::hsxy_mp);
    if (op == nullptr)
        errormsg = hsxy_mp_unavailable;
    else if (finite_inputs(p, t, errormsg))
        op(t, p, molpar, h_r, s_r, x, y, errormsg);
}

void zp_saturationline(int& npnts, std::span<double> t, std::span<double> p,
                       std::span<zp_common::composition> x, std::span<zp_common::composition> y,
                       std::string& errormsg) {
    if (alias_ops != nullptr && alias_ops->phaseenvelope != nullptr) {
        errormsg = no_errors;
        alias_ops->phaseenvelope(npnts, t, p, x, y, errormsg);
    } else if (alias->id != model_id::none) {
        // no blank before "not available."
        errormsg.assign("Error in Zentropia: phase envelope method for ")
            .append(trim(state.modelalias))
            .append("not available.");
    } // no model: nothing is written
}

namespace {
void composition_output(zp_adapter::composition_op zp_adapter::operations::*op,
                        std::string_view what, std::string_view inputspec, double input1,
                        double input2, zp_common::composition& output, std::string& errormsg) {
    if (alias_ops == nullptr) {
        errormsg = model_name_unknown;
    } else if (alias_ops->*op == nullptr) {
        errormsg.assign(zp_common::error_prefix)
            .append(what)
            .append(" not available for ")
            .append(trim(state.modelalias));
    } else if (valid_request(inputspec, input1, input2, errormsg)) {
        (alias_ops->*op)(inputspec, input1, input2, output, errormsg);
    }
}
} // namespace

void liquidcmp_zp(std::string_view inputspec, double input1, double input2,
                  zp_common::composition& output, std::string& errormsg) {
    composition_output(&zp_adapter::operations::liquidcmp, "liquid composition", inputspec, input1,
                       input2, output, errormsg);
}

void vaporcmp_zp(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg) {
    composition_output(&zp_adapter::operations::vaporcmp, "vapour composition", inputspec, input1,
                       input2, output, errormsg);
}

void fugacoef_zp(std::string_view inputspec, double input1, double input2,
                 zp_common::composition& output, std::string& errormsg) {
    composition_output(&zp_adapter::operations::fugacoef, "fugacity coefficients", inputspec,
                       input1, input2, output, errormsg);
}

void settable(std::string_view tablename, std::string_view tabletype,
              std::string_view interpolmethod, std::string_view meshname,
              std::string_view searchalg, int phase, std::string& errormsg) {
    mesheq_zp::mesheq_settable(tablename, tabletype, interpolmethod, meshname, searchalg, phase,
                               errormsg);
}

void settable_new(std::string_view tablename, std::string_view inputspec, double input1_min,
                  double input1_max, double input2_min, double input2_max, double meshspacing,
                  std::string_view tabletype, std::string_view intpolmethod,
                  std::string_view searchalg, std::string& errormsg) {
    mesheq_zp::mesheq_settable_new(tablename, inputspec, input1_min, input1_max, input2_min,
                                   input2_max, meshspacing, tabletype, intpolmethod, searchalg,
                                   errormsg);
}

void usetable(std::string_view tablename, std::string& errormsg) {
    mesheq_zp::mesheq_usetable(tablename, errormsg);
}

void alltableinfo(std::string& sublibrary, std::string& fluid, std::string& table_type,
                  std::string& intpol_method, std::string& search_alg, std::string& table_props,
                  double& x_min, double& x_max, double& y_min, double& y_max, double& mesh_space,
                  int& nzones, std::string& errormsg) {
    mesheq_zp::mesheq_alltableinfo(sublibrary, fluid, table_type, intpol_method, search_alg,
                                   table_props, x_min, x_max, y_min, y_max, mesh_space, nzones,
                                   errormsg);
}

} // namespace zentropia_base
