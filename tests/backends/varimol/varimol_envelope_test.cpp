// The critical point of mixtures against the independent solution of data/varimol/reference.py,
// and the phase envelope: every traced point is a bubble or dew point, agrees with the
// back-end's own bubble and dew points, and the curve closes through the critical point.
#include "equilibrium/envelope.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <vector>

using namespace varimol;

namespace {

double rel(double a, double b) {
    return std::abs(a / b - 1.0);
}

void critical_of(const varimol_test::mixture_recipe& m, int model, double& tc, double& pc) {
    ASSERT_EQ(varimol_test::select(model, m), 0);
    double mm, tmin, tmax;
    vm3_fluidinfo(mm, tc, pc, tmin, tmax);
}

struct traced {
    int ierr = -1, n = 0;
    std::vector<double> T, p;
    std::vector<composition> x, y;
};

traced trace(int room = 1000) {
    traced t;
    t.T.resize(1000), t.p.resize(1000), t.x.resize(1000), t.y.resize(1000);
    t.n = room;
    vm3_phaseenvelope(t.n, t.T, t.p, t.x, t.y, t.ierr);
    return t;
}

bool same(const composition& a, const std::vector<double>& z) {
    for (std::size_t i = 0; i < z.size(); ++i)
        if (std::abs(a[i] - z[i]) > 1e-14) return false;
    return true;
}

} // namespace

TEST(VarimolCritical, AgreesWithTheIndependentSolution) {
    const std::map<std::string, int> models{{"PRSV", 1}, {"PR", 2}, {"SRK", 3}};
    const auto rows =
        varimol_test::read_csv(std::string(ZP_DATA_DIR) + "/varimol/critical_points.csv");
    ASSERT_GE(rows.size(), 10u);
    for (const auto& r : rows) {
        varimol_test::mixture_recipe m;
        for (int i = 1; i <= std::stoi(r.at("nc")); ++i) {
            m.names.push_back(r.at("fluid" + std::to_string(i)));
            m.x.push_back(varimol_test::num(r, "z" + std::to_string(i)));
        }
        double tc = 0.0, pc = 0.0;
        critical_of(m, models.at(r.at("model")), tc, pc);
        SCOPED_TRACE(m.names[0] + "/" + m.names[1] + " " + r.at("model"));
        EXPECT_LT(rel(tc, varimol_test::num(r, "Tc_K")), 1e-8);
        EXPECT_LT(rel(pc, varimol_test::num(r, "Pc_Pa")), 1e-8);
    }
}

TEST(VarimolCritical, BinaryTendsToThePureFluid) {
    for (const auto& [pure, other, x] :
         {std::tuple{"CH4", "C2H6", 1.0 - 1e-7}, std::tuple{"C2H6", "CH4", 1.0 - 1e-7},
          std::tuple{"N2", "O2", 1.0 - 1e-6}}) {
        double tc, pc, tc0, pc0;
        critical_of({{pure, other}, {x, 1.0 - x}}, 1, tc, pc);
        critical_of({{pure}, {1.0}}, 1, tc0, pc0);
        SCOPED_TRACE(pure);
        EXPECT_LT(rel(tc, tc0), 1e-5);
        EXPECT_LT(rel(pc, pc0), 1e-5);
        EXPECT_GT(rel(tc, tc0), 0.0); // the mixture's own point, not the pure fluid's copied
    }
}

