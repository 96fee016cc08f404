// The IF97 back-end against an independent implementation: data/if97/reference_grid.csv holds
// over 10,000 states from python3-iapws (data/if97/make_reference_grid.py) with the input pairs
// that reach each of them. Every state is solved from each of its pairs through if97_main and
// every property compared; the worst deviation per property is reported.
#include "backends/if97/reference_csv.hpp"
#include "sentinel.hpp"

#include <if97/if97.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

// The properties compared, with the grid column, the output code of if97_main, the conversion
// of the back-end's value to the grid's unit, and the magnitude below which a deviation counts
// as absolute (values that pass through zero: h, u and s of liquid at the triple point, x).
struct property {
    const char* name;
    const char* column;
    double scale; // grid value = back-end value * scale + offset
    double offset;
    double floor;
};
constexpr std::array<property, 13> properties = {{
    {"P", "P_MPa", 0.1, 0.0, 0.0},
    {"T", "T_K", 1.0, 273.15, 0.0},
    {"v", "v_m3_kg", 1.0, 0.0, 0.0},
    {"h", "h_kJ_kg", 1.0, 0.0, 1.0},
    {"s", "s_kJ_kgK", 1.0, 0.0, 1e-2},
    {"u", "u_kJ_kg", 1.0, 0.0, 1.0},
    {"x", "x", 1.0, 0.0, 1.0},
    {"cv", "cv_kJ_kgK", 1.0, 0.0, 0.0},
    {"cp", "cp_kJ_kgK", 1.0, 0.0, 0.0},
    {"w", "w_m_s", 1.0, 0.0, 0.0},
    {"dv", "eta_Pa_s", 1.0, 0.0, 0.0},
    {"tc", "lambda_W_mK", 1.0, 0.0, 0.0},
    {"st", "sigma_N_m", 1.0, 0.0, 0.0},
}};
constexpr const char* outlist = "P,T,v,h,s,u,x,cv,cp,w,dv,tc,st.";

// Tolerances, relative. Both implementations evaluate the same equations, transport included
// (the industrial forms, with the same reference compressibility at T_R), so every property
// agrees to 1e-9 wherever the inputs fix the state well. Within about 0.1 K of the critical
// temperature, saturated properties change so fast that a change of the inputs in their last
// digit moves the quality by 1e-8: near the critical point the comparison allows 1e-7.
constexpr double tol = 1e-9;
constexpr double tol_critical = 1e-7;

double column(const reference_csv::row& r, char letter) {
    switch (letter) {
    case 'P':
        return r.number("P_MPa") * 10.0; // bar
    case 'T':
        return r.number("T_K") - 273.15; // °C
    case 'v':
        return r.number("v_m3_kg");
    case 'h':
        return r.number("h_kJ_kg");
    case 's':
        return r.number("s_kJ_kgK");
    case 'u':
        return r.number("u_kJ_kg");
    default:
        return r.number("x");
    }
}

struct worst {
    double deviation = 0.0;
    std::string where;
    long compared = 0;
};

struct grid_result {
    long rows = 0;
    long solves = 0;
    std::map<std::string, long> solves_per_pair;
    std::set<std::string> zones;
    std::vector<std::string> failures; // error texts with the state
    long failure_count = 0;
    std::map<std::string, long> failures_per_pair;
    std::map<std::string, worst> regular;  // by property
    std::map<std::string, worst> critical; // by property, near-critical states
    long single_phase_quality_inside = 0;
    std::string quality_example;
};

bool near_critical(const reference_csv::row& r) {
    const double T = r.number("T_K");
    const double rho = 1.0 / r.number("v_m3_kg");
    return std::abs(T - 647.096) < 5.0 && std::abs(rho - 322.0) < 0.3 * 322.0;
}

std::string describe(const std::string& pair, const reference_csv::row& r) {
    std::ostringstream text;
    text.precision(17);
    text << pair << " zone " << r["zone"] << " (" << r["tag"] << ") T=" << r["T_K"]
         << " K P=" << r["P_MPa"] << " MPa v=" << r["v_m3_kg"];
    if (r.has("x")) text << " x=" << r["x"];
    return text.str();
}

