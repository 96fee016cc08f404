// The entry points of the reduced library: the parameter arrays widened to the core's layout,
// the core's entry points (compiled into this library, with their own configured fluid), and
// the core's codes translated to the liteVarimol codes in one table.
#include "litevarimol/litevarimol.hpp"

#include "model/components.hpp"
#include "varimol/varimol.hpp"

#include <algorithm>
#include <utility>

namespace litevarimol {

namespace {

// core code -> liteVarimol code; codes not listed keep their number
constexpr std::pair<int, int> code_table[] = {
    // range checks
    {3180, 158}, {3181, 159}, {3185, 166}, {3186, 155},
    // (T, v), (T, s), (p, v)
    {3190, 167}, {3191, 161}, {3200, 169}, {3201, 168}, {3205, 171}, {3206, 170},
    // (v, u), (v, h), (v, s)
    {3210, 183}, {3211, 184}, {3212, 185}, {3213, 186}, {3214, 187},
    {3220, 188}, {3221, 189}, {3222, 190}, {3223, 191}, {3224, 192},
    {3230, 193}, {3231, 194}, {3232, 195}, {3233, 196}, {3234, 197},
    // (p, u), (p, h), (p, s), (h, s)
    {3240, 181}, {3241, 182}, {3245, 179}, {3246, 180}, {3250, 198}, {3251, 199},
    {3260, 175}, {3261, 176}, {3262, 177}, {3263, 178},
    // (p, q), (T, q), (v, q)
    {3270, 120}, {3271, 162}, {3272, 165}, {3275, 200}, {3276, 163}, {3277, 159},
    {3280, 201}, {3281, 172}, {3282, 173}, {3283, 174},
    // bubble and dew points
    {400, 104}, {401, 105}, {402, 111}, {410, 116}, {411, 117}, {412, 125},
    {420, 122}, {421, 123}, {422, 124}, {423, 135}, {430, 126}, {431, 127}, {432, 128},
    {433, 136},
    // isothermal flash
    {440, 118}, {441, 118}, {445, 118}, {446, 156},
};

int lite_code(int core) {
    for (const auto& [from, to] : code_table)
        if (from == core) return to;
    return core;
}

struct state {
    bool configured = false;
    int n = 0;
    double tcr = 0.0, pcr = 0.0;
};
state lite;

} // namespace

void litevarimol_sub() { varimol::varimol_sub(); }

void lvm_getversion(std::array<int, 4>& version) { varimol::vm3_getversion(version); }

void set_fluid(std::int16_t model_code, const fluid_parameters& fp, const binary_parameters& bp,
               double& tcr, double& pcr, std::int16_t n_comps, int& ierr) {
    tcr = pcr = 0.0;
    if (n_comps < 1 || n_comps > max_components) {
        ierr = 101;
        return;
    }
    varimol::fluid_parameters wide{};
    varimol::binary_parameters wide_bp{};
    for (int k = 0; k < n_comps; ++k)
        for (int r = 0; r < varimol::component_rows; ++r)
            wide[varimol::parameter_index(r, k)] = fp[static_cast<std::size_t>(k * 16 + r)];
    for (int i = 0; i < n_comps; ++i)
        for (int j = 0; j < n_comps; ++j)
            for (int kind = 0; kind < varimol::binary_kinds; ++kind)
                wide_bp[varimol::binary_index(kind, i, j)] =
                    bp[static_cast<std::size_t>((j * max_components + i) * 5 + kind)];
    varimol::vm3_setfluid(model_code, wide, wide_bp, n_comps, ierr);
    ierr = lite_code(ierr);
    if (ierr != 0) return;
    double mm, tmin, tmax;
    varimol::vm3_fluidinfo(mm, lite.tcr, lite.pcr, tmin, tmax);
    lite.configured = true;
    lite.n = n_comps;
    tcr = lite.tcr;
    pcr = lite.pcr;
}

void calc_critpoint(double& tcr, double& pcr, int& ierr) {
    tcr = lite.tcr;
    pcr = lite.pcr;
    if (!lite.configured) {
        ierr = 101;
        return;
    }
    // the core computes the critical point when the fluid is configured (a mixture's by the
    // conditions of Heidemann and Khalil)
    double mm, tmin, tmax;
    varimol::vm3_fluidinfo(mm, lite.tcr, lite.pcr, tmin, tmax);
    tcr = lite.tcr;
    pcr = lite.pcr;
    ierr = 0;
}

void litevarimolprops(int mode, double& T, double& p, double& v, double& u, double& h, double& s,
                      double& q, double& cv, double& dpdt, double& dpdv, double& d2pdt2,
                      double& d2pdv2, double& d2pdtdv, double& dcvdt, composition& x,
                      composition& y, int& ierr) {
    varimol::composition wx, wy, lnphi;
    varimol::vm3_tmdprop(mode, T, p, v, u, h, s, q, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv,
                         dcvdt, wx, wy, lnphi, ierr);
    std::copy_n(wx.begin(), max_components, x.begin());
    std::copy_n(wy.begin(), max_components, y.begin());
    ierr = lite_code(ierr);
}

void litevarimolprops_1ph(int mode, double& T, double& p, double& v, double& u, double& h,
                          double& s, double& cv, double& dpdt, double& dpdv, double& d2pdt2,
                          double& d2pdv2, double& d2pdtdv, double& dcvdt, int& ierr) {
    varimol::vm3_tmdprop_1ph(mode, T, p, v, u, h, s, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv,
                             dcvdt, ierr);
    ierr = lite_code(ierr);
}

void vu_zflow(double& p, double& T, double v, double& h, double& s, double u, double& cv,
              double& dpdt, double& dpdv, double& d2pdt2, double& d2pdv2, double& d2pdtdv,
              double& dcvdt, int& ierr) {
    varimol::vm3_tmdprop_1ph(5, T, p, v, u, h, s, cv, dpdt, dpdv, d2pdt2, d2pdv2, d2pdtdv, dcvdt,
                             ierr);
    ierr = lite_code(ierr);
}

double wmol() {
    double mm, tc, pc, tmin, tmax;
    varimol::vm3_fluidinfo(mm, tc, pc, tmin, tmax);
    return mm;
}

void critpoint(double& tcr, double& pcr) {
    tcr = lite.tcr;
    pcr = lite.pcr;
}

void ptminmax(double& tmin, double& tmax, double& pmax) {
    double mm, tc, pc;
    varimol::vm3_fluidinfo(mm, tc, pc, tmin, tmax);
    pmax = lite.configured ? varimol::fluid{}.pmax : 0.0;
}

void uninit_litevarimol() {
    varimol::uninit_varimol();
    lite = state{};
}

} // namespace litevarimol