TEST(VarimolEnvelope, ClosesAndEveryPointIsABubbleOrDewPoint) {
    struct item {
        varimol_test::mixture_recipe m;
        // compared with the back-end's bubble and dew points at the traced pressures (not for
        // the trace of n-decane, whose dew temperatures at given pressure do not converge)
        bool compare;
    };
    const std::vector<item> cases{
        {{{"CH4", "C2H6"}, {0.85, 0.15}}, true},
        {{{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}}, true},
        {{{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.90, 0.05, 0.02, 0.02, 0.01}}, true},
        {{{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}}, true},
        {{{"R32", "R125"}, {0.7, 0.3}}, true},
        {{{"R32", "R125", "R134a"}, {0.23, 0.25, 0.52}}, true},
        {{{"CH4", "C2H6", "C3H8", "nC4", "nC5", "nC6", "N2", "CO2"},
          {0.70, 0.10, 0.08, 0.05, 0.03, 0.02, 0.01, 0.01}},
         true},
        {{{"CH4", "C2H6", "C3H8", "N2", "CO2", "nC10"}, {0.8999, 0.05, 0.02, 0.02, 0.01, 1e-4}},
         false},
        {{{"CH4", "C2H6", "nC10"}, {0.8499, 0.15, 1e-4}}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.m.names.back() + " in a mixture of " + std::to_string(c.m.names.size()));
        double tc, pc;
        critical_of(c.m, 1, tc, pc);
        const traced t = trace();
        ASSERT_EQ(t.ierr, 0);
        ASSERT_GT(t.n, 15);
        EXPECT_LT(rel(t.p[0], 1e5), 1e-12);
        EXPECT_LT(rel(t.p[t.n - 1], 1e5), 1e-12);
        int ncrit = 0;
        bool dew_side = false;
        for (int k = 0; k < t.n; ++k) {
            const bool bubble = same(t.x[k], c.m.x), dew = same(t.y[k], c.m.x);
            if (bubble && dew) { // the critical point
                ++ncrit;
                dew_side = true;
                EXPECT_EQ(t.T[k], tc);
                EXPECT_EQ(t.p[k], pc);
                continue;
            }
            ASSERT_TRUE(dew_side ? dew : bubble) << "point " << k;
            // equal fugacities, the feed on its stable root and the incipient phase on its own
            double lnf = 0.0, sx = 0.0, sy = 0.0;
            std::vector<double> lx(c.m.x.size()), ly(c.m.x.size());
            {
                fluid f;
                fluid_parameters fp;
                binary_parameters bp;
                varimol_test::make_parameters(c.m, fp, bp);
                ASSERT_EQ(set_fluid(f, 1, fp, bp, int(c.m.names.size())), 0);
                temperature_terms<double> tt;
                at_temperature(f, t.T[k], tt);
                phase L, V;
                ASSERT_EQ(eval_phase(f, tt, t.p[k], t.x[k].data(),
                                     dew_side ? root_choice::liquid : root_choice::stable, L),
                          0);
                ASSERT_EQ(eval_phase(f, tt, t.p[k], t.y[k].data(),
                                     dew_side ? root_choice::stable : root_choice::vapour, V),
                          0);
                for (std::size_t i = 0; i < c.m.x.size(); ++i) {
                    lnf = std::max(lnf, std::abs(std::log(t.x[k][i]) + L.lnphi[i] -
                                                 std::log(t.y[k][i]) - V.lnphi[i]));
                    sx += t.x[k][i], sy += t.y[k][i];
                }
            }
            EXPECT_LT(lnf, 1e-10) << "point " << k;
            EXPECT_NEAR(sx, 1.0, 1e-14);
            EXPECT_NEAR(sy, 1.0, 1e-14);
            if (!c.compare || t.p[k] > 0.8 * pc) continue;
            double T = 0.0, p = t.p[k], v, u, h, s, q = dew_side ? 1.0 : 0.0, cv, a, b, d, e, g, w;
            composition x, y, lnphi;
            int ierr;
            vm3_tmdprop(11, T, p, v, u, h, s, q, cv, a, b, d, e, g, w, x, y, lnphi, ierr);
            ASSERT_EQ(ierr, 0) << "point " << k;
            EXPECT_LT(rel(T, t.T[k]), 1e-9) << "point " << k;
            for (std::size_t i = 0; i < c.m.x.size(); ++i) {
                EXPECT_NEAR(x[i], t.x[k][i], 1e-8 * t.x[k][i] + 1e-15);
                EXPECT_NEAR(y[i], t.y[k][i], 1e-8 * t.y[k][i] + 1e-15);
            }
        }
        EXPECT_EQ(ncrit, 1);
    }
}

