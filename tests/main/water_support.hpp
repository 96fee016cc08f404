#pragma once
// Shared by the property-interface tests: selecting IF97 water in a unit set, reading the reference
// tables, and the size of each unit set's units in SI, derived from the unit definitions (1 psia =
// 6894.757 Pa, 1 Btu = 1055.056 J, 1 lb = 0.45359237 kg, 1 ft = 0.3048 m, °F = K·9/5 - 459.67)
// rather than from the library's conversion pairs.
#include "Import/if97_zp.hpp"
#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "base/zp_models.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace water_support {

using zp_common::composition;

inline constexpr double molar_mass = 0.018015257; // kg/mol, the IF97 back-end's value

// Selects a unit set ("SI", "Zentropia", "Anglo-Saxon") and basis, then IF97 water.
inline void select_water(const std::string& unitset = "Zentropia",
                         const std::string& basis = "PerMass") {
    std::string errormsg;
    const std::array<std::string, 1> water{"water"};
    const std::array<double, 1> one{1.0};
    errormsg = "";
    zentropia_base::setfluid("IF97", 1, water, one, errormsg);
    ASSERT_TRUE(zp_common::is_success(errormsg)) << errormsg;
    zentropia_units::setunits(unitset, basis, "", "", errormsg);
    ASSERT_EQ(errormsg, "No errors") << unitset << " " << basis;
}

// ---- A back-end whose state evaluation carries the pressure derivatives ----------------------
// IF97 water served under the model "Critova" by a test adapter whose state bundle also returns
// the six pressure derivatives, as equation-of-state back-ends do: it takes the derivative layer
// through its single-phase and two-phase branches with IF97's physics. Selected with several
// components, it pretends to be a mixture of water (first) and components of 44.01 g/mol, with
// fixed phase compositions: liquid (0.3, 0.7), vapour (0.6, 0.4) in the back-end's positions.
// (Critova takes component names as given, so any selection reaches the adapter.)
namespace double_adapter {

inline constexpr double other_molar_mass = 0.04401;
inline constexpr std::array<double, 2> liquid{0.3, 0.7}, vapour{0.6, 0.4};
inline int ncomp = 1;
inline composition conc{};

inline void phase(const std::array<double, 2>& fractions, composition& out) {
    out.fill(0.0);
    out[0] = fractions[0], out[1] = fractions[1];
}
inline void allprops(std::string_view inputspec, double value1, double value2, double& p, double& t,
                     double& v, double& d, double& h, double& s, double& u, double& q,
                     composition& x, composition& y, composition&, double& cv, double& dpdt,
                     double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv, double& dcvdt,
                     double& eta, double& lambda, double&, std::string& errormsg) {
    std::array<double, 16> o;
    if97_zp::if97_props(inputspec, value1, value2,
                        "p,t,v,h,s,u,x,cv,dP_dT,dP_dv,d2P_dT2,d2P_dv2,d2P_dTdv,dCv_dT,dv,tc", o,
                        errormsg);
    p = o[0], t = o[1], v = o[2], d = 1.0 / o[2], h = o[3], s = o[4], u = o[5], q = o[6];
    cv = o[7], dpdt = o[8], dpdv = o[9], d2pdt2 = o[10], d2pdv2 = o[11], d2pdtdv = o[12];
    dcvdt = o[13], eta = o[14], lambda = o[15];
    if (ncomp > 1) {
        phase(liquid, x), phase(vapour, y);
    } else {
        x[0] = 1.0 - q, y[0] = q;
    }
}
inline void setfluid(std::string_view, int n, std::span<const std::string>,
                     std::span<const double> c, std::string& errormsg) {
    ncomp = n;
    conc.fill(0.0);
    std::copy_n(c.begin(), std::min<std::size_t>(n, c.size()), conc.begin());
    errormsg = "No errors";
}
inline double getinfo(std::string_view property, std::string& errormsg) {
    const double water = molar_mass;
    errormsg = "No errors";
    if (property == "M_mol_1") return water;
    if (property.starts_with("M_mol_")) return other_molar_mass;
    if (property == "M_mol" && ncomp > 1) return conc[0] * water + (1 - conc[0]) * other_molar_mass;
    return if97_zp::if97_getinfo(property, errormsg);
}
inline void liquidcmp(std::string_view, double, double, composition& output,
                      std::string& errormsg) {
    phase(liquid, output);
    errormsg = "No errors";
}
inline void vaporcmp(std::string_view, double, double, composition& output, std::string& errormsg) {
    phase(vapour, output);
    errormsg = "No errors";
}
inline constexpr zp_adapter::operations row{"Critova",
                                            true,
                                            &if97_zp::if97_zp_sub,
                                            &if97_zp::if97_getversion,
                                            &if97_zp::if97_uninit,
                                            &setfluid,
                                            &if97_zp::if97_getfluid,
                                            nullptr,
                                            &getinfo,
                                            &if97_zp::if97_prop,
                                            &allprops,
                                            &liquidcmp,
                                            &vaporcmp,
                                            nullptr,
                                            nullptr,
                                            nullptr,
                                            nullptr};

} // namespace double_adapter

