#include "varimol_fluids.hpp"
#include <gtest/gtest.h>
#include <cstdio>
using namespace varimol;

TEST(Scratch, Crit) {
    std::vector<varimol_test::mixture_spec> ms = {
        {{"CH4", "C2H6"}, {0.85, 0.15}},
        {{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}},
        {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.90, 0.05, 0.02, 0.02, 0.01}},
        {{"CH4", "nC10"}, {0.9999, 0.0001}},
        {{"CH4", "nC6"}, {0.7, 0.3}},
        {{"R32", "R125"}, {0.7, 0.3}},
        {{"CH4", "C2H6"}, {1-1e-7, 1e-7}},
    };
    for (auto& m : ms) {
        int e = varimol_test::select(1, m);
        double mm, tc, pc, tmin, tmax;
        vm3_fluidinfo(mm, tc, pc, tmin, tmax);
        std::printf("%s e=%d Tc=%.10g Pc=%.10g\n", m.names[1].c_str(), e, tc, pc);
    }
}
TEST(Scratch, Env) {
    std::vector<varimol_test::mixture_spec> ms = {
        {{"CH4", "C2H6"}, {0.85, 0.15}},
        {{"N2", "O2", "Ar"}, {0.7812, 0.2096, 0.0092}},
        {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.90, 0.05, 0.02, 0.02, 0.01}},
        {{"CH4", "nC10"}, {0.9999, 0.0001}},
        {{"CH4", "nC6"}, {0.7, 0.3}},
        {{"R32", "R125"}, {0.7, 0.3}},
        {{"CO2", "C3H8"}, {0.5, 0.5}},
        {{"CH4", "C2H6", "C3H8", "N2", "CO2"}, {0.85, 0.06, 0.03, 0.04, 0.02}},
        {{"CH4", "C2H6", "C3H8", "N2", "CO2", "nC10"}, {0.8999, 0.05, 0.02, 0.02, 0.01, 1e-4}},
        {{"CH4", "C2H6", "nC10"}, {0.8499, 0.15, 1e-4}},
        {{"CH4", "nC10"}, {0.999, 0.001}},
        {{"CH4", "nC10"}, {0.99, 0.01}},
        {{"CH4", "nC8"}, {0.9999, 0.0001}},
        {{"CH4", "C3H8"}, {0.9999, 0.0001}},
        {{"CH4", "nC4"}, {0.95, 0.05}},
    };
    std::vector<double> T(500), p(500);
    std::vector<composition> x(500), y(500);
    for (auto& m : ms) {
        int e = varimol_test::select(1, m);
        int np = 500, ierr;
        vm3_phaseenvelope(np, T, p, x, y, ierr);
        std::printf("%s e=%d ierr=%d np=%d ", m.names[1].c_str(), e, ierr, np);std::printf("\n");
        if (getenv("PTS")) for (int i = 0; i < np; ++i) std::printf("  %d %.6f %.6f %.4g %.4g\n", i, T[i], p[i]/1e5, x[i][0], y[i][0]);
    }
}
TEST(Scratch, Dew) {
    varimol_test::select(1, {{"CH4", "nC10"}, {0.9999, 0.0001}});
    for (double P : {1e5, 5e5, 20e5, 40e5, 60e5, 80e5, 100e5, 150e5, 200e5}) {
        double T = 0, p = P, v, u, h, s, q = 1, cv, a, b, c, d, e, g; composition x, y, l; int ierr;
        vm3_tmdprop(11, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, l, ierr);
        std::printf("P %g dew T %g ierr %d x1 %g\n", P, T, ierr, x[1]);
    }
}
TEST(Scratch, Flash) {
    varimol_test::select(1, {{"CH4", "nC10"}, {0.9999, 0.0001}});
    for (double P : {1e5, 20e5, 46e5, 60e5, 100e5, 200e5})
    for (double T : {150., 180., 190., 195., 200., 220., 240., 260., 280.}) {
        double p = P, v, u, h, s, q = 1, cv, a, b, c, d, e, g; composition x, y, l; int ierr;
        vm3_tmdprop(1, T, p, v, u, h, s, q, cv, a, b, c, d, e, g, x, y, l, ierr);
        std::printf("P %g T %g q %g ierr %d\n", P, T, q, ierr);
    }
}
