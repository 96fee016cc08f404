#pragma once
// Temperature functions of the attraction parameter, a(T) = a_c alpha(T), each one cited row.
// All three have the Soave form sqrt(alpha) = 1 + kappa (1 - sqrt(Tr)); the function returns
// sqrt(alpha), so that the van der Waals mixing rule needs no square roots.
#include "model/taylor.hpp"

namespace varimol {

enum class alpha_kind { prsv, pr1978, srk };

// kappa0 of the alpha function at acentric factor w (constant part of kappa)
inline double alpha_kappa0(alpha_kind kind, double w) {
    switch (kind) {
    case alpha_kind::prsv: // Stryjek and Vera, Can. J. Chem. Eng. 64 (1986) 323, eq. 7
        return 0.378893 + w * (1.4897153 + w * (-0.17131848 + w * 0.0196554));
    case alpha_kind::pr1978: // Robinson and Peng, GPA Research Report RR-28 (1978)
        if (w <= 0.491) return 0.37464 + w * (1.54226 - w * 0.26992);
        return 0.379642 + w * (1.48503 + w * (-0.164423 + w * 0.016666));
    case alpha_kind::srk: // Soave, Chem. Eng. Sci. 27 (1972) 1197, eq. 14
        return 0.480 + w * (1.574 - w * 0.176);
    }
    return 0.0;
}

// sqrt(alpha) at temperature T (K) for a component of critical temperature tc (K). kappa1 is
// the Stryjek-Vera parameter of PRSV (eq. 6 of their paper): kappa = kappa0 + kappa1
// (1 + sqrt(Tr))(0.7 - Tr) below Tr = 0.7 and kappa0 above.
template <class S>
S sqrt_alpha(alpha_kind kind, double kappa0, double kappa1, double tc, const S& T) {
    const S tr = T / tc;
    const S sq = sqrt(tr);
    if (kind == alpha_kind::prsv && kappa1 != 0.0 && value(tr) < 0.7) {
        const S kappa = kappa0 + kappa1 * (1.0 + sq) * (0.7 - tr);
        return 1.0 + kappa * (1.0 - sq);
    }
    return 1.0 + kappa0 * (1.0 - sq);
}

} // namespace varimol
