// Identities of the cubic model for every model code: the analytic derivatives against central
// differences of the back-end's own functions, Gibbs-Duhem on ln phi, the ideal-gas limit and the
// criticality conditions that fix the omega constants.
#include "model/cubic.hpp"
#include "model/ideal_gas.hpp"
#include "model/properties.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>

using namespace varimol;

namespace {

// A ternary with non-zero kij, and NRTL parameters for the Wong-Sandler codes.
fluid ternary(int model) {
    fluid_parameters fp;
    binary_parameters bp;
    varimol_test::make_parameters({{"CH4", "C3H8", "nC6"}, {0.5, 0.3, 0.2}}, fp, bp);
    const double tau[3][3] = {{0, 0.3, 0.8}, {-0.1, 0, 0.25}, {0.2, 0.05, 0}};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) {
            bp[binary_index(bin_kij, i, j)] = i == j ? 0.0 : 0.01 * (i + j);
            bp[binary_index(bin_nrtl_tau, i, j)] = tau[i][j];
            bp[binary_index(bin_nrtl_alpha, i, j)] = 0.3;
            bp[binary_index(bin_ws_kij, i, j)] = i == j ? 0.0 : 0.05;
        }
    fluid f;
    EXPECT_EQ(set_fluid(f, model, fp, bp, 3), 0);
    return f;
}

const int models[] = {model_prsv_vdw, model_pr_vdw, model_srk_vdw, model_prsv_ws, model_pr_ws};

// relative agreement with a scale for values crossing zero
void near(double a, double b, double rel, double scale, const char* what) {
    EXPECT_LE(std::abs(a - b), rel * (std::abs(b) + scale)) << what << ": " << a << " vs " << b;
}

} // namespace

TEST(VarimolModel, PropertyDerivativesAgreeWithCentralDifferences) {
    // (T K, v as a multiple of the covolume): compressed liquid, dense fluid, gas; T below and
    // above Tr = 0.7
    const double states[][2] = {{180.0, 1.3}, {300.0, 2.5}, {420.0, 30.0}, {250.0, 300.0}};
    for (int model : models) {
        const fluid f = ternary(model);
        for (const auto& st : states) {
            const double T = st[0];
            temperature_terms<double> tt;
            at_temperature(f, T, tt);
            mixture_terms<double> m;
            mix(f, tt, f.z.data(), m, nullptr);
            const double v = st[1] * m.B;
            SCOPED_TRACE(::testing::Message() << "model " << model << " T " << T << " v " << v);
            state_props c, tp, tm, vp, vm;
            const double ht = 1e-3 * T, hv = 1e-4 * v;
            homogeneous(f, T, v, f.z.data(), c);
            homogeneous(f, T + ht, v, f.z.data(), tp);
            homogeneous(f, T - ht, v, f.z.data(), tm);
            homogeneous(f, T, v + hv, f.z.data(), vp);
            homogeneous(f, T, v - hv, f.z.data(), vm);
            const double ps = std::abs(c.P) + 1e5;
            near(c.dpdt, (tp.P - tm.P) / (2 * ht), 1e-6, ps / T, "dpdt");
            near(c.d2pdt2, (tp.dpdt - tm.dpdt) / (2 * ht), 1e-5, ps / (T * T), "d2pdt2");
            near(c.dpdv, (vp.P - vm.P) / (2 * hv), 1e-6, ps / v, "dpdv");
            near(c.d2pdv2, (vp.dpdv - vm.dpdv) / (2 * hv), 1e-6, ps / (v * v), "d2pdv2");
            near(c.d2pdtdv, (tp.dpdv - tm.dpdv) / (2 * ht), 1e-5, ps / (v * T), "d2pdtdv");
            near(c.cv, (tp.u - tm.u) / (2 * ht), 1e-6, 1.0, "cv = du/dT");
            near(c.cv / T, (tp.s - tm.s) / (2 * ht), 1e-6, 1e-2, "cv/T = ds/dT");
            near(c.dcvdt, (tp.cv - tm.cv) / (2 * ht), 1e-5, 1e-2, "dcvdt");
            // Maxwell relation (ds/dv)_T = (dP/dT)_v and h = u + P v
            near((vp.s - vm.s) / (2 * hv), c.dpdt, 1e-6, ps / T, "Maxwell");
            near(c.h, c.u + c.P * c.v, 1e-14, 1e3, "h = u + Pv");
            // the caloric-only evaluation of the two-phase states gives the same values
            state_props k{};
            caloric(f, T, v, f.z.data(), k);
            near(k.P, c.P, 1e-14, 1e3, "caloric P");
            near(k.u, c.u, 1e-14, 1e3, "caloric u");
            near(k.s, c.s, 1e-14, 1.0, "caloric s");
            // dF/dV against the pressure: P = RT (1/v - F_V)
            double F, FT, FV;
            vec Fn{};
            residual_helmholtz(f, T, v, f.z.data(), F, FT, FV, Fn);
            near(c.P, gas_constant * T * (1.0 / v - FV), 1e-12, 1e3, "P from F_V");
        }
    }
}

