// The corresponding-states transport model against published values: worked examples, water by
// the IAPWS formulations (python3-iapws), the reference correlations of five fluids. Each
// comparison prints its deviation.
#include "backends/if97/reference_csv.hpp"
#include "transport/chung.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <tuple>

namespace {

using reference_csv::row;

std::vector<row> rows_of(const std::string& relative) {
    auto rows = reference_csv::read(std::string(ZP_DATA_DIR) + "/" + relative);
    EXPECT_FALSE(rows.empty()) << relative;
    return rows;
}

// A fluid's data as its transport text carries them (components.csv, cp0_planck_einstein.csv).
chung::component from_data(const std::string& short_name) {
    chung::component c;
    for (const auto& r : rows_of("fluids/components.csv"))
        if (r["short_name"] == short_name) {
            c.tc = r.number("tc_K"), c.vc = r.number("vc_m3_per_mol");
            c.acentric = r.number("acentric"), c.dipole = r.number("dipole_debye");
            c.molar_mass = r.number("molar_mass_kg_per_mol"), c.tb = r.number("tb_K");
            c.pc = r.number("pc_Pa");
            for (int k = 0; k < 5; ++k)
                c.cp0_poly[k] = r.number(std::string("cp0_a").append(std::to_string(k)));
            c.cp0_tmin = r.number("cp0_tmin_K"), c.cp0_tmax = r.number("cp0_tmax_K");
        }
    for (const auto& r : rows_of("fluids/cp0_planck_einstein.csv"))
        if (r["short_name"] == short_name) {
            c.pe_c0 = r.number("c0"), c.pe_terms = static_cast<int>(r.number("n_terms"));
            for (int k = 0; k < c.pe_terms; ++k) {
                const std::string number = std::to_string(k + 1);
                c.pe_v[k] = r.number(std::string("v").append(number));
                c.pe_theta[k] = r.number(std::string("theta").append(number).append("_K"));
            }
        }
    EXPECT_GT(c.tc, 0.0) << short_name;
    return c;
}

chung::mixture mixture_of(std::span<const chung::component> c, std::span<const double> x) {
    chung::mixture m;
    std::string errormsg;
    EXPECT_TRUE(chung::make_mixture(c, x, m, errormsg)) << errormsg;
    return m;
}
chung::mixture pure(const chung::component& c) {
    const double one = 1.0;
    return mixture_of({&c, 1}, {&one, 1});
}

chung::component constants(double tc, double vc_cm3, double omega, double dipole, double m_g) {
    chung::component c;
    c.tc = tc, c.vc = 1e-6 * vc_cm3, c.acentric = omega, c.dipole = dipole;
    c.molar_mass = 1e-3 * m_g;
    return c;
}

double percent(double value, double reference) {
    return 100.0 * (value / reference - 1.0);
}

// Worked examples of the Chung method with the data printed in Poling et al. (2001) (the
// 2-methylbutane one from the 4th edition, Reid et al. 1987; their results as cited in
// pychemqt lib/compuestos.py and lib/mezcla.py and chemicals thermal_conductivity.py): each
// result, rounded to the digits printed there, is the printed number.
TEST(ChungExamples, WorkedExamplesReproducePrintedDigits) {
    // Example 9-1: SO2 gas at 300 °C, low pressure.
    const auto so2 = pure(constants(430.8, 122.0, 0.257, 1.6, 64.065));
    // Example 9-12: ammonia at 520 K, 600 bar, 48.2 cm³/mol, η° = 182 μP.
    const auto nh3 = pure(constants(405.5, 72.4, 0.256, 1.47, 17.031));
    // Example 9-8: 20.4 % H2S in ethyl ether, 331 K, low pressure.
    const std::array<chung::component, 2> pair{constants(373.4, 98.0, 0.090, 0.9, 34.082),
                                               constants(466.7, 280.0, 0.281, 1.3, 74.123)};
    const std::array<double, 2> x{0.204, 0.796};
    // 2-methylbutane gas at 373.15 K, Cv = 135.9 J/(mol K), η = 87.7 μP.
    const auto ic5 = pure(constants(460.4, 306.0, 0.227, 0.1, 72.151));
    // propylene at 473 K, 150 bar, 172.1 cm³/mol, Cv = 82.67 J/(mol K), η° = 134 μP.
    const auto c3h6 = pure(constants(364.9, 184.6, 0.142, 0.4, 42.081));
    struct example {
        const char* what;
        double computed, printed;
        int decimals;
    };
    for (const auto& e : std::array<example, 5>{{
             {"SO2 gas, eta uP", 1e7 * chung::dilute_viscosity(so2, 573.15), 245.5, 1},
             {"NH3 dense, eta uP", 1e7 * chung::dense_viscosity(nh3, 520.0, 1e6 / 48.2, 182e-7),
              455.0, 0},
             {"H2S + ether gas, eta uP", 1e7 * chung::dilute_viscosity(mixture_of(pair, x), 331.0),
              87.6, 1},
             {"2-methylbutane gas, lambda W/(m K)",
              chung::dilute_conductivity(ic5, 373.15, 8.77e-6, 135.9), 0.0230, 4},
             {"propylene dense, lambda W/(m K)",
              chung::dense_conductivity(c3h6, 473.0, 1e6 / 172.1, 134e-7, 82.67), 0.0616, 4},
         }}) {
        const double scale = std::pow(10.0, e.decimals);
        std::printf("%-36s computed %.7g, printed %.*f\n", e.what, e.computed, e.decimals,
                    e.printed);
        EXPECT_EQ(std::round(e.computed * scale), std::round(e.printed * scale)) << e.what;
    }
}

// The model's own derivatives against central differences of the model itself.
TEST(ChungExamples, DerivativesMatchCentralDifferences) {
    std::array<chung::component, 3> gas{from_data("CH4"), from_data("CO2"), from_data("H2O")};
    gas[2].kappa = 0.076;
    const std::array<double, 3> x{0.7, 0.2, 0.1};
    const auto m = mixture_of(gas, x);
    for (const auto& [t, rho] : {std::pair{250.0, 2.0}, {300.0, 150.0}, {450.0, 400.0}}) {
        chung::properties p, hi, lo;
        chung::evaluate(m, t, rho, p);
        const double ht = 1e-4 * t, hr = 1e-4 * rho;
        chung::evaluate(m, t + ht, rho, hi), chung::evaluate(m, t - ht, rho, lo);
        EXPECT_NEAR(p.eta_t, (hi.eta - lo.eta) / (2 * ht), 1e-6 * std::fabs(p.eta / t));
        EXPECT_NEAR(p.lambda_t, (hi.lambda - lo.lambda) / (2 * ht), 1e-6 * p.lambda / t);
        chung::evaluate(m, t, rho + hr, hi), chung::evaluate(m, t, rho - hr, lo);
        EXPECT_NEAR(p.eta_rho, (hi.eta - lo.eta) / (2 * hr), 1e-6 * p.eta / rho);
        EXPECT_NEAR(p.lambda_rho, (hi.lambda - lo.lambda) / (2 * hr), 1e-6 * p.lambda / rho);
    }
}

// Water (IAPWS R12-08 and R15-11 by python3-iapws), methane, nitrogen, CO2, propane and R134a
// (reference correlations, data/transport/README.md) at published states. Tolerances (%) per
// fluid and phase for viscosity and conductivity: the method's few per cent for nonpolar gases;
// more for dense fluids (CO2 at 1400 kg/m³ is at some 0.5 GPa) and for the polar R134a, whose
// reduced dipole moment (0.99) the polar terms describe poorly in the liquid: its vapour
// conductivity comes out 3 to 12 % high, its liquid conductivity 70 to 110 % high (the dense
// terms' polar part; with μ = 0 it would still be 25 to 35 % high), its liquid viscosity 33 % low.
// The conductivity factor β = 0.7862 - 0.7109 ω + 1.3168 ω²
// holds for nonpolar gases (Chung et al. fitted it per polar fluid), so steam comes out 20 to
// 40 % high; liquid water, strongly associated, is beyond the method (viscosity -35 to -70 %,
// conductivity +130 to +250 %).
TEST(ChungReference, FluidsAgainstReferenceValues) {
    const std::map<std::pair<std::string, std::string>, std::pair<double, double>> tolerance{
        {{"H2O", "gas"}, {15, 45}},      {{"H2O", "supercritical"}, {10, 125}},
        {{"H2O", "liquid"}, {70, 260}},  {{"N2", "gas"}, {5, 5}},
        {{"N2", "liquid"}, {15, 20}},    {{"CH4", "gas"}, {5, 5}},
        {{"CH4", "liquid"}, {15, 10}},   {{"CO2", "gas"}, {5, 5}},
        {{"CO2", "liquid"}, {30, 25}},   {{"C3H8", "gas"}, {10, 10}},
        {{"C3H8", "liquid"}, {10, 10}},  {{"R134a", "gas"}, {20, 15}},
        {{"R134a", "liquid"}, {40, 115}}};
    std::map<std::string, chung::mixture> models;
    int n = 0;
    for (const char* file : {"transport/water_iapws.csv", "transport/reference_values.csv"})
        for (const auto& r : rows_of(file)) {
            const std::string& f = r["fluid"];
            if (!models.count(f)) {
                auto c = from_data(f);
                if (f == "H2O") c.kappa = 0.076; // added by the transport library (Table 9-1)
                models.emplace(f, pure(c));
            }
            const auto& m = models.at(f);
            const double rho =
                r.number("rho") * (r["rho_unit"] == "mol/dm3" ? 1e3 * m.mean_molar_mass : 1.0);
            chung::properties p;
            chung::evaluate(m, r.number("T_K"), rho, p);
            const auto [eta_tol, lambda_tol] = tolerance.at({f, r["phase"]});
            std::printf("%-5s %-7s %-13s T %7.2f K  rho %10.4f kg/m3", f.c_str(), r["tag"].c_str(),
                        r["phase"].c_str(), r.number("T_K"), rho);
            if (r.has("eta_uPas")) {
                const double d = percent(p.eta, 1e-6 * r.number("eta_uPas"));
                std::printf("  eta %+7.2f %%", d);
                EXPECT_LT(std::fabs(d), eta_tol) << f << " " << r["T_K"] << " " << r["rho"];
            }
            if (r.has("lambda_mWmK")) {
                const double d = percent(p.lambda, 1e-3 * r.number("lambda_mWmK"));
                std::printf("  lambda %+7.2f %%", d);
                EXPECT_LT(std::fabs(d), lambda_tol) << f << " " << r["T_K"] << " " << r["rho"];
            }
            std::printf("\n");
            ++n;
        }
    EXPECT_EQ(n, 64);
}

// Surface tension against the correlations of Mulero, Cachadiña and Parra (2012),
// σ = σ0 (1 - T/Tc)^n: nitrogen (σ0 = 0.02898 N/m, n = 1.246) by Brock and Bird, CO2 (0.07863,
// 1.254), which has no normal boiling point, by Curl and Pitzer; within 10 %, the
// corresponding-states methods' few per cent for nonpolar fluids. Above the (pseudo-)critical
// temperature there is none; a mixture averages its components by mole fraction.
TEST(ChungReference, SurfaceTension) {
    const auto n2 = pure(from_data("N2")), co2 = pure(from_data("CO2"));
    for (const auto& [m, t, sigma0, n] : {std::tuple{&n2, 77.355, 0.02898, 1.246},
                                          {&n2, 110.0, 0.02898, 1.246},
                                          {&co2, 273.15, 0.07863, 1.254},
                                          {&co2, 230.0, 0.07863, 1.254}}) {
        const double reference = sigma0 * std::pow(1.0 - t / m->tc, n);
        const double d = percent(chung::surface_tension(*m, t), reference);
        std::printf("sigma %s T %7.3f K  %+6.2f %%\n", m == &n2 ? "N2 " : "CO2", t, d);
        EXPECT_LT(std::fabs(d), 10.0) << t;
    }
    EXPECT_EQ(chung::surface_tension(n2, 126.2), -8888.8);
    // Nitrogen and methane: Kay's pseudo-critical temperature is 158.4 K; at 150 K nitrogen is
    // above its own critical temperature and adds nothing.
    const std::array<chung::component, 2> pair{from_data("N2"), from_data("CH4")};
    const std::array<double, 2> x{0.5, 0.5};
    const auto mix = mixture_of(pair, x);
    EXPECT_NEAR(chung::surface_tension(mix, 150.0),
                0.5 * chung::surface_tension(pure(pair[1]), 150.0), 1e-15);
    EXPECT_EQ(chung::surface_tension(mix, 160.0), -8888.8);
}

} // namespace
