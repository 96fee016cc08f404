#include "units/zentropia_units.hpp"

#include "units/independent_units.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

namespace zu = zentropia_units;
namespace ind = independent;

const std::string deg = "\xB0";
constexpr double water = 0.018015268; // kg/mol, IAPWS-95

bool all_identity() {
    for (const auto& p : zu::convfact())
        if (p.factor != 1.0 || p.offset != 0.0) return false;
    return true;
}

std::string set_mmol(const std::string& set, const std::string& basis, const std::string& symbols,
                     const std::string& units, double mmol) {
    std::string msg;
    zu::setunits_mmol(set, basis, symbols, units, mmol, msg);
    return msg;
}

// Must run first: the state before any setunits.
TEST(ZentropiaUnits, StartsInInternalUnits) {
    std::string set, basis, symbols, units, msg;
    zu::getunits(set, basis, symbols, units);
    EXPECT_EQ(set, "Zentropia");
    EXPECT_EQ(basis, "PerMass");
    EXPECT_EQ(symbols, " ");
    EXPECT_EQ(units, " ");
    EXPECT_TRUE(all_identity());
    EXPECT_EQ(zu::getunit("P", msg), "bar");
    EXPECT_EQ(msg, "No errors");
}

// Caller units to internal units (bar, degC, kJ/kg ...), from the unit definitions alone: the
// factor per mass, the power of the mass unit in the caller's unit (a mole then weighs mmol kg)
// and the offset of temperature.
struct row_case {
    std::string symbol;
    double si, anglo;        // factors on a mass basis
    int si_mass, anglo_mass; // power of kg / lb in the unit
    double si_offset, anglo_offset;
    double tolerance; // of the Anglo-Saxon factor
};

std::vector<row_case> rows() {
    using namespace independent;
    const double ft3 = ft * ft * ft, ft4 = ft3 * ft;
    const double btu_lb = btu / lb / 1000.0; // kJ/kg
    return {
        {"P", 1e-5, psi / 1e5, 0, 0, 0, 0, seven_digits},
        {"T", 1.0, rankine, 0, 0, -273.15, -160.0 / 9.0, exact},
        {"v", 1.0, ft3 / lb, -1, -1, 0, 0, exact},
        {"d", 1.0, lb / ft3, 1, 1, 0, 0, exact},
        {"h", 1e-3, btu_lb, -1, -1, 0, 0, seven_digits},
        {"s", 1e-3, btu_lb * per_rankine, -1, -1, 0, 0, seven_digits},
        {"u", 1e-3, btu_lb, -1, -1, 0, 0, seven_digits},
        {"cp", 1e-3, btu_lb * per_rankine, -1, -1, 0, 0, seven_digits},
        {"cv", 1e-3, btu_lb * per_rankine, -1, -1, 0, 0, seven_digits},
        {"c", 1.0, ft, 0, 0, 0, 0, exact},
        {"alpha", 1.0, ft * ft, 0, 0, 0, 0, exact},
        {"beta", 1.0, lb / ft3, 1, 1, 0, 0, exact},
        {"chi", 1.0, lbf * ft4 / (lb * lb) * per_rankine, -2, -2, 0, 0, seven_digits},
        {"fi", 1.0, per_rankine, 0, 0, 0, 0, exact},
        {"ksi", 1.0, lb * lb / (lbf * ft4), 2, 2, 0, 0, seven_digits},
        {"psi", 1.0, 1.0 / (ft * ft), 0, 0, 0, 0, exact},
        {"zeta", 1.0, lb * rankine / ft3, 1, 1, 0, 0, exact},
        {"theta", 1.0, per_rankine, 0, 0, 0, 0, exact},
        {"kappa", 1e5, 1e5 / psi, 0, 0, 0, 0, seven_digits},
        {"eta", 1.0, lb / ft, 0, 1, 0, 0, exact},
        {"deta_dT", 1.0, lb / ft * per_rankine, 0, 1, 0, 0, exact},
        {"deta_drho", 1.0, ft * ft, -1, 0, 0, 0, exact},
        {"lambda", 1.0, btu_per_h / ft * per_rankine, 0, 0, 0, 0, seven_digits},
        {"dlambda_dT", 1.0, btu_per_h / ft * per_rankine * per_rankine, 0, 0, 0, 0, seven_digits},
        {"dlambda_dr", 1.0, btu_per_h * ft * ft / lb * per_rankine, -1, -1, 0, 0, seven_digits},
        {"sigma", 1.0, lbf / ft, 0, 0, 0, 0, seven_digits},
        {"Mmol", 1.0, lb, 1, 1, 0, 0, exact},
    };
}