const grid_result& evaluate_grid() {
    static const grid_result result = [] {
        grid_result g;
        const auto rows = reference_csv::read(ZP_DATA_DIR "/if97/reference_grid.csv");
        g.rows = long(rows.size());
        std::array<double, properties.size()> out{};
        std::string errormsg;
        for (const auto& r : rows) {
            g.zones.insert(r["zone"]);
            const bool critical = near_critical(r);
            const bool single_phase = r.has("cp_kJ_kgK") && !r.has("x");
            std::istringstream pairs(r["pairs"]);
            for (std::string pair; pairs >> pair;) {
                ++g.solves;
                ++g.solves_per_pair[pair];
                out.fill(if97::not_set);
                if97::if97_main(pair.substr(0, 1), column(r, pair[0]), pair.substr(1, 1),
                                column(r, pair[1]), outlist, out, errormsg);
                if (errormsg != "No errors") {
                    ++g.failures_per_pair[pair];
                    if (g.failure_count++ < 20)
                        g.failures.push_back(describe(pair, r) + ": " + errormsg);
                    continue;
                }
                for (std::size_t k = 0; k < properties.size(); ++k) {
                    const property& p = properties[k];
                    if (p.name == std::string_view("x") && single_phase) {
                        if (out[k] > 0.0 && out[k] < 1.0 && g.single_phase_quality_inside++ == 0) {
                            char text[40];
                            std::snprintf(text, sizeof text, ": x=%.17g", out[k]);
                            g.quality_example = describe(pair, r) + text;
                        }
                        continue;
                    }
                    const bool expected = r.has(p.column);
                    const double got =
                        out[k] == if97::not_set ? if97::not_set : out[k] * p.scale + p.offset;
                    double deviation;
                    if (!expected) {
                        // no reference value: surface tension above Tc, or a property the
                        // mixture does not have; the back-end must not invent one
                        if (p.name != std::string_view("st")) continue;
                        deviation = got == if97::not_set ? 0.0 : INFINITY;
                    } else {
                        const double ref = r.number(p.column);
                        // Liquid water is nearly incompressible: at a given T, a change of v
                        // or s in the last digit moves a liquid's pressure by a few 1e-11 MPa
                        // ((ds/dp)_T = -v alpha is tiny), so that pressure is compared
                        // relative to at least 1 bar.
                        const double floor =
                            p.name == std::string_view("P") && r["zone"] == "1" ? 0.1 : p.floor;
                        deviation = std::abs(got - ref) / std::max(std::abs(ref), floor);
                    }
                    if (!(deviation == deviation)) deviation = INFINITY; // NaN
                    worst& w = (critical ? g.critical : g.regular)[p.name];
                    ++w.compared;
                    if (deviation > w.deviation || (w.where.empty() && deviation == 0.0)) {
                        w.deviation = deviation;
                        std::ostringstream text;
                        text.precision(17);
                        text << describe(pair, r) << ": " << p.name << " = " << got;
                        w.where = text.str();
                    }
                }
            }
        }
        return g;
    }();
    return result;
}

void report(const char* title, const std::map<std::string, worst>& table) {
    std::printf("%s\n", title);
    for (const property& p : properties) {
        const auto it = table.find(p.name);
        if (it == table.end()) continue;
        std::printf("  %-3s %7ld compared, worst %.3e at %s\n", p.name, it->second.compared,
                    it->second.deviation, it->second.where.c_str());
    }
}

TEST(GridReference, CoversAllRegionsAndPairs) {
    const grid_result& g = evaluate_grid();
    EXPECT_GE(g.rows, 10000);
    EXPECT_EQ(g.zones, (std::set<std::string>{"1", "2", "3", "4", "4sat", "5"}));
    for (const char* pair :
         {"PT", "Ph", "Ps", "Pv", "Pu", "Px", "Tv", "Ts", "Tx", "vh", "vs", "vu", "vx", "hs"})
        EXPECT_GE(g.solves_per_pair.count(pair) ? g.solves_per_pair.at(pair) : 0, 300) << pair;
}

TEST(GridReference, EveryPairSolves) {
    const grid_result& g = evaluate_grid();
    std::string listing = "\nfailures per pair:";
    for (const auto& [pair, count] : g.failures_per_pair)
        listing += " " + pair + " " + std::to_string(count);
    listing += "\nfirst failures:";
    for (const std::string& f : g.failures) listing += "\n  " + f;
    EXPECT_EQ(g.failure_count, 0) << "of " << g.solves << " solves" << listing;
}

TEST(GridReference, PropertiesAgree) {
    const grid_result& g = evaluate_grid();
    report("worst relative deviation from python3-iapws, regular states:", g.regular);
    report("worst relative deviation from python3-iapws, near the critical point:", g.critical);
    for (const property& p : properties) {
        if (g.regular.count(p.name)) {
            const worst& w = g.regular.at(p.name);
            EXPECT_LE(w.deviation, tol) << p.name << ": " << w.where;
        }
        if (g.critical.count(p.name)) {
            const worst& w = g.critical.at(p.name);
            EXPECT_LE(w.deviation, tol_critical) << p.name << ": " << w.where;
        }
    }
}

TEST(GridReference, SinglePhaseQualityStaysOutsideZeroToOne) {
    const grid_result& g = evaluate_grid();
    EXPECT_EQ(g.single_phase_quality_inside, 0) << g.quality_example;
}

} // namespace
