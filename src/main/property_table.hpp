#pragma once
// The properties of a state by name, for the programs of this tree that name properties (the
// command-line tool, the Python extension), and the one answer each gets there: the value of the
// model's full state (allprops, calcprop) where it holds one, else the property's own entry
// point, which derives it from single properties (IF97's full state carries no pressure
// derivatives, so alpha ... gamma and the surface tension come from there; the cubic models'
// full state carries no transport properties, which the library's own model supplies through the
// entry points). A property neither
// computes stays -8888.8, with the reason.
#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "main/zentropia_main.hpp"
#include "zentropia/zentropia.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace zp_props {

using entry_point = double (*)(std::string_view inputspec, double input1, double input2,
                               std::string& errormsg);

struct property {
    std::string_view name;        // the short keyword of calcprop
    std::string_view keyword;     // the long keyword of calcprop ("" where there is none)
    std::string_view description; // for people
    std::string_view unit_symbol; // the unit symbol ("" for the dimensionless q and gamma)
    // The property's own entry point where it answers as calcprop does (so it can stand in for
    // calcprop and evaluate that property alone); null where calcprop reads the full state.
    entry_point entry;
    // The entry point that derives the property when the full state lacks it; null: none.
    entry_point fallback;
};

namespace zm = zentropia_main;

// The outputs of allprops other than the compositions x and y, in its argument order, then the
// surface tension, which allprops does not return.
inline constexpr std::size_t n_allprops = 23;
inline constexpr std::array<property, n_allprops + 1> properties{{
    {"p", "pressure", "pressure", "P", &zm::pressure, nullptr},
    {"t", "temperature", "temperature", "T", &zm::temperature, nullptr},
    {"v", "specvolume", "specific volume", "v", &zm::specvolume, nullptr},
    {"d", "density", "density", "d", &zm::density, nullptr},
    {"h", "enthalpy", "specific enthalpy", "h", &zm::enthalpy, nullptr},
    {"s", "entropy", "specific entropy", "s", &zm::entropy, nullptr},
    {"u", "intenergy", "specific internal energy", "u", &zm::intenergy, nullptr},
    {"q", "vaporqual", "vapour quality", "", &zm::vaporqual, nullptr},
    {"cv", "heatcapv", "isochoric heat capacity", "cv", &zm::heatcapv, nullptr},
    {"cp", "heatcapp", "isobaric heat capacity", "cp", &zm::heatcapp, nullptr},
    {"c", "soundspeed", "speed of sound", "c", &zm::soundspeed, nullptr},
    {"alpha", "", "derivative alpha", "alpha", nullptr, &zm::alpha},
    {"beta", "", "derivative beta", "beta", nullptr, &zm::beta},
    {"chi", "", "derivative chi", "chi", nullptr, &zm::chi},
    {"fi", "", "derivative fi", "fi", nullptr, &zm::fi},
    {"ksi", "", "derivative ksi", "ksi", nullptr, &zm::ksi},
    {"psi", "", "derivative psi", "psi", nullptr, &zm::psi},
    {"zeta", "", "derivative zeta", "zeta", nullptr, &zm::zeta},
    {"theta", "", "isobaric expansion coefficient", "theta", nullptr, &zm::theta},
    {"kappa", "", "isothermal compressibility", "kappa", nullptr, &zm::kappa},
    {"gamma", "", "fundamental derivative", "", nullptr, &zm::gamma},
    {"eta", "viscosity", "dynamic viscosity", "eta", &zm::viscosity, &zm::viscosity},
    {"lambda", "thermcond", "thermal conductivity", "lambda", &zm::thermcond, &zm::thermcond},
    {"sigma", "surftens", "surface tension", "sigma", nullptr, &zm::surftens},
}};
inline constexpr std::size_t n_properties = properties.size();

// The position in properties of a calcprop keyword (either form, any case), or -1.
inline int property_index(std::string_view keyword) {
    const std::string key = zp_common::lower(zp_common::strip(keyword));
    for (std::size_t i = 0; i < properties.size(); ++i)
        if (key == properties[i].name || key == properties[i].keyword) return static_cast<int>(i);
    return -1;
}

// The one answer of property `column` at a state whose full state gave `value`: value itself when
// computed, else the fallback entry point's. A property that stays uncomputed is -8888.8 and
// `reason` says why (the entry point's text, or "not computed"); reason is untouched otherwise.
inline double one_answer(int column, std::string_view inputspec, double input1, double input2,
                         double value, std::string& reason) {
    if (zp_common::isnotinit(value)) return value;
    const entry_point fallback = column < 0 ? nullptr : properties[column].fallback;
    if (fallback != nullptr) {
        std::string errormsg;
        const double derived = fallback(inputspec, input1, input2, errormsg);
        if (zp_common::is_ok(errormsg) && zp_common::isnotinit(derived)) return derived;
        if (!zp_common::is_ok(errormsg)) {
            reason = errormsg;
            return zp_common::not_set;
        }
    }
    reason = "not computed";
    return zp_common::not_set;
}

