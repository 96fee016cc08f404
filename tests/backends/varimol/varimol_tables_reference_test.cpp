// The back-end against the tables of the independent reference script (data/varimol): pure-fluid
// saturation, mixture fugacity coefficients and properties on either root, and PT flashes, for
// PRSV, PR 1978 and SRK with van der Waals mixing. Agreement to 1e-9 relative, 1e-7 within 1 %
// of a critical point.
#include "equilibrium/flash_tp.hpp"
#include "equilibrium/saturation.hpp"
#include "varimol_fluids.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

using namespace varimol;
using varimol_test::num;
using varimol_test::read_csv;
using varimol_test::row;

namespace {

const std::string dir = std::string(ZP_DATA_DIR) + "/varimol/";

int model_of(const std::string& name) {
    if (name == "PRSV") return model_prsv_vdw;
    if (name == "PR") return model_pr_vdw;
    if (name == "SRK") return model_srk_vdw;
    if (name == "PRSV-WS") return model_prsv_ws;
    if (name == "PR-WS") return model_pr_ws;
    return 0;
}

// The fluid of the named components with the script's constants and kij.
fluid make(int model, const std::vector<std::string>& names, const std::vector<double>& z,
           const row* ws = nullptr) {
    static const auto comps = read_csv(dir + "inputs_components.csv");
    static const auto kij = read_csv(dir + "inputs_kij.csv");
    fluid_parameters fp{};
    binary_parameters bp{};
    const int n = static_cast<int>(names.size());
    for (int i = 0; i < n; ++i) {
        const row* c = nullptr;
        for (const auto& r : comps)
            if (r.at("fluid") == names[i]) c = &r;
        EXPECT_NE(c, nullptr) << names[i];
        if (!c) return fluid{};
        fp[parameter_index(row_mole_fraction, i)] = z[i];
        fp[parameter_index(row_tc, i)] = num(*c, "tc_K");
        fp[parameter_index(row_pc, i)] = num(*c, "pc_Pa");
        fp[parameter_index(row_acentric, i)] = num(*c, "acentric");
        fp[parameter_index(row_molar_mass, i)] = num(*c, "molar_mass_kg_per_mol");
        fp[parameter_index(row_kappa1, i)] = num(*c, "kappa1");
        for (int a = 0; a < 5; ++a)
            fp[parameter_index(row_cp0_a0 + a, i)] = num(*c, "cp0_a" + std::to_string(a));
    }
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            for (const auto& r : kij)
                if (r.at("fluid1") == names[i] && r.at("fluid2") == names[j]) {
                    bp[binary_index(bin_kij, i, j)] = num(r, "kij");
                    bp[binary_index(bin_kij, j, i)] = num(r, "kij");
                }
    if (ws) { // a Wong-Sandler binary: NRTL tau12 (of component 2's term), tau21, alpha, k12
        bp[binary_index(bin_nrtl_tau, 0, 1)] = num(*ws, "tau12");
        bp[binary_index(bin_nrtl_tau, 1, 0)] = num(*ws, "tau21");
        bp[binary_index(bin_nrtl_alpha, 0, 1)] = num(*ws, "alpha12");
        bp[binary_index(bin_nrtl_alpha, 1, 0)] = num(*ws, "alpha21");
        bp[binary_index(bin_ws_kij, 0, 1)] = bp[binary_index(bin_ws_kij, 1, 0)] =
            num(*ws, "kws12");
    }
    fluid f;
    EXPECT_EQ(set_fluid(f, model, fp, bp, n), 0);
    return f;
}

// names and mole fractions of a table row (fluid1.., z1..)
void composition_of(const row& r, std::vector<std::string>& names, std::vector<double>& z) {
    const int n = static_cast<int>(num(r, "nc"));
    names.clear();
    z.clear();
    for (int i = 1; i <= n; ++i) {
        const std::string k = std::to_string(i);
        names.push_back(r.at(std::string("fluid").append(k)));
        z.push_back(num(r, std::string("z").append(k)));
    }
}

// worst relative deviation, with a scale under which the deviation counts absolutely
struct worst {
    double dev = 0.0;
    std::string where;
    void add(double got, double want, double scale, const std::string& what) {
        const double d = std::abs(got - want) / std::max(std::abs(want), scale);
        if (!(d <= dev)) dev = d, where = what;
    }
};

} // namespace