TEST(VarimolModel, FugacityCoefficientsAndTheirDerivatives) {
    // (T, P, root): liquid, vapour, supercritical
    struct st { double T, P; root_choice r; } states[] = {
        {200.0, 2.0e6, root_choice::liquid}, {300.0, 1.0e6, root_choice::vapour},
        {450.0, 2.0e7, root_choice::stable}};
    for (int model : models) {
        const fluid f = ternary(model);
        for (const auto& s : states) {
            SCOPED_TRACE(::testing::Message() << "model " << model << " T " << s.T);
            const int n = f.n;
            temperature_terms<taylor<1>> t1;
            at_temperature(f, taylor<1>::variable(s.T), t1);
            temperature_terms<double> t;
            at_temperature(f, s.T, t);
            phase ph;
            mat dn{};
            vec dp{}, dt{};
            ASSERT_EQ(eval_phase_t(f, t1, s.P, f.z.data(), s.r, ph, &dn, &dp, &dt), 0);
            // Gibbs-Duhem: sum_i x_i ln phi_i = g_r and sum_i x_i d ln phi_i/dn_j = 0
            double sum = 0.0;
            for (int i = 0; i < n; ++i) sum += f.z[i] * ph.lnphi[i];
            near(sum, ph.lng, 1e-12, 1e-3, "sum x ln phi");
            for (int j = 0; j < n; ++j) {
                double gd = 0.0, sc = 0.0;
                for (int i = 0; i < n; ++i)
                    gd += f.z[i] * dn[i * mc + j], sc += std::abs(f.z[i] * dn[i * mc + j]);
                EXPECT_LE(std::abs(gd), 1e-12 * (sc + 1.0)) << "Gibbs-Duhem column " << j;
            }
            // ln phi_i = d(n g_r)/dn_i, and the composition derivatives, by central differences
            // in the amounts on the same root
            for (int j = 0; j < n; ++j) {
                const double h = 1e-6;
                vec np = f.z, nm = f.z;
                np[j] += h;
                nm[j] -= h;
                const double sp = 1.0 + h, sm = 1.0 - h;
                for (int i = 0; i < n; ++i) np[i] /= sp, nm[i] /= sm;
                phase pp, pm;
                eval_phase(f, t, s.P, np.data(), ph.smaller ? root_choice::liquid
                                                           : root_choice::vapour, pp);
                eval_phase(f, t, s.P, nm.data(), ph.smaller ? root_choice::liquid
                                                           : root_choice::vapour, pm);
                near((sp * pp.lng - sm * pm.lng) / (2 * h), ph.lnphi[j], 1e-8, 1e-2, "ln phi");
                for (int i = 0; i < n; ++i)
                    near((pp.lnphi[i] - pm.lnphi[i]) / (2 * h), dn[i * mc + j], 1e-6, 1e-2,
                         "d ln phi / dn");
            }
            // pressure and temperature derivatives
            const double hp = 1e-6 * s.P, ht = 1e-5 * s.T;
            const root_choice same = ph.smaller ? root_choice::liquid : root_choice::vapour;
            phase a, b;
            eval_phase(f, t, s.P + hp, f.z.data(), same, a);
            eval_phase(f, t, s.P - hp, f.z.data(), same, b);
            for (int i = 0; i < n; ++i)
                near((a.lnphi[i] - b.lnphi[i]) / (2 * hp), dp[i], 1e-6, 1e-3 / s.P, "dlnphi/dP");
            temperature_terms<double> ta, tb;
            at_temperature(f, s.T + ht, ta);
            at_temperature(f, s.T - ht, tb);
            eval_phase(f, ta, s.P, f.z.data(), same, a);
            eval_phase(f, tb, s.P, f.z.data(), same, b);
            for (int i = 0; i < n; ++i)
                near((a.lnphi[i] - b.lnphi[i]) / (2 * ht), dt[i], 1e-6, 1e-3 / s.T, "dlnphi/dT");
        }
    }
}

