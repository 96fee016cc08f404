#include "transport/chung.hpp"

#include "base/common.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace chung {
namespace {

using zp_common::not_set;

// Gas constant of the ideal-gas heat capacities, J/(mol K).
constexpr double gas_constant = 8.3144598;

// Chung et al. (1988), eqs. 4 and 5 (Poling et al. 2001, eqs. 9-4.12 and 9-5.29): the molecular
// size and energy of a fluid from its critical point, σ = 0.809 Vc^(1/3) (Å, Vc in cm³/mol) and
// ε/k = Tc / 1.2593.
constexpr double sigma_per_vc = 0.809;
constexpr double tc_per_epsilon = 1.2593;

// Neufeld, Janzen and Aziz (1972), the reduced collision integral Ω(2,2)* for 0.3 <= T* <= 100:
// Ω_v = A T*^-B + C exp(-D T*) + E exp(-F T*) + G T*^B sin(S T*^W - H). Poling et al. (2001)
// print the first three terms as eq. 9-4.3; the periodic one, below 0.1 %, is kept: without it
// their worked example 9-1 (SO2 at 573 K) comes out 245.6 μP instead of the printed 245.5.
struct neufeld_constants {
    double a, b, c, d, e, f, g, h, s, w;
};
constexpr neufeld_constants neufeld{1.16145, 0.14874,   0.52487, 0.77320, 2.16178,
                                    2.43787, -6.435e-4, 7.27371, 18.0323, -0.76830};

// Coefficients of the dense-fluid terms: X_i = a_i + b_i ω + c_i μ_r⁴ + d_i κ.
struct coefficient_row {
    int i;
    double a, b, c, d;
};

// Chung et al. (1988), Table II: the viscosity coefficients E_i, with the paper's digits (Poling
// et al. 2001, Table 9-6, print them rounded to four or five figures).
constexpr std::array<coefficient_row, 10> viscosity_table{{
    {1, 6.32402, 50.4119, -51.6801, 1189.02},
    {2, 0.12102e-2, -0.11536e-2, -0.62571e-2, 0.37283e-1},
    {3, 5.28346, 254.209, -168.481, 3898.27},
    {4, 6.62263, 38.0957, -8.46414, 31.4178},
    {5, 19.7454, 7.63034, -14.3544, 31.5267},
    {6, -1.89992, -12.5367, 4.98529, -18.1507},
    {7, 24.2745, 3.44945, -11.2913, 69.3466},
    {8, 0.79716, 1.11764, 0.12348e-1, -4.11661},
    {9, -0.23816, 0.67695e-1, -0.81630, 4.02528},
    {10, 0.68629e-1, 0.34793, 0.59256, -0.72663},
}};

// Poling et al. (2001), Table 10-5: the thermal-conductivity coefficients B_i of Chung et al.
// (1988).
constexpr std::array<coefficient_row, 7> conductivity_table{{
    {1, 2.4166, 7.4824e-1, -9.1858e-1, 1.2172e2},
    {2, -5.0924e-1, -1.5094, -4.9991e1, 6.9983e1},
    {3, 6.6107, 5.6207, 6.4760e1, 2.7039e1},
    {4, 1.4543e1, -8.9139, -5.6379, 7.4344e1},
    {5, 7.9274e-1, 8.2019e-1, -6.9369e-1, 6.3173},
    {6, -5.8634, 1.2801e1, 9.5893, 6.5529e1},
    {7, 9.1089e1, 1.2811e2, -5.4217e1, 5.2381e2},
}};

template <std::size_t N>
constexpr std::array<double, N> coefficients(const std::array<coefficient_row, N>& table,
                                             double omega, double mu_r4, double kappa) {
    std::array<double, N> out{};
    for (std::size_t k = 0; k < N; ++k)
        out[k] = table[k].a + table[k].b * omega + table[k].c * mu_r4 + table[k].d * kappa;
    return out;
}

// ---- a number with its derivatives by temperature and by density ----------------------------
// The model is written once, for plain numbers and for these; the derivatives eta_t ... come out
// exact to rounding.
struct dual {
    double v, t, r; // value, d/dT, d/drho
};
inline dual operator+(dual a, dual b) {
    return {a.v + b.v, a.t + b.t, a.r + b.r};
}
inline dual operator+(dual a, double b) {
    return {a.v + b, a.t, a.r};
}
inline dual operator+(double a, dual b) {
    return b + a;
}
inline dual operator-(dual a) {
    return {-a.v, -a.t, -a.r};
}
inline dual operator-(dual a, dual b) {
    return a + (-b);
}
inline dual operator-(dual a, double b) {
    return {a.v - b, a.t, a.r};
}
inline dual operator-(double a, dual b) {
    return a + (-b);
}
inline dual operator*(dual a, dual b) {
    return {a.v * b.v, a.t * b.v + a.v * b.t, a.r * b.v + a.v * b.r};
}
inline dual operator*(dual a, double b) {
    return {a.v * b, a.t * b, a.r * b};
}
inline dual operator*(double a, dual b) {
    return b * a;
}
inline dual operator/(dual a, dual b) {
    const double q = a.v / b.v;
    return {q, (a.t - q * b.t) / b.v, (a.r - q * b.r) / b.v};
}
inline dual operator/(dual a, double b) {
    return a * (1.0 / b);
}
inline dual operator/(double a, dual b) {
    const double q = a / b.v;
    return {q, -q * b.t / b.v, -q * b.r / b.v};
}
inline dual exp(dual a) {
    const double e = std::exp(a.v);
    return {e, e * a.t, e * a.r};
}
inline dual sqrt(dual a) {
    const double s = std::sqrt(a.v);
    return {s, 0.5 * a.t / s, 0.5 * a.r / s};
}
inline dual sin(dual a) {
    const double c = std::cos(a.v);
    return {std::sin(a.v), c * a.t, c * a.r};
}
inline dual pow(dual a, double k) {
    const double p = std::pow(a.v, k), d = k * p / a.v;
    return {p, d * a.t, d * a.r};
}
inline double value(double a) {
    return a;
}
inline double value(dual a) {
    return a.v;
}

// ---- the model ---------------------------------------------------------------------------------

template <class S> S omega_v(S tstar) {
    using std::exp, std::pow, std::sin;
    return neufeld.a * pow(tstar, -neufeld.b) + neufeld.c * exp(-neufeld.d * tstar) +
           neufeld.e * exp(-neufeld.f * tstar) +
           neufeld.g * pow(tstar, neufeld.b) * sin(neufeld.s * pow(tstar, neufeld.w) - neufeld.h);
}

// Chung et al. (1988), eq. 6 (Poling et al. 2001, eq. 9-4.10): η° = 40.785 F_c (M T)^(1/2) /
// (Vc^(2/3) Ω_v) in μP with M in g/mol and Vc in cm³/mol; here in Pa s.
template <class S> S eta_dilute(const mixture& m, S t) {
    using std::sqrt;
    const S tstar = t * (tc_per_epsilon / m.tc);
    return 40.785e-7 * m.fc * sqrt(m.molar_mass * t) / (m.vc23 * omega_v(tstar));
}

// (1 - exp(-a y)) / y, by its series where a y is small
template <class S> S decay_ratio(double a, S y) {
    using std::exp;
    if (std::fabs(a * value(y)) < 1e-4) {
        const S ay = a * y;
        return a * (1.0 - 0.5 * ay + ay * ay / 6.0);
    }
    return (1.0 - exp(-a * y)) / y;
}

// Chung et al. (1988), eqs. 10 and 11 (Poling et al. 2001, eqs. 9-6.19, 9-6.20, 10-5.6):
// G_1 = (1 - y/2) / (1 - y)³ and G_2 from the first five coefficients c_1..c_5.
template <class S> S g1(S y) {
    const S w = 1.0 - y;
    return (1.0 - 0.5 * y) / (w * w * w);
}
template <class S, std::size_t N> S g2(const std::array<double, N>& c, S y, S g1y) {
    using std::exp;
    return (c[0] * decay_ratio(c[3], y) + c[1] * g1y * exp(c[4] * y) + c[2] * g1y) /
           (c[0] * c[3] + c[1] + c[2]);
}

// Chung et al. (1988), eqs. 7 to 12 (Poling et al. 2001, eqs. 9-6.18 to 9-6.21): the kinetic
// part η°(1/G_2 + E_6 y) and the internal part 36.344 (M Tc)^(1/2) / Vc^(2/3) E_7 y² G_2
// exp(E_8 + E_9/T* + E_10/T*²) in μP; y = ρ Vc / 6 with ρ in mol/cm³.
template <class S> S eta_dense(const mixture& m, S t, S y, S eta0) {
    using std::exp;
    const auto& e = m.e;
    const S tstar = t * (tc_per_epsilon / m.tc);
    const S g1y = g1(y), g2y = g2(e, y, g1y);
    const double scale = 36.344e-7 * std::sqrt(m.molar_mass * m.tc) / m.vc23;
    return eta0 * (1.0 / g2y + e[5] * y) +
           scale * e[6] * y * y * g2y * exp(e[7] + e[8] / tstar + e[9] / (tstar * tstar));
}

// Chung et al. (1988), eq. 13 (Poling et al. 2001, eq. 10-3.14): the factor Ψ of the internal
// degrees of freedom, from α = Cv/R - 3/2, β = 0.7862 - 0.7109 ω + 1.3168 ω² and
// Z = 2 + 10.5 Tr².
template <class S> S psi(const mixture& m, S t, S cv) {
    const S alpha = cv / gas_constant - 1.5;
    const double beta = 0.7862 - 0.7109 * m.omega + 1.3168 * m.omega * m.omega;
    const S tr = t / m.tc;
    const S z = 2.0 + 10.5 * tr * tr;
    return 1.0 + alpha * ((0.215 + 0.28288 * alpha - 1.061 * beta + 0.26665 * z) /
                          (0.6366 + beta * z + 1.061 * alpha * beta));
}

// Chung et al. (1988), eq. 14 (Poling et al. 2001, eqs. 10-5.5 to 10-5.7):
// λ = 31.2 η° Ψ / M' (1/G_2 + B_6 y) + q B_7 y² Tr^(1/2) G_2 in W/(m K), with M' in kg/mol and
// q = 3.586e-3 (Tc/M')^(1/2) / Vc^(2/3).
template <class S> S lambda_dense(const mixture& m, S t, S y, S eta0, S cv) {
    using std::sqrt;
    const auto& b = m.b;
    const double mkg = 1e-3 * m.molar_mass;
    const S g1y = g1(y), g2y = g2(b, y, g1y);
    const double q = 3.586e-3 * std::sqrt(m.tc / mkg) / m.vc23;
    return 31.2 * eta0 * psi(m, t, cv) / mkg * (1.0 / g2y + b[5] * y) +
           q * b[6] * y * y * sqrt(t / m.tc) * g2y;
}

// ---- ideal-gas heat capacity ----------------------------------------------------------------

struct heat_capacity {
    double cv, dcv_dt; // J/(mol K), J/(mol K²)
};

bool has_polynomial(const component& c) {
    return std::any_of(c.cp0_poly.begin(), c.cp0_poly.end(), [](double a) { return a != 0.0; });
}
bool has_planck_einstein(const component& c) {
    return c.pe_c0 > 0.0;
}

// cp0/R = a0 + a1 T + ... + a4 T⁴ (Poling et al. 2001, App. A, section C)
heat_capacity polynomial_cv(const component& c, double t) {
    const auto& a = c.cp0_poly;
    const double cp = a[0] + t * (a[1] + t * (a[2] + t * (a[3] + t * a[4])));
    const double dcp = a[1] + t * (2.0 * a[2] + t * (3.0 * a[3] + t * 4.0 * a[4]));
    return {gas_constant * (cp - 1.0), gas_constant * dcp};
}

// cp0/R = c0 + Σ v_k u_k² e^u_k / (e^u_k - 1)², u_k = θ_k/T, the form of the reference equations
// of state, written with w = e^-u so that large θ/T cannot overflow.
heat_capacity planck_einstein_cv(const component& c, double t) {
    double cp = c.pe_c0, dcp = 0.0;
    const int n = std::clamp(c.pe_terms, 0, max_planck_einstein_terms);
    for (int k = 0; k < n; ++k) {
        const double u = c.pe_theta[k] / t;
        if (!(u > 0.0) || u > 700.0) continue; // a vibration that is frozen adds nothing
        const double w = std::exp(-u), one_w = 1.0 - w;
        const double f = u * u * w / (one_w * one_w);
        const double df_du =
            w * ((2.0 * u - u * u) * one_w - 2.0 * u * u * w) / (one_w * one_w * one_w);
        cp += c.pe_v[k] * f;
        dcp += c.pe_v[k] * df_du * (-u / t);
    }
    return {gas_constant * (cp - 1.0), gas_constant * dcp};
}

// The polynomial within its range; outside it the Planck-Einstein form where there is one, else
// the polynomial held at the end of its range.
heat_capacity component_cv(const component& c, double t) {
    const bool poly = has_polynomial(c);
    const bool ranged = c.cp0_tmax > c.cp0_tmin && c.cp0_tmin > 0.0;
    if (poly && (!ranged || (t >= c.cp0_tmin && t <= c.cp0_tmax))) return polynomial_cv(c, t);
    if (has_planck_einstein(c)) return planck_einstein_cv(c, t);
    if (poly) return {polynomial_cv(c, std::clamp(t, c.cp0_tmin, c.cp0_tmax)).cv, 0.0};
    return {not_set, 0.0};
}

// ---- surface tension ------------------------------------------------------------------------

// Brock and Bird (1955) as Poling et al. (2001) eqs. 12-3.5 and 12-3.6:
// σ = Pc^(2/3) Tc^(1/3) Q (1 - Tr)^(11/9) in dyn/cm with Pc in bar,
// Q = 0.1196 [1 + Tbr ln(Pc/1.01325) / (1 - Tbr)] - 0.279. Without a boiling point, Curl and
// Pitzer (1958), Poling et al. (2001) eq. 12-3.7, put
// Q = (1.86 + 1.18 ω)/19.05 [(3.75 + 0.91 ω)/(0.291 - 0.08 ω)]^(2/3).
double surface_factor(const component& c) {
    const double pc_bar = 1e-5 * c.pc;
    double q;
    if (c.tb > 0.0 && c.tb < c.tc) {
        const double tbr = c.tb / c.tc;
        q = 0.1196 * (1.0 + tbr * std::log(pc_bar / 1.01325) / (1.0 - tbr)) - 0.279;
    } else {
        const double w = c.acentric;
        q = (1.86 + 1.18 * w) / 19.05 *
            std::cbrt(std::pow((3.75 + 0.91 * w) / (0.291 - 0.08 * w), 2));
    }
    return 1e-3 * std::cbrt(pc_bar * pc_bar * c.tc) * q;
}

void append_number(std::string& text, double value) {
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    text.append(buffer.data(), end);
}

bool positive(double value) {
    return std::isfinite(value) && value > 0.0;
}

} // namespace

