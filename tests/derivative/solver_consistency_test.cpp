// The inverse solver on water (IF97): unknown inputs recovered from a property value, checked
// against the IAPWS-IF97 verification tables (R7-97(2012) Tables 5, 15, 33 and 42, read from
// data/if97) and against the forward call at the solution.
#include "derivative/zentropia_solver.hpp"
#include "main/curves.hpp"
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include <gtest/gtest.h>

#include <map>

namespace {

using namespace water_support;
namespace zm = zentropia_main;

// One verification state: temperature (K), pressure (MPa), enthalpy (kJ/kg), speed of sound
// (m/s), isobaric heat capacity (kJ/(kg K)), and the printed texts of p, h and w.
struct verification_state {
    std::string where;
    double T = 0, p = 0, h = 0, w = 0, cp = 0;
    std::string p_text, h_text, w_text;
};

// The single-phase states of the forward verification tables, by table and inputs.
std::vector<verification_state> verification_states() {
    std::map<std::string, verification_state> states;
    for (const auto& row : read_csv("if97/verification_tables.csv")) {
        const std::string& table = row["table"];
        const bool pt = table == "R7-97(2012) Table 5" || table == "R7-97(2012) Table 15" ||
                        table == "R7-97(2012) Table 42";
        if (!pt && table != "R7-97(2012) Table 33") continue;
        auto& s = states[table + ", " + row["inputs"]];
        s.where = table + ", " + row["inputs"];
        s.T = row.number(pt ? "in1" : "in2");
        if (pt) s.p = row.number("in2"), s.p_text = row["in2"];
        const std::string &name = row["output"], &text = row["value"];
        if (name == "p") s.p = row.number("value"), s.p_text = text;
        if (name == "h") s.h = row.number("value"), s.h_text = text;
        if (name == "w") s.w = row.number("value"), s.w_text = text;
        if (name == "cp") s.cp = row.number("value");
    }
    std::vector<verification_state> out;
    for (auto& [key, s] : states) out.push_back(s);
    return out;
}

// IF97 covers 273.16 K to 1073.15 K up to 100 MPa and to 2273.15 K up to 50 MPa; along an
// isobar h rises with T across every region.
constexpr double t_low = 273.16;
double t_high(double p_mpa) {
    return p_mpa > 50.0 ? 1073.15 : 2273.15;
}

TEST(SolverConsistency, TemperatureFromEnthalpyAtFixedPressure) {
    select_water("SI", "PerMass");
    const auto states = verification_states();
    ASSERT_EQ(states.size(), 12u); // liquid, vapour, supercritical (regions 1, 2, 3, 5)
    for (const auto& s : states) {
        std::string errormsg;
        const double p = s.p * 1e6, h = s.h * 1e3;
        const double T = zm::solve("enthalpy", h, "PT", 2, p, t_low, t_high(s.p), errormsg);
        ASSERT_EQ(errormsg, "No errors") << s.where;
        // The table's h and p carry half a unit of their last digit; through cp and the
        // isenthalpic slope of T by p that is a temperature.
        const double dp = printed_precision(s.p_text) * p;
        const double dT_dp = (zm::temperature("Ph", p + dp, h, errormsg) -
                              zm::temperature("Ph", p - dp, h, errormsg)) /
                             (2.0 * dp);
        const double dT = printed_precision(s.h_text) * s.h / s.cp + std::fabs(dT_dp) * dp;
        EXPECT_NEAR(T, s.T, dT + 1e-9) << s.where;
        // the forward call at the solution gives back the target
        EXPECT_NEAR(zm::enthalpy("PT", p, T, errormsg), h, 1e-9 * h) << s.where;
    }
}

// Speed of sound is not monotonic in h along every isobar (liquid water has a maximum near
// 347 K, the supercritical states a minimum near the pseudo-critical line), so each search is
// bracketed by the enthalpies a few kelvin either side of the verification state.
TEST(SolverConsistency, EnthalpyFromSpeedOfSoundAtFixedPressure) {
    select_water("SI", "PerMass");
    for (const auto& s : verification_states()) {
        std::string errormsg;
        const double p = s.p * 1e6;
        double t_lo = s.T - 2.0, t_hi = s.T + 2.0;
        // stay on the state's side of the saturation line
        const double t_sat = zm::temperature("Pq", p, 0.0, errormsg);
        if (zp_common::is_ok(errormsg) && t_sat > t_lo && t_sat < t_hi)
            (t_sat < s.T ? t_lo : t_hi) = 0.5 * (t_sat + s.T);
        const double h_lo = zm::enthalpy("PT", p, t_lo, errormsg);
        const double h_hi = zm::enthalpy("PT", p, t_hi, errormsg);
        ASSERT_EQ(errormsg, "No errors") << s.where;

        const double h = zm::solve("soundspeed", s.w, "Ph", 2, p, h_lo, h_hi, errormsg);
        ASSERT_EQ(errormsg, "No errors") << s.where;
        // the table's w to half a unit of its last digit, through dw/dh at the state
        const double dw_dh = std::fabs(zm::soundspeed("Ph", p, h_hi, errormsg) -
                                       zm::soundspeed("Ph", p, h_lo, errormsg)) /
                             (h_hi - h_lo);
        const double dh =
            printed_precision(s.w_text) * s.w / dw_dh + printed_precision(s.h_text) * s.h * 1e3;
        EXPECT_NEAR(h, s.h * 1e3, dh) << s.where;
        EXPECT_NEAR(zm::soundspeed("Ph", p, h, errormsg), s.w, 1e-9 * s.w) << s.where;
        EXPECT_NEAR(zm::temperature("Ph", p, h, errormsg), s.T, 0.01) << s.where;
    }
}

TEST(SolverConsistency, CallerUnitsMatchTheInternalSolution) {
    // Liquid at 50 bar and 1000 kJ/kg (saturation at 263.9 °C, 1154.5 kJ/kg). With "TP" and
    // targt 1 the unknown is the first input: the bounds take the temperature unit and the fixed
    // value the pressure unit; with "Ph" and targt 2 the bounds take the enthalpy unit.
    select_water("Zentropia", "PerMass");
    std::string errormsg;
    const double t_internal =
        zentropia_solver::zp_solve("h", 1000.0, "TP", 1, 50.0, 100.0, 260.0, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(zm::enthalpy("PT", 50.0, t_internal, errormsg), 1000.0, 1e-9);
    const double h_internal =
        zentropia_solver::zp_solve("T", t_internal, "Ph", 2, 50.0, 500.0, 1100.0, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(h_internal, 1000.0, 1e-9);

    select_water("SI", "PerMass");
    const double t_si = zm::solve("h", 1.0e6, "TP", 1, 5.0e6, 373.15, 533.15, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(t_si, t_internal + 273.15, 1e-9);
    const double h_si = zm::solve("temperature", t_si, "Ph", 2, 5.0e6, 5.0e5, 1.1e6, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    EXPECT_NEAR(h_si, 1.0e6, 1e-6);
}

TEST(SolverConsistency, PropertyNamesInAnyCaseSelectTheSameFunction) {
    select_water("Zentropia", "PerMass");
    std::string errormsg;
    const double expected =
        zentropia_solver::zp_solve("enthalpy", 1000.0, "PT", 2, 50.0, 0.01, 800.0, errormsg);
    ASSERT_EQ(errormsg, "No errors");
    for (const char* name : {"Enthalpy", "ENTHALPY", "H", "h", "enthalpy   "}) {
        EXPECT_EQ(zentropia_solver::zp_solve(name, 1000.0, "PT", 2, 50.0, 0.01, 800.0, errormsg),
                  expected)
            << name;
        EXPECT_EQ(errormsg, "No errors") << name;
    }
    // the long name and the symbol of other rows
    const struct {
        const char* name;
        const char* symbol;
        double target;
    } pairs[] = {{"density", "d", 900.0}, {"soundspeed", "c", 1400.0}};
    for (const auto& row : pairs) {
        const double by_name =
            zentropia_solver::zp_solve(row.name, row.target, "PT", 2, 50.0, 150.0, 250.0, errormsg);
        EXPECT_EQ(errormsg, "No errors") << row.name;
        EXPECT_EQ(zentropia_solver::zp_solve(row.symbol, row.target, "PT", 2, 50.0, 150.0, 250.0,
                                             errormsg),
                  by_name)
            << row.symbol;
    }
}

TEST(SolverConsistency, FailuresReportAndLeaveTheLibraryUsable) {
    select_water("Zentropia", "PerMass");
    struct failure_case {
        const char* funcspec;
        double funcval;
        const char* inputspec;
        int targt;
        double fixedval, minval, maxval;
        const char* message;
    };
    const double nan = std::nan("");
    const failure_case cases[] = {
        // h of liquid at 50 bar between 20 and 100 °C stays far below 3000 kJ/kg
        {"h", 3000.0, "PT", 2, 50.0, 20.0, 100.0,
         "Error Zentropia Brent solver: root not bracketed..."},
        {"Surftens", 0.05, "PT", 2, 50.0, 20.0, 100.0,
         "Error in Zentropia: unknown function Surftens"},
        {"h", 3000.0, "PT", 3, 50.0, 20.0, 100.0,
         "Invalid order for function evaluation in ZFunction_ZP"},
        {"h", nan, "PT", 2, 50.0, 20.0, 100.0,
         "Error in Zentropia: solve needs finite values: target nan, fixed input 50, bounds 20 "
         "and 100"},
    };
    for (const auto& c : cases) {
        std::string errormsg;
        EXPECT_EQ(zentropia_solver::zp_solve(c.funcspec, c.funcval, c.inputspec, c.targt,
                                             c.fixedval, c.minval, c.maxval, errormsg),
                  0.0)
            << c.message;
        EXPECT_EQ(errormsg, c.message);
        // the caller-facing layer passes the text on; its result is the converted 0.0
        zm::solve(c.funcspec, c.funcval, c.inputspec, c.targt, c.fixedval, c.minval, c.maxval,
                  errormsg);
        EXPECT_EQ(errormsg, c.message);
        // and the next search succeeds
        const double t = zm::solve("h", 1000.0, "PT", 2, 50.0, 0.01, 800.0, errormsg);
        EXPECT_EQ(errormsg, "No errors");
        EXPECT_NEAR(zm::enthalpy("PT", 50.0, t, errormsg), 1000.0, 1e-9);
    }
}

TEST(SolverConsistency, ErrorResultIsZeroInTheCallersUnit) {
    // The result of a failed search is the conversion of 0.0: 0 °C is 273.15 K.
    select_water("SI", "PerMass");
    std::string errormsg;
    EXPECT_NEAR(zm::solve("nonsense", 1.0, "PT", 2, 1e5, 300.0, 400.0, errormsg), 273.15, 1e-12);
    EXPECT_EQ(errormsg, "Error in Zentropia: unknown function nonsense");
}

} // namespace
