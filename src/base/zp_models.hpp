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
};

// the model of a canonical name, compared exactly with trailing blanks ignored; none otherwise
const model& by_name(std::string_view name);
// the model of a caller's text, in any case, trailing blanks ignored; none otherwise
const model& by_text(std::string_view text);
// the model of an id
const model& of(model_id id);
// Lets `adapter` serve model `id` from the next selection on (a back-end supplied at run time, or
// a test double); returns the adapter that served it before.
const zp_adapter::operations* replace_adapter(model_id id, const zp_adapter::operations* adapter);

} // namespace zp_models
