#include "units/unitparser.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

namespace up = unitparser;

const std::string deg = "\xB0", utf8_deg = "\xC2\xB0";

TEST(UnitParser, CharacterClasses) {
    struct case_ {
        char c;
        bool alfa, digit, valid;
    };
    const std::vector<case_> cases{
        {'a', true, false, true},   {' ', true, false, true},      {'\xB0', true, false, true},
        {'0', false, true, true},   {'-', false, false, true},     {'^', false, false, true},
        {'.', false, false, true},  {'/', false, false, true},     {',', false, false, false},
        {'_', false, false, false}, {'\xC2', false, false, false}, {'\0', false, false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(up::isalfa(c.c), c.alfa) << int(c.c);
        EXPECT_EQ(up::isdigit(c.c), c.digit) << int(c.c);
        EXPECT_EQ(up::isvalid(c.c), c.valid) << int(c.c);
    }
}

TEST(UnitParser, DigitStringLooksAtTheFirstCharacterOnly) {
    const std::vector<std::pair<std::string, bool>> cases{
        {"", false},   {"   ", false}, {"7", true},   {"1a", true},
        {"12 ", true}, {"a1", false},  {" 1", false}, {"-1", false}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(up::isdigitstr(text), expected) << text;
}

TEST(UnitParser, SplitsLists) {
    struct case_ {
        std::string text;
        std::vector<std::string> entries;
        bool ok;
    };
    const std::vector<case_> cases{
        {"P, T", {"P", "T"}, true},
        {" cp ,cv,  h", {"cp", "cv", "h"}, true},
        {"kJ/kg/K,MPa,g/cm^3", {"kJ/kg/K", "MPa", "g/cm^3"}, true},
        {deg + "C,bar", {deg + "C", "bar"}, true},
        {"P,", {"P", ""}, true}, // the final comma counts an empty entry
        {"", {}, true},
        {"    ", {}, true},
        {"P,,T", {}, false},         // no letter after the comma
        {"1P", {}, false},           // no letter first
        {"b\xE9r", {}, false},       // a non-ASCII byte inside
        {utf8_deg + "C", {}, false}, // the UTF-8 degree sign is two bytes the lists do not take
        {"deta_dT", {}, false},      // "_" is not a list character
    };
    for (const auto& c : cases) {
        std::array<std::string, up::max_entries> array;
        array.fill("old");
        int n = -1;
        std::string msg;
        up::strtoarr(c.text, array, n, msg);
        if (!c.ok) {
            EXPECT_EQ(msg, "Error in Zentropia: unable to convert string into an array") << c.text;
            EXPECT_EQ(n, 0) << c.text;
            continue;
        }
        EXPECT_EQ(msg, "No errors") << c.text;
        ASSERT_EQ(n, static_cast<int>(c.entries.size())) << c.text;
        for (std::size_t k = 0; k < array.size(); ++k)
            EXPECT_EQ(array[k], k < c.entries.size() ? c.entries[k] : "") << c.text << " " << k;
    }
}

TEST(UnitParser, RefusesOverlongLists) {
    std::array<std::string, up::max_entries> array;
    int n = 0;
    std::string msg;
    std::string list = "P";
    for (int k = 1; k < up::max_entries; ++k) list += ",P";
    up::strtoarr(list, array, n, msg);
    EXPECT_EQ(msg, "No errors");
    EXPECT_EQ(n, 27);
    up::strtoarr(list + ",P", array, n, msg);
    EXPECT_EQ(msg, "Error in Zentropia: more than 27 entries in the list");
    EXPECT_EQ(n, 0);
    up::strtoarr(std::string(257, 'x'), array, n, msg);
    EXPECT_EQ(msg, "Error in Zentropia: list longer than 256 characters");
}

TEST(UnitParser, ReadsIntegers) {
    struct case_ {
        std::string text;
        bool ok;
        int number;
    };
    const std::vector<case_> cases{
        {"-007", true, -7},
        {"000", true, 0},
        {"+12", true, 12},
        {"3 ", true, 3},
        {"2147483647", true, 2147483647},
        {"-2147483647", true, -2147483647},
        {"1a", true, 59}, // later characters add their code difference to "0"
        {"2147483648", false, 0},
        {"-2147483648", false, 0},
        {"1aaaaaaaaa", false, 0}, // beyond the integer range even so
        {"", false, 0},
        {"x1", false, 0},
        {"-", false, 0},
        {"+-1", false, 0},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        int number = 12345;
        std::string msg;
        up::strtoint(text, number, msg);
        EXPECT_EQ(msg, c.ok ? "string-ok" : "string-noint") << c.text;
        EXPECT_EQ(number, c.ok ? c.number : 12345) << c.text;
        if (c.ok) {
            EXPECT_EQ(text, c.number == 0 ? "0" : "") << c.text << ": digits consumed";
        }
    }
}

TEST(UnitParser, SplitsUnitTexts) {
    using factors = std::vector<std::pair<std::string, int>>;
    struct case_ {
        std::string text;
        factors expected;
    };
    const std::vector<case_> cases{
        {"MPa", {{"MPa", 1}}},
        {"kJ/kg/K", {{"kJ", 1}, {"kg", -1}, {"K", -1}}},
        {"kJ.kg^-1.K^-1", {{"kJ", 1}, {"kg", -1}, {"K", -1}}},
        {"kJ kg^-1 K^-1", {{"kJ", 1}, {"kg", -1}, {"K", -1}}},
        {"kJ / kg", {{"kJ", 1}, {"kg", -1}}},
        {"g/cm^3", {{"g", 1}, {"cm", -3}}},
        {"m^+2/s^-2", {{"m", 2}, {"s", 2}}},
        {"/K", {{"K", -1}}},
        {"F", {{deg + "F", 1}}},
        {"m/s", {{"m/s", 1}}}, // whole unit symbols holding "/" or a blank
        {"Btu/h/ft/" + deg + "F", {{"Btu/h", 1}, {"ft", -1}, {deg + "F", -1}}},
        {"Btu/h.ft^2/lb/" + deg + "F", {{"Btu/h", 1}, {"ft", 2}, {"lb", -1}, {deg + "F", -1}}},
        {"kg/m/s", {{"kg", 1}, {"m", -1}, {"s", -1}}}, // not kg per (m/s)
        {"ft/s^2", {{"ft", 1}, {"s", -2}}},            // not (ft/s)^2
        {"lb/cu ft", {{"lb", 1}, {"cu ft", -1}}},
        {"m^1a", {{"m", 59}}}, // the power is read as integers are
    };
    for (const auto& c : cases) {
        up::unit_factors parsed;
        int n = -1;
        ASSERT_TRUE(up::split_unit(c.text, parsed, n)) << c.text;
        ASSERT_EQ(n, static_cast<int>(c.expected.size())) << c.text;
        for (std::size_t k = 0; k < c.expected.size(); ++k) {
            EXPECT_EQ(parsed[k].unit, c.expected[k].first) << c.text;
            EXPECT_EQ(parsed[k].power, c.expected[k].second) << c.text;
        }
    }
}

TEST(UnitParser, RefusesMalformedUnitTexts) {
    for (const std::string text : {"", "  ", "m^", "m^x", "m^.kg", "m^99999999999", "kg//m", "kg/",
                                   "kg.", ".kg", "kg..m", "^2", "kJ.kg.K.m.s", "a/b/c/d/e"}) {
        up::unit_factors parsed;
        int n = -1;
        EXPECT_FALSE(up::split_unit(text, parsed, n)) << text;
        EXPECT_EQ(n, 0) << text;
    }
}

TEST(UnitParser, TurnsUtf8DegreesIntoLatin1) {
    EXPECT_EQ(up::latin1_degrees("kJ/kg/" + utf8_deg + "F," + utf8_deg + "R"),
              "kJ/kg/" + deg + "F," + deg + "R");
    EXPECT_EQ(up::latin1_degrees(deg + "C"), deg + "C");
    const std::string lone_lead_byte = std::string("\xC2") + "C";
    EXPECT_EQ(up::latin1_degrees(lone_lead_byte), lone_lead_byte);
}

} // namespace
