#pragma once
// Shared by the property-interface tests: IF97 water in a unit set, the reference tables, the unit
// sets' units in SI derived from the unit definitions (1 psia = 6894.757 Pa, 1 Btu = 1055.056 J,
// 1 lb = 0.45359237 kg, 1 ft = 0.3048 m, °F = K·9/5 - 459.67) rather than from the library's
// conversion pairs, and a test back-end that carries the pressure derivatives.
#include "Import/if97_zp.hpp"
#include "backends/if97/reference_csv.hpp"
#include "base/zentropia_base.hpp"
#include "base/zp_models.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace water_support {

using zp_common::composition;
using zp_common::not_set;

inline constexpr double molar_mass = 0.018015257; // kg/mol, the IF97 back-end's value

inline void select_water(const std::string& unitset = "Zentropia",
                         const std::string& basis = "PerMass") {
    std::string errormsg;
    const std::array<std::string, 1> water{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("IF97", 1, water, one, errormsg);
    ASSERT_TRUE(zp_common::is_success(errormsg)) << errormsg;
    zentropia_units::setunits(unitset, basis, "", "", errormsg);
    ASSERT_EQ(errormsg, "No errors") << unitset << " " << basis;
}

enum class kind { P, T, v, d, energy, entropy, c, eta, lambda, sigma };

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
// caller's unit of the set. Per mole a kilogram becomes a mole of molar_mass kilograms.
inline double to_set(const unit_set& set, kind k, double si, double mmol = molar_mass) {
    const bool as = set.name == "Anglo-Saxon", zp = set.name == "Zentropia";
    const double m = set.basis == "PerMole" ? mmol : 1.0;
    constexpr double btu = 1055.056, lb = 0.45359237, ft = 0.3048, ft3 = ft * ft * ft;
    constexpr double rankine = 5.0 / 9.0;
    const double mass = as && m == 1.0 ? lb : 1.0; // the set's mass unit, per kilogram
    switch (k) {
    case kind::P:
        return as ? si / 6894.757 : zp ? si / 1e5 : si;
    case kind::T:
        return as ? si * 9.0 / 5.0 - 459.67 : zp ? si - 273.15 : si;
    case kind::v:
        return si * m * mass / (as ? ft3 : 1.0);
    case kind::d:
        return si / m / mass * (as ? ft3 : 1.0);
    case kind::energy:
        return si * m * mass / (as ? btu : zp ? 1000.0 : 1.0);
    case kind::entropy:
        return si * m * mass / (as ? btu / rankine : zp ? 1000.0 : 1.0);
    case kind::c:
        return as ? si / ft : si;
    case kind::eta:
        return as ? si / m / mass * ft : si; // lb/(ft s): a mass in the numerator
    case kind::lambda:
        return as ? si / (0.293071 / ft / rankine) : si;
    case kind::sigma:
        return as ? si / (4.448222 / ft) : si;
    }
    return si;
}

// The rows of a CSV file under data/, by column name.
inline std::vector<reference_csv::row> read_csv(const std::string& relative) {
    auto rows = reference_csv::read(std::string(ZP_DATA_DIR) + "/" + relative);
    EXPECT_FALSE(rows.empty()) << relative;
    return rows;
}

// Half a unit in the last printed digit of a number written as text, relative to its value.
inline double printed_precision(const std::string& text) {
    int digits = 0;
    bool leading = true;
    for (char c : text.substr(0, text.find_first_of("eE"))) {
        if (c < '0' || c > '9' || (leading && c == '0')) continue;
        leading = false;
        ++digits;
    }
    return 0.5 * std::pow(10.0, 1 - digits);
}

// ---- A back-end whose state evaluation carries the pressure derivatives ----------------------
// IF97 water served under the model "Critova" (which takes component names as given) by a test
// adapter whose state bundle also returns the six pressure derivatives, as equation-of-state
// back-ends do. Selected with several components it pretends to be a mixture of water and
// components of 44.01 g/mol, with phase compositions liquid (0.3, 0.7) and vapour (0.6, 0.4).
namespace double_adapter {

inline constexpr double other_molar_mass = 0.04401;
inline int ncomp = 1;
inline double water_fraction = 1.0;

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
    x[0] = ncomp > 1 ? 0.3 : 1.0 - q, y[0] = ncomp > 1 ? 0.6 : q;
    if (ncomp > 1) x[1] = 0.7, y[1] = 0.4;
}
inline void setfluid(std::string_view, int n, std::span<const std::string>,
                     std::span<const double> c, std::string& errormsg) {
    ncomp = n, water_fraction = c[0];
    errormsg = "No errors";
}
inline double getinfo(std::string_view property, std::string& errormsg) {
    errormsg = "No errors";
    if (property == "M_mol_1") return molar_mass;
    if (property.starts_with("M_mol_")) return other_molar_mass;
    if (property == "M_mol" && ncomp > 1)
        return water_fraction * molar_mass + (1 - water_fraction) * other_molar_mass;
    return if97_zp::if97_getinfo(property, errormsg);
}
inline constexpr zp_adapter::operations row = [] {
    zp_adapter::operations o{};
    o.model = "Critova", o.installed = true, o.zp_sub = &if97_zp::if97_zp_sub;
    o.getversion = &if97_zp::if97_getversion, o.uninit = &if97_zp::if97_uninit;
    o.setfluid = &setfluid, o.getfluid = &if97_zp::if97_getfluid, o.getinfo = &getinfo;
    o.prop = &if97_zp::if97_prop, o.allprops = &allprops;
    return o;
}();

} // namespace double_adapter

// Selects water served by the adapter above as components of composition conc, for the
// lifetime of the object; then IF97 water again.
struct water_with_derivatives {
    const zp_adapter::operations* previous;
    explicit water_with_derivatives(std::vector<double> conc = {1.0},
                                    const std::string& unitset = "Zentropia",
                                    const std::string& basis = "PerMass",
                                    const zp_adapter::operations* row = &double_adapter::row) {
        previous = zp_models::replace_adapter(zp_models::model_id::critova, row);
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

} // namespace water_support
