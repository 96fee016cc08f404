// Adapters of back-ends that are not shipped: every operation they offer names the missing
// library, returns the not-computed value and leaves the caller's outputs as they were.
#include "Import/aerolt_zp.hpp"
#include "Import/critova_zp.hpp"
#include "Import/kelvora_zp.hpp"
#include "Import/libr_h2o_zp.hpp"
#include "Import/litevarimol_zp.hpp"
#include "Import/mesheq_zp.hpp"
#include "Import/pcp_saft_zp.hpp"
#include "Import/refprop_zp.hpp"
#include "Import/tpsi_zp.hpp"
#include "Import/varimol_zp.hpp"

#include <gtest/gtest.h>

#include <functional>

using zp_adapter::composition;

namespace {

const zp_adapter::operations* const absent[] = {
    &tpsi_zp::operations,     &litevarimol_zp::operations, &varimol_zp::operations,
    &aerolt_zp::operations,   &refprop_zp::operations,     &kelvora_zp::operations,
    &pcp_saft_zp::operations, &critova_zp::operations,     &libr_h2o_zp::operations,
    &mesheq_zp::operations};

std::string missing(std::string_view model) {
    return "Error in " + std::string(model) + ": back-end library not installed.";
}

} // namespace

TEST(AbsentAdapters, EveryOfferedOperationNamesTheMissingLibrary) {
    for (const auto* ops : absent) {
        const auto expected = missing(ops->model);
        SCOPED_TRACE(ops->model);
        EXPECT_FALSE(ops->installed);
        std::string e;
        const auto check = [&](bool offered, const std::function<void()>& call) {
            if (!offered) return;
            e = "No errors";
            call();
            EXPECT_EQ(e, expected);
        };
        double a = 1.5, b = 2.5;
        composition x{}, y{}, z{};
        x.fill(0.25);
        check(ops->setfluid, [&] {
            ops->setfluid("", 1, std::vector<std::string>{"water"}, std::vector<double>{1.0}, e);
        });
        check(ops->getinfo, [&] { EXPECT_EQ(ops->getinfo("M_mol", e), -8888.8); });
        check(ops->prop, [&] { EXPECT_EQ(ops->prop("PT", 1, 20, "h", e), -8888.8); });
        check(ops->allprops, [&] {
            ops->allprops("PT", 1, 20, a, a, a, a, a, a, a, a, x, y, z, a, a, a, a, a, a, a, a, a,
                          b, e);
        });
        for (auto op : {ops->liquidcmp, ops->vaporcmp, ops->fugacoef})
            check(op, [&] { op("PT", 1, 20, x, e); });
        check(ops->zflow_vu, [&] { ops->zflow_vu(a, a, 1, a, a, 1, a, a, a, a, a, a, a, e); });
        check(ops->psat_k1, [&] { ops->psat_k1(0.1, 20, a, e); });
        check(ops->getcompset, [&] {
            int n = 3;
            std::vector<std::string> names{"kept"};
            ops->getcompset(n, names, e);
            EXPECT_EQ(n, 3);
        });
        check(ops->phaseenvelope, [&] {
            int n = 3;
            std::array<double, 2> t{}, p{};
            std::array<composition, 2> xs{}, ys{};
            ops->phaseenvelope(n, t, p, xs, ys, e);
            EXPECT_EQ(n, 3);
        });
        EXPECT_EQ(a, 1.5);
        EXPECT_EQ(b, 2.5);
        EXPECT_EQ(x[0], 0.25);
        // no version and no fluid to report
        std::array<int, 4> version{-9, -9, -9, -9};
        ops->getversion(version);
        EXPECT_EQ(version, (std::array<int, 4>{-9, -9, -9, -9}));
        if (ops->getfluid) {
            int n = 2;
            zp_adapter::component_names comp;
            ops->getfluid(n, comp, x);
            EXPECT_EQ(n, 2);
        }
        ops->zp_sub();
        ops->uninit();
    }
}

TEST(AbsentAdapters, OperationsOfOneBackEnd) {
    double a = 1.5, b = 2.5;
    composition x{}, y{};
    zp_adapter::phase_values pv{};
    std::array<double, 2> x2{}, y2{};
    std::string s1, s2, s3, s4, s5, s6;
    int n = 4;
    const std::vector<std::pair<std::string, std::function<void(std::string&)>>> cases{
        {"RefProp",
         [&](std::string& e) { refprop_zp::refprop_alltransprops(20, 1, a, a, a, a, a, a, e); }},
        {"Varimol",
         [&](std::string& e) { varimol_zp::varimol_xy_a_alfa(1, 1, 0.3, 1, 20, x2, y2, e); }},
        {"PCP-SAFT",
         [&](std::string& e) {
             pcp_saft_zp::pcp_saft_allpropsallphases("PT", 1, 20, pv, pv, pv, pv, pv, pv, pv, a, x,
                                                     y, pv, pv, pv, pv, pv, pv, pv, a, b, e);
         }},
        {"PCP-SAFT",
         [&](std::string& e) {
             pcp_saft_zp::pcp_saft_allpropssatext("PT", 1, 20, a, a, a, a, a, a, a, a, x, y, a, a,
                                                  a, a, a, b, b, b, b, b, e);
         }},
        {"PCP-SAFT",
         [&](std::string& e) {
             pcp_saft_zp::pcp_saft_capeopenderiv("PT", 1, 20, a, a, a, a, x, e);
         }},
        {"PCP-SAFT", [&](std::string& e) { pcp_saft_zp::pcp_saft_xy_kij(0.1, 1, 20, x2, y2, e); }},
        {"PCP-SAFT",
         [&](std::string& e) { pcp_saft_zp::pcp_saft_hsxy_mp(20, 1, 1, a, b, x, y, e); }},
        {"Mesheq",
         [&](std::string& e) { mesheq_zp::mesheq_settable("t", "a", "b", "m", "s", 1, e); }},
        {"Mesheq",
         [&](std::string& e) {
             mesheq_zp::mesheq_settable_new("t", "PT", 1, 2, 3, 4, 0.5, "a", "b", "s", e);
         }},
        {"Mesheq", [&](std::string& e) { mesheq_zp::mesheq_usetable("t", e); }},
        {"Mesheq",
         [&](std::string& e) {
             mesheq_zp::mesheq_alltableinfo(s1, s2, s3, s4, s5, s6, a, a, b, b, a, n, e);
         }},
    };
    for (const auto& [model, call] : cases) {
        std::string e = "No errors";
        call(e);
        EXPECT_EQ(e, missing(model));
    }
    EXPECT_EQ(a, 1.5);
    EXPECT_EQ(b, 2.5);
    EXPECT_EQ(n, 4);
}
