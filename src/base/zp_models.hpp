#pragma once
// The models a caller can select, resolved once at selection: canonical name, the adapter that
// serves the model and how fluid selection treats it.
#include "Import/adapter.hpp"

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

// How the back-end's bundle of transport derivatives (eta, lambda and their slopes) is served.
enum class transport_bundle : std::uint8_t {
    unlisted,    // the dispatcher does not know the model: "model name unknown"
    unavailable, // known, without such a bundle
    backend      // the back-end computes it
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
    phases liquid;          // the liquid composition
    phases vapour;          // the vapour composition
    bool adapter_fugacity;  // the adapter computes fugacity coefficients (else by keyword)
    derivatives derived;    // the derivative properties
    transport eta_lambda;   // viscosity and thermal conductivity, one at a time
    transport sigma;        // surface tension
    bool backend_transport; // the transport pair (eta, lambda) of one call is the back-end's
    transport_bundle transport_slopes; // eta, lambda and their slopes in T and density
    bool saft_operations;      // the PCP-SAFT family's own operations (phase bundles, CAPE-OPEN
                               // derivatives, kij and mixing-parameter equilibria)
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
