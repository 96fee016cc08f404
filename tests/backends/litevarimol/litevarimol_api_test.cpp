// liteVarimol against Varimol: the same fluid configured in both libraries gives the same states,
// from every pair of state variables, for mixtures of 1 to 10 components; the two libraries keep
// their fluids apart; the reduced library refuses more than 10 components and answers its own
// codes.
#include "litevarimol/litevarimol.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

const std::vector<std::string> names = {"CH4", "C2H6", "C3H8", "nC4", "iC4",
                                        "nC5", "nC6",  "N2",   "CO2", "H2S"};
const double shares[] = {0.60, 0.10, 0.07, 0.04, 0.03, 0.03, 0.02, 0.05, 0.04, 0.02};

varimol_test::mixture_recipe first(int n) {
    varimol_test::mixture_recipe m;
    double sum = 0.0;
    for (int i = 0; i < n; ++i) sum += shares[i];
    for (int i = 0; i < n; ++i) {
        m.names.push_back(names[i]);
        m.x.push_back(shares[i] / sum);
    }
    return m;
}

// configures both libraries with the same mixture; returns the lite code
int configure_both(const varimol_test::mixture_recipe& m) {
    varimol::fluid_parameters fp;
    varimol::binary_parameters bp;
    varimol_test::make_parameters(m, fp, bp);
    const int n = static_cast<int>(m.names.size());
    int ierr;
    varimol::vm3_setfluid(varimol::model_prsv_vdw, fp, bp, n, ierr);
    EXPECT_EQ(ierr, 0);
    litevarimol::fluid_parameters lfp{};
    litevarimol::binary_parameters lbp{};
    for (int k = 0; k < std::min(n, 10); ++k)
        for (int r = 0; r < 16; ++r) lfp[k * 16 + r] = fp[varimol::parameter_index(r, k)];
    for (int i = 0; i < std::min(n, 10); ++i)
        for (int j = 0; j < std::min(n, 10); ++j)
            for (int kind = 0; kind < 5; ++kind)
                lbp[(j * 10 + i) * 5 + kind] = bp[varimol::binary_index(kind, i, j)];
    double tcr, pcr;
    litevarimol::set_fluid(varimol::model_prsv_vdw, lfp, lbp, tcr, pcr,
                           static_cast<std::int16_t>(n), ierr);
    return ierr;
}

struct out {
    double v[14];
    varimol::composition x, y;
    int ierr;
};

out full(int mode, double T, double p, double v, double u, double h, double s, double q) {
    out o{{T, p, v, u, h, s, q}, {}, {}, -1};
    varimol::composition lnphi;
    double* a = o.v;
    varimol::vm3_tmdprop(mode, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10],
                         a[11], a[12], a[13], o.x, o.y, lnphi, o.ierr);
    return o;
}

out lite(int mode, double T, double p, double v, double u, double h, double s, double q) {
    out o{{T, p, v, u, h, s, q}, {}, {}, -1};
    litevarimol::composition x, y;
    double* a = o.v;
    litevarimol::litevarimolprops(mode, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9],
                                  a[10], a[11], a[12], a[13], x, y, o.ierr);
    std::copy(x.begin(), x.end(), o.x.begin());
    std::copy(y.begin(), y.end(), o.y.begin());
    return o;
}

double deviation(const out& a, const out& b) {
    double d = 0.0;
    for (int k = 0; k < 14; ++k)
        d = std::max(d, std::abs(a.v[k] - b.v[k]) / std::max(1.0, std::abs(a.v[k])));
    for (int i = 0; i < 20; ++i)
        d = std::max({d, std::abs(a.x[i] - b.x[i]), std::abs(a.y[i] - b.y[i])});
    return d;
}

} // namespace

