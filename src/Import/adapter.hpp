#pragma once
// The operations every back-end adapter offers the dispatcher, as one row of function pointers per
// back-end. A null pointer means the adapter does not offer that operation; the dispatcher then
// answers with its own text. Values cross this boundary in the library's internal units
// (°C, bar, m³/kg, kg/m³, kJ/kg, kJ/(kg K), Pa s, W/(m K), N/m, kg/mol; pressure derivatives per
// pascal).
#include "base/common.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zp_adapter {

using zp_common::composition;
using component_names = std::array<std::string, zp_common::max_components>;
using version_numbers = std::array<int, 4>;
// values per phase of the all-phases bundle: vapour, first liquid, second liquid
inline constexpr int max_phases = 3;
using phase_values = std::array<double, max_phases>;

// the full state of one evaluation; an adapter leaves untouched what it does not compute
using allprops_op = void (*)(std::string_view inputspec, double value1, double value2, double& p,
                             double& t, double& v, double& d, double& h, double& s, double& u,
                             double& q, composition& x, composition& y, composition& lnphi,
                             double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                             double& d2pdtdv, double& dcvdt, double& eta, double& lambda,
                             double& sigma, std::string& errormsg);
// state from specific volume v and internal energy u (both in, the rest out)
using zflow_vu_op = void (*)(double& p, double& t, double v, double& h, double& s, double u,
                             double& cv, double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2,
                             double& d2pdtdv, double& dcvdt, std::string& errormsg);
// a composition vector of the back-end's components at a state
using composition_op = void (*)(std::string_view inputspec, double value1, double value2,
                                composition& output, std::string& errormsg);
// points of the phase envelope; x[i], y[i] are the phase compositions at point i
using phaseenvelope_op = void (*)(int& npnts, std::span<double> t, std::span<double> p,
                                  std::span<composition> x, std::span<composition> y,
                                  std::string& errormsg);

// The values of one evaluated state, in internal units, -8888.8 where nothing was computed. cp and
// c are the back-end's own, for the back-ends that compute them (sound tells that they were asked
// for and delivered).
struct state_values {
    double p = zp_common::not_set, t = zp_common::not_set, v = zp_common::not_set;
    double d = zp_common::not_set, h = zp_common::not_set, s = zp_common::not_set;
    double u = zp_common::not_set, q = zp_common::not_set, cv = zp_common::not_set;
    double dpdt = zp_common::not_set, dpdv = zp_common::not_set, d2pdt2 = zp_common::not_set;
    double d2pdv2 = zp_common::not_set, d2pdtdv = zp_common::not_set;
    double dcvdt = zp_common::not_set;
    double eta = zp_common::not_set, lambda = zp_common::not_set, sigma = zp_common::not_set;
    double cp = zp_common::not_set, c = zp_common::not_set;
    bool sound = false;
};

// The values a caller needs of a state, as flags. An adapter that evaluates part of a state asks
// its back-end for these alone; the phase compositions come with the quality q.
namespace output {
inline constexpr unsigned p = 1u << 0, t = 1u << 1, v = 1u << 2, d = 1u << 3, h = 1u << 4,
                          s = 1u << 5, u = 1u << 6, q = 1u << 7, cv = 1u << 8,
                          derivatives = 1u << 9, // the six pressure derivatives
    eta = 1u << 10, lambda = 1u << 11, sigma = 1u << 12, cp = 1u << 13, c = 1u << 14;
// what the bundle of allprops holds
inline constexpr unsigned all = (1u << 15) - 1;
} // namespace output

// the part `wanted` (output flags) of a state; values asked along with it may be delivered too,
// the rest of `out` stays as it was
using evaluate_op = void (*)(std::string_view inputspec, double value1, double value2,
                             unsigned wanted, state_values& out, composition& x, composition& y,
                             std::string& errormsg);

struct operations {
    std::string_view model; // canonical name of the back-end, as its error texts name it
    bool installed;         // false: every operation answers "back-end library not installed"
    void (*zp_sub)();
    void (*getversion)(version_numbers& version);
    void (*uninit)();
    // sublibrary is the model a table back-end is built for; other back-ends ignore it
    void (*setfluid)(std::string_view sublibrary, int ncomp, std::span<const std::string> comp,
                     std::span<const double> conc, std::string& errormsg);
    void (*getfluid)(int& ncomp, component_names& comp, composition& conc);
    void (*getcompset)(int& ncomps, std::vector<std::string>& compset, std::string& errormsg);
    double (*getinfo)(std::string_view property, std::string& errormsg);
    double (*prop)(std::string_view inputspec, double value1, double value2,
                   std::string_view outputspec, std::string& errormsg);
    allprops_op allprops;
    composition_op liquidcmp;
    composition_op vaporcmp;
    composition_op fugacoef;
    zflow_vu_op zflow_vu;
    void (*psat_k1)(double k1, double t, double& psat, std::string& errormsg);
    phaseenvelope_op phaseenvelope;
    // a part of the state (null: the adapter evaluates whole states by allprops alone)
    evaluate_op evaluate;
    // the molar masses (kg/mol) of the components handed to setfluid, in their order (null: the
    // back-end names them by the getinfo keywords "M_mol_<i>")
    void (*mmolcomp)(composition& mmol, std::string& errormsg);
    // the components of the configured fluid, where one name may stand for a mixture (a
    // predefined mixture, a fluid file); null: the names handed to setfluid are the components
    int (*fluid_components)();
};

