#include "equilibrium/stability.hpp"

#include "equilibrium/linear.hpp"

#include <algorithm>
#include <cmath>

namespace varimol {

void wilson_k(const fluid& f, double T, double P, double* lnk) {
    const double lnp = std::log(P);
    for (int i = 0; i < f.n; ++i) {
        const component& c = f.comp[i];
        lnk[i] = (c.ln_pc - lnp) + 5.373 * (1.0 + c.acentric) * (1.0 - c.tc / T);
    }
}

namespace {

constexpr double unstable_below = -1e-10;

// Only the first n entries of the arrays are used (and set) for n components.
struct trial_outcome {
    double tpd;   // -ln(sum W) at the stationary point (0 for the trivial solution)
    bool trivial;
    bool converged;
    vec w;
    vec lnphi;
    double v;
};

// One trial from the amounts W (in: starting values as ln W, overwritten).
void run_trial(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
               const double* lnz, const double* d, const phase& zphase, vec& lnw,
               trial_outcome& o) {
    const int n = f.n;
    o.tpd = 0.0;
    o.trivial = false;
    o.converged = false;
    phase ph;
    vec w, g, gold, W;
    double sumw = 0.0;
    // the phase, W and w describe the current ln W (a trial that stops where it was last
    // evaluated needs no further evaluation)
    bool fresh = false;
    auto evaluate = [&](bool, mat* dn) {
        fresh = true;
        sumw = 0.0;
        for (int i = 0; i < n; ++i) {
            W[i] = std::exp(lnw[i]);
            sumw += W[i];
        }
        for (int i = 0; i < n; ++i) w[i] = W[i] / sumw;
        return eval_phase(f, t, P, w.data(), root_choice::stable, ph, dn, nullptr);
    };
    // Near the trivial solution tm(W) is a positive quadratic form in W - z, a fixed multiple of
    // beta = sum (W_i - z_i)(ln W_i - ln z_i) along the direction of approach (Michelsen and
    // Mollerup, ch. 9): a trial within beta < 1e-3 of the feed whose ratio r = 2 tm/beta has
    // settled, clearly above zero (far from a critical point, where it vanishes), is falling
    // onto the feed.
    double r_prev = -1.0;
    auto approaching_feed = [&]() {
        double tm = 1.0, beta = 0.0;
        for (int i = 0; i < n; ++i) {
            tm += W[i] * (lnw[i] + ph.lnphi[i] - d[i] - 1.0);
            beta += (W[i] - z[i]) * (lnw[i] - lnz[i]);
        }
        if (!(beta > 0.0)) return false;
        const double r = 2.0 * tm / beta;
        const bool settled = std::abs(r - r_prev) < 0.02 * r || beta < 1e-6;
        r_prev = r;
        return beta < 1e-3 && r > 0.1 && settled;
    };
    auto trivial_now = [&]() {
        double s = 0.0;
        for (int i = 0; i < n; ++i) s += (w[i] - z[i]) * (w[i] - z[i]);
        return s < 1e-12 ||
               (std::abs(ph.v - zphase.v) < 1e-6 * zphase.v && s < 1e-6);
    };
    // accelerated successive substitution: ln W_i = d_i - ln phi_i(w)
    // with ln w_i = ln W_i - ln(sum W) and sum w = 1 a single logarithm is left
    auto tpd_of_w = [&]() {
        double s = 0.0;
        for (int i = 0; i < n; ++i) s += w[i] * (lnw[i] + ph.lnphi[i] - d[i]);
        return s - std::log(sumw);
    };
    bool have_old = false;
    for (int it = 0; it < 40; ++it) {
        if (evaluate(false, nullptr)) break;
        double gn = 0.0;
        for (int i = 0; i < n; ++i) {
            g[i] = d[i] - ph.lnphi[i] - lnw[i];
            gn += g[i] * g[i];
        }
        if (gn < 1e-4) {
            // converged, or close enough to a stationary point well above the tangent plane,
            // where the remaining steps cannot bring it below; or a trial composition below the
            // tangent plane, which already proves instability and is taken once it has settled
            // enough to start the phase split
            const double tpd = gn < 1e-24 ? 0.0 : tpd_of_w();
            if (gn < 1e-24 || (gn < 1e-8 && tpd > 1e-6) || tpd > 1e-2 || tpd < -1e-8) {
                o.converged = true;
                break;
            }
        }
        if (trivial_now() || approaching_feed()) {
            o.trivial = true;
            o.converged = true;
            break;
        }
        // dominant eigenvalue acceleration every fifth step (Crowe and Nishio, AIChE J. 21
        // (1975) 528)
        if (it % 5 == 4 && have_old) {
            double num = 0.0, den = 0.0;
            for (int i = 0; i < n; ++i) num += g[i] * gold[i], den += gold[i] * gold[i];
            const double lam = num / den;
            if (lam > 0.0 && lam < 0.95) {
                for (int i = 0; i < n; ++i) lnw[i] += g[i] / (1.0 - lam);
                for (int i = 0; i < n; ++i) gold[i] = g[i];
                fresh = false;
                continue;
            }
        }
        have_old = true;
        for (int i = 0; i < n; ++i) lnw[i] += g[i];
        for (int i = 0; i < n; ++i) gold[i] = g[i];
        fresh = false;
        if (gn < 1e-8) break; // close: the second-order steps finish
    }
    if (!o.converged && !o.trivial) {
        // second-order steps in alpha_i = 2 sqrt(W_i) on tm(W) = 1 + sum W_i (ln W_i + ln phi_i
        // - d_i - 1), Hessian delta_ij + sqrt(W_i W_j) d ln phi_i / d W_j
        mat dn;
        vec Wk{}; // the amounts of the current iterate (tm_of moves W)
        auto tm_of = [&](const vec& lw, double& tm) {
            vec tmp = lnw;
            lnw = lw;
            const int e = evaluate(false, nullptr);
            lnw = tmp;
            fresh = false;
            if (e) return false;
            tm = 1.0;
            for (int i = 0; i < n; ++i) {
                const double Wi = W[i];
                tm += Wi * (lw[i] + ph.lnphi[i] - d[i] - 1.0);
            }
            return true;
        };
        double gn_prev = INFINITY;
        for (int k = 0; k < 60; ++k) {
            if (evaluate(true, &dn)) break;
            double gn = 0.0, tm = 1.0;
            vec grad{};
            std::array<double, mc * mc> H; // its n x n block is filled below
            for (int i = 0; i < n; ++i) {
                Wk[i] = W[i];
                const double G = lnw[i] + ph.lnphi[i] - d[i];
                grad[i] = std::sqrt(Wk[i]) * G;
                gn += G * G;
                tm += Wk[i] * (G - 1.0);
            }
            // converged, or stalled at the rounding level of ln phi
            if (gn < 1e-24 || (gn < 1e-18 && gn > 0.25 * gn_prev) ||
                (gn < 1e-8 && tm > 1e-6)) {
                o.converged = true;
                break;
            }
            gn_prev = gn;
            if (trivial_now()) {
                o.trivial = true;
                o.converged = true;
                break;
            }
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < n; ++j)
                    H[i * mc + j] = (i == j ? 1.0 : 0.0) +
                                    std::sqrt(Wk[i] * Wk[j]) * dn[i * mc + j] / sumw;
            // Newton step, halved until tm decreases; where the Hessian is not positive definite
            // (near a critical point) that step need not descend, and the Hessian is shifted
            // towards the identity (Levenberg-Marquardt) until it does. A point stationary to the
            // rounding (gradient below 1e-12) needs no shift.
            vec lw{};
            bool ok = false;
            for (int shift = 0; shift < 6 && !ok && (shift == 0 || gn >= 1e-12); ++shift) {
                const double mu = shift == 0 ? 0.0 : std::pow(10.0, 2 * shift - 6);
                std::array<double, mc * mc> A;
                for (int i = 0; i < n; ++i) {
                    for (int j = 0; j < n; ++j) A[i * mc + j] = H[i * mc + j];
                    A[i * mc + i] += mu;
                }
                vec step{};
                for (int i = 0; i < n; ++i) step[i] = -grad[i];
                if (!solve_linear(n, A.data(), mc, step.data())) continue;
                double fac = 1.0;
                for (int h = 0; h < 20; ++h) {
                    bool pos = true;
                    for (int i = 0; i < n; ++i) {
                        const double a = 2.0 * std::sqrt(Wk[i]) + fac * step[i];
                        if (!(a > 0.0)) { pos = false; break; }
                        lw[i] = std::log(0.25 * a * a);
                    }
                    double tmn;
                    if (pos && tm_of(lw, tmn) && tmn <= tm + 1e-15) {
                        ok = true;
                        break;
                    }
                    fac *= 0.5;
                }
            }
            if (!ok) {
                // no descent is left at the rounding level of tm: the point is stationary
                o.converged = gn < 1e-12;
                break;
            }
            lnw = lw;
            fresh = false;
        }
    }
    if (!fresh) evaluate(false, nullptr);
    for (int i = 0; i < n; ++i) o.w[i] = w[i], o.lnphi[i] = ph.lnphi[i];
    o.v = ph.v;
    o.tpd = o.trivial ? 0.0 : tpd_of_w();
    if (o.trivial) o.converged = true;
}

} // namespace

