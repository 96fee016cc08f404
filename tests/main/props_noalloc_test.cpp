// The evaluation paths of the property interface do not touch the heap on success: every
// allocation of this program is counted.
#include "main/water_support.hpp"
#include "main/zentropia_main.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

namespace {
long allocations = 0;
}

void* operator new(std::size_t size) {
    ++allocations;
    if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

namespace {

namespace zm = zentropia_main;
using zp_common::composition;

// Allocations made by 100 calls after a first one (which may set up what lives for the process).
long allocations_of(const std::function<void()>& call) {
    call();
    const long before = allocations;
    for (int i = 0; i < 100; ++i) call();
    return allocations - before;
}

TEST(NoAllocation, TheCounterSeesAllocations) {
    EXPECT_GT(allocations_of([] { std::string text(100, 'x'); }), 0);
}

TEST(NoAllocation, HotPaths) {
    for (const char* set : {"Zentropia", "SI", "Anglo-Saxon"}) {
        water_support::select_water(set, "PerMass");
        const double p = water_support::to_set({set, "PerMass"}, water_support::kind::P, 1e6);
        const double t = water_support::to_set({set, "PerMass"}, water_support::kind::T, 450.0);
        std::string errormsg;
        double out[30];
        composition x{}, y{};
        const std::vector<std::pair<const char*, std::function<void()>>> calls{
            {"calcprop", [&] { out[0] = zm::calcprop("h", "PT", p, t, errormsg); }},
            {"allprops",
             [&] {
                 zm::allprops("PT", p, t, out[0], out[1], out[2], out[3], out[4], out[5], out[6],
                              out[7], x, y, out[8], out[9], out[10], out[11], out[12], out[13],
                              out[14], out[15], out[16], out[17], out[18], out[19], out[20],
                              out[21], out[22], errormsg);
             }},
            {"allpropssu2",
             [&] {
                 zm::allpropssu2("PT", p, t, out[0], out[1], out[2], out[3], out[4], out[5], out[6],
                                 out[7], out[8], errormsg);
             }},
            {"allpropstarn",
             [&] {
                 zm::allpropstarn("PT", p, t, out[0], out[1], out[2], out[3], out[4], out[5],
                                  out[6], out[7], out[8], out[9], out[10], out[11], out[12],
                                  out[13], out[14], out[15], out[16], out[17], out[18], errormsg);
             }},
            {"density", [&] { out[0] = zm::density("PT", p, t, errormsg); }},
            {"enthalpy", [&] { out[0] = zm::enthalpy("PT", p, t, errormsg); }},
            {"soundspeed", [&] { out[0] = zm::soundspeed("PT", p, t, errormsg); }},
            {"gamma", [&] { out[0] = zm::gamma("PT", p, t, errormsg); }},
            {"viscosity", [&] { out[0] = zm::viscosity("PT", p, t, errormsg); }},
            {"zflow_vu",
             [&] {
                 zm::zflow_vu(
                     out[0], out[1],
                     water_support::to_set({set, "PerMass"}, water_support::kind::v, 0.0011),
                     out[2], out[3],
                     water_support::to_set({set, "PerMass"}, water_support::kind::energy, 7.0e5),
                     out[4], out[5], out[6], out[7], out[8], out[9], errormsg);
             }},
        };
        for (const auto& [name, call] : calls) {
            EXPECT_EQ(allocations_of(call), 0) << name << " in " << set;
            EXPECT_EQ(errormsg, "No errors") << name << " in " << set;
        }
    }
}

} // namespace
