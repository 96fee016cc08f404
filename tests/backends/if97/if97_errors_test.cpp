// Bad input to if97_main: every failure is a text that starts "Error in IF97: " and names what is
// wrong and by how much, the outputs keep -8888.8, and the next good call works.
#include "if97/if97.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

struct bad_call {
    const char* l1;
    double a;
    const char* l2;
    double b;
    const char* list;
    const char* message; // the whole text, or the part after the prefix that must appear
};

constexpr std::array<bad_call, 28> bad_calls = {{
    // limits of the formulation, in the units of the interface
    {"P", 1200.0, "T", 300.0, "h.", "pressure 1200 bar above the upper limit of 1000 bar"},
    {"P", -1.0, "T", 20.0, "h.", "pressure -1 bar below the lower limit of 0 bar"},
    {"P", 0.0, "h", 100.0, "T.", "pressure 0 bar below the lower limit of 0 bar"},
    {"P", 10.0, "T", -5.0, "h.", "temperature -5 °C below the lower limit of 0 °C"},
    {"T", 2100.0, "P", 1.0, "h.", "temperature 2100 °C above the upper limit of 2000 °C"},
    {"P", 600.0, "T", 900.0, "h.",
     "pressure 600 bar above the upper limit of 500 bar at temperatures above 800 °C"},
    {"P", 10.0, "h", -100.0, "T.", "enthalpy -100 kJ/kg below the lower limit of"},
    {"P", 900.0, "h", 5000.0, "T.", "enthalpy 5000 kJ/kg above the upper limit of"},
    {"P", 10.0, "s", 20.0, "T.", "entropy 20 kJ/(kg K) above the upper limit of"},
    {"T", 20.0, "v", 1e12, "P.", "specific volume 1e+12 m³/kg above the upper limit of"},
    {"T", 20.0, "v", 0.0009, "P.", "specific volume 0.0009 m³/kg below the lower limit of"},
    {"v", -0.001, "u", 100.0, "P.", "specific volume -0.001 m³/kg below the lower limit of 0"},
    {"h", 100.0, "s", 9.0, "P.", "no state with enthalpy 100 kJ/kg and entropy 9 kJ/(kg K)"},
    {"v", 1000.0, "x", 0.5, "P.", "no saturated state with specific volume 1000 m³/kg"},
    // quality
    {"P", 10.0, "x", 1.5, "T.", "quality 1.5 outside 0 to 1"},
    {"x", -0.1, "T", 100.0, "P.", "quality -0.1 outside 0 to 1"},
    {"P", 250.0, "x", 0.5, "T.", "quality given at 250 bar, above the critical pressure"},
    {"T", 380.0, "x", 0.5, "P.", "quality given at 380 °C, above the critical temperature"},
    {"P", 0.001, "x", 0.5, "T.", "pressure 0.001 bar below the lower limit of 0.00611213 bar"},
    // letters, pairs, numbers
    {"q", 1.0, "T", 20.0, "h.", "unknown input letter 'q'"},
    {"Pa", 1.0, "T", 20.0, "h.", "unknown input letter 'Pa'"},
    {"h", 100.0, "u", 90.0, "T.", "input pair 'hu' not supported"},
    {"T", 20.0, "T", 30.0, "h.", "input pair 'TT' not supported"},
    {"P", nan, "T", 20.0, "h.", "input value of P is not a finite number"},
    {"P", 10.0, "T", inf, "h.", "input value of T is not a finite number"},
    // output lists
    {"P", 10.0, "T", 20.0, "h,hx.", "unknown output code 'hx'"},
    {"P", 10.0, "T", 20.0, "h,s", "output list 'h,s' not closed by '.'"},
    {"P", 10.0, "T", 20.0, " . ", "empty output list"},
}};

TEST(If97Errors, BadInputGivesAClearTextAndLeavesTheOutputsUnset) {
    for (const bad_call& c : bad_calls) {
        std::array<double, 4> out{1.0, 2.0, 3.0, 4.0};
        std::string err;
        if97::if97_main(c.l1, c.a, c.l2, c.b, c.list, out, err);
        EXPECT_EQ(err.rfind("Error in IF97: ", 0), 0u) << err;
        EXPECT_NE(err.find(c.message), std::string::npos)
            << "expected '" << c.message << "' in: " << err;
        for (const double value : out) EXPECT_EQ(value, -8888.8) << err;

        // the library goes on answering
        std::array<double, 1> h{};
        if97::if97_main("P", 1.0, "T", 20.0, "h.", h, err);
        EXPECT_EQ(err, "No errors");
        EXPECT_NEAR(h[0], 84.0118, 1e-4); // 1 bar, 20 °C
    }
}

TEST(If97Errors, TheWholeTextOfTheCommonFailures) {
    std::array<double, 1> out{};
    std::string err;
    if97::if97_main("P", 1200.0, "T", 300.0, "h.", out, err);
    EXPECT_EQ(err, "Error in IF97: pressure 1200 bar above the upper limit of 1000 bar");
    if97::if97_main("P", 10.0, "x", 1.5, "T.", out, err);
    EXPECT_EQ(err, "Error in IF97: quality 1.5 outside 0 to 1");
    if97::if97_main("P", 10.0, "T", 20.0, "hx.", out, err);
    EXPECT_EQ(err, "Error in IF97: unknown output code 'hx'");
}

