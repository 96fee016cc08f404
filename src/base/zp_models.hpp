#pragma once
// The models a caller can select, resolved once at selection: canonical name, the adapter that
// serves the model and how fluid selection treats it.
#include "Import/adapter.hpp"

#include <array>
#include <cstdint>
#include <string_view>

namespace zp_models {

enum class model_id : std::uint8_t {
    none, // no selection, or a name that is not a model
    tpsi,
    litevarimol,
    varimol,
    if97,
    aerolt,
    refprop,
    kelvora,
    pcp_saft,
    spcp_saft,
    critova,
    nh3_h2o,
    libr_h2o,
    mesheq
};

// Where the composition of a coexisting phase comes from.
enum class phases : std::uint8_t {
    by_keyword,  // the dispatcher is asked by keyword ("x", "y", "lnphi")
    pure,        // a single-component model: each phase is the fluid itself
    pure_liquid, // the liquid is reported as the fluid itself, the vapour by keyword
    adapter,     // the adapter's own liquidcmp / vaporcmp
    unchanged    // the work vector keeps what the previous call left in it
};

// Who answers a transport property.
enum class transport : std::uint8_t {
    own,             // the library's own transport model
    backend,         // the back-end
    backend_then_own // the back-end first, the own model where the back-end has no model
};

// What the back-end's bundle delivers for the derivative properties.
enum class derivatives : std::uint8_t {
    formulas,     // the pressure derivatives: the properties follow from the formulas
    backend_cp_c, // cp and the speed of sound only, from the back-end
    backend_all   // every derivative property, from the back-end (tables)
};

// Operations that only some back-ends offer, beyond the common adapter contract; null where the
// back-end does not offer one.
struct special_operations {
    using phase_values = zp_adapter::phase_values;
    using composition = zp_common::composition;
    using pair = std::array<double, 2>;
    // every property of each phase present at the state
    void (*allpropsallphases)(std::string_view inputspec, double value1, double value2,
                              phase_values& p, phase_values& t, phase_values& v, phase_values& d,
                              phase_values& h, phase_values& s, phase_values& u, double& q,
                              composition& x, composition& y, phase_values& cv, phase_values& dpdt,
                              phase_values& dpdv, phase_values& d2pdt2, phase_values& d2pdv2,
                              phase_values& d2pdtdv, phase_values& dcvdt, double& eta,
                              double& lambda, std::string& errormsg);
    // the state with the properties of its saturated liquid and vapour
    void (*allpropssatext)(std::string_view inputspec, double value1, double value2, double& p,
                           double& t, double& v, double& d, double& h, double& s, double& u,
                           double& q, composition& x, composition& y, double& v_liq, double& d_liq,
                           double& h_liq, double& s_liq, double& u_liq, double& v_vap,
                           double& d_vap, double& h_vap, double& s_vap, double& u_vap,
                           std::string& errormsg);
    // the derivative bundle of process simulators
    void (*capeopenderiv)(std::string_view inputspec, double value1, double value2, double& v,
                          double& h, double& s, double& g, composition& lnphi,
                          std::string& errormsg);
    // binary phase compositions for an interaction parameter kij at p and t
    void (*xy_kij)(double kij, double p, double t, pair& x, pair& y, std::string& errormsg);
    // residual enthalpy and entropy and the phase compositions for a molecular parameter (t
    // before p)
    void (*hsxy_mp)(double t, double p, double molpar, double& h_r, double& s_r, composition& x,
                    composition& y, std::string& errormsg);
    // binary phase compositions for the activity parameters aij, aji and alfa at p and t
    void (*xy_a_alfa)(double aij, double aji, double alfa, double p, double t, pair& x, pair& y,
                      std::string& errormsg);
    // viscosity, thermal conductivity and their slopes in temperature and density at (t, d)
    void (*alltransprops)(double t, double d, double& eta, double& eta_t, double& eta_d,
                          double& lambda, double& lambda_t, double& lambda_d,
                          std::string& errormsg);
};

struct model {
    model_id id;
    std::string_view name;                 // canonical name ("" for none)
    const zp_adapter::operations* adapter; // the adapter that serves the model; null: none
    int column;                 // the model's back-end column of the fluid table, -1: none
    bool untranslated_names;    // the back-end takes the caller's component names
    bool unknown_names_pass;    // a name the fluid table does not know reaches the back-end as it
                                // is (it may name a user's fluid file)
    bool keeps_zero_components; // components of zero concentration still reach the back-end
    bool fixed_fluid;           // the model always describes one fluid (selection is a no-op)
    double first_conc_offset;   // added to the first concentration handed to the back-end
    // The bundles of phase properties keep components of zero concentration.
    bool bundle_keeps_zero_components;
    phases liquid;               // the liquid composition
    phases vapour;               // the vapour composition
    bool adapter_fugacity;       // the adapter computes fugacity coefficients (else by keyword)
    derivatives derived;         // the derivative properties
    transport eta_lambda;        // viscosity and thermal conductivity, one at a time
    transport sigma;             // surface tension
    bool backend_transport;      // the transport pair (eta, lambda) of one call is the back-end's
    bool lists_transport_slopes; // the dispatcher of the transport slopes knows the model
    const special_operations* special; // the back-end's own operations; null: none
    bool reports_caller_fluid; // getfluid answers the caller's selection, not the back-end's
    int release_order;         // position among the back-ends released (and asked for their
                               // version) by the library; -1: none
    bool versionless;          // a known model without a version: left at the "not asked" mark
};

// the model of a canonical name, compared exactly with trailing blanks ignored; none otherwise
const model& by_name(std::string_view name);
// the model of a caller's text, in any case, trailing blanks ignored; none otherwise
const model& by_text(std::string_view text);
// the model of an id
const model& of(model_id id);
// The number of back-ends the library releases, and the model released at `position` (0 to
// released_count - 1; none otherwise).
inline constexpr int released_count = 10;
const model& released(int position);

// Concentrations up to this count as absent: such components are not handed to back-ends that
// drop them, and receive 0 when the back-end's compositions are spread back.
inline constexpr double zero_concentration = 1e-12;
// A component of this concentration is not handed to a back-end that drops absent components.
constexpr bool is_dropped(double concentration) {
    return !(concentration > zero_concentration);
}
// Lets `adapter` serve model `id` from the next selection on (a back-end supplied at run time, or
// a test double); returns the adapter that served it before.
const zp_adapter::operations* replace_adapter(model_id id, const zp_adapter::operations* adapter);

} // namespace zp_models
