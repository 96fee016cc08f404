// Thermodynamic identities over every shipped model, through the C++ interface a caller uses:
// round trips between input pairs, the four Maxwell relations, cp and cv against the slopes of h
// and u, cp - cv = -T (dv/dT)_P^2 / (dv/dP)_T, and the speed of sound against the isentropic and
// the isothermal compressibility. Every derivative on the right is a central difference of the
// interface's own values, so the identities hold whatever equation of state a model uses. A new
// back-end adds one row to the table of models, with its states and tolerances.
#include "Import/varimol_fluidfile.hpp"
#include "zentropia/zentropia.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>

namespace {

struct state_spec {
    std::string_view inputspec; // in SI units: Pa, K, m³/kg, J/kg, J/(kg K)
    double a, b;
};
struct model_row {
    std::string label;
    std::string model;
    std::vector<std::string> components;
    std::vector<double> conc;
    bool pure;                      // one component: P and T do not fix its two-phase states
    std::vector<state_spec> states; // single-phase and two-phase states
    double round_trip;              // relative tolerance of T, P (and q) reached again
    double identity;                // relative tolerance of the identities by differences
    // the same in the two-phase region, where the differences bend with the phase fractions;
    // IF97 takes its saturation line from the saturation-pressure equation and the phases from
    // the region equations, whose Clapeyron slopes agree to about 1e-4 (IAPWS R7-97(2012))
    double two_phase_identity;
};

// The mixture of a fluid file: Peng-Robinson with Wong-Sandler mixing and an NRTL excess Gibbs
// energy, so that the battery also covers that mixing rule.
constexpr std::string_view ws_file = "zp-identity-pr-ws";

const std::vector<model_row>& models() {
    static const std::vector<model_row> table{
        {"IF97 water",
         "IF97",
         {"water"},
         {},
         true,
         {{"PT", 1e5, 300.0},  // compressed liquid
          {"PT", 1e6, 500.0},  // superheated vapour
          {"PT", 3e7, 700.0},  // supercritical
          {"PT", 2e7, 1100.0}, // high-temperature region
          {"Tq", 400.0, 0.3}}, // wet steam
         1e-9,
         1e-6,
         1e-4},
        {"Varimol methane-ethane",
         "Varimol",
         {"methane", "ethane"},
         {0.9, 0.1},
         false,
         {{"PT", 5e6, 250.0}, {"PT", 1e5, 300.0}, {"PT", 6e6, 150.0}, {"PT", 2e6, 170.0}},
         1e-9,
         1e-6,
         2e-5},
        {"Varimol carbon dioxide",
         "Varimol",
         {"CO2"},
         {},
         true,
         {{"PT", 1e6, 300.0}, {"PT", 1e7, 280.0}, {"Tq", 270.0, 0.4}},
         1e-9,
         1e-6,
         2e-5},
        {"Varimol R410A",
         "Varimol",
         {"R410A"},
         {},
         false,
         {{"PT", 1e6, 320.0}, {"PT", 3e6, 260.0}, {"Pq", 1e6, 0.5}},
         1e-9,
         1e-6,
         2e-5},
        {"Varimol PR Wong-Sandler file",
         "Varimol",
         {std::string(ws_file)},
         {},
         false,
         {{"PT", 5e6, 300.0}, {"PT", 2e7, 250.0}, {"PT", 1e6, 220.0}, {"PT", 5e6, 230.0}},
         1e-9,
         1e-6,
         2e-5},
        {"liteVarimol methane-ethane",
         "liteVarimol",
         {"methane", "ethane"},
         {0.9, 0.1},
         false,
         {{"PT", 5e6, 250.0}, {"PT", 2e6, 170.0}},
         1e-9,
         1e-6,
         2e-5},
    };
    return table;
}

// a row of the table of models, evaluated per mass or per mole
class IdentityBattery : public ::testing::TestWithParam<std::tuple<std::size_t, const char*>> {
protected:
    static void SetUpTestSuite() {
        varimol_fluidfile::mixture m{std::string(ws_file),
                                     {"nitrogen", "CO2"},
                                     {0.6, 0.4},
                                     "PR",
                                     "WS",
                                     {},
                                     {0.4, 0.15, 0.3},
                                     {0.1}};
        std::string path, e;
        varimol_fluidfile::write_fluidfile(ZP_FLUIDS_DIR, m, true, path, e);
        ASSERT_EQ(e, "No errors");
    }
    static void TearDownTestSuite() {
        std::filesystem::remove(std::string(ZP_FLUIDS_DIR) + std::string(ws_file) + ".vmx");
    }
};

// relative difference, 0 when both are 0
double relative(double x, double y) {
    const double scale = std::max(std::fabs(x), std::fabs(y));
    return scale == 0.0 ? 0.0 : std::fabs(x - y) / scale;
}

// The values of one state and differences of the interface around it.
struct probe {
    zentropia::fluid& f;
    // 1, or smaller across a two-phase region, whose narrow glide bends the values sharply
    double scale;
    // P v and P v / T of the state: the scales of energies and entropies in the caller's basis
    double pv, pv_t;
    double value(std::string_view key, std::string_view inputspec, double a, double b) const {
        return f.calc(key, inputspec, a, b);
    }
    // (d key / d first input) at fixed second input, and the other way round
    double d1(std::string_view key, std::string_view inputspec, double a, double b) const {
        const double h = scale * step(inputspec[0], a, pv, pv_t);
        return (value(key, inputspec, a + h, b) - value(key, inputspec, a - h, b)) / (2 * h);
    }
    double d2(std::string_view key, std::string_view inputspec, double a, double b) const {
        const double h = scale * step(inputspec[1], b, pv, pv_t);
        return (value(key, inputspec, a, b + h) - value(key, inputspec, a, b - h)) / (2 * h);
    }
    // Steps that keep the state in its phase and its differences well above the round-off of
    // the inversions: volume and density small (a liquid's pressure moves 1e-6 / kappa_T),
    // pressure large (a liquid's temperature hardly follows it). Entropy and energies may pass
    // through zero (their zero is a reference state), so they step at least by a part of P v or
    // P v / T, which scale with the basis.
    static double step(char symbol, double x, double pv, double pv_t) {
        switch (symbol) {
        case 'v':
        case 'd':
            return 1e-6 * std::fabs(x);
        case 'P':
            return 3e-4 * std::fabs(x);
        case 'T':
            return 1e-5 * std::fabs(x);
        case 's':
            return 1e-4 * std::max(std::fabs(x), pv_t);
        default:
            return 1e-4 * std::max(std::fabs(x), pv);
        }
    }
};

TEST_P(IdentityBattery, RoundTripsBetweenInputPairs) {
    const model_row& row = models()[std::get<0>(GetParam())];
    zentropia::fluid f(row.model, row.components, row.conc, "SI", std::get<1>(GetParam()));
    // every pair of two of P, T, v, d, h, s, u that fixes a state (T with h or u does not)
    constexpr std::array<std::string_view, 17> pairs{"PT", "Ph", "Ps", "Pv", "Pd", "Pu",
                                                     "Tv", "Td", "Ts", "vu", "vh", "vs",
                                                     "du", "dh", "ds", "hs", "Tq"};
    for (const auto& st : row.states) {
        const auto ref = f.props(st.inputspec, st.a, st.b);
        const bool two_phase = ref.q > 0.0 && ref.q < 1.0;
        const auto given = [&](char symbol) {
            switch (symbol) {
            case 'P':
                return ref.p;
            case 'T':
                return ref.t;
            case 'v':
                return ref.v;
            case 'd':
                return ref.d;
            case 'h':
                return ref.h;
            case 's':
                return ref.s;
            case 'u':
                return ref.u;
            default:
                return ref.q;
            }
        };
        for (const auto pair : pairs) {
            // a pure fluid's P and T do not fix a two-phase state, nor T and q one outside it
            if ((pair == "PT" && two_phase && row.pure) || (pair == "Tq" && !two_phase)) continue;
            SCOPED_TRACE(row.label + " " + std::string(st.inputspec) + " " + std::to_string(st.a) +
                         " " + std::to_string(st.b) + " from " + std::string(pair));
            const auto back = f.props(pair, given(pair[0]), given(pair[1]));
            EXPECT_LE(relative(back.t, ref.t), row.round_trip) << back.t << " " << ref.t;
            EXPECT_LE(relative(back.p, ref.p), row.round_trip) << back.p << " " << ref.p;
            EXPECT_LE(relative(back.h, ref.h), row.round_trip) << back.h << " " << ref.h;
            if (two_phase) {
                EXPECT_NEAR(back.q, ref.q, row.round_trip);
            }
        }
    }
}

TEST_P(IdentityBattery, MaxwellRelationsAndHeatCapacities) {
    const model_row& row = models()[std::get<0>(GetParam())];
    zentropia::fluid f(row.model, row.components, row.conc, "SI", std::get<1>(GetParam()));
    zentropia::fluid per_mass(row.model, row.components, row.conc);
    for (const auto& st : row.states) {
        const auto ref = f.props(st.inputspec, st.a, st.b);
        // kg per unit of the basis: 1 per mass, the molar mass per mole
        const double mass = ref.v / per_mass.calc("v", st.inputspec, st.a, st.b);
        const bool two_phase = ref.q > 0.0 && ref.q < 1.0;
        const probe at{f, two_phase ? 0.1 : 1.0, ref.p * ref.v, ref.p * ref.v / ref.t};
        const bool pure_two_phase = two_phase && row.pure;
        const double P = ref.p, T = ref.t, v = ref.v, s = ref.s;
        struct identity {
            std::string_view name;
            double lhs, rhs;
        };
        std::vector<identity> identities{
            // (dT/dP)_s = (dv/ds)_P and (dT/dv)_s = -(dP/ds)_v
            {"Maxwell Ps", at.d1("T", "Ps", P, s), at.d2("v", "Ps", P, s)},
            {"Maxwell vs", at.d1("T", "vs", v, s), -at.d2("P", "vs", v, s)},
            // (ds/dv)_T = (dP/dT)_v
            {"Maxwell Tv", at.d2("s", "Tv", T, v), at.d1("P", "Tv", T, v)},
        };
        if (!pure_two_phase) {
            const double dv_dt = at.d2("v", "PT", P, T), dv_dp = at.d1("v", "PT", P, T);
            // (ds/dP)_T = -(dv/dT)_P
            identities.push_back({"Maxwell PT", at.d1("s", "PT", P, T), -dv_dt});
            if (!two_phase) {
                const double du_dt = at.d1("u", "Tv", T, v);
                identities.push_back({"cp = (dh/dT)_P", ref.cp, at.d2("h", "PT", P, T)});
                identities.push_back({"cv = (du/dT)_v", ref.cv, du_dt});
                identities.push_back({"cp - cv", ref.cp - ref.cv, -T * dv_dt * dv_dt / dv_dp});
                // c^2 = (dP/drho)_s, and = (cp/cv) (dP/drho)_T, with the mass density rho
                const double dd_dp_s = mass * at.d1("d", "Ps", P, s);
                identities.push_back({"c isentropic", ref.c * ref.c, 1.0 / dd_dp_s});
                const double dd_dp_t = mass * at.d1("d", "PT", P, T);
                identities.push_back({"c isothermal", ref.c * ref.c, ref.cp / ref.cv / dd_dp_t});
            }
        }
        // Where a model gives cv and the speed of sound of a two-phase state (that of the phases
        // in equilibrium), they are the slopes of the equilibrium mixture.
        if (two_phase && std::isfinite(ref.cv))
            identities.push_back({"two-phase cv = (du/dT)_v", ref.cv, at.d1("u", "Tv", T, v)});
        if (two_phase && std::isfinite(ref.c))
            identities.push_back(
                {"two-phase c isentropic", ref.c * ref.c, 1.0 / (mass * at.d1("d", "Ps", P, s))});
        for (const auto& [name, lhs, rhs] : identities)
            EXPECT_LE(relative(lhs, rhs), two_phase ? row.two_phase_identity : row.identity)
                << row.label << " " << st.inputspec << " " << st.a << " " << st.b << ": " << name
                << " " << lhs << " " << rhs;
    }
}

std::string row_name(const ::testing::TestParamInfo<IdentityBattery::ParamType>& info) {
    std::string name = models()[std::get<0>(info.param)].label + " " + std::get<1>(info.param);
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(Models, IdentityBattery,
                         ::testing::Combine(::testing::Range<std::size_t>(0, models().size()),
                                            ::testing::Values("PerMass", "PerMole")),
                         row_name);

} // namespace
