// Seeded grid of PT states over the two-phase region, its edges and the near-critical zone of
// five mixtures: every flash either converges to a result that passes the checks (mass balance,
// equal fugacities, no trial composition below the tangent plane of the result) or returns a
// documented code. The counts are printed.
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/saturation.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

using namespace varimol;

namespace {

struct mixture_case {
    const char* name;
    varimol_test::mixture_recipe recipe;
    double tlo; // K, lower end of the scanned temperatures
};

const mixture_case cases[] = {
    {"CH4/nC6", {{"CH4", "nC6"}, {0.7, 0.3}}, 200.0},
    {"lean gas", {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.90, 0.05, 0.02, 0.02, 0.01}}, 140.0},
    {"rich gas",
     {{"CH4", "C2H6", "C3H8", "nC4", "nC5", "nC6", "N2", "CO2"},
      {0.70, 0.10, 0.08, 0.05, 0.03, 0.02, 0.01, 0.01}},
     150.0},
    {"R32/R125", {{"R32", "R125"}, {0.7, 0.3}}, 200.0},
    {"air", {{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}}, 85.0},
};

// lowest tangent-plane distance of random and near-pure trial compositions against the phase of
// composition x with ln phi `ref` at (T, P): an independent, brute-force check of stability
double lowest_tpd(const fluid& f, const temperature_terms<double>& t, double P, const vec& x,
                  const vec& ref, std::mt19937_64& rng, int trials) {
    const int n = f.n;
    std::uniform_real_distribution<double> u(0.0, 1.0);
    double lowest = INFINITY;
    vec w{};
    for (int k = 0; k < trials; ++k) {
        double s = 0.0;
        for (int i = 0; i < n; ++i) {
            if (k < n)
                w[i] = i == k ? 1.0 : 1e-6; // near-pure trials first
            else
                w[i] = std::pow(u(rng), 3.0) + 1e-9;
            s += w[i];
        }
        for (int i = 0; i < n; ++i) w[i] /= s;
        for (root_choice r : {root_choice::liquid, root_choice::vapour}) {
            phase ph;
            if (eval_phase(f, t, P, w.data(), r, ph)) continue;
            double tpd = 0.0;
            for (int i = 0; i < n; ++i)
                tpd += w[i] * (std::log(w[i]) + ph.lnphi[i] - std::log(x[i]) - ref[i]);
            lowest = std::min(lowest, tpd);
        }
    }
    return lowest;
}

bool documented(int code) {
    return code == 441 || code == 446 || code == 109;
}

} // namespace

TEST(VarimolFlashGrid, TenThousandStatesConvergeOrAnswerACode) {
    std::mt19937_64 rng(20261123);
    std::uniform_real_distribution<double> u(0.0, 1.0);
    int total = 0, two_phase = 0, one_phase = 0, coded = 0, wrong = 0;
    for (const mixture_case& mcase : cases) {
        fluid_parameters fp;
        binary_parameters bp;
        varimol_test::make_parameters(mcase.recipe, fp, bp);
        fluid f;
        ASSERT_EQ(set_fluid(f, model_prsv_vdw, fp, bp, static_cast<int>(mcase.recipe.x.size())), 0);
        // bubble and dew pressures along the temperature scale, up to where they stop
        struct sat_point {
            double T, pb, pd;
        };
        std::vector<sat_point> line;
        for (double T = mcase.tlo;; T += 2.0) {
            double Tb = T, pb = 1e5, Td = T, pd = 1e5;
            flash_result r;
            const int eb = saturation_q(f, true, Tb, pb, 0.0, f.z.data(), r);
            const int ed = saturation_q(f, true, Td, pd, 1.0, f.z.data(), r);
            if (eb || ed || pb <= pd * (1 + 1e-6)) break;
            line.push_back({T, pb, pd});
            if (T > 2000.0) break;
        }
        ASSERT_GE(line.size(), 3u) << mcase.name;
        const sat_point top = line.back();
        int local_total = 0, local_coded = 0;
        for (int k = 0; k < 2000; ++k) {
            double T, P;
            const int zone = k % 4;
            const sat_point& s = line[static_cast<std::size_t>(u(rng) * (line.size() - 1))];
            if (zone == 0 || zone == 1) { // inside the two-phase region
                T = s.T;
                P = s.pd + u(rng) * (s.pb - s.pd);
            } else if (zone == 2) { // on either side of the bubble or dew line, 1e-9 to 1e-2
                T = s.T;
                const double eps = std::pow(10.0, -9.0 + 7.0 * u(rng)) * (u(rng) < 0.5 ? -1 : 1);
                P = (u(rng) < 0.5 ? s.pb : s.pd) * (1.0 + eps);
            } else { // around the highest temperature where both lines were found
                T = top.T * (1.0 + 0.04 * (u(rng) - 0.3));
                P = 0.5 * (top.pb + top.pd) * (1.0 + 0.3 * (u(rng) - 0.5));
            }
            ++total;
            ++local_total;
            flash_result r;
            const int e = flash_tp(f, T, P, f.z.data(), r);
            if (e != 0) {
                if (std::getenv("VARIMOL_GRID_VERBOSE"))
                    std::printf("  code %d zone %d: %s T %.17g P %.17g\n", e, zone, mcase.name, T,
                                P);
                ++coded;
                ++local_coded;
                if (!documented(e)) ++wrong;
                continue;
            }
            temperature_terms<double> t;
            at_temperature(f, T, t);
            bool ok = true;
            if (r.nphase == 2) {
                ++two_phase;
                double mb = 0.0, fug = 0.0;
                for (int i = 0; i < f.n; ++i) {
                    mb = std::max(mb, std::abs((1 - r.beta) * r.x[i] + r.beta * r.y[i] - f.z[i]));
                    fug = std::max(fug, std::abs(std::log(r.y[i]) + r.vap.lnphi[i] -
                                                 std::log(r.x[i]) - r.liq.lnphi[i]));
                }
                ok = mb <= 1e-12 && fug <= 1e-9 && r.beta > 0.0 && r.beta < 1.0;
                ok = ok && lowest_tpd(f, t, P, r.x, r.liq.lnphi, rng, 12) >= -1e-10;
            } else {
                ++one_phase;
                ok = lowest_tpd(f, t, P, f.z, r.liq.lnphi, rng, 12) >= -1e-10;
            }
            if (!ok) {
                ++wrong;
                if (wrong < 10)
                    std::printf("  %s: T %.10g K, P %.10g Pa, %d phases, beta %.6g\n", mcase.name,
                                T, P, r.nphase, r.beta);
            }
        }
        std::printf("%-9s: %d states, %d with a code; bubble/dew lines to %.1f K\n", mcase.name,
                    local_total, local_coded, top.T);
    }
    std::printf("grid: %d states, %d two-phase, %d one-phase, %d with a code, %d wrong\n", total,
                two_phase, one_phase, coded, wrong);
    EXPECT_EQ(total, 10000);
    EXPECT_EQ(wrong, 0);
}