bool make_mixture(std::span<const component> comps, std::span<const double> x, mixture& m,
                  std::string& errormsg) {
    errormsg = zp_common::no_errors;
    m = mixture{};
    const auto fail = [&](std::string_view what, int i, double value) {
        errormsg.assign(zp_common::error_prefix).append("own transport model: ").append(what);
        if (i >= 0) errormsg.append(" of component ").append(std::to_string(i + 1));
        errormsg.append(" is ");
        append_number(errormsg, value);
        return false;
    };
    const int n = static_cast<int>(comps.size());
    if (n < 1 || n > max_components || x.size() < comps.size())
        return fail("the number of components", -1, n);
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
        if (!std::isfinite(x[i]) || x[i] < 0.0) return fail("the mole fraction", i, x[i]);
        sum += x[i];
    }
    if (!(sum > 0.0)) return fail("the sum of the mole fractions", -1, sum);
    for (int i = 0; i < n; ++i) {
        const component& c = comps[i];
        if (!positive(c.tc)) return fail("the critical temperature (K)", i, c.tc);
        if (!positive(c.vc)) return fail("the critical volume (m3/mol)", i, c.vc);
        if (!positive(c.molar_mass)) return fail("the molar mass (kg/mol)", i, c.molar_mass);
        if (!std::isfinite(c.acentric)) return fail("the acentric factor", i, c.acentric);
        if (!std::isfinite(c.dipole) || c.dipole < 0.0)
            return fail("the dipole moment (debye)", i, c.dipole);
        if (!std::isfinite(c.kappa) || c.kappa < 0.0)
            return fail("the association factor", i, c.kappa);
    }

    m.n = n;
    std::copy_n(comps.begin(), n, m.comp.begin());
    std::array<double, max_components> sigma{}, epsilon{}, vc{}, mg{};
    for (int i = 0; i < n; ++i) {
        m.x[i] = x[i] / sum;
        m.mean_molar_mass += m.x[i] * comps[i].molar_mass;
        vc[i] = 1e6 * comps[i].vc;
        mg[i] = 1e3 * comps[i].molar_mass;
        sigma[i] = sigma_per_vc * std::cbrt(vc[i]);
        epsilon[i] = comps[i].tc / tc_per_epsilon;
    }

    // Chung et al. (1988), eqs. 14 to 27 (Poling et al. 2001, eqs. 9-5.24 to 9-5.44), with the
    // binary interaction parameters ξ_ij = ζ_ij = 1: σ_ij = (σ_i σ_j)^(1/2),
    // ε_ij = (ε_i ε_j)^(1/2), ω_ij = (ω_i + ω_j)/2, M_ij = 2 M_i M_j / (M_i + M_j),
    // κ_ij = (κ_i κ_j)^(1/2).
    double s3 = 0.0, es3 = 0.0, ws3 = 0.0, em = 0.0, mu4 = 0.0, kappa = 0.0;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double xx = m.x[i] * m.x[j];
            const double sij = std::sqrt(sigma[i] * sigma[j]), sij3 = sij * sij * sij;
            const double eij = std::sqrt(epsilon[i] * epsilon[j]);
            const double mij = 2.0 * mg[i] * mg[j] / (mg[i] + mg[j]);
            const double mui2 = comps[i].dipole * comps[i].dipole;
            const double muj2 = comps[j].dipole * comps[j].dipole;
            s3 += xx * sij3;
            es3 += xx * eij * sij3;
            ws3 += xx * 0.5 * (comps[i].acentric + comps[j].acentric) * sij3;
            em += xx * eij * sij * sij * std::sqrt(mij);
            mu4 += xx * mui2 * muj2 / sij3;
            kappa += xx * std::sqrt(comps[i].kappa * comps[j].kappa);
        }
    const double sigma_m = std::cbrt(s3), epsilon_m = es3 / s3;
    const double mm_root = em / (epsilon_m * sigma_m * sigma_m);
    m.vc = s3 / (sigma_per_vc * sigma_per_vc * sigma_per_vc);
    m.vc23 = std::cbrt(m.vc * m.vc);
    m.tc = tc_per_epsilon * epsilon_m;
    m.omega = ws3 / s3;
    m.molar_mass = mm_root * mm_root;
    m.kappa = kappa;
    const double dipole_m = std::sqrt(std::sqrt(s3 * mu4));
    // Chung et al. (1988), eqs. 7 and 8 (Poling et al. 2001, eqs. 9-4.11 and 9-4.12):
    // μ_r = 131.3 μ / (Vc Tc)^(1/2), F_c = 1 - 0.2756 ω + 0.059035 μ_r⁴ + κ.
    m.mu_r = 131.3 * dipole_m / std::sqrt(m.vc * m.tc);
    const double mu_r4 = m.mu_r * m.mu_r * m.mu_r * m.mu_r;
    m.fc = 1.0 - 0.2756 * m.omega + 0.059035 * mu_r4 + m.kappa;
    m.e = coefficients(viscosity_table, m.omega, mu_r4, m.kappa);
    m.b = coefficients(conductivity_table, m.omega, mu_r4, m.kappa);

    m.has_cp0 = true, m.has_surface = true;
    for (int i = 0; i < n; ++i) {
        m.has_cp0 = m.has_cp0 && (has_polynomial(comps[i]) || has_planck_einstein(comps[i]));
        m.has_surface = m.has_surface && positive(comps[i].pc);
        if (positive(comps[i].pc)) m.surface_factor[i] = surface_factor(comps[i]);
        // Kay's rule: the pseudo-critical temperature is the mole-fraction average.
        m.tc_surface += m.x[i] * comps[i].tc;
    }
    return true;
}

