// Feeds a little inside the bubble and dew lines must be found unstable (the trial phase
// reported being the model's own at its composition) and split by the flash; feeds a little
// outside are stable.
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/saturation.hpp"
#include "equilibrium/stability.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace varimol;

TEST(VarimolStability, FeedsAcrossTheSaturationLines) {
    // mixture, lowest temperature (K)
    const std::pair<varimol_test::mixture_recipe, double> cases[] = {
        {{{"CH4", "C2H6"}, {0.6, 0.4}}, 160.0},
        {{{"CH4", "nC6"}, {0.7, 0.3}}, 220.0},
        {{{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}}, 160.0}};
    for (const auto& [m, tlo] : cases) {
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters(m, fp, bp);
        fluid f;
        ASSERT_EQ(set_fluid(f, model_prsv_vdw, fp, bp, int(m.names.size())), 0);
        for (double T : {tlo, tlo + 20.0, tlo + 40.0}) {
            double Tb = T, pb = 1e5, Td = T, pd = 1e5;
            flash_result fr;
            ASSERT_EQ(saturation_q(f, true, Tb, pb, 0.0, f.z.data(), fr), 0);
            ASSERT_EQ(saturation_q(f, true, Td, pd, 1.0, f.z.data(), fr), 0);
            temperature_terms<double> t;
            at_temperature(f, T, t);
            for (double e : {1e-2, 1e-4, 1e-6})
                for (double P : {pd * (1 + e), pb * (1 - e), pd * (1 - e), pb * (1 + e)}) {
                    const bool inside = P > pd && P < pb;
                    SCOPED_TRACE(m.names[1] + " T " + std::to_string(T) + " P " +
                                 std::to_string(P));
                    phase zp, wp;
                    stability_result st;
                    ASSERT_EQ(eval_phase(f, t, P, f.z.data(), root_choice::stable, zp), 0);
                    ASSERT_EQ(stability(f, t, P, f.z.data(), zp, st), 0);
                    ASSERT_EQ(flash_tp(f, T, P, f.z.data(), fr), 0);
                    EXPECT_EQ(st.stable, !inside);
                    EXPECT_EQ(fr.nphase, inside ? 2 : 1);
                    if (st.stable) continue;
                    ASSERT_EQ(eval_phase(f, t, P, st.w.data(), root_choice::stable, wp), 0);
                    double tpd = 0.0;
                    for (int i = 0; i < f.n; ++i) {
                        EXPECT_NEAR(st.lnphi_w[i], wp.lnphi[i], 1e-12);
                        tpd += st.w[i] * (std::log(st.w[i] / f.z[i]) + wp.lnphi[i] - zp.lnphi[i]);
                    }
                    EXPECT_NEAR(st.tpd, tpd, 1e-12 + 1e-9 * std::abs(tpd));
                }
        }
    }
}
