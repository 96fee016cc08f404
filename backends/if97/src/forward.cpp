#include "forward.hpp"

#include <array>
#include <cmath>

namespace if97::forward {

namespace {

using power_sum::term;

// R7-97(2012) Table 2: region 1, eq. 7. gamma = sum n (7.1 - pi)^I (tau - 1.222)^J,
// pi = p/16.53 MPa, tau = 1386 K/T.
constexpr std::array<term, 34> region1{{
    {1, 0, -2, 0.14632971213167},         {2, 0, -1, -0.84548187169114},
    {3, 0, 0, -0.37563603672040e1},       {4, 0, 1, 0.33855169168385e1},
    {5, 0, 2, -0.95791963387872},         {6, 0, 3, 0.15772038513228},
    {7, 0, 4, -0.16616417199501e-1},      {8, 0, 5, 0.81214629983568e-3},
    {9, 1, -9, 0.28319080123804e-3},      {10, 1, -7, -0.60706301565874e-3},
    {11, 1, -1, -0.18990068218419e-1},    {12, 1, 0, -0.32529748770505e-1},
    {13, 1, 1, -0.21841717175414e-1},     {14, 1, 3, -0.52838357969930e-4},
    {15, 2, -3, -0.47184321073267e-3},    {16, 2, 0, -0.30001780793026e-3},
    {17, 2, 1, 0.47661393906987e-4},      {18, 2, 3, -0.44141845330846e-5},
    {19, 2, 17, -0.72694996297594e-15},   {20, 3, -4, -0.31679644845054e-4},
    {21, 3, 0, -0.28270797985312e-5},     {22, 3, 6, -0.85205128120103e-9},
    {23, 4, -5, -0.22425281908000e-5},    {24, 4, -2, -0.65171222895601e-6},
    {25, 4, 10, -0.14341729937924e-12},   {26, 5, -8, -0.40516996860117e-6},
    {27, 8, -11, -0.12734301741641e-8},   {28, 8, -6, -0.17424871230634e-9},
    {29, 21, -29, -0.68762131295531e-18}, {30, 23, -31, 0.14478307828521e-19},
    {31, 29, -38, 0.26335781662795e-22},  {32, 30, -39, -0.11947622640071e-22},
    {33, 31, -40, 0.18228094581404e-23},  {34, 32, -41, -0.93537087292458e-25},
}};

// R7-97(2012) Table 10: ideal-gas part of region 2, eq. 16 (I is unused, written 0).
// gamma_o = ln pi + sum n tau^J, pi = p/1 MPa, tau = 540 K/T.
constexpr std::array<term, 9> region2_ideal{{
    {1, 0, 0, -0.96927686500217e1},
    {2, 0, 1, 0.10086655968018e2},
    {3, 0, -5, -0.56087911283020e-2},
    {4, 0, -4, 0.71452738081455e-1},
    {5, 0, -3, -0.40710498223928},
    {6, 0, -2, 0.14240819171444e1},
    {7, 0, -1, -0.43839511319450e1},
    {8, 0, 2, -0.28408632460772},
    {9, 0, 3, 0.21268463753307e-1},
}};

// R7-97(2012) Table 11: residual part of region 2, eq. 17. gamma_r = sum n pi^I (tau - 0.5)^J.
constexpr std::array<term, 43> region2_residual{{
    {1, 1, 0, -0.17731742473213e-2},    {2, 1, 1, -0.17834862292358e-1},
    {3, 1, 2, -0.45996013696365e-1},    {4, 1, 3, -0.57581259083432e-1},
    {5, 1, 6, -0.50325278727930e-1},    {6, 2, 1, -0.33032641670203e-4},
    {7, 2, 2, -0.18948987516315e-3},    {8, 2, 4, -0.39392777243355e-2},
    {9, 2, 7, -0.43797295650573e-1},    {10, 2, 36, -0.26674547914087e-4},
    {11, 3, 0, 0.20481737692309e-7},    {12, 3, 1, 0.43870667284435e-6},
    {13, 3, 3, -0.32277677238570e-4},   {14, 3, 6, -0.15033924542148e-2},
    {15, 3, 35, -0.40668253562649e-1},  {16, 4, 1, -0.78847309559367e-9},
    {17, 4, 2, 0.12790717852285e-7},    {18, 4, 3, 0.48225372718507e-6},
    {19, 5, 7, 0.22922076337661e-5},    {20, 6, 3, -0.16714766451061e-10},
    {21, 6, 16, -0.21171472321355e-2},  {22, 6, 35, -0.23895741934104e2},
    {23, 7, 0, -0.59059564324270e-17},  {24, 7, 11, -0.12621808899101e-5},
    {25, 7, 25, -0.38946842435739e-1},  {26, 8, 8, 0.11256211360459e-10},
    {27, 8, 36, -0.82311340897998e1},   {28, 9, 13, 0.19809712802088e-7},
    {29, 10, 4, 0.10406965210174e-18},  {30, 10, 10, -0.10234747095929e-12},
    {31, 10, 14, -0.10018179379511e-8}, {32, 16, 29, -0.80882908646985e-10},
    {33, 16, 50, 0.10693031879409},     {34, 18, 57, -0.33662250574171},
    {35, 20, 20, 0.89185845355421e-24}, {36, 20, 35, 0.30629316876232e-12},
    {37, 20, 48, -0.42002467698208e-5}, {38, 21, 21, -0.59056029685639e-25},
    {39, 22, 53, 0.37826947613457e-5},  {40, 23, 39, -0.12768608934681e-14},
    {41, 24, 26, 0.73087610595061e-28}, {42, 24, 40, 0.55414715350778e-16},
    {43, 24, 58, -0.94369707241210e-6},
}};

// R7-97(2012) Table 30: region 3, eq. 28. phi = n1 ln delta + sum_{i=2..40} n delta^I tau^J,
// delta = rho/322 kg/m³, tau = 647.096 K/T.
constexpr double region3_n1 = 0.10658070028513e1;
constexpr std::array<term, 39> region3{{
    {2, 0, 0, -0.15732845290239e2},     {3, 0, 1, 0.20944396974307e2},
    {4, 0, 2, -0.76867707878716e1},     {5, 0, 7, 0.26185947787954e1},
    {6, 0, 10, -0.28080781148620e1},    {7, 0, 12, 0.12053369696517e1},
    {8, 0, 23, -0.84566812812502e-2},   {9, 1, 2, -0.12654315477714e1},
    {10, 1, 6, -0.11524407806681e1},    {11, 1, 15, 0.88521043984318},
    {12, 1, 17, -0.64207765181607},     {13, 2, 0, 0.38493460186671},
    {14, 2, 2, -0.85214708824206},      {15, 2, 6, 0.48972281541877e1},
    {16, 2, 7, -0.30502617256965e1},    {17, 2, 22, 0.39420536879154e-1},
    {18, 2, 26, 0.12558408424308},      {19, 3, 0, -0.27999329698710},
    {20, 3, 2, 0.13899799569460e1},     {21, 3, 4, -0.20189915023570e1},
    {22, 3, 16, -0.82147637173963e-2},  {23, 3, 26, -0.47596035734923},
    {24, 4, 0, 0.43984074473500e-1},    {25, 4, 2, -0.44476435428739},
    {26, 4, 4, 0.90572070719733},       {27, 4, 26, 0.70522450087967},
    {28, 5, 1, 0.10770512626332},       {29, 5, 3, -0.32913623258954},
    {30, 5, 26, -0.50871062041158},     {31, 6, 0, -0.22175400873096e-1},
    {32, 6, 2, 0.94260751665092e-1},    {33, 6, 26, 0.16436278447961},
    {34, 7, 2, -0.13503372241348e-1},   {35, 8, 26, -0.14834345352472e-1},
    {36, 9, 2, 0.57922953628084e-3},    {37, 9, 26, 0.32308904703711e-2},
    {38, 10, 0, 0.80964802996215e-4},   {39, 10, 1, -0.16557679795037e-3},
    {40, 11, 26, -0.44923899061815e-4},
}};

// R7-97(2012) Table 37: ideal-gas part of region 5, eq. 33 (I unused, written 0).
// gamma_o = ln pi + sum n tau^J, pi = p/1 MPa, tau = 1000 K/T.
constexpr std::array<term, 6> region5_ideal{{
    {1, 0, 0, -0.13179983674201e2},
    {2, 0, 1, 0.68540841634434e1},
    {3, 0, -3, -0.24805148933466e-1},
    {4, 0, -2, 0.36901534980333},
    {5, 0, -1, -0.31161318213925e1},
    {6, 0, 2, -0.32961626538917},
}};

// R7-97(2012) Table 38: residual part of region 5, eq. 34. gamma_r = sum n pi^I tau^J.
constexpr std::array<term, 6> region5_residual{{
    {1, 1, 1, 0.15736404855259e-2},
    {2, 1, 2, 0.90153761673944e-3},
    {3, 1, 3, -0.50270077677648e-2},
    {4, 2, 3, 0.22440037409485e-5},
    {5, 2, 9, -0.41163275453471e-5},
    {6, 3, 7, 0.37919454822955e-7},
}};

// R7-97(2012) Table 34: region 4, eqs. 29-31 (n[1]..n[10]; n[0] unused).
constexpr std::array<double, 11> n4{
    0.0,
    0.11670521452767e4,
    -0.72421316703206e6,
    -0.17073846940092e2,
    0.12020824702470e5,
    -0.32325550322333e7,
    0.14915108613530e2,
    -0.48232657361591e4,
    0.40511340542057e6,
    -0.23855557567849,
    0.65017534844798e3,
};

// R7-97(2012) Table 1: B23 boundary, eqs. 5 and 6 (n[1]..n[5]).
constexpr std::array<double, 6> n23{
    0.0,
    0.34805185628969e3,
    -0.11671859879975e1,
    0.10192970039326e-2,
    0.57254459862746e3,
    0.13918839778870e2,
};

// The ideal-gas part ln pi + sum n tau^J added to a residual sum.
template <const auto& ideal, int order>
[[gnu::always_inline]] inline derivatives with_ideal_part(derivatives d, double pi, double tau) {
    const double r = 1.0 / pi;
    const derivatives o = power_sum::evaluate<ideal, order>(1.0, tau, 1.0, 1.0 / tau);
    d.f_y += o.f_y;
    if constexpr (order == 0) return d; // gamma_tau alone: no logarithm
    d.f += std::log(pi) + o.f;
    d.f_x += r;
    if constexpr (order >= 2) {
        d.f_xx -= r * r;
        d.f_yy += o.f_yy;
    }
    if constexpr (order >= 3) {
        d.f_xxx += 2.0 * r * r * r;
        d.f_yyy += o.f_yyy;
    }
    return d;
}

} // namespace

// The sums are built twice, for processors with AVX2 and for any x86-64 (or once elsewhere); the
// library picks the right one when it is loaded. The order of the additions is the same in both,
// so are the results.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define IF97_CLONES [[gnu::target_clones("arch=x86-64-v3", "default")]]
#else
#define IF97_CLONES
#endif

template <int order> IF97_CLONES derivatives gamma1(double p, double T) {
    const double pi = p / p1_star;
    // tau - 1.222 and its reciprocal both straight from T, so the two divisions overlap
    const double y_num = T1_star - 1.222 * T;
    derivatives d =
        power_sum::evaluate<region1, order>(7.1 - pi, y_num / T, 1.0 / (7.1 - pi), T / y_num);
    // d/dpi = -d/d(7.1 - pi): odd orders in pi change sign.
    d.f_x = -d.f_x;
    d.f_xy = -d.f_xy;
    d.f_xxx = -d.f_xxx;
    d.f_xyy = -d.f_xyy;
    return d;
}

template <int order> IF97_CLONES derivatives gamma2(double p, double T) {
    const double pi = p / p2_star;
    const double tau = T2_star / T;
    const double y_num = T2_star - 0.5 * T; // tau - 0.5 = y_num / T
    return with_ideal_part<region2_ideal, order>(
        power_sum::evaluate<region2_residual, order>(pi, y_num / T, 1.0 / pi, T / y_num), pi, tau);
}

template <int order> IF97_CLONES derivatives gamma5(double p, double T) {
    const double pi = p / p5_star;
    const double tau = T5_star / T;
    return with_ideal_part<region5_ideal, order>(
        power_sum::evaluate<region5_residual, order>(pi, tau), pi, tau);
}

template <int order> IF97_CLONES derivatives phi3(double rho, double T) {
    const double delta = rho / rhoc;
    derivatives d = power_sum::evaluate<region3, order>(delta, Tc / T);
    const double r = 1.0 / delta;
    d.f += region3_n1 * std::log(delta);
    d.f_x += region3_n1 * r;
    if constexpr (order >= 2) d.f_xx -= region3_n1 * r * r;
    if constexpr (order >= 3) d.f_xxx += 2.0 * region3_n1 * r * r * r;
    return d;
}

template derivatives gamma1<0>(double, double);
template derivatives gamma1<1>(double, double);
template derivatives gamma1<2>(double, double);
template derivatives gamma1<3>(double, double);
template derivatives gamma2<0>(double, double);
template derivatives gamma2<1>(double, double);
template derivatives gamma2<2>(double, double);
template derivatives gamma2<3>(double, double);
template derivatives gamma5<0>(double, double);
template derivatives gamma5<1>(double, double);
template derivatives gamma5<2>(double, double);
template derivatives gamma5<3>(double, double);
template derivatives phi3<1>(double, double);
template derivatives phi3<2>(double, double);
template derivatives phi3<3>(double, double);

// R7-97 eq. 30: the saturation line is the quadratic A beta^2 + B beta + C = 0 in
// beta = (ps/1 MPa)^(1/4), with coefficients quadratic in theta = T + n9/(T - n10).
double psat(double T) {
    const double theta = T + n4[9] / (T - n4[10]);
    const double A = (theta + n4[1]) * theta + n4[2];
    const double B = (n4[3] * theta + n4[4]) * theta + n4[5];
    const double C = (n4[6] * theta + n4[7]) * theta + n4[8];
    const double beta = 2.0 * C / (-B + std::sqrt(B * B - 4.0 * A * C));
    const double beta2 = beta * beta;
    return beta2 * beta2;
}

// Derivative of eq. 30 by implicit differentiation of the quadratic in beta.
double dpsat_dT(double T) {
    const double theta = T + n4[9] / (T - n4[10]);
    const double A = (theta + n4[1]) * theta + n4[2];
    const double B = (n4[3] * theta + n4[4]) * theta + n4[5];
    const double C = (n4[6] * theta + n4[7]) * theta + n4[8];
    const double beta = 2.0 * C / (-B + std::sqrt(B * B - 4.0 * A * C));
    const double dA = 2.0 * theta + n4[1];
    const double dB = 2.0 * n4[3] * theta + n4[4];
    const double dC = 2.0 * n4[6] * theta + n4[7];
    const double dbeta_dtheta = -((dA * beta + dB) * beta + dC) / (2.0 * A * beta + B);
    const double dtheta_dT = 1.0 - n4[9] / ((T - n4[10]) * (T - n4[10]));
    return 4.0 * beta * beta * beta * dbeta_dtheta * dtheta_dT;
}

// R7-97 eq. 31: the same quadratic solved for theta, with beta = (p/1 MPa)^(1/4).
double tsat(double p) {
    const double beta = std::sqrt(std::sqrt(p));
    const double E = (beta + n4[3]) * beta + n4[6];
    const double F = (n4[1] * beta + n4[4]) * beta + n4[7];
    const double G = (n4[2] * beta + n4[5]) * beta + n4[8];
    const double D = 2.0 * G / (-F - std::sqrt(F * F - 4.0 * E * G));
    const double a = n4[10] + D;
    return 0.5 * (a - std::sqrt(a * a - 4.0 * (n4[9] + n4[10] * D)));
}

double p_b23(double T) {
    return n23[1] + (n23[2] + n23[3] * T) * T;
}

double t_b23(double p) {
    return n23[4] + std::sqrt((p - n23[5]) / n23[3]);
}

} // namespace if97::forward