void evaluate(const mixture& m, double t, double rho, properties& out) {
    // y = ρ Vc / 6 with the molar density in mol/cm³
    const double dy_drho = 1e-6 * m.vc / (6.0 * m.mean_molar_mass);
    const dual tt{t, 1.0, 0.0}, y{rho * dy_drho, 0.0, dy_drho};
    const dual eta0 = eta_dilute(m, tt);
    const dual eta = eta_dense(m, tt, y, eta0);
    out.eta = eta.v, out.eta_t = eta.t, out.eta_rho = eta.r;
    if (m.has_cp0) {
        double cv = 0.0, dcv = 0.0;
        for (int i = 0; i < m.n; ++i) {
            const heat_capacity c = component_cv(m.comp[i], t);
            cv += m.x[i] * c.cv, dcv += m.x[i] * c.dcv_dt;
        }
        const dual lambda = lambda_dense(m, tt, y, eta0, dual{cv, dcv, 0.0});
        out.lambda = lambda.v, out.lambda_t = lambda.t, out.lambda_rho = lambda.r;
    } else {
        out.lambda = out.lambda_t = out.lambda_rho = not_set;
    }
    out.sigma = surface_tension(m, t);
}

double collision_integral(double tstar) {
    return omega_v(tstar);
}

double dilute_viscosity(const mixture& m, double t) {
    return eta_dilute(m, t);
}

