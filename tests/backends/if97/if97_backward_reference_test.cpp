// The IAPWS-IF97 backward and boundary equations against the verification values of the releases
// (R7-97, SR2-01, SR3-03, SR4-04, SR5-05), read from data/if97/verification_tables.csv.

#include "backward.hpp"
#include "forward.hpp"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace bw = if97::backward;

namespace {

struct row {
    std::string table;
    std::string region;
    std::string output;
    std::string value_text;
    double value = 0.0;
    std::string in1_name;
    double in1 = 0.0;
    std::string in2_name;
    double in2 = 0.0;
};

// Splits one CSV line; fields may be quoted and then hold commas.
std::vector<std::string> split_csv(const std::string& line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
        } else if (c == ',' && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

std::vector<row> read_rows() {
    std::ifstream in(ZP_DATA_DIR "/if97/verification_tables.csv");
    std::vector<row> rows;
    std::string line;
    std::getline(in, line); // header
    while (std::getline(in, line)) {
        const auto f = split_csv(line);
        if (f.size() < 10) continue;
        row r;
        r.table = f[0];
        r.region = f[1];
        r.output = f[3];
        r.value_text = f[4];
        r.value = std::stod(f[4]);
        r.in1_name = f[6];
        r.in1 = f[7].empty() ? 0.0 : std::stod(f[7]);
        r.in2_name = f[8];
        r.in2 = f[9].empty() ? 0.0 : std::stod(f[9]);
        rows.push_back(r);
    }
    return rows;
}

// Half a unit in the last printed digit, plus a few rounding errors of the evaluation.
double printed_tolerance(const std::string& text, double value) {
    const auto dot = text.find('.');
    const int decimals = dot == std::string::npos ? 0 : static_cast<int>(text.size() - dot - 1);
    return 0.5 * std::pow(10.0, -decimals) * (1.0 + 1e-9) + 8.0 * DBL_EPSILON * std::fabs(value);
}

template <bw::boundary3 b> double boundary_3(double p, double) {
    return bw::t_3(b, p);
}

// Which function each verification table checks, and the names of its arguments in order.
struct equation {
    std::string_view table;
    std::string_view region; // empty: every row of the table
    std::string_view arg1;
    std::string_view arg2; // empty: a function of one argument
    double (*f)(double, double);
};

const equation equations[] = {
    {"R7-97(2012) Table 7", "", "p", "h", bw::t_ph_1},
    {"R7-97(2012) Table 9", "", "p", "s", bw::t_ps_1},
    {"R7-97(2012) Table 24", "", "p", "h", bw::t_ph_2},
    {"R7-97(2012) Table 29", "", "p", "s", bw::t_ps_2},
    {"R7-97(2012) B2bc check (Eq. 20)", "", "h", "", [](double h, double) { return bw::p_2bc(h); }},
    {"R7-97(2012) B2bc check (Eq. 21)", "", "p", "", [](double p, double) { return bw::h_2bc(p); }},
    {"SR2-01(2014) Table 3", "", "h", "s", bw::p_hs_1},
    {"SR2-01(2014) Table 9", "", "h", "s", bw::p_hs_2},
    {"SR2-01(2014) Eq. 2 check", "", "s", "", [](double s, double) { return bw::h_2ab_s(s); }},
    {"SR3-03(2014) Table 5", "", "p", "h", bw::t_ph_3},
    {"SR3-03(2014) Table 8", "", "p", "h", bw::v_ph_3},
    {"SR3-03(2014) Table 12", "", "p", "s", bw::t_ps_3},
    {"SR3-03(2014) Table 15", "", "p", "s", bw::v_ps_3},
    {"SR3-03(2014) Eq. 1 check", "", "p", "", [](double p, double) { return bw::h_3ab(p); }},
    {"SR3-03(2014) Table 18", "", "h", "", [](double h, double) { return bw::psat3_h(h); }},
    {"SR3-03(2014) Table 20", "", "s", "", [](double s, double) { return bw::psat3_s(s); }},
    {"SR4-04(2014) Table 5", "", "h", "s", bw::p_hs_3},
    {"SR4-04(2014) Table 11", "1/4 boundary (saturated liquid)", "s", "",
     [](double s, double) { return bw::h1_s(s); }},
    {"SR4-04(2014) Table 11", "3a/4 boundary (saturated liquid)", "s", "",
     [](double s, double) { return bw::h3a_s(s); }},
    {"SR4-04(2014) Table 18", "2ab/4 boundary (saturated vapour)", "s", "",
     [](double s, double) { return bw::h2ab_s(s); }},
    {"SR4-04(2014) Table 18", "2c3b/4 boundary (saturated vapour)", "s", "",
     [](double s, double) { return bw::h2c3b_s(s); }},
    {"SR4-04(2014) Table 18", "1/3 boundary", "s", "",
     [](double s, double) { return bw::hb13_s(s); }},
    {"SR4-04(2014) Table 26", "", "h", "s", bw::tb23_hs},
    {"SR4-04(2014) Table 29", "", "h", "s", bw::tsat_hs},
    {"SR5-05(2016) Table 3", "3 (subregion boundary ab)", "p", "", boundary_3<bw::boundary3::ab>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary cd)", "p", "", boundary_3<bw::boundary3::cd>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary ef)", "p", "", boundary_3<bw::boundary3::ef>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary gh)", "p", "", boundary_3<bw::boundary3::gh>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary ij)", "p", "", boundary_3<bw::boundary3::ij>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary jk)", "p", "", boundary_3<bw::boundary3::jk>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary mn)", "p", "", boundary_3<bw::boundary3::mn>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary op)", "p", "", boundary_3<bw::boundary3::op>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary qu)", "p", "", boundary_3<bw::boundary3::qu>},
    {"SR5-05(2016) Table 3", "3 (subregion boundary rx)", "p", "", boundary_3<bw::boundary3::rx>},
    {"SR5-05(2016) Table 11", "3 (subregion boundary uv)", "p", "", boundary_3<bw::boundary3::uv>},
    {"SR5-05(2016) Table 11", "3 (subregion boundary wx)", "p", "", boundary_3<bw::boundary3::wx>},
    {"SR5-05(2016) Table 5", "", "p", "T", bw::v_pt_3},
    {"SR5-05(2016) Table 13", "", "p", "T", bw::v_pt_3},
};

