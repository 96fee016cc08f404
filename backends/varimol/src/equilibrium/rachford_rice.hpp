#pragma once
// The Rachford-Rice equation sum_i z_i (K_i - 1)/(1 + beta (K_i - 1)) = 0 for the vapour
// fraction beta at fixed K-values.
namespace varimol {

// Returns 0 with beta in (0, 1) and the phase compositions x (liquid) and y (vapour); -1 when
// the feed is liquid at these K (beta <= 0), +1 when it is vapour (beta >= 1), x = y = z then.
// The root is bracketed by the window of positive phase amounts (Leibovici and Neoschil, Fluid
// Phase Equilib. 74 (1992) 303; Whitson and Michelsen, Fluid Phase Equilib. 53 (1989) 51) and
// found by safeguarded Newton steps. When the root lies above 1/2 the equation is solved for
// 1 - beta with the K-values inverted, so that small vapour and small liquid fractions are both
// found to full relative precision.
int rachford_rice(int n, const double* z, const double* K, double& beta, double* x, double* y);

// The root outside [0, 1] ("negative flash", Whitson and Michelsen 1989): beta in the window
// 1/(1 - Kmax) < beta < 1/(1 - Kmin) where every 1 + beta (K_i - 1) stays positive, with the
// compositions x and y. Used while the K-values of an iteration are still rough.
void rachford_rice_extended(int n, const double* z, const double* K, double& beta, double* x,
                            double* y);

} // namespace varimol
