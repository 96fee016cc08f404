// The evaluation paths of the property interface do not touch the heap on success: every
// allocation of this program is counted.
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include "allocation_counter.hpp"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace water_support;
namespace zm = zentropia_main;

using allocation_counter::allocations_of;

TEST(NoAllocation, HotPaths) {
    EXPECT_GT(allocations_of([] { std::string text(100, 'x'); }), 0) << "the counter counts";
    for (const unit_set& set : {unit_set{"Zentropia", "PerMass"}, unit_set{"SI", "PerMass"},
                                unit_set{"Anglo-Saxon", "PerMole"}}) {
        select_water(set.name, set.basis);
        const double p = to_set(set, kind::P, 1e6), t = to_set(set, kind::T, 450.0);
        const double v = to_set(set, kind::v, 0.0011), u = to_set(set, kind::energy, 7.0e5);
        const double h = to_set(set, kind::energy, 3.0e6);
        std::string errormsg;
        double o[23];
        composition x{}, y{};
        const std::vector<std::pair<const char*, std::function<void()>>> calls{
            {"calcprop",
             [&] {
                 // each keyword asks the back-end its own list
                 for (const char* key : {"h", "s", "cp", "c", "eta", "alpha", "sigma", "dpdt"})
                     for (const auto& [inputspec, second] :
                          {std::pair{"PT", t}, std::pair{"Ph", h}})
                         o[0] = zm::calcprop(key, inputspec, p, second, errormsg);
             }},
            {"allprops",
             [&] {
                 zm::allprops("PT", p, t, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y,
                              o[8], o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17],
                              o[18], o[19], o[20], o[21], o[22], errormsg);
             }},
            {"allpropssu2",
             [&] {
                 zm::allpropssu2("PT", p, t, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8],
                                 errormsg);
             }},
            {"allpropstarn",
             [&] {
                 zm::allpropstarn("PT", p, t, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], o[8],
                                  o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17],
                                  o[18], errormsg);
             }},
            {"density", [&] { o[0] = zm::density("PT", p, t, errormsg); }},
            {"soundspeed", [&] { o[0] = zm::soundspeed("PT", p, t, errormsg); }},
            {"gamma", [&] { o[0] = zm::gamma("PT", p, t, errormsg); }},
            {"viscosity", [&] { o[0] = zm::viscosity("PT", p, t, errormsg); }},
            {"zflow_vu",
             [&] {
                 zm::zflow_vu(o[0], o[1], v, o[2], o[3], u, o[4], o[5], o[6], o[7], o[8], o[9],
                              errormsg);
             }},
        };
        for (const auto& [name, call] : calls) {
            EXPECT_EQ(allocations_of(call), 0) << name << " in " << set.name;
            EXPECT_EQ(errormsg, "No errors") << name << " in " << set.name;
        }
    }
}

TEST(NoAllocation, MixturePaths) {
    // methane/ethane 0.9/0.1: a gas and a state split into two phases, asked in turn so that the
    // adapter's memory of its last state never answers
    std::string errormsg;
    const std::array<std::string, 2> names{"methane", "ethane"};
    const std::array<double, 2> conc{0.9, 0.1};
    zentropia_base::setfluid("Varimol", 2, names, conc, errormsg);
    ASSERT_TRUE(zp_common::is_success(errormsg)) << errormsg;
    zentropia_units::setunits("SI", "PerMass", "", "", errormsg);
    const std::array<std::pair<double, double>, 2> states{{{1e5, 300.0}, {25e5, 180.0}}};
    double o[23];
    composition x{}, y{};
    const std::vector<std::pair<const char*, std::function<void()>>> calls{
        {"calcprop",
         [&] {
             for (const char* key : {"h", "s", "cp", "c", "alpha", "q", "dpdt"})
                 for (const auto& [p, t] : states) o[0] = zm::calcprop(key, "PT", p, t, errormsg);
         }},
        {"allprops",
         [&] {
             for (const auto& [p, t] : states)
                 zm::allprops("PT", p, t, o[0], o[1], o[2], o[3], o[4], o[5], o[6], o[7], x, y,
                              o[8], o[9], o[10], o[11], o[12], o[13], o[14], o[15], o[16], o[17],
                              o[18], o[19], o[20], o[21], o[22], errormsg);
         }},
    };
    for (const auto& [name, call] : calls) {
        EXPECT_EQ(allocations_of(call), 0) << name << " of a mixture";
        EXPECT_EQ(errormsg, "No errors") << name << " of a mixture";
    }
    EXPECT_GT(o[7], 0.0) << "the last state lies inside the two-phase region";
    EXPECT_LT(o[7], 1.0);
    select_water();
}

} // namespace
