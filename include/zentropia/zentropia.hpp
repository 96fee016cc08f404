#pragma once
// The C++ interface of Zentropia, over the C library libzentropia_c (zentropia.h): needs nothing
// but the installed headers and C++17. Link Zentropia::zentropia (CMake) or `pkg-config --libs
// zentropia`.
//
// Two layers, as in Python:
//  - the procedures of the programming interface with C++ texts: the same names and argument
//    order, texts as std::string_view, errormsg last as std::string& ("No errors" on success);
//  - zentropia::fluid, for everyday use: it selects its model, components and units, refuses a
//    component its model cannot compute, throws zentropia::error with the library's message and
//    answers NaN for a property the model does not compute.
// The library keeps one process-wide selection (model, fluid, unit set): serialise the calls of
// all threads, and let one fluid object be the selection at a time (a fluid selects itself again
// before every evaluation, which costs a comparison when nothing changed in between).
#include "zentropia/version.h"
#include "zentropia/zentropia.h"

#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zentropia {

// The value of an output that nothing computed, in every unit set.
inline constexpr double not_computed = -8888.8;
// The largest number of components of a fluid.
inline constexpr int max_components = 20;

// "0.1.0": the version of this library.
inline constexpr std::string_view version = ZENTROPIA_VERSION;

// A failure the library reported; what() is its message.
struct error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

namespace detail {

// A NUL-terminated copy of a text for the C interface.
inline std::string c_text(std::string_view text) {
    return std::string(text);
}

// The buffer a C procedure writes its message into.
struct message {
    char text[1024] = "No errors";
    void to(std::string& errormsg) const { errormsg = text; }
};

inline bool succeeded(std::string_view errormsg) {
    return errormsg == "No errors" || errormsg == "Same fluid";
}

// equal in any case (ASCII)
inline bool same_name(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

inline bool listed(std::string_view name, const std::vector<std::string>& names) {
    for (const auto& n : names)
        if (same_name(name, n)) return true;
    return false;
}

inline std::string first_names(const std::vector<std::string>& names) {
    std::string out;
    for (std::size_t i = 0; i < names.size() && i < 12; ++i) out += (i ? ", " : "") + names[i];
    if (names.size() > 12) out += ", ...";
    return out;
}

inline double or_nan(double value) {
    return std::fabs(value - not_computed) < 0.1 ? std::numeric_limits<double>::quiet_NaN() : value;
}

} // namespace detail

// ---- The procedures, errormsg last -----------------------------------------------------------

// unitset "SI", "Zentropia" or "Anglo-Saxon"; massormole "PerMass" or "PerMole"; overrides as
// comma-separated lists ("P,T" with "MPa,C")
inline void setunits(std::string_view unitset, std::string_view massormole,
                     std::string_view propsymbol, std::string_view propunit,
                     std::string& errormsg) {
    detail::message m;
    zentropia_setunits(detail::c_text(unitset).c_str(), detail::c_text(massormole).c_str(),
                       detail::c_text(propsymbol).c_str(), detail::c_text(propunit).c_str(), m.text,
                       sizeof m.text);
    m.to(errormsg);
}

// selects model, components and their concentrations
inline void setfluid(std::string_view model, const std::vector<std::string>& components,
                     const std::vector<double>& composition, std::string& errormsg) {
    std::vector<const char*> names;
    for (const auto& c : components) names.push_back(c.c_str());
    detail::message m;
    zentropia_setfluid(detail::c_text(model).c_str(), static_cast<int>(components.size()),
                       names.data(), static_cast<int>(names.size()), composition.data(),
                       static_cast<int>(composition.size()), m.text, sizeof m.text);
    m.to(errormsg);
}

// one property by keyword ("h" or "enthalpy", "cp", "alpha", "eta" ...) at a state
inline double calcprop(std::string_view propspec, std::string_view inputspec, double input1,
                       double input2, std::string& errormsg) {
    detail::message m;
    const double value =
        zentropia_calcprop(detail::c_text(propspec).c_str(), detail::c_text(inputspec).c_str(),
                           input1, input2, m.text, sizeof m.text);
    m.to(errormsg);
    return value;
}

// One entry point per property: pressure, temperature, specvolume, density, enthalpy, entropy,
// intenergy, gibbsenergy, helmholtzenergy, heatcapv, heatcapp, soundspeed, alpha, beta, chi, fi,
// ksi, psi, zeta, theta, kappa, gamma, vaporqual, viscosity, thermcond, surftens.
#define ZENTROPIA_CXX_SINGLE_PROPERTY(name)                                                        \
    inline double name(std::string_view inputspec, double input1, double input2,                   \
                       std::string& errormsg) {                                                    \
        detail::message m;                                                                         \
        const double value = zentropia_##name(detail::c_text(inputspec).c_str(), input1, input2,   \
                                              m.text, sizeof m.text);                              \
        m.to(errormsg);                                                                            \
        return value;                                                                              \
    }
