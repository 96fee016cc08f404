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
    const auto letter = i < inputspec.size() ? inputspec.substr(i, 1) : std::string_view(" ");
    if (letter == "d") {
        value = 1.0 / value;
        return "v";
    }
    if (i == 1 && letter == "q") return "x";
    return letter;
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
                                                  .phaseenvelope = nullptr};

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
