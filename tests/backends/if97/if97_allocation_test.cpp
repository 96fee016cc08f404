// if97_main allocates nothing on the heap when it succeeds: every input pair, in every region
// and in the dome, with the last-state memory missed and hit. The global operator new of this
// program counts the allocations made while `counting` is set.
#include "if97/if97.hpp"

#include "allocation_counter.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>
#include <string>

namespace {

struct call {
    const char* l1;
    double a;
    const char* l2;
    double b;
};

// The states of the round trips, given by different pairs (bar, °C, m³/kg, kJ/kg, kJ/(kg K)).
constexpr std::array<call, 22> calls = {{
    {"P", 10.0, "T", 20.0},    {"P", 1.0, "T", 300.0},   {"P", 250.0, "T", 380.0},
    {"P", 10.0, "T", 1500.0},  {"P", 10.0, "h", 2000.0}, {"P", 10.0, "h", 3000.0},
    {"P", 200.0, "h", 2000.0}, {"P", 10.0, "s", 7.0},    {"P", 10.0, "u", 100.0},
    {"P", 10.0, "v", 0.1},     {"P", 10.0, "x", 0.3},    {"T", 100.0, "x", 0.3},
    {"T", 100.0, "v", 1.0},    {"T", 360.0, "s", 4.0},   {"v", 0.2, "h", 2900.0},
    {"v", 0.2, "s", 7.0},      {"v", 0.2, "u", 2600.0},  {"v", 1.0, "u", 2000.0},
    {"v", 0.004, "u", 2000.0}, {"v", 0.5, "x", 0.5},     {"h", 2800.0, "s", 6.5},
    {"h", 1500.0, "s", 3.5},
}};

TEST(If97Allocation, SuccessfulCallsDoNotAllocate) {
    std::string err;
    std::array<double, 12> out{};
    const char* list = "P,T,v,h,s,u,x,cv,cp,w,dv,tc.";
    for (const call& c : calls) { // the same calls once before, so that nothing is first-time
        if97::if97_main(c.l1, c.a, c.l2, c.b, list, out, err);
        ASSERT_EQ(err, "No errors") << c.l1 << c.l2;
    }
    if97::uninit_if97();
    allocation_counter::allocations = 0;
    allocation_counter::counting = true;
    for (int round = 0; round < 2; ++round) // the second round hits the memory of a state
        for (const call& c : calls) {
            if97::if97_main(c.l1, c.a, c.l2, c.b, list, out, err);
            if97::if97_main(c.l1, c.a, c.l2, c.b, "d2P_dT2,dCv_dT,st.", out, err);
            // the bare saturation points, answered before anything else
            if97::if97_main("P", 10.0, "x", 0.5, "T.", out, err);
            if97::if97_main("T", 100.0, "x", 0.5, "P.", out, err);
        }
    allocation_counter::counting = false;
    EXPECT_EQ(err, "No errors");
    EXPECT_EQ(allocation_counter::allocations, 0u);
}

} // namespace