ZENTROPIA_SINGLE_PROPERTIES(ZENTROPIA_CXX_SINGLE_PROPERTY)
#undef ZENTROPIA_CXX_SINGLE_PROPERTY

// Every single-value output of allprops, in its argument order, and the phase compositions.
struct state {
    double p, t, v, d, h, s, u, q, cv, cp, c, alpha, beta, chi, fi, ksi, psi, zeta, theta, kappa,
        gamma, eta, lambda;
    std::array<double, max_components> x, y;
};

inline void allprops(std::string_view inputspec, double input1, double input2, state& r,
                     std::string& errormsg) {
    detail::message m;
    zentropia_allprops(detail::c_text(inputspec).c_str(), input1, input2, &r.p, &r.t, &r.v, &r.d,
                       &r.h, &r.s, &r.u, &r.q, r.x.data(), max_components, r.y.data(),
                       max_components, &r.cv, &r.cp, &r.c, &r.alpha, &r.beta, &r.chi, &r.fi, &r.ksi,
                       &r.psi, &r.zeta, &r.theta, &r.kappa, &r.gamma, &r.eta, &r.lambda, m.text,
                       sizeof m.text);
    m.to(errormsg);
}

// the caller's unit of a property symbol ("P", "h", "Mmol" ...), Latin-1 (degree sign 0xB0)
inline std::string getunit(std::string_view symbol, std::string& errormsg) {
    char unit[64] = "";
    detail::message m;
    zentropia_getunit(detail::c_text(symbol).c_str(), unit, sizeof unit, m.text, sizeof m.text);
    m.to(errormsg);
    return unit;
}

// the value of input targt (1 or 2) of inputspec in [minval, maxval] at which funcspec equals
// funcval, the other input fixed at fixedval
inline double solve(std::string_view funcspec, double funcval, std::string_view inputspec,
                    int targt, double fixedval, double minval, double maxval,
                    std::string& errormsg) {
    detail::message m;
    const double value = zentropia_solve(detail::c_text(funcspec).c_str(), funcval,
                                         detail::c_text(inputspec).c_str(), targt, fixedval, minval,
                                         maxval, m.text, sizeof m.text);
    m.to(errormsg);
    return value;
}

// npnts values of calcspec along runspec from minval to maxval at constant propspec = propval;
// runval and calcval are resized to the points written
inline void isoline(std::string_view propspec, double propval, std::string_view runspec,
                    std::string_view calcspec, double minval, double maxval, int npnts,
                    std::vector<double>& runval, std::vector<double>& calcval,
                    std::string& errormsg) {
    const std::size_t room = npnts > 0 ? static_cast<std::size_t>(npnts) + 8 : 8;
    runval.assign(room, std::numeric_limits<double>::quiet_NaN());
    calcval.assign(room, std::numeric_limits<double>::quiet_NaN());
    detail::message m;
    zentropia_isoline(detail::c_text(propspec).c_str(), propval, detail::c_text(runspec).c_str(),
                      detail::c_text(calcspec).c_str(), minval, maxval, npnts, runval.data(),
                      static_cast<int>(room), calcval.data(), static_cast<int>(room), m.text,
                      sizeof m.text);
    m.to(errormsg);
    std::size_t n = room;
    while (n > 0 && std::isnan(runval[n - 1])) --n;
    runval.resize(n);
    calcval.resize(n);
}

// molar mass, critical temperature and pressure, temperature range, in the caller's units
inline void allinfo(double& m_mol, double& t_crit, double& p_crit, double& t_min, double& t_max,
                    std::string& errormsg) {
    detail::message m;
    zentropia_allinfo(&m_mol, &t_crit, &p_crit, &t_min, &t_max, m.text, sizeof m.text);
    m.to(errormsg);
}

// a back-end's four version numbers; -9 when it reports none, -8 for an unknown model
inline std::array<int, 4> zpgetversion(std::string_view modelname) {
    std::array<int, 4> v{};
    zentropia_zpgetversion(detail::c_text(modelname).c_str(), v.data(), 4);
    return v;
}

