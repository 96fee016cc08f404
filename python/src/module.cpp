// zentropia._core: every procedure of the programming interface, bound by the rule of binder.hpp,
// and the array loops of the Fluid object (arrays.cpp).
#include "Import/varimol_fluidfile.hpp"
#include "arrays.hpp"
#include "base/zentropia_base.hpp"
#include "binder.hpp"
#include "main/curves.hpp"
#include "main/zentropia_main.hpp"
#include "refstate/zentropia_refstate.hpp"
#include "units/unitparser.hpp"
#include "units/zentropia_units.hpp"
#include "zentropia/zentropia.h"

#include <algorithm>

namespace zb = zentropia_base;
namespace zm = zentropia_main;
namespace zr = zentropia_refstate;
namespace zu = zentropia_units;
using zpy::bit;
using zpy::def;
namespace py = pybind11;

namespace {

constexpr zpy::options changes_state{.changes_state = true};
// Procedures that leave errormsg as it was when they have nothing to do take the caller's text as
// their last parameter (default ""), at position i of the C++ parameters.
constexpr zpy::options caller_text_0{.reads_too = bit(0), .changes_state = true};
constexpr zpy::options caller_text(std::size_t i) {
    return {.reads_too = bit(i)};
}
// the most points a curve may ask for
constexpr int most_points = 100000;

// Procedures whose C++ form does not cross by the rule as it stands.

// (factor, offset) of a unit symbol as two values
void getunitconvfact(std::string_view symbol, double& factor, double& offset) {
    std::array<double, 2> cf{};
    zu::getunitconvfact(symbol, cf);
    factor = cf[0];
    offset = cf[1];
}

// A phase envelope with room for npnts points (read); the points found come back.
template <auto Envelope>
void envelope(int& npnts, std::vector<double>& t, std::vector<double>& p,
              std::vector<zp_common::composition>& x, std::vector<zp_common::composition>& y,
              std::string& errormsg) {
    const auto room = static_cast<std::size_t>(std::clamp(npnts, 0, most_points));
    t.assign(room, zp_common::not_set);
    p.assign(room, zp_common::not_set);
    x.assign(room, {});
    y.assign(room, {});
    npnts = 0;
    Envelope(npnts, t, p, x, y, errormsg);
    const auto n = std::min(static_cast<std::size_t>(std::max(npnts, 0)), room);
    t.resize(n);
    p.resize(n);
    x.resize(n);
    y.resize(n);
}

// An isoline of npnts points, as lists.
void isoline(std::string_view propspec, double propval, std::string_view runspec,
             std::string_view calcspec, double minval, double maxval, int npnts,
             std::vector<double>& runval, std::vector<double>& calcval, std::string& errormsg) {
    const auto n = static_cast<std::size_t>(std::clamp(npnts, 0, most_points));
    runval.assign(n, zp_common::not_set);
    calcval.assign(n, zp_common::not_set);
    zm::isoline(propspec, propval, runspec, calcspec, minval, maxval, npnts, runval, calcval,
                errormsg);
}

void bind_base(py::module_& m) {
    def<&zb::isinit>(m, "isinit", "value");
    def<&zb::isnotinit>(m, "isnotinit", "value");
    def<&zb::zpgetindex>(m, "zpgetindex", "modelname index len_modelname");
    def<&zb::zpgetversion>(m, "zpgetversion", "modelname version");
    def<&zb::releaseobjects, changes_state>(m, "releaseobjects", "");
    def<&zb::setfluid, {.reads_too = bit(4), .changes_state = true}>(
        m, "setfluid", "model in_ncmp in_cmp in_cnc errormsg");
    def<&zb::getfluid>(m, "getfluid", "model ncomp comp conc");
    constexpr auto dispatcher = "inputspec input1 input2 p t v d h s u q usr_x usr_y cv dpdt dpdv "
                                "d2pdt2 d2pdv2 d2pdtdv dcvdt eta lambda sigma errormsg";
    def<&zb::allthermophys>(m, "allthermophys", dispatcher);
    def<&zb::allthermophyssu2>(m, "allthermophyssu2", dispatcher);
    def<&zb::calculate>(m, "calculate", "inputspec input1 input2 outputspec errormsg");
    def<&zb::getinfo>(m, "getinfo", "property errormsg");
    def<&zb::zp_mmolcomp>(m, "zp_mmolcomp", "mmol errormsg");
    def<&zb::zp_mmol_cnc>(m, "zp_mmol_cnc", "cnc errormsg");
    def<&zb::zflow_tmd_vu, {.reads_too = bit(2) | bit(5)}>(
        m, "zflow_tmd_vu", "p t v h s u cv dpdt dpdv d2pdt2 d2pdv2 d2pdtdv dcvdt errormsg");
    def<&zb::zp_allpropsallphases, caller_text(22)>(
        m, "zp_allpropsallphases",
        "inputspec input1 input2 p t v d h s u q usr_x usr_y cv dpdt "
        "dpdv d2pdt2 d2pdv2 d2pdtdv dcvdt eta lambda errormsg");
    def<&zb::zp_allpropssatext, caller_text(23)>(
        m, "zp_allpropssatext",
        "inputspec input1 input2 p t v d h s u q usr_x usr_y v_liq d_liq "
        "h_liq s_liq u_liq v_vap d_vap h_vap s_vap u_vap errormsg");
    def<&zb::alltransprops_zp>(m, "alltransprops_zp",
                               "t d eta eta_t eta_d lambda lambda_t lambda_d errormsg");
    def<&zb::capeopenderiv_zp>(m, "capeopenderiv_zp",
                               "inputspec input1 input2 v h s g lnphi errormsg");
    def<&zb::psat_k1>(m, "psat_k1", "k1 t psat errormsg");
    def<&zb::xy_a_alfa>(m, "xy_a_alfa", "aij aji alfa p t x y errormsg");
    def<&zb::xy_kij>(m, "xy_kij", "kij p t x y errormsg");
    def<&zb::hsxy_mp>(m, "hsxy_mp", "p t molpar h_r s_r x y errormsg");
    def<&envelope<&zb::zp_saturationline>, {.reads_too = bit(0) | bit(5)}>(
        m, "zp_saturationline", "npnts t p x y errormsg");
    def<&zb::settable, changes_state>(
        m, "settable", "tablename tabletype interpolmethod meshname searchalg phase errormsg");
    def<&zb::settable_new, changes_state>(m, "settable_new",
                                          "tablename inputspec input1_min input1_max input2_min "
                                          "input2_max meshspacing tabletype intpolmethod "
                                          "searchalg errormsg");
    def<&zb::usetable, changes_state>(m, "usetable", "tablename errormsg");
    def<&zb::alltableinfo>(m, "alltableinfo",
                           "sublibrary fluid table_type intpol_method search_alg table_props x_min "
                           "x_max y_min y_max mesh_space nzones errormsg");
    def<&zb::getfluidnames>(m, "getfluidnames", "longshortcas model nfluid fluidset errormsg");
    def<&zb::getcompset>(m, "getcompset", "model ncomps compset errormsg");
    def<&fluidstable::readfluidstable>(m, "readfluidstable", "errormsg");
    def<&fluidstable::tolower>(m, "tolower", "string");
#define ZP_BIND_COMPOSITION_ZP(name)                                                               \
    def<&zb::name##_zp>(m, #name "_zp", "inputspec input1 input2 output errormsg");
    ZENTROPIA_COMPOSITIONS(ZP_BIND_COMPOSITION_ZP)
#define ZP_BIND_FLUID_CONSTANT_ZP(name) def<&zb::zp_##name>(m, "zp_" #name, "errormsg");
    ZENTROPIA_FLUID_CONSTANTS(ZP_BIND_FLUID_CONSTANT_ZP)
}

void bind_main(py::module_& m) {
    def<&zm::inputconversion>(m, "inputconversion", "inputspec input1 input2 zp_input1 zp_input2");
    def<&zm::outputconversion>(m, "outputconversion", "outputspec zp_output output");
    def<&zm::outputconversion_cnc>(m, "outputconversion_cnc",
                                   "inputspec cnc outputspec zp_output output");
    def<&zm::calcprop>(m, "calcprop", "propspec inputspec input1 input2 errormsg");
    constexpr auto allprops = "inputspec input1 input2 p t v d h s u q x y cv cp c alpha beta chi "
                              "fi ksi psi zeta theta kappa gamma eta lambda";
    def<&zm::allprops>(m, "allprops", std::string(allprops) + " errormsg");
    def<&zm::allpropssat>(m, "allpropssat",
                          std::string(allprops) +
                              " d_liq d_vap h_liq h_vap t_sat dd_liq_dp dd_vap_dp dh_liq_dp "
                              "dh_vap_dp dt_sat_dp errormsg");
    def<&zm::allpropssatext, caller_text(23)>(
        m, "allpropssatext",
        "inputspec input1 input2 p t v d h s u q x y v_liq d_liq h_liq s_liq "
        "u_liq v_vap d_vap h_vap s_vap u_vap errormsg");
    def<&zm::allpropssu2>(m, "allpropssu2",
                          "inputspec input1 input2 p t d s u cv c2 alpha beta errormsg");
    def<&zm::allpropstarn>(m, "allpropstarn",
                           "inputspec input1 input2 p t v d h s u cv cp c alpha beta zeta eta "
                           "lambda dlam_dt dlam_drho deta_dt deta_drho errormsg");
    def<&zm::alltransprops>(
        m, "alltransprops",
        "inputspec input1 input2 eta eta_t eta_rho lambda lambda_t lambda_rho sigma errormsg");
    def<&zm::alltransprops_old>(m, "alltransprops_old",
                                "t d eta eta_t eta_d lambda lambda_t lambda_d errormsg");
    def<&zm::zflow_vu>(m, "zflow_vu", "p t v h s u alpha beta chi fi zeta gamma errormsg");
    // the converters read and write every value in place
    constexpr zpy::options in_place{.reads_too = ~std::uint64_t{0}};
    def<&zm::alloutputconv, in_place>(
        m, "alloutputconv",
        "p t v d h s u cv cp c alpha beta chi fi ksi psi zeta theta kappa eta lambda");
    def<&zm::alloutputconvsu2, in_place>(m, "alloutputconvsu2", "p t d s u cv c2 alpha beta");
    def<&zm::alloutputconvtarn, in_place>(m, "alloutputconvtarn",
                                          "p t v d h s u cv cp c alpha beta zeta eta lambda");
    def<&zm::alloutputconvext, {.reads_too = bit(19) - 1}>(
        m, "alloutputconvext",
        "p t v d h s u x y v_liq d_liq h_liq s_liq u_liq v_vap d_vap h_vap s_vap u_vap errormsg");
    constexpr auto saturation =
        "d_liq d_vap h_liq h_vap t_sat dd_liq_dp dd_vap_dp dh_liq_dp dh_vap_dp dt_sat_dp errormsg";
    def<&zm::modelica_p>(m, "modelica_p", std::string("p ") + saturation);
    def<&zm::modelica_p_mix>(m, "modelica_p_mix", std::string("p t ") + saturation);
#define ZP_BIND_SINGLE_PROPERTY(name) def<&zm::name>(m, #name, "inputspec input1 input2 errormsg");
    ZENTROPIA_SINGLE_PROPERTIES(ZP_BIND_SINGLE_PROPERTY)
#define ZP_BIND_COMPOSITION(name)                                                                  \
    def<&zm::name, caller_text(4)>(m, #name, "inputspec input1 input2 output errormsg");
    ZENTROPIA_COMPOSITIONS(ZP_BIND_COMPOSITION)
#define ZP_BIND_FLUID_CONSTANT(name) def<&zm::name>(m, #name, "errormsg");
    ZENTROPIA_FLUID_CONSTANTS(ZP_BIND_FLUID_CONSTANT)
    def<&zm::allinfo>(m, "allinfo", "m_mol t_crit p_crit t_min t_max errormsg");
    def<&zm::solve>(m, "solve", "funcspec funcval inputspec targt fixedval minval maxval errormsg");
    def<&isoline>(m, "isoline",
                  "propspec propval runspec calcspec minval maxval npnts runval calcval errormsg");
    def<&envelope<&zm::saturation_line>, {.reads_too = bit(0) | bit(5)}>(m, "saturation_line",
                                                                         "npnts t p x y errormsg");
}

void bind_refstate(py::module_& m) {
    def<&zr::setrefstate, changes_state>(m, "setrefstate", "t_ref p_ref errormsg");
    def<&zr::setrefstate_nondim, {.reads_too = bit(3), .changes_state = true}>(
        m, "setrefstate_nondim", "t_ref p_ref v_ref errormsg");
    // Both take errormsg last: without a reference state it comes back as passed, and the
    // _nondim form acts only when it reads "No errors".
    def<&zr::updaterefstate, caller_text_0>(m, "updaterefstate", "errormsg");
    def<&zr::updaterefstate_nondim, caller_text_0>(m, "updaterefstate_nondim", "errormsg");
    def<&zr::getrefstate>(m, "getrefstate", "t_ref p_ref v_ref errormsg");
    def<&zr::isrefstateset>(m, "isrefstateset", "");
    def<&zr::releaserefstate, changes_state>(m, "releaserefstate", "");
    def<&zr::dimnondimconvfact>(m, "dimnondimconvfact", "symbol");
}

void bind_units(py::module_& m) {
    def<&zu::setunits, changes_state>(m, "setunits",
                                      "unitset massormole propsymbol propunit errormsg");
    def<&zu::setunits_mmol, changes_state>(m, "setunits_mmol",
                                           "unitset massormole propsymbol propunit mmol errormsg");
    def<&zu::setunits_phase, changes_state>(m, "setunits_phase", "mmol errormsg");
    def<&zu::updateunits, changes_state>(m, "updateunits", "errormsg");
    def<&zu::getunits>(m, "getunits", "unitset massormole propsymbol propunit");
    def<&zu::getunit>(m, "getunit", "symbol errormsg");
    def<&getunitconvfact>(m, "getunitconvfact", "symbol factor offset");
    def<&zu::getunits_si>(m, "getunits_si", "massormole n_prop prop power unit");
    def<&zu::getunits_zp>(m, "getunits_zp", "massormole n_prop prop power unit");
    def<&zu::getunits_as>(m, "getunits_as", "massormole n_prop prop power unit");
    def<&unitparser::isalfa>(m, "isalfa", "c");
    def<&unitparser::isdigit>(m, "isdigit", "c");
    def<&unitparser::isvalid>(m, "isvalid", "c");
    def<&unitparser::isdigitstr>(m, "isdigitstr", "string");
    def<&unitparser::strtoarr>(m, "strtoarr", "string array nelmts errormsg");
    def<&unitparser::strtoint, {.reads_too = bit(0)}>(m, "strtoint", "string number msg");
}

} // namespace

PYBIND11_MODULE(_core, m) {
    m.doc() = "The procedures of the Zentropia programming interface, called as in C++: the "
              "arguments a procedure reads are positional; what it writes comes back, its result "
              "first and errormsg last.";
    bind_base(m);
    bind_main(m);
    bind_units(m);
    bind_refstate(m);
    m.def(
        "_selection_epoch", [] { return zpy::selection_epoch(); },
        "Counts the calls that changed the selection, the units or the reference state.");
    m.def(
        "_fluidfile",
        [](std::string name, std::vector<std::string> components, std::vector<double> conc,
           std::string eos, std::string mixing, std::vector<double> kij, std::vector<double> nrtl,
           std::vector<double> ws_kij, bool replace) {
            varimol_fluidfile::mixture mix{std::move(name), std::move(components),
                                           std::move(conc),  std::move(eos),
                                           std::move(mixing), std::move(kij),
                                           std::move(nrtl),   std::move(ws_kij)};
            std::string path, errormsg;
            varimol_fluidfile::write_fluidfile(mix, replace, path, errormsg);
            return std::pair(path, errormsg);
        },
        "Writes a Varimol fluid file (zentropia.fluidfile); returns (path, errormsg).");
    zpy::bind_arrays(m);
}