// The operations an adapter offers, as a set of flags; the rest stay null in its row.
namespace offer {
inline constexpr unsigned setfluid = 1u << 0, getfluid = 1u << 1, getcompset = 1u << 2,
                          getinfo = 1u << 3, prop = 1u << 4, allprops = 1u << 5,
                          liquidcmp = 1u << 6, vaporcmp = 1u << 7, fugacoef = 1u << 8,
                          zflow_vu = 1u << 9, psat_k1 = 1u << 10, phaseenvelope = 1u << 11;
// a back-end of fluids: their selection, their constants and their states
inline constexpr unsigned fluid = setfluid | getfluid | getinfo | prop | allprops;
// the compositions of the coexisting phases of a mixture
inline constexpr unsigned phase_compositions = liquidcmp | vaporcmp;
} // namespace offer

// A model name as a template argument: absent<"RefProp">.
template <std::size_t N> struct model_name {
    char text[N];
    constexpr model_name(const char (&name)[N]) { std::copy_n(name, N, text); }
    constexpr std::string_view view() const { return {text, N - 1}; }
};

// writes "Error in <model>: back-end library not installed."
void not_installed(std::string_view model, std::string& errormsg);

// The answers of an adapter whose back-end library is not shipped: every operation with an error
// text reports the missing library, numeric results are -8888.8, outputs stay untouched.
template <model_name Name> struct absent {
    static constexpr std::string_view model = Name.view();
    static void fail(std::string& errormsg) { not_installed(model, errormsg); }
    static void nothing() {}
    static void version(version_numbers&) {}
    static void setfluid(std::string_view, int, std::span<const std::string>,
                         std::span<const double>, std::string& errormsg) {
        fail(errormsg);
    }
    static void getfluid(int&, component_names&, composition&) {}
    static void getcompset(int&, std::vector<std::string>&, std::string& errormsg) {
        fail(errormsg);
    }
    static double getinfo(std::string_view, std::string& errormsg) {
        fail(errormsg);
        return zp_common::not_set;
    }
    static double prop(std::string_view, double, double, std::string_view, std::string& errormsg) {
        fail(errormsg);
        return zp_common::not_set;
    }
    static void allprops(std::string_view, double, double, double&, double&, double&, double&,
                         double&, double&, double&, double&, composition&, composition&,
                         composition&, double&, double&, double&, double&, double&, double&,
                         double&, double&, double&, double&, std::string& errormsg) {
        fail(errormsg);
    }
    static void composition_vector(std::string_view, double, double, composition&,
                                   std::string& errormsg) {
        fail(errormsg);
    }
    static void zflow_vu(double&, double&, double, double&, double&, double, double&, double&,
                         double&, double&, double&, double&, double&, std::string& errormsg) {
        fail(errormsg);
    }
    static void psat_k1(double, double, double&, std::string& errormsg) { fail(errormsg); }
    static void phaseenvelope(int&, std::span<double>, std::span<double>, std::span<composition>,
                              std::span<composition>, std::string& errormsg) {
        fail(errormsg);
    }

    // the row of such an adapter: the offered operations answer as above
    static constexpr operations row(unsigned offered) {
        const auto has = [offered](unsigned op) { return (offered & op) != 0; };
        return {model,
                false,
                &nothing,
                &version,
                &nothing,
                has(offer::setfluid) ? &setfluid : nullptr,
                has(offer::getfluid) ? &getfluid : nullptr,
                has(offer::getcompset) ? &getcompset : nullptr,
                has(offer::getinfo) ? &getinfo : nullptr,
                has(offer::prop) ? &prop : nullptr,
                has(offer::allprops) ? &allprops : nullptr,
                has(offer::liquidcmp) ? &composition_vector : nullptr,
                has(offer::vaporcmp) ? &composition_vector : nullptr,
                has(offer::fugacoef) ? &composition_vector : nullptr,
                has(offer::zflow_vu) ? &zflow_vu : nullptr,
                has(offer::psat_k1) ? &psat_k1 : nullptr,
                has(offer::phaseenvelope) ? &phaseenvelope : nullptr,
                nullptr,
                nullptr,
                nullptr};
    }
};

} // namespace zp_adapter