// the component names model's back-end computes
inline std::vector<std::string> getcompset(std::string_view model, std::string& errormsg) {
    constexpr int count = 2048, width = 64;
    std::vector<char> names(static_cast<std::size_t>(count) * width, '\0');
    int n = 0;
    detail::message m;
    zentropia_getcompset(detail::c_text(model).c_str(), &n, names.data(), count, width, m.text,
                         sizeof m.text);
    m.to(errormsg);
    std::vector<std::string> out;
    for (int i = 0; i < n && i < count; ++i) out.emplace_back(names.data() + i * width);
    return out;
}

// the fluid table's names (longshortcas 0 long, 1 short, 2 CAS) that model's back-end offers
// (every fluid of the table for an empty model)
inline std::vector<std::string> getfluidnames(int longshortcas, std::string_view model,
                                              std::string& errormsg) {
    constexpr int count = 1000, width = 64;
    std::vector<char> names(static_cast<std::size_t>(count) * width, '\0');
    int n = 0;
    detail::message m;
    zentropia_getfluidnames(longshortcas, detail::c_text(model).c_str(), &n, names.data(), count,
                            width, m.text, sizeof m.text);
    m.to(errormsg);
    std::vector<std::string> out;
    for (int i = 0; i < n && i < count; ++i) out.emplace_back(names.data() + i * width);
    return out;
}

// Throws error unless model can compute every one of components: a model without its back-end
// library says so; a model that computes one fluid (IF97: water) refuses other names and
// mixtures. A name counts by any of its names in the fluid table (long, short, CAS number).
// setfluid itself answers as it always has; this check is for the convenience layers.
inline void check_components(std::string_view model, const std::vector<std::string>& components) {
    std::string errormsg;
    const auto offered = getcompset(model, errormsg);
    if (errormsg.find("not installed") != std::string::npos) throw error(errormsg);
    if (!detail::succeeded(errormsg) || offered.empty()) return; // setfluid tells what is wrong
    if (offered.size() == 1 && components.size() > 1)
        throw error("Error in Zentropia: model " + std::string(model) + " computes " +
                    offered.front() + " alone, not a mixture of " +
                    std::to_string(components.size()) + " components");
    std::array<std::vector<std::string>, 3> table, of_model;
    for (int k = 0; k < 3; ++k) {
        table[k] = getfluidnames(k, "", errormsg);
        of_model[k] = getfluidnames(k, model, errormsg);
    }
    for (const auto& c : components) {
        bool known = detail::listed(c, offered);
        for (int k = 0; k < 3 && !known; ++k) known = detail::listed(c, of_model[k]);
        // the table's row of c, by any of its names, names a fluid the model offers
        for (std::size_t row = 0; row < table[0].size() && !known; ++row) {
            bool is_row = false, offered_row = false;
            for (int k = 0; k < 3; ++k) {
                if (row >= table[k].size()) continue;
                is_row = is_row || detail::same_name(c, table[k][row]);
                offered_row = offered_row || detail::listed(table[k][row], offered);
            }
            known = is_row && offered_row;
        }
        if (!known)
            throw error("Error in Zentropia: model " + std::string(model) + " cannot compute \"" +
                        (c.size() > 64 ? c.substr(0, 64) + "..." : c) + "\"; it computes " +
                        detail::first_names(offered));
    }
}

// ---- The phase of a state ---------------------------------------------------------------------

enum class phase : int { liquid = 0, vapour = 1, two_phase = 2, supercritical = 3, unknown = 4 };
inline constexpr std::array<std::string_view, 5> phase_names{"liquid", "vapour", "two-phase",
                                                             "supercritical", ""};

// The phase of a state from its quality q and its temperature and pressure against the critical
// point (all in one unit set; t_crit or p_crit -8888.8 or NaN when unknown): two-phase for
// 0 < q < 1 (the bounds of the two-phase test of the derivative properties), supercritical at or
// above both critical values, else vapour at or above the critical temperature or for q >= 1 (the
// models report superheated vapour with q > 1), liquid otherwise.
inline phase phase_of(double q, double t, double p, double t_crit, double p_crit) {
    const auto known = [](double v) { return v == v && std::fabs(v - not_computed) >= 0.1; };
    if (!known(q)) return phase::unknown;
    if (q > 1e-8 && q < 0.99999999) return phase::two_phase;
    const bool critical_known = known(t_crit) && known(p_crit);
    if (critical_known && t >= t_crit && p >= p_crit) return phase::supercritical;
    if (critical_known && t >= t_crit) return phase::vapour;
    if (critical_known && p >= p_crit) return phase::liquid;
    return q >= 0.5 ? phase::vapour : phase::liquid;
}