TEST(VarimolEnvelope, CricondenbarAndCricondenthermBoundTheCurve) {
    for (const auto& m : {varimol_test::mixture_recipe{{"CH4", "C2H6"}, {0.85, 0.15}},
                          varimol_test::mixture_recipe{{"CH4", "C2H6", "C3H8", "N2", "CO2"},
                                                       {0.85, 0.06, 0.03, 0.04, 0.02}}}) {
        double tc, pc;
        critical_of(m, 1, tc, pc);
        const traced t = trace();
        ASSERT_EQ(t.ierr, 0);
        fluid f;
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters(m, fp, bp);
        ASSERT_EQ(set_fluid(f, 1, fp, bp, int(m.names.size())), 0);
        f.tcrit = tc, f.pcrit = pc;
        envelope_summary s;
        ASSERT_EQ(envelope_limits(f, s), 0);
        const double pmax = *std::max_element(t.p.begin(), t.p.begin() + t.n);
        const double tmax = *std::max_element(t.T.begin(), t.T.begin() + t.n);
        // the extremes between the traced points: above every point, and close to the highest
        EXPECT_GE(s.p_cricondenbar, pmax);
        EXPECT_GE(s.t_cricondentherm, tmax);
        EXPECT_LT(rel(s.p_cricondenbar, pmax), 0.02);
        EXPECT_LT(rel(s.t_cricondentherm, tmax), 0.01);
        EXPECT_GE(s.p_cricondenbar, pc);
        EXPECT_GE(s.t_cricondentherm, tc);
        EXPECT_TRUE(s.has_critical);
    }
}

TEST(VarimolEnvelope, RoomAndFluidErrors) {
    uninit_varimol();
    traced t = trace();
    EXPECT_EQ(t.ierr, 101);
    EXPECT_EQ(t.n, 0);
    ASSERT_EQ(varimol_test::select(1, {{"CH4"}, {1.0}}), 0);
    EXPECT_EQ(trace().ierr, 101);
    ASSERT_EQ(varimol_test::select(1, {{"CH4", "C2H6"}, {0.85, 0.15}}), 0);
    t = trace(5);
    EXPECT_EQ(t.ierr, 452);
    EXPECT_EQ(t.n, 5);
    EXPECT_LT(rel(t.p[0], 1e5), 1e-12);
    t = trace(-3);
    EXPECT_EQ(t.ierr, 452);
    EXPECT_EQ(t.n, 0);
    EXPECT_EQ(trace().ierr, 0); // usable after the errors
}

TEST(VarimolEnvelope, LocatesTheCriticalPointItPasses) {
    // the model alone, with only the pseudo-critical estimate of Kay's rule in the fluid: the
    // critical point between the two points where ln K change sign is solved from there
    for (const auto& m : {varimol_test::mixture_recipe{{"CH4", "C2H6"}, {0.5, 0.5}},
                          varimol_test::mixture_recipe{{"CH4", "C3H8"}, {0.6, 0.4}}}) {
        double tc, pc;
        critical_of(m, 1, tc, pc);
        fluid f;
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters(m, fp, bp);
        ASSERT_EQ(set_fluid(f, 1, fp, bp, 2), 0);
        ASSERT_GT(rel(f.tcrit, tc), 0.01); // far enough from the true point to need a solve
        envelope_summary s;
        ASSERT_EQ(trace_envelope(f, 1e5, nullptr, s), 0);
        ASSERT_TRUE(s.has_critical);
        EXPECT_LT(rel(s.t_crit, tc), 1e-9);
        EXPECT_LT(rel(s.p_crit, pc), 1e-9);
    }
}
