// Reduced values of IF97 water against python3-iapws (data/props/iapws_water.csv), reference
// state 300 K and 0.1 MPa.
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"
#include "refstate/zentropia_refstate.hpp"

#include <cmath>
#include <limits>
#include <map>

namespace {

namespace rs = zentropia_refstate;
using water_support::read_csv;

constexpr double t_ref = 300.0, p_ref = 1.0e5; // K, Pa
const std::string ok = "No errors";

// v of water at the reference state, m3/kg
double reference_volume() {
    for (const auto& row : read_csv("props/iapws_water.csv"))
        if (row["pair"] == "PT" && row["in1"] == "0.1" && row["in2"] == "300" &&
            row["property"] == "v")
            return row.number("value");
    ADD_FAILURE() << "no reference row";
    return 1.0;
}

void set_water_reference() {
    water_support::select_water("SI");
    std::string err;
    rs::setrefstate(t_ref, p_ref, err);
    ASSERT_EQ(err, ok);
}

TEST(RefstateWater, ScalesFollowTheFluidAtTheReferenceState) {
    const double v = reference_volume();
    set_water_reference();
    double t = 0, p = 0, v_r = 0;
    std::string err;
    rs::getrefstate(t, p, v_r, err);
    EXPECT_TRUE(err == ok && t == t_ref && p == p_ref) << err;
    EXPECT_NEAR(v_r, v, 1e-9 * v);

    // The same state named in °C and bar, and set again after the caller's units: same scales.
    water_support::select_water("Zentropia");
    rs::setrefstate(26.85, 1.0, err);
    EXPECT_EQ(err, ok);
    water_support::select_water("Zentropia");
    rs::updaterefstate(err);
    EXPECT_EQ(err, ok);
    const std::pair<const char*, double> scales[] = {{"T", t_ref},
                                                     {"P", p_ref},
                                                     {"v", v},
                                                     {"c", std::sqrt(p_ref * v)},
                                                     {"s", p_ref * v / t_ref}};
    for (const auto& [symbol, scale] : scales)
        EXPECT_NEAR(rs::dimnondimconvfact(symbol), scale, 1e-9 * scale) << symbol;
}

TEST(RefstateWater, ReducedPropertiesMatchIapwsAndRoundTripThroughPh) {
    set_water_reference();
    const double v = reference_volume();
    // Scale of each property in the units of the table (m3/kg, kg/m3, kJ/kg, kJ/(kg K), m/s).
    const std::map<std::string, double> scale = {{"v", v},
                                                 {"d", 1 / v},
                                                 {"h", p_ref * v / 1e3},
                                                 {"u", p_ref * v / 1e3},
                                                 {"s", p_ref * v / t_ref / 1e3},
                                                 {"cp", p_ref * v / t_ref / 1e3},
                                                 {"c", std::sqrt(p_ref * v)}};
    int compared = 0;
    for (const auto& row : read_csv("props/iapws_water.csv")) {
        if (row["pair"] != "PT" || !scale.contains(row["property"])) continue;
        const double p = row.number("in1") * 1e6 / p_ref, t = row.number("in2") / t_ref;
        const double expected = row.number("value") / scale.at(row["property"]);
        const double tol = (row["region"] == "3" ? 1e-8 : 1e-9) * std::fabs(expected);
        std::string err;
        EXPECT_NEAR(zentropia_main::calcprop(row["property"], "PT", p, t, err), expected, tol)
            << row["property"] << " at " << row["in1"] << " MPa, " << row["in2"] << " K";
        EXPECT_EQ(err, ok);
        if (row["property"] == "h") {
            EXPECT_NEAR(zentropia_main::calcprop("T", "Ph", p, expected, err), t, 1e-8 * t)
                << row["in1"] << " MPa, " << row["in2"] << " K: " << err;
        }
        ++compared;
    }
    EXPECT_GT(compared, 700);
}

TEST(RefstateWater, FailedVolumeIsPassedUpAndLeavesNoReference) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [t, p] : {std::pair{300.0, -1.0e5}, {nan, 1.0e5}, {300.0, 2.0e9}}) {
        set_water_reference();
        const auto before = zentropia_units::convfact();
        std::string err;
        rs::setrefstate(t, p, err);
        EXPECT_TRUE(err.starts_with("Error in ")) << err;
        EXPECT_FALSE(rs::isrefstateset());
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(zentropia_units::convfact()[i].factor, before[i].factor) << i;
    }
    set_water_reference();
    EXPECT_TRUE(rs::isrefstateset());
}

} // namespace