// whether the liquid and the vapour phase exist in a state of phase `label` (both in the two-phase
// region and above the critical point, where a pure fluid is one phase that is either)
inline bool has_liquid(phase label) {
    return label == phase::liquid || label == phase::two_phase || label == phase::supercritical;
}
inline bool has_vapour(phase label) {
    return label == phase::vapour || label == phase::two_phase || label == phase::supercritical;
}

// ---- fluid: the convenience layer ---------------------------------------------------------------

class fluid {
public:
    // model ("IF97" ...), components with their concentrations (a single component may omit
    // it), unit set ("SI", "Zentropia", "Anglo-Saxon", any case) and basis; throws error
    fluid(std::string model, std::vector<std::string> components,
          std::vector<double> composition = {}, std::string units = "SI",
          std::string basis = "PerMass")
        : model_(std::move(model)), components_(std::move(components)),
          composition_(std::move(composition)), units_(std::move(units)), basis_(std::move(basis)) {
        units_ = canonical(units_, {"SI", "Zentropia", "Anglo-Saxon"});
        basis_ = canonical(basis_, {"PerMass", "PerMole"});
        if (composition_.empty() && components_.size() == 1) composition_.push_back(1.0);
        if (composition_.size() != components_.size())
            throw error("Error in Zentropia: " + std::to_string(components_.size()) +
                        " components but " + std::to_string(composition_.size()) +
                        " concentrations");
        check_components(model_, components_);
        select();
    }

    // a property by keyword at one state, in the fluid's units; NaN when the model does not
    // compute it there; throws error when the state fails
    double calc(std::string_view prop, std::string_view inputspec, double input1, double input2) {
        select();
        std::string errormsg;
        const double value = calcprop(prop, inputspec, input1, input2, errormsg);
        if (!detail::succeeded(errormsg)) throw error(errormsg);
        const entry from = derived_entry(prop);
        return detail::or_nan(from ? derive(from, inputspec, input1, input2, value) : value);
    }

    // every output of allprops; a property the full state lacks comes from its own entry point
    // (IF97's full state has no pressure derivatives), else NaN; sigma the surface tension; the
    // phase. x and y hold one entry per component (ncomp of them): for a blend selected by one
    // name ("R410A"), one per pure fluid it is made of, in the order the model resolves it; for a
    // pure fluid x[0] and y[0] are 1.0 where the phase exists, NaN where it does not.
    struct properties : state {
        double sigma;
        zentropia::phase phase;
        int ncomp;
    };
    properties props(std::string_view inputspec, double input1, double input2) {
        select();
        properties r{};
        std::string errormsg;
        allprops(inputspec, input1, input2, r, errormsg);
        if (!detail::succeeded(errormsg)) throw error(errormsg);
        r.sigma = not_computed;
        const std::pair<double*, std::string_view> derived[] = {
            {&r.alpha, "alpha"}, {&r.beta, "beta"},   {&r.chi, "chi"},    {&r.fi, "fi"},
            {&r.ksi, "ksi"},     {&r.psi, "psi"},     {&r.zeta, "zeta"},  {&r.theta, "theta"},
            {&r.kappa, "kappa"}, {&r.gamma, "gamma"}, {&r.sigma, "sigma"}};
        for (const auto& [value, name] : derived)
            *value = derive(derived_entry(name), inputspec, input1, input2, *value);
        for (double* v :
             {&r.p,   &r.t,    &r.v,     &r.d,     &r.h,     &r.s,   &r.u,      &r.q,
              &r.cv,  &r.cp,   &r.c,     &r.alpha, &r.beta,  &r.chi, &r.fi,     &r.ksi,
              &r.psi, &r.zeta, &r.theta, &r.kappa, &r.gamma, &r.eta, &r.lambda, &r.sigma})
            *v = detail::or_nan(*v);
        double m_mol, t_crit, p_crit, t_min, t_max;
        allinfo(m_mol, t_crit, p_crit, t_min, t_max, errormsg);
        if (!detail::succeeded(errormsg)) t_crit = p_crit = not_computed;
        r.phase = phase_of(r.q, r.t, r.p, t_crit, p_crit);
        r.ncomp = static_cast<int>(components_.size());
        std::array<double, max_components> overall{};
        if (components_.size() == 1 && (r.ncomp = blend_components(overall)) > 1 &&
            !(r.q >= 0.0 && r.q <= 1.0)) {
            // a one-name blend outside the two-phase region: both phases at its overall
            // composition, as for the same blend selected by its pure fluids
            r.x = r.y = overall;
        } else if (r.ncomp > 1 && components_.size() == 1) {
            // The full state of a one-name blend carries the single entry of the caller's one
            // component; the composition entry points answer for each of its pure fluids.
            const auto composition = [&](auto entry, std::array<double, max_components>& out) {
                detail::message m;
                entry(detail::c_text(inputspec).c_str(), input1, input2, out.data(),
                      max_components, m.text, sizeof m.text);
                if (std::string_view(m.text) != "No errors") out.fill(not_computed);
                for (double& v : out) v = detail::or_nan(v);
            };
            composition(&zentropia_liquidcmp, r.x);
            composition(&zentropia_vaporcmp, r.y);
        } else if (components_.size() == 1) {
            const double nan = std::numeric_limits<double>::quiet_NaN();
            r.x.fill(0.0), r.y.fill(0.0);
            r.x[0] = has_liquid(r.phase) ? 1.0 : nan;
            r.y[0] = has_vapour(r.phase) ? 1.0 : nan;
        }
        return r;
    }