TEST(VarimolReference, PureSaturation) {
    worst far, near;
    int rows = 0;
    for (const row& r : read_csv(dir + "pure_saturation.csv")) {
        const int model = model_of(r.at("model"));
        ASSERT_NE(model, 0);
        const fluid f = make(model, {r.at("fluid")}, {1.0});
        const double T = num(r, "T_K");
        double p;
        phase l, v;
        const std::string where = r.at("model") + " " + r.at("fluid") + " Tr " + r.at("Tr");
        const int e = pure_saturation_pressure(f, T, p, l, v);
        EXPECT_EQ(e, 0) << where;
        if (e) continue;
        state_props pl, pv;
        homogeneous(f, T, l.v, f.z.data(), pl);
        homogeneous(f, T, v.v, f.z.data(), pv);
        worst& w = num(r, "Tr") > 0.99 ? near : far;
        const double rt = gas_constant * T;
        w.add(p, num(r, "psat_Pa"), 0.0, where + " psat");
        w.add(l.v, num(r, "vL_m3_per_mol"), 0.0, where + " vL");
        w.add(v.v, num(r, "vV_m3_per_mol"), 0.0, where + " vV");
        w.add(pl.h, num(r, "hL_J_per_mol"), rt, where + " hL");
        w.add(pv.h, num(r, "hV_J_per_mol"), rt, where + " hV");
        w.add(pl.s, num(r, "sL_J_per_molK"), gas_constant, where + " sL");
        w.add(pv.s, num(r, "sV_J_per_molK"), gas_constant, where + " sV");
        // the inverse: the saturation temperature at the table's pressure
        double Ts = 0.0;
        EXPECT_EQ(pure_saturation_temperature(f, num(r, "psat_Pa"), Ts, l, v), 0) << where;
        w.add(Ts, T, 0.0, where + " Tsat");
        ++rows;
    }
    std::printf("pure saturation, %d rows: worst %.2e (%s); within 1 %% of Tc %.2e (%s)\n", rows,
                far.dev, far.where.c_str(), near.dev, near.where.c_str());
    EXPECT_LE(far.dev, 1e-9) << far.where;
    EXPECT_LE(near.dev, 1e-7) << near.where;
}

TEST(VarimolReference, MixtureFugacityCoefficientsAndProperties) {
    worst w;
    int rows = 0;
    for (const row& r : read_csv(dir + "mixture_lnphi.csv")) {
        std::vector<std::string> names;
        std::vector<double> z;
        composition_of(r, names, z);
        const fluid f = make(model_of(r.at("model")), names, z);
        const double T = num(r, "T_K"), P = num(r, "p_Pa");
        temperature_terms<double> t;
        at_temperature(f, T, t);
        phase ph;
        const bool liquid = r.at("root") == "L";
        ASSERT_EQ(eval_phase(f, t, P, f.z.data(), liquid ? root_choice::liquid
                                                          : root_choice::vapour, ph), 0);
        const std::string where = r.at("model") + " " + r.at("mixture") + " T " + r.at("T_K") +
                                  " p " + r.at("p_Pa") + " " + r.at("root");
        EXPECT_EQ(ph.nroots, static_cast<int>(num(r, "n_roots"))) << where;
        state_props sp;
        homogeneous(f, T, ph.v, f.z.data(), sp);
        const double cp = sp.cv - T * sp.dpdt * sp.dpdt / sp.dpdv;
        w.add(ph.v, num(r, "v_m3_per_mol"), 0.0, where + " v");
        w.add(sp.h, num(r, "h_J_per_mol"), gas_constant * T, where + " h");
        w.add(sp.s, num(r, "s_J_per_molK"), gas_constant, where + " s");
        w.add(sp.cv, num(r, "cv_J_per_molK"), gas_constant, where + " cv");
        w.add(cp, num(r, "cp_J_per_molK"), gas_constant, where + " cp");
        for (int i = 0; i < f.n; ++i)
            w.add(ph.lnphi[i], num(r, "lnphi" + std::to_string(i + 1)), 1.0,
                  where + " lnphi" + std::to_string(i + 1));
        ++rows;
    }
    std::printf("mixture ln phi and properties, %d rows: worst %.2e (%s)\n", rows, w.dev,
                w.where.c_str());
    EXPECT_LE(w.dev, 1e-9) << w.where;
}

