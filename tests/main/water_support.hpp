#pragma once
// Shared by the property-interface tests: selecting IF97 water in a unit set, reading the reference
// tables, and the size of each unit set's units in SI, derived from the unit definitions (1 psia =
// 6894.757 Pa, 1 Btu = 1055.056 J, 1 lb = 0.45359237 kg, 1 ft = 0.3048 m, °F = K·9/5 - 459.67)
// rather than from the library's conversion pairs.
#include "base/common.hpp"
#include "base/zentropia_base.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

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
