// Identities of the phase-equilibrium results for every model code: the two-phase results of the
// PT flash and of the quality points have equal fugacities, their mass balance to 1e-12 and no
// trial composition below their tangent plane; the Rachford-Rice root is exact at both ends.
#include "equilibrium/critical.hpp"
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/rachford_rice.hpp"
#include "equilibrium/saturation.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace varimol;

namespace {

fluid ternary(int model) {
    fluid_parameters fp;
    binary_parameters bp;
    varimol_test::make_parameters({{"CH4", "C3H8", "nC5"}, {0.6, 0.25, 0.15}}, fp, bp);
    const double tau[3][3] = {{0, 0.2, 0.4}, {0.1, 0, 0.1}, {0.3, 0.05, 0}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            bp[binary_index(bin_nrtl_tau, i, j)] = tau[i][j];
            bp[binary_index(bin_nrtl_alpha, i, j)] = 0.3;
            bp[binary_index(bin_ws_kij, i, j)] = i == j ? 0.0 : 0.1;
        }
    fluid f;
    EXPECT_EQ(set_fluid(f, model, fp, bp, 3), 0);
    return f;
}

// lowest tangent-plane distance against the phase (x, ln phi) over near-pure and random trials
double lowest_tpd(const fluid& f, double T, double P, const vec& x, const vec& ref,
                  std::mt19937_64& rng) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    double lowest = INFINITY;
    for (int k = 0; k < 40; ++k) {
        vec w{};
        double s = 0.0;
        for (int i = 0; i < f.n; ++i) {
            w[i] = k < f.n ? (i == k ? 1.0 : 1e-6) : std::pow(u(rng), 3.0) + 1e-9;
            s += w[i];
        }
        for (int i = 0; i < f.n; ++i) w[i] /= s;
        for (root_choice r : {root_choice::liquid, root_choice::vapour}) {
            phase ph;
            if (eval_phase(f, t, P, w.data(), r, ph)) continue;
            double tpd = 0.0;
            for (int i = 0; i < f.n; ++i)
                tpd += w[i] * (std::log(w[i]) + ph.lnphi[i] - std::log(x[i]) - ref[i]);
            lowest = std::min(lowest, tpd);
        }
    }
    return lowest;
}

void check_split(const fluid& f, double T, double P, double beta, const flash_result& r,
                 std::mt19937_64& rng) {
    for (int i = 0; i < f.n; ++i) {
        EXPECT_NEAR((1 - beta) * r.x[i] + beta * r.y[i], f.z[i], 1e-12) << "mass balance " << i;
        EXPECT_NEAR(std::log(r.y[i]) + r.vap.lnphi[i], std::log(r.x[i]) + r.liq.lnphi[i], 1e-10)
            << "fugacity " << i;
    }
    EXPECT_GE(lowest_tpd(f, T, P, r.x, r.liq.lnphi, rng), -1e-10);
}

} // namespace

TEST(VarimolEquilibrium, FlashAndQualityPointsForEveryModel) {
    std::mt19937_64 rng(7);
    for (int model : {model_prsv_vdw, model_pr_vdw, model_srk_vdw, model_prsv_ws, model_pr_ws}) {
        SCOPED_TRACE(::testing::Message() << "model " << model);
        const fluid f = ternary(model);
        int split = 0;
        for (double T : {220.0, 280.0, 310.0}) {
            SCOPED_TRACE(::testing::Message() << "T " << T);
            // bubble and dew pressures, a point inside at q = 0.3, and PT flashes between
            double pb = 1e5, pd = 1e5, pq = 1e5, t1 = T, t2 = T, t3 = T;
            flash_result rb, rd, rq;
            ASSERT_EQ(saturation_q(f, true, t1, pb, 0.0, f.z.data(), rb), 0) << T;
            ASSERT_EQ(saturation_q(f, true, t2, pd, 1.0, f.z.data(), rd), 0) << T;
            ASSERT_EQ(saturation_q(f, true, t3, pq, 0.3, f.z.data(), rq), 0) << T;
            EXPECT_GT(pb, pq);
            EXPECT_GT(pq, pd);
            check_split(f, T, pb, 0.0, rb, rng);
            check_split(f, T, pd, 1.0, rd, rng);
            check_split(f, T, pq, 0.3, rq, rng);
            // the flash at the pressure of the q = 0.3 point returns that point
            flash_result r;
            ASSERT_EQ(flash_tp(f, T, pq, f.z.data(), r), 0);
            ASSERT_EQ(r.nphase, 2);
            EXPECT_NEAR(r.beta, 0.3, 1e-9);
            // a bubble temperature at the bubble pressure (near the cricondenbar there are two)
            // has that bubble pressure
            double tb = 0.8 * T, pbb = pb;
            flash_result rt;
            ASSERT_EQ(saturation_q(f, false, tb, pbb, 0.0, f.z.data(), rt), 0);
            double pcheck = 1e5, tcheck = tb;
            ASSERT_EQ(saturation_q(f, true, tcheck, pcheck, 0.0, f.z.data(), rt), 0);
            EXPECT_NEAR(pcheck, pb, 1e-9 * pb);
            for (double s : {0.05, 0.5, 0.95}) {
                const double P = pd + s * (pb - pd);
                ASSERT_EQ(flash_tp(f, T, P, f.z.data(), r), 0);
                ASSERT_EQ(r.nphase, 2) << P;
                check_split(f, T, P, r.beta, r, rng);
                ++split;
            }
            // outside: one phase, stable
            for (double P : {0.5 * pd, 1.5 * pb}) {
                ASSERT_EQ(flash_tp(f, T, P, f.z.data(), r), 0);
                EXPECT_EQ(r.nphase, 1) << P;
                EXPECT_GE(lowest_tpd(f, T, P, r.x, r.liq.lnphi, rng), -1e-10);
            }
        }
        EXPECT_EQ(split, 9);
    }
}

