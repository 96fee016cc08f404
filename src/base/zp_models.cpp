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
// Second line: bzero: the phase bundles keep components of zero concentration; liquid, vapour:
// the phase compositions; fug: the adapter computes fugacity coefficients; deriv: the derivative
// properties; eta/lambda, sigma: who answers them; pair: one call's (eta, lambda) come from the
// back-end; slopes: the dispatcher of the transport slopes knows the model; special: the
// back-end's operations beyond the common contract; own: getfluid reports the caller's
// selection; rel: release (and version) position; nover: no version.

// The operations of their own that the PCP-SAFT, Varimol and RefProp back-ends offer.
constexpr special_operations pcp_saft_special{
    .allpropsallphases = &pcp_saft_zp::pcp_saft_allpropsallphases,
    .allpropssatext = &pcp_saft_zp::pcp_saft_allpropssatext,
    .capeopenderiv = &pcp_saft_zp::pcp_saft_capeopenderiv,
    .xy_kij = &pcp_saft_zp::pcp_saft_xy_kij,
    .hsxy_mp = &pcp_saft_zp::pcp_saft_hsxy_mp,
    .xy_a_alfa = nullptr,
    .alltransprops = nullptr};
constexpr special_operations varimol_special{.allpropsallphases = nullptr,
                                             .allpropssatext = nullptr,
                                             .capeopenderiv = nullptr,
                                             .xy_kij = nullptr,
                                             .hsxy_mp = nullptr,
                                             .xy_a_alfa = &varimol_zp::varimol_xy_a_alfa,
                                             .alltransprops = nullptr};
constexpr special_operations refprop_special{.allpropsallphases = nullptr,
                                             .allpropssatext = nullptr,
                                             .capeopenderiv = nullptr,
                                             .xy_kij = nullptr,
                                             .hsxy_mp = nullptr,
                                             .xy_a_alfa = nullptr,
                                             .alltransprops = &refprop_zp::refprop_alltransprops};

constexpr std::array<model, 14> make_models() {
    // clang-format off
    using enum model_id;
    using enum phases;
    using enum derivatives;
    constexpr bool unlisted = false, listed = true;
    constexpr const special_operations* no = nullptr;
    constexpr auto saft = &pcp_saft_special, vm = &varimol_special, rp = &refprop_special;
    constexpr auto own = transport::own, be = transport::backend,
                   be_own = transport::backend_then_own;
    return {{
    // id         name           adapter                      column names  files  zeros  fixed  offset
    //  bzero  liquid       vapour      fug    deriv         eta/lam sigma   pair   slopes    special own    rel nover
    {none,        "",            nullptr,                     -1, false, false, false, false, 0.0,
        false, by_keyword,  by_keyword, false, formulas,     own,    own,    false, unlisted, no  , false, -1, false},
    {tpsi,        "TPSI",        &tpsi_zp::operations,         3, false, false, false, false, 0.0,
        false, pure,        pure,       false, formulas,     own,    own,    false, listed  , no  , false,  8, false},
    {litevarimol, "liteVarimol", &litevarimol_zp::operations,  4, false, true , true , false, 0.0,
        false, adapter,     adapter,    true , formulas,     own,    own,    false, listed  , no  , false,  0, false},
    {varimol,     "Varimol",     &varimol_zp::operations,      4, false, true , true , false, 0.0,
        true , adapter,     adapter,    true , formulas,     own,    own,    false, listed  , vm  , false,  7, false},
    {if97,        "IF97",        &if97_zp::operations,        -1, false, false, false, true , 0.0,
        false, pure,        pure,       false, backend_cp_c, be,     be,     true , listed  , no  , false,  2, false},
    {aerolt,      "Aerolt",      &aerolt_zp::operations,       5, true , false, false, false, 0.0,
        false, adapter,     adapter,    false, formulas,     be,     own,    true , listed  , no  , true ,  1, false},
    {refprop,     "RefProp",     &refprop_zp::operations,      6, false, false, false, false, 0.0,
        false, adapter,     adapter,    true , formulas,     be_own, be_own, false, listed  , rp  , false,  5, false},
    {kelvora,     "Kelvora",     &kelvora_zp::operations,      7, false, false, false, false, 0.0,
        false, pure,        pure,       false, formulas,     be,     own,    false, listed  , no  , false,  9, false},
    {pcp_saft,    "PCP-SAFT",    &pcp_saft_zp::operations,     8, true , false, false, false, 0.0,
        false, adapter,     adapter,    true , formulas,     own,    own,    false, listed  , saft, true ,  4, false},
    {spcp_saft,   "sPCP-SAFT",   &pcp_saft_zp::operations,     8, true , false, false, false, saft_offset,
        false, adapter,     adapter,    true , formulas,     own,    own,    false, listed  , saft, true , -1, false},
    {critova,     "Critova",     &critova_zp::operations,     -1, true , false, false, false, 0.0,
        false, pure,        pure,       false, formulas,     own,    own,    false, listed  , no  , false,  6, false},
    {nh3_h2o,     "NH3-H2O",     nullptr,                     -1, false, false, false, false, 0.0,
        false, pure_liquid, by_keyword, false, formulas,     own,    own,    false, unlisted, no  , false, -1, false},
    {libr_h2o,    "LiBr-H2O",    &libr_h2o_zp::operations,    -1, false, false, false, false, 0.0,
        false, pure_liquid, by_keyword, false, formulas,     own,    be,     false, unlisted, no  , false, -1, true },
    {mesheq,      "Mesheq",      &mesheq_zp::operations,      -1, true , false, false, false, 0.0,
        false, unchanged,   unchanged,  false, backend_all,  be,     own,    true , listed  , no  , false,  3, false},
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
static_assert(
    [] {
        const auto table = make_models();
        for (int position = 0; position < released_count; ++position)
            if (std::count_if(table.begin(), table.end(), [position](const model& m) {
                    return m.release_order == position;
                }) != 1)
                return false;
        return std::count_if(table.begin(), table.end(),
                             [](const model& m) { return m.release_order >= 0; }) == released_count;
    }(),
    "every released back-end has one position in the release sequence");

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

const model& released(int position) {
    for (const auto& m : models)
        if (m.release_order == position) return m;
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
