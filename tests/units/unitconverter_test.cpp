#include "units/unitconverter.hpp"

#include "units/independent_units.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace uc = unitconverter;
namespace ind = independent;

const std::string deg_c = std::string("\xB0") + "C", deg_f = std::string("\xB0") + "F",
                  deg_r = std::string("\xB0") + "R";

// A description written as a list of (dimension, power, unit).
struct factor {
    std::string prop;
    double power;
    std::string unit;
};
using description = std::vector<factor>;

struct converted {
    std::array<double, 2> pair{1.0, 0.0};
    int err = -1;
};

converted convert(const description& src, const description& tgt,
                  std::array<double, 2> incoming = {1.0, 0.0},
                  std::optional<int> src_n = std::nullopt) {
    std::array<std::string_view, 4> sp{}, su{}, tp{}, tu{};
    std::array<double, 4> sw{}, tw{};
    for (std::size_t k = 0; k < src.size() && k < 4; ++k)
        sp[k] = src[k].prop, sw[k] = src[k].power, su[k] = src[k].unit;
    for (std::size_t k = 0; k < tgt.size() && k < 4; ++k)
        tp[k] = tgt[k].prop, tw[k] = tgt[k].power, tu[k] = tgt[k].unit;
    converted c;
    c.pair = incoming;
    uc::unitconvert(src_n.value_or(static_cast<int>(src.size())), sp, sw, su,
                    static_cast<int>(tgt.size()), tp, tw, tu, c.pair, c.err);
    return c;
}

void expect_relative(double actual, double expected, double tolerance, const std::string& what) {
    EXPECT_NEAR(actual, expected, tolerance * std::fabs(expected)) << what;
}

TEST(UnitConverter, ReadsUnitTextsWholeBeforePrefixed) {
    struct reading_case {
        std::string prop;
        std::string text;
        std::string symbol; // unit symbol read, "" when the text is not a unit of prop
        std::string prefix;
        double factor; // to the first unit of the dimension
        double tolerance;
    };
    const std::vector<reading_case> cases{
        {"L", "m", "m", "", 1.0, ind::exact}, // the metre, not the milli prefix
        {"L", "mum", "m", "mu", 1e-6, ind::exact},
        {"L", "mi", "mi", "", ind::mi, ind::exact},
        {"L", "min", "in", "m", 1e-3 * ind::in, ind::exact}, // a milli-inch as a length
        {"t", "min", "min", "", 60.0, ind::exact},           // but the minute as a time
        {"M", "kg", "g", "k", 1000.0, ind::exact},
        {"A", "ha", "a", "h", 1e4, ind::exact},
        {"A", "sqft", "sq ft", "", ind::ft * ind::ft, ind::exact},
        {"V", "cm3", "m3", "c", 1e-6, ind::exact}, // the prefix is cubed with the metre
        {"V", "mL", "L", "m", 1e-6, ind::exact},
        {"V", "cu ft", "cu ft", "", ind::ft * ind::ft * ind::ft, ind::exact},
        {"c", "km/s", "m/s", "k", 1000.0, ind::exact},
        {"c", "kn", "kn", "", ind::knot, ind::seven_digits},
        {"F", "lbf", "lbf", "", ind::lbf, ind::seven_digits},
        {"P", "Pa", "Pa", "", 1.0, ind::exact}, // not a peta-are
        {"P", "psia", "psia", "", ind::psi, ind::seven_digits},
        {"P", "mmHg", "mHg", "m", ind::mmhg, ind::six_digits},
        {"E", "Btu", "Btu", "", ind::btu, ind::seven_digits},
        {"E", "kWh", "Wh", "k", 3.6e6, ind::exact},
        {"Pwr", "Btu/h", "Btu/h", "", ind::btu_per_h, ind::seven_digits},
        {"Pwr", "hp", "hp", "", ind::hp, ind::seven_digits},
        {"L", "K", "", "", 0.0, 0.0},
        {"P", "pa", "", "", 0.0, 0.0},
        {"P", "psig", "", "", 0.0, 0.0},
        {"E", "k", "", "", 0.0, 0.0},
    };
    for (const auto& c : cases) {
        const int d = uc::prop_index(c.prop);
        const std::string what = c.prop + " " + c.text;
        ASSERT_GE(d, 0) << what;
        EXPECT_EQ(uc::is_unit(d, c.text), !c.symbol.empty()) << what;
        EXPECT_EQ(uc::get_unit_symbol(d, c.text), c.symbol) << what;
        EXPECT_EQ(uc::get_prefix_symbol(d, c.text), c.prefix) << what;
        std::array<double, 2> cf{};
        ASSERT_EQ(uc::calc_unit_cf(d, c.text, 1.0, cf), !c.symbol.empty()) << what;
        if (c.symbol.empty()) continue;
        expect_relative(cf[0], c.factor, c.tolerance, what);
        ASSERT_TRUE(uc::calc_unit_cf(d, c.text, -2.0, cf)) << what;
        expect_relative(cf[0], 1.0 / (c.factor * c.factor), 3 * c.tolerance, what + "^-2");
    }
}

