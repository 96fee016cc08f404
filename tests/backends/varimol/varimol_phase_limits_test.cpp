// The edges of the two-phase region: pure-fluid saturation up to the critical point, the codes of
// points of given vapour fraction beyond the envelope of a mixture, and envelopes of gases with
// a heavy component that pass three-phase points.
#include "equilibrium/envelope.hpp"
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/saturation.hpp"
#include "equilibrium/stability.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using namespace varimol;

namespace {

fluid make(int model, const varimol_test::mixture_recipe& m) {
    fluid_parameters fp;
    binary_parameters bp;
    varimol_test::make_parameters(m, fp, bp);
    fluid f;
    EXPECT_EQ(set_fluid(f, model, fp, bp, int(m.names.size())), 0);
    return f;
}

struct state {
    double T = 0, p = 0, v = 0, u = 0, h = 0, s = 0, q = 0, cv, a, b, c, d, e, g;
    composition x{}, y{}, lnphi{};
    int ierr = -1;
};

state tmd(int mode, double T, double p, double q) {
    state r;
    r.T = T, r.p = p, r.q = q;
    vm3_tmdprop(mode, r.T, r.p, r.v, r.u, r.h, r.s, r.q, r.cv, r.a, r.b, r.c, r.d, r.e, r.g, r.x,
                r.y, r.lnphi, r.ierr);
    return r;
}

// largest |ln f_i(a) - ln f_i(b)| of two phases at (T, P) on the given roots
double fugacity_gap(const fluid& f, double T, double P, const double* a, root_choice ra,
                    const double* b, root_choice rb) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase A, B;
    if (eval_phase(f, t, P, a, ra, A) || eval_phase(f, t, P, b, rb, B)) return INFINITY;
    double gap = 0.0;
    for (int i = 0; i < f.n; ++i)
        gap = std::max(gap, std::abs(std::log(a[i]) + A.lnphi[i] - std::log(b[i]) - B.lnphi[i]));
    return gap;
}

// lowest tangent-plane distance of the feed at (T, P)
double feed_tpd(const fluid& f, double T, double P) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase ph;
    stability_result sr;
    if (eval_phase(f, t, P, f.z.data(), root_choice::stable, ph) ||
        stability(f, t, P, f.z.data(), ph, sr))
        return -INFINITY;
    return sr.tpd;
}

} // namespace

TEST(VarimolPhaseLimits, PureSaturationIsExactUpToTheCriticalPoint) {
    for (int model : {1, 2, 3})
        for (const char* name : {"CH4", "CO2", "nC6", "H2O"}) {
            const fluid f = make(model, {{name}, {1.0}});
            const component& c = f.comp[0];
            for (double r : {0.999, 0.9999, 1.0 - 1e-6, 1.0 - 1e-9}) {
                SCOPED_TRACE(std::string(name) + " model " + std::to_string(model) +
                             " 1 - r = " + std::to_string(1.0 - r));
                double T = 0.0, P = 0.0;
                phase l, v;
                ASSERT_EQ(pure_saturation_temperature(f, r * c.pc, T, l, v), 0);
                ASSERT_EQ(pure_saturation_pressure(f, T, P, l, v), 0);
                // round trip within the conditioning of the curve there
                EXPECT_LT(std::abs(P / (r * c.pc) - 1.0), 1e-11);
                EXPECT_LT(T, c.tc);
                // two roots around the critical volume, at equal fugacity
                EXPECT_LE(l.v, f.vcrit);
                EXPECT_GE(v.v, f.vcrit);
                EXPECT_LT(std::abs(l.lnphi[0] - v.lnphi[0]), 1e-12);
            }
        }
    // the entry points at 0.999 Pc of methane agree with each other
    ASSERT_EQ(varimol_test::select(1, {{"CH4"}, {1.0}}), 0);
    const state pq = tmd(11, 0.0, 0.999 * 4599200.0, 0.5);
    ASSERT_EQ(pq.ierr, 0);
    const state tq = tmd(12, pq.T, 0.0, 0.5);
    ASSERT_EQ(tq.ierr, 0);
    EXPECT_LT(std::abs(tq.p / pq.p - 1.0), 1e-11);
    EXPECT_GT(pq.T, 190.5); // the saturation temperature, not a point 0.1 K below it
}

