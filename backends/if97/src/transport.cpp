// Viscosity (IAPWS R12-08), thermal conductivity (IAPWS R15-11) and surface tension
// (IAPWS R1-76(2014)) of ordinary water, in the forms the releases recommend for industrial use.
#include "transport.hpp"

#include "sentinel.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace if97::transport {
namespace {

// Reducing constants, R12-08 eqs. 1-4 and R15-11 eqs. 1-6 (the same critical point).
constexpr double T_c = 647.096;        // K
constexpr double rho_c = 322.0;        // kg/m³
constexpr double p_c = 22.064;         // MPa
constexpr double mu_star = 1.0e-6;     // Pa s
constexpr double lambda_star = 1.0e-3; // W/(m K)
constexpr double R = 0.46151805;       // kJ/(kg K), specific gas constant of R15-11 eq. 6

struct term {
    int i;
    int j;
    double n;
};

// A sum over rows {i, j, n} spread into a dense matrix n[i][j] at compile time, so that
// sum_ij n_ij a^i b^j evaluates with nested Horner schemes and no calls to std::pow.
template <std::size_t I, std::size_t J> struct double_poly {
    std::array<std::array<double, J>, I> n{};

    template <std::size_t K> constexpr explicit double_poly(const std::array<term, K>& rows) {
        for (const term& t : rows) n[t.i][t.j] = t.n;
    }

    double operator()(double a, double b) const {
        double sum = 0.0;
        for (std::size_t i = I; i-- > 0;) {
            double inner = 0.0;
            for (std::size_t j = J; j-- > 0;) inner = inner * b + n[i][j];
            sum = sum * a + inner;
        }
        return sum;
    }
};

// --- Viscosity, IAPWS R12-08 ---

// Table 1: coefficients H_i of the dilute-gas viscosity, eq. 11
constexpr std::array<double, 4> H_i = {
    1.67752,
    2.20462,
    0.6366564,
    -0.241605,
};

// Table 2: coefficients H_ij of the residual viscosity, eq. 12
constexpr std::array<term, 21> H_ij = {{
    {0, 0, 5.20094e-1},  {1, 0, 8.50895e-2},  {2, 0, -1.08374},    {3, 0, -2.89555e-1},
    {0, 1, 2.22531e-1},  {1, 1, 9.99115e-1},  {2, 1, 1.88797},     {3, 1, 1.26613},
    {5, 1, 1.20573e-1},  {0, 2, -2.81378e-1}, {1, 2, -9.06851e-1}, {2, 2, -7.72479e-1},
    {3, 2, -4.89837e-1}, {4, 2, -2.57040e-1}, {0, 3, 1.61913e-1},  {1, 3, 2.57399e-1},
    {0, 4, -3.25372e-2}, {3, 4, 6.98452e-2},  {4, 5, 8.72102e-3},  {3, 6, -4.35673e-3},
    {5, 6, -5.93264e-4},
}};
constexpr double_poly<6, 7> mu1_sum(H_ij);

// mu0 * mu1 of eq. 10 (reduced by mu_star), from the reduced temperature and density
double reduced_viscosity(double Tr, double dr) {
    const double inv_Tr = 1.0 / Tr;
    const double mu0_denominator = H_i[0] + inv_Tr * (H_i[1] + inv_Tr * (H_i[2] + inv_Tr * H_i[3]));
    const double mu0 = 100.0 * std::sqrt(Tr) / mu0_denominator;        // eq. 11
    const double mu1 = std::exp(dr * mu1_sum(inv_Tr - 1.0, dr - 1.0)); // eq. 12
    return mu0 * mu1;
}

// --- Thermal conductivity, IAPWS R15-11 ---

// Table 1: coefficients L_k of the dilute-gas conductivity, eq. 16
constexpr std::array<double, 5> L_k = {
    2.443221e-3, 1.323095e-2, 6.770357e-3, -3.454586e-3, 4.096266e-4,
};

// Table 2: coefficients L_ij of the residual conductivity, eq. 17
constexpr std::array<term, 28> L_ij = {{
    {0, 0, 1.60397357},    {0, 1, -0.646013523},  {0, 2, 0.111443906},  {0, 3, 0.102997357},
    {0, 4, -0.0504123634}, {0, 5, 0.00609859258}, {1, 0, 2.33771842},   {1, 1, -2.78843778},
    {1, 2, 1.53616167},    {1, 3, -0.463045512},  {1, 4, 0.0832827019}, {1, 5, -0.00719201245},
    {2, 0, 2.19650529},    {2, 1, -4.54580785},   {2, 2, 3.55777244},   {2, 3, -1.40944978},
    {2, 4, 0.275418278},   {2, 5, -0.0205938816}, {3, 0, -1.21051378},  {3, 1, 1.60812989},
    {3, 2, -0.621178141},  {3, 3, 0.0716373224},  {4, 0, -2.7203370},   {4, 1, 4.57586331},
    {4, 2, -3.18369245},   {4, 3, 1.1168348},     {4, 4, -0.19268305},  {4, 5, 0.012913842},
}};
constexpr double_poly<5, 6> lambda1_sum(L_ij);

// Table 3: critical-region constants
constexpr double Lambda = 177.8514;
constexpr double q_D_inverse = 0.40; // nm
constexpr double nu = 0.630;
constexpr double gamma = 1.239;
constexpr double xi_0 = 0.13; // nm
constexpr double Gamma_0 = 0.06;
constexpr double T_R = 1.5; // reduced reference temperature

// Table 6: coefficients A_ij of zeta(T_R, rho) for industrial use, eq. 25. Column j holds the
// polynomial for the j-th density range, whose upper reduced densities follow the table.
constexpr std::array<std::array<double, 5>, 6> A_ij = {{
    {6.53786807199516, 6.52717759281799, 5.35500529896124, 1.55225959906681, 1.11999926419994},
    {-5.61149954923348, -6.30816983387575, -3.96415689925446, 0.464621290821181, 0.595748562571649},
    {3.39624167361325, 8.08379285492595, 8.91990208918795, 8.93237374861479, 9.88952565078920},
    {-2.27492629730878, -9.82240510197603, -12.0338729505790, -11.0321960061126, -10.3255051147040},
    {10.2631854662709, 12.1358413791395, 9.19494865194302, 6.16780999933360, 4.66861294457414},
    {1.97815050331519, -5.54349664571295, -2.16866274479712, -0.965458722086812,
     -0.503243546373828},
}};
constexpr std::array<double, 4> A_range_upper = {0.310559006, 0.776397516, 1.242236025,
                                                 1.863354037};

// The release caps cp/R, cp/cv and zeta at 1e13 where an equation of state returns a negative
// or an unbounded value next to the critical point.
constexpr double cap = 1.0e13;
double capped(double value) {
    return (value < 0.0 || value > cap) ? cap : value;
}

// Reduced (dimensionless) zeta(T_R, rho) of eq. 25
double zeta_reference(double dr) {
    std::size_t j = 0;
    while (j < A_range_upper.size() && dr > A_range_upper[j]) ++j;
    double sum = 0.0;
    for (std::size_t i = A_ij.size(); i-- > 0;) sum = sum * dr + A_ij[i][j];
    return 1.0 / sum;
}

// Z(y) of eq. 19, with kappa = cp/cv
double crossover(double y, double dr, double kappa) {
    if (y < 1.2e-7) return 0.0; // the bracket cancels to rounding noise; the limit is 0
    const double inv_kappa = 1.0 / kappa;
    const double damping = 1.0 - std::exp(-1.0 / (1.0 / y + y * y / (3.0 * dr * dr)));
    return 2.0 / (std::numbers::pi * y) *
           ((1.0 - inv_kappa) * std::atan(y) + inv_kappa * y - damping);
}

} // namespace

