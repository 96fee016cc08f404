// Speed of the property interface for IF97 water against the back-end calls it makes, over a fixed
// seeded set of liquid and vapour states, in the "SI" unit set (every input and output converted),
// and for a Varimol binary against its flash.
// Each interface benchmark has a "raw" twin: the same questions asked of the IF97 back-end
// directly, once with its last-state memory at work and once with it emptied before every
// question (what the bundles would cost without it).

#include "base/zentropia_base.hpp"
#include "if97/if97.hpp"
#include "main/zentropia_main.hpp"
#include "units/zentropia_units.hpp"
#include "varimol/varimol.hpp"

#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

namespace zm = zentropia_main;

struct state_point {
    double p_bar, t_celsius; // back-end units
    double p_pa, t_kelvin;   // the caller's "SI" units
    double v, u_j;           // m³/kg and J/kg, for the (v, u) bundle
    double h_kj, h_j;        // kJ/kg and J/kg, for (P, h)
};

constexpr std::size_t set_size = 1024;

// Liquid and vapour states from 0.1 to 200 bar and 5 to 600 °C, at least 2 K from saturation.
const std::vector<state_point>& states() {
    static const std::vector<state_point> set = [] {
        std::mt19937_64 rng(20240611);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::vector<state_point> out;
        std::array<double, 3> o;
        std::string errormsg;
        while (out.size() < set_size) {
            const double p = 0.1 + 199.9 * u(rng), t = 5.0 + 595.0 * u(rng);
            if (p < 220.64) {
                std::array<double, 1> ts;
                if97::if97_main("P", p, "x", 0.0, "t.", ts, errormsg);
                if (std::abs(t - ts[0]) < 2.0) continue;
            }
            if97::if97_main("P", p, "T", t, "v,u,h.", o, errormsg);
            out.push_back({p, t, p * 1e5, t + 273.15, o[0], o[1] * 1e3, o[2], o[2] * 1e3});
        }
        return out;
    }();
    return set;
}

void select_water() {
    std::string errormsg;
    const std::array<std::string, 1> water{"water"};
    const std::array<double, 1> one{1.0};
    zentropia_base::setfluid("IF97", 1, water, one, errormsg);
    zentropia_units::setunits("SI", "PerMass", "", "", errormsg);
}

// Runs `call` over the state set.
template <typename Call> void over_states(benchmark::State& state, Call call) {
    select_water();
    const auto& set = states();
    std::size_t k = 0;
    for (auto _ : state) {
        call(set[k]);
        k = (k + 1) % set_size;
    }
}

// The back-end questions, in its units; forget = empty its memory before each.
template <std::size_t N>
void ask(std::string_view a, double va, std::string_view b, double vb, std::string_view list,
         bool forget) {
    static std::array<double, N> out;
    static std::string errormsg;
    if (forget) if97::uninit_if97();
    if97::if97_main(a, va, b, vb, list, out, errormsg);
    benchmark::DoNotOptimize(out);
}

// ---- allprops: one state evaluation with the bundle's whole list -----------------------------

void BM_allprops(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        static std::string errormsg;
        static std::array<double, 23> o;
        static zp_common::composition x, y;
        zm::allprops("PT", s.p_pa, s.t_kelvin, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y,
                     o[8], o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18],
                     o[19], o[20], o[21], o[22], errormsg);
        benchmark::DoNotOptimize(o);
    });
}
BENCHMARK(BM_allprops);

// The three questions the bundle asked before it asked one list: the state, then cp, then c.
void raw_state_bundle(const state_point& s, bool forget) {
    ask<10>("P", s.p_bar, "T", s.t_celsius, "p,t,v,h,s,u,x,cv,dv,tc.", forget);
    ask<1>("P", s.p_bar, "T", s.t_celsius, "cp.", forget);
    ask<1>("P", s.p_bar, "T", s.t_celsius, "w.", forget);
}