double dense_viscosity(const mixture& m, double t, double rho_molar, double eta0) {
    return eta_dense(m, t, 1e-6 * rho_molar * m.vc / 6.0, eta0);
}

// Chung et al. (1988), eq. 13 (Poling et al. 2001, eq. 10-3.14): λ M' / (η° Cv) = 3.75 Ψ / (Cv/R).
double dilute_conductivity(const mixture& m, double t, double eta0, double cv) {
    return 3.75 * gas_constant * eta0 * psi(m, t, cv) / (1e-3 * m.molar_mass);
}

double dense_conductivity(const mixture& m, double t, double rho_molar, double eta0, double cv) {
    return lambda_dense(m, t, 1e-6 * rho_molar * m.vc / 6.0, eta0, cv);
}

double ideal_gas_cv(const component& c, double t) {
    return component_cv(c, t).cv;
}

// The mole-fraction average of the pure fluids' values, below Kay's pseudo-critical temperature
// Σ x_i Tc_i (a component above its own critical temperature adds nothing).
double surface_tension(const mixture& m, double t) {
    if (!m.has_surface || !(t < m.tc_surface)) return not_set;
    double sigma = 0.0;
    for (int i = 0; i < m.n; ++i)
        if (t < m.comp[i].tc)
            sigma += m.x[i] * m.surface_factor[i] * std::pow(1.0 - t / m.comp[i].tc, 11.0 / 9.0);
    return sigma;
}

} // namespace chung