double viscosity(double T, double rho) {
    return mu_star * reduced_viscosity(T / T_c, rho / rho_c);
}

double drho_dp_reference(double rho) {
    return zeta_reference(rho / rho_c) * rho_c / p_c;
}

conductivity_terms conductivity_parts(double T, double rho, double cp, double cv, double drho_dp_T,
                                      double drho_dp_TR) {
    const double Tr = T / T_c;
    const double dr = rho / rho_c;
    const double inv_Tr = 1.0 / Tr;
    conductivity_terms terms{};

    double lambda0_denominator = 0.0;
    for (std::size_t k = L_k.size(); k-- > 0;)
        lambda0_denominator = lambda0_denominator * inv_Tr + L_k[k];
    terms.lambda0 = std::sqrt(Tr) / lambda0_denominator;                // eq. 16
    terms.lambda1 = std::exp(dr * lambda1_sum(inv_Tr - 1.0, dr - 1.0)); // eq. 17

    // Simplified critical enhancement, eqs. 18-24
    const double zeta = capped(drho_dp_T * p_c / rho_c);
    const double zeta_R = drho_dp_TR * p_c / rho_c;
    const double delta_chi = dr * (zeta - zeta_R * T_R / Tr); // eq. 23
    if (!(delta_chi > 0.0)) return terms; // no enhancement where the difference is negative
    const double xi = xi_0 * std::pow(delta_chi / Gamma_0, nu / gamma); // eq. 22, nm
    const double y = xi / q_D_inverse;                                  // eq. 20
    const double cp_reduced = capped(cp / R);
    const double kappa = capped(cp / cv);
    const double mu_reduced = reduced_viscosity(Tr, dr); // industrial viscosity, mu2 = 1
    terms.lambda2 = Lambda * dr * cp_reduced * Tr / mu_reduced * crossover(y, dr, kappa); // eq. 18
    return terms;
}

double conductivity(double T, double rho, double cp, double cv, double drho_dp_T,
                    double drho_dp_TR) {
    const conductivity_terms t = conductivity_parts(T, rho, cp, cv, drho_dp_T, drho_dp_TR);
    return lambda_star * (t.lambda0 * t.lambda1 + t.lambda2);
}

double surface_tension(double T) {
    // R1-76(2014) eq. 1
    constexpr double B = 235.8e-3; // N/m
    constexpr double b = -0.625;
    constexpr double mu = 1.256;
    if (!(T < T_c)) return not_set; // no interface at or above the critical point (NaN too)
    const double tau = 1.0 - T / T_c;
    return B * std::pow(tau, mu) * (1.0 + b * tau);
}

} // namespace if97::transport
