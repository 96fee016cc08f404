// The state-function modes at their edges: states outside the model answer their codes (and the
// next call still works); the one-phase (v, u), (v, h), (v, s) modes return the homogeneous state
// they were computed from, inside the two-phase region too.
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace varimol;

namespace {

const double not_a_number = std::numeric_limits<double>::quiet_NaN();
const double inf = std::numeric_limits<double>::infinity();

struct io {
    double T = 0, p = 0, v = 0, u = 0, h = 0, s = 0, q = 0;
    int ierr = -1;
};

io full(int mode, io in) {
    double cv, a, b, c, d, e, g;
    composition x, y, lnphi;
    vm3_tmdprop(mode, in.T, in.p, in.v, in.u, in.h, in.s, in.q, cv, a, b, c, d, e, g, x, y,
                lnphi, in.ierr);
    return in;
}

io single(int mode, io in) {
    double cv, a, b, c, d, e, g;
    vm3_tmdprop_1ph(mode, in.T, in.p, in.v, in.u, in.h, in.s, cv, a, b, c, d, e, g, in.ierr);
    return in;
}

} // namespace

TEST(VarimolStatePairs, StatesOutsideTheModelAnswerTheirCodes) {
    ASSERT_EQ(varimol_test::select(1, {{"CH4", "C2H6"}, {0.6, 0.4}}), 0);
    struct row {
        int mode;
        io in;
        int code;
    } rows[] = {
        {2, {.T = not_a_number, .v = 1e-3}, 3181},        {2, {.T = 200, .v = -1}, 3191},
        {2, {.T = 200, .v = 1e6}, 3190},         {2, {.T = 200, .v = inf}, 3190},
        {2, {.T = 200, .v = 3.3e-5}, 3191},      {3, {.T = 200, .s = not_a_number}, 3200},
        {3, {.T = 200, .s = 1e4}, 3201},         {3, {.T = 200, .s = -1e4}, 3200},
        {4, {.p = 1e6, .v = 1e3}, 3205},         {4, {.p = 1e6, .v = -1}, 3206},
        {4, {.p = -1, .v = 1e-3}, 3186},         {5, {.v = 1e9, .u = 0}, 3210},
        {5, {.v = -1, .u = 0}, 3211},            {5, {.v = 1e-3, .u = -1e7}, 3212},
        {5, {.v = 1e-3, .u = 1e8}, 3213},        {6, {.v = not_a_number, .h = 0}, 3221},
        {6, {.v = 1e-3, .h = 1e8}, 3223},        {7, {.v = 1e-3, .s = -1e4}, 3232},
        {7, {.v = 1e-3, .s = 1e4}, 3233},        {8, {.p = 1e6, .u = -1e7}, 3240},
        {8, {.p = 1e6, .u = 1e8}, 3241},         {9, {.p = 1e6, .h = -1e7}, 3245},
        {9, {.p = 1e6, .h = 1e8}, 3246},         {10, {.p = 1e6, .s = -1e4}, 3250},
        {10, {.p = 1e6, .s = 1e4}, 3251},        {13, {.h = not_a_number, .s = 0}, 3261},
        {13, {.h = 1e8, .s = 0}, 3260},          {13, {.h = 0, .s = 1e3}, 3262},
        {15, {.v = 1e-3, .q = 1.5}, 3280},       {15, {.v = 1e3, .q = 0.5}, 3281},
        {15, {.v = 1e-6, .q = 0.5}, 3282},
    };
    for (const row& r : rows) {
        const io out = full(r.mode, r.in);
        EXPECT_EQ(out.ierr, r.code) << "mode " << r.mode << " T " << r.in.T << " p " << r.in.p
                                    << " v " << r.in.v << " u " << r.in.u << " h " << r.in.h
                                    << " s " << r.in.s;
        EXPECT_EQ(out.h == -8888.8 || out.ierr == 0, true);
        // the next call works
        EXPECT_EQ(full(1, {.T = 200, .p = 3e6}).ierr, 0);
    }
}

TEST(VarimolStatePairs, OnePhaseVolumeModesReturnTheHomogeneousState) {
    ASSERT_EQ(varimol_test::select(1, {{"CH4", "C2H6"}, {0.6, 0.4}}), 0);
    // a gas, a compressed liquid, and a homogeneous (metastable) state inside the two-phase
    // region, each from (T, v); the start temperature is that of another state
    const io states[] = {single(2, {.T = 300, .v = 1e-3}), single(2, {.T = 180, .v = 4.5e-5}),
                         single(2, {.T = 200, .v = 1e-3})};
    for (const io& st : states) {
        ASSERT_EQ(st.ierr, 0);
        for (int mode : {5, 6, 7}) {
            io in{.T = 250.0, .v = st.v};
            (mode == 5 ? in.u : mode == 6 ? in.h : in.s) =
                mode == 5 ? st.u : mode == 6 ? st.h : st.s;
            const io out = single(mode, in);
            ASSERT_EQ(out.ierr, 0) << "mode " << mode << " T " << st.T;
            EXPECT_NEAR(out.T, st.T, 1e-10 * st.T) << "mode " << mode;
            EXPECT_NEAR(out.p, st.p, 1e-9 * std::abs(st.p)) << "mode " << mode;
        }
    }
    // the full equilibrium at the two-phase (T, v) differs: it splits
    const io eq = full(2, {.T = 200, .v = 1e-3});
    ASSERT_EQ(eq.ierr, 0);
    EXPECT_GT(eq.q, 0.0);
    EXPECT_LT(eq.q, 1.0);
    EXPECT_LT(eq.u, states[2].u);
}
