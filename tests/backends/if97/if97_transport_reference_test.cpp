// Transport properties of the IF97 back-end against the IAPWS verification values
// (R12-08, R15-11, R1-76(2014)) in data/if97/verification_tables.csv.
#include "backends/if97/reference_csv.hpp"
#include "sentinel.hpp"
#include "transport.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace {

namespace tr = if97::transport;

const std::vector<reference_csv::row>& verification_rows() {
    static const std::vector<reference_csv::row> rows =
        reference_csv::read(ZP_DATA_DIR "/if97/verification_tables.csv");
    return rows;
}

std::vector<reference_csv::row> rows_of(const std::string& table, const std::string& output) {
    std::vector<reference_csv::row> selected;
    for (const reference_csv::row& r : verification_rows())
        if (r["table"] == table && r["output"] == output) selected.push_back(r);
    return selected;
}

// Half a unit of the last digit the release prints, e.g. 0.0005 for "889.735".
double half_last_digit(const std::string& printed) {
    const std::size_t point = printed.find('.');
    const int decimals = point == std::string::npos ? 0 : int(printed.size() - point - 1);
    return 0.5 * std::pow(10.0, -decimals);
}

TEST(TransportReference, ViscosityR1208Table4) {
    const auto rows = rows_of("R12-08 Table 4", "eta");
    ASSERT_EQ(rows.size(), 11u);
    for (const auto& r : rows) {
        const double eta = tr::viscosity(r.number("in1"), r.number("in2")) * 1.0e6; // uPa s
        EXPECT_NEAR(eta, r.number("value"), half_last_digit(r["value"])) << r["inputs"];
    }
}

TEST(TransportReference, ConductivityR1511Table4WithoutEnhancement) {
    const auto rows = rows_of("R15-11 Table 4", "lambda");
    ASSERT_EQ(rows.size(), 4u);
    for (const auto& r : rows) {
        const double T = r.number("in1");
        const double rho = r.number("in2");
        // the derivatives only feed the enhancement term, which this table leaves out
        const tr::conductivity_terms t = tr::conductivity_parts(T, rho, 4.0, 3.0, 0.5, 0.5);
        EXPECT_NEAR(t.lambda0 * t.lambda1, r.number("value"), half_last_digit(r["value"]))
            << r["inputs"]; // mW/(m K)
    }
}

TEST(TransportReference, SurfaceTensionEquationRounded) {
    const auto rows = rows_of("R1-76(2014) Eq. 1, rounded", "sigma");
    ASSERT_EQ(rows.size(), 20u);
    for (const auto& r : rows) {
        const double sigma = tr::surface_tension(r.number("in1")) * 1.0e3; // mN/m
        EXPECT_NEAR(sigma, r.number("value"), 0.005 + 1e-12) << r["inputs"];
    }
}

TEST(TransportReference, SurfaceTensionTable1) {
    // The tabulated values deviate smoothly from eq. 1 by up to 0.07 mN/m (data/if97/README.md).
    const auto rows = rows_of("R1-76(2014) Table 1", "sigma");
    ASSERT_EQ(rows.size(), 75u);
    for (const auto& r : rows) {
        const double sigma = tr::surface_tension(r.number("in1")) * 1.0e3;
        EXPECT_NEAR(sigma, r.number("value"), 0.1) << r["inputs"];
    }
}

TEST(TransportReference, SurfaceTensionVanishesAtTheCriticalPoint) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (const double T : {647.096, 647.1, 700.0, 2273.15, nan, inf})
        EXPECT_EQ(tr::surface_tension(T), if97::not_set) << T;
    // just below Tc the interface still exists, with a tension falling continuously to zero
    const double near = tr::surface_tension(647.096 - 1e-3);
    EXPECT_GT(near, 0.0);
    EXPECT_LT(near, 1e-6);
}

TEST(TransportReference, ReferenceCompressibilityIdealGasLimit) {
    // (d rho/d p)_T -> 1/(R T_R) as rho -> 0, with R = 0.46151805 kJ/(kg K), T_R = 1.5 Tc.
    const double ideal = 1.0e3 / (0.46151805 * 1.5 * 647.096); // kg/(m³ MPa)
    EXPECT_NEAR(tr::drho_dp_reference(1e-6) / ideal, 1.0, 1e-4);
    // Table 6 splits the density range in five fits that join within a few tenths of a percent.
    for (const double dr : {0.310559006, 0.776397516, 1.242236025, 1.863354037}) {
        const double below = tr::drho_dp_reference(322.0 * dr * (1 - 1e-12));
        const double above = tr::drho_dp_reference(322.0 * dr * (1 + 1e-12));
        EXPECT_NEAR(above / below, 1.0, 2e-3) << dr;
    }
}

// R15-11 Tables 7, 8 and 9 give the industrial conductivity with IF97 inputs. The back-end's own
// IF97 is tested elsewhere; here the inputs (rho, cp, cv, (d rho/d p)_T) come from python3-iapws,
// through the rows of the reference grid that hold these states.
const std::vector<reference_csv::row>& grid_rows() {
    static const std::vector<reference_csv::row> rows =
        reference_csv::read(ZP_DATA_DIR "/if97/reference_grid.csv");
    return rows;
}