TEST(UnitConverter, PrefixesAndSymbols) {
    double cf = 0.0;
    for (const auto& [symbol, factor] : std::vector<std::pair<std::string, double>>{
             {"y", 1e-24}, {"mu", 1e-6}, {"m", 1e-3}, {"", 1.0}, {"da", 10.0}, {"Y", 1e24}}) {
        EXPECT_TRUE(uc::is_prefix(symbol)) << symbol;
        ASSERT_TRUE(uc::get_prefix_cf(symbol, cf)) << symbol;
        EXPECT_DOUBLE_EQ(cf, factor) << symbol;
    }
    for (const std::string symbol : {"u", "K", "dd", "mm"}) EXPECT_FALSE(uc::is_prefix(symbol));

    const std::vector<std::pair<std::string, int>> dimensions{
        {"L", 0}, {"dT", 4}, {"N", 12}, {"l", -1}, {"", -1}};
    for (const auto& [symbol, index] : dimensions) {
        EXPECT_EQ(uc::prop_index(symbol), index) << symbol;
        EXPECT_EQ(uc::is_prop(symbol), index >= 0) << symbol;
        EXPECT_EQ(uc::symbolset(index), index >= 0 ? symbol : "");
    }
    EXPECT_EQ(uc::symbolset(13), "");
    // a bare unit symbol: no prefix is read
    std::array<double, 2> pair{};
    EXPECT_FALSE(uc::single_unit_cf(uc::prop_index("E"), "kJ", pair));
}

TEST(UnitConverter, FindsTheDimensionOfAUnitText) {
    struct case_ {
        std::string unit;
        std::vector<std::string_view> preferred;
        std::string dimension; // "" when no dimension reads it
    };
    const std::vector<case_> cases{
        {"min", {}, "t"},    {"min", {"L"}, "t"}, // a whole symbol beats a prefixed one
        {"m", {}, "L"},      {"K", {}, "T"},       {"K", {"dT"}, "dT"},
        {"mol", {}, "M"},    {"mol", {"N"}, "N"},  {"kmol", {"E", "N"}, "N"},
        {"L", {"L"}, "V"},   {"cu ft", {}, "V"},   {"cuft", {}, "V"},
        {"ha", {}, "A"},     {"Btu/h", {}, "Pwr"}, {deg_c, {}, "T"},
        {"furlong", {}, ""}, {"", {}, ""},
    };
    for (const auto& c : cases) {
        const int d = uc::unit_prop_index(c.unit, c.preferred);
        EXPECT_EQ(d >= 0 ? std::string(uc::symbolset(d)) : std::string(), c.dimension) << c.unit;
    }
}

