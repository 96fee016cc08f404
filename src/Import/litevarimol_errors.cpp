#include "Import/litevarimol_errors.hpp"

#include "base/common.hpp"

namespace litevarimol_zp {
namespace {

// The error codes of the liteVarimol back-end with fixed messages.
// clang-format off
constexpr zp_errortext::code_text messages[] = {
    {100, "Sum of mole fractions does not equal 1"},
    {102, "Calc_Psat: T > Tc and saturation requested"},
    {103, "Calc_Psat: T smaller than Tmin"},
    {104, "BubbleP: no convergence on internal loop"},
    {105, "BubbleP: no convergence on external loop"},
    {106, "NewtonRoot: no convergence"},
    {107, "Bracket: root not bracketed"},
    {108, "Bracket: no convergence"},
    {109, "LNfi: v smaller than b."},
    {111, "BubbleP: trivial solution"},
    {116, "DewP: no convergence on internal loop"},
    {117, "DewP: no convergence on external loop"},
    {118, "Calc_Flash: no convergence on external loop"},
    {120, "Function PVfrac: vapor fraction greater than 1 and smaller than 0"},
    {122, "BubbleT: no convergence on internal loop"},
    {123, "BubbleT: no convergence on external loop"},
    {124, "BubbleT: trivial solution"},
    {125, "DewP: trivial solution"},
    {126, "DewT: no convergence on internal loop"},
    {127, "DewT: no convergence on external loop"},
    {128, "DewT: trivial solution"},
    {129, "Calc_fimix: v smaller than b."},
    {130, "Calc_fimix: negative argument in logarithm"},
    {132, "LNfi: negative argument in Logarithm"},
    {135, "BubbleT: no convergence on first loop"},
    {136, "DewT: no convergence on first loop"},
    {143, "Calc_Tsat: P > Pc and saturation requested"},
    {144, "Calc_Tsat: P smaller than minimum P"},
    {150, "Calc_hsu: negative P"},
    {151, "Calc_hsu: negative argument in logarithm"},
    {152, "Calc_hsumix: negative P"},
    {153, "Calc_hsumix: negative argument in logarithm"},
    {154, "CubicRoots: numerical error: acos(arg); arg > 1 or arg < -1."},
    {155, "Calc_v: P or T smaller than 0"},
    {156, "Calc_Flash: no convergence on internal loop"},
    {157, "Calc_v: phase is not 0 or 1"},
    {164, "zbrak: cannot find interval for roots"},
    {165, "Function PVfrac:P smaller than Pmin"},
    {166, "P greater than Pmax"},
    {167, "Function Tv: v greater than vmax(T, Pmin)"},
    {168, "Function Ts: s greater than smax(T, Pmin)"},
    {169, "Function Ts: s smaller than smin(T, Pmax)"},
    {170, "Function vP: v smaller than vmin(P, Tmin)"},
    {171, "Function vP: v greater than vmax(P, Tmax)"},
    {172, "Function vVfrac: v greater than vmax(Pmin, Vfrac)"},
    {173, "Function vVfrac:v smaller than vmin (Pmin, Vfrac = 0)"},
    {174, "Function vVfrac:v root not Bracket. For some combinations of v and Vfrac there can be 2 points with same overall v"},
    {175, "Function hs: h is greater than h(Tmax, Pmin)"},
    {176, "Function hs: h is lower than h(Tmin, Pmax)"},
    {177, "Function hs: s is greater than s(Pmin,h)"},
    {178, "Function hs: s is smaller than s(Pmax, h)"},
    {179, "Function Ph: h smaller than hmin(Tmin, P)"},
    {180, "Function Ph: h greater than hmax(Tmax, P)"},
    {181, "Function Pu: u smaller than umin(Tmin, P)"},
    {182, "Function Pu: u greater than umax(Tmax, P)"},
    {183, "Function vu: v greater than vmax(Pmin, Tmax)"},
    {184, "Function vu: v smaller than vmin(Pmax, Tmin)"},
    {185, "Function vu: u smaller than umin(Tmin, Pmin)"},
    {186, "Function vu: u greater than umax(Tmax, v)"},
    {187, "Function vu: u greater than umax(Pmax, v)"},
    {188, "Function vh: v greater than vmax(Pmin, Tmax)"},
    {189, "Function vh: v smaller than vmin(Pmax, Tmin)"},
    {190, "Function vh: h smaller than hmin(Tmin, Pmin)"},
    {191, "Function vh: h greater than hmax(Tmax, v)"},
    {192, "Function vh: h greater than hmax(Pmax, v)"},
    {193, "Function vs: v greater than vmax(Pmin, Tmax)"},
    {194, "Function vs: v smaller than vmin(Pmax, Tmin)"},
    {195, "Function vs: s smaller than smin(Tmin, Pmin)"},
    {196, "Function vs: s greater than smax(Tmax, v)"},
    {197, "Function vh: s greater than smax(Pmax, v)"},
    {198, "Function Ps: s smaller than smin(Tmin, P)"},
    {199, "Function Ps: s greater than smax(Tmax, P)"},
    {200, "Function TVfrac: vapor fraction greater than 1 or smaller than 0"},
    {201, "Function vVfrac: vapor fraction greater than 1 or smaller than 0"},
    {400, "Internal server error"},
};
// clang-format on

// The codes whose message carries a limit of the selected fluid: the text before the limit, the
// limit (a fixed-point number of 7 characters with 2 decimals) and the text after it.
enum class limit { tmax, tmin, pmax, pcrit, tcrit };
struct limit_text {
    int code;
    const char* before;
    limit value;
    const char* after;
};
// clang-format off
constexpr limit_text limit_messages[] = {
    {158, "Temperature out of range for this fluid, T > Tmax (= ", limit::tmax, " K)..."},
    {159, "Temperature out of range for this fluid, T < Tmin (= ", limit::tmin, " K)..."},
    {161, "Specific volume out of range for this fluid, v < vmin(T,Pmax) (Pmax = ", limit::pmax, " bar)..."},
    {162, "Saturation conditions not available for P > Pcrit (=", limit::pcrit, " bar)..."},
    {163, "Saturation conditions not available for T > Tcrit (=", limit::tcrit, " K)..."},
};
// clang-format on

limits_hook hook{};

// the limit as the back-end gives it now; the not-computed value when nobody answers
double current(limit which) {
    double tmin = zp_common::not_set, tmax = zp_common::not_set, pmax = zp_common::not_set;
    double tcrit = zp_common::not_set, pcrit = zp_common::not_set;
    switch (which) {
    case limit::tmax:
    case limit::tmin:
    case limit::pmax:
        if (hook.ptminmax != nullptr) hook.ptminmax(tmin, tmax, pmax);
        return which == limit::tmax ? tmax : which == limit::tmin ? tmin : pmax;
    case limit::pcrit:
    case limit::tcrit:
        if (hook.critpoint != nullptr) hook.critpoint(tcrit, pcrit);
        return which == limit::tcrit ? tcrit : pcrit;
    }
    return zp_common::not_set;
}

} // namespace

void set_limits_hook(const limits_hook& new_hook) {
    hook = new_hook;
}

void litevarimol_errorstring(int ierr, std::string& errstr, std::size_t length) {
    for (const auto& m : limit_messages) {
        if (m.code != ierr) continue;
        zp_errortext::put(m.before + zp_errortext::fixed_field(current(m.value), 7, 2) + m.after,
                          errstr, length);
        return;
    }
    const auto text = zp_errortext::lookup(messages, ierr);
    zp_errortext::put(text.empty() ? zp_errortext::unknown_code(ierr) : std::string(text), errstr,
                      length);
}

} // namespace litevarimol_zp