    const std::string& model() const { return model_; }
    const std::vector<std::string>& components() const { return components_; }

private:
    // the number of pure fluids of the selected one-name fluid as the model resolves it (getfluid
    // asked with ncomp = -1), and their mole fractions; 1 for a pure fluid or a model that
    // resolves nothing
    static int blend_components(std::array<double, max_components>& conc) {
        char model[64] = "";
        int n = -1;
        zentropia_getfluid(model, sizeof model, &n, nullptr, 0, 0, conc.data(), max_components);
        return n > 1 && n <= max_components ? n : 1;
    }
    using entry = double (*)(const char*, double, double, char*, int);
    // The entry point that derives a property the model's full state may lack (IF97 has no
    // pressure derivatives there), by keyword in any case; null for the others.
    static entry derived_entry(std::string_view keyword) {
        const std::pair<std::string_view, entry> entries[] = {
            {"alpha", &zentropia_alpha},    {"beta", &zentropia_beta},
            {"chi", &zentropia_chi},        {"fi", &zentropia_fi},
            {"ksi", &zentropia_ksi},        {"psi", &zentropia_psi},
            {"zeta", &zentropia_zeta},      {"theta", &zentropia_theta},
            {"kappa", &zentropia_kappa},    {"gamma", &zentropia_gamma},
            {"sigma", &zentropia_surftens}, {"surftens", &zentropia_surftens}};
        for (const auto& [name, from] : entries)
            if (detail::same_name(keyword, name)) return from;
        return nullptr;
    }
    // value when computed, else what `from` derives at the state (-8888.8 when it cannot)
    static double derive(entry from, std::string_view inputspec, double input1, double input2,
                         double value) {
        if (from == nullptr || std::fabs(value - not_computed) >= 0.1) return value;
        detail::message m;
        const double v =
            from(detail::c_text(inputspec).c_str(), input1, input2, m.text, sizeof m.text);
        return std::string_view(m.text) == "No errors" ? v : not_computed;
    }

    // name in the spelling of the first of names it equals in any case; else name unchanged
    static std::string canonical(const std::string& name,
                                 std::initializer_list<const char*> names) {
        for (const char* n : names)
            if (detail::same_name(name, n)) return n;
        return name;
    }
    // Selects this fluid and its units again unless they still are the library's selection.
    void select() {
        std::string errormsg;
        setfluid(model_, components_, composition_, errormsg);
        if (!detail::succeeded(errormsg)) throw error(errormsg);
        if (errormsg == "Same fluid" && units_selected()) return;
        setunits(units_, basis_, "", "", errormsg);
        if (!detail::succeeded(errormsg)) throw error(errormsg);
    }
    bool units_selected() const {
        char set[256], basis[256], symbols[256], units[256];
        zentropia_getunits(set, sizeof set, basis, sizeof basis, symbols, sizeof symbols, units,
                           sizeof units);
        return units_ == set && basis_ == basis && symbols[0] == '\0' && units[0] == '\0';
    }

    std::string model_;
    std::vector<std::string> components_;
    std::vector<double> composition_;
    std::string units_, basis_;
};

} // namespace zentropia
