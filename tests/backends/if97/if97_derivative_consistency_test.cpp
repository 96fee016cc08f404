// The derivative outputs of if97_main (cv, cp, w, the pressure derivatives at constant v or T,
// dcv/dT) against central differences of the state functions themselves: P, u and cv along
// isochores and isotherms from (T, v), h along isobars from (P, T), P along isentropes from
// (v, s).
#include "if97/if97.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>

namespace {

// One if97_main call; the outputs of `list` in order.
template <std::size_t N>
std::array<double, N> ask(const char* l1, double a, const char* l2, double b, const char* list) {
    std::array<double, N> out{};
    std::string err;
    if97::if97_main(l1, a, l2, b, list, out, err);
    EXPECT_EQ(err, "No errors") << l1 << "=" << a << " " << l2 << "=" << b << " " << list;
    return out;
}

double P_Pa(const char* l1, double a, const char* l2, double b) {
    return ask<1>(l1, a, l2, b, "P.")[0] * 1e5;
}

struct single_phase_state {
    double p_bar, t_C;
    const char* where;
    double tol; // relative tolerance of the differences
};

// States in every region; near the critical point the third derivatives are large, so the
// differences there are less accurate.
constexpr std::array<single_phase_state, 12> states = {{
    {1.0, 20.0, "region 1, ambient", 1e-6},
    {300.0, 250.0, "region 1, hot compressed", 1e-6},
    {990.0, 340.0, "region 1, 99 MPa", 1e-6},
    {0.05, 50.0, "region 2, low pressure", 1e-6},
    {100.0, 450.0, "region 2, 10 MPa", 1e-6},
    {200.0, 790.0, "region 2, hot", 1e-6},
    {250.0, 380.0, "region 3, supercritical", 1e-6},
    {200.0, 360.0, "region 3, liquid below pc", 1e-6},
    {700.0, 550.0, "region 3, 70 MPa", 1e-6},
    {221.0, 374.2, "region 3, near the critical point", 1e-4},
    {5.0, 1200.0, "region 5, low pressure", 1e-6},
    {450.0, 1900.0, "region 5, 45 MPa", 1e-6},
}};

TEST(If97Derivatives, PressureDerivativesAndHeatCapacitiesMatchDifferences) {
    for (const single_phase_state& st : states) {
        const auto d = ask<10>("P", st.p_bar, "T", st.t_C,
                               "v,cv,cp,w,dP_dT,dP_dv,d2P_dT2,d2P_dv2,d2P_dTdv,dCv_dT.");
        const double v = d[0];
        const double dT = 2e-6 * (st.t_C + 273.15), dv = 2e-6 * v;
        auto near = [&](double difference, double analytic, const char* what) {
            EXPECT_NEAR(difference, analytic, st.tol * std::fabs(analytic))
                << what << " at " << st.where;
        };
        // along the isochore and the isotherm through the state
        const double t_up = st.t_C + dT, t_down = st.t_C - dT;
        near((P_Pa("T", t_up, "v", v) - P_Pa("T", t_down, "v", v)) / (2 * dT), d[4], "dP_dT");
        near((P_Pa("T", st.t_C, "v", v + dv) - P_Pa("T", st.t_C, "v", v - dv)) / (2 * dv), d[5],
             "dP_dv");
        const auto up_T = ask<3>("T", t_up, "v", v, "dP_dT,cv,u.");
        const auto down_T = ask<3>("T", t_down, "v", v, "dP_dT,cv,u.");
        const auto up_v = ask<2>("T", st.t_C, "v", v + dv, "dP_dT,dP_dv.");
        const auto down_v = ask<2>("T", st.t_C, "v", v - dv, "dP_dT,dP_dv.");
        near((up_T[0] - down_T[0]) / (2 * dT), d[6], "d2P_dT2");
        near((up_v[1] - down_v[1]) / (2 * dv), d[7], "d2P_dv2");
        near((up_v[0] - down_v[0]) / (2 * dv), d[8], "d2P_dTdv");
        near((up_T[1] - down_T[1]) * 1e3 / (2 * dT), d[9], "dCv_dT");
        near((up_T[2] - down_T[2]) / (2 * dT), d[1], "cv");
        // along the isobar: cp; along the isentrope: w^2 = -v^2 (dP/dv)_s
        const double h_up = ask<1>("P", st.p_bar, "T", t_up, "h.")[0];
        const double h_down = ask<1>("P", st.p_bar, "T", t_down, "h.")[0];
        near((h_up - h_down) / (2 * dT), d[2], "cp");
        const double s = ask<1>("P", st.p_bar, "T", st.t_C, "s.")[0];
        const double dP_dv_s = (P_Pa("v", v + dv, "s", s) - P_Pa("v", v - dv, "s", s)) / (2 * dv);
        near(std::sqrt(-v * v * dP_dv_s), d[3], "w");
    }
}

// Inside the dome: cv is that of the mixture held at its overall volume, which evaporates or
// condenses as T changes; cp, w and the single-phase derivatives are not set.
TEST(If97Derivatives, TwoPhaseHeatCapacityAtConstantVolume) {
    struct mixture {
        double t_C, x;
    };
    for (const mixture m : {mixture{20.0, 0.5}, mixture{100.0, 0.7}, mixture{250.0, 0.1},
                            mixture{330.0, 0.9}, mixture{360.0, 0.3}}) {
        const auto d =
            ask<9>("T", m.t_C, "x", m.x, "v,cv,cp,w,dP_dT,dP_dv,d2P_dT2,d2P_dv2,dCv_dT.");
        const double dT = 1e-4 * (m.t_C + 273.15);
        const double u_up = ask<1>("T", m.t_C + dT, "v", d[0], "u.")[0];
        const double u_down = ask<1>("T", m.t_C - dT, "v", d[0], "u.")[0];
        EXPECT_NEAR((u_up - u_down) / (2 * dT), d[1], 1e-6 * d[1]) << m.t_C << " °C";
        for (int k = 2; k < 9; ++k) EXPECT_EQ(d[k], -8888.8) << m.t_C << " °C, output " << k;
    }
}

} // namespace