TEST(VarimolPhaseLimits, QualityPointsBeyondTheEnvelopeAnswerTheirCodes) {
    for (const auto& m : {varimol_test::mixture_recipe{{"CH4", "C2H6"}, {0.85, 0.15}},
                          varimol_test::mixture_recipe{{"CH4", "C2H6", "C3H8", "N2", "CO2"},
                                                       {0.85, 0.06, 0.03, 0.04, 0.02}}}) {
        SCOPED_TRACE(m.names.size());
        ASSERT_EQ(varimol_test::select(1, m), 0);
        double mm, tc, pc, tmin, tmax;
        vm3_fluidinfo(mm, tc, pc, tmin, tmax);
        fluid f = make(1, m);
        f.tcrit = tc, f.pcrit = pc;
        envelope_summary s;
        ASSERT_EQ(envelope_limits(f, s), 0);
        ASSERT_GT(s.p_cricondenbar, 1.005 * pc); // lean gases: a retrograde dew branch
        for (double q : {0.0, 0.5, 1.0}) {
            EXPECT_EQ(tmd(11, 0.0, 1.001 * s.p_cricondenbar, q).ierr, 3271);
            EXPECT_EQ(tmd(12, 1.001 * s.t_cricondentherm, 0.0, q).ierr, 3276);
        }
        // between the critical point and the cricondenbar the dew line exists, the bubble line
        // and the line of q = 0.5 do not: a PT scan across that isobar never reaches them
        const double pm = 0.5 * (pc + s.p_cricondenbar);
        const state dew = tmd(11, 0.0, pm, 1.0);
        ASSERT_EQ(dew.ierr, 0);
        EXPECT_LT(fugacity_gap(f, dew.T, pm, dew.x.data(), root_choice::liquid, f.z.data(),
                               root_choice::vapour),
                  1e-10);
        double qmin = 2.0;
        for (double T = 0.9 * tc; T < s.t_cricondentherm; T += 0.002 * tc) {
            const state pt = tmd(1, T, pm, 0.0);
            if (pt.ierr == 0 && pt.q >= 0.0 && pt.q <= 1.0) qmin = std::min(qmin, pt.q);
        }
        ASSERT_LT(qmin, 1.0);
        for (double q : {0.0, 0.5 * qmin}) EXPECT_EQ(tmd(11, 0.0, pm, q).ierr, 3271) << q;
        EXPECT_EQ(tmd(12, 0.5 * (tc + s.t_cricondentherm), 0.0, 0.0).ierr, 3276);
        EXPECT_EQ(tmd(12, 0.5 * (tc + s.t_cricondentherm), 0.0, 1.0).ierr, 0);
        EXPECT_EQ(tmd(11, 0.0, 0.5 * pc, 0.5).ierr, 0); // usable after the codes
    }
}