TEST(LiteVarimol, SameStatesAsVarimolForUpToTenComponents) {
    int compared = 0;
    for (int n = 1; n <= 10; ++n) {
        ASSERT_EQ(configure_both(first(n)), 0) << n;
        double mm, tc, pc, tmin, tmax;
        varimol::vm3_fluidinfo(mm, tc, pc, tmin, tmax);
        EXPECT_EQ(litevarimol::wmol(), mm);
        // a two-phase state (or the liquid of the pure fluid), a gas and a dense state
        for (auto [T, p] : {std::pair{180.0, 2.0e6}, {300.0, 5.0e5}, {250.0, 2.0e7}}) {
            const out ref = full(1, T, p, 0, 0, 0, 0, 0);
            ASSERT_EQ(ref.ierr, 0) << n << " components at " << T << " K";
            const double* r = ref.v;
            const int modes[][8] = {
                {1, 1, 1, 0, 0, 0, 0, 0},  {2, 1, 0, 1, 0, 0, 0, 0},  {3, 1, 0, 0, 0, 0, 1, 0},
                {4, 0, 1, 1, 0, 0, 0, 0},  {5, 0, 0, 1, 1, 0, 0, 0},  {9, 0, 1, 0, 0, 1, 0, 0},
                {10, 0, 1, 0, 0, 0, 1, 0}, {13, 0, 0, 0, 0, 1, 1, 0}, {12, 1, 0, 0, 0, 0, 0, 1}};
            for (const auto& m : modes) {
                auto pick = [&](int k) { return m[k + 1] ? r[k] : 0.0; };
                const double q = m[0] == 12 ? 0.5 : 0.0;
                const out a = full(m[0], pick(0), pick(1), pick(2), pick(3), pick(4), pick(5), q);
                const out b = lite(m[0], pick(0), pick(1), pick(2), pick(3), pick(4), pick(5), q);
                EXPECT_EQ(a.ierr == 0, b.ierr == 0) << "mode " << m[0] << ", " << n;
                if (a.ierr != 0) continue;
                EXPECT_LE(deviation(a, b), 1e-12) << "mode " << m[0] << ", " << n << " components";
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 200);
}

TEST(LiteVarimol, KeepsItsOwnFluidAndAnswersItsOwnCodes) {
    // eleven components are refused, the fluid configured before stays
    ASSERT_EQ(configure_both(first(3)), 0);
    varimol_test::mixture_recipe eleven = first(10);
    eleven.names.push_back("nC7");
    for (double& x : eleven.x) x *= 0.99;
    eleven.x.push_back(0.01);
    litevarimol::fluid_parameters lfp{};
    litevarimol::binary_parameters lbp{};
    double tcr, pcr;
    int ierr;
    litevarimol::set_fluid(1, lfp, lbp, tcr, pcr, 11, ierr);
    EXPECT_EQ(ierr, 101);
    EXPECT_LE(deviation(full(1, 200, 1e6, 0, 0, 0, 0, 0), lite(1, 200, 1e6, 0, 0, 0, 0, 0)), 0.0);
    // Varimol reconfigured alone: liteVarimol keeps the ternary
    ASSERT_EQ(varimol_test::select(1, first(1)), 0);
    const out a = full(1, 200, 1e6, 0, 0, 0, 0, 0), b = lite(1, 200, 1e6, 0, 0, 0, 0, 0);
    ASSERT_EQ(a.ierr, 0);
    ASSERT_EQ(b.ierr, 0);
    EXPECT_GT(std::abs(a.v[2] / b.v[2] - 1.0), 1e-3);
    // codes of the reduced table
    struct row {
        int mode;
        double T, p, v, q;
        int code;
    } rows[] = {
        {1, 5000.0, 1e6, 0, 0, 158}, {1, 10.0, 1e6, 0, 0, 159},  {1, 200.0, 2e8, 0, 0, 166},
        {1, 200.0, -1.0, 0, 0, 155}, {2, 200.0, 0, 1e6, 0, 167}, {12, 200.0, 0, 0, 1.5, 200},
        {11, 0, 1e6, 0, -1.0, 120},  {15, 0, 0, 1e-3, 2.0, 201}, {4, 0, 1e6, 1e3, 0, 171},
    };
    for (const row& r : rows)
        EXPECT_EQ(lite(r.mode, r.T, r.p, r.v, 0, 0, 0, r.q).ierr, r.code) << "mode " << r.mode;
    // the critical point: exact for a pure fluid; for a mixture the core's solver or code 110
    ASSERT_EQ(configure_both(first(1)), 0);
    litevarimol::calc_critpoint(tcr, pcr, ierr);
    EXPECT_EQ(ierr, 0);
    double mm, tc, pc, tmin, tmax, pmax;
    varimol::vm3_fluidinfo(mm, tc, pc, tmin, tmax);
    EXPECT_EQ(tcr, tc);
    EXPECT_EQ(pcr, pc);
    EXPECT_EQ(lite(12, 0.999 * tc, 0, 0, 0, 0, 0, 0.5).ierr, 0);
    EXPECT_EQ(lite(12, 1.001 * tc, 0, 0, 0, 0, 0, 0.5).ierr, 163);
    litevarimol::ptminmax(tmin, tmax, pmax);
    EXPECT_EQ(pmax, 1e8);
    EXPECT_LT(tmin, tmax);
    ASSERT_EQ(configure_both(first(4)), 0);
    litevarimol::calc_critpoint(tcr, pcr, ierr);
    varimol::vm3_fluidinfo(mm, tc, pc, tmin, tmax);
    EXPECT_TRUE(ierr == 110 || (ierr == 0 && tcr == tc && pcr == pc)) << ierr;
    litevarimol::uninit_litevarimol();
    EXPECT_EQ(litevarimol::wmol(), 0.0);
    EXPECT_EQ(lite(1, 200, 1e6, 0, 0, 0, 0, 0).ierr, 101);
    EXPECT_EQ(full(1, 200, 1e6, 0, 0, 0, 0, 0).ierr, 0); // Varimol still configured
}
