// The error texts of the Varimol, liteVarimol, Aerolt and TPSI back-ends: a few codes of each
// published list, the generic messages with their code fields, and the cut to the caller's text.
#include "Import/aerolt_errors.hpp"
#include "Import/litevarimol_errors.hpp"
#include "Import/tpsi_errors.hpp"
#include "Import/varimol_errors.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using errorstring = void (*)(int, std::string&, std::size_t);

struct code_case {
    errorstring lookup;
    int code;
    std::size_t length;
    std::string expected;
};

constexpr auto all = zp_errortext::whole;

// The test double of the liteVarimol back-end: the limits of "its" selected fluid.
struct limits {
    double tmin, tmax, pmax, tcrit, pcrit;
} selected{};
void ptminmax(double& tmin, double& tmax, double& pmax) {
    tmin = selected.tmin, tmax = selected.tmax, pmax = selected.pmax;
}
void critpoint(double& tcrit, double& pcrit) {
    tcrit = selected.tcrit, pcrit = selected.pcrit;
}

std::string lite(int code) {
    std::string text = "stale";
    litevarimol_zp::litevarimol_errorstring(code, text);
    return text;
}

} // namespace

TEST(BackendErrors, CodesOfThePublishedLists) {
    const auto varimol = varimol_zp::varimol_errorstring;
    const auto litevarimol = litevarimol_zp::litevarimol_errorstring;
    const auto tpsi = tpsi_zp::tpsi_errorstring;
    const code_case cases[] = {
        {varimol, 100, all, "Sum of mole fractions does not equal 1"},
        {varimol, 154, all, "CubicRoots: numerical error: acos(arg); arg > 1 or arg < -1."},
        {varimol, 455, all,
         "Bubble/dew point calc.: enter 'P' for pressure or 'T' for temperature."},
        {varimol, 3480, all, "Iso_q line calculation: too slow or no convergence."},
        // not in the list: 101, and 28, the warning the adapter passes over
        {varimol, 101, all, "Unknown error. Code = 101"},
        {varimol, 28, all, "Unknown error. Code =  28"},
        {varimol, -7, all, "Unknown error. Code =  -7"},
        {varimol, 123456, all, "Unknown error. Code =****"}, // wider than its field
        {varimol, 100, 10, "Sum of mol"},
        {varimol, 100, 0, ""},
        {litevarimol, 104, all, "BubbleP: no convergence on internal loop"},
        {litevarimol, 174, all,
         "Function vVfrac:v root not Bracket. For some combinations of v and Vfrac there can be 2 "
         "points with same overall v"},
        {litevarimol, 400, all, "Internal server error"},
        {litevarimol, 160, all, "Unknown error. Code = 160"},
        {litevarimol, 165, 16, "Function PVfrac:"},
        {tpsi, 23, all, "v outside limits."},
        {tpsi, 24, all, "Second input variable not supported (supported h,s,u)."},
        {tpsi, 53, all, "Calculation type not supported (Moist. Air)"},
        {tpsi, 0, all, "Unknown error."},
        {tpsi, 11, all, "Unknown error."},
        {tpsi, 50, 5, "Fluid"},
    };
    for (const auto& c : cases) {
        std::string text = "stale";
        c.lookup(c.code, text, c.length);
        EXPECT_EQ(text, c.expected) << c.code;
    }
}

TEST(BackendErrors, AeroltQuotesTheFailingCall) {
    struct {
        int code;
        const char* input;
        const char* output;
        std::size_t length;
        std::string expected;
    } const cases[] = {
        {0, "PT", "h", all, "No errors"},
        {1, "PT", "h", all, "Error in Aerolt: unknown component(s) in composition."},
        {2, "Ph  ", "s", all, "Error in Aerolt: calculation of Ph not available."},
        {3, "PT", "cp  ", all,
         "Error in Aerolt: calculation of cp as function of PT not available."},
        {5, "PT", "h", all, "Error in Aerolt: no solution for iterational computation."},
        {7, "PT", "h", all, "Error in Aerolt, error code   7"},
        {1000, "PT", "h", all, "Error in Aerolt, error code ***"},
        {2, "PT", "h", 15, "Error in Aerolt"},
    };
    for (const auto& c : cases) {
        std::string text = "stale";
        aerolt_zp::aerolt_errorstring(c.code, c.input, c.output, text, c.length);
        EXPECT_EQ(text, c.expected) << c.code;
    }
}

TEST(BackendErrors, LiteVarimolLimitsOfTheFluidSelectedAtTheLookup) {
    // without a back-end the limits are unknown
    litevarimol_zp::set_limits_hook({});
    EXPECT_EQ(lite(158), "Temperature out of range for this fluid, T > Tmax (= ******* K)...");

    litevarimol_zp::set_limits_hook({ptminmax, critpoint});
    selected = {85.48, 625.0, 1000.0, 369.89, 42.5123};
    EXPECT_EQ(lite(158), "Temperature out of range for this fluid, T > Tmax (=  625.00 K)...");
    EXPECT_EQ(lite(159), "Temperature out of range for this fluid, T < Tmin (=   85.48 K)...");
    EXPECT_EQ(lite(161), "Specific volume out of range for this fluid, v < vmin(T,Pmax) "
                         "(Pmax = 1000.00 bar)...");
    EXPECT_EQ(lite(162), "Saturation conditions not available for P > Pcrit (=  42.51 bar)...");
    EXPECT_EQ(lite(163), "Saturation conditions not available for T > Tcrit (= 369.89 K)...");
    // another fluid selected: the next lookup shows its limits
    selected = {273.16, 1273.15, 100000.0, 647.096, -std::numeric_limits<double>::infinity()};
    EXPECT_EQ(lite(158), "Temperature out of range for this fluid, T > Tmax (= 1273.15 K)...");
    EXPECT_EQ(lite(161), "Specific volume out of range for this fluid, v < vmin(T,Pmax) "
                         "(Pmax = ******* bar)...");
    EXPECT_EQ(lite(162), "Saturation conditions not available for P > Pcrit (=   -Inf bar)...");
    std::string cut;
    litevarimol_zp::litevarimol_errorstring(163, cut, 11);
    EXPECT_EQ(cut, "Saturation ");
    litevarimol_zp::set_limits_hook({});
}