TEST(VarimolReference, FlashPT) {
    worst far, near;
    int rows = 0, unsplit = 0;
    for (const row& r : read_csv(dir + "flash_pt.csv")) {
        std::vector<std::string> names;
        std::vector<double> z;
        composition_of(r, names, z);
        const fluid f = make(model_of(r.at("model")), names, z);
        const double T = num(r, "T_K"), P = num(r, "p_Pa");
        const std::string where = r.at("model") + " " + r.at("mixture") + " " + r.at("case");
        flash_result fr;
        const int e = flash_tp(f, T, P, f.z.data(), fr);
        if (e != 0 || fr.nphase != 2) {
            // known gap: the 5-component gas closest to its critical point (tangent-plane distance
            // of the feed about -1e-9) is not split; it answers a code, or one phase when the
            // split would lower the Gibbs energy by less than 1e-10 RT
            EXPECT_EQ(r.at("mixture") + " " + r.at("case"), "gas5 near_critical") << where;
            EXPECT_TRUE(e != 0 || fr.tpd >= -1e-10) << where;
            ++unsplit;
            continue;
        }
        worst& w = r.at("case") == "near_critical" ? near : far;
        if (std::getenv("VARIMOL_VERBOSE"))
            std::printf("%s: beta %.17g (%s) x1 %.17g (%s) tpd %g\n", where.c_str(), fr.beta,
                        r.at("beta").c_str(), fr.x[0], r.at("x1").c_str(), fr.tpd);
        // a vapour fraction near 0 is the small difference z - x over y - x: near an azeotrope
        // (R32/R125) the compositions of both solvers agree to 2e-14, which leaves 1e-12 on beta
        w.add(fr.beta, num(r, "beta"), 1e-3, where + " beta");
        for (int i = 0; i < f.n; ++i) {
            const std::string k = std::to_string(i + 1);
            w.add(fr.x[i], num(r, "x" + k), 0.0, where + " x" + k);
            w.add(fr.y[i], num(r, "y" + k), 0.0, where + " y" + k);
        }
        w.add(fr.liq.v, num(r, "vL_m3_per_mol"), 0.0, where + " vL");
        w.add(fr.vap.v, num(r, "vV_m3_per_mol"), 0.0, where + " vV");
        state_props pl, pv;
        homogeneous(f, T, fr.liq.v, fr.x.data(), pl);
        homogeneous(f, T, fr.vap.v, fr.y.data(), pv);
        const double h = (1 - fr.beta) * pl.h + fr.beta * pv.h;
        const double s = (1 - fr.beta) * pl.s + fr.beta * pv.s;
        w.add(h, num(r, "h_J_per_mol"), gas_constant * T, where + " h");
        w.add(s, num(r, "s_J_per_molK"), gas_constant, where + " s");
        ++rows;
    }
    std::printf("PT flash, %d rows: worst %.2e (%s); near-critical %.2e (%s); %d not split\n",
                rows, far.dev, far.where.c_str(), near.dev, near.where.c_str(), unsplit);
    EXPECT_LE(unsplit, 3);
    EXPECT_LE(far.dev, 1e-9) << far.where;
    EXPECT_LE(near.dev, 1e-7) << near.where;
}

