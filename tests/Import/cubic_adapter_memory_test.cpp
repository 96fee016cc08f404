// The cubic adapters remember the last state they evaluated. What they answer from that memory
// must be what a fresh flash answers: after a new selection, for the phase compositions of a
// state whose single property was asked first, for the one-phase request of a (P, T) that splits,
// and for a state that fails.
#include "base/zentropia_base.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace zb = zentropia_base;
namespace zm = zentropia_main;

namespace {

using zp_common::composition;

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

void select(const char* model, double methane) {
    std::string e;
    const std::vector<std::string> names{"methane", "ethane"};
    zb::setfluid(model, 2, names, std::vector{methane, 1.0 - methane}, e);
    ASSERT_TRUE(zp_common::is_success(e)) << model << ": " << e;
    zentropia_units::setunits("Zentropia", "PerMass", "", "", e);
    ASSERT_EQ(e, "No errors");
}

// A property in internal units (bar, °C) by (P, T), with its message.
double ask(std::string_view key, std::string_view inputspec, double p, double t, std::string& e) {
    return zb::calculate(inputspec, p, t, key, e);
}

// Another state in between: the memory then holds that one.
void forget() {
    std::string e;
    ask("h", "PT", 3.0, 20.0, e);
    ASSERT_EQ(e, "No errors");
}

class CubicAdapterMemory : public ::testing::TestWithParam<const char*> {};

TEST_P(CubicAdapterMemory, ANewSelectionIsNeverAnsweredFromTheOldOne) {
    const char* model = GetParam();
    std::string e;
    select(model, 0.9);
    const double first = ask("h", "PT", 10.0, 0.0, e);
    select(model, 0.5);
    const double remembered = ask("h", "PT", 10.0, 0.0, e);
    forget();
    const double fresh = ask("h", "PT", 10.0, 0.0, e);
    EXPECT_EQ(e, "No errors");
    EXPECT_TRUE(same_bits(remembered, fresh)) << remembered << " against " << fresh;
    EXPECT_GT(std::abs(first - fresh), 1.0) << "the two mixtures differ by more than 1 kJ/kg";
}

TEST_P(CubicAdapterMemory, ASplitStateKeepsItsPhasesAndItsRequest) {
    const char* model = GetParam();
    select(model, 0.9);
    std::string e;
    // 25 bar, -93.15 °C: between the dew (about 16 bar) and bubble (about 30 bar) pressures
    const double p = 25.0, t = -93.15;
    composition after_property{}, fresh{}, vapour{};
    // the single property asks no compositions of the adapter; the state it leaves holds them
    zm::calcprop("h", "PT", p, t, e);
    ASSERT_EQ(e, "No errors");
    zm::liquidcmp("PT", p, t, after_property, e);
    ASSERT_EQ(e, "No errors");
    forget();
    zm::liquidcmp("PT", p, t, fresh, e);
    zm::vaporcmp("PT", p, t, vapour, e);
    ASSERT_EQ(e, "No errors");
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(same_bits(after_property[i], fresh[i])) << i;
    EXPECT_GT(fresh[1], vapour[1] + 0.01) << "the liquid is richer in ethane: two phases";
    // the one-phase request of the same (P, T) is another request: a homogeneous q = 1
    EXPECT_LT(ask("q", "PT", p, t, e), 1.0);
    EXPECT_EQ(ask("q", "PT_1ph", p, t, e), 1.0);
    EXPECT_EQ(e, "No errors");
}

TEST_P(CubicAdapterMemory, AFailedStateFailsAgainWithItsTextAndTheNextStateWorks) {
    const char* model = GetParam();
    select(model, 0.9);
    std::string first, again, next;
    const double good = ask("h", "PT", 3.0, 20.0, next);
    ASSERT_EQ(next, "No errors");
    ask("h", "PT", 2000.0, 20.0, first); // above the model's 1000 bar
    ask("h", "PT", 2000.0, 20.0, again);
    EXPECT_NE(first, "No errors");
    EXPECT_EQ(again, first);
    EXPECT_TRUE(same_bits(ask("h", "PT", 3.0, 20.0, next), good));
    EXPECT_EQ(next, "No errors");
}

INSTANTIATE_TEST_SUITE_P(BothModels, CubicAdapterMemory,
                         ::testing::Values("Varimol", "liteVarimol"));

} // namespace