int stability(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
              const phase& zphase, stability_result& out, const double* wilson) {
    const int n = f.n;
    out = stability_result{};
    vec d, lnz, lnk{};
    for (int i = 0; i < n; ++i) {
        lnz[i] = std::log(z[i]);
        d[i] = lnz[i] + zphase.lnphi[i];
    }
    if (wilson)
        for (int i = 0; i < n; ++i) lnk[i] = wilson[i];
    else
        wilson_k(f, value(t.T), P, lnk.data());
    int imax = 0, imin = 0;
    for (int i = 1; i < n; ++i) {
        if (lnk[i] > lnk[imax]) imax = i;
        if (lnk[i] < lnk[imin]) imin = i;
    }
    vec starts[4];
    int ntrial = 0;
    for (int i = 0; i < n; ++i) starts[0][i] = lnz[i] + lnk[i];
    for (int i = 0; i < n; ++i) starts[1][i] = lnz[i] - lnk[i];
    ntrial = 2;
    if (lnk[imax] - lnk[imin] > std::log(100.0)) {
        for (int which : {imax, imin}) {
            for (int i = 0; i < n; ++i)
                starts[ntrial][i] = std::log(i == which ? 1.0 - 1e-3 * (n - 1) : 1e-3);
            ++ntrial;
        }
    }
    bool all_converged = true;
    trial_outcome o;
    for (int k = 0; k < ntrial; ++k) {
        run_trial(f, t, P, z, lnz.data(), d.data(), zphase, starts[k], o);
        if (!o.converged) all_converged = false;
        if (!o.trivial && o.tpd < out.tpd) {
            out.tpd = o.tpd;
            for (int i = 0; i < n; ++i) out.w[i] = o.w[i], out.lnphi_w[i] = o.lnphi[i];
            out.lighter = o.v > zphase.v;
        }
        if (out.tpd < -1e-3) break; // clearly unstable: no further trial needed
    }
    out.stable = !(out.tpd < unstable_below);
    if (out.stable && !all_converged) return 446;
    return 0;
}

} // namespace varimol
