#include "model/ideal_gas.hpp"

#include <cmath>

namespace varimol {

ideal_gas_terms ideal_gas(const component& c, double T) {
    return ideal_gas(c, T, std::log(T / reference_temperature));
}

ideal_gas_terms ideal_gas(const component& c, double T, double ln_t_ratio) {
    const auto& a = c.cp0;
    constexpr double t0 = reference_temperature;
    // h/R = sum_k a_k (T^(k+1) - T0^(k+1))/(k+1); s/R = a0 ln(T/T0) + sum_k>0 a_k (T^k - T0^k)/k
    double h = 0.0, s = a[0] * ln_t_ratio, cp = 0.0, dcp = 0.0;
    double tk = 1.0, t0k = 1.0; // T^k, T0^k
    for (int k = 0; k < 5; ++k) {
        cp += a[k] * tk;
        if (k > 0) {
            s += a[k] * (tk - t0k) / k;
            dcp += k * a[k] * tk / T;
        }
        h += a[k] * (tk * T - t0k * t0) / (k + 1);
        tk *= T;
        t0k *= t0;
    }
    return {gas_constant * h, gas_constant * s, gas_constant * cp, gas_constant * dcp};
}

} // namespace varimol
