#include "base/zp_models.hpp"

#include "Import/aerolt_zp.hpp"
#include "Import/critova_zp.hpp"
#include "Import/if97_zp.hpp"
#include "Import/kelvora_zp.hpp"
#include "Import/libr_h2o_zp.hpp"
#include "Import/litevarimol_zp.hpp"
#include "Import/mesheq_zp.hpp"
#include "Import/pcp_saft_zp.hpp"
#include "Import/refprop_zp.hpp"
#include "Import/tpsi_zp.hpp"
#include "Import/varimol_zp.hpp"

#include <algorithm>
#include <array>

namespace zp_models {
namespace {

using zp_common::same_text;
using zp_common::trim;

// The PCP-SAFT back-end recognises its simplified variant by a first concentration above 100,
// hence this offset for sPCP-SAFT. It is part of that back-end's interface.
constexpr double saft_offset = 111.0;

// One row per model. column: the model's back-end column of the fluid table (0-based; 3 TPSI,
// 4 the Varimol models, 5 Aerolt, 6 RefProp, 7 Kelvora, 8 PCP-SAFT). names: the back-end takes
// the caller's component names untranslated. files: a name the fluid table does not know reaches
// the back-end unchanged (a user's fluid file). zeros: components of zero concentration reach the
// back-end. fixed: the model describes one fluid only. offset: added to the first concentration.

constexpr std::array<model, 14> make_models() {
    // clang-format off
    using enum model_id;
    return {{
    // id         name           adapter                      column names  files  zeros  fixed  offset
    {none,        "",            nullptr,                     -1, false, false, false, false, 0.0},
    {tpsi,        "TPSI",        &tpsi_zp::operations,         3, false, false, false, false, 0.0},
    {litevarimol, "liteVarimol", &litevarimol_zp::operations,  4, false, true , true , false, 0.0},
    {varimol,     "Varimol",     &varimol_zp::operations,      4, false, true , true , false, 0.0},
    {if97,        "IF97",        &if97_zp::operations,        -1, false, false, false, true , 0.0},
    {aerolt,      "Aerolt",      &aerolt_zp::operations,       5, true , false, false, false, 0.0},
    {refprop,     "RefProp",     &refprop_zp::operations,      6, false, false, false, false, 0.0},
    {kelvora,     "Kelvora",     &kelvora_zp::operations,      7, false, false, false, false, 0.0},
    {pcp_saft,    "PCP-SAFT",    &pcp_saft_zp::operations,     8, true , false, false, false, 0.0},
    {spcp_saft,   "sPCP-SAFT",   &pcp_saft_zp::operations,     8, true , false, false, false, saft_offset},
    {critova,     "Critova",     &critova_zp::operations,     -1, true , false, false, false, 0.0},
    {nh3_h2o,     "NH3-H2O",     nullptr,                     -1, false, false, false, false, 0.0},
    {libr_h2o,    "LiBr-H2O",    &libr_h2o_zp::operations,    -1, false, false, false, false, 0.0},
    {mesheq,      "Mesheq",      &mesheq_zp::operations,      -1, true , false, false, false, 0.0},
    }};
    // clang-format on
}
static_assert(
    [] {
        const auto table = make_models();
        for (std::size_t i = 0; i < table.size(); ++i)
            if (static_cast<std::size_t>(table[i].id) != i) return false;
        return true;
    }(),
    "the models table is indexed by model_id");

constinit std::array<model, 14> models = make_models();

bool equal_ignoring_case(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               const auto low = [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; };
               return low(x) == low(y);
           });
}

} // namespace

const model& by_name(std::string_view name) {
    const auto key = trim(name);
    if (key.empty()) return models[0];
    for (const auto& m : models)
        if (same_text(m.name, key)) return m;
    return models[0];
}

const model& by_text(std::string_view text) {
    const auto key = trim(text);
    if (key.empty()) return models[0];
    for (const auto& m : models)
        if (equal_ignoring_case(m.name, key)) return m;
    return models[0];
}

const model& of(model_id id) {
    return models[static_cast<std::size_t>(id)];
}

const zp_adapter::operations* replace_adapter(model_id id, const zp_adapter::operations* adapter) {
    auto& m = models[static_cast<std::size_t>(id)];
    const auto* previous = m.adapter;
    if (id != model_id::none) m.adapter = adapter;
    return previous;
}

} // namespace zp_models