void BM_raw_allprops_three_calls(benchmark::State& state) {
    over_states(state, [](const state_point& s) { raw_state_bundle(s, false); });
}
BENCHMARK(BM_raw_allprops_three_calls);

// ---- calcprop of one property against the one back-end call it needs -------------------------
// By (P, T) a property is asked of the back-end alone; by any other pair with cv as well, so that
// the iteration ends as it does for the whole state (the back-end's iterations carry their last
// step when nothing caloric is asked, which moves the result in its last bits). For IF97 alpha is
// not computed (-8888.8) and only the state's validity is asked.

enum class pair { PT, Ph };

double second_input(const state_point& s, pair by) {
    return by == pair::PT ? s.t_kelvin : s.h_j;
}

void calcprop_of(benchmark::State& state, std::string_view key, pair by) {
    const std::string_view pair_text = by == pair::PT ? "PT" : "Ph";
    over_states(state, [&](const state_point& s) {
        static std::string errormsg;
        benchmark::DoNotOptimize(
            zm::calcprop(key, pair_text, s.p_pa, second_input(s, by), errormsg));
    });
}

void raw_of(benchmark::State& state, std::string_view list, pair by) {
    over_states(state, [&](const state_point& s) {
        if (by == pair::PT)
            ask<2>("P", s.p_bar, "T", s.t_celsius, list, false);
        else
            ask<2>("P", s.p_bar, "h", s.h_kj, list, false);
    });
}

BENCHMARK_CAPTURE(calcprop_of, h_PT, "h", pair::PT);
BENCHMARK_CAPTURE(raw_of, h_PT, "h.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, s_PT, "s", pair::PT);
BENCHMARK_CAPTURE(raw_of, s_PT, "s.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, cp_PT, "cp", pair::PT);
BENCHMARK_CAPTURE(raw_of, cp_PT, "cp.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, c_PT, "c", pair::PT);
BENCHMARK_CAPTURE(raw_of, c_PT, "w.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, eta_PT, "eta", pair::PT);
BENCHMARK_CAPTURE(raw_of, eta_PT, "dv.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, alpha_PT, "alpha", pair::PT);
BENCHMARK_CAPTURE(raw_of, alpha_PT, "p.", pair::PT);
BENCHMARK_CAPTURE(calcprop_of, h_Ph, "h", pair::Ph);
BENCHMARK_CAPTURE(raw_of, h_Ph, "h,cv.", pair::Ph);
BENCHMARK_CAPTURE(raw_of, h_Ph_alone, "h.", pair::Ph);
BENCHMARK_CAPTURE(calcprop_of, s_Ph, "s", pair::Ph);
BENCHMARK_CAPTURE(raw_of, s_Ph, "s,cv.", pair::Ph);
BENCHMARK_CAPTURE(calcprop_of, cp_Ph, "cp", pair::Ph);
BENCHMARK_CAPTURE(raw_of, cp_Ph, "cv,cp.", pair::Ph);
BENCHMARK_CAPTURE(calcprop_of, c_Ph, "c", pair::Ph);
BENCHMARK_CAPTURE(raw_of, c_Ph, "cv,w.", pair::Ph);
BENCHMARK_CAPTURE(calcprop_of, eta_Ph, "eta", pair::Ph);
BENCHMARK_CAPTURE(raw_of, eta_Ph, "cv,dv.", pair::Ph);
BENCHMARK_CAPTURE(calcprop_of, alpha_Ph, "alpha", pair::Ph);
BENCHMARK_CAPTURE(raw_of, alpha_Ph, "cv.", pair::Ph);

// allprops against the one back-end call with its whole list.
void BM_raw_allprops_one_call(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        ask<12>("P", s.p_bar, "T", s.t_celsius, "p,t,v,h,s,u,x,cv,cp,w,dv,tc.", false);
    });
}
BENCHMARK(BM_raw_allprops_one_call);

// ---- allpropssu2: one state evaluation with the bundle's list ----------------------------------

void BM_allpropssu2(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        static std::string errormsg;
        static std::array<double, 9> o;
        zm::allpropssu2("PT", s.p_pa, s.t_kelvin, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7],
                        o[8], errormsg);
        benchmark::DoNotOptimize(o);
    });
}
BENCHMARK(BM_allpropssu2);

