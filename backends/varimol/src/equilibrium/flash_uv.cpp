#include "equilibrium/flash_uv.hpp"

#include "equilibrium/flash_newton.hpp"
#include "equilibrium/rachford_rice.hpp"
#include "equilibrium/root_1d.hpp"
#include "equilibrium/saturation.hpp"

#include <cmath>

namespace varimol {

namespace {
// covolume of the mixture at the temperature of `t` (the Wong-Sandler one depends on T)
double covolume(const fluid& f, const temperature_terms<double>& t) {
    mixture_terms<double> m;
    mix(f, t, f.z.data(), m, nullptr);
    return m.B;
}

// a homogeneous state at (T, v) with its phase at the same pressure
void homogeneous_state(const fluid& f, const state_props& sp, const phase& ph, eq_state& st) {
    st.T = sp.T;
    st.P = sp.P;
    st.v = sp.v;
    st.u = sp.u;
    st.h = sp.h;
    st.s = sp.s;
    st.one = sp;
    st.fr = flash_result{};
    st.fr.nphase = 1;
    st.fr.liq = st.fr.vap = ph;
    for (int i = 0; i < f.n; ++i) st.fr.x[i] = st.fr.y[i] = f.z[i];
    st.fr.beta = ph.smaller ? 0.0 : 1.0;
    st.q = phase_quality(f, ph);
}

// the given property of a homogeneous phase
double given_value_of(const state_props& sp, given s) {
    return s == given::v ? sp.v : s == given::u ? sp.u : s == given::h ? sp.h : sp.s;
}

// slope of the given property by T at constant v of a homogeneous state, scaled like the residual
double slope_tv(const state_props& sp, given s) {
    switch (s) {
    case given::u:
        return sp.cv;
    case given::h:
        return sp.cv + sp.v * sp.dpdt;
    case given::s:
        return sp.cv / sp.T;
    default:
        return 0.0;
    }
}

// The simultaneous Newton iteration for the given v and the given property from the split at
// (T, P); 0 when it converges, 1 when (T, P) is not two-phase or the iteration fails
int newton_from(const fluid& f, double T, double P, const flash_result& fr, double v, given sp,
                double value, eq_state& st) {
    if (fr.nphase != 2) return 1;
    eq_state start; // the iteration needs the split alone
    start.T = T;
    start.P = P;
    start.fr = fr;
    two_phase_target target;
    target.free_t = target.free_p = true;
    target.first = sp;
    target.first_value = value;
    target.second = given::v;
    target.second_value = v;
    return two_phase_newton(f, target, start, st);
}

// geometric mean of Wilson's bubble and dew pressures at T: inside the two-phase region of the
// feed where Wilson's K-values hold
double wilson_mid_pressure(const fluid& f, double T) {
    vec lnk1{};
    wilson_k(f, T, 1.0, lnk1.data());
    double pb = 0.0, inv_pd = 0.0;
    for (int i = 0; i < f.n; ++i) {
        pb += f.z[i] * std::exp(lnk1[i]);
        inv_pd += f.z[i] * std::exp(-lnk1[i]);
    }
    return std::sqrt(pb / inv_pd);
}

// the same from the split at T and the pressure between Wilson's bubble and dew pressures, where
// the feed is expected inside its two-phase region
int newton_from_wilson(const fluid& f, double T, double v, given sp, double value, eq_state& st) {
    const double p0 = wilson_mid_pressure(f, T);
    if (!(p0 >= pmin && p0 <= f.pmax)) return 1;
    // Wilson's split itself first (no flash), then the converged split at (T, p0)
    vec lnk{}, K{};
    wilson_k(f, T, p0, lnk.data());
    for (int i = 0; i < f.n; ++i) K[i] = std::exp(lnk[i]);
    flash_result fr;
    fr.nphase = 2;
    if (rachford_rice(f.n, f.z.data(), K.data(), fr.beta, fr.x.data(), fr.y.data()) == 0 &&
        newton_from(f, T, p0, fr, v, sp, value, st) == 0)
        return 0;
    if (flash_tp(f, T, p0, f.z.data(), fr) != 0) return 1;
    return newton_from(f, T, p0, fr, v, sp, value, st);
}

// The two-phase state at v by the simultaneous Newton iteration, started from a balance in
// temperature: at each T the feed is taken as liquid at Wilson's bubble pressure and as vapour at
// Wilson's dew pressure (both explicit in T), the given volume fixes the lever between the two
// (the vapour's volume carried to the pressure of the lever), and the given property of that
// lever mixture is matched by a coarse secant search in T from t0. The iteration starts there,
// from Wilson's split at the pressure of the lever. 0 with the state in st, or 1 (the balance
// places v outside the two phases, or no convergence).
int balance_newton_v(const fluid& f, double v, given sp, double value, double t0, eq_state& st) {
    if (!std::isfinite(value) || !(v > 0.0)) return 1;
    const double scale = 1.0 / (gas_constant * 298.15);
    double beta = 0.0, pb = 0.0, pd = 0.0;
    // the balance at T: 0 with the scaled residual r, 1 where a Wilson phase is missing
    auto g = [&](double T, double& r) {
        vec lnk1{};
        wilson_k(f, T, 1.0, lnk1.data());
        double kz = 0.0, zk = 0.0;
        for (int i = 0; i < f.n; ++i) {
            kz += f.z[i] * std::exp(lnk1[i]);
            zk += f.z[i] * std::exp(-lnk1[i]);
        }
        pb = kz;
        pd = 1.0 / zk;
        if (!(pb > pd && pd >= pmin && pb <= f.pmax)) return 1;
        temperature_terms<double> t;
        at_temperature(f, T, t);
        phase liq, vap;
        if (eval_phase(f, t, pb, f.z.data(), root_choice::liquid, liq) ||
            eval_phase(f, t, pd, f.z.data(), root_choice::vapour, vap) || !(vap.v > liq.v))
            return 1;
        state_props cl, cg;
        caloric(f, T, liq.v, f.z.data(), cl);
        caloric(f, T, vap.v, f.z.data(), cg);
        // the vapour of the split lies at a pressure between the two, interpolated in ln P by
        // the lever, P = pb (pd/pb)^beta; its volume scales about as 1/P from the dew pressure's
        const double lr = std::log(pb / pd);
        beta = (v - liq.v) / (vap.v - liq.v);
        for (int it = 0; it < 6; ++it) {
            const double vv = vap.v * std::exp(-(1.0 - beta) * lr);
            const double res = (1.0 - beta) * liq.v + beta * vv - v;
            const double d = vv - liq.v + beta * vv * lr;
            if (!(d > 0.0)) break;
            beta = std::clamp(beta - res / d, -0.5, 1.5);
        }
        const double al = given_value_of(cl, sp), ag = given_value_of(cg, sp);
        r = (al + beta * (ag - al) - value) * scale;
        return std::isfinite(r) ? 0 : 1;
    };
    // secant steps on the smooth balance, from a first step of 5 % towards the value; a start
    // needs the temperature to a few tenths of a kelvin only
    double ta = std::clamp(t0, f.tmin, f.tmax), ra;
    // above the range where the feed has both Wilson phases (near and above its critical
    // temperature): lower
    for (int k = 0; g(ta, ra) != 0; ++k) {
        if (k == 4 || ta * 0.9 < f.tmin) return 1;
        ta *= 0.9;
    }
    double T = std::clamp(ta * (ra > 0.0 ? 0.95 : 1.05), f.tmin, f.tmax), r = ra;
    bool done = std::abs(ra) <= 1e-2;
    if (done) T = ta;
    for (int it = 0; it < 12 && !done; ++it) {
        if (g(T, r) != 0) {
            T = 0.5 * (T + ta); // outside the range where both Wilson phases exist
            continue;
        }
        const double slope = (r - ra) / (T - ta);
        // where the balance does not grow with T (close to the top of the feed's two-phase
        // range) a fixed step towards the value
        const double next = std::clamp(slope > 0.0 ? T - r / slope : T * (r > 0.0 ? 0.85 : 1.15),
                                       std::max(f.tmin, 0.7 * T), std::min(f.tmax, 1.3 * T));
        done = std::abs(r) <= 1e-2 || std::abs(next - T) <= 1e-3 * T;
        ta = T, ra = r;
        if (!done) T = next;
    }
    if (!done || !(beta > 0.0 && beta < 1.0)) return 1;
    const double P = std::exp(std::log(pb) + beta * (std::log(pd) - std::log(pb)));
    vec lnk{}, K{};
    wilson_k(f, T, P, lnk.data());
    for (int i = 0; i < f.n; ++i) K[i] = std::exp(lnk[i]);
    flash_result fr;
    fr.nphase = 2;
    if (rachford_rice(f.n, f.z.data(), K.data(), fr.beta, fr.x.data(), fr.y.data()) != 0) return 1;
    return newton_from(f, T, P, fr, v, sp, value, st);
}

// state on the line of vapour fraction q at temperature T
int q_line_state(const fluid& f, double T, double q, eq_state& st) {
    if (f.n == 1) {
        double P;
        phase l, v;
        if (int e = pure_saturation_pressure(f, T, P, l, v)) return e;
        pure_two_phase_state(f, T, P, l, v, q, st);
        return 0;
    }
    double t = T, P = 1.0e5;
    flash_result fr;
    if (int e = saturation_q(f, true, t, P, q, f.z.data(), fr)) return e;
    state_from_flash(f, T, P, fr, st);
    return 0;
}
} // namespace

int state_tv(const fluid& f, double T, double v, eq_state& st, double p_guess, const eq_state* warm,
             bool lenient) {
    temperature_terms<double> t;
    at_temperature(f, T, t);
    if (!(v > covolume(f, t))) return 109;
    state_props sp;
    homogeneous(f, T, v, f.z.data(), sp);
    if (f.n == 1 && T < f.comp[0].tc) {
        double Ps;
        phase l, g;
        const int es = pure_saturation_pressure(f, T, Ps, l, g);
        if (es != 0 && T < 0.999 * f.comp[0].tc) return es;
        if (es == 0 && v >= l.v && v <= g.v) {
            pure_two_phase_state(f, T, Ps, l, g, (v - l.v) / (g.v - l.v), st);
            return 0;
        }
        phase ph;
        const root_choice r = es != 0   ? root_choice::stable
                              : v < l.v ? root_choice::liquid
                                        : root_choice::vapour;
        if (!(sp.P > 0.0)) return 106;
        if (int e = eval_phase(f, t, sp.P, f.z.data(), r, ph)) return e;
        homogeneous_state(f, sp, ph, st);
        return 0;
    }
    if (sp.P > 0.0 && sp.dpdv < 0.0 && std::isfinite(sp.P)) {
        flash_result fr;
        if (flash_tp(f, T, sp.P, f.z.data(), fr) == 0 && fr.nphase == 1 &&
            std::abs(fr.liq.v - v) <= 1e-9 * v) {
            homogeneous_state(f, sp, fr.liq, st);
            return 0;
        }
        if (!(p_guess > 0.0)) p_guess = sp.P;
    }
    const int e = flash_t(f, T, given::v, v, st, p_guess, warm, lenient);
    return e == out_below || e == out_above ? 106 : e;
}

int flash_v(const fluid& f, double v, given sp, double value, eq_state& st) {
    double p_last = 0.0;
    eq_state cur;
    const double scale = 1.0 / (gas_constant * 298.15);
    auto g = [&](double T, double& r) {
        const eq_state prev = cur;
        if (int e = state_tv(f, T, v, cur, p_last, prev.fr.nphase == 2 ? &prev : nullptr, true))
            return e;
        p_last = cur.P;
        r = (given_value(cur, sp) - value) * scale;
        return 0;
    };
    double t0 = std::clamp(f.tcrit, f.tmin, f.tmax);
    if (f.n > 1) {
        // the homogeneous state at (T, v) is explicit: its temperature first; where the flash
        // confirms it as the stable state it is the answer, otherwise the nested search starts
        // there
        state_props props{};
        bool first = true;
        auto gh = [&](double T, double& r) {
            // the full set once, for the slope of the first step; the caloric part after that
            if (first)
                homogeneous(f, T, v, f.z.data(), props);
            else
                caloric(f, T, v, f.z.data(), props);
            first = false;
            r = ((sp == given::u ? props.u : sp == given::h ? props.h : props.s) - value) * scale;
            return std::isfinite(r) ? 0 : 106;
        };
        double rh;
        if (gh(t0, rh) == 0) {
            double step = std::abs(rh / (slope_tv(props, sp) * scale));
            step = std::isfinite(step) && step > 0.0 ? std::min(1.2 * step + 1e-6 * t0, 0.5 * t0)
                                                     : 0.05 * t0;
            double th = t0;
            int es = find_root(gh, root_search{t0, step, f.tmin, f.tmax, 1e-13 * t0, true}, th,
                               true, rh);
            if (es == 0) {
                // the isothermal flash at the homogeneous pressure: it confirms the homogeneous
                // state, or its split starts the simultaneous Newton iteration in the vapour
                // amounts, ln T and ln P
                es = 1;
                homogeneous(f, th, v, f.z.data(), props);
                flash_result fr;
                bool flashed = false;
                if (props.P > 0.0 && props.P <= f.pmax && props.dpdv < 0.0 &&
                    flash_tp(f, th, props.P, f.z.data(), fr) == 0) {
                    flashed = true;
                    if (fr.nphase == 1 && std::abs(fr.liq.v - v) <= 1e-9 * v) {
                        homogeneous_state(f, props, fr.liq, cur);
                        es = 0;
                    }
                }
                // not the homogeneous state: two phases, from the balance start, else from the
                // flash's split or from Wilson's split at th
                if (es != 0) {
                    if (balance_newton_v(f, v, sp, value, th, st) == 0 ||
                        (flashed && newton_from(f, th, props.P, fr, v, sp, value, st) == 0) ||
                        newton_from_wilson(f, th, v, sp, value, st) == 0)
                        return 0;
                    es = state_tv(f, th, v, cur);
                }
            }
            if (es == 0) {
                if (cur.fr.nphase == 1 &&
                    std::abs((given_value(cur, sp) - value) * scale) <= 1e-10) {
                    st = cur;
                    return 0;
                }
                t0 = th;
                p_last = cur.P;
            }
        }
    }
    // no homogeneous state to start from: the balance start, then Wilson's split at t0
    if (f.n > 1 && p_last == 0.0 &&
        (balance_newton_v(f, v, sp, value, t0, st) == 0 ||
         newton_from_wilson(f, t0, v, sp, value, st) == 0))
        return 0;
    root_search rs{t0, 0.05 * t0, f.tmin, f.tmax, 1e-13 * t0, true};
    rs.rtol = sp == given::s ? 0.0 : 1e-13; // an energy within 2.5e-10 J/mol
    double r0;
    if (int e = g(t0, r0)) return e;
    if (cur.fr.nphase == 1) {
        const double d = std::abs(r0 / (slope_tv(cur.one, sp) * scale));
        if (std::isfinite(d) && d > 0.0) rs.step = std::min(1.2 * d + 1e-6 * t0, 0.5 * t0);
    }
    double T = t0;
    if (int e = find_root(g, rs, T, true, r0)) return e;
    if (cur.T == T) {
        // the last point, found with intermediate leniency: a homogeneous state is confirmed by
        // a full flash at its pressure
        flash_result fr;
        if (cur.fr.nphase == 2 || (flash_tp(f, T, cur.P, f.z.data(), fr) == 0 && fr.nphase == 1)) {
            st = cur;
            return 0;
        }
    }
    return state_tv(f, T, v, st, p_last);
}

int flash_vq(const fluid& f, double v, double q, eq_state& st) {
    // the line of constant q, scanned upwards from the lowest temperature to its end
    constexpr int npts = 32;
    double ttop = f.comp[0].tc;
    for (int i = 1; i < f.n; ++i) ttop = std::max(ttop, f.comp[i].tc);
    if (f.n == 1) ttop *= 1.0 - 1e-9;
    const double tlo = f.tmin;
    if (!(ttop > tlo)) return 3281;
    double tprev = 0.0, rprev = 0.0;
    bool have_prev = false, any = false;
    double vmin = INFINITY, vmax = 0.0;
    int roots = 0;
    double a = 0.0, b = 0.0, ra = 0.0, rb = 0.0;
    double t_at_min = 0.0, t_at_max = 0.0, t_before = 0.0; // sampled extremes of v
    double t_min_lo = 0.0, t_min_hi = 0.0, t_max_lo = 0.0, t_max_hi = 0.0;
    bool prev_was_min = false, prev_was_max = false;
    // a point of the line, in increasing temperature; false where the line has no point
    auto visit = [&](double T) {
        eq_state cur;
        if (q_line_state(f, T, q, cur) || !(cur.P >= pmin)) {
            have_prev = false;
            return false;
        }
        any = true;
        // the neighbours of the sampled extremes bound the true ones
        if (prev_was_min) t_min_hi = T;
        if (prev_was_max) t_max_hi = T;
        prev_was_min = prev_was_max = false;
        if (cur.v < vmin) {
            vmin = cur.v, t_at_min = T, t_min_lo = have_prev ? tprev : T, t_min_hi = T;
            prev_was_min = true;
        }
        if (cur.v > vmax) {
            vmax = cur.v, t_at_max = T, t_max_lo = have_prev ? tprev : T, t_max_hi = T;
            prev_was_max = true;
        }
        (void)t_before;
        const double r = std::log(cur.v / v);
        if (have_prev && (r > 0.0) != (rprev > 0.0)) {
            ++roots;
            a = tprev, ra = rprev, b = T, rb = r;
        }
        tprev = T;
        rprev = r;
        have_prev = true;
        return true;
    };
    double last_ok = -1.0, first_fail = ttop;
    for (int k = 0; k < npts; ++k) {
        const double T = tlo + (ttop - tlo) * k / (npts - 1);
        if (visit(T)) {
            last_ok = T;
            first_fail = ttop;
        } else if (last_ok > 0.0 && first_fail == ttop) {
            first_fail = T;
        }
    }
    // the end of the line (a critical point, or where the mixture's line of this q stops) lies
    // between the last point found and the next: approached by bisection, where the volumes of
    // the line change fastest
    if (last_ok > 0.0) {
        have_prev = true;
        eq_state cur;
        q_line_state(f, last_ok, q, cur);
        tprev = last_ok;
        rprev = std::log(cur.v / v);
        double lo = last_ok, hi = first_fail;
        for (int k = 0; k < 30 && hi - lo > 1e-9 * hi; ++k) {
            const double mid = 0.5 * (lo + hi);
            const bool was = have_prev;
            if (visit(mid))
                lo = mid;
            else {
                hi = mid;
                have_prev = was;
            }
        }
    }
    if (!any) return 3281;
    if (roots == 0 && (v < vmin || v > vmax)) {
        // the volume may still be reached between two samples, twice, about a sampled extreme:
        // golden-section search for that extreme
        const bool below = v < vmin;
        double lo = below ? t_min_lo : t_max_lo, hi = below ? t_min_hi : t_max_hi;
        (void)t_at_min;
        (void)t_at_max;
        const double sign = below ? 1.0 : -1.0; // minimise sign * v
        auto val = [&](double T) {
            eq_state cur;
            return q_line_state(f, T, q, cur) ? INFINITY : sign * cur.v;
        };
        constexpr double gr = 0.6180339887498949;
        double c = hi - gr * (hi - lo), d = lo + gr * (hi - lo);
        double fc = val(c), fd = val(d);
        for (int k = 0; k < 40 && hi - lo > 1e-10 * hi; ++k) {
            if (fc < fd) {
                hi = d, d = c, fd = fc, c = hi - gr * (hi - lo), fc = val(c);
            } else {
                lo = c, c = d, fc = fd, d = lo + gr * (hi - lo), fd = val(d);
            }
            if (std::min(fc, fd) < sign * v) return 3283; // reached twice
        }
        return below ? 3282 : 3281;
    }
    if (roots != 1) return 3283;
    auto g = [&](double T, double& r) {
        if (int e = q_line_state(f, T, q, st)) return e;
        r = std::log(st.v / v);
        return 0;
    };
    const root_search rs{a, b - a, a, b, 1e-13 * b, rb > ra};
    double T = a;
    if (int e = find_root(g, rs, T, true, ra)) return e == out_below || e == out_above ? 3283 : e;
    if (st.T != T)
        if (int e = q_line_state(f, T, q, st)) return e;
    return st.P >= pmin ? 0 : 3281;
}

} // namespace varimol
