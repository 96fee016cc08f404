// The state-function pairs at the edges of the two-phase region of mixtures, where the starts
// estimated from Wilson's K-values fall on the wrong side of the bubble or dew line: the
// isothermal flash's states a hair inside the region (at the pressures of vapour fractions down
// to 1e-7 from either end) and a hair outside it are recomputed from (p, h), (p, s) and (v, u)
// and must return the state they came from, phase split included.
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace varimol;

namespace {

struct state {
    double T = 0, p = 0, v = 0, u = 0, h = 0, s = 0, q = 0;
    composition x{}, y{};
    int ierr = -1;
};

state call(int mode, state in) {
    double cv, a, b, c, d, e, g;
    composition lnphi;
    vm3_tmdprop(mode, in.T, in.p, in.v, in.u, in.h, in.s, in.q, cv, a, b, c, d, e, g, in.x, in.y,
                lnphi, in.ierr);
    return in;
}

void expect_same(const state& a, const state& b, int n) {
    EXPECT_NEAR(b.T, a.T, 1e-9 * a.T);
    EXPECT_NEAR(b.p, a.p, 1e-9 * a.p);
    if (a.q >= 0.0 && a.q <= 1.0)
        EXPECT_NEAR(b.q, a.q, 1e-9);
    else
        EXPECT_EQ(b.q < 0.0, a.q < 0.0) << "homogeneous on the other side: q " << b.q;
    for (int i = 0; i < n; ++i) {
        EXPECT_NEAR(b.x[i], a.x[i], 1e-9);
        EXPECT_NEAR(b.y[i], a.y[i], 1e-9);
    }
}

} // namespace

TEST(VarimolDomeEdges, PairsReturnStatesBesideTheBubbleAndDewLines) {
    const struct {
        varimol_test::mixture_recipe recipe;
        double tlo, thi; // K, within the two-phase range of the mixture
    } mixtures[] = {
        {{{"CH4", "C2H6"}, {0.6, 0.4}}, 160.0, 240.0},
        {{{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}}, 160.0, 205.0},
        {{{"CH4", "nC6"}, {0.7, 0.3}}, 250.0, 400.0},
    };
    int checked = 0;
    for (const auto& m : mixtures) {
        ASSERT_EQ(varimol_test::select(model_prsv_vdw, m.recipe), 0);
        const int n = static_cast<int>(m.recipe.names.size());
        for (int k = 0; k < 3; ++k) {
            const double T = m.tlo + k * (m.thi - m.tlo) / 2.0;
            for (double q : {1e-7, 1e-4, 0.5, 1.0 - 1e-4, 1.0 - 1e-7}) {
                state tq;
                tq.T = T, tq.q = q;
                const double p_line = call(12, tq).p;
                // the stable state by the isothermal flash at the pressure of that vapour
                // fraction, and a hair outside the line: compressed liquid or vapour
                state pt;
                pt.T = T, pt.p = p_line;
                const state ref = call(1, pt);
                pt.p = p_line * (q < 0.5 ? 1.0 + 1e-5 : 1.0 - 1e-5);
                const state out = call(1, pt);
                ASSERT_EQ(ref.ierr, 0) << "T " << T << " q " << q;
                ASSERT_EQ(out.ierr, 0);
                for (const state* s : {&ref, &out})
                    for (int mode : {9, 10, 5}) {
                        SCOPED_TRACE(::testing::Message()
                                     << m.recipe.names.size() << " components, T " << T << " q "
                                     << q << " mode " << mode << (s == &out ? " outside" : ""));
                        state in; // the pair alone, nothing else given
                        if (mode == 5)
                            in.v = s->v, in.u = s->u;
                        else
                            in.p = s->p, in.h = mode == 9 ? s->h : 0.0,
                            in.s = mode == 10 ? s->s : 0.0;
                        const state back = call(mode, in);
                        ASSERT_EQ(back.ierr, 0);
                        expect_same(*s, back, n);
                        ++checked;
                    }
            }
        }
    }
    EXPECT_EQ(checked, 3 * 3 * 5 * 2 * 3);
}