TEST(VarimolEquilibrium, RachfordRiceIsExactAtBothEnds) {
    // K-values built so that the vapour fraction is known: for a chosen beta and x, z follows
    const double K[3] = {3.0, 0.8, 0.05};
    for (double beta : {1e-12, 1e-7, 0.3, 0.7, 1.0 - 1e-7, 1.0 - 1e-12}) {
        // sum x (K - 1) = 0, so that x and y = K x both add up to 1
        const double x0[3] = {0.145 / 0.845, 0.5 / 0.845, 0.2 / 0.845};
        double z[3], sx = 0.0;
        for (int i = 0; i < 3; ++i) sx += x0[i] * (1.0 + beta * (K[i] - 1.0));
        for (int i = 0; i < 3; ++i) z[i] = x0[i] * (1.0 + beta * (K[i] - 1.0)) / sx;
        double b = -1.0, x[3], y[3];
        ASSERT_EQ(rachford_rice(3, z, K, b, x, y), 0) << beta;
        // the smaller phase amount to the rounding of z, not of the sum
        if (beta < 0.5)
            EXPECT_NEAR(b, beta, 4e-16) << beta;
        else
            EXPECT_NEAR(1.0 - b, 1.0 - beta, 4e-16) << beta;
        double sy = 0.0;
        sx = 0.0;
        for (int i = 0; i < 3; ++i) sx += x[i], sy += y[i];
        EXPECT_NEAR(sx, 1.0, 1e-14);
        EXPECT_NEAR(sy, 1.0, 1e-14);
    }
    // all K above 1: vapour; all below: liquid
    const double up[2] = {1.5, 1.2}, down[2] = {0.5, 0.9}, z2[2] = {0.5, 0.5};
    double b, x[2], y[2];
    EXPECT_EQ(rachford_rice(2, z2, up, b, x, y), 1);
    EXPECT_EQ(rachford_rice(2, z2, down, b, x, y), -1);
}

TEST(VarimolEquilibrium, BubblePointsUpToTheCriticalPoint) {
    // Within a few kelvin of the mixture's critical point Wilson's K-values lead the bubble-point
    // iteration onto the trivial solution; the answer must still be the bubble point: a PT flash
    // 0.1 % below it splits the feed with a small vapour fraction, 0.1 % above it finds one phase.
    const varimol_test::mixture_recipe mixtures[] = {
        {{"CH4", "C2H6"}, {0.6, 0.4}},
        {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}}};
    for (const auto& m : mixtures) {
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters(m, fp, bp);
        fluid f;
        ASSERT_EQ(set_fluid(f, model_prsv_vdw, fp, bp, static_cast<int>(m.names.size())), 0);
        critical_state c;
        ASSERT_EQ(critical_point(f, f.z.data(), 0.0, 0.0, c), 0);
        for (double below : {15.0, 10.0, 6.0, 4.0, 3.0, 2.0, 1.5, 1.0, 0.7, 0.5, 0.3}) {
            const double T = c.T - below;
            SCOPED_TRACE(::testing::Message() << m.names.size() << " components, T " << T);
            double t = T, P = 1.0e5; // the starting pressure of the iteration
            flash_result r;
            ASSERT_EQ(saturation_q(f, true, t, P, 0.0, f.z.data(), r), 0);
            EXPECT_LT(P, c.P * 1.001);
            double lnk = 0.0;
            for (int i = 0; i < f.n; ++i) lnk = std::max(lnk, std::abs(std::log(r.y[i] / r.x[i])));
            EXPECT_GT(lnk, 1e-4); // not the trivial solution
            flash_result lo, hi;
            ASSERT_EQ(flash_tp(f, T, P * (1.0 - 1e-3), f.z.data(), lo), 0);
            ASSERT_EQ(flash_tp(f, T, P * (1.0 + 1e-3), f.z.data(), hi), 0);
            EXPECT_EQ(lo.nphase, 2);
            EXPECT_LT(lo.beta, 0.5);
            EXPECT_EQ(hi.nphase, 1);
        }
    }
}