// The row's input of the given name.
double input(const row& r, std::string_view name) {
    if (r.in1_name == name) return r.in1;
    if (r.in2_name == name) return r.in2;
    ADD_FAILURE() << r.table << ": no input named " << name;
    return std::numeric_limits<double>::quiet_NaN();
}

TEST(If97Backward, ReproducesEveryVerificationValue) {
    const auto rows = read_rows();
    ASSERT_GT(rows.size(), 300u) << "verification table not found or unreadable";
    for (const auto& eq : equations) {
        int checked = 0;
        for (const auto& r : rows) {
            if (r.table != eq.table || (!eq.region.empty() && r.region != eq.region)) continue;
            const double x = input(r, eq.arg1);
            const double y = eq.arg2.empty() ? 0.0 : input(r, eq.arg2);
            EXPECT_NEAR(eq.f(x, y), r.value, printed_tolerance(r.value_text, r.value))
                << r.table << ", " << r.region << ", " << eq.arg1 << " = " << x << ", " << eq.arg2
                << " = " << y;
            ++checked;
        }
        EXPECT_GT(checked, 0) << "no rows for " << eq.table << " " << eq.region;
    }
}

// SR5-05 places each of its verification states inside the subregion the table names.
TEST(If97Backward, ChoosesTheRegion3SubregionOfEachVerificationState) {
    int checked = 0;
    for (const auto& r : read_rows()) {
        if (r.table != "SR5-05(2016) Table 5" && r.table != "SR5-05(2016) Table 13") continue;
        ASSERT_EQ(r.region.size(), 2u);
        EXPECT_EQ(bw::subregion_3(input(r, "p"), input(r, "T")), r.region[1])
            << r.table << ", p = " << input(r, "p") << ", T = " << input(r, "T");
        ++checked;
    }
    EXPECT_EQ(checked, 52);
}

// Where SR5-05 says its subregion boundaries meet the saturation line or the critical point.
TEST(If97Backward, Region3BoundariesMeetTheSaturationLineWherePublished) {
    struct meeting {
        bw::boundary3 boundary;
        double p; // MPa
    };
    const meeting meetings[] = {
        {bw::boundary3::cd, 19.00881189173929},
        {bw::boundary3::uv, 21.93161551},
        {bw::boundary3::wx, 21.90096265},
    };
    for (const auto& m : meetings) {
        EXPECT_NEAR(bw::t_3(m.boundary, m.p), if97::forward::tsat(m.p), 1e-6) << "p = " << m.p;
    }
    EXPECT_NEAR(bw::t_3(bw::boundary3::ef, 22.064), 647.096, 1e-12);
    EXPECT_NEAR(if97::forward::tsat(22.064), 647.096, 1e-6);
}

// Eqs. 20 and 21 of R7-97 are inverses of each other along the whole B2bc line.
TEST(If97Backward, B2bcEquationsAreInverse) {
    for (double p = 6.546699678; p <= 100.0; p += 1.0) {
        EXPECT_NEAR(bw::p_2bc(bw::h_2bc(p)), p, 1e-9 * p) << "p = " << p;
    }
}

// Whatever the input, every function answers a finite number.
TEST(If97Backward, AnswersFiniteNumbersForAnyInput) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inputs[] = {nan,    inf,   -inf,   0.0,    -1.0,
                             1e-300, 1e300, -1e300, 22.064, 4.41202148223476};
    double (*const two_argument[])(double, double) = {
        bw::t_ph_1, bw::t_ps_1, bw::t_ph_2, bw::t_ps_2, bw::p_hs_1,  bw::p_hs_2,  bw::t_ph_3,
        bw::v_ph_3, bw::t_ps_3, bw::v_ps_3, bw::p_hs_3, bw::tsat_hs, bw::tb23_hs, bw::v_pt_3};
    double (*const one_argument[])(double) = {bw::h_2bc,  bw::p_2bc,   bw::h_2ab_s, bw::h_3ab,
                                              bw::h1_s,   bw::h3a_s,   bw::h2ab_s,  bw::h2c3b_s,
                                              bw::hb13_s, bw::psat3_h, bw::psat3_s};
    for (const double x : inputs) {
        for (const auto f : one_argument) EXPECT_TRUE(std::isfinite(f(x))) << "x = " << x;
        for (int b = 0; b <= static_cast<int>(bw::boundary3::wx); ++b) {
            EXPECT_TRUE(std::isfinite(bw::t_3(static_cast<bw::boundary3>(b), x))) << "p = " << x;
        }
        for (const double y : inputs) {
            for (const auto f : two_argument) {
                EXPECT_TRUE(std::isfinite(f(x, y))) << "x = " << x << ", y = " << y;
            }
            const char sub = bw::subregion_3(x, y);
            EXPECT_TRUE(sub >= 'a' && sub <= 'z');
        }
    }
}

} // namespace
