// Before the first setfluid the selection is blank: every dispatcher answers with its own text,
// and nothing crashes.
#include "base/zentropia_base.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace zb = zentropia_base;
using zp_common::composition;

namespace {

constexpr const char* untouched = "untouched";

struct case_ {
    const char* dispatcher;
    std::function<void(std::string&)> call;
    const char* expected;
};

void allthermo(std::string& e) {
    double p = 1, t = 2, v = 3, d = 4, h = 5, s = 6, u = 7, q = 8, cv = 9, dpdt = 10, dpdv = 11,
           d2pdt2 = 12, d2pdv2 = 13, d2pdtdv = 14, dcvdt = 15, eta = 16, lambda = 17, sigma = 18;
    composition x{}, y{};
    zb::allthermophys("PT", 1.0, 20.0, p, t, v, d, h, s, u, q, x, y, cv, dpdt, dpdv, d2pdt2, d2pdv2,
                      d2pdtdv, dcvdt, eta, lambda, sigma, e);
    EXPECT_EQ(p, 1);
    EXPECT_EQ(lambda, 17);
    EXPECT_TRUE(zb::isinit(sigma));
}

} // namespace

TEST(NoSelection, EveryDispatcherAnswersWithItsOwnText) {
    ASSERT_TRUE(zb::selection().modelalias.empty());
    double a = 0, b = 0, c = 0, d = 0, e = 0, f = 0, g = 0, h = 0;
    composition x{}, y{};
    std::array<double, 2> x2{}, y2{};
    const std::vector<case_> cases{
        {"allthermophys", allthermo, "Error in Zentropia: model name unknown"},
        {"calculate",
         [](std::string& m) { EXPECT_EQ(zb::calculate("PT", 1.0, 20.0, "h", m), 0.0); },
         "Error in Zentropia: invalid model name"},
        {"getinfo", [](std::string& m) { EXPECT_EQ(zb::getinfo("M_mol", m), -8888.8); },
         "Error in Zentropia: model name unknown"},
        {"zp_tmax", [](std::string& m) { EXPECT_EQ(zb::zp_tmax(m), -8888.8); },
         "Error in Zentropia: model name unknown"},
        {"zflow_tmd_vu",
         [&](std::string& m) { zb::zflow_tmd_vu(a, b, c, d, e, f, g, h, a, b, c, d, e, m); },
         "Error in Zentropia: model name unknown"},
        {"alltransprops_zp",
         [&](std::string& m) { zb::alltransprops_zp(20, 1, a, b, c, d, e, f, m); },
         "Error in Zentropia: model name unknown"},
        {"capeopenderiv_zp",
         [&](std::string& m) { zb::capeopenderiv_zp("PT", 1, 20, a, b, c, d, x, m); },
         "Error in Zentropia: CapeOpenDeriv_ZP not available for  ..."},
        {"psat_k1", [&](std::string& m) { zb::psat_k1(1, 20, a, m); },
         "Error in Zentropia: Psat_k1 not available for specified model"},
        {"xy_a_alfa", [&](std::string& m) { zb::xy_a_alfa(1, 1, 0.3, 1, 20, x2, y2, m); },
         "Error in Zentropia: xy_A_alfa not available for specified model"},
        {"xy_kij", [&](std::string& m) { zb::xy_kij(0.1, 1, 20, x2, y2, m); },
         "Error in Zentropia: xy_kij not available for specified model"},
        {"hsxy_mp", [&](std::string& m) { zb::hsxy_mp(1, 20, 1, a, b, x, y, m); },
         "Error in Zentropia: hsxy_mp not available for specified model"},
        {"liquidcmp_zp", [&](std::string& m) { zb::liquidcmp_zp("PT", 1, 20, x, m); },
         "Error in Zentropia: model name unknown"},
        {"zp_mmol_cnc", [&](std::string& m) { EXPECT_EQ(zb::zp_mmol_cnc(x, m), -8888.8); },
         "Error in Zentropia: model name unknown"},
        {"zp_saturationline",
         [&](std::string& m) {
             int n = -1;
             std::array<double, 2> t{}, p{};
             std::array<composition, 2> xs{}, ys{};
             zb::zp_saturationline(n, t, p, xs, ys, m);
             EXPECT_EQ(n, -1);
         },
         untouched},
    };
    for (const auto& c : cases) {
        std::string errormsg = untouched;
        c.call(errormsg);
        EXPECT_EQ(errormsg, c.expected) << c.dispatcher;
    }
}

TEST(NoSelection, GetfluidReportsABlankModelAndLeavesTheRest) {
    std::string model = "old";
    int ncomp = 7;
    std::array<std::string, 20> comp;
    comp.fill("keep");
    composition conc{};
    conc.fill(0.5);
    zb::getfluid(model, ncomp, comp, conc);
    EXPECT_EQ(model, "");
    EXPECT_EQ(ncomp, 7);
    EXPECT_EQ(comp[0], "keep");
    EXPECT_EQ(conc[0], 0.5);
}