TEST(VarimolPhaseLimits, QualityPointsCloseBelowTheCriticalPointConverge) {
    for (const auto& m :
         {varimol_test::mixture_recipe{{"CH4", "C2H6"}, {0.85, 0.15}},
          varimol_test::mixture_recipe{{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}},
          varimol_test::mixture_recipe{{"CH4", "C3H8"}, {0.5, 0.5}}}) {
        ASSERT_EQ(varimol_test::select(1, m), 0);
        const fluid f = make(1, m);
        double mm, tc, pc, tmin, tmax;
        vm3_fluidinfo(mm, tc, pc, tmin, tmax);
        for (double r : {0.95, 0.98, 0.99})
            for (double q : {0.0, 0.25, 0.5, 0.75, 1.0})
                for (int mode : {11, 12}) {
                    SCOPED_TRACE(m.names[1] + " mode " + std::to_string(mode) + " r " +
                                 std::to_string(r) + " q " + std::to_string(q));
                    const state st = mode == 11 ? tmd(11, 0.0, r * pc, q) : tmd(12, r * tc, 0.0, q);
                    ASSERT_EQ(st.ierr, 0);
                    // the phases coexist on the mass balance, and the flash of the state returns
                    // its vapour fraction
                    EXPECT_LT(fugacity_gap(f, st.T, st.p, st.x.data(), root_choice::liquid,
                                           st.y.data(), root_choice::vapour),
                              1e-9);
                    double gap = 0.0;
                    for (int i = 0; i < int(m.names.size()); ++i)
                        gap = std::max(gap, std::abs((1.0 - q) * st.x[i] + q * st.y[i] - m.x[i]));
                    EXPECT_LT(gap, 1e-9);
                    if (q == 0.0 || q == 1.0) continue;
                    const state pt = tmd(1, st.T, st.p, 0.0);
                    ASSERT_EQ(pt.ierr, 0);
                    EXPECT_NEAR(pt.q, q, 1e-8);
                }
    }
}

TEST(VarimolPhaseLimits, EnvelopesWithHeavyComponentsBoundTheSinglePhaseRegion) {
    struct item {
        varimol_test::mixture_recipe m;
        int ierr;        // 450: a liquid-liquid boundary that rises to the model's Pmax
        int three_phase; // three-phase points passed
    };
    const std::vector<item> cases{
        {{{"CH4", "nC6"}, {0.98, 0.02}}, 0, 1},  {{{"CH4", "nC6"}, {0.99, 0.01}}, 0, 1},
        {{{"CH4", "nC5"}, {0.99, 0.01}}, 0, 1},  {{{"CH4", "nC10"}, {0.99, 0.01}}, 450, 0},
        {{{"CO2", "C3H8"}, {0.5, 0.5}}, 450, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.m.names[1]);
        ASSERT_EQ(varimol_test::select(1, c.m), 0);
        const fluid f = make(1, c.m);
        std::vector<double> T(1000), p(1000);
        std::vector<composition> x(1000), y(1000);
        int n = 1000, ierr = -1;
        vm3_phaseenvelope(n, T, p, x, y, ierr);
        EXPECT_EQ(ierr, c.ierr);
        ASSERT_GT(n, 20);
        EXPECT_LT(std::abs(p[n - 1] / 1e5 - 1.0), 1e-12); // ends on the dew point at 1 bar
        if (c.ierr == 0) EXPECT_LT(std::abs(p[0] / 1e5 - 1.0), 1e-12);
        if (c.ierr == 450) EXPECT_GT(p[0], 0.5 * f.pmax);
        int found = 0;
        const double* last = nullptr;
        for (int k = 0; k < n; ++k) {
            SCOPED_TRACE(k);
            // the feed is stable at every point of the curve
            EXPECT_GT(feed_tpd(f, T[k], p[k]), -1e-9);
            const bool bubble_form = std::abs(x[k][0] - c.m.x[0]) < 1e-14;
            const double* feed = bubble_form ? x[k].data() : y[k].data();
            const double* incipient = bubble_form ? y[k].data() : x[k].data();
            // the incipient phase is in equilibrium with the feed, on one of its roots
            const double gap = std::min(fugacity_gap(f, T[k], p[k], feed, root_choice::stable,
                                                     incipient, root_choice::liquid),
                                        fugacity_gap(f, T[k], p[k], feed, root_choice::stable,
                                                     incipient, root_choice::vapour));
            EXPECT_LT(gap, 1e-10);
            if (k > 0 && p[k] == p[k - 1]) {
                // a three-phase point, listed with each incipient phase: both coexist with the
                // feed at one temperature, and they are different phases
                ++found;
                EXPECT_LT(std::abs(T[k] / T[k - 1] - 1.0), 1e-9);
                EXPECT_GT(std::abs(incipient[0] - last[0]), 1e-3);
            }
            last = incipient;
        }
        EXPECT_EQ(found, c.three_phase);
    }
}