// Selects water served by the adapter above, as `ncomp` components (all "water") of the given
// composition, for the lifetime of the object; then IF97 water again.
struct water_with_derivatives {
    const zp_adapter::operations* previous;
    explicit water_with_derivatives(std::vector<double> conc = {1.0},
                                    const std::string& unitset = "Zentropia",
                                    const std::string& basis = "PerMass") {
        previous = zp_models::replace_adapter(zp_models::model_id::critova, &double_adapter::row);
        const std::vector<std::string> names(conc.size(), "water");
        std::string errormsg;
        zentropia_base::setfluid("Critova", static_cast<int>(conc.size()), names, conc, errormsg);
        EXPECT_EQ(errormsg, "No errors");
        zentropia_units::setunits(unitset, basis, "", "", errormsg);
        EXPECT_EQ(errormsg, "No errors");
    }
    ~water_with_derivatives() {
        zp_models::replace_adapter(zp_models::model_id::critova, previous);
        select_water();
    }
};

// The kinds of quantity whose units the tests convert.
enum class kind { P, T, v, d, energy, entropy, c, eta, lambda, sigma, none };

struct unit_set {
    std::string name, basis;
};
inline const std::array<unit_set, 6> all_unit_sets{{{"SI", "PerMass"},
                                                    {"Zentropia", "PerMass"},
                                                    {"Anglo-Saxon", "PerMass"},
                                                    {"SI", "PerMole"},
                                                    {"Zentropia", "PerMole"},
                                                    {"Anglo-Saxon", "PerMole"}}};

// A value in SI per kilogram (Pa, K, m³/kg, kg/m³, J/kg, J/(kg K), m/s, Pa s, W/(m K), N/m) in the
// caller's unit of the set.
inline double to_set(const unit_set& set, kind k, double si) {
    const bool as = set.name == "Anglo-Saxon", zp = set.name == "Zentropia";
    const bool mole = set.basis == "PerMole";
    constexpr double psia = 6894.757, btu = 1055.056, lb = 0.45359237, ft = 0.3048;
    constexpr double ft3 = ft * ft * ft, rankine = 5.0 / 9.0;
    // Per mole, a mass in a denominator becomes a mole: multiply by the molar mass; a mass in a
    // numerator: divide. The unit of that mole-based quantity follows.
    const double per_mass_unit = mole ? molar_mass : 1.0;
    switch (k) {
    case kind::P:
        return as ? si / psia : zp ? si / 1e5 : si;
    case kind::T:
        return as ? si * 9.0 / 5.0 - 459.67 : zp ? si - 273.15 : si;
    case kind::v:
        return si * per_mass_unit / (as ? (mole ? ft3 : ft3 / lb) : 1.0);
    case kind::d:
        return si / per_mass_unit / (as ? (mole ? 1.0 / ft3 : lb / ft3) : 1.0);
    case kind::energy:
        return si * per_mass_unit / (as ? (mole ? btu : btu / lb) : zp ? 1000.0 : 1.0);
    case kind::entropy:
        return si * per_mass_unit /
               (as   ? (mole ? btu / rankine : btu / lb / rankine)
                : zp ? 1000.0
                     : 1.0);
    case kind::c:
        return as ? si / ft : si;
    case kind::eta:
        return as ? si / (mole ? molar_mass : 1.0) / ((mole ? 1.0 : lb) / ft) : si;
    case kind::lambda:
        return as ? si / (0.293071 / ft / rankine) : si;
    case kind::sigma:
        return as ? si / (4.448222 / ft) : si;
    case kind::none:
        return si;
    }
    return si;
}

// One row of a CSV file, with double-quoted fields that may hold commas.
inline std::vector<std::string> split_csv(const std::string& line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (char c : line) {
        if (c == '"')
            quoted = !quoted;
        else if (c == ',' && !quoted)
            fields.emplace_back();
        else
            fields.back() += c;
    }
    return fields;
}

// The rows of a CSV file under data/, without its header and comment lines.
inline std::vector<std::vector<std::string>> read_csv(const std::string& relative) {
    std::ifstream in(std::string(ZP_DATA_DIR) + "/" + relative);
    EXPECT_TRUE(in.good()) << relative;
    std::vector<std::vector<std::string>> rows;
    std::string line;
    bool header = true;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        if (header) {
            header = false;
            continue;
        }
        rows.push_back(split_csv(line));
    }
    return rows;
}

// Half a unit in the last printed digit of a number written as text, relative to its value.
inline double printed_precision(const std::string& text) {
    std::string mantissa = text.substr(0, text.find_first_of("eE"));
    int digits = 0;
    bool leading = true;
    for (char c : mantissa) {
        if (c < '0' || c > '9') continue;
        if (leading && c == '0') continue;
        leading = false;
        ++digits;
    }
    return 0.5 * std::pow(10.0, 1 - digits);
}

} // namespace water_support
