#pragma once
// The saturated liquid and vapour on a grid of temperatures from 273.15 K to just below Tc,
// with the slopes of their properties along the saturation line, built once on first use. A
// mixture given by two of v, h, s, u is located on it by interpolation, which gives the
// two-phase iterations a start within some 1e-8 K of the solution (less close within a few
// kelvin of Tc, where the lines turn into the critical point).
namespace if97::saturation_grid {

// The properties held for each phase.
enum property : int { v = 0, h, s, u };

// Temperature (K) of the mixture whose property a (v or s: their liquid and vapour values part
// as T falls) is ya and whose property b is yb, from the interpolated saturation line; NaN when
// the interpolated line holds no such mixture. b must rise with T along the mixtures of fixed a
// (as h at constant s, and h, s, u at constant v do).
double mixture_T(property a, double ya, property b, double yb);

// Specific volumes (m³/kg) of the saturated liquid and vapour at T (273.15 K to Tc),
// interpolated: starting points for the saturated densities of region 3.
struct volumes {
    double liquid, vapour;
};
volumes saturated_volumes(double T);

} // namespace if97::saturation_grid