TEST(VarimolModel, IdealGasLimitAndReferenceState) {
    for (int model : models) {
        const fluid f = ternary(model);
        // at 298.15 K and a volume where the residual terms vanish, h is the ideal-gas mixture's,
        // which is 0 for every component at the reference temperature
        const double T = 298.15, v = 1e4;
        state_props p;
        homogeneous(f, T, v, f.z.data(), p);
        EXPECT_NEAR(p.P * v / (gas_constant * T), 1.0, 1e-7);
        EXPECT_NEAR(p.h, 0.0, 1e-3);
        // s of the ideal mixture at P0: only the entropy of mixing is left
        double smix = 0.0;
        for (int i = 0; i < f.n; ++i) smix -= gas_constant * f.z[i] * std::log(f.z[i]);
        const double s_at_p0 = p.s + gas_constant * std::log(p.P / reference_pressure);
        EXPECT_NEAR(s_at_p0, smix, 1e-5);
        temperature_terms<double> t;
        at_temperature(f, T, t);
        phase ph;
        eval_phase(f, t, 1.0, f.z.data(), root_choice::vapour, ph);
        for (int i = 0; i < f.n; ++i) EXPECT_NEAR(ph.lnphi[i], 0.0, 1e-5);
    }
}

TEST(VarimolModel, OmegaConstantsMakeTheCriticalPointAnInflection) {
    // a pure fluid at (Tc, Pc): the three roots meet at Zc, where dP/dv and d2P/dv2 vanish
    for (int model : {model_prsv_vdw, model_srk_vdw}) {
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters({{"C3H8"}, {1.0}}, fp, bp);
        fluid f;
        ASSERT_EQ(set_fluid(f, model, fp, bp, 1), 0);
        const double tc = f.comp[0].tc, pc = f.comp[0].pc;
        const double vc = f.eos.zc * gas_constant * tc / pc;
        state_props p;
        homogeneous(f, tc, vc, f.z.data(), p);
        EXPECT_NEAR(p.P / pc, 1.0, 1e-13);
        EXPECT_LE(std::abs(p.dpdv) * vc / pc, 1e-12);
        EXPECT_LE(std::abs(p.d2pdv2) * vc * vc / pc, 1e-11);
    }
}

TEST(VarimolModel, CubicRootsAgreeWithASignScan) {
    // (A, B) from dilute gas to compressed liquid, with three roots, one root and two roots
    // nearly merged (at a spinodal); the count of physical roots is checked against the sign
    // changes of the cubic on a fine grid above the covolume, each root against the cubic itself
    const double AB[][2] = {{1e-6, 1e-7},    {0.05, 0.004}, {0.5, 0.05}, {0.4, 0.05},
                            {0.45, 0.06},    {2.0, 0.1},    {8.0, 0.3},  {30.0, 1.2},
                            {0.457, 0.0778}, {0.3, 0.02},   {1e3, 5.0},  {0.2, 0.08}};
    for (const cubic_family* eos : {&peng_robinson, &soave_redlich_kwong}) {
        for (const auto& ab : AB) {
            const double A = ab[0], B = ab[1];
            auto cubic = [&](double Z) {
                return (Z - B) * (Z + eos->delta1 * B) * (Z + eos->delta2 * B) -
                       (Z + eos->delta1 * B) * (Z + eos->delta2 * B) + A * (Z - B);
            };
            SCOPED_TRACE(::testing::Message() << "A " << A << " B " << B);
            // sign changes on a logarithmic grid from just above B to far beyond the ideal gas
            int changes = 0;
            double prev = cubic(B * (1.0 + 1e-12));
            for (int k = 1; k <= 20000; ++k) {
                const double Z = B + std::pow(10.0, -12.0 + 14.0 * k / 20000.0) * (1.0 + B);
                const double c = cubic(Z);
                if ((c > 0.0) != (prev > 0.0)) ++changes;
                prev = c;
            }
            double zmin, zmax;
            const int n = z_roots(*eos, A, B, zmin, zmax);
            ASSERT_GE(n, 1);
            EXPECT_EQ(n, changes == 3 ? 2 : 1);
            for (double Z : {zmin, zmax}) {
                EXPECT_GT(Z, B);
                const double scale = (Z + 1.0) * (Z + 1.0) * (Z + 1.0) + A * (Z + B);
                EXPECT_LE(std::abs(cubic(Z)), 1e-14 * scale) << "Z " << Z;
            }
            EXPECT_LE(zmin, zmax);
        }
    }
}
