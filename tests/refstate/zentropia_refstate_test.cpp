#include "base/common.hpp"
#include "refstate/dimnondim.hpp"
#include "refstate/zentropia_refstate.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace {

namespace rs = zentropia_refstate;
using zentropia_units::unit_row;
const std::string ok(zp_common::no_errors);

void select_units(std::string_view unitset) {
    std::string err;
    zentropia_units::setunits(unitset, "PerMass", "", "", err);
    ASSERT_EQ(err, ok);
}

bool pairs_unchanged(const std::array<zentropia_units::conversion_pair, 27>& before) {
    for (std::size_t i = 0; i < before.size(); ++i)
        if (zentropia_units::convfact()[i].factor != before[i].factor ||
            zentropia_units::convfact()[i].offset != before[i].offset)
            return false;
    return true;
}

// Runs first: the reference state is process-wide.
TEST(Refstate, WithoutReferenceScalesAreOneAndGetWarns) {
    for (std::string_view symbol : {"P", "c", "dlambda_dD", "unknown"})
        EXPECT_EQ(rs::dimnondimconvfact(symbol), 1.0) << symbol;
    double t = -1, p = -1, v = -1;
    std::string err = ok;
    rs::updaterefstate_nondim(err); // nothing to update
    rs::getrefstate(t, p, v, err);
    EXPECT_EQ(err, "Zentropia warning: reference state not set.");
    EXPECT_TRUE(t == 0.0 && p == 0.0 && v == 0.0 && !rs::isrefstateset());
}

// Reference 0 °C, 1 bar, 1e-3 m3/kg: length 0.1 m, time 0.01 s, velocity 10 m/s, energy 100 J/kg.
TEST(Refstate, ReducedValuesConvertToInternalUnits) {
    select_units("Zentropia");
    const auto before = zentropia_units::convfact();
    for (const char* text : {"", "Error in IF97: earlier failure"}) {
        std::string err = text; // the given-volume form acts only on "No errors"
        rs::setrefstate_nondim(0.0, 1.0, 1.0e-3, err);
        EXPECT_TRUE(err == text && !rs::isrefstateset() && pairs_unchanged(before));
    }
    std::string err = ok;
    rs::setrefstate_nondim(0.0, 1.0, 1.0e-3, err);
    ASSERT_TRUE(err == ok && rs::isrefstateset()) << err;

    // Both spellings of the density derivatives: only this module's is a scale symbol.
    const std::pair<std::string_view, double> scales[] = {
        {"alpha", 100.0},           {"eta", 1000.0},
        {"deta_dD", 1.0},           {"deta_drho", 0.0},
        {"lambda", 1.0e5 / 273.15}, {"dlambda_dD", 100 / 273.15}};
    for (const auto& [symbol, scale] : scales)
        EXPECT_NEAR(rs::dimnondimconvfact(symbol), scale, 1e-12 * scale) << symbol;

    // Reduced values to bar, °C, m3/kg, kg/m3, kJ/kg, kJ/(kg K), m/s, Pa s, N/m, kg/mol.
    const std::tuple<unit_row, double, double> conversions[] = {
        {unit_row::P, 2.0, 2.0},       {unit_row::T, 1.0, 0.0},        {unit_row::T, 2.0, 273.15},
        {unit_row::v, 3.0, 3.0e-3},    {unit_row::d, 0.5, 500.0},      {unit_row::h, 25.0, 2.5},
        {unit_row::s, 273.15, 0.1},    {unit_row::c, 34.0, 340.0},     {unit_row::eta, 1e-6, 1e-3},
        {unit_row::sigma, 0.07, 0.07}, {unit_row::Mmol, 0.018, 0.018},
    };
    for (const auto& [row, reduced, expected] : conversions) {
        const auto pair = zentropia_units::convfact()[static_cast<int>(row)];
        EXPECT_NEAR(reduced * pair.factor + pair.offset, expected, 1e-12 * (1 + expected))
            << static_cast<int>(row);
    }
}

TEST(Refstate, BadReferenceIsRejectedAndReleaseSetsScalesToOne) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const std::array<double, 3> cases[] = {{300, 1e5, -1e-3}, {300, 1e5, 0},    {300, -1e5, 1e-3},
                                           {-300, 1e5, 1e-3}, {nan, 1e5, 1e-3}, {300, inf, 1e-3}};
    select_units("SI");
    const auto before = zentropia_units::convfact();
    for (const auto& [t, p, v] : cases) { // K, Pa, m3/kg
        std::string err = ok;
        rs::setrefstate_nondim(t, p, v, err);
        EXPECT_TRUE(err.starts_with("Error in Zentropia: reference state needs a positive")) << err;
        EXPECT_TRUE(!rs::isrefstateset() && pairs_unchanged(before));
    }
    // No fluid is selected in this program: the specific volume cannot be evaluated.
    std::string err;
    rs::setrefstate(300.0, 1.0e5, err);
    EXPECT_TRUE(!zp_common::is_ok(err) && !err.empty()) << err;
    EXPECT_TRUE(!rs::isrefstateset() && pairs_unchanged(before));

    err = ok;
    rs::setrefstate_nondim(300.0, 2.0e5, 0.5, err);
    EXPECT_TRUE(err == ok && rs::isrefstateset());
    rs::releaserefstate();
    EXPECT_FALSE(rs::isrefstateset());
    for (std::string_view symbol : {"M", "L", "t", "T", "w", "e", "s", "P", "d", "v"})
        EXPECT_DOUBLE_EQ(dimnondim::scaling_value(symbol), 1.0) << symbol;
}

} // namespace