void BM_raw_allpropssu2(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        ask<9>("P", s.p_bar, "T", s.t_celsius, "p,t,v,s,u,x,cv,cp,w.", false);
    });
}
BENCHMARK(BM_raw_allpropssu2);

// ---- density and soundspeed: one question each
// ----------------------------------------------------

void BM_density(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        static std::string errormsg;
        benchmark::DoNotOptimize(zm::density("PT", s.p_pa, s.t_kelvin, errormsg));
    });
}
BENCHMARK(BM_density);

void BM_raw_density(benchmark::State& state) {
    over_states(state,
                [](const state_point& s) { ask<1>("P", s.p_bar, "T", s.t_celsius, "v.", false); });
}
BENCHMARK(BM_raw_density);

void BM_soundspeed(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        static std::string errormsg;
        benchmark::DoNotOptimize(zm::soundspeed("PT", s.p_pa, s.t_kelvin, errormsg));
    });
}
BENCHMARK(BM_soundspeed);

void BM_raw_soundspeed(benchmark::State& state) {
    over_states(state,
                [](const state_point& s) { ask<1>("P", s.p_bar, "T", s.t_celsius, "w.", false); });
}
BENCHMARK(BM_raw_soundspeed);

// ---- zflow_vu: the (v, u) state bundle, then the six pressure derivatives ---------------------

void raw_zflow(const state_point& s, bool forget) {
    const double u = s.u_j / 1e3;
    ask<10>("v", s.v, "u", u, "p,t,v,h,s,u,x,cv,dv,tc.", forget);
    for (std::string_view code :
         {"dP_dT.", "dP_dv.", "d2P_dT2.", "d2P_dv2.", "d2P_dTdv.", "dCv_dT."})
        ask<1>("v", s.v, "u", u, code, forget);
}

void BM_zflow_vu(benchmark::State& state) {
    over_states(state, [](const state_point& s) {
        static std::string errormsg;
        static std::array<double, 10> o;
        zm::zflow_vu(o[0], o[1], s.v, o[2], o[3], s.u_j, o[4], o[5], o[6], o[7], o[8], o[9],
                     errormsg);
        benchmark::DoNotOptimize(o);
    });
}
BENCHMARK(BM_zflow_vu);

void BM_raw_zflow_vu(benchmark::State& state) {
    over_states(state, [](const state_point& s) { raw_zflow(s, false); });
}
BENCHMARK(BM_raw_zflow_vu);

void BM_raw_zflow_vu_forgetting(benchmark::State& state) {
    over_states(state, [](const state_point& s) { raw_zflow(s, true); });
}
BENCHMARK(BM_raw_zflow_vu_forgetting);

// ---- A Varimol binary: calcprop and allprops against the back-end's one state call ------------
// Methane/ethane 0.9/0.1 (PRSV, van der Waals mixing) in the "SI" unit set. Two fixed seeded sets
// of 1024 (P, T) states between 150 and 190 K: single-phase (below 0.9 of the dew pressure or
// above 1.1 of the bubble pressure) and two-phase (between the dew and bubble pressures). The
// back-end twin is vm3_tmdprop in mode 1 (the stable state with its stability test and, where
// the feed splits, the flash), the one call either interface operation makes for such a state.

struct mixture_point {
    double p_pa, t_kelvin;
};

void select_binary() {
    std::string errormsg;
    const std::array<std::string, 2> names{"methane", "ethane"};
    const std::array<double, 2> conc{0.9, 0.1};
    zentropia_base::setfluid("Varimol", 2, names, conc, errormsg);
    zentropia_units::setunits("SI", "PerMass", "", "", errormsg);
}