TEST(ZentropiaUnits, EveryPairOfTheBuiltInSets) {
    const auto table = rows();
    ASSERT_EQ(table.size(), static_cast<std::size_t>(zu::nsymbols));
    for (const std::string set : {"SI", "ZP", "Zentropia", "Anglo-Saxon"})
        for (const std::string basis : {"PerMass", "PerMole"}) {
            ASSERT_EQ(set_mmol(set, basis, " ", " ", water), "No errors") << set << basis;
            const bool anglo = set == "Anglo-Saxon", si = set == "SI", molar = basis == "PerMole";
            for (std::size_t i = 0; i < table.size(); ++i) {
                const row_case& r = table[i];
                double factor = anglo ? r.anglo : si ? r.si : 1.0;
                const double offset = anglo ? r.anglo_offset : si ? r.si_offset : 0.0;
                if (molar)
                    factor *=
                        std::pow(water / (anglo ? ind::lb : 1.0), anglo ? r.anglo_mass : r.si_mass);
                const double tolerance = anglo ? r.tolerance : ind::exact;
                const std::string what = set + " " + basis + " " + r.symbol;
                const auto& pair = zu::convfact()[i];
                EXPECT_NEAR(pair.factor, factor, tolerance * factor) << what;
                EXPECT_NEAR(pair.offset, offset, 1e-12 * (1.0 + std::fabs(offset))) << what;
                std::array<double, 2> cf{};
                zu::getunitconvfact(r.symbol, cf);
                EXPECT_EQ(cf, (std::array<double, 2>{pair.factor, pair.offset})) << what;
            }
        }
}

TEST(ZentropiaUnits, SingleProperties) {
    using namespace independent;
    struct case_ {
        std::string set, symbols, units;
        double mmol;
        std::string symbol;
        double factor, offset;
    };
    const std::string utf8_f = std::string("\xC2\xB0") + "F";
    const std::vector<case_> cases{
        {"ZP", "P", "MPa", 1.0, "P", 10.0, 0.0},
        {"SI", "s", "kJ.kg^-1.K^-1", 1.0, "s", 1.0, 0.0},
        {"SI", "d", "g/cm^3", 1.0, "d", 1000.0, 0.0},
        {"SI", "T", utf8_f, 1.0, "T", 5.0 / 9.0, -160.0 / 9.0},
        {"ZP", "T", "K", 1.0, "T", 1.0, -273.15},
        {"ZP", "T", "R", 1.0, "T", 5.0 / 9.0, -273.15},
        {"ZP", "s", "kJ/kg/F", 1.0, "s", 1.8, 0.0},
        {"ZP", "zeta", "kg/m^3.F", 1.0, "zeta", 5.0 / 9.0, 0.0},
        {"Anglo-Saxon", "P,T", "bar,C", 1.0, "P", 1.0, 0.0},
        {"Anglo-Saxon", "P,T", "bar,C", 1.0, "h", 2.326, 0.0}, // the rest stays Anglo-Saxon
        {"ZP", "kappa", "MPa^-1", 1.0, "kappa", 0.1, 0.0},
        {"ZP", "c", "km/h", 1.0, "c", 1.0 / 3.6, 0.0},
        {"ZP", "v", "cu ft/lb", 1.0, "v", ft * ft * ft / lb, 0.0},
        {"ZP", "lambda", "Btu/h/ft/F", 1.0, "lambda", btu_per_h / ft * 1.8, 0.0},
        {"ZP", "Mmol", "kg/kmol", 1.0, "Mmol", 1e-3, 0.0},
        // Molar units on a mass basis: a mole of water weighs 0.018 kg.
        {"ZP", "h", "kJ/kmol", water, "h", 1e-3 / water, 0.0},
        {"ZP", "d", "mol/L", water, "d", 1e3 * water, 0.0},
    };
    for (const auto& c : cases) {
        const std::string what = c.set + " " + c.symbols + " = " + c.units + ": " + c.symbol;
        ASSERT_EQ(set_mmol(c.set, "PerMass", c.symbols, c.units, c.mmol), "No errors") << what;
        std::array<double, 2> cf{};
        zu::getunitconvfact(c.symbol, cf);
        EXPECT_NEAR(cf[0], c.factor, ind::seven_digits * c.factor) << what;
        EXPECT_NEAR(cf[1], c.offset, 1e-12 * (1.0 + std::fabs(c.offset))) << what;
    }
}

