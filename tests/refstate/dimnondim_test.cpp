#include "base/zenvir.hpp"
#include "refstate/dimnondim.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace {

using symbols = std::array<std::string_view, 4>;
using values = std::array<double, 4>;
using scales = std::array<double, 12>;

constexpr std::array<std::string_view, 12> all_symbols = {"M", "L", "t", "T", "w", "e",
                                                          "h", "s", "R", "P", "d", "v"};

// Worked out by hand from pressure, specific volume, temperature and mass:
// L^3 = M v, P = M L^-1 t^-2, w = L / t, e = w^2, s = e / T.
scales by_hand(double P, double v, double T, double M) {
    const double L = std::cbrt(M * v), t = std::sqrt(M / (L * P)), w = L / t;
    return {M, L, t, T, w, w * w, w * w, w * w / T, w * w / T, P, 1.0 / v, v};
}

void expect_scales(const scales& expected) {
    for (std::size_t i = 0; i < all_symbols.size(); ++i)
        EXPECT_NEAR(dimnondim::scaling_value(all_symbols[i]), expected[i], 1e-13 * expected[i])
            << all_symbols[i];
}

void expect_error(std::string_view sub, const std::string& msg) {
    const auto& s = zenvir::status();
    EXPECT_TRUE(s.err && s.mdl == "adim" && s.sub == sub) << s.mdl << " " << s.sub;
    EXPECT_EQ(s.msg, msg);
}

// Runs first: the scales are process-wide.
TEST(Dimnondim, BeforeAnyReferenceLookupsGiveZero) {
    EXPECT_EQ(dimnondim::scaling_value("P"), 0.0);
    dimnondim::setup_table();
    EXPECT_EQ(dimnondim::nondim_value("P", 1.0e5), 0.0);
    expect_error("nondim_value", "No reference scale for P");
}

TEST(Dimnondim, AnyIndependentReferenceGivesTheScalesOfItsState) {
    const scales example = by_hand(1.0e5, 1.0e-3, 300, 1); // L = 0.1 m, w = 10 m/s
    EXPECT_NEAR(example[1], 0.1, 1e-16);
    EXPECT_NEAR(example[4], 10.0, 1e-14);
    const struct {
        symbols var;
        values val;
        scales expected;
    } cases[] = {
        {{"P", "v", "T", "M"}, {1, 1, 1, 1}, by_hand(1, 1, 1, 1)},
        {{"P", "v", "T", "M"}, {1.0e5, 1.0e-3, 300, 1}, example},
        {{"P", "v", "T", "M"},
         {22.064e6, 1.0 / 322, 647.096, 1},
         by_hand(22.064e6, 1.0 / 322, 647.096, 1)},
        {{"T", "d", "L", "w"}, {300, 1000, 0.1, 10}, example},
        {{"t", "M", "h", "T "}, {0.01, 1, 100, 300}, example}, // trailing blank ignored
        {{"R", "P", "M", "v"}, {0.5, 2.0e6, 3, 0.05}, by_hand(2.0e6, 0.05, 2.0e5, 3)},
    };
    for (const auto& c : cases) {
        zenvir::status() = {};
        dimnondim::setup_reference(c.var, c.val);
        EXPECT_FALSE(zenvir::status().err) << zenvir::status().msg;
        expect_scales(c.expected);
    }
    dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
    for (const auto& [var, dim, reduced] :
         {std::tuple{"P", 2.0e5, 2.0}, std::tuple{"T", 450.0, 1.5},
          std::tuple{"h", 2.5e6, 2.5e4}}) {
        EXPECT_NEAR(dimnondim::nondim_value(var, dim), reduced, 1e-12 * reduced) << var;
        EXPECT_NEAR(dimnondim::dim_value(var, reduced), dim, 1e-12 * dim) << var;
    }
}

TEST(Dimnondim, BadReferenceIsRecordedAndKeepsTheScales) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        symbols var;
        values val;
        const char* msg;
    } cases[] = {
        {{"P", "e", "h", "M"}, {1.0e5, 1, 1, 1}, "singular matrix for reference 3"},
        {{"P", "v", "M", "d"}, {1.0e5, 1.0e-3, 1, 1000}, "singular matrix for reference 4"},
        {{"p", "v", "T", "M"}, {1.0e5, 1.0e-3, 300, 1}, "Unknown reference var p"},
        {{"P", "v", "T", "M"}, {1.0e5, 0.0, 300, 1}, "Reference value not positive: 0 for v"},
        {{"P", "v", "T", "M"}, {1.0e5, 1.0e-3, nan, 1}, "Reference value not positive: nan for T"},
    };
    for (const auto& c : cases) {
        dimnondim::setup_reference(symbols{"P", "v", "T", "M"}, values{1.0e5, 1.0e-3, 300, 1});
        dimnondim::setup_reference(c.var, c.val);
        expect_error("setup_reference", c.msg);
        expect_scales(by_hand(1.0e5, 1.0e-3, 300, 1));
    }
}

TEST(Dimnondim, UnknownSymbolGivesZeroAndNamesTheProcedure) {
    using lookup = double (*)(std::string_view);
    const std::pair<lookup, const char*> procedures[] = {
        {[](std::string_view v) { return dimnondim::scaling_value(v); }, "scaling_value"},
        {[](std::string_view v) { return dimnondim::dim_value(v, 2.0); }, "dim_value"},
        {[](std::string_view v) { return dimnondim::nondim_value(v, 2.0); }, "nondim_value"},
    };
    for (const auto& [call, sub] : procedures) {
        for (std::string_view var : {"p", " t"}) {
            EXPECT_EQ(call(var), 0.0) << sub << " '" << var << "'";
            expect_error(sub, "Unknown variable " + std::string(var));
        }
    }
    dimnondim::scaling_value(std::string(200, 'x'));
    EXPECT_EQ(zenvir::status().msg.size(), zenvir::field_length);
}

} // namespace
