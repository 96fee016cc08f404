// Isolines and the saturation line on water (IF97): evenly spaced points, the saturation points
// inserted on their own phase's side, the retry of a rejected input order, unit conversion and
// bad input. Saturation values from R7-97(2012) Tables 35 and 36.
#include "Import/if97_zp.hpp"
#include "base/zp_models.hpp"
#include "main/curves.hpp"
#include "main/water_support.hpp"
#include "main/zentropia_isoline.hpp"
#include "main/zentropia_thermo.hpp"

#include <gtest/gtest.h>

#include <map>
#include <vector>

namespace {

using water_support::select_water;
using zentropia_isoline::zp_isoline;
namespace thermo = zentropia_thermo;

constexpr double untouched = 42.0;

struct line {
    std::vector<double> run, calc;
    std::string errormsg;
    int filled = 0;
};

line internal_isoline(const char* propspec, double propval, const char* runspec,
                      const char* calcspec, double minval, double maxval, int npnts) {
    line l{std::vector<double>(std::max(npnts, 0), untouched),
           std::vector<double>(std::max(npnts, 0), untouched), "", 0};
    l.filled = zp_isoline(propspec, propval, runspec, calcspec, minval, maxval, npnts, l.run,
                          l.calc, l.errormsg);
    return l;
}

TEST(IsSubstring, FindsATextWithoutItsTrailingBlanks) {
    const struct {
        const char* sub;
        const char* text;
        bool expected;
    } cases[] = {
        {"as function of hP not available",
         "Error in Varimol: calculation of properties as function of hP not available.", true},
        {"as function of Ph not available",
         "Error in Varimol: calculation of properties as function of hP not available.", false},
        {"abc   ", "xxabcxx", true},
        {"abcd", "abc", false},
        {" abc", "xxabc", false}, // leading blanks are part of the text
        {"", "abc", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(zentropia_isoline::is_substring(c.sub, c.text), c.expected)
            << '"' << c.sub << "\" in \"" << c.text << '"';
}

class Isoline : public ::testing::Test {
protected:
    void SetUp() override { select_water("Zentropia", "PerMass"); }
};

// Saturation at 10 bar: 453.035632 K (Table 36); at 500 K: 2.63889776 MPa (Table 35).
constexpr double t_sat_10bar = 453.035632 - 273.15;
constexpr double p_sat_500K = 26.3889776;
constexpr double t_500K = 500.0 - 273.15;

// Evenly spaced points from minval to maxval, both included; where the run crosses the
// saturation line, two more points 1e-6 either side of it, each on its own phase's side and in
// the run's order.
TEST_F(Isoline, EvenlySpacedPointsAndTheSaturationPoints) {
    const struct {
        const char *where, *propspec, *runspec, *calcspec;
        double propval, minval, maxval;
        int npnts, at;       // index of the first saturation point, -1 for none
        double sat, q_first; // saturation value of the run variable, quality on the first side
    } cases[] = {
        {"T through the dome", "P", "T", "h", 10.0, 100.0, 300.0, 12, 4, t_sat_10bar, 0.0},
        {"descending T", "P", "T", "h", 10.0, 300.0, 100.0, 12, 6, t_sat_10bar, 1.0},
        {"P through the dome", "T", "P", "d", t_500K, 10.0, 50.0, 7, 2, p_sat_500K, 1.0},
        {"supercritical pressure", "P", "T", "h", 300.0, 300.0, 500.0, 5, -1, 0.0, 0.0},
        {"vapour only: saturation at 99.6 °C", "P", "T", "h", 1.0, 200.0, 300.0, 4, -1, 0.0, 0.0},
        {"liquid only: saturation at 179.9 °C", "P", "T", "h", 10.0, 20.0, 80.0, 2, -1, 0.0, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.where);
        const line l = internal_isoline(c.propspec, c.propval, c.runspec, c.calcspec, c.minval,
                                        c.maxval, c.npnts);
        ASSERT_EQ(l.errormsg, "No errors");
        ASSERT_EQ(l.filled, c.npnts);
        const double step = (c.maxval - c.minval) / (c.npnts - (c.at < 0 ? 1 : 3));
        const double dir = step > 0 ? 1.0 : -1.0;
        std::string e;
        for (int i = 0, k = 0; i < c.npnts; ++i) {
            const int side = i - c.at; // 0 and 1 at the saturation points
            if (c.at >= 0 && (side == 0 || side == 1)) {
                EXPECT_NEAR(l.run[i], c.sat + dir * (side == 0 ? -1e-6 : 1e-6), 5e-7) << i;
                const double q = side == 0 ? c.q_first : 1.0 - c.q_first;
                const double saturated = zentropia_base::calculate(std::string(c.propspec) + "q",
                                                                   c.propval, q, c.calcspec, e);
                EXPECT_NEAR(l.calc[i], saturated, 1e-6 * std::fabs(saturated)) << i;
            } else {
                EXPECT_NEAR(l.run[i], c.minval + step * k++, 1e-12) << i;
            }
            EXPECT_EQ(l.calc[i], zentropia_base::calculate(std::string(c.propspec) + c.runspec,
                                                           c.propval, l.run[i], c.calcspec, e));
        }
        if (c.at >= 0) {
            EXPECT_NEAR(l.run[c.at + 1] - l.run[c.at], dir * 2e-6, 1e-9);
        }
        EXPECT_EQ(l.run.back(), c.maxval);
    }
}

TEST_F(Isoline, CallerUnitsConvertBoundsAndResults) {
    const line internal = internal_isoline("P", 10.0, "T", "h", 100.0, 300.0, 12);
    select_water("SI", "PerMass");
    std::vector<double> run(12, untouched), calc(12, untouched);
    std::string errormsg;
    zentropia_main::isoline("P", 1.0e6, "T", "h", 373.15, 573.15, 12, run, calc, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    for (std::size_t i = 0; i < run.size(); ++i) {
        EXPECT_NEAR(run[i], internal.run[i] + 273.15, 1e-9) << i; // K
        EXPECT_NEAR(calc[i], internal.calc[i] * 1e3, 1e-6) << i;  // J/kg
    }
}

TEST_F(Isoline, BadRequestsLeaveTheArraysAndTheLibraryUsable) {
    const std::string few = "needs at least 2 points; npnts = ";
    const std::string not_finite = "needs a finite property value and finite bounds";
    const struct {
        double propval, minval, maxval;
        int npnts;
        std::string message; // after "Error in Zentropia: an isoline "
    } cases[] = {
        {10.0, 100.0, 300.0, 1, few + "1"},
        {10.0, 100.0, 300.0, -5, few + "-5"},
        {10.0, 100.0, 300.0, 3, "through 2 saturation point(s) needs at least 4 points; npnts = 3"},
        {std::nan(""), 100.0, 300.0, 5, not_finite},
        {10.0, 100.0, INFINITY, 5, not_finite},
    };
    for (const auto& c : cases) {
        const line l = internal_isoline("P", c.propval, "T", "h", c.minval, c.maxval, c.npnts);
        EXPECT_EQ(l.errormsg, "Error in Zentropia: an isoline " + c.message);
        EXPECT_EQ(l.filled, 0);
        for (double v : l.run) EXPECT_EQ(v, untouched);
        for (double v : l.calc) EXPECT_EQ(v, untouched);
    }
    // arrays shorter than the points asked for
    std::vector<double> run(3, untouched), calc(5, untouched);
    std::string errormsg;
    EXPECT_EQ(zp_isoline("P", 10.0, "T", "h", 100.0, 300.0, 5, run, calc, errormsg), 0);
    EXPECT_EQ(errormsg, "Error in Zentropia: the isoline arrays hold fewer points than npnts = 5");
    EXPECT_EQ(run[0], untouched);
    // the caller-facing layer converts nothing that was not filled
    select_water("SI", "PerMass");
    zentropia_main::isoline("P", 1e6, "T", "h", 373.15, 573.15, 1, run, calc, errormsg);
    EXPECT_EQ(errormsg, "Error in Zentropia: an isoline " + few + "1");
    EXPECT_EQ(run[0], untouched);
    // and a good line follows
    zentropia_main::isoline("P", 1e6, "T", "h", 473.15, 573.15, 3, run, calc, errormsg);
    EXPECT_EQ(errormsg, "No errors");
    EXPECT_NEAR(run[1], 523.15, 1e-9);
}

TEST_F(Isoline, FailingPointsReportTheFirstFailure) {
    // At 600 bar IF97 ends at 800 °C: the last two of 700, 750, 800, 850, 900 °C fail.
    const line l = internal_isoline("P", 600.0, "T", "h", 700.0, 900.0, 5);
    EXPECT_EQ(l.errormsg.rfind("Error in IF97", 0), 0u) << l.errormsg;
    EXPECT_EQ(l.filled, 5);
    EXPECT_EQ(l.run.back(), 900.0);
    std::string errormsg;
    EXPECT_EQ(l.calc[0], thermo::zp_enthalpy("PT", 600.0, 700.0, errormsg));
    EXPECT_EQ(errormsg, "No errors");
    thermo::zp_enthalpy("PT", 600.0, 850.0, errormsg);
    EXPECT_EQ(l.errormsg, errormsg);
}

// A back-end that serves some input orders only: IF97 behind an adapter that rejects the listed
// specifications the way such back-ends word it, and counts the questions per specification.
std::vector<std::string> rejected_orders;
std::map<std::string, int> questions;

double one_order_prop(std::string_view inputspec, double value1, double value2,
                      std::string_view outputspec, std::string& errormsg) {
    ++questions[std::string(inputspec)];
    for (const auto& rejected : rejected_orders)
        if (inputspec == rejected) {
            errormsg = "Error in IF97: calculation of properties as function of " + rejected +
                       " not available.";
            return zp_common::not_set;
        }
    return if97_zp::if97_prop(inputspec, value1, value2, outputspec, errormsg);
}

class IsolineInputOrder : public ::testing::Test {
protected:
    void SetUp() override {
        one_order = if97_zp::operations;
        one_order.prop = one_order_prop;
        previous = zp_models::replace_adapter(zp_models::model_id::if97, &one_order);
        select_water("Zentropia", "PerMass");
        questions.clear();
    }
    void TearDown() override {
        zp_models::replace_adapter(zp_models::model_id::if97, previous);
        select_water("Zentropia", "PerMass");
        rejected_orders.clear();
    }
    zp_adapter::operations one_order{};
    const zp_adapter::operations* previous = nullptr;
};

TEST_F(IsolineInputOrder, RejectedOrderIsRetriedOnceInTheOther) {
    // T along the isenthalp h = 2000 kJ/kg from 1 to 51 bar; "hq" is no IF97 pair, so the two
    // saturation questions fail and no point is inserted.
    const std::string both_rejected =
        "Error in IF97: calculation of properties as function of Ph not available.";
    const struct {
        std::vector<std::string> rejected;
        int hP, Ph; // questions asked with each order
        std::string errormsg;
    } cases[] = {
        {{}, 1 + 6, 0, "No errors"},         // accepted: kept for every point
        {{"hP"}, 1, 1 + 6, "No errors"},     // retried once, then every point
        {{"hP", "Ph"}, 1, 1, both_rejected}, // neither: the back-end's message
    };
    for (const auto& c : cases) {
        rejected_orders = c.rejected;
        questions.clear();
        const line l = internal_isoline("h", 2000.0, "P", "T", 1.0, 51.0, 6);
        EXPECT_EQ(l.errormsg, c.errormsg);
        EXPECT_EQ(questions["hP"], c.hP) << c.rejected.size();
        EXPECT_EQ(questions["Ph"], c.Ph) << c.rejected.size();
        if (c.errormsg != "No errors") {
            EXPECT_EQ(l.filled, 0);
            for (double v : l.run) EXPECT_EQ(v, untouched);
            continue;
        }
        EXPECT_EQ(questions["hq"], 2);
        std::string errormsg;
        for (int i = 0; i < 6; ++i) {
            EXPECT_EQ(l.run[i], 1.0 + 10.0 * i);
            EXPECT_EQ(l.calc[i], thermo::zp_temperature("Ph", l.run[i], 2000.0, errormsg)) << i;
        }
    }
}

} // namespace