TEST(ZentropiaUnits, PhaseMolarMassRebasesTheStoredSettings) {
    ASSERT_EQ(set_mmol("Anglo-Saxon", "PerMole", "h,T", "kJ/mol,C", water), "No errors");
    std::string msg;
    zu::setunits_phase(0.044, msg);
    EXPECT_EQ(msg, "No errors");
    const auto phase = zu::convfact();
    ASSERT_EQ(set_mmol("Anglo-Saxon", "PerMole", "h,T", "kJ/mol,C", 0.044), "No errors");
    for (int i = 0; i < zu::nsymbols; ++i) {
        EXPECT_EQ(phase[i].factor, zu::convfact()[i].factor) << i;
        EXPECT_EQ(phase[i].offset, zu::convfact()[i].offset) << i;
    }
    EXPECT_DOUBLE_EQ(phase[static_cast<int>(zu::unit_row::h)].factor, 1.0 / 0.044);

    zu::setunits_phase(0.0, msg); // per-mole units need a molar mass
    EXPECT_EQ(msg, "Error in Zentropia: molar mass 0 kg/mol unusable for a per-mole unit");
    EXPECT_TRUE(all_identity());
}

TEST(ZentropiaUnits, WithoutASelectedFluidTheMolarMassIsOne) {
    std::string msg;
    zu::setunits("ZP", "PerMole", " ", " ", msg);
    ASSERT_EQ(msg, "No errors");
    EXPECT_EQ(zu::convfact()[static_cast<int>(zu::unit_row::h)].factor, 1.0);
    ASSERT_EQ(set_mmol("ZP", "PerMole", " ", " ", water), "No errors");
    zu::updateunits(msg);
    ASSERT_EQ(msg, "No errors");
    EXPECT_EQ(zu::convfact()[static_cast<int>(zu::unit_row::d)].factor, 1.0);
}

TEST(ZentropiaUnits, WritesTheCallersUnits) {
    struct case_ {
        std::string set, basis, symbols, units, symbol, text;
    };
    const std::vector<case_> cases{
        {"SI", "PerMass", " ", " ", "P", "Pa"},
        {"SI", "PerMass", " ", " ", "v", "m^3/kg"},
        {"SI", "PerMass", " ", " ", "chi", "N.m^4/kg^2/K"},
        {"SI", "PerMass", " ", " ", "fi", "K^-1"},
        {"SI", "PerMass", " ", " ", "ksi", "kg^2/N/m^4"},
        {"SI", "PerMass", " ", " ", "deta_drho", "Pa.s.m^3/kg"},
        {"ZP", "PerMass", " ", " ", "T", deg + "C"},
        {"ZP", "PerMass", " ", " ", "kappa", "bar^-1"},
        {"Anglo-Saxon", "PerMass", " ", " ", "s", "Btu/lb/" + deg + "R"},
        {"Anglo-Saxon", "PerMass", " ", " ", "dlambda_dr", "Btu/h.ft^2/lb/" + deg + "F"},
        {"SI", "PerMole", " ", " ", "h", "J/mol"},
        {"SI", "PerMole", " ", " ", "Mmol", "mol/mol"},
        {"ZP", "PerMass", "T,P", "F,MPa", "T", deg + "F"},
        {"ZP", "PerMass", "s", "kJ.kg^-1.K^-1", "s", "kJ/kg/K"},
    };
    for (const auto& c : cases) {
        const std::string what = c.set + " " + c.basis + " " + c.units + ": " + c.symbol;
        ASSERT_EQ(set_mmol(c.set, c.basis, c.symbols, c.units, water), "No errors") << what;
        std::string msg;
        EXPECT_EQ(zu::getunit(c.symbol, msg), c.text) << what;
        EXPECT_EQ(msg, "No errors") << what;
    }
    std::string msg;
    EXPECT_EQ(zu::getunit("rho", msg), "");
    EXPECT_EQ(msg, "Error in Zentropia: property symbol \"rho\" unknown.");
}