TEST(If97Errors, OutputArrayTooShortForTheList) {
    std::array<double, 2> out{};
    std::string err;
    if97::if97_main("P", 10.0, "T", 20.0, "h,s,v.", out, err);
    EXPECT_EQ(err, "Error in IF97: output list asks for 3 values, the output array holds 2");
    EXPECT_EQ(out[0], -8888.8);
}

// A failure between two questions about one state does not disturb the remembered state, and a
// failed state is not remembered.
TEST(If97Errors, TheLastStateMemoryStaysRight) {
    std::array<double, 2> first{}, again{};
    std::string err;
    if97::if97_main("P", 10.0, "h", 2800.0, "T,s.", first, err);
    ASSERT_EQ(err, "No errors");
    if97::if97_main("P", 10.0, "h", 2800.0, "T,bad.", again, err);
    EXPECT_NE(err, "No errors");
    if97::if97_main("P", 10.0, "h", 2800.0, "T,s.", again, err);
    EXPECT_EQ(err, "No errors");
    EXPECT_EQ(again, first);
    if97::if97_main("P", 10.0, "h", 1e6, "T.", again, err);
    EXPECT_NE(err, "No errors");
    if97::if97_main("P", 10.0, "h", 1e6, "T.", again, err);
    EXPECT_NE(err, "No errors");
    // the order of the inputs does not matter, the letters may be lower case or padded
    if97::if97_main("h ", 2800.0, "p", 10.0, "T , s .", again, err);
    EXPECT_EQ(err, "No errors");
    EXPECT_EQ(again, first);
    if97::uninit_if97();
    if97::if97_main("h", 2800.0, "P", 10.0, "T,s.", again, err);
    EXPECT_EQ(again, first);
}

// The back-end remembers the letters and the output list it read last; a caller who changes them,
// even in place in the same buffers, is answered for the new ones.
struct step {
    const char* l1;
    double a;
    const char* l2;
    double b;
    const char* list;
    double value;        // the answer expected when message is empty
    const char* message; // else the part of the failure text that must appear
};

constexpr std::array<step, 9> steps = {{
    {"P", 1.0, "T", 20.0, "h.", 84.0118, ""},
    {"P", 1.0, "T", 20.0, "s.", 0.29648, ""}, // same length, other code
    {"P", 1.0, "x", 0.5, "T.", 99.6059, ""},  // other second letter, saturation alone
    {"P", 1.0, "x", 0.5, "h.", 1546.19, ""},  // the same state asked more of
    {"P", 1.0, "q", 0.5, "h.", 0.0, "unknown input letter 'q'"},
    {"T", 20.0, "T", 1.0, "h.", 0.0, "input pair 'TT' not supported"},
    {"T", 20.0, "P", 1.0, "h.", 84.0118, ""},
    {"T", 20.0, "P", 1.0, "h,", 0.0, "output list 'h,' not closed by '.'"},
    {"T", 20.0, "P", 1.0, "s.", 0.29648, ""},
}};

TEST(If97Errors, ChangedLettersAndListsAreReadAgain) {
    std::array<char, 2> l1{}, l2{};
    std::array<char, 3> list{};
    std::array<double, 1> out{};
    std::string err;
    for (const step& c : steps) {
        l1[0] = c.l1[0], l2[0] = c.l2[0];
        std::copy_n(c.list, 2, list.begin());
        if97::if97_main(l1.data(), c.a, l2.data(), c.b, list.data(), out, err);
        if (*c.message == '\0') {
            EXPECT_EQ(err, "No errors") << c.l1 << c.l2 << " " << c.list;
            EXPECT_NEAR(out[0], c.value, 1e-4 * std::abs(c.value)) << c.l1 << c.l2 << " " << c.list;
        } else {
            EXPECT_NE(err.find(c.message), std::string::npos) << err;
            EXPECT_EQ(out[0], -8888.8);
        }
    }
}

// A list that failed half-way is not remembered: an empty list after it is refused as well.
TEST(If97Errors, AFailedListLeavesNothingBehind) {
    std::array<double, 1> out{};
    std::string err;
    if97::if97_main("P", 1.0, "T", 20.0, "h,", out, err);
    EXPECT_NE(err.find("not closed by '.'"), std::string::npos) << err;
    if97::if97_main("P", 1.0, "T", 20.0, "", out, err);
    EXPECT_NE(err.find("not closed by '.'"), std::string::npos) << err;
    EXPECT_EQ(out[0], -8888.8);
}

TEST(If97Errors, VersionAndLinkCheck) {
    std::array<int, 4> version{};
    if97::getversion(version);
    EXPECT_GE(version[0], 0);
    EXPECT_GT(version[0] + version[1] + version[2], 0); // the build's version, not unset
    if97::if97_sub();
}

} // namespace
