#include "base/zenvir.hpp"
#include "refstate/dimnondim.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace {

using symbols = std::array<std::string_view, 4>;
using values = std::array<double, 4>;

constexpr std::array<std::string_view, 12> all_symbols = {"M", "L", "t", "T", "w", "e",
                                                          "h", "s", "R", "P", "d", "v"};

// Scales worked out by hand from pressure P, specific volume v, temperature T and mass M:
// L^3 = M v, P = M L^-1 t^-2, w = L / t, e = w^2, s = e / T.
std::array<double, 12> scales_by_hand(double P, double v, double T, double M) {
    const double L = std::cbrt(M * v);
    const double t = std::sqrt(M / (L * P));
    const double w = L / t;
    return {M, L, t, T, w, w * w, w * w, w * w / T, w * w / T, P, 1.0 / v, v};
}

void expect_scales(const std::array<double, 12>& expected, const std::string& context) {
    for (std::size_t i = 0; i < all_symbols.size(); ++i)
        EXPECT_NEAR(dimnondim::scaling_value(all_symbols[i]), expected[i], 1e-13 * expected[i])
            << context << " symbol " << all_symbols[i];
}

void expect_error(std::string_view sub, std::string_view msg) {
    const auto& s = zenvir::status();
    EXPECT_TRUE(s.err);
    EXPECT_EQ(s.mdl, "adim");
    EXPECT_EQ(s.sub, sub);
    EXPECT_EQ(s.msg, msg);
}

// Runs first: the module holds process-wide state.
TEST(Dimnondim, BeforeAnyReferenceEveryLookupGivesZero) {
    for (auto symbol : all_symbols) EXPECT_EQ(dimnondim::scaling_value(symbol), 0.0) << symbol;
    dimnondim::setup_table();
    zenvir::status() = {};
    EXPECT_EQ(dimnondim::scaling_value("P"), 0.0);
    EXPECT_FALSE(zenvir::status().err);
    EXPECT_EQ(dimnondim::nondim_value("P", 1.0e5), 0.0);
    expect_error("nondim_value", "No reference scale for P");
}

TEST(Dimnondim, ScalesFollowFromAnyIndependentReference) {
    struct Case {
        symbols var;
        values val;
        std::array<double, 12> expected;
    };
    const Case cases[] = {
        {{"P", "v", "T", "M"}, {1, 1, 1, 1}, scales_by_hand(1, 1, 1, 1)},
        {{"P", "v", "T", "M"}, {1.0e5, 1.0e-3, 300, 1}, scales_by_hand(1.0e5, 1.0e-3, 300, 1)},
        {{"P", "v", "T", "M"},
         {22.064e6, 1.0 / 322, 647.096, 1},
         scales_by_hand(22.064e6, 1.0 / 322, 647.096, 1)},
        // The same state as the second case, named through other quantities and in another order.
        {{"T", "d", "L", "w"}, {300, 1000, 0.1, 10}, scales_by_hand(1.0e5, 1.0e-3, 300, 1)},
        {{"t", "M", "h", "T"}, {0.01, 1, 100, 300}, scales_by_hand(1.0e5, 1.0e-3, 300, 1)},
        {{"R", "P", "M", "v"},
         {0.5, 2.0e6, 3, 0.05},
         scales_by_hand(2.0e6, 0.05, 0.05 * 2.0e6 / 0.5, 3)},
    };
    for (const auto& c : cases) {
        zenvir::status() = {};
        dimnondim::setup_reference(c.var, c.val);
        EXPECT_FALSE(zenvir::status().err) << zenvir::status().msg;
        std::string context;
        for (auto v : c.var) context.append(v).append(" ");
        expect_scales(c.expected, context);
    }
    // Plain numbers for the second case: length 0.1 m, velocity 10 m/s.
    dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
    EXPECT_NEAR(dimnondim::scaling_value("L"), 0.1, 1e-15);
    EXPECT_NEAR(dimnondim::scaling_value("w"), 10.0, 1e-13);
    EXPECT_NEAR(dimnondim::scaling_value("t"), 0.01, 1e-16);
    EXPECT_DOUBLE_EQ(dimnondim::scaling_value("T "), 300.0); // trailing blanks ignored
}

TEST(Dimnondim, DimAndNondimValuesUseTheScale) {
    dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
    struct Case {
        std::string_view var;
        double dimensional;
        double reduced;
    };
    const Case cases[] = {
        {"P", 2.0e5, 2.0},   {"T", 450.0, 1.5}, {"w", 340.0, 34.0},
        {"h", 2.5e6, 2.5e4}, {"d", 500.0, 0.5}, {"s", 100.0, 300.0},
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(dimnondim::nondim_value(c.var, c.dimensional), c.reduced, 1e-12 * c.reduced)
            << c.var;
        EXPECT_NEAR(dimnondim::dim_value(c.var, c.reduced), c.dimensional, 1e-12 * c.dimensional)
            << c.var;
    }
}

TEST(Dimnondim, BadReferenceIsRecordedAndKeepsTheScales) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        symbols var;
        values val;
        const char* msg;
    };
    const Case cases[] = {
        {{"P", "e", "h", "M"}, {1.0e5, 1.0, 1.0, 1.0}, "singular matrix for reference 3"},
        {{"P", "v", "M", "d"}, {1.0e5, 1.0e-3, 1.0, 1000}, "singular matrix for reference 4"},
        {{"p", "v", "T", "M"}, {1.0e5, 1.0e-3, 300, 1}, "Unknown reference var p"},
        {{"P", "v", "T", "mass"}, {1.0e5, 1.0e-3, 300, 1}, "Unknown reference var mass"},
        {{"P", "v", "T", "M"},
         {-1.0e5, 1.0e-3, 300, 1},
         "Reference value not positive: -100000 for P"},
        {{"P", "v", "T", "M"}, {1.0e5, 0.0, 300, 1}, "Reference value not positive: 0 for v"},
        {{"P", "v", "T", "M"}, {1.0e5, 1.0e-3, nan, 1}, "Reference value not positive: nan for T"},
        {{"P", "v", "T", "M"},
         {1.0e5, 1.0e-3, 300, inf},
         "Reference value not positive: inf for M"},
    };
    const auto good = scales_by_hand(1.0e5, 1.0e-3, 300, 1);
    for (const auto& c : cases) {
        dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
        zenvir::status() = {};
        dimnondim::setup_reference(c.var, c.val);
        expect_error("setup_reference", c.msg);
        expect_scales(good, c.msg);
    }
}

TEST(Dimnondim, UnknownSymbolGivesZeroAndNamesTheProcedure) {
    dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
    struct Case {
        double (*call)(std::string_view);
        const char* sub;
    };
    const Case cases[] = {
        {[](std::string_view v) { return dimnondim::scaling_value(v); }, "scaling_value"},
        {[](std::string_view v) { return dimnondim::dim_value(v, 2.0); }, "dim_value"},
        {[](std::string_view v) { return dimnondim::nondim_value(v, 2.0); }, "nondim_value"},
    };
    for (const auto& c : cases) {
        for (std::string_view var : {"p", "sigma", "", " t"}) {
            zenvir::status() = {};
            EXPECT_EQ(c.call(var), 0.0) << c.sub << " '" << var << "'";
            expect_error(c.sub, "Unknown variable " + std::string(var));
        }
    }
    const std::string long_name(200, 'x');
    dimnondim::scaling_value(long_name);
    EXPECT_EQ(zenvir::status().msg.size(), zenvir::field_length);
}

} // namespace