TEST(ZentropiaUnits, WrittenUnitsReadBackToTheSamePair) {
    for (const std::string set : {"SI", "ZP", "Anglo-Saxon"})
        for (const std::string basis : {"PerMass", "PerMole"})
            for (int i = 0; i < zu::nsymbols; ++i) {
                const std::string symbol(zu::symbolset(static_cast<zu::unit_row>(i)));
                if (symbol.find('_') != std::string::npos) continue; // not a list character
                ASSERT_EQ(set_mmol(set, basis, " ", " ", water), "No errors");
                const auto expected = zu::convfact()[i];
                std::string msg;
                const std::string text = zu::getunit(symbol, msg);
                const std::string what = set + " " + basis + " " + symbol + " " + text;
                ASSERT_EQ(set_mmol(set, basis, symbol, text, water), "No errors") << what;
                EXPECT_NEAR(zu::convfact()[i].factor, expected.factor, 1e-14 * expected.factor)
                    << what;
                EXPECT_EQ(zu::convfact()[i].offset, expected.offset) << what;
            }
}

TEST(ZentropiaUnits, BadSettingsLeaveInternalUnitsAndTheStoredSettings) {
    struct case_ {
        std::string set, basis, symbols, units;
        double mmol;
        std::string error, step; // error after "Error in Zentropia: "
    };
    std::string list = "P", units = "bar";
    for (int k = 1; k < 28; ++k) list += ",P", units += ",bar";
    const std::string basis = "Check mass or mole", general = "General unit settings",
                      check = "Check specific unit settings",
                      store = "Store specific unit settings", factors = "Unit conv factors";
    const std::vector<case_> cases{
        {"SI", "permass", " ", " ", 1, "units not specified as \"PerMass\" or \"PerMole\".", basis},
        {"SIX", "PerMass", " ", " ", 1, "Unit set \"SIX\" unknown", general},
        {"ZP", "PerMass", "T,P", "C", 1, "number of properties does not equal number units.",
         check},
        {"ZP", "PerMass", "P,,T", "bar,,C", 1, "unable to convert string into an array", check},
        {"ZP", "PerMass", list, units, 1, "more than 27 entries in the list", check},
        {"ZP", "PerMass", "X", "bar", 1, "property symbol \"X\" unknown.", store},
        {"ZP", "PerMass", "P,", "bar,", 1, "property symbol \"\" unknown.", store},
        {"ZP", "PerMass", "P", "bar^x", 1, "unable to convert unit: bar^x", store},
        {"ZP", "PerMass", "P", "furlong", 1, "unknown source unit", factors},
        {"ZP", "PerMass", "P", "K", 1, "unable to convert unit", factors},
        {"ZP", "PerMass", "h", "J/mol", std::nan(""),
         "molar mass nan kg/mol unusable for a per-mole unit", factors},
        {std::string(300, 'S'), "PerMass", " ", " ", 1,
         "unit settings text longer than 256 characters", ""},
    };
    for (const auto& c : cases) {
        const std::string what = c.set.substr(0, 20) + " " + c.basis + " " +
                                 c.symbols.substr(0, 20) + " = " + c.units.substr(0, 20);
        ASSERT_EQ(set_mmol("Anglo-Saxon", "PerMass", "T", "C", 1.0), "No errors");
        EXPECT_EQ(set_mmol(c.set, c.basis, c.symbols, c.units, c.mmol),
                  "Error in Zentropia: " + c.error)
            << what;
        EXPECT_EQ(c.step.empty() ? c.step : zu::setunits_state(), c.step) << what;
        EXPECT_TRUE(all_identity()) << what;
        std::string set, basis_text, symbols, unit_list;
        zu::getunits(set, basis_text, symbols, unit_list);
        EXPECT_EQ(set + basis_text + symbols + unit_list, "Anglo-SaxonPerMassTC") << what;
    }
    // The stored settings being the last accepted ones, a phase's re-basing (the conversion of a
    // value marked "PT liq") brings them back after a refused set, as updateunits would.
    ASSERT_EQ(set_mmol("Anglo-Saxon", "PerMass", "T", "C", 1.0), "No errors");
    const auto accepted = zu::convfact();
    ASSERT_NE(set_mmol("SIX", "PerMass", " ", " ", 1.0), "No errors");
    std::string msg;
    zu::setunits_phase(1.0, msg);
    EXPECT_EQ(msg, "No errors");
    for (int i = 0; i < zu::nsymbols; ++i) EXPECT_EQ(zu::convfact()[i].factor, accepted[i].factor);
    // A molar mass that no unit needs is no failure.
    EXPECT_EQ(set_mmol("ZP", "PerMass", " ", " ", std::nan("")), "No errors");
    EXPECT_TRUE(all_identity());
}