tr::conductivity_terms terms_of(const reference_csv::row& g) {
    const double rho = 1.0 / g.number("v_m3_kg");
    return tr::conductivity_parts(g.number("T_K"), rho, g.number("cp_kJ_kgK"),
                                  g.number("cv_kJ_kgK"), g.number("drho_dp_T_kg_m3MPa"),
                                  tr::drho_dp_reference(rho));
}

TEST(TransportReference, ConductivityR1511IndustrialTables) {
    int checked = 0;
    for (const char* table : {"R15-11 Table 7", "R15-11 Table 8", "R15-11 Table 9"}) {
        for (const auto& r : verification_rows()) {
            if (r["table"] != table) continue;
            // the grid row of the same state: T and p (Tables 7, 8) or T and rho (Table 9)
            const reference_csv::row* state = nullptr;
            for (const auto& g : grid_rows()) {
                if (g["tag"] != table || g.number("T_K") != r.number("in1")) continue;
                const double second =
                    r["in2_name"] == "rho" ? 1.0 / g.number("v_m3_kg") : g.number("P_MPa");
                if (std::abs(second / r.number("in2") - 1.0) < 1e-12) state = &g;
            }
            ASSERT_NE(state, nullptr) << table << " " << r["inputs"];
            const tr::conductivity_terms t = terms_of(*state);
            const std::map<std::string, double> computed = {
                {"lambda", t.lambda0 * t.lambda1 + t.lambda2},
                {"lambda0_bar", t.lambda0},
                {"lambda1_bar", t.lambda1},
                {"lambda2_bar", t.lambda2}};
            EXPECT_NEAR(computed.at(r["output"]), r.number("value"), half_last_digit(r["value"]))
                << table << " " << r["inputs"] << " " << r["output"];
            ++checked;
        }
    }
    EXPECT_EQ(checked,
              12); // Table 7: lambda and its three terms at two states; Tables 8, 9: two each
}

// Over every single-phase state of the grid, the same inputs give python3-iapws's viscosity
// and conductivity to rounding: an independent implementation of the same releases.
TEST(TransportReference, AgreesWithPythonIapwsOverTheGrid) {
    double worst_eta = 0.0, worst_lambda = 0.0;
    std::string where_eta, where_lambda;
    int compared = 0;
    for (const auto& g : grid_rows()) {
        if (!g.has("lambda_W_mK")) continue;
        const double T = g.number("T_K");
        const double rho = 1.0 / g.number("v_m3_kg");
        const double eta = tr::viscosity(T, rho);
        const double lambda = 1e-3 * [&] {
            const tr::conductivity_terms t = terms_of(g);
            return t.lambda0 * t.lambda1 + t.lambda2;
        }();
        const double d_eta = std::abs(eta / g.number("eta_Pa_s") - 1.0);
        const double d_lambda = std::abs(lambda / g.number("lambda_W_mK") - 1.0);
        if (!(d_eta <= worst_eta)) worst_eta = d_eta, where_eta = g["T_K"] + " K " + g["P_MPa"];
        if (!(d_lambda <= worst_lambda))
            worst_lambda = d_lambda, where_lambda = g["T_K"] + " K " + g["P_MPa"];
        ++compared;
    }
    std::printf("%d states: worst relative deviation eta %.2e (%s MPa), lambda %.2e (%s MPa)\n",
                compared, worst_eta, where_eta.c_str(), worst_lambda, where_lambda.c_str());
    EXPECT_GT(compared, 8000);
    EXPECT_LE(worst_eta, 1e-13) << where_eta;
    EXPECT_LE(worst_lambda, 1e-12) << where_lambda;
}

// Inputs from which an equation of state can stray next to the critical point: the
// conductivity stays finite and never falls below its background lambda0 * lambda1.
TEST(TransportReference, CriticalEnhancementGuards) {
    struct guard_case {
        const char* what;
        double cp, cv, drho_dp_T;
    };
    const double T = 647.5;
    const double rho = 330.0;
    const double ref = tr::drho_dp_reference(rho);
    const guard_case cases[] = {
        {"regular near-critical state", 60.0, 6.0, 300.0},
        {"negative cp", -60.0, 6.0, 300.0},
        {"unbounded cp", 1e20, 6.0, 300.0},
        {"zero cv", 60.0, 0.0, 300.0},
        {"negative compressibility", 60.0, 6.0, -300.0},
        {"unbounded compressibility", 60.0, 6.0, 1e30},
    };
    const tr::conductivity_terms base = tr::conductivity_parts(T, rho, 60.0, 6.0, 300.0, ref);
    const double background = 1e-3 * base.lambda0 * base.lambda1;
    for (const guard_case& c : cases) {
        const double lambda = tr::conductivity(T, rho, c.cp, c.cv, c.drho_dp_T, ref);
        EXPECT_TRUE(std::isfinite(lambda)) << c.what;
        EXPECT_GE(lambda, background) << c.what;
    }
    // a compressibility below the reference term (dilute or compressed states far from the
    // critical point) contributes no enhancement at all
    EXPECT_EQ(tr::conductivity_parts(T, rho, 60.0, 6.0, 0.5 * ref, ref).lambda2, 0.0);
    EXPECT_EQ(tr::conductivity_parts(T, 0.0, 2.0, 1.5, 0.0, tr::drho_dp_reference(0.0)).lambda2,
              0.0);
}

} // namespace