// vm3_tmdprop at (p, T) in mode `mode`, q given for the saturation modes; ierr returned
int backend_state(int mode, double& t, double& p, double q) {
    double v, u, h, s, cv, a, b, c, d, e, g;
    static varimol::composition x, y, lnphi;
    int ierr = 0;
    varimol::vm3_tmdprop(mode, t, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, lnphi, ierr);
    benchmark::DoNotOptimize(h);
    return ierr;
}

const std::vector<mixture_point>& mixture_states(bool two_phase) {
    static const auto make = [](bool split) {
        select_binary();
        std::mt19937_64 rng(split ? 7331 : 1337);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::vector<mixture_point> out;
        while (out.size() < set_size) {
            const double t = 150.0 + 40.0 * u(rng);
            double tb = t, pb = 0.0, td = t, pd = 0.0;
            if (backend_state(12, tb, pb, 0.0) != 0 || backend_state(12, td, pd, 1.0) != 0)
                continue;
            double p;
            if (split)
                p = pd + (0.02 + 0.96 * u(rng)) * (pb - pd);
            else
                p = u(rng) < 0.5 ? pd * (0.1 + 0.8 * u(rng)) : pb * (1.1 + u(rng));
            out.push_back({p, t});
        }
        return out;
    };
    static const std::vector<mixture_point> one = make(false), two = make(true);
    return two_phase ? two : one;
}

template <typename Call> void over_mixture(benchmark::State& state, bool two_phase, Call call) {
    const auto& set = mixture_states(two_phase);
    select_binary();
    std::size_t k = 0;
    for (auto _ : state) {
        call(set[k]);
        k = (k + 1) % set_size;
    }
}

void mixture_calcprop(benchmark::State& state, std::string_view key, bool two_phase) {
    over_mixture(state, two_phase, [key](const mixture_point& s) {
        static std::string errormsg;
        benchmark::DoNotOptimize(zm::calcprop(key, "PT", s.p_pa, s.t_kelvin, errormsg));
    });
}

void mixture_allprops(benchmark::State& state, bool two_phase) {
    over_mixture(state, two_phase, [](const mixture_point& s) {
        static std::string errormsg;
        static std::array<double, 23> o;
        static zp_common::composition x, y;
        zm::allprops("PT", s.p_pa, s.t_kelvin, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y,
                     o[8], o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17], o[18],
                     o[19], o[20], o[21], o[22], errormsg);
        benchmark::DoNotOptimize(o);
    });
}

// Two properties of one state in turn: the adapter answers the second from the state it keeps.
void mixture_calcprop_h_then_s(benchmark::State& state, bool two_phase) {
    over_mixture(state, two_phase, [](const mixture_point& s) {
        static std::string errormsg;
        benchmark::DoNotOptimize(zm::calcprop("h", "PT", s.p_pa, s.t_kelvin, errormsg));
        benchmark::DoNotOptimize(zm::calcprop("s", "PT", s.p_pa, s.t_kelvin, errormsg));
    });
}

void mixture_raw(benchmark::State& state, bool two_phase) {
    over_mixture(state, two_phase, [](const mixture_point& s) {
        double t = s.t_kelvin, p = s.p_pa;
        backend_state(1, t, p, 0.0);
    });
}

BENCHMARK_CAPTURE(mixture_calcprop, h_1ph, "h", false);
BENCHMARK_CAPTURE(mixture_calcprop, cp_1ph, "cp", false);
BENCHMARK_CAPTURE(mixture_allprops, 1ph, false);
BENCHMARK_CAPTURE(mixture_calcprop_h_then_s, 1ph, false);
BENCHMARK_CAPTURE(mixture_raw, 1ph, false);
BENCHMARK_CAPTURE(mixture_calcprop, h_2ph, "h", true);
BENCHMARK_CAPTURE(mixture_allprops, 2ph, true);
BENCHMARK_CAPTURE(mixture_raw, 2ph, true);

} // namespace

BENCHMARK_MAIN();