TEST(ZentropiaUnits, SymbolsRowsAndDescriptions) {
    ASSERT_EQ(set_mmol("Anglo-Saxon", "PerMass", " ", " ", 1.0), "No errors");
    std::array<double, 2> cf{};
    zu::getunitconvfact("P  ", cf);
    EXPECT_EQ(cf[0], zu::convfact()[0].factor);
    for (const std::string unknown : {"p", "rho", "", "deta_dD"}) {
        zu::getunitconvfact(unknown, cf);
        EXPECT_EQ(cf, (std::array<double, 2>{1.0, 0.0})) << unknown;
    }
    const double before = zu::convfact()[1].factor;
    zu::scale_factor(zu::unit_row::T, 2.0);
    EXPECT_EQ(zu::convfact()[1].factor, 2.0 * before);

    zu::factor_counts n{};
    zu::slot_texts prop{}, unit{};
    zu::slot_powers power{};
    zu::getunits_as("PerMass", n, prop, power, unit);
    const auto row = [](zu::unit_row r) { return static_cast<std::size_t>(r); };
    EXPECT_EQ(n[row(zu::unit_row::eta)], 3);
    EXPECT_EQ(n[row(zu::unit_row::deta_dT)], 4);
    EXPECT_EQ(n[row(zu::unit_row::deta_drho)], 2);
    const std::size_t drho = 4 * row(zu::unit_row::deta_drho);
    EXPECT_EQ(power[drho], 2.0);
    EXPECT_EQ(power[drho + 1], -1.0);
    EXPECT_EQ(unit[drho + 2], "xxxxx");
    EXPECT_EQ(power[drho + 2], 0.0);
    zu::getunits_si("PerMole", n, prop, power, unit);
    const std::size_t zeta = 4 * row(zu::unit_row::zeta);
    EXPECT_EQ(prop[zeta + 1], "dT"); // a temperature difference
    EXPECT_EQ(unit[zeta], "mol");
    zu::getunits_zp("PerMass", n, prop, power, unit);
    EXPECT_EQ(prop[4 * row(zu::unit_row::s) + 2], "T");
    EXPECT_EQ(unit[4 * row(zu::unit_row::h)], "kJ");
}

} // namespace
