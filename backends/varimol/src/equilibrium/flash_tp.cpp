#include "equilibrium/flash_tp.hpp"

#include "equilibrium/linear.hpp"
#include "equilibrium/rachford_rice.hpp"

#include <cmath>
#include <utility>

namespace varimol {

namespace {
void homogeneous_result(const fluid& f, const double* z, const phase& ph, flash_result& out) {
    out.nphase = 1;
    for (int i = 0; i < f.n; ++i) out.x[i] = out.y[i] = z[i];
    out.liq = out.vap = ph;
    out.beta = ph.smaller ? 0.0 : 1.0;
}
// G/RT of the split, relative to the pure components as ideal gases at P
double gibbs(double sv, double sl, const vec& x, const vec& y, const phase& L, const phase& V,
             int n) {
    double gv = V.lng, gl = L.lng;
    for (int i = 0; i < n; ++i) {
        if (y[i] > 0.0) gv += y[i] * std::log(y[i]);
        if (x[i] > 0.0) gl += x[i] * std::log(x[i]);
    }
    return sv * gv + sl * gl;
}

// Names the phases: the vapour is the one richer in the volatile components, by Wilson's
// K-values, so that near a bubble line the incipient phase is the vapour even where it is the
// denser one (at high pressure the two may exchange their densities).
void orient(const fluid& f, double T, double P, flash_result& r) {
    if (r.nphase != 2) return;
    vec lnk{};
    wilson_k(f, T, P, lnk.data());
    double s = 0.0;
    for (int i = 0; i < f.n; ++i) s += (r.y[i] - r.x[i]) * lnk[i];
    if (s >= 0.0) return;
    std::swap(r.x, r.y);
    std::swap(r.liq, r.vap);
    r.beta = 1.0 - r.beta;
}
// A few successive substitutions from Wilson's K-values: once the split lowers the Gibbs energy
// below that of the feed, the feed is proven unstable and the stability test is not needed
// (Michelsen and Mollerup, ch. 11). Returns true with the K-values reached and the change of
// G/RT.
// `lnk` holds Wilson's ln K on entry.
bool wilson_start(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
                  const phase& zp, vec& lnk, double& dg) {
    const int n = f.n;
    double gfeed = 0.0; // G/RT of the feed, formed once Wilson's K-values split it
    vec K, x, y;
    double beta = 0.5;
    for (int it = 0; it < 3; ++it) {
        for (int i = 0; i < n; ++i) K[i] = std::exp(lnk[i]);
        if (rachford_rice(n, z, K.data(), beta, x.data(), y.data()) != 0) return false;
        if (it == 0) {
            gfeed = zp.lng;
            for (int i = 0; i < n; ++i) gfeed += z[i] * std::log(z[i]);
        }
        double sx = 0.0, sy = 0.0;
        for (int i = 0; i < n; ++i) sx += x[i], sy += y[i];
        for (int i = 0; i < n; ++i) x[i] /= sx, y[i] /= sy;
        phase L, V;
        if (eval_phase(f, t, P, x.data(), root_choice::stable, L) ||
            eval_phase(f, t, P, y.data(), root_choice::stable, V))
            return false;
        for (int i = 0; i < n; ++i) lnk[i] = L.lnphi[i] - V.lnphi[i];
        dg = gibbs(beta, 1.0 - beta, x, y, L, V, n) - gfeed;
        if (dg < -1e-10) return true;
    }
    return false;
}

} // namespace

int flash_split(const fluid& f, const temperature_terms<double>& t, double P, const double* z,
                vec lnk, flash_result& out) {
    const int n = f.n;
    vec K{}, x{}, y{}, r{}, rold{};
    double beta = 0.5;
    phase L, V;
    bool have_old = false;
    bool converged = false;
    // successive substitution: K_i = phi_i^L / phi_i^V
    for (int it = 0; it < 60; ++it) {
        for (int i = 0; i < n; ++i) K[i] = std::exp(lnk[i]);
        const int side = rachford_rice(n, z, K.data(), beta, x.data(), y.data());
        if (side != 0) {
            // rough K-values: follow the root outside [0, 1] until they settle
            if (it > 30) return 1;
            beta = 0.5;
            rachford_rice_extended(n, z, K.data(), beta, x.data(), y.data());
        }
        double sx = 0.0, sy = 0.0;
        for (int i = 0; i < n; ++i) sx += x[i], sy += y[i];
        for (int i = 0; i < n; ++i) x[i] /= sx, y[i] /= sy;
        if (eval_phase(f, t, P, x.data(), root_choice::stable, L) ||
            eval_phase(f, t, P, y.data(), root_choice::stable, V))
            return 441;
        double rn = 0.0, triv = 0.0;
        for (int i = 0; i < n; ++i) {
            r[i] = L.lnphi[i] - V.lnphi[i] - lnk[i];
            rn += r[i] * r[i];
            triv += lnk[i] * lnk[i];
        }
        if (triv < 1e-8) return 1; // trivial solution
        if (rn < 1e-7) {           // close enough for the Newton steps
            if (side != 0) return 1; // converged outside: one phase
            break;
        }
        if (it % 5 == 4 && have_old) {
            double num = 0.0, den = 0.0;
            for (int i = 0; i < n; ++i) num += r[i] * rold[i], den += rold[i] * rold[i];
            const double lam = num / den;
            if (lam > 0.0 && lam < 0.95) {
                for (int i = 0; i < n; ++i) lnk[i] += r[i] / (1.0 - lam);
                rold = r;
                continue;
            }
        }
        for (int i = 0; i < n; ++i) lnk[i] += r[i];
        rold = r;
        have_old = true;
    }
    // Newton on the Gibbs energy (Michelsen and Mollerup, ch. 10). The variable of component i
    // is the smaller of its two amounts v_i (vapour) and l_i = z_i - v_i (liquid), so that the
    // larger one, z_i minus it, is formed without cancellation; gradient g_i = ln f_i^V -
    // ln f_i^L with respect to v_i, sign-flipped for the components whose variable is l_i.
    vec u{}, sgn{}, va{}, la{};
    for (int i = 0; i < n; ++i) {
        const double vi = beta * y[i], li = (1.0 - beta) * x[i];
        sgn[i] = vi <= li ? 1.0 : -1.0;
        u[i] = vi <= li ? vi : li;
    }
    mat dl, dv;
    int tail = 0; // Newton steps taken below 1e-11
    for (int it = 0; it < 40; ++it) {
        double sv = 0.0, sl = 0.0;
        for (int i = 0; i < n; ++i) {
            va[i] = sgn[i] > 0.0 ? u[i] : z[i] - u[i];
            la[i] = sgn[i] > 0.0 ? z[i] - u[i] : u[i];
            sv += va[i];
            sl += la[i];
        }
        if (!(sv > 0.0 && sl > 0.0)) return 441;
        for (int i = 0; i < n; ++i) y[i] = va[i] / sv, x[i] = la[i] / sl;
        const double b = sv / (sv + sl);
        // the composition derivatives with the values: one root solve per phase and step (they
        // cost less than a second solve). After a step from the rounding level of the gradient
        // this evaluation only confirms convergence, and the derivatives are left out (formed
        // afterwards should it not).
        const bool closing = tail > 0;
        if (eval_phase(f, t, P, x.data(), root_choice::stable, L, closing ? nullptr : &dl) ||
            eval_phase(f, t, P, y.data(), root_choice::stable, V, closing ? nullptr : &dv))
            return 441;
        vec g{};
        double gmax = 0.0, triv = 0.0;
        for (int i = 0; i < n; ++i) {
            g[i] = sgn[i] * (std::log(y[i]) + V.lnphi[i] - std::log(x[i]) - L.lnphi[i]);
            gmax = std::max(gmax, std::abs(g[i]));
            const double lk = std::log(y[i] / x[i]);
            triv += lk * lk;
        }
        beta = b;
        if (triv < 1e-8) return 1;
        // to the rounding of ln f: near a bubble or dew line the small phase amount is a small
        // difference of K-values, which need their last digits
        if (gmax < 1e-15 || (gmax < 1e-11 && ++tail > 1)) {
            converged = true;
            break;
        }
        if (closing && (eval_phase(f, t, P, x.data(), root_choice::stable, L, &dl) ||
                        eval_phase(f, t, P, y.data(), root_choice::stable, V, &dv)))
            return 441;
        std::array<double, mc * mc> H; // its n x n block is filled below
        double dmean = 0.0;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j)
                H[i * mc + j] =
                    sgn[i] * sgn[j] *
                    ((dv[i * mc + j] - 1.0) / b + (dl[i * mc + j] - 1.0) / (1.0 - b) +
                     (i == j ? z[i] / (x[i] * y[i] * b * (1.0 - b)) : 0.0));
            dmean += std::abs(H[i * mc + i]) / n;
        }
        // Gibbs energy of the split (per RT), for the descent test of the steps (formed when a
        // step is tested)
        double g0 = 0.0;
        bool have_g0 = false;
        // Newton step; where the Hessian is not positive definite (near a critical point) it is
        // shifted (Levenberg-Marquardt) until it is, and the step must lower the Gibbs energy or,
        // below its rounding, the gradient
        bool moved = false;
        double mu = 0.0;
        for (int k = 0; k < 40 && !moved; ++k) {
            std::array<double, mc * mc> A;
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < n; ++j) A[i * mc + j] = H[i * mc + j];
                A[i * mc + i] += mu * dmean;
            }
            vec step{};
            for (int i = 0; i < n; ++i) step[i] = -g[i];
            if (!solve_cholesky(n, A.data(), mc, step.data())) {
                mu = mu == 0.0 ? 1e-6 : 4.0 * mu;
                continue;
            }
            double slope = 0.0;
            for (int i = 0; i < n; ++i) slope += g[i] * step[i];
            double fac = 1.0; // stay inside 0 < u_i < z_i
            for (int i = 0; i < n; ++i) {
                const double nu = u[i] + step[i];
                if (nu <= 0.0) fac = std::min(fac, 0.9 * u[i] / -step[i]);
                if (nu >= z[i]) fac = std::min(fac, 0.9 * (z[i] - u[i]) / step[i]);
            }
            vec un{};
            for (int i = 0; i < n; ++i) un[i] = u[i] + fac * step[i];
            // close to the solution, on a convex Gibbs surface, the Newton step is taken as is
            if (gmax < 1e-4 && mu == 0.0) {
                u = un;
                moved = true;
                break;
            }
            double svn = 0.0, sln = 0.0;
            vec xn{}, yn{};
            for (int i = 0; i < n; ++i) {
                va[i] = sgn[i] > 0.0 ? un[i] : z[i] - un[i];
                la[i] = sgn[i] > 0.0 ? z[i] - un[i] : un[i];
                svn += va[i];
                sln += la[i];
            }
            for (int i = 0; i < n; ++i) yn[i] = va[i] / svn, xn[i] = la[i] / sln;
            phase Ln, Vn;
            if (!eval_phase(f, t, P, xn.data(), root_choice::stable, Ln) &&
                !eval_phase(f, t, P, yn.data(), root_choice::stable, Vn)) {
                if (!have_g0) g0 = gibbs(sv, sl, x, y, L, V, n), have_g0 = true;
                const double gn = gibbs(svn, sln, xn, yn, Ln, Vn, n);
                const double resolution = 1e-14 * (std::abs(g0) + 1.0);
                bool accept = gn <= g0 + 1e-4 * fac * slope && fac * std::abs(slope) > resolution;
                if (!accept && std::abs(gn - g0) <= resolution) {
                    double gmn = 0.0;
                    for (int i = 0; i < n; ++i)
                        gmn = std::max(gmn, std::abs(std::log(yn[i]) + Vn.lnphi[i] -
                                                     std::log(xn[i]) - Ln.lnphi[i]));
                    accept = gmn < gmax;
                }
                if (accept) {
                    u = un;
                    moved = true;
                    break;
                }
            }
            mu = mu == 0.0 ? 1e-4 : 4.0 * mu;
        }
        if (!moved) return 441;
    }
    if (!converged) return 441;
    out.nphase = 2;
    out.beta = beta;
    out.x = x;
    out.y = y;
    out.liq = L;
    out.vap = V;
    return 0;
}