using zentropia::has_liquid;
using zentropia::has_vapour;
using zentropia::phase;
using zentropia::phase_names;
using zentropia::phase_of;

// the critical temperature and pressure of the selection in the caller's units (-8888.8 when the
// model does not give them)
inline void critical_point(double& t_crit, double& p_crit) {
    std::string errormsg;
    t_crit = p_crit = zp_common::not_set;
    double m_mol, t_min, t_max, tc, pc;
    zm::allinfo(m_mol, tc, pc, t_min, t_max, errormsg);
    if (zp_common::is_ok(errormsg)) t_crit = tc, p_crit = pc;
}

// The components the phase compositions of a state list, with their names: the caller's, or, for
// one name that stands for a mixture (a predefined blend, a user's fluid file), the pure fluids the
// back-end resolves it into (getfluid asked with ncomp = -1).
struct fluid_components {
    int n = 1;
    zentropia_base::component_names names;
    zp_common::composition overall{}; // mole fractions of a one-name mixture's pure fluids
    bool one_name_mixture() const { return n > 1 && zentropia_base::selection().usr_ncmp == 1; }
};

inline fluid_components components_of_selection() {
    const auto& sel = zentropia_base::selection();
    fluid_components c;
    c.n = std::clamp(sel.usr_ncmp, 1, zp_common::max_components);
    c.names = sel.usr_cmp;
    if (sel.usr_ncmp != 1 || !zentropia_base::selected_mixture()) return c;
    std::string model;
    int n = -1;
    zentropia_base::component_names names;
    zp_common::composition conc{};
    zentropia_base::getfluid(model, n, names, conc);
    if (n > 1 && n <= zp_common::max_components) c.n = n, c.names = names, c.overall = conc;
    return c;
}

// Every property of properties at a state: one allprops evaluation, completed by one_answer.
// reasons[i] is empty for a computed property. For a fluid of one component, x and y are 1.0 where
// the phase exists and -8888.8 where it does not (the phase of phase_of); mixtures keep the
// model's phase compositions. The full state of a mixture selected by one name carries one
// composition entry (the caller gave one component), so its phase compositions are completed as
// those of the same mixture selected by its pure fluids: in the two-phase region and on its
// bounds (0 <= q <= 1) from the liquid and vapour composition entry points, which answer for
// every pure fluid, elsewhere the overall composition in both. errormsg reports a state that
// failed as a whole.
struct state {
    std::array<double, n_properties> values;
    std::array<std::string, n_properties> reasons;
    zp_common::composition x, y;
    phase label = phase::unknown;
};

inline void state_of(std::string_view inputspec, double input1, double input2, double t_crit,
                     double p_crit, const fluid_components& components, state& s,
                     std::string& errormsg) {
    auto& r = s.values;
    r.fill(zp_common::not_set);
    zm::allprops(inputspec, input1, input2, r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7], s.x,
                 s.y, r[8], r[9], r[10], r[11], r[12], r[13], r[14], r[15], r[16], r[17], r[18],
                 r[19], r[20], r[21], r[22], errormsg);
    if (!zp_common::is_ok(errormsg)) return;
    for (std::size_t i = 0; i < n_properties; ++i) {
        s.reasons[i].clear();
        r[i] = one_answer(static_cast<int>(i), inputspec, input1, input2, r[i], s.reasons[i]);
    }
    s.label = phase_of(r[7], r[1], r[0], t_crit, p_crit);
    if (components.n == 1) {
        s.x.fill(0.0), s.y.fill(0.0);
        s.x[0] = has_liquid(s.label) ? 1.0 : zp_common::not_set;
        s.y[0] = has_vapour(s.label) ? 1.0 : zp_common::not_set;
    } else if (components.one_name_mixture() && r[7] >= 0.0 && r[7] <= 1.0) {
        // the state itself succeeded: a composition the entry point cannot give stays unset
        const auto phase_composition = [&](auto entry, zp_common::composition& out) {
            std::string e;
            entry(inputspec, input1, input2, out, e);
            if (!zp_common::is_ok(e)) out.fill(zp_common::not_set);
        };
        phase_composition(&zm::liquidcmp, s.x);
        phase_composition(&zm::vaporcmp, s.y);
    } else if (components.one_name_mixture()) {
        s.x = s.y = components.overall;
    }
}

} // namespace zp_props