TEST(VarimolReference, BubblePressuresAndDewTemperatures) {
    worst w;
    int rows = 0;
    for (const row& r : read_csv(dir + "bubble_dew.csv")) {
        std::vector<std::string> names;
        std::vector<double> z;
        composition_of(r, names, z);
        const fluid f = make(model_of(r.at("model")), names, z);
        const bool bubble = r.at("kind") == "bubble_p";
        double T = bubble ? num(r, "T_K") : 0.7 * f.tcrit, P = bubble ? 1e5 : num(r, "p_Pa");
        flash_result fr;
        const std::string where = r.at("model") + " " + r.at("mixture") + " " + r.at("kind") +
                                  " " + (bubble ? r.at("T_K") : r.at("p_Pa"));
        const int e = saturation_q(f, bubble, T, P, bubble ? 0.0 : 1.0, f.z.data(), fr);
        EXPECT_EQ(e, 0) << where;
        if (e) continue;
        if (std::getenv("VARIMOL_VERBOSE"))
            std::printf("%s: p %.10g (%s) T %.10g vL %.6g vV %.6g\n", where.c_str(), P,
                        r.at("p_Pa").c_str(), T, fr.liq.v, fr.vap.v);
        if (bubble) w.add(P, num(r, "p_Pa"), 0.0, where + " p");
        else w.add(T, num(r, "T_K"), 0.0, where + " T");
        const vec& inc = bubble ? fr.y : fr.x;
        for (int i = 0; i < f.n; ++i) {
            const std::string k = std::string("w").append(std::to_string(i + 1));
            w.add(inc[i], num(r, k), 0.0, where + " " + k);
        }
        w.add(bubble ? fr.liq.v : fr.vap.v, num(r, "v_feed_m3_per_mol"), 0.0, where + " v feed");
        w.add(bubble ? fr.vap.v : fr.liq.v, num(r, "v_incipient_m3_per_mol"), 0.0,
              where + " v incipient");
        ++rows;
    }
    std::printf("bubble pressures and dew temperatures, %d rows: worst %.2e (%s)\n", rows, w.dev,
                w.where.c_str());
    EXPECT_EQ(rows, 60);
    EXPECT_LE(w.dev, 1e-9) << w.where;
}

TEST(VarimolReference, WongSandlerBinaries) {
    worst w;
    int rows = 0;
    for (const row& r : read_csv(dir + "wong_sandler.csv")) {
        const std::vector<std::string> names = {r.at("fluid1"), r.at("fluid2")};
        const std::vector<double> x = {num(r, "x1"), num(r, "x2")};
        const fluid f = make(model_of(r.at("model")), names, x, &r);
        const double T = num(r, "T_K");
        const std::string where = r.at("model") + " " + r.at("binary") + " " + r.at("kind") +
                                  " T " + r.at("T_K") + " x1 " + r.at("x1");
        if (r.at("kind") == "bubble_p") {
            double t = T, P = 1e5;
            flash_result fr;
            const int e = saturation_q(f, true, t, P, 0.0, f.z.data(), fr);
            EXPECT_EQ(e, 0) << where;
            if (e) continue;
            w.add(P, num(r, "p_Pa"), 0.0, where + " p");
            w.add(fr.y[0], num(r, "y1"), 0.0, where + " y1");
            w.add(fr.y[1], num(r, "y2"), 0.0, where + " y2");
        } else {
            const double P = num(r, "p_Pa");
            temperature_terms<double> t;
            at_temperature(f, T, t);
            const root_choice rc = r.at("kind") == "lnphi_L"   ? root_choice::liquid
                                   : r.at("kind") == "lnphi_V" ? root_choice::vapour
                                                               : root_choice::stable;
            phase ph;
            ASSERT_EQ(eval_phase(f, t, P, f.z.data(), rc, ph), 0) << where;
            state_props sp;
            homogeneous(f, T, ph.v, f.z.data(), sp);
            w.add(ph.v, num(r, "v_m3_per_mol"), 0.0, where + " v");
            w.add(sp.h, num(r, "h_J_per_mol"), gas_constant * T, where + " h");
            w.add(sp.s, num(r, "s_J_per_molK"), gas_constant, where + " s");
            w.add(sp.cv, num(r, "cv_J_per_molK"), gas_constant, where + " cv");
            w.add(ph.lnphi[0], num(r, "lnphi1"), 1.0, where + " lnphi1");
            w.add(ph.lnphi[1], num(r, "lnphi2"), 1.0, where + " lnphi2");
        }
        ++rows;
    }
    std::printf("Wong-Sandler binaries, %d rows: worst %.2e (%s)\n", rows, w.dev, w.where.c_str());
    EXPECT_EQ(rows, 72);
    EXPECT_LE(w.dev, 1e-9) << w.where;
}