int flash_tp(const fluid& f, double T, double P, const double* z, flash_result& out) {
    out = flash_result{};
    temperature_terms<double> t;
    at_temperature(f, T, t);
    phase zp;
    if (int e = eval_phase(f, t, P, z, root_choice::stable, zp)) return e;
    if (f.n == 1) {
        homogeneous_result(f, z, zp, out);
        return 0;
    }
    vec wilson{};
    wilson_k(f, T, P, wilson.data());
    {
        vec lnk = wilson;
        double dg;
        if (wilson_start(f, t, P, z, zp, lnk, dg) && flash_split(f, t, P, z, lnk, out) == 0) {
            out.tpd = dg;
            orient(f, T, P, out);
            return 0;
        }
    }
    stability_result st;
    const int se = stability(f, t, P, z, zp, st, wilson.data());
    out.tpd = st.tpd;
    if (st.stable) {
        homogeneous_result(f, z, zp, out);
        return se;
    }
    // K from the fugacity coefficients of the feed and of the trial phase: with w/z alone the
    // Rachford-Rice root would sit exactly at 0 (or 1), on a side decided by rounding
    vec lnk{};
    for (int i = 0; i < f.n; ++i) {
        const double lk = zp.lnphi[i] - st.lnphi_w[i];
        lnk[i] = st.lighter ? lk : -lk;
    }
    int e = flash_split(f, t, P, z, lnk, out);
    if (e != 0 && st.tpd > -1e-6) {
        // near a critical point the trial phase is the incipient one, on the far side of a flat
        // saddle of the Gibbs energy; the split lies between it and the feed: start halfway
        vec half{};
        for (int i = 0; i < f.n; ++i) half[i] = 0.5 * lnk[i];
        e = flash_split(f, t, P, z, half, out);
    }
    if (e != 0) {
        // the split fell back onto the feed or did not converge: try Wilson's K-values once
        e = flash_split(f, t, P, z, wilson, out);
    }
    if (e != 0) {
        homogeneous_result(f, z, zp, out);
        return 441;
    }
    orient(f, T, P, out);
    return 0;
}

} // namespace varimol
