#include "Import/if97_zp.hpp"

#include "if97/if97.hpp"

#include <algorithm>
#include <array>
#include <cstring>

namespace if97_zp {
namespace {

using zp_common::isnotinit;
using zp_common::not_set;
using zp_common::trim;

// Fluid constants of IF97 water: molar mass in kg/mol (IAPWS R7-97(2012), M = 18.015257 g/mol),
// critical point in °C and bar (R7-97 eqs. 1-3: Tc = 647.096 K, pc = 22.064 MPa), and the
// temperature range in °C (273.16 K to 2273.15 K).
struct info_entry {
    std::string_view keyword;
    double value;
};
constexpr std::array<info_entry, 5> fluid_info{{{"M_mol", 0.018015257},
                                                {"T_crit", 373.946},
                                                {"P_crit", 220.64},
                                                {"T_min", 0.01000001},
                                                {"T_max", 2000.0}}};

// The back-end reads at most 80 characters of an output list.
constexpr std::size_t list_length = 80;

// Single output keywords and the back-end's code for them, each closed by ".".
struct output_code {
    std::string_view keyword;
    std::string_view code;
};
constexpr std::array<output_code, 6> output_codes{
    {{"d", "v."}, {"q", "x."}, {"c", "w."}, {"eta", "dv."}, {"lambda", "tc."}, {"sigma", "st."}}};

// The full-state list of if97_allprops, in the order of its outputs, closed as the back-end reads
// it.
constexpr std::string_view allprops_list = "p,t,v,h,s,u,x,cv,dv,tc.";
enum allprops_entry { e_p, e_t, e_v, e_h, e_s, e_u, e_q, e_cv, e_eta, e_lambda, n_entries };

// The back-end's output list for `outputspec`, written into `buffer`.
std::string_view output_list(std::string_view outputspec, std::array<char, list_length>& buffer) {
    const auto key = trim(outputspec);
    for (const auto& entry : output_codes)
        if (key == entry.keyword) return entry.code;
    // a ready-made list: the whole text, closed by "." (cut to the back-end's 80 characters)
    const auto n = std::min(outputspec.size(), list_length);
    if (n > 0) std::memcpy(buffer.data(), outputspec.data(), n); // an empty text may have no data
    if (n < list_length) buffer[n] = '.';
    return {buffer.data(), std::min(n + 1, list_length)};
}

// The back-end works with specific volume and vapour fraction: density inputs become 1/d, the
// quality letter "q" becomes "x".
std::string_view input_letter(std::string_view inputspec, std::size_t i, double& value) {
    if (i >= inputspec.size()) return " ";
    const char letter = inputspec[i];
    if (letter == 'd') {
        value = 1.0 / value;
        return "v";
    }
    if (i == 1 && letter == 'q') return "x";
    return inputspec.substr(i, 1);
}

double reciprocal(double value) {
    return isnotinit(value) ? 1.0 / value : value;
}

// One back-end call with a closed list of output codes.
void evaluate(std::string_view inputspec, double value1, double value2, std::string_view list,
              std::span<double> output, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    std::fill(output.begin(), output.end(), not_set);
    const auto letter1 = input_letter(inputspec, 0, value1);
    const auto letter2 = input_letter(inputspec, 1, value2);
    if97::if97_main(letter1, value1, letter2, value2, list, output, errormsg);
}

// ---- A part of a state ---------------------------------------------------------------------

// The back-end's code of each output a caller may want, in the order of a list, and where its
// value goes.
struct wanted_code {
    unsigned flag;
    std::string_view code;
    double zp_adapter::state_values::*value;
};
using sv = zp_adapter::state_values;
namespace out = zp_adapter::output;
constexpr std::array<wanted_code, 12> wanted_codes{{{out::p, "p", &sv::p},
                                                    {out::t, "t", &sv::t},
                                                    {out::v, "v", &sv::v},
                                                    {out::h, "h", &sv::h},
                                                    {out::s, "s", &sv::s},
                                                    {out::u, "u", &sv::u},
                                                    {out::q, "x", &sv::q},
                                                    {out::cv, "cv", &sv::cv},
                                                    {out::cp, "cp", &sv::cp},
                                                    {out::c, "w", &sv::c},
                                                    {out::eta, "dv", &sv::eta},
                                                    {out::lambda, "tc", &sv::lambda}}};
// Outputs this back-end's state bundle does not carry (they stay not computed): the pressure
// derivatives and the surface tension. Density is 1/v.
constexpr unsigned asked_as_volume = zp_adapter::output::d;

// The list of the back-end codes for a set of outputs, and where each code's value lands.
struct built_list {
    unsigned codes = 0; // flags of wanted_codes; 0: not built
    std::array<char, 48> text{};
    std::size_t size = 0;
    std::array<double sv::*, wanted_codes.size()> value{}; // where the value of each entry goes
    std::size_t count = 0;                                 // entries of the list
    int v_slot = -1;                                       // the entry of v
};

// The lists built so far: a caller asks a few sets of outputs again and again.
std::array<built_list, 8> built_lists;
std::size_t next_built = 0;

const built_list* last_list = &built_lists[0];

// A list not asked lately: found among those built, or built in the oldest place.
[[gnu::noinline]] const built_list& other_list(unsigned codes) {
    for (const built_list& b : built_lists)
        if (b.codes == codes) return *(last_list = &b);
    built_list& b = built_lists[next_built];
    last_list = &b;
    next_built = (next_built + 1) % built_lists.size();
    b = built_list{};
    b.codes = codes;
    for (const wanted_code& w : wanted_codes) {
        if ((codes & w.flag) == 0) continue;
        if (b.count > 0) b.text[b.size++] = ',';
        for (const char c : w.code) b.text[b.size++] = c;
        if (w.flag == out::v) b.v_slot = static_cast<int>(b.count);
        b.value[b.count++] = w.value;
    }
    b.text[b.size++] = '.';
    return b;
}

inline const built_list& list_of(unsigned codes) {
    return last_list->codes == codes ? *last_list : other_list(codes);
}

// Only (P, T) states are the same whatever else is asked with them: the back-end's iterations
// carry their last small step when no caloric value is asked, which moves v, h, s and u in their
// last bits. A part of any other state is therefore asked at the caloric level (with cv), so that
// it is, to the last bit, the value the whole state has.
bool same_at_every_level(std::string_view inputspec) {
    const std::string_view pair = inputspec.substr(0, std::min<std::size_t>(inputspec.size(), 2));
    return pair == "PT" || pair == "TP";
}

void evaluate_part(std::string_view inputspec, double value1, double value2, unsigned wanted,
                   zp_adapter::state_values& values, zp_adapter::composition& x,
                   zp_adapter::composition& y, std::string& errormsg) {
    unsigned codes = wanted & ~asked_as_volume;
    if ((wanted & asked_as_volume) != 0) codes |= out::v;
    if (!same_at_every_level(inputspec)) codes |= out::cv;
    codes &= out::p | out::t | out::v | out::h | out::s | out::u | out::q | out::cv | out::cp |
             out::c | out::eta | out::lambda;
    if (codes == 0) codes = out::p; // nothing this back-end holds: the state must stand alone
    const built_list& list = list_of(codes);
    // The back-end writes every entry of the list (-8888.8 all through when it fails) and the
    // message, "No errors" included.
    std::array<double, wanted_codes.size()> work;
    const auto letter1 = input_letter(inputspec, 0, value1);
    const auto letter2 = input_letter(inputspec, 1, value2);
    if97::if97_main(letter1, value1, letter2, value2, std::string_view(list.text.data(), list.size),
                    std::span<double>(work.data(), list.count), errormsg);
    // (a value asked along with the wanted ones is delivered too)
    for (std::size_t k = 0; k < list.count; ++k) values.*list.value[k] = work[k];
    if (wanted & out::d) values.d = reciprocal(work[static_cast<std::size_t>(list.v_slot)]);
    if (wanted & out::q) {
        // one component: the liquid and vapour fractions of the state stand in entry 0
        x.fill(not_set);
        y.fill(not_set);
        x[0] = isnotinit(values.q) ? 1.0 - values.q : not_set;
        y[0] = values.q;
    }
    values.sound = (wanted & (out::cp | out::c)) == (out::cp | out::c);
}

void allprops_row(std::string_view inputspec, double value1, double value2, double& p, double& t,
                  double& v, double& d, double& h, double& s, double& u, double& q,
                  zp_adapter::composition& x, zp_adapter::composition& y, zp_adapter::composition&,
                  double& cv, double&, double&, double&, double&, double&, double&, double& eta,
                  double& lambda, double&, std::string& errormsg) {
    if97_allprops(inputspec, value1, value2, p, t, v, d, h, s, u, q, x, y, cv, eta, lambda,
                  errormsg);
}

} // namespace

constinit const zp_adapter::operations operations{.model = "IF97",
                                                  .installed = true,
                                                  .zp_sub = &if97_zp_sub,
                                                  .getversion = &if97_getversion,
                                                  .uninit = &if97_uninit,
                                                  .setfluid = nullptr, // always water
                                                  .getfluid = &if97_getfluid,
                                                  .getcompset = nullptr,
                                                  .getinfo = &if97_getinfo,
                                                  .prop = &if97_prop,
                                                  .allprops = &allprops_row,
                                                  .liquidcmp = nullptr,
                                                  .vaporcmp = nullptr,
                                                  .fugacoef = nullptr,
                                                  .zflow_vu = nullptr,
                                                  .psat_k1 = nullptr,
                                                  .phaseenvelope = nullptr,
                                                  .evaluate = &evaluate_part,
                                                  .mmolcomp = nullptr,
                                                  .fluid_components = nullptr};

void if97_zp_sub() {
    if97::if97_sub();
}

void if97_getversion(zp_adapter::version_numbers& version) {
    if97::getversion(version);
}

void if97_uninit() {
    if97::uninit_if97();
}

void if97_getfluid(int& ncomp, zp_adapter::component_names& comp, zp_adapter::composition& conc) {
    ncomp = 1;
    comp.fill("?");
    comp[0] = "H2O";
    conc.fill(0.0);
    conc[0] = 1.0;
}

double if97_getinfo(std::string_view property, std::string& errormsg) {
    errormsg = zp_common::no_errors;
    const auto key = trim(property);
    for (const auto& entry : fluid_info)
        if (key == entry.keyword) return entry.value;
    errormsg.assign("Error in Zentropia: for IF97 no info available for ").append(key).append(".");
    return 0.0;
}

void if97_props(std::string_view inputspec, double value1, double value2,
                std::string_view outputspec, std::span<double> output, std::string& errormsg) {
    std::array<char, list_length> buffer;
    evaluate(inputspec, value1, value2, output_list(outputspec, buffer), output, errormsg);
    if (trim(outputspec) == "d" && !output.empty()) output[0] = reciprocal(output[0]);
}

double if97_prop(std::string_view inputspec, double value1, double value2,
                 std::string_view outputspec, std::string& errormsg) {
    std::array<double, 1> output;
    if97_props(inputspec, value1, value2, outputspec, output, errormsg);
    return output[0];
}

void if97_allprops(std::string_view inputspec, double value1, double value2, double& p, double& t,
                   double& v, double& d, double& h, double& s, double& u, double& q,
                   zp_adapter::composition& x, zp_adapter::composition& y, double& cv, double& eta,
                   double& lambda, std::string& errormsg) {
    std::array<double, n_entries> work;
    evaluate(inputspec, value1, value2, allprops_list, work, errormsg);
    p = work[e_p];
    t = work[e_t];
    v = work[e_v];
    d = reciprocal(work[e_v]);
    h = work[e_h];
    s = work[e_s];
    u = work[e_u];
    q = work[e_q];
    cv = work[e_cv];
    eta = work[e_eta];
    lambda = work[e_lambda];
    // IF97 describes one component: the liquid and vapour fractions of the state stand in entry 0.
    x.fill(not_set);
    y.fill(not_set);
    x[0] = isnotinit(q) ? 1.0 - q : not_set;
    y[0] = q;
}

} // namespace if97_zp
