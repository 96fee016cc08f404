// The simultaneous Newton iteration of the two-phase state-function flashes: from a split at
// another temperature and pressure it returns the PT flash's state whose h, s, u or v it was
// given, for every model code; where the given state is not two-phase it reports failure, so
// that the nested search answers.
#include "equilibrium/flash_newton.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace varimol;

namespace {

fluid ternary(int model) {
    fluid_parameters fp;
    binary_parameters bp;
    varimol_test::make_parameters({{"CH4", "C3H8", "nC5"}, {0.6, 0.25, 0.15}}, fp, bp);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            bp[binary_index(bin_nrtl_alpha, i, j)] = 0.3;
            bp[binary_index(bin_ws_kij, i, j)] = i == j ? 0.0 : 0.1;
        }
    fluid f;
    EXPECT_EQ(set_fluid(f, model, fp, bp, 3), 0);
    return f;
}

} // namespace

TEST(VarimolTwoPhaseNewton, ReturnsTheFlashStateOfTheGivenProperties) {
    struct row {
        bool free_t, free_p;
        given first, second;
    } rows[] = {{true, false, given::h, given::v},
                {true, false, given::s, given::v},
                {false, true, given::v, given::v},
                {true, true, given::u, given::v},
                {true, true, given::s, given::v}};
    int checked = 0;
    for (int model : {model_prsv_vdw, model_pr_vdw, model_srk_vdw, model_prsv_ws, model_pr_ws}) {
        SCOPED_TRACE(::testing::Message() << "model " << model);
        const fluid f = ternary(model);
        for (double T : {250.0, 300.0, 340.0})
            for (double P : {5e5, 2e6, 5e6}) {
                eq_state ref, start;
                ASSERT_EQ(state_tp(f, T, P, ref), 0);
                if (ref.fr.nphase != 2) continue;
                // the start: the split at a temperature and pressure away from the answer
                if (state_tp(f, 0.97 * T, 0.8 * P, start) != 0 || start.fr.nphase != 2) continue;
                for (const row& r : rows) {
                    SCOPED_TRACE(::testing::Message() << "T " << T << " P " << P << " given "
                                                      << int(r.first) << (r.free_p ? " P" : ""));
                    two_phase_target target{r.free_t, r.free_p,
                                            r.first,  given_value(ref, r.first),
                                            r.second, given_value(ref, r.second)};
                    // a given T or P is the start's
                    eq_state from = start;
                    if (!r.free_t || !r.free_p)
                        ASSERT_EQ(
                            state_tp(f, r.free_t ? 0.97 * T : T, r.free_p ? 0.8 * P : P, from), 0);
                    if (from.fr.nphase != 2) continue;
                    eq_state st;
                    ASSERT_EQ(two_phase_newton(f, target, from, st), 0);
                    EXPECT_NEAR(st.T, T, 1e-10 * T);
                    EXPECT_NEAR(st.P, P, 1e-9 * P);
                    EXPECT_NEAR(st.q, ref.q, 1e-9);
                    for (int i = 0; i < f.n; ++i) {
                        EXPECT_NEAR(st.fr.x[i], ref.fr.x[i], 1e-9);
                        EXPECT_NEAR(st.fr.y[i], ref.fr.y[i], 1e-9);
                    }
                    EXPECT_LT(st.fr.tpd, 0.0); // the split lowers the Gibbs energy of the feed
                    ++checked;
                }
            }
    }
    EXPECT_GE(checked, 150); // the grid holds that many two-phase cases
}

TEST(VarimolTwoPhaseNewton, OneSpecifiedPhaseIsLeftToTheNestedSearch) {
    const fluid f = ternary(model_pr_vdw);
    eq_state start, gas, liquid, st;
    ASSERT_EQ(state_tp(f, 300.0, 2e6, start), 0);
    ASSERT_EQ(start.fr.nphase, 2);
    ASSERT_EQ(state_tp(f, 450.0, 2e6, gas), 0);
    ASSERT_EQ(gas.fr.nphase, 1);
    ASSERT_EQ(state_tp(f, 150.0, 2e6, liquid), 0);
    ASSERT_EQ(liquid.fr.nphase, 1);
    // enthalpies of homogeneous states at the same pressure: the iteration leaves the region
    for (const eq_state* one : {&gas, &liquid}) {
        const two_phase_target target{true, false, given::h, one->h, given::v, 0.0};
        EXPECT_NE(two_phase_newton(f, target, start, st), 0);
    }
    // a homogeneous start is no start
    const two_phase_target target{true, false, given::h, start.h, given::v, 0.0};
    EXPECT_NE(two_phase_newton(f, target, gas, st), 0);
}