TEST(UnitConverter, ConvertsDescriptions) {
    struct case_ {
        std::string what;
        description src, tgt;
        double factor, offset, tolerance;
    };
    const double psi_bar = ind::psi / 1e5, ft4_lb2 = std::pow(ind::ft, 4) / (ind::lb * ind::lb);
    const std::vector<case_> cases{
        // clang-format off
        {"K to degC", {{"T", 1, "K"}}, {{"T", 1, deg_c}}, 1.0, -273.15, ind::exact},
        {"degF to degC", {{"T", 1, deg_f}}, {{"T", 1, deg_c}}, 5.0 / 9.0, -160.0 / 9.0, ind::exact},
        {"degR to degC", {{"T", 1, deg_r}}, {{"T", 1, deg_c}}, 5.0 / 9.0, -273.15, ind::exact},
        {"per degF to per K: no offset", {{"T", -1, deg_f}}, {{"T", -1, "K"}}, 1.8, 0, ind::exact},
        {"degC squared: no offset", {{"T", 2, deg_c}}, {{"T", 2, "K"}}, 1.0, 0.0, ind::exact},
        {"degF to degC difference", {{"dT", 1, deg_f}}, {{"dT", 1, deg_c}}, 5.0 / 9, 0, ind::exact},
        {"psia to bar", {{"P", 1, "psia"}}, {{"P", 1, "bar"}}, psi_bar, 0.0, ind::seven_digits},
        {"Btu/lb to kJ/kg", {{"E", 1, "Btu"}, {"M", -1, "lb"}}, {{"E", 1, "kJ"}, {"M", -1, "kg"}},
         2.326, 0.0, ind::seven_digits},
        {"m^3 to litre", {{"L", 3, "m"}}, {{"V", 1, "L"}}, 1000.0, 0.0, ind::exact},
        {"g/cm^3 to kg/m^3", {{"M", 1, "g"}, {"L", -3, "cm"}}, {{"M", 1, "kg"}, {"L", -3, "m"}},
         1000.0, 0.0, ind::exact},
        {"chi", {{"F", 1, "lbf"}, {"L", 4, "ft"}, {"M", -2, "lb"}, {"T", -1, deg_r}},
         {{"F", 1, "N"}, {"L", 4, "m"}, {"M", -2, "kg"}, {"T", -1, "K"}},
         ind::lbf * ft4_lb2 * ind::per_rankine, 0.0, ind::seven_digits},
        // Derived units are built on the kilogram, the mass row on the gram.
        {"viscosity from lb/ft/s", {{"M", 1, "lb"}, {"L", -1, "ft"}, {"t", -1, "s"}},
         {{"P", 1, "Pa"}, {"t", 1, "s"}}, ind::lb / ind::ft, 0.0, ind::exact},
        {"kinematic viscosity", {{"L", 2, "ft"}, {"t", -1, "s"}},
         {{"P", 1, "Pa"}, {"t", 1, "s"}, {"L", 3, "m"}, {"M", -1, "kg"}}, ind::ft * ind::ft, 0.0,
         ind::exact},
        {"mechanical energy", {{"F", 1, "N"}, {"L", 1, "m"}}, {{"E", 1, "J"}}, 1.0, 0, ind::exact},
        {"power", {{"E", 1, "Btu"}, {"t", -1, "h"}}, {{"Pwr", 1, "W"}}, ind::btu_per_h, 0.0,
         ind::seven_digits},
        // clang-format on
    };
    for (const auto& c : cases) {
        const auto r = convert(c.src, c.tgt);
        ASSERT_EQ(r.err, uc::ok) << c.what;
        expect_relative(r.pair[0], c.factor, c.tolerance, c.what);
        EXPECT_NEAR(r.pair[1], c.offset, 1e-12 * (1.0 + std::fabs(c.offset))) << c.what;
        // The way back is the inverse pair.
        const auto back = convert(c.tgt, c.src);
        ASSERT_EQ(back.err, uc::ok) << c.what;
        EXPECT_NEAR(back.pair[0] * r.pair[0], 1.0, 1e-14) << c.what;
        EXPECT_NEAR(back.pair[0] * r.pair[1] + back.pair[1], 0.0, 1e-12) << c.what;
    }
}

TEST(UnitConverter, ComposesTheIncomingPair) {
    // The incoming pair acts on the value first, so its factor multiplies the computed one.
    const auto r = convert({{"T", 1, "K"}}, {{"T", 1, deg_c}}, {2.0, 0.5});
    ASSERT_EQ(r.err, uc::ok);
    EXPECT_DOUBLE_EQ(r.pair[0], 2.0);
    EXPECT_DOUBLE_EQ(r.pair[1], 0.5 - 273.15);
    const auto h = convert({{"E", 1, "J"}, {"M", -1, "mol"}}, {{"E", 1, "kJ"}, {"M", -1, "kg"}},
                           {1.0 / 0.018, 0.0});
    ASSERT_EQ(h.err, uc::ok);
    EXPECT_DOUBLE_EQ(h.pair[0], 1e-3 / 0.018);
}

TEST(UnitConverter, ReportsWhatItCannotConvert) {
    struct case_ {
        std::string what;
        description src, tgt;
        std::optional<int> src_n; // the factor count passed, when not the list's length
        int err;
    };
    const description bar{{"P", 1, "bar"}};
    const description length{{"L", 1, "m"}};
    const std::vector<case_> cases{
        {"unknown source dimension", {{"X", 1, "m"}}, length, {}, uc::unknown_property},
        {"unknown target dimension", length, {{"Len", 1, "m"}}, {}, uc::unknown_property},
        {"too many factors", length, length, 5, uc::unknown_property},
        {"negative count", length, length, -1, uc::unknown_property},
        {"both units unknown", {{"P", 1, "psig"}}, {{"P", 1, "Torr"}}, {}, uc::unknown_both_units},
        {"source unit unknown", {{"P", 1, "psig"}}, bar, {}, uc::unknown_source_unit},
        {"target unit unknown", bar, {{"P", 1, "Torr"}}, {}, uc::unknown_target_unit},
        {"pressure to energy", bar, {{"E", 1, "J"}}, {}, uc::not_convertible},
        {"temperature to difference", {{"T", 1, "K"}}, {{"dT", 1, "K"}}, {}, uc::not_convertible},
        {"factor overflows", {{"L", 200, "km"}}, {{"L", 200, "m"}}, {}, uc::not_convertible},
        {"factor underflows", {{"L", 200, "mum"}}, {{"L", 200, "Mm"}}, {}, uc::not_convertible},
    };
    for (const auto& c : cases) {
        const auto r = convert(c.src, c.tgt, {3.0, 4.0}, c.src_n);
        EXPECT_EQ(r.err, c.err) << c.what;
        EXPECT_EQ(r.pair, (std::array<double, 2>{3.0, 4.0})) << c.what << ": pair left alone";
    }
}

} // namespace
